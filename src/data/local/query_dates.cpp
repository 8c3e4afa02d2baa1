// Dates as text: what people type, the stored form, and the styles of CONVERT.
#include "data/base/field_text.h"
#include "data/local/query_values.h"

#include <array>

namespace zov::local {
namespace {

const char* const monthNames[] = {"january",   "february", "march",    "april",
                                  "may",       "june",     "july",     "august",
                                  "september", "october",  "november", "december"};

int monthByName(QStringView word) {
    if (word.size() < 3) return 0;
    for (int i = 0; i < 12; ++i) {
        const QLatin1String name(monthNames[i]);
        if (word.size() <= name.size() &&
            name.left(word.size()).compare(word, Qt::CaseInsensitive) == 0 &&
            (word.size() == 3 || word.size() == name.size()))
            return i + 1;
    }
    return 0;
}

int fullYear(int year, qsizetype digits) {
    if (digits > 2) return year;
    return year < 50 ? 2000 + year : 1900 + year;
}

bool validDate(int year, int month, int day) {
    static const int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1) return false;
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return day <= lengths[month - 1] + (month == 2 && leap ? 1 : 0);
}

class DateReader {
 public:
    DateReader(QStringView text, const QString& order) : text_(text), order_(order) {}

    bool read(qint64& ticks, qint16& offset) {
        skipBlanks();
        qint64 days = daysFromCivil(1900, 1, 1);
        qint64 time = 0;
        offset = 0;
        bool dateSeen = false, timeSeen = false;
        while (at_ < text_.size()) {
            if (!timeSeen && looksLikeTime()) {
                if (!readTime(time)) return false;
                timeSeen = true;
            } else if (timeSeen && (text_[at_] == u'+' || text_[at_] == u'-' ||
                                    text_[at_] == u'Z' || text_[at_] == u'z')) {
                if (!readOffset(offset)) return false;
            } else if (!dateSeen) {
                if (!readDate(days)) return false;
                dateSeen = true;
                if (at_ < text_.size() && (text_[at_] == u'T' || text_[at_] == u't')) ++at_;
            } else {
                return false;
            }
            skipBlanks();
        }
        ticks = days * TicksPerDay + time;
        return true;
    }

 private:
    void skipBlanks() {
        while (at_ < text_.size() && text_[at_].isSpace()) ++at_;
    }
    bool digitAt(qsizetype at) const {
        return at < text_.size() && text_[at] >= u'0' && text_[at] <= u'9';
    }
    int number(qsizetype& digits) {
        int value = 0;
        digits = 0;
        while (digitAt(at_) && digits < 9) {
            value = value * 10 + (text_[at_].unicode() - u'0');
            ++at_;
            ++digits;
        }
        return value;
    }

    bool looksLikeTime() const {
        qsizetype at = at_;
        while (digitAt(at)) ++at;
        if (at == at_ || at - at_ > 2) return false;
        if (at < text_.size() && text_[at] == u':') return true;
        while (at < text_.size() && text_[at] == u' ') ++at;
        return at + 1 < text_.size() &&
               (text_[at] == u'a' || text_[at] == u'A' || text_[at] == u'p' || text_[at] == u'P') &&
               (text_[at + 1] == u'm' || text_[at + 1] == u'M') &&
               (at + 2 >= text_.size() || !text_[at + 2].isLetter());
    }

    bool readTime(qint64& time) {
        qsizetype digits;
        int hour = number(digits), minute = 0, second = 0;
        qint64 fraction = 0;
        if (at_ < text_.size() && text_[at_] == u':') {
            ++at_;
            minute = number(digits);
            if (digits == 0 || digits > 2) return false;
            if (at_ < text_.size() && text_[at_] == u':') {
                ++at_;
                second = number(digits);
                if (digits == 0 || digits > 2) return false;
                if (at_ < text_.size() && (text_[at_] == u'.' || text_[at_] == u':')) {
                    const bool colon = text_[at_] == u':';
                    ++at_;
                    const int value = number(digits);
                    if (digits == 0) return false;
                    // ":5" behind the seconds are thousandths, ".5" is a half.
                    double unit = colon ? 1e4 : 1e7;
                    if (!colon)
                        for (qsizetype i = 0; i < digits; ++i) unit /= 10;
                    fraction = qint64(double(value) * unit + 0.5);
                }
            }
        }
        skipBlanks();
        if (at_ + 1 < text_.size() && (text_[at_ + 1] == u'm' || text_[at_ + 1] == u'M')) {
            const bool pm = text_[at_] == u'p' || text_[at_] == u'P';
            if (!pm && text_[at_] != u'a' && text_[at_] != u'A') return false;
            if (hour < 1 || hour > 12) return false;
            hour = hour % 12 + (pm ? 12 : 0);
            at_ += 2;
        }
        if (hour > 23 || minute > 59 || second > 59) return false;
        time = qint64((hour * 60 + minute) * 60 + second) * TicksPerSecond + fraction;
        return true;
    }

    bool readOffset(qint16& offset) {
        if (text_[at_] == u'Z' || text_[at_] == u'z') {
            ++at_;
            return true;
        }
        const int sign = text_[at_] == u'-' ? -1 : 1;
        ++at_;
        qsizetype digits;
        const int hours = number(digits);
        if (digits == 0 || at_ >= text_.size() || text_[at_] != u':') return false;
        ++at_;
        const int minutes = number(digits);
        if (digits == 0 || hours > 14 || minutes > 59) return false;
        offset = qint16(sign * (hours * 60 + minutes));
        return true;
    }

    bool readDate(qint64& days) {
        std::array<int, 3> part{};
        std::array<qsizetype, 3> width{};
        int count = 0, monthAt = -1;
        while (at_ < text_.size() && count < 3) {
            if (text_[at_].isLetter()) {
                const qsizetype start = at_;
                while (at_ < text_.size() && text_[at_].isLetter()) ++at_;
                const int month = monthByName(text_.mid(start, at_ - start));
                if (!month || monthAt >= 0) return false;
                monthAt = count;
                part[size_t(count)] = month;
                width[size_t(count)] = 0;
                ++count;
            } else if (digitAt(at_)) {
                if (count == 2 && monthAt >= 0 && looksLikeTime()) break;
                part[size_t(count)] = number(width[size_t(count)]);
                ++count;
                if (count == 1 && (width[0] == 8 || width[0] == 6))
                    return compact(part[0], width[0], days);
            } else {
                return false;
            }
            const qsizetype before = at_;
            while (at_ < text_.size() &&
                   (text_[at_] == u'/' || text_[at_] == u'-' || text_[at_] == u'.' ||
                    text_[at_] == u',' || text_[at_] == u' '))
                ++at_;
            if (count == 3) at_ = before;
        }
        int year, month, day;
        if (monthAt >= 0) {
            month = part[size_t(monthAt)];
            std::array<size_t, 2> rest{};
            size_t used = 0;
            for (size_t i = 0; i < size_t(count); ++i)
                if (int(i) != monthAt && used < 2) rest[used++] = i;
            if (used == 0) return false;
            if (used == 1) {  // "Jan 1997" is its first day
                if (width[rest[0]] != 4) return false;
                year = part[rest[0]];
                day = 1;
            } else if (width[rest[0]] == 4) {
                year = part[rest[0]];
                day = part[rest[1]];
            } else {
                day = part[rest[0]];
                year = fullYear(part[rest[1]], width[rest[1]]);
            }
        } else if (count == 1 && width[0] == 4) {
            year = part[0];
            month = day = 1;
        } else if (count != 3) {
            return false;
        } else if (width[0] == 4) {
            year = part[0];
            month = part[1];
            day = part[2];
        } else {
            std::array<int, 3> place{};  // of year, month, day
            for (int i = 0; i < 3; ++i) {
                const QChar c = i < order_.size() ? order_[i].toLower() : QChar(u"mdy"[i]);
                place[c == u'y' ? 0 : c == u'm' ? 1 : 2] = i;
            }
            if (width[2] == 4 && place[0] != 2) {  // the year is plain to see
                const bool monthFirst = place[1] < place[2];
                place = {2, monthFirst ? 0 : 1, monthFirst ? 1 : 0};
            }
            year = fullYear(part[size_t(place[0])], width[size_t(place[0])]);
            month = part[size_t(place[1])];
            day = part[size_t(place[2])];
        }
        if (!validDate(year, month, day)) return false;
        days = daysFromCivil(year, month, day);
        return true;
    }

    bool compact(int value, qsizetype digits, qint64& days) {
        const int year = digits == 8 ? value / 10000 : fullYear(value / 10000, 2);
        const int month = value / 100 % 100, day = value % 100;
        if (!validDate(year, month, day)) return false;
        days = daysFromCivil(year, month, day);
        return true;
    }

    QStringView text_;
    QString order_;
    qsizetype at_ = 0;
};

void appendNumber(QByteArray& to, int value, int digits) {
    char buffer[12];
    int at = 12;
    do {
        buffer[--at] = char('0' + value % 10);
        value /= 10;
    } while (value || 12 - at < digits);
    to.append(buffer + at, 12 - at);
}

void appendFraction(QByteArray& to, qint64 fraction, int digits) {
    if (digits <= 0) return;
    to += '.';
    for (qint64 unit = TicksPerSecond / 10; digits-- > 0; unit /= 10)
        to += char('0' + fraction / unit % 10);
}

/// What the type keeps of a moment: datetime counts in 1/300 seconds, smalldatetime in minutes.
qint64 roundedTo(qint64 ticks, const ColumnInfo& type) {
    const auto toUnit = [&](qint64 unit) { return (ticks + unit / 2) / unit * unit; };
    switch (type.type) {
        case SqlType::Date:
            return ticks / TicksPerDay * TicksPerDay;
        case SqlType::SmallDateTime:
            return toUnit(60 * TicksPerSecond);
        case SqlType::DateTime: {
            const qint64 days = ticks / TicksPerDay;
            const qint64 units =
                ((ticks % TicksPerDay) * 300 + TicksPerSecond / 2) / TicksPerSecond;
            // .000, .003, .007: whole milliseconds stand for the thirds.
            const qint64 second = units / 300;
            const qint64 milliseconds = ((units % 300) * 10 + 1) / 3;
            return days * TicksPerDay + second * TicksPerSecond + milliseconds * 10000;
        }
        case SqlType::Time:
        case SqlType::DateTime2:
        case SqlType::DateTimeOffset: {
            qint64 unit = 1;
            for (int i = type.scale; i < 7; ++i) unit *= 10;
            return toUnit(unit);
        }
        default:
            return ticks;
    }
}

}  // namespace

bool parseDateText(QStringView text, const QString& dateFormat, qint64& ticks,
                   qint16& offsetMinutes) {
    return DateReader(text, dateFormat).read(ticks, offsetMinutes);
}

QByteArray formatTicks(qint64 ticks, qint16 offsetMinutes, const ColumnInfo& type) {
    ticks = roundedTo(ticks, type);
    if (type.type == SqlType::Time) ticks %= TicksPerDay;
    QByteArray text;
    text.reserve(36);
    if (type.type != SqlType::Time) {
        int year, month, day;
        civilFromDays(ticks / TicksPerDay, year, month, day);
        appendNumber(text, year, 4);
        text += '-';
        appendNumber(text, month, 2);
        text += '-';
        appendNumber(text, day, 2);
        if (type.type == SqlType::Date) return text;
        text += ' ';
    }
    const qint64 inDay = ticks % TicksPerDay;
    const int seconds = int(inDay / TicksPerSecond);
    appendNumber(text, seconds / 3600, 2);
    text += ':';
    appendNumber(text, seconds / 60 % 60, 2);
    text += ':';
    appendNumber(text, seconds % 60, 2);
    switch (type.type) {
        case SqlType::DateTime:
            appendFraction(text, inDay % TicksPerSecond, 3);
            break;
        case SqlType::Time:
        case SqlType::DateTime2:
        case SqlType::DateTimeOffset:
            appendFraction(text, inDay % TicksPerSecond, type.scale);
            break;
        default:
            break;
    }
    if (type.type == SqlType::DateTimeOffset) {
        text += offsetMinutes < 0 ? " -" : " +";
        const int minutes = std::abs(offsetMinutes);
        appendNumber(text, minutes / 60, 2);
        text += ':';
        appendNumber(text, minutes % 60, 2);
    }
    return text;
}

QString dateToText(qint64 ticks, qint16 offsetMinutes, const ColumnInfo& type, int style) {
    const bool dateOnly = type.type == SqlType::Date, timeOnly = type.type == SqlType::Time;
    if (style == 0 && type.type != SqlType::DateTime && type.type != SqlType::SmallDateTime)
        return QString::fromLatin1(formatTicks(ticks, offsetMinutes, type));
    int year, month, day;
    civilFromDays(ticks / TicksPerDay, year, month, day);
    const qint64 inDay = ticks % TicksPerDay;
    const int total = int(inDay / TicksPerSecond),
              milliseconds = int(inDay % TicksPerSecond / 10000);
    const int hour = total / 3600, minute = total / 60 % 60, second = total % 60;
    QString monthName = QString::fromLatin1(monthNames[month - 1]).left(3);
    monthName[0] = monthName[0].toUpper();
    const auto two = [](int value) {
        return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
    };
    const QString clock = two(hour) + u':' + two(minute) + u':' + two(second);
    const QString thousandths = QStringLiteral("%1").arg(milliseconds, 3, 10, QLatin1Char('0'));
    const QString half = hour < 12 ? QStringLiteral("AM") : QStringLiteral("PM");
    const QString hour12 = QStringLiteral("%1").arg(hour % 12 ? hour % 12 : 12, 2);
    const QString dayBlank = QStringLiteral("%1").arg(day, 2);
    const bool century =
        style == 0 || style >= 100 || style == 9 || style == 13 || style == 20 || style == 21;
    const QString yearText =
        century ? QStringLiteral("%1").arg(year, 4, 10, QLatin1Char('0')) : two(year % 100);
    if (timeOnly && (style == 120 || style == 20 || style == 108 || style == 8)) return clock;
    if (timeOnly) return QString::fromLatin1(formatTicks(ticks, offsetMinutes, type));
    switch (style >= 100 && style < 120 ? style - 100 : style) {
        case 0:
            if (dateOnly) return monthName + u' ' + dayBlank + u' ' + yearText;
            return monthName + u' ' + dayBlank + u' ' + yearText + u' ' + hour12 + u':' +
                   two(minute) + half;
        case 1:
            return two(month) + u'/' + two(day) + u'/' + yearText;
        case 2:
            return yearText + u'.' + two(month) + u'.' + two(day);
        case 3:
            return two(day) + u'/' + two(month) + u'/' + yearText;
        case 4:
            return two(day) + u'.' + two(month) + u'.' + yearText;
        case 5:
            return two(day) + u'-' + two(month) + u'-' + yearText;
        case 6:
            return two(day) + u' ' + monthName + u' ' + yearText;
        case 7:
            return monthName + u' ' + two(day) + QStringLiteral(", ") + yearText;
        case 8:
            return clock;
        case 9:
            return monthName + u' ' + dayBlank + u' ' + yearText + u' ' + hour12 + u':' +
                   two(minute) + u':' + two(second) + u':' + thousandths + half;
        case 10:
            return two(month) + u'-' + two(day) + u'-' + yearText;
        case 11:
            return yearText + u'/' + two(month) + u'/' + two(day);
        case 12:
            return yearText + two(month) + two(day);
        case 13:
            return two(day) + u' ' + monthName + u' ' + yearText + u' ' + clock + u':' +
                   thousandths;
        case 14:
            return clock + u':' + thousandths;
        case 20:
        case 120:
            return QStringLiteral("%1-%2-%3").arg(yearText, two(month), two(day)) +
                   (dateOnly ? QString() : u' ' + clock);
        case 21:
        case 121:
        case 25:
            if (type.type != SqlType::DateTime && type.type != SqlType::SmallDateTime)
                return QString::fromLatin1(formatTicks(ticks, offsetMinutes, type));
            return QStringLiteral("%1-%2-%3").arg(yearText, two(month), two(day)) + u' ' + clock +
                   u'.' + thousandths;
        case 126:
        case 127: {
            if (dateOnly) return QString::fromLatin1(formatTicks(ticks, offsetMinutes, type));
            QString text = QStringLiteral("%1-%2-%3T").arg(yearText, two(month), two(day)) + clock;
            if (type.type == SqlType::DateTime2 && type.scale > 0)
                text += QString::fromLatin1(formatTicks(ticks, offsetMinutes, type)).mid(19);
            else if (milliseconds)
                text += u'.' + thousandths;
            return text;
        }
        default:
            failWith(
                281,
                QStringLiteral(
                    "%1 is not a valid style number when converting from %2 to a character string.")
                    .arg(style)
                    .arg(sqlTypeName(type.type)));
    }
}

}  // namespace zov::local
