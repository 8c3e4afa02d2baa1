// Dates: now, DATEADD, DATEDIFF, DATEPART and their like, over the stored forms.
#include "data/base/field_text.h"
#include "data/local/functions_support.h"

#include <QDateTime>

#include <cmath>

namespace zov::local {
namespace {

constexpr qint64 TicksPerMillisecond = TicksPerSecond / 1000;

bool ticksOf(sqlite3_value* value, qint64& ticks) {
    if (sqlite3_value_type(value) != SQLITE_TEXT) return false;
    qint16 offset = 0;
    const QByteArrayView text = utf8Of(value);
    return parseIsoTicks(text.data(), text.size(), ticks, offset);
}

struct Civil {
    int year, month, day;
    qint64 days;
};

Civil civilOf(qint64 ticks) {
    Civil civil;
    civil.days = ticks / TicksPerDay;
    civilFromDays(civil.days, civil.year, civil.month, civil.day);
    return civil;
}

int monthLength(int year, int month) {
    return int((month == 12 ? daysFromCivil(year + 1, 1, 1) : daysFromCivil(year, month + 1, 1)) -
               daysFromCivil(year, month, 1));
}

/// 1 Sunday to 7 Saturday, as with DATEFIRST 7.
int weekday(qint64 days) {
    return int((days + 1) % 7) + 1;
}

qint64 partTicks(QByteArrayView part) {
    if (part == "hour") return 3600 * TicksPerSecond;
    if (part == "minute") return 60 * TicksPerSecond;
    if (part == "second") return TicksPerSecond;
    if (part == "millisecond") return TicksPerMillisecond;
    if (part == "microsecond") return 10;
    if (part == "nanosecond") return 0;
    return TicksPerDay;
}

void overflowed(sqlite3_context* context) {
    giveError(context, 517,
              QStringLiteral("Adding a value to a 'datetime' column caused an overflow."));
}

void dateAdd(sqlite3_context* context, int, sqlite3_value** v) {
    if (isNull(v[1]) || isNull(v[2])) return sqlite3_result_null(context);
    qint64 ticks = 0;
    if (!ticksOf(v[2], ticks)) return sqlite3_result_null(context);
    const QByteArrayView part = utf8Of(v[0]);
    const qint64 count = sqlite3_value_int64(v[1]);
    if (std::abs(double(count)) > 4e9) return overflowed(context);
    if (part == "year" || part == "quarter" || part == "month") {
        const Civil civil = civilOf(ticks);
        const qint64 months = qint64(civil.year) * 12 + civil.month - 1 +
                              count * (part == "year"      ? 12
                                       : part == "quarter" ? 3
                                                           : 1);
        const qint64 year = months >= 0 ? months / 12 : -1;
        if (year < 1 || year > 9999) return overflowed(context);
        const int month = int(months % 12) + 1;
        const int day = std::min(civil.day, monthLength(int(year), month));
        ticks = daysFromCivil(int(year), month, day) * TicksPerDay + ticks % TicksPerDay;
    } else if (part == "week") {
        ticks += count * 7 * TicksPerDay;
    } else if (part == "nanosecond") {
        ticks += count / 100;
    } else {
        ticks += count * partTicks(part);
    }
    const ColumnInfo type = unpackType(sqlite3_value_int64(v[3]));
    if (type.type == SqlType::Time) ticks = ((ticks % TicksPerDay) + TicksPerDay) % TicksPerDay;
    if (ticks < 0 || ticks >= daysFromCivil(9999, 12, 31) * TicksPerDay + TicksPerDay)
        return overflowed(context);
    giveText(context, formatTicks(ticks, 0, type));
}

void dateDiff(sqlite3_context* context, int, sqlite3_value** v) {
    qint64 a = 0, b = 0;
    if (!ticksOf(v[1], a) || !ticksOf(v[2], b)) return sqlite3_result_null(context);
    const QByteArrayView part = utf8Of(v[0]);
    const Civil from = civilOf(a), to = civilOf(b);
    // Counts the borders between the two, not the full units.
    if (part == "year") return giveInt(context, to.year - from.year);
    if (part == "quarter")
        return giveInt(context,
                       (to.year * 4 + (to.month - 1) / 3) - (from.year * 4 + (from.month - 1) / 3));
    if (part == "month")
        return giveInt(context, (to.year * 12 + to.month) - (from.year * 12 + from.month));
    if (part == "week") return giveInt(context, (to.days + 1) / 7 - (from.days + 1) / 7);
    if (part == "nanosecond") return giveInt(context, (b - a) * 100);
    const qint64 unit = partTicks(part);
    giveInt(context, b / unit - a / unit);
}

qint64 partOf(QByteArrayView part, qint64 ticks) {
    const Civil civil = civilOf(ticks);
    const qint64 inDay = ticks % TicksPerDay;
    if (part == "year") return civil.year;
    if (part == "quarter") return (civil.month - 1) / 3 + 1;
    if (part == "month") return civil.month;
    if (part == "day") return civil.day;
    if (part == "dayofyear") return civil.days - daysFromCivil(civil.year, 1, 1) + 1;
    if (part == "weekday") return weekday(civil.days);
    if (part == "week") {
        const qint64 first = daysFromCivil(civil.year, 1, 1);
        return (civil.days - first + weekday(first) - 1) / 7 + 1;
    }
    if (part == "iso_week") return QDate(civil.year, civil.month, civil.day).weekNumber();
    if (part == "hour") return inDay / (3600 * TicksPerSecond);
    if (part == "minute") return inDay / (60 * TicksPerSecond) % 60;
    if (part == "second") return inDay / TicksPerSecond % 60;
    if (part == "millisecond") return inDay % TicksPerSecond / TicksPerMillisecond;
    if (part == "microsecond") return inDay % TicksPerSecond / 10;
    return inDay % TicksPerSecond * 100;
}

void datePart(sqlite3_context* context, int, sqlite3_value** v) {
    qint64 ticks = 0;
    if (!ticksOf(v[1], ticks)) return sqlite3_result_null(context);
    giveInt(context, partOf(utf8Of(v[0]), ticks));
}

void dateName(sqlite3_context* context, int, sqlite3_value** v) {
    qint64 ticks = 0;
    if (!ticksOf(v[1], ticks)) return sqlite3_result_null(context);
    static const char* const months[] = {"January",   "February", "March",    "April",
                                         "May",       "June",     "July",     "August",
                                         "September", "October",  "November", "December"};
    static const char* const days[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                       "Thursday", "Friday", "Saturday"};
    const QByteArrayView part = utf8Of(v[0]);
    const qint64 value = partOf(part, ticks);
    if (part == "month") return giveText(context, QByteArray(months[value - 1]));
    if (part == "weekday") return giveText(context, QByteArray(days[value - 1]));
    giveText(context, QByteArray::number(value));
}

/// date + number and date - number (days and their parts), date - date (counted from 1900).
void datePlus(sqlite3_context* context, int, sqlite3_value** v) {
    if (isNull(v[0]) || isNull(v[1])) return sqlite3_result_null(context);
    const int sign = sqlite3_value_int(v[2]);
    const qint64 base = daysFromCivil(1900, 1, 1) * TicksPerDay;
    const auto amount = [&](sqlite3_value* value) {
        qint64 ticks = 0;
        if (ticksOf(value, ticks)) return ticks - base;
        return qint64(std::llround(sqlite3_value_double(value) * double(TicksPerDay)));
    };
    const qint64 ticks = base + amount(v[0]) + sign * amount(v[1]);
    if (ticks < 0) return overflowed(context);
    giveText(context, formatTicks(ticks, 0, unpackType(sqlite3_value_int64(v[3]))));
}

void now(sqlite3_context* context, int, sqlite3_value** v) {
    const QDateTime moment =
        sqlite3_value_int(v[0]) ? QDateTime::currentDateTimeUtc() : QDateTime::currentDateTime();
    const QDate date = moment.date();
    const qint64 ticks = daysFromCivil(date.year(), date.month(), date.day()) * TicksPerDay +
                         qint64(moment.time().msecsSinceStartOfDay()) * TicksPerMillisecond;
    const bool precise = sqlite3_value_int(v[1]) == 7;
    giveText(
        context,
        formatTicks(ticks, 0, makeType(precise ? SqlType::DateTime2 : SqlType::DateTime, 0, 0, 7)));
}

}  // namespace

void installDateFunctions(sqlite3* handle) {
    define(handle, "zov_dateadd", 4, dateAdd);
    define(handle, "zov_datediff", 3, dateDiff);
    define(handle, "zov_datepart", 2, datePart);
    define(handle, "zov_datename", 2, dateName);
    define(handle, "zov_dateplus", 4, datePlus);
    define(handle, "zov_now", 2, now, nullptr, false);
    define(handle, "zov_isdate", 2, [](sqlite3_context* c, int, sqlite3_value** v) {
        static const QString formats[] = {QStringLiteral("mdy"), QStringLiteral("dmy"),
                                          QStringLiteral("ymd")};
        qint64 ticks = 0;
        qint16 offset = 0;
        const QString text = textOf(v[0]).trimmed();
        const bool good = !isNull(v[0]) && !text.isEmpty() &&
                          parseDateText(text, formats[std::clamp(sqlite3_value_int(v[1]), 0, 2)],
                                        ticks, offset) &&
                          ticks >= daysFromCivil(1753, 1, 1) * TicksPerDay;
        sqlite3_result_int(c, good);
    });
    define(handle, "zov_eomonth", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        qint64 ticks = 0;
        if (!ticksOf(v[0], ticks)) return sqlite3_result_null(c);
        const Civil civil = civilOf(ticks);
        const qint64 last =
            daysFromCivil(civil.year, civil.month, monthLength(civil.year, civil.month));
        giveText(c, formatTicks(last * TicksPerDay, 0, makeType(SqlType::Date)));
    });
    define(handle, "zov_datefromparts", 3, [](sqlite3_context* c, int, sqlite3_value** v) {
        const int year = sqlite3_value_int(v[0]), month = sqlite3_value_int(v[1]),
                  day = sqlite3_value_int(v[2]);
        if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1 ||
            day > monthLength(year, month))
            return giveError(c, 289,
                             QStringLiteral("Cannot construct data type date, some of the "
                                            "arguments have values which are not valid."));
        giveText(c, formatTicks(daysFromCivil(year, month, day) * TicksPerDay, 0,
                                makeType(SqlType::Date)));
    });
    // A moment with its offset taken off, so that offsets compare by the time that they mean.
    define(handle, "zov_utc", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        qint64 ticks = 0;
        qint16 offset = 0;
        const QByteArrayView text = utf8Of(v[0]);
        if (isNull(v[0]) || !parseIsoTicks(text.data(), text.size(), ticks, offset))
            return sqlite3_result_value(c, v[0]);
        giveText(c, formatTicks(ticks - qint64(offset) * 60 * TicksPerSecond, 0,
                                makeType(SqlType::DateTime2, 0, 0, 7)));
    });
}

}  // namespace zov::local
