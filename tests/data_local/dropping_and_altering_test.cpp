// DROP ... IF EXISTS of every kind, and what ALTER COLUMN adds to a column and takes away again.
#include "data_local/catalogue_case.h"

#include <gtest/gtest.h>

namespace zov::test {
namespace {

TEST(DropIfExists, TakesWhatIsThereAndPassesWhatIsNot) {
    const struct {
        const char* make;
        const char* drop;
    } rows[] = {
        {"create table x (a int)", "drop table if exists x, nothing"},
        {"create view x as select 1 as a", "drop view if exists dbo.x"},
        {"create procedure x as select 1", "drop procedure if exists x"},
        {"create procedure x as select 1", "drop proc if exists nothing, x"},
        {"create function x() returns int begin return 1 end", "drop function if exists x"},
        {"create table t (a int)\ngo\ncreate trigger x on t for insert as return",
         "drop trigger if exists x"},
        {"create default x as 1", "drop default if exists x"},
        {"go\ncreate rule x as @a > 1", "drop rule if exists x"},
        {"create synonym x for y", "drop synonym if exists x"},
        {"create sequence x", "drop sequence if exists x"},
        {"create type x from int", "drop type if exists x"},
        {"create schema x", "drop schema if exists x"},
        {"create user x without login", "drop user if exists x"},
        {"create role x", "drop role if exists x"},
        {"create database x", "drop database if exists x"},
        {"create table t (a int)\ncreate index x on t(a)", "drop index if exists x on t"},
        {"create table t (a int, x int)", "alter table t drop column if exists x"},
        {"create table t (a int constraint x check (a > 0))",
         "alter table t drop constraint if exists x"},
    };
    constexpr const char* Names =
        "select name from sysobjects where name = 'x' union all select name from sys.types where "
        "name "
        "= 'x' union all select name from sys.schemas where name = 'x' union all select name from "
        "sys.database_principals where name = 'x' union all select name from sys.databases where "
        "name "
        "= 'x' union all select name from sys.indexes where name = 'x' union all select name from "
        "sys.columns where name = 'x'";
    for (const auto& row : rows) {
        SCOPED_TRACE(row.drop);
        ScriptedServer server;
        ASSERT_EQ(server.run(QLatin1String(row.make)).toStdString(), "");
        EXPECT_EQ(server.one(QLatin1String(Names)), QStringLiteral("x"));
        // Each form is the start of a batch that goes on, and stands a second time.
        const QString drop = QLatin1String(row.drop);
        EXPECT_EQ(server.run(drop + QStringLiteral(" print 'behind'")).toStdString(), "");
        EXPECT_EQ(server.messages.join(u'|'), QStringLiteral("behind"));
        EXPECT_EQ(server.one(QLatin1String(Names)), QString());
        EXPECT_EQ(server.run(drop).toStdString(), "");
    }
}

TEST(DropIfExists, PassesKindsThatCannotBeMadeHere) {
    ScriptedServer server;
    EXPECT_EQ(
        server.run(QStringLiteral("drop assembly if exists a drop aggregate if exists dbo.g drop "
                                  "security policy if exists p drop type if exists nowhere.t")),
        QString());
    EXPECT_EQ(server.run(QStringLiteral("drop assembly a")),
              QStringLiteral("1: Cannot drop the assembly 'a', because it does not exist or you do "
                             "not have permission. [3701] near drop assembly a"));
    // The name of another kind is no absence.
    EXPECT_EQ(
        server.run(QStringLiteral("create table t (a int) drop view if exists t")),
        QStringLiteral("1: Cannot use DROP VIEW with 't' because 't' is not a view. [3705] near "
                       "drop view if exists t"));
    EXPECT_EQ(server.one(QStringLiteral("select name from sysobjects")), QStringLiteral("t"));
}

TEST(DropIfExists, IsToldFromAnIfBehindADrop) {
    ScriptedServer server;
    EXPECT_EQ(server.run(QStringLiteral(
                  "create table a (x int) create table b (x int)\ndrop table a if exists (select * "
                  "from sysobjects where name = 'b') print 'b is there' else print 'no'")),
              QString());
    EXPECT_EQ(server.messages.join(u'|'), QStringLiteral("b is there"));
}

constexpr CatalogueCase Alterations[] = {
    {"SeveralDropsInOneStatement",
     "create table t (a int, b int constraint ck check (b > 0), c int, d int)\ngo\n"
     "alter table t drop constraint if exists ck, nothing, column if exists b, nothing, d",
     "select name from sys.columns where object_id = object_id('t') union all select name from "
     "sysobjects",
     "a\nc\nt"},
    {"Rowguidcol",
     "create table t (a uniqueidentifier, b uniqueidentifier rowguidcol)\ngo\n"
     "alter table t alter column b drop rowguidcol alter table t alter column a add rowguidcol",
     "select name, is_rowguidcol from sys.columns", "a|True\nb|False"},
    {"Persisted",
     "create table t (a int, b as a + 1, c as a + 2 persisted)\ngo\n"
     "alter table t alter column b add persisted\nalter table t alter column c drop persisted",
     "select name, is_persisted from sys.computed_columns", "b|True\nc|False"},
    {"NotForReplication",
     "create table t (a int identity(1,1) not for replication, b int)\ncreate table u (a int "
     "identity)\ngo\nalter table t alter column a drop not for replication\nalter table u alter "
     "column a add not for replication",
     "select object_name(object_id), is_not_for_replication from sys.identity_columns",
     "t|False\nu|True"},
    {"Sparse",
     "create table t (a int sparse null, b int, c xml column_set for "
     "all_sparse_columns)\ngo\nalter "
     "table t alter column a drop sparse\nalter table t alter column b add sparse",
     "select name, is_sparse, is_column_set, columnproperty(object_id, name, 'IsSparse') from "
     "sys.columns",
     "a|False|False|0\nb|True|False|1\nc|False|True|0"},
    {"Hidden",
     "create table t (a int, b int)\ngo\nalter table t alter column a add hidden\nalter table t "
     "alter "
     "column b add hidden alter table t alter column b drop hidden print 'x'",
     "select name, is_hidden from sys.columns", "a|True\nb|False"},
    {"Masked",
     "create table t (a varchar(9) masked with (function = 'default()'), b int, c int)\ngo\nalter "
     "table t alter column a drop masked\nalter table t alter column b add masked with (function = "
     "'random(1, 9)')\nalter table t alter column c bigint masked with (function = 'default()')",
     "select name, is_masked, masking_function from sys.masked_columns",
     "b|True|random(1, 9)\nc|True|default()"},
    {"ConstraintsAndTriggersNotForReplication",
     "create table p (a int primary key)\ncreate table t (a int constraint fk references p not for "
     "replication, b int constraint ck check not for replication (b > 0), constraint ck2 check (b "
     "> "
     "1))\ngo\ncreate trigger tr on t for insert not for replication as return",
     "select name, is_not_for_replication, is_not_trusted from sys.foreign_keys union all select "
     "name, "
     "is_not_for_replication, is_not_trusted from sys.check_constraints union all select name, "
     "is_not_for_replication, null from sys.triggers union all select 'property', "
     "objectproperty(object_id('fk'), 'CnstIsNotRepl'), null",
     "fk|1|True\nck|1|True\nck2|0|False\ntr|1|NULL\nproperty|1|NULL"},
    {"AColumnThatWentTakesItsTraitsAlong",
     "create table t (a int, b int sparse)\ngo\nalter table t drop column b\nalter table t add b "
     "int",
     "select name, is_sparse from sys.columns", "a|False\nb|False"},
};

TEST(AlterTable, LeavesInTheCatalogue) {
    expectCatalogue(Alterations);
}

TEST(AlterTable, RefusesTraitsThatAColumnCannotHave) {
    const struct {
        const char* alter;
        const char* error;
    } rows[] = {
        {"a add rowguidcol", "'not uniqueidentifier'. [4928]"},
        {"c add persisted", "'not COMPUTED'. [4928]"},
        {"c add not for replication", "'not IDENTITY'. [4928]"},
        {"a add sparse", "'not nullable, computed or ROWGUIDCOL'. [4928]"},
        {"c drop masked", "does not have a data masking function. [16007]"},
        {"c add masked", "the statement ends too early. [102]"},
        {"c add nonsense", "Incorrect syntax near 'nonsense'. [102]"},
        {"h add rowguidcol", "Duplicate column specified as ROWGUIDCOL. [8196]"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.alter);
        ScriptedServer server;
        ASSERT_EQ(
            server.run(QStringLiteral("create table t (a int not null, c int, g uniqueidentifier "
                                      "rowguidcol, h uniqueidentifier)")),
            QString());
        const QString error =
            server.run(QStringLiteral("alter table t alter column ") + QLatin1String(row.alter));
        EXPECT_TRUE(error.contains(QLatin1String(row.error))) << error.toStdString();
    }
}

}  // namespace
}  // namespace zov::test
