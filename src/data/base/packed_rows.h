// Rows in memory, each in one piece: for rows that are sought in any order. Those
// of a RowStore are spread over its columns, and each column of a row that was
// not looked at lately is a wait for the memory.
#pragma once

#include "data/base/row_store.h"

namespace zov {

class PackedRows {
 public:
    explicit PackedRows(const std::vector<ColumnInfo>& columns);

    qsizetype count() const { return starts_.size() - 1; }
    /// Appends all rows of a store with the same columns.
    void append(const RowStore& rows);
    /// Appends one row to such a store.
    void appendTo(qsizetype row, RowStore& rows) const;
    /// Has a row fetched into the processor's cache, in two steps: where it begins, and it.
    void prefetchStart(qsizetype row) const;
    void prefetch(qsizetype row) const;
    qsizetype reservedBytes() const { return bytes_.capacity() + starts_.capacity() * 8; }

 private:
    // A row: its fixed cells and the lengths of its texts and binaries, by column, the offsets of
    // its times with one behind these, a bit for each null, and the texts and binaries themselves.
    // Texts of letters below 256 take a byte each.
    struct Column {
        Storage storage;
        int width;              // 0: a text or binary
        int at;                 // of the cell, or of the length
        int offsetAt = -1;      // of a time's offset
        bool isNarrow = false;  // of the rows that are being appended
    };
    std::vector<Column> columns_;
    int nullsAt_ = 0;
    int headSize_ = 0;
    PackedBuffer<char> bytes_;
    PackedBuffer<qint64> starts_;  // of each row, and of the next one
    std::vector<qint64> next_;     // where each row's next text goes, while rows are appended
};

}  // namespace zov
