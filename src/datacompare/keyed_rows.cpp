#include "datacompare/keyed_rows.h"

#include "core/globals.h"
#include "data/base/field_text.h"
#include "data/row_source.h"
#include "shell/shell.h"

namespace zov {
namespace {

constexpr size_t FirstBuckets = 8192;
constexpr size_t SpareWindows = 2;
constexpr qint64 NearRows = 6000;
constexpr qsizetype FewRowsLeft = 64;  // one of so many

quint32 combined(quint32 hash, const CellView& cell) {
    const quint64 mixed = (quint64(hash) << 32 ^ hashCell(cell)) * 0x9E3779B97F4A7C15ULL;
    return quint32(mixed >> 32);
}

}  // namespace

RowView KeyedRows::row() const {
    if (isEof()) return {};
    const Block& block = blocks_[size_t(current_.block)];
    return {block.rows, block.stored(current_.row)};
}

qint64 KeyedRows::rowNumber() const {
    return isEof() ? -1 : blocks_[size_t(current_.block)].before + current_.row;
}

void KeyedRows::readAll() {
    while (readBlock()) {
    }
}

bool KeyedRows::readBlock() {
    if (allRead_) return false;
    // Who stops the comparison needn't wait for the end of a large table.
    shell().pumpEvents();
    if (globals().gblnStop) return false;
    Block block;
    if (!spare_.empty()) {
        block.rows = std::move(spare_.back());
        spare_.pop_back();
    }
    if (!rs_.TakeWindow(block.rows)) {
        allRead_ = true;
        return false;
    }
    block.count = block.live = block.rows.rowCount();
    if (!blocks_.empty()) block.before = blocks_.back().before + blocks_.back().count;
    block.deleted.resize(size_t(block.count));
    blocks_.push_back(std::move(block));
    return true;
}

quint32 KeyedRows::hashOf(const Block& block, int row) const {
    quint32 hash = 0;
    const qsizetype at = block.stored(row);
    for (const int column : columns_) hash = combined(hash, block.rows.cell(at, column));
    return hash;
}

void KeyedRows::append(qint32 node) {
    Bucket& bucket = buckets_[nodes_[size_t(node)].hash & (buckets_.size() - 1)];
    nodes_[size_t(node)].next = -1;
    if (bucket.first < 0) bucket.first = node;
    else nodes_[size_t(bucket.last)].next = node;
    bucket.last = node;
}

// Chains are gone through in their order, so that they stay in the order of the rows.
void KeyedRows::growBuckets() {
    const std::vector<Bucket> old = std::exchange(
        buckets_, std::vector<Bucket>(buckets_.empty() ? FirstBuckets : buckets_.size() * 2));
    for (const Bucket& bucket : old) {
        for (qint32 node = bucket.first; node >= 0;) {
            const qint32 next = nodes_[size_t(node)].next;
            append(node);
            node = next;
        }
    }
}

void KeyedRows::indexBlocks() {
    for (; indexedBlocks_ < blocks_.size(); ++indexedBlocks_) {
        const Block& block = blocks_[indexedBlocks_];
        indexedRows_ += size_t(block.live);
        while (indexedRows_ > buckets_.size()) growBuckets();
        for (int row = 0; row < int(block.count); ++row) {
            if (block.deleted[size_t(row)]) continue;
            qint32 node = freeNode_;
            if (node < 0) {
                node = qint32(nodes_.size());
                nodes_.emplace_back();
            } else {
                freeNode_ = nodes_[size_t(node)].next;
            }
            nodes_[size_t(node)].place = {int(indexedBlocks_), row};
            nodes_[size_t(node)].hash = hashOf(block, row);
            append(node);
        }
    }
}

bool KeyedRows::hasKey(const Place& place, std::span<const CellView> key) const {
    const Block& block = blocks_[size_t(place.block)];
    const qsizetype row = block.stored(place.row);
    for (size_t i = 0; i < key.size(); ++i)
        if (!equalCells(block.rows.cell(row, columns_[i]), key[i], Qt::CaseInsensitive)) return false;
    return true;
}

quint32 KeyedRows::hashOfKey(std::span<const CellView> key) {
    quint32 hash = 0;
    for (const CellView& cell : key) hash = combined(hash, cell);
    return hash;
}

void KeyedRows::prefetch(quint32 hash, int step) const {
    if (buckets_.empty()) return;
    const Bucket& bucket = buckets_[hash & (buckets_.size() - 1)];
    if (step == 0) return __builtin_prefetch(&bucket);
    if (bucket.first < 0) return;
    const Node& node = nodes_[size_t(bucket.first)];
    if (step == 1) return __builtin_prefetch(&node);
    const Block& block = blocks_[size_t(node.place.block)];
    if (!block.kept.empty()) return;
    for (int column = 0; column < block.rows.columnCount(); ++column) {
        if (step == 2) block.rows.column(column).prefetch(node.place.row);
        else block.rows.column(column).prefetchText(node.place.row);
    }
}

bool KeyedRows::findAmongRead(std::span<const CellView> key, quint32 hash, size_t firstBlock) {
    indexBlocks();
    if (buckets_.empty()) return false;
    qint32 node = buckets_[hash & (buckets_.size() - 1)].first;
    for (; node >= 0; node = nodes_[size_t(node)].next) {
        const Node& at = nodes_[size_t(node)];
        if (at.hash != hash || size_t(at.place.block) < firstBlock || !hasKey(at.place, key)) continue;
        current_ = at.place;
        lastFound_ = std::max(lastFound_, rowNumber());
        return true;
    }
    return false;
}

void KeyedRows::find(std::span<const CellView> key) {
    const quint32 hash = hashOfKey(key);
    size_t searched = 0;
    do {
        if (findAmongRead(key, hash, searched)) return;
        searched = blocks_.size();
    } while (readBlock());
    MoveBehindLast();
}

bool KeyedRows::findNear(std::span<const CellView> key) {
    const quint32 hash = hashOfKey(key);
    size_t searched = 0;
    for (;;) {
        if (findAmongRead(key, hash, searched)) return true;
        searched = blocks_.size();
        const qint64 read = blocks_.empty() ? 0 : blocks_.back().before + blocks_.back().count;
        if (!allRead_ && read > lastFound_ + NearRows) return false;
        if (readBlock()) continue;
        MoveBehindLast();
        return true;
    }
}

void KeyedRows::shrink(Block& block) {
    RowStore few;
    std::vector<int> kept;
    if (block.live > 0) {
        std::vector<ColumnInfo> columns;
        for (int column = 0; column < columnCount(); ++column) columns.push_back(columnInfo(column));
        few = RowStore(columns);
        for (int row = block.firstLive; row < int(block.count); ++row) {
            if (block.deleted[size_t(row)]) continue;
            few.appendRow(block.rows, row);
            kept.push_back(row);
        }
    }
    if (spare_.size() < SpareWindows) spare_.push_back(std::move(block.rows));
    block.rows = std::move(few);
    block.kept = std::move(kept);
}

void KeyedRows::Delete() {
    Block& block = blocks_[size_t(current_.block)];
    if (size_t(current_.block) < indexedBlocks_) {
        const quint32 hash = hashOf(block, current_.row);
        Bucket& bucket = buckets_[hash & (buckets_.size() - 1)];
        qint32 before = -1, node = bucket.first;
        while (nodes_[size_t(node)].place.block != current_.block ||
               nodes_[size_t(node)].place.row != current_.row) {
            before = node;
            node = nodes_[size_t(node)].next;
        }
        const qint32 next = nodes_[size_t(node)].next;
        if (before < 0) bucket.first = next;
        else nodes_[size_t(before)].next = next;
        if (next < 0) bucket.last = before;
        nodes_[size_t(node)].next = freeNode_;
        freeNode_ = node;
        --indexedRows_;
    }
    block.deleted[size_t(current_.row)] = true;
    --block.live;
    if (block.live == 0 || (block.kept.empty() && block.live < block.count / FewRowsLeft))
        shrink(block);
    if (block.live > 0)
        while (block.deleted[size_t(block.firstLive)]) ++block.firstLive;
}

bool KeyedRows::settle(Place& place) {
    for (;;) {
        while (size_t(place.block) >= blocks_.size())
            if (!readBlock()) return false;
        const Block& block = blocks_[size_t(place.block)];
        if (block.live > 0)
            for (place.row = std::max(place.row, block.firstLive); place.row < int(block.count); ++place.row)
                if (!block.deleted[size_t(place.row)]) return true;
        ++place.block;
        place.row = 0;
    }
}

void KeyedRows::MoveFirst() {
    while (size_t(firstLiveBlock_) < blocks_.size() && blocks_[size_t(firstLiveBlock_)].live == 0)
        ++firstLiveBlock_;
    Place place{firstLiveBlock_, 0};
    if (settle(place)) current_ = place;
    else MoveBehindLast();
}

void KeyedRows::MoveNext() {
    if (isEof()) return;
    Place place{current_.block, current_.row + 1};
    if (settle(place)) current_ = place;
    else MoveBehindLast();
}

}  // namespace zov
