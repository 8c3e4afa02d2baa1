// ADO's recordset verbs over both cursor locations: what is seen, and what it
// costs on the wire.
#include "data/recordset.h"
#include "core/run_account.h"
#include "support/fake_session.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

using testing::FakeSession;
using testing::FakeTable;
using testing::Journal;

FakeTable peopleTable() {
    return {
        {{QStringLiteral("Id"), SqlType::Int, 0, 0, 0, false},
         {QStringLiteral("Name"), SqlType::NVarChar, 50, 0, 0, true},
         {QStringLiteral("Price"), SqlType::Decimal, 0, 10, 2, true},
         {QStringLiteral("Since"), SqlType::DateTime, 0, 0, 0, true}},
        {QStringLiteral("1|Anna|1050|2024-01-01 00:00:00"), QStringLiteral("2|O'Brien|NULL|NULL"),
         QStringLiteral("3|ANNA|1050|2024-01-01 00:00:00"),
         QStringLiteral("4|zoë|-1|2024-06-30 12:30:00"), QStringLiteral("5|NULL|0|NULL")}};
}

FakeTable numbersTable(int rows) {
    FakeTable table{{{QStringLiteral("n"), SqlType::Int, 0, 0, 0, false}}, {}};
    for (int i = 0; i < rows; ++i) table.rows += QString::number(i);
    return table;
}

class RecordsetTest : public ::testing::TestWithParam<int> {
 protected:
    Recordset open(FakeTable table) {
        session = std::make_shared<FakeSession>(std::move(table), &journal);
        connection = std::make_shared<Connection>(session);
        return openOn(connection, GetParam());
    }
    Recordset openOn(const std::shared_ptr<Connection>& on, int location) {
        Command command;
        command.ActiveConnection = on;
        command.CommandText = QStringLiteral("SELECT");
        Recordset rs;
        rs.CursorLocation = location;
        rs.CacheSize = 5;
        rs.Open(command);
        if (location == 3) rs.disconnect();
        return rs;
    }
    static std::string ids(Recordset& rs) {
        QStringList seen;
        for (; !rs.isEof(); rs.MoveNext()) seen += rs.field(0).text();
        return seen.join(u' ').toStdString();
    }

    Journal journal;
    std::shared_ptr<FakeSession> session;
    std::shared_ptr<Connection> connection;
};

TEST_P(RecordsetTest, WalksForwardAndBackToTheFirstRow) {
    Recordset rs = open(peopleTable());
    EXPECT_EQ(rs.State(), 1);
    EXPECT_FALSE(rs.isBof());
    EXPECT_EQ(rs.RecordCount(), 5);
    EXPECT_EQ(ids(rs), "1 2 3 4 5");
    EXPECT_TRUE(rs.isEof());
    EXPECT_TRUE(rs.field(0).isNull());
    rs.MoveFirst();
    EXPECT_EQ(ids(rs), "1 2 3 4 5");
    rs.MoveLast();
    EXPECT_EQ(rs.field(QStringLiteral("ID")).text(), "5");
    EXPECT_TRUE(rs.field(1).isNull());
    EXPECT_THROW(rs.field(QStringLiteral("Nope")), DbError);
}

TEST_P(RecordsetTest, AnEmptyResultIsAtBothEnds) {
    Recordset rs = open({peopleTable().columns, {}});
    EXPECT_TRUE(rs.isBof());
    EXPECT_TRUE(rs.isEof());
    EXPECT_EQ(rs.RecordCount(), 0);
}

TEST_P(RecordsetTest, ACommandWithoutRowsStaysClosed) {
    Recordset rs = open({{}, {}});
    EXPECT_EQ(rs.State(), 0);
    EXPECT_TRUE(rs.isEof());
}

TEST_P(RecordsetTest, FindGoesToTheFirstMatchFromTheCurrentRowOn) {
    const struct {
        const char* criterion;
        const char* found;
    } rows[] = {
        {"[Name] = 'anna'", "1 3"},
        {"Name = 'O''Brien'", "2"},
        {"Name = 'ZOË'", "4"},
        {"Name = 'nobody'", ""},
        {"Id = 3", "3"},
        {"Id = '3'", "3"},
        {"Id = 3.5", ""},
        {"Id = x", ""},
        {"Id = 99999999999", ""},
        {"Price = 10.5", "1 3"},
        {"Price = 10.500", "1 3"},
        {"Price = 10.505", ""},
        {"Price = -0.01", "4"},
        {"Price = 0", "5"},
        {"Price <> 0", "1 2 3 4"},
        {"Price > 0", "1 3"},
        {"Price = NULL", "2"},
        {"Name = 'NULL'", ""},
        {"Since = '2024-01-01'", "1 3"},
        {"Since >= #2024-06-30#", "4"},
        {"Name LIKE 'an*'", "1 3"},
        {"Name LIKE 'O_Brien'", ""},
        {"Since = 'yesterday'", ""},
    };
    for (const auto& row : rows) {
        Recordset rs = open(peopleTable());
        QStringList found;
        for (rs.Find(QString::fromUtf8(row.criterion)); !rs.isEof();
             rs.MoveNext(), rs.Find(QString::fromUtf8(row.criterion)))
            found += rs.field(0).text();
        EXPECT_EQ(found.join(u' ').toStdString(), row.found) << row.criterion;
    }
}

TEST_P(RecordsetTest, ACriterionThatCannotBeReadIsAnError) {
    Recordset rs = open(peopleTable());
    for (const char* text :
         {"", "Id", "Id =", "Nope = 1", "[Id = 1", "Name = 'x", "Id = 1 OR Id = 2"})
        EXPECT_THROW(rs.Find(QString::fromUtf8(text)), DbError) << text;
}

TEST_P(RecordsetTest, AFilterShowsWhatMeetsAllItsCriteria) {
    Recordset rs = open(peopleTable());
    rs.Filter(QStringLiteral("Price = 10.5 AND Id > 1"));
    EXPECT_EQ(rs.RecordCount(), 1);
    EXPECT_EQ(ids(rs), "3");
    rs.Filter({});
    EXPECT_EQ(ids(rs), "1 2 3 4 5");
}

TEST_P(RecordsetTest, DeletedRowsAreGoneForClonesAndSearches) {
    Recordset rs = open(peopleTable());
    Recordset clone = rs.Clone();
    rs.Find(QStringLiteral("Name = 'anna'"));
    rs.Delete();
    clone.FindEqual(1, u"Anna");
    EXPECT_EQ(clone.field(0).text(), "3");
    EXPECT_EQ(clone.RecordCount(), 4);
    clone.MoveFirst();
    EXPECT_EQ(ids(clone), "2 3 4 5");
    EXPECT_THROW(clone.Delete(), DbError);
}

TEST_P(RecordsetTest, ABrokenConnectionLeavesTheRowsBeforeIt) {
    session = std::make_shared<FakeSession>(numbersTable(5000), &journal);
    session->failAfterRows = 3000;
    connection = std::make_shared<Connection>(session);
    if (GetParam() == 3) {
        EXPECT_THROW(openOn(connection, 3), DbError);
        return;
    }
    Recordset rs = openOn(connection, 2);
    int seen = 0;
    EXPECT_THROW(for (; !rs.isEof(); rs.MoveNext())++ seen, DbError);
    EXPECT_GT(seen, 1000);
}

TEST_P(RecordsetTest, WithoutMemoryNoRowIsSeenOfWhichAPartIsMissing) {
    FakeTable table{{{QStringLiteral("n"), SqlType::Int, 0, 0, 0, false},
                     {QStringLiteral("t"), SqlType::NVarChar, 50, 0, 0, true}},
                    {}};
    for (int i = 0; i < 20'000; ++i) table.rows += QStringLiteral("%1|t%1").arg(i);
    // In the first window, and where a thread reads ahead.
    for (const qsizetype failAfter : {100, 15'000}) {
        session = std::make_shared<FakeSession>(table, &journal);
        session->failAfterRows = failAfter;
        session->outOfMemory = true;
        connection = std::make_shared<Connection>(session);
        qsizetype seen = 0;
        const auto readAll = [&] {
            Recordset rs = openOn(connection, GetParam());
            for (; !rs.isEof(); rs.MoveNext(), ++seen) {
                EXPECT_EQ(rs.field(0).toInt64(), seen);
                EXPECT_EQ(rs.field(1).text(), QStringLiteral("t%1").arg(seen));
            }
        };
        EXPECT_THROW(readAll(), std::bad_alloc) << failAfter;
        EXPECT_LE(seen, failAfter);
    }
}

INSTANTIATE_TEST_SUITE_P(Cursors, RecordsetTest, ::testing::Values(2, 3), [](const auto& info) {
    return info.param == 2 ? "ServerSide" : "ClientSide";
});

using ServerSide = RecordsetTest;
INSTANTIATE_TEST_SUITE_P(ServerSideOnly, ServerSide, ::testing::Values(2));

TEST_P(ServerSide, StreamsInWindowsAndAsksAgainOnlyToGoBack) {
    if (GetParam() != 2) return;
    Recordset rs = open(numbersTable(100000));
    EXPECT_LT(rs.rowStore().rowCount(), 10000);
    int count = 0;
    for (; !rs.isEof(); rs.MoveNext()) {
        ASSERT_EQ(rs.field(0).toInt64(), count++);
        ASSERT_LT(rs.rowStore().rowCount(), 10000);
    }
    EXPECT_EQ(count, 100000);
    EXPECT_EQ(journal.count(QStringLiteral("execute SELECT")), 1);
    rs.MoveFirst();
    EXPECT_EQ(rs.field(0).text(), "0");
    EXPECT_EQ(rs.RecordCount(), 100000);
    EXPECT_EQ(journal.count(QStringLiteral("execute SELECT")), 2);
}

// Windows were dropped, others not read yet, when it goes back.
TEST_P(ServerSide, GoesBackToTheFirstRowFromTheMiddleOfALongStream) {
    if (GetParam() != 2) return;
    for (const int turn : {1, 4, 5, 6, 9'999, 60'000, 99'999}) {
        Recordset rs = open(numbersTable(100'000));
        for (int row = 0; row < turn; ++row) rs.MoveNext();
        ASSERT_EQ(rs.field(0).toInt64(), turn);
        rs.MoveFirst();
        int count = 0;
        for (; !rs.isEof(); rs.MoveNext()) ASSERT_EQ(rs.field(0).toInt64(), count++) << turn;
        EXPECT_EQ(count, 100'000) << turn;
    }
}

TEST_P(ServerSide, AnotherCommandOnTheConnectionFindsItFree) {
    if (GetParam() != 2) return;
    Recordset rs = open(numbersTable(10000));
    Recordset second = openOn(connection, 2);
    EXPECT_EQ(second.field(0).text(), "0");
    int count = 0;
    for (; !rs.isEof(); rs.MoveNext()) ++count;
    EXPECT_EQ(count, 10000);
}

TEST_P(ServerSide, ClosingEarlyReadsNoFurther) {
    if (GetParam() != 2) return;
    Recordset rs = open(numbersTable(100000));
    rs.Close();
    EXPECT_EQ(journal.last(), "closed");
    EXPECT_LT(journal.size(), 20);
}

// Each way of going on in a stream that breaks off.
TEST(RecordsetAccount, AReadThatFailsGoesIntoTheAccountOfTheRun) {
    using Read = void (*)(Recordset&);
    const struct {
        const char* name;
        Read read;
    } rows[] = {
        {"to the end",
         [](Recordset& rs) {
             while (!rs.isEof()) rs.MoveNext();
         }},
        {"the count", [](Recordset& rs) { rs.RecordCount(); }},
        {"the last", [](Recordset& rs) { rs.MoveLast(); }},
        {"behind the last", [](Recordset& rs) { rs.MoveBehindLast(); }},
        {"a search", [](Recordset& rs) { rs.Find(QStringLiteral("[n] = 4999")); }},
        {"a search by value", [](Recordset& rs) { rs.FindEqual(0, QStringLiteral("4999")); }},
        {"a filter", [](Recordset& rs) { rs.Filter(QStringLiteral("[n] > 1")); }},
        {"a second cursor", [](Recordset& rs) { rs.Clone(); }},
        {"windows",
         [](Recordset& rs) {
             RowStore rows;
             while (rs.TakeWindow(rows)) {
             }
         }},
    };
    for (const auto& row : rows) {
        Journal journal;
        auto session = std::make_shared<FakeSession>(numbersTable(5000), &journal);
        session->failAfterRows = 4000;
        auto connection = std::make_shared<Connection>(session);
        connection->ConnectionString = QStringLiteral("Data Source=S;Initial Catalog=D;");
        RunAccount account;
        const KeepAccount keep(account);
        Command command;
        command.ActiveConnection = connection;
        command.CommandText = QStringLiteral("SELECT n");
        Recordset rs;
        rs.CursorLocation = 2;
        rs.Open(command);
        EXPECT_TRUE(account.isWhole()) << row.name;
        EXPECT_THROW(row.read(rs), DbError) << row.name;
        ASSERT_EQ(account.entries().size(), 1u) << row.name;
        EXPECT_EQ(account.entries()[0].sentence().toStdString(), "S.D: Connection broken");
        EXPECT_EQ(account.entries()[0].doing.toStdString(), "SELECT n");
        EXPECT_FALSE(account.entries()[0].refused);
    }
}

}  // namespace
}  // namespace zov
