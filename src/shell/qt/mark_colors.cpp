#include "shell/qt/mark_colors.h"

#include <algorithm>
#include <cmath>

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

QColor selectedGround(const QColor& ground, const QPalette& palette) {
    constexpr int Share = 24;  // of 100
    const QColor highlight = palette.color(QPalette::Highlight);
    const auto mixed = [&](int of, int with) { return (of * (100 - Share) + with * Share) / 100; };
    return QColor(mixed(ground.red(), highlight.red()), mixed(ground.green(), highlight.green()),
                  mixed(ground.blue(), highlight.blue()));
}

double contrastOf(const QColor& a, const QColor& b) {
    // Relative luminance and contrast ratio of the web content accessibility guidelines.
    const auto luminance = [](const QColor& color) {
        const auto channel = [](double value) {
            return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * channel(color.redF()) + 0.7152 * channel(color.greenF()) +
               0.0722 * channel(color.blueF());
    };
    const double first = luminance(a), second = luminance(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

QColor readableOn(const QColor& ground, const QColor& text) {
    constexpr double Readable = 4.5;
    const bool darker = contrastOf(ground, Qt::black) > contrastOf(ground, Qt::white);
    QColor shade = text;
    for (int lightness = text.lightness();
         contrastOf(ground, shade) < Readable && lightness > 0 && lightness < 255;) {
        lightness = std::clamp(lightness + (darker ? -8 : 8), 0, 255);
        shade = asRgb(QColor::fromHsl(std::max(text.hslHue(), 0), text.hslSaturation(), lightness));
    }
    return shade;
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
