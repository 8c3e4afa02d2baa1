#include "data/base/row_store.h"

#include "data/base/db_error.h"

#include <limits>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace zov {

template <typename T>
void PackedBuffer<T>::grow(qsizetype needed) {
    qsizetype wanted = capacity_ + capacity_ / 4;
    if (wanted < needed) wanted = needed;
    if (wanted < 64) wanted = 64;
    data_ = static_cast<T*>(
        resizeBlock(data_, size_t(capacity_) * sizeof(T), size_t(wanted) * sizeof(T)));
    capacity_ = wanted;
}

template <typename T>
void PackedBuffer<T>::shrinkToFit() {
    // Small slack is not worth a move.
    if (capacity_ - size_ < size_ / 64 + 1024) return;
    const qsizetype kept = size_ ? size_ : 1;
    data_ =
        static_cast<T*>(resizeBlock(data_, size_t(capacity_) * sizeof(T), size_t(kept) * sizeof(T)));
    capacity_ = kept;
}

template class PackedBuffer<char>;
template class PackedBuffer<char16_t>;
template class PackedBuffer<quint32>;
template class PackedBuffer<qint16>;
template class PackedBuffer<quint8>;

namespace {

int widthOf(Storage storage) {
    switch (storage) {
        case Storage::Int8: return 1;
        case Storage::Int16: return 2;
        case Storage::Int32:
        case Storage::Float32: return 4;
        case Storage::Int64:
        case Storage::Float64:
        case Storage::Scaled64:
        case Storage::Ticks:
        case Storage::TicksOffset: return 8;
        case Storage::Guid: return 16;
        case Storage::Text:
        case Storage::Bytes: return 0;
    }
    return 0;
}

/// Each byte to a 16-bit letter; false when one of them isn't ASCII.
bool widenAscii(const char* from, qsizetype length, char16_t* to) {
    qsizetype i = 0;
#ifdef __SSE2__
    if (length >= 8) {
        const __m128i zero = _mm_setzero_si128();
        __m128i seen = zero;
        const auto widenEight = [&](qsizetype at) {
            const __m128i eight = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from + at));
            seen = _mm_or_si128(seen, eight);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + at), _mm_unpacklo_epi8(eight, zero));
        };
        for (; i + 8 <= length; i += 8) widenEight(i);
        // The rest, with some that were widened already.
        if (i < length) widenEight(length - 8);
        return (_mm_movemask_epi8(seen) & 0xFF) == 0;
    }
#endif
    unsigned char seen = 0;
    for (; i < length; ++i) {
        const unsigned char c = static_cast<unsigned char>(from[i]);
        seen |= c;
        to[i] = c;
    }
    return !(seen & 0x80);
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
        throw DbError(ado_error::Unspecified,
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
        case 1: *at = char(quint8(value)); break;
        case 2: { const qint16 v = qint16(value); std::memcpy(at, &v, 2); break; }
        case 4: { const qint32 v = qint32(value); std::memcpy(at, &v, 4); break; }
        default: std::memcpy(at, &value, 8);
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
    if (!widenAscii(utf8, length, to)) {
        chars_.truncate(start);
        const QString decoded = QString::fromUtf8(utf8, length);
        std::memcpy(chars_.extend(decoded.size()), decoded.utf16(), size_t(decoded.size()) * 2);
    }
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
        case Storage::Float64: view.real = real(row); break;
        case Storage::Text: view.text = text(row); break;
        case Storage::Bytes:
        case Storage::Guid: view.bytes = bytes(row); break;
        case Storage::TicksOffset: view.offsetMinutes = offsets_[row]; [[fallthrough]];
        default: view.integer = integer(row);
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
    for (qsizetype row = 0; row < other.count_; ++row) {
        if (other.isNull(row)) markNull();
        ++count_;
    }
}

void ColumnCells::appendCell(const ColumnCells& other, qsizetype row) {
    if (other.isNull(row)) return appendNull();
    switch (storage_) {
        case Storage::Text: return appendText(other.text(row));
        case Storage::Guid:
        case Storage::Bytes: {
            const QByteArrayView bytes = other.bytes(row);
            return appendBytes(bytes.data(), bytes.size());
        }
        case Storage::Float32:
        case Storage::Float64: return appendReal(other.real(row));
        case Storage::TicksOffset: return appendTicksOffset(other.integer(row), other.offsets_[row]);
        default: appendInteger(other.integer(row));
    }
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
