// COLMETADATA and ROW tokens for every column type.
#include "support/tds_endpoint/tds_rows.h"

#include "data/base/field_text.h"
#include "support/tds_endpoint/code_page_1252.h"
#include "support/tds_endpoint/tds_tokens.h"

#include <array>
#include <limits>

namespace zov::tds {
namespace {

using Wide = unsigned __int128;

constexpr quint8 ColumnsToken = 0x81;
constexpr quint8 RowToken = 0xD1;
constexpr quint16 NullLength = 0xFFFF;
constexpr quint32 NullVariant = 0;
constexpr quint64 NullPlp = ~quint64(0);
constexpr quint32 PlpChunk = 32'000;
constexpr quint16 NullableFlag = 0x0001;
constexpr quint16 ReadWriteUnknownFlag = 0x0008;
constexpr quint32 RowVersionUserType = 80;
constexpr int LargestShortBytes = 8000;
constexpr quint32 VariantSize = 8016;
constexpr int LargestPrecision = 38;

const qint64 DaysTo1900 = daysFromCivil(1900, 1, 1);

[[noreturn]] void misfit(const ColumnInfo& column, const std::string& what) {
    throw CellMisfit("column '" + column.name.toStdString() + "' (" +
                     sqlTypeName(column.type).toStdString() + ") " + what);
}

Wide powerOfTen(int exponent) {
    Wide value = 1;
    while (exponent-- > 0) value *= 10;
    return value;
}

/// Bytes of a decimal's magnitude, sign not counted.
quint8 decimalWidth(int precision) {
    return precision <= 9 ? 4 : precision <= 19 ? 8 : precision <= 28 ? 12 : 16;
}

/// Bytes of a time of day with so many fraction digits.
quint8 timeWidth(int scale) {
    return scale <= 2 ? 3 : scale <= 4 ? 4 : 5;
}

void putMagnitude(Wide magnitude, bool negative, const ColumnForm& form, ByteBuffer& out) {
    out.u8(quint8(form.width + 1));
    out.u8(negative ? 0 : 1);
    out.raw(&magnitude, form.width);
}

/// The digits of a plain decimal as a whole number of units of the column's scale.
bool readDigits(QStringView text, int scale, Wide& magnitude, bool& negative) {
    negative = text.startsWith(u'-');
    if (negative || text.startsWith(u'+')) text = text.mid(1);
    magnitude = 0;
    int fraction = -1;
    bool any = false;
    for (const QChar c : text) {
        if (c == u'.' && fraction < 0) {
            fraction = 0;
            continue;
        }
        if (c < u'0' || c > u'9') return false;
        if (fraction >= scale) {
            if (c != u'0') return false;
            continue;
        }
        if (magnitude > (~Wide(0) - 9) / 10) return false;
        magnitude = magnitude * 10 + Wide(c.unicode() - u'0');
        if (fraction >= 0) ++fraction;
        any = true;
    }
    for (int digits = std::max(fraction, 0); digits < scale; ++digits) {
        if (magnitude > ~Wide(0) / 10) return false;
        magnitude *= 10;
    }
    return any;
}

void putTimeOfDay(qint64 ticks, const ColumnForm& form, ByteBuffer& out) {
    qint64 unit = 1;
    for (int scale = form.scale; scale < 7; ++scale) unit *= 10;
    const qint64 units = ticks / unit;
    out.raw(&units, timeWidth(form.scale));
}

void putDays(qint64 days, ByteBuffer& out) {
    out.raw(&days, 3);
}

/// 300ths of a second of the time of day; rounding may reach the next day.
void putDateTime8(qint64 ticks, ByteBuffer& out) {
    qint64 days = ticks / TicksPerDay;
    qint64 units = ((ticks % TicksPerDay) * 3 + 50'000) / 100'000;
    if (units == 86'400 * 300) {
        units = 0;
        ++days;
    }
    out.put(qint32(days - DaysTo1900));
    out.put(qint32(units));
}

bool putDateTime4(qint64 ticks, ByteBuffer& out) {
    const qint64 minutes = (ticks - DaysTo1900 * TicksPerDay) / (60 * TicksPerSecond);
    if (minutes < 0 || minutes / 1440 > 0xFFFF) return false;
    out.u16(quint16(minutes / 1440));
    out.u16(quint16(minutes % 1440));
    return true;
}

void putPlp(const char* bytes, qsizetype count, ByteBuffer& out) {
    out.put(quint64(count));
    while (count > 0) {
        const auto chunk = quint32(std::min<qsizetype>(count, PlpChunk));
        out.u32(chunk);
        out.raw(bytes, chunk);
        bytes += chunk;
        count -= chunk;
    }
    out.u32(0);
}

/// The parts in front of the data of text, ntext and image: a pointer and a time stamp.
void putTextPointer(quint32 count, ByteBuffer& out) {
    static constexpr char pointer[] = "zov text ptr    ";
    static constexpr char stamp[] = "zovstamp";
    out.u8(16);
    out.raw(pointer, 16);
    out.raw(stamp, 8);
    out.u32(count);
}

/// A server keeps a property's own type in sql_variant: numbers as int, the rest as nvarchar.
void putVariant(const ColumnInfo& column, QStringView text, ByteBuffer& out) {
    bool isInt = false;
    const qint32 number = text.toInt(&isInt);
    if (isInt && QString::number(number) == text) {
        out.u32(2 + 4);
        out.u8(WireInt4);
        out.u8(0);
        out.put(number);
        return;
    }
    const qsizetype bytes = text.size() * 2;
    if (bytes > LargestShortBytes) misfit(column, "holds more than a sql_variant can");
    out.u32(quint32(2 + 7 + bytes));
    out.u8(WireNVarChar);
    out.u8(7);
    out.raw(Collation, sizeof Collation);
    out.u16(LargestShortBytes);
    out.utf16(text);
}

ColumnForm fixed(const ColumnInfo& column, CellForm form, quint8 plain, quint8 nullable,
                 quint8 width) {
    ColumnForm result{form, column.nullable ? nullable : plain};
    result.width = width;
    result.lengthByte = column.nullable;
    return result;
}

/// Texts and binaries of bounded length, or else their `max` form.
ColumnForm bounded(const ColumnInfo& column, CellForm form, CellForm longForm, quint8 type,
                   quint8 longType, int unitBytes) {
    if (column.size > 0 && column.size * unitBytes <= LargestShortBytes) {
        ColumnForm result{form, type};
        result.size = column.size;
        result.fixedLength = type == WireChar || type == WireNChar || type == WireBinary;
        return result;
    }
    // A length that the provider doesn't know is a `max` type too: nothing may be cut.
    return {longForm, longType};
}

ColumnForm decimalForm(const ColumnInfo& column) {
    const bool wide = storageOf(column) == Storage::Text;
    ColumnForm result{wide ? CellForm::DecimalText : CellForm::Decimal64,
                      column.type == SqlType::Decimal ? WireDecimalN : WireNumericN};
    result.precision = quint8(column.precision > 0 ? column.precision : 18);
    result.scale = quint8(column.scale);
    result.width = decimalWidth(result.precision);
    result.lengthByte = true;
    return result;
}

ColumnForm dateTimeForm(CellForm form, quint8 type, int scale, int width) {
    ColumnForm result{form, type};
    result.scale = quint8(scale);
    result.width = quint8(width);
    result.lengthByte = true;
    return result;
}

}  // namespace

ColumnForm columnForm(const ColumnInfo& column) {
    switch (column.type) {
        case SqlType::Bit:
            return fixed(column, CellForm::Bit, WireBit, WireBitN, 1);
        case SqlType::TinyInt:
            return fixed(column, CellForm::Int1, WireInt1, WireIntN, 1);
        case SqlType::SmallInt:
            return fixed(column, CellForm::Int2, WireInt2, WireIntN, 2);
        case SqlType::Int:
            return fixed(column, CellForm::Int4, WireInt4, WireIntN, 4);
        case SqlType::BigInt:
            return fixed(column, CellForm::Int8, WireInt8, WireIntN, 8);
        case SqlType::Decimal:
        case SqlType::Numeric:
            return decimalForm(column);
        case SqlType::Money:
            return fixed(column, CellForm::Money8, WireMoney, WireMoneyN, 8);
        case SqlType::SmallMoney:
            return fixed(column, CellForm::Money4, WireSmallMoney, WireMoneyN, 4);
        case SqlType::Real:
            return fixed(column, CellForm::Real, WireReal, WireFloatN, 4);
        case SqlType::Float:
            return fixed(column, CellForm::Float, WireFloat, WireFloatN, 8);
        case SqlType::Date:
            return dateTimeForm(CellForm::Date, WireDate, 0, 3);
        case SqlType::Time:
            return dateTimeForm(CellForm::Time, WireTime, column.scale, timeWidth(column.scale));
        case SqlType::SmallDateTime:
            return fixed(column, CellForm::DateTime4, WireSmallDateTime, WireDateTimeN, 4);
        case SqlType::DateTime:
            return fixed(column, CellForm::DateTime8, WireDateTime, WireDateTimeN, 8);
        case SqlType::DateTime2:
            return dateTimeForm(CellForm::DateTime2, WireDateTime2, column.scale,
                                timeWidth(column.scale) + 3);
        case SqlType::DateTimeOffset:
            return dateTimeForm(CellForm::DateTimeOffset, WireDateTimeOffset, column.scale,
                                timeWidth(column.scale) + 5);
        case SqlType::Char:
            return bounded(column, CellForm::Char, CellForm::PlpChar, WireChar, WireVarChar, 1);
        case SqlType::VarChar:
            return bounded(column, CellForm::Char, CellForm::PlpChar, WireVarChar, WireVarChar, 1);
        case SqlType::NChar:
            return bounded(column, CellForm::NChar, CellForm::PlpNChar, WireNChar, WireNVarChar, 2);
        case SqlType::NVarChar:
            return bounded(column, CellForm::NChar, CellForm::PlpNChar, WireNVarChar, WireNVarChar,
                           2);
        case SqlType::Text:
            return {CellForm::OldText, WireText};
        case SqlType::NText:
            return {CellForm::OldNText, WireNText};
        case SqlType::Image:
            return {CellForm::OldImage, WireImage};
        case SqlType::Xml:
            return {CellForm::PlpNChar, WireXml};
        case SqlType::Binary:
            return bounded(column, CellForm::Bytes, CellForm::PlpBytes, WireBinary, WireVarBinary,
                           1);
        case SqlType::VarBinary:
            return bounded(column, CellForm::Bytes, CellForm::PlpBytes, WireVarBinary,
                           WireVarBinary, 1);
        case SqlType::RowVersion: {
            ColumnForm result{CellForm::Bytes, WireBinary};
            result.size = 8;
            result.fixedLength = true;
            result.userType = RowVersionUserType;
            return result;
        }
        case SqlType::UniqueIdentifier: {
            ColumnForm result{CellForm::Guid, WireGuid};
            result.width = 16;
            result.lengthByte = true;
            return result;
        }
        case SqlType::Variant:
            return {CellForm::Variant, WireVariant};
    }
    return {CellForm::PlpNChar, WireNVarChar};
}

void putTypeInfo(const ColumnForm& form, ByteBuffer& out) {
    out.u8(form.wireType);
    switch (form.wireType) {
        case WireIntN:
        case WireBitN:
        case WireFloatN:
        case WireMoneyN:
        case WireDateTimeN:
        case WireGuid:
            out.u8(form.width);
            break;
        case WireDecimalN:
        case WireNumericN:
            out.u8(quint8(form.width + 1));
            out.u8(form.precision);
            out.u8(form.scale);
            break;
        case WireTime:
        case WireDateTime2:
        case WireDateTimeOffset:
            out.u8(form.scale);
            break;
        case WireVarChar:
        case WireChar:
        case WireNVarChar:
        case WireNChar: {
            const bool isLong = form.form == CellForm::PlpChar || form.form == CellForm::PlpNChar;
            const bool wide = form.wireType == WireNVarChar || form.wireType == WireNChar;
            out.u16(isLong ? NullLength : quint16(form.size * (wide ? 2 : 1)));
            out.raw(Collation, sizeof Collation);
            break;
        }
        case WireVarBinary:
        case WireBinary:
            out.u16(form.form == CellForm::PlpBytes ? NullLength : quint16(form.size));
            break;
        case WireText:
        case WireNText:
            out.u32(form.wireType == WireNText ? 0x7FFFFFFEu : 0x7FFFFFFFu);
            out.raw(Collation, sizeof Collation);
            break;
        case WireImage:
            out.u32(0x7FFFFFFFu);
            break;
        case WireXml:
            out.u8(0);
            break;  // no schema
        case WireVariant:
            out.u32(VariantSize);
            break;
        default:
            break;  // the fixed types say all by their byte
    }
}

RowEncoder::RowEncoder(const std::vector<ColumnInfo>& columns) : columns_(columns) {
    for (const ColumnInfo& column : columns_) {
        const bool scaled = column.type == SqlType::Time || column.type == SqlType::DateTime2 ||
                            column.type == SqlType::DateTimeOffset;
        if (column.precision > LargestPrecision || column.scale < 0 ||
            column.scale > (scaled ? 7 : LargestPrecision))
            misfit(column, "has a precision or scale that no server has");
        forms_.push_back(columnForm(column));
    }
}

bool RowEncoder::hasLongColumns() const {
    for (const ColumnForm& form : forms_)
        if (form.form >= CellForm::PlpChar && form.form <= CellForm::OldImage) return true;
    return false;
}

void RowEncoder::putColumns(ByteBuffer& out) const {
    out.u8(ColumnsToken);
    out.u16(quint16(columns_.size()));
    for (size_t i = 0; i < columns_.size(); ++i) {
        out.u32(forms_[i].userType);
        out.u16(quint16(ReadWriteUnknownFlag | (columns_[i].nullable ? NullableFlag : 0)));
        putTypeInfo(forms_[i], out);
        const quint8 type = forms_[i].wireType;
        if (type == WireText || type == WireNText || type == WireImage) out.u8(0);  // its table
        out.byteText(columns_[i].name.left(128));
    }
}

void RowEncoder::putRow(const RowStore& rows, qsizetype row, ByteBuffer& out) const {
    const size_t before = out.size();
    try {
        out.u8(RowToken);
        for (size_t i = 0; i < forms_.size(); ++i) putCell(i, rows.column(int(i)), row, out);
    } catch (const CellMisfit&) {
        out.truncate(before);
        throw;
    }
}

void RowEncoder::putCell(size_t index, const ColumnCells& cells, qsizetype row,
                         ByteBuffer& out) const {
    const ColumnForm& form = forms_[index];
    const ColumnInfo& column = columns_[index];
    if (cells.isNull(row)) {
        switch (form.form) {
            case CellForm::Char:
            case CellForm::NChar:
            case CellForm::Bytes:
                out.u16(NullLength);
                return;
            case CellForm::PlpChar:
            case CellForm::PlpNChar:
            case CellForm::PlpBytes:
                out.put(NullPlp);
                return;
            case CellForm::Variant:
                out.u32(NullVariant);
                return;
            case CellForm::OldText:
            case CellForm::OldNText:
            case CellForm::OldImage:
                out.u8(0);
                return;
            default:
                if (!form.lengthByte) misfit(column, "holds a null and says that it can't");
                out.u8(0);
                return;
        }
    }
    if (form.lengthByte && form.form != CellForm::Decimal64 && form.form != CellForm::DecimalText)
        out.u8(form.width);
    switch (form.form) {
        case CellForm::Int1:
            out.u8(quint8(cells.integer(row)));
            return;
        case CellForm::Bit:
            out.u8(cells.integer(row) != 0);
            return;
        case CellForm::Int2:
            out.put(qint16(cells.integer(row)));
            return;
        case CellForm::Int4:
            out.put(qint32(cells.integer(row)));
            return;
        case CellForm::Int8:
            out.put(cells.integer(row));
            return;
        case CellForm::Money8:
        case CellForm::Money4: {
            qint64 units = cells.integer(row);
            for (int scale = column.scale; scale < 4; ++scale) units *= 10;
            for (int scale = column.scale; scale > 4; --scale) units /= 10;
            if (form.form == CellForm::Money4) {
                if (units != qint32(units)) misfit(column, "holds more than a smallmoney can");
                out.put(qint32(units));
                return;
            }
            out.put(qint32(units >> 32));
            out.put(quint32(units));
            return;
        }
        case CellForm::Real:
            out.put(float(cells.real(row)));
            return;
        case CellForm::Float:
            out.put(cells.real(row));
            return;
        case CellForm::Decimal64: {
            const qint64 value = cells.integer(row);
            const quint64 magnitude = value < 0 ? 0 - quint64(value) : quint64(value);
            if (Wide(magnitude) >= powerOfTen(form.precision))
                misfit(column, "holds more digits than its precision");
            putMagnitude(magnitude, value < 0, form, out);
            return;
        }
        case CellForm::DecimalText: {
            Wide magnitude = 0;
            bool negative = false;
            if (!readDigits(cells.text(row), form.scale, magnitude, negative) ||
                magnitude >= powerOfTen(form.precision))
                misfit(column, "holds '" + cells.text(row).toString().toStdString() +
                                   "', which isn't a number of its precision and scale");
            putMagnitude(magnitude, negative, form, out);
            return;
        }
        case CellForm::Date:
            putDays(cells.integer(row) / TicksPerDay, out);
            return;
        case CellForm::Time:
            putTimeOfDay(cells.integer(row) % TicksPerDay, form, out);
            return;
        case CellForm::DateTime4:
            if (!putDateTime4(cells.integer(row), out))
                misfit(column, "holds a date that a smalldatetime can't");
            return;
        case CellForm::DateTime8:
            putDateTime8(cells.integer(row), out);
            return;
        case CellForm::DateTime2: {
            const qint64 ticks = cells.integer(row);
            putTimeOfDay(ticks % TicksPerDay, form, out);
            putDays(ticks / TicksPerDay, out);
            return;
        }
        case CellForm::DateTimeOffset: {
            // The wire has universal time, the store the local one.
            const CellView cell = cells.cell(row);
            const qint64 ticks = cell.integer - cell.offsetMinutes * 60 * TicksPerSecond;
            if (ticks < 0) misfit(column, "holds a moment before the year 1");
            putTimeOfDay(ticks % TicksPerDay, form, out);
            putDays(ticks / TicksPerDay, out);
            out.put(cell.offsetMinutes);
            return;
        }
        case CellForm::NChar: {
            const QStringView text = cells.text(row);
            if (text.size() > form.size)
                misfit(column, "holds " + std::to_string(text.size()) +
                                   " characters, more than its size " + std::to_string(form.size));
            const qsizetype count = form.fixedLength ? form.size : text.size();
            out.u16(quint16(count * 2));
            out.utf16(text);
            for (qsizetype i = text.size(); i < count; ++i) out.u16(u' ');
            return;
        }
        case CellForm::Char: {
            const QStringView text = cells.text(row);
            if (text.size() > form.size)
                misfit(column, "holds " + std::to_string(text.size()) +
                                   " characters, more than its size " + std::to_string(form.size));
            char* at = out.room(2 + size_t(form.size));
            qsizetype count = encodeCodePage1252(text, at + 2);
            for (; form.fixedLength && count < form.size; ++count) at[2 + count] = ' ';
            const auto length = quint16(count);
            std::memcpy(at, &length, 2);
            out.advance(2 + length);
            return;
        }
        case CellForm::Bytes: {
            const QByteArrayView bytes = cells.bytes(row);
            if (bytes.size() > form.size)
                misfit(column, "holds " + std::to_string(bytes.size()) +
                                   " bytes, more than its size " + std::to_string(form.size));
            const qsizetype count = form.fixedLength ? form.size : bytes.size();
            out.u16(quint16(count));
            out.raw(bytes.data(), size_t(bytes.size()));
            for (qsizetype i = bytes.size(); i < count; ++i) out.u8(0);
            return;
        }
        case CellForm::PlpNChar: {
            const QStringView text = cells.text(row);
            putPlp(reinterpret_cast<const char*>(text.utf16()), text.size() * 2, out);
            return;
        }
        case CellForm::PlpBytes: {
            const QByteArrayView bytes = cells.bytes(row);
            putPlp(bytes.data(), bytes.size(), out);
            return;
        }
        case CellForm::PlpChar:
        case CellForm::OldText: {
            const QStringView text = cells.text(row);
            QByteArray bytes(text.size(), Qt::Uninitialized);
            bytes.truncate(encodeCodePage1252(text, bytes.data()));
            if (form.form == CellForm::PlpChar) {
                putPlp(bytes.constData(), bytes.size(), out);
                return;
            }
            putTextPointer(quint32(bytes.size()), out);
            out.raw(bytes.constData(), size_t(bytes.size()));
            return;
        }
        case CellForm::OldNText: {
            const QStringView text = cells.text(row);
            putTextPointer(quint32(text.size() * 2), out);
            out.utf16(text);
            return;
        }
        case CellForm::OldImage: {
            const QByteArrayView bytes = cells.bytes(row);
            putTextPointer(quint32(bytes.size()), out);
            out.raw(bytes.data(), size_t(bytes.size()));
            return;
        }
        case CellForm::Guid: {
            // Printed order on this side; the wire has the first three groups as numbers.
            const QByteArrayView b = cells.bytes(row);
            const std::array<char, 16> swapped = {b[3],  b[2],  b[1],  b[0], b[5],  b[4],
                                                  b[7],  b[6],  b[8],  b[9], b[10], b[11],
                                                  b[12], b[13], b[14], b[15]};
            out.raw(swapped.data(), swapped.size());
            return;
        }
        case CellForm::Variant:
            putVariant(column, cells.text(row), out);
            return;
    }
}

}  // namespace zov::tds
