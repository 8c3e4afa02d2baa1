// Growable memory for plain values.
#pragma once

#include "data/base/block_memory.h"

#include <QtGlobal>

#include <type_traits>
#include <utility>

namespace zov {

/// Plain growable memory. Grows by a quarter, so that a full buffer wastes little;
/// large blocks are moved by the system's page tables, not copied (block_memory.h).
template <typename T>
class PackedBuffer {
    static_assert(std::is_trivially_copyable_v<T>);

 public:
    PackedBuffer() = default;
    PackedBuffer(const PackedBuffer&) = delete;
    PackedBuffer& operator=(const PackedBuffer&) = delete;
    PackedBuffer(PackedBuffer&& other) noexcept { swap(other); }
    PackedBuffer& operator=(PackedBuffer&& other) noexcept {
        swap(other);
        return *this;
    }
    ~PackedBuffer() { freeBlock(data_, size_t(capacity_) * sizeof(T)); }

    const T* data() const { return data_; }
    T* data() { return data_; }
    qsizetype size() const { return size_; }
    qsizetype capacity() const { return capacity_; }
    const T& operator[](qsizetype i) const { return data_[i]; }
    T& operator[](qsizetype i) { return data_[i]; }

    void append(T value) {
        if (size_ == capacity_) grow(size_ + 1);
        data_[size_++] = value;
    }
    /// Room for `count` more elements, uninitialised; they count as present.
    T* extend(qsizetype count) {
        if (size_ + count > capacity_) grow(size_ + count);
        T* at = data_ + size_;
        size_ += count;
        return at;
    }
    /// Cuts back to `size`; the memory stays for the next block.
    void truncate(qsizetype size) { size_ = size; }
    void shrinkToFit();

 private:
    void grow(qsizetype needed);
    void swap(PackedBuffer& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }
    T* data_ = nullptr;
    qsizetype size_ = 0;
    qsizetype capacity_ = 0;
};

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
    data_ = static_cast<T*>(
        resizeBlock(data_, size_t(capacity_) * sizeof(T), size_t(kept) * sizeof(T)));
    capacity_ = kept;
}

}  // namespace zov
