// What compare, text and list say about names that stand for several objects, names that look like
// more than one, and objects that can't be read: never "identical" of what nobody looked at.
#include "wired_server.h"

#include "support/limited_login.h"

namespace zov::acceptance {
namespace {

const QString Server = QStringLiteral("local:verdicts");

class StructureVerdicts : public ::testing::Test {
 protected:
    CliResult compare(const QStringList& options = {}) {
        return home_.run(QStringList{"compare", "--source", Server, "--source-db", "One",
                                     "--target", Server, "--target-db", "Two"} +
                         options);
    }
    void load(const QByteArray& one, const QByteArray& two) {
        home_.loadText(Server, "One", one);
        home_.loadText(Server, "Two", two);
    }
    CliHome home_;
};

/// Exactly the letters count, so that a verdict says what the texts say.
const QStringList Exactly{"--set", "IgnoreWhitespace=0", "--set", "IgnoreComments=0",
                          "--set", "IgnoreColSeq=0"};

// Two objects that differ in one place, which looks like something that doesn't count. Each pair
// differs under the default settings too, and each side is identical to itself.
TEST_F(StructureVerdicts, WhatLooksLikeAHeaderACommentOrTheSameNameCounts) {
    const QByteArray tables =
        "CREATE SCHEMA hr\nGO\nCREATE TABLE dbo.T (a int PRIMARY KEY)\nGO\n"
        "CREATE TABLE hr.T (a int PRIMARY KEY)\nGO\nCREATE TYPE dbo.ty FROM int\nGO\n"
        "CREATE TYPE hr.ty FROM int\nGO\n";
    const struct {
        const char* name;
        QByteArray one, two;
    } rows[] = {
        {"a view's body behind an AS on its own line",
         "CREATE VIEW dbo.V\r\nAS\r\nSELECT T.a AS x FROM T",
         "CREATE VIEW dbo.V\r\nAS\r\nSELECT DISTINCT T.a AS x FROM T"},
        {"another limit", "CREATE VIEW V\nAS SELECT TOP 5 T.a AS x FROM T ORDER BY T.a ASC",
         "CREATE VIEW V\nAS SELECT TOP 9 T.a AS x FROM T ORDER BY T.a ASC"},
        {"columns with commas", "CREATE VIEW V([a],[b,c]) AS SELECT 1, 2",
         "CREATE VIEW V([a,b],[c]) AS SELECT 1, 2"},
        {"a procedure named with dashes", "CREATE PROCEDURE [p--] AS SELECT 1",
         "CREATE PROCEDURE [p--] AS SELECT 2"},
        {"a view named with dashes", "CREATE VIEW \"v--\" AS SELECT 1 AS a",
         "CREATE VIEW \"v--\" AS SELECT 2 AS a"},
        {"a function named like a comment",
         "CREATE FUNCTION [f/*]() RETURNS int AS BEGIN RETURN 1 END",
         "CREATE FUNCTION [f/*]() RETURNS int AS BEGIN RETURN 2 END"},
        {"a column named with dashes", "CREATE TABLE U ([a--b] int)",
         "CREATE TABLE U ([a--b] bigint)"},
        {"columns named by dashes", "CREATE TABLE U ([--x] int)", "CREATE TABLE U ([--y] int)"},
        {"columns between what looks like a comment",
         "CREATE TABLE U ([a/*b] int, x int, [c*/d] int)",
         "CREATE TABLE U ([a/*b] int, y int, [c*/d] int)"},
        {"a key named with dashes",
         "CREATE TABLE U (a int NOT NULL, b int NOT NULL, CONSTRAINT [p--] PRIMARY KEY (a))",
         "CREATE TABLE U (a int NOT NULL, b int NOT NULL, CONSTRAINT [p--] PRIMARY KEY (b))"},
        {"a reference to a column named with dashes",
         "CREATE TABLE K ([q--1] int PRIMARY KEY, [q--2] int UNIQUE)\nGO\n"
         "CREATE TABLE U (a int CONSTRAINT f REFERENCES K([q--1]))",
         "CREATE TABLE K ([q--1] int PRIMARY KEY, [q--2] int UNIQUE)\nGO\n"
         "CREATE TABLE U (a int CONSTRAINT f REFERENCES K([q--2]))"},
        {"a reference to a namesake", "CREATE TABLE U (a int CONSTRAINT f REFERENCES dbo.T(a))",
         "CREATE TABLE U (a int CONSTRAINT f REFERENCES hr.T(a))"},
        {"a type's namesake", "CREATE TABLE U (a dbo.ty)", "CREATE TABLE U (a hr.ty)"},
        {"a default beyond Latin", "CREATE TABLE U (a nvarchar(9) CONSTRAINT d DEFAULT N'\u0416')",
         "CREATE TABLE U (a nvarchar(9) CONSTRAINT d DEFAULT N'\u0429')"},
        {"a default beyond the basic plane",
         "CREATE TABLE U (a nvarchar(9) CONSTRAINT d DEFAULT N'\U0001F600')",
         "CREATE TABLE U (a nvarchar(9) CONSTRAINT d DEFAULT N'\U0001F601')"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        for (const auto& [database, own] : {std::pair("One", row.one), std::pair("Two", row.two)}) {
            const QString script = home_.write("own.sql", tables + own + "\nGO\n");
            ASSERT_EQ(home_.run({"load", "-S", Server, "-d", database, "--replace", script}).status,
                      0);
        }
        for (const QStringList& settings :
             {QStringList(), Exactly + QStringList{"--set", "CaseSensitive=1"}}) {
            EXPECT_EQ(compare(settings).status, 1);
            const CliResult self =
                home_.run(QStringList{"compare", "--source", Server, "--source-db", "One",
                                      "--target", Server, "--target-db", "One"} +
                          settings);
            EXPECT_EQ(self.status, 0) << ::testing::PrintToString(self);
        }
    }
}

TEST_F(StructureVerdicts, NamesakesAndDottedNamesAreComparedAsThemselves) {
    const QByteArray same =
        "CREATE SCHEMA hr\nGO\nCREATE VIEW dbo.V AS SELECT 1 AS a\nGO\n"
        "CREATE TABLE dbo.T (a int)\nGO\nCREATE TABLE [t.u] (a int)\nGO\n"
        "CREATE TABLE [v.] (a int)\nGO\nCREATE PROCEDURE [p.q] AS SELECT 1\nGO\n";
    const struct {
        const char* name;
        QByteArray one, two;
        int status;
        QString inReport;
    } rows[] = {
        {"all the same", "CREATE VIEW hr.V AS SELECT 2 AS b\nGO\n",
         "CREATE VIEW hr.V AS SELECT 2 AS b\nGO\n", 0, "All 2 remaining views"},
        {"a view's namesake differs", "CREATE VIEW hr.V AS SELECT 2 AS b\nGO\n",
         "CREATE VIEW hr.V AS SELECT 3 AS b\nGO\n", 1, "List of views which differ:\n\thr.V\n"},
        {"a namesake's index differs",
         "CREATE TABLE hr.T (a int NOT NULL CONSTRAINT pk_T PRIMARY KEY, b int)\nGO\n",
         "CREATE TABLE hr.T (a int NOT NULL, b int)\nCREATE CLUSTERED INDEX pk_T ON hr.T (b)\n"
         "ALTER TABLE hr.T ADD CONSTRAINT df DEFAULT 1 FOR b\nGO\n",
         1, "List of tables which differ:\n\thr.T\n"},
        {"a view of another schema", "CREATE VIEW hr.W AS SELECT 2 AS b\nGO\n",
         "CREATE VIEW dbo.W AS SELECT 2 AS b\nGO\n", 1,
         "which exist in Source database but not in Target database:\n\tW\n"},
        {"a dotted procedure differs", "CREATE PROCEDURE [r.q] AS SELECT 1\nGO\n",
         "CREATE PROCEDURE [r.q] AS SELECT 2\nGO\n", 1,
         "List of procedures which differ:\n\tr.q\n"},
        {"a name that ends in a dot differs", "CREATE VIEW [w.] AS SELECT 1 AS a\nGO\n",
         "CREATE VIEW [w.] AS SELECT 2 AS a\nGO\n", 1, "List of views which differ:\n\tw.\n"},
        {"a dotted name isn't a schema's", "CREATE VIEW dbo.[hr.X] AS SELECT 1 AS a\nGO\n",
         "CREATE VIEW hr.X AS SELECT 1 AS a\nGO\n", 1,
         "which exist in Target database but not in Source database:\n\tX\n"},
    };
    int number = 0;
    for (const auto& row : rows) {
        const QString one = QStringLiteral("One%1").arg(++number);
        const QString two = QStringLiteral("Two%1").arg(number);
        home_.loadText(Server, one, same + row.one);
        home_.loadText(Server, two, same + row.two);
        const CliResult result =
            home_.run(QStringList{"compare", "--source", Server, "--source-db", one, "--target",
                                  Server, "--target-db", two} +
                      Exactly);
        SCOPED_TRACE(::testing::PrintToString(result));
        EXPECT_EQ(result.status, row.status) << row.name;
        EXPECT_EQ(result.err, QString()) << row.name;
        if (row.status == 0) continue;
        EXPECT_TRUE(result.out.contains(row.inReport)) << row.name;
    }
}

TEST_F(StructureVerdicts, TextTakesTheObjectThatIsNamedAndNoOther) {
    home_.loadText(Server, "One",
                   "CREATE SCHEMA hr\nGO\nCREATE SCHEMA empty\nGO\n"
                   "CREATE VIEW dbo.V AS SELECT 1 AS a\nGO\nCREATE VIEW hr.V AS SELECT 2 AS a\nGO\n"
                   "CREATE VIEW hr.Once AS SELECT 3 AS a\nGO\n"
                   "CREATE VIEW dbo.[hr.Once] AS SELECT 4 AS a\nGO\n"
                   "CREATE VIEW dbo.[a]]b.c] AS SELECT 5 AS a\nGO\n"
                   "CREATE PROCEDURE dbo.Secret WITH ENCRYPTION AS SELECT 1\nGO\n");
    const struct {
        const char* name;
        int status;
        const char* out;
        const char* err;
    } rows[] = {
        {"dbo.V", 0, "CREATE VIEW dbo.V AS SELECT 1 AS a\n", ""},
        {"hr.V", 0, "CREATE VIEW hr.V AS SELECT 2 AS a\n", ""},
        {"[hr].[V]", 0, "CREATE VIEW hr.V AS SELECT 2 AS a\n", ""},
        {"V", 2, "", "Several views have this name: dbo.V, hr.V."},
        {"[V]", 2, "", "Several views have this name: dbo.V, hr.V."},
        {"empty.V", 2, "", "has no view \"empty.V\""},
        {"dbo.Once", 2, "", "has no view \"dbo.Once\""},
        {"Once", 0, "CREATE VIEW hr.Once AS SELECT 3 AS a\n", ""},
        {"hr.Once", 2, "", "Several views have this name: [dbo].[hr.Once], hr.Once."},
        {"[hr].[Once]", 0, "CREATE VIEW hr.Once AS SELECT 3 AS a\n", ""},
        {"[hr.Once]", 0, "CREATE VIEW dbo.[hr.Once] AS SELECT 4 AS a\n", ""},
        {"a]b.c", 0, "CREATE VIEW dbo.[a]]b.c] AS SELECT 5 AS a\n", ""},
        {"dbo.[a]]b.c]", 0, "CREATE VIEW dbo.[a]]b.c] AS SELECT 5 AS a\n", ""},
        {"ONCE", 0, "CREATE VIEW hr.Once AS SELECT 3 AS a\n", ""},
    };
    for (const auto& row : rows) {
        const CliResult result =
            home_.run({"text", "-S", Server, "-d", "One", "-t", "views", row.name});
        SCOPED_TRACE(::testing::PrintToString(result));
        EXPECT_EQ(result.status, row.status) << row.name;
        EXPECT_EQ(result.out, QString::fromLatin1(row.out)) << row.name;
        EXPECT_TRUE(result.err.contains(QLatin1String(row.err))) << row.name;
        EXPECT_EQ(result.err.isEmpty(), row.status == 0) << row.name;
    }
    const CliResult secret =
        home_.run({"text", "-S", Server, "-d", "One", "-t", "procedure", "Secret"});
    EXPECT_EQ(secret.status, 2);
    EXPECT_EQ(secret.out, QString());
    EXPECT_TRUE(secret.err.contains("The text of Secret can't be read"))
        << secret.err.toStdString();
}

TEST_F(StructureVerdicts, WhatCantBeReadGoesBeforeWhatDiffers) {
    const QByteArray secret =
        "CREATE PROCEDURE dbo.Secret WITH ENCRYPTION AS SELECT 1\nGO\n"
        "CREATE PROCEDURE dbo.Open1 AS SELECT 1\nGO\n";
    load(secret + "CREATE VIEW V AS SELECT 1 AS a\nGO\n",
         secret + "CREATE VIEW V AS SELECT 2 AS a\nGO\n");
    const QString list = "List of procedures which can't be read:\n\tSecret\n\t(1 procedure)\n";
    const QString told = "The procedure Secret can't be read: ";
    const struct {
        QStringList options;
        int status;
    } rows[] = {
        {{}, 2},
        {{"--allow-unreadable"}, 1},
        {{"-t", "procedures"}, 2},
        {{"-t", "procedures", "--allow-unreadable"}, 0},
        {{"-t", "views", "--allow-unreadable"}, 1},
        {{"-t", "views"}, 1},
    };
    for (const auto& row : rows) {
        const CliResult result = compare(row.options);
        SCOPED_TRACE(::testing::PrintToString(result));
        EXPECT_EQ(result.status, row.status);
        const bool secretCompared = !row.options.contains("views");
        EXPECT_EQ(result.out.contains(list), secretCompared);
        EXPECT_EQ(result.err.contains(told), secretCompared);
        EXPECT_FALSE(result.out.contains("All procedures in both databases are identical."));
    }
}

TEST_F(StructureVerdicts, ChosenObjectsDecideTheStatus) {
    load(
        "CREATE SCHEMA hr\nGO\nCREATE TABLE Same (a int)\nGO\nCREATE PROCEDURE P AS SELECT 1\nGO\n"
        "CREATE VIEW dbo.V AS SELECT 1 AS a\nGO\nCREATE VIEW hr.V AS SELECT 1 AS a\nGO\n",
        "CREATE SCHEMA hr\nGO\nCREATE TABLE Same (a int)\nGO\n"
        "CREATE VIEW dbo.V AS SELECT 2 AS a\nGO\nCREATE VIEW hr.V AS SELECT 1 AS a\nGO\n");
    const struct {
        const char* select;
        int status;
    } rows[] = {{"Same", 0}, {"hr.V", 0},      {"dbo.V", 1},    {"V", 1},
                {"P", 1},    {"hr.V,Same", 0}, {"[hr].[V]", 0}, {"hr.Same", 2}};
    for (const auto& row : rows) {
        const CliResult result = compare({"--select", row.select});
        EXPECT_EQ(result.status, row.status) << row.select << ::testing::PrintToString(result);
    }
}

TEST_F(StructureVerdicts, DatabasesWithoutObjectsAreSaidToBeSo) {
    home_.loadText(Server, "One", "PRINT 'nothing'\n");
    home_.loadText(Server, "Two", "PRINT 'nothing'\n");
    const CliResult result = compare();
    EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
    EXPECT_EQ(result.errLines().size(), 1);
    EXPECT_TRUE(result.err.contains("There is nothing to compare")) << result.err.toStdString();
}

/// What the server has, and what a login sees of it that may see nothing, one schema or all.
TEST_F(StructureVerdicts, ALoginThatMayNotSeeEverythingNeverHearsIdentical) {
    const QByteArray hr = "CREATE SCHEMA hr\nGO\nCREATE TABLE hr.T (a int)\nGO\n";
    const QByteArray all = hr + "CREATE TABLE dbo.Hidden (a int)\nGO\n";
    const struct {
        const char* name;
        QByteArray seen;
        bool limited;
        int status, allowed;
    } rows[] = {
        {"nothing", "PRINT 'nothing'\n", true, 2, 0},
        {"one schema", hr, true, 2, 0},
        {"all", all, false, 0, 0},
    };
    int number = 0;
    for (const auto& row : rows) {
        const QString folder = "local:" + home_.path(QStringLiteral("seen%1").arg(++number));
        home_.loadText(folder, "One", row.seen);
        home_.loadText(folder, "Two", row.seen);
        Provider& server = providerFor(folder);
        test::LimitedLogin limited(server);
        TdsEndpointOptions options;
        options.provider = row.limited ? &limited : &server;
        options.dataSource = folder;
        options.user = "reader";
        options.password = "secret";
        TdsEndpoint endpoint;
        endpoint.start(options);
        home_.setEnvironment("ZOVRAND_PASSWORD", "secret");
        const auto run = [&](const QStringList& more) {
            return home_.run(QStringList{"compare", "--source", endpoint.dataSource(),
                                         "--source-db", "One", "--target", endpoint.dataSource(),
                                         "--target-db", "Two", "--login", "reader"} +
                             more);
        };
        const CliResult result = run({});
        SCOPED_TRACE(::testing::PrintToString(result));
        EXPECT_EQ(result.status, row.status) << row.name;
        EXPECT_EQ(run({"--allow-unreadable"}).status, row.allowed) << row.name;
        const QString sentence =
            "The login reader may not see all objects of One; what it can't see isn't compared.";
        EXPECT_EQ(result.out.contains(sentence), row.limited) << row.name;
        EXPECT_EQ(result.err.contains(sentence), row.limited) << row.name;
        EXPECT_EQ(
            result.out.contains("The structure of all tables in both databases is identical."),
            !row.limited)
            << row.name;
    }
}

/// Two databases of one server whose statements can be made to fail, on both sides then.
class FaultyServer {
 public:
    explicit FaultyServer(CliHome& home) : home_(home) {
        const QString folder = "local:" + home.path("faulty");
        const QByteArray script =
            "CREATE SCHEMA hr\nGO\nCREATE TABLE dbo.T (a int IDENTITY NOT NULL CONSTRAINT pk_T "
            "PRIMARY KEY, b int CONSTRAINT df_b DEFAULT 1)\nGO\nCREATE TABLE hr.T (a int)\nGO\n"
            "CREATE VIEW V AS SELECT 1 AS a\nGO\n"
            "CREATE TABLE U (a int CONSTRAINT fk_U REFERENCES dbo.T (a))\nGO\n";
        home.loadText(folder, "One", script);
        home.loadText(folder, "Two", script);
        serve(endpoint_, folder, home);
    }
    CliResult compare(const char* setting) {
        return home_.run({"compare", "--source", endpoint_.dataSource(), "--source-db", "One",
                          "--target", endpoint_.dataSource(), "--target-db", "Two", "--login", "sa",
                          "--set", "AnalyzeConstraints=1", "--set", setting});
    }
    void fail(const char* statement, qint32 error, qint64 rows) {
        TdsFaults faults;
        faults.onlyStatementsWith = QString::fromLatin1(statement);
        faults.errorAfterRows = rows;
        faults.errorNumber = error;
        faults.errorText = "It failed.";
        endpoint_.setFaults(faults);
    }

 private:
    CliHome& home_;
    TdsEndpoint endpoint_;
};

TEST_F(StructureVerdicts, AFailedStatementIsNeverAnAnswer) {
    FaultyServer server(home_);
    const auto run = [&] { return server.compare("UseCatalogImage=0"); };
    const CliResult undisturbed = run();
    ASSERT_EQ(undisturbed.status, 0) << ::testing::PrintToString(undisturbed);
    ASSERT_EQ(undisturbed.err, QString());
    const char* const statements[] = {"ProductVersion",
                                      "HAS_PERMS_BY_NAME",
                                      "sys.schemas",
                                      "IsUserTable",
                                      "ident_seed",
                                      "[ctext]",
                                      "sys.objects WHERE parent_object_id",
                                      "sysindexkeys",
                                      "IsView",
                                      "syscomments sc",
                                      "sysreferences",
                                      "si.name LIKE 'pk%'",
                                      "si.name = 'pk_T'"};
    for (const char* statement : statements) {
        for (const qint32 error : {229, 208, 1205, 1222, 8115}) {
            for (const qint64 rows : {0, 1}) {
                server.fail(statement, error, rows);
                const CliResult result = run();
                SCOPED_TRACE(::testing::PrintToString(result));
                EXPECT_EQ(result.status, 2) << statement << ' ' << error << ' ' << rows;
                EXPECT_FALSE(result.err.isEmpty()) << statement << ' ' << error << ' ' << rows;
                if (error != 1205) break;  // the rows make no difference to the kind of error
            }
        }
    }
}

// A side without schemas, and one that says it with four figures.
TEST_F(StructureVerdicts, ServersOfDifferentVersionsAreToldApartByTheirObjectsAlone) {
    const QString old = "local:old?version=8.00.2039", second = "local:second?version=9.00.5000";
    const QByteArray same =
        "CREATE TABLE T (a int NOT NULL, b nvarchar(20) NULL)\nGO\n"
        "CREATE VIEW V AS SELECT a FROM T\nGO\n";
    const QByteArray procedure = "CREATE PROCEDURE P AS SELECT ";
    for (const QString& server : {old, second, QString("local:current")}) {
        home_.loadText(server, "One", same + procedure + "1\nGO\n");
        home_.loadText(server, "Two", same + procedure + "2\nGO\n");
    }
    const auto compared = [&](const QString& source, const QString& target, const char* database) {
        return home_.run({"compare", "--source", source, "--source-db", "One", "--target", target,
                          "--target-db", database});
    };
    for (const auto& [source, target] : {std::pair(old, QString("local:current")),
                                         {QString("local:current"), old},
                                         {old, second},
                                         {second, QString("local:current")}}) {
        SCOPED_TRACE((source + ' ' + target).toStdString());
        const CliResult identical = compared(source, target, "One");
        EXPECT_EQ(identical.status, 0) << ::testing::PrintToString(identical);
        const CliResult different = compared(source, target, "Two");
        EXPECT_EQ(different.status, 1) << ::testing::PrintToString(different);
        EXPECT_TRUE(different.out.contains("\tP\n")) << ::testing::PrintToString(different);
    }
}

TEST_F(StructureVerdicts, WhatFailsWhileACatalogueIsReadAtOnceIsAskedObjectByObject) {
    FaultyServer server(home_);
    const CliResult undisturbed = server.compare("UseCatalogImage=1");
    ASSERT_EQ(undisturbed.status, 0) << ::testing::PrintToString(undisturbed);
    ASSERT_EQ(undisturbed.err, QString());
    for (const char* statement :
         {"AS default_schema", "sys.extended_properties", "AS altered",
          "schema_id, name, principal_id", "FROM systypes st", "FROM sys.identity_columns",
          "FROM sysindexes si LEFT", "SELECT id, indid, keyno", "FROM sysforeignkeys",
          "sc.text, sc.encrypted", "N'IsProcedure') AS p",
          "SELECT DISTINCT name FROM sysindexes"}) {
        for (const qint64 rows : {0, 1}) {
            server.fail(statement, 1205, rows);
            const CliResult result = server.compare("UseCatalogImage=1");
            SCOPED_TRACE(::testing::PrintToString(result));
            EXPECT_EQ(result.status, 0) << statement;
            EXPECT_EQ(withoutTime(result.out), withoutTime(undisturbed.out)) << statement;
            // Both sides say so, or nothing failed: there was no further row.
            const bool noRow = rows == 1 && result.err.isEmpty();
            EXPECT_TRUE(noRow || result.errLines().size() == 2) << statement;
            EXPECT_TRUE(noRow || result.err.contains(" is asked object by object: ")) << statement;
            EXPECT_FALSE(rows == 0 && noRow);
        }
    }
}

}  // namespace
}  // namespace zov::acceptance
