#include "data/odbc/odbc_columns.h"

#include "data/base/field_text.h"
#include "data/odbc/odbc_errors.h"

#include <QDate>
#include <QtEndian>

#include <algorithm>
#include <climits>

namespace zov::odbc {
namespace {

// The longest declared length of SQL Server's char, varchar and binary types; longer ones are
// `max`.
constexpr SQLULEN LongestBound = 8000;
constexpr int DecimalBytes = 48;  // sign, 38 digits, point, leading zero, end mark
constexpr int OffsetBytes = 48;
constexpr int MostPrecision = 38;
constexpr int MostFraction = 7;

[[noreturn]] void refuseCell(const ResultColumn& column, const char* why) {
    throw DbError(
        ado_error::Unspecified,
        QStringLiteral("The server sent a value for column \"%1\" (%2) that %3.")
            .arg(column.info.name, sqlTypeName(column.info.type), QLatin1StringView(why)));
}

QString typeNameOf(SQLHSTMT statement, SQLUSMALLINT number) {
    char16_t name[130] = {};
    SQLSMALLINT bytes = 0;
    if (!SQL_SUCCEEDED(SQLColAttributeW(statement, number, SQL_DESC_TYPE_NAME, name,
                                        sizeof name - 2, &bytes, nullptr)))
        return {};
    return QString::fromUtf16(name).toLower();
}

void fixed(ResultColumn& column, SqlType type, SQLSMALLINT cType, qsizetype bytes) {
    column.info.type = type;
    column.form = CellForm::Fixed;
    column.cType = cType;
    column.cellBytes = bytes;
}

void decimal(ResultColumn& column, SqlType type, int precision, int scale) {
    column.info.type = type;
    column.info.precision = std::clamp(precision, 1, MostPrecision);
    column.info.scale = std::clamp(scale, 0, column.info.precision);
    column.form = CellForm::Decimal;
    column.cType = SQL_C_CHAR;
    column.cellBytes = DecimalBytes;
}

void stamp(ResultColumn& column, SqlType type, int fractionDigits) {
    column.info.type = type;
    column.info.scale = std::clamp(fractionDigits, 0, MostFraction);
    column.form = type == SqlType::Time ? CellForm::TimeOfDay : CellForm::Stamp;
    column.cType = SQL_C_TYPE_TIMESTAMP;
    column.cellBytes = sizeof(SQL_TIMESTAMP_STRUCT);
}

void text(ResultColumn& column, SqlType type, SQLULEN characters) {
    column.info.type = type;
    column.form = CellForm::Text;
    column.cType = SQL_C_WCHAR;
    column.isLong = characters == 0 || characters > LongestBound;
    column.info.size = column.isLong ? -1 : int(characters);
    column.cellBytes = column.isLong ? 0 : qsizetype(characters + 1) * 2;
}

void bytes(ResultColumn& column, SqlType type, SQLULEN length) {
    column.info.type = type;
    column.form = CellForm::Bytes;
    column.cType = SQL_C_BINARY;
    column.isLong = length == 0 || length > LongestBound;
    column.info.size = column.isLong ? -1 : int(length);
    column.cellBytes = column.isLong ? 0 : qsizetype(length);
}

void chooseForm(ResultColumn& column, SQLSMALLINT type, SQLULEN size, int digits,
                const QString& typeName) {
    switch (type) {
        case SQL_BIT:
            return fixed(column, SqlType::Bit, SQL_C_BIT, 1);
        case SQL_TINYINT:
            return fixed(column, SqlType::TinyInt, SQL_C_UTINYINT, 1);
        case SQL_SMALLINT:
            return fixed(column, SqlType::SmallInt, SQL_C_SSHORT, 2);
        case SQL_INTEGER:
            return fixed(column, SqlType::Int, SQL_C_SLONG, 4);
        case SQL_BIGINT:
            return fixed(column, SqlType::BigInt, SQL_C_SBIGINT, 8);
        case SQL_REAL:
            return fixed(column, SqlType::Real, SQL_C_FLOAT, 4);
        case SQL_FLOAT:
        case SQL_DOUBLE:
            return fixed(column, SqlType::Float, SQL_C_DOUBLE, 8);
        case SQL_NUMERIC:
        case SQL_DECIMAL:
            // FreeTDS calls both kinds of money "money"; the smaller has ten digits.
            if (typeName == u"smallmoney" || (typeName == u"money" && size <= 10))
                return decimal(column, SqlType::SmallMoney, 10, 4);
            if (typeName == u"money") return decimal(column, SqlType::Money, 19, 4);
            return decimal(column,
                           typeName.startsWith(u"numeric") ? SqlType::Numeric : SqlType::Decimal,
                           int(std::min<SQLULEN>(size, MostPrecision)), digits);
        case SQL_TYPE_DATE:
        case SQL_DATE:
            return stamp(column, SqlType::Date, 0);
        case TypeTime2:
        case SQL_TYPE_TIME:
            return stamp(column, SqlType::Time, digits);
        case SQL_TYPE_TIMESTAMP:
        case SQL_TIMESTAMP:
            if (typeName == u"datetime2") return stamp(column, SqlType::DateTime2, digits);
            // Sixteen characters have no room for seconds.
            if (typeName == u"smalldatetime" || size <= 16)
                return stamp(column, SqlType::SmallDateTime, 0);
            return stamp(column, SqlType::DateTime, 3);
        case TypeTimestampOffset:
            column.info.type = SqlType::DateTimeOffset;
            column.info.scale = std::clamp(digits, 0, MostFraction);
            column.form = CellForm::StampOffset;
            column.cType = SQL_C_CHAR;
            column.cellBytes = OffsetBytes;
            return;
        case SQL_CHAR:
            return text(column, SqlType::Char, size);
        case SQL_VARCHAR:
            return text(column, SqlType::VarChar, size);
        case SQL_LONGVARCHAR:
            return text(column, SqlType::Text, 0);
        case SQL_WCHAR:
            return text(column, SqlType::NChar, size);
        case SQL_WVARCHAR:
            return text(column, SqlType::NVarChar, size);
        case SQL_WLONGVARCHAR:
            return text(column, SqlType::NText, 0);
        case TypeXml:
            return text(column, SqlType::Xml, 0);
        case TypeVariant:
            return text(column, SqlType::Variant, 0);
        case SQL_BINARY:
            return bytes(column,
                         typeName == u"timestamp" || typeName == u"rowversion" ? SqlType::RowVersion
                                                                               : SqlType::Binary,
                         size);
        case SQL_VARBINARY:
            return bytes(column, SqlType::VarBinary, size);
        case SQL_LONGVARBINARY:
            return bytes(column, SqlType::Image, 0);
        case TypeUdt:
            return bytes(column, SqlType::VarBinary, 0);
        case SQL_GUID:
            column.info.type = SqlType::UniqueIdentifier;
            column.form = CellForm::Guid;
            column.cType = SQL_C_GUID;
            column.cellBytes = 16;
            return;
        default:
            // Whatever a later server invents can be read as text.
            return text(column, SqlType::NVarChar, 0);
    }
}

qint64 ticksOf(const ResultColumn& column, const char* data) {
    SQL_TIMESTAMP_STRUCT value;
    std::memcpy(&value, data, sizeof value);
    if (value.hour > 23 || value.minute > 59 || value.second > 59 ||
        value.fraction >= 1'000'000'000u)
        refuseCell(column, "is no time of day");
    qint64 ticks = (qint64(value.hour) * 3600 + value.minute * 60 + value.second) * TicksPerSecond +
                   value.fraction / 100;
    if (column.form == CellForm::TimeOfDay) return ticks;
    if (value.year < 1 || value.year > 9999 || !QDate::isValid(value.year, value.month, value.day))
        refuseCell(column, "is no date");
    if (column.info.type == SqlType::Date) ticks = 0;
    return ticks + daysFromCivil(value.year, value.month, value.day) * TicksPerDay;
}

/// FreeTDS writes a year below 1000 with as many digits as it has.
QByteArray withFourDigitYear(const char* data, qsizetype length) {
    const QByteArray text(data, length);
    const qsizetype digits = text.indexOf('-');
    return digits > 0 && digits < 4 ? QByteArray(4 - digits, '0') + text : text;
}

qint64 scaledOf(const ResultColumn& column, const char* data, qsizetype length) {
    qint64 value = 0;
    if (!parseScaled(data, length, column.info.scale, value))
        refuseCell(column, "has more digits than the column");
    return value;
}

void appendDecimal(const ResultColumn& column, const char* data, qsizetype length,
                   ColumnCells& to) {
    if (to.storage() == Storage::Scaled64) {
        to.appendInteger(scaledOf(column, data, length));
        return;
    }
    QString canonical;
    if (!canonicalDecimal(data, length, canonical)) refuseCell(column, "is no decimal");
    to.appendText(canonical);
}

void appendGuid(const char* data, ColumnCells& to) {
    // A structure of one 32-bit, two 16-bit and eight 8-bit numbers; printed, all stand big end
    // first.
    char printed[16];
    std::memcpy(printed, data, 16);
    quint32 first;
    quint16 second;
    quint16 third;
    std::memcpy(&first, data, 4);
    std::memcpy(&second, data + 4, 2);
    std::memcpy(&third, data + 6, 2);
    qToBigEndian(first, printed);
    qToBigEndian(second, printed + 4);
    qToBigEndian(third, printed + 6);
    to.appendBytes(printed, 16);
}

}  // namespace

bool parseScaled(const char* text, qsizetype length, int scale, qint64& value) {
    qsizetype at = 0;
    bool negative = false;
    if (at < length && (text[at] == '-' || text[at] == '+')) negative = text[at++] == '-';
    quint64 digits = 0;
    int fraction = -1;  // digits seen behind the point
    bool any = false;
    constexpr quint64 most = quint64(LLONG_MAX);
    for (; at < length; ++at) {
        const char c = text[at];
        if (c == '.' && fraction < 0) {
            fraction = 0;
            continue;
        }
        if (c < '0' || c > '9') return false;
        any = true;
        if (fraction >= scale) {
            if (c != '0') return false;
            continue;
        }
        const auto digit = quint64(c - '0');
        if (digits > (most + (negative ? 1 : 0) - digit) / 10) return false;
        digits = digits * 10 + digit;
        if (fraction >= 0) ++fraction;
    }
    if (!any) return false;
    for (int i = std::max(fraction, 0); i < scale; ++i) {
        if (digits > most / 10) return false;
        digits *= 10;
    }
    value = negative ? qint64(0 - digits) : qint64(digits);
    return true;
}

bool canonicalDecimal(const char* text, qsizetype length, QString& canonical) {
    qsizetype at = 0;
    bool negative = false;
    if (at < length && (text[at] == '-' || text[at] == '+')) negative = text[at++] == '-';
    QByteArrayView whole(text + at, length - at);
    QByteArrayView fraction;
    if (const qsizetype point = whole.indexOf('.'); point >= 0) {
        fraction = whole.sliced(point + 1);
        whole.truncate(point);
    }
    const auto allDigits = [](QByteArrayView view) {
        return std::all_of(view.begin(), view.end(), [](char c) { return c >= '0' && c <= '9'; });
    };
    if (whole.isEmpty() && fraction.isEmpty()) return false;
    if (!allDigits(whole) || !allDigits(fraction)) return false;
    while (whole.startsWith('0')) whole = whole.sliced(1);
    while (fraction.endsWith('0')) fraction.chop(1);
    canonical.clear();
    if (negative && !(whole.isEmpty() && fraction.isEmpty())) canonical += u'-';
    canonical +=
        whole.isEmpty() ? QLatin1StringView("0") : QLatin1StringView(whole.data(), whole.size());
    if (!fraction.isEmpty()) {
        canonical += u'.';
        canonical += QLatin1StringView(fraction.data(), fraction.size());
    }
    return true;
}

ResultColumn describeColumn(SQLHSTMT statement, SQLUSMALLINT number) {
    ResultColumn column;
    char16_t name[1024] = {};
    SQLSMALLINT nameLength = 0;
    SQLSMALLINT type = 0;
    SQLULEN size = 0;
    SQLSMALLINT digits = 0;
    SQLSMALLINT nullable = SQL_NULLABLE_UNKNOWN;
    if (!SQL_SUCCEEDED(SQLDescribeColW(statement, number, reinterpret_cast<SQLWCHAR*>(name),
                                       SQLSMALLINT(std::size(name)), &nameLength, &type, &size,
                                       &digits, &nullable)))
        throw errorFrom(readDiagnostics(SQL_HANDLE_STMT, statement), Phase::Executing);
    column.info.name =
        QString::fromUtf16(name, std::clamp<qsizetype>(nameLength, 0, std::size(name) - 1));
    column.info.nullable = nullable != SQL_NO_NULLS;
    chooseForm(column, type, size, digits, typeNameOf(statement, number));
    return column;
}

void appendCell(const ResultColumn& column, const char* data, qsizetype length, bool isNull,
                ColumnCells& to) {
    if (isNull) {
        to.appendNull();
        return;
    }
    const bool isFixed = column.form == CellForm::Fixed || column.form == CellForm::Stamp ||
                         column.form == CellForm::TimeOfDay || column.form == CellForm::Guid;
    if (isFixed && length < column.cellBytes) refuseCell(column, "is cut off");
    switch (column.form) {
        case CellForm::Text:
            to.appendText(QStringView(reinterpret_cast<const QChar*>(data), length / 2));
            return;
        case CellForm::Bytes:
            to.appendBytes(data, length);
            return;
        case CellForm::Decimal:
            appendDecimal(column, data, length, to);
            return;
        case CellForm::Stamp:
        case CellForm::TimeOfDay:
            to.appendInteger(ticksOf(column, data));
            return;
        case CellForm::Guid:
            appendGuid(data, to);
            return;
        case CellForm::StampOffset: {
            qint64 ticks = 0;
            qint16 offset = 0;
            const QByteArray text = withFourDigitYear(data, length);
            if (!parseIsoTicks(text.constData(), text.size(), ticks, offset))
                refuseCell(column, "is no date, time and offset");
            to.appendTicksOffset(ticks, offset);
            return;
        }
        case CellForm::Fixed:
            to.appendFixedBlock(data, nullptr, 1);
            return;
    }
}

void appendBlock(ResultColumn& column, qsizetype rows, ColumnCells& to) {
    const qsizetype width = column.cellBytes;
    const char* cells = column.cells.data();
    const SQLLEN* lengths = column.lengths.data();
    const bool isText = column.form == CellForm::Text;
    // What a driver reports beyond the room it had was cut off.
    if (isText || column.form == CellForm::Bytes || column.form == CellForm::Decimal ||
        column.form == CellForm::StampOffset) {
        const qsizetype most = column.form == CellForm::Bytes ? width
                               : isText                       ? width - 2
                                                              : width - 1;
        for (qsizetype row = 0; row < rows; ++row)
            if (lengths[row] != SQL_NULL_DATA && (lengths[row] < 0 || lengths[row] > most))
                refuseCell(column, "is longer than the column");
    }
    if (isText) {
        to.appendTextBlock(cells, width, lengths, rows);
        return;
    }
    const bool isScaled = column.form == CellForm::Decimal && to.storage() == Storage::Scaled64;
    const bool isTicks = column.form == CellForm::Stamp || column.form == CellForm::TimeOfDay;
    if (!isScaled && !isTicks && column.form != CellForm::Fixed) {
        for (qsizetype row = 0; row < rows; ++row)
            appendCell(column, cells + row * width, lengths[row], lengths[row] == SQL_NULL_DATA,
                       to);
        return;
    }
    std::vector<quint8> nulls;
    std::vector<qint64> values(isScaled || isTicks ? size_t(rows) : 0);
    for (qsizetype row = 0; row < rows; ++row) {
        char* cell = column.cells.data() + row * width;
        if (lengths[row] == SQL_NULL_DATA) {
            if (nulls.empty()) nulls.resize(size_t(rows));
            nulls[size_t(row)] = 1;
            std::memset(cell, 0, size_t(width));
        } else if (isScaled) {
            values[size_t(row)] = scaledOf(column, cell, lengths[row]);
        } else if (isTicks) {
            values[size_t(row)] = ticksOf(column, cell);
        }
    }
    to.appendFixedBlock(values.empty() ? static_cast<const void*>(cells) : values.data(),
                        nulls.empty() ? nullptr : nulls.data(), rows);
}

}  // namespace zov::odbc
