// The dispatch of the main window's commands.
#include "catalog/modSchema.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "core/main/frmMain.h"
#include "core/main/main_screens.h"
#include "core/mdlMain.h"
#include "core/modIgnoreColumns.h"
#include "datacompare/compare_all_data.h"
#include "scripting/mdlQueryCode.h"
#include "shell/shell.h"

#include <QSet>

namespace zov {
namespace {

namespace cmd = command;

constexpr int SupportTopic = 230;

// The kind of a bulk command, or -1 when the id is not of that group.
int kindOf(int id, int first) {
    const int index = id - first;
    return index >= 0 && index < cmd::KindsPerGroup ? index : -1;
}

}  // namespace

bool frmMain::isInPaneMenu(int Id) {
    const CommandEntry* entry = findCommand(Id);
    if (!entry || entry->menu != CommandMenu::PanePopUp) return false;
    const ObjectType type = selectedType();
    if (Id == cmd::IgnoreColumns) return type == ObjectType::Table;
    if (Id == cmd::References)
        return type == ObjectType::Procedure || type == ObjectType::Function ||
               type == ObjectType::View;
    if (Id == cmd::MissingReferences) return hasStatements(type);
    return true;
}

bool frmMain::isOffered(int Id) const {
    const CommandEntry* entry = findCommand(Id);
    if (!entry || !entry->isBuilt) return false;
    if (entry->menu != CommandMenu::PanePopUp) return true;
    if (Id == cmd::HighlightedSections) return hasText(SourcePanel) && hasText(TargetPanel);
    return hasText(SourcePanel) || hasText(TargetPanel);
}

void frmMain::ExecuteAction(int Id, int Panel) {
    const CommandEntry* entry = findCommand(Id);
    if (!entry || !entry->isBuilt || entry->isSubmenu) return;
    if (Busy_ && entry->menu != CommandMenu::Help && Id != cmd::Exit) return;
    if (executeGroupAction(Id)) return;
    if (entry->menu == CommandMenu::Debug)
        return whileBusy("executeDebugAction", [&] { executeDebugAction(Id, Panel); });

    const auto run = [this](const char* handler, auto body) { whileBusy(handler, body); };
    switch (Id) {
        case cmd::Connect:
            return cmdConnect_Click();
        case cmd::RefreshSource:
            return RefreshSourceTarget(SourcePanel);
        case cmd::RefreshTarget:
            return RefreshSourceTarget(TargetPanel);
        case cmd::RunSaved:
            if (dataAccessUsable()) RunSavedProcess(0);
            return;
        case cmd::Exit:
            return view_.closeWindow();
        case cmd::CompareSelected:
            return cmdCompare_Click();
        case cmd::CompareAll:
            return cmdCompareAll_Click();
        case cmd::CompareAndPrint:
            return run("CompareAndPrintAllTables", [&] {
                if (serverInfoSet()) CompareAndPrintAllTables();
            });
        case cmd::DataPair:
            return CompareData();
        case cmd::DataSelected:
            return compareDatabases("MenuDataCompSelective", [](CompareAllWindow& window) {
                MenuDataCompSelective(window);
            });
        case cmd::DataAll:
            return compareDatabases("DataCompareAll", [&](CompareAllWindow& window) {
                if (CanCompare()) DataCompareAll(window);
            });
        case cmd::CreateSource:
            return run("MenuSqlCreate", [&] { MenuSqlCreate(SourcePanel); });
        case cmd::CreateTarget:
            return run("MenuSqlCreate", [&] { MenuSqlCreate(TargetPanel); });
        case cmd::UpdateScript:
            return run("GenerateUpdateScript", [&] { GenerateUpdateScript(); });
        case cmd::AddServer:
            return run("MenuAddServer", [&] {
                if (dataAccessUsable() && addServer()) initializeDisplay(false);
            });
        case cmd::RemoveServer:
            return run("MenuRemoveServer", [&] { MenuRemoveServer(); });
        case cmd::AnalyzeSource:
            return cmdAnalyzeData_Click(SourcePanel);
        case cmd::AnalyzeTarget:
            return cmdAnalyzeData_Click(TargetPanel);
        case cmd::References:
            return cmdNonExistent_Click(Panel);
        case cmd::MissingReferences:
            return FindMissingReferencesIn(Panel, SearchedObjects::Selected);
        case cmd::MissingInSource:
            return FindMissingReferencesIn(SourcePanel, SearchedObjects::All);
        case cmd::MissingInTarget:
            return FindMissingReferencesIn(TargetPanel, SearchedObjects::All);
        case cmd::MissingInListedSource:
            return FindMissingReferencesIn(SourcePanel, SearchedObjects::Listed);
        case cmd::MissingInListedTarget:
            return FindMissingReferencesIn(TargetPanel, SearchedObjects::Listed);
        case cmd::FindInSource:
            return run("MenuToolsFindInDb", [&] { MenuToolsFindInDb(SourcePanel); });
        case cmd::FindInTarget:
            return run("MenuToolsFindInDb", [&] { MenuToolsFindInDb(TargetPanel); });
        case cmd::AttachDatabase:
            return run("MenuToolsAttachDb", [&] { MenuToolsAttachDb(); });
        case cmd::IgnoredData:
            return run("MenuToolsIgnoredColumns",
                       [&] { screens_.viewIgnoredColumns(IgnoreMode::DataComparison); });
        case cmd::IgnoredStructure:
            return run("MenuToolsIgnoredColumns",
                       [&] { screens_.viewIgnoredColumns(IgnoreMode::StructureComparison); });
        case cmd::Options:
            return run("MenuToolsOptions", [&] { MenuToolsOptions(); });
        case cmd::HelpIndex:
            return view_.showHelp(0);
        case cmd::TipOfTheDay:
            return run("MenuTipOfTheDay", [&] { screens_.showTip(); });
        case cmd::TechnicalSupport:
            return view_.showHelp(SupportTopic);
        case cmd::About:
            return view_.showAbout();
        case cmd::PaneRefresh:
            return run("MenuPopUpRefresh", [&] { refreshPaneText(Panel); });
        case cmd::ColorSchema:
            return run("MenuPopUpColorSchema", [&] { screens_.showColorSchema(); });
        case cmd::Visualize:
            return run("MenuPopUpVisualize", [&] { visualizeDifferences(); });
        case cmd::IgnoreColumns:
            return run("MenuPopUpIgnoreColumns", [&] { ignoreColumns(Panel); });
        case cmd::HighlightedSections:
            return CompareHighlightedSections(*this, view_.panels().source.txtTXProc,
                                              view_.panels().target.txtTXProc);
        case cmd::PaneCreate:
            return run("BuildSQLCreateStatement", [&] { MenuSqlCreate(Panel); });
        case cmd::Print:
            return run("MenuPopUpPrint", [&] { MenuPopUpPrint(Panel); });
        case cmd::PrintBoth:
            return run("MenuPopUpPrintSourceAndTarget", [&] {
                MenuPopUpPrint(SourcePanel);
                MenuPopUpPrint(TargetPanel);
            });
        default:
            return;
    }
}

bool frmMain::executeGroupAction(int Id) {
    const struct {
        int first;
        bool selective, details;
    } groups[] = {{cmd::FirstBulkSimple, false, false},
                  {cmd::FirstBulkDetails, false, true},
                  {cmd::FirstSelective, true, false},
                  {cmd::FirstSelectiveDetails, true, true}};
    for (const auto& group : groups) {
        const int kind = kindOf(Id, group.first);
        if (kind < 0) continue;
        compareBulk(kind, group.selective, group.details);
        return true;
    }
    for (const int first : {cmd::FirstScriptSource, cmd::FirstScriptTarget}) {
        const int scope = Id - first;
        if (scope < 0 || scope >= cmd::ScriptScopes) continue;
        const int Index = first == cmd::FirstScriptSource ? SourcePanel : TargetPanel;
        whileBusy("MenuRunnableScript", [&] { MenuRunnableScript(Index, ScriptScope(scope)); });
        return true;
    }
    return false;
}

void frmMain::executeDebugAction(int Id, int Index) {
    static const QSet<int> withoutServer = {cmd::DebugErrorReport, cmd::DebugOptionsNew,
                                            cmd::DebugOptions, cmd::DebugStripComments,
                                            cmd::DebugExecSp};
    if (database(Index).isEmpty() && !withoutServer.contains(Id)) {
        shell().messageBox(QStringLiteral("Please connect to the server first."));
        return;
    }
    // What writes to a server is there with the debug file alone.
    const bool writes = Id == cmd::DebugCreateObjects || Id == cmd::DebugCreateProcedures;
    if (writes && !globals().gblnDebugMode) return;
    const SelectedPair pair = GetNamesOfSelected();
    switch (Id) {
        case cmd::DebugCreateObjects:
            return CreateObjects();
        case cmd::DebugCreateProcedures:
            return CreateStoredProcedures();
        case cmd::DebugUpdateScript:
            return GenerateUpdateScript();
        case cmd::DebugSchemaById: {
            QString schema;
            Db_GetObjSchemaById(server(Index), pair.objectType, database(Index), pair.sourceId,
                                schema);
            return shell().messageBox(schema);
        }
        case cmd::DebugExecSp:
            return screens_.executeProcedure();
        case cmd::DebugAttach:
            return MenuToolsAttachDb();
        case cmd::DebugListObjects: {
            QStringList source, target;
            screens_.listObjects().ShowUp(pair.sourceDb, pair.targetDb, pair.objectType, source,
                                          target);
            return;
        }
        case cmd::DebugConstraints:
            return shell().messageBox(
                GetTableConstraints(server(Index), pair.sourceObject, database(Index)));
        case cmd::DebugIndexes:
            return shell().messageBox(
                GetIndexes(server(Index), pair.sourceObject, database(Index), false, {}, nullptr));
        case cmd::DebugDataOptions: {
            DataCompSettings settings;
            frmCompareDataOptions().ShowUp(TablesOf(pair), settings);
            return;
        }
        case cmd::DebugServerVersion:
            return shell().messageBox(GetServerVersion(server(Index)));
        case cmd::DebugStripComments:
            return screens_.stripComments(view_.panels()[Index].txtTXProc.text());
        case cmd::DebugOptions:
            return screens_.showDebugOptions();
        case cmd::DebugOptionsNew:
            return MenuToolsOptions();
        case cmd::DebugErrorReport:
            return ShowErrorReport(123456, QStringLiteral("Test Error"), ProgramVersionText(),
                                   ProgramBuildNumber, QStringLiteral("frmMain"),
                                   QStringLiteral("ID_DEBUG_ERROR_REPORT"), {});
        default:
            return;
    }
}

}  // namespace zov
