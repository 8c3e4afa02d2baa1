// The embedded server as a provider: two streams at once, time-outs, cancelling, unknown names.
#include "local_server.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>

#include <chrono>
#include <thread>

namespace zov::local {
namespace {

const QString Endless = QStringLiteral(
    "WITH n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000000000) SELECT COUNT(*) "
    "FROM n");

TEST(LocalConnections, TwoStreamsOfOneDatabaseGoSideBySide) {
    LocalServer server;
    server.run(QStringLiteral("CREATE TABLE T (a int) INSERT T VALUES (1), (2), (3)"));
    const auto other = server.open(QStringLiteral("Test"));
    CommandSpec command;
    command.text = QStringLiteral("SELECT a FROM T ORDER BY a");
    const auto first = server.connection().execute(command);
    const auto second = other->execute(command);
    RowStore a(first->columns()), b(second->columns());
    while (first->fetch(a, 1) + second->fetch(b, 1) > 0) {
    }
    EXPECT_EQ(a.rowCount(), 3);
    EXPECT_EQ(b.rowCount(), 3);
    // A statement that is running already is prepared a second time.
    const auto again = other->execute(command);
    RowStore c(again->columns());
    EXPECT_EQ(again->fetch(c, 10), 3);
}

TEST(LocalConnections, ATimeOutEndsALongStatement) {
    LocalServer server;
    CommandSpec command;
    command.text = Endless;
    command.timeout = 1;
    QElapsedTimer clock;
    clock.start();
    try {
        const auto stream = server.connection().execute(command);
        RowStore rows(stream->columns());
        stream->fetch(rows, 1);
        FAIL() << "no time-out";
    } catch (const DbError& error) {
        EXPECT_EQ(error.number, ado_error::Timeout);
        EXPECT_EQ(error.description, QStringLiteral("Query timeout expired"));
    }
    EXPECT_LT(clock.elapsed(), 60000);
    EXPECT_EQ(server.value(QStringLiteral("SELECT 1")), "1");
}

TEST(LocalConnections, CancelFromAnotherThreadStopsTheStatement) {
    LocalServer server;
    CommandSpec command;
    command.text = Endless;
    command.timeout = 0;
    std::thread canceller([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        server.connection().cancel();
    });
    try {
        const auto stream = server.connection().execute(command);
        RowStore rows(stream->columns());
        stream->fetch(rows, 1);
        ADD_FAILURE() << "not cancelled";
    } catch (const DbError& error) {
        EXPECT_EQ(error.number, ado_error::Cancelled);
    }
    canceller.join();
    EXPECT_EQ(server.value(QStringLiteral("SELECT 1")), "1");
}

TEST(LocalConnections, UnknownDatabasesAndServersAreTold) {
    LocalServer server;
    try {
        server.open(QStringLiteral("Missing"));
        FAIL();
    } catch (const DbError& error) {
        EXPECT_EQ(error.native, 4060);
        EXPECT_EQ(
            error.description,
            QStringLiteral(
                "Cannot open database \"Missing\" requested by the login. The login failed."));
    }
    ConnectionSpec spec;
    spec.dataSource = server.source() + QStringLiteral("-none");
    try {
        localProvider().open(spec, false);
        FAIL();
    } catch (const DbError& error) {
        EXPECT_EQ(error.number, ado_error::Unspecified);
        EXPECT_TRUE(error.description.startsWith(
            QStringLiteral("SQL Server does not exist or access denied.")));
    }
}

TEST(LocalConnections, AnErrorAmongTheRowsEndsTheStreamAndNothingElse) {
    LocalServer server;
    server.run(
        QStringLiteral("CREATE TABLE T (a int, b varchar(5)) INSERT T VALUES (1, '1'), (2, 'x')"));
    CommandSpec command;
    command.text = QStringLiteral("SELECT a, CAST(b AS int) FROM T");
    const auto stream = server.connection().execute(command);
    RowStore rows(stream->columns());
    EXPECT_EQ(stream->fetch(rows, 1), 1);
    EXPECT_THROW(stream->fetch(rows, 1), DbError);
    stream->close();
    EXPECT_EQ(server.value(QStringLiteral("SELECT COUNT(*) FROM T")), "2");
}

TEST(LocalConnections, TheSampleDatabasesAnswerAsTheyDoOnAServer) {
    const QString folder = QStringLiteral(ZOV_SOURCE_ROOT "/../shared/data/");
    if (!QFile::exists(folder + QStringLiteral("northwind.sql")))
        GTEST_SKIP() << "the folder of sample databases is not here";
    LocalServer server;
    QFile file(folder + QStringLiteral("northwind.sql"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QString batch;
    server.connection().beginLoad();
    const QString text = QString::fromUtf8(file.readAll()) + QStringLiteral("\nGO\n");
    for (const QString& line : text.split(u'\n')) {
        if (line.trimmed().compare(u"go", Qt::CaseInsensitive) != 0) {
            batch += line + u'\n';
            continue;
        }
        if (!batch.trimmed().isEmpty()) server.run(batch);
        batch.clear();
    }
    server.connection().commitLoad();
    const struct {
        const char* view;
        const char* rows;
    } views[] = {{"Customer and Suppliers by City", "120"},
                 {"Alphabetical list of products", "69"},
                 {"Current Product List", "69"},
                 {"Orders Qry", "830"},
                 {"Products Above Average Price", "25"},
                 {"Products by Category", "69"},
                 {"Quarterly Orders", "86"},
                 {"Invoices", "2155"},
                 {"Order Details Extended", "2155"},
                 {"Order Subtotals", "830"},
                 {"Product Sales for 1997", "77"},
                 {"Category Sales for 1997", "8"},
                 {"Sales by Category", "77"},
                 {"Sales Totals by Amount", "66"},
                 {"Summary of Sales by Quarter", "809"},
                 {"Summary of Sales by Year", "809"}};
    for (const auto& view : views)
        EXPECT_EQ(
            server.value(QStringLiteral("SELECT COUNT(*) FROM [%1]").arg(QLatin1String(view.view))),
            view.rows)
            << view.view;
    EXPECT_EQ(server.value(
                  QStringLiteral("SELECT * FROM [Category Sales for 1997] ORDER BY CategoryName")),
              "Beverages|102074.31\nCondiments|55277.6\nConfections|80894.14\nDairy "
              "Products|114749.78\nGrains/Cereals|55948.82\n"
              "Meat/Poultry|81338.06\nProduce|53019.98\nSeafood|65544.18");
}

}  // namespace
}  // namespace zov::local
