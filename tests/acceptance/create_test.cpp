// zovrand-cli create: what it makes of whole databases loads into empty ones, and nothing differs.
#include "wired_server.h"

#include <QRegularExpression>

namespace zov::acceptance {
namespace {

const QString Server = QStringLiteral("local:try");

class Create : public ::testing::Test {
 protected:
    CliResult create(const QStringList& arguments) {
        return home.run(QStringList{"create", "-S", Server, "-d", "Db"} + arguments);
    }
    CliResult compareWith(const QString& copy) {
        return home.run({"compare", "--source", Server, "--source-db", "Db", "--target", Server,
                         "--target-db", copy, "--set", "AnalyzeConstraints=1", "--set",
                         "IgnoreComments=0", "--set", "IgnoreWhitespace=0", "--set",
                         "IgnoreColSeq=0"});
    }
    void expectRoundTrip(const QStringList& scripts) {
        home.load(Server, QStringLiteral("Db"), scripts);
        const QString file = home.path(QStringLiteral("all.sql"));
        CliResult made = create({"-o", file});
        EXPECT_EQ(made.status, 0) << ::testing::PrintToString(made);
        EXPECT_EQ(made.out + made.err, QString());
        home.load(Server, QStringLiteral("Copy"), {file});
        const CliResult verdict = compareWith(QStringLiteral("Copy"));
        EXPECT_EQ(verdict.status, 0) << ::testing::PrintToString(verdict);

        // A file an object, run in the order of their names.
        const QString folder = home.path(QStringLiteral("parts%1/").arg(++runs));
        made = create({"-o", folder});
        EXPECT_EQ(made.status, 0) << ::testing::PrintToString(made);
        QStringList files;
        for (const QString& name : QDir(folder).entryList(QDir::Files, QDir::Name))
            files += folder + name;
        EXPECT_GT(files.size(), 5);
        home.load(Server, QStringLiteral("Parts"), files);
        EXPECT_EQ(compareWith(QStringLiteral("Parts")).status, 0);

        // The scripts of the copies are those of the original, to the letter.
        const QString text = create({}).out;
        EXPECT_GT(text.size(), 500);
        for (const char* copy : {"Copy", "Parts"}) {
            QString again = home.run({"create", "-S", Server, "-d", copy}).out;
            again.replace(QStringLiteral("database [%1]").arg(QLatin1StringView(copy)),
                          QStringLiteral("database [Db]"));
            EXPECT_EQ(again, text);
        }
    }

    CliHome home;
    int runs = 0;
};

TEST_F(Create, TheSamplesComeBackAsTheyWere) {
    expectRoundTrip({samplesFolder() + QStringLiteral("shop_before.sql")});
}
TEST_F(Create, TheChangedSampleComesBackAsItWas) {
    expectRoundTrip({samplesFolder() + QStringLiteral("shop_after.sql")});
}
TEST_F(Create, NorthwindAndPubsComeBackAsTheyWere) {
    const QString folder = publishedScriptsFolder();
    if (folder.isEmpty()) GTEST_SKIP() << NoPublishedScripts;
    for (const char* name : {"Northwind", "pubs"}) {
        home.load(Server, QLatin1StringView(name),
                  {folder + QString::fromLatin1(name).toLower() + QStringLiteral(".sql")});
        const QString file = home.path(QStringLiteral("all.sql"));
        ASSERT_EQ(home.run({"create", "-S", Server, "-d", name, "-o", file}).status, 0);
        if (QLatin1StringView(name) == QLatin1StringView("Northwind")) {
            QFile script(file);
            ASSERT_TRUE(script.open(QIODevice::Append));
            script.write(
                "ALTER TABLE Customers ALTER COLUMN CompanyName nvarchar(60) NOT NULL\nGO\n"
                "CREATE UNIQUE INDEX IX_Phone ON Customers (Phone DESC) INCLUDE (Fax) "
                "WHERE Phone IS NOT NULL\nGO\n");
        }
        expectRoundTrip({file});
        const CliResult verdict = home.run({"compare", "--source", Server, "--source-db", name,
                                            "--target", Server, "--target-db", "Db"});
        EXPECT_EQ(verdict.status, QLatin1StringView(name) == QLatin1StringView("pubs") ? 0 : 1);
        for (const char* database : {"Db", "Copy", "Parts"})
            home.run({"query", "-S", Server, "-d", "master",
                      QStringLiteral("DROP DATABASE ") + QLatin1StringView(database)});
    }
}

TEST_F(Create, NamedObjectsAndTheStatementOfTheWindow) {
    home.loadText(Server, QStringLiteral("Db"),
                  "CREATE SCHEMA hr\nGO\nCREATE TABLE dbo.T (a int NOT NULL)\n"
                  "CREATE TABLE hr.T (b int)\nGO\nCREATE PROCEDURE P AS\r\nSELECT 1\nGO\n"
                  "CREATE PROCEDURE Secret WITH ENCRYPTION AS SELECT 1\nGO\n");
    const struct {
        QStringList arguments;
        int status;
        const char* out;  ///< what it ends with, or has to hold
        const char* err;
    } rows[] = {
        {{"hr.T"}, 0, "CREATE TABLE [hr].[T] (\n    [b] int NULL\n)\nGO\n", ""},
        {{"P"}, 0, "CREATE PROCEDURE P AS\r\nSELECT 1\nGO\n", ""},
        {{"T"}, 2, "", "Several objects have this name: dbo.T, hr.T."},
        {{"-t", "procedure", "dbo.T"}, 2, "", "has no procedure \"dbo.T\""},
        {{"-t", "permissions"}, 2, "", "Permissions have no CREATE statement."},
        {{"-t", "views"}, 0, "GO\n", "There are no views in the database Db"},
        {{"-t", "procedures"}, 2, "SELECT 1\nGO\n", "Procedure [dbo].[Secret]: its text can't be "},
        {{"dbo.T", "--drop-header"},
         0,
         "IF OBJECT_ID(N'[dbo].[T]', N'U') IS NOT NULL DROP TABLE",
         ""},
        {{"dbo.T", "--as-shown"}, 0, "CREATE TABLE [dbo].[T] (\n[a] [int] NOT NULL \n)\nGO\n", ""},
        {{"dbo.T", "--as-shown", "--drop-header"}, 0, "DROP Table [dbo].[T]\nGO\n", ""},
        {{"-t", "procedures", "--as-shown"}, 2, "SELECT 1 \n", "Procedure dbo.Secret: no CREATE"},
        {{"-t", "constraints", "--as-shown"}, 2, "", "Leave --as-shown out."},
        {{"P", "-o", "nowhere/all.sql"}, 2, "", "name another file or folder with -o."},
    };
    for (const auto& row : rows) {
        const CliResult result = create(row.arguments);
        const std::string what = row.arguments.join(u' ').toStdString();
        EXPECT_EQ(result.status, row.status) << what << ::testing::PrintToString(result);
        EXPECT_TRUE(result.out.contains(QLatin1StringView(row.out)))
            << what << ::testing::PrintToString(result);
        EXPECT_TRUE(result.err.contains(QLatin1StringView(row.err)))
            << what << ::testing::PrintToString(result);
        if (QLatin1StringView(row.err).isEmpty()) {
            EXPECT_EQ(result.err, QString()) << what;
        }
    }
}

TEST_F(Create, AnUpdateScriptTurnsOneTableIntoAnother) {
    home.loadText(Server, QStringLiteral("New"),
                  "CREATE TABLE dbo.T (a int IDENTITY(1,1) NOT NULL CONSTRAINT PK_T PRIMARY KEY, b "
                  "nvarchar(40) NOT NULL)\nCREATE TABLE dbo.S (a int)\n"
                  "ALTER TABLE S ADD CONSTRAINT K CHECK (a > 0)");
    home.loadText(Server, QStringLiteral("Old"),
                  "CREATE TABLE dbo.T (a int NOT NULL CONSTRAINT PK_T PRIMARY KEY, b varchar(9))\n"
                  "CREATE TABLE dbo.S (a int)\nINSERT INTO T VALUES (7, 'x')");
    const auto update = [&](const QStringList& more) {
        return home.run(QStringList{"update-script", "--source", Server, "--source-db", "New",
                                    "--target", Server, "--target-db", "Old"} +
                        more);
    };
    EXPECT_EQ(update({"--table", "T"}).out,
              QStringLiteral("ALTER TABLE T ALTER COLUMN [a] [int] IDENTITY(1,1) NOT NULL\n"
                             "ALTER COLUMN [b] [nvarchar] (40) NOT NULL\n")
                      .prepend(QStringLiteral("ALTER TABLE [T] DROP CONSTRAINT [PK_T]\n")) +
                  QStringLiteral("ALTER TABLE [T] ADD CONSTRAINT [PK_T] PRIMARY KEY CLUSTERED "
                                 "([a])\n"));
    const CliResult hidden = update({"--table", "S"});
    EXPECT_EQ(hidden.status, 1);
    EXPECT_EQ(hidden.out, QString());
    EXPECT_TRUE(hidden.err.contains(QStringLiteral("runnable"))) << hidden.err.toStdString();
    EXPECT_EQ(update({"--table", "nowhere"}).status, 2);
    for (const char* table : {"T", "S"}) {
        const QString file = home.path(QStringLiteral("update.sql"));
        const CliResult made = update({"--table", table, "--runnable", "-o", file});
        EXPECT_EQ(made.status, 1) << ::testing::PrintToString(made);
        home.load(Server, QStringLiteral("Old"), {file});
        EXPECT_EQ(update({"--table", table, "--runnable"}).status, 0);
        EXPECT_EQ(update({"--table", table}).status, 0);
    }
    const CliResult verdict = home.run({"compare", "--source", Server, "--source-db", "New",
                                        "--target", Server, "--target-db", "Old"});
    EXPECT_EQ(verdict.status, 0) << ::testing::PrintToString(verdict);
    EXPECT_EQ(
        home.value(Server, QStringLiteral("Old"), QStringLiteral("SELECT b FROM T WHERE a = 7")),
        QStringLiteral("x"));
}

TEST_F(Create, TheWireGivesTheSameScripts) {
    const QString local = QStringLiteral("local:") + home.path(QStringLiteral("wired"));
    home.load(local, QStringLiteral("Db"), {samplesFolder() + QStringLiteral("shop_before.sql")});
    home.load(local, QStringLiteral("New"), {samplesFolder() + QStringLiteral("shop_after.sql")});
    TdsEndpoint endpoint;
    serve(endpoint, local, home);
    const QString wire = endpoint.dataSource();
    // A statement as it is shown tells when it was made.
    const auto shown = [](CliResult result) {
        static const QRegularExpression time(QStringLiteral("Script Date: [-0-9: ]+"));
        result.out.replace(time, QStringLiteral("Script Date"));
        return ::testing::PrintToString(result);
    };
    const QStringList calls[] = {
        {"create"},
        {"create", "-t", "table"},
        {"create", "-t", "view", "--drop-header"},
        {"create", "-t", "table", "--as-shown"},
        {"create", "-t", "procedure", "--as-shown", "--drop-header"},
    };
    for (const QStringList& call : calls) {
        const CliResult here = home.run(call + QStringList{"-S", local, "-d", "Db"});
        const CliResult there =
            home.run(call + QStringList{"-S", wire, "--login", "sa", "-d", "Db"});
        EXPECT_EQ(here.status, 0) << ::testing::PrintToString(here);
        EXPECT_GT(here.out.size(), 50);
        EXPECT_EQ(shown(there), shown(here));
    }
    int changed = 0;
    const CliResult names = home.run({"list", "-S", local, "-d", "New", "-t", "table"});
    for (const QString& table : names.out.split(u'\n', Qt::SkipEmptyParts))
        for (const bool runnable : {false, true}) {
            const auto update = [&](const QStringList& servers) {
                return home.run(QStringList{"update-script", "--source-db", "New", "--target-db",
                                            "Db", "--table", table} +
                                servers + (runnable ? QStringList{"--runnable"} : QStringList()));
            };
            const CliResult here = update({"--source", local, "--target", local});
            const CliResult there = update({"--source", wire, "--target", wire, "--login", "sa"});
            EXPECT_EQ(shown(there), shown(here));
            changed += here.status == 1;
        }
    EXPECT_GT(changed, 1);
}

}  // namespace
}  // namespace zov::acceptance
