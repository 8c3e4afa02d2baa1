// Every setting with its key, type and default: the one place where defaults
// are defined. Nothing writes defaults; a missing value reads as its default.
#pragma once

#include <QString>
#include <QStringList>

namespace zov {

/// Keys of the settings store.
namespace settings_key {
inline const QString Root = QStringLiteral("Software\\ZOV");
inline const QString Servers = QStringLiteral("Software\\ZOV\\Servers");
inline const QString Comparisons = QStringLiteral("Software\\ZOV\\Comparisons");
inline const QString TXText = QStringLiteral("Software\\ZOV\\TXText");
/// Key of server number `n`, from 1.
QString server(qint32 n);
}  // namespace settings_key

enum class SettingKind { Boolean, Number };

struct Setting {
    QString name;
    QString key;
    SettingKind kind = SettingKind::Number;
    qint32 defaultValue = 0;
};

/// By its value name in any case; null when there is no such setting.
const Setting* findSetting(const QString& name);
/// The names in the order of the store's description.
QStringList settingNames();

/// The stored number, or the default.
qint32 readSetting(const QString& name);
/// True when the setting reads as 1; any other number is false.
bool readBooleanSetting(const QString& name);
void writeSetting(const QString& name, qint32 value);
void writeBooleanSetting(const QString& name, bool value);

/// Gives a setting another value for this run. `value`: a number, or for booleans also true/false,
/// yes/no, on/off. The result is one sentence on what is wrong, empty when all is well.
QString overrideSettingForThisRun(const QString& name, const QString& value);

}  // namespace zov
