// Reading a large table: from the embedded server into a client-side recordset,
// beside the same SELECT stepped through SQLite's own API with every column read;
// and the same through ODBC from the test endpoint, beside a bare
// SQLBindCol/SQLFetch loop and beside freebcp. Argument: rows (1,000,000).
#include "bench_tools.h"

#include "core/globals.h"
#include "data/local/local_provider.h"
#include "data/mdlData.h"
#include "data/script_loading.h"
#include "support/tds_endpoint/tds_endpoint.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QProcess>

#include <sql.h>
#include <sqlext.h>
#include <sqlite3.h>

using namespace zov;

namespace {

const char* const Select = "SELECT Id, Code, Name, Place, Price, Weight, Made, Changed FROM Goods";

QString loadScript(int rows) {
    QString sql = QStringLiteral(
        "CREATE TABLE Goods (Id int NOT NULL PRIMARY KEY, Code nvarchar(20) NOT NULL, "
        "Name nvarchar(60) NULL, Place varchar(40) NULL, Price decimal(12,2) NULL, "
        "Weight decimal(10,3) NULL, Made datetime NULL, Changed datetime NULL)\nGO\n");
    QString values;
    for (int i = 0; i < rows; ++i) {
        values +=
            values.isEmpty() ? QStringLiteral("INSERT INTO Goods VALUES ") : QStringLiteral(",\n");
        values += QStringLiteral(
                      "(%1,N'CODE-%2',N'Article number %2 of the range',%3,%4.%5,%6.%7,"
                      "'20%8-%9-15 08:30:00','2024-06-%9 12:00:00')")
                      .arg(i)
                      .arg(i, 8, 10, QLatin1Char('0'))
                      .arg(i % 7 ? QStringLiteral("'Hall %1, row %2'").arg(i % 40).arg(i % 90)
                                 : QStringLiteral("NULL"))
                      .arg(i % 5000)
                      .arg(i % 100, 2, 10, QLatin1Char('0'))
                      .arg(i % 300)
                      .arg(i % 1000, 3, 10, QLatin1Char('0'))
                      .arg(i % 24, 2, 10, QLatin1Char('0'))
                      .arg(i % 12 + 1, 2, 10, QLatin1Char('0'));
        if (i % 500 == 499 || i + 1 == rows) {
            sql += values + QStringLiteral("\nGO\n");
            values.clear();
        }
    }
    return sql;
}

QString databaseFile(const QString& folder) {
    QDirIterator files(folder, {QStringLiteral("bench.db")}, QDir::Files,
                       QDirIterator::Subdirectories);
    return files.hasNext() ? files.next() : QString();
}

double stepThroughSqlite(const QString& file) {
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(file.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK)
        return 0;
    const double took = bench::seconds(
        [&] {
            sqlite3_stmt* statement = nullptr;
            if (sqlite3_prepare_v2(db,
                                   "SELECT Id, Code, Name, Place, Price, Weight, Made, Changed "
                                   "FROM \"dbo.Goods\"",
                                   -1, &statement, nullptr) != SQLITE_OK)
                std::printf("SQLite: %s\n", sqlite3_errmsg(db));
            qint64 bytes = 0;
            while (sqlite3_step(statement) == SQLITE_ROW) {
                bytes += sqlite3_column_int64(statement, 0) & 1;
                for (const int c : {1, 2, 3, 6, 7}) {
                    const unsigned char* text = sqlite3_column_text(statement, c);
                    bytes += sqlite3_column_bytes(statement, c) + (text ? text[0] & 1 : 0);
                }
                bytes += qint64(sqlite3_column_double(statement, 4) +
                                sqlite3_column_double(statement, 5)) &
                         1;
            }
            sqlite3_finalize(statement);
            if (bytes == 0) std::puts("(empty)");
        },
        3);
    sqlite3_close(db);
    return took;
}

/// Bytes of the values alone: fixed widths, two bytes a character, four for a text's end.
double packedBytes(const RowStore& rows) {
    double sum = 0;
    for (int c = 0; c < rows.columnCount(); ++c) {
        const ColumnCells& cells = rows.column(c);
        for (qsizetype row = 0; row < cells.count(); ++row)
            sum += cells.storage() == Storage::Text    ? 4 + 2.0 * double(cells.text(row).size())
                   : cells.storage() == Storage::Int32 ? 4
                                                       : 8;
    }
    return sum;
}

double fetchAll(const ServerInfo& server, double* bytes) {
    return bench::seconds(
        [&] {
            std::unique_ptr<Recordset> rs;
            if (GetAdoRS(server, adCmdText, QLatin1String(Select), rs, QStringLiteral("bench")) ==
                -1)
                return;
            if (bytes) {
                bytes[0] = double(rs->rowStore().reservedBytes());
                bytes[1] = packedBytes(rs->rowStore());
            }
        },
        3);
}

double bareOdbcLoop(int port, qint64& rowsRead) {
    SQLHENV env = nullptr;
    SQLHDBC dbc = nullptr;
    SQLAllocHandle(SQL_HANDLE_ENV, nullptr, &env);
    SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, SQLPOINTER(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, env, &dbc);
    const std::string text = "Driver=FreeTDS;Server=127.0.0.1;Port=" + std::to_string(port) +
                             ";TDS_Version=7.4;ClientCharset=UTF-8;UID=sa;PWD=x;Database=bench";
    SQLCHAR* in = reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str()));
    if (!SQL_SUCCEEDED(
            SQLDriverConnect(dbc, nullptr, in, SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT)))
        return 0;
    constexpr int Block = 1000;
    struct Columns {
        SQLINTEGER id[Block];
        SQLWCHAR text[3][Block][64];
        SQLCHAR decimal[2][Block][24];
        SQL_TIMESTAMP_STRUCT time[2][Block];
        SQLLEN length[8][Block];
    };
    const auto columns = std::make_unique<Columns>();
    const double took = bench::seconds(
        [&] {
            SQLHSTMT statement = nullptr;
            SQLAllocHandle(SQL_HANDLE_STMT, dbc, &statement);
            SQLULEN fetched = 0;
            SQLSetStmtAttr(statement, SQL_ATTR_ROW_ARRAY_SIZE, SQLPOINTER(std::size_t(Block)), 0);
            SQLSetStmtAttr(statement, SQL_ATTR_ROWS_FETCHED_PTR, &fetched, 0);
            SQLExecDirect(statement, reinterpret_cast<SQLCHAR*>(const_cast<char*>(Select)),
                          SQL_NTS);
            SQLBindCol(statement, 1, SQL_C_SLONG, columns->id, 0, columns->length[0]);
            for (int i = 0; i < 3; ++i)
                SQLBindCol(statement, SQLUSMALLINT(2 + i), SQL_C_WCHAR, columns->text[i],
                           sizeof columns->text[i][0], columns->length[1 + i]);
            for (int i = 0; i < 2; ++i)
                SQLBindCol(statement, SQLUSMALLINT(5 + i), SQL_C_CHAR, columns->decimal[i],
                           sizeof columns->decimal[i][0], columns->length[4 + i]);
            for (int i = 0; i < 2; ++i)
                SQLBindCol(statement, SQLUSMALLINT(7 + i), SQL_C_TYPE_TIMESTAMP, columns->time[i],
                           sizeof columns->time[i][0], columns->length[6 + i]);
            rowsRead = 0;
            while (SQL_SUCCEEDED(SQLFetch(statement))) rowsRead += qint64(fetched);
            SQLFreeHandle(SQL_HANDLE_STMT, statement);
        },
        3);
    SQLDisconnect(dbc);
    SQLFreeHandle(SQL_HANDLE_DBC, dbc);
    SQLFreeHandle(SQL_HANDLE_ENV, env);
    return took;
}

double freebcp(int port, const QString& folder) {
    return bench::seconds([&] {
        QProcess process;
        process.start(
            QStringLiteral("freebcp"),
            {QStringLiteral("bench.dbo.Goods"), QStringLiteral("out"),
             folder + QStringLiteral("/goods.txt"), QStringLiteral("-S"),
             QStringLiteral("127.0.0.1:%1").arg(port), QStringLiteral("-U"), QStringLiteral("sa"),
             QStringLiteral("-P"), QStringLiteral("x"), QStringLiteral("-c")});
        process.waitForFinished(-1);
        if (process.exitCode() != 0)
            std::printf("freebcp: %s\n", process.readAllStandardError().constData());
    });
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const int rows = argc > 1 ? std::atoi(argv[1]) : 1'000'000;
    const bench::ScratchHome home;
    globals().glngCursorLocation = adUseClient;
    globals().glngTimeout = 0;

    const QString script = home.path() + QStringLiteral("/goods.sql");
    QFile file(script);
    if (!file.open(QIODevice::WriteOnly)) return 2;
    file.write(loadScript(rows).toUtf8());
    file.close();
    ServerInfo local;
    local.Name = QStringLiteral("local:bench");
    const double load =
        bench::seconds([&] { LoadScripts(local, QStringLiteral("bench"), {script}); });
    std::printf("load by script            %8.2f s  (%.0f rows/s)\n", load, rows / load);

    const double yardstick =
        stepThroughSqlite(databaseFile(home.path() + QStringLiteral("/servers")));
    double bytes[2] = {0, 1};
    const double embedded = fetchAll(local, bytes);
    std::printf("SQLite step, all columns  %8.3f s\n", yardstick);
    std::printf("embedded client-side      %8.3f s  ratio %.2f (goal 2.5)\n", embedded,
                embedded / yardstick);
    std::printf("memory                    %8.1f MB packed values %.1f MB  ratio %.2f (goal 1.5)\n",
                bytes[0] / 1e6, bytes[1] / 1e6, bytes[0] / bytes[1]);

    TdsEndpoint endpoint;
    TdsEndpointOptions options;
    options.provider = &local::localProvider();
    options.dataSource = local.Name;
    options.user = QStringLiteral("sa");
    options.password = QStringLiteral("x");
    const int port = endpoint.start(options);
    ServerInfo wire;
    wire.Name = endpoint.dataSource();
    wire.SQLAuth = true;
    wire.LoginName = options.user;
    wire.Password = options.password;
    qint64 read = 0;
    const double bare = bareOdbcLoop(port, read);
    const double odbc = fetchAll(wire, nullptr);
    const double bcp = freebcp(port, home.path());
    std::printf("bare SQLBindCol/SQLFetch  %8.3f s  (%lld rows)\n", bare,
                static_cast<long long>(read));
    std::printf("ODBC client-side          %8.3f s  ratio %.2f (goal 1.3)\n", odbc, odbc / bare);
    std::printf("freebcp out               %8.3f s\n", bcp);
    return 0;
}
