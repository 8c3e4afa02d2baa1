#include "core/mdlMain.h"

#include "core/CCommandArgs.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "core/registry.h"
#include "core/settings.h"
#include "shell/shell.h"
#include "util/paths.h"
#include "util/text.h"

#include <QFileInfo>

namespace zov {
namespace {

bool readBool(const char* name) {
    return readBooleanSetting(QString::fromLatin1(name));
}

}  // namespace

void RunStartUp(const QString& commandLine, const std::function<void()>& loadServers) {
    const auto step = [](auto body) { guardedRun("mdlMain", "Main", body); };
    const WaitPointer wait;
    Globals& g = globals();
    g.gblnExtendedNames = true;
    step([] { InitPaths(); });
    g.gblnDebugMode = QFileInfo::exists(g.gstrDebugFile);
    g.gtCurrentServers[SourcePanel] = ServerInfo();
    g.gtCurrentServers[TargetPanel] = ServerInfo();
    // A damaged or unreadable store waits for its user: with its version unreadable it would pass
    // for an old one, and nothing is written into it just for having been started.
    const bool sound = brokenSettingsLines() == 0 && settingsReadFailure().isEmpty();
    if (sound) step([] { UpgradeRegistryData(); });
    step([&] { LoadSettings(loadServers); });
    if (sound) step([] { SaveProgramLocation(); });
    step([&] { ParseCommandLine(commandLine); });
}

QString damagedSettingsNote() {
    const int broken = brokenSettingsLines();
    if (broken == 0) return {};
    return QStringLiteral(
               "%1 holds %2 that can't be read; the others are used, and nothing is "
               "lost when settings are saved.")
        .arg(settingsFilePath(),
             broken == 1 ? QStringLiteral("a line") : QStringLiteral("%1 lines").arg(broken));
}

void InitPaths() {
    Globals& g = globals();
    g.gstrAppPath = programFolder();
    g.gstrDebugFile = g.gstrAppPath + QStringLiteral("debug.txt");
    const QString documents = documentsFolder();
    g.gstrUserDataFolder = documents.isEmpty() ? g.gstrAppPath : documents;
    // The ignore file of data analysis lies beside the others, not in the temporary folder.
    g.gstrDataAnalysisFolder = g.gstrUserDataFolder;
    g.gstrTablesCompsIni = g.gstrUserDataFolder + QStringLiteral("zov_tables_comps.ini");
    g.gstrCompsIni = g.gstrUserDataFolder + QStringLiteral("zov_comps.ini");
    g.gstrIgnoredColsDataIni = g.gstrUserDataFolder + QStringLiteral("zov_ignored_cols_data.ini");
    g.gstrIgnoredColsStructIni =
        g.gstrUserDataFolder + QStringLiteral("zov_ignored_cols_struct.ini");
    g.gstrIgnoredColsDataAnalysisIni =
        g.gstrDataAnalysisFolder + QStringLiteral("zov_ignored_cols_dataanalysis.ini");
}

void UpgradeRegistryData() {
    const QString name = QStringLiteral("VerNum");
    const auto stored = [&] {
        return RegGetStringValue(RegRoot::CurrentUser, settings_key::Root, name, QString());
    };
    const QString current = ProgramVersionText();
    if (stored() == current) return;
    // Asked once more under the lock: another process may just have done this, and added a server.
    const auto upgrade = [&] {
        if (current == u"1.1" && stored().isEmpty()) {
            const QString count = QStringLiteral("Count");
            const qint32 servers =
                RegGetDWordValue(RegRoot::CurrentUser, settings_key::Servers, count, 0);
            for (qint32 n = 1; n <= qBound(5, servers, MaxStoredServers); ++n) {
                RegDeleteKeyPath(RegRoot::CurrentUser, settings_key::server(n));
            }
            RegSetDWordValue(RegRoot::CurrentUser, settings_key::Servers, count, 0);
        }
        RegSetStringValue(RegRoot::CurrentUser, settings_key::Root, name, current);
    };
    changeSettings(upgrade, LockWait::None);
}

void LoadSettings(const std::function<void()>& loadServers) {
    const RegistryBatch oneLook;
    Globals& g = globals();
    g.gblnRunFlag = readBool("Run");
    g.glngTimeout = readSetting(QStringLiteral("Timeout"));
    if (loadServers) loadServers();
    g.glngMaxRowsInDiffTable = GetMaxRowsInDiffTable();
    g.gblnShowOwners = GetShowOwners();
    g.gblnCaseSensitive = GetCaseSensitive();
    g.gblnDataCaseSensitive = GetDataCaseSensitive();
    g.gblnIgnoreWhitespace = GetIgnoreWhitespace();
    g.gblnIgnoreComments = GetIgnoreComments();
    g.gblnIgnoreIndexes = GetIgnoreIndexes();
    g.glngCursorLocation = GetCursorConnectionUseServer() ? adUseServer : adUseClient;
    g.glngCacheSize = GetCacheSize();
    g.gblnIgnoreSysObjects = GetIgnoreSysObjects();
    g.gblnFilterOfflineDbs = GetFilterOfflineDbs();
    g.gblnUseCatalogImage = GetUseCatalogImage();
    g.gblnIgnoreColSeq = GetIgnoreColSeq();
    g.gblnAutoSelTargetObj = GetAutoSelTargetObj();
    g.gblnAnalyzeConstraints = GetAnalyzeConstraints();
    g.gblnAutoSaveSchemas = GetAutoSaveSchemas();
}

void SaveProgramLocation() {
    const QString name = QStringLiteral("Location");
    const QString& folder = globals().gstrAppPath;
    if (RegGetStringValue(RegRoot::CurrentUser, settings_key::Root, name, {}) == folder) return;
    changeSettings(
        [&] { RegSetStringValue(RegRoot::CurrentUser, settings_key::Root, name, folder); },
        LockWait::None);
}

void ParseCommandLine(const QString& commandLine) {
    if (commandLine.isEmpty()) return;
    CCommandArgs arguments;
    arguments.Delim = QStringLiteral("/");
    arguments.TestString = commandLine;
    arguments.Parse();
    const QString id = arguments.Item(QStringLiteral("RunSavedComp"));
    if (!id.isEmpty()) globals().glngSavedProcessId = ValInt32(id);
}

bool IsDisplay640x480(int widthTwips, int heightTwips) {
    constexpr int TwipsPerPixel = 15;
    return widthTwips == 640 * TwipsPerPixel && heightTwips == 480 * TwipsPerPixel;
}

bool GetPreserveDbSel() {
    return readBool("PreserveDbSel");
}
bool GetShowDataCompOpt() {
    return readBool("ShowDataCompOpt");
}
bool GetPromptToSave() {
    return readBool("PromptToSave");
}
bool GetShowOwners() {
    return readBool("ShowOwners");
}
bool GetFilterOfflineDbs() {
    return readBool("FilterOfflineDbs");
}
bool GetCaseSensitive() {
    return readBool("CaseSensitive");
}
bool GetDataCaseSensitive() {
    return readBool("DataCaseSensitive");
}
bool GetIgnoreWhitespace() {
    return readBool("IgnoreWhitespace");
}
bool GetIgnoreComments() {
    return readBool("IgnoreComments");
}
bool GetIgnoreIndexes() {
    return readBool("IgnoreIndexes");
}
bool GetIgnoreColSeq() {
    return readBool("IgnoreColSeq");
}
bool GetAutoSelTargetObj() {
    return readBool("AutoSelTargetObj");
}
bool GetAnalyzeConstraints() {
    return readBool("AnalyzeConstraints");
}
bool GetAutoSaveSchemas() {
    return readBool("AutoSaveSchemas");
}
bool GetIgnoreSysObjects() {
    return readBool("IgnoreSysObjects");
}
bool GetUseCatalogImage() {
    return readBool("UseCatalogImage");
}
bool GetAutoConnect() {
    return readBool("AutoConnect");
}
bool GetCursorConnectionUseServer() {
    return readBool("CursorConnectionUseServer");
}
qint32 GetMaxRowsInDiffTable() {
    return readSetting(QStringLiteral("MaxRowsInDiffTable"));
}
qint32 GetCacheSize() {
    return readSetting(QStringLiteral("CacheSize"));
}

}  // namespace zov
