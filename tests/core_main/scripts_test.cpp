// Scripts made from the main window: for chosen objects, for an update, and what runs in Target.
#include "core_main/main_window_fixture.h"
#include "reports/frmReport.h"

namespace zov {
namespace {

class Scripts : public test::MainWindow {
 protected:
    void SetUp() override {
        test::MainWindow::SetUp();
        loadDatabases(
            QStringLiteral("CREATE TABLE dbo.A (x int NOT NULL, y int)\nCREATE INDEX I ON A (y)\n"
                           "CREATE TABLE dbo.B (x int)\nCREATE TABLE dbo.C (x int)\nGO\n"
                           "CREATE PROCEDURE dbo.P AS SELECT 'it''s'\nGO\n"
                           "CREATE PROCEDURE dbo.Q AS SELECT 2\nGO\n"),
            QStringLiteral(
                "CREATE TABLE dbo.A (x bigint NOT NULL)\nCREATE TABLE dbo.C (x int)\nGO\n"));
        connect();
        shell.onScreen = [this](Screen& screen) {
            auto* report = dynamic_cast<frmReport*>(&screen);
            if (!report) return;
            first = report->txtReport;
            caption = report->caption();
            if (report->alternative.caption.isEmpty()) return;
            report->chkAlternative_Click(true);
            second = report->txtReport;
            report->cmdCopyClip();
            report->chkAlternative_Click(false);
            EXPECT_EQ(report->txtReport, first);
        };
    }
    std::string tablesOf(int Index) {
        window.RefreshSourceTarget(Index);
        return rowsOf(view.sides[Index].pvlSqlObj).toStdString();
    }
    QString rowsOf(const ObjectList& list) { return test::rowsOf(list); }

    QString first, second, caption;
};

TEST_F(Scripts, RunForTheSelectedTheKindOrTheWholeDatabase) {
    view.alsoSelected = {1};
    const struct {
        int id;
        const char* has;
        const char* hasnt;
    } rows[] = {
        {431, "CREATE TABLE [dbo].[B]", "[C]"},       {432, "CREATE TABLE [dbo].[C]", "PROCEDURE"},
        {433, "CREATE PROCEDURE dbo.Q", "bigint"},    {441, "[x] bigint NOT NULL", "[C]"},
        {443, "CREATE TABLE [dbo].[C]", "PROCEDURE"},
    };
    for (const auto& row : rows) {
        if (row.id > 440) view.alsoSelected.clear();
        window.ExecuteAction(row.id);
        EXPECT_EQ(told(), "screen frmReport") << row.id;
        EXPECT_EQ(caption, u"Runnable Script");
        EXPECT_TRUE(first.contains(QLatin1StringView(row.has))) << row.id << first.toStdString();
        EXPECT_FALSE(first.contains(QLatin1StringView(row.hasnt))) << row.id << first.toStdString();
    }
    chooseType(ObjectType::Procedure);
    told();
    window.ExecuteAction(442);
    EXPECT_EQ(told(), "information [Cannot Continue]: There is nothing to script in database Tgt.");
    window.ExecuteAction(441);
    EXPECT_EQ(
        told(),
        "information [Cannot Continue]: Cannot continue - no object is selected in the list.");
}

TEST_F(Scripts, OfAnUpdateHaveTwoForms) {
    for (const int id : {command::UpdateScript, command::DebugUpdateScript}) {
        first.clear();
        window.ExecuteAction(id);
        EXPECT_EQ(caption, u"Update Script");
        EXPECT_EQ(first.toStdString(),
                  "ALTER TABLE A ALTER COLUMN [x] [int] NOT NULL\r\nADD [y] [int] NULL\r\n");
        EXPECT_TRUE(second.contains(
            QStringLiteral("\r\nALTER TABLE [dbo].[A] ALTER COLUMN [x] int NOT NULL\r\nGO\r\n")))
            << second.toStdString();
        EXPECT_TRUE(second.contains(QStringLiteral("CREATE NONCLUSTERED INDEX [I]")));
        EXPECT_EQ(shell.clipboard, second);
        told();
    }
    select(0, QStringLiteral("C"));
    select(1, QStringLiteral("C"));
    told();
    window.ExecuteAction(command::UpdateScript);
    EXPECT_EQ(told(), "information [Generate Update Script]: The selected tables are identical.");
    // Equal texts don't hide a check.
    served.load(QStringLiteral("Src"),
                QStringLiteral("ALTER TABLE C ADD CONSTRAINT K CHECK (x > 1)"));
    window.ExecuteAction(command::UpdateScript);
    EXPECT_EQ(told().substr(0, 26), "screen frmReport\nclipboard");
    EXPECT_TRUE(second.contains(QStringLiteral("ADD CONSTRAINT [K] CHECK ([x]>(1))")))
        << second.toStdString();
    view.sides[1].pvlSqlObj.MemoryObjectList::selectRow(-1);
    window.ExecuteAction(command::UpdateScript);
    EXPECT_EQ(told(),
              "information [Generate Update Script]: Cannot continue - there is no "
              "structure displayed for selected object.");
    chooseType(ObjectType::Procedure);
    told();
    window.ExecuteAction(command::UpdateScript);
    EXPECT_NE(told().find("only when Tables are selected"), std::string::npos);
}

TEST_F(Scripts, RunInTargetAfterAQuestionAndWithTheDebugFileOnly) {
    select(0, QStringLiteral("B"));
    told();
    shell.yesNoAnswers = {true};
    window.ExecuteAction(command::DebugCreateObjects);
    EXPECT_EQ(told(), "");
    globals().gblnDebugMode = true;
    shell.yesNoAnswers = {false};
    window.ExecuteAction(command::DebugCreateObjects);
    EXPECT_EQ(told(),
              "yes/no [Create Objects]: 1 table of the Source database SERVER.Src will be "
              "created in the Target database SERVER.Tgt. This changes that "
              "database.\\n\\nGo on? -> no");
    EXPECT_EQ(tablesOf(TargetPanel), "A|C");
    told();
    shell.yesNoAnswers = {true, true, true};
    window.ExecuteAction(command::DebugCreateObjects);
    EXPECT_NE(told().find("1 of 1 were created in SERVER.Tgt."), std::string::npos);
    EXPECT_EQ(tablesOf(TargetPanel), "A|B|C");
    // What is there already isn't dropped: the server refuses, which is told.
    told();
    window.ExecuteAction(command::DebugCreateObjects);
    EXPECT_NE(told().find("exclamation: Error occured - aborting."), std::string::npos);
    window.ExecuteAction(command::DebugCreateProcedures);
    EXPECT_NE(told().find("2 of 2 were created in SERVER.Tgt."), std::string::npos);
    chooseType(ObjectType::Procedure);
    EXPECT_EQ(tablesOf(TargetPanel), "P|Q");
    select(1, QStringLiteral("P"));
    EXPECT_EQ(text(1).toStdString(), "CREATE PROCEDURE dbo.P AS SELECT 'it''s'");
}

}  // namespace
}  // namespace zov
