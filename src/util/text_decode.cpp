#include "util/text_decode.h"

#include <QStringDecoder>
#include <QStringEncoder>

namespace zov {
namespace {

// Windows-1252's 0x80 to 0x9F; the five places that it leaves empty stay control characters.
constexpr char16_t HighControls[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

QString fromWindows1252(QByteArrayView bytes) {
    QString text(bytes.size(), Qt::Uninitialized);
    QChar* to = text.data();
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        *to++ = value >= 0x80 && value < 0xA0 ? QChar(HighControls[value - 0x80]) : QChar(value);
    }
    return text;
}

/// False when a letter has no place in Windows-1252.
bool toWindows1252(const QString& text, QByteArray& bytes) {
    bytes.clear();
    bytes.reserve(text.size());
    for (const QChar c : text) {
        const char16_t code = c.unicode();
        if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) {
            bytes.append(char(code));
            continue;
        }
        int high = 0;
        while (high < 32 && HighControls[high] != code) ++high;
        if (high == 32) return false;
        bytes.append(char(0x80 + high));
    }
    return true;
}

bool holdsHalfAPair(const QString& text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].isLowSurrogate()) return true;
        if (text[i].isHighSurrogate() && (++i == text.size() || !text[i].isLowSurrogate()))
            return true;
    }
    return false;
}

DecodedText fromUtf16(QByteArrayView bytes, TextEncoding encoding) {
    const bool little = encoding == TextEncoding::Utf16Le;
    QStringDecoder decoder(little ? QStringDecoder::Utf16LE : QStringDecoder::Utf16BE,
                           QStringDecoder::Flag::Stateless);
    DecodedText decoded;
    decoded.encoding = encoding;
    decoded.damaged = bytes.size() % 2 != 0;
    decoded.text = decoder(bytes.first(bytes.size() & ~qsizetype(1)));
    decoded.damaged = decoded.damaged || decoder.hasError() || holdsHalfAPair(decoded.text);
    return decoded;
}

/// UTF-16 without a mark: the texts read here are mostly ASCII, whose other byte is zero.
bool looksLikeUtf16(QByteArrayView bytes, bool littleEndian) {
    const qsizetype probe = qMin<qsizetype>(bytes.size(), 64) & ~qsizetype(1);
    if (probe < 4) return false;
    for (qsizetype at = 0; at < probe; at += 2) {
        const char low = bytes[littleEndian ? at : at + 1];
        const char high = bytes[littleEndian ? at + 1 : at];
        if (high != 0 || low == 0) return false;
    }
    return true;
}

}  // namespace

DecodedText decodeText(QByteArrayView bytes) {
    using Encoding = TextEncoding;
    if (bytes.startsWith("\xEF\xBB\xBF")) {
        const QByteArrayView body = bytes.sliced(3);
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        QString text = decoder(body);
        // A mark promises UTF-8, but bytes that aren't are still somebody's letters.
        if (decoder.hasError()) return {fromWindows1252(body), Encoding::Windows1252, false};
        return {text, Encoding::Utf8WithMark, false};
    }
    if (bytes.startsWith("\xFF\xFE")) return fromUtf16(bytes.sliced(2), Encoding::Utf16Le);
    if (bytes.startsWith("\xFE\xFF")) return fromUtf16(bytes.sliced(2), Encoding::Utf16Be);
    if (looksLikeUtf16(bytes, true)) return fromUtf16(bytes, Encoding::Utf16Le);
    if (looksLikeUtf16(bytes, false)) return fromUtf16(bytes, Encoding::Utf16Be);
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(bytes);
    if (decoder.hasError()) return {fromWindows1252(bytes), Encoding::Windows1252, false};
    return {text, Encoding::Utf8, false};
}

QByteArray encodeText(const QString& text, TextEncoding encoding) {
    switch (encoding) {
        case TextEncoding::Utf8:
            return text.toUtf8();
        case TextEncoding::Utf8WithMark:
            return "\xEF\xBB\xBF" + text.toUtf8();
        case TextEncoding::Utf16Le:
        case TextEncoding::Utf16Be: {
            QStringEncoder encoder(encoding == TextEncoding::Utf16Le ? QStringEncoder::Utf16LE
                                                                     : QStringEncoder::Utf16BE,
                                   QStringEncoder::Flag::WriteBom);
            return encoder(text);
        }
        case TextEncoding::Windows1252: {
            QByteArray bytes;
            if (toWindows1252(text, bytes)) return bytes;
            return encodeText(text, TextEncoding::Utf8WithMark);
        }
    }
    return text.toUtf8();
}

QString encodingName(TextEncoding encoding) {
    switch (encoding) {
        case TextEncoding::Utf8:
            return QStringLiteral("UTF-8");
        case TextEncoding::Utf8WithMark:
            return QStringLiteral("UTF-8 with mark");
        case TextEncoding::Utf16Le:
            return QStringLiteral("UTF-16 LE");
        case TextEncoding::Utf16Be:
            return QStringLiteral("UTF-16 BE");
        case TextEncoding::Windows1252:
            return QStringLiteral("Windows-1252");
    }
    return {};
}

}  // namespace zov
