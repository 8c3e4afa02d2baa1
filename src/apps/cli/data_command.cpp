// zovrand-cli data
#include "apps/cli/data_notes.h"
#include "apps/cli/data_run.h"
#include "apps/cli/save_run.h"
#include "core/globals.h"
#include "core/run_account.h"
#include "data/snapshots.h"
#include "datacompare/compare_all_data.h"
#include "datacompare/frmCompareData.h"
#include "datacompare/frmCompareStatus.h"
#include "reports/frmExport.h"
#include "shell/console/console_shell.h"
#include "shell/memory_controls.h"
#include "util/text.h"

namespace zov::cli {
namespace {

/// The two screens of a comparison without windows: progress lines, and the export.
class ConsoleScreens : public DataComparisonScreens, public CompareAllForm {
 public:
    ConsoleScreens(ConsoleShell& console, const QString& exportFile, bool csvSafe)
        : console_(console), exportFile_(exportFile), csvSafe_(csvSafe) {}

    void showStatus(frmCompareStatus& screen) override {
        ProgressView view(console_, screen, name_);
        screen.view = &view;
        screen.Form_Activate();
        screen.view = nullptr;
        console_.clearProgress();
    }

    void showDifferences(frmCompareData& screen) override {
        // Half a result doesn't take the place of an older whole one.
        if (exportFile_.isEmpty() || screen.BrokenOff) return;
        ExportRun run;
        run.onRow = [&](int row, int rows) {
            if (row % 1000 == 0)
                console_.showProgress(QStringLiteral("Exporting row %1 of %2")
                                          .arg(formatCount(row), formatCount(rows)));
            shell().pumpEvents();
            return !globals().gblnStop;
        };
        run.doubleQuotationMarks = true;
        run.safeForSpreadsheets = csvSafe_;
        const ExportSource source = ExportSourceOf(screen);
        const ExportEnd end = exportFile_.endsWith(QStringLiteral(".csv"), Qt::CaseInsensitive)
                                  ? writeGridCsv(source, exportFile_, true, run)
                                  : writeGridHtml(source, exportFile_, run);
        console_.clearProgress();
        if (end == ExportEnd::Failed)
            exportFailure = run.failure + QStringLiteral(
                                              "\nNothing was exported. An older file of "
                                              "this name is as it was.");
        if (end == ExportEnd::Stopped)
            exportFailure = QStringLiteral("Stopped: %1 holds the rows so far.").arg(exportFile_);
        exported = end == ExportEnd::Written;
        if (!exported) return;
        if (screen.lblMaxRowsVisible)
            note = screen.lblMaxRows;
        else if (screen.RowsLeftOut)
            note = frmCompareData::RowsLeftOutNote;
    }

    // The frame of a run over several tables.
    void showRunning() override {}
    void setComparing(int, const QString&) override {}
    void setCurrentName(const QString& name) override {
        name_ = name;
        console_.showProgress(name);
    }
    void setTime(const QString&) override {}
    void runStatusTimer(bool) override {}

    QString exportFailure;
    bool exported = false;
    QString note;  ///< on rows that the export leaves out

 private:
    struct ProgressView : ScreenView {
        ProgressView(ConsoleShell& console, const frmCompareStatus& screen, const QString& table)
            : console(console), screen(screen), table(table) {}
        void focusControl(const QString&, bool) override {}
        void closeView() override {}
        void refreshFields() override {
            QString line = table.isEmpty() ? screen.lblTable1 : table;
            line += screen.lblStatusVisible
                        ? u' ' + screen.lblStatus
                        : QStringLiteral(" %1 %2 % ").arg(screen.lblTime).arg(screen.ProgressBar) +
                              screen.lblCurRec;
            console.showProgress(line);
        }
        ConsoleShell& console;
        const frmCompareStatus& screen;
        QString table;
    };

    ConsoleShell& console_;
    QString exportFile_;
    bool csvSafe_;
    QString name_;
};

void keepTableRun(const Options& options, ConsoleShell& console, const RunToSave& toSave,
                  const DataComparisonRun& run) {
    if (options.save.isNull()) return;
    QStringList ignored[2];
    ignoredColumnsOf(options, run.Tables, ignored);
    toSave.saveTableSettings(run, !options.ignore.isEmpty(), ignored);
    const bool csv = options.exportFile.endsWith(QStringLiteral(".csv"), Qt::CaseInsensitive);
    toSave.save(reportOf(run.Tables, run.Method), options.exportFile,
                csv ? ExportType::Csv : ExportType::Html, csv, console);
    if (!options.outputFile.isEmpty())
        console.showNote(
            QStringLiteral("The process doesn't keep the summary's file, %1: its replay "
                           "prints the summary.")
                .arg(options.outputFile));
}

int compareOneTable(const Options& options, ConsoleShell& console, const ComparedServers& servers,
                    const RunToSave& toSave) {
    checkExportFile(options);
    if (options.limit > 0) globals().glngMaxRowsInDiffTable = options.limit;
    if (globals().glngMaxRowsInDiffTable < 1)
        throw Failure(QStringLiteral("MaxRowsInDiffTable is %1; it must be at least 1.")
                          .arg(globals().glngMaxRowsInDiffTable));
    RunAccount account;
    const KeepAccount keep(account);
    const QString targetName = options.targetTable.isEmpty() ? options.table : options.targetTable;
    const CompareDataPair tables{findTable(SourcePanel, servers.sourceDb, options.table),
                                 findTable(TargetPanel, servers.targetDb, targetName)};
    checkAgainstIgnored(options, tables);
    std::optional<IgnoredForThisRun> ignored(std::in_place, options, tables);
    ConsoleScreens screens(console, options.exportFile, options.csvSafe);
    const DataComparisonRun run = runOf(options, tables);
    checkGivenKey(options, run);
    noteStoredSettings(options, run, console);
    noteSchemas(run, console);
    noteDifferentColumns(run, console);
    noteUnfitKeys(run, console);
    if (tellTrouble(console, account)) return Trouble;
    const DataComparisonResult result = ExecuteDataComparison(run, &screens);
    if (result.Outcome == DataOutcome::Cancelled) {
        console.showError(result.Report);
        return Trouble;
    }
    if (result.Outcome == DataOutcome::Failed) {
        // The error itself was told when it came.
        console.showNote(result.Report);
        noteOffsetsBehindEnd(run, result, console);
        if (!options.exportFile.isEmpty())
            console.showNote(QStringLiteral("%1 was not written.").arg(options.exportFile));
        return Trouble;
    }
    writeReport(options, result.Report);
    if (!screens.note.isEmpty()) console.showNote(screens.note + u'.');
    if (tellTrouble(console, account)) return Trouble;
    if (!screens.exportFailure.isEmpty()) throw Failure(screens.exportFailure);
    if (!options.exportFile.isEmpty() && !screens.exported)
        console.showNote(QStringLiteral("There is nothing to export: %1 was not written.")
                             .arg(options.exportFile));
    // What is stored goes to the user's own list of ignored columns again.
    ignored.reset();
    keepTableRun(options, console, toSave, run);
    return result.Identical() ? Identical : Different;
}

int compareTables(const Options& options, ConsoleShell& console, const ComparedServers& servers,
                  const RunToSave& toSave) {
    DataRunRequest request;
    request.sourceDb = servers.sourceDb;
    request.targetDb = servers.targetDb;
    ObjectKindBoxes tables{};
    tables[0] = true;
    RunAccount choosing;
    {
        const KeepAccount keep(choosing);
        request.selective =
            chooseObjects(options, tables, servers, request.sourceTables, request.targetTables);
    }
    if (tellTrouble(console, choosing)) return Trouble;
    const int before = console.errorCount();
    MemoryObjectList lists[2];
    MemoryTextPane panes[2];
    ComparePanels panels{{lists[0], panes[0]}, {lists[1], panes[1]}};
    ConsoleScreens screens(console, {}, false);
    const DataRun run = CompareAll_Data(screens, request, panels, &screens);
    console.clearProgress();
    if (!run.finished) {
        if (console.errorCount() == before)
            console.showError(QStringLiteral("Stopped: there is no report."));
        return Trouble;
    }
    // What could not be compared stands in the report, beside what could.
    writeReport(options, globals().gstrReport);
    for (const QString& note : run.notes) console.showNote(note);
    for (const QString& sentence : run.blindness) console.showError(sentence);
    if (tellTrouble(console, run.account)) return Trouble;
    if (!options.allowUnreadable && !run.isWhole()) return Trouble;
    toSave.save(reportOf(request), options.outputFile, 0, false, console);
    return run.somethingDiffers ? Different : Identical;
}

}  // namespace

int runData(const Options& options, ConsoleShell& console) {
    const ComparedServers servers = chooseServers(options);
    const RunToSave toSave(options, servers);
    reachServers(servers);
    for (const ServerInfo* server : {&servers.source, &servers.target})
        if (isSnapshot(*server)) throw Failure(NoRowsSentence(*server));
    return options.table.isEmpty() ? compareTables(options, console, servers, toSave)
                                   : compareOneTable(options, console, servers, toSave);
}

}  // namespace zov::cli
