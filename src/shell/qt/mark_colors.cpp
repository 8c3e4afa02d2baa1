#include "shell/qt/mark_colors.h"

namespace zov::qt {

bool isDarkPalette(const QPalette& palette) {
    return palette.color(QPalette::Base).lightness() < 128;
}

QColor shownMarkColor(quint32 bgr, const QPalette& palette) {
    if (bgr == 0xFFFFFF) return palette.color(QPalette::Base);
    const QColor color(int(bgr & 0xFF), int((bgr >> 8) & 0xFF), int((bgr >> 16) & 0xFF));
    if (!isDarkPalette(palette)) return color;
    // The same hue, dark enough for light text, saturated enough to be told from its neighbours.
    return QColor::fromHsl(color.hslHue(), std::max(90, color.hslSaturation() / 2), 62);
}

}  // namespace zov::qt
