#include "datacompare/keyed_rows.h"

#include "core/globals.h"
#include "data/base/field_text.h"
#include "data/row_source.h"
#include "shell/shell.h"

#include <bit>

namespace zov {
namespace {

constexpr qsizetype FirstBuckets = 16384;
constexpr qsizetype BucketsPerRow = 2;  // at least: mostly the first row of a bucket is the one
constexpr size_t SpareWindows = 2;
constexpr qint64 NearRows = 6000;
constexpr qint64 ManyRowsLeft = 16384;
constexpr qint64 ExpectedAtMost = 1 << 20;  // memory that may turn out not to be needed
constexpr qsizetype FewRowsLeft = 64;       // one of so many
constexpr qsizetype PackedBytes = qsizetype(512) << 20;

quint32 combined(quint32 hash, const CellView& cell) {
    const quint64 mixed = (quint64(hash) << 32 ^ hashCell(cell)) * 0x9E3779B97F4A7C15ULL;
    return quint32(mixed >> 32);
}

}  // namespace

RowView KeyedRows::row() const {
    if (isEof()) return {};
    return rowAt(current_);
}

RowView KeyedRows::rowAt(const Place& place) const {
    const Block& block = blocks_[size_t(place.block)];
    if (!block.packed) return {block.rows, block.stored(place.row)};
    if (unpackedPlace_ != place) {
        if (unpacked_.columnCount() == 0) unpacked_ = RowStore(columns());
        unpacked_.clear();
        block.packed->appendTo(place.row, unpacked_);
        unpackedPlace_ = place;
    }
    return {unpacked_, 0};
}

qint64 KeyedRows::rowNumber() const {
    return isEof() ? -1 : blocks_[size_t(current_.block)].before + current_.row;
}

std::vector<ColumnInfo> KeyedRows::columns() const {
    std::vector<ColumnInfo> columns;
    for (int column = 0; column < columnCount(); ++column) columns.push_back(columnInfo(column));
    return columns;
}

void KeyedRows::readAll() {
    while (readRows()) {
    }
}

KeyedRows::Place KeyedRows::end() const {
    if (blocks_.empty()) return {0, 0};
    return {int(blocks_.size()) - 1, int(blocks_.back().count)};
}

bool KeyedRows::readRows() {
    if (allRead_) return false;
    // Who stops the comparison needn't wait for the end of a large table.
    shell().pumpEvents();
    if (globals().gblnStop) return false;
    if (window_.columnCount() == 0 && !spare_.empty()) {
        window_ = std::move(spare_.back());
        spare_.pop_back();
    }
    if (!rs_.TakeWindow(window_)) {
        allRead_ = true;
        return false;
    }
    // With many rows left, or far from the last one that was found, the tables are in different
    // orders, and the rows stay for long.
    const bool pack =
        !keyColumns_.empty() && (liveRows_ > ManyRowsLeft || rowsRead() > lastFound_ + NearRows);
    if (!pack || !blocks_.back().packed || blocks_.back().packed->reservedBytes() > PackedBytes) {
        if (pack) indexRows();
        Block block;
        block.before = rowsRead();
        if (pack) block.packed = std::make_unique<PackedRows>(columns());
        blocks_.push_back(std::move(block));
    }
    Block& block = blocks_.back();
    const qsizetype count = window_.rowCount();
    if (pack)
        packWindow();
    else
        block.rows = std::exchange(window_, RowStore());
    block.count += count;
    block.live += count;
    liveRows_ += count;
    block.deleted.resize(size_t(block.count));
    return true;
}

void KeyedRows::packWindow() {
    constexpr size_t Ahead = 16;
    Block& block = blocks_.back();
    block.packed->append(window_);
    const size_t count = size_t(window_.rowCount());
    windowHashes_.resize(count);
    for (size_t row = 0; row < count; ++row)
        windowHashes_[row] = hashOf(RowView(window_, qsizetype(row)));
    const qsizetype rows = qsizetype(std::min(rowsExpected_, ExpectedAtMost));
    if (rows * BucketsPerRow > buckets_.size())
        growBuckets(qsizetype(std::bit_ceil(size_t(rows * BucketsPerRow))));
    indexed_ = end();
    for (size_t row = 0; row < count; ++row, ++indexed_.row) {
        if (row + Ahead < count) prefetchMemory(&bucketOf(windowHashes_[row + Ahead]));
        addToIndex(indexed_, windowHashes_[row]);
    }
}

quint32 KeyedRows::hashOf(const RowView& row) const {
    quint32 hash = 0;
    for (const int column : keyColumns_) hash = combined(hash, row.rows->cell(row.row, column));
    return hash;
}

void KeyedRows::append(qint32 node) {
    Bucket& bucket = bucketOf(nodes_[node].hash);
    nodes_[node].next = -1;
    if (bucket.first < 0)
        bucket.first = node;
    else
        nodes_[bucket.last].next = node;
    bucket.last = node;
}

// Chains are gone through in their order, so that they stay in the order of the rows.
void KeyedRows::growBuckets(qsizetype count) {
    const PackedBuffer<Bucket> old = std::exchange(buckets_, PackedBuffer<Bucket>());
    Bucket* const fresh = buckets_.extend(count);
    std::fill(fresh, fresh + count, Bucket{-1, -1});
    for (qsizetype i = 0; i < old.size(); ++i) {
        for (qint32 node = old[i].first; node >= 0;) {
            const qint32 next = nodes_[node].next;
            append(node);
            node = next;
        }
    }
}

void KeyedRows::addToIndex(const Place& place, quint32 hash) {
    if (++indexedRows_ * BucketsPerRow > buckets_.size())
        growBuckets(buckets_.size() ? buckets_.size() * 4 : FirstBuckets);
    qint32 node = freeNode_;
    if (node >= 0) {
        freeNode_ = nodes_[node].next;
        nodes_[node] = {place, hash, -1};
    } else {
        node = qint32(nodes_.size());
        nodes_.append({place, hash, -1});
    }
    append(node);
}

// Packed rows are in the index from the beginning.
void KeyedRows::indexRows() {
    for (; indexed_ < end(); indexed_ = {indexed_.block + 1, 0}) {
        const Block& block = blocks_[size_t(indexed_.block)];
        for (; indexed_.row < int(block.count); ++indexed_.row)
            if (!block.deleted[size_t(indexed_.row)]) addToIndex(indexed_, hashOf(rowAt(indexed_)));
        if (&block == &blocks_.back()) return;
    }
}

bool KeyedRows::hasKey(const Place& place, std::span<const CellView> key) const {
    const RowView row = rowAt(place);
    for (size_t i = 0; i < key.size(); ++i)
        if (!equalCells(row.rows->cell(row.row, keyColumns_[i]), key[i], Qt::CaseInsensitive))
            return false;
    return true;
}

quint32 KeyedRows::hashOfKey(std::span<const CellView> key) {
    quint32 hash = 0;
    for (const CellView& cell : key) hash = combined(hash, cell);
    return hash;
}

void KeyedRows::prefetch(quint32 hash, int step) const {
    if (buckets_.size() == 0) return;
    const Bucket& bucket = bucketOf(hash);
    if (step == 0) return prefetchMemory(&bucket);
    if (bucket.first < 0) return;
    const Node* node = &nodes_[bucket.first];
    if (step == 1) return prefetchMemory(node);
    while (node->hash != hash && node->next >= 0) node = &nodes_[node->next];
    const Block& block = blocks_[size_t(node->place.block)];
    const int row = node->place.row;
    if (block.packed) {
        if (step == 2)
            block.packed->prefetchStart(row);
        else
            block.packed->prefetch(row);
    } else if (block.kept.empty()) {
        for (int column = 0; column < block.rows.columnCount(); ++column) {
            if (step == 2)
                block.rows.column(column).prefetch(row);
            else
                block.rows.column(column).prefetchText(row);
        }
    }
}

bool KeyedRows::findAmongRead(std::span<const CellView> key, quint32 hash, Place first) {
    indexRows();
    if (buckets_.size() == 0) return false;
    qint32 node = bucketOf(hash).first;
    for (; node >= 0; node = nodes_[node].next) {
        const Node& at = nodes_[node];
        if (at.hash != hash || at.place < first || !hasKey(at.place, key)) continue;
        current_ = found_ = at.place;
        foundHash_ = hash;
        lastFound_ = std::max(lastFound_, rowNumber());
        return true;
    }
    return false;
}

void KeyedRows::find(std::span<const CellView> key) {
    const quint32 hash = hashOfKey(key);
    Place searched{0, 0};
    do {
        if (findAmongRead(key, hash, searched)) return;
        searched = end();
    } while (readRows());
    MoveBehindLast();
}

bool KeyedRows::findNear(std::span<const CellView> key, quint32 hash) {
    Place searched{0, 0};
    for (;;) {
        if (findAmongRead(key, hash, searched)) return true;
        searched = end();
        if (!allRead_ && rowsRead() > lastFound_ + NearRows) return false;
        if (readRows()) continue;
        MoveBehindLast();
        return true;
    }
}

void KeyedRows::shrink(Block& block) {
    RowStore few;
    std::vector<int> kept;
    if (block.live > 0) {
        few = RowStore(columns());
        for (int row = block.firstLive; row < int(block.count); ++row) {
            if (block.deleted[size_t(row)]) continue;
            if (block.packed)
                block.packed->appendTo(row, few);
            else
                few.appendRow(block.rows, row);
            kept.push_back(row);
        }
    }
    if (!block.packed && spare_.size() < SpareWindows) spare_.push_back(std::move(block.rows));
    block.packed.reset();
    block.rows = std::move(few);
    block.kept = std::move(kept);
}

void KeyedRows::Delete() {
    Block& block = blocks_[size_t(current_.block)];
    if (current_ < indexed_) {
        const quint32 hash = current_ == found_ ? foundHash_ : hashOf(rowAt(current_));
        Bucket& bucket = bucketOf(hash);
        qint32 before = -1, node = bucket.first;
        while (nodes_[node].place != current_) {
            before = node;
            node = nodes_[node].next;
        }
        const qint32 next = nodes_[node].next;
        if (before < 0)
            bucket.first = next;
        else
            nodes_[before].next = next;
        if (next < 0) bucket.last = before;
        nodes_[node].next = freeNode_;
        freeNode_ = node;
        --indexedRows_;
    }
    block.deleted[size_t(current_.row)] = true;
    --block.live;
    --liveRows_;
    if (block.live == 0 || (block.kept.empty() && block.live < block.count / FewRowsLeft))
        shrink(block);
    if (block.live > 0)
        while (block.deleted[size_t(block.firstLive)]) ++block.firstLive;
}

bool KeyedRows::settle(Place& place) {
    for (;;) {
        while (size_t(place.block) >= blocks_.size())
            if (!readRows()) return false;
        const Block& block = blocks_[size_t(place.block)];
        if (block.live > 0)
            for (place.row = std::max(place.row, block.firstLive); place.row < int(block.count);
                 ++place.row)
                if (!block.deleted[size_t(place.row)]) return true;
        ++place.block;
        place.row = 0;
    }
}

void KeyedRows::MoveFirst() {
    while (size_t(firstLiveBlock_) < blocks_.size() && blocks_[size_t(firstLiveBlock_)].live == 0)
        ++firstLiveBlock_;
    Place place{firstLiveBlock_, 0};
    if (settle(place))
        current_ = place;
    else
        MoveBehindLast();
}

void KeyedRows::MoveNext() {
    if (isEof()) return;
    Place place{current_.block, current_.row + 1};
    if (settle(place))
        current_ = place;
    else
        MoveBehindLast();
}

}  // namespace zov
