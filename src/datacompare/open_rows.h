// Rows of Source whose partner was not among the Target's rows read so far. So
// that one row that Target hasn't got doesn't make all of Target be read and kept,
// such rows are left open, and with them everything whose number in the grid
// depends on them; once all of Target is there they are decided in their order.
#pragma once

#include "core/globals.h"
#include "datacompare/keyed_rows.h"

#include <unordered_set>

namespace zov {

class OpenRows {
 public:
    explicit OpenRows(const KeyedRows& target) : target_(target) {}

    bool isEmpty() const { return openCount_ == 0; }
    /// Whether the row's search may be put off: not when rows are open whose partner it might take,
    /// nor when so many are that the tables are in different orders.
    /// `key` is the hash of its key.
    bool canLeaveOpen(quint32 key) const {
        return !target_.isAllRead() && openCount_ < MostOpen && !hashes_.contains(key);
    }
    void leaveOpen(const RowView& row, quint32 key) {
        hashes_.insert(key);
        events_.push_back({Event::Open, keep(source_, row), 0, 0});
        ++openCount_;
    }
    /// A pair that differs. `differences` were counted before the first open row: pairs beyond the
    /// grid's limit are counted alone.
    void addPair(const RowView& row1, const RowView& row2, bool shown, qint32 differences) {
        ++pairs_;
        if (shown && differences + pairs_ < globals().glngMaxRowsInDiffTable) {
            events_.push_back({Event::Pair, keep(source_, row1), keep(target2_, row2), 0});
            return;
        }
        if (events_.empty() || events_.back().kind != Event::Counted)
            events_.push_back({Event::Counted, 0, 0, 0});
        ++events_.back().count;
    }
    /// Everything in its order; nothing is open then. `onOpen(row)`, `onPair(row1, row2)`,
    /// `onCounted(number of pairs)`.
    template <typename OnOpen, typename OnPair, typename OnCounted>
    void replay(OnOpen onOpen, OnPair onPair, OnCounted onCounted) {
        for (const Event& event : events_) {
            if (event.kind == Event::Open)
                onOpen(RowView(source_, event.row1));
            else if (event.kind == Event::Pair)
                onPair(RowView(source_, event.row1), RowView(target2_, event.row2));
            else
                onCounted(event.count);
        }
        events_.clear();
        hashes_.clear();
        source_ = {};
        target2_ = {};
        openCount_ = pairs_ = 0;
    }

 private:
    static constexpr int MostOpen = 4096;

    struct Event {
        enum Kind { Open, Pair, Counted } kind;
        qsizetype row1;
        qsizetype row2;
        qint32 count;
    };
    static qsizetype keep(RowStore& rows, const RowView& row) {
        if (rows.columnCount() == 0) {
            std::vector<ColumnInfo> columns;
            for (int column = 0; column < row.fieldCount(); ++column)
                columns.push_back(row.rows->column(column).info());
            rows = RowStore(columns);
        }
        rows.appendRow(*row.rows, row.row);
        return rows.rowCount() - 1;
    }

    const KeyedRows& target_;
    std::vector<Event> events_;
    std::unordered_set<quint32> hashes_;
    RowStore source_;
    RowStore target2_;
    int openCount_ = 0;
    qint32 pairs_ = 0;
};

}  // namespace zov
