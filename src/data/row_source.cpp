#include "data/row_source.h"

#include "data/base/field_text.h"
#include "util/vector_registers.h"

#include <QHash>

#include <algorithm>
#include <bit>
#include <system_error>

namespace zov {
namespace {

constexpr qsizetype FirstWindowRows = 1024;
constexpr int WindowsWithoutThread = 2;

size_t mixed(quint64 value) {
    value *= 0x9E3779B97F4A7C15ULL;
    return size_t(value ^ (value >> 32));
}

// 12.50 and 12.5, 3.00 and 3 are the same number.
size_t hashDecimal(qint64 digits, int scale) {
    for (; scale > 0 && digits % 10 == 0; --scale) digits /= 10;
    return mixed(quint64(digits) + quint64(scale) * 0x51ED270B0F1A3D5BULL);
}

size_t combinedHash(size_t hash, const CellView& cell) {
    return mixed(hash ^ (hashCell(cell) + 0x9E3779B97F4A7C15ULL + (hash << 6)));
}

// As case-insensitive comparing sees the letters: folded one by one.
size_t hashText(QStringView text) {
    quint64 hash = 14695981039346656037ULL;
    const char16_t* c = text.utf16();
    for (qsizetype i = 0; i < text.size(); ++i) {
        char32_t letter = c[i];
        if (letter < 128) {
            if (letter >= U'A' && letter <= U'Z') letter |= 0x20;
        } else if (QChar::isHighSurrogate(letter) && i + 1 < text.size() &&
                   QChar::isLowSurrogate(c[i + 1])) {
            letter = QChar::toCaseFolded(QChar::surrogateToUcs4(c[i], c[i + 1]));
            ++i;
        } else {
            letter = QChar::toCaseFolded(letter);
        }
        hash = (hash ^ letter) * 1099511628211ULL;
    }
    return mixed(hash);
}

}  // namespace

size_t hashCell(const CellView& cell) {
    if (cell.isNull) return 0;
    switch (cell.storage) {
        case Storage::Int8:
        case Storage::Int16:
        case Storage::Int32:
        case Storage::Int64:
            return hashDecimal(cell.integer, 0);
        case Storage::Scaled64:
            return hashDecimal(cell.integer, cell.column->scale);
        case Storage::Float32:
        case Storage::Float64:
            return qHash(cell.real);
        case Storage::Ticks:
        case Storage::TicksOffset:
            return mixed(quint64(cell.integer - qint64(cell.offsetMinutes) * 60 * TicksPerSecond));
        case Storage::Bytes:
        case Storage::Guid:
            return qHash(cell.bytes);
        case Storage::Text:
            break;
    }
    // Long decimals are kept as texts and compared as numbers are written.
    if (isNumericType(cell.column->type)) return hashText(cellText(cell));
    return hashText(cell.text);
}

RowSource::RowSource(std::shared_ptr<ProviderConnection> session, CommandSpec command)
    : session_(std::move(session)), command_(std::move(command)) {
    start();
}

void RowSource::start() {
    stream_ = session_->execute(command_);
    while (stream_->columns().empty()) {
        if (!stream_->nextResult()) {
            finishStream();
            return;
        }
    }
    columns_ = stream_->columns();
    store_ = RowStore(columns_);
}

int RowSource::columnIndex(const QString& name) const {
    for (size_t i = 0; i < columns_.size(); ++i)
        if (columns_[i].name.compare(name, Qt::CaseInsensitive) == 0) return int(i);
    return -1;
}

void RowSource::finishStream() {
    if (!stream_) return;
    while (stream_->nextResult()) {
    }
    result_.returnValue = stream_->returnValue();
    result_.outputs.clear();
    for (size_t i = 0; i < command_.parameters.size(); ++i)
        result_.outputs.push_back(stream_->outputValue(int(i)));
    stream_.reset();
    // Where windows were dropped, going back to the first row needs the session once more.
    if (dropped_ == 0) session_.reset();
}

void RowSource::endReadAhead() {
    if (!ahead_) return;
    const bool ended = ahead_->end();
    ahead_.reset();
    if (ended) return;
    stream_.reset();
    session_.reset();
}

template <typename Fetch>
auto RowSource::wholeRows(Fetch fetch) {
    try {
        return fetch();
    } catch (const DbError& error) {
        if (!error.leavesRowsWhole()) forgetRows();
        throw;
    } catch (...) {
        forgetRows();
        throw;
    }
}

bool RowSource::nextWindow(qsizetype atLeast) {
    if (!stream_) return false;
    dropped_ += store_.rowCount();
    deleted_.clear();
    firstLive_ = 0;
    indexes_.clear();
    // Most results are small, and not worth a thread.
    if (!ahead_ && (++windows_ > WindowsWithoutThread || keepWaiting_)) beginReadAhead();
    if (ahead_) {
        if (ahead_->next(store_, keepWaiting_)) return true;
        ahead_.reset();
        store_.clear();
        finishStream();
        return false;
    }
    store_.clear();
    const auto fetched = wholeRows(
        [&] { return fetchWindow(*stream_, store_, std::max(atLeast, FirstWindowRows), atLeast); });
    if (fetched > 0) return true;
    finishStream();
    return false;
}

void RowSource::beginReadAhead() {
    try {
        ahead_ = std::make_unique<ReadAhead>(stream_, session_, columns_);
    } catch (const std::system_error&) {
        // There is no thread to be had: the rows are read here, as the first ones were.
    }
}

void RowSource::takeWindow(RowStore& rows) {
    dropped_ += store_.rowCount();
    std::swap(store_, rows);
    if (store_.columnCount() == 0) store_ = RowStore(columns_);
    store_.clear();
}

void RowSource::forgetRows() {
    store_.clear();
    deleted_.clear();
    firstLive_ = 0;
    indexes_.clear();
}

void RowSource::spool() {
    if (!stream_) return;
    indexes_.clear();
    wholeRows([&] {
        if (ahead_) {
            ahead_->stop();
            for (RowStore window; ahead_->next(window);) store_.append(window);
            ahead_.reset();
        }
        releaseWideRegisters();
        while (stream_->fetch(store_, 16384) > 0) {
        }
        return true;
    });
    finishStream();
    store_.shrinkToFit();
}

void RowSource::spoolFromStart() {
    if (dropped_ == 0) {
        spool();
        return;
    }
    if (!session_)
        throw DbError(ado_error::Unspecified,
                      QStringLiteral("The rows at the start of this result were let go already."));
    endReadAhead();
    windows_ = 0;
    if (!session_)
        throw DbError(ado_error::Unspecified,
                      QStringLiteral("The server doesn't answer any more."));
    if (stream_) stream_->close();
    stream_.reset();
    dropped_ = 0;
    forgetRows();
    deletedCount_ = 0;
    start();
    spool();
}

void RowSource::close() {
    endReadAhead();
    if (stream_) stream_->close();
    stream_.reset();
    session_.reset();
}

void RowSource::markDeleted(qsizetype row) {
    if (qsizetype(deleted_.size()) <= row) deleted_.resize(size_t(store_.rowCount()));
    if (!deleted_[size_t(row)]) ++deletedCount_;
    deleted_[size_t(row)] = true;
    while (isDeleted(firstLive_)) ++firstLive_;
}

RowSource::HashIndex& RowSource::indexOver(std::span<const int> columns) {
    for (HashIndex& index : indexes_)
        if (std::equal(columns.begin(), columns.end(), index.columns.begin(), index.columns.end()))
            return index;
    HashIndex& index = indexes_.emplace_back();
    index.columns.assign(columns.begin(), columns.end());
    const qsizetype rows = store_.rowCount();
    index.first.assign(std::bit_ceil(size_t(std::max<qsizetype>(rows, 1))), -1);
    index.next.assign(size_t(rows), -1);
    const size_t mask = index.first.size() - 1;
    for (qsizetype row = rows - 1; row >= 0; --row) {
        size_t hash = 0;
        for (const int column : columns) hash = combinedHash(hash, store_.cell(row, column));
        qint32& first = index.first[hash & mask];
        index.next[size_t(row)] = first;
        first = qint32(row);
    }
    return index;
}

qsizetype RowSource::findEqual(std::span<const int> columns, std::span<const CellView> wanted,
                               qsizetype from) {
    HashIndex& index = indexOver(columns);
    size_t hash = 0;
    for (const CellView& cell : wanted) hash = combinedHash(hash, cell);
    qint32* link = &index.first[hash & (index.first.size() - 1)];
    while (*link >= 0) {
        const qint32 row = *link;
        qint32& next = index.next[size_t(row)];
        if (isDeleted(row)) {
            *link = next;
            continue;
        }
        link = &next;
        if (row < from) continue;
        bool equal = true;
        for (size_t i = 0; i < columns.size() && equal; ++i)
            equal = equalCells(store_.cell(row, columns[i]), wanted[i], Qt::CaseInsensitive);
        if (equal) return row;
    }
    return -1;
}

}  // namespace zov
