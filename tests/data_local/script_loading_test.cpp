// Loading scripts as a whole: what goes on behind a failure, where statements went, and scripts
// that make the database that they are loaded into.
#include "data_local/scripted_server.h"

#include "core/server_info.h"
#include "data/script_loading.h"
#include "support/served_database.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <QFile>

namespace zov::test {
namespace {

class ScriptLoading : public ::testing::Test {
 protected:
    LoadOutcome load(const QString& database, const QByteArray& script, LoadOptions options = {}) {
        const QString path = server_.folder() + QStringLiteral("/script.sql");
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(script);
        file.close();
        ServerInfo info;
        info.Name = server_.spec({}).dataSource;
        server_.disconnect();
        LoadOutcome outcome = LoadScripts(info, database, {path}, options);
        server_.connect(QStringLiteral("master"));
        return outcome;
    }
    LoadOutcome keepGoing(const QString& database, const QByteArray& script) {
        LoadOptions options;
        options.keepGoing = true;
        return load(database, script, options);
    }
    /// "line message" of each problem.
    static std::string problems(const LoadOutcome& outcome) {
        QStringList lines;
        for (const LoadProblem& problem : outcome.problems)
            lines.push_back(QStringLiteral("%1 %2 [%3]")
                                .arg(problem.line)
                                .arg(problem.message, problem.firstWords));
        return lines.join(u'\n').toStdString();
    }
    static std::string names(QStringList list) {
        list.sort();
        return list.join(u' ').toStdString();
    }
    std::string tables(const QString& database) {
        return server_
            .one(QStringLiteral("select name from %1..sysobjects where xtype = 'U' order by name")
                     .arg(database))
            .replace(u'\n', u' ')
            .toStdString();
    }

    ScriptedServer server_;
};

TEST_F(ScriptLoading, KeepGoingGoesOnBehindTheStatement) {
    const LoadOutcome outcome = keepGoing(
        QStringLiteral("shop"),
        "create table a (x int)\ncreate table a (y int)\ncreate table b (x int)\ninsert b values "
        "(1/0)\ninsert b values (2)\ngo\nif nothing > 1\n  create table c (x int)\ncreate table d "
        "(x "
        "int)\nexec('create table e (x int) drop table f create table g (x int)')\nselect 1 / x "
        "from (values (1), (0)) as v(x)\nwhile nothing = 1 drop table a\ncreate table h (x int)");
    EXPECT_TRUE(outcome.kept);
    EXPECT_EQ(tables(QStringLiteral("shop")), "a b d e g h");
    EXPECT_EQ(server_.one(QStringLiteral("select x from shop..b")), QStringLiteral("2"));
    EXPECT_EQ(
        problems(outcome),
        "2 There is already an object named 'a' in the database. [create table a (y int)]\n"
        "4 Divide by zero error encountered. [insert b values (1/0)]\n"
        "7 Invalid column name 'nothing'. [nothing > 1]\n"
        "10 Cannot drop the table 'f', because it does not exist or you do not have permission. "
        "[exec('create table e (x int) drop table f create table g (x]\n"
        "11 Divide by zero error encountered. [select 1 / x from (values (1), (0)) as v(x)]\n"
        "12 Invalid column name 'nothing'. [nothing = 1]");
}

TEST_F(ScriptLoading, ATryStillCatchesWhatFailsInIt) {
    const LoadOutcome outcome =
        keepGoing(QStringLiteral("shop"),
                  "begin try create table a (x int) create table a (x int) create table b (x "
                  "int) end try begin catch create table c (x int) end catch");
    EXPECT_EQ(problems(outcome), "");
    EXPECT_EQ(tables(QStringLiteral("shop")), "a c");
}

TEST_F(ScriptLoading, BehindAUseThatFailedNothingRunsUpToTheNext) {
    const LoadOutcome outcome = keepGoing(
        QStringLiteral("shop"),
        "create table a (x int)\nuse nowhere\ncreate table b (x int)\ngo\n-- use shop\nprint 'use "
        "shop' "
        "create table c (x int)\ngo\ncreate table d (x int) use [shop] create table e (x "
        "int)\ngo\ncreate "
        "table f (x int)\nuse gone\ncreate table g (x int)\nuse shop create table h (x int)");
    EXPECT_EQ(tables(QStringLiteral("shop")), "a e f h");
    EXPECT_EQ(outcome.leftOut, 1);
    EXPECT_EQ(
        problems(outcome),
        "2 Database 'nowhere' does not exist. Make sure that the name is entered correctly. What "
        "follows up to the next USE is left out. [use nowhere]\n"
        "11 Database 'gone' does not exist. Make sure that the name is entered correctly. What "
        "follows up to the next USE is left out. [use gone]");
}

TEST(ScriptLoadingOverTheWire, ABatchThatCannotUseItsDatabaseLeavesTheFollowingOut) {
    // A server that is handed whole batches.
    ServedDatabases served(Road::Odbc);
    served.load(QStringLiteral("shop"), QStringLiteral("create table first (x int)"));
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("script.sql"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(
        "use nowhere\ngo\ncreate table a (x int)\ngo\nuse shop\ngo\ncreate table b (x int)\ngo\n");
    file.close();
    LoadOptions options;
    options.keepGoing = true;
    const LoadOutcome outcome =
        LoadScripts(served.server(), QStringLiteral("shop"), {path}, options);
    ASSERT_EQ(outcome.problems.size(), 1u);
    EXPECT_TRUE(outcome.problems[0].message.contains(u"up to the next USE is left out"))
        << outcome.problems[0].toString().toStdString();
    EXPECT_EQ(outcome.leftOut, 1);
    EXPECT_EQ(outcome.batches, 2);
}

TEST_F(ScriptLoading, AScriptMayMakeTheDatabaseThatItIsLoadedInto) {
    // Made by itself, or dropped and made again.
    const char* const scripts[] = {
        "create database v1\ngo\nuse v1\ncreate table first (x int)",
        "if exists (select * from sys.databases where name = 'v1') drop database v1\ngo\ncreate "
        "database "
        "v1\ngo\nuse v1\ngo\ncreate table second (x int)",
        "use master drop database v1 create database v1\ngo\nuse v1 create table third (x int)"};
    const char* const tablesThen[] = {"first", "second", "third"};
    for (int i = 0; i < 3; ++i) {
        const LoadOutcome outcome = load(QStringLiteral("v1"), scripts[i]);
        EXPECT_EQ(problems(outcome), "") << scripts[i];
        EXPECT_EQ(tables(QStringLiteral("v1")), tablesThen[i]);
        EXPECT_EQ(names(outcome.changedDatabases), "v1");
    }
    LoadOptions replace;
    replace.replace = true;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(problems(load(QStringLiteral("v1"), scripts[i], replace)), "") << scripts[i];
        EXPECT_EQ(tables(QStringLiteral("v1")), tablesThen[i]);
    }
    // A second CREATE DATABASE is one too many, and so is one behind what was written.
    EXPECT_EQ(
        problems(load(QStringLiteral("v2"), "create database v2\ncreate database v2")),
        "2 Database 'v2' already exists. Choose a different database name. [create database v2]");
    EXPECT_EQ(
        problems(load(QStringLiteral("v2"), "create table t (a int)\ncreate database v2")),
        "2 Database 'v2' already exists. Choose a different database name. [create database v2]");
    EXPECT_EQ(server_.one(QStringLiteral("select count(*) from sys.databases where name = 'v2'")),
              QStringLiteral("0"));
    // A database that USE chose is in use, as on any server.
    EXPECT_EQ(problems(load(QStringLiteral("v1"), "use v1 drop database v1")),
              "1 Cannot drop database \"v1\" because it is currently in use. [drop database v1]");
    EXPECT_EQ(tables(QStringLiteral("v1")), "third");
}

TEST_F(ScriptLoading, TellsWhereStatementsWent) {
    const LoadOutcome outcome =
        load(QStringLiteral("v1"), "create database own\ngo\nuse own create table t (x int)");
    EXPECT_EQ(names(outcome.changedDatabases), "own");
    EXPECT_EQ(tables(QStringLiteral("v1")), "");
}

TEST_F(ScriptLoading, WithoutADatabaseTheScriptsOwnOneIsMeant) {
    const struct {
        const char* name;
        const char* script;
        const char* database;  // empty: refused
    } rows[] = {
        {"made and used", "create database own\ngo\nuse own create table t (x int)", "own"},
        {"in other letters",
         "use master create database [my db]\ngo\nUSE [My Db] create table t (x int)", "my db"},
        {"two", "create database a create database b\ngo\nuse a", ""},
        {"used alone", "use shop create table t (x int)", ""},
        {"made alone", "create database own", ""},
        {"another one used", "create database own\ngo\nuse own\ngo\nuse shop", ""},
        {"a key", "create database encryption key with algorithm = aes_256\ngo\nuse own", ""},
        {"in comments and texts",
         "/* create database own */ print 'create database own' -- use own", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        LoadOptions options;
        options.replace = true;
        const LoadOutcome outcome = load({}, row.script, options);
        EXPECT_EQ(outcome.unnamed, *row.database == 0);
        EXPECT_EQ(outcome.database.toStdString(), row.database);
        EXPECT_EQ(problems(outcome), "");
        if (*row.database) {
            EXPECT_EQ(tables(u'[' + QLatin1String(row.database) + u']'), "t");
        }
    }
    // Twice: --replace lets the script make its database again.
    LoadOptions options;
    options.replace = true;
    EXPECT_EQ(problems(load({}, rows[0].script, options)), "");
    EXPECT_NE(problems(load({}, rows[0].script)), "");
    // A stored server's own database stands in.
    options.replace = false;
    options.otherwise = QStringLiteral("shop");
    EXPECT_EQ(load({}, "create table t (x int)", options).database, QStringLiteral("shop"));
    EXPECT_EQ(tables(QStringLiteral("shop")), "t");
}

TEST_F(ScriptLoading, FilesOfEarlierVersionsGetTheTablesThatTheyLack) {
    server_.connect(QStringLiteral("shop"));
    ASSERT_EQ(server_.run(QStringLiteral("create table t (a int) create index i on t(a)")),
              QString());
    const QString folder = server_.folder() + QStringLiteral("/server/");
    const auto onFile = [&](const QString& name, const char* sql) {
        sqlite3* handle = nullptr;
        ASSERT_EQ(sqlite3_open((folder + name).toUtf8().constData(), &handle), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(handle, sql, nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(handle);
        sqlite3_close(handle);
    };
    onFile(QStringLiteral("shop.db"), "PRAGMA wal_checkpoint(TRUNCATE)");
    ASSERT_TRUE(QFile::copy(folder + QStringLiteral("shop.db"), folder + QStringLiteral("old.db")));
    onFile(QStringLiteral("old.db"),
           "DROP TABLE \"zov$details\"; DROP TABLE \"zov$statistics\"; DROP TABLE "
           "\"zov$statcolumns\"; DROP TABLE \"zov$logins\"");
    server_.connect(QStringLiteral("old"), false);
    EXPECT_EQ(server_.one(QStringLiteral("select name, is_sparse from sys.columns")),
              QStringLiteral("a|False"));
    EXPECT_EQ(
        server_.run(QStringLiteral("create statistics s on t(a) alter table t alter column a add "
                                   "sparse")),
        QString());
    EXPECT_EQ(server_.one(QStringLiteral("select name from sys.stats order by name")),
              QStringLiteral("i\ns"));
}

TEST_F(ScriptLoading, CommandsAndVariablesOfScriptsWork) {
    QFile part(server_.folder() + QStringLiteral("/part.sql"));
    ASSERT_TRUE(part.open(QIODevice::WriteOnly));
    part.write("CREATE TABLE $(Prefix)_two (x int)\nGO\nINSERT $(Prefix)_two VALUES ('no')\nGO\n");
    part.close();
    // How generated scripts make sure that somebody reads their commands.
    const QByteArray script =
        ":on error exit\n:setvar __Enabled \"True\"\n:setvar Prefix one\nGO\n"
        "IF N'$(__Enabled)' NOT LIKE N'True'\n    BEGIN\n        PRINT N'Not here.';\n"
        "        SET NOEXEC ON;\n    END\nGO\n"
        "CREATE DATABASE [$(Db)]\nGO\nUSE [$(Db)]\nGO\n"
        "CREATE TABLE $(Prefix)_one (x int DEFAULT '$(Value)')\nGO\n";
    LoadOptions options;
    options.variables = {{QStringLiteral("Prefix"), QStringLiteral("mine")},
                         {QStringLiteral("Value"), QStringLiteral("7")}};
    options.defined = {{QStringLiteral("DB"), QStringLiteral("store")}};
    const LoadOutcome done = load(QString(), script, options);
    EXPECT_EQ(problems(done), "");
    EXPECT_EQ(done.database, u"store");
    EXPECT_EQ(tables(QStringLiteral("store")), "one_one");
    EXPECT_EQ(server_.one(QStringLiteral("select text from store..syscomments")), u"('7')");
    ASSERT_EQ(done.notes.size(), 1);
    EXPECT_TRUE(done.notes[0].endsWith(
        u"/script.sql:3: :setvar gives Prefix another value than -v did; --define Prefix=VALUE "
        u"holds against it."))
        << done.notes[0].toStdString();

    // A failure has the included file's name and line, and nothing holds.
    const LoadOutcome failed = load(QStringLiteral("other"), script + ":r part.sql\n", options);
    ASSERT_EQ(failed.problems.size(), 1u);
    EXPECT_TRUE(failed.problems[0].file.endsWith(u"/script.sql")) << "the database is there";
    const LoadOutcome part2 =
        load(QStringLiteral("other"), ":setvar Prefix p\nSELECT 1\nGO\n:r part.sql\n");
    EXPECT_FALSE(part2.kept);
    ASSERT_EQ(part2.problems.size(), 1u);
    EXPECT_TRUE(part2.problems[0].file.endsWith(u"/part.sql"));
    EXPECT_EQ(part2.problems[0].line, 3);
    EXPECT_EQ(tables(QStringLiteral("store")), "one_one");

    // What a script passes over by itself is told, and the rest holds.
    const LoadOutcome passed = load(QStringLiteral("other"),
                                    ":on error ignore\nDROP TABLE nothing\nCREATE TABLE a (x int)\n"
                                    "GO\n:on error exit\nCREATE TABLE b (x int)\nGO\n:quit\nno\n");
    EXPECT_TRUE(passed.kept);
    EXPECT_EQ(passed.problems.size(), 1u);
    EXPECT_EQ(tables(QStringLiteral("other")), "a b");

    // Without a command a text is what it is; with --sqlcmd it isn't.
    EXPECT_EQ(problems(load(QStringLiteral("other"), "CREATE TABLE [$(c)] (x int)")), "");
    options = {};
    options.sqlcmd = true;
    EXPECT_EQ(problems(load(QStringLiteral("other"), "CREATE TABLE [$(d)] (x int)", options)),
              "1 'd' scripting variable not defined. Give it a value with -v d=VALUE. []");
    EXPECT_EQ(tables(QStringLiteral("other")), "$(c) a b");
}

TEST_F(ScriptLoading, GuardsEndWhatFollowsThem) {
    const LoadOutcome outcome =
        load(QStringLiteral("shop"),
             "IF 'a' LIKE 'b%' SET NOEXEC ON\nGO\nCREATE TABLE a (x int)\nGO\n"
             "SET NOEXEC ON\nGO\nCREATE TABLE b (x int)\nINSERT nowhere VALUES (1)\nGO\n"
             "SET NOEXEC OFF\nGO\nCREATE TABLE c (x int)\nGO\n"
             "IF 1 = 1 BEGIN RAISERROR ('told', 10, 1) RETURN END\nCREATE TABLE d (x int)\nGO\n");
    EXPECT_EQ(problems(outcome), "");
    EXPECT_EQ(tables(QStringLiteral("shop")), "a c");
}

}  // namespace
}  // namespace zov::test
