// Comparing the rows of two large tables: by key and by record on the embedded
// server, beside sqldiff on the same two files; and by key through ODBC from the
// test endpoint, beside a bare SQLBindCol/SQLFetch loop and beside freebcp.
//
//   data_bench make FOLDER ROWS   the two databases alone, for `local:FOLDER`
//   data_bench [ROWS]             makes them, measures (1,000,000)
//
// Databases Source and Target hold Goods (8 columns, an integer key) and Loose,
// the same without a key, in the target in random order. One row in a hundred is
// changed, one in a thousand missing on each side.
#include "bench_tools.h"

#include "core/globals.h"
#include "data/local/local_provider.h"
#include "data/mdlData.h"
#include "data/script_loading.h"
#include "datacompare/frmCompareData.h"
#include "datacompare/frmCompareStatus.h"
#include "datacompare/modCompareData.h"
#include "reports/export_files.h"
#include "shell/grid_cells.h"
#include "support/tds_endpoint/tds_endpoint.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

#include <sql.h>
#include <sqlext.h>
#include <sqlite3.h>

#include <numeric>
#include <random>

using namespace zov;

namespace {

const char* const Columns =
    "(Id int NOT NULL%1, Code nvarchar(20) NOT NULL, Name nvarchar(60) NULL, "
    "Place varchar(40) NULL, Price decimal(12,2) NULL, "
    "Weight decimal(10,3) NULL, Made datetime NULL, Changed datetime NULL)";

QString tablesScript() {
    return QStringLiteral("CREATE TABLE Goods ") +
           QString::fromLatin1(Columns).arg(QStringLiteral(" PRIMARY KEY")) +
           QStringLiteral("\nGO\nCREATE TABLE Loose ") +
           QString::fromLatin1(Columns).arg(QString()) + QStringLiteral("\nGO\n");
}

class Inserter {
 public:
    Inserter(sqlite3* db, const char* table) : db_(db) {
        const std::string sql =
            std::string("INSERT INTO \"dbo.") + table + "\" VALUES (?,?,?,?,?,?,?,?)";
        if (sqlite3_prepare_v2(db, sql.c_str(), -1, &statement_, nullptr) != SQLITE_OK)
            std::printf("%s\n", sqlite3_errmsg(db));
    }
    ~Inserter() { sqlite3_finalize(statement_); }

    /// As the embedded server stores them: decimals as numbers, times as texts.
    void add(int id, bool changed) {
        char text[64];
        int column = 0;
        const auto bind = [&](const char* value) {
            sqlite3_bind_text(statement_, ++column, value, -1, SQLITE_TRANSIENT);
        };
        sqlite3_bind_int(statement_, ++column, id);
        std::snprintf(text, sizeof text, "CODE-%08d", id);
        bind(text);
        std::snprintf(text, sizeof text, "Article number %08d of the range", id);
        bind(text);
        if (id % 7) {
            std::snprintf(text, sizeof text, "Hall %d, row %d", id % 40, id % 90);
            bind(text);
        } else {
            sqlite3_bind_null(statement_, ++column);
        }
        sqlite3_bind_double(statement_, ++column,
                            id % 5000 + (id % 99 + 1) / 100.0 + (changed ? 1 : 0));
        sqlite3_bind_double(statement_, ++column, id % 300 + (id % 999 + 1) / 1000.0);
        std::snprintf(text, sizeof text, "20%02d-%02d-15 08:30:00.000", id % 24, id % 12 + 1);
        bind(text);
        std::snprintf(text, sizeof text, "2024-%02d-01 12:00:00.000", id % 12 + 1);
        bind(text);
        sqlite3_step(statement_);
        sqlite3_reset(statement_);
    }

 private:
    sqlite3* db_;
    sqlite3_stmt* statement_ = nullptr;
};

QString databaseFile(const QString& folder, const char* database) {
    return folder + u'/' + QLatin1String(database) + QStringLiteral(".db");
}

/// Ids from 1 to `rows`. Of a thousand, the source lacks one and the target another, and ten are
/// changed in the target.
void fill(const QString& folder, bool target, int rows) {
    sqlite3* db = nullptr;
    const QString file = databaseFile(folder, target ? "Target" : "Source");
    if (sqlite3_open_v2(file.toUtf8().constData(), &db, SQLITE_OPEN_READWRITE, nullptr) !=
        SQLITE_OK) {
        std::printf("%s: %s\n", qPrintable(file), sqlite3_errmsg(db));
        std::exit(2);
    }
    sqlite3_exec(db, "PRAGMA synchronous=OFF; BEGIN", nullptr, nullptr, nullptr);
    std::vector<int> order(static_cast<size_t>(rows));
    std::iota(order.begin(), order.end(), 1);
    const int missing = target ? 999 : 500;
    for (const char* table : {"Goods", "Loose"}) {
        if (target && table[0] == 'L') std::shuffle(order.begin(), order.end(), std::mt19937(7));
        Inserter inserter(db, table);
        for (const int id : order)
            if (id % 1000 != missing) inserter.add(id, target && id % 100 == 42);
    }
    sqlite3_exec(db, "COMMIT; PRAGMA wal_checkpoint(TRUNCATE)", nullptr, nullptr, nullptr);
    sqlite3_close(db);
}

bool makeData(const QString& folder, int rows) {
    ServerInfo server;
    server.Name = QStringLiteral("local:") + folder;
    QDir().mkpath(folder);
    const QString script = folder + QStringLiteral("/tables.sql");
    QFile file(script);
    if (!file.open(QIODevice::WriteOnly)) return false;
    file.write(tablesScript().toUtf8());
    file.close();
    for (const char* database : {"Source", "Target"})
        LoadScripts(server, QLatin1String(database), {script});
    QFile::remove(script);
    fill(folder, false, rows);
    fill(folder, true, rows);
    return true;
}

/// Runs a comparison without windows.
class NoWindows : public DataComparisonScreens {
 public:
    void showStatus(frmCompareStatus& screen) override { screen.Form_Activate(); }
    void showDifferences(frmCompareData& screen) override { rows = screen.VSFlexGrid1.Rows() - 1; }
    int rows = 0;
};

/// In a process of its own, so that the peak of memory is that of this comparison: prints its
/// seconds, megabytes and counts.
int runOne(const QStringList& arguments) {
    ServerInfo server;
    server.Name = arguments[0];
    if (!server.Name.startsWith(QStringLiteral("local:"))) {
        server.SQLAuth = true;
        server.LoginName = QStringLiteral("sa");
        server.Password = QStringLiteral("x");
    }
    server.Version = QStringLiteral("16.00.1000");
    globals().glngTimeout = 0;
    globals().glngCursorLocation = arguments[2] == u"key" ? adUseClient : adUseServer;
    DataComparisonRun run;
    for (size_t side = 0; side < 2; ++side)
        run.Tables[side] = {server, side ? QStringLiteral("Target") : QStringLiteral("Source"),
                            arguments[1], 0};
    if (arguments[2] == u"key") {
        run.Method = CompMethod::PrimaryKey;
        for (CompKeys& keys : run.Keys)
            keys = {arguments.value(3), arguments.value(4, NoField), arguments.value(5, NoField)};
    }
    run.Quiet = true;
    NoWindows screens;
    DataComparisonResult result;
    const double took = bench::seconds([&] { result = ExecuteDataComparison(run, &screens); });
    std::printf("%f %f %d %d %d %d %d\n", took, bench::processMegabytes("VmHWM"),
                int(result.Outcome), result.Records1, result.Records2, result.Differences,
                screens.rows);
    return 0;
}

struct Measured {
    double seconds = 1e300;
    double megabytes = 0;
    QString counts;
};

Measured measure(const QStringList& arguments, int runs = 5) {
    Measured best;
    for (int i = 0; i < runs; ++i) {
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(),
                      QStringList{QStringLiteral("run")} + arguments);
        process.waitForFinished(-1);
        const QStringList parts =
            QString::fromLatin1(process.readAllStandardOutput()).trimmed().split(u' ');
        best.seconds = std::min(best.seconds, parts.value(0).toDouble());
        best.megabytes = std::max(best.megabytes, parts.value(1).toDouble());
        best.counts = QStringLiteral("%1/%2/%3, grid %4")
                          .arg(parts.value(3), parts.value(4), parts.value(5), parts.value(6));
    }
    return best;
}

double sqldiff(const QString& folder) {
    return bench::seconds(
        [&] {
            QProcess process;
            process.setStandardOutputFile(QProcess::nullDevice());
            process.start(QStringLiteral("sqldiff"),
                          {QStringLiteral("--table"), QStringLiteral("dbo.Goods"),
                           databaseFile(folder, "Source"), databaseFile(folder, "Target")});
            process.waitForFinished(-1);
            if (process.exitCode() != 0)
                std::printf("sqldiff: %s\n", process.readAllStandardError().constData());
        },
        5);
}

/// Both tables, every column bound, the rows dropped.
double bareOdbcLoop(int port) {
    SQLHENV env = nullptr;
    SQLHDBC dbc = nullptr;
    SQLAllocHandle(SQL_HANDLE_ENV, nullptr, &env);
    SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, SQLPOINTER(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, env, &dbc);
    const std::string text = "Driver=FreeTDS;Server=127.0.0.1;Port=" + std::to_string(port) +
                             ";TDS_Version=7.4;ClientCharset=UTF-8;UID=sa;PWD=x;Database=Source";
    SQLCHAR* in = reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str()));
    if (!SQL_SUCCEEDED(
            SQLDriverConnect(dbc, nullptr, in, SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT)))
        return 0;
    constexpr int Block = 1000;
    struct Bound {
        SQLINTEGER id[Block];
        SQLWCHAR text[3][Block][64];
        SQLCHAR decimal[2][Block][24];
        SQL_TIMESTAMP_STRUCT time[2][Block];
        SQLLEN length[8][Block];
    };
    const auto bound = std::make_unique<Bound>();
    const double took = bench::seconds(
        [&] {
            for (const char* database : {"Source", "Target"}) {
                SQLHSTMT statement = nullptr;
                SQLAllocHandle(SQL_HANDLE_STMT, dbc, &statement);
                const std::string use = std::string("USE ") + database;
                SQLExecDirect(statement, reinterpret_cast<SQLCHAR*>(const_cast<char*>(use.c_str())),
                              SQL_NTS);
                SQLFreeHandle(SQL_HANDLE_STMT, statement);
                SQLAllocHandle(SQL_HANDLE_STMT, dbc, &statement);
                SQLULEN fetched = 0;
                SQLSetStmtAttr(statement, SQL_ATTR_ROW_ARRAY_SIZE, SQLPOINTER(std::size_t(Block)),
                               0);
                SQLSetStmtAttr(statement, SQL_ATTR_ROWS_FETCHED_PTR, &fetched, 0);
                const char* select =
                    "SELECT Id, Code, Name, Place, Price, Weight, Made, Changed FROM Goods";
                SQLExecDirect(statement, reinterpret_cast<SQLCHAR*>(const_cast<char*>(select)),
                              SQL_NTS);
                SQLBindCol(statement, 1, SQL_C_SLONG, bound->id, 0, bound->length[0]);
                for (int i = 0; i < 3; ++i)
                    SQLBindCol(statement, SQLUSMALLINT(2 + i), SQL_C_WCHAR, bound->text[i],
                               sizeof bound->text[i][0], bound->length[1 + i]);
                for (int i = 0; i < 2; ++i)
                    SQLBindCol(statement, SQLUSMALLINT(5 + i), SQL_C_CHAR, bound->decimal[i],
                               sizeof bound->decimal[i][0], bound->length[4 + i]);
                for (int i = 0; i < 2; ++i)
                    SQLBindCol(statement, SQLUSMALLINT(7 + i), SQL_C_TYPE_TIMESTAMP, bound->time[i],
                               sizeof bound->time[i][0], bound->length[6 + i]);
                while (SQL_SUCCEEDED(SQLFetch(statement))) {
                }
                SQLFreeHandle(SQL_HANDLE_STMT, statement);
            }
        },
        3);
    SQLDisconnect(dbc);
    SQLFreeHandle(SQL_HANDLE_DBC, dbc);
    SQLFreeHandle(SQL_HANDLE_ENV, env);
    return took;
}

double freebcp(int port, const QString& folder) {
    return bench::seconds([&] {
        for (const QString& database : {QStringLiteral("Source"), QStringLiteral("Target")}) {
            QProcess process;
            process.start(QStringLiteral("freebcp"),
                          {database + QStringLiteral(".dbo.Goods"), QStringLiteral("out"),
                           folder + u'/' + database + QStringLiteral(".txt"), QStringLiteral("-S"),
                           QStringLiteral("127.0.0.1:%1").arg(port), QStringLiteral("-U"),
                           QStringLiteral("sa"), QStringLiteral("-P"), QStringLiteral("x"),
                           QStringLiteral("-c")});
            process.waitForFinished(-1);
            if (process.exitCode() != 0)
                std::printf("freebcp: %s\n", process.readAllStandardError().constData());
        }
    });
}

/// A view of a million cells.
class MadeUpGrid : public GridCells {
 public:
    int rowCount() const override { return 125'001; }
    int columnCount() const override { return 8; }
    QString text(int row, int column) const override {
        return QStringLiteral("value %1").arg(row * 8 + column);
    }
};

void measureExports(const QString& folder) {
    const MadeUpGrid grid;
    ExportSource source;
    source.mode = ExportMode::TableData;
    source.grid = &grid;
    const QString file = folder + QStringLiteral("/export");
    const double csv = bench::seconds(
        [&] {
            ExportRun run;
            writeGridCsv(source, file, false, run);
        },
        3);
    const double html = bench::seconds(
        [&] {
            ExportRun run;
            writeGridHtml(source, file, run);
        },
        3);
    std::printf("export of 1,000,000 cells: CSV %.2f s (goal 1), HTML %.2f s (goal 2)\n", csv,
                html);
}

void show(const char* what, const Measured& measured, double yardstick, double goal) {
    std::printf("%-34s %8.2f s  %6.0f MB  ratio %.2f (goal %.1f)  %s\n", what, measured.seconds,
                measured.megabytes, measured.seconds / yardstick, goal,
                qPrintable(measured.counts));
    std::fflush(stdout);
}

void measureAll(const QString& folder, int rows) {
    const QString server = QStringLiteral("local:") + folder + QStringLiteral("/1");
    if (!makeData(folder + QStringLiteral("/1"), rows)) return;
    const double yardstick = sqldiff(folder + QStringLiteral("/1"));
    std::printf("%d rows a side\n%-34s %8.2f s\n", rows, "sqldiff", yardstick);

    const QString goods = QStringLiteral("Goods"), loose = QStringLiteral("Loose"),
                  key = QStringLiteral("key"), id = QStringLiteral("Id");
    const Measured byKey = measure({server, goods, key, id});
    show("by key, beside sqldiff", byKey, yardstick, 0.9);
    const Measured shuffled = measure({server, loose, key, id});
    show("random order, beside ordered", shuffled, byKey.seconds, 1.5);
    const Measured three =
        measure({server, goods, key, id, QStringLiteral("Code"), QStringLiteral("Made")});
    show("three keys, beside one", three, byKey.seconds, 1.5);
    const Measured byRecord = measure({server, goods, QStringLiteral("record")});
    show("by record, beside sqldiff", byRecord, yardstick, 0.9);

    const QString twice = QStringLiteral("local:") + folder + QStringLiteral("/2");
    if (makeData(folder + QStringLiteral("/2"), rows * 2)) {
        show("by key, twice the rows", measure({twice, goods, key, id}, 4), byKey.seconds, 2.1);
        show("by record, twice the rows", measure({twice, goods, QStringLiteral("record")}, 4),
             byRecord.seconds, 2.1);
    }
    measureExports(folder);

    TdsEndpoint endpoint;
    TdsEndpointOptions options;
    options.provider = &local::localProvider();
    options.dataSource = server;
    options.password = QStringLiteral("x");
    const int port = endpoint.start(options);
    const double bare = bareOdbcLoop(port);
    std::printf("%-34s %8.2f s\n", "bare SQLBindCol/SQLFetch loop", bare);
    show("ODBC by key, beside the bare loop", measure({endpoint.dataSource(), goods, key, id}),
         bare, 1.3);
    show("ODBC by record, beside the loop",
         measure({endpoint.dataSource(), goods, QStringLiteral("record")}), bare, 1.3);
    std::printf("%-34s %8.2f s\n", "freebcp out", freebcp(port, folder));
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    const bench::ScratchHome home;
    if (arguments.value(0) == u"run") return runOne(arguments.mid(1));
    if (arguments.value(0) == u"make" && arguments.size() == 3)
        return makeData(arguments[1], arguments[2].toInt()) ? 0 : 2;
    measureAll(home.path(), arguments.isEmpty() ? 1'000'000 : arguments[0].toInt());
    return 0;
}
