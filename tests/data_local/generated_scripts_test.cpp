// What scripts hold that other tools generate: values written as bytes, computed columns over what
// isn't run, bound defaults, sequences, row versions, settings within a batch, and the views and
// functions that they ask before they make something.
#include "data_local/catalogue_case.h"

#include <gtest/gtest.h>

namespace zov::test {
namespace {

constexpr CatalogueCase Values[] = {
    {"DatesFromTheirBytes",
     "create table t (a datetime, b smalldatetime, c date, d time(7), e datetime2(7), f "
     "datetimeoffset(7), g time(3), h datetime2(0))\ngo\ninsert t values (cast(0x0000901A00000000 "
     "as "
     "datetime), cast(0x901A02D0 as smalldatetime), cast(0x07240B00 as date), "
     "cast(0x0700E80A7E8E0000 as time), cast(0x0700E80A7E8E07240B as datetime2), "
     "cast(0x0700E80A7E8E07240B7800 as datetimeoffset(7)), cast(0x0300F64203 as time(3)), "
     "cast(0x00C0140107240B as datetime2(0)))\ninsert t(a) values (0xFFFF2E4600000001)",
     "select * from t",
     "2001-01-01 00:00:00|2001-01-01 12:00:00|2000-01-01|17:00:00|2000-01-01 17:00:00|2000-01-01 "
     "19:00:00 +02:00|15:12:00|2000-01-01 19:40:48\n1753-01-01 "
     "00:00:00.003|NULL|NULL|NULL|NULL|NULL|NULL|NULL"},
    {"NumbersFromTheirBytes",
     "create table t (a decimal(10,2), b numeric(38,0), c money, d smallmoney, e "
     "decimal(9,3))\ngo\n"
     "insert t values (cast(0x0A020001E8030000 as decimal(10,2)), "
     "cast(0x26000001FFFFFFFFFFFFFFFF00000000 as numeric(38,0)), cast(0x000000000001E240 as "
     "money), "
     "cast(0xFFFE1DC0 as smallmoney), 0x0903000001000000)",
     "select a, b, c, d, e from t", "10|18446744073709551615|12.3456|-12.3456|-0.001"},
    {"ABackslashAtALinesEndContinuesTheConstant",
     "create table t (a varchar(20) default 'x\\\ny', b varbinary(4), c varchar(9))\ngo\ninsert "
     "t(b, c) "
     "values (0x01\\\r\n02, 'a\\\r\nb\\c')\nprint 'one\\\ntwo'",
     "select * from t",
     "xy|"
     "0x0102|ab\\c"},
    {"QuotedIdentifiersWithinOneBatch",
     "set quoted_identifier off declare @a varchar(20) set @a = \"it's\" set ansi_nulls, "
     "quoted_identifier on create table \"t\" (\"a b\" varchar(20)) insert \"t\" values (@a)",
     "select \"a b\" from t", "it's"},
    {"SettingsOfAnExecEndWithIt",
     "create table t (a int)\nexec('set quoted_identifier off insert t values "
     "(len(\"four\"))')\nexec("
     "'insert t select \"a\" + 1 from t')",
     "select a from t", "4\n5"},
    {"RowVersionsAreTheServersToGive",
     "create table t (a int, v rowversion, b int)\ngo\ninsert t values (1, default, 2)\ninsert t "
     "values "
     "(3, null, 4)\ninsert t(a, v) values (5, default)\ninsert t(a) values (7)\nselect * into u "
     "from t",
     "select a, b, case when v > 0x00 then 'given' end, (select count(*) from u where u.v = t.v), "
     "(select "
     "xtype from syscolumns where id = object_id('u') and name = 'v') from t",
     "1|2|given|1|189\n3|4|given|1|189\n5|NULL|given|1|189\n7|NULL|given|1|189"},
    {"SelectIntoKeepsTheIdentity",
     "create table t (a int identity(10,5), b int not null)\ngo\ninsert t(b) values (1) insert "
     "t(b) values "
     "(2)\nselect b, a as n into u from t\nselect * into v from t\nselect a + 0 as a into w from "
     "t\nselect "
     "a, a as c into x from t\nselect t.a into y from t join t as s on s.a = t.a\nselect a into z "
     "from t "
     "union all select a from t\ninsert u(b) values (3)",
     "select object_name(id), name from syscolumns where columnproperty(id, name, 'IsIdentity') = "
     "1 union "
     "all select 'u', cast(n as varchar(9)) from u where b = 3 union all select 'seed', "
     "cast(ident_seed('v') as varchar(9)) union all select 'incr', cast(ident_incr('v') as "
     "varchar(9))",
     "t|a\nu|n\nv|a\nu|20\nseed|10\nincr|5"},
};

TEST(GeneratedScripts, KeepTheirValues) {
    expectCatalogue(Values);
}

TEST(GeneratedScripts, BytesThatHoldNoValueAreRefused) {
    ScriptedServer server;
    for (const char* sql :
         {"select cast(0x0000901AFFFFFFFF as datetime)", "select cast(0x0000FFFF as smalldatetime)",
          "select cast(0x01 as date)", "select cast(0x09000000000000 as time)",
          "select cast(0x07FFFFFFFFFF as time)", "select cast(0xFFFFFF as date)"})
        EXPECT_TRUE(server.one(QLatin1String(sql)).contains(u"from binary/varbinary string"))
            << sql;
    EXPECT_EQ(server.one(QStringLiteral("select cast(0x0A02 as decimal(10,2))")),
              QStringLiteral("error: Error converting data type varbinary to decimal."));
    EXPECT_EQ(server.run(QStringLiteral("create table t (a int, v timestamp) insert t values (1)")),
              QStringLiteral("1: Column name or number of supplied values does not match table "
                             "definition. [213] near insert t values (1)"));
    for (const char* insert : {"insert t values (1, 0x01)", "insert t select 1, 0x01"})
        EXPECT_TRUE(server.run(QLatin1String(insert)).contains(u"[273]")) << insert;
}

constexpr CatalogueCase Computed[] = {
    {"TypesOfCalls",
     "create function f(@a int) returns decimal(9,2) as begin return 1 end\ngo\ncreate function "
     "dbo.g() "
     "returns varchar as begin return 'x' end\ngo\ncreate type code from char(5)\ngo\ncreate table "
     "t (a "
     "int not null, x xml, h hierarchyid, p geography, m varchar(max), k code not null, c1 as "
     "dbo.f(a), "
     "c2 as dbo.g(), c3 as x.value('(/a)[1]', 'nvarchar(40)'), c4 as x.exist('/a'), c5 as "
     "[h].GetLevel(), "
     "c6 as h.GetAncestor(1), c7 as h.GetAncestor(1).ToString(), c8 as p.Lat, c9 as p.STBuffer(2), "
     "c10 as "
     "geography::Point(1, 2, 4326), c11 as dbo.f(a) * 2, c12 as cast(x as xml).value('(/b)[1]', "
     "'date'), "
     "c13 as len(m), c14 as k, c15 as isnull(dbo.f(a), 0))",
     "select c.name, t.name, c.max_length, c.precision, c.scale, c.is_nullable from sys.columns c "
     "join "
     "sys.types t on t.user_type_id = c.user_type_id where c.name like 'c[0-9]%' order by "
     "c.column_id",
     "c1|decimal|5|9|2|True\nc2|varchar|1|0|0|True\nc3|nvarchar|80|0|0|True\nc4|bit|1|1|0|True\n"
     "c5|smallint|2|5|0|True\nc6|hierarchyid|892|0|0|True\nc7|nvarchar|8000|0|0|True\n"
     "c8|float|8|53|0|True\nc9|geography|-1|0|0|True\nc10|geography|-1|0|0|True\n"
     "c11|decimal|9|11|2|True\nc12|date|3|10|0|True\nc13|bigint|8|19|0|True\nc14|code|5|0|0|False\n"
     "c15|decimal|5|9|2|False"},
    {"MostExpressionsMayGiveNull",
     "create table t (a int not null, b int null, s varchar(5) not null, c1 as a, c2 as b, c3 as a "
     "+ 1, c4 "
     "as isnull(b, 0), c5 as coalesce(b, 0), c6 as cast(a as bigint), c7 as s + 'x', c8 as 5, c9 "
     "as "
     "isnull(b, b), c10 as a * 2 persisted, c11 as a * 2 persisted not null, c12 as isnull(a + 1, "
     "0), c13 "
     "as case when a > 1 then 1 else 2 end, c14 as upper(s), c15 as -a)",
     "select name, is_nullable from sys.columns where is_computed = 1 order by column_id",
     "c1|False\nc2|True\nc3|True\nc4|False\nc5|True\nc6|True\nc7|True\nc8|False\nc9|True\nc10|"
     "True\n"
     "c11|False\nc12|False\nc13|False\nc14|True\nc15|True"},
};

TEST(GeneratedScripts, ComputedColumns) {
    expectCatalogue(Computed);
    ScriptedServer server;
    EXPECT_TRUE(server.run(QStringLiteral("create table t (a int, b as dbo.nothing(a))"))
                    .contains(QLatin1String("the user-defined function or aggregate "
                                            "\"dbo.nothing\", or the name is ambiguous. [4121]")));
}

constexpr CatalogueCase Bindings[] = {
    {"DefaultsAndRulesBoundToTypes",
     "create type code from int\ngo\ncreate default seven as 7\ngo\ncreate rule positive as @a > "
     "0\ngo\ncreate table before (a code, b int)\ngo\nexec sp_bindefault 'seven', 'code'\nexec "
     "sp_bindrule "
     "'positive', 'code', 'futureonly'\ngo\ncreate table after (a code, b int)\nalter table after "
     "add c "
     "code\ngo\ninsert before(b) values (1)\ninsert after(b) values (2)",
     "select object_name(id), name, object_name(cdefault), object_name(domain) from syscolumns "
     "where id in "
     "(object_id('before'), object_id('after')) union all select name, null, "
     "object_name(tdefault), "
     "object_name(domain) from systypes where name = 'code' union all select 'rows', null, cast(a "
     "as "
     "varchar(9)), null from before union all select 'rows', null, cast(c as varchar(9)), null "
     "from after",
     "before|a|seven|NULL\nbefore|b|NULL|NULL\nafter|a|seven|positive\nafter|b|NULL|NULL\n"
     "after|c|seven|positive\ncode|NULL|seven|positive\nrows|NULL|7|NULL\nrows|NULL|7|NULL"},
    {"UnboundAgainButForWhatHasItsOwn",
     "create type code from int\ngo\ncreate default seven as 7\ngo\ncreate default eight as "
     "8\ngo\ncreate "
     "table t (a code, b code)\ngo\nexec sp_bindefault 'seven', 'code'\nexec sp_bindefault "
     "'eight', "
     "'t.b'\nexec sp_unbindefault 'code'",
     "select name, object_name(default_object_id) from sys.columns union all select name, "
     "object_name(default_object_id) from sys.types where name = 'code'",
     "a|NULL\nb|eight\ncode|NULL"},
};

TEST(GeneratedScripts, BoundDefaultsAndRules) {
    expectCatalogue(Bindings);
    const struct {
        const char* script;
        const char* error;
    } rows[] = {
        {"drop default seven", "because it is bound to one or more columns. [3716]"},
        {"drop rule small", "because it is bound to one or more columns. [3716]"},
        {"exec sp_bindefault 'seven', 't.own'",
         "created with or altered to have a default value. [15103]"},
        {"exec sp_unbindefault 't.own'", "Use ALTER TABLE DROP CONSTRAINT. [15049]"},
        {"create table u (a code default 1)", "Column already has a DEFAULT bound to it. [1781]"},
    };
    for (const auto& row : rows) {
        ScriptedServer server;
        ASSERT_EQ(
            server.run(QStringLiteral(
                "create type code from int\ngo\ncreate default seven as 7\ngo\ncreate rule small "
                "as "
                "@a < 9\ngo\nexec sp_bindefault 'seven', 'code' exec sp_bindrule 'small', 'code' "
                "create table t (own int default 3)")),
            QString());
        const QString error = server.run(QLatin1String(row.script));
        EXPECT_TRUE(error.contains(QLatin1String(row.error))) << error.toStdString();
    }
}

constexpr CatalogueCase Sequences[] = {
    {"NextValuesInDefaultsAndRows",
     "create sequence s as int start with 5 increment by 2\ncreate sequence down start with 3 "
     "increment by "
     "-1 minvalue 1 maxvalue 3 cycle\ngo\ncreate table t (a int constraint d default (next value "
     "for "
     "dbo.s), b bigint)\ngo\ninsert t(b) values (next value for down)\ninsert t(b) select next "
     "value for "
     "dbo.down from (values (1), (2), (3)) as x(y)\ninsert t values (default, 0)\ninsert t default "
     "values\n"
     "update t set b = next value for s where a = 15",
     "select a, b from t union all select 0, 0 from sys.default_constraints where definition = "
     "'(NEXT VALUE "
     "FOR [dbo].[s])'",
     "5|3\n7|2\n9|1\n11|3\n13|0\n15|17\n0|0"},
    {"SequencesInTheirView",
     "create sequence s as smallint start with 5 increment by 2 maxvalue 9 no cache\ncreate "
     "sequence q\ngo\n"
     "declare @a int set @a = next value for s set @a = next value for s alter sequence q restart "
     "with 4 "
     "cache 10 cycle",
     "select name, start_value, increment, minimum_value, maximum_value, is_cycling, is_cached, "
     "cache_size, "
     "precision, current_value, last_used_value from sys.sequences",
     "s|5|2|-32768|9|False|False|NULL|5|7|7\nq|4|1|-9223372036854775808|9223372036854775807|True|"
     "True|10|19|4|"
     "NULL"},
};

TEST(GeneratedScripts, CountTheirSequences) {
    expectCatalogue(Sequences);
    ScriptedServer server;
    ASSERT_EQ(server.run(QStringLiteral("create sequence s as tinyint start with 254")), QString());
    EXPECT_EQ(server.one(QStringLiteral("select next value for s")), QStringLiteral("254"));
    EXPECT_EQ(server.one(QStringLiteral("select next value for s")), QStringLiteral("255"));
    EXPECT_TRUE(
        server.one(QStringLiteral("select next value for s"))
            .contains(u"The sequence object 's' has reached its minimum or maximum value."));
    EXPECT_EQ(server.run(QStringLiteral("alter sequence s restart")), QString());
    EXPECT_EQ(server.one(QStringLiteral("select next value for s")), QStringLiteral("254"));
    EXPECT_EQ(server.one(QStringLiteral("select next value for nothing")),
              QStringLiteral("error: Invalid object name 'nothing'."));
    // What a load takes back takes its numbers along.
    EXPECT_NE(server.load(QStringLiteral("declare @a int set @a = next value for s select 1/0")),
              QString());
    EXPECT_EQ(server.one(QStringLiteral("select current_value from sys.sequences")),
              QStringLiteral("254"));
}

constexpr CatalogueCase Questions[] = {
    {"SettingsOfADatabaseAreTaken",
     "alter database scoped configuration set maxdop = 0 alter database scoped configuration for "
     "secondary set legacy_cardinality_estimation = primary alter database scoped configuration "
     "clear procedure_cache\nexec sys.sp_db_vardecimal_storage_format N'shop', N'ON'\nalter "
     "database "
     "shop set temporal_history_retention on set ansi_nulls on create table t (a int)",
     "select name from sysobjects", "t"},
    {"StatisticsAreKept",
     "create table t (a int, b int)\ncreate index i on t(b)\ngo\nif not exists (select * from "
     "sys.stats where "
     "name = N's') create statistics s on t(b, a) where b > 0 with fullscan, norecompute\nif not "
     "exists "
     "(select * from sys.stats where name = N's') create statistics s on t(a)\ncreate statistics "
     "s2 on t(a) "
     "with sample 50 percent\ncreate index j on t(a)\ndrop statistics t.s2",
     "select s.name, s.stats_id, s.user_created, s.no_recompute, s.filter_definition, "
     "col_name(c.object_id, "
     "c.column_id), indexproperty(s.object_id, s.name, 'IsStatistics') from sys.stats s join "
     "sys.stats_columns c on c.object_id = s.object_id and c.stats_id = s.stats_id order by "
     "s.stats_id, "
     "c.stats_column_id",
     "i|2|False|False|NULL|b|0\ns|3|True|True|([b]>(0))|b|1\ns|3|True|True|([b]>(0))|a|1\n"
     "j|5|False|False|NULL|a|0"},
    {"WhatCannotBeMadeIsNotThere", "create table t (a int)",
     "select count(*) from sys.partition_functions union all select count(*) from "
     "sys.partition_schemes union "
     "all select count(*) from sys.partition_parameters union all select count(*) from "
     "sys.partition_range_values union all select count(*) from sys.fulltext_catalogs union all "
     "select "
     "count(*) from sys.fulltext_indexes union all select count(*) from sys.fulltext_index_columns "
     "union all "
     "select count(*) from sys.fulltext_stoplists union all select count(*) from "
     "sys.xml_schema_collections "
     "where name <> 'sys' union all select count(*) from sys.xml_indexes union all select count(*) "
     "from "
     "sys.assemblies where is_user_defined = 1 union all select count(*) from sys.assembly_modules "
     "union all select count(activation_procedure) from sys.service_queues union all select "
     "count(service_name) from sys.event_notifications union all select count(hints) from "
     "sys.plan_guides union all select count(location) from sys.external_tables",
     "0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n0"},
    {"FilesAndFileGroups", "create table t (a int)",
     "select name, type_desc from sys.filegroups union all select name, type_desc from "
     "sys.data_spaces union "
     "all select name, type_desc from sys.database_files union all select name, case when "
     "physical_name like "
     "'%shop.db' then 'file' end from sys.master_files where database_id = db_id()",
     "PRIMARY|ROWS_FILEGROUP\nPRIMARY|ROWS_FILEGROUP\nshop|ROWS\nshop|file"},
    {"TableTypes",
     "create schema s\ngo\ncreate type s.tt as table (a int, b int)\ncreate type plain from int",
     "select schema_name(t.schema_id), t.name, c.name from sys.table_types t join sys.columns c on "
     "c.object_id = t.type_table_object_id order by c.column_id",
     "s|tt|a\ns|tt|b"},
    {"ListedProperties",
     "create table t (a int constraint ck check (a > 0), b int)\ncreate index i on "
     "t(a)\ngo\ncreate view v as "
     "select a from t\ngo\nexec sp_addextendedproperty 'D', 'db'\nexec sp_addextendedproperty 'D', "
     "'sch', "
     "'schema', 'dbo'\nexec sp_addextendedproperty 'D', 'tab', 'schema', 'dbo', 'table', 't'\nexec "
     "sp_addextendedproperty 'D', 'view', 'schema', 'dbo', 'view', 'v'\nexec "
     "sp_addextendedproperty 'D', "
     "'a', 'schema', 'dbo', 'table', 't', 'column', 'a'\nexec sp_addextendedproperty 'E', 'b', "
     "'schema', "
     "'dbo', 'table', 't', 'column', 'b'\nexec sp_addextendedproperty 'D', 'ix', 'schema', 'dbo', "
     "'table', "
     "'t', 'index', 'i'\nexec sp_addextendedproperty 'D', 'con', 'schema', 'dbo', 'table', 't', "
     "'constraint', 'ck'\nif not exists (select * from ::fn_listextendedproperty(N'D', N'SCHEMA', "
     "N'dbo', "
     "N'TABLE', N't', N'COLUMN', N'b')) exec sp_addextendedproperty 'D', 'b too', 'schema', 'dbo', "
     "'table', "
     "'t', 'column', 'b'",
     "select * from fn_listextendedproperty(null, null, null, null, null, null, null) union all "
     "select * from "
     "sys.fn_listextendedproperty('D', 'schema', default, null, null, null, null) union all select "
     "* from "
     "fn_listextendedproperty('D', 'schema', 'dbo', 'table', default, null, null) union all select "
     "* from "
     "fn_listextendedproperty('D', 'schema', 'dbo', 'table', 't', 'column', default) union all "
     "select * from "
     "fn_listextendedproperty(default, 'schema', 'dbo', 'table', 't', 'index', default) union all "
     "select * "
     "from fn_listextendedproperty(default, 'schema', 'dbo', 'table', 't', 'constraint', 'ck')",
     "NULL|NULL|D|db\nSCHEMA|dbo|D|sch\nTABLE|t|D|tab\nCOLUMN|a|D|a\nCOLUMN|b|D|b "
     "too\nINDEX|i|D|ix\n"
     "CONSTRAINT|ck|D|con"},
    {"WindowsOverDecimals",
     "create table t (a int, d decimal(38,10))\ngo\ninsert t values (1, 12345678901234567890.5), "
     "(2, -1), (3, "
     "2.25), (4, null)",
     "select a, sum(d) over (order by a rows between 1 preceding and current row), min(d) over "
     "(order by a), "
     "max(d) over (order by a rows between 1 preceding and current row), avg(a) over (), "
     "round(stdev(a) over "
     "(order by a rows between 1 preceding and current row), 3) from t",
     "1|12345678901234567890.5|12345678901234567890.5|12345678901234567890.5|2|NULL\n"
     "2|12345678901234567889.5|-1|12345678901234567890.5|2|0.707\n3|1.25|-1|2.25|2|0.707\n"
     "4|2.25|-1|2.25|2|0.707"},
};

TEST(GeneratedScripts, QuestionsOfIfNotExists) {
    expectCatalogue(Questions);
    ScriptedServer server;
    ASSERT_EQ(server.run(QStringLiteral(
                  "create table t (a int) create index i on t(a) create statistics s on "
                  "t(a)")),
              QString());
    for (const auto& [script, number] : {std::pair("create statistics i on t(a)", "[1927]"),
                                         {"create statistics s on t(a)", "[1927]"},
                                         {"create index s on t(a)", "[1913]"},
                                         {"drop statistics t.i", "[3739]"},
                                         {"drop statistics t.nothing", "[3701]"},
                                         {"drop index t.i alter table t drop column a", "[5074]"}})
        EXPECT_TRUE(server.run(QLatin1String(script)).contains(QLatin1String(number))) << script;
    EXPECT_EQ(
        server.one(QStringLiteral("select * from fn_listextendedproperty(default, 'schema', 'dbo', "
                                  "'procedure', default, 'parameter', default)")),
        QStringLiteral("error: The embedded server doesn't list the extended properties of "
                       "PARAMETER."));
}

constexpr CatalogueCase Permissions[] = {
    {"OnColumnsOfInlineFunctions",
     "create table t (a int, b varchar(5))\ngo\ncreate function f(@x int) returns table as return "
     "(select a, b "
     "as c from t where a = @x)\ngo\ncreate function g() returns table as return select 1 as "
     "one\ngo\ncreate "
     "role r\ngrant select on f(c) to r\ndeny select on dbo.g(one) to r",
     "select object_name(major_id), col_name(major_id, minor_id), state from "
     "sys.database_permissions where "
     "class = 1",
     "f|c|G\ng|one|D"},
    {"OnTheServer",
     "use master\ncreate login ann with password = 'x', default_database = shop\ncreate login "
     "[D\\bob] from "
     "windows\ndeny view any database to public\ngrant view server state, alter trace to ann with "
     "grant "
     "option\nrevoke alter trace from ann cascade\nexec sp_addlogin 'old', 'x', 'shop'\nalter "
     "login old "
     "disable\nalter login [D\\bob] with name = [D\\rob]\nuse shop",
     "select p.name, s.permission_name, s.state from sys.server_permissions s join "
     "sys.server_principals p on "
     "p.principal_id = s.grantee_principal_id union all select name, default_database_name, "
     "cast(is_disabled "
     "as varchar(5)) from sys.server_principals where principal_id > 2 union all select loginname, "
     "dbname, "
     "null from master.dbo.syslogins where loginname = 'old'",
     "public|VIEW ANY DATABASE|D\nann|VIEW SERVER "
     "STATE|W\nann|shop|0\nD\\rob|master|0\nold|shop|1\n"
     "old|shop|NULL"},
    {"OnKeyDefinitions",
     "grant view any column encryption key definition to public as dbo\ngrant view any column "
     "master key "
     "definition to public",
     "select permission_name, type from sys.database_permissions where permission_name like 'VIEW "
     "ANY%'",
     "VIEW ANY COLUMN ENCRYPTION KEY DEFINITION|VWCK\nVIEW ANY COLUMN MASTER KEY DEFINITION|VWCM"},
};

TEST(GeneratedScripts, GrantAndDeny) {
    expectCatalogue(Permissions);
    ScriptedServer server;
    EXPECT_TRUE(server.run(QStringLiteral("deny view server state to public")).contains(u"[4621]"));
    EXPECT_TRUE(server.run(QStringLiteral("use master deny view server state to nobody"))
                    .contains(u"Cannot find the login 'nobody'"));
    EXPECT_TRUE(server.run(QStringLiteral("drop login nobody")).contains(u"[15151]"));
    EXPECT_EQ(
        server.run(QStringLiteral("create login ann with password = 'x' create login ann with "
                                  "password = 'y'")),
        QString());
    EXPECT_EQ(server.messages.join(u'|'),
              QStringLiteral("The server principal 'ann' already exists."));
}

constexpr CatalogueCase Owners[] = {
    {"AUserIsAnOwner",
     "exec sp_addlogin 'joe', 'x'\nexec sp_adduser 'joe'\nexec sp_addrole 'clerks'\ngo\ncreate "
     "table joe.t (a "
     "int)\ncreate table t (b int)\ngo\nexec sp_changeobjectowner 't', 'clerks'\ngo\ncreate schema "
     "authorization joe create table u (a int)",
     "select user_name(uid), name from sysobjects order by name, uid", "joe|t\nclerks|t\njoe|u"},
};

TEST(GeneratedScripts, OwnersOfVersion8) {
    expectCatalogue(Owners, QStringLiteral("8.00.2039"));
    ScriptedServer server(QStringLiteral("8.00.2039"));
    ASSERT_EQ(server.run(QStringLiteral("exec sp_adduser 'joe' create table joe.t (a int)")),
              QString());
    EXPECT_TRUE(
        server.run(QStringLiteral("exec sp_dropuser 'joe'"))
            .contains(u"The user owns objects in the database and cannot be dropped. [15183]"));
    EXPECT_EQ(
        server.run(QStringLiteral("drop table joe.t exec sp_dropuser 'joe' exec sp_adduser 'joe'")),
        QString());
}

// --- definitions that nothing else tries ------------------------------------------------------

constexpr CatalogueCase Definitions[] = {
    {"InlineIndexes",
     "create table t (a int index i1, b int, c int, d int index i2 unique, index i3 nonclustered "
     "(b desc, c) "
     "include (d) where b > 1 with (fillfactor = 80), index i4 unique clustered (c))",
     "select i.name, i.index_id, i.is_unique, i.filter_definition, k.key_ordinal, "
     "k.is_descending_key, "
     "col_name(k.object_id, k.column_id) from sys.indexes i join sys.index_columns k on "
     "k.object_id = "
     "i.object_id and k.index_id = i.index_id order by i.name, k.index_column_id",
     "i1|2|False|NULL|1|False|a\ni2|3|True|NULL|1|False|d\ni3|4|False|([b]>(1))|1|True|b\n"
     "i3|4|False|([b]>(1))|2|False|c\ni3|4|False|([b]>(1))|0|False|d\ni4|1|True|NULL|1|False|c"},
    {"DropExisting",
     "create table t (a int, b int)\ninsert t values (1, 1), (2, 1)\ncreate index i on "
     "t(a)\ncreate index j on "
     "t(b)\ngo\ncreate index i on t(b desc, a) with (drop_existing = on)\ncreate unique clustered "
     "index j on "
     "t(a) with drop_existing",
     "select i.name, i.index_id, i.is_unique, col_name(k.object_id, k.column_id) from sys.indexes "
     "i join "
     "sys.index_columns k on k.object_id = i.object_id and k.index_id = i.index_id order by "
     "i.name, "
     "k.index_column_id",
     "i|2|False|b\ni|2|False|a\nj|1|True|a"},
    {"TriggersOnAndOff",
     "create table t (a int)\ngo\ncreate trigger t1 on t for insert as return\ngo\ncreate trigger "
     "t2 on t for "
     "delete as return\ngo\ncreate trigger t3 on t for update as return\ngo\ndisable trigger all "
     "on t\nenable "
     "trigger t1, dbo.t2 on dbo.t\nalter table t disable trigger t2\nalter table t enable trigger "
     "t3",
     "select name, is_disabled from sys.triggers order by name", "t1|False\nt2|True\nt3|False"},
    {"ARenamedIndexAndItsConstraint",
     "create table t (a int constraint pk primary key, b int)\ncreate unique index i on "
     "t(b)\ngo\nexec "
     "sp_rename 't.i', 'k', 'INDEX'\nexec sp_rename N'dbo.t.pk', N'pk2', N'INDEX'\ninsert t values "
     "(1, 1)",
     "select name, is_unique from sys.indexes union all select name, null from sysobjects where "
     "xtype = 'PK'",
     "pk2|True\nk|True\npk2|NULL"},
    {"RollbackUndoesTheStatementWithinTheTransaction",
     "create table t (a int not null)\ngo\nbegin tran insert t values (1)\nbegin try insert t "
     "values (2), "
     "(null) end try begin catch print 'failed' end catch\nbegin try insert t select 1 / (a - 3) "
     "from (values "
     "(5), (3)) as x(a) end try begin catch print 'again' end catch\ninsert t values (4) "
     "commit\nbegin tran "
     "insert t values (9) rollback",
     "select a from t", "1\n4"},
    {"AnUpdateThatJoinsTwiceChangesOnce",
     "create table t (a int, n int)\ncreate table s (a int, v int)\ninsert t values (1, 0), (2, "
     "0)\ninsert s "
     "values (1, 10), (1, 20), (3, 30)\ngo\nupdate t set n = n + s.v from t join s on s.a = "
     "t.a\ndeclare @rows "
     "int set @rows = @@rowcount insert t values (9, @rows)",
     "select a, case when n in (10, 20) then 'once' else cast(n as varchar(9)) end from t",
     "1|once\n2|0\n9|1"},
};

TEST(GeneratedScripts, DefinitionsAndChanges) {
    expectCatalogue(Definitions);
}

}  // namespace
}  // namespace zov::test
