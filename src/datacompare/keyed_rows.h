// The Target's rows as the comparison by key sees them: found by their key, in
// the order in which they come, and gone once they were matched. Read only as far
// as a search needs: what is found among the first rows is what would be found
// among all. Where the tables are in the same order little is ever in memory.
#pragma once

#include "data/base/packed_rows.h"
#include "data/recordset.h"

#include <algorithm>
#include <memory>
#include <span>
#include <vector>

namespace zov {

/// A row where it is stored. Valid until its owner moves on.
struct RowView {
    const RowStore* rows = nullptr;
    qsizetype row = -1;
    RowView() = default;
    RowView(const RowStore& store, qsizetype at) : rows(&store), row(at) {}
    /// The current record; none (row -1) at the ends.
    explicit RowView(const Recordset& rs) : rows(&rs.rowStore()), row(rs.currentRow()) {}
    int fieldCount() const { return rows ? rows->columnCount() : 0; }
};

/// Records one after the other.
class RowCursor {
 public:
    virtual ~RowCursor() = default;
    virtual void MoveFirst() = 0;
    virtual void MoveNext() = 0;
    virtual bool isEof() const = 0;
    virtual RowView row() const = 0;
};

class RecordsetCursor : public RowCursor {
 public:
    explicit RecordsetCursor(Recordset& rs) : rs_(rs) {}
    void MoveFirst() override { rs_.MoveFirst(); }
    void MoveNext() override { rs_.MoveNext(); }
    bool isEof() const override { return rs_.isEof(); }
    RowView row() const override { return RowView(rs_); }

 private:
    Recordset& rs_;
};

class KeyedRows : public RowCursor {
 public:
    /// Takes the rows out of `rs`, which must live as long as this. `rowsExpected` spares the index
    /// some growing.
    explicit KeyedRows(Recordset& rs, qint64 rowsExpected = 0)
        : rs_(rs), rowsExpected_(rowsExpected) {}
    /// The columns that rows are found by; before the first search.
    void setKey(std::vector<int> columns) { keyColumns_ = std::move(columns); }

    int columnCount() const { return rs_.fieldCount(); }
    const ColumnInfo& columnInfo(int column) const { return rs_.field(column).info(); }
    int fieldIndex(const QString& name) const { return rs_.fieldIndex(name); }

    /// To the first row that is left whose key equals the cells (texts ignoring case, a null a
    /// null); to the end when there is none.
    void find(std::span<const CellView> key);
    /// The same among the rows read so far, and those that stand little further on than the last
    /// row that was found. False: none of them, but there are more. `hash`: that of hashOfKey.
    bool findNear(std::span<const CellView> key, quint32 hash);
    bool isAllRead() const { return allRead_; }
    /// Reads the rest, unless Stop is pressed meanwhile.
    void readAll();
    /// Fetches what a later search will need into the processor's cache, in four steps: call with 0
    /// well before the search, with 1 to 3 nearer to it. `hash` is that of hashOfKey.
    void prefetch(quint32 hash, int step) const;
    static quint32 hashOfKey(std::span<const CellView> key);
    /// To the first row that is left and meets the test; to the end when there is none.
    template <typename Test>
    void findFirst(Test meets) {
        for (MoveFirst(); !isEof() && !meets(row()); MoveNext()) {
        }
    }
    /// Takes the current row out.
    void Delete();

    // RowCursor, over the rows that are left.
    void MoveFirst() override;
    void MoveNext() override;
    void MoveBehindLast() { current_ = {-1, -1}; }
    bool isEof() const override { return current_.block < 0; }
    RowView row() const override;
    /// Place from 0 among all rows, deleted ones included; -1 at the end.
    qint64 rowNumber() const;

 private:
    /// Rows that were read together: a window of the recordset, or many windows that are packed
    /// because their rows will stay for long.
    struct Block {
        RowStore rows;
        std::unique_ptr<PackedRows> packed;
        qint64 before = 0;    // rows in the blocks before
        qsizetype count = 0;  // stays when the rows are let go
        qsizetype live = 0;
        int firstLive = 0;  // all rows before are deleted
        std::vector<bool> deleted;
        // Of a block that has few rows left these alone are kept: their places, ascending.
        std::vector<int> kept;
        qsizetype stored(int row) const {
            if (kept.empty()) return row;
            return std::lower_bound(kept.begin(), kept.end(), row) - kept.begin();
        }
    };
    struct Place {
        int block = -1;
        int row = -1;
        auto operator<=>(const Place&) const = default;
    };
    // Rows by the hash of their keys: for each bucket a chain in the order of the rows.
    struct Node {
        Place place;
        quint32 hash;
        qint32 next;
    };
    struct Bucket {
        qint32 first;
        qint32 last;
    };

    std::vector<ColumnInfo> columns() const;
    /// Reads one more window.
    bool readRows();
    qint64 rowsRead() const {
        return blocks_.empty() ? 0 : blocks_.back().before + blocks_.back().count;
    }
    /// Where the next window's rows will begin, or before.
    Place end() const;
    /// Adds the rows that no search has needed yet.
    void indexRows();
    void addToIndex(const Place& place, quint32 hash);
    void growBuckets(qsizetype count);
    /// Packs and indexes the rows of `window_`.
    void packWindow();
    bool findAmongRead(std::span<const CellView> key, quint32 hash, Place first);
    void append(qint32 node);
    RowView rowAt(const Place& place) const;
    quint32 hashOf(const RowView& row) const;
    Bucket& bucketOf(quint32 hash) { return buckets_[qsizetype(hash) & (buckets_.size() - 1)]; }
    const Bucket& bucketOf(quint32 hash) const {
        return buckets_[qsizetype(hash) & (buckets_.size() - 1)];
    }
    bool hasKey(const Place& place, std::span<const CellView> key) const;
    /// Whether `place` moved to a row that is left, from where it is forward.
    bool settle(Place& place);
    /// Lets the memory of rows go that were taken out.
    void shrink(Block& block);

    Recordset& rs_;
    const qint64 rowsExpected_;
    std::vector<int> keyColumns_;
    std::vector<Block> blocks_;
    bool allRead_ = false;
    Place current_;
    Place found_;  // by its hash
    quint32 foundHash_ = 0;
    int firstLiveBlock_ = 0;
    Place indexed_{0, 0};  // all rows before are
    PackedBuffer<Bucket> buckets_;
    PackedBuffer<Node> nodes_;
    qint32 freeNode_ = -1;
    qsizetype indexedRows_ = 0;
    qint64 liveRows_ = 0;
    qint64 lastFound_ = 0;
    std::vector<RowStore> spare_;
    RowStore window_;
    std::vector<quint32> windowHashes_;
    // The last packed row that was looked at.
    mutable RowStore unpacked_;
    mutable Place unpackedPlace_;
};

}  // namespace zov
