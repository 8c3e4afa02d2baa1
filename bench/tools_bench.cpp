// The data analyzer on one table of 8 columns, half of them with 1,000 and half with 30,000
// distinct values, beside the sqlite3 shell's GROUP BY of every column on the same file; and the
// CREATE statements of a whole database beside the bulk comparison of two such databases.
//
//   tools_bench [ROWS [OBJECTS]]     1,000,000 rows, 2,000 objects
#include "bench_tools.h"
#include "structure_runs.h"

#include "analysis/table_analysis.h"
#include "core/globals.h"
#include "core/mdlMain.h"
#include "data/mdlData.h"
#include "data/script_loading.h"
#include "scripting/create_script.h"
#include "shell/memory_controls.h"
#include "structcompare/modCompareAll.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>

#include <sqlite3.h>

using namespace zov;

namespace {

const char* const Columns[] = {"n1", "n2", "n3", "n4", "t1", "t2", "t3", "t4"};

ServerInfo serverIn(const QString& folder) {
    ServerInfo server;
    server.Name = QStringLiteral("local:") + folder;
    server.Version = QStringLiteral("16.00.1000");
    return server;
}

void load(const ServerInfo& server, const QString& database, const QString& script) {
    const QString path = qEnvironmentVariable("ZOVRAND_HOME") + QStringLiteral("/script.sql");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(script.toUtf8()) < 0) std::exit(2);
    file.close();
    for (const LoadProblem& problem : LoadScripts(server, database, {path}).problems) {
        std::printf("%s\n", qPrintable(problem.toString()));
        std::exit(2);
    }
}

/// Whole numbers and texts by turns of 1,000 and of 30,000 kinds, in no order.
void fill(const QString& file, int rows) {
    sqlite3* db = nullptr;
    const QString sql =
        QStringLiteral(
            "PRAGMA synchronous=OFF;"
            "WITH RECURSIVE i(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM i WHERE i < %1)"
            "INSERT INTO \"dbo.Many\" (n1, n2, n3, n4, t1, t2, t3, t4) SELECT "
            "i * 7919 %% 1000, i * 7919 %% 30000, i * 104729 %% 1000, i * 104729 %% 30000, "
            "'Article ' || (i * 7919 %% 1000), 'Article ' || (i * 7919 %% 30000), "
            "'A longer text of the range, ' || (i * 104729 %% 1000), "
            "'A longer text of the range, ' || (i * 104729 %% 30000) FROM i;"
            "PRAGMA wal_checkpoint(TRUNCATE)")
            .arg(rows)
            .replace(QLatin1String("%%"), QLatin1String("%"));
    char* error = nullptr;
    if (sqlite3_open_v2(file.toUtf8().constData(), &db, SQLITE_OPEN_READWRITE, nullptr) !=
            SQLITE_OK ||
        sqlite3_exec(db, sql.toUtf8().constData(), nullptr, nullptr, &error) != SQLITE_OK) {
        std::printf("%s\n", sqlite3_errmsg(db));
        std::exit(2);
    }
    sqlite3_close(db);
}

double groupedByShell(const QString& file) {
    QString sql;
    for (const char* column : Columns)
        sql += QStringLiteral("SELECT %1, COUNT(*) FROM \"dbo.Many\" GROUP BY %1;")
                   .arg(QLatin1String(column));
    return bench::seconds(
        [&] {
            QProcess process;
            process.setStandardOutputFile(QProcess::nullDevice());
            process.start(QStringLiteral("sqlite3"), {file, sql});
            process.waitForFinished(-1);
            if (process.exitCode() != 0) std::exit(2);
        },
        3);
}

struct Watcher : AnalysisWatcher {
    bool columnBegun(const QString&, int, int) override { return true; }
    bool recordsCounted(qint32, qint32) override { return true; }
    bool columnDone() override { return true; }
};

void analyzer(const QString& folder, int rows) {
    const ServerInfo server = serverIn(folder);
    load(server, QStringLiteral("Bench"),
         QStringLiteral("CREATE TABLE Many (n1 int, n2 int, n3 int, n4 int, t1 nvarchar(40), t2 "
                        "nvarchar(40), t3 varchar(60), t4 varchar(60))"));
    const QString file = folder + QStringLiteral("/Bench.db");
    fill(file, rows);
    const double yardstick = groupedByShell(file);
    std::printf("sqlite3, GROUP BY of 8 columns      %7.2f s\n", yardstick);
    globals().glngCursorLocation = adUseServer;
    const AnalyzedTable table{
        server, QStringLiteral("Bench"), QStringLiteral("Many"), QStringLiteral("[dbo].[Many]"), 0,
        rows};
    AnalysisRequest request;
    request.RecordsToAnalyze = rows;
    double grown = 0;
    qint64 values = 0;
    const double took = bench::seconds(
        [&] {
            GridReport report;
            GridRepLoadEntities(report, DataAnalysisGridDefinition(), 8);
            Watcher watcher;
            const double before = bench::processMegabytes("VmHWM");
            if (AnalyzeTable(table, request, watcher, report) != AnalysisEnd::Finished)
                std::exit(2);
            grown = std::max(grown, bench::processMegabytes("VmHWM") - before);
            values = 0;
            for (const auto& record : report.records) values += record[2].longValue;
        },
        3);
    std::printf("analyzer, %lld values of %d rows  %7.2f s  ratio %.2f (goal 1.5), %.0f MB more\n",
                static_cast<long long>(values), rows, took, took / yardstick, grown);
}

double bulkComparison(const ServerInfo& server) {
    const QString database = QStringLiteral("Objects");
    return bench::seconds(
        [&] {
            if (!bench::compareStructures(server, database, database).finished) std::exit(2);
        },
        3);
}

void createStatements(const QString& folder, int objects) {
    const ServerInfo server = serverIn(folder);
    QString script;
    for (int n = 0; n < objects / 2; ++n) {
        script += QStringLiteral(
                      "CREATE TABLE Table%1 (Id int NOT NULL PRIMARY KEY, Code nvarchar(20) NOT "
                      "NULL, Name nvarchar(40) NULL, Price decimal(12,2) NULL, Made datetime NULL, "
                      "Amount int NOT NULL DEFAULT (0))\nGO\n"
                      "CREATE INDEX IX_Table%1 ON Table%1 (Code)\nGO\n"
                      "CREATE PROCEDURE Procedure%1 AS\n")
                      .arg(n);
        for (int line = 0; line < 60; ++line)
            script +=
                QStringLiteral("SELECT Id, Code FROM Table%1 WHERE Amount > %2\n").arg(n).arg(line);
        script += QStringLiteral("GO\n");
    }
    load(server, QStringLiteral("Objects"), script);
    const double yardstick = bulkComparison(server) / 2;
    std::printf("bulk comparison, for one side       %7.2f s\n", yardstick);
    qsizetype letters = 0;
    const double took = bench::seconds(
        [&] {
            DatabaseFacts facts;
            if (!readDatabaseFacts(server, QStringLiteral("Objects"), facts)) std::exit(2);
            letters = makeCreateScript(facts, {}).text(QString()).size();
        },
        3);
    std::printf("CREATE of %d objects, %.1f MB       %7.2f s  ratio %.2f (goal 2)\n", objects,
                double(letters) / 1e6, took, took / yardstick);
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    const bench::ScratchHome home;
    InitPaths();
    globals().glngTimeout = 0;
    for (const char* name : {"analyzer", "objects"})
        QDir().mkpath(home.path() + u'/' + QLatin1String(name));
    analyzer(home.path() + QStringLiteral("/analyzer"),
             arguments.value(1, QStringLiteral("1000000")).toInt());
    createStatements(home.path() + QStringLiteral("/objects"),
                     arguments.value(2, QStringLiteral("2000")).toInt());
    return 0;
}
