// The rows behind a recordset and its clones: all of them in memory, or a window
// of the stream that a server-side cursor reads forward.
#pragma once

#include "data/command.h"
#include "data/read_ahead.h"

#include <memory>
#include <span>
#include <vector>

namespace zov {

class RowSource {
 public:
    /// Takes the first result of the stream that has columns; a command without rows stays closed.
    RowSource(std::shared_ptr<ProviderConnection> session, CommandSpec command);
    ~RowSource() { endReadAhead(); }
    RowSource(const RowSource&) = delete;
    RowSource& operator=(const RowSource&) = delete;

    bool hasColumns() const { return !columns_.empty(); }
    const std::vector<ColumnInfo>& columns() const { return columns_; }
    /// -1 when there is no such column; names in any case, the first of several.
    int columnIndex(const QString& name) const;

    const RowStore& store() const { return store_; }
    bool isStreaming() const { return stream_ != nullptr; }

    /// Drops the current window and reads the next; false at the end of the rows. From the third
    /// window on a thread reads ahead.
    bool nextWindow(qsizetype atLeast);
    /// nextWindow() asks this while it waits, and throws ado_error::Cancelled when it gives false;
    /// a thread reads from the next window on.
    void setKeepWaiting(KeepWaiting keepWaiting) { keepWaiting_ = std::move(keepWaiting); }
    /// Puts the current window in place of `rows`, whose memory may be used again. What follows is
    /// nextWindow().
    void takeWindow(RowStore& rows);
    /// Reads the rest of the stream behind the current window.
    void spool();
    /// Makes all rows, those of dropped windows too, available from row 0: spools, and where
    /// windows were dropped asks the server once more.
    void spoolFromStart();
    /// Rows of the windows that were dropped before the current one.
    qsizetype droppedRows() const { return dropped_; }
    /// Ends the stream without reading the rest, and lets the session go.
    void close();

    bool isDeleted(qsizetype row) const {
        return row < qsizetype(deleted_.size()) && deleted_[size_t(row)];
    }
    void markDeleted(qsizetype row);
    qsizetype deletedCount() const { return deletedCount_; }
    /// All rows before this one are deleted.
    qsizetype firstLiveRow() const { return firstLive_; }

    /// The first row at or behind `from`, not deleted, whose cells equal `wanted` (texts ignoring
    /// case, a null a null), one for each of the columns; -1 when there is none. Needs all rows in
    /// memory; the first call for a set of columns builds a hash over it.
    qsizetype findEqual(std::span<const int> columns, std::span<const CellView> wanted,
                        qsizetype from);

    const CommandResult& result() const { return result_; }

 private:
    void start();
    void finishStream();
    void beginReadAhead();
    /// Runs a fetch into the store. Where memory fails within it rows are left of which a part is
    /// missing: none of them may be looked at.
    template <typename Fetch>
    auto wholeRows(Fetch fetch);
    /// Stops reading ahead. A stream that can't be stopped is gone then, and the session with it.
    void endReadAhead();

    /// Rows by the hash of some columns: for each bucket the first row, for each row the next one
    /// of its bucket, ascending. Deleted rows are taken out when they are met.
    struct HashIndex {
        std::vector<int> columns;
        std::vector<qint32> first;  // a power of two of them
        std::vector<qint32> next;
    };
    HashIndex& indexOver(std::span<const int> columns);
    void forgetRows();

    std::shared_ptr<ProviderConnection> session_;
    CommandSpec command_;
    std::shared_ptr<ResultStream> stream_;
    std::vector<ColumnInfo> columns_;
    std::unique_ptr<ReadAhead> ahead_;
    KeepWaiting keepWaiting_;
    int windows_ = 0;
    RowStore store_;
    qsizetype dropped_ = 0;
    std::vector<bool> deleted_;
    qsizetype deletedCount_ = 0;
    qsizetype firstLive_ = 0;
    std::vector<HashIndex> indexes_;
    CommandResult result_;
};

/// A hash under which cells that compareCells() calls equal (texts ignoring case) are the same,
/// among cells of one type, and among integers and decimals of any width and scale.
size_t hashCell(const CellView& cell);

}  // namespace zov
