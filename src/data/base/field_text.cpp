#include "data/base/field_text.h"

#include <charconv>
#include <cmath>

namespace zov {
namespace {

constexpr qint64 powersOfTen[] = {1LL,
                                  10LL,
                                  100LL,
                                  1'000LL,
                                  10'000LL,
                                  100'000LL,
                                  1'000'000LL,
                                  10'000'000LL,
                                  100'000'000LL,
                                  1'000'000'000LL,
                                  10'000'000'000LL,
                                  100'000'000'000LL,
                                  1'000'000'000'000LL,
                                  10'000'000'000'000LL,
                                  100'000'000'000'000LL,
                                  1'000'000'000'000'000LL,
                                  10'000'000'000'000'000LL,
                                  100'000'000'000'000'000LL,
                                  1'000'000'000'000'000'000LL};

template <typename Number>
void appendPadded(QString& to, Number value, int width) {
    char digits[24];
    char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    for (int i = int(end - digits); i < width; ++i) to += u'0';
    to += QLatin1StringView(digits, end - digits);
}

void appendScaled(QString& to, qint64 value, int scale) {
    if (value < 0) to += u'-';
    const quint64 magnitude = value < 0 ? 0 - quint64(value) : quint64(value);
    const quint64 unit = quint64(powersOfTen[scale]);
    appendPadded(to, magnitude / unit, 1);  // of the least number more than a qint64 holds
    quint64 fraction = magnitude % unit;
    if (!fraction) return;
    while (fraction % 10 == 0) {
        fraction /= 10;
        --scale;
    }
    to += u'.';
    appendPadded(to, qint64(fraction), scale);
}

// "1200.500" -> "1200.5", "3.00" -> "3", "-0.0" -> "0".
void appendDecimalText(QString& to, QStringView digits) {
    if (digits.contains(u'.')) {
        while (digits.endsWith(u'0')) digits.chop(1);
        if (digits.endsWith(u'.')) digits.chop(1);
    }
    if (digits.startsWith(u'.')) to += u'0';
    if (digits.startsWith(u"-.")) {
        to += u"-0";
        digits = digits.mid(1);
    }
    to += digits == u"-0" ? digits.mid(1) : digits;
}

template <typename Real>
void appendReal(QString& to, Real value) {
    char digits[64];
    char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    to += QLatin1StringView(digits, end - digits);
}

void appendDate(QString& to, qint64 days) {
    int year, month, day;
    civilFromDays(days, year, month, day);
    appendPadded(to, year, 4);
    to += u'-';
    appendPadded(to, month, 2);
    to += u'-';
    appendPadded(to, day, 2);
}

void appendTime(QString& to, qint64 ticksOfDay) {
    const qint64 seconds = ticksOfDay / TicksPerSecond;
    appendPadded(to, seconds / 3600, 2);
    to += u':';
    appendPadded(to, seconds / 60 % 60, 2);
    to += u':';
    appendPadded(to, seconds % 60, 2);
    qint64 fraction = ticksOfDay % TicksPerSecond;
    if (!fraction) return;
    int width = 7;
    while (fraction % 10 == 0) {
        fraction /= 10;
        --width;
    }
    to += u'.';
    appendPadded(to, fraction, width);
}

void appendTicks(QString& to, qint64 ticks, SqlType type) {
    qint64 days = ticks / TicksPerDay;
    qint64 time = ticks % TicksPerDay;
    if (time < 0) {
        time += TicksPerDay;
        --days;
    }
    if (type != SqlType::Time) appendDate(to, days);
    if (type == SqlType::Date) return;
    if (type != SqlType::Time) to += u' ';
    appendTime(to, time);
}

void appendHex(QString& to, QByteArrayView bytes) {
    static const char digits[] = "0123456789ABCDEF";
    to += u"0x";
    for (const char byte : bytes) {
        to += QLatin1Char(digits[quint8(byte) >> 4]);
        to += QLatin1Char(digits[quint8(byte) & 15]);
    }
}

void appendGuid(QString& to, QByteArrayView bytes) {
    QString hex;
    appendHex(hex, bytes);
    to += u'{';
    to += QStringView(hex).mid(2, 8);
    for (const int group : {10, 14, 18}) {
        to += u'-';
        to += QStringView(hex).mid(group, 4);
    }
    to += u'-';
    to += QStringView(hex).mid(22);
    to += u'}';
}

enum class Kind { Integer, Scaled, Real, Ticks, Other };

Kind kindOf(const CellView& cell) {
    switch (cell.storage) {
        case Storage::Int8:
        case Storage::Int16:
        case Storage::Int32:
        case Storage::Int64:
            return Kind::Integer;
        case Storage::Scaled64:
            return Kind::Scaled;
        case Storage::Float32:
        case Storage::Float64:
            return Kind::Real;
        case Storage::Ticks:
        case Storage::TicksOffset:
            return Kind::Ticks;
        default:
            return Kind::Other;
    }
}

bool isNumber(Kind kind) {
    return kind <= Kind::Real;
}

double asReal(const CellView& cell, Kind kind) {
    if (kind == Kind::Real) return cell.real;
    if (kind == Kind::Integer) return double(cell.integer);
    return double(cell.integer) / double(powersOfTen[cell.column->scale]);
}

template <typename T>
int order(T a, T b) {
    return a < b ? -1 : b < a ? 1 : 0;
}

// Scaled integers of different scales meet in 128 bits.
int compareExact(const CellView& a, Kind ka, const CellView& b, Kind kb) {
    const int scaleA = ka == Kind::Scaled ? a.column->scale : 0;
    const int scaleB = kb == Kind::Scaled ? b.column->scale : 0;
    if (scaleA == scaleB) return order(a.integer, b.integer);
    __extension__ typedef __int128 Wide;
    const int common = std::max(scaleA, scaleB);
    return order(Wide(a.integer) * powersOfTen[common - scaleA],
                 Wide(b.integer) * powersOfTen[common - scaleB]);
}

qint64 utcTicks(const CellView& cell) {
    return cell.integer - qint64(cell.offsetMinutes) * 60 * TicksPerSecond;
}

}  // namespace

qint64 daysFromCivil(int year, int month, int day) {
    // Howard Hinnant's days_from_civil, shifted from 1970-01-01 to 0001-01-01.
    year -= month <= 2;
    const int era = (year >= 0 ? year : year - 399) / 400;
    const int yearOfEra = year - era * 400;
    const int dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const int dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return qint64(era) * 146097 + dayOfEra - 306;
}

void civilFromDays(qint64 days, int& year, int& month, int& day) {
    days += 306;
    const qint64 era = (days >= 0 ? days : days - 146096) / 146097;
    const qint64 dayOfEra = days - era * 146097;
    const qint64 yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const qint64 dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const qint64 shifted = (5 * dayOfYear + 2) / 153;
    day = int(dayOfYear - (153 * shifted + 2) / 5 + 1);
    month = int(shifted < 10 ? shifted + 3 : shifted - 9);
    year = int(yearOfEra + era * 400 + (month <= 2));
}

bool parseIsoTicks(const char* text, qsizetype length, qint64& ticks, qint16& offsetMinutes) {
    const auto two = [text](qsizetype at) {
        const unsigned a = unsigned(text[at] - '0'), b = unsigned(text[at + 1] - '0');
        return a < 10 && b < 10 ? int(a * 10 + b) : -1;
    };
    offsetMinutes = 0;
    qint64 total = 0;
    qsizetype at = 0;
    if (length >= 10 && text[4] == '-') {
        const int high = two(0), low = two(2), month = two(5), day = two(8);
        static const int lengths[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        if (high < 0 || low < 0 || text[7] != '-' || month < 1 || month > 12 || day < 1 ||
            day > lengths[month - 1])
            return false;
        const int year = high * 100 + low;
        const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
        if (year < 1 || (month == 2 && day == 29 && !leap)) return false;
        total = daysFromCivil(year, month, day) * TicksPerDay;
        if (length == 10) {
            ticks = total;
            return true;
        }
        if (text[10] != ' ' && text[10] != 'T') return false;
        at = 11;
    }
    if (length < at + 8 || text[at + 2] != ':' || text[at + 5] != ':') return false;
    const int hour = two(at), minute = two(at + 3), second = two(at + 6);
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59)
        return false;
    total += ((hour * 60 + minute) * 60 + second) * TicksPerSecond;
    at += 8;
    if (at < length && text[at] == '.') {
        qint64 unit = TicksPerSecond / 10;
        for (++at; at < length && text[at] >= '0' && text[at] <= '9'; ++at) {
            total += (text[at] - '0') * unit;
            unit /= 10;
        }
    }
    if (at < length) {
        if (length != at + 7 || text[at] != ' ' || (text[at + 1] != '+' && text[at + 1] != '-') ||
            text[at + 4] != ':')
            return false;
        const int hours = two(at + 2), minutes = two(at + 5);
        if (hours < 0 || hours > 14 || minutes < 0 || minutes > 59) return false;
        offsetMinutes = qint16((hours * 60 + minutes) * (text[at + 1] == '-' ? -1 : 1));
    }
    ticks = total;
    return true;
}

void appendCellText(const CellView& cell, QString& to) {
    if (cell.isNull) return;
    switch (cell.storage) {
        case Storage::Int8:
            if (cell.column->type == SqlType::Bit) {
                to += cell.integer ? QLatin1StringView("True") : QLatin1StringView("False");
                return;
            }
            [[fallthrough]];
        case Storage::Int16:
        case Storage::Int32:
        case Storage::Int64:
            return appendPadded(to, cell.integer, 1);
        case Storage::Scaled64:
            return appendScaled(to, cell.integer, cell.column->scale);
        case Storage::Float32:
            return appendReal(to, float(cell.real));
        case Storage::Float64:
            return appendReal(to, cell.real);
        case Storage::Ticks:
            return appendTicks(to, cell.integer, cell.column->type);
        case Storage::TicksOffset: {
            appendTicks(to, cell.integer, cell.column->type);
            const int minutes = std::abs(int(cell.offsetMinutes));
            to += cell.offsetMinutes < 0 ? u" -" : u" +";
            appendPadded(to, minutes / 60, 2);
            to += u':';
            return appendPadded(to, minutes % 60, 2);
        }
        case Storage::Guid:
            return appendGuid(to, cell.bytes);
        case Storage::Bytes:
            return appendHex(to, cell.bytes);
        case Storage::Text:
            if (isNumericType(cell.column->type)) return appendDecimalText(to, cell.text);
            to += cell.text;
    }
}

QString cellText(const CellView& cell) {
    QString text;
    appendCellText(cell, text);
    return text;
}

void appendFieldText(const CellView& cell, QString& to) {
    if (cell.isNull)
        to += u"Null";
    else
        appendCellText(cell, to);
}

QString FieldText(const CellView& cell) {
    QString text;
    appendFieldText(cell, text);
    return text;
}

int compareCells(const CellView& a, const CellView& b, Qt::CaseSensitivity texts) {
    if (a.isNull || b.isNull) return order(!a.isNull, !b.isNull);
    const Kind ka = kindOf(a), kb = kindOf(b);
    if (isNumber(ka) && isNumber(kb)) {
        if (ka == Kind::Real || kb == Kind::Real) return order(asReal(a, ka), asReal(b, kb));
        return compareExact(a, ka, b, kb);
    }
    if (ka == Kind::Ticks && kb == Kind::Ticks) return order(utcTicks(a), utcTicks(b));
    if (a.storage == Storage::Text && b.storage == Storage::Text &&
        !isNumericType(a.column->type) && !isNumericType(b.column->type))
        return a.text.compare(b.text, texts);
    if ((a.storage == Storage::Bytes || a.storage == Storage::Guid) && a.storage == b.storage)
        return a.bytes.compare(b.bytes);
    return cellText(a).compare(cellText(b), texts);
}

}  // namespace zov
