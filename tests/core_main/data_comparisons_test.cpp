// Comparing rows from the window: the pair of selected tables, chosen tables, all
// tables; through the options and into the result or the report.
#include "datacompare/frmCompareDataOptions.h"
#include "datacompare/frmCompareStatus.h"
#include "main_window_fixture.h"
#include "structcompare/frmCompareAllTables.h"

namespace zov {
namespace {

class DataComparisons : public test::MainWindow {
 protected:
    void SetUp() override {
        MainWindow::SetUp();
        const QString tables = QStringLiteral(
            "CREATE TABLE dbo.Orders (Id int NOT NULL CONSTRAINT pk_Orders PRIMARY KEY, V int)\nGO\n"
            "INSERT INTO Orders VALUES (1, 1)\nINSERT INTO Orders VALUES (2, 2)\nGO\n");
        loadDatabases(tables + QStringLiteral("CREATE TABLE dbo.Parts (Id int)\nGO\n"),
                      tables + QStringLiteral("UPDATE Orders SET V = 5 WHERE Id = 2\nGO\n"
                                              "CREATE TABLE dbo.Parts (Id bigint)\nGO\n"));
        connect();
        shell.onScreen = [this](Screen& screen) {
            if (auto* options = dynamic_cast<frmCompareDataOptions*>(&screen)) {
                if (optionsAccepted) options->cmdOK_Click();
                else options->cmdCancel_Click();
            } else if (auto* status = dynamic_cast<frmCompareStatus*>(&screen)) {
                status->Form_Activate();
            } else if (auto* result = dynamic_cast<frmCompareData*>(&screen)) {
                differences = result->Caption + u' ' + result->lblStats[5];
                result->cmdExit_Click();
            } else if (auto* all = dynamic_cast<frmCompareAllTables*>(&screen)) {
                offered = all->visibleBoxes;
                all->Form_Activate();
                all->cmdCompare_Click();
            } else if (auto* chooser = dynamic_cast<frmListObjects*>(&screen)) {
                chooser->cmdOK();
            } else if (auto* report = dynamic_cast<frmReport*>(&screen)) {
                reports += report->txtReport;
                reportFields = report->fields;
                report->cmdExit();
            }
        };
    }
    bool optionsAccepted = true;
    int offered = 0;
    QString differences;
};

TEST_F(DataComparisons, APairGoesThroughTheOptionsToItsDifferences) {
    select(0, QStringLiteral("Orders"));
    select(1, QStringLiteral("Orders"));
    window.ExecuteAction(command::DataPair);
    EXPECT_EQ(told(), "screen frmCompareDataOptions\nscreen frmCompareStatus\nscreen frmCompareData");
    EXPECT_EQ(differences.toStdString(), "Differences between data in tables 'Orders' and 'Orders' 1");
    EXPECT_EQ(shell.waitDepth, 0);

    optionsAccepted = false;
    window.ExecuteAction(command::DataPair);
    EXPECT_EQ(told(), "screen frmCompareDataOptions");

    // Tables of different structures are compared on demand alone.
    select(0, QStringLiteral("Parts"));
    window.pvlSqlObj_Click(0);
    select(1, QStringLiteral("Parts"));
    window.pvlSqlObj_Click(1);
    shell.yesNoAnswers = {false};
    window.ExecuteAction(command::DataPair);
    EXPECT_EQ(told(), "yes/no [Different Structures]: Compared tables have different structures.\\n\\nDo "
                      "you still want to compare them? -> no");
    EXPECT_FALSE(window.Busy());
}

TEST_F(DataComparisons, AllTablesEndInAReport) {
    window.ExecuteAction(command::DataAll);
    ASSERT_EQ(reports.size(), 1);
    EXPECT_EQ(offered, 1);
    EXPECT_EQ(shown(reports[0]),
              "Comparison of databases\r\n\r\nSource database SERVER.Src\r\nTarget database SERVER.Tgt\r\n"
              "Comparison of data in tables\r\nThere are 2 tables in Source database.\r\n"
              "There are 2 tables in Target database.\r\nList of tables which differ:\r\n"
              "\tOrders - 1 different record(s)\r\n\t(1 table)\r\n\r\n"
              "One table [Parts] has identical data in both databases.");
    EXPECT_EQ(QStringLiteral("%1 %2 %3 '%4'")
                  .arg(reportFields.CompType)
                  .arg(reportFields.CompSubType)
                  .arg(reportFields.CompMethod)
                  .arg(reportFields.EncObjTypes)
                  .toStdString(),
              "0 60 -1 ''");
    EXPECT_EQ(globals().gstrReport, QString());
    EXPECT_FALSE(window.Busy());
}

}  // namespace
}  // namespace zov
