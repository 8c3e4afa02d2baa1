// Single-byte texts of the server's default collation.
#pragma once

#include <QString>

namespace zov::tds {

/// The byte of a UTF-16 code unit; '?' for what code page 1252 doesn't hold.
quint8 toCodePage1252(char16_t unit);
QString fromCodePage1252(QByteArrayView bytes);
/// Encodes `text` to `to`, which has room for a byte a code unit; gives the count of bytes. A pair
/// of surrogates becomes one '?'.
qsizetype encodeCodePage1252(QStringView text, char* to);

}  // namespace zov::tds
