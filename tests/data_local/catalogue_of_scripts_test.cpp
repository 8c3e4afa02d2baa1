// What the definition statements leave in the catalogue: scripts in, catalogue rows out.
#include "data_local/scripted_server.h"

#include <gtest/gtest.h>

namespace zov::test {
namespace {

struct Case {
    const char* name;
    const char* script;
    const char* query;
    const char* expected;  // rows joined by line breaks
};

void PrintTo(const Case& one, std::ostream* out) {
    *out << one.name;
}

class CatalogueOfScripts : public ::testing::TestWithParam<Case> {};

TEST_P(CatalogueOfScripts, ShowsWhatWasMade) {
    ScriptedServer server;
    ASSERT_EQ(server.run(QString::fromUtf8(GetParam().script)), QString());
    EXPECT_EQ(server.one(QString::fromUtf8(GetParam().query)).toStdString(), GetParam().expected);
}

constexpr const char* Columns =
    "select name, xtype, length, prec, scale, isnullable from syscolumns where id = object_id('t') "
    "order by colorder";
constexpr const char* Indexes =
    "select indid, name, indexproperty(id, name, 'IsUnique') from sysindexes where id = "
    "object_id('t') order by indid";
constexpr const char* Objects =
    "select o.name, rtrim(o.xtype), p.name from sysobjects o left join sysobjects p on p.id = "
    "o.parent_obj order by o.id";

const Case Tables[] = {
    {"NumberTypes",
     "create table t (a int, b bigint, c smallint, d tinyint, e bit, f decimal, g numeric(5,2), h "
     "dec(38,10), i money, j smallmoney, "
     "k float, l float(24), m real, n double precision, o integer)",
     Columns,
     "a|56|4|10|0|1\nb|127|8|19|0|1\nc|52|2|5|0|1\nd|48|1|3|0|1\ne|104|1|1|NULL|1\nf|106|9|18|0|"
     "1\ng|108|5|5|2|1\nh|106|17|38|10|1\n"
     "i|60|8|19|4|1\nj|122|4|10|4|1\nk|62|8|53|NULL|1\nl|59|4|24|NULL|1\nm|59|4|24|NULL|1\nn|62|8|"
     "53|NULL|1\no|56|4|10|0|1"},
    {"TextAndBinaryTypes",
     "create table t (a char, b varchar(10), c nvarchar(50), d nchar(5), e varchar(max), f "
     "nvarchar(max), g text, h ntext, "
     "i character varying(7), j national char varying(8), k sysname, l binary(3), m "
     "varbinary(max), n image, o xml)",
     "select name, xtype, length, isnullable from syscolumns where id = object_id('t') order by "
     "colorder",
     "a|175|1|1\nb|167|10|1\nc|231|100|1\nd|239|10|1\ne|167|-1|1\nf|231|-1|1\ng|35|16|1\nh|99|16|"
     "1\ni|167|7|1\nj|231|16|1\n"
     "k|231|256|0\nl|173|3|1\nm|165|-1|1\nn|34|16|1\no|241|-1|1"},
    {"TimeTypes",
     "create table t (a datetime, b smalldatetime, c date, d time, e time(0), f datetime2, g "
     "datetime2(3), h datetimeoffset(2), i rowversion)",
     Columns,
     "a|61|8|23|3|1\nb|58|4|16|0|1\nc|40|3|10|0|1\nd|41|5|16|7|1\ne|41|3|8|0|1\nf|42|8|27|7|1\ng|"
     "42|7|23|3|1\nh|43|8|29|2|1\ni|189|8|8|NULL|0"},
    {"UserTypesBringTheirNullability",
     "exec sp_addtype code, 'char(5)', 'not null'\ncreate type dbo.note from nvarchar(20) "
     "null\ngo\n"
     "create table t (a code, b note, c code null, d dbo.note not null)",
     "select c.name, t.name, c.length, c.isnullable from syscolumns c join systypes t on "
     "t.xusertype = c.xusertype where c.id = object_id('t') order by c.colorder",
     "a|code|5|0\nb|note|40|1\nc|code|5|1\nd|note|40|0"},
    {"NullabilityOfKeysAndIdentities",
     "create table t (a int identity(10,-2), b int, c int default 1, constraint k primary key (b))",
     "select name, isnullable, columnproperty(id, name, 'IsIdentity') from syscolumns where id = "
     "object_id('t') order by colorder",
     "a|0|1\nb|0|0\nc|1|0"},
    {"IdentitySeedAndIncrement",
     "create table t (a int identity(10,-2), b int)\ngo\ninsert t(b) values (1)\ninsert t(b) "
     "values (2)",
     "select ident_seed('t'), ident_incr('t'), max(a), min(a) from t", "10|-2|10|8"},
    {"APrimaryKeyIsClustered",
     "create table t (a int primary key nonclustered, b int unique, c int)\ngo\ncreate index i on "
     "t(c)",
     "select indid, indexproperty(id, name, 'IsClustered') from sysindexes where id = "
     "object_id('t') order by indid",
     "0|NULL\n2|0\n3|0\n4|0"},
    {"AClusteredUniqueKeyLeavesThePrimaryKeyNonclustered",
     "create table t (a int constraint pk primary key, b int constraint uq unique clustered)",
     Indexes, "1|uq|1\n2|pk|1"},
    {"AClusteredIndexTakesTheHeapsPlace",
     "create table t (a int, b int)\ngo\ncreate index i2 on t(a)\ncreate unique clustered index i1 "
     "on t(b desc)",
     Indexes, "1|i1|1\n2|i2|0"},
    {"DroppingTheClusteredIndexLeavesAHeap",
     "create table t (a int)\ngo\ncreate clustered index i on t(a)\ngo\ndrop index t.i",
     "select indid, name from sysindexes where id = object_id('t')", "0|NULL"},
    {"KeyColumnsAndIncludedOnes",
     "create table t (a int, b int, c int, d int)\ngo\ncreate index i on t(b desc, a) include (d, "
     "c) where a > 0 with (fillfactor = 80)",
     "select col_name(object_id, column_id), key_ordinal, is_descending_key, is_included_column "
     "from sys.index_columns where object_id = object_id('t') order by index_column_id",
     "b|1|True|False\na|2|False|False\nd|0|False|True\nc|0|False|True"},
    {"ConstraintsAreChildrenOfTheirTable",
     "create table p (id int constraint pk_p primary key)\n"
     "create table t (a int constraint df_a default 5 constraint ck_a check (a in (1,2)), b int "
     "constraint fk_b references p, constraint uq_ab unique (a, b))",
     Objects, "p|U|NULL\npk_p|PK|p\nt|U|NULL\nuq_ab|UQ|t\ndf_a|D|t\nck_a|C|t\nfk_b|F|t"},
    {"ForeignKeysWithActions",
     "create table p (a int, b int, primary key (a, b))\ncreate table t (x int, y int, constraint "
     "fk foreign key (y, x) references dbo.p (a, b) on delete cascade on update set null)",
     "select object_name(constid), col_name(fkeyid, fkey), col_name(rkeyid, rkey), keyno from "
     "sysforeignkeys order by keyno",
     "fk|y|a|1\nfk|x|b|2"},
    {"ComputedColumns",
     "create table t (a int not null, b as a * 2 persisted, c as (a + 1), d as cast(a as "
     "varchar(10)))\ngo\ninsert t(a) values (21)",
     "select b, c, d from t union all select null, iscomputed, name from syscolumns where id = "
     "object_id('t') and iscomputed = 1 and name = 'b'",
     "42|22|21\nNULL|1|b"},
    {"GeneratedNamesTellTableAndColumn",
     "create table customer_orders (id int primary key, note varchar(10) default 'x', constraint "
     "named check (id > 0))",
     "select left(name, 14), substring(name, 15, 7), len(name) from sysobjects where parent_obj <> "
     "0 and name <> 'named' and xtype = 'D' "
     "union all select left(name, 14), null, len(name) from sysobjects where xtype = 'PK'",
     "DF__customer__|_note__|29\nPK__customer__|NULL|30"},
    {"RowsSurviveAddedAndDroppedColumns",
     "create table t (a int not null, b varchar(5), c int)\ngo\ninsert t values (1, 'x', "
     "10)\ninsert t values (2, null, 20)\ngo\n"
     "alter table t add d int not null constraint df default 7, e int null, f datetime\nalter "
     "table t drop column b\nalter table t add constraint pk primary key (a)",
     "select * from t order by a", "1|10|7|NULL|NULL\n2|20|7|NULL|NULL"},
    {"AlterColumnConverts",
     "create table t (a varchar(10), b int)\ngo\ninsert t values ('42', 1)\ngo\nalter table t "
     "alter column a int not null\nalter table t alter column b decimal(9,2)",
     "select a + 1, b from t", "43|1"},
    {"AlterColumnWithoutNullabilityAllowsNulls",
     "create table t (a int not null)\ngo\nalter table t alter column a bigint", Columns,
     "a|127|8|19|0|1"},
    {"ColumnNumbersAreNotGivenAgain",
     "create table t (a int, b int, c int)\ngo\nalter table t drop column c\nalter table t add d "
     "int",
     "select name, colid from syscolumns where id = object_id('t') order by colid",
     "a|1\nb|2\nd|4"},
    {"ConstraintsSwitchedOff",
     "create table t (a int constraint c1 check (a > 0), b int constraint c2 check (b > "
     "0))\ngo\nalter table t nocheck constraint c1\n"
     "alter table t with nocheck add constraint c3 check (a < 9)",
     "select name, is_disabled, is_not_trusted from sys.check_constraints order by name",
     "c1|True|True\nc2|False|False\nc3|False|True"},
    {"SchemasHoldTheirObjects",
     "create schema sales authorization dbo create table a (x int) grant select on a to public "
     "create table b (y int)\ngo\ncreate schema hr\ngo\ncreate table hr.a (y int)\ngo\n"
     "insert sales.b values (3)\nalter schema hr transfer sales.b",
     "select schema_name(schema_id), name from sys.objects union all select 'rows', cast(y as "
     "varchar(5)) from hr.b order by 1, 2",
     "hr|a\nhr|b\nrows|3\nsales|a"},
    {"UsersRolesAndMembers",
     "create user ann without login with default_schema = dbo\ncreate role clerks\nexec "
     "sp_addrolemember 'clerks', 'ann'\nexec sp_addrole bosses\nalter role bosses add member "
     "ann\nalter role bosses drop member ann",
     "select user_name(r.role_principal_id), user_name(r.member_principal_id) from "
     "sys.database_role_members r",
     "clerks|ann"},
    {"PermissionsOnObjectsColumnsAndSchemas",
     "create table t (a int, b int)\ngo\ncreate role r1\ncreate role r2\ngo\n"
     "grant select, update (a, b) on t to r1, r2 with grant option\ndeny delete on dbo.t to "
     "r1\nrevoke select on t from r2\ngrant execute on schema::dbo to r1\ngrant create table to "
     "r2\n"
     "revoke grant option for update (a) on t from r1 cascade\ngrant all on t to public",
     "select class, col_name(major_id, minor_id), user_name(grantee_principal_id), "
     "permission_name, state from sys.database_permissions "
     "where class <> 0 or permission_name <> 'CONNECT' order by class, "
     "user_name(grantee_principal_id), permission_name, minor_id",
     "0|NULL|r2|CREATE "
     "TABLE|G\n1|NULL|public|DELETE|G\n1|NULL|public|INSERT|G\n1|NULL|public|REFERENCES|G\n1|NULL|"
     "public|SELECT|G\n1|NULL|public|UPDATE|G\n"
     "1|NULL|r1|DELETE|D\n1|NULL|r1|SELECT|W\n1|a|r1|UPDATE|G\n1|b|r1|UPDATE|W\n1|a|r2|UPDATE|W\n1|"
     "b|r2|UPDATE|W\n3|NULL|r1|EXECUTE|G"},
    {"SynonymsSequencesAndTypes",
     "create synonym s for other.dbo.[my table]\ncreate sequence q as int start with 5 increment "
     "by 2\ncreate type tt as table (a int primary key, b varchar(5))",
     "select name, rtrim(xtype) from sysobjects where xtype in ('SN', 'SO') union all select "
     "base_object_name, 'base' from sys.synonyms union all select name, 'type' from sys.types "
     "where is_table_type = 1",
     "s|SN\nq|SO\n[other].[dbo].[my table]|base\ntt|type"},
    {"RenamedObjectsKeepTheirText",
     "create table t (a int constraint ck check (a > 0))\ngo\ncreate view v as select a from t -- "
     "v\ngo\nexec sp_rename 'v', 'w'\nexec sp_rename 't.a', 'b', 'COLUMN'\nexec sp_rename 'ck', "
     "'ck2'\nexec sp_rename 'dbo.t', 'my table'",
     "select name from sysobjects union all select text from syscomments where id = object_id('w') "
     "union all select name from syscolumns where id = object_id('my table') order by 1",
     "b\nck2\ncreate view v as select a from t -- v\n\nmy table\nw"},
    {"DefaultsAndRulesBoundByName",
     "create default zero as 0\ngo\ncreate rule positive as @v >= 0\ngo\ncreate table t (a int, b "
     "int)\ngo\nexec sp_bindefault 'zero', 't.a'\nexec sp_bindrule positive, 't.b'\ninsert t(b) "
     "values (1)",
     "select a, b from t union all select count(*), null from syscolumns where cdefault = "
     "object_id('zero')",
     "0|1\n1|NULL"},
    {"ExtendedProperties",
     "create table t (a int)\ngo\nexec sp_addextendedproperty 'MS_Description', N'the table', "
     "'schema', 'dbo', 'table', 't'\n"
     "exec sp_addextendedproperty @name = 'MS_Description', @value = 'the column', @level0type = "
     "'SCHEMA', @level0name = 'dbo', @level1type = 'TABLE', @level1name = 't', @level2type = "
     "'COLUMN', @level2name = 'a'\n"
     "exec sp_updateextendedproperty 'MS_Description', 'new', 'schema', 'dbo', 'table', 't'",
     "select class, minor_id, name, value from sys.extended_properties order by minor_id",
     "1|0|MS_Description|new\n1|1|MS_Description|the column"},
    {"NamesOfEverySort",
     "create schema [a.b]\ngo\ncreate table [a.b].[my \"odd\" ]]table.] ([col umn] int, [ä]]ö] "
     "nvarchar(5) default N'ß', \"say \"\"hi\"\"\" int)\ngo\ninsert [a.b].[my \"odd\" ]]table.] "
     "([col umn]) values (1)\n"
     "create index [i x] on [a.b].[my \"odd\" ]]table.] ([ä]]ö])",
     "select name from sysobjects where xtype = 'U' union all select name from syscolumns where "
     "name like '%[^a-z]%' and id in (select id from sysobjects where xtype = 'U') union all "
     "select [ä]]ö] from [a.b].[my \"odd\" ]]table.]",
     "my \"odd\" ]table.\ncol umn\nä]ö\nsay \"hi\"\nß"},
    {"SelectInto",
     "create table a (x int not null, y varchar(5))\ngo\ninsert a values (1, 'one')\ninsert a "
     "values (2, 'two')\nselect x, y as z into t from a where x > 1",
     "select x, z, (select count(*) from syscolumns where id = object_id('t')) from t", "2|two|2"},
    {"TruncateStartsTheIdentityAnew",
     "create table t (a int identity, b int)\ngo\ninsert t(b) values (1)\ntruncate table t\ninsert "
     "t(b) values (2)",
     "select * from t", "1|2"},
    {"DisabledTriggersAndIndexes",
     "create table t (a int)\ngo\ncreate trigger tr on t after insert, delete as "
     "return\ngo\ncreate index i on t(a)\ngo\ndisable trigger tr on t\nalter index i on t disable",
     "select name, is_disabled from sys.triggers union all select name, is_disabled from "
     "sys.indexes where name = 'i'",
     "tr|True\ni|True"},
};

INSTANTIATE_TEST_SUITE_P(Tables, CatalogueOfScripts, ::testing::ValuesIn(Tables),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace zov::test
