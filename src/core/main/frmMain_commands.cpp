// The dispatch of the main window's commands.
#include "catalog/modSchema.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "core/main/frmMain.h"
#include "core/main/main_screens.h"
#include "core/mdlMain.h"
#include "scripting/mdlQueryCode.h"
#include "shell/shell.h"

namespace zov {
namespace {

namespace cmd = command;

constexpr int DataComparisons = 1;
constexpr int StructureComparisons = 2;
constexpr int SupportTopic = 230;

// The kind of a bulk command, or -1 when the id is not of that group.
int kindOf(int id, int first) {
    const int index = id - first;
    return index >= 0 && index < cmd::KindsPerGroup ? index : -1;
}

}  // namespace

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
    guardedRun("frmMain", "ExecuteAction", [&] {
        if (const int kind = kindOf(Id, cmd::FirstBulkSimple); kind >= 0)
            return compareBulk(kind, false, false);
        if (const int kind = kindOf(Id, cmd::FirstBulkDetails); kind >= 0)
            return compareBulk(kind, false, true);
        if (const int kind = kindOf(Id, cmd::FirstSelective); kind >= 0)
            return compareBulk(kind, true, false);
        if (const int kind = kindOf(Id, cmd::FirstSelectiveDetails); kind >= 0)
            return compareBulk(kind, true, true);
        if (entry->menu == CommandMenu::Debug) return executeDebugAction(Id, Panel);
        switch (Id) {
            case cmd::Connect:
                return cmdConnect_Click();
            case cmd::RefreshSource:
                return RefreshSourceTarget(SourcePanel);
            case cmd::RefreshTarget:
                return RefreshSourceTarget(TargetPanel);
            case cmd::Exit:
                return view_.closeWindow();
            case cmd::CompareSelected:
                return cmdCompare_Click();
            case cmd::CompareAll:
                return cmdCompareAll_Click();
            case cmd::CompareAndPrint:
                if (ServerInfoSet(view_.panels(), *this)) CompareAndPrintAllTables();
                return;
            case cmd::CreateSource:
                return MenuSqlCreate(SourcePanel);
            case cmd::CreateTarget:
                return MenuSqlCreate(TargetPanel);
            case cmd::AddServer:
                if (dataAccessUsable() && addServer())
                    InitializeDisplay(false, view_.panels(), *this);
                return;
            case cmd::RemoveServer:
                return MenuRemoveServer();
            case cmd::FindInSource:
                return MenuToolsFindInDb(SourcePanel);
            case cmd::FindInTarget:
                return MenuToolsFindInDb(TargetPanel);
            case cmd::IgnoredData:
                return screens_.viewIgnoredColumns(DataComparisons);
            case cmd::IgnoredStructure:
                return screens_.viewIgnoredColumns(StructureComparisons);
            case cmd::Options:
                return MenuToolsOptions();
            case cmd::HelpIndex:
                return view_.showHelp(0);
            case cmd::TipOfTheDay:
                return screens_.showTip();
            case cmd::TechnicalSupport:
                return view_.showHelp(SupportTopic);
            case cmd::About:
                return view_.showAbout();
            case cmd::PaneRefresh:
                return refreshPaneText(Panel);
            case cmd::ColorSchema:
                return screens_.showColorSchema();
            case cmd::Visualize:
                return visualizeDifferences();
            case cmd::IgnoreColumns:
                return ignoreColumns(Panel);
            case cmd::HighlightedSections:
                return CompareHighlightedSections(*this, view_.panels().source.txtTXProc,
                                                  view_.panels().target.txtTXProc);
            case cmd::PaneCreate:
                return MenuSqlCreate(Panel);
            case cmd::Print:
                return MenuPopUpPrint(Panel);
            case cmd::PrintBoth:
                MenuPopUpPrint(SourcePanel);
                return MenuPopUpPrint(TargetPanel);
            default:
                return;
        }
    });
}

void frmMain::executeDebugAction(int Id, int Index) {
    if (database(Index).isEmpty() && Id != cmd::DebugErrorReport && Id != cmd::DebugOptionsNew) {
        shell().messageBox(QStringLiteral("Please connect to the server first."));
        return;
    }
    const SelectedPair pair = GetNamesOfSelected();
    switch (Id) {
        case cmd::DebugSchemaById: {
            QString schema;
            Db_GetObjSchemaById(server(Index), pair.objectType, database(Index), pair.sourceId,
                                schema);
            return shell().messageBox(schema);
        }
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
        case cmd::DebugServerVersion:
            return shell().messageBox(GetServerVersion(server(Index)));
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
