#include "shell/qt/appearance.h"

#include "core/globals.h"
#include "shell/qt/window_style.h"

#include <QApplication>
#include <QPalette>
#include <QSettings>
#include <QStyle>
#include <QStyleFactory>

namespace zov::qt {
namespace {

const QString PaletteKey = QStringLiteral("Window/Palette");

struct Shades {
    QRgb window, text, base, alternate, button, mid, border, highlight, highlightedText, link,
        disabled, toolTip;
};

constexpr Shades LightShades = {0xF4F5F7, 0x1B1F24, 0xFFFFFF, 0xF3F5F8, 0xFBFBFC, 0xB9BFC8,
                                0xC9CED6, 0x2F6FB5, 0xFFFFFF, 0x1F5FA8, 0x8B929C, 0xFFFFF0};
constexpr Shades DarkShades = {0x24272C, 0xE4E6EA, 0x1B1D21, 0x24272C, 0x32363D, 0x454A53,
                               0x3A3F47, 0x3A6EA8, 0xFFFFFF, 0x7AB8FF, 0x7D848F, 0x3A3F47};

QPalette paletteOf(const Shades& shades) {
    QPalette palette(QColor(shades.button), QColor(shades.window));
    const auto set = [&](QPalette::ColorRole role, QRgb rgb) {
        palette.setColor(role, QColor(rgb));
    };
    set(QPalette::WindowText, shades.text);
    set(QPalette::Text, shades.text);
    set(QPalette::ButtonText, shades.text);
    set(QPalette::Base, shades.base);
    set(QPalette::AlternateBase, shades.alternate);
    set(QPalette::Mid, shades.mid);
    set(QPalette::Midlight, shades.border);
    set(QPalette::Highlight, shades.highlight);
    set(QPalette::HighlightedText, shades.highlightedText);
    set(QPalette::Link, shades.link);
    set(QPalette::LinkVisited, shades.link);
    set(QPalette::ToolTipBase, shades.toolTip);
    set(QPalette::ToolTipText, shades.text);
    set(QPalette::PlaceholderText, shades.disabled);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText})
        palette.setColor(QPalette::Disabled, role, QColor(shades.disabled));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(shades.mid));
    return palette;
}

}  // namespace

void applyAppearance(Appearance appearance) {
    // What the desktop gave at start, before the first change.
    static const QString systemStyle = QApplication::style()->objectName();
    static const QPalette systemPalette = QApplication::palette();
    if (appearance == Appearance::System) {
        // Without a theme of the desktop's there is nothing to follow: our own light one.
        const bool themed = systemStyle.compare(u"fusion", Qt::CaseInsensitive) != 0 ||
                            systemPalette.color(QPalette::Base).lightness() < 128;
        const bool isOurs = systemStyle.compare(u"fusion", Qt::CaseInsensitive) == 0;
        QApplication::setStyle(isOurs ? new WindowStyle : QStyleFactory::create(systemStyle));
        QApplication::setPalette(themed ? systemPalette : paletteOf(LightShades));
        return;
    }
    // Other styles take colours from their theme and mix badly with given ones.
    QApplication::setStyle(new WindowStyle);
    QApplication::setPalette(paletteOf(appearance == Appearance::Dark ? DarkShades : LightShades));
}

Appearance appearanceFromText(const QString& text, bool* known) {
    if (known) *known = true;
    if (text.compare(u"light", Qt::CaseInsensitive) == 0) return Appearance::Light;
    if (text.compare(u"dark", Qt::CaseInsensitive) == 0) return Appearance::Dark;
    if (known) *known = text.compare(u"system", Qt::CaseInsensitive) == 0;
    return Appearance::System;
}

QString appearanceText(Appearance appearance) {
    switch (appearance) {
        case Appearance::Light:
            return QStringLiteral("light");
        case Appearance::Dark:
            return QStringLiteral("dark");
        case Appearance::System:
            break;
    }
    return QStringLiteral("system");
}

QString windowSettingsFile() {
    return globals().gstrUserDataFolder + QStringLiteral("zov_window.ini");
}

Appearance storedAppearance() {
    return appearanceFromText(
        QSettings(windowSettingsFile(), QSettings::IniFormat).value(PaletteKey).toString());
}

void storeAppearance(Appearance appearance) {
    QSettings(windowSettingsFile(), QSettings::IniFormat)
        .setValue(PaletteKey, appearanceText(appearance));
}

}  // namespace zov::qt
