// Comparing from the window: the pair in the panes, whole databases, the print job.
#include "acceptance/cli_runner.h"
#include "core/modIgnoreColumns.h"
#include "main_window_fixture.h"
#include "structcompare/frmCompareAllTables.h"
#include "structcompare/frmCompareText.h"
#include "structcompare/modCompareAll.h"
#include "structcompare/modMarkDifferences.h"

#include <QRegularExpression>

namespace zov {
namespace {

const QString Source = QStringLiteral(
    "CREATE TABLE dbo.Orders (Id int NOT NULL CONSTRAINT pk_Orders PRIMARY KEY, Sum money)\nGO\n"
    "CREATE TABLE dbo.Parts (Id int, Name varchar(20))\nGO\n"
    "CREATE TABLE dbo.Gone (Id int)\nGO\n"
    "CREATE PROCEDURE dbo.P AS SELECT 1 -- one\nGO\n"
    "CREATE PROCEDURE dbo.Q AS\r\nSELECT 1\r\nSELECT 2\nGO\n"
    "CREATE VIEW dbo.V AS SELECT Id FROM dbo.Orders\nGO\n");
const QString Target = QStringLiteral(
    "CREATE TABLE dbo.Orders (Id int NOT NULL CONSTRAINT pk_Orders PRIMARY KEY, Sum money)\nGO\n"
    "CREATE TABLE dbo.Parts (Id bigint, Name varchar(20))\nGO\n"
    "CREATE TABLE dbo.Fresh (Id int)\nGO\n"
    "CREATE PROCEDURE dbo.P AS SELECT 1 -- eins\nGO\n"
    "CREATE PROCEDURE dbo.Q AS\r\nSELECT 1\r\nSELECT 3\r\nSELECT 4\nGO\n"
    "CREATE VIEW dbo.V AS SELECT Id FROM dbo.Orders\nGO\n");

class Comparing : public test::MainWindow {
 protected:
    void SetUp() override {
        MainWindow::SetUp();
        loadDatabases(Source, Target);
        connect();
        keepReports();
    }
    // The marks of a pane's painted lines.
    std::string paints(int Index) {
        QStringList marks;
        for (const MemoryTextPane::Paint& paint : view.sides[Index].txtTXProc.paints())
            for (const qint32 mark : {0, 10, 20, 30, 40})
                if (colorOfMark(mark) == paint.color) marks += QString::number(mark);
        return marks.join(u' ').toStdString();
    }
};

TEST_F(Comparing, APairEndsInAReportThatCouldBecomeAProcess) {
    window.ExecuteAction(command::CompareSelected);
    ASSERT_EQ(reports.size(), 1);
    EXPECT_EQ(shown(reports[0]),
              "Source: SERVER.Src.Gone\r\nTarget: SERVER.Tgt.Fresh\r\n\r\n"
              "The selected tables are identical.\r\n\r\n"
              "Please note that option 'Ignore Columns Order' is set ON.");
    select(0, QStringLiteral("Parts"));
    select(1, QStringLiteral("Parts"));
    window.ExecuteAction(command::CompareSelected);
    EXPECT_TRUE(reports.last().endsWith(QStringLiteral("The selected tables are different.")));
    EXPECT_EQ(paints(0) + "/" + paints(1), "20 10/20 10");
    EXPECT_EQ(reportFields.Caption.toStdString(), "Comparison Report");
    EXPECT_EQ(QStringLiteral("%1 %2 %3 %4 %5 %6.%7 %8.%9")
                  .arg(reportFields.CompType)
                  .arg(reportFields.CompSubType)
                  .arg(reportFields.CompSubSubType)
                  .arg(reportFields.CompMethod)
                  .arg(reportFields.EncObjTypes, reportFields.DbName1, reportFields.TableName1,
                       reportFields.DbName2, reportFields.TableName2)
                  .toStdString(),
              "1 35 0 -1 1,0,0,0,0,0,0,0 Src.Parts Tgt.Parts");
    EXPECT_EQ(globals().gstrReport, QString());
    EXPECT_FALSE(window.Busy());
    EXPECT_EQ(shell.waitDepth, 0);
}

TEST_F(Comparing, MarksGoWithTheNextSelection) {
    chooseType(ObjectType::Procedure);
    select(0, QStringLiteral("Q"));
    select(1, QStringLiteral("Q"));
    window.ExecuteAction(command::CompareSelected);
    EXPECT_EQ(paints(0) + "/" + paints(1), "10 10 20/10 10 20 30");
    select(1, QStringLiteral("P"));
    EXPECT_EQ(paints(1), "");
    EXPECT_EQ(paints(0), "10 10 20");
    window.ExecuteAction(command::PaneRefresh, SourcePanel);
    EXPECT_EQ(paints(0), "");
}

TEST_F(Comparing, HighlightedSectionsWantTwoSelections) {
    chooseType(ObjectType::Procedure);
    select(0, QStringLiteral("Q"));
    select(1, QStringLiteral("Q"));
    shell.takeLines();
    window.ExecuteAction(command::HighlightedSections);
    EXPECT_EQ(
        told(),
        "information [Compare Highlighted Sections]: Cannot continue - there is no "
        "highlighted section in Source object.\\n\\nPlease select some section in Source text "
        "first, then some section in Target, and then (immediately after highlighting Target) "
        "right click and select 'Compare Highlighted Sections'.");
    view.sides[0].txtTXProc.select(0, 26);
    window.ExecuteAction(command::HighlightedSections);
    EXPECT_EQ(told(),
              "information [Compare Highlighted Sections]: Cannot continue - there is no "
              "highlighted section in Target object.");
    view.sides[1].txtTXProc.select(0, 26);
    window.ExecuteAction(command::HighlightedSections);
    ASSERT_EQ(reports.size(), 1);
    EXPECT_TRUE(reports[0].contains(QStringLiteral("procedures are identical.")));
}

TEST_F(Comparing, BothTextsAreShownSideBySide) {
    shell.onScreen = [](Screen& screen) {
        const auto& texts = dynamic_cast<frmCompareText&>(screen);
        EXPECT_EQ(texts.caption(), u"Comparison of Selected Objects");
        EXPECT_TRUE(texts.lblSource.endsWith(QStringLiteral(".Src.Parts")));
        EXPECT_EQ(texts.plainText().toStdString(),
                  "- [Id] [int] NULL\r\n+ [Id] [bigint] NULL\r\n  [Name] [varchar] (20) NULL\r\n");
    };
    select(0, QStringLiteral("Parts"));
    select(1, QStringLiteral("Parts"));
    window.ExecuteAction(command::Visualize);
}

TEST_F(Comparing, PrintsEachTableThatHasANamesake) {
    select(0, QStringLiteral("Gone"));
    shell.takeLines();
    QStringList names;
    shell.onScreen = [&](Screen& screen) {
        auto& run = dynamic_cast<frmCompareAndPrint&>(screen);
        shell.onPump = [&] { names += run.lblCurProcName; };
        run.Form_Activate();
        EXPECT_TRUE(run.isClosed());
        EXPECT_EQ(run.lblTime.size(), 8);
        EXPECT_FALSE(run.tmrStatusEnabled);
    };
    window.ExecuteAction(command::CompareAndPrint);
    EXPECT_EQ(seen(),
              "print 0 Source: SERVER.Src.Orders silently\n"
              "print 1 Target: SERVER.Tgt.Orders silently\n"
              "print 0 Source: SERVER.Src.Parts silently\n"
              "print 1 Target: SERVER.Tgt.Parts silently");
    EXPECT_EQ(told(), "screen frmCompareAndPrint");
    EXPECT_EQ(names.join(u' ').toStdString(), "Gone Orders Parts");
    EXPECT_EQ(paints(1), "20 10");
    EXPECT_FALSE(window.Busy());
    // From now on a comparison has its report again.
    shell.onPump = nullptr;
    keepReports();
    window.ExecuteAction(command::CompareSelected);
    EXPECT_EQ(reports.size(), 1);
}

TEST_F(Comparing, AMissingPrinterOrCancelEndsThePrintJob) {
    view.canPrint = false;
    window.ExecuteAction(command::CompareAndPrint);
    EXPECT_EQ(seen(), "print 0 Source: SERVER.Src.Orders silently");
    view.canPrint = true;
    shell.onScreen = [&](Screen& screen) {
        auto& run = dynamic_cast<frmCompareAndPrint&>(screen);
        shell.onPump = [&] {
            if (run.lblCurProcName == u"Parts") run.cmdCancel_Click();
        };
        run.Form_Activate();
    };
    window.ExecuteAction(command::CompareAndPrint);
    EXPECT_EQ(seen(),
              "print 0 Source: SERVER.Src.Orders silently\n"
              "print 1 Target: SERVER.Tgt.Orders silently");
    shell.onPump = nullptr;
}

TEST_F(Comparing, PrintingAPaneNeedsAText) {
    view.sides[1].txtTXProc.setText({});
    window.ExecuteAction(command::PrintBoth);
    EXPECT_EQ(seen(), "print 0 Source: SERVER.Src.Gone");
    EXPECT_EQ(
        told(),
        "information [Cannot Continue]: Cannot continue - there is no structure displayed for "
        "selected table.");
}

TEST_F(Comparing, ACreateStatementIsShownWithoutASaveButton) {
    shell.onScreen = [this](Screen& screen) {
        auto& report = dynamic_cast<frmReport&>(screen);
        reports += report.caption();
        reports += report.txtReport;
        EXPECT_FALSE(report.cmdSaveVisible);
    };
    window.ExecuteAction(command::CreateTarget);
    ASSERT_EQ(reports.size(), 2);
    EXPECT_EQ(reports[0].toStdString(), "SQL CREATE Statement");
    EXPECT_TRUE(reports[1].contains(QStringLiteral("CREATE TABLE [dbo].[Fresh] (\r\n")))
        << reports[1].toStdString();
    view.sides[0].txtTXProc.setText({});
    view.sides[1].txtTXProc.setText({});
    shell.takeLines();
    window.ExecuteAction(command::CreateSource);
    EXPECT_EQ(
        told(),
        "information [Cannot Continue]: Cannot continue - there is no structure displayed for "
        "selected object.");
    chooseType(ObjectType::Trigger);
    window.ExecuteAction(command::CreateSource);
    EXPECT_EQ(told(),
              "exclamation [Error]: Cannot build SQL CREATE statement - wrong parameters passed\n"
              "information: Couldn't generate SQL CREATE statement.");
}

// A whole run from the window, and the same run from the command line.
class BulkRun : public Comparing {
 protected:
    void SetUp() override {
        Comparing::SetUp();
        shell.onScreen = [this](Screen& screen) {
            if (auto* form = dynamic_cast<frmCompareAllTables*>(&screen)) {
                boxes += EncodeObjTypes(form->chkObjType);
                form->Form_Activate();
                if (!form->isClosed()) form->cmdCompare_Click();
            } else if (auto* choose = dynamic_cast<frmListObjects*>(&screen)) {
                for (auto& rows : choose->pvlSqlObj)
                    for (auto& row : rows) row.ticked = chosen.contains(row.name);
                choose->cmdOK();
                if (!choose->isClosed()) choose->cmdCancel();
            } else if (auto* report = dynamic_cast<frmReport*>(&screen)) {
                reports += report->txtReport;
                reportFields = report->fields;
            }
        };
    }
    static std::string withoutTime(QString report) {
        report.replace(QRegularExpression(QStringLiteral("Time Elapsed: \\d\\d:\\d\\d:\\d\\d")),
                       QStringLiteral("Time Elapsed"));
        return report.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).trimmed().toStdString();
    }
    std::string byCommandLine(const QStringList& more) {
        acceptance::CliHome cli;
        const acceptance::CliResult result = cli.run(
            QStringList{QStringLiteral("compare"), QStringLiteral("--source"), served.server().Name,
                        QStringLiteral("--source-db"), QStringLiteral("Src"),
                        QStringLiteral("--target"), served.server().Name,
                        QStringLiteral("--target-db"), QStringLiteral("Tgt")} +
            more);
        EXPECT_EQ(result.err, QString());
        return withoutTime(result.out);
    }
    QStringList boxes;
    QStringList chosen;
};

TEST_F(BulkRun, GivesTheTextOfTheCommandLine) {
    const struct {
        int id;
        const char* boxes;
        const char* codes;
        QStringList arguments;
    } rows[] = {
        {202, "1,1,1,1,1,1,0,0", "10 0", {}},
        {205, "1,0,0,0,0,0,0,0", "20 10", {QStringLiteral("-t"), QStringLiteral("tables")}},
        {222,
         "0,1,0,0,0,0,0,0",
         "20 20",
         {QStringLiteral("-t"), QStringLiteral("procedures"), QStringLiteral("--details")}},
        {241,
         "1,0,0,0,0,0,0,0",
         "30 40",
         {QStringLiteral("-t"), QStringLiteral("tables"), QStringLiteral("--details"),
          QStringLiteral("--select"), QStringLiteral("Orders,Parts")}},
    };
    chosen = {QStringLiteral("Orders"), QStringLiteral("Parts")};
    select(0, QStringLiteral("Parts"));
    const QString before = text(0);
    for (const auto& row : rows) {
        reports.clear();
        boxes.clear();
        window.ExecuteAction(row.id);
        ASSERT_EQ(reports.size(), 1) << row.id;
        EXPECT_EQ(boxes.join(u' ').toStdString(), row.boxes) << row.id;
        EXPECT_EQ(QStringLiteral("%1 %2")
                      .arg(reportFields.CompSubType)
                      .arg(reportFields.CompSubSubType)
                      .toStdString(),
                  row.codes);
        EXPECT_EQ(withoutTime(reports[0]), byCommandLine(row.arguments)) << row.id;
        // The panels are as they were.
        EXPECT_EQ(selected(0).toStdString(), "Parts");
        EXPECT_EQ(text(0), before);
        EXPECT_FALSE(window.Busy());
    }
}

TEST_F(BulkRun, OfSelectedObjectsNeedsSomeOnEachSide) {
    chosen = {QStringLiteral("Gone")};
    shell.takeLines();
    window.ExecuteAction(231);
    EXPECT_EQ(told(),
              "screen frmListObjects\n"
              "information: Please select at least one object in Target database or click Cancel "
              "button.\n"
              "focus pvlSqlObj_1");
    EXPECT_TRUE(reports.isEmpty());
}

TEST_F(BulkRun, CancelDropsTheReportAndThePanelsStay) {
    shell.onScreen = [this](Screen& screen) {
        auto& form = dynamic_cast<frmCompareAllTables&>(screen);
        form.Form_Activate();
        shell.onPump = [&] {
            if (form.lblCurProcName == u"Orders") form.cmdCancel_Click();
        };
        form.cmdCompare_Click();
        EXPECT_TRUE(form.isClosed());
        shell.onPump = nullptr;
    };
    shell.takeLines();
    window.ExecuteAction(205);
    EXPECT_EQ(told(), "screen frmCompareAllTables");
    EXPECT_EQ(globals().gstrReport, QString());
    EXPECT_EQ(test::rowsOf(view.sides[0].pvlSqlObj).toStdString(), "Gone|Orders|Parts");
    EXPECT_FALSE(window.Busy());
}

// Whichever query isn't waited for any more, no report says what was not looked at.
TEST_F(BulkRun, GivingUpWithinARunLeavesNoReport) {
    for (const int id : {202, 205, 221}) {
        shell.giveUpAt = 0;
        reports.clear();
        window.ExecuteAction(id);
        ASSERT_EQ(reports.size(), 1) << id;
        const std::string undisturbed = withoutTime(reports[0]);
        const int queries = shell.queries;
        ASSERT_GT(queries, 5);
        for (int query = 1; query <= queries; ++query) {
            reports.clear();
            shell.giveUpAt = query;
            window.ExecuteAction(id);
            EXPECT_TRUE(reports.isEmpty()) << id << ", query " << query << " of " << queries << '\n'
                                           << reports.join(u'\n').toStdString();
            EXPECT_EQ(globals().gstrReport, QString()) << id << ' ' << query;
            EXPECT_FALSE(window.Busy());
        }
        shell.giveUpAt = 0;
        reports.clear();
        window.ExecuteAction(id);
        ASSERT_EQ(reports.size(), 1) << id;
        EXPECT_EQ(withoutTime(reports[0]), undisturbed);
    }
}

TEST_F(BulkRun, ADatabaseThatIsGoneEndsTheRun) {
    view.sides[1].pvlDb.addItem(QStringLiteral("No'Such"));
    choose(view.sides[1].pvlDb, QStringLiteral("No'Such"));
    shell.takeLines();
    window.ExecuteAction(205);
    const QString said = QString::fromStdString(told());
    EXPECT_TRUE(
        said.endsWith(QStringLiteral("exclamation: Cannot connect to Target database - aborting.")))
        << said.toStdString();
    EXPECT_TRUE(reports.isEmpty());
}

}  // namespace
}  // namespace zov
