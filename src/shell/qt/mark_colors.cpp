#include "shell/qt/mark_colors.h"

namespace zov::qt {

namespace {

/// The shade as it is painted: eight bits a channel.
QColor asRgb(const QColor& color) {
    return QColor(color.rgb());
}

}  // namespace

bool isDarkPalette(const QPalette& palette) {
    return palette.color(QPalette::Base).lightness() < 128;
}

QColor shownTextColor(quint32 bgr, const QPalette& palette) {
    if (bgr == 0) return palette.color(QPalette::Text);
    const QColor color(int(bgr & 0xFF), int((bgr >> 8) & 0xFF), int((bgr >> 16) & 0xFF));
    if (!isDarkPalette(palette)) return color;
    return asRgb(QColor::fromHsl(std::max(color.hslHue(), 0), color.hslSaturation(),
                                 std::max(color.lightness(), 200)));
}

QColor shownMarkColor(quint32 bgr, const QPalette& palette) {
    if (bgr == 0xFFFFFF) return palette.color(QPalette::Base);
    const QColor color(int(bgr & 0xFF), int((bgr >> 8) & 0xFF), int((bgr >> 16) & 0xFF));
    if (!isDarkPalette(palette)) return color;
    // The same hue, dark enough for light text, saturated enough to be told from its neighbours.
    return asRgb(QColor::fromHsl(color.hslHue(), std::max(90, color.hslSaturation() / 2), 54));
}

}  // namespace zov::qt
