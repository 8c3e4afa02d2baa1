// Collations of columns and databases in queries, keys, names and files.
#include "data_local/scripted_server.h"

#include "data/local/functions.h"
#include "data/local/sorting.h"
#include "data/local/sqlite_files.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <sqlite3.h>

namespace zov::test {
namespace {

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

struct Row {
    const char* sql;
    const char* expected;
};

void expectRows(ScriptedServer& server, const std::vector<Row>& rows) {
    for (const Row& row : rows)
        EXPECT_EQ(server.rows(text(row.sql)).join(u','), text(row.expected)) << row.sql;
}

/// Letters in columns of four collations; ci, cs, ai and bin hold the same values.
constexpr const char* Letters =
    "create table L (id int primary key, ci nvarchar(10), "
    "cs nvarchar(10) collate Latin1_General_CS_AS, ai nvarchar(10) collate Latin1_General_CI_AI, "
    "bin varchar(10) collate Latin1_General_BIN2)\n"
    "insert L select n, t, t, t, t from (values (1, N'b'), (2, N'A'), (3, N'a'), (4, N'\xC3\xA4'), "
    "(5, N'B '), (6, N'_')) v(n, t)";

TEST(CollationQueries, TheColumnsCollationRulesEqualityAndOrder) {
    ScriptedServer server;
    ASSERT_EQ(server.run(text(Letters)), QString());
    expectRows(
        server,
        {
            {"select id from L where ci = 'B' order by id", "1,5"},
            {"select id from L where cs = 'B' order by id", "5"},
            {"select id from L where 'B' = cs order by id", "5"},
            {"select id from L where ai = N'\xC3\x84' order by id", "2,3,4"},
            {"select id from L where bin = 'a' order by id", "3"},
            {"select id from L where bin = 'B' order by id", "5"},
            {"select id from L where cs in ('a', 'B') order by id", "3,5"},
            {"select id from L where cs not in ('a', 'B') order by id", "1,2,4,6"},
            {"select id from L where cs between 'a' and 'A' order by id", "2,3"},
            {"select id from L where bin > 'B' order by id", "1,3,4,6"},
            {"select id from L where cs <> 'a' order by id", "1,2,4,5,6"},
            {"select case cs when 'A' then 'big' when 'a' then 'small' end from L where id < 4 "
             "order "
             "by id",
             "NULL,big,small"},
            {"select nullif(cs, 'A') from L where id in (2, 3) order by id", "NULL,a"},
            {"select id from L order by ci, id", "6,2,3,4,1,5"},
            {"select id from L order by cs, id", "6,3,2,4,1,5"},
            {"select id from L order by bin", "2,5,6,3,1,4"},
            {"select id from L order by ai, id", "6,2,3,4,1,5"},
            {"select distinct ci from L order by 1", "_,A,\xC3\xA4,b"},
            {"select distinct cs from L order by 1", "_,a,A,\xC3\xA4,b,B "},
            {"select count(distinct ci), count(distinct cs), count(distinct ai) from L", "4|6|3"},
            {"select count(*) from L group by ai order by 1", "1,2,3"},
            {"select count(*) from L group by cs order by 1", "1,1,1,1,1,1"},
            {"select min(bin), max(bin), min(cs), max(cs) from L", "A|\xC3\xA4|_|B "},
            {"select id, row_number() over (partition by ai order by id) from L order by id",
             "1|1,2|1,3|2,4|3,5|2,6|1"},
            {"select a.id, b.id from L a join L b on a.cs = b.cs order by a.id",
             "1|1,2|2,3|3,4|4,5|5,6|6"},
            {"select count(*) from L a join L b on a.ci = b.ci", "10"},
            {"select id from L where cs in (select cs from L where id = 2)", "2"},
            {"select id from L where cs = any (select cs from L where id in (2, 3)) order by id",
             "2,3"},
            {"select id from L where exists (select 1 from L x where x.cs = upper(L.cs) and x.id = "
             "2) "
             "order by id",
             "2,3"},
            {"select count(*) from (select ci from L where id = 2 union select ci from L where id "
             "= 3) u",
             "1"},
            {"select cs from L where id = 2 union select cs from L where id = 3 order by 1", "a,A"},
            {"select 'a' union select cs from L where id in (2, 3) order by 1", "a,A"},
            {"select cs from L where id = 2 intersect select 'a'", ""},
            {"select ci from L where id = 2 intersect select 'a'", "A"},
            {"select cs from L where id in (2, 3) except select 'A'", "a"},
            {"select count(*) from (select distinct cs from L where id in (2, 3)) d where cs = 'A'",
             "1"},
            {"with w as (select cs as c from L) select count(*) from w where c = 'a'", "1"},
        });
}

TEST(CollationQueries, FunctionsLookByTheCollationOfTheirText) {
    ScriptedServer server;
    ASSERT_EQ(server.run(text(Letters)), QString());
    expectRows(
        server,
        {
            {"select id from L where ci like 'b%' order by id", "1,5"},
            {"select id from L where cs like 'b%' order by id", "1"},
            {"select id from L where cs not like '%[a-b]%' order by id", "5,6"},
            {"select id from L where bin like '[A-Z]%' order by id", "2,5"},
            {"select id from L where ai like 'a' order by id", "2,3,4"},
            {"select id from L where cs like 'bx' escape 'x' order by id", ""},
            {"select charindex('B', ci), charindex('B', cs) from L where id = 1", "1|0"},
            {"select patindex('%B%', ci), patindex('%B%', cs) from L where id = 1", "1|0"},
            {"select replace(ci, 'B', 'x'), replace(cs, 'B', 'x') from L where id = 1", "x|b"},
            {"select id from L where upper(cs) = 'A' order by id", "2,3"},
            {"select id from L where cs + 'x' = 'ax'", "3"},
            {"select id from L where isnull(cs, '') = 'a'", "3"},
            {"select id from L where cast(cs as nvarchar(20)) = 'A'", "2"},
            {"select id from L where left(cs, 1) = 'A'", "2"},
            {"select charindex('STRASSE', N'die Stra\xC3\x9F"
             "e' collate Latin1_General_CI_AI)",
             "5"},
        });
}

TEST(CollationQueries, CollateInAnExpressionGoesFirst) {
    ScriptedServer server;
    ASSERT_EQ(server.run(text(Letters)), QString());
    expectRows(
        server,
        {
            {"select id from L where ci collate Latin1_General_CS_AS = 'a'", "3"},
            {"select id from L where cs = 'a' collate Latin1_General_CI_AS order by id", "2,3"},
            {"select id from L where cs collate database_default = 'a' order by id", "2,3"},
            {"select id from L where ci = cs collate database_default order by id", "1,2,3,4,5,6"},
            {"select id from L where cs collate Latin1_General_CI_AI = ai order by id",
             "1,2,3,4,5,6"},
            {"select id from L order by ci collate Latin1_General_BIN2", "2,5,6,3,1,4"},
            {"select case when 'a' = 'A' then 1 else 0 end", "1"},
            {"select case when 'a' = 'A' collate Latin1_General_CS_AS then 1 else 0 end", "0"},
            {"select case when 'a' collate Latin1_General_BIN = 'a  ' then 1 else 0 end", "1"},
            {"select distinct c collate Latin1_General_CS_AS from (values ('a'), ('A')) v(c) order "
             "by 1",
             "a,A"},
            {"declare @a nvarchar(5) set @a = N'A' select id from L where cs = @a", "2"},
            {"declare @a nvarchar(5) set @a = N'A' if @a = 'a' select 'same'", "same"},
        });
}

TEST(CollationQueries, ConflictsAreRefusedInTheServersWords) {
    ScriptedServer server;
    ASSERT_EQ(server.run(text(Letters)), QString());
    const auto conflict = [](const char* a, const char* b, const char* operation) {
        return QStringLiteral(
                   "error: Cannot resolve the collation conflict between \"%1\" and "
                   "\"%2\" in the %3 operation.")
            .arg(QLatin1String(a), QLatin1String(b), QLatin1String(operation));
    };
    constexpr const char* standard = "SQL_Latin1_General_CP1_CI_AS";
    static const struct {
        const char* sql;
        const char* a;
        const char* b;
        const char* operation;
    } rows[] = {
        {"select 1 from L where ci = cs", standard, "Latin1_General_CS_AS", "equal to"},
        {"select 1 from L a join L b on a.cs < b.ai", "Latin1_General_CS_AS",
         "Latin1_General_CI_AI", "less than"},
        {"select 1 from L where cs <> bin", "Latin1_General_CS_AS", "Latin1_General_BIN2",
         "not equal to"},
        {"select 1 from L where ci like cs", standard, "Latin1_General_CS_AS", "like"},
        {"select 1 from L where ci in (select cs from L)", standard, "Latin1_General_CS_AS",
         "equal to"},
        {"select ci from L union select cs from L", standard, "Latin1_General_CS_AS", "UNION"},
        {"select charindex(ci, cs) from L", standard, "Latin1_General_CS_AS", "charindex"},
        {"select 1 from L where ci collate Latin1_General_BIN = cs collate Latin1_General_CI_AS",
         "Latin1_General_BIN", "Latin1_General_CI_AS", "equal to"},
        {"select 1 from L where ci + cs = 'aa'", standard, "Latin1_General_CS_AS", "equal to"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(server.one(text(row.sql)), conflict(row.a, row.b, row.operation)) << row.sql;
    expectRows(
        server,
        {{"select ci + cs from L",
          "error: Cannot resolve collation conflict between \"SQL_Latin1_General_CP1_CI_AS\" "
          "and \"Latin1_General_CS_AS\" in add operator occurring in SELECT statement column "
          "1."},
         {"select id, ci from L union all select id, cs from L",
          "error: Cannot resolve collation conflict between \"SQL_Latin1_General_CP1_CI_AS\" "
          "and \"Latin1_General_CS_AS\" in UNION ALL operator occurring in SELECT statement "
          "column 2."},
         {"select id collate Latin1_General_BIN from L",
          "error: Expression type int is invalid for COLLATE clause."},
         // A conflict in a text that is only shown for its length is none.
         {"select len(ci) + len(cs) from L where id = 1", "2"}});
}

TEST(CollationQueries, KeysTellApartWhatTheCollationDoes) {
    static const struct {
        const char* collation;
        const char* first;
        const char* second;
        bool taken;
    } rows[] = {
        {"SQL_Latin1_General_CP1_CI_AS", "a", "A", true},
        {"SQL_Latin1_General_CP1_CI_AS", "a", "\xC3\xA4", false},
        {"SQL_Latin1_General_CP1_CI_AS", "a", "a ", true},
        {"Latin1_General_CS_AS", "a", "A", false},
        {"Latin1_General_CS_AS", "a", "a  ", true},
        {"Latin1_General_CI_AI", "a", "\xC3\x84", true},
        {"Latin1_General_BIN", "a", "A", false},
        {"Latin1_General_BIN2", "a", "a ", true},
    };
    ScriptedServer server;
    int n = 0;
    for (const auto& row : rows) {
        for (const char* key : {"primary key", "unique", "null create unique index i on K(c)"}) {
            const QString table = QStringLiteral("K%1").arg(++n);
            QString made = QStringLiteral("create table K (c nvarchar(9) collate %1 not null %2")
                               .arg(QLatin1String(row.collation), QLatin1String(key));
            made.replace(QStringLiteral("not null null create"),
                         QStringLiteral("not null) create"));
            if (!made.contains(QStringLiteral("create unique"))) made += u')';
            made.replace(QStringLiteral("table K "), QStringLiteral("table %1 ").arg(table));
            made.replace(QStringLiteral("on K("), QStringLiteral("on %1(").arg(table));
            ASSERT_EQ(server.run(made), QString());
            const QString insert = QStringLiteral("insert %1 values (N'%2')");
            ASSERT_EQ(server.run(insert.arg(table, text(row.first))), QString());
            EXPECT_EQ(server.run(insert.arg(table, text(row.second))).contains(u"duplicate key"),
                      row.taken)
                << row.collation << ": " << row.first << " and " << row.second << " " << key;
        }
    }
    // Altering the column asks its rows again.
    ASSERT_EQ(
        server.run(text("create table A1 (c nvarchar(9) collate Latin1_General_CS_AS) insert A1 "
                        "values ('a') insert A1 values ('A')")),
        QString());
    EXPECT_TRUE(server.run(text("create unique index i on A1(c)")).isEmpty());
    EXPECT_TRUE(server.run(text("alter table A1 alter column c nvarchar(9)")).contains(u"i"));
    ASSERT_EQ(server.run(text("drop index A1.i alter table A1 alter column c nvarchar(9)")),
              QString());
    expectRows(server, {{"select count(*) from A1 where c = 'a'", "2"},
                        {"select collation_name from sys.columns where name = 'c' and object_id = "
                         "object_id('A1')",
                         "SQL_Latin1_General_CP1_CI_AS"}});
    EXPECT_TRUE(server.run(text("create unique index i on A1(c)")).contains(u"duplicate key"));
}

TEST(CollationQueries, TheCatalogueTellsThem) {
    ScriptedServer server;
    ASSERT_EQ(
        server.run(text("create table T (a varchar(5) collate latin1_general_bin2, b nvarchar(5), "
                        "c int, d as a + 'x', e as b collate Latin1_General_CI_AI)\ngo\n"
                        "create view V as select a, b collate Greek_CI_AS as g from T\ngo\n"
                        "select a, upper(b) as b into T2 from T")),
        QString());
    expectRows(
        server,
        {
            {"select name, collation_name from sys.columns where object_id = object_id('T') order "
             "by "
             "column_id",
             "a|Latin1_General_BIN2,b|SQL_Latin1_General_CP1_CI_AS,c|NULL,d|Latin1_General_BIN2,"
             "e|Latin1_General_CI_AI"},
            {"select name, collation_name from sys.columns where object_id = object_id('V') order "
             "by "
             "column_id",
             "a|Latin1_General_BIN2,g|Greek_CI_AS"},
            {"select COLUMN_NAME, COLLATION_NAME from INFORMATION_SCHEMA.COLUMNS where TABLE_NAME "
             "= "
             "'T2' order by ORDINAL_POSITION",
             "a|Latin1_General_BIN2,b|SQL_Latin1_General_CP1_CI_AS"},
            {"select serverproperty('Collation')", "SQL_Latin1_General_CP1_CI_AS"},
            {"select databasepropertyex('shop', 'Collation')", "SQL_Latin1_General_CP1_CI_AS"},
            {"select collationproperty('Latin1_General_CS_AS', 'CodePage'), "
             "collationproperty('Latin1_General_CS_AS', 'ComparisonStyle'), "
             "collationproperty('Turkish_100_CI_AS', 'LCID'), "
             "collationproperty('Turkish_100_CI_AS', 'Version'), "
             "collationproperty('No_Such_CI_AS', 'LCID')",
             "1252|196608|1055|2|NULL"},
        });
}

TEST(CollationQueries, AnUnknownOneIsToldOnce) {
    ScriptedServer server;
    ASSERT_EQ(
        server.run(text("create table T (a varchar(5) collate Klingon_CS_AS, b varchar(5) collate "
                        "Klingon_CS_AS)")),
        QString());
    EXPECT_EQ(server.messages,
              QStringList{text("Collation 'Klingon_CS_AS' isn't known to the embedded server; "
                               "Latin1_General_CS_AS is used for it.")});
    expectRows(server,
               {{"select count(*) from (select 1 x) t where 'a' = 'A' collate Klingon_CS_AS", "0"},
                {"select collation_name from sys.columns where name = 'a'", "Klingon_CS_AS"}});
}

// --- names --------------------------------------------------------------------------------------

TEST(CollationNamesOfObjects, SortByTheDatabasesCollation) {
    ScriptedServer server;
    ASSERT_EQ(server.run(text("create table Zoo (i int)\ncreate table [\xC3\x84rger] (i int)\n"
                              "create table Apfel (i int)\ncreate table berta (i int)")),
              QString());
    expectRows(server,
               {{"select name from sysobjects where xtype = 'U' order by name",
                 "Apfel,\xC3\x84rger,berta,Zoo"},
                {"select name from sysobjects where name = N'\xC3\xA4RGER'", "\xC3\x84rger"},
                {"select count(*) from [\xC3\xA4RGER]", "0"}});
}

/// How a database comes to tell cases apart.
class CasedDatabase : public testing::TestWithParam<const char*> {
 protected:
    void SetUp() override {
        ASSERT_EQ(server.run(text(GetParam())), QString());
        ASSERT_EQ(server.run(text("use cased")), QString());
    }
    ScriptedServer server;
};

TEST_P(CasedDatabase, HoldsNamesThatDifferInCaseOnly) {
    ASSERT_EQ(
        server.run(
            text("create table T (a int primary key, A int, name varchar(9) constraint UQ unique)\n"
                 "create table t (a int identity, [B^b] int)\n"
                 "insert T values (1, 2, 'x')\ninsert T values (2, 3, 'X')\n"
                 "insert t ([B^b]) values (7)\ngo\n"
                 "create view V as select A from T\ngo\ncreate view v as select a from T\ngo\n"
                 "create index i on T(A)\ncreate index I on T(a)\n"
                 "alter table T add C varchar(5) null, c varchar(5) null\ngo\n"
                 "update T set c = 'low', C = 'high' where A = 2")),
        QString());
    expectRows(
        server,
        {
            {"select name from sysobjects where xtype in ('U', 'V') order by name", "t,T,v,V"},
            {"select a, A, C, c from T order by a", "1|2|high|low,2|3|NULL|NULL"},
            {"select [B^b] from t", "7"},
            {"select a from v order by a", "1,2"},
            {"select A from V order by 1", "2,3"},
            {"select a from T where name = 'X'", "2"},
            {"select X.a from T x join T X on x.a = X.A", "1"},
            {"select case when 'a' = 'A' then 1 else 0 end", "0"},
            {"select name from sys.columns where object_id = object_id('T') order by column_id",
             "a,A,name,C,c"},
            {"select name from sys.indexes where object_id = object_id('T') and name in ('i', 'I') "
             "order by name",
             "i,I"},
            {"select B from T", "error: Invalid column name 'B'."},
            {"select 1 from T x where X.a = 1",
             "error: The multi-part identifier \"X.a\" could not be bound."},
            {"select * from TT", "error: Invalid object name 'TT'."},
            {"select object_id('dbo.tT')", "NULL"},
            {"select databasepropertyex('cased', 'Collation')", "Latin1_General_CS_AS"},
        });
    EXPECT_TRUE(
        server.run(text("insert T(a, A, name) values (3, 1, 'x')"))
            .contains(u"Violation of UNIQUE KEY constraint 'UQ'. Cannot insert duplicate key "
                      "in object 'dbo.T'. The duplicate key value is (x)."));
    EXPECT_TRUE(
        server.run(text("create table T (b int)")).contains(u"already an object named 'T'"));
    ASSERT_EQ(
        server.run(text("drop index T.I\ndrop index T.i\nalter table T alter column A bigint\n"
                        "exec sp_rename 'T.C', 'D', 'COLUMN'\nexec sp_rename 'T', 'tt'\n"
                        "drop table t")),
        QString());
    expectRows(server, {{"select a, A, D, c from tt order by a", "1|2|high|low,2|3|NULL|NULL"},
                        {"select name from sysobjects where xtype = 'U'", "tt"}});
    // Back again: the names that are one then are refused, and everything stays.
    EXPECT_TRUE(server.run(text("alter database cased collate Latin1_General_CI_AS"))
                    .contains(u"ALTER DATABASE failed. The default collation of database 'cased' "
                              "cannot be set to Latin1_General_CI_AS"));
    expectRows(server,
               {{"select name from sysobjects where xtype = 'V' order by name", "v,V"},
                {"select databasepropertyex('cased', 'Collation')", "Latin1_General_CS_AS"}});
    server.connect(text("cased"), false);
    // Columns of one table as well.
    ASSERT_EQ(server.run(text("drop view v")), QString());
    EXPECT_TRUE(server.run(text("alter database cased collate Latin1_General_CI_AS"))
                    .contains(u"would make one name of two"));
    expectRows(server, {{"select a, A from tt order by a", "1|2,2|3"},
                        {"select 1 from TT", "error: Invalid object name 'TT'."}});
}

INSTANTIATE_TEST_SUITE_P(
    Ways, CasedDatabase,
    testing::Values("create database cased collate Latin1_General_CS_AS",
                    "create database cased\ngo\nalter database cased collate Latin1_General_CS_AS",
                    "create database cased\ngo\nuse cased\ngo\ncreate table Early (Id int, [N^m] "
                    "varchar(3))\ninsert Early values (1, 'a')\ngo\nalter database cased collate "
                    "Latin1_General_CS_AS\ngo\ndrop table Early"));

TEST(CollationNamesOfObjects, SurviveAnotherCollation) {
    ScriptedServer server;
    ASSERT_EQ(
        server.run(text(
            "create table Early (Id int primary key, [N^m] varchar(3) unique, Twice as Id * 2)\n"
            "insert Early values (1, 'a')\ngo\nalter database shop collate Latin1_General_BIN2\n"
            "go\ncreate table early (x int)\ninsert Early values (2, 'b')")),
        QString());
    expectRows(server, {{"select Id, [N^m], Twice from Early order by Id", "1|a|2,2|b|4"},
                        {"select * from early", ""},
                        {"select id from Early", "error: Invalid column name 'id'."}});
    EXPECT_TRUE(server.run(text("insert Early values (3, 'A')")).contains(u"duplicate key"))
        << "the column keeps its collation";
    ASSERT_EQ(server.run(text("drop table early\ngo\nalter database shop collate Greek_CI_AI")),
              QString());
    expectRows(server, {{"select ID, [n^M], TWICE from EARLY order by iD", "1|a|2,2|b|4"},
                        {"select distinct collation_name from sys.columns where collation_name is "
                         "not null",
                         "SQL_Latin1_General_CP1_CI_AS"}});
}

TEST(CollationNamesOfObjects, ARolledBackChangeIsNone) {
    ScriptedServer server;
    ASSERT_EQ(server.run(text("create table Early (Id int)")), QString());
    EXPECT_NE(server.load(text("alter database shop collate Latin1_General_CS_AS\ngo\n"
                               "create table EARLY (i int)\ngo\nnonsense")),
              QString());
    expectRows(server, {{"select name from sysobjects where xtype = 'U'", "Early"},
                        {"select count(*) from eARLY where iD = 1", "0"},
                        {"select databasepropertyex('shop', 'Collation')",
                         "SQL_Latin1_General_CP1_CI_AS"}});
}

TEST(CollationNamesOfObjects, TwoDatabasesKeepTheirOwn) {
    ScriptedServer server;
    ASSERT_EQ(
        server.run(text("create table T (n nvarchar(9) primary key)\ninsert T values ('a')\n"
                        "insert T values ('b')\ngo\n"
                        "create database cased collate Latin1_General_CS_AS\ngo\nuse cased\ngo\n"
                        "create table T (n nvarchar(9) primary key, N int)\n"
                        "insert T values ('a', 1)\ninsert T values ('A', 2)")),
        QString());
    expectRows(
        server,
        {{"select n, N from cased..T order by n", "a|1,A|2"},
         {"select count(*) from cased.dbo.T where n = 'A'", "1"},
         {"select n from shop..T where n = 'A'", "a"},
         {"select x.N from T x join shop..T y on x.n = y.n collate Latin1_General_CS_AS", "1"},
         {"select 1 from T x join shop..T y on x.n = y.n",
          "error: Cannot resolve the collation conflict between "
          "\"Latin1_General_CS_AS\" and \"SQL_Latin1_General_CP1_CI_AS\" in the equal "
          "to operation."}});
}

// --- files --------------------------------------------------------------------------------------

/// Works on a database's file behind the server's back.
class FileHandle {
 public:
    FileHandle(const ScriptedServer& server, const char* name) {
        sqlite3_open(
            (server.folder() + QStringLiteral("/server/") + text(name)).toUtf8().constData(),
            &handle_);
        sqlite3_collation_needed(
            handle_, nullptr, [](void*, sqlite3* handle, int, const char* name) {
                sqlite3_create_collation_v2(handle, name, SQLITE_UTF8, nullptr, compare, nullptr);
            });
        sqlite3_create_collation_v2(handle_, "NOCASE", SQLITE_UTF8, nullptr, compare, nullptr);
    }
    ~FileHandle() { sqlite3_close(handle_); }
    bool run(const char* sql) {
        return sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
    }

 private:
    /// As in files of earlier versions: case folded, in the order of the code points.
    static int compare(void*, int sizeA, const void* a, int sizeB, const void* b) {
        return QString::fromUtf8(static_cast<const char*>(a), sizeA)
            .compare(QString::fromUtf8(static_cast<const char*>(b), sizeB), Qt::CaseInsensitive);
    }

    sqlite3* handle_ = nullptr;
};

constexpr const char* SomeNames =
    "create table N (n nvarchar(9) primary key, cs nvarchar(9) collate Latin1_General_CS_AS "
    "unique)\n"
    "insert N select t, t from (values (N'a_'), (N'a1'), (N'\xC3\xA4'), (N'b'), (N'z'), (N'Z1')) "
    "v(t)";

/// A server whose database "shop" rests on another order: what it was is not noted, or is another
/// version's; and a copy of it, "old", that no handle of this process has seen.
void makeStale(ScriptedServer& server, const char* extra) {
    ASSERT_EQ(server.run(text(SomeNames)), QString());
    ASSERT_EQ(server.run(text("create database other")), QString());
    server.disconnect();
    const QString folder = server.folder() + QStringLiteral("/server");
    {
        FileHandle file(server, "shop.db");
        ASSERT_TRUE(file.run("REINDEX NOCASE"));
        ASSERT_TRUE(file.run(extra));
        ASSERT_TRUE(file.run("PRAGMA wal_checkpoint(TRUNCATE)"));
    }
    ASSERT_TRUE(
        QFile::copy(folder + QStringLiteral("/shop.db"), folder + QStringLiteral("/old.db")));
}

const std::vector<Row> StaleRows = {
    {"select n from N order by n", "\xC3\xA4,a_,a1,b,z,Z1"},
    {"select n from N where n = 'Z1'", "Z1"},
    {"select n from N where n = 'A_'", "a_"},
    {"select n from N where n > 'a1' and n < 'Z' order by n", "b"},
    {"select cs from N where cs = 'Z1'", "Z1"},
    {"select cs from N where cs = 'z1'", ""},
};

TEST(CollationFiles, AFileOfAnotherOrderIsPutInOrderWhenItIsOpened) {
    for (const char* change : {"DELETE FROM \"zov$facts\" WHERE name='sorting'",
                               "UPDATE \"zov$facts\" SET value='ICU 1.0/0' WHERE name='sorting'"}) {
        ScriptedServer server;
        makeStale(server, change);
        server.connect(text("old"), false);
        expectRows(server, StaleRows);
        EXPECT_EQ(
            server.one(text("select value from N cross join (select 1 value) v where n = 'b'")),
            text("1"));
        EXPECT_TRUE(server.run(text("insert N values ('B', 'x')")).contains(u"duplicate key"));
        FileHandle file(server, "old.db");
        EXPECT_TRUE(file.run("SELECT 1/(count(*) = 1) FROM \"zov$facts\" WHERE name='sorting'"));
    }
}

TEST(CollationFiles, AColumnOfAnEarlierFileIsComparedByItsCollationAllTheSame) {
    // Earlier files have every text in the default order, whatever its collation is called.
    ScriptedServer server;
    makeStale(server,
              "PRAGMA writable_schema=ON; UPDATE sqlite_master SET sql=replace(sql, "
              "'COLLATE \"Latin1_General_CS_AS\"', 'COLLATE NOCASE'); PRAGMA writable_schema=OFF; "
              "DELETE FROM \"zov$facts\" WHERE name='sorting'");
    {
        FileHandle file(server, "old.db");
        ASSERT_TRUE(file.run("REINDEX NOCASE"));
    }
    server.connect(text("old"), false);
    expectRows(server, StaleRows);
    expectRows(server, {{"select cs from N order by cs", "\xC3\xA4,a_,a1,b,z,Z1"}});
}

TEST(CollationFiles, AnEarlierFileOfACaseSensitiveDatabaseGoesByItsCollation) {
    ScriptedServer server;
    makeStale(server,
              "UPDATE \"zov$facts\" SET value='Latin1_General_CS_AS' WHERE name='collation'; "
              "DELETE FROM \"zov$facts\" WHERE name='sorting'");
    server.connect(text("old"), false);
    ASSERT_EQ(server.run(text("create table n (N int, n int)\ninsert n values (1, 2)")), QString());
    expectRows(server, StaleRows);
    expectRows(server, {{"select n, N from n", "2|1"},
                        {"select name from sysobjects where xtype = 'U' order by name", "n,N"}});
}

TEST(CollationFiles, AUniqueIndexThatWouldFailGoesOnWithoutBeingUnique) {
    ScriptedServer server;
    makeStale(server,
              "INSERT INTO \"dbo.N\" VALUES('ss', 'ss'), ('\xEF\xBD\x93s', 'sz'); "
              "DELETE FROM \"zov$facts\" WHERE name='sorting'");
    server.connect(text("old"), false);
    expectRows(server, {{"select n from N where n = 'SS' order by cs", "ss,\xEF\xBD\x93s"}});
}

// A superuser may write every file: what is done for one that can't be written is asked by itself.
TEST(CollationFiles, AFileThatCantBeWrittenIsReadThroughACopy) {
    ScriptedServer server;
    makeStale(server, "UPDATE \"zov$facts\" SET value='ICU 1.0/0' WHERE name='sorting'");
    const QString name = server.folder() + QStringLiteral("/server/old.db");
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();
    const auto store = local::ServerStore::open(server.spec({}).dataSource, false);
    local::Database database;
    sqlite3* source = local::openFile(name, SQLITE_OPEN_READONLY, QStringLiteral("?immutable=1"));
    database.handle = local::privateCopy(source);
    sqlite3_close_v2(source);
    local::installFunctions(database.handle, database, *store);
    EXPECT_FALSE(local::sortingIsCurrent(database.handle));
    local::renewSorting(database.handle);
    EXPECT_TRUE(local::sortingIsCurrent(database.handle));
    QStringList sorted;
    EXPECT_EQ(sqlite3_exec(
                  database.handle, "SELECT n FROM \"dbo.N\" ORDER BY n",
                  [](void* into, int, char** values, char**) {
                      static_cast<QStringList*>(into)->append(QString::fromUtf8(values[0]));
                      return 0;
                  },
                  &sorted, nullptr),
              SQLITE_OK);
    EXPECT_EQ(sorted.join(u','), text(StaleRows[0].expected));
    sqlite3_close_v2(database.handle);
    file.seek(0);
    EXPECT_EQ(file.readAll(), before);
}

}  // namespace
}  // namespace zov::test
