// What the fuzz targets share: requirements that end the run, and bytes cut into fields.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace zov::fuzz {

/// Ends the run as a finding when a promise doesn't hold.
inline void require(bool holds, const char* promise) {
    if (holds) return;
    std::fprintf(stderr, "BROKEN PROMISE: %s\n", promise);
    std::abort();
}

inline QByteArray bytesOf(const uint8_t* data, size_t size) {
    return QByteArray(reinterpret_cast<const char*>(data), qsizetype(size));
}

/// The bytes between marks of one byte 1; a field that isn't there is empty.
class Fields {
 public:
    Fields(const uint8_t* data, size_t size) : fields_(bytesOf(data, size).split('\x01')) {}
    QByteArray next() { return fields_.isEmpty() ? QByteArray() : fields_.takeFirst(); }
    QString nextText() { return QString::fromUtf8(next()); }
    bool atEnd() const { return fields_.isEmpty(); }

 private:
    QList<QByteArray> fields_;
};

}  // namespace zov::fuzz
