// Statements that can't be done: the whole error with its line, and nothing left behind.
#include "data_local/scripted_server.h"

#include <gtest/gtest.h>

namespace zov::test {
namespace {

struct Case {
    const char* script;
    const char* error;
};

constexpr const char* Base =
    "create table p (a int constraint pk_p primary key, b varchar(10) constraint df_b default 'x', "
    "c int)\n"
    "create table f (x int constraint fk_f references p, y varchar(10))\n"
    "insert p(a, b) values (1, 'one')\n"
    "create index ix on p(c)\n"
    "go\ncreate view v as select a from p\n";

const Case Cases[] = {
    // Syntax
    {"creat table t (a int)", "1: Incorrect syntax near 'creat'. [102] near creat table t (a int)"},
    {"print 'a'\nprint 'b'\ncreate tabel t (a int)",
     "3: Incorrect syntax near 'tabel'. [102] near create tabel t (a int)"},
    {"create table t (a int",
     "1: Incorrect syntax: the statement ends too early. [102] near create table t (a int"},
    {"create table t\n(a int\n b int)",
     "3: Incorrect syntax near 'b'. [102] near create table t (a int b int)"},
    {"begin\n print 'x'", "1: Incorrect syntax: the BEGIN of line 1 has no END. [102] near begin"},
    {"if 1 = 1\nelse print 'x'",
     "2: Incorrect syntax near the keyword 'else'. [156] near else print 'x'"},
    {"select 'abc",
     "1: Unclosed quotation mark after the character string 'abc'. [105] near select 'abc"},
    {"/* begun", "1: Missing end comment mark '*/'. [113] near /* begun"},
    {"go\nprint 'x'\ngo\nfoo bar", "4: Incorrect syntax near 'foo'. [102] near foo bar"},
    // Names
    {"create table p (a int)",
     "1: There is already an object named 'p' in the database. [2714] near create table p (a int)"},
    {"create table t (a int, A int)",
     "1: Column names in each table must be unique. Column name 'A' in table 't' is specified more "
     "than once. [2705] near create table t (a int, A int)"},
    {"create table nowhere.t (a int)",
     "1: The specified schema name \"nowhere\" either does not exist or you do not have permission "
     "to use it. [2760] near create table nowhere.t (a int)"},
    {"create table t (a money2)",
     "1: Column, parameter, or variable #1: Cannot find data type money2. [2715] near create table "
     "t (a money2)"},
    {"drop table t",
     "1: Cannot drop the table 't', because it does not exist or you do not have permission. "
     "[3701] near drop table t"},
    {"drop table if exists v",
     "1: Cannot use DROP TABLE with 'v' because 'v' is a view. Use DROP VIEW. [3705] near drop "
     "table "
     "if exists v"},
    {"drop procedure v",
     "1: Cannot use DROP PROCEDURE with 'v' because 'v' is not a procedure. [3705] near drop "
     "procedure v"},
    {"alter view nothing as select 1 as a",
     "1: Invalid object name 'nothing'. [208] near alter view nothing as select 1 as a"},
    {"create view w as select * from nothing",
     "1: Invalid object name 'nothing'. [208] near create view w as select * from nothing"},
    {"create trigger tr on nothing for insert as return",
     "1: The object 'nothing' does not exist or is invalid for this operation. [8197] near create "
     "trigger tr on nothing for insert as return"},
    {"use nowhere",
     "1: Database 'nowhere' does not exist. Make sure that the name is entered correctly. [911] "
     "near use nowhere"},
    {"exec nothing", "1: Could not find stored procedure 'nothing'. [2812] near exec nothing"},
    // Types and columns
    {"create table t (a nvarchar(5000))",
     "1: The size (5000) given to the type 'nvarchar' exceeds the maximum allowed for any data "
     "type (4000). [131] near create table t (a nvarchar(5000))"},
    {"create table t (a int(4))",
     "1: Cannot specify a column width on data type int. [2716] near create table t (a int(4))"},
    {"create table t (a varchar(5) identity)",
     "1: Identity column 'a' must be of data type int, bigint, smallint, tinyint, or decimal or "
     "numeric with a scale of 0, and constrained to be nonnullable. [2749] near create table t (a "
     "varchar(5) identity)"},
    {"create table t (a int identity, b int identity)",
     "1: Multiple identity columns specified for table 't'. Only one identity column per table is "
     "allowed. [2744] near create table t (a int identity, b int identity)"},
    {"create table t (a int null primary key)",
     "1: Cannot define PRIMARY KEY constraint on nullable column in table 't'. [8111] near create "
     "table t (a int null primary key)"},
    {"create table t (a int primary key, b int primary key)",
     "1: Cannot add multiple PRIMARY KEY constraints to table 't'. [8110] near create table t (a "
     "int primary key, b int primary key)"},
    {"create table t (a as nothing + 1)",
     "1: Invalid column name 'nothing'. [207] near create table t (a as nothing + 1)"},
    // Keys and indexes
    {"create table t (a int references nothing)", "*references invalid table 'nothing'. [1767]*"},
    {"alter table f add constraint k foreign key (y) references p (b)",
     "1: There are no primary or candidate keys in the referenced table 'p' that match the "
     "referencing column list in the foreign key 'k'. [1776] near alter table f add constraint k "
     "foreign key (y) references p "},
    {"alter table f add constraint k foreign key (y) references p (a)",
     "1: Column 'p.a' is not the same data type as referencing column 'f.y' in foreign key 'k'. "
     "[1778] near alter table f add constraint k foreign key (y) references p "},
    {"create clustered index i on p(c)",
     "1: Cannot create more than one clustered index on table 'dbo.p'. Drop the existing clustered "
     "index before creating another. [1902] near create clustered index i on p(c)"},
    {"create index ix on p(a)",
     "1: The operation failed because an index or statistics with name 'ix' already exists on "
     "table 'dbo.p'. [1913] near create index ix on p(a)"},
    {"create index i on p(nothing)",
     "1: Column name 'nothing' does not exist in the target table or view. [1911] near create "
     "index i on p(nothing)"},
    {"drop index p.pk_p",
     "1: An explicit DROP INDEX is not allowed on index 'p.pk_p'. It is being used for PRIMARY KEY "
     "constraint enforcement. [3723] near drop index p.pk_p"},
    {"insert p(a, b) values (2, 'one')\ncreate unique index i on p(b)",
     "2: The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for the "
     "object name 'dbo.p' and the index name 'i'. [1505] near create unique index i on p(b)"},
    {"drop table p",
     "1: Could not drop object 'p' because it is referenced by a FOREIGN KEY constraint. [3726] "
     "near drop table p"},
    {"truncate table p",
     "1: Cannot truncate table 'p' because it is being referenced by a FOREIGN KEY constraint. "
     "[4712] near truncate table p"},
    // ALTER TABLE
    {"alter table nothing add a int",
     "1: Cannot find the object \"nothing\" because it does not exist or you do not have "
     "permissions. [4902] near alter table nothing add a int"},
    {"alter table p drop column b",
     "1: The object 'df_b' is dependent on column 'b'. ALTER TABLE DROP COLUMN b failed because "
     "one or more objects access this column. [5074] near alter table p drop column b"},
    {"alter table p drop constraint nothing",
     "1: 'nothing' is not a constraint. Could not drop constraint. See previous errors. [3728] "
     "near alter table p drop constraint nothing"},
    {"alter table p drop constraint pk_p",
     "1: The constraint 'pk_p' is being referenced by table, foreign key constraint 'fk_f'. Could "
     "not drop constraint. [3725] near alter table p drop constraint pk_p"},
    {"alter table p alter column c int not null",
     "1: Cannot insert the value NULL into column 'c', table 'shop.dbo.p'; column does not allow "
     "nulls. UPDATE fails. [515] near alter table p alter column c int not null"},
    {"insert f(y) values ('abc')\nalter table f alter column y varchar(2)",
     "2: String or binary data would be truncated. [8152] near alter table f alter column y "
     "varchar(2)"},
    {"alter table p add constraint df2 default 1 for b",
     "1: Column already has a DEFAULT bound to it. [1781] near alter table p add constraint df2 "
     "default 1 for b"},
    {"alter table p check constraint nothing",
     "1: Constraint 'nothing' does not exist. [4917] near alter table p check constraint nothing"},
    // Modules
    {"print 'x'\ncreate view w as select 1 as a",
     "2: 'CREATE/ALTER VIEW' must be the first statement in a query batch. [111] near create view "
     "w as select 1 as a"},
    {"create view w as select a, c + 1 from p",
     "1: Create View or Function failed because no column name was specified for column 2. [4511] "
     "near create view w as select a, c + 1 from p"},
    {"create function w() returns table as return (select 1)",
     "1: Create View or Function failed because no column name was specified for column 1. [4511] "
     "near create function w() returns table as return (select 1)"},
    {"create proc v as select 1",
     "1: There is already an object named 'v' in the database. [2714] near create proc v as select "
     "1"},
    {"create proc q as select 1\ngo\nexec q",
     "3: The embedded server keeps procedures as text and doesn't run them: 'q'. [40000] near exec "
     "q"},
    // Permissions and principals
    {"grant select on nothing to public",
     "1: Cannot find the object 'nothing', because it does not exist or you do not have "
     "permission. [15151] near grant select on nothing to public"},
    {"grant select on p to nobody",
     "1: Cannot find the user 'nobody', because it does not exist or you do not have permission. "
     "[15151] near grant select on p to nobody"},
    {"grant fly on p to public",
     "1: Incorrect syntax near 'FLY': there is no such permission. [102] near grant fly on p to "
     "public"},
    {"create schema s\ngo\ncreate table s.t (a int)\ngo\ndrop schema s",
     "5: Cannot drop schema 's' because it is being referenced by object 't'. [3729] near drop "
     "schema s"},
    // Not known here
    {"bulk insert p from 'file.txt'",
     "1: The embedded server doesn't run BULK statements. [40000] near bulk insert p from "
     "'file.txt'"},
    {"create table #t (a int)",
     "1: The embedded server keeps no temporary tables ('#t'). [40000] near create table #t (a "
     "int)"},
    {"create fulltext index on p(b)",
     "1: The embedded server doesn't know CREATE FULLTEXT. [40000] near create fulltext index on "
     "p(b)"},
    {"declare c cursor for select 1",
     "1: The embedded server doesn't run cursors. [40000] near declare c cursor for"},
    {"set nonsense on", "1: 'NONSENSE' is not a recognized SET option. [195] near set nonsense on"},
    {"exec sp_nonsense 'x'",
     "1: Could not find stored procedure 'sp_nonsense'. [2812] near exec sp_nonsense 'x'"},
    {"alter database shop set nonsense on",
     "1: Incorrect syntax near 'NONSENSE': there is no such database option. [102] near alter "
     "database shop set nonsense on"},
    // Raised by the script
    {"print 'a'\nraiserror('%s is %d', 16, 1, 'x', 5)",
     "2: x is 5 [50000] near raiserror('%s is %d', 16, 1, 'x', 5)"},
    {"raiserror 50005 'old form'", "1: old form [50005] near raiserror 50005 'old form'"},
    {"throw 51000, 'thrown', 1;", "1: thrown [51000] near throw 51000, 'thrown', 1"},
    // Lines of a text within the batch are the batch's own
    {"print 'a'\n\nexec('print 1\ncreate table p (a int)')",
     "3: There is already an object named 'p' in the database. [2714] near exec('print 1 create "
     "table p (a int)')"},
};

TEST(RefusedStatements, TellWhyAndWhere) {
    for (const Case& one : Cases) {
        SCOPED_TRACE(one.script);
        ScriptedServer server;
        ASSERT_EQ(server.run(QLatin1String(Base)).toStdString(), "");
        const QString before =
            server.one(QStringLiteral("select id, name, xtype, parent_obj from sysobjects order by "
                                      "id; select id, name, xtype, length, isnullable, cdefault "
                                      "from syscolumns; select id, indid, name from sysindexes"));
        const QString error = server.load(QLatin1String(one.script));
        const QString expected = QString::fromUtf8(one.error);
        if (expected.startsWith(u'*'))
            EXPECT_TRUE(error.contains(expected.mid(1, expected.size() - 2)))
                << error.toStdString();
        else
            EXPECT_EQ(error.toStdString(), one.error);
        EXPECT_EQ(
            server.one(QStringLiteral("select id, name, xtype, parent_obj from sysobjects order by "
                                      "id; select id, name, xtype, length, isnullable, cdefault "
                                      "from syscolumns; select id, indid, name from sysindexes")),
            before);
        EXPECT_EQ(server.one(QStringLiteral("select a, b, c from p")),
                  QStringLiteral("1|one|NULL"));
    }
}

TEST(RefusedStatements, LeaveTheRestOfTheBatchBefore) {
    // Outside of a load each statement stands by itself.
    ScriptedServer server;
    EXPECT_EQ(server
                  .run(QStringLiteral(
                      "create table t (a int)\ninsert t values (1)\ncreate table t (b int)"))
                  .left(2),
              QStringLiteral("3:"));
    EXPECT_EQ(server.one(QStringLiteral("select a from t")), QStringLiteral("1"));
}

}  // namespace
}  // namespace zov::test
