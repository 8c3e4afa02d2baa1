#include "shell/console/visible_text.h"

namespace zov {
namespace {

constexpr char16_t Delete = 0x7F;
constexpr char16_t Pictures = 0x2400;
constexpr char16_t PictureOfDelete = 0x2421;

bool isInvisibleButActs(char16_t c) {
    if (c >= 0x80 && c <= 0x9F) return true;  // among them a terminal's other escape
    switch (c) {
        case 0x061C:  // marks of direction
        case 0x200E:
        case 0x200F:
        case 0x2028:  // line and paragraph separators
        case 0x2029:
        case 0xFEFF:
            return true;
        default:
            return (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
    }
}

}  // namespace

QString visibleText(const QString& text, LineBreaks lineBreaks) {
    QString visible;
    visible.reserve(text.size());
    for (const QChar sign : text) {
        const char16_t c = sign.unicode();
        const bool kept = lineBreaks == LineBreaks::Keep && (c == u'\n' || c == u'\t');
        if (kept || (c >= u' ' && c != Delete && !isInvisibleButActs(c)))
            visible += sign;
        else if (c < u' ')
            visible += QChar(char16_t(Pictures + c));
        else if (c == Delete)
            visible += QChar(PictureOfDelete);
        else
            visible += QStringLiteral("<U+%1>").arg(QString::number(c, 16).toUpper(), 4, u'0');
    }
    return visible;
}

}  // namespace zov
