// Comparing two databases over a wire whose round trip takes 0, 5 and 30 ms, with each catalogue
// read at once and, for the smaller number of objects, asked object by object; and on the embedded
// server. Arguments: objects a side (2000 10000).
#include "bench_tools.h"
#include "structure_runs.h"

#include "catalog/panel_loading.h"
#include "core/globals.h"
#include "core/mdlMain.h"
#include "data/local/local_provider.h"
#include "data/script_loading.h"
#include "shell/memory_controls.h"
#include "structcompare/modCompareAll.h"
#include "support/tds_endpoint/tds_endpoint.h"

#include <QCoreApplication>
#include <QFile>

using namespace zov;

namespace {

const char* const ServerName = "local:image_bench";

/// Of ten objects: four tables of twelve columns and two indexes, a foreign key among them, three
/// procedures of 4 KB, a view, a trigger.
QString databaseScript(int objects, bool changed) {
    QString sql;
    for (int i = 0; i < objects / 10; ++i) {
        for (int t = 0; t < 4; ++t) {
            const QString table = QStringLiteral("T%1_%2").arg(i).arg(t);
            sql += QStringLiteral(
                       "CREATE TABLE %1 (id int NOT NULL CONSTRAINT PK_%1 PRIMARY KEY, "
                       "up int NULL")
                       .arg(table);
            for (int c = 0; c < 10; ++c)
                sql += QStringLiteral(", c%1 nvarchar(%2) NULL")
                           .arg(c)
                           .arg(changed && c == i % 50 ? 41 : 40);
            sql += QStringLiteral(")\nGO\nCREATE INDEX IX_%1 ON %1 (c0, c1)\nGO\n").arg(table);
        }
        sql += QStringLiteral(
                   "ALTER TABLE T%1_0 ADD CONSTRAINT FK_%1 FOREIGN KEY (up) REFERENCES "
                   "T%1_1 (id)\nGO\n"
                   "CREATE VIEW V%1 AS SELECT id FROM T%1_0\nGO\n"
                   "CREATE TRIGGER R%1 ON T%1_0 FOR INSERT AS SELECT 1\nGO\n")
                   .arg(i);
        for (int p = 0; p < 3; ++p) {
            sql += QStringLiteral("CREATE PROCEDURE P%1_%2 AS\n").arg(i).arg(p);
            QString body;
            while (body.size() < 3900)
                body += QStringLiteral("SELECT id FROM T%1_0 WHERE id > 5\n").arg(i);
            sql += body + QStringLiteral("GO\n");
        }
    }
    return sql;
}

void load(const ServerInfo& server, const QString& database, const QString& script) {
    const QString path = qEnvironmentVariable("ZOVRAND_HOME") + QStringLiteral("/script.sql");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return;
    file.write(script.toUtf8());
    file.close();
    for (const LoadProblem& problem : LoadScripts(server, database, {path}).problems)
        std::printf("%s\n", qPrintable(problem.toString()));
}

double timedRun(ServerInfo server, int objects, bool image) {
    CheckSQLServerVersion(server);
    globals().gblnUseCatalogImage = image;
    StructureRun run;
    const double took = bench::seconds([&] {
        run = bench::compareStructures(server, QStringLiteral("Source%1").arg(objects),
                                       QStringLiteral("Target%1").arg(objects),
                                       {true, true, true, true, true, true});
    });
    for (const QString& note : run.notes) std::printf("%s\n", qPrintable(note));
    if (!run.isWhole()) std::printf("The run isn't whole.\n");
    return took;
}

void overTheWire(int objects, bool direct) {
    TdsEndpoint endpoint;
    TdsEndpointOptions options;
    options.provider = &local::localProvider();
    options.dataSource = QString::fromLatin1(ServerName);
    options.password = QStringLiteral("x");
    endpoint.start(options);
    ServerInfo server;
    server.Name = endpoint.dataSource();
    server.SQLAuth = true;
    server.LoginName = options.user;
    server.Password = options.password;
    for (const int delay : {0, 5, 30}) {
        TdsFaults faults;
        faults.delayMilliseconds = delay;
        endpoint.setFaults(faults);
        for (const bool image : {true, false}) {
            if (!image && (!direct || delay > 0)) continue;
            endpoint.resetCounters();
            const double took = timedRun(server, objects, image);
            std::printf("%6d objects a side, wire %2d ms, %-18s %8.3f s  %6d statements in all\n",
                        objects, delay, image ? "read at once" : "object by object", took,
                        int(endpoint.statements().size()));
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const bench::ScratchHome home;
    InitPaths();
    std::vector<int> sizes;
    for (int i = 1; i < argc; ++i) sizes.push_back(atoi(argv[i]));
    if (sizes.empty()) sizes = {2000, 10000};
    ServerInfo embedded;
    embedded.Name = QString::fromLatin1(ServerName);
    for (const int objects : sizes) {
        load(embedded, QStringLiteral("Source%1").arg(objects), databaseScript(objects, false));
        load(embedded, QStringLiteral("Target%1").arg(objects), databaseScript(objects, true));
    }
    for (const int objects : sizes) {
        for (const bool image : {true, false})
            std::printf("%6d objects a side, embedded,  %-18s %8.3f s\n", objects,
                        image ? "read at once" : "object by object",
                        timedRun(embedded, objects, image));
        overTheWire(objects, objects == sizes.front());
        std::printf("peak of memory so far %.1f MB\n", bench::processMegabytes("VmHWM"));
    }
}
