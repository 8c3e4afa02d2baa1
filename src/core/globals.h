// The program's global state: paths, settings, the server list, the two panels'
// servers and filters. Filled at start-up (mdlMain) and by the options; read by
// everybody at the point of use. One struct, so that a test can reset it.
#pragma once

#include "core/server_info.h"

#include <QString>

#include <vector>

namespace zov {

inline constexpr int ProgramMajorVersion = 1;
inline constexpr int ProgramMinorVersion = 1;
inline constexpr qint32 ProgramBuildNumber = 187;
/// "1.1", as error reports and the settings store show it.
QString ProgramVersionText();

inline constexpr int adUseServer = 2;
inline constexpr int adUseClient = 3;

inline constexpr int SourcePanel = 0;
inline constexpr int TargetPanel = 1;

struct Globals {
    // Paths; every folder ends in the platform's separator.
    QString gstrAppPath;
    QString gstrDebugFile;
    bool gblnDebugMode = false;
    QString gstrUserDataFolder;
    QString gstrDataAnalysisFolder;
    QString gstrTablesCompsIni;
    QString gstrCompsIni;
    QString gstrIgnoredColsDataIni;
    QString gstrIgnoredColsStructIni;
    QString gstrIgnoredColsDataAnalysisIni;

    /// Every stored server. Element 0 is server number 1 of the store.
    std::vector<ServerInfo> gtServers;
    bool gblnServersLoaded = false;
    ServerInfo gtCurrentServers[2];  ///< Source, Target

    // Settings.
    qint32 glngTimeout = 30;  ///< seconds, 0 without limit
    qint32 glngMaxRowsInDiffTable = 500;
    qint32 glngCacheSize = 5;  ///< rows, with server-side cursors
    qint32 glngCursorLocation = adUseServer;
    bool gblnFilterOfflineDbs = false;
    bool gblnShowOwners = false;
    bool gblnCaseSensitive = true;
    bool gblnDataCaseSensitive = true;
    bool gblnIgnoreWhitespace = true;
    bool gblnIgnoreComments = true;
    bool gblnIgnoreIndexes = false;
    bool gblnIgnoreColSeq = true;
    bool gblnIgnoreSysObjects = true;
    bool gblnUseCatalogImage = false;  ///< runs over many objects read each catalogue whole
    bool gblnAutoSelTargetObj = false;
    bool gblnAnalyzeConstraints = false;
    bool gblnAutoSaveSchemas = false;
    bool gblnRunFlag = false;

    bool gblnSuppressConnErrors = false;  ///< GetAdoRS fails without a report
    bool gblnExtendedNames = false;
    bool gblnPermissionsEnabled =
        false;  ///< nothing sets it; permissions are built but not offered
    qint32 glngSavedProcessId = 0;
    bool gblnAutoClose = false;  ///< a replay closes its result screens and the program
    bool gblnStop = false;       ///< the one stop flag that Stop and Cancel buttons set

    // Filters by owner or schema, one a panel.
    bool gblnFilterActive[2] = {false, false};
    QString gstrFilterList[2];  ///< names, comma-separated, no blanks

    QString gstrReport;  ///< the text that the report screen shows
};

Globals& globals();
/// Back to the state before start-up.
void resetGlobals();

/// Sets a global flag (or any variable) for the length of a scope and puts the old value back.
template <typename T>
class ScopedValue {
 public:
    ScopedValue(T& variable, T value) : variable_(variable), saved_(variable) { variable_ = value; }
    ~ScopedValue() { variable_ = saved_; }
    ScopedValue(const ScopedValue&) = delete;
    ScopedValue& operator=(const ScopedValue&) = delete;

 private:
    T& variable_;
    T saved_;
};

}  // namespace zov
