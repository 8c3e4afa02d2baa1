// Every command of the main window: its id, its caption, where it stands in the
// menus, its key. The ids are fixed; pop-up and debug commands are here too.
#pragma once

#include <QString>

#include <vector>

namespace zov {

enum class CommandMenu { File, Comparisons, Data, Sql, Tools, Help, PanePopUp, Debug };

struct CommandEntry {
    int id;
    int parent;  ///< id of the submenu it stands in, 0 for the menu itself
    CommandMenu menu;
    const char* caption;  ///< "&" marks the mnemonic
    const char* key;      ///< "F7", empty for none
    bool isSubmenu = false;
    bool isBuilt = true;  ///< false: shown disabled
    bool separatorBefore = false;
};

/// In the order of the menus.
const std::vector<CommandEntry>& commandTable();
/// Null for an id that isn't in the table.
const CommandEntry* findCommand(int id);
/// "&Comparisons" ...
const char* menuCaption(CommandMenu menu);

namespace command {
inline constexpr int Connect = 101, RefreshSource = 102, RefreshTarget = 103, RunSaved = 104,
                     Exit = 105;
inline constexpr int CompareSelected = 201, CompareAll = 202, Bulk = 203, BulkSimple = 204,
                     BulkDetails = 220, Selective = 230, SelectiveDetails = 240,
                     CompareAndPrint = 250;
/// Seven each, in the order of the bulk comparison's kinds.
inline constexpr int FirstBulkSimple = 205, FirstBulkDetails = 221, FirstSelective = 231,
                     FirstSelectiveDetails = 241, KindsPerGroup = 7;
inline constexpr int DataPair = 310, DataSelected = 320, DataAll = 330;
inline constexpr int CreateSource = 410, CreateTarget = 420;
/// Three each: the selected objects, all of the kind, all of the database.
inline constexpr int FirstScriptSource = 431, FirstScriptTarget = 441, ScriptScopes = 3;
inline constexpr int AddServer = 501, RemoveServer = 502, DataAnalyzer = 503, AnalyzeSource = 504,
                     AnalyzeTarget = 505, FindObject = 506, FindInSource = 507, FindInTarget = 508,
                     AttachDatabase = 509, IgnoredData = 510, IgnoredStructure = 511, Options = 513,
                     UpdateScript = 514;
/// Missing references: in the whole database, or in the objects that the panel lists.
inline constexpr int FindMissing = 520, MissingInSource = 521, MissingInTarget = 522,
                     MissingInListedSource = 523, MissingInListedTarget = 524;
inline constexpr int HelpIndex = 610, TipOfTheDay = 620, TechnicalSupport = 630, About = 660;
inline constexpr int PaneRefresh = 700, ColorSchema = 710, Visualize = 720, IgnoreColumns = 730,
                     HighlightedSections = 740, PaneCreate = 750, References = 760,
                     MissingReferences = 765, Print = 770, PrintBoth = 780;
inline constexpr int DebugCreateObjects = 801, DebugSchemaById = 802, DebugUpdateScript = 804,
                     DebugExecSp = 805, DebugAttach = 806, DebugListObjects = 808,
                     DebugStripComments = 809, DebugConstraints = 810, DebugIndexes = 811,
                     DebugCreateProcedures = 812, DebugOptions = 813, DebugDataOptions = 814,
                     DebugServerVersion = 815, DebugOptionsNew = 816, DebugErrorReport = 817;
}  // namespace command

}  // namespace zov
