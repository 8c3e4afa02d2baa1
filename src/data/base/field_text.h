// A cell as text, the way the whole system writes values, and comparing cells.
#pragma once

#include "data/base/row_store.h"

#include <QString>

namespace zov {

/// The value's text, whatever the locale: integers as digits; decimals and money in plain
/// notation without trailing zeros; float and real in the shortest form that reads back; bit
/// "True"/"False"; the datetime family "yyyy-MM-dd HH:mm:ss" with a fraction only when it isn't
/// zero; date and time alone in their own half; datetimeoffset with " +hh:mm" behind; binaries
/// "0x" and upper-case hex; unique identifiers upper-case in braces; texts as they are.
/// A null gives the empty text.
QString cellText(const CellView& cell);
void appendCellText(const CellView& cell, QString& to);

/// The same with "Null" for a null: the one text under which a value of a user's table is compared,
/// sought and shown.
QString FieldText(const CellView& cell);
void appendFieldText(const CellView& cell, QString& to);

/// Two cells by value: numbers across widths and scales, texts to the letter or ignoring case.
/// Cells of kinds that have no common order are compared by their texts. Nulls sort first and are
/// equal to each other.
int compareCells(const CellView& a, const CellView& b,
                 Qt::CaseSensitivity texts = Qt::CaseSensitive);
inline bool equalCells(const CellView& a, const CellView& b,
                       Qt::CaseSensitivity texts = Qt::CaseSensitive) {
    return compareCells(a, b, texts) == 0;
}

inline constexpr qint64 TicksPerSecond = 10'000'000;
inline constexpr qint64 TicksPerDay = 86'400 * TicksPerSecond;

/// Days since 0001-01-01 of a Gregorian date (0 for that day itself).
qint64 daysFromCivil(int year, int month, int day);
void civilFromDays(qint64 days, int& year, int& month, int& day);

/// "yyyy-MM-dd[ |T]HH:mm:ss[.fffffff][ +hh:mm]", "yyyy-MM-dd" or "HH:mm:ss[.f]" to ticks, read from
/// `length` ASCII characters. False when the text is anything else.
bool parseIsoTicks(const char* text, qsizetype length, qint64& ticks, qint16& offsetMinutes);

}  // namespace zov
