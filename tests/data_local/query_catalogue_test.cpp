// SQL Server's catalogue over the embedded tables: the statements that tools send, word for word.
#include "local_server.h"

#include <gtest/gtest.h>

namespace zov::local {
namespace {

struct Case {
    const char* name;
    const char* sql;
    const char* expected;
};

const char* const script[] = {
    "CREATE TABLE Parent (Id int NOT NULL CONSTRAINT PK_Parent PRIMARY KEY CLUSTERED, Name "
    "nvarchar(30) NOT NULL)",
    "CREATE TABLE Child (Id int IDENTITY(5,2) NOT NULL CONSTRAINT PK_Child PRIMARY KEY CLUSTERED, "
    "ParentId int NULL "
    "CONSTRAINT FK_Child_Parent REFERENCES Parent(Id), Price decimal(10,2) NOT NULL CONSTRAINT "
    "DF_Child_Price DEFAULT 0, "
    "Body varchar(max) NULL, Code char(4) NULL, Made datetime NULL CONSTRAINT DF_Child_Made "
    "DEFAULT (getdate()))",
    "CREATE INDEX IX_Child_Parent ON Child(ParentId, Price)",
    "CREATE TABLE Heap (a int NULL, b float NULL)",
    "CREATE VIEW V AS SELECT Id FROM Parent",
    "-- first\r\nCREATE PROCEDURE P AS SELECT 1",
    "CREATE FUNCTION F(@a int) RETURNS int AS BEGIN RETURN @a END",
    "CREATE FUNCTION FI(@a int) RETURNS TABLE AS RETURN (SELECT @a AS a)",
    "CREATE TRIGGER TR ON Child AFTER INSERT AS PRINT 'x'",
    "GRANT SELECT ON Parent TO public",
    "DENY UPDATE ON Child(Price) TO guest",
};

class Catalogue : public testing::Test {
 protected:
    static void SetUpTestSuite() {
        server = new LocalServer;
        for (const char* batch : script) server->run(QString::fromUtf8(batch));
    }
    static void TearDownTestSuite() { delete server; }
    static LocalServer* server;
};
LocalServer* Catalogue::server = nullptr;

TEST_F(Catalogue, ToolsStatementsWorkAsTheyAre) {
    const Case cases[] = {
        {"version", "SELECT serverproperty('ProductVersion') AS ServerVer", "16.0.4085.2"},
        {"databases", "SELECT name FROM sysdatabases ORDER BY name",
         "master\nmodel\nmsdb\ntempdb\nTest"},
        {"databases elsewhere",
         "SELECT TOP 1 name FROM master.dbo.sysdatabases WHERE name = 'TEST'", "Test"},
        {"databases of today", "SELECT name FROM sys.databases WHERE database_id > 4", "Test"},
        {"procedures",
         "select name from sysobjects where OBJECTPROPERTY(id, N'IsProcedure') = 1 and xtype <> "
         "'S'  order by name",
         "P"},
        {"functions",
         "select name from sysobjects where OBJECTPROPERTY(id, N'IsInlineFunction') = 1 or "
         "OBJECTPROPERTY(id, N'IsScalarFunction') = 1  or "
         "OBJECTPROPERTY(id, N'IsTableFunction') = 1 and xtype <> 'S'  order by name",
         "F\nFI"},
        {"views",
         "select name from sysobjects where OBJECTPROPERTY(id, N'IsView') = 1 and xtype <> 'S'  "
         "order by name",
         "V"},
        {"triggers",
         "select name from sysobjects where OBJECTPROPERTY(id, N'IsTrigger') = 1 order by name",
         "TR"},
        {"tables",
         "select name from sysobjects where OBJECTPROPERTY(id, N'IsUserTable') = 1 and xtype <> "
         "'S'  and [name] LIKE '[CH]%' order by name",
         "Child\nHeap"},
        {"tables of a schema",
         "select name from sysobjects LEFT JOIN INFORMATION_SCHEMA.TABLES ON "
         "INFORMATION_SCHEMA.TABLES.TABLE_NAME = [name] where "
         "OBJECTPROPERTY(id, N'IsUserTable') = 1 and xtype <> 'S' AND "
         "INFORMATION_SCHEMA.TABLES.TABLE_SCHEMA IN ('dbo') order by name",
         "Child\nHeap\nParent"},
        {"relationships",
         "SELECT so.name AS foreignkey, scf.name AS foreigncolumn, sor.name AS referencedtable, "
         "scr.name AS referencedcolumn, sof.name AS tablename "
         "FROM sysreferences sr INNER JOIN sysobjects so ON sr.constid = so.id INNER JOIN "
         "sysobjects sof ON sof.id = sr.fkeyid INNER JOIN sysobjects "
         "sor ON sor.id = sr.rkeyid INNER JOIN syscolumns scf ON scf.id = sof.id AND scf.colid = "
         "sr.fkey1 INNER JOIN syscolumns scr ON scr.id = sor.id "
         "AND scr.colid = sr.rkey1 WHERE so.name = 'FK_Child_Parent' ORDER BY scf.name",
         "FK_Child_Parent|ParentId|Parent|Id|Child"},
        {"primary keys",
         "SELECT DISTINCT si.name as [name], so2.name AS t  FROM sysobjects so INNER JOIN "
         "sysindexkeys sk ON so.parent_obj = sk.id INNER JOIN "
         "sysindexes si ON sk.id = si.id AND sk.indid = si.indid INNER JOIN syscolumns sc ON sk.id "
         "= sc.id AND sk.colid = sc.colid INNER JOIN "
         "sysobjects so2 ON so.parent_obj = so2.id WHERE si.indid = 1 AND  si.name LIKE 'pk%' AND "
         "INDEXPROPERTY(si.id, si.name, 'IsStatistics') = 0 "
         "AND INDEXPROPERTY(si.id, si.name, 'IsHypothetical') = 0 ORDER BY si.name",
         "PK_Child|Child\nPK_Parent|Parent"},
        {"permissions",
         "SELECT b.[type_desc], c.[name] AS schema_name, b.[name], a.[minor_id], CASE WHEN "
         "a.[minor_id] > 0 THEN (SELECT NAME    FROM sys.Columns    "
         "WHERE object_id = a.major_id    AND column_id = a.minor_id) ELSE '' END AS minor_name, "
         "a.[state_desc], a.[permission_name], b.[type] as "
         "object_type FROM sys.database_permissions a LEFT JOIN sys.objects b ON b.object_id = "
         "a.major_id INNER JOIN sys.schemas c ON b.schema_id = "
         "c.schema_id WHERE major_id > 0  ORDER BY b.[type_desc], schema_name, b.[name] ",
         "USER_TABLE|dbo|Child|3|Price|DENY|UPDATE|U \nUSER_TABLE|dbo|Parent|0||GRANT|SELECT|U "},
        {"columns",
         "SELECT sco.[name] AS [column], sco.autoval, sco.isnullable, sco.length, sco.prec, "
         "sco.scale, sty.[name] AS datatype, ident_seed('Child') AS "
         "identityseed, ident_incr('Child') AS identityincrement, isID=case when sco.status&128=0 "
         "then '' else 'Y' end , sco.cdefault & 0, sco.[colid] "
         "AS [col_id] FROM sysobjects sob INNER JOIN syscolumns sco ON sob.id = sco.id INNER JOIN "
         "systypes sty ON sco.xtype = sty.xtype AND "
         "sco.xusertype = sty.xusertype WHERE sob.name = 'Child' ORDER BY sco.colorder",
         "Id|NULL|0|4|10|0|int|5|2|Y|0|1\nParentId|NULL|1|4|10|0|int|5|2||0|2\nPrice|NULL|0|9|10|2|"
         "decimal|5|2||0|3\n"
         "Body|NULL|1|-1|-1|NULL|varchar|5|2||0|4\nCode|NULL|1|4|4|NULL|char|5|2||0|5\nMade|NULL|1|"
         "8|23|3|datetime|5|2||0|6"},
        {"a default's text in bytes",
         "SELECT [ctext] FROM syscomments WHERE id IN (SELECT cdefault FROM syscolumns WHERE id = "
         "OBJECT_ID('Child') AND colid = 3 AND cdefault > 0)",
         "0x28002800300029002900"},
        {"a default's name",
         "SELECT [name] FROM sys.objects WHERE parent_object_id = OBJECT_ID(N'[dbo].[Child]') AND "
         "type_desc LIKE 'DEFAULT_CONSTRAINT' ORDER BY name",
         "DF_Child_Made\nDF_Child_Price"},
        {"indexes",
         "SELECT DISTINCT sc.name AS [column], si.name as [index], sk.indid, sk.keyno FROM "
         "sysobjects so INNER JOIN sysindexkeys sk ON so.parent_obj = "
         "sk.id INNER JOIN sysindexes si ON sk.id = si.id AND sk.indid = si.indid INNER JOIN "
         "syscolumns sc ON sk.id = sc.id AND sk.colid = sc.colid INNER "
         "JOIN sysobjects so2 ON so.parent_obj = so2.id WHERE so2.name = 'Child' AND si.indid "
         "BETWEEN 1 AND 254 AND INDEXPROPERTY(si.id, si.name, "
         "'IsStatistics') = 0 AND INDEXPROPERTY(si.id, si.name, 'IsHypothetical') = 0 ORDER BY "
         "sk.indid, sk.keyno",
         "Id|PK_Child|1|1\nParentId|IX_Child_Parent|2|1\nPrice|IX_Child_Parent|2|2"},
        {"defaults",
         "SELECT so.name AS [constraint], sc.text AS [default], sl.name as [column] FROM "
         "sysobjects so INNER JOIN syscomments sc ON so.id = sc.id INNER "
         "JOIN syscolumns sl ON so.parent_obj = sl.id AND so.id = sl.cdefault WHERE so.parent_obj "
         "IN (SELECT id FROM sysobjects WHERE name = 'Child') "
         "ORDER BY info",
         "DF_Child_Price|((0))|Price\nDF_Child_Made|(getdate())|Made"},
        {"an object's text",
         "SELECT text FROM syscomments sc INNER JOIN sysobjects so ON sc.id = so.id WHERE so.name "
         "= 'P' ORDER BY sc.colid",
         "-- first\r\nCREATE PROCEDURE P AS SELECT 1"},
        {"owners",
         "SELECT DISTINCT su.name AS Owner FROM sysobjects so INNER JOIN sysusers su ON so.uid = "
         "su.uid ORDER BY su.name",
         "dbo"},
        {"an object's owner",
         "SELECT so.name AS ObjectName, su.name AS Owner FROM sysobjects so INNER JOIN sysusers su "
         "ON so.uid = su.uid WHERE so.name = 'child' AND so.xtype = 'u'",
         "Child|dbo"},
        {"schemas",
         "SELECT SCHEMA_NAME FROM INFORMATION_SCHEMA.schemata WHERE SCHEMA_NAME NOT IN "
         "('INFORMATION_SCHEMA', 'sys', 'guest') AND SCHEMA_NAME NOT LIKE 'db[_]%' ORDER BY "
         "SCHEMA_NAME",
         "dbo"},
        {"a routine's schema",
         "SELECT ROUTINE_SCHEMA FROM INFORMATION_SCHEMA.ROUTINES WHERE ROUTINE_NAME = 'P'", "dbo"},
        {"a schema by id",
         "SELECT OBJECT_SCHEMA_NAME([object_id]) FROM sys.objects WHERE [object_id] = "
         "OBJECT_ID('V')",
         "dbo"},
        {"an owner by id", "SELECT USER_NAME(uid) FROM sysobjects WHERE [id] = OBJECT_ID('V')",
         "dbo"},
        {"a probe for nulls",
         "IF EXISTS (SELECT TOP (1) [ParentId] FROM [Child] WHERE [ParentId]  IS NULL) SELECT 1 "
         "ELSE SELECT 0",
         "0"},
        {"a drop's guard",
         "IF EXISTS (SELECT * FROM dbo.sysobjects\r\nWHERE id = object_id('[dbo].[P]') AND "
         "OBJECTPROPERTY(id, 'IsProcedure') = 1)\r\nSELECT 'there'",
         "there"},
        {"kinds by number",
         "select count(*) from sysobjects where id = object_id('dbo.V') and sysstat & 0xf = 2",
         "1"},
        {"heaps",
         "SELECT si.indid, si.name, si.rows FROM sysindexes si WHERE si.id = OBJECT_ID('Heap')",
         "0|NULL|0"},
        {"information schema",
         "SELECT COLUMN_NAME, DATA_TYPE, CHARACTER_MAXIMUM_LENGTH, NUMERIC_PRECISION, "
         "COLUMN_DEFAULT, IS_NULLABLE FROM INFORMATION_SCHEMA.COLUMNS WHERE TABLE_NAME = 'Child' "
         "AND ORDINAL_POSITION IN (3, 4) ORDER BY ORDINAL_POSITION",
         "Price|decimal|NULL|10|((0))|NO\nBody|varchar|-1|NULL|NULL|YES"},
        {"keys",
         "SELECT CONSTRAINT_NAME, COLUMN_NAME FROM INFORMATION_SCHEMA.KEY_COLUMN_USAGE WHERE "
         "TABLE_NAME = 'Child' ORDER BY 1",
         "FK_Child_Parent|ParentId\nPK_Child|Id"},
        {"modules",
         "SELECT OBJECT_NAME(object_id), definition FROM sys.sql_modules WHERE object_id = "
         "OBJECT_ID('V', 'V')",
         "V|CREATE VIEW V AS SELECT Id FROM Parent"},
        {"identity columns", "SELECT name, seed_value, increment_value FROM sys.identity_columns",
         "Id|5|2"},
        {"properties",
         "SELECT OBJECTPROPERTY(OBJECT_ID('Child'), 'TableHasIdentity'), "
         "OBJECTPROPERTY(OBJECT_ID('TR'), 'ExecIsInsertTrigger'), "
         "COLUMNPROPERTY(OBJECT_ID('Child'), 'Id', 'IsIdentity'), "
         "INDEXPROPERTY(OBJECT_ID('Child'), 'PK_Child', 'IsClustered'), "
         "OBJECTPROPERTY(OBJECT_ID('FK_Child_Parent'), 'IsForeignKey'), "
         "OBJECTPROPERTY(OBJECT_ID('Child'), 'NoSuchThing'), OBJECT_ID('nothing')",
         "1|1|1|1|1|NULL|NULL"},
        {"names and ids",
         "SELECT DB_NAME(), SCHEMA_NAME(1), TYPE_NAME(56), COL_NAME(OBJECT_ID('Child'), 2), "
         "COL_LENGTH('Child', 'Code'), SUSER_SNAME(), USER_NAME()",
         "Test|dbo|int|ParentId|4|sa|dbo"},
    };
    for (const Case& c : cases) {
        std::string got;
        try {
            got = server->value(QString::fromUtf8(c.sql));
        } catch (const DbError& error) {
            got = std::to_string(error.native) + ": " + error.description.toStdString();
        }
        EXPECT_EQ(got, c.expected) << c.name;
    }
}

TEST_F(Catalogue, EveryViewCanBeReadWhole) {
    const char* const views[] = {"sysobjects",
                                 "syscolumns",
                                 "syscomments",
                                 "systypes",
                                 "sysindexes",
                                 "sysindexkeys",
                                 "sysreferences",
                                 "sysforeignkeys",
                                 "sysconstraints",
                                 "sysdepends",
                                 "sysusers",
                                 "sysmembers",
                                 "sysfilegroups",
                                 "sysfiles",
                                 "sysproperties",
                                 "sysdatabases",
                                 "syslogins",
                                 "sys.objects",
                                 "sys.all_objects",
                                 "sys.tables",
                                 "sys.views",
                                 "sys.procedures",
                                 "sys.synonyms",
                                 "sys.sequences",
                                 "sys.triggers",
                                 "sys.columns",
                                 "sys.all_columns",
                                 "sys.computed_columns",
                                 "sys.identity_columns",
                                 "sys.parameters",
                                 "sys.schemas",
                                 "sys.database_principals",
                                 "sys.database_role_members",
                                 "sys.database_permissions",
                                 "sys.types",
                                 "sys.indexes",
                                 "sys.index_columns",
                                 "sys.foreign_keys",
                                 "sys.foreign_key_columns",
                                 "sys.default_constraints",
                                 "sys.check_constraints",
                                 "sys.key_constraints",
                                 "sys.sql_modules",
                                 "sys.extended_properties",
                                 "sys.partitions",
                                 "sys.databases",
                                 "sys.server_principals",
                                 "sys.sysobjects",
                                 "INFORMATION_SCHEMA.SCHEMATA",
                                 "INFORMATION_SCHEMA.TABLES",
                                 "INFORMATION_SCHEMA.VIEWS",
                                 "INFORMATION_SCHEMA.ROUTINES",
                                 "INFORMATION_SCHEMA.COLUMNS",
                                 "INFORMATION_SCHEMA.PARAMETERS",
                                 "INFORMATION_SCHEMA.TABLE_CONSTRAINTS",
                                 "INFORMATION_SCHEMA.KEY_COLUMN_USAGE",
                                 "INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS",
                                 "INFORMATION_SCHEMA.CHECK_CONSTRAINTS",
                                 "INFORMATION_SCHEMA.CONSTRAINT_COLUMN_USAGE",
                                 "INFORMATION_SCHEMA.DOMAINS"};
    for (const char* view : views)
        EXPECT_EQ(server->error(QStringLiteral("SELECT * FROM ") + QLatin1String(view)), "no error")
            << view;
}

TEST_F(Catalogue, TypesAreThoseOfTheServer) {
    EXPECT_EQ(server->types(QStringLiteral("select name, refdate, id, xtype from sysobjects")),
              "nvarchar(128) datetime int char(2)");
    EXPECT_EQ(server->types(QStringLiteral("select ctext, text, colid from syscomments")),
              "varbinary(8000) nvarchar(4000) smallint");
    EXPECT_EQ(server->types(QStringLiteral(
                  "select length, prec, scale, xtype, isnullable, cdefault from syscolumns")),
              "smallint smallint int tinyint int int");
    EXPECT_EQ(server->types(QStringLiteral(
                  "select object_id, type, type_desc, is_ms_shipped from sys.objects")),
              "int char(2) nvarchar(60) bit");
}

TEST_F(Catalogue, AnOldServerHasNoSysSchema) {
    LocalServer old(QStringLiteral("8.00.2039"));
    EXPECT_EQ(old.value(QStringLiteral("SELECT serverproperty('ProductVersion') AS ServerVer")),
              "8.00.2039");
    EXPECT_EQ(old.error(QStringLiteral("SELECT TOP 1 name FROM sys.databases")),
              "208: Invalid object name 'sys.databases'.");
    EXPECT_EQ(old.error(QStringLiteral("SELECT OBJECT_SCHEMA_NAME(1)")),
              "195: 'OBJECT_SCHEMA_NAME' is not a recognized function name.");
    old.run(QStringLiteral("CREATE TABLE T (a int NULL)"));
    EXPECT_EQ(old.value(QStringLiteral("SELECT USER_NAME(uid) FROM sysobjects WHERE name = 'T'")),
              "dbo");
    EXPECT_EQ(old.value(QStringLiteral("SELECT name FROM sysdatabases WHERE dbid > 4")), "Test");
}

TEST_F(Catalogue, OtherDatabasesAreReadByName) {
    LocalServer two;
    two.run(QStringLiteral("CREATE TABLE Here (a int) INSERT Here VALUES (1), (2)"));
    const auto other = two.open(QStringLiteral("Other db"), true);
    LocalServer::rows(
        *other,
        QStringLiteral("CREATE TABLE There (a int, b varchar(9)) INSERT There VALUES (2, 'two')"));
    LocalServer::rows(*other, QStringLiteral("CREATE VIEW Seen AS SELECT b FROM There"));
    EXPECT_EQ(
        two.value(QStringLiteral("SELECT name FROM [Other db]..sysobjects WHERE xtype = 'U'")),
        "There");
    EXPECT_EQ(two.value(QStringLiteral("SELECT b FROM [other DB].dbo.Seen")), "two");
    EXPECT_EQ(two.value(QStringLiteral(
                  "SELECT h.a, t.b FROM Here h JOIN [Other db].dbo.There t ON t.a = h.a")),
              "2|two");
    EXPECT_EQ(two.value(QStringLiteral("SELECT COUNT(*) FROM Here WHERE a IN (SELECT a FROM [Other "
                                       "db].sys.tables CROSS JOIN Here)")),
              "2");
    EXPECT_EQ(two.value(QStringLiteral(
                  "SELECT OBJECT_NAME(OBJECT_ID('[Other db]..There'), DB_ID('Other db'))")),
              "There");
    EXPECT_EQ(two.value(QStringLiteral("SELECT COUNT(*) FROM Here")), "2");
}

}  // namespace
}  // namespace zov::local
