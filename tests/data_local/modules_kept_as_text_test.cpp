// Views, procedures, functions and triggers keep the text of their batch to the byte.
#include "data_local/scripted_server.h"

#include <gtest/gtest.h>

namespace zov::test {
namespace {

struct Case {
    const char* name;
    const char* batches;
    const char* object;
    const char* kept;
    const char* xtype;
};

const Case Cases[] = {
    {"CommentsAndBlanksInFront",
     "-- first\n\n /* second */\n  create  proc p as\n  select 1 -- end  ", "p",
     "-- first\n\n /* second */\n  create  proc p as\n  select 1 -- end  ", "P"},
    {"CarriageReturnsStay", "create view v\r\nas\r\n\tselect 1 as a\r\n", "v",
     "create view v\r\nas\r\n\tselect 1 as a\r\n", "V"},
    {"AlterIsKeptAsCreate",
     "create proc p as select 1\ngo\n/* x */ alter  procedure dbo.p as select 2", "p",
     "/* x */ CREATE  procedure dbo.p as select 2", "P"},
    {"CreateOrAlterLosesItsWords",
     "create or alter proc p as select 1\ngo\ncreate or alter proc p as select 3", "p",
     "create   proc p as select 3", "P"},
    {"AlterInACommentStays",
     "create proc p as select 1\ngo\n-- alter this\nalter proc p as select 'alter'", "p",
     "-- alter this\nCREATE proc p as select 'alter'", "P"},
    {"ScalarFunction",
     "create function f(@a int, @b varchar(10) = 'x') returns int as begin return @a end", "f",
     "create function f(@a int, @b varchar(10) = 'x') returns int as begin return @a end", "FN"},
    {"InlineFunction", "create function f() returns table as return (select 1 as a)", "f",
     "create function f() returns table as return (select 1 as a)", "IF"},
    {"TableFunction",
     "create function f() returns @t table (a int, b varchar(3)) as begin return end", "f",
     "create function f() returns @t table (a int, b varchar(3)) as begin return end", "TF"},
    {"Trigger",
     "create table t (a int)\ngo\ncreate trigger tr on t for insert, update as if update(a) return",
     "tr", "create trigger tr on t for insert, update as if update(a) return", "TR"},
    {"StatementsOfTheBodyAreNotRun",
     "create proc p as drop table nothing create table x (a int) exec('nonsense')", "p",
     "create proc p as drop table nothing create table x (a int) exec('nonsense')", "P"},
    {"TextFromExec", "exec('create view v as select 1 as a')", "v",
     "create view v as select 1 as a", "V"},
    {"NumberedProceduresJoinTheFirst",
     "create proc p;1 as select 1\ngo\ncreate proc p;2 as select 2", "p",
     "create proc p;1 as select 1\ncreate proc p;2 as select 2", "P"},
};

TEST(Modules, KeepTheirTextToTheByte) {
    for (const Case& one : Cases) {
        SCOPED_TRACE(one.name);
        ScriptedServer server;
        ASSERT_EQ(server.run(QString::fromUtf8(one.batches)).toStdString(), "");
        const QString object = QLatin1String(one.object);
        EXPECT_EQ(
            server
                .rows(QStringLiteral(
                          "select text from syscomments where id = object_id('%1') order by colid")
                          .arg(object))
                .join(QString())
                .toStdString(),
            one.kept);
        EXPECT_EQ(server
                      .one(QStringLiteral("select rtrim(xtype) from sysobjects where name = '%1'")
                               .arg(object))
                      .toStdString(),
                  one.xtype);
    }
}

TEST(Modules, AreCutInRowsOfFourThousandCharacters) {
    ScriptedServer server;
    const QString text = QStringLiteral("create proc p as /*") + QString(9000, QChar(0x00E9)) +
                         QStringLiteral("*/ select 1");
    ASSERT_EQ(server.run(text), QString());
    EXPECT_EQ(server.one(QStringLiteral(
                  "select colid, len(text), number from syscomments order by colid")),
              QStringLiteral("1|4000|1\n2|4000|1\n3|1030|1"));
    EXPECT_EQ(
        server.rows(QStringLiteral("select text from syscomments order by colid")).join(QString()),
        text);
}

TEST(Modules, ACharacterOfTwoUnitsIsNotCutApart) {
    ScriptedServer server;
    const QString start = QStringLiteral("create proc p as --");
    const QString text =
        start + QString(3999 - start.size(), u'x') + QString::fromUtf8("\xF0\x9F\x98\x80 end");
    ASSERT_EQ(server.run(text), QString());
    EXPECT_EQ(
        server.rows(QStringLiteral("select text from syscomments order by colid")).join(QString()),
        text);
}

TEST(Modules, WithEncryptionShowNoText) {
    ScriptedServer server;
    ASSERT_EQ(server.run(QStringLiteral("create view v with encryption as select 1 as secret")),
              QString());
    EXPECT_EQ(server.one(QStringLiteral("select text, encrypted from syscomments")),
              QStringLiteral("NULL|True"));
    EXPECT_EQ(server.rows(QStringLiteral("exec sp_helptext 'v'")), QStringList());
    EXPECT_EQ(server.one(QStringLiteral("select name from syscolumns")), QStringLiteral("secret"));
}

TEST(Modules, ViewsTellTheirColumns) {
    ScriptedServer server;
    ASSERT_EQ(server.run(QStringLiteral(
                  "create table t (a int not null, b nvarchar(20), c decimal(9,2))\ngo\n"
                  "create view v (x, y, z) as select a, b, c * 2 from t\ngo\n"
                  "create view w as select v.*, getdate() as d from v")),
              QString());
    EXPECT_EQ(server.one(QStringLiteral(
                  "select o.name, c.name, c.xtype, c.length from syscolumns c join sysobjects o on "
                  "o.id = c.id where o.xtype = 'V' order by o.name, colorder")),
              QStringLiteral(
                  "v|x|56|4\nv|y|231|40\nv|z|106|9\nw|x|56|4\nw|y|231|40\nw|z|106|9\nw|d|61|8"));
}

TEST(Modules, TextsAreHandedOutLineByLine) {
    ScriptedServer server;
    ASSERT_EQ(server.run(QStringLiteral("create proc p as\nselect 1\n\nselect 2")), QString());
    EXPECT_EQ(server.rows(QStringLiteral("sp_helptext p")),
              QStringList({QStringLiteral("create proc p as\n"), QStringLiteral("select 1\n"),
                           QStringLiteral("\n"), QStringLiteral("select 2")}));
}

}  // namespace
}  // namespace zov::test
