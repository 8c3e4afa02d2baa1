// zovrand-cli --save, process and run: a run is kept, replayed, looked at and deleted without a
// window, and whatever goes wrong on the way is exit status 2.
#include "cli_runner.h"

namespace zov::acceptance {
namespace {

const QString Server = QStringLiteral("local:shop");

class Processes : public ::testing::Test {
 protected:
    void SetUp() override {
        const QByteArray tables =
            "CREATE TABLE Orders (Id int NOT NULL PRIMARY KEY, V nvarchar(20))\nGO\n"
            "CREATE TABLE Same (Id int)\nGO\n"
            "INSERT INTO Orders VALUES (1, N'a, b')\nINSERT INTO Orders VALUES (2, N'x')\nGO\n";
        home.loadText(Server, "One", tables + "CREATE PROCEDURE P AS SELECT 1\nGO\n");
        home.loadText(Server, "Two",
                      tables +
                          "CREATE PROCEDURE P AS SELECT 2\nGO\n"
                          "UPDATE Orders SET V = N'y' WHERE Id = 2\nGO\n");
        EXPECT_EQ(home.run({"server", "add", Server}).status, 0);
    }
    CliResult compare(const QStringList& options, const char* target = "Two") {
        return home.run(QStringList{"compare", "--source", Server, "--source-db", "One", "--target",
                                    Server, "--target-db", target} +
                        options);
    }
    CliResult data(const QStringList& options, const char* target = "Two") {
        return home.run(QStringList{"data", "--source", Server, "--source-db", "One", "--target",
                                    Server, "--target-db", target} +
                        options);
    }
    QString fileText(const QString& name) const {
        QFile file(home.path(name));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    /// The file of saved processes after its `from` was made `to`.
    void edit(const char* from, const char* to) {
        QString text = ini();
        EXPECT_TRUE(text.contains(QLatin1String(from))) << from;
        home.write(QStringLiteral("home/documents/zov_comps.ini"),
                   text.replace(QLatin1String(from), QLatin1String(to)).toUtf8());
    }
    QString ini() const { return fileText(QStringLiteral("home/documents/zov_comps.ini")); }
    CliHome home;
};

TEST_F(Processes, KeepARunAndRepeatIt) {
    const QString file = home.path("r.txt");
    const CliResult first = compare({"-o", "r.txt", "--save", "Nightly"});
    EXPECT_EQ(first.status, 1) << ::testing::PrintToString(first);
    EXPECT_EQ(first.err.toStdString(), "zovrand-cli: Saved as process 1, \"Nightly\".\n");
    const QString report = fileText("r.txt");
    EXPECT_TRUE(ini().contains("ExportFilePath=" + file + "\r\n"));
    EXPECT_EQ(home.run({"process", "list"}).out.toStdString(), "1\tNightly\n");

    for (const QStringList& by :
         {QStringList{"Nightly"}, QStringList{"1"}, QStringList{"--name", "Nightly"}}) {
        QFile::remove(file);
        const CliResult again = home.run(QStringList{"run"} + by);
        EXPECT_EQ(again.status, 1) << ::testing::PrintToString(again);
        EXPECT_EQ(again.err.toStdString(), "");
        EXPECT_EQ(withoutTime(fileText("r.txt")).toStdString(), withoutTime(report).toStdString());
        EXPECT_EQ(withoutTime(again.out).toStdString(),
                  withoutTime(QString(report).remove('\r')).toStdString());
    }
    QFile::remove(file);
    const QString mine = home.write("mine.tmp", "x");
    EXPECT_EQ(home.run({"run", "1", "-o", "other.txt"}).status, 1);
    EXPECT_TRUE(QFile::exists(mine)) << "the folder is the user's";
    EXPECT_EQ(withoutTime(fileText("other.txt")).toStdString(), withoutTime(report).toStdString());
    EXPECT_FALSE(QFile::exists(file));
    // What a run from a window would store is left as it is.
    EXPECT_EQ(home.run({"server", "list"}).out.toStdString(), "local:shop\t(Windows)\tmaster\n");

    const CliResult shown = home.run({"process", "show", "Nightly"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_TRUE(
        shown.out.startsWith("Comparison Process Name: Nightly\nComparison Process Id: 1\n\n"
                             "Comparison Type: Meta-Data Comparison\n"))
        << shown.out.toStdString();
    EXPECT_TRUE(
        shown.out.endsWith("Options are not kept: a replay goes by those in force when it "
                           "runs. Filters by schema or owner are not kept either: a replay "
                           "compares without them.\n"));
}

TEST_F(Processes, RefuseWhatWouldNotComeBack) {
    EXPECT_EQ(compare({"--save", "There"}).status, 1);
    const QString before = ini();
    const struct {
        const char* name;
        QStringList options;
        const char* told;
    } rows[] = {
        {"options",
         {"--save", "N", "--set", "IgnoreComments=0"},
         "--save: a saved process keeps no "
         "options, so that --set"},
        {"details of several kinds",
         {"--save", "N", "--details"},
         "--save: --details can be kept for"},
        {"details of two kinds",
         {"--save", "N", "--details", "-t", "tables,views"},
         "--save: --details can be kept for"},
        {"objects of several kinds",
         {"--save", "N", "--select", "Orders"},
         "--save: --select can be kept for"},
        {"a name that is taken", {"--save", "There"}, "there is a saved process \"There\" already"},
        {"brackets", {"--save", "[N]"}, "Square brackets - [ ] - are not allowed."},
        {"blanks alone", {"--save", "  "}, "Please enter a name"},
        {"no name", {"--save", ""}, "the value is missing"},
        {"a login of its own", {"--save", "N", "--target-login", "sa"}, "isn't stored"},
    };
    for (const auto& row : rows) {
        const CliResult result = compare(row.options);
        EXPECT_EQ(result.status, 2) << row.name;
        EXPECT_EQ(result.out.toStdString(), "") << row.name << ": nothing was run";
        EXPECT_TRUE(result.err.contains(row.told)) << row.name << ": " << result.err.toStdString();
        EXPECT_EQ(ini().toStdString(), before.toStdString()) << row.name;
    }
    EXPECT_TRUE(data({"--save", "N", "--table", "Orders", "--limit", "5"}).err.contains("--limit"));
    const CliResult unknown = home.run({"compare", "--source", "local:other", "--source-db", "One",
                                        "--target", Server, "--target-db", "Two", "--save", "N"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_TRUE(unknown.err.contains("the server local:other isn't stored"));
    // A run in trouble is no run to be kept.
    const CliResult trouble = compare({"--save", "N"}, "Nowhere");
    EXPECT_EQ(trouble.status, 2);
    EXPECT_EQ(ini().toStdString(), before.toStdString());

    EXPECT_EQ(compare({"--save", "There", "--overwrite"}).status, 1);
    EXPECT_EQ(home.run({"process", "list"}).out.toStdString(), "2\tThere\n");
    // The databases are kept as the server spells them.
    EXPECT_EQ(home.run({"compare", "--source", Server, "--source-db", "one", "--target", Server,
                        "--target-db", "TWO", "-t", "procedures", "--details", "--save", "case"})
                  .status,
              1);
    EXPECT_TRUE(ini().contains("DbName1=One\r\nDbName2=Two\r\n"));
    EXPECT_EQ(home.run({"run", "case"}).status, 1);
}

TEST_F(Processes, KeepHowATablesRowsAreCompared) {
    const CliResult first =
        data({"--table", "Orders", "--key", "Id", "--export", "d.csv", "--save", "Rows"});
    EXPECT_EQ(first.status, 1) << ::testing::PrintToString(first);
    const QString exported = fileText("d.csv");
    EXPECT_TRUE(ini().contains("CompMethod=1\r\n"));
    EXPECT_TRUE(ini().contains("ExportType=2\r\n"));
    EXPECT_TRUE(ini().contains("CSVWrapInQuot=True\r\n"));
    const QString tables = fileText("home/documents/zov_tables_comps.ini");
    EXPECT_TRUE(tables.contains("CompMethod=1\r\nCompKey=Id\r\nSecondaryCompKey=No Field\r\n"))
        << tables.toStdString();
    QFile::remove(home.path("d.csv"));
    CliResult again = home.run({"run", "Rows"});
    EXPECT_EQ(again.status, 1) << ::testing::PrintToString(again);
    EXPECT_EQ(again.out.toStdString(), first.out.toStdString());
    EXPECT_EQ(fileText("d.csv").toStdString(), exported.toStdString());
    EXPECT_EQ(home.run({"run", "Rows", "-o", "d.htm"}).status, 1);
    EXPECT_TRUE(fileText("d.htm").startsWith("<HTML>"));

    // Nothing differs any more: the file is from an earlier run, and that is said.
    home.loadText(Server, "Two", "UPDATE Orders SET V = N'x' WHERE Id = 2\nGO\n");
    again = home.run({"run", "Rows"});
    EXPECT_EQ(again.status, 0) << ::testing::PrintToString(again);
    EXPECT_EQ(again.out.toStdString(), "Data stored in both tables is identical.\n");
    EXPECT_TRUE(again.err.contains("was not written; that file is from an earlier run."))
        << again.err.toStdString();
    EXPECT_EQ(fileText("d.csv").toStdString(), exported.toStdString());

    home.loadText(Server, "Two", "UPDATE Orders SET V = N'z'\nGO\n");
    EXPECT_EQ(data({"--table", "Orders", "--key", "Id", "--ignore", "V", "--save", "Less"}).status,
              0);
    again = home.run({"run", "Less"});
    EXPECT_EQ(again.status, 0) << "the column is ignored in the replay, too";
    EXPECT_TRUE(again.out.contains("Columns ignored during comparison: Source - V Target - V"));
}

TEST_F(Processes, InTroubleNeverEndWithNought) {
    EXPECT_EQ(data({"--select", "Orders,Same", "--save", "Rows"}, "One").status, 0);
    EXPECT_EQ(home.run({"run", "Rows"}).status, 0) << "undamaged, it finds nothing";
    const QString whole = ini();
    const QString list = home.path("home/documents/zov_001_tgt.txt");
    const struct {
        const char* name;
        const char* from;
        const char* to;
        const char* told;
    } rows[] = {
        {"a server gone", "ServerName1=local:shop", "ServerName1=gone", "path gone not found."},
        {"a target server gone", "ServerName2=local:shop", "ServerName2=gone",
         "SQL Server database One not found."},
        {"a database gone", "DbName2=One", "DbName2=Gone", "SQL Server database Gone not found."},
        {"no kind", "CompType=0", "CompType=5", "comparison type not defined."},
        {"another sub type", "CompSubType=50", "CompSubType=51",
         "comparison sub type not defined."},
        {"another count", "SelCompCountTarget=2", "SelCompCountTarget=3", "Inconsistent data"},
        {"a flag that is none", "AutoClose=False", "AutoClose=maybe", "Type mismatch"},
        {"a report that is to be printed", "Print=False", "Print=True", "was not printed"},
        {"an export that can't be written", "ExportFilePath=", "ExportFilePath=/dev/null/x.txt",
         "Error in Sub CopyToFile"},
        {"a number that is none", "Id=1\r\n", "Id=none\r\n",
         "couldn't retrieve Id of the process."},
    };
    for (const auto& row : rows) {
        edit(row.from, row.to);
        const CliResult result = home.run({"run", "Rows"});
        EXPECT_EQ(result.status, 2) << row.name;
        EXPECT_TRUE(result.err.contains(row.told)) << row.name << ": " << result.err.toStdString();
        home.write("home/documents/zov_comps.ini", whole.toUtf8());
    }
    for (const char* names : {"", "Orders\r\n", "Orders\r\nGone\r\n"}) {
        home.write("home/documents/zov_001_src.txt", names);
        home.write("home/documents/zov_001_tgt.txt", names);
        EXPECT_EQ(home.run({"run", "Rows"}).status, 2) << names;
    }
    QFile::remove(list);
    EXPECT_EQ(home.run({"run", "Rows"}).status, 2);
    const struct {
        QStringList arguments;
        const char* told;
    } wrong[] = {
        {{"run", "9"}, "There is no saved process with the number 9."},
        {{"run", "rows"}, "There is no saved process \"rows\" (letter case counts)."},
        {{"run", "--name", "1"}, "There is no saved process \"1\""},
        {{"run"}, "NAME|ID, or --all"},
        {{"run", "1", "--all"}, "excludes"},
        {{"run", "1", "-o", "no/such/folder/x"}, "there is no folder"},
        {{"process", "show", "9"}, "number 9"},
        {{"process", "delete", "Rows", "Gone"}, "\"Gone\""},
        {{"process"}, "subcommand is required"},
    };
    for (const auto& row : wrong) {
        const CliResult result = home.run(row.arguments);
        EXPECT_EQ(result.status, 2) << row.told;
        EXPECT_TRUE(result.err.contains(row.told)) << result.err.toStdString();
    }
    EXPECT_EQ(home.run({"process", "list"}).out.toStdString(), "1\tRows\n")
        << "with one name wrong nothing is deleted";
    EXPECT_EQ(home.run({"process", "delete", "1"}).status, 0);
    EXPECT_EQ(ini().toStdString(), "");
    EXPECT_FALSE(QFile::exists(home.path("home/documents/zov_001_src.txt")));
    const CliResult none = home.run({"run", "--all"});
    EXPECT_EQ(none.status, 2);
    EXPECT_TRUE(none.err.contains("There are no saved processes to run."));
}

TEST_F(Processes, RunOneAfterTheOther) {
    EXPECT_EQ(data({"--table", "Same", "--method", "record", "--save", "7"}).status, 0);
    EXPECT_EQ(home.run({"run", "--all"}).status, 0);
    EXPECT_EQ(compare({"-t", "procedures", "--save", "Procedures"}).status, 1);
    CliResult all = home.run({"run", "--all"});
    EXPECT_EQ(all.status, 1) << ::testing::PrintToString(all);
    EXPECT_EQ(all.out.toStdString(), "1\t7\tidentical\n2\tProcedures\tdifferent\n");
    EXPECT_EQ(home.run({"run", "7"}).status, 2) << "digits are a number";
    EXPECT_EQ(home.run({"run", "--name", "7"}).status, 0);
    // A process that closes its program doesn't keep the next ones from their turn.
    edit("AutoClose=False", "AutoClose=True");
    edit("TableName1=Same", "TableName1=Gone");
    all = home.run({"run", "--all"});
    EXPECT_EQ(all.status, 2);
    EXPECT_EQ(all.out.toStdString(), "1\t7\ttrouble\n2\tProcedures\tdifferent\n");
    EXPECT_TRUE(all.err.contains("Cannot run saved process - table Gone not found."));
}

}  // namespace
}  // namespace zov::acceptance
