// The search for references that can't be found: 2,000 procedures of 4 KB on the embedded server.
// Prints what reading the catalogue and the walk cost against cutting the texts into words.
#include "bench_tools.h"

#include "core/globals.h"
#include "core/mdlMain.h"
#include "data/script_loading.h"
#include "tools/reference_search.h"
#include "tools/sql_words.h"

#include <QCoreApplication>
#include <QFile>

using namespace zov;

namespace {

constexpr int Procedures = 2000, Tables = 200, TextLength = 4096;

/// A database of `Tables` tables, each in a few procedures.
QString script() {
    QString text;
    for (int n = 0; n < Tables; ++n)
        text += QStringLiteral(
                    "CREATE TABLE dbo.Table%1 (Id int, Name varchar(50), Amount money, "
                    "OtherId int, Changed datetime)\nGO\n")
                    .arg(n);
    for (int n = 0; n < Procedures; ++n) {
        QString body = QStringLiteral("CREATE PROCEDURE dbo.Procedure%1 @Id int AS\n").arg(n);
        for (int part = 0; body.size() < TextLength; ++part)
            body +=
                QStringLiteral(
                    "-- step %3\nSELECT a.Id, a.Name, SUM(b.Amount) AS Total FROM dbo.Table%1 a "
                    "INNER JOIN dbo.Table%2 b ON a.Id = b.OtherId WHERE a.Changed > GETDATE() AND "
                    "a.Id = @Id GROUP BY a.Id, a.Name ORDER BY Total\nUPDATE dbo.Table%1 SET "
                    "Amount = Amount + 1 WHERE Id IN (SELECT OtherId FROM dbo.Table%2)\n")
                    .arg((n + part) % Tables)
                    .arg((n * 7 + part) % Tables)
                    .arg(part);
        text += body + QStringLiteral("GO\n");
    }
    return text;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const bench::ScratchHome home;
    InitPaths();
    const QString path = home.path() + QStringLiteral("/script.sql");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(script().toUtf8()) < 0) return 1;
    file.close();
    ServerInfo server;
    server.Name = QStringLiteral("local:references_bench");
    server.Version = QStringLiteral("16.00.1000");
    const QString database = QStringLiteral("Bench");
    for (const LoadProblem& problem : LoadScripts(server, database, {path}).problems) {
        std::printf("%s\n", qPrintable(problem.toString()));
        return 1;
    }
    SearchedDatabase searched;
    const double reading =
        bench::seconds([&] { searched = readSearchedDatabase(server, database); }, 3);
    size_t words = 0;
    const double cutting = bench::seconds(
        [&] {
            words = 0;
            for (const ModuleText& module : searched.modules)
                words += cutSqlText(module.text).words.size();
        },
        3);
    ReferenceFindings findings;
    const double searching = bench::seconds(
        [&] { findings = findMissingReferences(searched, [](const ModuleText&) { return true; }); },
        3);
    std::printf("%d procedures, %zu words, %lld missing\n", findings.searched, words,
                static_cast<long long>(findings.missing.size()));
    std::printf("reading names and texts      %8.0f ms\n", reading * 1e3);
    std::printf("cutting the texts into words %8.0f ms\n", cutting * 1e3);
    std::printf("searching                    %8.0f ms  %5.1f times the cutting\n", searching * 1e3,
                searching / cutting);
    std::printf("all                          %8.0f ms\n", (reading + searching) * 1e3);
    return searched.isRead() && findings.searched == Procedures ? 0 : 1;
}
