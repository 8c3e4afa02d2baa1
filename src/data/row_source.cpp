#include "data/row_source.h"

#include "data/base/field_text.h"

#include <QHash>

#include <cmath>

namespace zov {
namespace {

constexpr qsizetype WindowRows = 1024;
constexpr qsizetype WindowStep = 128;
constexpr qsizetype WindowBytes = 4 << 20;

// Numbers of every storage meet in a double: equal numbers are equal there too.
double numberOf(const CellView& cell) {
    switch (cell.storage) {
        case Storage::Float32:
        case Storage::Float64: return cell.real;
        case Storage::Scaled64: return double(cell.integer) / std::pow(10.0, cell.column->scale);
        default: return double(cell.integer);
    }
}

}  // namespace

size_t hashCell(const CellView& cell) {
    if (cell.isNull) return 0;
    switch (cell.storage) {
        case Storage::Int8:
        case Storage::Int16:
        case Storage::Int32:
        case Storage::Int64:
        case Storage::Scaled64:
        case Storage::Float32:
        case Storage::Float64: return qHash(numberOf(cell));
        case Storage::Ticks:
        case Storage::TicksOffset:
            return qHash(cell.integer - qint64(cell.offsetMinutes) * 60 * TicksPerSecond);
        case Storage::Bytes:
        case Storage::Guid: return qHash(cell.bytes);
        case Storage::Text: break;
    }
    size_t hash = 5381;
    const QStringView text = cell.text;
    for (qsizetype i = 0; i < text.size(); ++i) {
        char16_t c = text[i].unicode();
        if (c < 128) {
            if (c >= u'A' && c <= u'Z') c |= 0x20;
        } else {
            // Beyond ASCII one folded character may stand for several; all get the same hash.
            c = 0x80;
        }
        hash = hash * 33 + c;
    }
    return hash;
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

qsizetype RowSource::fetchBlock(qsizetype atLeast) {
    // In small steps, so that rows of megabytes don't fill the memory for the sake of a round number.
    const qsizetype wanted = std::max(atLeast, WindowRows);
    qsizetype fetched = 0;
    while (fetched < wanted) {
        const qsizetype step = std::min(WindowStep, wanted - fetched);
        const qsizetype got = stream_->fetch(store_, step);
        fetched += got;
        if (got == 0) {
            finishStream();
            break;
        }
        if (fetched >= atLeast && store_.reservedBytes() > WindowBytes) break;
    }
    return fetched;
}

bool RowSource::nextWindow(qsizetype atLeast) {
    if (!stream_) return false;
    dropped_ += store_.rowCount();
    store_.clear();
    deleted_.clear();
    return fetchBlock(atLeast) > 0;
}

void RowSource::spool() {
    if (!stream_) return;
    while (stream_->fetch(store_, 16384) > 0) {
    }
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
    if (stream_) stream_->close();
    stream_.reset();
    dropped_ = 0;
    deleted_.clear();
    deletedCount_ = 0;
    start();
    spool();
}

void RowSource::close() {
    if (stream_) stream_->close();
    stream_.reset();
    session_.reset();
}

void RowSource::markDeleted(qsizetype row) {
    if (qsizetype(deleted_.size()) <= row) deleted_.resize(size_t(row) + 1);
    if (!deleted_[size_t(row)]) ++deletedCount_;
    deleted_[size_t(row)] = true;
}

qsizetype RowSource::findEqual(int column, const CellView& wanted, qsizetype from) {
    const ColumnCells& cells = store_.column(column);
    HashIndex& index = indexes_[column];
    if (qsizetype(index.next.size()) != cells.count()) {
        index.first.clear();
        index.first.reserve(size_t(cells.count()));
        index.next.assign(size_t(cells.count()), -1);
        for (qsizetype row = cells.count() - 1; row >= 0; --row) {
            const auto [at, fresh] = index.first.try_emplace(hashCell(cells.cell(row)), qint32(row));
            if (fresh) continue;
            index.next[size_t(row)] = at->second;
            at->second = qint32(row);
        }
    }
    const auto found = index.first.find(hashCell(wanted));
    if (found == index.first.end()) return -1;
    for (qint32 row = found->second; row >= 0; row = index.next[size_t(row)]) {
        if (row >= from && !isDeleted(row) &&
            equalCells(cells.cell(row), wanted, Qt::CaseInsensitive))
            return row;
    }
    return -1;
}

}  // namespace zov
