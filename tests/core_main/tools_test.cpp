// The tools that the main window opens on what its panels have selected: data
// analyzer, database information, words that nothing accounts for.
#include "analysis/frmDataAnalyze.h"
#include "core_main/main_window_fixture.h"
#include "reports/frmGetDbInfo.h"
#include "reports/frmReport.h"

#include <QDate>
#include <QLocale>

namespace zov {
namespace {

class Tools : public test::MainWindow {
 protected:
    void SetUp() override {
        test::MainWindow::SetUp();
        loadDatabases(
            QStringLiteral("CREATE TABLE dbo.Zoo (Id int)\nGO\nCREATE TABLE dbo.[A b] (Id int)\nGO\n"
                           "INSERT INTO Zoo VALUES (1), (2), (2)\nGO\n"
                           "CREATE VIEW dbo.V AS SELECT Id FROM Zoo x \nGO\n"
                           "CREATE VIEW dbo.W AS SELECT 1 AS [1] \nGO\n"
                           "CREATE TRIGGER dbo.Tr ON dbo.Zoo FOR INSERT AS PRINT 1 \nGO\n"),
            QStringLiteral("CREATE TABLE dbo.T (Id int)\nGO\n"));
        connect();
    }
    /// The report that the command ends in, its date left out.
    std::string infoOf(int Index, const std::function<void(frmGetDbInfo&)>& user = {}) {
        QString text = QStringLiteral("no report");
        shell.onScreen = [&](Screen& screen) {
            if (auto* form = dynamic_cast<frmGetDbInfo*>(&screen)) {
                if (user) user(*form);
                form->Form_Activate();
            }
            if (auto* report = dynamic_cast<frmReport*>(&screen)) {
                EXPECT_EQ(report->caption(), u"Database Information");
                EXPECT_FALSE(report->cmdSaveVisible);
                text = report->txtReport;
            }
        };
        window.cmdDbInfo_Click(Index);
        const QString today =
            QLocale::c().toString(QDate::currentDate(), QStringLiteral("MMM dd, yyyy"));
        return text.replace(today, QStringLiteral("TODAY"))
            .replace(QStringLiteral("\r\n"), QStringLiteral("/"))
            .toStdString();
    }
};

TEST_F(Tools, AnalyzeTheSelectedTable) {
    select(0, QStringLiteral("Zoo"));
    std::string seen;
    shell.onScreen = [&](Screen& screen) {
        auto& form = dynamic_cast<frmDataAnalyze&>(screen);
        form.cmdStart_Click();
        for (const GridReportItem& item : form.rpcReport.records.at(0))
            if (!item.text().isEmpty()) seen += item.text().toStdString() + "|";
    };
    window.ExecuteAction(command::AnalyzeSource);
    EXPECT_EQ(seen, "Id|int|2|2|2|1|1|");
    shell.takeLines();
    select(0, QStringLiteral("A b"));
    window.ExecuteAction(command::AnalyzeSource);
    EXPECT_EQ(told(), "information [View Data]: Table A b doesn't contain any data.");
    view.sides[1].pvlSqlObj.MemoryObjectList::selectRow(-1);
    window.ExecuteAction(command::AnalyzeTarget);
    EXPECT_EQ(told(), "information [Analyze]: Cannot analyze - the list of tables is empty.");
}

TEST_F(Tools, ListWhatADatabaseHolds) {
    EXPECT_EQ(infoOf(SourcePanel),
              "TODAY//Database: Src//List of tables/[dbo].[A b] (0 records)/[dbo].[Zoo] (3 "
              "records)//There are no procedures in this database.//There are no functions in this database.//List of "
              "views/V/W//List of triggers/Tr//There are no relationships in this database.//");
    served.load(QStringLiteral("Tgt"), QStringLiteral("INSERT INTO T VALUES (1)"));
    EXPECT_EQ(infoOf(TargetPanel).substr(0, 60),
              "TODAY//Database: Tgt//List of tables/[dbo].[T] (1 record)//T");
    globals().gblnFilterActive[SourcePanel] = globals().gblnFilterActive[TargetPanel] = true;
    globals().gstrFilterList[SourcePanel] = globals().gstrFilterList[TargetPanel] =
        QStringLiteral("dbo");
    EXPECT_NE(infoOf(SourcePanel).find("Src//Applied filtering by Schema: dbo//List"),
              std::string::npos);
    EXPECT_NE(infoOf(TargetPanel).find("Tgt//Applied filtering by Target: dbo//List"),
              std::string::npos);
}

TEST_F(Tools, AnInventoryThatIsStoppedOrFailsIsNoReport) {
    EXPECT_EQ(infoOf(SourcePanel,
                     [&](frmGetDbInfo& form) {
                         shell.onPump = [&] { form.cmdCancel_Click(); };
                     }),
              "no report");
    shell.onPump = nullptr;
    told();
    // A database that is gone: every list says that it couldn't be read, and none that it is empty.
    served.load(QStringLiteral("master"), QStringLiteral("DROP DATABASE Src"));
    const std::string text = infoOf(SourcePanel);
    EXPECT_NE(text.find("The tables of this database couldn't be read."), std::string::npos) << text;
    EXPECT_EQ(text.find("There are no"), std::string::npos) << text;
}

TEST_F(Tools, NameTheWordsThatNothingAccountsFor) {
    chooseType(ObjectType::View);
    select(0, QStringLiteral("V"));
    told();
    window.ExecuteAction(command::References, SourcePanel);
    EXPECT_EQ(told(),
              "box: View 'V' contains following references to non-existent objects:\\nid\\nzoo");
    select(0, QStringLiteral("W"));
    told();
    window.ExecuteAction(command::References, SourcePanel);
    EXPECT_EQ(told(),
              "information: \\n\\nView 'W' doesn't contain any references to non-existent "
              "objects.\\n\\n");
    window.ExecuteAction(command::References, TargetPanel);
    EXPECT_EQ(told(), "information [Cannot Continue]: Cannot continue - there is no structure "
                      "displayed for selected View.");
}

TEST(DatabaseInfo, CountsInSentences) {
    const QString triggers = QStringLiteral("triggers"), side = QStringLiteral("Source");
    EXPECT_EQ(ObjectCountSentence(triggers, 0, side), u"There are no triggers in Source database.");
    EXPECT_EQ(ObjectCountSentence(triggers, 1, side), u"There is 1 trigger in Source database.");
    EXPECT_EQ(ObjectCountSentence(triggers, 12, side), u"There are 12 triggers in Source database.");
    DatabaseInfo source, target;
    source.counts = {1, 2, 3, 4, 5, 6};
    source.text = QStringLiteral("S\r\n");
    target.counts = {0, -1};
    target.text = QStringLiteral("T\r\n");
    const QString text = BothDatabasesText(source, target);
    EXPECT_TRUE(text.startsWith(QStringLiteral(
        "There is 1 table in Source database.\r\nThere are no tables in Target database.\r\nThere "
        "are 2 procedures in Source database.\r\nThe procedures in Target database couldn't be "
        "counted.\r\n")))
        << text.toStdString();
    EXPECT_TRUE(text.endsWith(QStringLiteral("\r\n\r\nS\r\n\r\nT\r\n"))) << text.toStdString();
}

}  // namespace
}  // namespace zov
