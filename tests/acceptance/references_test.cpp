// zovrand-cli references: what it prints, and how it ends.
#include "cli_runner.h"

#include "data/providers.h"
#include "support/tds_endpoint/tds_endpoint.h"

namespace zov::acceptance {
namespace {

TEST(References, AreToldWithStatusAndTheSameOverTheWire) {
    CliHome home;
    const QString local = "local:" + home.path("refs");
    home.loadText(local, "Db",
                  "CREATE TABLE T (Id int, Gone int)\nGO\nCREATE TABLE Old (a int)\nGO\n"
                  "CREATE PROCEDURE P AS\nSELECT Id FROM T\n\nSELECT a FROM Old\nGO\n"
                  "CREATE PROCEDURE Good AS SELECT Id FROM T\nGO\n"
                  "CREATE VIEW [V\x1b.x] AS SELECT T.Gone, T.Id FROM T\nGO\nDROP TABLE Old\n"
                  "ALTER TABLE T DROP COLUMN Gone\n");
    home.loadText(local, "Hidden",
                  "CREATE TABLE T (Id int)\nGO\nCREATE PROCEDURE P AS SELECT Gone FROM T\nGO\n"
                  "CREATE PROCEDURE Q WITH ENCRYPTION AS SELECT 1\n");
    TdsEndpointOptions options;
    options.provider = &providerFor(local);
    options.dataSource = local;
    options.password = "secret";
    TdsEndpoint endpoint;
    endpoint.start(options);
    home.setEnvironment("ZOVRAND_PASSWORD", "secret");
    const struct {
        QStringList arguments;
        int status;
        const char* out;
        const char* err;
    } cases[] = {
        {{"-d", "Db"},
         1,
         "procedure dbo.P:4: table or view Old can't be found\n"
         "view dbo.V\u241b.x:1: column T.Gone of dbo.T can't be found\n",
         ""},
        {{"-d", "Db", "-t", "procedure"},
         1,
         "procedure dbo.P:4: table or view Old can't be found\n",
         ""},
        {{"-d", "Db", "good"}, 0, "", ""},
        {{"-d", "Db", "-t", "functions"}, 0, "", ""},
        {{"-d", "Db", "[dbo].[P]", "Good"},
         1,
         "procedure dbo.P:4: table or view Old can't be found\n",
         ""},
        {{"-d", "Db", "--words", "P", "Good"},
         0,
         "procedure dbo.Good: id t\nprocedure dbo.P: id t a old\n",
         ""},
        {{"-d", "Db", "Nobody"}, 2, "", "no procedure, function, view or trigger \"Nobody\""},
        {{"-d", "Db", "-t", "tables"}, 2, "", "no texts to search in tables"},
        {{"-d", "NoDb"}, 2, "", "NoDb"},
        {{"-d", "Hidden"},
         2,
         "procedure dbo.P:1: column Gone of dbo.T can't be found\n",
         "procedure dbo.Q: its text can't be read"},
        {{"-d", "Hidden", "Q"}, 2, "", "procedure dbo.Q: its text can't be read"},
        {{"-d", "Hidden", "Q", "--words"}, 2, "", "procedure dbo.Q: its text can't be read"},
    };
    for (const auto& c : cases) {
        for (const QStringList& server :
             {QStringList{"-S", local},
              QStringList{"-S", endpoint.dataSource(), "--login", "sa"}}) {
            const CliResult result = home.run(QStringList{"references"} + server + c.arguments);
            SCOPED_TRACE(::testing::PrintToString(result) + c.arguments.join(u' ').toStdString());
            EXPECT_EQ(result.status, c.status);
            EXPECT_EQ(result.out, QString::fromUtf8(c.out));
            EXPECT_TRUE(result.err.contains(QString::fromUtf8(c.err)));
            EXPECT_EQ(result.err.isEmpty(), *c.err == 0);
        }
    }
    const QString file = home.path("missing.txt");
    EXPECT_EQ(home.run({"references", "-S", local, "-d", "Db", "P", "-o", file}).status, 1);
    QFile written(file);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), "procedure dbo.P:4: table or view Old can't be found\r\n");
}

TEST(References, NothingIsToldOfDatabasesThatHoldAll) {
    CliHome home;
    home.load("local:x", "Before", {samplesFolder() + "shop_before.sql"});
    home.load("local:x", "After", {samplesFolder() + "shop_after.sql"});
    QStringList databases{"Before", "After"};
    if (const QString folder = publishedScriptsFolder(); !folder.isEmpty()) {
        home.load("local:x", "Northwind", {folder + "northwind.sql"});
        home.load("local:x", "pubs", {folder + "pubs.sql"});
        databases += {"Northwind", "pubs"};
    }
    for (const QString& database : databases) {
        const CliResult result = home.run({"references", "-S", "local:x", "-d", database});
        EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
        EXPECT_EQ(result.out + result.err, QString());
    }
}

}  // namespace
}  // namespace zov::acceptance
