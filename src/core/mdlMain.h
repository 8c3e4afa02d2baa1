// Start-up: paths, the upgrade of older stores, the settings, the command line;
// and the typed readers of settings that are read at each use. RunStartUp is
// all that comes before the main window.
#pragma once

#include <QString>

#include <functional>

namespace zov {

/// Everything that stands before the main window: extended names on, paths, debug mode, panels
/// cleared, old stores upgraded, settings, the program's location, the command line. A failing step
/// is reported and the next one runs; what a start notes in the store is left out while another
/// process writes there. `loadServers` fills gtServers.
void RunStartUp(const QString& commandLine, const std::function<void()>& loadServers);

/// What there is to be told of the store's lines that can't be read; empty when there are none.
QString damagedSettingsNote();

void InitPaths();
/// A store of an older layout (no version in it) loses its server list; the current version is
/// noted.
void UpgradeRegistryData();
/// Reads every setting that globals() holds. `loadServers` is called behind the time-out.
void LoadSettings(const std::function<void()>& loadServers);
void SaveProgramLocation();
/// The switch "/RunSavedComp ID" sets glngSavedProcessId.
void ParseCommandLine(const QString& commandLine);

/// True when a screen of this size in twips is exactly 640 by 480 pixels.
bool IsDisplay640x480(int widthTwips, int heightTwips);

/// How many stored servers a store's `Count` is believed for: a damaged number must not cost
/// memory.
inline constexpr qint32 MaxStoredServers = 1000;

bool GetPreserveDbSel();
bool GetShowDataCompOpt();
bool GetPromptToSave();
bool GetShowOwners();
bool GetFilterOfflineDbs();
bool GetCaseSensitive();
bool GetDataCaseSensitive();
bool GetIgnoreWhitespace();
bool GetIgnoreComments();
bool GetIgnoreIndexes();
bool GetIgnoreColSeq();
bool GetAutoSelTargetObj();
bool GetAnalyzeConstraints();
bool GetAutoSaveSchemas();
bool GetIgnoreSysObjects();
bool GetUseCatalogImage();
bool GetAutoConnect();
bool GetCursorConnectionUseServer();
qint32 GetMaxRowsInDiffTable();
qint32 GetCacheSize();

}  // namespace zov
