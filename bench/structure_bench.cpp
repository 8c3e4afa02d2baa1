// Comparing the structure of two whole databases on the embedded server, and the
// text tests on long sources. Each figure stands beside the one for twice the
// size. Argument: tables and procedures a side (1000).
#include "bench_tools.h"
#include "structure_runs.h"

#include "catalog/panel_loading.h"
#include "core/globals.h"
#include "core/mdlMain.h"
#include "data/local/local_provider.h"
#include "data/script_loading.h"
#include "shell/memory_controls.h"
#include "structcompare/modCompareAll.h"
#include "structcompare/modCompareObjects.h"
#include "structcompare/modIgnoreColumnsOrder.h"
#include "support/tds_endpoint/tds_endpoint.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>

using namespace zov;

namespace {

const char* const ServerName = "local:structure_bench";

/// `count` tables of ten columns, a default and an index each, and as many procedures of 4 KB.
/// In the changed database one in ten of both differs.
QString databaseScript(int count, bool changed) {
    QString sql;
    for (int i = 0; i < count; ++i) {
        const bool differs = changed && i % 10 == 0;
        sql +=
            QStringLiteral(
                "CREATE TABLE Table%1 (Id int NOT NULL, Code nvarchar(20) NOT NULL, "
                "Name nvarchar(%2) NULL, Place varchar(40) NULL, Price decimal(12,2) NULL, "
                "Weight float NULL, Made datetime NULL, Changed datetime NULL, "
                "Amount int NOT NULL CONSTRAINT DF_Table%1_Amount DEFAULT (0), Note ntext NULL)\n"
                "GO\nCREATE INDEX IX_Table%1_Code ON Table%1 (Code, Name)\nGO\n")
                .arg(i, 5, 10, QLatin1Char('0'))
                .arg(differs ? 61 : 60);
        sql += QStringLiteral("CREATE PROCEDURE Proc%1 @from int AS\n-- reads %1\n")
                   .arg(i, 5, 10, QLatin1Char('0'));
        QString body;
        for (int line = 0; body.size() < 3900; ++line)
            body += QStringLiteral("SELECT Id, Code, Name FROM Table%1 WHERE Id > @from + %2\n")
                        .arg(i, 5, 10, QLatin1Char('0'))
                        .arg(line);
        sql += body + (differs ? QStringLiteral("SELECT 1\nGO\n") : QStringLiteral("GO\n"));
    }
    return sql;
}

bool load(const ServerInfo& server, const QString& database, const QString& script) {
    const QString path = qEnvironmentVariable("ZOVRAND_HOME") + QStringLiteral("/script.sql");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return false;
    file.write(script.toUtf8());
    file.close();
    const LoadOutcome outcome = LoadScripts(server, database, {path});
    for (const LoadProblem& problem : outcome.problems)
        std::printf("%s\n", qPrintable(problem.toString()));
    return outcome.problems.empty();
}

bool compare(ServerInfo server, int count) {
    CheckSQLServerVersion(server);
    return bench::compareStructures(server, QStringLiteral("Source%1").arg(count),
                                    QStringLiteral("Target%1").arg(count))
        .finished;
}

ServerInfo embeddedServer() {
    ServerInfo server;
    server.Name = QString::fromLatin1(ServerName);
    return server;
}

/// In a process of its own, so that the peak of memory is the comparison's.
double timedRun(int count) {
    QProcess run;
    run.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    run.start(QCoreApplication::applicationFilePath(),
              {QStringLiteral("--run"), QString::number(count)});
    run.waitForFinished(-1);
    const QStringList figures = QString::fromLatin1(run.readAll()).split(u' ');
    const double took = figures.value(0).toDouble();
    std::printf("%6d tables, %6d procedures a side  %8.3f s  %8.0f objects/s  peak %6.1f MB\n",
                count, count, took, 2 * count / took, figures.value(1).toDouble());
    return took;
}

/// What one object costs in statements, counted on the wire.
void countStatements(int count) {
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
    if (!compare(server, count)) return;
    const QStringList statements = endpoint.statements();
    const qsizetype uses = statements.filter(QRegularExpression(QStringLiteral("^USE "))).size();
    std::printf("statements per object: %.2f, and %.2f times USE (over ODBC, %d objects a side)\n",
                double(statements.size() - uses) / (2 * count), double(uses) / (2 * count),
                2 * count);
}

QString sourceText(int characters) {
    QString text;
    for (int line = 0; text.size() < characters; ++line) {
        text += QStringLiteral("    SELECT  Column%1,\tName -- takes %1\r\n").arg(line);
        if (line % 7 == 0) text += QStringLiteral("/* a block over\r\nlines */\r\n");
    }
    return text;
}

QString lineText(int characters, int differentLines, bool upper) {
    QString text;
    for (int line = 0; text.size() < characters; ++line) {
        const QString name =
            QStringLiteral("[Column%1] [int] NULL").arg(line * 7919 % differentLines);
        text += (line % 3 == (upper ? 1 : 2) ? name.toUpper() : name) + QStringLiteral("\r\n");
    }
    return text;
}

template <typename Work>
void textBench(const char* name, Work work) {
    constexpr int characters = 2'000'000;
    const double once = work(characters);
    const double twice = work(2 * characters);
    std::printf("%-46s %8.1f ms  twice the text: ratio %.2f\n", name, once * 1000, twice / once);
}

void textBenches() {
    textBench("CompareProcs_IgnoreWhiteSpace", [](int characters) {
        const QString a = sourceText(characters);
        QString b = a;
        b.replace(QStringLiteral("  "), QStringLiteral(" \t "));
        return bench::seconds([&] { CompareProcs_IgnoreWhiteSpace(a, b); }, 5);
    });
    textBench("StripCommentsFromProc", [](int characters) {
        const QString text = sourceText(characters);
        return bench::seconds([&] { StripCommentsFromProc(text); }, 5);
    });
    for (const int differentLines : {1'000'000, 100, 1})
        textBench(
            qPrintable(
                QStringLiteral("CompareProcs_IgnoreColumnsOrder, %1 names").arg(differentLines)),
            [&](int characters) {
                MemoryTextPane source, target;
                source.setText(lineText(characters, differentLines, true));
                target.setText(lineText(characters, differentLines, false));
                return bench::seconds([&] { CompareProcs_IgnoreColumnsOrder(source, target); }, 3);
            });
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.value(1) == u"--run") {
        InitPaths();
        bool finished = false;
        const double took = bench::seconds(
            [&] { finished = compare(embeddedServer(), arguments.value(2).toInt()); });
        std::printf("%f %f", finished ? took : 0.0, bench::processMegabytes("VmHWM"));
        return 0;
    }
    textBenches();

    const bench::ScratchHome home;
    InitPaths();
    const int count = arguments.size() > 1 ? arguments[1].toInt() : 1000;
    for (const int size : {count, 2 * count}) {
        const double took = bench::seconds([&] {
            if (!load(embeddedServer(), QStringLiteral("Source%1").arg(size),
                      databaseScript(size, false)) ||
                !load(embeddedServer(), QStringLiteral("Target%1").arg(size),
                      databaseScript(size, true)))
                std::exit(1);
        });
        std::printf("loading both databases of %d: %.1f s\n", size, took);
    }
    const double once = timedRun(count);
    const double twice = timedRun(2 * count);
    std::printf("twice the objects: ratio %.2f (goal 2.2)\n", twice / once);
    countStatements(count);
    return 0;
}
