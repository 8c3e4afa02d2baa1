// Bytes of a text file to text and back: scripts, INI files and the settings
// file come in whatever encoding their editor chose, and are written back in it.
#pragma once

#include <QByteArray>
#include <QString>

namespace zov {

enum class TextEncoding {
    Utf8,  ///< no mark; also plain ASCII
    Utf8WithMark,
    Utf16Le,  ///< written with its mark; read without one too
    Utf16Be,
    Windows1252,  ///< Latin-1 with letters in 0x80 to 0x9F
};

struct DecodedText {
    QString text;  ///< without the mark
    TextEncoding encoding = TextEncoding::Utf8;
    /// A UTF-16 text that ends in half a character or holds half a pair.
    bool damaged = false;
};

/// Tells the encoding from the byte-order mark, else from zero bytes at every second place
/// (UTF-16), else UTF-8 when the bytes are valid UTF-8, else Windows-1252, which never fails.
DecodedText decodeText(QByteArrayView bytes);

/// The bytes with the encoding's mark. A text that Windows-1252 can't hold is written as UTF-8
/// with its mark: no letter is lost.
QByteArray encodeText(const QString& text, TextEncoding encoding);

/// "UTF-8", "UTF-16 LE" ... for messages.
QString encodingName(TextEncoding encoding);

}  // namespace zov
