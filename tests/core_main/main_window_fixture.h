// A main window without a display: panels in memory, a view that writes down what
// it is told, the recording shell in front of the screens. Servers are real.
#pragma once

#include "core/main/frmMain.h"
#include "core/main/main_screens.h"
#include "data/server_list.h"
#include "scripting/modNew.h"
#include "shell/memory_controls.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

#include <gtest/gtest.h>

namespace zov::test {

/// A list that tells of its selection as a widget does.
class EventList : public MemoryObjectList {
 public:
    std::function<void()> onSelection;

    void selectRow(int index) override {
        MemoryObjectList::selectRow(index);
        if (Tag != u"OFF" && onSelection) onSelection();
    }
};

struct TestPanel {
    MemoryChoiceList cmbServer, pvlDb, cmbOwners;
    EventList pvlSqlObj;
    MemoryTextPane txtTXProc;
    Panel panel{cmbServer, pvlDb, pvlSqlObj, txtTXProc, cmbOwners};
};

class TestView : public MainWindowView {
 public:
    TestPanel sides[2];
    MemoryChoiceList cmbType;
    Panels both{sides[0].panel, sides[1].panel, cmbType, objectTexts()};
    QStringList lines;  ///< pictures, prints, help, ...
    QString status, compareToolTip, listToolTips;
    QString filterText[2];
    bool filterMark[2] = {false, false};
    bool ownersVisible = false;
    bool canPrint = true;

    std::vector<int> alsoSelected;  ///< rows behind the selected one

    Panels& panels() override { return both; }
    std::vector<int> selectedRows(int Index) const override {
        const int first = sides[Index].pvlSqlObj.selectedIndex();
        if (first < 0) return {};
        std::vector<int> rows{first};
        rows.insert(rows.end(), alsoSelected.begin(), alsoSelected.end());
        return rows;
    }
    void setConnectPicture(int picture) override {
        lines += QStringLiteral("picture %1").arg(picture);
    }
    void setCompareToolTip(const QString& text) override { compareToolTip = text; }
    void setListToolTips(const QString& text) override { listToolTips = text; }
    void setFilterText(int Index, const QString& text) override { filterText[Index] = text; }
    void setFilterMark(int Index, bool visible, const QString&) override {
        filterMark[Index] = visible;
    }
    void setOwnerControlsVisible(bool visible) override { ownersVisible = visible; }
    void setStatusText(const QString& text) override { status = text; }
    void focusTypeBox() override { lines += QStringLiteral("focus cmbType"); }
    bool printPane(int Index, const QString& title, const QString& header, bool silent) override {
        lines += QStringLiteral("print %1 %2%3%4")
                     .arg(Index)
                     .arg(title, header, silent ? QStringLiteral(" silently") : QString());
        return canPrint;
    }
    void showHelp(int topic) override { lines += QStringLiteral("help %1").arg(topic); }
    void showAbout() override { lines += QStringLiteral("about"); }
    void closeWindow() override { lines += QStringLiteral("close"); }

    QStringList takeLines() {
        QStringList taken;
        taken.swap(lines);
        return taken;
    }
};

inline QString rowsOf(const ObjectList& list) {
    QStringList rows;
    for (int row = 0; row < list.rowCount(); ++row) rows += list.row(row).name;
    return rows.join(u'|');
}

/// A window on one server whose databases are Src and Tgt; both panels show theirs after connect().
class MainWindow : public ::testing::Test {
 protected:
    explicit MainWindow(Road road = Road::Embedded) : served(road) {}

    void SetUp() override {
        for (const int Index : {SourcePanel, TargetPanel})
            view.sides[Index].pvlSqlObj.onSelection = [this, Index] {
                window.pvlSqlObj_Click(Index);
            };
    }
    void loadDatabases(const QString& source, const QString& target) {
        served.load(QStringLiteral("Src"), source);
        served.load(QStringLiteral("Tgt"), target);
    }
    void storeServer() {
        SaveServerToRegistry(served.server());
        LoadServersFromRegistry();
        shell.takeLines();
    }
    /// Starts the window and loads Source with Src, Target with Tgt.
    void connect() {
        storeServer();
        window.Form_Load();
        window.cmdConnect_Click();
        choose(view.sides[0].pvlDb, QStringLiteral("Src"));
        window.pvlDb_Click(SourcePanel);
        choose(view.sides[1].pvlDb, QStringLiteral("Tgt"));
        window.pvlDb_Click(TargetPanel);
        EXPECT_EQ(told(), "");
        view.takeLines();
    }
    void choose(ChoiceList& list, const QString& text) {
        list.setText(text);
        EXPECT_EQ(list.text(), text);
    }
    void chooseType(ObjectType type) {
        for (int item = 0; item < view.cmbType.count(); ++item)
            if (ObjectType(view.cmbType.itemData(item)) == type) view.cmbType.selectIndex(item);
        window.cmbType_Click();
    }
    void select(int Index, const QString& name) {
        EventList& list = view.sides[Index].pvlSqlObj;
        for (int row = 0; row < list.rowCount(); ++row)
            if (list.row(row).name == name) return list.selectRow(row);
        ADD_FAILURE() << "no object " << name.toStdString() << " in " << rowsOf(list).toStdString();
    }
    QString selected(int Index) const {
        const EventList& list = view.sides[Index].pvlSqlObj;
        return list.selectedIndex() < 0 ? QString() : list.row(list.selectedIndex()).name;
    }
    QString text(int Index) const { return view.sides[Index].txtTXProc.text(); }
    /// What the shell was asked since the last look, the server's name shown as SERVER.
    std::string told() { return shown(shell.takeLines().join(u'\n')); }
    /// What the view was told since the last look.
    std::string seen() { return shown(view.takeLines().join(u'\n')); }
    std::string shown(QString text) {
        const QString& server = globals().gtCurrentServers[0].Name;
        if (!server.isEmpty()) text.replace(server, QStringLiteral("SERVER"));
        return text.toStdString();
    }
    /// Keeps what a report screen shows, and closes it.
    void keepReports() {
        shell.onScreen = [this](Screen& screen) {
            if (auto* report = dynamic_cast<frmReport*>(&screen)) {
                reports += report->txtReport;
                reportFields = report->fields;
                report->cmdExit();
            } else if (auto* run = dynamic_cast<frmCompareAndPrint*>(&screen)) {
                run->Form_Activate();
            }
        };
    }

    TempHome home;
    RecordingShell shell;
    ServedDatabases served;
    TestView view;
    MainScreens screens;
    frmMain window{view, screens};
    QStringList reports;
    ComparisonReport reportFields;
};

}  // namespace zov::test
