// Little-endian bytes of the TDS protocol: a reader that never leaves its message and a buffer
// that rows are encoded into. Knows nothing of tokens.
#pragma once

#include <QByteArray>
#include <QString>

#include <bit>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>

namespace zov::tds {

static_assert(std::endian::native == std::endian::little, "UTF-16 is copied as it lies in memory");

/// The client sent something that can't be read; the session ends.
struct Malformed : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class ByteReader {
 public:
    ByteReader(const char* data, qsizetype size) : at_(data), end_(data + size) {}
    explicit ByteReader(const QByteArray& bytes) : ByteReader(bytes.constData(), bytes.size()) {}

    qsizetype left() const { return end_ - at_; }
    bool atEnd() const { return at_ == end_; }
    const char* take(qsizetype count) {
        if (count < 0 || count > left()) throw Malformed("message ends too early");
        const char* from = at_;
        at_ += count;
        return from;
    }
    template <typename T>
    T get() {
        T value;
        std::memcpy(&value, take(sizeof(T)), sizeof(T));
        return value;
    }
    quint8 peek() const {
        if (atEnd()) throw Malformed("message ends too early");
        return quint8(*at_);
    }
    QByteArray bytes(qsizetype count) { return QByteArray(take(count), count); }
    /// `count` UTF-16 code units.
    QString utf16(qsizetype count) {
        const char* from = take(count * 2);
        QString text(count, Qt::Uninitialized);
        if (count) std::memcpy(text.data(), from, size_t(count) * 2);
        return text;
    }

 private:
    const char* at_;
    const char* end_;
};

/// What stands behind the headers in front of a statement or call.
inline ByteReader behindHeaders(const QByteArray& payload) {
    ByteReader whole(payload);
    const auto length = whole.get<quint32>();
    if (length < 4 || qsizetype(length) > payload.size()) throw Malformed("headers too long");
    whole.take(qsizetype(length) - 4);
    return whole;
}

/// Growable bytes. `room` and `advance` let an encoder write a cell without a check for each byte.
class ByteBuffer {
 public:
    ByteBuffer() = default;
    ByteBuffer(const ByteBuffer&) = delete;
    ByteBuffer& operator=(const ByteBuffer&) = delete;
    ~ByteBuffer() { std::free(data_); }

    const char* data() const { return data_; }
    char* data() { return data_; }
    size_t size() const { return size_; }

    char* room(size_t count) {
        if (capacity_ - size_ < count) grow(count);
        return data_ + size_;
    }
    void advance(size_t count) { size_ += count; }
    template <typename T>
    void put(T value) {
        std::memcpy(room(sizeof(T)), &value, sizeof(T));
        size_ += sizeof(T);
    }
    void u8(quint8 value) { put(value); }
    void u16(quint16 value) { put(value); }
    void u32(quint32 value) { put(value); }
    void raw(const void* bytes, size_t count) {
        if (!count) return;
        std::memcpy(room(count), bytes, count);
        size_ += count;
    }
    void utf16(QStringView text) { raw(text.utf16(), size_t(text.size()) * 2); }
    /// Text behind its length in one byte or two, in code units; what doesn't fit is cut off.
    void byteText(QStringView text) {
        text = text.left(255);
        u8(quint8(text.size()));
        utf16(text);
    }
    void shortText(QStringView text) {
        text = text.left(16'000);
        u16(quint16(text.size()));
        utf16(text);
    }
    void patchU16(size_t at, quint16 value) { std::memcpy(data_ + at, &value, sizeof value); }

    void truncate(size_t size) { size_ = size; }
    void dropFront(size_t count) {
        std::memmove(data_, data_ + count, size_ - count);
        size_ -= count;
    }

 private:
    void grow(size_t count) {
        const size_t wanted = std::max(size_ + count, capacity_ + capacity_ / 2 + 4096);
        void* moved = std::realloc(data_, wanted);
        if (!moved) throw std::bad_alloc();
        data_ = static_cast<char*>(moved);
        capacity_ = wanted;
    }
    char* data_ = nullptr;
    size_t size_ = 0;
    size_t capacity_ = 0;
};

}  // namespace zov::tds
