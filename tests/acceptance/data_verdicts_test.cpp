// zovrand-cli data never calls identical what it could not look at: names that stand for several
// tables, offsets, servers that refuse, files that can't be read; and its statuses.
#include "wired_server.h"

namespace zov::acceptance {
namespace {

class DataVerdicts : public ::testing::Test {
 protected:
    static void SetUpTestSuite() {
        home_ = new CliHome;
        folder_ = "local:" + home_->path("servers");
        const QByteArray schemas = "CREATE SCHEMA hr\nGO\nCREATE SCHEMA p\nGO\n";
        const auto table = [](const QByteArray& name, const QByteArray& rows) {
            QByteArray script = "CREATE TABLE " + name + " (Id int, V nvarchar(20))\nGO\n";
            for (const QByteArray& row : rows.split('|'))
                if (!row.isEmpty()) script += "INSERT INTO " + name + " VALUES (" + row + ")\n";
            return script + "GO\n";
        };
        home_->loadText(folder_, "One",
                        schemas + table("hr.T", "1, 'a'") + table("dbo.T", "1, 'b'") +
                            table("dbo.Plain", "1, 'a'|2, 'b'|3, '=cmd'") +
                            table("dbo.[p.q]", "1, 'x'") + table("p.q", "1, 'y'") +
                            table("dbo.[it's]", "1, 'a'") + table("dbo.[x]] y]", "1, 'a'") +
                            table("dbo.Alone", "1, 'a'") + table("dbo.Same", "1, 'a'") +
                            table("dbo.victim", "1, 'a'") +
                            table("dbo.[victim]]; DELETE FROM [victim]", "1, 'a'"));
        home_->loadText(folder_, "Two",
                        schemas + table("hr.T", "1, 'a'") + table("dbo.T", "1, 'c'") +
                            table("dbo.Plain", "0, 'extra'|1, 'a'|2, 'b'|3, '=cmd'") +
                            table("dbo.[p.q]", "1, 'x'") + table("p.q", "1, 'z'") +
                            table("dbo.[it's]", "1, 'a'") + table("dbo.[x]] y]", "1, 'a'") +
                            table("hr.Alone", "1, 'a'") + table("dbo.Same", "1, 'a'") +
                            table("dbo.victim", "1, 'a'") +
                            table("dbo.[victim]]; DELETE FROM [victim]", "1, 'a'"));
        endpoint_ = new TdsEndpoint;
        serve(*endpoint_, folder_, *home_);
    }
    static void TearDownTestSuite() {
        delete endpoint_;
        delete home_;
    }
    void TearDown() override {
        endpoint_->setFaults({});
        for (const char* file : {"zov_tables_comps.ini", "zov_ignored_cols_data.ini"})
            QFile::remove(home_->home() + "/documents/" + QLatin1String(file));
    }

    static CliResult data(const QStringList& options) { return on(folder_, options); }
    static CliResult wired(const QStringList& options) {
        return on(endpoint_->dataSource(), QStringList{"--login", "sa"} + options);
    }
    static CliResult on(const QString& server, const QStringList& options) {
        return home_->run(QStringList{"data", "--source", server, "--source-db", "One", "--target",
                                      server, "--target-db", "Two"} +
                          options);
    }
    /// One statement that holds the text fails.
    static void failOne(const QString& text, qint32 error) {
        TdsFaults faults;
        faults.onlyStatementsWith = text;
        faults.failStatement = 1;
        faults.errorNumber = error;
        endpoint_->setFaults(faults);
    }
    static std::string fileText(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
    }
    /// "server.database.table" of both sides with these lines below.
    static void store(const char* file, const char* table, const QByteArray& lines) {
        QByteArray text;
        for (const char* database : {"One", "Two"})
            text += "[" + folder_.toUtf8() + "." + database + "." + table + "]\n" + lines;
        home_->write(QStringLiteral("home/documents/") + QLatin1String(file), text);
    }

    static CliHome* home_;
    static TdsEndpoint* endpoint_;
    static QString folder_;
};
CliHome* DataVerdicts::home_ = nullptr;
TdsEndpoint* DataVerdicts::endpoint_ = nullptr;
QString DataVerdicts::folder_;

TEST_F(DataVerdicts, ANameMeansOneTableOrNone) {
    const struct {
        QStringList options;
        int status;
        const char* said;
    } rows[] = {
        {{"--table", "T"}, 2, "Several tables have this name"},
        {{"--table", "hr.T"}, 0, ""},
        // In other letters too, as long as it means one.
        {{"--table", "HR.t"}, 0, ""},
        {{"--table", "[DBO].[t]"}, 1, ""},
        {{"--table", "t"}, 2, "Several tables have this name"},
        {{"--table", "dbo.T"}, 1, ""},
        {{"--table", "[dbo].[T]"}, 1, ""},
        {{"--table", "hr.Plain"}, 2, "has no table \"hr.Plain\""},
        {{"--table", "nowhere.T"}, 2, "has no table \"nowhere.T\""},
        // A name with a dot, and another schema's table that is shown so.
        {{"--table", "p.q"}, 2, "Several tables have this name"},
        {{"--table", "[p.q]"}, 0, ""},
        {{"--table", "[p].[q]"}, 1, ""},
        {{"--table", "it's"}, 0, ""},
        {{"--table", "x] y"}, 0, ""},
        {{"--table", "[x]] y]"}, 0, ""},
        {{"--table", "[dbo].[x]] y]"}, 0, ""},
        // One name in two schemas is compared when it is asked for, and told.
        {{"--table", "Alone"},
         0,
         "dbo.Alone of the source is compared with hr.Alone of the target."},
        {{"--table", "dbo.Alone"}, 2, "The target database Two has no table"},
        {{"--table", "it's", "--key", "Id", "--sort", "Id", "--ignore", "V"}, 0, ""},
    };
    for (const auto& row : rows)
        for (const bool wire : {false, true}) {
            const CliResult result = wire ? wired(row.options) : data(row.options);
            EXPECT_EQ(result.status, row.status) << row.options.join(u' ').toStdString() << '\n'
                                                 << ::testing::PrintToString(result);
            EXPECT_TRUE(result.err.contains(QLatin1String(row.said)))
                << row.options.join(u' ').toStdString() << '\n'
                << ::testing::PrintToString(result);
        }
}

TEST_F(DataVerdicts, NamesNeverRunAsStatements) {
    for (const QStringList& options :
         {QStringList{"--table", "victim]; DELETE FROM [victim"},
          QStringList{"--table", "victim]; DELETE FROM [victim", "--key", "Id"}, QStringList{}}) {
        data(options);
        const CliResult result = wired(options);
        EXPECT_EQ(result.status, options.isEmpty() ? 1 : 0) << ::testing::PrintToString(result);
        for (const char* database : {"One", "Two"})
            EXPECT_EQ(home_->value(folder_, database, "SELECT COUNT(*) FROM victim"), "1");
    }
}

// With an export and without, the verdict is the same; and what was left out is said.
TEST_F(DataVerdicts, OffsetsGiveOneVerdict) {
    const QStringList plain{"--table", "Plain", "--method",        "record",
                            "--sort",  "Id",    "--target-offset", "2"};
    const CliResult without = data(plain),
                    with = data(plain + QStringList{"--export", home_->path("o.htm")});
    EXPECT_EQ(without.status, 0) << ::testing::PrintToString(without);
    EXPECT_EQ(with.status, 0) << ::testing::PrintToString(with);
    EXPECT_EQ(without.out,
              "Data stored in both tables is identical.\nCompared from record 2 in Target on.\n");
    EXPECT_EQ(with.out, without.out);

    // By key an offset has no meaning: all records count, in every sort of run.
    store("zov_tables_comps.ini", "Plain", "CompMethod=1\nCompKey=Id\nOffsetStartRec=2\n");
    EXPECT_EQ(data({"--table", "Plain", "--method", "record"}).status, 1);
    for (const QStringList& options :
         {QStringList{"--table", "Plain"}, QStringList{"--table", "Plain", "--key", "Id"},
          QStringList{"--select", "Plain"}}) {
        const CliResult stored = data(options);
        EXPECT_EQ(stored.status, 1) << ::testing::PrintToString(stored);
        EXPECT_TRUE(stored.out.contains(options.front() == "--table"
                                            ? "Number of different records: 1"
                                            : "Plain - 1 different record(s)"))
            << stored.out.toStdString();
    }
    store("zov_tables_comps.ini", "Plain", "CompMethod=1\nCompKey=Id\n");
    EXPECT_EQ(data({"--table", "Plain", "--offset", "2"}).status, 2);
    EXPECT_EQ(data({"--table", "Plain", "--offset", "0"}).status, 1);
}

TEST_F(DataVerdicts, IdenticalReportsComeWithWhatTheyLeaveOut) {
    home_->write("home/documents/zov_tables_comps.ini",
                 "[" + folder_.toUtf8() +
                     ".Two.Plain]\nCompMethod=0\nPrimarySortKey=Id\nOffsetStartRec=2\n");
    const CliResult cut = data({"--select", "Plain"});
    EXPECT_EQ(cut.status, 0) << ::testing::PrintToString(cut);
    EXPECT_TRUE(cut.out.contains("Data in all selected tables in both databases is identical."));
    EXPECT_TRUE(cut.err.contains("Table Plain: compared from record 2 in Target on."))
        << cut.err.toStdString();

    home_->loadText(folder_, "Bare", "SELECT 1\nGO\n");
    const CliResult bare = home_->run({"data", "--source", folder_, "--source-db", "Bare",
                                       "--target", folder_, "--target-db", "Bare"});
    EXPECT_EQ(bare.status, 0);
    EXPECT_TRUE(
        bare.err.contains("There is nothing to compare: neither Bare nor Bare holds a table."))
        << bare.err.toStdString();
}

// hr.T, shown with its schema beside dbo.T, and dbo.[hr.T] are shown alike; settings are stored for
// either.
TEST_F(DataVerdicts, StoredSettingsAreOneTablesOwn) {
    for (const auto& [database, value] : {std::pair("AlikeOne", "1"), std::pair("AlikeTwo", "2")}) {
        QByteArray script = "CREATE SCHEMA hr\nGO\nCREATE TABLE dbo.T (Id int, V int)\nGO\n";
        for (const char* table : {"hr.T", "dbo.[hr.T]"})
            script += QByteArray("CREATE TABLE ") + table + " (Id int, V int)\nGO\nINSERT INTO " +
                      table + " VALUES (1, " + value + ")\nGO\n";
        home_->loadText(folder_, database, script);
    }
    const auto status = [](const char* table) {
        return home_
            ->run({"data", "--source", folder_, "--source-db", "AlikeOne", "--target", folder_,
                   "--target-db", "AlikeTwo", "--table", table})
            .status;
    };
    for (const char* marked : {"hr.T", "[hr.T]"}) {
        QByteArray marks;
        for (const char* database : {"AlikeOne", "AlikeTwo"})
            marks += "[" + folder_.toUtf8() + "." + database + "." + marked + "]\n0=V\n";
        home_->write("home/documents/zov_ignored_cols_data.ini", marks);
        EXPECT_EQ(status("[hr].[T]"), marked[0] == 'h' ? 0 : 1) << marked;
        EXPECT_EQ(status("[dbo].[hr.T]"), marked[0] == 'h' ? 1 : 0) << marked;
    }
}

TEST_F(DataVerdicts, CountsThatFailAreNoEmptyTables) {
    const QString old = home_->write("old.csv", "older");
    for (const qint32 error : {1205, 229, 8115}) {
        for (const char* side : {"One", "Two"}) {
            failOne(QStringLiteral("RecsCount FROM [dbo].[Same]"), error);
            const CliResult result = wired({"--table", "Same", "--key", "Id", "--export", old});
            EXPECT_EQ(result.status, 2) << side << error << '\n'
                                        << ::testing::PrintToString(result);
            EXPECT_EQ(result.out, QString());
            EXPECT_TRUE(result.err.contains("Error while attempting to count records in table: "));
            EXPECT_EQ(fileText(old), "older");
        }
    }
}

// What a server refuses is named in the report of all tables, and counts unless it may be so.
TEST_F(DataVerdicts, UnreadableTablesAreNamedAndMayBeAllowed) {
    const QStringList chosen{"--select", "Same,it's"};
    EXPECT_EQ(wired(chosen).status, 0);
    const QString refused = QStringLiteral("RecsCount FROM [dbo].[Same]");
    failOne(refused, 229);
    const CliResult result = wired(chosen);
    EXPECT_EQ(result.status, 2) << ::testing::PrintToString(result);
    EXPECT_TRUE(result.out.contains("List of tables which can't be read:\n\tSame\n\t(1 table)"))
        << result.out.toStdString();
    EXPECT_TRUE(result.out.contains("One table [it's] has identical data in both databases."));
    failOne(refused, 229);
    const CliResult allowed = wired(chosen + QStringList{"--allow-unreadable"});
    EXPECT_EQ(allowed.status, 0) << ::testing::PrintToString(allowed);
    EXPECT_EQ(allowed.out, result.out);
    failOne(refused, 229);
    EXPECT_EQ(wired({"--select", "Same,dbo.T", "--allow-unreadable"}).status, 1);
    failOne(refused, 229);
    EXPECT_EQ(wired({"--select", "Same,dbo.T"}).status, 2) << "trouble goes before differences";
    // A lost connection is no table's own trouble.
    TdsFaults drop;
    drop.onlyStatementsWith = refused;
    drop.dropAfterRows = 0;
    endpoint_->setFaults(drop);
    EXPECT_EQ(wired(chosen + QStringList{"--allow-unreadable"}).status, 2);
}

TEST_F(DataVerdicts, SettingsThatCannotBeReadAreNoSettings) {
    for (const char* file : {"zov_ignored_cols_data.ini", "zov_tables_comps.ini"}) {
        const QString path = home_->home() + "/documents/" + QLatin1String(file);
        ASSERT_TRUE(QDir().mkpath(path));
        for (const QStringList& options :
             {QStringList{"--table", "Same"}, QStringList{"--select", "Same"}}) {
            const CliResult result = data(options);
            EXPECT_EQ(result.status, 2) << file << '\n' << ::testing::PrintToString(result);
            EXPECT_TRUE(result.err.contains(QLatin1String(file)))
                << ::testing::PrintToString(result);
            EXPECT_FALSE(result.out.contains("identical.")) << result.out.toStdString();
        }
        ASSERT_TRUE(QDir().rmdir(path));
    }
    // The list of this run's ignored columns lies in a temporary folder.
    const CliResult result =
        home_->runInShell(QStringLiteral("TMPDIR=/proc exec \"$0\" \"$@\""),
                          {"data", "--source", folder_, "--source-db", "One", "--target", folder_,
                           "--target-db", "Two", "--table", "Same", "--ignore", "V"});
    EXPECT_EQ(result.status, 2) << ::testing::PrintToString(result);
    EXPECT_TRUE(result.err.contains("--ignore: the list of ignored columns can't be made."));
}

TEST_F(DataVerdicts, NotesSayWhatIsLeftOut) {
    const QString file = home_->path("cut.csv");
    const CliResult cut =
        data({"--table", "Plain", "--method", "record", "--limit", "2", "--export", file});
    EXPECT_EQ(cut.status, 1);
    EXPECT_TRUE(cut.err.contains("Only first 2 different records are shown"))
        << cut.err.toStdString();
    // The grid may lose rows below that number, too.
    const CliResult pairs =
        data({"--table", "dbo.T", "--method", "record", "--limit", "1", "--export", file});
    EXPECT_TRUE(pairs.err.contains("Not all different records are shown"))
        << pairs.err.toStdString();
    EXPECT_TRUE(data({"--help"}).out.contains("--limit"));

    home_->write("home/documents/zov_ignored_cols_data.ini",
                 "[" + folder_.toUtf8() + ".Two.Same]\n0=V\n");
    const CliResult target = data({"--table", "Same"});
    EXPECT_EQ(target.status, 0);
    EXPECT_FALSE(target.err.contains("lacks")) << target.err.toStdString();
    EXPECT_TRUE(
        target.err.contains("Ignored in the target and compared all the same, since the source's "
                            "columns decide: V."))
        << target.err.toStdString();
    home_->write("home/documents/zov_ignored_cols_data.ini",
                 "[" + folder_.toUtf8() + ".One.Same]\n0=V\n");
    const CliResult source = data({"--table", "Same"});
    EXPECT_EQ(source.status, 0);
    EXPECT_EQ(source.err, QString()) << "both tables have the ignored column";
}

TEST_F(DataVerdicts, CsvMayBeSafeForSpreadsheets) {
    const QString file = home_->path("safe.csv");
    const QStringList options{"--table", "Plain", "--method", "record", "--export", file};
    EXPECT_EQ(data(options).status, 1);
    EXPECT_NE(fileText(file).find(",\"=cmd\""), std::string::npos) << fileText(file);
    EXPECT_EQ(data(options + QStringList{"--csv-safe"}).status, 1);
    EXPECT_NE(fileText(file).find(",\"'=cmd\""), std::string::npos) << fileText(file);
    const CliResult html =
        data({"--table", "Plain", "--export", home_->path("x.htm"), "--csv-safe"});
    EXPECT_EQ(html.status, 2);
    EXPECT_TRUE(html.err.contains("--csv-safe belongs to an --export of .csv."));
}

// The program as a whole, statement after statement of it failing.
TEST_F(DataVerdicts, AnyStatementThatFailsIsTold) {
    const QString old = home_->path("kept.csv");
    const QStringList commands[] = {{"--table", "dbo.T", "--export", old},
                                    {"--table", "Same", "--key", "Id"},
                                    {"--select", "Same,it's"}};
    for (const QStringList& command : commands) {
        endpoint_->setFaults({});
        const CliResult undisturbed = wired(command);
        EXPECT_NE(undisturbed.status, 2) << ::testing::PrintToString(undisturbed);
        // Each one fails in the tests of the comparison itself.
        for (int statement = 2; statement < 200; statement += 4) {
            home_->write("kept.csv", "older");
            const int before = endpoint_->counters().failedStatements;
            TdsFaults faults;
            faults.failStatement = statement;
            endpoint_->setFaults(faults);
            const CliResult result = wired(command);
            if (result.status == 2) {
                EXPECT_FALSE(result.err.isEmpty()) << statement;
                EXPECT_EQ(fileText(old), "older") << statement;
            } else {
                EXPECT_EQ(result.status, undisturbed.status) << statement << '\n'
                                                             << ::testing::PrintToString(result);
                EXPECT_EQ(result.out, undisturbed.out) << statement;
            }
            if (endpoint_->counters().failedStatements == before) {
                EXPECT_GT(statement, 5);
                break;
            }
        }
    }
}

}  // namespace
}  // namespace zov::acceptance
