// What goes wrong in a user's hands: each time one line on standard error that says what and what
// to do, exit status 2, and nothing lost.
#include "cli_runner.h"

#include "data/providers.h"
#include "support/tds_endpoint/tds_endpoint.h"

#include <QRegularExpression>
#include <QStringEncoder>

namespace zov::acceptance {
namespace {

constexpr char SmallDatabase[] = R"(
CREATE TABLE Kept (Id int NOT NULL CONSTRAINT PK_Kept PRIMARY KEY, Name nvarchar(20) NULL)
INSERT INTO Kept VALUES (1, N'one')
GO
CREATE PROCEDURE Keeper AS SELECT 1
GO
)";

const QString Server = QStringLiteral("local:try");

class Trouble : public ::testing::Test {
 protected:
    void loadSmall(const QString& server = Server, const QString& database = "Small") {
        home_.loadText(server, database, SmallDatabase);
    }
    /// Status 2 and one message: a line that begins with the program's name, and what to do about
    /// it in a second one at most.
    static void expectOneMessage(const CliResult& result, const QStringList& words) {
        EXPECT_EQ(result.status, 2);
        const QStringList lines = result.errLines();
        EXPECT_TRUE(lines.value(0).startsWith("zovrand-cli: "));
        EXPECT_LE(lines.size(), 2);
        for (const QString& word : words)
            EXPECT_TRUE(result.err.contains(word, Qt::CaseInsensitive)) << word.toStdString();
    }
    /// The same, with nothing on standard output.
    static void expectTrouble(const CliResult& result, const QStringList& words) {
        SCOPED_TRACE(::testing::PrintToString(result));
        EXPECT_EQ(result.out, QString());
        expectOneMessage(result, words);
    }
    void expectSmallAsBefore(const QString& server = Server) {
        EXPECT_EQ(home_.list(server, "Small", "tables"), QStringList{"Kept"});
        EXPECT_EQ(home_.list(server, "Small", "procedures"), QStringList{"Keeper"});
        EXPECT_EQ(home_.value(server, "Small", "SELECT Name FROM Kept WHERE Id = 1"), "one");
    }

    CliHome home_;
};

TEST_F(Trouble, WrongUseIsToldInOneLine) {
    loadSmall();
    struct Row {
        QStringList arguments, words;
    };
    const Row rows[] = {
        {{}, {"--help"}},
        {{"frobnicate"}, {"frobnicate", "--help"}},
        {{"list", "-S", Server, "-d", "Small"}, {"-t"}},
        {{"list", "-S", Server, "-d", "Small", "-t", "sequences"},
         {"sequences", "tables", "relationships"}},
        {{"list", "-S", Server, "-d", "Small", "-t", "tables", "--colour"}, {"--colour"}},
        {{"text", "-S", Server, "-d", "Small", "-t", "table", "Gone"}, {"Gone", "list"}},
        {{"compare", "--source", Server, "--source-db", "Small"}, {"--target"}},
        {{"compare", "--source", Server, "--source-db", "Small", "--target", Server, "--target-db",
          "Small", "-t", "tables,tabels"},
         {"tabels"}},
        {{"compare", "--source", Server, "--source-db", "Small", "--target", Server, "--target-db",
          "Small", "--set", "IgnoreEverything=1"},
         {"IgnoreEverything"}},
        {{"compare", "--source", Server, "--source-db", "Small", "--target", Server, "--target-db",
          "Small", "--set", "IgnoreComments"},
         {"IgnoreComments"}},
        {{"load", "-S", Server, "-d", "Small", "nosuch.sql"}, {"nosuch.sql"}},
        {{"query", "-S", Server, "-d", "Small", "SELECT * FROM Gone"}, {"Gone"}},
        {{"query", "-S", Server, "-d", "Small", "SELEC 1"}, {"SELEC"}},
        {{"server", "remove", "nosuch"}, {"nosuch", "server list"}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.arguments.join(u' ').toStdString());
        expectTrouble(home_.run(row.arguments), row.words);
    }
    expectSmallAsBefore();
}

TEST_F(Trouble, UnknownServersAndDatabases) {
    loadSmall();
    struct Row {
        QString server, database;
        QStringList words;
    };
    const Row rows[] = {
        {"nosuch", "Small", {"nosuch", "--login", "server add"}},
        {"local:nosuch", "Small", {"nosuch", "load"}},
        {Server, "Nosuch", {"Nosuch"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE((row.server + u' ' + row.database).toStdString());
        expectTrouble(home_.run({"list", "-S", row.server, "-d", row.database, "-t", "tables"}),
                      row.words);
        expectTrouble(home_.run({"query", "-S", row.server, "-d", row.database, "SELECT 1"}),
                      row.words);
        for (const bool isSource : {true, false}) {
            const QString otherServer = Server, otherDatabase = "Small";
            expectTrouble(home_.run({"compare", "--source", isSource ? row.server : otherServer,
                                     "--source-db", isSource ? row.database : otherDatabase,
                                     "--target", isSource ? otherServer : row.server, "--target-db",
                                     isSource ? otherDatabase : row.database}),
                          row.words);
        }
    }
    // Asking made nothing.
    EXPECT_FALSE(QFile::exists(home_.home() + "/servers/nosuch"));
    EXPECT_EQ(home_.value(Server, "master",
                          "SELECT COUNT(*) AS n FROM sysdatabases WHERE name = 'Nosuch'"),
              "0");
}

TEST_F(Trouble, ServersOutOfReach) {
    home_.setEnvironment("ZOVRAND_PASSWORD", "secret");
    struct Row {
        QString server;
        QStringList words;
    };
    const Row rows[] = {{"127.0.0.1,1", {"127.0.0.1"}},
                        {"nosuchhost.invalid", {"nosuchhost.invalid"}},
                        {"127.0.0.1,99999", {"99999"}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.server.toStdString());
        const CliResult result =
            home_.run({"list", "-S", row.server, "--login", "sa", "-d", "master", "-t", "tables"});
        expectTrouble(result, row.words);
        EXPECT_FALSE(result.err.contains("secret"));
    }
    home_.setEnvironment("ZOVRAND_ODBC_DRIVER", "/nowhere/libnosuch.so");
    expectTrouble(
        home_.run({"list", "-S", "127.0.0.1,1", "--login", "sa", "-d", "master", "-t", "tables"}),
        {"libnosuch.so"});
}

TEST_F(Trouble, ADriverThatCrashesIsNamed) {
    home_.setEnvironment("ZOVRAND_PASSWORD", "secret");
    home_.setEnvironment("ZOVRAND_ODBC_DRIVER", ZOV_CRASHING_DRIVER);
    const QStringList server{"127.0.0.1,1", "--login", "sa"};
    for (const QStringList& command : {QStringList{"compare", "--source-db", "A", "--target",
                                                   "127.0.0.1,1", "--target-db", "A", "--source"} +
                                           server,
                                       QStringList{"query", "SELECT 1", "-d", "A", "-S"} + server})
        expectTrouble(home_.run(command), {"The ODBC driver " ZOV_CRASHING_DRIVER " has crashed",
                                           "ZOVRAND_ODBC_DRIVER"});
    // What a driver has damaged may come out when it has long returned.
    home_.setEnvironment("ZOV_CRASH_LATE", "1");
    const CliResult late = home_.run(QStringList{"query", "SELECT 1", "-d", "A", "-S"} + server);
    EXPECT_EQ(late.status, 2) << ::testing::PrintToString(late);
    EXPECT_TRUE(late.err.contains("has crashed behind the ODBC driver " ZOV_CRASHING_DRIVER))
        << ::testing::PrintToString(late);
}

TEST_F(Trouble, WithoutMemoryItSaysSo) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer itself needs more address space than the test leaves";
#endif
    QByteArray rows = "CREATE TABLE Big (Id int PRIMARY KEY, T nvarchar(max))\nGO\n";
    for (int i = 0; i < 3000; ++i)
        rows += "INSERT INTO Big VALUES (" + QByteArray::number(i) + ", N'" +
                QByteArray(4000, 'x') + "')\n";
    home_.loadText(Server, "Big", rows);
    const QStringList data{"data", "--source",    Server, "--source-db", "Big", "--target",
                           Server, "--target-db", "Big",  "--table",     "Big", "--sort",
                           "T"};
    const QStringList query{"query",
                            "-S",
                            Server,
                            "-d",
                            "Big",
                            "--set",
                            "CursorConnectionUseServer=0",
                            "SELECT * FROM Big ORDER BY T"};
    int failed = 0;
    // Sizes of the address space in which it can start, and less and less can be done.
    for (const int megabytes : {400, 300, 260, 230, 200, 180, 160}) {
        for (const QStringList& command : {data, query}) {
            SCOPED_TRACE(megabytes);
            const CliResult result =
                home_.runInShell(QStringLiteral("ulimit -c 0; ulimit -v %1; exec \"$0\" \"$@\"")
                                     .arg(megabytes * 1024),
                                 command);
            if (result.status == 127) continue;  // not even loaded
            EXPECT_TRUE(result.status == 0 || result.status == 2)
                << ::testing::PrintToString(CliResult{result.status, {}, result.err});
            if (result.status != 2) continue;
            ++failed;
            EXPECT_TRUE(result.err.startsWith("zovrand-cli: ")) << result.err.toStdString();
        }
    }
    EXPECT_GT(failed, 0) << "memory was enough each time: the sizes are to be made smaller";
}

TEST_F(Trouble, TheServerRefuses) {
    loadSmall("local:" + home_.path("wire"));
    TdsEndpointOptions options;
    options.provider = &providerFor(QStringLiteral("local:wire"));
    options.dataSource = "local:" + home_.path("wire");
    options.password = "right";
    TdsEndpoint endpoint;
    endpoint.start(options);
    const QString server = endpoint.dataSource();
    const auto list = [&](const QString& database) {
        return home_.run({"list", "-S", server, "--login", "sa", "-d", database, "-t", "tables"});
    };

    expectTrouble(list("Small"), {"ZOVRAND_PASSWORD"});  // not given at all
    home_.setEnvironment("ZOVRAND_PASSWORD", "wrong");
    const CliResult refused = list("Small");
    expectTrouble(refused, {"Login failed for user 'sa'"});
    EXPECT_FALSE(refused.err.contains("wrong"));

    home_.setEnvironment("ZOVRAND_PASSWORD", "right");
    EXPECT_EQ(list("Small").outLines(), QStringList{"Kept"});
    expectTrouble(list("Nosuch"), {"Nosuch"});

    // A result that breaks off in the middle is no result.
    TdsFaults faults;
    faults.onlyStatementsWith = "sysobjects";
    faults.dropAfterRows = 0;
    endpoint.setFaults(faults);
    expectTrouble(list("Small"), {server});
    const CliResult compared =
        home_.run({"compare", "--source", server, "--source-db", "Small", "--target", server,
                   "--target-db", "Small", "--login", "sa"});
    expectTrouble(compared, {});
}

TEST_F(Trouble, AScriptThatFailsIsNamedAndUndone) {
    loadSmall();
    const QString good = home_.write("good.sql", "CREATE TABLE FromGood (a int)\nGO\n");
    struct Row {
        QByteArray script;
        QStringList words;
    };
    const Row rows[] = {
        {"CREATE TABLE New1 (a int)\nGO\n\nDELETE FROM Kept\nGO\n-- a comment\nCREAT TABLE New2 (b "
         "int)\n",
         {"bad.sql:7", "CREAT TABLE New2"}},
        {"CREATE TABLE New1 (a int)\nGO\nCREATE TABLE New2 (\n    a int,\n    b "
         "nosuchtype\n)\nGO\n",
         {"bad.sql:", "nosuchtype"}},
        {"UPDATE Kept SET Name = N'other'\r\nGO\r\nINSERT INTO Kept VALUES (1, N'again')\r\n",
         {"bad.sql:3", "PK_Kept"}},
        {"DROP PROCEDURE Keeper\nGO\nINSERT INTO Gone VALUES (1)\nGO\n", {"bad.sql:3", "Gone"}},
        {"INSERT INTO Kept VALUES (2, N'this text is longer than twenty characters')\n",
         {"bad.sql:1"}},
        {"DROP TABLE Kept\nGO\nCREATE TABLE Half (a int", {"bad.sql:3", "CREATE TABLE Half"}},
        {"PRINT 'it never ends\nGO\n", {"bad.sql:1"}},
        {"/* it never ends\nGO\nDROP TABLE Kept\n", {"bad.sql:1"}},
        {QByteArrayLiteral("DROP TABLE Kept\nGO\n\0\x01\x02 binary \xFF\xFE"), {"bad.sql"}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.script.toStdString());
        const QString bad = home_.write("bad.sql", row.script);
        const CliResult result = home_.run({"load", "-S", Server, "-d", "Small", good, bad});
        expectTrouble(result, row.words);
        expectSmallAsBefore();
    }

    // A database that the load would have made isn't there either.
    home_.write("bad.sql", rows[0].script);
    EXPECT_EQ(home_.run({"load", "-S", Server, "-d", "Fresh", home_.path("bad.sql")}).status, 2);
    expectTrouble(home_.run({"list", "-S", Server, "-d", "Fresh", "-t", "tables"}), {"Fresh"});
}

TEST_F(Trouble, KeepGoingTellsEachStatementLeftOut) {
    loadSmall();
    const QString script =
        home_.write("mixed.sql",
                    "CREATE TABLE A1 (a int)\nGO\nCREAT TABLE A2 (a int)\nGO\n"
                    "CREATE TABLE A3 (a int)\nGO\nINSERT INTO Gone VALUES (1)\nGO\n");
    const CliResult result =
        home_.run({"load", "-S", Server, "-d", "Small", "--keep-going", script});
    EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
    EXPECT_TRUE(result.err.contains("mixed.sql:3")) << ::testing::PrintToString(result);
    EXPECT_TRUE(result.err.contains("mixed.sql:7")) << ::testing::PrintToString(result);
    EXPECT_EQ(home_.list(Server, "Small", "tables"), (QStringList{"A1", "A3", "Kept"}));
}

TEST_F(Trouble, KeepGoingTellsWhatAFailedUseCost) {
    loadSmall();
    const QString script =
        home_.write("astray.sql",
                    "USE Nowhere\nCREATE TABLE A1 (a int)\nGO\nCREATE TABLE A2 (a int)\n"
                    "GO\nUSE Small CREATE TABLE A3 (a int)\n");
    const CliResult result =
        home_.run({"load", "-S", Server, "-d", "Small", "--keep-going", script});
    EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
    for (const char* words : {"astray.sql:1: Database 'Nowhere' does not exist",
                              "1 of the scripts' statements could not be run",
                              "1 of the scripts' batches were left out behind a USE that failed"})
        EXPECT_TRUE(result.err.contains(words)) << ::testing::PrintToString(result);
    EXPECT_EQ(home_.list(Server, "Small", "tables"), (QStringList{"A3", "Kept"}));
}

TEST_F(Trouble, ScriptsOfADatabaseOfTheirOwnPassForNoComparison) {
    const QString script =
        home_.write("own.sql",
                    "IF DB_ID('Own') IS NOT NULL DROP DATABASE Own\nGO\nCREATE DATABASE Own\nGO\n"
                    "USE Own\nGO\nCREATE TABLE T (a int)\nGO\n");
    for (const char* database : {"v1", "v2"}) {
        const CliResult result = home_.run({"load", "-S", Server, "-d", database, script});
        EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
        EXPECT_TRUE(result.err.contains(
            QStringLiteral("The scripts' statements went to Own; nothing was loaded into %1.")
                .arg(database)))
            << ::testing::PrintToString(result);
    }
    const CliResult compared = home_.run({"compare", "--source", Server, "--source-db", "v1",
                                          "--target", Server, "--target-db", "v2"});
    EXPECT_EQ(compared.status, 0) << ::testing::PrintToString(compared);
    EXPECT_TRUE(
        compared.err.contains("There is nothing to compare: neither v1 nor v2 holds an object"))
        << ::testing::PrintToString(compared);
    // Without -d the script's own database is meant; a script that names none needs one.
    const CliResult own = home_.run({"load", "-S", Server, script});
    EXPECT_EQ(own.status, 0) << ::testing::PrintToString(own);
    EXPECT_FALSE(own.err.contains("went to")) << ::testing::PrintToString(own);
    expectTrouble(
        home_.run({"load", "-S", Server, home_.write("bare.sql", "CREATE TABLE T (a int)\n")}),
        {"-d DB"});
    const CliResult alike = home_.run({"compare", "--source", Server, "--source-db", "Own",
                                       "--target", Server, "--target-db", "Own"});
    EXPECT_FALSE(alike.err.contains("nothing to compare")) << ::testing::PrintToString(alike);
}

TEST_F(Trouble, ScriptsOfEveryEncodingReadRight) {
    const QString script = QStringLiteral(
        "CREATE TABLE [Größe] (t nvarchar(40))\r\nGO\r\n"
        "INSERT INTO [Größe] VALUES (N'Ærø – “naïve” €')\r\nGO\r\n");
    const auto encoded = [&](QStringConverter::Encoding encoding) {
        QStringEncoder encoder(encoding, QStringConverter::Flag::WriteBom);
        return QByteArray(encoder(script));
    };
    // Windows-1252, as old tools on Windows saved it.
    QByteArray ansi;
    for (const QChar c : script) {
        switch (c.unicode()) {
            case 0x2013:
                ansi += '\x96';
                break;
            case 0x201C:
                ansi += '\x93';
                break;
            case 0x201D:
                ansi += '\x94';
                break;
            case 0x20AC:
                ansi += '\x80';
                break;
            default:
                ansi += char(c.unicode());
        }
    }
    struct Row {
        const char* name;
        QByteArray bytes;
    };
    const Row rows[] = {{"utf8", script.toUtf8()},
                        {"utf8mark", encoded(QStringConverter::Utf8)},
                        {"utf16le", encoded(QStringConverter::Utf16LE)},
                        {"utf16be", encoded(QStringConverter::Utf16BE)},
                        {"ansi", ansi}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        home_.loadText(Server, row.name, row.bytes);
        EXPECT_EQ(home_.list(Server, row.name, "tables"), QStringList{QStringLiteral("Größe")});
        EXPECT_EQ(home_.value(Server, row.name, QStringLiteral("SELECT t FROM [Größe]")),
                  QStringLiteral("Ærø – “naïve” €"));
    }
}

TEST_F(Trouble, NamesWithEveryKindOfCharacter) {
    const QStringList names{"a]b",  "a[b",    "a\"b", "a'b", "a.b",    "a b",
                            " a",   "a%b",    "a_b",  "a/b", "a\\b",   "a;b",
                            "a--b", "a/*b*/", "1a",   "#a",  "select", QStringLiteral("ä☕𝄞")};
    for (const QString& name : names) {
        if (name == "#a") continue;  // a temporary table
        SCOPED_TRACE(name.toStdString());
        const QString quoted = u'[' + QString(name).replace("]", "]]") + u']';
        const QString database = "D " + name;
        home_.loadText(
            Server, database,
            QStringLiteral("CREATE TABLE %1 (%1 int NOT NULL)\nGO\nINSERT INTO %1 VALUES (7)\nGO\n"
                           "CREATE PROCEDURE dbo.[p] AS SELECT %1 FROM %1\nGO\n")
                .arg(quoted)
                .toUtf8());
        EXPECT_EQ(home_.list(Server, database, "tables"), QStringList{name});
        EXPECT_EQ(home_.value(Server, database, "SELECT * FROM " + quoted), "7");
        EXPECT_TRUE(home_.text(Server, database, "procedure", "p")
                        .startsWith("CREATE PROCEDURE dbo.[p] AS"));
        EXPECT_EQ(home_.text(Server, database, "table", name), u'[' + name + "] [int] NOT NULL");
        const CliResult compared =
            home_.run({"compare", "--source", Server, "--source-db", database, "--target", Server,
                       "--target-db", database});
        EXPECT_EQ(compared.status, 0) << ::testing::PrintToString(compared);
        EXPECT_EQ(compared.err, QString());
    }
}

TEST_F(Trouble, ADamagedSettingsFileKeepsItsGoodLines) {
    const QByteArray content =
        "Windows Registry Editor Version 5.00\r\n"
        "\r\n"
        "[HKEY_CURRENT_USER\\Software\\ZOV\\Comparisons]\r\n"
        "\"IgnoreComments\"=dword:00000000\r\n"
        "\"IgnoreColSeq\"=dword:zzz\r\n"
        "this line is nothing\r\n"
        "\"CaseSensitive\r\n"
        "[broken\r\n"
        "[HKEY_CURRENT_USER\\Software\\ZOV\\Servers]\r\n"
        "\"Count\"=dword:00000001\r\n"
        "[HKEY_CURRENT_USER\\Software\\ZOV\\Servers\\Server1]\r\n"
        "\"Name\"=\"local:try\"\r\n"
        "\"MRUDb\"=\"Small\"\r\n";
    const QString file = home_.write("home/registry.reg", content);
    const CliResult listed = home_.run({"server", "list"});
    EXPECT_EQ(listed.status, 0) << ::testing::PrintToString(listed);
    EXPECT_TRUE(listed.out.contains("local:try")) << ::testing::PrintToString(listed);
    {
        QFile after(file);
        ASSERT_TRUE(after.open(QIODevice::ReadOnly));
        EXPECT_EQ(after.readAll(), content) << "a list is no reason to write";
    }
    // The good value counts: comments make a difference for this user.
    home_.loadText(Server, "A", "CREATE PROCEDURE p AS SELECT 1\n");
    home_.loadText(Server, "B", "CREATE PROCEDURE p AS SELECT 1 -- one\n");
    const QStringList compare{"compare", "--source",    Server, "--source-db", "A", "--target",
                              Server,    "--target-db", "B"};
    EXPECT_EQ(home_.run(compare).status, 1);
    EXPECT_EQ(home_.run(compare + QStringList{"--set", "IgnoreComments=1"}).status, 0);

    EXPECT_EQ(home_.run({"server", "add", "local:try2", "--database", "A"}).status,
              2);  // not there
    home_.loadText("local:try2", "A", SmallDatabase);
    EXPECT_EQ(home_.run({"server", "add", "local:try2", "--database", "A"}).status, 0);
    const CliResult both = home_.run({"server", "list"});
    EXPECT_TRUE(both.out.contains("local:try\t") || both.out.contains("local:try\n") ||
                both.out.contains("local:try "))
        << ::testing::PrintToString(both);
    EXPECT_TRUE(both.out.contains("local:try2")) << ::testing::PrintToString(both);
    EXPECT_EQ(home_.run(compare).status, 1);
}

TEST_F(Trouble, AHomeThatCantBeWritten) {
    const QString elsewhere = "local:" + home_.path("elsewhere");
    loadSmall(elsewhere);
    home_.write("plainfile", "x");
    home_.setEnvironment("ZOVRAND_HOME", home_.path("plainfile/home"));
    // Reading needs no home.
    EXPECT_EQ(home_.list(elsewhere, "Small", "tables"), QStringList{"Kept"});
    EXPECT_EQ(home_
                  .run({"compare", "--source", elsewhere, "--source-db", "Small", "--target",
                        elsewhere, "--target-db", "Small"})
                  .status,
              0);
    expectTrouble(home_.run({"server", "add", elsewhere, "--database", "Small"}), {"plainfile"});
    expectTrouble(home_.run({"load", "-S", Server, "-d", "Small", home_.path("script.sql")}),
                  {"plainfile"});
}

TEST_F(Trouble, ADiskThatFills) {
    loadSmall();
    EXPECT_EQ(home_.run({"server", "add", Server, "--database", "Small"}).status, 0);
    const CliResult listBefore = home_.run({"server", "list"});

    // Writes past the limit fail as on a full disk. Signal 25 would end the program otherwise.
    const QString limited = "trap '' 25; ulimit -f %1; exec \"$0\" \"$@\"";
    QByteArray big = "CREATE TABLE Big (a int, t nvarchar(200))\nGO\n";
    for (int i = 0; i < 20000; ++i)
        big += "INSERT INTO Big VALUES (" + QByteArray::number(i) + ", N'" + QByteArray(150, 'x') +
               "')\n";
    const QString script = home_.write("big.sql", big);
    const CliResult load =
        home_.runInShell(limited.arg(1000), {"load", "-S", Server, "-d", "Small", script});
    expectTrouble(load, {"big.sql"});
    expectSmallAsBefore();

    expectTrouble(home_.runInShell(limited.arg(0), {"server", "add", "local:other", "--no-check"}),
                  {"registry.reg"});
    EXPECT_EQ(home_.run({"server", "list"}).out, listBefore.out);

    // The embedded server itself needs some 32 KB beside a database; the report is longer.
    QByteArray many;
    for (int i = 0; i < 500; ++i)
        many += "CREATE PROCEDURE p" + QByteArray(110, 'x') + QByteArray::number(i) +
                " AS SELECT 1\nGO\n";
    home_.loadText(Server, "Many", many);
    const QString old = home_.write("old.txt", "an older report\r\n");
    const CliResult report =
        home_.runInShell(limited.arg(80), {"compare", "--source", Server, "--source-db", "Many",
                                           "--target", Server, "--target-db", "Small", "-o", old});
    expectTrouble(report, {"old.txt"});
    QFile kept(old);
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), "an older report\r\n");

    const QStringList compare{"compare",  "--source", Server,        "--source-db", "Small",
                              "--target", Server,     "--target-db", "Small"};
    const CliResult unread = home_.runInShell("exec \"$0\" \"$@\" > /dev/full", compare);
    expectTrouble(unread, {});
}

TEST_F(Trouble, AnOldServerShowsNoDefaults) {
    // A server folder may be made as version 8, to see what such servers give.
    const QString old = "local:old?version=8.00.2039";
    home_.loadText(old, "Small",
                   "CREATE TABLE T (a int NOT NULL CONSTRAINT DF_T_a DEFAULT (1))\nGO\n");
    EXPECT_EQ(home_.text("local:old", "Small", "table", "T"), "[a] [int] NOT NULL");
}

}  // namespace
}  // namespace zov::acceptance
