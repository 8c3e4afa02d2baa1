// Commands through the driver: batches, messages, procedures, errors, time-outs, cancelling.
#include "core/globals.h"
#include "data/mdlData.h"
#include "data_odbc/odbc_fixture.h"

#include <QDateTime>

#include <thread>

namespace zov {
namespace {

using OdbcCommandTest = OdbcTest;

const QString ask = QStringLiteral("SELECT 1");

TEST_F(OdbcCommandTest, ResultsOfABatchComeInTheirOrder) {
    ScriptedAnswer answer;
    answer.results.resize(4);
    answer.results[0].affectedRows = 5;
    answer.results[0].messages = {{0, 0, 1, QStringLiteral("first")}};
    answer.results[1] = numbers(2).results[0];
    answer.results[2].messages = {{10, 50000, 3, QStringLiteral("third")}};
    answer.results[2].affectedRows = 0;
    // FreeTDS loses what is said behind a last result without rows.
    answer.results[3] = numbers(1).results[0];
    answer.lastMessages = {{0, 0, 9, QStringLiteral("last")}};
    script.answer(ask, answer);
    const auto connection = open();
    const auto stream = run(*connection, ask);
    QStringList story;
    do {
        story.append(QStringLiteral("%1 columns, %2 affected: %3")
                         .arg(stream->columns().size())
                         .arg(stream->affectedRows())
                         .arg(readRows(*stream).join(u',')));
    } while (stream->nextResult());
    EXPECT_EQ(story.join(u'\n'), QStringLiteral("0 columns, 5 affected: \n"
                                                "1 columns, -1 affected: 0,1\n"
                                                "0 columns, 0 affected: \n"
                                                "1 columns, -1 affected: 0\n"
                                                // Words without a statement are a result too.
                                                "0 columns, -1 affected: "));
    EXPECT_TRUE(stream->columns().empty());
    QStringList said;
    for (const ServerMessage& message : connection->takeMessages())
        said.append(QStringLiteral("%1/%2/%3 %4")
                        .arg(message.number)
                        .arg(message.severity)
                        .arg(message.line)
                        .arg(message.text));
    EXPECT_EQ(said.join(u'\n'), QStringLiteral("0/0/1 first\n50000/10/3 third\n0/0/9 last"));
    EXPECT_TRUE(connection->takeMessages().empty());
}

TEST_F(OdbcCommandTest, TextsOfAnyLettersReachTheServer) {
    const auto connection = open();
    const QString statement = QStringLiteral(
        "SELECT [a\"b] FROM [dbo].[Größe 中\U0001F600] -- it's {d '?'} ?\r\nWHERE 1=1");
    script.answer(statement, numbers(1));
    EXPECT_EQ(readRows(*run(*connection, statement)).size(), 1);
    EXPECT_EQ(endpoint.statements().last(), statement);
}

struct ErrorCase {
    const char* name;
    qint32 native;
    qint32 number;
    const char* text;
};

void PrintTo(const ErrorCase& test, std::ostream* out) {
    *out << test.name;
}

class OdbcErrorTest : public OdbcTest, public ::testing::WithParamInterface<ErrorCase> {};

TEST_P(OdbcErrorTest, HasAdosNumberAndTheWholeText) {
    const ErrorCase& test = GetParam();
    // Beyond the 512 characters at which the driver manager cuts, and with brackets of its own.
    const QString text = QString::fromUtf8(test.text) + QStringLiteral(" [Größe] \U0001F600 ") +
                         QString(1500, u'x') + QStringLiteral(" the end.");
    ScriptedAnswer answer = failing(test.native, text);
    answer.results[0].error->line = 2;
    script.answer(QStringLiteral("SELECT a\r\nFROM  b\r\n"), answer);
    const auto connection = open();
    const DbError error =
        errorOf([&] { run(*connection, QStringLiteral("SELECT a\r\nFROM  b\r\n")); });
    EXPECT_EQ(error.number, test.number) << std::hex << quint32(error.number);
    EXPECT_EQ(error.description, text);
    EXPECT_EQ(error.native, test.native);
    EXPECT_EQ(error.sqlState.size(), 5);
    EXPECT_EQ(error.line, 2);
    EXPECT_EQ(error.nearText, QStringLiteral("FROM b"));
    EXPECT_FALSE(error.connectionLost);
    // The session is still good for its owner.
    script.answer(ask, numbers(1));
    EXPECT_EQ(readRows(*run(*connection, ask)).size(), 1);
}

INSTANTIATE_TEST_SUITE_P(
    ByNumber, OdbcErrorTest,
    ::testing::Values(
        ErrorCase{"NoSuchObject", 208, ado_error::NoSuchTable, "Invalid object name 'x'."},
        ErrorCase{"DropOfNothing", 3701, ado_error::NoSuchTable, "Cannot drop the table 'x'."},
        ErrorCase{"Syntax", 102, ado_error::SyntaxError, "Incorrect syntax near 'FORM'."},
        ErrorCase{"NoSuchColumn", 207, ado_error::SyntaxError, "Invalid column name 'x'."},
        ErrorCase{"NoSuchProcedure", 2812, ado_error::SyntaxError, "Could not find it."},
        ErrorCase{"DivideByZero", 8134, ado_error::SyntaxError, "Divide by zero error."},
        ErrorCase{"RaisedByAUser", 50000, ado_error::SyntaxError, "[SQL Server] my own"},
        ErrorCase{"DuplicateKey", 2627, ado_error::IntegrityViolation, "Violation of PRIMARY KEY."},
        ErrorCase{"ForeignKey", 547, ado_error::IntegrityViolation, "The INSERT conflicted."},
        ErrorCase{"Permission", 229, ado_error::PermissionDenied, "SELECT permission denied."},
        ErrorCase{"Deadlock", 1205, ado_error::Unspecified, "Chosen as the victim."}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(OdbcCommandTest, AnErrorBehindRowsComesAfterThem) {
    TdsFaults faults;
    faults.errorNumber = 8134;
    faults.errorText = QStringLiteral("Divide by zero error encountered.");
    // Within a block, at its border, and in the second.
    for (const qint64 good : {0, 1, 10, 512, 600}) {
        faults.errorAfterRows = good;
        endpoint.setFaults(faults);
        script.answer(ask, numbers(5000));
        const auto connection = open();
        const DbError error = errorOf([&] {
            const auto stream = run(*connection, ask);
            RowStore rows(stream->columns());
            for (qsizetype expected = 0;; expected = rows.rowCount()) {
                const qsizetype got = stream->fetch(rows, 100'000);
                ASSERT_EQ(rows.rowCount(), expected + got);
                EXPECT_LE(rows.rowCount(), good);
                if (got == 0) {
                    ADD_FAILURE() << "the rows ended as if all were there, after " << good;
                    return;
                }
            }
        });
        EXPECT_EQ(error.description, faults.errorText);
        EXPECT_EQ(error.native, 8134);
    }
}

TEST_F(OdbcCommandTest, AnErrorInALaterStatementIsNotSwallowed) {
    for (const int count : {0, 3, 512}) {
        ScriptedAnswer answer = numbers(count);
        answer.results.push_back(failing(547, QStringLiteral("The DELETE conflicted.")).results[0]);
        script.answer(ask, answer);
        const auto connection = open();
        // Whether the rows are read to their end, or in steps that end with them, or not at all.
        for (const qsizetype step : {0, 1, 3, 100}) {
            const DbError error = errorOf([&] {
                const auto stream = run(*connection, ask);
                RowStore rows(stream->columns());
                if (step)
                    while (stream->fetch(rows, step) > 0) {
                    }
                while (stream->nextResult()) {
                }
            });
            EXPECT_EQ(error.native, 547) << count << " rows in steps of " << step;
        }
    }
}

TEST_F(OdbcCommandTest, ADroppedConnectionEndsInAnErrorNotInFewerRows) {
    TdsFaults faults;
    for (const qint64 good : {0, 100, 512, 2000}) {
        faults.dropAfterRows = good;
        endpoint.setFaults(faults);
        script.answer(ask, numbers(100'000));
        const auto connection = open();
        const DbError error = errorOf([&] { readRows(*run(*connection, ask)); });
        EXPECT_TRUE(error.connectionLost) << "after " << good;
        EXPECT_EQ(error.number, ado_error::Unspecified);
        EXPECT_FALSE(error.description.isEmpty());
        // Its owner sees an error too, and nothing hangs.
        EXPECT_TRUE(errorOf([&] { run(*connection, ask, 5); }).connectionLost);
    }
    endpoint.setFaults({});
    script.answer(ask, numbers(1));
    EXPECT_EQ(readRows(*run(*open(), ask)).size(), 1);
}

TEST_F(OdbcCommandTest, AProcedureWithRowsGivesItsReturnValueAndOutputsWithEveryCursor) {
    ScriptedAnswer answer = numbers(5000);
    answer.returnValue = 7;
    answer.outputs = {QVariant(41)};
    script.answer(QStringLiteral("dbo.counted"), answer);
    ServerInfo server;
    server.Name = endpoint.dataSource();
    server.SQLAuth = true;
    server.LoginName = options.user;
    server.Password = options.password;
    for (const qint32 cursor : {adUseServer, adUseClient}) {
        const ScopedValue<qint32> location(globals().glngCursorLocation, cursor);
        OutParams outputs{{QString(), QVariant(1)}};
        std::unique_ptr<Recordset> rs;
        EXPECT_EQ(GetAdoRS(server, adCmdStoredProc, QStringLiteral("dbo.counted"), rs,
                           QStringLiteral("shop"), nullptr, {}, &outputs),
                  7)
            << cursor;
        EXPECT_EQ(outputs[0].Value, QVariant(41)) << cursor;
        ASSERT_TRUE(rs && rs->isOpen());
        qint64 sum = 0;
        for (; !rs->isEof(); rs->MoveNext()) sum += rs->field(0).toInt64();
        EXPECT_EQ(sum, 4999 * 5000 / 2) << cursor;
    }
}

TEST_F(OdbcCommandTest, ATimeOutIsToldAsSuch) {
    TdsFaults faults;
    faults.delayMilliseconds = 20'000;
    faults.onlyStatementsWith = QStringLiteral("slow");
    endpoint.setFaults(faults);
    script.answer(ask, numbers(1));
    const auto connection = open();
    const auto start = std::chrono::steady_clock::now();
    const DbError error = errorOf([&] { run(*connection, QStringLiteral("SELECT slow"), 1); });
    EXPECT_LT(secondsSince(start), 8);
    EXPECT_EQ(error.number, ado_error::Timeout);
    EXPECT_EQ(error.description, QStringLiteral("Timeout expired"));
    EXPECT_EQ(readRows(*run(*connection, ask)).size(), 1);
}

TEST_F(OdbcCommandTest, ASilentServerCostsItsTimeOutOnce) {
    script.answer(ask, numbers(100'000));
    struct Row {
        const char* name;
        int delay;
        qint64 stallAfter;
    };
    for (const Row& row : {Row{"before the answer", 60'000, -1}, Row{"at the first row", 0, 0},
                           Row{"within the rows", 0, 5000}}) {
        SCOPED_TRACE(row.name);
        TdsFaults faults;
        faults.onlyStatementsWith = ask;
        faults.delayMilliseconds = row.delay;
        faults.stallAfterRows = row.stallAfter;
        faults.stallMilliseconds = 60'000;
        faults.deafWhileStalled = true;
        endpoint.setFaults(faults);
        for (const bool pooled : {false, true}) {
            if (!pooled) odbc::dropIdleSessions();
            auto connection = open();
            const auto start = std::chrono::steady_clock::now();
            const DbError error = errorOf([&] { readRows(*run(*connection, ask, 2)); });
            connection.reset();
            EXPECT_EQ(error.number, ado_error::Timeout) << error.what();
            EXPECT_TRUE(error.connectionLost);
            EXPECT_TRUE(error.description.startsWith(QStringLiteral("Timeout expired\r\n")));
            EXPECT_LT(secondsSince(start), 4.0) << "pooled: " << pooled;
            EXPECT_GE(secondsSince(start), 1.9);
            // For a moment the server isn't asked again: the same run would wait each time.
            EXPECT_TRUE(errorOf([&] {
                            open();
                        }).description.contains(QStringLiteral("did not answer in time")));
            EXPECT_LT(secondsSince(start), 4.0);
            odbc::dropIdleSessions();
            // A session that waited idle for a while must be asked whether it lives.
            endpoint.setFaults({});
            open();
            std::this_thread::sleep_for(std::chrono::milliseconds(600));
            endpoint.setFaults(faults);
        }
    }
}

TEST_F(OdbcCommandTest, ACancelEndsTheWaitForAServerThatDoesNotListen) {
    script.answer(ask, numbers(1));
    TdsFaults faults;
    faults.onlyStatementsWith = ask;
    faults.delayMilliseconds = 60'000;
    faults.deafWhileStalled = true;
    endpoint.setFaults(faults);
    const auto connection = open();
    const auto start = std::chrono::steady_clock::now();
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        connection->cancel();
    });
    const DbError error = errorOf([&] { run(*connection, ask, 0); });
    other.join();
    EXPECT_EQ(error.number, ado_error::Cancelled) << error.what();
    EXPECT_LT(secondsSince(start), 3.0);
}

TEST_F(OdbcCommandTest, AnUnfinishedStreamOfASilentServerIsLetGo) {
    script.answer(ask, numbers(100'000));
    TdsFaults faults;
    faults.onlyStatementsWith = ask;
    faults.stallAfterRows = 2000;
    faults.stallMilliseconds = 60'000;
    faults.deafWhileStalled = true;
    endpoint.setFaults(faults);
    const auto start = std::chrono::steady_clock::now();
    {
        const auto connection = open();
        const auto stream = run(*connection, ask, 30);
        RowStore rows(stream->columns());
        EXPECT_EQ(stream->fetch(rows, 10), 10);
    }
    EXPECT_LT(secondsSince(start), 5.0);
}

TEST_F(OdbcCommandTest, ACancelFromAnotherThreadStopsTheCommand) {
    ScriptedAnswer endless;
    endless.untilCancelled = true;
    script.answer(QStringLiteral("SELECT endless"), endless);
    script.answer(ask, numbers(1));
    const auto connection = open();
    connection->cancel();  // nothing runs: nothing is stopped
    const auto start = std::chrono::steady_clock::now();
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        connection->cancel();
    });
    const DbError error = errorOf([&] { run(*connection, QStringLiteral("SELECT endless"), 0); });
    other.join();
    EXPECT_EQ(error.number, ado_error::Cancelled);
    EXPECT_LT(secondsSince(start), 8);
    EXPECT_EQ(readRows(*run(*connection, ask)).size(), 1);
}

TEST_F(OdbcCommandTest, ACancelBetweenBlocksIsSeenAtTheNext) {
    script.answer(ask, numbers(1'000'000));
    const auto connection = open();
    const auto stream = run(*connection, ask);
    RowStore rows(stream->columns());
    ASSERT_EQ(stream->fetch(rows, 100), 100);
    connection->cancel();
    const DbError error = errorOf([&] {
        while (stream->fetch(rows, 1000) > 0) {
        }
    });
    EXPECT_EQ(error.number, ado_error::Cancelled);
    EXPECT_LT(rows.rowCount(), 10'000);
}

TEST_F(OdbcCommandTest, AnUnfinishedStreamIsStoppedNotRead) {
    script.answer(ask, rowsOf({columnOf(QStringLiteral("t"), SqlType::NVarChar, 4000)}, 1'000'000,
                              [](RowStore& rows, qint64) {
                                  rows.column(0).appendText(QString(2000, u'x'));
                              }));
    script.answer(QStringLiteral("SELECT 2"), numbers(2));
    const auto connection = open();
    const auto start = std::chrono::steady_clock::now();
    {
        const auto stream = run(*connection, ask);
        RowStore rows(stream->columns());
        ASSERT_EQ(stream->fetch(rows, 10), 10);
    }
    EXPECT_EQ(readRows(*run(*connection, QStringLiteral("SELECT 2"))).size(), 2);
    // Four gigabytes would take longer.
    EXPECT_LT(secondsSince(start), 5);
}

TEST_F(OdbcCommandTest, AStreamOutlivesItsConnection) {
    script.answer(ask, numbers(5000));
    auto connection = open();
    const auto stream = run(*connection, ask);
    connection->close();
    EXPECT_TRUE(connection->takeMessages().empty());
    EXPECT_EQ(errorOf([&] { run(*connection, ask); }).description,
              QStringLiteral("The connection is closed."));
    connection.reset();
    EXPECT_EQ(readRows(*stream).size(), 5000);
}

TEST_F(OdbcCommandTest, ASecondCommandBesideAnOpenStreamIsRefused) {
    script.answer(ask, numbers(5000));
    const auto connection = open();
    const auto stream = run(*connection, ask);
    EXPECT_EQ(errorOf([&] { run(*connection, ask); }).description,
              QStringLiteral("The connection is busy with the results of another command."));
    EXPECT_EQ(readRows(*stream).size(), 5000);
}

CommandParameter parameter(int type, int direction, const QVariant& value, int size = 0) {
    return {QStringLiteral("p"), type, direction, size, value};
}

TEST_F(OdbcCommandTest, AProcedureGetsItsParametersAndGivesItsResults) {
    const QDateTime when(QDate(2024, 2, 29), QTime(12, 30, 15, 500));
    ScriptedAnswer answer = numbers(3);
    answer.returnValue = -7;
    answer.outputs = {QVariant(), QVariant(), QStringLiteral("out é\U0001F600"), 43};
    script.answer(QStringLiteral("sp_try"), answer);
    CommandSpec command;
    command.text = QStringLiteral("sp_try");
    command.storedProcedure = true;
    command.parameters = {parameter(3, 1, 42),
                          parameter(5, 1, 1.5),
                          parameter(202, 3, QStringLiteral("it's é\U0001F600"), 255),
                          parameter(3, 3, 1),
                          parameter(7, 1, when),
                          parameter(11, 1, true),
                          parameter(202, 1, QVariant(QMetaType::fromType<QString>()))};
    const auto connection = open();
    const auto stream = connection->execute(command);
    EXPECT_EQ(readRows(*stream), QStringList({"0", "1", "2"}));
    while (stream->nextResult()) {
    }
    EXPECT_EQ(stream->returnValue(), -7);
    EXPECT_EQ(stream->outputValue(2).toString(), QStringLiteral("out é\U0001F600"));
    EXPECT_EQ(stream->outputValue(3).toInt(), 43);
    EXPECT_FALSE(stream->outputValue(0).isValid());
    EXPECT_FALSE(stream->outputValue(99).isValid());

    ASSERT_EQ(script.commands().back().text, QStringLiteral("sp_try"));
    const std::vector<CommandParameter> sent = script.commands().back().parameters;
    ASSERT_EQ(sent.size(), 7u);
    EXPECT_EQ(sent[0].value.toInt(), 42);
    EXPECT_EQ(sent[1].value.toDouble(), 1.5);
    EXPECT_EQ(sent[2].value.toString(), QStringLiteral("it's é\U0001F600"));
    EXPECT_EQ(sent[3].value.toInt(), 1);
    EXPECT_EQ(sent[4].value.toDateTime(), when);
    EXPECT_TRUE(sent[5].value.toBool());
    EXPECT_TRUE(sent[6].value.isNull());
}

TEST_F(OdbcCommandTest, AProcedureWithoutParametersGivesItsReturnValue) {
    ScriptedAnswer answer;
    answer.returnValue = 5;
    script.answer(QStringLiteral("sp_plain"), answer);
    CommandSpec command;
    command.text = QStringLiteral("sp_plain");
    command.storedProcedure = true;
    const auto connection = open();
    const auto stream = connection->execute(command);
    while (stream->nextResult()) {
    }
    EXPECT_EQ(stream->returnValue(), 5);
}

TEST_F(OdbcCommandTest, ATextTakesPositionalParameters) {
    script.otherwise = [](const CommandSpec&) { return std::optional(numbers(1)); };
    CommandSpec command;
    command.text = QStringLiteral("SELECT n FROM t WHERE a = ? AND b = ?");
    command.parameters = {parameter(3, 1, 42), parameter(202, 1, QStringLiteral("it's"), 255)};
    const auto connection = open();
    EXPECT_EQ(readRows(*connection->execute(command)).size(), 1);
    const QString sent = script.commands().back().text;
    EXPECT_TRUE(sent.contains(QStringLiteral("42")) && sent.contains(QStringLiteral("'it''s'")))
        << qPrintable(sent);
}

TEST_F(OdbcCommandTest, AParameterWithoutBindingIsRefusedBeforeAnythingRuns) {
    CommandSpec command;
    command.text = QStringLiteral("sp_try");
    command.storedProcedure = true;
    command.parameters = {parameter(128, 1, QByteArray("x"))};
    const auto connection = open();
    endpoint.resetCounters();
    EXPECT_EQ(errorOf([&] { connection->execute(command); }).description,
              QStringLiteral("Parameter \"p\" is of type 128, which has no binding."));
    EXPECT_EQ(endpoint.counters().rpcs, 0);
}

}  // namespace
}  // namespace zov
