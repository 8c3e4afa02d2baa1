// Rows in memory, column by column: fixed types packed at their own width, texts
// and binaries one behind the other in an arena per column, nulls in a bitmap.
// Providers append blocks of rows; recordsets read cells without copying them.
#pragma once

#include "data/base/packed_buffer.h"
#include "data/base/sql_type.h"

#include <QByteArrayView>
#include <QStringView>

#include <cstring>
#include <vector>

namespace zov {

/// One cell, seen in place. Valid until its store is changed.
struct CellView {
    const ColumnInfo* column = nullptr;
    Storage storage = Storage::Text;
    bool isNull = true;
    qint64 integer = 0;  ///< Int8 to Int64, Scaled64, Ticks, TicksOffset
    double real = 0;     ///< Float32, Float64
    qint16 offsetMinutes = 0;
    QStringView text;      ///< Text
    QByteArrayView bytes;  ///< Bytes, Guid (16 bytes)
};

/// The cells of one column.
class ColumnCells {
 public:
    explicit ColumnCells(ColumnInfo info);

    const ColumnInfo& info() const { return info_; }
    Storage storage() const { return storage_; }
    qsizetype count() const { return count_; }

    // Appending. The call must fit the column's storage.
    void appendNull();
    void appendInteger(qint64 value);  ///< Int8 to Int64, Scaled64, Ticks
    void appendReal(double value);
    void appendTicksOffset(qint64 ticks, qint16 offsetMinutes);
    void appendText(QStringView text);
    void appendUtf8(const char* utf8, qsizetype length);
    void appendBytes(const void* bytes, qsizetype length);    ///< Bytes, or Guid with 16
    void appendLatin1(const char* latin1, qsizetype length);  ///< Text
    /// A cell as fixedCell() of a column of the same type gave it; the offset for TicksOffset.
    void appendFixedCell(const char* cell, qint16 offsetMinutes);
    /// A whole block of fixed-width cells at once: `values` holds `rows` values of the storage's
    /// own width, `isNull` (may be null) one byte a row.
    void appendFixedBlock(const void* values, const quint8* isNull, qsizetype rows);
    /// A whole block of texts: cell i begins at `cells + i * stride` and holds `byteLengths[i]`
    /// bytes of UTF-16, -1 for a null.
    template <typename Length>
    void appendTextBlock(const char* cells, qsizetype stride, const Length* byteLengths,
                         qsizetype rows) {
        qsizetype total = 0;
        for (qsizetype i = 0; i < rows; ++i)
            if (byteLengths[i] > 0) total += qsizetype(byteLengths[i]) / 2;
        checkArena(chars_.size() + total);
        quint32 end = quint32(chars_.size());
        char16_t* to = chars_.extend(total);
        quint32* ends = ends_.extend(rows);
        for (qsizetype i = 0; i < rows; ++i) {
            const qsizetype length = qsizetype(byteLengths[i]) / 2;
            if (byteLengths[i] < 0) {
                markNull();
            } else if (length) {
                std::memcpy(to, cells + i * stride, size_t(length) * 2);
                to += length;
                end += quint32(length);
            }
            ends[i] = end;
            ++count_;
        }
    }

    bool isNull(qsizetype row) const {
        return row < nulls_.size() * 8 && ((nulls_[row >> 3] >> (row & 7)) & 1);
    }
    /// Int8 to Int64, Scaled64, Ticks, TicksOffset (its ticks).
    qint64 integer(qsizetype row) const {
        switch (storage_) {
            case Storage::Int8:
                return reinterpret_cast<const quint8*>(fixed_.data())[row];
            case Storage::Int16:
                return load<qint16>(row);
            case Storage::Int32:
                return load<qint32>(row);
            default:
                return load<qint64>(row);
        }
    }
    double real(qsizetype row) const {
        return storage_ == Storage::Float32 ? double(load<float>(row)) : load<double>(row);
    }
    QStringView text(qsizetype row) const {
        const quint32 begin = row ? ends_[row - 1] : 0;
        return QStringView(chars_.data() + begin, qsizetype(ends_[row] - begin));
    }
    QByteArrayView bytes(qsizetype row) const;
    CellView cell(qsizetype row) const;
    /// Bytes of a cell in memory; 0 for texts and binaries.
    int width() const { return width_; }
    const char* fixedCell(qsizetype row) const { return fixed_.data() + row * width_; }
    qint16 offsetMinutes(qsizetype row) const { return offsets_[row]; }
    /// The texts of all rows, one behind the other.
    QStringView allText() const { return QStringView(chars_.data(), chars_.size()); }
    /// Has a row's cell fetched into the processor's cache, in two steps: first where it is kept,
    /// then, for texts, what is there.
    ZOV_ALWAYS_INLINE void prefetch(qsizetype row) const {
        if (width_)
            prefetchMemory(fixed_.data() + row * width_);
        else
            prefetchMemory(ends_.data() + row);
    }
    ZOV_ALWAYS_INLINE void prefetchText(qsizetype row) const {
        if (storage_ != Storage::Text) return;
        prefetchMemory(chars_.data() + (row ? ends_[row - 1] : 0));
        prefetchMemory(chars_.data() + ends_[row]);
    }

    /// Appends all cells of a column of the same type.
    void append(const ColumnCells& other);
    /// Appends one of them.
    void appendCell(const ColumnCells& other, qsizetype row);
    /// Forgets the rows and keeps the memory.
    void clear();
    void shrinkToFit();
    /// Bytes reserved, for the memory figures.
    qsizetype reservedBytes() const;

 private:
    template <typename T>
    T load(qsizetype row) const {
        T value;
        std::memcpy(&value, fixed_.data() + row * qsizetype(sizeof(T)), sizeof(T));
        return value;
    }
    void markNull();
    void endVariable(qsizetype end);
    /// Throws when a text or binary arena would grow past what its ends can count.
    void checkArena(qsizetype end) const;

    ColumnInfo info_;
    Storage storage_;
    int width_;
    qsizetype count_ = 0;
    PackedBuffer<char> fixed_;
    PackedBuffer<char16_t> chars_;
    PackedBuffer<char> raw_;
    PackedBuffer<quint32> ends_;    // end of each row's stretch of chars_ or raw_
    PackedBuffer<qint16> offsets_;  // TicksOffset
    PackedBuffer<quint8> nulls_;    // grows only as far as the last null
};

class RowStore {
 public:
    RowStore() = default;
    explicit RowStore(const std::vector<ColumnInfo>& columns);

    qsizetype rowCount() const { return columns_.empty() ? 0 : columns_.front().count(); }
    int columnCount() const { return int(columns_.size()); }
    ColumnCells& column(int index) { return columns_[size_t(index)]; }
    const ColumnCells& column(int index) const { return columns_[size_t(index)]; }
    CellView cell(qsizetype row, int column) const { return columns_[size_t(column)].cell(row); }
    /// Appends all rows of a store with the same columns.
    void append(const RowStore& other);
    /// Appends one of them.
    void appendRow(const RowStore& other, qsizetype row);
    void clear();
    void shrinkToFit();
    qsizetype reservedBytes() const;

 private:
    std::vector<ColumnCells> columns_;
};

}  // namespace zov
