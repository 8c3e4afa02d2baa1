// Saved processes from the window: each kind of run is saved from its result screen
// and run again, and what stops a run is told in its order. On the embedded server and
// over the wire.
#include "datacompare/frmCompareData.h"
#include "datacompare/frmCompareDataOptions.h"
#include "datacompare/frmCompareStatus.h"
#include "main_window_fixture.h"
#include "reports/frmExport.h"
#include "saved/frmSaveCompRun.h"
#include "saved/frmSaveComparison.h"
#include "structcompare/frmCompareAllTables.h"

#include <QFileInfo>
#include <QProcess>

namespace zov {
namespace {

namespace cmd = command;
using test::Road;

QString withoutTime(QString report) {
    const qsizetype at = report.lastIndexOf(QStringLiteral("Time Elapsed: "));
    return at < 0 ? report : report.left(at);
}

class Replay : public test::MainWindow, public ::testing::WithParamInterface<Road> {
 protected:
    Replay() : MainWindow(GetParam()) {}

    void SetUp() override {
        MainWindow::SetUp();
        const QString common = QStringLiteral(
            "CREATE TABLE dbo.Orders (Id int NOT NULL CONSTRAINT pk_Orders PRIMARY KEY, V "
            "nvarchar(20))\nGO\n"
            "CREATE TABLE dbo.Same (Id int NOT NULL)\nGO\n"
            "CREATE PROCEDURE dbo.Alike AS SELECT 1\nGO\n"
            "INSERT INTO Orders VALUES (1, N'a, b')\nINSERT INTO Orders VALUES (2, "
            "N'\"q\"')\nGO\n");
        loadDatabases(common + QStringLiteral("CREATE TABLE dbo.Parts (Id int)\nGO\n"
                                              "CREATE PROCEDURE dbo.Other AS SELECT 1\nGO\n"
                                              "CREATE VIEW dbo.V AS SELECT Id FROM Orders\nGO\n"),
                      common + QStringLiteral("UPDATE Orders SET V = N'c, d' WHERE Id = 2\nGO\n"
                                              "CREATE TABLE dbo.Parts (Id bigint)\nGO\n"
                                              "CREATE PROCEDURE dbo.Other AS SELECT 2\nGO\n"
                                              "CREATE VIEW dbo.V AS SELECT V FROM Orders\nGO\n"));
        connect();
        shell.onScreen = [this](Screen& screen) { play(screen); };
    }

    /// Who sits before the screens: a user that compares, saves and exports, or one that only chose
    /// a process to be run.
    void play(Screen& screen) {
        if (auto* all = dynamic_cast<frmCompareAllTables*>(&screen)) {
            all->Form_Activate();
            EXPECT_EQ(all->isClosed(), replaying) << "a replay starts by itself";
            if (!all->isClosed()) all->cmdCompare_Click();
        } else if (auto* chooser = dynamic_cast<frmListObjects*>(&screen)) {
            EXPECT_FALSE(replaying) << "the stored names take its place";
            chooser->cmdSelectAll();
            chooser->cmdOK();
        } else if (auto* options = dynamic_cast<frmCompareDataOptions*>(&screen)) {
            EXPECT_FALSE(replaying);
            options->optGen_Click(1);
            for (const int side : {0, 1}) options->cmbPK_Click(side, 1);
            options->cmdOK_Click();
        } else if (auto* status = dynamic_cast<frmCompareStatus*>(&screen)) {
            status->Form_Activate();
        } else if (auto* report = dynamic_cast<frmReport*>(&screen)) {
            reports += withoutTime(report->txtReport);
            report->Form_Activate();
            if (!replaying) {
                report->cmdSave();
                report->cmdCopyToFile();
            }
            if (!report->isClosed()) report->cmdExit();
        } else if (auto* rows = dynamic_cast<frmCompareData*>(&screen)) {
            reports += rows->plainText();
            rows->Form_Activate();
            if (!replaying) {
                rows->cmdSave_Click();
                rows->cmdExport_Click();
            }
            if (!rows->isClosed()) rows->cmdExit_Click();
        } else if (auto* saving = dynamic_cast<frmExport*>(&screen)) {
            saving->Form_Activate();
            EXPECT_EQ(saving->isClosed(), replaying);
            if (saving->isClosed()) return;
            saving->optGen = csv ? 1 : 0;
            saving->cmdOK_Click();
        } else if (auto* save = dynamic_cast<frmSaveComparison*>(&screen)) {
            save->txtProcessName = QStringLiteral("P");
            save->cmdOK();
        } else if (auto* list = dynamic_cast<frmSaveCompRun*>(&screen)) {
            list->selected = {QStringLiteral("P")};
            list->cmdOK();
        }
    }
    /// Runs a command as a user who saves the result as "P" and exports it to `file`.
    void runAndSave(int command, const char* file) {
        replaying = false;
        reports.clear();
        shell.savePaths = {home.path(QLatin1String(file))};
        shell.yesNoAnswers = answers;
        window.ExecuteAction(command);
        shell.yesNoAnswers.clear();
        shell.takeLines();
    }
    void replay() {
        replaying = true;
        reports.clear();
        window.ExecuteAction(cmd::RunSaved);
        EXPECT_FALSE(window.Busy());
    }
    QStringList savedLines() const {
        return QString::fromUtf8(home.read(QStringLiteral("documents/zov_comps.ini")))
            .split(QStringLiteral("\r\n"));
    }
    bool replaying = false;
    bool csv = false;
    std::deque<bool> answers;
};
INSTANTIATE_TEST_SUITE_P(Roads, Replay, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

TEST_P(Replay, EachKindOfRunGivesItsFirstReportAgain) {
    const struct {
        const char* kind;
        ObjectType type;
        const char* object;
        int command;
        const char* file;
        bool csv;
        std::deque<bool> answers;
        const char* codes;  ///< CompType to CompMethod
    } rows[] = {
        {"all objects",
         ObjectType::Table,
         "",
         cmd::CompareAll,
         "a.txt",
         false,
         {},
         "1|10|0|1,1,1,1,1,1,0,0|-1"},
        {"bulk, simple",
         ObjectType::Table,
         "",
         cmd::FirstBulkSimple + 1,
         "b.txt",
         false,
         {},
         "1|20|10|0,1,0,0,0,0,0,0|-1"},
        {"bulk, details",
         ObjectType::Table,
         "",
         cmd::FirstBulkDetails + 3,
         "c.txt",
         false,
         {},
         "1|20|20|0,0,0,1,0,0,0,0|-1"},
        {"selective",
         ObjectType::Table,
         "",
         cmd::FirstSelective,
         "d.txt",
         false,
         {},
         "1|30|30|1,0,0,0,0,0,0,0|-1"},
        {"selective, details",
         ObjectType::Table,
         "",
         cmd::FirstSelectiveDetails + 1,
         "e.txt",
         false,
         {},
         "1|30|40|0,1,0,0,0,0,0,0|-1"},
        {"a pair",
         ObjectType::Procedure,
         "Other",
         cmd::CompareSelected,
         "f.txt",
         false,
         {},
         "1|35|0|0,1,0,0,0,0,0,0|-1"},
        {"rows of a pair",
         ObjectType::Table,
         "Orders",
         cmd::DataPair,
         "g.htm",
         false,
         {},
         "0|40|0||1"},
        {"rows of a pair, CSV",
         ObjectType::Table,
         "Orders",
         cmd::DataPair,
         "h.csv",
         true,
         {},
         "0|40|0||1"},
        {"rows of a pair, wrapped CSV",
         ObjectType::Table,
         "Orders",
         cmd::DataPair,
         "i.csv",
         true,
         {true},
         "0|40|0||1"},
        {"rows of chosen tables",
         ObjectType::Table,
         "",
         cmd::DataSelected,
         "j.txt",
         false,
         {},
         "0|50|0|1,0,0,0,0,0,0,0|-1"},
        {"rows of all tables",
         ObjectType::Table,
         "",
         cmd::DataAll,
         "k.txt",
         false,
         {},
         "0|60|0||-1"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.kind);
        DeleteSavedProcesses({QStringLiteral("P")});
        chooseType(row.type);
        for (const int Index : {0, 1})
            if (*row.object) select(Index, QLatin1String(row.object));
        csv = row.csv;
        answers = row.answers;
        runAndSave(row.command, row.file);
        const QStringList first = reports;
        EXPECT_EQ(first.size(), 1);
        SavedProcess saved;
        EXPECT_TRUE(GetSavedProcessDetails(QStringLiteral("P"), saved));
        EXPECT_EQ(QStringLiteral("%1|%2|%3|%4|%5")
                      .arg(saved.CompType)
                      .arg(saved.CompSubType)
                      .arg(saved.CompSubSubType)
                      .arg(saved.EncObjTypes)
                      .arg(saved.CompMethod)
                      .toStdString(),
                  row.codes);
        EXPECT_EQ(saved.ExportFilePath, home.path(QLatin1String(row.file)));
        EXPECT_EQ(saved.CSVWrapInQuot, row.answers.size() == 1);
        const QByteArray stored = home.read(QStringLiteral("documents/zov_comps.ini"));
        const QByteArray exported = home.read(QLatin1String(row.file));
        EXPECT_FALSE(exported.isEmpty());
        QFile::remove(home.path(QLatin1String(row.file)));

        // The panels stand elsewhere meanwhile.
        chooseType(ObjectType::View);
        choose(view.sides[0].pvlDb, QStringLiteral("Tgt"));
        window.pvlDb_Click(SourcePanel);
        shell.takeLines();
        replay();
        EXPECT_EQ(reports.join(u'#').toStdString(), first.join(u'#').toStdString()) << told();
        EXPECT_EQ(withoutTime(QString::fromUtf8(home.read(QLatin1String(row.file)))).toStdString(),
                  withoutTime(QString::fromUtf8(exported)).toStdString());
        EXPECT_EQ(window.lastReplay().verdict, RunVerdict::Different);
        EXPECT_EQ(home.read(QStringLiteral("documents/zov_comps.ini")), stored)
            << "a replay never rewrites its record";
        EXPECT_EQ(shell.waitDepth, 0);
        choose(view.sides[0].pvlDb, QStringLiteral("Src"));
        window.pvlDb_Click(SourcePanel);
        shell.takeLines();
    }
}

// A run that the command line saves is kept as the window keeps it, to the byte, and its replay
// there gives what the window's does.
TEST_P(Replay, TheCommandLineSavesAndRunsAsTheWindowDoes) {
    const ServerInfo& server = served.server();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("ZOVRAND_HOME"), home.path(QStringLiteral("other")));
    QByteArray out;
    const auto cli = [&](const QStringList& arguments) {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(ZOV_CLI), arguments);
        process.write(server.Password.toUtf8() + '\n');
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(60000));
        out = process.readAllStandardOutput();
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        if (process.exitCode() == 2) ADD_FAILURE() << process.readAllStandardError().toStdString();
        return process.exitCode();
    };
    QStringList add{"server", "add", server.Name, "--no-check"};
    if (server.SQLAuth) add += QStringList{"--sql-login", server.LoginName, "--password-stdin"};
    EXPECT_EQ(cli(add), 0);
    const struct {
        const char* object;
        int command;
        const char* file;
        QStringList options;
    } rows[] = {
        {"", cmd::CompareAll, "a.txt", {"compare"}},
        {"", cmd::FirstBulkSimple, "b.txt", {"compare", "-t", "tables"}},
        {"", cmd::FirstBulkDetails + 1, "c.txt", {"compare", "-t", "procedures", "--details"}},
        {"",
         cmd::FirstSelective,
         "d.txt",
         {"compare", "-t", "tables", "--select", "Orders,Parts,Same"}},
        {"Orders", cmd::DataPair, "e.htm", {"data", "--table", "Orders", "--key", "Id"}},
        {"", cmd::DataSelected, "f.txt", {"data", "--select", "Orders,Parts,Same"}},
        {"", cmd::DataAll, "g.txt", {"data"}},
    };
    const QString ini = QStringLiteral("documents/zov_comps.ini");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.options.join(u' ').toStdString());
        DeleteSavedProcesses({QStringLiteral("P")});
        home.write(QStringLiteral("other/") + ini, "");
        for (const int Index : {0, 1})
            if (*row.object) select(Index, QLatin1String(row.object));
        runAndSave(row.command, row.file);
        const QString file = home.path(QLatin1String(row.file));
        const QByteArray written = home.read(QLatin1String(row.file));
        EXPECT_EQ(cli(row.options + QStringList{"--source", server.Name, "--source-db", "Src",
                                                "--target", server.Name, "--target-db", "Tgt",
                                                file.endsWith(u"htm") ? "--export" : "-o", file,
                                                "--save", "P"}),
                  1);
        EXPECT_EQ(home.read(QStringLiteral("other/") + ini).toStdString(),
                  home.read(ini).toStdString());
        for (const char* list : {"documents/zov_001_src.txt", "documents/zov_001_tgt.txt"})
            EXPECT_EQ(home.read(QStringLiteral("other/") + QLatin1String(list)).toStdString(),
                      home.read(QLatin1String(list)).toStdString());
        if (*row.object) {
            EXPECT_EQ(
                home.read(QStringLiteral("other/documents/zov_tables_comps.ini")).toStdString(),
                home.read(QStringLiteral("documents/zov_tables_comps.ini")).toStdString());
        }
        QFile::remove(file);
        EXPECT_EQ(cli({"run", "P"}), 1);
        EXPECT_EQ(withoutTime(QString::fromUtf8(home.read(QLatin1String(row.file)))).toStdString(),
                  withoutTime(QString::fromUtf8(written)).toStdString());
        EXPECT_FALSE(out.isEmpty());
    }
}

TEST_P(Replay, TellsWhatStopsItInItsOrder) {
    select(0, QStringLiteral("Orders"));
    select(1, QStringLiteral("Orders"));
    window.ExecuteAction(cmd::RunSaved);
    EXPECT_EQ(told(), "information: There are no saved processes to run.");
    runAndSave(cmd::DataPair, "x.htm");
    chooseType(ObjectType::Procedure);
    SavedProcess good;
    ASSERT_TRUE(GetSavedProcessDetails(QStringLiteral("P"), good));
    told();
    const std::string cannot = "screen frmSaveCompRun\nexclamation: Cannot run saved process - ";
    using Edit = std::function<void(SavedProcess&)>;
    const struct {
        const char* name;
        Edit edit;
        const char* told;
    } rows[] = {
        {"no server", [](SavedProcess& p) { p.ServerName2.clear(); },
         "couldn't retrieve all details data."},
        {"no database", [](SavedProcess& p) { p.DbName1.clear(); },
         "couldn't retrieve all details data."},
        {"no source server", [](SavedProcess& p) { p.ServerName1 = QStringLiteral("gone"); },
         "path gone not found."},
        // The server that stood in the panel must not take the place of the one that is gone.
        {"no target server", [](SavedProcess& p) { p.ServerName2 = QStringLiteral("gone"); },
         "SQL Server database Tgt not found."},
        {"no source database", [](SavedProcess& p) { p.DbName1 = QStringLiteral("src"); },
         "SQL Server database src not found."},
        {"no target database", [](SavedProcess& p) { p.DbName2 = QStringLiteral("X"); },
         "SQL Server database X not found."},
        {"no comparison", [](SavedProcess& p) { p.CompType = 2; }, "comparison type not defined."},
        {"no comparison of rows", [](SavedProcess& p) { p.CompSubType = 35; },
         "comparison sub type not defined."},
        {"no method", [](SavedProcess& p) { p.CompMethod = -1; }, "comparison method not defined."},
        {"no source table", [](SavedProcess& p) { p.TableName1 = QStringLiteral("orders"); },
         "table orders not found."},
        {"no target table", [](SavedProcess& p) { p.TableName2 = QStringLiteral("X"); },
         "table X not found."},
        {"no source object",
         [](SavedProcess& p) {
             p.CompType = 1;
             p.CompSubType = 35;
             p.EncObjTypes = QStringLiteral("0,1,0,0,0,0,0,0");
         },
         "object Orders not found."},
        // Not a table of that name.
        {"a constraint",
         [](SavedProcess& p) {
             p.CompType = 1;
             p.CompSubType = 35;
             p.EncObjTypes = QStringLiteral("0,0,0,0,0,0,1,0");
         },
         "object Orders not found."},
        {"no chosen tables",
         [](SavedProcess& p) { p.CompSubType = comparison_code::SelectedTables; },
         "the names of the selected objects couldn't be retrieved."},
        {"a chosen table that is gone",
         [](SavedProcess& p) {
             p.CompSubType = comparison_code::SelectedTables;
             p.SourceNames = {QStringLiteral("Orders"), QStringLiteral("Old")};
             p.TargetNames = {QStringLiteral("Orders"), QStringLiteral("Older")};
         },
         "neither database has these selected tables any more: Old, Older.\\n\\nSave the process "
         "anew "
         "without them."},
    };
    replaying = true;
    for (const auto& row : rows) {
        SavedProcess bad = good;
        row.edit(bad);
        ASSERT_TRUE(SaveComparisonProcess(bad));
        window.ExecuteAction(cmd::RunSaved);
        EXPECT_EQ(told(), cannot + row.told) << row.name;
        EXPECT_EQ(window.lastReplay().verdict, RunVerdict::None) << row.name;
        EXPECT_FALSE(window.Busy());
        EXPECT_TRUE(view.takeLines().filter(QStringLiteral("close")).isEmpty());
    }
    SavedProcess bad = good;
    bad.CompType = 1;
    ASSERT_TRUE(SaveComparisonProcess(bad));
    window.ExecuteAction(cmd::RunSaved);
    EXPECT_EQ(told(),
              "screen frmSaveCompRun\nexclamation: Comparison sub type not defined - aborting "
              "comparison.");
    bad.CompSubType = 20;
    bad.EncObjTypes = QStringLiteral("0,1,0,0,0,0");
    ASSERT_TRUE(SaveComparisonProcess(bad));
    window.ExecuteAction(cmd::RunSaved);
    EXPECT_EQ(told(),
              "screen frmSaveCompRun\ninformation: Wrong index value in Sub "
              "mnuComparisonAllObjects_Click, Index = -1");
    // Emptied by hand while its name was chosen.
    shell.onScreen = [this](Screen& screen) {
        home.write(QStringLiteral("documents/zov_comps.ini"), "[P]\r\n");
        play(screen);
    };
    window.ExecuteAction(cmd::RunSaved);
    EXPECT_EQ(told(), cannot + "couldn't retrieve all details data.");
    home.write(QStringLiteral("documents/zov_comps.ini"),
               "[P]\r\nServerName1=a\r\nServerName2=a\r\nDbName1=a\r\nDbName2=a\r\n");
    shell.onScreen = [this](Screen& screen) { play(screen); };
    window.ExecuteAction(cmd::RunSaved);
    EXPECT_EQ(told(), cannot + "couldn't retrieve Id of the process.");
}

TEST_P(Replay, TakesTheProcessesMethodAndTheTablesOwnIds) {
    select(0, QStringLiteral("Orders"));
    select(1, QStringLiteral("Orders"));
    runAndSave(cmd::DataPair, "x.htm");
    SavedProcess saved;
    ASSERT_TRUE(GetSavedProcessDetails(QStringLiteral("P"), saved));
    // The tables were made anew since, and their settings say something else.
    saved.ObjId1 = saved.ObjId2 = 1;
    saved.ExportFilePath.clear();
    saved.CompMethod = CompMethod::RecordByRecord;
    ASSERT_TRUE(SaveComparisonProcess(saved));
    QString method;
    shell.onScreen = [&](Screen& screen) {
        if (auto* rows = dynamic_cast<frmCompareData*>(&screen)) method = rows->lblGen11;
        play(screen);
    };
    replay();
    EXPECT_EQ(method, u"Comparison method: Record by Record");
    EXPECT_EQ(window.lastReplay().verdict, RunVerdict::Different);
    EXPECT_EQ(
        window.lastReplay().report.toStdString(),
        "Number of records in first table: 2\r\nNumber of records in second table: 2\r\nNumber "
        "of different records: 1");
}

TEST_P(Replay, OfTheCommandLineRunsAtTheFirstActivation) {
    chooseType(ObjectType::Procedure);
    select(0, QStringLiteral("Alike"));
    select(1, QStringLiteral("Alike"));
    runAndSave(cmd::CompareSelected, "pair.txt");
    const QStringList first = reports;
    SavedProcess saved;
    ASSERT_TRUE(GetSavedProcessDetails(QStringLiteral("P"), saved));
    replaying = true;
    const struct {
        qint32 id;
        bool autoClose;
        const char* told;
        RunVerdict verdict;
    } rows[] = {
        {saved.Id + 5, true, "", RunVerdict::None},
        {0, true, "", RunVerdict::None},
        {saved.Id, false, "screen frmReport", RunVerdict::Identical},
        {saved.Id, true, "screen frmReport", RunVerdict::Identical},
    };
    for (const auto& row : rows) {
        saved.AutoClose = row.autoClose;
        DeleteSavedProcesses({saved.Name});
        ASSERT_TRUE(SaveComparisonProcess(saved));
        globals().gblnAutoClose = false;
        globals().glngSavedProcessId = row.id;
        reports.clear();
        test::TestView another;
        frmMain started(another, screens);
        started.Form_Load();
        told();
        started.Form_Activate();
        EXPECT_EQ(told(), row.told);
        EXPECT_EQ(started.lastReplay().verdict, row.verdict);
        const bool ran = row.verdict != RunVerdict::None;
        if (ran) {
            EXPECT_EQ(reports, first);
        }
        EXPECT_EQ(!another.takeLines().filter(QStringLiteral("close")).isEmpty(),
                  row.autoClose && ran)
            << "only a run that came to its comparison ends the program";
    }
    globals().gblnAutoClose = false;
}

// A CSV export of an unattended run asks nothing; an HTML export asks all the same.
TEST_P(Replay, WithAutoCloseAsksOnlyAboutHtml) {
    for (const bool toCsv : {true, false}) {
        chooseType(ObjectType::Table);
        select(0, QStringLiteral("Orders"));
        select(1, QStringLiteral("Orders"));
        csv = toCsv;
        runAndSave(cmd::DataPair, toCsv ? "r.csv" : "r.htm");
        SavedProcess saved;
        ASSERT_TRUE(GetSavedProcessDetails(QStringLiteral("P"), saved));
        saved.AutoClose = true;
        ASSERT_TRUE(SaveComparisonProcess(saved));
        told();
        replay();
        const std::string lines = told();
        EXPECT_EQ(lines.find("yes/no") == std::string::npos, toCsv) << lines;
        EXPECT_EQ(lines.rfind("screen frmSaveCompRun\nscreen frmCompareStatus\nscreen "
                              "frmCompareData\nscreen frmExport",
                              0),
                  0u)
            << lines;
        EXPECT_FALSE(view.takeLines().filter(QStringLiteral("close")).isEmpty());
        globals().gblnAutoClose = false;
        DeleteSavedProcesses({saved.Name});
    }
}

}  // namespace
}  // namespace zov
