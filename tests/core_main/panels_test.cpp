// The two panels in their user's hands: servers, databases, types, filters and
// selections, also when something has gone away meanwhile.
#include "catalog/frmFilterBySchema.h"
#include "core/registry.h"
#include "core/settings.h"
#include "data/frmAddServer.h"
#include "data/frmDeleteServer.h"
#include "main_window_fixture.h"
#include "tools/frmSearchForObject_Gen.h"

#include <QDir>

namespace zov {
namespace {

const QString Source = QStringLiteral(
    "CREATE SCHEMA hr\nGO\nCREATE TABLE dbo.Orders (Id int)\nGO\nCREATE TABLE dbo.Parts (Id int)\n"
    "GO\nCREATE TABLE hr.Staff (Id int)\nGO\nCREATE VIEW dbo.V AS SELECT 1 AS a\nGO\n");
const QString Target = QStringLiteral(
    "CREATE TABLE dbo.Orders (Id int, Sum int)\nGO\nCREATE TABLE dbo.Parts (Id bigint)\nGO\n");

class PanelsInUse : public test::MainWindow {
 protected:
    PanelsInUse() : MainWindow() {}
    QString rows(int Index) { return test::rowsOf(view.sides[Index].pvlSqlObj); }
};

TEST_F(PanelsInUse, WhatIsWrongWithTheSettingsIsToldAtTheStart) {
    home.write(QStringLiteral("registry.reg"), "noise\n");
    window.Form_Load();
    EXPECT_EQ(told(), "");  // the window isn't there yet
    shell.onScreen = [](Screen& screen) { dynamic_cast<frmAddServer&>(screen).cmdCancel(); };
    window.Form_Activate();
    EXPECT_EQ(shell.takeLines().value(0),
              QStringLiteral("exclamation [Settings Damaged]: %1 holds a line that can't be read; "
                             "the others are used, and nothing is lost when settings are saved.")
                  .arg(home.registryPath()));

    QFile::remove(home.registryPath());
    QDir().mkpath(home.registryPath());
    test::TestView second;
    frmMain other(second, screens);
    other.Form_Load();
    other.Form_Activate();
    const QString unread =
        QStringLiteral("exclamation [Settings Not Read]: Cannot read %1: it is a folder.")
            .arg(home.registryPath());
    EXPECT_EQ(shell.takeLines().filter(unread).size(), 1);
}

TEST_F(PanelsInUse, StayEmptyAtStartUnlessTheyAreToConnect) {
    loadDatabases(Source, Target);
    storeServer();
    window.Form_Load();
    EXPECT_TRUE(window.Loaded);
    EXPECT_EQ(seen(), "picture 5");
    EXPECT_EQ(view.sides[0].cmbServer.text(), served.server().Name);
    EXPECT_EQ(view.sides[0].pvlDb.count(), 0);
    EXPECT_EQ(view.status.right(3), u"   ");
    window.Form_Activate();
    EXPECT_EQ(told(), "");

    writeBooleanSetting(QStringLiteral("AutoConnect"), true);
    test::TestView second;
    frmMain other(second, screens);
    other.Form_Load();
    EXPECT_EQ(second.lines.join(u' ').toStdString(), "picture 5 picture 5 picture 4 picture 3");
    EXPECT_EQ(second.sides[1].pvlDb.text().toStdString(), "master");
    EXPECT_FALSE(other.Busy());
}

TEST_F(PanelsInUse, TheFirstActivationShowsTheTipAndOffersAServer) {
    window.Form_Load();
    writeSetting(QStringLiteral("ShowTipOfDay"), 1);
    window.Form_Activate();
    EXPECT_EQ(told(),
              "screen frmTip\n"
              "information [No SQL Server]: There is no SQL server to connect to.\\n\\nPlease add "
              "server by filling in following form or by clicking menu item 'Tools' -> 'Add "
              "Server' and specifying info for the server.\n"
              "screen frmAddServer");
    window.Form_Activate();
    EXPECT_EQ(told(), "");
}

TEST_F(PanelsInUse, AnAddedServerFillsBothPanels) {
    loadDatabases(Source, Target);
    window.Form_Load();
    EXPECT_EQ(view.sides[0].cmbServer.count(), 1);
    EXPECT_EQ(view.sides[0].cmbServer.text(), QString());
    shell.onScreen = [&](Screen& screen) {
        auto& add = dynamic_cast<frmAddServer&>(screen);
        add.txtServer = served.server().Name;
        add.cmdOK();
    };
    window.ExecuteAction(command::AddServer);
    for (const int Index : {0, 1}) {
        EXPECT_EQ(view.sides[Index].cmbServer.text(), served.server().Name);
        // The first database, though another one is stored as the last used.
        EXPECT_EQ(view.sides[Index].pvlDb.text().toStdString(), "master");
        EXPECT_EQ(view.sides[Index].pvlDb.count(), 6) << "the four of the system, too";
        choose(view.sides[Index].pvlDb, QStringLiteral("Src"));
        window.pvlDb_Click(Index);
        EXPECT_EQ(rows(Index).toStdString(), "Orders|Parts|Staff");
    }
    EXPECT_EQ(seen(), "picture 5\npicture 5\npicture 4\npicture 3");

    // And without it they are empty again.
    shell.onScreen = [&](Screen& screen) {
        if (auto* remove = dynamic_cast<frmDeleteServer*>(&screen)) {
            remove->selectedRows = {0};
            remove->cmdRemove();
        }
    };
    shell.yesNoAnswers = {true};
    window.ExecuteAction(command::RemoveServer);
    EXPECT_EQ(rows(0) + rows(1), QString());
    EXPECT_EQ(view.sides[0].cmbServer.text(), QString());
    shell.takeLines();
    window.ExecuteAction(command::RemoveServer);
    EXPECT_EQ(told(), "information: There are no servers stored in the list.");
}

TEST_F(PanelsInUse, AChangedTypeLoadsThePanelsThatHaveADatabase) {
    loadDatabases(Source, Target);
    connect();
    chooseType(ObjectType::View);
    EXPECT_EQ(rows(0).toStdString() + "/" + rows(1).toStdString(), "V/");
    EXPECT_EQ(view.compareToolTip.toStdString(), "Compare selected views (F7)");
    EXPECT_EQ(view.listToolTips.toStdString(), "List of all views");
    EXPECT_EQ(text(0).toStdString(), "CREATE VIEW dbo.V AS SELECT 1 AS a");
    EXPECT_EQ(text(1).toStdString(), "<<Nothing to show>>");

    ClearPanel(view.sides[1].panel);
    window.ObjectTypeChanged(20, 0, 3);
    EXPECT_EQ(rows(0).toStdString() + "/" + rows(1).toStdString(), "Orders|Parts|Staff/");
    EXPECT_EQ(text(1), QString());
    // One panel alone.
    view.cmbType.selectIndex(0);
    choose(view.sides[0].pvlDb, QStringLiteral("Tgt"));
    window.ObjectTypeChanged(10, 1, 2);
    EXPECT_EQ(rows(0).toStdString(), "Orders|Parts|Staff");
    window.ObjectTypeChanged(10, 1, 1);
    EXPECT_EQ(rows(0).toStdString(), "Orders|Parts");
    // Both empty: everything is loaded from the start.
    ClearPanel(view.sides[0].panel);
    view.takeLines();
    window.cmbType_Click();
    EXPECT_EQ(seen(), "picture 5\npicture 4\npicture 3");
    EXPECT_EQ(view.sides[1].pvlDb.text().toStdString(), "master");
    EXPECT_EQ(view.sides[1].pvlDb.count(), 6) << "the four of the system, too";
    view.cmbType.Tag = QStringLiteral("OFF");
    window.cmbType_Click();
    EXPECT_EQ(told() + seen(), "");
}

TEST_F(PanelsInUse, TargetFollowsTheSelectionInSourceWhenThatIsSet) {
    loadDatabases(Source, Target);
    connect();
    select(0, QStringLiteral("Parts"));
    EXPECT_EQ(selected(1).toStdString(), "Orders");
    globals().gblnAutoSelTargetObj = true;
    select(0, QStringLiteral("Orders"));
    select(0, QStringLiteral("Parts"));
    EXPECT_EQ(selected(1).toStdString(), "Parts");
    EXPECT_EQ(text(1).toStdString(), "[Id] [bigint] NULL");
    // A name that Target has not changes nothing there, and Target leads nobody.
    select(0, QStringLiteral("Staff"));
    EXPECT_EQ(selected(1).toStdString(), "Parts");
    select(1, QStringLiteral("Orders"));
    EXPECT_EQ(selected(0).toStdString(), "Staff");
    view.sides[0].pvlSqlObj.Tag = QStringLiteral("OFF");
    select(0, QStringLiteral("Parts"));
    EXPECT_EQ(selected(1).toStdString(), "Orders");
    EXPECT_EQ(text(0).toStdString(), "[Id] [int] NULL");
}

TEST_F(PanelsInUse, SeveralSelectedRowsShowNothingAndAreNotCompared) {
    loadDatabases(Source, Target);
    connect();
    for (const int Index : {0, 1}) {
        view.sides[Index].pvlSqlObj.addToSelection(1);
        window.pvlSqlObj_Click(Index);
        EXPECT_EQ(text(Index).toStdString(), "<<Nothing to show>>");
    }
    window.ExecuteAction(command::CompareSelected);
    EXPECT_EQ(told(),
              "information [Cannot Compare]: Cannot compare - the list of objects is empty.");
}

TEST_F(PanelsInUse, ASelectionMadeDuringALoadIsShownAfterIt) {
    loadDatabases(Source, Target);
    connect();
    shell.onPump = nullptr;
    window.Busy() = true;
    select(0, QStringLiteral("Staff"));
    choose(view.sides[0].pvlDb, QStringLiteral("Tgt"));
    window.pvlDb_Click(0);
    choose(view.sides[0].cmbServer, served.server().Name);
    window.cmbServer_Click(0);
    window.cmbType_Click();
    window.cmdConnect_Click();
    window.cmbOwners_Click(0);
    window.srtFiltering_Click(0);
    window.cmdFilter_Click(0, FilterType::Owner);
    window.RefreshSourceTarget(0);
    EXPECT_EQ(told() + seen(), "");
    EXPECT_EQ(rows(0).toStdString(), "Orders|Parts|Staff");
    window.Busy() = false;
    window.RefreshSourceTarget(0);
    EXPECT_EQ(rows(0).toStdString(), "Orders|Parts");
}

TEST_F(PanelsInUse, ARefreshKeepsTheSelectedObject) {
    loadDatabases(Source, Target);
    connect();
    select(0, QStringLiteral("Staff"));
    served.load(QStringLiteral("Src"), QStringLiteral("CREATE TABLE dbo.Aaa (Id int)\nGO\n"
                                                      "ALTER TABLE hr.Staff ADD Born date\n"));
    window.ExecuteAction(command::RefreshSource);
    EXPECT_EQ(rows(0).toStdString(), "Aaa|Orders|Parts|Staff");
    EXPECT_EQ(selected(0).toStdString(), "Staff");
    EXPECT_TRUE(text(0).contains(u"[Born]")) << text(0).toStdString();
    EXPECT_EQ(selected(1).toStdString(), "Orders");
    served.load(QStringLiteral("Src"), QStringLiteral("DROP TABLE hr.Staff\n"));
    window.ExecuteAction(command::RefreshSource);
    EXPECT_EQ(selected(0).toStdString(), "Aaa");
    EXPECT_EQ(told(), "");
}

TEST_F(PanelsInUse, AFilterHoldsForItsPanelUntilTheDatabaseChanges) {
    loadDatabases(Source, Target);
    connect();
    shell.onScreen = [](Screen& screen) {
        auto& filter = dynamic_cast<frmFilterBySchema&>(screen);
        filter.rpcReport_ItemCheck(0);
        filter.rpcReport_ItemCheck(2);
        filter.cmdSave();
    };
    window.cmdFilter_Click(0, FilterType::Schema);
    EXPECT_EQ(told(), "screen frmFilterBySchema");
    EXPECT_EQ(rows(0).toStdString(), "Staff");
    EXPECT_EQ(rows(1).toStdString(), "Orders|Parts");
    EXPECT_EQ(view.filterText[0].toStdString(), " (applied filter: hr)");
    EXPECT_TRUE(view.filterMark[0]);
    EXPECT_FALSE(view.filterMark[1]);

    window.srtFiltering_Click(0);
    EXPECT_EQ(rows(0).toStdString(), "Orders|Parts|Staff");
    EXPECT_FALSE(view.filterMark[0]);

    for (const bool connectAnew : {false, true}) {
        window.cmdFilter_Click(0, FilterType::Schema);
        EXPECT_TRUE(view.filterMark[0]);
        if (connectAnew) {
            window.cmdConnect_Click();
        } else {
            choose(view.sides[0].pvlDb, QStringLiteral("Tgt"));
            window.pvlDb_Click(0);
        }
        EXPECT_FALSE(view.filterMark[0]);
        EXPECT_EQ(view.filterText[0], QString());
        choose(view.sides[0].pvlDb, QStringLiteral("Src"));
        window.pvlDb_Click(0);
    }
}

TEST_F(PanelsInUse, AFoundObjectIsSelectedAndShown) {
    loadDatabases(Source, Target);
    connect();
    shell.onScreen = [](Screen& screen) {
        auto& search = dynamic_cast<frmSearchForObject_Gen&>(screen);
        EXPECT_EQ(search.caption(), u"Find Table");
        search.txtFind = QStringLiteral("St");
        search.cmdFind_Click();
        search.selectedRow = 0;
        search.cmdOK_Click();
    };
    window.ExecuteAction(command::FindInSource);
    EXPECT_EQ(selected(0).toStdString(), "Staff");
    EXPECT_EQ(told(), "screen frmSearchForObject_Gen");
    // A list that an owner has narrowed may lack it.
    view.sides[0].pvlSqlObj.removeRow(2);
    window.ExecuteAction(command::FindInSource);
    EXPECT_EQ(told(),
              "screen frmSearchForObject_Gen\n"
              "information [Cannot View]: 'Staff' isn't in the panel's list any more or was left "
              "out of it.\\n\\nRefresh the panel and choose all owners to see it.");
}

TEST_F(PanelsInUse, AServerThatAnotherInstanceRemovedLeavesThePanelAsItIs) {
    loadDatabases(Source, Target);
    connect();
    view.sides[0].cmbServer.addItem(QStringLiteral("O'Brien"));
    choose(view.sides[0].cmbServer, QStringLiteral("O'Brien"));
    window.cmbServer_Click(0);
    EXPECT_EQ(told(), "exclamation: Server 'O'Brien' not found.");
    EXPECT_EQ(view.sides[0].cmbServer.text(), served.server().Name);
    EXPECT_EQ(rows(0).toStdString(), "Orders|Parts|Staff");
    window.cmbServer_Click(0);
    EXPECT_EQ(told(), "");
}

TEST_F(PanelsInUse, ADatabaseThatWasDroppedIsToldAndTheWindowGoesOn) {
    loadDatabases(Source, Target);
    connect();
    ExecAdoCmd(served.server(), adCmdText, QStringLiteral("DROP DATABASE Tgt"),
               QStringLiteral("master"));
    ASSERT_EQ(told(), "");
    const struct {
        int id;
        const char* told;
    } commands[] = {
        {103, "screen frmErrorReport"},
        // Nothing is listed any more, so nothing is selected.
        {420,
         "exclamation [Error]: Cannot build SQL CREATE statement - wrong parameters passed\n"
         "information: Couldn't generate SQL CREATE statement."},
        {700, ""},
    };
    for (const auto& row : commands) {
        window.ExecuteAction(row.id, TargetPanel);
        EXPECT_EQ(told(), row.told) << row.id;
        EXPECT_FALSE(window.Busy());
    }
    EXPECT_EQ(rows(1), QString());
    select(0, QStringLiteral("Parts"));
    EXPECT_EQ(text(0).toStdString(), "[Id] [int] NULL");
    EXPECT_EQ(told(), "");
}

TEST_F(PanelsInUse, NamesWithQuotesAreShownLikeOthers) {
    const QString odd = QStringLiteral(
        "CREATE TABLE [O'Brien] (Id int)\nGO\nCREATE PROCEDURE [it's] AS SELECT 1\nGO\n");
    loadDatabases(odd, odd);
    connect();
    EXPECT_EQ(text(0).toStdString(), "[Id] [int] NULL");
    window.ExecuteAction(command::IgnoreColumns);
    EXPECT_EQ(told(), "screen frmIgnoreColumnsAdd");
    chooseType(ObjectType::Procedure);
    EXPECT_EQ(text(1).toStdString(), "CREATE PROCEDURE [it's] AS SELECT 1");
    EXPECT_EQ(told(), "");
}

TEST_F(PanelsInUse, TextsGoToTheClipboardLineByLineAndToAFileAsTheyAre) {
    loadDatabases(Source, Target);
    connect();
    window.cmdCopyClip_Click(1);
    EXPECT_EQ(shell.clipboard.toStdString(), "[Id] [int] NULL\r\n[Sum] [int] NULL\r\n");
    shell.takeLines();
    view.sides[1].txtTXProc.setText({});
    window.cmdCopyClip_Click(1);
    window.cmdCopyToFile_Click(1);
    EXPECT_EQ(told(), "");
    shell.savePaths = {home.path(QStringLiteral("out.txt"))};
    window.cmdCopyToFile_Click(0);
    EXPECT_EQ(shell.takeLines().first().section(u'/', -1).toStdString(), "out.txt");
    EXPECT_EQ(home.read(QStringLiteral("out.txt")).toStdString(), "[Id] [int] NULL");
}

class PanelsOverOdbc : public test::MainWindow {
 protected:
    PanelsOverOdbc() : MainWindow(test::Road::Odbc) {}
};

TEST_F(PanelsOverOdbc, AServerThatDiesLeavesAWindowThatWorks) {
    loadDatabases(Source, Target);
    connect();
    EXPECT_EQ(text(1).toStdString(), "[Id] [int] NULL\r\n[Sum] [int] NULL");
    served.endpoint().stop();
    globals().glngTimeout = 1;
    chooseType(ObjectType::View);
    const QString said = QString::fromStdString(told());
    EXPECT_EQ(said.count(QStringLiteral("screen frmErrorReport")), 2) << said.toStdString();
    EXPECT_EQ(test::rowsOf(view.sides[0].pvlSqlObj), QString());
    EXPECT_FALSE(window.Busy());
    EXPECT_EQ(shell.waitDepth, 0);
    window.ExecuteAction(command::CompareSelected);
    EXPECT_EQ(told(),
              "information [Cannot Compare]: Cannot compare - the list of objects is empty.");
    window.cmdConnect_Click();
    EXPECT_EQ(view.takeLines().last().toStdString(), "picture 5");
}

}  // namespace
}  // namespace zov
