#include "data/base/row_store.h"

#include "data/base/db_error.h"
#include "data/base/letter_width.h"

#include <bit>
#include <limits>

namespace zov {

namespace {

int widthOf(Storage storage) {
    switch (storage) {
        case Storage::Int8:
            return 1;
        case Storage::Int16:
            return 2;
        case Storage::Int32:
        case Storage::Float32:
            return 4;
        case Storage::Int64:
        case Storage::Float64:
        case Storage::Scaled64:
        case Storage::Ticks:
        case Storage::TicksOffset:
            return 8;
        case Storage::Guid:
            return 16;
        case Storage::Text:
        case Storage::Bytes:
            return 0;
    }
    return 0;
}

}  // namespace

ColumnCells::ColumnCells(ColumnInfo info)
    : info_(std::move(info)), storage_(storageOf(info_)), width_(widthOf(storage_)) {}

void ColumnCells::markNull() {
    const qsizetype byte = count_ >> 3;
    if (byte >= nulls_.size()) {
        const qsizetype old = nulls_.size();
        std::memset(nulls_.extend(byte + 1 - old), 0, size_t(byte + 1 - old));
    }
    nulls_[byte] = quint8(nulls_[byte] | (1u << (count_ & 7)));
}

void ColumnCells::checkArena(qsizetype end) const {
    if (end > qsizetype(std::numeric_limits<quint32>::max()))
        throw DbError(
            ado_error::Unspecified,
            QStringLiteral("Column '%1' holds more text than fits into one result in memory. "
                           "Use server-side cursors, or read fewer rows.")
                .arg(info_.name));
}

void ColumnCells::endVariable(qsizetype end) {
    checkArena(end);
    ends_.append(quint32(end));
}

void ColumnCells::appendNull() {
    markNull();
    if (width_) {
        std::memset(fixed_.extend(width_), 0, size_t(width_));
        if (storage_ == Storage::TicksOffset) offsets_.append(0);
    } else {
        endVariable(storage_ == Storage::Text ? chars_.size() : raw_.size());
    }
    ++count_;
}

void ColumnCells::appendInteger(qint64 value) {
    char* at = fixed_.extend(width_);
    switch (width_) {
        case 1:
            *at = char(quint8(value));
            break;
        case 2: {
            const qint16 v = qint16(value);
            std::memcpy(at, &v, 2);
            break;
        }
        case 4: {
            const qint32 v = qint32(value);
            std::memcpy(at, &v, 4);
            break;
        }
        default:
            std::memcpy(at, &value, 8);
    }
    ++count_;
}

void ColumnCells::appendReal(double value) {
    char* at = fixed_.extend(width_);
    if (width_ == 4) {
        const float v = float(value);
        std::memcpy(at, &v, 4);
    } else {
        std::memcpy(at, &value, 8);
    }
    ++count_;
}

void ColumnCells::appendTicksOffset(qint64 ticks, qint16 offsetMinutes) {
    std::memcpy(fixed_.extend(8), &ticks, 8);
    offsets_.append(offsetMinutes);
    ++count_;
}

void ColumnCells::appendText(QStringView text) {
    if (!text.isEmpty())
        std::memcpy(chars_.extend(text.size()), text.utf16(), size_t(text.size()) * 2);
    endVariable(chars_.size());
    ++count_;
}

void ColumnCells::appendUtf8(const char* utf8, qsizetype length) {
    // Most texts are ASCII: widen in place, and start over by the slow road where there is another
    // letter.
    const qsizetype start = chars_.size();
    char16_t* to = length ? chars_.extend(length) : nullptr;
    if (!widenLetters(utf8, length, to)) {
        chars_.truncate(start);
        const QString decoded = QString::fromUtf8(utf8, length);
        std::memcpy(chars_.extend(decoded.size()), decoded.utf16(), size_t(decoded.size()) * 2);
    }
    endVariable(chars_.size());
    ++count_;
}

void ColumnCells::appendLatin1(const char* latin1, qsizetype length) {
    if (length) widenLetters(latin1, length, chars_.extend(length));
    endVariable(chars_.size());
    ++count_;
}

void ColumnCells::appendBytes(const void* bytes, qsizetype length) {
    if (storage_ == Storage::Guid) {
        std::memcpy(fixed_.extend(16), bytes, 16);
    } else {
        if (length) std::memcpy(raw_.extend(length), bytes, size_t(length));
        endVariable(raw_.size());
    }
    ++count_;
}

void ColumnCells::appendFixedBlock(const void* values, const quint8* isNull, qsizetype rows) {
    std::memcpy(fixed_.extend(rows * width_), values, size_t(rows * width_));
    if (!isNull) {
        count_ += rows;
        return;
    }
    for (qsizetype i = 0; i < rows; ++i) {
        if (isNull[i]) markNull();
        ++count_;
    }
}

QByteArrayView ColumnCells::bytes(qsizetype row) const {
    if (storage_ == Storage::Guid) return QByteArrayView(fixed_.data() + row * 16, 16);
    const quint32 begin = row ? ends_[row - 1] : 0;
    return QByteArrayView(raw_.data() + begin, qsizetype(ends_[row] - begin));
}

CellView ColumnCells::cell(qsizetype row) const {
    CellView view;
    view.column = &info_;
    view.storage = storage_;
    view.isNull = isNull(row);
    if (view.isNull) return view;
    switch (storage_) {
        case Storage::Float32:
        case Storage::Float64:
            view.real = real(row);
            break;
        case Storage::Text:
            view.text = text(row);
            break;
        case Storage::Bytes:
        case Storage::Guid:
            view.bytes = bytes(row);
            break;
        case Storage::TicksOffset:
            view.offsetMinutes = offsets_[row];
            [[fallthrough]];
        default:
            view.integer = integer(row);
    }
    return view;
}

void ColumnCells::append(const ColumnCells& other) {
    const auto join = [](auto& to, const auto& from) {
        if (from.size())
            std::memcpy(to.extend(from.size()), from.data(), size_t(from.size()) * sizeof(from[0]));
    };
    checkArena(chars_.size() + other.chars_.size());
    checkArena(raw_.size() + other.raw_.size());
    const quint32 before = quint32(storage_ == Storage::Text ? chars_.size() : raw_.size());
    const qsizetype firstEnd = ends_.size();
    join(ends_, other.ends_);
    for (qsizetype i = firstEnd; i < ends_.size(); ++i) ends_[i] += before;
    join(fixed_, other.fixed_);
    join(chars_, other.chars_);
    join(raw_, other.raw_);
    join(offsets_, other.offsets_);
    const qsizetype last = count_ + other.count_;
    const qsizetype firstCount = count_;
    for (qsizetype byte = 0; byte < other.nulls_.size(); ++byte) {
        for (unsigned bits = other.nulls_[byte]; bits; bits &= bits - 1) {
            count_ = firstCount + byte * 8 + std::countr_zero(bits);
            markNull();
        }
    }
    count_ = last;
}

void ColumnCells::appendFixedCell(const char* cell, qint16 offsetMinutes) {
    std::memcpy(fixed_.extend(width_), cell, size_t(width_));
    if (storage_ == Storage::TicksOffset) offsets_.append(offsetMinutes);
    ++count_;
}

void ColumnCells::appendCell(const ColumnCells& other, qsizetype row) {
    if (other.isNull(row)) return appendNull();
    if (width_) {
        const bool hasOffset = storage_ == Storage::TicksOffset;
        return appendFixedCell(other.fixedCell(row), hasOffset ? other.offsets_[row] : qint16(0));
    }
    if (storage_ == Storage::Text) return appendText(other.text(row));
    const QByteArrayView bytes = other.bytes(row);
    appendBytes(bytes.data(), bytes.size());
}

void ColumnCells::clear() {
    count_ = 0;
    fixed_.truncate(0);
    chars_.truncate(0);
    raw_.truncate(0);
    ends_.truncate(0);
    offsets_.truncate(0);
    nulls_.truncate(0);
}

void ColumnCells::shrinkToFit() {
    fixed_.shrinkToFit();
    chars_.shrinkToFit();
    raw_.shrinkToFit();
    ends_.shrinkToFit();
    offsets_.shrinkToFit();
    nulls_.shrinkToFit();
}

qsizetype ColumnCells::reservedBytes() const {
    return fixed_.capacity() + chars_.capacity() * 2 + raw_.capacity() + ends_.capacity() * 4 +
           offsets_.capacity() * 2 + nulls_.capacity();
}

RowStore::RowStore(const std::vector<ColumnInfo>& columns) {
    columns_.reserve(columns.size());
    for (const ColumnInfo& column : columns) columns_.emplace_back(column);
}

void RowStore::append(const RowStore& other) {
    for (size_t i = 0; i < columns_.size(); ++i) columns_[i].append(other.columns_[i]);
}

void RowStore::appendRow(const RowStore& other, qsizetype row) {
    for (size_t i = 0; i < columns_.size(); ++i) columns_[i].appendCell(other.columns_[i], row);
}

void RowStore::clear() {
    for (ColumnCells& column : columns_) column.clear();
}

void RowStore::shrinkToFit() {
    for (ColumnCells& column : columns_) column.shrinkToFit();
}

qsizetype RowStore::reservedBytes() const {
    qsizetype sum = 0;
    for (const ColumnCells& column : columns_) sum += column.reservedBytes();
    return sum;
}

}  // namespace zov
