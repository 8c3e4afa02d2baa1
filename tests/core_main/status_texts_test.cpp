// What the window says from its start on: boxes that name the panels' servers, tool
// tips, and a status bar that agrees with the verdict.
#include "core/settings.h"
#include "data/frmAddServer.h"
#include "data/frmDeleteServer.h"
#include "data/script_loading.h"
#include "main_window_fixture.h"

namespace zov {
namespace {

namespace cmd = command;

TEST(StatusTexts, AgreeWithTheVerdict) {
    const PairVerdict none, equal{true, true, {}},
        overlooked{true, true, {QStringLiteral("white space"), QStringLiteral("letter case")}},
        different{true, false, {}};
    const struct {
        const PairVerdict& verdict;
        size_t stops;
        bool onlyEmptyLines, oneIsEmpty;
        const char* status;
        const char* noDifference;
    } rows[] = {
        {none, 0, false, false, "", "Compare two objects first (F7)."},
        {equal, 0, false, false, "The texts are identical.",
         "There is no difference between the texts."},
        // Colours of an earlier comparison stay.
        {overlooked, 3, false, false, "Identical, leaving out white space and letter case.",
         "No difference that counts. Identical, leaving out white space and letter case."},
        {different, 1, false, false, "1 difference: F8 goes to it.", nullptr},
        {different, 2, true, false,
         "2 differences: F8 goes to the next one, Shift+F8 to the previous one.", nullptr},
        {different, 0, true, false, "Different, in empty lines only.",
         "Different, in empty lines only."},
        {different, 0, false, true, "Different: one of the texts is empty.",
         "Different: one of the texts is empty."},
        {different, 0, false, false,
         "Different, but no line is marked: Visualize Differences shows where.",
         "Different, but no line is marked: Visualize Differences shows where."},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(
            VerdictStatus(row.verdict, row.stops, row.onlyEmptyLines, row.oneIsEmpty).toStdString(),
            row.status);
        if (!row.noDifference) continue;
        EXPECT_EQ(NoDifferenceStatus(row.verdict, row.onlyEmptyLines, row.oneIsEmpty).toStdString(),
                  row.noDifference);
    }
}

class WindowFromTheStart : public test::MainWindow {
 protected:
    void pressCompare() {
        keepReports();
        window.ExecuteAction(cmd::CompareSelected);
    }
};

TEST_F(WindowFromTheStart, DebugModeShowsInStatusMessages) {
    EXPECT_EQ(StatusMessage(QStringLiteral("Connecting...")), QStringLiteral("Connecting..."));
    globals().gblnDebugMode = true;
    EXPECT_EQ(StatusMessage(QStringLiteral("Connecting...")),
              QStringLiteral("Debug: Connecting..."));
    EXPECT_EQ(StatusMessage({}), QString());
}

TEST_F(WindowFromTheStart, ToolTipsAreThereBeforeAnythingIsChosen) {
    loadDatabases(QStringLiteral("CREATE TABLE dbo.A (Id int)"),
                  QStringLiteral("CREATE TABLE dbo.B (Id int)"));
    storeServer();
    window.Form_Load();
    EXPECT_EQ(view.compareToolTip, QStringLiteral("Compare selected tables (F7)"));
    EXPECT_EQ(view.listToolTips, QStringLiteral("List of all tables"));
}

TEST_F(WindowFromTheStart, AVerdictNamesWhatItLeftOut) {
    loadDatabases(QStringLiteral("CREATE PROCEDURE dbo.a AS\nSELECT 1\nGO\n"
                                 "CREATE PROCEDURE dbo.b AS\nSELECT  2\nGO\n"
                                 "CREATE PROCEDURE dbo.c AS\nSELECT 3\nGO\n"),
                  QStringLiteral("CREATE PROCEDURE dbo.a AS\nSELECT 1\nGO\n"
                                 "CREATE PROCEDURE dbo.b AS\nSELECT 2\nGO\n"
                                 "CREATE PROCEDURE dbo.c AS\nSELECT 33\nGO\n"));
    connect();
    chooseType(ObjectType::Procedure);
    const struct {
        const char* name;
        bool identical;
        const char* leftOut;
    } rows[] = {{"a", true, ""}, {"b", true, "white space"}, {"c", false, ""}};
    for (const auto& row : rows) {
        select(SourcePanel, QLatin1String(row.name));
        select(TargetPanel, QLatin1String(row.name));
        pressCompare();
        EXPECT_TRUE(window.verdict().isGiven) << row.name;
        EXPECT_EQ(window.verdict().identical, row.identical) << row.name;
        EXPECT_EQ(window.verdict().leftOut.join(u','), QLatin1String(row.leftOut)) << row.name;
    }
    // Nothing to compare: no verdict, not the last one's.
    for (test::TestPanel& side : view.sides) side.txtTXProc.setText({});
    pressCompare();
    EXPECT_FALSE(window.verdict().isGiven);
}

TEST_F(WindowFromTheStart, TheBoxesNameTheServersThatThePanelsShow) {
    loadDatabases(QStringLiteral("CREATE TABLE dbo.A (Id int)"),
                  QStringLiteral("CREATE TABLE dbo.B (Id int)"));
    ServerInfo other;
    other.Name = QStringLiteral("local:other");
    LoadScripts(other, QStringLiteral("some"),
                {home.write(QStringLiteral("some.sql"), "CREATE TABLE T (A int)")});
    connect();
    const QString first = served.server().Name;
    const auto boxes = [&] {
        return QStringList{view.sides[0].cmbServer.text(), view.sides[1].cmbServer.text()};
    };
    shell.onScreen = [&](Screen& screen) {
        if (auto* form = dynamic_cast<frmAddServer*>(&screen)) {
            form->txtServer = other.Name;
            form->cmdOK();
        }
    };
    window.ExecuteAction(cmd::AddServer);
    EXPECT_EQ(boxes(), QStringList({first, first}));
    // Target goes to the second server; another addition or removal takes both back to the first.
    choose(view.sides[1].cmbServer, other.Name);
    window.cmbServer_Click(TargetPanel);
    EXPECT_EQ(globals().gtCurrentServers[TargetPanel].Name, other.Name);
    ServerInfo third;
    third.Name = QStringLiteral("local:third");
    SaveServerToRegistry(third);
    LoadServersFromRegistry();
    shell.yesNoAnswers = {true};
    shell.onScreen = [&](Screen& screen) {
        auto* form = dynamic_cast<frmDeleteServer*>(&screen);
        if (!form) return;
        form->selectedRows = {2};
        form->cmdRemove();
    };
    window.ExecuteAction(cmd::RemoveServer);
    for (const int Index : {SourcePanel, TargetPanel}) {
        EXPECT_EQ(globals().gtCurrentServers[Index].Name, first);
        EXPECT_EQ(boxes()[Index], first) << Index;
    }
}

}  // namespace
}  // namespace zov
