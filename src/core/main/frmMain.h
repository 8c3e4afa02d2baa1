// The controller of the main window: turns clicks and command ids into loads,
// comparisons and screens. The window itself is a view handed in; its lists, boxes
// and panes are the panels' state.
#pragma once

#include "catalog/panel_filtering.h"
#include "catalog/panel_loading.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "core/main/command_table.h"
#include "datacompare/frmCompareDataOptions.h"
#include "reports/frmCompareAndPrint.h"
#include "shell/shell.h"
#include "structcompare/pair_comparison.h"

namespace zov {

/// What the controller asks of the window.
class MainWindowView {
 public:
    virtual ~MainWindowView() = default;
    virtual Panels& panels() = 0;
    /// The rows that are selected in a panel's list, in their order.
    virtual std::vector<int> selectedRows(int Index) const = 0;
    virtual void setConnectPicture(int picture) = 0;
    virtual void setCompareToolTip(const QString& text) = 0;
    virtual void setListToolTips(const QString& text) = 0;
    virtual void setFilterText(int Index, const QString& text) = 0;
    virtual void setFilterMark(int Index, bool visible, const QString& toolTip) = 0;
    virtual void setOwnerControlsVisible(bool visible) = 0;
    virtual void setStatusText(const QString& text) = 0;
    virtual void focusTypeBox() = 0;
    /// Prints a pane's text with a header; false when printing was given up or there is no printer
    /// (which is told). `silent`: at once on the default printer, nothing is asked.
    virtual bool printPane(int Index, const QString& title, const QString& header, bool silent) = 0;
    virtual void showHelp(int topic) = 0;
    virtual void showAbout() = 0;
    virtual void closeWindow() = 0;
};

class MainScreens;
struct CompareAllWindow;
struct SavedProcess;

/// What "Compare Selected Objects" said of the two texts that were shown.
struct PairVerdict {
    bool isGiven = false;  ///< false: the objects could not be compared
    bool identical = false;
    QStringList leftOut;  ///< when identical: what was overlooked; empty for equal texts
};

/// The status bar's word on a verdict. `stops`: differences that one can go to; `onlyEmptyLines`:
/// there are marked lines, all of them empty; `oneIsEmpty`: one of the texts is.
QString VerdictStatus(const PairVerdict& verdict, size_t stops, bool onlyEmptyLines,
                      bool oneIsEmpty);
/// What going to a difference says when there is none to go to.
QString NoDifferenceStatus(const PairVerdict& verdict, bool onlyEmptyLines, bool oneIsEmpty);

/// A status message as the bar shows it: in debug mode behind a prefix.
QString StatusMessage(const QString& text);

/// The two selected tables as a comparison of their rows wants them.
CompareDataPair TablesOf(const SelectedPair& pair);

class frmMain : public PanelWindow,
                public PairComparisonWindow,
                public FilterWindow,
                public CompareAndPrintWindow {
 public:
    frmMain(MainWindowView& view, MainScreens& screens) : view_(view), screens_(screens) {}

    /// Fills the boxes and, with AutoConnect on, the panels.
    void Form_Load();
    /// The first activation: tip of the day, the first server, a saved process of the command line.
    void Form_Activate();

    /// The dispatch of all commands; `Panel` is the pane of a pop-up command. Unknown ids, submenus
    /// and commands that aren't built do nothing; nor does a command while another one is at work,
    /// but for help and the way out.
    void ExecuteAction(int Id, int Panel = SourcePanel);
    /// Whether a pop-up command belongs into the menu of a pane for the active object type.
    bool isInPaneMenu(int Id);
    /// Whether a command can be offered now: it is built, and a pop-up command has text to work on.
    bool isOffered(int Id) const;

    // Events of the window.
    void cmdConnect_Click();
    void cmbServer_Click(int Index);
    void pvlDb_Click(int Index);
    void cmbType_Click();
    void cmbOwners_Click(int Index);
    void pvlSqlObj_Click(int Index);
    void cmdFilter_Click(int Index, FilterType Type);
    void srtFiltering_Click(int Index);
    void cmdCopyClip_Click(int Index);
    void cmdCopyToFile_Click(int Index);
    /// The next comparison of two tables' rows begins with its options screen, whatever the setting
    /// says: Shift was held when it was asked for.
    void askForDataOptionsOnce() { askForDataOptions_ = true; }
    /// "View Data": the rows of the panel's selected table.
    void cmdViewData_Click(int Index);
    /// "Analyze Data": the values in the columns of the panel's selected table.
    void cmdAnalyzeData_Click(int Index);
    /// The inventory of the panel's database.
    void cmdDbInfo_Click(int Index);
    /// Words of the panel's text that nothing accounts for.
    void cmdNonExistent_Click(int Index);
    /// What the panel's database doesn't have of what its modules refer to, in the report screen.
    enum class SearchedObjects { Selected, Listed, All };
    void FindMissingReferencesIn(int Index, SearchedObjects objects);

    /// Mode 10: the type of `cmbType`; mode 20: list position `Value`. `PanelBits`: 1 Source, 2
    /// Target.
    void ObjectTypeChanged(int Mode, int Value, int PanelBits);
    void RefreshDisplayForPanel(int Index) override;
    void RefreshSourceTarget(int Index);

    // Guards: true when the operation can go on; they say what is missing otherwise.
    bool TablesAreActive();
    bool ProgrammableObjectsAreActive();
    bool CanFilter(int Index, FilterType Type) override;
    bool CanSearchForObject(int Index);
    /// Two databases, and objects in one of them at least.
    bool CanCompare();
    /// CanCompare for the data of the two selected tables. Asks when their structures differ.
    bool CanCompareData(SelectedPair& pair);
    bool CanDisplayDbInfo(int Index);
    /// The last verdict of "Compare Selected Objects"; it is about the texts as they were then.
    const PairVerdict& verdict() const { return verdict_; }
    /// Fills the server boxes anew; each shows the server of its panel.
    void refillServerBoxes();
    /// What viewing and analysing work on.
    struct TableChoice {
        ServerInfo server;
        QString database;
        QString schema;
        QString table;
        QString extendedName;
        qint32 id = 0;
        ObjectRef object;
    };
    /// `Action` 0 views, 1 analyses.
    bool CanViewAnalyzeData(int Action, int Index, TableChoice& choice);

    ObjectType selectedType();
    SelectedPair GetNamesOfSelected() override;

    // PanelWindow, PairComparisonWindow, FilterWindow, CompareAndPrintWindow.
    void setConnectPicture(int picture) override { view_.setConnectPicture(picture); }
    bool addServer() override;
    bool dataAccessUsable() override;
    void showComparisonReport(const SelectedPair& pair) override;
    bool isPrintJob() const override { return printJob_; }
    void printBothPanes() override;
    /// The re-entrancy flag: while it is set, events of the window do nothing.
    bool& Busy() override { return Busy_; }
    const ServerInfo& server(int Index) override;
    QString database(int Index) override;
    void setFilterText(int Index, const QString& text) override {
        view_.setFilterText(Index, text);
    }
    void setFilterMark(int Index, bool visible, const QString& toolTip) override {
        view_.setFilterMark(Index, visible, toolTip);
    }
    const ObjectList& objects(int Index) override { return view_.panels()[Index].pvlSqlObj; }
    void showObject(int Index, int row) override;
    bool compareAndPrintPair() override;

    /// Runs the saved process with this number; below 1 the user chooses one from a list.
    void RunSavedProcess(qint32 Id);
    /// The same for the process of this name.
    void RunSavedProcessNamed(const QString& Name);

    /// How the last replay ended.
    struct ReplayResult {
        RunVerdict verdict = RunVerdict::None;
        QString report;  ///< what a comparison of two tables' rows says
    };
    const ReplayResult& lastReplay() const { return replayResult_; }
    /// Replays change nothing that is stored, as which database was looked at last.
    bool leavesNoTrace = false;
    /// Changes what was read of a process before it is run; may be empty.
    std::function<void(SavedProcess&)> adjustProcess;

    bool Loaded = false;

 private:
    /// An event's handler that loads or compares: nothing while another one does, and the mark for
    /// its own length. A failure goes to the common report under the handler's name.
    template <typename Body>
    void whileBusy(const char* handler, Body body) {
        if (Busy_) return;
        const ScopedValue<bool> busy(Busy_, true);
        shell().beginOperation();
        {
            const WaitPointer wait;
            guardedRun("frmMain", handler, body);
        }
        tellSettingsFailure();
    }
    /// Says once, and after the options each time, that the settings could not be stored.
    void tellSettingsFailure();
    /// False when all reads of the settings went well.
    bool tellUnreadSettings();

    void showPanelServer(int Index);
    void showTypeToolTips(ObjectType type);
    void initializeDisplay(bool pblnLoadMRUDb);
    void showFilters();
    bool serverInfoSet();
    bool anyDatabase();
    void selectRow(int Index, int row);
    void takeOwnersBack(const QString (&owners)[2]);
    void MenuRemoveServer();
    void MenuToolsOptions();
    void MenuToolsFindInDb(int Index);
    void SearchRefToNonExistentObjects(int Index);
    /// Procedures, functions, views and triggers.
    static bool hasStatements(ObjectType type);
    void searchMissingReferences(int Index, SearchedObjects objects);
    void MenuToolsAttachDb();
    void MenuSqlCreate(int Index);
    void BuildSQLCreateStatement(int Index);

    // Scripts (frmMain_scripts.cpp).
    enum class ScriptScope { Selected, Kind, Database };
    std::vector<ObjectRef> selectedObjects(int Index);
    void MenuRunnableScript(int Index, ScriptScope scope);
    void GenerateUpdateScript();
    /// Asks first: statements of Source's objects are run in the Target database.
    void createInTarget(const std::vector<ObjectRef>& objects, const QString& what);
    void CreateObjects();
    void CreateStoredProcedures();

    void MenuPopUpPrint(int Index);
    bool PrintStructure(int Index, bool silent, const QString& title);
    void CompareAndPrintAllTables();
    void compareBulk(int kindIndex, bool selective, bool details);
    void compareDatabases(const char* handler, const std::function<void(CompareAllWindow&)>& run);
    bool ConstraintsMenuItems_MaintainVisibility();
    void cmdCompare_Click();
    void cmdCompareAll_Click();
    /// The rows of the two selected tables, as the options screen or their stored settings say.
    void CompareData();
    void refreshPaneText(int Index);
    void ignoreColumns(int Index);
    void visualizeDifferences();
    /// One of the commands that there are for each kind of object or scope of a script; false for
    /// any other.
    bool executeGroupAction(int Id);
    void executeDebugAction(int Id, int Index);
    bool hasText(int Index) const;
    bool showsNothing(int Index) const;

    // Replay of a saved process (frmMain_replay.cpp).
    void replayChosen(const std::function<QString()>& choose);
    void replayProcess(const QString& name);
    bool CheckSavedProcessDetails(const SavedProcess& process);
    bool selectReplayServers(const SavedProcess& process);
    bool selectReplayDatabases(const SavedProcess& process);
    void selectType(ObjectType type);
    int rowOfReplayObject(int Index, const QString& name, qint32 id, const QString& kind);
    bool selectionFits(const SavedProcess& process, ObjectType type);
    void RunSavedProcess_DataComp(const SavedProcess& process);
    void RunSavedProcess_MetaDataComp(const SavedProcess& process);
    void RunSavedProcess_Data_Single(const SavedProcess& process);
    void RunSavedProcess_Data_All(const SavedProcess& process);
    void RunSavedProcess_Individual(int Index, const SavedProcess& process);
    /// Runs with lists and panes of its own for scratch: what the user looks at stays as it is.
    void runOnScratch(const char* handler, const std::function<void(CompareAllWindow&)>& run);

    MainWindowView& view_;
    MainScreens& screens_;
    bool Busy_ = false;
    bool activated_ = false;
    bool printJob_ = false;
    bool settingsFailureTold_ = false;
    bool unreadSettingsTold_ = false;
    bool askForDataOptions_ = false;
    PairVerdict verdict_;
    bool reportShown_ = false;  ///< by the comparison under way
    bool printed_ = false;      ///< what printBothPanes could do

    /// What a replay hands to the report of a pair; for its length alone.
    struct ReplayContext {
        bool replaying = false;
        QString exportPath;
    };
    ReplayContext replay_;
    ReplayResult replayResult_;
};

}  // namespace zov
