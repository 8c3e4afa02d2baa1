// RPC messages. The types are those that clients send as parameters.
#include "support/tds_endpoint/tds_rpc.h"

#include "data/base/field_text.h"
#include "support/tds_endpoint/code_page_1252.h"
#include "support/tds_endpoint/tds_rows.h"
#include "support/tds_endpoint/tds_tokens.h"

#include <QDateTime>

#include <span>

namespace zov::tds {
namespace {

constexpr quint8 ReturnValueToken = 0xAC;
constexpr quint8 BatchSeparator = 0xFF;
constexpr quint8 OldBatchSeparator = 0x80;
constexpr quint16 NumberedProcedure = 0xFFFF;
constexpr quint8 OutputFlag = 1;
constexpr quint16 LongLength = 0xFFFF;
constexpr quint64 NullPlp = ~quint64(0);
constexpr int AdoInteger = 3, AdoDouble = 5, AdoDate = 7, AdoBoolean = 11, AdoText = 202;

const char* const knownNames[] = {"",
                                  "sp_cursor",
                                  "sp_cursoropen",
                                  "sp_cursorprepare",
                                  "sp_cursorexecute",
                                  "sp_cursorprepexec",
                                  "sp_cursorunprepare",
                                  "sp_cursorfetch",
                                  "sp_cursoroption",
                                  "sp_cursorclose",
                                  "sp_executesql",
                                  "sp_prepare",
                                  "sp_execute",
                                  "sp_prepexec",
                                  "sp_prepexecrpc",
                                  "sp_unprepare"};

QString dateText(qint64 ticks, int fractionDigits) {
    int year = 0, month = 0, day = 0;
    civilFromDays(ticks / TicksPerDay, year, month, day);
    const qint64 time = ticks % TicksPerDay;
    const qint64 seconds = time / TicksPerSecond;
    QString text =
        QString::asprintf("%04d-%02d-%02d %02d:%02d:%02d", year, month, day, int(seconds / 3600),
                          int(seconds / 60 % 60), int(seconds % 60));
    if (fractionDigits)
        text += QString::asprintf(".%07d", int(time % TicksPerSecond)).left(fractionDigits + 1);
    // More than a datetime's three digits only where they say something.
    while (fractionDigits-- > 3 && text.endsWith(u'0')) text.chop(1);
    return text;
}

qint64 readUnsigned(ByteReader& at, int bytes) {
    quint64 value = 0;
    if (bytes < 0 || bytes > 8) throw Malformed("number too wide");
    std::memcpy(&value, at.take(bytes), size_t(bytes));
    return qint64(value);
}

/// Ticks of a day and a time, refused outside of the years 1 to 9999.
qint64 ticksOf(qint64 days, qint64 timeOfDay) {
    constexpr qint64 daysOfAllYears = 3'652'059;
    if (days < 0 || days >= daysOfAllYears || timeOfDay < 0 || timeOfDay >= TicksPerDay)
        throw Malformed("date or time out of range");
    return days * TicksPerDay + timeOfDay;
}

qint64 readSigned(ByteReader& at, int bytes) {
    switch (bytes) {
        case 1:
            return at.get<quint8>();
        case 2:
            return at.get<qint16>();
        case 4:
            return at.get<qint32>();
        case 8:
            return at.get<qint64>();
    }
    throw Malformed("integer of an impossible width");
}

QString decimalText(ByteReader& at, int length, int scale) {
    const bool positive = at.get<quint8>() != 0;
    unsigned __int128 magnitude = 0;
    if (length < 2 || length > 17) throw Malformed("decimal of an impossible width");
    std::memcpy(&magnitude, at.take(length - 1), size_t(length - 1));
    QString digits;
    for (int i = 0; magnitude || i <= scale; ++i) {
        if (i == scale && i > 0) digits.prepend(u'.');
        digits.prepend(QChar(u'0' + int(magnitude % 10)));
        magnitude /= 10;
    }
    return positive ? digits : u'-' + digits;
}

QString moneyText(qint64 units) {
    const quint64 magnitude = units < 0 ? 0 - quint64(units) : quint64(units);
    return QStringLiteral("%1%2.%3")
        .arg(units < 0 ? QStringLiteral("-") : QString())
        .arg(magnitude / 10'000)
        .arg(magnitude % 10'000, 4, 10, QLatin1Char('0'));
}

QString guidText(const QByteArray& wire) {
    static constexpr int order[] = {3,  2, 1, 0,  -1, 5,  4,  -1, 7,  6,
                                    -1, 8, 9, -1, 10, 11, 12, 13, 14, 15};
    QString text;
    for (const int i : order)
        text += i < 0 ? QStringLiteral("-") : QString::asprintf("%02X", quint8(wire[i]));
    return text;
}

/// Bytes of a value of the long kind: a total, then chunks up to an empty one.
bool readPlp(ByteReader& at, QByteArray& bytes) {
    if (at.get<quint64>() == NullPlp) return false;
    while (const auto chunk = at.get<quint32>()) bytes.append(at.take(chunk), chunk);
    return true;
}

QVariant textOrBytes(quint8 type, const QByteArray& bytes) {
    switch (type) {
        case WireNVarChar:
        case WireNChar:
        case WireNText:
        case WireXml:
            return ByteReader(bytes).utf16(bytes.size() / 2);
        case WireVarChar:
        case WireChar:
        case WireText:
            return fromCodePage1252(bytes);
        default:
            return bytes;
    }
}

void readDateTimeValue(RpcParameter& parameter, ByteReader& at, int length, int scale) {
    static constexpr qint64 unitOf[] = {10'000'000, 1'000'000, 100'000, 10'000, 1'000, 100, 10, 1};
    const bool hasDate = parameter.wireType != WireTime;
    const bool hasOffset = parameter.wireType == WireDateTimeOffset;
    const int timeBytes = length - (hasDate ? 3 : 0) - (hasOffset ? 2 : 0);
    if (scale > 7) throw Malformed("time with too many digits");
    if (timeBytes > 5) throw Malformed("time of an impossible width");
    const qint64 units = timeBytes > 0 ? readUnsigned(at, timeBytes) : 0;
    if (units > TicksPerDay / unitOf[scale]) throw Malformed("time out of range");
    const qint64 ticks = ticksOf(hasDate ? readUnsigned(at, 3) : 0, units * unitOf[scale]);
    const qint16 offset = hasOffset ? at.get<qint16>() : qint16(0);
    QString text = dateText(ticks + offset * 60 * TicksPerSecond, scale);
    if (parameter.wireType == WireTime) text = text.mid(11);
    if (parameter.wireType == WireDate) text.truncate(10);
    if (hasOffset)
        text += QString::asprintf("%c%02d:%02d", offset < 0 ? '-' : '+', std::abs(offset) / 60,
                                  std::abs(offset) % 60);
    parameter.value = text;
}

/// A value of the types that have a length byte, or of the fixed ones.
void readShortValue(RpcParameter& parameter, ByteReader& at, int length, int scale) {
    switch (parameter.wireType) {
        case WireIntN:
            parameter.value = readSigned(at, length);
            return;
        case WireBitN:
            parameter.value = at.get<quint8>() != 0;
            return;
        case WireFloatN:
            parameter.value = length == 4 ? double(at.get<float>()) : at.get<double>();
            return;
        case WireMoneyN: {
            const qint64 high = at.get<qint32>();
            parameter.value =
                moneyText(length == 4 ? high : high * (1LL << 32) + at.get<quint32>());
            return;
        }
        case WireDateTimeN: {
            const qint64 epoch = daysFromCivil(1900, 1, 1);
            if (length == 4) {
                const qint64 days = at.get<quint16>();
                parameter.value =
                    dateText(ticksOf(days + epoch, at.get<quint16>() * 60 * TicksPerSecond), 0);
            } else {
                const qint64 days = at.get<qint32>();
                const qint64 milliseconds = (qint64(at.get<quint32>()) * 10 + 1) / 3;
                parameter.value = dateText(ticksOf(days + epoch, milliseconds * 10'000), 3);
            }
            return;
        }
        case WireDecimalN:
        case WireNumericN:
            parameter.value = decimalText(at, length, scale);
            return;
        case WireGuid:
            if (length != 16) throw Malformed("unique identifier of an impossible width");
            parameter.value = guidText(at.bytes(16));
            return;
        case WireDate:
        case WireTime:
        case WireDateTime2:
        case WireDateTimeOffset:
            readDateTimeValue(parameter, at, length, scale);
            return;
        default:
            throw Malformed("parameter of an unknown type");
    }
}

int adoTypeOfWire(quint8 type) {
    switch (type) {
        case WireIntN:
        case WireInt1:
        case WireInt2:
        case WireInt4:
        case WireInt8:
            return AdoInteger;
        case WireBitN:
        case WireBit:
            return AdoBoolean;
        case WireFloatN:
        case WireFloat:
        case WireReal:
        case WireDecimalN:
        case WireNumericN:
        case WireMoneyN:
            return AdoDouble;
        case WireDateTimeN:
        case WireDateTime:
        case WireDateTime2:
        case WireDate:
            return AdoDate;
        default:
            return AdoText;
    }
}

void readValue(RpcParameter& parameter, ByteReader& at) {
    parameter.wireType = at.get<quint8>();
    parameter.adoType = adoTypeOfWire(parameter.wireType);
    switch (parameter.wireType) {
        case WireNVarChar:
        case WireNChar:
        case WireVarChar:
        case WireChar:
        case WireVarBinary:
        case WireBinary: {
            const bool isText =
                parameter.wireType != WireVarBinary && parameter.wireType != WireBinary;
            const auto largest = at.get<quint16>();
            if (isText) at.take(sizeof Collation);
            QByteArray bytes;
            if (largest == LongLength) {
                if (!readPlp(at, bytes)) return;
            } else {
                const auto length = at.get<quint16>();
                if (length == LongLength) return;
                bytes = at.bytes(length);
            }
            parameter.value = textOrBytes(parameter.wireType, bytes);
            return;
        }
        case WireText:
        case WireNText:
        case WireImage: {
            at.get<quint32>();
            if (parameter.wireType != WireImage) at.take(sizeof Collation);
            const auto length = at.get<qint32>();
            if (length < 0) return;
            parameter.value = textOrBytes(parameter.wireType, at.bytes(length));
            return;
        }
        case WireXml: {
            if (at.get<quint8>()) throw Malformed("xml parameter with a schema");
            QByteArray bytes;
            if (readPlp(at, bytes)) parameter.value = textOrBytes(WireXml, bytes);
            return;
        }
        case WireInt1:
            parameter.value = readSigned(at, 1);
            return;
        case WireInt2:
            parameter.value = readSigned(at, 2);
            return;
        case WireInt4:
            parameter.value = readSigned(at, 4);
            return;
        case WireInt8:
            parameter.value = readSigned(at, 8);
            return;
        case WireBit:
            parameter.value = at.get<quint8>() != 0;
            return;
        case WireReal:
            parameter.value = double(at.get<float>());
            return;
        case WireFloat:
            parameter.value = at.get<double>();
            return;
        default:
            break;
    }
    int scale = 0;
    switch (parameter.wireType) {
        case WireDate:
            break;
        case WireTime:
        case WireDateTime2:
        case WireDateTimeOffset:
            scale = at.get<quint8>();
            break;
        case WireDecimalN:
        case WireNumericN:
            at.take(2);
            scale = at.get<quint8>();
            break;
        default:
            at.get<quint8>();
            break;
    }
    const int length = at.get<quint8>();
    if (length) readShortValue(parameter, at, length, scale);
}

bool isNamePart(QChar c) {
    return c.isLetterOrNumber() || c == u'_' || c == u'@' || c == u'#' || c == u'$';
}

}  // namespace

std::vector<RpcCall> readRpcCalls(ByteReader& message) {
    std::vector<RpcCall> calls;
    while (!message.atEnd()) {
        RpcCall call;
        const auto length = message.get<quint16>();
        if (length == NumberedProcedure) {
            const auto number = message.get<quint16>();
            if (number == 0 || number >= std::size(knownNames))
                throw Malformed("call of an unknown procedure number");
            call.known = KnownProcedure(number);
            call.procedure = QLatin1String(knownNames[number]);
        } else {
            call.procedure = message.utf16(length);
            for (size_t i = 1; i < std::size(knownNames); ++i)
                if (!call.procedure.compare(QLatin1String(knownNames[i]), Qt::CaseInsensitive))
                    call.known = KnownProcedure(i);
        }
        message.get<quint16>();  // options: recompile, no metadata
        while (!message.atEnd() && message.peek() != BatchSeparator &&
               message.peek() != OldBatchSeparator) {
            RpcParameter parameter;
            const auto nameLength = message.get<quint8>();
            parameter.name = message.utf16(nameLength);
            parameter.isOutput = message.get<quint8>() & OutputFlag;
            readValue(parameter, message);
            call.parameters.push_back(std::move(parameter));
        }
        if (!message.atEnd()) message.get<quint8>();
        calls.push_back(std::move(call));
    }
    return calls;
}

QString RpcParameter::literal() const {
    if (!value.isValid()) return QStringLiteral("NULL");
    switch (value.typeId()) {
        case QMetaType::Bool:
            return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
        case QMetaType::LongLong:
            return QString::number(value.toLongLong());
        case QMetaType::Double:
            return QString::number(value.toDouble(), 'e', 16);
        case QMetaType::QByteArray:
            return QStringLiteral("0x") +
                   QString::fromLatin1(value.toByteArray().toHex().toUpper());
        default:
            break;
    }
    if (adoType == AdoDouble) return text();
    return QStringLiteral("N'") + text().replace(u'\'', QStringLiteral("''")) + u'\'';
}

CommandParameter RpcParameter::command() const {
    CommandParameter parameter;
    parameter.name = name;
    parameter.type = adoType;
    parameter.direction = isOutput ? 3 : 1;
    parameter.value = value;
    if (adoType == AdoDouble && value.isValid()) parameter.value = value.toDouble();
    if (adoType == AdoDate && value.isValid())
        parameter.value = QDateTime::fromString(text().replace(u' ', u'T'), Qt::ISODateWithMs);
    if (adoType == AdoInteger && value.isValid() && value.toLongLong() == number())
        parameter.value = number();
    return parameter;
}

QStringList declaredNames(const QString& declarations) {
    QStringList names;
    for (qsizetype at = declarations.indexOf(u'@'); at >= 0; at = declarations.indexOf(u'@', at)) {
        const qsizetype start = at++;
        while (at < declarations.size() && isNamePart(declarations[at])) ++at;
        names.append(declarations.mid(start, at - start));
    }
    return names;
}

QString withLiterals(const QString& statement, const QStringList& names,
                     std::span<const RpcParameter> values) {
    QString result;
    qsizetype at = 0;
    const auto copyTo = [&](qsizetype end) {
        end = end < 0 ? statement.size() : std::min(end, statement.size());
        result += QStringView(statement).mid(at, end - at);
        at = end;
    };
    const auto behind = [&](QStringView mark, qsizetype from) {
        const qsizetype found = statement.indexOf(mark, from);
        return found < 0 ? -1 : found + mark.size();
    };
    while (at < statement.size()) {
        const QChar c = statement[at];
        const QStringView rest = QStringView(statement).mid(at);
        // A doubled quote ends one stretch and begins the next, which is just as well.
        if (c == u'\'' || c == u'"') {
            copyTo(behind(QStringView(&c, 1), at + 1));
        } else if (c == u'[') {
            copyTo(behind(u"]", at + 1));
        } else if (rest.startsWith(u"--")) {
            copyTo(behind(u"\n", at));
        } else if (rest.startsWith(u"/*")) {
            copyTo(behind(u"*/", at + 2));
        } else if (isNamePart(c)) {
            qsizetype end = at + 1;
            while (end < statement.size() && isNamePart(statement[end])) ++end;
            const QStringView name = QStringView(statement).mid(at, end - at);
            qsizetype index = 0;
            while (index < names.size() && name.compare(names[index], Qt::CaseInsensitive)) ++index;
            if (index < std::min(names.size(), qsizetype(values.size()))) {
                result += values[size_t(index)].literal();
                at = end;
            } else {
                copyTo(end);
            }
        } else {
            copyTo(at + 1);
        }
    }
    return result;
}

void putReturnValue(ByteBuffer& out, int ordinal, const RpcParameter& parameter,
                    const QVariant& value) {
    // A row of one column has the same layout: type, then cell.
    ColumnInfo column;
    column.name = parameter.name;
    switch (parameter.adoType) {
        case AdoInteger:
            column.type = SqlType::BigInt;
            break;
        case AdoDouble:
            column.type = SqlType::Float;
            break;
        case AdoBoolean:
            column.type = SqlType::Bit;
            break;
        case AdoDate:
            column.type = SqlType::DateTime;
            break;
        default:
            column.type = SqlType::NVarChar;
            column.size = value.toString().size() > 4000 ? -1 : 4000;
    }
    const bool fits32 = value.toLongLong() == qint32(value.toLongLong());
    if (parameter.adoType == AdoInteger && fits32) column.type = SqlType::Int;
    RowStore cell({column});
    ColumnCells& cells = cell.column(0);
    qint64 ticks = 0;
    qint16 offset = 0;
    if (!value.isValid() || value.isNull()) {
        cells.appendNull();
    } else if (parameter.adoType == AdoInteger || parameter.adoType == AdoBoolean) {
        cells.appendInteger(value.toLongLong());
    } else if (parameter.adoType == AdoDouble) {
        cells.appendReal(value.toDouble());
    } else if (parameter.adoType == AdoDate) {
        const QByteArray text =
            value.toDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz")).toLatin1();
        if (parseIsoTicks(text.constData(), text.size(), ticks, offset))
            cells.appendInteger(ticks);
        else
            cells.appendNull();
    } else {
        cells.appendText(value.toString());
    }

    out.u8(ReturnValueToken);
    out.u16(quint16(ordinal));
    out.byteText(parameter.name);
    out.u8(1);  // an output parameter
    out.u32(0);
    out.u16(1);  // may be null
    putTypeInfo(columnForm(column), out);
    RowEncoder({column}).putCellOnly(cell, out);
}

}  // namespace zov::tds
