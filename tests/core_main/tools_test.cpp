// The tools that the main window opens on what its panels have selected: data
// analyzer, database information, words that nothing accounts for.
#include "analysis/frmDataAnalyze.h"
#include "core_main/main_window_fixture.h"
#include "reports/frmGetDbInfo.h"
#include "reports/frmReport.h"
#include "tools/attach_database.h"
#include "tools/frmAttachDb.h"
#include "tools/frmExecSp.h"

#include <QDate>
#include <QLocale>

namespace zov {
namespace {

class Tools : public test::MainWindow {
 protected:
    void SetUp() override {
        test::MainWindow::SetUp();
        loadDatabases(QStringLiteral(
                          "CREATE TABLE dbo.Zoo (Id int)\nGO\nCREATE TABLE dbo.[A b] (Id int)\nGO\n"
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
              "records)//There are no procedures in this database.//There are no functions in this "
              "database.//List of "
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
                     [&](frmGetDbInfo& form) { shell.onPump = [&] { form.cmdCancel_Click(); }; }),
              "no report");
    shell.onPump = nullptr;
    told();
    // A database that is gone: every list says that it couldn't be read, and none that it is empty.
    served.load(QStringLiteral("master"), QStringLiteral("DROP DATABASE Src"));
    const std::string text = infoOf(SourcePanel);
    EXPECT_NE(text.find("The tables of this database couldn't be read."), std::string::npos)
        << text;
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
    EXPECT_EQ(told(),
              "information [Cannot Continue]: Cannot continue - there is no structure "
              "displayed for selected View.");
}

TEST_F(Tools, AttachTheFileOfAnotherServer) {
    // Another server's database, and files that are none.
    test::ServedDatabases other;
    other.load(QStringLiteral("Old"), QStringLiteral("CREATE TABLE Gone (Id int)\nGO\n"
                                                     "INSERT INTO Gone VALUES (7)\nGO\n"));
    const auto fileOf = [](test::ServedDatabases& server) {
        return server.server().Name.section(u':', 1) + QStringLiteral("/Old.db");
    };
    const QString file = fileOf(other);
    const QString text = home.write(QStringLiteral("text.db"), "no database");
    std::string reported;
    const auto attach = [&](const QString& name, const QString& path, const QString& log) {
        shell.onScreen = [&](Screen& screen) {
            auto* form = dynamic_cast<frmAttachDb*>(&screen);
            if (!form) {
                reported = screen.plainText().toStdString();
                return;
            }
            form->txtPath[0] = name;
            form->txtPath[1] = path;
            form->txtPath[2] = log;
            form->chkAttachSingleFile_Click(log.isNull());
            form->cmdOK();
        };
        told();
        reported.clear();
        window.ExecuteAction(command::AttachDatabase);
        QStringList lines = shell.takeLines();
        return reported + lines.filter(QStringLiteral("information")).join(u'|').toStdString();
    };
    const QString old = QStringLiteral("Old"), none = QStringLiteral("/nowhere/x.mdf");
    EXPECT_EQ(attach(QStringLiteral(" "), {}, {}), "information: Please specify database name.");
    EXPECT_EQ(attach(old, {}, {}), "information: Please specify database file.");
    EXPECT_EQ(attach(old, file, QStringLiteral("")), "information: Please specify log file.");
    EXPECT_EQ(attach(old, none, {}), "information: File /nowhere/x.mdf doesn't exist.");
    EXPECT_EQ(attach(old, file, none), "information: File /nowhere/x.mdf doesn't exist.");
    EXPECT_NE(attach(old, text, {}).find("is not a primary database file"), std::string::npos);
    EXPECT_EQ(attach(old, file, {}), "information: Attached Successfully");
    EXPECT_NE(attach(old, file, {}).find("Database 'Old' already exists."), std::string::npos);
    EXPECT_NE(attach(QStringLiteral("Own"), fileOf(served), {})
                  .find("is a database of this server already"),
              std::string::npos);
    std::unique_ptr<Recordset> rs;
    ASSERT_EQ(GetAdoRS(served.server(), adCmdText, QStringLiteral("SELECT Id FROM Gone"), rs, old),
              0);
    EXPECT_EQ(rs->field(0).text(), u"7");
    EXPECT_TRUE(QFile::exists(file)) << "it was copied";
}

TEST_F(Tools, AFileOfAnotherMachineIsAskedAbout) {
    ServerInfo remote;
    remote.Name = QStringLiteral("db1.example,1433");
    frmAttachDb form;
    shell.onScreen = [&](Screen&) {
        form.txtPath[0] = QStringLiteral("D");
        form.txtPath[1] = QStringLiteral("/nowhere/x.mdf");
        form.chkAttachSingleFile_Click(true);
        shell.yesNoAnswers = {false};
        form.cmdOK();
    };
    form.ShowUp(remote);
    const std::string asked = told();
    EXPECT_NE(asked.find("on whose machine it must exist"), std::string::npos) << asked;
    for (const char* here : {"local:x", ".", "(local)\\SQL", "tcp:localhost,1433"})
        EXPECT_TRUE(opensFilesOfThisMachine(QString::fromLatin1(here))) << here;
    EXPECT_FALSE(opensFilesOfThisMachine(remote.Name));
}

TEST_F(Tools, SampleProceduresAreCalled) {
    served.load(QStringLiteral("Northwind"),
                QStringLiteral("CREATE TABLE emp (id varchar(6), firstname varchar(30), title "
                               "varchar(30), address varchar(100))\nGO\n"
                               "INSERT INTO emp VALUES ('1', 'Ann', 'Dr', 'Oslo')\nGO\n"));
    frmExecSp form;
    std::string reported;
    shell.onScreen = [&](Screen& screen) {
        if (&screen != &form) {
            reported += screen.plainText().toStdString();
            return;
        }
        form.txt_empid = QStringLiteral("1");
        form.cmd_get_Click();
        form.cmd_update_Click();
    };
    form.ShowUp(served.server());
    // The embedded server keeps procedures and doesn't run them: the error is reported.
    EXPECT_NE(reported.find("frmExecSp:cmd_get_Click"), std::string::npos) << reported;
    EXPECT_NE(reported.find("frmExecSp:cmd_update_Click"), std::string::npos) << reported;
}

TEST_F(Tools, ReportNamesThatCannotBeFound) {
    served.load(
        QStringLiteral("Src"),
        QStringLiteral("CREATE PROCEDURE dbo.P AS\nSELECT Id, Lost FROM Zoo\nEXEC Gone\nGO\n"
                       "CREATE PROCEDURE dbo.Q WITH ENCRYPTION AS SELECT 1\nGO\n"
                       "CREATE TABLE dbo.Old (a int)\nGO\n"
                       "CREATE VIEW dbo.X AS SELECT a FROM dbo.Old\nGO\n"
                       "DROP TABLE dbo.Old\n"));
    QString text;
    shell.onScreen = [&](Screen& screen) {
        EXPECT_EQ(screen.caption(), u"Missing References");
        text = screen.plainText();
    };
    const auto found = [&](int id, int Index) {
        text = QStringLiteral("no report");
        window.ExecuteAction(id, Index);
        return text.replace(QStringLiteral("\r\n"), QStringLiteral("/")).toStdString();
    };
    const std::string head = "References that can't be found//Database: Src/Searched: ";
    const std::string gone =
        "procedure dbo.P:2: column Lost of dbo.Zoo can't be found/procedure dbo.P:3: procedure "
        "Gone "
        "can't be found/";
    const std::string unread = "/Not searched whole:/procedure dbo.Q: its text can't be read/";
    EXPECT_EQ(found(command::MissingInSource, SourcePanel),
              head + "all procedures, functions, views and triggers//" + gone +
                  "view dbo.X:1: table or view dbo.Old can't be found/" + unread);
    chooseType(ObjectType::Procedure);
    EXPECT_EQ(found(command::MissingInListedSource, SourcePanel),
              head + "the procedures listed//" + gone + unread);
    select(0, QStringLiteral("P"));
    EXPECT_EQ(found(command::MissingReferences, SourcePanel), head + "procedure dbo.P//" + gone);
    select(0, QStringLiteral("Q"));
    EXPECT_EQ(found(command::MissingReferences, SourcePanel),
              head + "procedure dbo.Q//In what could be read, every name was found./" + unread);
    chooseType(ObjectType::View);
    select(0, QStringLiteral("V"));
    EXPECT_EQ(found(command::MissingReferences, SourcePanel),
              head + "view dbo.V//Every name that it refers to was found./");
    EXPECT_EQ(found(command::MissingInTarget, TargetPanel),
              "References that can't be found//Database: Tgt/Searched: all procedures, functions, "
              "views and triggers//There is nothing to search./");
    // One that was dropped meanwhile, a search that is stopped, and a database that is gone.
    served.load(QStringLiteral("Src"), QStringLiteral("DROP VIEW dbo.V"));
    EXPECT_EQ(found(command::MissingReferences, SourcePanel),
              head +
                  "view dbo.V//There is nothing to search.//Not searched whole:/view dbo.V: its "
                  "text can't be read/");
    shell.onPump = [] { globals().gblnStop = true; };
    const std::string stopped = found(command::MissingInSource, SourcePanel);
    EXPECT_NE(stopped.find("The search was stopped before its end."), std::string::npos) << stopped;
    EXPECT_EQ(stopped.find("Every name"), std::string::npos) << stopped;
    shell.onPump = nullptr;
    globals().gblnStop = false;
    served.load(QStringLiteral("master"), QStringLiteral("DROP DATABASE Src"));
    told();
    EXPECT_EQ(found(command::MissingInSource, SourcePanel), "no report");
    EXPECT_EQ(
        told().find("exclamation [Cannot Search]: Cannot search - the database can't be read."),
        0u);
}

TEST(DatabaseInfo, CountsInSentences) {
    const QString triggers = QStringLiteral("triggers"), side = QStringLiteral("Source");
    EXPECT_EQ(ObjectCountSentence(triggers, 0, side), u"There are no triggers in Source database.");
    EXPECT_EQ(ObjectCountSentence(triggers, 1, side), u"There is 1 trigger in Source database.");
    EXPECT_EQ(ObjectCountSentence(triggers, 12, side),
              u"There are 12 triggers in Source database.");
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
