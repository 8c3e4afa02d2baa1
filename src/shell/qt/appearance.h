// Light, dark, or as the desktop has it: the palette of the whole program, kept
// between runs beside the window's sizes.
#pragma once

#include <QString>

class QSettings;

namespace zov::qt {

enum class Appearance { System, Light, Dark };

/// Gives the program the palette. `System` is what the desktop's own theme says.
void applyAppearance(Appearance appearance);

/// "system", "light", "dark"; any other text gives `System` and false in `known`.
Appearance appearanceFromText(const QString& text, bool* known = nullptr);
QString appearanceText(Appearance appearance);

Appearance storedAppearance();
void storeAppearance(Appearance appearance);

/// The window's own settings: sizes, splitters, palette. A file beside the program's INI files.
QString windowSettingsFile();

}  // namespace zov::qt
