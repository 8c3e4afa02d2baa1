// Scripts that a server runs: what they make in an empty database has the catalogue of where they
// came from.
#include "scripting/create_script.h"
#include "core/run_account.h"
#include "scripting/module_texts.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

namespace zov {
namespace {

const QString everything = QStringLiteral(R"(
CREATE SCHEMA sales
GO
CREATE SCHEMA [odd ' schema]
GO
CREATE DEFAULT dbo.Zero AS 0
GO
CREATE RULE dbo.Positive AS @x >= 0
GO
CREATE TYPE sales.Phone FROM varchar(24) NOT NULL
CREATE TYPE dbo.Amount FROM decimal(10,2) NULL
CREATE TYPE dbo.Lines AS TABLE (Id int NOT NULL PRIMARY KEY, Note nvarchar(20) NULL)
GO
EXEC sp_bindefault N'[dbo].[Zero]', N'[dbo].[Amount]'
GO
CREATE SEQUENCE sales.Numbers AS bigint START WITH 5 INCREMENT BY 2 MINVALUE 1 MAXVALUE 999 CYCLE CACHE 10
CREATE SYNONYM dbo.Old FOR [sales].[Orders]
GO
CREATE TABLE dbo.Customers (
  Id int IDENTITY(100,-5) NOT FOR REPLICATION NOT NULL,
  Code char(3) COLLATE Latin1_General_BIN NOT NULL,
  Name nvarchar(50) NULL CONSTRAINT DF_Name DEFAULT (N'it''s'),
  Tel sales.Phone NOT NULL, Owes dbo.Amount, Size tinyint NULL,
  Marker uniqueidentifier ROWGUIDCOL NOT NULL CONSTRAINT DF_Marker DEFAULT (newid()),
  Version rowversion NOT NULL,
  Doubled AS (Size * 2) PERSISTED, Shown AS (Name + N'!'),
  CONSTRAINT PK_Customers PRIMARY KEY NONCLUSTERED (Id),
  CONSTRAINT UQ_Code UNIQUE CLUSTERED (Code DESC),
  CONSTRAINT CK_Size CHECK (Size < 9))
CREATE INDEX [IX odd] ON dbo.Customers (Name DESC, Code) INCLUDE (Tel, Size) WHERE Size > 3
CREATE UNIQUE INDEX IX_Unique ON dbo.Customers (Marker)
GO
EXEC sp_bindrule N'[dbo].[Positive]', N'[dbo].[Customers].[Size]'
GO
CREATE TABLE sales.Orders (
  Id bigint NOT NULL CONSTRAINT DF_Id DEFAULT (NEXT VALUE FOR sales.Numbers),
  A int NOT NULL, B int NOT NULL, Customer int NULL,
  CONSTRAINT PK_Orders PRIMARY KEY (A, B DESC),
  CONSTRAINT FK_Customer FOREIGN KEY (Customer) REFERENCES dbo.Customers (Id) ON DELETE SET NULL ON UPDATE CASCADE)
CREATE TABLE [odd ' schema].[ta]]ble 'x'] ([co]]l'1] int NOT NULL, [a.b] int NULL,
  CONSTRAINT [FK odd] FOREIGN KEY ([co]]l'1], [a.b]) REFERENCES sales.Orders (A, B))
ALTER TABLE [odd ' schema].[ta]]ble 'x'] NOCHECK CONSTRAINT [FK odd]
GO
CREATE TABLE dbo.AllTypes (a bigint, b bit, c smallint, d money, e smallmoney, f float, g real,
  h numeric(38,0), i decimal(5,3), j datetime, k smalldatetime, l date, m time(3), n datetime2(0),
  o datetimeoffset(5), p text, q ntext, r image, s varchar(max), t nvarchar(max), u varbinary(max),
  v binary(7), w varbinary(5), x nchar(4), y xml, z sql_variant, aa sysname, ab hierarchyid,
  ac geography, ad geometry, ae float(24), af varchar(8000), ag nvarchar(4000), ah char)
GO
CREATE VIEW dbo.Z_last AS SELECT Id FROM sales.Orders -- a comment at the end
GO
CREATE VIEW dbo.A_first AS SELECT * FROM dbo.Z_last
GO
CREATE FUNCTION dbo.Twice (@x int) RETURNS int AS BEGIN RETURN @x * 2 END
GO
CREATE FUNCTION dbo.Listed () RETURNS TABLE AS RETURN SELECT dbo.Twice(1) AS a FROM dbo.A_first
GO
SET QUOTED_IDENTIFIER OFF
GO
CREATE PROCEDURE dbo.P AS
SELECT "not a name"
/* GO is
GO
no end here */
GO
SET QUOTED_IDENTIFIER ON
GO
CREATE TRIGGER dbo.Tr ON dbo.Customers FOR INSERT AS PRINT 'x'
GO
DISABLE TRIGGER dbo.Tr ON dbo.Customers
GO
)");

class CreateScripts : public ::testing::TestWithParam<test::Road> {
 protected:
    DatabaseFacts facts(const QString& database) {
        DatabaseFacts read;
        EXPECT_TRUE(readDatabaseFacts(served.server(), database, read));
        EXPECT_EQ(shell.takeLines().join(u'\n').toStdString(), "");
        return read;
    }
    QString script(const QString& database, CreateScriptChoice choice = {}) {
        const CreateScript made = makeCreateScript(facts(database), choice);
        EXPECT_EQ(made.missing.join(u'|').toStdString(), "");
        return made.text(createScriptHeading(QStringLiteral("Shop"), choice.lineBreak));
    }

    test::TempHome home;
    test::RecordingShell shell;
    test::ServedDatabases served{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Roads, CreateScripts,
                         ::testing::Values(test::Road::Embedded, test::Road::Odbc), test::roadName);

TEST_P(CreateScripts, MakeADatabaseThatGivesTheSameScript) {
    served.load(QStringLiteral("First"), everything);
    const QString first = script(QStringLiteral("First"));
    served.load(QStringLiteral("Second"), first);
    EXPECT_EQ(script(QStringLiteral("Second")).toStdString(), first.toStdString());
}

TEST_P(CreateScripts, OverwriteWhatIsThereWhenAsked) {
    served.load(QStringLiteral("First"), everything);
    CreateScriptChoice choice;
    choice.dropFirst = true;
    const QString text = script(QStringLiteral("First"), choice);
    for (const char* database : {"First", "Empty"}) served.load(QLatin1StringView(database), text);
    EXPECT_EQ(script(QStringLiteral("First")).toStdString(),
              script(QStringLiteral("Empty")).toStdString());
}

TEST_P(CreateScripts, ChosenObjectsBringWhatTheyStandOn) {
    served.load(QStringLiteral("First"), everything);
    CreateScriptChoice choice;
    choice.lineBreak = QStringLiteral("\n");
    choice.wants = [](const ObjectRef& object) { return object.name == u"Customers"; };
    const QString text = script(QStringLiteral("First"), choice);
    for (const char* wanted :
         {"IF SCHEMA_ID(N'sales') IS NULL EXEC (N'CREATE SCHEMA [sales]')\nGO\n",
          "IF TYPE_ID(N'[sales].[Phone]') IS NULL CREATE TYPE [sales].[Phone] FROM varchar(24) NOT "
          "NULL\nGO\n",
          "    [Id] int IDENTITY(100,-5) NOT FOR REPLICATION NOT NULL,\n",
          "    [Code] char(3) COLLATE Latin1_General_BIN NOT NULL,\n",
          "ADD CONSTRAINT [UQ_Code] UNIQUE CLUSTERED ([Code] DESC)\nGO\n",
          "CREATE INDEX [IX odd] ON", "INCLUDE ([Tel], [Size]) WHERE ([Size]>(3))\nGO\n"}) {
        const QString part = QString::fromLatin1(wanted).replace(
            QStringLiteral("CREATE INDEX"), QStringLiteral("CREATE NONCLUSTERED INDEX"));
        EXPECT_TRUE(text.contains(part)) << part.toStdString() << "\n" << text.toStdString();
    }
    for (const char* other : {"Orders", "TRIGGER", "Lines", "odd ' schema"})
        EXPECT_FALSE(text.contains(QLatin1StringView(other))) << other;

    choice.wants = [](const ObjectRef& object) {
        return object.kind == ObjectType::Relationship && object.name == u"FK odd";
    };
    EXPECT_EQ(
        script(QStringLiteral("First"), choice).section(QStringLiteral("GO\n"), 1).toStdString(),
        "ALTER TABLE [odd ' schema].[ta]]ble 'x'] WITH NOCHECK ADD CONSTRAINT [FK odd] "
        "FOREIGN KEY ([co]]l'1], [a.b]) REFERENCES [sales].[Orders] ([A], [B])\nGO\n"
        "ALTER TABLE [odd ' schema].[ta]]ble 'x'] NOCHECK CONSTRAINT [FK odd]\nGO\n");
}

TEST_P(CreateScripts, NameWhatTheyCannotMake) {
    served.load(QStringLiteral("First"),
                QStringLiteral("CREATE TABLE dbo.T (a int)\nGO\n"
                               "CREATE PROCEDURE dbo.[Sec\nret] WITH ENCRYPTION AS SELECT 1\nGO\n"
                               "CREATE PROCEDURE dbo.Plain AS SELECT 2\nGO\n"));
    const CreateScript made = makeCreateScript(facts(QStringLiteral("First")), {});
    EXPECT_EQ(made.missing.join(u'|').toStdString(),
              "Procedure [dbo].[Sec\nret]: its text can't be read: it is encrypted, or hidden from "
              "this login.");
    const QString text = made.text({});
    EXPECT_TRUE(
        text.contains(QStringLiteral("\r\n-- NOT IN THIS SCRIPT: Procedure [dbo].[Sec "
                                     "ret]: its text")))
        << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("CREATE PROCEDURE dbo.Plain AS SELECT 2")));
    served.load(QStringLiteral("Copy"), text);
}

TEST(CreateScript, OfAnOldServerIsRefused) {
    test::TempHome home;
    test::RecordingShell shell;
    test::ServedDatabases old(test::Road::Embedded, QStringLiteral("8.00.2039"));
    old.load(QStringLiteral("Db"), QStringLiteral("CREATE TABLE T (a int)"));
    DatabaseFacts facts;
    EXPECT_FALSE(readDatabaseFacts(old.server(), QStringLiteral("Db"), facts));
    EXPECT_TRUE(shell.takeLines().join(u'\n').contains(QStringLiteral("version 9")));
}

TEST(ModuleStatements, MakeTheObjectUnderItsPresentName) {
    const struct {
        const char* schema;
        const char* name;
        const char* text;
        const char* statement;
    } rows[] = {
        {"dbo", "P", "create  proc P as x", "create  proc P as x"},
        {"dbo", "P", "/* create view v */ CREATE PROCEDURE [dbo].[P] AS", nullptr},
        {"hr", "P", "-- c\r\nCREATE PROC P AS x", "-- c\r\nCREATE PROC [hr].[P] AS x"},
        {"dbo", "New ]n", "CREATE PROC dbo.Old AS Old", "CREATE PROC [dbo].[New ]]n] AS Old"},
        {"hr", "V", "create or alter view hr . V as", "create or alter view hr . V as"},
        {"dbo", "V", "CREATE VIEW old.V AS", "CREATE VIEW [dbo].[V] AS"},
        {"dbo", "P", "ALTER PROCEDURE \"P\" AS", "CREATE PROCEDURE \"P\" AS"},
        {"dbo", "P", "exec something", ""},
        {"dbo", "P", "CREATE PROC", ""},
        {"", "Tr", "CREATE TRIGGER Tr ON DATABASE", "CREATE TRIGGER Tr ON DATABASE"},
    };
    for (const auto& row : rows) {
        ModuleFacts module;
        module.schema = QLatin1StringView(row.schema);
        module.name = QLatin1StringView(row.name);
        module.text = QLatin1StringView(row.text);
        EXPECT_EQ(moduleStatement(module).toStdString(), row.statement ? row.statement : row.text)
            << row.text;
    }
}

}  // namespace
}  // namespace zov
