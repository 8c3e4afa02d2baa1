// Rows as they are kept in memory and moved from store to store, and the texts of times and
// decimals that go into them: what goes in comes out, whatever its bytes.
#include "data/base/field_text.h"
#include "data/base/packed_rows.h"
#include "data/odbc/odbc_columns.h"
#include "fuzz_support.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <memory>

using namespace zov;
using fuzz::require;

namespace {

constexpr int LastType = int(SqlType::Variant);

std::vector<ColumnInfo> someColumns(FuzzedDataProvider& bytes) {
    std::vector<ColumnInfo> columns(size_t(bytes.ConsumeIntegralInRange(1, 12)));
    for (ColumnInfo& column : columns) {
        column.type = SqlType(bytes.ConsumeIntegralInRange(0, LastType));
        column.precision = bytes.ConsumeIntegralInRange(1, 38);
        column.scale = bytes.ConsumeIntegralInRange(0, std::min(column.precision, 18));
    }
    return columns;
}

void appendSome(FuzzedDataProvider& bytes, ColumnCells& cells) {
    if (bytes.ConsumeIntegralInRange(0, 5) == 0) return cells.appendNull();
    constexpr qint64 lastTick = 3'652'059 * TicksPerDay - 1;
    switch (cells.storage()) {
        case Storage::Int8:
            return cells.appendInteger(bytes.ConsumeIntegral<quint8>());
        case Storage::Int16:
            return cells.appendInteger(bytes.ConsumeIntegral<qint16>());
        case Storage::Int32:
            return cells.appendInteger(bytes.ConsumeIntegral<qint32>());
        case Storage::Int64:
        case Storage::Scaled64:
            return cells.appendInteger(bytes.ConsumeIntegral<qint64>());
        case Storage::Float32:
            return cells.appendReal(bytes.ConsumeFloatingPoint<float>());
        case Storage::Float64:
            return cells.appendReal(bytes.ConsumeFloatingPoint<double>());
        case Storage::Ticks:
            return cells.appendInteger(bytes.ConsumeIntegralInRange<qint64>(0, lastTick));
        case Storage::TicksOffset:
            return cells.appendTicksOffset(bytes.ConsumeIntegralInRange<qint64>(0, lastTick),
                                           bytes.ConsumeIntegralInRange<qint16>(-840, 840));
        case Storage::Guid:
            return cells.appendBytes(bytes.ConsumeBytesAsString(16).append(16, 'g').data(), 16);
        case Storage::Bytes: {
            const std::string value = bytes.ConsumeRandomLengthString(64);
            return cells.appendBytes(value.data(), qsizetype(value.size()));
        }
        case Storage::Text: {
            const std::string value = bytes.ConsumeRandomLengthString(64);
            if (bytes.ConsumeBool())
                return cells.appendLatin1(value.data(), qsizetype(value.size()));
            return cells.appendUtf8(value.data(), qsizetype(value.size()));
        }
    }
}

void requireSame(const CellView& was, const CellView& is) {
    require(FieldText(was) == FieldText(is), "a moved cell has its text");
    require(was.isNull == is.isNull && compareCells(was, is) == 0, "a moved cell is the same");
}

void moveRows(FuzzedDataProvider& bytes) {
    const std::vector<ColumnInfo> columns = someColumns(bytes);
    RowStore all(columns), block(columns), appended(columns), byRow(columns), unpacked(columns);
    PackedRows packed(columns);
    for (int blocks = bytes.ConsumeIntegralInRange(1, 4); blocks > 0; --blocks) {
        block.clear();
        for (int rows = bytes.ConsumeIntegralInRange(0, 12); rows > 0; --rows)
            for (int i = 0; i < int(columns.size()); ++i) {
                appendSome(bytes, block.column(i));
                all.column(i).appendCell(block.column(i), block.column(i).count() - 1);
            }
        appended.append(block);
        packed.append(block);
    }
    require(packed.count() == all.rowCount() && appended.rowCount() == all.rowCount(),
            "no row is lost");
    for (qsizetype row = 0; row < all.rowCount(); ++row) {
        byRow.appendRow(appended, row);
        packed.appendTo(row, unpacked);
    }
    all.shrinkToFit();
    for (qsizetype row = 0; row < all.rowCount(); ++row)
        for (int i = 0; i < int(columns.size()); ++i)
            for (const RowStore* other : {&appended, &byRow, &unpacked})
                requireSame(all.cell(row, i), other->cell(row, i));
}

void readTexts(FuzzedDataProvider& bytes) {
    // Exactly the bytes that are there: reading behind them is found.
    const std::string text = bytes.ConsumeRandomLengthString(64);
    const std::unique_ptr<char[]> exact(new char[text.size()]);
    std::copy(text.begin(), text.end(), exact.get());
    const auto length = qsizetype(text.size());
    qint64 value = 0, again = 0;
    qint16 offset = 0, offsetAgain = 0;
    if (parseIsoTicks(exact.get(), length, value, offset)) {
        ColumnCells cells({{}, SqlType::DateTimeOffset, 0, 0, 7, true});
        cells.appendTicksOffset(value, offset);
        const QByteArray printed = cellText(cells.cell(0)).toLatin1();
        // Without a date there is none to print.
        require(value < TicksPerDay ||
                    (parseIsoTicks(printed.data(), printed.size(), again, offsetAgain) &&
                     again == value && offsetAgain == offset),
                "a time that was read is printed and read again");
    }
    QString canonical;
    const bool isDecimal = odbc::canonicalDecimal(exact.get(), length, canonical);
    const int scale = bytes.ConsumeIntegralInRange(0, 18);
    if (!odbc::parseScaled(exact.get(), length, scale, value)) return;
    require(isDecimal, "what is a scaled number is a decimal");
    ColumnCells cells({{}, SqlType::Decimal, 0, 18, scale, true});
    cells.appendInteger(value);
    require(cellText(cells.cell(0)) == canonical, "a scaled number is the one that was written");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider bytes(data, size);
    if (bytes.ConsumeBool())
        readTexts(bytes);
    else
        moveRows(bytes);
    return 0;
}
