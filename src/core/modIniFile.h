// The simple INI helpers: one short value a call. Failures become a message box
// titled with the routine's name.
#pragma once

#include <QString>

namespace zov {

/// The number that the value starts with, 0 when there is none.
qint16 INIGetSettingInteger(const QString& Section, const QString& Key, const QString& IniPath);
/// The value's first 256 characters, empty when there is none.
QString INIGetSettingString(const QString& Section, const QString& Key, const QString& IniPath);
bool INIWriteSetting(const QString& Section, const QString& Key, const QString& Value,
                     const QString& IniPath);

}  // namespace zov
