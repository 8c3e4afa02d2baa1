// The controller of the main window: turns clicks and command ids into loads,
// comparisons and screens. The window itself is a view handed in; its lists, boxes
// and panes are the panels' state.
#pragma once

#include "catalog/panel_filtering.h"
#include "catalog/panel_loading.h"
#include "core/globals.h"
#include "core/main/command_table.h"
#include "structcompare/pair_comparison.h"

namespace zov {

/// What the controller asks of the window.
class MainWindowView {
 public:
    virtual ~MainWindowView() = default;
    virtual Panels& panels() = 0;
    virtual void setConnectPicture(int picture) = 0;
    virtual void setCompareToolTip(const QString& text) = 0;
    virtual void setListToolTips(const QString& text) = 0;
    virtual void setFilterText(int Index, const QString& text) = 0;
    virtual void setFilterMark(int Index, bool visible, const QString& toolTip) = 0;
    virtual void setOwnerControlsVisible(bool visible) = 0;
    virtual void setStatusText(const QString& text) = 0;
    virtual void focusTypeBox() = 0;
    /// Prints a pane's text with a header; false when printing was given up.
    virtual bool printPane(int Index, const QString& title, const QString& header) = 0;
    virtual void showHelp(int topic) = 0;
    virtual void showAbout() = 0;
    virtual void closeWindow() = 0;
};

class MainScreens;

class frmMain : public PanelWindow, public PairComparisonWindow, public FilterWindow {
 public:
    frmMain(MainWindowView& view, MainScreens& screens) : view_(view), screens_(screens) {}

    /// Fills the boxes and, with AutoConnect on, the panels.
    void Form_Load();
    /// The first activation: tip of the day, the first server, a saved process of the command line.
    void Form_Activate();

    /// The dispatch of all commands; `Panel` is the pane of a pop-up command. Unknown ids do
    /// nothing.
    void ExecuteAction(int Id, int Panel = SourcePanel);
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
    /// What viewing and analysing work on.
    struct TableChoice {
        ServerInfo server;
        QString database;
        QString schema;
        QString table;
        QString extendedName;
        qint32 id = 0;
    };
    /// `Action` 0 views, 1 analyses.
    bool CanViewAnalyzeData(int Action, int Index, TableChoice& choice);

    ObjectType selectedType();
    SelectedPair GetNamesOfSelected() override;

    // PanelWindow, PairComparisonWindow, FilterWindow.
    void setConnectPicture(int picture) override { view_.setConnectPicture(picture); }
    bool addServer() override;
    bool dataAccessUsable() override;
    void setBusy(bool busy) override { Busy_ = busy; }
    void showComparisonReport(const SelectedPair& pair) override;
    bool isPrintJob() const override { return printJob_; }
    void printBothPanes() override;
    bool& Busy() override { return Busy_; }
    const ServerInfo& server(int Index) override;
    QString database(int Index) override;
    void setFilterText(int Index, const QString& text) override {
        view_.setFilterText(Index, text);
    }
    void setFilterMark(int Index, bool visible, const QString& toolTip) override {
        view_.setFilterMark(Index, visible, toolTip);
    }

    bool Loaded = false;

 private:
    void refillServerBoxes();
    void MenuRemoveServer();
    void MenuToolsOptions();
    void MenuToolsFindInDb(int Index);
    void MenuSqlCreate(int Index);
    void BuildSQLCreateStatement(int Index);
    void MenuPopUpPrint(int Index);
    void CompareAndPrintAllTables();
    void compareBulk(int kindIndex, bool selective, bool details);
    void cmdCompare_Click();
    void cmdCompareAll_Click();
    void refreshPaneText(int Index);
    void ignoreColumns(int Index);
    void visualizeDifferences();
    void executeDebugAction(int Id, int Index);
    bool hasText(int Index) const;

    MainWindowView& view_;
    MainScreens& screens_;
    bool Busy_ = false;
    bool activated_ = false;
    bool printJob_ = false;
};

}  // namespace zov
