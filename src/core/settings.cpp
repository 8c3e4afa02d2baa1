#include "core/settings.h"

#include "core/registry.h"

#include <vector>

namespace zov {
namespace {

constexpr auto Bool = SettingKind::Boolean;
constexpr auto Number = SettingKind::Number;

const std::vector<Setting>& settings() {
    using namespace settings_key;
    const auto named = [](const char* name) { return QString::fromLatin1(name); };
    static const std::vector<Setting> table = {
        {named("Run"), Root, Bool, 0},
        {named("Timeout"), Root, Number, 30},
        {named("MaxRowsInDiffTable"), Root, Number, 500},
        {named("CacheSize"), Root, Number, 5},
        {named("PreserveDbSel"), Root, Bool, 1},
        {named("AutoSelTargetObj"), Root, Bool, 0},
        {named("AnalyzeConstraints"), Root, Bool, 0},
        {named("AutoSaveSchemas"), Root, Bool, 0},
        {named("ShowTipOfDay"), Root, Bool, 0},
        {named("DisplayedTipNum"), Root, Number, 0},
        {named("ShowOwners"), Servers, Bool, 0},
        {named("FilterOfflineDbs"), Servers, Bool, 0},
        {named("AutoConnect"), Servers, Bool, 0},
        {named("CursorConnectionUseServer"), Servers, Bool, 1},
        {named("ShowDataCompOpt"), Comparisons, Bool, 1},
        {named("PromptToSave"), Comparisons, Bool, 1},
        {named("CaseSensitive"), Comparisons, Bool, 1},
        {named("DataCaseSensitive"), Comparisons, Bool, 1},
        {named("IgnoreWhitespace"), Comparisons, Bool, 1},
        {named("IgnoreComments"), Comparisons, Bool, 1},
        {named("IgnoreIndexes"), Comparisons, Bool, 0},
        {named("IgnoreColSeq"), Comparisons, Bool, 1},
        {named("IgnoreSysObjects"), Comparisons, Bool, 1},
        {named("UseCatalogImage"), Comparisons, Bool, 1},
        {named("PageWidth"), TXText, Number, 20000},
        {named("PageHeight"), TXText, Number, 15840},
    };
    return table;
}

}  // namespace

QString settings_key::server(qint32 n) {
    return Servers + QStringLiteral("\\Server") + QString::number(n);
}

const Setting* findSetting(const QString& name) {
    for (const Setting& setting : settings()) {
        if (setting.name.compare(name, Qt::CaseInsensitive) == 0) return &setting;
    }
    return nullptr;
}

QStringList settingNames() {
    QStringList names;
    for (const Setting& setting : settings()) names += setting.name;
    return names;
}

qint32 readSetting(const QString& name) {
    const Setting* setting = findSetting(name);
    Q_ASSERT(setting);
    return RegGetDWordValue(RegRoot::CurrentUser, setting->key, setting->name,
                            setting->defaultValue);
}

bool readBooleanSetting(const QString& name) {
    return readSetting(name) == 1;
}

void writeSetting(const QString& name, qint32 value) {
    const Setting* setting = findSetting(name);
    Q_ASSERT(setting);
    RegSetDWordValue(RegRoot::CurrentUser, setting->key, setting->name, value);
}

void writeBooleanSetting(const QString& name, bool value) {
    writeSetting(name, value ? 1 : 0);
}

QString overrideSettingForThisRun(const QString& name, const QString& value) {
    const Setting* setting = findSetting(name);
    if (!setting) {
        return QStringLiteral("There is no setting \"%1\"; there are: %2.")
            .arg(name, settingNames().join(QStringLiteral(", ")));
    }
    const QString lower = value.trimmed().toLower();
    bool isNumber = false;
    qint32 number = lower.toInt(&isNumber);
    if (!isNumber && setting->kind == SettingKind::Boolean) {
        const bool yes = lower == u"true" || lower == u"yes" || lower == u"on";
        isNumber = yes || lower == u"false" || lower == u"no" || lower == u"off";
        number = yes ? 1 : 0;
    }
    if (!isNumber) {
        return QStringLiteral("The setting %1 takes %2, not \"%3\".")
            .arg(setting->name,
                 setting->kind == SettingKind::Boolean ? QStringLiteral("1 or 0")
                                                       : QStringLiteral("a whole number"),
                 value);
    }
    overrideSetting(setting->key, setting->name, number);
    return {};
}

}  // namespace zov
