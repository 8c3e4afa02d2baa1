// Code page 1252: Latin-1 but for the stretch 0x80 to 0x9F.
#include "support/tds_endpoint/code_page_1252.h"

#include <array>

namespace zov::tds {
namespace {

// The five bytes that the page leaves open stand for the control character of their number.
constexpr std::array<char16_t, 32> Special = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

quint8 toCodePage1252(char16_t unit) {
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) return quint8(unit);
    for (size_t i = 0; i < Special.size(); ++i)
        if (Special[i] == unit) return quint8(0x80 + i);
    return '?';
}

QString fromCodePage1252(QByteArrayView bytes) {
    QString text(bytes.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto byte = quint8(bytes[i]);
        text[i] = QChar(byte >= 0x80 && byte < 0xA0 ? Special[byte - 0x80] : char16_t(byte));
    }
    return text;
}

qsizetype encodeCodePage1252(QStringView text, char* to) {
    char* at = to;
    const char16_t* unit = text.utf16();
    for (const char16_t* end = unit + text.size(); unit != end; ++unit) {
        if (*unit < 0x80)
            *at++ = char(*unit);
        else if (QChar::isLowSurrogate(*unit) && at != to && QChar::isHighSurrogate(unit[-1]))
            continue;
        else
            *at++ = char(toCodePage1252(*unit));
    }
    return at - to;
}

}  // namespace zov::tds
