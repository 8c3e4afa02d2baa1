// zovrand-cli analyze, info and attach
#include "analysis/table_analysis.h"
#include "apps/cli/data_run.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "core/run_account.h"
#include "data/snapshots.h"
#include "data/sql_names.h"
#include "datacompare/table_reading.h"
#include "reports/database_info.h"
#include "reports/export_files.h"
#include "shell/console/console_shell.h"
#include "tools/attach_database.h"
#include "util/text.h"

#include <QFileInfo>

namespace zov::cli {
namespace {

/// Shows how far an analysis is; Ctrl-C ends it.
class ConsoleWatcher : public AnalysisWatcher {
 public:
    explicit ConsoleWatcher(ConsoleShell& console) : console_(console) {}
    bool columnBegun(const QString& column, int index, int lastIndex) override {
        column_ = QStringLiteral("%1 (%2 of %3)").arg(column).arg(index + 1).arg(lastIndex + 1);
        return goesOn(column_);
    }
    bool recordsCounted(qint32 record, qint32) override {
        return goesOn(column_ + u' ' + formatCount(record));
    }
    bool columnDone() override { return goesOn(column_); }

 private:
    bool goesOn(const QString& progress) {
        console_.showProgress(progress);
        shell().pumpEvents();
        return !globals().gblnStop;
    }

    ConsoleShell& console_;
    QString column_;
};

bool isCsv(const QString& path) {
    return path.endsWith(QStringLiteral(".csv"), Qt::CaseInsensitive);
}

void exportAnalysis(const GridReport& report, const QString& title, const QString& path) {
    ExportSource source;
    source.mode = ExportMode::DataAnalysis;
    source.report = &report;
    source.caption = QStringLiteral("Data Analyzer");
    source.lblTableName[0] = title;
    ExportRun run;
    run.doubleQuotationMarks = true;
    const ExportEnd end =
        isCsv(path) ? writeReportCsv(source, path, true, run) : writeReportHtml(source, path, run);
    if (end != ExportEnd::Written)
        throw Failure(run.failure + QStringLiteral("\nNothing was exported. An older file of this "
                                                   "name is as it was."));
}

/// The columns of --ignore as the table writes them; throws Failure for one that it hasn't got.
QStringList ignoredOf(const Options& options, const CompareDataTable& table) {
    return options.ignore.isEmpty()
               ? QStringList()
               : columnsNamed(table, options.ignore, QStringLiteral("--ignore"));
}

}  // namespace

int runAnalyze(const Options& options, ConsoleShell& console) {
    checkExportFile(options);
    ServerInfo server = chooseServer(options, options.server);
    const QString database = chooseDatabase(options.server, server, "-d");
    reachServer(server, database, SourcePanel);
    if (isSnapshot(server)) throw Failure(NoRowsSentence(server));
    RunAccount account;
    const KeepAccount keep(account);
    const CompareDataTable found =
        findTable(SourcePanel, database, options.table, TableOfSide::Only);
    AnalyzedTable table{
        found.Server,   database, found.name(),      quotedName(found.Schema, found.name()),
        found.ObjectId, 0,        found.storedName()};
    table.RecordsCount = GetNumberOfRecordsInTable(table.Server, table.QualifiedTable, database);
    if (tellTrouble(console, account)) return Trouble;
    if (table.RecordsCount < 0)
        throw Failure(QStringLiteral("Error while reading data from table %1.").arg(found.Table));
    if (table.RecordsCount == 0) {
        console.showNote(QStringLiteral("Table %1 doesn't contain any data.").arg(found.Table));
        return Identical;
    }
    AnalysisRequest request;
    request.RecordsToAnalyze =
        options.rows > 0 ? std::min(options.rows, table.RecordsCount) : table.RecordsCount;
    request.MostFrequent = !options.least;
    request.AnySize = options.anySize;
    request.Ignored = ignoredOf(options, found);
    GridReport report;
    GridRepLoadEntities(report, DataAnalysisGridDefinition(), 8);
    ConsoleWatcher watcher(console);
    const AnalysisEnd end = AnalyzeTable(table, request, watcher, report);
    console.clearProgress();
    const bool told = tellTrouble(console, account);
    if (end == AnalysisEnd::Stopped) throw Failure(QStringLiteral("Stopped."));
    const QString title =
        QStringLiteral("Table: ") + GetObjectDisplayName(server.Name, database, found.Table);
    if (end == AnalysisEnd::Failed || told) {
        for (const std::vector<GridReportItem>& record : report.records)
            if (!request.AnySize && record[2].longValue > MostRankedValues)
                console.showNote(
                    QStringLiteral(
                        "%1 has %2 distinct values; give --any-size to rank more than %3.")
                        .arg(record[0].text(), record[2].text(), formatCount(MostRankedValues)));
        return Trouble;
    }
    writeReport(options, AnalysisText(title, report));
    if (!options.exportFile.isEmpty()) exportAnalysis(report, title, options.exportFile);
    return Identical;
}

int runInfo(const Options& options, ConsoleShell& console) {
    const bool both = !options.target.server.isEmpty();
    ServerInfo servers[2] = {chooseServer(options, options.server), {}};
    QString databases[2] = {chooseDatabase(options.server, servers[0], both ? "--source-db" : "-d"),
                            {}};
    if (both) {
        const ComparedServers chosen = chooseServers(options);
        servers[1] = chosen.target;
        databases[1] = chosen.targetDb;
    }
    RunAccount account;
    const KeepAccount keep(account);
    DatabaseInfo infos[2];
    bool incomplete = false;
    for (int side = 0; side < (both ? 2 : 1); ++side) {
        reachServer(servers[side], databases[side], side);
        DatabaseInfoProgress progress;
        progress.showStage = [&](const QString& stage) { console.showProgress(stage); };
        progress.showName = [&](const QString& name) { console.showProgress(name); };
        progress.cancelled = [] { return globals().gblnStop; };
        infos[side] = GetDatabaseInfo(servers[side], databases[side], side, progress);
        if (infos[side].stopped) throw Failure(QStringLiteral("Stopped."));
        incomplete |= infos[side].incomplete;
    }
    console.clearProgress();
    // What could not be counted stands in the text, beside what could.
    writeReport(options, both ? BothDatabasesText(infos[0], infos[1]) : infos[0].text);
    const bool told = tellTrouble(console, account);
    return told || incomplete ? Trouble : Identical;
}

int runAttach(const Options& options, ConsoleShell& console) {
    const ServerInfo server = chooseServer(options, options.server);
    for (const QString& file : {options.databaseFile, options.logFile}) {
        if (file.isEmpty() || options.fileOnServer || QFileInfo(file).isFile()) continue;
        throw Failure(
            QStringLiteral("File %1 doesn't exist.%2")
                .arg(file, opensFilesOfThisMachine(server.Name)
                               ? QString()
                               : QStringLiteral("\nThe server opens it on its own machine: "
                                                "where it is there alone, give "
                                                "--file-on-server.")));
    }
    // The embedded server of another process may stand in another folder.
    const auto whole = [&](const QString& file) {
        return file.isEmpty() || options.fileOnServer ? file : QFileInfo(file).absoluteFilePath();
    };
    if (!AttachDatabase(server, options.server.database, whole(options.databaseFile),
                        whole(options.logFile)))
        return Trouble;
    console.showNote(QStringLiteral("Attached Successfully"));
    return Identical;
}

}  // namespace zov::cli
