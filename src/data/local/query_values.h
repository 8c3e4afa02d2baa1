// Values outside of SQLite: reading the dates and numbers that people type, and
// turning one type's stored form into another's, as SQL Server's CAST does.
#pragma once

#include "data/local/query_engine.h"
#include "data/local/query_types.h"

namespace zov::local {

namespace ado_number {
inline constexpr qint32 CannotConvert = qint32(0x80040E07);
inline constexpr qint32 Overflow = qint32(0x80040E57);
}  // namespace ado_number

/// Throws a DbError with SQL Server's message number.
[[noreturn]] void failWith(qint32 native, const QString& text,
                           qint32 number = ado_error::SyntaxError,
                           const QString& sqlState = QStringLiteral("42000"));

/// A date as people write it: ISO forms, yyyymmdd, three numbers in the order of `dateFormat`
/// ("mdy", "dmy", "ymd"), month names, times with AM/PM, an offset. The empty text is 1900-01-01.
/// Ticks as in field_text.h. False when it can't be read.
bool parseDateText(QStringView text, const QString& dateFormat, qint64& ticks,
                   qint16& offsetMinutes);
/// The stored form of a moment in a type of the date family; rounds as the type does.
QByteArray formatTicks(qint64 ticks, qint16 offsetMinutes, const ColumnInfo& type);
/// A moment as CONVERT writes it in one of its styles; `type` decides the default one (style 0).
QString dateToText(qint64 ticks, qint16 offsetMinutes, const ColumnInfo& type, int style);

/// A decimal number digit by digit: the value is digits / 10^scale.
struct DecimalText {
    bool negative = false;
    QByteArray digits;  ///< without leading zeros; empty for zero
    int scale = 0;

    static bool parse(QByteArrayView text, DecimalText& result);  ///< "-12.50", "1e3"
    static DecimalText ofValue(const StoredValue& value);
    /// Rounds half away from zero, or fills up with zeros.
    void rescale(int newScale);
    QByteArray plain() const;      ///< with all its digits behind the point
    QByteArray canonical() const;  ///< without trailing zeros behind the point
    StoredValue stored(const ColumnInfo& type) const;
};

/// The moment in the bytes of a type of the date family, and the number in those of a decimal or a
/// money (query_binary_values.cpp). Throw DbError 210 and 8114 for bytes that hold none.
qint64 ticksOfBytes(const QByteArray& bytes, const ColumnInfo& to, qint16& offset);
DecimalText decimalOfBytes(const QByteArray& bytes, const ColumnInfo& to);

/// A value's text as `style` of CONVERT writes it (0 the default); empty for a null.
QString valueText(const StoredValue& value, int style = 0);

/// See convertValue of query_engine.h; `style` as CONVERT's third argument.
StoredValue convertStored(const StoredValue& value, const ColumnInfo& type, bool cut,
                          const QString& dateFormat, int style = 0);

/// The value of a literal token (String, Number, Binary).
StoredValue literalValue(const Token& token);

}  // namespace zov::local
