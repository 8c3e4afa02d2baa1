// Dates and numbers out of the bytes that the server keeps them in, as generated scripts write
// them: CAST(0x0000A1B200C5F84D AS datetime).
#include "data/base/field_text.h"
#include "data/local/query_values.h"

#include <algorithm>

namespace zov::local {
namespace {

constexpr qint64 DaysTo1900 = 693595;

quint64 lowestFirst(QByteArrayView bytes) {
    quint64 value = 0;
    for (qsizetype i = std::min<qsizetype>(bytes.size(), 8); i-- > 0;)
        value = value << 8 | quint8(bytes[i]);
    return value;
}

/// The last `width` bytes, the highest first; shorter ones count as if zeros stood in front.
quint64 highestFirst(QByteArrayView bytes, qsizetype width) {
    quint64 value = 0;
    for (const char c : bytes.last(std::min(bytes.size(), width))) value = value << 8 | quint8(c);
    return value;
}

[[noreturn]] void cannotRead(const ColumnInfo& to) {
    failWith(210,
             QStringLiteral("Conversion failed when converting %1 from binary/varbinary string.")
                 .arg(sqlTypeName(to.type)),
             ado_number::CannotConvert, QStringLiteral("22007"));
}

/// time, datetime2 and datetimeoffset: digits of the fraction, the time in such units, then the
/// date and the offset; zeros may follow.
/// Days since 0001-01-01 as ticks; what is no date is refused before it overflows.
qint64 ticksOfDays(qint64 days, const ColumnInfo& to) {
    if (days < 0 || days > daysFromCivil(9999, 12, 31)) cannotRead(to);
    return days * TicksPerDay;
}

qint64 scaledTicks(QByteArrayView bytes, const ColumnInfo& to, qint16& offset) {
    const bool hasDate = to.type != SqlType::Time;
    const bool hasOffset = to.type == SqlType::DateTimeOffset;
    const int digits = bytes.isEmpty() ? 8 : quint8(bytes[0]);
    if (digits > 7) cannotRead(to);
    const qsizetype width = digits < 3 ? 3 : digits < 5 ? 4 : 5;
    if (bytes.size() < 1 + width + (hasDate ? 3 : 0) + (hasOffset ? 2 : 0)) cannotRead(to);
    quint64 inDay = lowestFirst(bytes.sliced(1, width));
    for (int i = digits; i < 7; ++i) inDay *= 10;
    if (inDay >= quint64(TicksPerDay)) cannotRead(to);
    const QByteArrayView behind = bytes.sliced(1 + width);
    const qint64 days = hasDate ? qint64(lowestFirst(behind.first(3))) : DaysTo1900;
    qint64 ticks = ticksOfDays(days, to) + qint64(inDay);
    if (hasOffset) {
        // The moment is kept in UTC, and shown where its clock stood.
        offset = qint16(lowestFirst(behind.sliced(3, 2)));
        if (std::abs(offset) > 14 * 60) cannotRead(to);
        ticks += offset * (TicksPerDay / 1440);
    }
    return ticks;
}

}  // namespace

qint64 ticksOfBytes(const QByteArray& bytes, const ColumnInfo& to, qint16& offset) {
    offset = 0;
    qint64 ticks = 0;
    switch (to.type) {
        case SqlType::DateTime: {
            // Days since 1900, then parts of a second of which there are 300.
            const quint64 all = highestFirst(bytes, 8);
            const quint64 parts = all & 0xffffffff;
            if (parts >= quint64(86400) * 300) cannotRead(to);
            ticks = ticksOfDays(DaysTo1900 + qint32(quint32(all >> 32)), to) +
                    qint64(parts * TicksPerSecond + 150) / 300;
            break;
        }
        case SqlType::SmallDateTime: {
            const quint64 all = highestFirst(bytes, 4);
            const quint64 minutes = all & 0xffff;
            if (minutes >= 1440) cannotRead(to);
            ticks = (DaysTo1900 + qint64(all >> 16)) * TicksPerDay +
                    qint64(minutes) * (TicksPerDay / 1440);
            break;
        }
        case SqlType::Date:
            if (bytes.size() < 3) cannotRead(to);
            ticks = ticksOfDays(qint64(lowestFirst(QByteArrayView(bytes).first(3))), to);
            break;
        default:
            ticks = scaledTicks(bytes, to, offset);
            break;
    }
    const qint64 days = ticks / TicksPerDay;
    if (ticks < 0 || days >= daysFromCivil(9999, 12, 31) + 1) cannotRead(to);
    return ticks;
}

DecimalText decimalOfBytes(const QByteArray& bytes, const ColumnInfo& to) {
    DecimalText result;
    if (to.type == SqlType::Money || to.type == SqlType::SmallMoney) {
        // Ten thousandths.
        const bool small = to.type == SqlType::SmallMoney;
        const quint64 raw = highestFirst(bytes, small ? 4 : 8);
        DecimalText::parse(QByteArray::number(small ? qint64(qint32(quint32(raw))) : qint64(raw)),
                           result);
        result.scale = 4;
        return result;
    }
    // Precision, scale, a byte of no meaning here, 1 for a number that isn't negative, its digits.
    const QByteArrayView view(bytes);
    if (view.size() < 5 || view.size() > 20 || quint8(view[0]) > 38 ||
        quint8(view[1]) > quint8(view[0]) || quint8(view[3]) > 1)
        failWith(
            8114,
            QStringLiteral("Error converting data type varbinary to %1.").arg(sqlTypeName(to.type)),
            ado_number::CannotConvert);
    // Long division by ten, from the highest byte on.
    QByteArray left = view.sliced(4).toByteArray();
    std::reverse(left.begin(), left.end());
    while (!left.isEmpty()) {
        int rest = 0;
        for (char& c : left) {
            const int part = rest * 256 + quint8(c);
            c = char(part / 10);
            rest = part % 10;
        }
        result.digits.prepend(char('0' + rest));
        while (left.startsWith('\0')) left.remove(0, 1);
    }
    while (result.digits.startsWith('0')) result.digits.remove(0, 1);
    result.scale = quint8(view[1]);
    result.negative = view[3] == 0 && !result.digits.isEmpty();
    return result;
}

}  // namespace zov::local
