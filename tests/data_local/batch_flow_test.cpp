// Batches as scripts have them: statements without separators, control flow, EXEC, transactions.
#include "data_local/scripted_server.h"

#include <gtest/gtest.h>

namespace zov::test {
namespace {

struct Case {
    const char* name;
    const char* script;
    const char* messages;  // joined by "|"
};

const Case Cases[] = {
    {"StatementsWithoutSeparators",
     "set nocount on set dateformat dmy declare @a int set @a = 1 print @a print 'x' use master "
     "use shop print db_name()",
     "1|x|shop"},
    {"IfElse",
     "if 1 = 2 print 'a' else if 2 = 2 begin print 'b' print 'c' end else print 'd' print 'e'",
     "b|c|e"},
    {"IfWithSeparators", "if 1 = 2 print 'a'; else print 'b'; print 'c';", "b|c"},
    {"AnUntakenBranchIsNotRun",
     "if exists (select * from sysobjects where name = 'nothing') drop table nothing\nelse print "
     "'kept'",
     "kept"},
    {"CaseHasItsOwnEnd",
     "begin if case when 1 = 1 then 1 else 2 end = 1 print 'one' else print 'two' end print case "
     "when 1 = 2 then 'x' else 'y' end",
     "one|y"},
    {"WhileBreakContinue",
     "declare @i int = 0 while @i < 10 begin set @i += 1 if @i = 2 continue if @i = 4 break print "
     "@i end print 'end'",
     "1|3|end"},
    {"NestedLoops",
     "declare @i int, @j int set @i = 0 while @i < 2 begin select @i = @i + 1, @j = 0 while 1 = 1 "
     "begin set @j = @j + 1 if @j > 2 break print str(@i, 1) + str(@j, 1) end end",
     "11|12|21|22"},
    {"SelectIntoVariables",
     "create table t (a int, b varchar(5)) insert t values (7, 'x') declare @a int, @b varchar(5) "
     "select @a = a, @b = b from t print @b print @a",
     "x|7"},
    {"TryCatch",
     "begin try print 'a' create table sysname (x nonsense) print 'b' end try begin catch print "
     "error_number() print error_message() end catch print 'c'",
     "a|2715|Column, parameter, or variable #1: Cannot find data type nonsense.|c"},
    {"ThrowAgain",
     "begin try begin try throw 50001, 'inner', 3 end try begin catch print 'first'; throw end "
     "catch end try begin catch print error_message() + ' ' + str(error_state(), 1) end catch",
     "first|inner 3"},
    {"ErrorsInExecAreCaught",
     "begin try exec('raiserror(''deep'', 16, 2)') end try begin catch print error_message() end "
     "catch",
     "deep"},
    {"ReturnEndsTheBatch", "print 'a' return print 'b'", "a"},
    {"ReturnEndsTheExecOnly", "exec('print ''a'' return print ''b''') print 'c'", "a|c"},
    {"ExecOfJoinedTexts",
     "declare @s varchar(50) set @s = 'print ' exec(@s + '''x''' + ' print 2')", "x|2"},
    {"UseInExecEndsWithIt", "exec('use master print db_name()') print db_name()", "master|shop"},
    {"ExecuteSqlWithParameters",
     "declare @n int, @out int set @n = 4 exec sp_executesql N'set @b = @a * 2 print @t', N'@a "
     "int, @b int output, @t varchar(9)', @n, @out output, @t = 'in' print @out",
     "in|8"},
    {"RaisedTexts",
     "raiserror('%s: %d of %5d|%-4s|%04d %%', 0, 1, 'a', 3, 7, 'b', 9) with nowait "
     "raiserror('done', 10, 1)",
     "a: 3 of     7|b   |0009 %|done"},
    {"GlobalVariables",
     "create table t (a int) insert t values (1) insert t values (2) print @@rowcount update t set "
     "a = 5 print @@rowcount",
     "1|2"},
    {"Transactions",
     "create table t (a int) begin tran insert t values (1) print @@trancount rollback begin "
     "transaction named insert t values (2) commit transaction named print @@trancount declare @n "
     "int select @n = count(*) from t print @n",
     "1|0|1"},
    {"TransactionsUndoDefinitions",
     "begin tran create table t (a int) rollback tran if object_id('t') is null print 'gone'",
     "gone"},
    {"KnownWithoutEffect",
     "checkpoint exec sp_dboption 'shop', 'autoclose', 'true' set transaction isolation level read "
     "uncommitted set ansi_nulls, quoted_identifier on set lock_timeout -1 if 1 = "
     "fulltextserviceproperty('IsFullTextInstalled') print 'x' dbcc checkdb print "
     "'end'",
     "end"},
    {"BatchCallsAProcedureFirst",
     "sp_addtype code, 'char(4)'\ngo\nif exists (select * from systypes where name = 'code') print "
     "'made'",
     "made"},
    {"GrantEndsWhereItEnds",
     "create table t (a int) grant select, insert, delete on t to public print 'a' deny update on "
     "t to public revoke select on t from public print 'b'",
     "a|b"},
    {"AlterTableEndsWhereItEnds",
     "create table t (a int, b int) alter table t drop column b alter table t add c int default 1 "
     "drop table t print 'gone'",
     "gone"},
};

TEST(BatchFlow, RunsInOrder) {
    for (const Case& one : Cases) {
        SCOPED_TRACE(one.name);
        ScriptedServer server;
        EXPECT_EQ(server.run(QString::fromUtf8(one.script)).toStdString(), "");
        EXPECT_EQ(server.messages.join(u'|').toStdString(), one.messages);
    }
}

TEST(BatchFlow, GivesTheResultsOneAfterTheOther) {
    ScriptedServer server;
    CommandSpec command;
    command.text = QStringLiteral(
        "create table t (a int) insert t values (1) insert t values (2) select a from t where a = "
        "1 delete t where a = 2 select count(*) from t");
    const std::unique_ptr<ResultStream> results = server.connection().execute(command);
    QStringList seen;
    do {
        if (results->columns().empty()) {
            seen.push_back(QStringLiteral("touched %1").arg(results->affectedRows()));
            continue;
        }
        RowStore rows(results->columns());
        while (results->fetch(rows, 10) > 0) {
        }
        seen.push_back(QStringLiteral("row %1").arg(cellText(rows.cell(0, 0))));
    } while (results->nextResult());
    EXPECT_EQ(seen.join(QStringLiteral(", ")),
              QStringLiteral("touched 1, touched 1, row 1, touched 1, row 1"));
}

TEST(BatchFlow, StatementsBehindAnUnreadResultAreCancelledWithIt) {
    ScriptedServer server;
    ASSERT_EQ(server.run(QStringLiteral("create table t (a int) insert t values (1)")), QString());
    {
        CommandSpec command;
        command.text = QStringLiteral("select a from t delete t");
        const std::unique_ptr<ResultStream> results = server.connection().execute(command);
        results->close();
    }
    EXPECT_EQ(server.one(QStringLiteral("select count(*) from t")), QStringLiteral("1"));
}

TEST(BatchFlow, AnEndlessLoopMeetsTheTimeOut) {
    ScriptedServer server;
    CommandSpec command;
    command.text = QStringLiteral("declare @i int while 1 = 1 set @i = 1");
    command.timeout = 1;
    EXPECT_EQ(server.rows(command), QStringList(QStringLiteral("error: Query timeout expired")));
}

TEST(BatchFlow, CallsByNameTakeTheCommandsParameters) {
    ScriptedServer server;
    CommandSpec command;
    command.storedProcedure = true;
    command.text = QStringLiteral("sp_executesql");
    command.parameters = {
        {QString(), 202, 1, 0, QStringLiteral("select @a + 1, @b set @out = @a * 10")},
        {QString(), 202, 1, 0, QStringLiteral("@a int, @b nvarchar(9), @out int output")},
        {QStringLiteral("@a"), 3, 1, 0, 5},
        {QStringLiteral("@b"), 202, 1, 0, QStringLiteral("text")},
        {QStringLiteral("@out"), 3, 3, 0, 0}};
    {
        const std::unique_ptr<ResultStream> results = server.connection().execute(command);
        RowStore rows(results->columns());
        ASSERT_EQ(results->fetch(rows, 10), 1);
        EXPECT_EQ(cellText(rows.cell(0, 0)) + cellText(rows.cell(0, 1)), QStringLiteral("6text"));
        EXPECT_FALSE(results->nextResult());
        EXPECT_EQ(results->outputValue(4).toInt(), 50);
    }
    command.text = QStringLiteral("sp_addtype");
    command.parameters = {{QStringLiteral("@typename"), 202, 1, 0, QStringLiteral("code")},
                          {QStringLiteral("@phystype"), 202, 1, 0, QStringLiteral("char(3)")}};
    EXPECT_EQ(server.rows(command), QStringList());
    EXPECT_EQ(server.one(QStringLiteral("select length from systypes where name = 'code'")),
              QStringLiteral("3"));
}

}  // namespace
}  // namespace zov::test
