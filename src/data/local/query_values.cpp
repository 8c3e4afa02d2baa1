#include "data/local/query_values.h"

#include "data/base/field_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace zov::local {

void failWith(qint32 native, const QString& text, qint32 number, const QString& sqlState) {
    throw DbError(number, text, sqlState, native);
}

StoredValue StoredValue::null() {
    return {};
}

StoredValue StoredValue::ofInteger(qint64 value, SqlType type) {
    StoredValue result;
    result.kind = Kind::Integer;
    result.integer = value;
    result.type = makeType(type);
    return result;
}

StoredValue StoredValue::ofReal(double value) {
    StoredValue result;
    result.kind = Kind::Real;
    result.real = value;
    result.type = makeType(SqlType::Float);
    return result;
}

StoredValue StoredValue::ofText(const QString& text) {
    StoredValue result;
    result.kind = Kind::Text;
    result.bytes = text.toUtf8();
    result.type = makeType(SqlType::NVarChar,
                           text.size() > 4000 ? -1 : int(std::max<qsizetype>(1, text.size())));
    return result;
}

QString StoredValue::text() const {
    return valueText(*this);
}

qint64 StoredValue::toInteger() const {
    switch (kind) {
        case Kind::Integer:
            return integer;
        case Kind::Real:
            return qint64(std::llround(real));
        case Kind::Text:
            return QString::fromUtf8(bytes).trimmed().toLongLong();
        default:
            return 0;
    }
}

bool Variables::declare(const QString& name, const ColumnInfo& type) {
    const QString key = name.toLower();
    if (values_.contains(key)) return false;
    StoredValue value;
    value.type = type;
    values_.insert(key, value);
    return true;
}

const StoredValue* Variables::find(const QString& name) const {
    const auto it = values_.constFind(name.toLower());
    return it == values_.constEnd() ? nullptr : &it.value();
}

void Variables::assign(const SessionState& session, const QString& name, const StoredValue& value) {
    const auto it = values_.find(name.toLower());
    if (it == values_.end())
        failWith(137, QStringLiteral("Must declare the scalar variable \"%1\".").arg(name));
    const ColumnInfo type = it->type;
    *it = convertStored(value, type, true, session.dateFormat);
    it->type = type;
}

StoredValue convertValue(const SessionState& session, const StoredValue& value,
                         const ColumnInfo& type, bool cut) {
    return convertStored(value, type, cut, session.dateFormat);
}

// --- decimals -----------------------------------------------------------------------------------

bool DecimalText::parse(QByteArrayView text, DecimalText& result) {
    result = {};
    qsizetype at = 0;
    qsizetype end = text.size();
    while (at < end && text[at] == ' ') ++at;
    while (end > at && text[end - 1] == ' ') --end;
    if (at < end && (text[at] == '-' || text[at] == '+')) result.negative = text[at++] == '-';
    bool point = false, any = false;
    for (; at < end; ++at) {
        const char c = text[at];
        if (c >= '0' && c <= '9') {
            any = true;
            if (c != '0' || !result.digits.isEmpty()) result.digits += c;
            if (point) ++result.scale;
        } else if (c == '.' && !point) {
            point = true;
        } else {
            break;
        }
    }
    if (!any) return false;
    if (at < end && (text[at] == 'e' || text[at] == 'E')) {
        int exponent = 0;
        qsizetype from = at + 1;
        if (from < end && text[from] == '+') ++from;
        const auto read = std::from_chars(text.data() + from, text.data() + end, exponent);
        if (read.ec != std::errc() || read.ptr != text.data() + end || std::abs(exponent) > 400)
            return false;
        result.scale -= exponent;
        if (result.scale < 0) {
            if (!result.digits.isEmpty()) result.digits += QByteArray(-result.scale, '0');
            result.scale = 0;
        }
    } else if (at != end) {
        return false;
    }
    if (result.digits.isEmpty()) result.negative = false;
    return true;
}

DecimalText DecimalText::ofValue(const StoredValue& value) {
    DecimalText result;
    switch (value.kind) {
        case StoredValue::Kind::Integer:
            parse(QByteArray::number(value.integer), result);
            break;
        case StoredValue::Kind::Real: {
            char buffer[400];
            const auto end = std::to_chars(buffer, buffer + sizeof buffer, value.real);
            parse(QByteArrayView(buffer, end.ptr - buffer), result);
            break;
        }
        case StoredValue::Kind::Text:
            parse(value.bytes, result);
            break;
        default:
            break;
    }
    return result;
}

void DecimalText::rescale(int newScale) {
    if (newScale >= scale) {
        if (!digits.isEmpty()) digits += QByteArray(newScale - scale, '0');
        scale = newScale;
        return;
    }
    const qsizetype drop = scale - newScale;
    scale = newScale;
    if (drop > digits.size()) {
        digits.clear();
        negative = false;
        return;
    }
    const bool up = digits[digits.size() - drop] >= '5';
    digits.chop(drop);
    if (up) {
        qsizetype at = digits.size();
        while (at > 0 && digits[at - 1] == '9') digits[--at] = '0';
        if (at > 0)
            ++digits[at - 1];
        else
            digits.prepend('1');
    }
    if (digits.isEmpty()) negative = false;
}

QByteArray DecimalText::plain() const {
    QByteArray text = digits;
    if (text.size() <= scale) text.prepend(QByteArray(scale + 1 - text.size(), '0'));
    if (scale > 0) text.insert(text.size() - scale, '.');
    if (negative) text.prepend('-');
    return text;
}

QByteArray DecimalText::canonical() const {
    QByteArray text = plain();
    if (scale > 0) {
        while (text.endsWith('0')) text.chop(1);
        if (text.endsWith('.')) text.chop(1);
    }
    return text;
}

StoredValue DecimalText::stored(const ColumnInfo& type) const {
    StoredValue result;
    result.type = type;
    qsizetype significant = digits.size();
    int trailing = 0;
    while (trailing < scale && significant > 0 && digits[significant - 1] == '0') {
        --significant;
        ++trailing;
    }
    const int fraction = digits.isEmpty() ? 0 : scale - trailing;
    // A double gives back fifteen digits as they were; a whole number as long as it has no
    // fraction.
    if (significant > 15) {
        result.kind = StoredValue::Kind::Text;
        result.bytes = canonical();
    } else if (fraction == 0) {
        const qsizetype whole = digits.size() - (digits.isEmpty() ? 0 : scale);
        if (whole > 18) {
            result.kind = StoredValue::Kind::Text;
            result.bytes = canonical();
        } else {
            result.kind = StoredValue::Kind::Integer;
            result.integer = digits.left(whole).toLongLong() * (negative ? -1 : 1);
        }
    } else {
        result.kind = StoredValue::Kind::Real;
        result.real = canonical().toDouble();
    }
    return result;
}

// --- text of values -----------------------------------------------------------------------------

namespace {

QString floatText(double value, int digits) {
    QByteArray text = QByteArray::number(value, 'g', digits);
    // The server writes three digits of an exponent.
    const qsizetype e = text.indexOf('e');
    if (e >= 0) {
        QByteArray exponent = text.mid(e + 2);
        while (exponent.size() < 3) exponent.prepend('0');
        text = text.left(e + 2) + exponent;
    }
    return QString::fromLatin1(text);
}

QString withCommas(QString text) {
    qsizetype point = text.indexOf(u'.');
    if (point < 0) point = text.size();
    const qsizetype first = text.startsWith(u'-') ? 1 : 0;
    for (qsizetype at = point - 3; at > first; at -= 3) text.insert(at, u',');
    return text;
}

}  // namespace

QString valueText(const StoredValue& value, int style) {
    using Kind = StoredValue::Kind;
    if (value.isNull()) return {};
    const SqlType type = value.type.type;
    if (isDateTimeType(type) && value.kind == Kind::Text) {
        qint64 ticks = 0;
        qint16 offset = 0;
        if (parseIsoTicks(value.bytes.constData(), value.bytes.size(), ticks, offset))
            return dateToText(ticks, offset, value.type, style);
    }
    if (type == SqlType::Money || type == SqlType::SmallMoney) {
        DecimalText decimal = DecimalText::ofValue(value);
        decimal.rescale(style == 2 || style == 126 ? 4 : 2);
        const QString text = QString::fromLatin1(decimal.plain());
        return style == 1 ? withCommas(text) : text;
    }
    if ((type == SqlType::Decimal || type == SqlType::Numeric) && value.type.precision > 0) {
        DecimalText decimal = DecimalText::ofValue(value);
        decimal.rescale(value.type.scale);
        return QString::fromLatin1(decimal.plain());
    }
    switch (value.kind) {
        case Kind::Integer:
            if (type == SqlType::Float || type == SqlType::Real)
                return floatText(double(value.integer), style == 0 ? 6 : 16);
            return QString::number(value.integer);
        case Kind::Real:
            if (style == 3) return floatText(value.real, 17);
            if (style == 1 || style == 2) {
                QByteArray text = QByteArray::number(value.real, 'e', style == 1 ? 7 : 15);
                const qsizetype e = text.indexOf('e');
                QByteArray exponent = text.mid(e + 2);
                while (exponent.size() < 3) exponent.prepend('0');
                return QString::fromLatin1(text.left(e + 2) + exponent);
            }
            return floatText(value.real, 6);
        case Kind::Text:
            return QString::fromUtf8(value.bytes);
        case Kind::Blob: {
            if (style == 1 || style == 2) {
                const QString hex = QString::fromLatin1(value.bytes.toHex().toUpper());
                return style == 1 ? QStringLiteral("0x") + hex : hex;
            }
            return QString::fromLatin1(value.bytes);
        }
        case Kind::Null:
            break;
    }
    return {};
}

StoredValue literalValue(const Token& token) {
    if (token.kind == TokenKind::String) {
        StoredValue value = StoredValue::ofText(token.value);
        const bool unicode = token.source.startsWith(u'N') || token.source.startsWith(u'n');
        if (!unicode)
            value.type = makeType(
                SqlType::VarChar,
                token.value.size() > 8000 ? -1 : int(std::max<qsizetype>(1, token.value.size())));
        value.type.nullable = false;
        return value;
    }
    if (token.kind == TokenKind::Binary) {
        StoredValue value;
        value.kind = StoredValue::Kind::Blob;
        QByteArray hex = token.source.mid(2).toLatin1();
        if (hex.contains('\\')) hex.replace("\\\r\n", "").replace("\\\n", "");
        if (hex.size() % 2) hex.prepend('0');
        value.bytes = QByteArray::fromHex(hex);
        value.type = makeType(
            SqlType::VarBinary,
            value.bytes.size() > 8000 ? -1 : int(std::max<qsizetype>(1, value.bytes.size())), 0, 0,
            false);
        return value;
    }
    QByteArray text = token.source.toLatin1();
    if (text.startsWith('$')) {
        DecimalText decimal;
        if (!DecimalText::parse(QByteArrayView(text).sliced(1), decimal)) decimal = {};
        decimal.rescale(4);
        return decimal.stored(makeType(SqlType::Money, 0, 0, 0, false));
    }
    if (text.contains('e') || text.contains('E')) {
        StoredValue value = StoredValue::ofReal(text.toDouble());
        value.type.nullable = false;
        return value;
    }
    if (!text.contains('.')) {
        bool fits = false;
        const qint64 number = text.toLongLong(&fits);
        if (fits && number <= std::numeric_limits<qint32>::max()) {
            StoredValue value = StoredValue::ofInteger(number);
            value.type.nullable = false;
            return value;
        }
    }
    DecimalText decimal;
    DecimalText::parse(text, decimal);
    const qsizetype whole = std::max<qsizetype>(0, decimal.digits.size() - decimal.scale);
    const int precision = int(std::max<qsizetype>(1, whole + decimal.scale));
    if (precision > 38)
        failWith(1007,
                 QStringLiteral("The number '%1' is out of the range for numeric representation "
                                "(maximum precision 38).")
                     .arg(token.source));
    return decimal.stored(makeType(SqlType::Numeric, 0, precision, decimal.scale, false));
}

// --- conversion ---------------------------------------------------------------------------------

namespace {

using Kind = StoredValue::Kind;

QString typeWord(const StoredValue& value) {
    return sqlTypeName(value.type.type);
}

[[noreturn]] void cannotConvert(const StoredValue& value, const ColumnInfo& to) {
    if (value.kind == Kind::Text && isTextType(value.type.type)) {
        if (to.type <= SqlType::BigInt)
            failWith(
                245,
                QStringLiteral(
                    "Conversion failed when converting the %1 value '%2' to data type %3.")
                    .arg(typeWord(value), QString::fromUtf8(value.bytes), sqlTypeName(to.type)),
                ado_number::CannotConvert, QStringLiteral("22018"));
        if (isDateTimeType(to.type))
            failWith(
                241,
                QStringLiteral(
                    "Conversion failed when converting date and/or time from character string."),
                ado_number::CannotConvert, QStringLiteral("22007"));
        if (to.type == SqlType::UniqueIdentifier)
            failWith(8169,
                     QStringLiteral("Conversion failed when converting from a character string to "
                                    "uniqueidentifier."),
                     ado_number::CannotConvert, QStringLiteral("42000"));
        if (to.type == SqlType::Money || to.type == SqlType::SmallMoney)
            failWith(
                235,
                QStringLiteral(
                    "Cannot convert a char value to money. The char value has incorrect syntax."),
                ado_number::CannotConvert, QStringLiteral("22018"));
        failWith(8114,
                 QStringLiteral("Error converting data type %1 to %2.")
                     .arg(typeWord(value), sqlTypeName(to.type)),
                 ado_number::CannotConvert, QStringLiteral("42000"));
    }
    failWith(529,
             QStringLiteral("Explicit conversion from data type %1 to %2 is not allowed.")
                 .arg(typeWord(value), sqlTypeName(to.type)),
             ado_number::CannotConvert);
}

[[noreturn]] void overflow(const StoredValue& value, const ColumnInfo& to) {
    if (to.type <= SqlType::SmallInt && value.kind == Kind::Integer)
        failWith(220,
                 QStringLiteral("Arithmetic overflow error for data type %1, value = %2.")
                     .arg(sqlTypeName(to.type))
                     .arg(value.integer),
                 ado_number::Overflow, QStringLiteral("22003"));
    failWith(8115,
             QStringLiteral("Arithmetic overflow error converting %1 to data type %2.")
                 .arg(value.kind == Kind::Integer && value.type.type <= SqlType::BigInt
                          ? QStringLiteral("expression")
                          : typeWord(value),
                      sqlTypeName(to.type)),
             ado_number::Overflow, QStringLiteral("22003"));
}

bool inRange(qint64 value, SqlType type) {
    switch (type) {
        case SqlType::TinyInt:
            return value >= 0 && value <= 255;
        case SqlType::SmallInt:
            return value >= -32768 && value <= 32767;
        case SqlType::Int:
            return value >= std::numeric_limits<qint32>::min() &&
                   value <= std::numeric_limits<qint32>::max();
        default:
            return true;
    }
}

constexpr qint64 DaysTo1900 = 693595;

bool ticksOf(const StoredValue& value, const QString& dateFormat, int style, qint64& ticks,
             qint16& offset) {
    offset = 0;
    if (value.kind == Kind::Integer) {
        ticks = (DaysTo1900 + value.integer) * TicksPerDay;
        return true;
    }
    if (value.kind == Kind::Real) {
        ticks = DaysTo1900 * TicksPerDay + qint64(std::llround(value.real * double(TicksPerDay)));
        return true;
    }
    if (value.kind != Kind::Text) return false;
    if (isDateTimeType(value.type.type)) {
        if (!parseIsoTicks(value.bytes.constData(), value.bytes.size(), ticks, offset))
            return false;
        if (value.type.type == SqlType::Time) ticks += DaysTo1900 * TicksPerDay;
        return true;
    }
    QString order = dateFormat;
    switch (style % 100) {
        case 1:
        case 10:
            if (style) order = QStringLiteral("mdy");
            break;
        case 3:
        case 4:
        case 5:
        case 6:
        case 13:
            order = QStringLiteral("dmy");
            break;
        case 2:
        case 11:
        case 12:
            order = QStringLiteral("ymd");
            break;
        default:
            break;
    }
    return parseDateText(QString::fromUtf8(value.bytes), order, ticks, offset);
}

StoredValue toIntegerType(const StoredValue& value, const ColumnInfo& to,
                          const QString& dateFormat) {
    qint64 number = 0;
    switch (value.kind) {
        case Kind::Integer:
            number = value.integer;
            break;
        case Kind::Real:
            // 2 to the 63rd is the first that doesn't fit; less 2 to the 63rd does.
            if (to.type != SqlType::Bit &&
                !(value.real >= -9223372036854775808.0 && value.real < 9223372036854775808.0))
                overflow(value, to);
            number = to.type == SqlType::Bit ? value.real != 0 : qint64(value.real);
            break;
        case Kind::Text: {
            if (isDateTimeType(value.type.type)) {
                qint64 ticks = 0;
                qint16 offset = 0;
                if (!ticksOf(value, dateFormat, 0, ticks, offset)) cannotConvert(value, to);
                number = (ticks + TicksPerDay / 2) / TicksPerDay - DaysTo1900;
                break;
            }
            const QByteArray text = value.bytes.trimmed();
            if (to.type == SqlType::Bit) {
                if (text.compare("true", Qt::CaseInsensitive) == 0) {
                    number = 1;
                    break;
                }
                if (text.compare("false", Qt::CaseInsensitive) == 0 || text.isEmpty()) break;
            }
            if (text.isEmpty() && isTextType(value.type.type)) break;
            DecimalText decimal;
            if (!DecimalText::parse(text, decimal)) cannotConvert(value, to);
            if (isTextType(value.type.type) &&
                (text.contains('.') || text.contains('e') || text.contains('E')))
                cannotConvert(value, to);
            const qsizetype whole = decimal.digits.size() - decimal.scale;
            bool fits = whole <= 0;
            // With its sign: the smallest bigint has no positive counterpart.
            if (whole > 0)
                number =
                    ((decimal.negative ? "-" : "") + decimal.digits.left(whole)).toLongLong(&fits);
            if (!fits || !inRange(number, to.type)) {
                if (isTextType(value.type.type))
                    failWith(
                        248,
                        QStringLiteral(
                            "The conversion of the %1 value '%2' overflowed an %3 column.")
                            .arg(typeWord(value), QString::fromUtf8(text), sqlTypeName(to.type)),
                        ado_number::Overflow, QStringLiteral("22003"));
                overflow(value, to);
            }
            break;
        }
        case Kind::Blob:
            // The last bytes count, the highest first.
            for (const char c : value.bytes.right(8))
                number = qint64(quint64(number) << 8 | quint8(c));
            if (to.type == SqlType::Int) number = qint32(number);
            break;
        case Kind::Null:
            break;
    }
    if (to.type == SqlType::Bit) number = number != 0;
    if (!inRange(number, to.type)) overflow(value, to);
    StoredValue result = StoredValue::ofInteger(number, to.type);
    result.type = to;
    return result;
}

StoredValue toDecimalType(const StoredValue& value, const ColumnInfo& to) {
    DecimalText decimal;
    const bool money = to.type == SqlType::Money || to.type == SqlType::SmallMoney;
    if (value.kind == Kind::Text) {
        QByteArray text = value.bytes.trimmed();
        if (isDateTimeType(value.type.type) || value.type.type == SqlType::UniqueIdentifier)
            cannotConvert(value, to);
        if (money) {
            text.replace("$", "").replace(",", "");
            if (text.isEmpty()) text = "0";
        }
        if (!DecimalText::parse(text, decimal)) cannotConvert(value, to);
    } else if (value.kind == Kind::Blob) {
        decimal = decimalOfBytes(value.bytes, to);
    } else {
        if (value.kind == Kind::Real && !std::isfinite(value.real)) overflow(value, to);
        decimal = DecimalText::ofValue(value);
    }
    decimal.rescale(money ? 4 : to.scale);
    const int precision = to.type == SqlType::Money        ? 19
                          : to.type == SqlType::SmallMoney ? 10
                                                           : to.precision;
    if (decimal.digits.size() > precision) overflow(value, to);
    return decimal.stored(to);
}

StoredValue toFloatType(const StoredValue& value, const ColumnInfo& to) {
    StoredValue result;
    result.kind = Kind::Real;
    result.type = to;
    switch (value.kind) {
        case Kind::Integer:
            result.real = double(value.integer);
            break;
        case Kind::Real:
            result.real = value.real;
            break;
        case Kind::Text: {
            bool good = false;
            const QByteArray text = value.bytes.trimmed();
            if (isDateTimeType(value.type.type)) {
                qint64 ticks = 0;
                qint16 offset = 0;
                good = ticksOf(value, {}, 0, ticks, offset);
                result.real = double(ticks - DaysTo1900 * TicksPerDay) / double(TicksPerDay);
            } else {
                result.real = text.isEmpty() ? 0 : text.toDouble(&good);
                good = good || text.isEmpty();
            }
            if (!good) cannotConvert(value, to);
            break;
        }
        default:
            cannotConvert(value, to);
    }
    if (to.type == SqlType::Real) result.real = double(float(result.real));
    return result;
}

StoredValue toDateType(const StoredValue& value, const ColumnInfo& to, const QString& dateFormat,
                       int style) {
    qint64 ticks = 0;
    qint16 offset = 0;
    if (value.kind == Kind::Blob)
        ticks = ticksOfBytes(value.bytes, to, offset);
    else if (!ticksOf(value, dateFormat, style, ticks, offset))
        cannotConvert(value, to);
    const qint64 days = ticks / TicksPerDay;
    const bool tooEarly = (to.type == SqlType::DateTime && days < daysFromCivil(1753, 1, 1)) ||
                          (to.type == SqlType::SmallDateTime &&
                           (days < DaysTo1900 || days >= daysFromCivil(2079, 6, 7)));
    if (tooEarly)
        failWith(242,
                 QStringLiteral("The conversion of a %1 data type to a %2 data type resulted in an "
                                "out-of-range value.")
                     .arg(typeWord(value), sqlTypeName(to.type)),
                 ado_number::CannotConvert, QStringLiteral("22007"));
    StoredValue result;
    result.kind = Kind::Text;
    result.type = to;
    result.bytes = formatTicks(ticks, offset, to);
    return result;
}

StoredValue toTextType(const StoredValue& value, const ColumnInfo& to, bool cut, int style) {
    StoredValue result;
    result.kind = Kind::Text;
    result.type = to;
    const bool plainText =
        value.kind == Kind::Text &&
        (isTextType(value.type.type) || value.type.type == SqlType::UniqueIdentifier);
    const bool fixed = to.type == SqlType::Char || to.type == SqlType::NChar;
    // What fits byte for byte needs no look at single letters.
    if (plainText && !fixed && (to.size <= 0 || value.bytes.size() <= to.size)) {
        result.bytes = value.bytes;
        return result;
    }
    QString text = value.kind == Kind::Blob &&
                           (to.type == SqlType::NVarChar || to.type == SqlType::NChar) && style == 0
                       ? QString(reinterpret_cast<const QChar*>(value.bytes.constData()),
                                 value.bytes.size() / 2)
                       : valueText(value, style);
    if (to.size > 0 && text.size() > to.size) {
        if (cut) {
            if (value.kind == Kind::Integer && value.type.type <= SqlType::Int)
                text = QStringLiteral("*");
            else if (value.kind != Kind::Text && value.kind != Kind::Blob)
                overflow(value, to);
            else
                text.truncate(to.size);
        } else if (text.size() > to.size) {
            // Blanks beyond the column's end are no loss.
            while (text.size() > to.size && text.endsWith(u' ')) text.chop(1);
        }
    }
    if (fixed && text.size() < to.size) text.resize(to.size, u' ');
    result.bytes = text.toUtf8();
    return result;
}

StoredValue toBinaryType(const StoredValue& value, const ColumnInfo& to, bool cut, int style) {
    StoredValue result;
    result.kind = Kind::Blob;
    result.type = to;
    const bool fixed = to.type == SqlType::Binary || to.type == SqlType::RowVersion;
    switch (value.kind) {
        case Kind::Blob:
            result.bytes = value.bytes;
            break;
        case Kind::Text: {
            const QString text = QString::fromUtf8(value.bytes);
            if (value.type.type == SqlType::UniqueIdentifier) {
                QByteArray bytes = QByteArray::fromHex(value.bytes);
                // The first three groups lie with the lowest byte first.
                if (bytes.size() == 16) {
                    std::reverse(bytes.begin(), bytes.begin() + 4);
                    std::reverse(bytes.begin() + 4, bytes.begin() + 6);
                    std::reverse(bytes.begin() + 6, bytes.begin() + 8);
                }
                result.bytes = bytes;
            } else if ((style == 1 && text.startsWith(u"0x", Qt::CaseInsensitive)) || style == 2) {
                result.bytes = QByteArray::fromHex((style == 1 ? text.mid(2) : text).toLatin1());
            } else if (value.type.type == SqlType::NVarChar || value.type.type == SqlType::NChar ||
                       value.type.type == SqlType::NText) {
                result.bytes =
                    QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
            } else {
                result.bytes = text.toLatin1();
            }
            break;
        }
        case Kind::Integer: {
            const int width = value.type.type == SqlType::BigInt     ? 8
                              : value.type.type == SqlType::SmallInt ? 2
                              : value.type.type <= SqlType::TinyInt  ? 1
                                                                     : 4;
            const int wanted = fixed && to.size > 0 ? to.size : width;
            for (int shift = wanted * 8 - 8; shift >= 0; shift -= 8)
                result.bytes += shift < 64 ? char(quint64(value.integer) >> shift)
                                           : char(value.integer < 0 ? -1 : 0);
            return result;
        }
        case Kind::Real: {
            quint64 bits = 0;
            std::memcpy(&bits, &value.real, 8);
            for (int shift = 56; shift >= 0; shift -= 8) result.bytes += char(bits >> shift);
            break;
        }
        case Kind::Null:
            break;
    }
    if (to.size > 0 && cut) result.bytes.truncate(to.size);
    if (fixed && result.bytes.size() < to.size)
        result.bytes.append(to.size - result.bytes.size(), '\0');
    return result;
}

StoredValue toGuid(const StoredValue& value, const ColumnInfo& to) {
    StoredValue result;
    result.kind = Kind::Text;
    result.type = to;
    if (value.kind == Kind::Blob && value.bytes.size() == 16) {
        const QByteArray& b = value.bytes;
        QByteArray ordered;
        for (const int at : {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15})
            ordered += b[at];
        QByteArray hex = ordered.toHex().toUpper();
        for (const int at : {20, 16, 12, 8}) hex.insert(at, '-');
        result.bytes = hex;
        return result;
    }
    if (value.kind != Kind::Text) cannotConvert(value, to);
    QByteArray text = value.bytes.trimmed().toUpper();
    if (text.startsWith('{') && text.size() >= 38 && text[37] == '}') text = text.mid(1, 36);
    text.truncate(36);
    bool good = text.size() == 36;
    for (qsizetype i = 0; good && i < 36; ++i) {
        const char c = text[i];
        const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
        good = dash ? c == '-' : (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
    }
    if (!good) cannotConvert(value, to);
    result.bytes = text;
    return result;
}

}  // namespace

StoredValue convertStored(const StoredValue& value, const ColumnInfo& type, bool cut,
                          const QString& dateFormat, int style) {
    if (value.isNull()) {
        StoredValue result;
        result.type = type;
        return result;
    }
    switch (type.type) {
        case SqlType::Bit:
        case SqlType::TinyInt:
        case SqlType::SmallInt:
        case SqlType::Int:
        case SqlType::BigInt:
            if (value.kind == Kind::Integer && type.type != SqlType::Bit &&
                inRange(value.integer, type.type)) {
                StoredValue result = value;
                result.type = type;
                return result;
            }
            return toIntegerType(value, type, dateFormat);
        case SqlType::Decimal:
        case SqlType::Numeric:
        case SqlType::Money:
        case SqlType::SmallMoney:
            return toDecimalType(value, type);
        case SqlType::Real:
        case SqlType::Float:
            return toFloatType(value, type);
        case SqlType::Date:
        case SqlType::Time:
        case SqlType::SmallDateTime:
        case SqlType::DateTime:
        case SqlType::DateTime2:
        case SqlType::DateTimeOffset:
            return toDateType(value, type, dateFormat, style);
        case SqlType::Char:
        case SqlType::VarChar:
        case SqlType::Text:
        case SqlType::NChar:
        case SqlType::NVarChar:
        case SqlType::NText:
        case SqlType::Xml:
            return toTextType(value, type, cut, style);
        case SqlType::Binary:
        case SqlType::VarBinary:
        case SqlType::Image:
        case SqlType::RowVersion:
            return toBinaryType(value, type, cut, style);
        case SqlType::UniqueIdentifier:
            return toGuid(value, type);
        case SqlType::Variant:
            break;
    }
    StoredValue result = value;
    if (type.type == SqlType::Variant && isDateTimeType(value.type.type)) result.type = value.type;
    return result;
}

}  // namespace zov::local
