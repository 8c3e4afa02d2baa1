// Comparing rows from the window: the pair of selected tables, chosen tables, all
// tables; through the options and into the result or the report.
#include "datacompare/frmCompareData.h"
#include "datacompare/frmCompareDataOptions.h"
#include "datacompare/frmCompareStatus.h"
#include "main_window_fixture.h"
#include "reports/frmExport.h"
#include "structcompare/frmCompareAllTables.h"

#include <QProcess>

namespace zov {
namespace {

class DataComparisons : public test::MainWindow {
 protected:
    void SetUp() override {
        MainWindow::SetUp();
        const QString tables = QStringLiteral(
            "CREATE TABLE dbo.Orders (Id int NOT NULL CONSTRAINT pk_Orders PRIMARY KEY, V "
            "int)\nGO\n"
            "INSERT INTO Orders VALUES (1, 1)\nINSERT INTO Orders VALUES (2, 2)\nGO\n");
        loadDatabases(tables + QStringLiteral("CREATE TABLE dbo.Parts (Id int)\nGO\n"),
                      tables + QStringLiteral("UPDATE Orders SET V = 5 WHERE Id = 2\nGO\n"
                                              "CREATE TABLE dbo.Parts (Id bigint)\nGO\n"));
        connect();
        shell.onScreen = [this](Screen& screen) {
            if (auto* options = dynamic_cast<frmCompareDataOptions*>(&screen)) {
                if (onOptions) onOptions(*options);
                if (optionsAccepted)
                    options->cmdOK_Click();
                else
                    options->cmdCancel_Click();
            } else if (auto* status = dynamic_cast<frmCompareStatus*>(&screen)) {
                status->Form_Activate();
            } else if (auto* result = dynamic_cast<frmCompareData*>(&screen)) {
                differences = result->Caption + u' ' + result->lblStats[5];
                if (exports) result->cmdExport_Click();
                result->cmdExit_Click();
            } else if (auto* saving = dynamic_cast<frmExport*>(&screen)) {
                saving->optGen = 0;
                saving->cmdOK_Click();
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
    bool exports = false;
    std::function<void(frmCompareDataOptions&)> onOptions;
    int offered = 0;
    QString differences;
};

TEST_F(DataComparisons, APairGoesThroughTheOptionsToItsDifferences) {
    select(0, QStringLiteral("Orders"));
    select(1, QStringLiteral("Orders"));
    window.ExecuteAction(command::DataPair);
    EXPECT_EQ(told(),
              "screen frmCompareDataOptions\nscreen frmCompareStatus\nscreen frmCompareData");
    EXPECT_EQ(differences.toStdString(),
              "Differences between data in tables 'Orders' and 'Orders' 1");
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
    EXPECT_EQ(told(),
              "yes/no [Different Structures]: Compared tables have different structures.\\n\\nDo "
              "you still want to compare them? -> no");
    EXPECT_FALSE(window.Busy());
}

// Chosen on the options screen or on the command line: the files of what differs are the same.
TEST_F(DataComparisons, TheWindowExportsWhatTheCommandLineDoes) {
    const QString columns =
        QStringLiteral("CREATE TABLE dbo.Lines (A int, B nvarchar(9), C nvarchar(9), D int)\nGO\n");
    QString rows[2];
    for (int i = 1; i <= 40; ++i)
        for (const int side : {0, 1}) {
            if (i % 17 == side * 5) continue;
            rows[side] +=
                QStringLiteral("INSERT INTO Lines VALUES (%1, N'%2', %3, %4)\n")
                    .arg(i / 3)
                    .arg(side && i % 7 == 0 ? QStringLiteral("B") : QStringLiteral("b"))
                    .arg(i % 5 == 0 ? QStringLiteral("NULL") : QStringLiteral("N'c%1 '").arg(i % 3))
                    .arg(side && i % 11 == 0 ? -i : i);
        }
    loadDatabases(columns + rows[0] + QStringLiteral("GO\n"),
                  columns + rows[1] + QStringLiteral("GO\n"));
    window.cmdConnect_Click();
    choose(view.sides[0].pvlDb, QStringLiteral("Src"));
    window.pvlDb_Click(SourcePanel);
    choose(view.sides[1].pvlDb, QStringLiteral("Tgt"));
    window.pvlDb_Click(TargetPanel);
    select(0, QStringLiteral("Lines"));
    select(1, QStringLiteral("Lines"));
    exports = true;
    const struct {
        int method;
        const char* keys;  ///< places of the columns, from 1: of the key, or to sort by
        const char* offset;
        int ignored;  ///< a column's place, 0 none
        QStringList options;
    } table[] = {
        {1, "4", "", 0, {"--key", "D"}},
        {1, "12", "", 0, {"--key", "A,B"}},
        {1, "132", "", 4, {"--key", "A,C,B", "--ignore", "D"}},
        {0, "", "", 0, {"--method", "record"}},
        {0,
         "41",
         "3",
         0,
         {"--method", "record", "--sort", "D,A", "--offset", "3", "--target-offset", "3"}},
        {0, "1", "", 2, {"--method", "record", "--sort", "A", "--ignore", "B"}},
    };
    for (const bool caseSensitive : {true, false})
        for (const auto& row : table) {
            SCOPED_TRACE(row.options.join(u' ').toStdString());
            globals().gblnDataCaseSensitive = caseSensitive;
            onOptions = [&](frmCompareDataOptions& options) {
                options.optGen_Click(row.method);
                const QByteArray places(row.keys);
                for (int side = 0; side < 2; ++side) {
                    options.cmbGen_Click(side * 3, 0);
                    options.cmdSelectAll_Click(side);
                    if (row.ignored) options.pvlSqlObj_Click(side, row.ignored - 1, false);
                    options.txtOffset_Change(side, QString::fromLatin1(row.offset));
                    for (int at = 2; at >= 0; --at) options.cmbPK_Click(at * 2 + side, 0);
                    for (int at = 0; at < places.size(); ++at) {
                        const int item = places[at] - '0';
                        if (row.method == 1)
                            options.cmbPK_Click(at * 2 + side, item);
                        else
                            options.cmbGen_Click(side * 3 + at, item);
                    }
                }
            };
            shell.savePaths = {home.path(QStringLiteral("window.htm"))};
            differences.clear();
            window.ExecuteAction(command::DataPair);
            EXPECT_NE(differences, QString()) << told();
            QProcess cli;
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert(QStringLiteral("ZOVRAND_HOME"), home.path(QStringLiteral("other")));
            cli.setProcessEnvironment(environment);
            const QString server = served.server().Name;
            cli.start(QStringLiteral(ZOV_CLI),
                      QStringList{"data", "--source", server, "--source-db", "Src", "--target",
                                  server, "--target-db", "Tgt", "--table", "Lines", "--export",
                                  home.path(QStringLiteral("cli.htm")), "--set",
                                  QStringLiteral("DataCaseSensitive=%1").arg(int(caseSensitive))} +
                          row.options);
            ASSERT_TRUE(cli.waitForFinished(60000));
            EXPECT_EQ(cli.exitCode(), 1) << cli.readAllStandardError().toStdString();
            const QByteArray exported = home.read(QStringLiteral("window.htm"));
            EXPECT_GT(exported.count("<TR>"), 2) << "more than the headings";
            EXPECT_EQ(exported.toStdString(), home.read(QStringLiteral("cli.htm")).toStdString());
            QFile::remove(home.path(QStringLiteral("window.htm")));
            QFile::remove(home.path(QStringLiteral("cli.htm")));
        }
}

TEST_F(DataComparisons, AllTablesEndInAReport) {
    window.ExecuteAction(command::DataAll);
    ASSERT_EQ(reports.size(), 1);
    EXPECT_EQ(offered, 1);
    EXPECT_EQ(shown(reports[0]),
              "Comparison of databases\r\n\r\nSource database SERVER.Src\r\nTarget database "
              "SERVER.Tgt\r\n"
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

    // What the report doesn't say comes in front of it.
    shell.takeLines();
    SaveIgnoredColumnsList(IgnoreMode::DataComparison,
                           GetObjectKeyName(globals().gtCurrentServers[0].Name,
                                            QStringLiteral("Src"), QStringLiteral("Orders")),
                           {QStringLiteral("V")});
    window.ExecuteAction(command::DataAll);
    EXPECT_TRUE(shell.takeLines().contains(
        QStringLiteral("information [Note]: Table Orders: column ignored during comparison: "
                       "Source - V.")));
}

}  // namespace
}  // namespace zov
