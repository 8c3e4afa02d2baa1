#include "data/base/packed_rows.h"

#include "data/base/letter_width.h"

namespace zov {
namespace {

constexpr qint64 CacheLine = 64;
constexpr qint64 PrefetchedBytes = 512;
constexpr int LengthSize = 4;
constexpr quint32 Wide = 1u << 31;  // in a length: letters of 16 bits

/// A loop of its own for each width, so that the copies are single instructions.
template <int Width>
void copyCells(const ColumnCells& cells, char* rows, const qint64* starts, qint64 first,
               qsizetype count) {
    const char* from = cells.fixedCell(0);
    for (qsizetype row = 0; row < count; ++row, from += Width)
        std::memcpy(rows + (starts[row] - first), from, Width);
}

}  // namespace

PackedRows::PackedRows(const std::vector<ColumnInfo>& columns) {
    for (const ColumnInfo& info : columns) {
        const ColumnCells cells(info);
        Column column{cells.storage(), cells.width(), headSize_};
        headSize_ += column.width ? column.width : LengthSize;
        if (column.storage == Storage::TicksOffset) {
            column.offsetAt = headSize_;
            headSize_ += int(sizeof(qint16));
        }
        columns_.push_back(column);
    }
    nullsAt_ = headSize_;
    headSize_ += int(columns.size() + 7) / 8;
    starts_.append(0);
}

// Column by column, so that each loop is about one type.
void PackedRows::append(const RowStore& rows) {
    const qsizetype count = rows.rowCount();
    if (count == 0) return;  // there may be no memory yet to point into
    const qsizetype before = this->count();
    const qint64 first = starts_[before];
    next_.assign(size_t(count), headSize_);
    for (size_t i = 0; i < columns_.size(); ++i) {
        const ColumnCells& cells = rows.column(int(i));
        if (columns_[i].storage == Storage::Text) {
            const QStringView all = cells.allText();
            columns_[i].isNarrow = areNarrow(all.utf16(), all.size());
            const qsizetype unit = columns_[i].isNarrow ? 1 : 2;
            for (qsizetype row = 0; row < count; ++row)
                next_[size_t(row)] += cells.text(row).size() * unit;
        } else if (columns_[i].storage == Storage::Bytes) {
            for (qsizetype row = 0; row < count; ++row)
                next_[size_t(row)] += cells.bytes(row).size();
        }
    }
    qint64* starts = starts_.extend(count) - 1;
    for (qsizetype row = 0; row < count; ++row) {
        starts[row + 1] = starts[row] + next_[size_t(row)];
        next_[size_t(row)] = starts[row] - first + headSize_;
    }
    char* const to = bytes_.extend(starts[count] - first);
    for (qsizetype row = 0; row < count; ++row)
        std::memset(to + (starts[row] - first) + nullsAt_, 0, size_t(headSize_ - nullsAt_));
    for (size_t i = 0; i < columns_.size(); ++i) {
        const Column& column = columns_[i];
        const ColumnCells& cells = rows.column(int(i));
        char* const cell = to + column.at;
        switch (column.width) {
            case 1:
                copyCells<1>(cells, cell, starts, first, count);
                break;
            case 2:
                copyCells<2>(cells, cell, starts, first, count);
                break;
            case 4:
                copyCells<4>(cells, cell, starts, first, count);
                break;
            case 8:
                copyCells<8>(cells, cell, starts, first, count);
                break;
            case 16:
                copyCells<16>(cells, cell, starts, first, count);
                break;
            default:
                break;
        }
        if (column.storage == Storage::Text) {
            for (qsizetype row = 0; row < count; ++row) {
                const QStringView text = cells.text(row);
                const quint32 length = quint32(text.size()) | (column.isNarrow ? 0 : Wide);
                std::memcpy(cell + (starts[row] - first), &length, LengthSize);
                qint64& next = next_[size_t(row)];
                if (column.isNarrow)
                    narrowLetters(text.utf16(), text.size(), to + next);
                else if (!text.isEmpty())
                    std::memcpy(to + next, text.utf16(), size_t(text.size()) * 2);
                next += text.size() * (column.isNarrow ? 1 : 2);
            }
        } else if (column.storage == Storage::Bytes) {
            for (qsizetype row = 0; row < count; ++row) {
                const QByteArrayView bytes = cells.bytes(row);
                const quint32 length = quint32(bytes.size());
                std::memcpy(cell + (starts[row] - first), &length, LengthSize);
                if (length) std::memcpy(to + next_[size_t(row)], bytes.data(), length);
                next_[size_t(row)] += length;
            }
        }
        if (column.offsetAt >= 0) {
            for (qsizetype row = 0; row < count; ++row) {
                const qint16 offset = cells.offsetMinutes(row);
                std::memcpy(to + (starts[row] - first) + column.offsetAt, &offset, sizeof offset);
            }
        }
        for (qsizetype row = 0; row < count; ++row) {
            if (!cells.isNull(row)) continue;
            char& bits = to[starts[row] - first + nullsAt_ + qsizetype(i / 8)];
            bits = char(bits | 1 << (i % 8));
        }
    }
}

void PackedRows::appendTo(qsizetype row, RowStore& rows) const {
    const char* const from = bytes_.data() + starts_[row];
    const char* variable = from + headSize_;
    for (size_t i = 0; i < columns_.size(); ++i) {
        const Column& column = columns_[i];
        ColumnCells& cells = rows.column(int(i));
        if (from[nullsAt_ + qsizetype(i / 8)] >> (i % 8) & 1) {
            cells.appendNull();
        } else if (column.width) {
            qint16 offset = 0;
            if (column.offsetAt >= 0) std::memcpy(&offset, from + column.offsetAt, sizeof offset);
            cells.appendFixedCell(from + column.at, offset);
        } else {
            quint32 length = 0;
            std::memcpy(&length, from + column.at, LengthSize);
            if (column.storage == Storage::Bytes) {
                cells.appendBytes(variable, length);
            } else if (length & Wide) {
                length &= ~Wide;
                cells.appendText(QStringView(reinterpret_cast<const char16_t*>(variable), length));
                variable += length;
            } else {
                cells.appendLatin1(variable, length);
            }
            variable += length;
        }
    }
}

void PackedRows::prefetchStart(qsizetype row) const {
    prefetchMemory(starts_.data() + row);
}

void PackedRows::prefetch(qsizetype row) const {
    const qint64 size = std::min(starts_[row + 1] - starts_[row], PrefetchedBytes);
    for (qint64 at = 0; at < size; at += CacheLine)
        prefetchMemory(bytes_.data() + starts_[row] + at);
    prefetchMemory(bytes_.data() + starts_[row] + size - 1);
}

}  // namespace zov
