// zovrand-cli data
#include "apps/cli/cli_support.h"
#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "datacompare/compare_all_data.h"
#include "datacompare/compare_records.h"
#include "datacompare/frmCompareData.h"
#include "datacompare/frmCompareStatus.h"
#include "datacompare/key_lookup.h"
#include "reports/export_files.h"
#include "scripting/mdlQueryCode.h"
#include "shell/console/console_shell.h"
#include "shell/memory_controls.h"
#include "util/text.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace zov::cli {
namespace {

constexpr int MostKeys = 3;

/// The two screens of a comparison without windows: progress lines, and the export.
class ConsoleScreens : public DataComparisonScreens, public CompareAllForm {
 public:
    ConsoleScreens(ConsoleShell& console, const QString& exportFile)
        : console_(console), exportFile_(exportFile) {}

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
        const ExportSource source = ExportSourceOf(screen);
        const ExportEnd end = exportFile_.endsWith(QStringLiteral(".csv"), Qt::CaseInsensitive)
                                  ? writeGridCsv(source, exportFile_, true, run)
                                  : writeGridHtml(source, exportFile_, run);
        console_.clearProgress();
        if (end == ExportEnd::Failed)
            exportFailure = run.failure + QStringLiteral("\nNothing was exported. An older file of "
                                                         "this name is as it was.");
        if (end == ExportEnd::Stopped)
            exportFailure = QStringLiteral("Stopped: %1 holds the rows so far.").arg(exportFile_);
        exported = end == ExportEnd::Written;
        if (screen.lblMaxRowsVisible) note = screen.lblMaxRows;
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
    QString name_;
};

CompareDataTable findTable(int panel, const QString& database, const QString& name) {
    const bool source = panel == SourcePanel;
    for (const ObjectListRow& row : listedObjects(ObjectType::Table, panel, database))
        if (meansObject(name, row.name))
            return {globals().gtCurrentServers[panel], database, row.name, row.id};
    throw Failure(QStringLiteral("The %1 database %2 has no table \"%3\" (letter case counts).\n"
                                 "Names are shown by: zovrand-cli list -t tables.")
                      .arg(source ? QStringLiteral("source") : QStringLiteral("target"), database,
                           name));
}

/// The columns that an option names, as the table writes them; throws Failure for one that it hasn't
/// got.
QStringList columnsOf(const CompareDataTable& table, const QString& names, const char* option,
                      int most) {
    TableStructure structure;
    GetTableStructure(table.Server, table.Db, table.Table, structure, false,
                      IgnoreMode::DataComparison, table.ObjectId, {});
    QStringList columns;
    for (const QString& name : splitNames(names)) {
        QString found;
        for (const ColumnRecord& column : structure.columns) {
            if (column.strName == name) found = name;
            if (found.isEmpty() && column.strName.compare(name, Qt::CaseInsensitive) == 0)
                found = column.strName;
        }
        if (found.isEmpty())
            throw Failure(QStringLiteral("%1: the table %2 has no column \"%3\".\nIts columns are "
                                         "shown by: zovrand-cli text -t table.")
                              .arg(QLatin1String(option), table.Table, name));
        if (columns.contains(found))
            throw Failure(QStringLiteral("%1 names the column \"%2\" twice.")
                              .arg(QLatin1String(option), found));
        columns += found;
    }
    if (columns.isEmpty())
        throw Failure(QStringLiteral("%1 names no column.").arg(QLatin1String(option)));
    if (most > 0 && columns.size() > most)
        throw Failure(QStringLiteral("%1 takes at most %2 columns.").arg(QLatin1String(option)).arg(most));
    return columns;
}

/// Options for both sides: the target's own, or the source's for both.
struct BothSides {
    QStringList columns[2];
    BothSides(const CompareDataPair& tables, const QString& source, const QString& target,
              const char* option, int most) {
        columns[0] = columnsOf(tables[0], source, option, most);
        columns[1] = columnsOf(tables[1], target.isEmpty() ? source : target,
                               target.isEmpty() ? option : "the target's", most);
        if (columns[0].size() != columns[1].size())
            throw Failure(QStringLiteral("%1: both sides need the same number of columns.")
                              .arg(QLatin1String(option)));
    }
    CompKeys keys(int side) const {
        const QStringList& names = columns[side];
        return {names.value(0, NoField), names.value(1, NoField), names.value(2, NoField)};
    }
};

/// The stored ignored columns, or a copy of them with this run's in place of the two tables'.
class IgnoredForThisRun {
 public:
    IgnoredForThisRun(const Options& options, const CompareDataPair& tables)
        : restore_(globals().gstrIgnoredColsDataIni, globals().gstrIgnoredColsDataIni) {
        if (options.ignore.isEmpty()) return;
        const BothSides ignored(tables, options.ignore, options.targetIgnore, "--ignore", 0);
        const QString copy = folder_.filePath(QStringLiteral("ignored.ini"));
        if (QFile::exists(globals().gstrIgnoredColsDataIni))
            QFile::copy(globals().gstrIgnoredColsDataIni, copy);
        globals().gstrIgnoredColsDataIni = copy;
        for (size_t side = 0; side < 2; ++side)
            SaveIgnoredColumnsList(
                IgnoreMode::DataComparison,
                GetObjectKeyName(tables[side].Server.Name, tables[side].Db, tables[side].Table),
                ignored.columns[side]);
        for (size_t side = 0; side < 2; ++side) {
            TableStructure left;
            GetTableStructure(tables[side].Server, tables[side].Db, tables[side].Table, left, true,
                              IgnoreMode::DataComparison, tables[side].ObjectId, {});
            if (left.columns.empty())
                throw Failure(QStringLiteral("--ignore leaves no column of %1 to be compared.")
                                  .arg(tables[side].Table));
        }
    }

 private:
    QTemporaryDir folder_;
    ScopedValue<QString> restore_;
};

DataComparisonRun runOf(const Options& options, const CompareDataPair& tables) {
    DataCompSettings settings =
        ReadDataCompSettings(tables[0].Db, tables[1].Db, tables[0].Table, tables[1].Table);
    DataComparisonRun run = DataComparisonRunOf(tables, settings);
    if (!options.method.isEmpty())
        run.Method = options.method == u"key" ? CompMethod::PrimaryKey : CompMethod::RecordByRecord;
    if (!options.key.isEmpty()) {
        if (options.method == u"record")
            throw Failure(QStringLiteral("--key belongs to --method key."));
        const BothSides keys(tables, options.key, options.targetKey, "--key", MostKeys);
        run.Method = CompMethod::PrimaryKey;
        for (int side = 0; side < 2; ++side) run.Keys[side] = keys.keys(side);
    }
    if (run.Method == CompMethod::PrimaryKey &&
        (!isKeyField(run.Keys[0].CompKey) || !isKeyField(run.Keys[1].CompKey)))
        throw Failure(QStringLiteral("No key is stored for %1.\nGive one to three columns with --key.")
                          .arg(tables[0].Table));
    if (!options.sort.isEmpty()) {
        const BothSides sort(tables, options.sort, options.targetSort, "--sort", MostKeys);
        for (int side = 0; side < 2; ++side) {
            const QStringList& by = sort.columns[side];
            run.OrderBy[side] = BuildOrderByClause(by.value(0), by.value(1), by.value(2));
        }
    }
    if (options.offset >= 0) run.Offset[0] = options.offset;
    if (options.targetOffset >= 0) run.Offset[1] = options.targetOffset;
    run.Quiet = true;
    run.ShowDifferences = !options.exportFile.isEmpty();
    return run;
}

/// A column that the comparison goes by and leaves out: refused where it is asked for.
void checkAgainstIgnored(const Options& options, const CompareDataPair& tables) {
    if (options.ignore.isEmpty()) return;
    const BothSides ignored(tables, options.ignore, options.targetIgnore, "--ignore", 0);
    const auto check = [&](const QString& source, const QString& target, const char* option) {
        if (source.isEmpty()) return;
        const BothSides used(tables, source, target, option, MostKeys);
        for (int side = 0; side < 2; ++side)
            for (const QString& column : used.columns[side])
                if (ignored.columns[side].contains(column))
                    throw Failure(QStringLiteral("%1 and --ignore both name the column \"%2\".")
                                      .arg(QLatin1String(option), column));
    };
    check(options.key, options.targetKey, "--key");
    check(options.sort, options.targetSort, "--sort");
}

/// What a stored key comes to whose column is gone or left out, or can't be sought.
void noteUnfitKeys(const DataComparisonRun& run, ConsoleShell& console) {
    if (run.Method != CompMethod::PrimaryKey) return;
    const bool several = isKeyField(run.Keys[1].SecondaryCompKey);
    for (size_t side = 0; side < 2; ++side) {
        const QStringList columns = ComparedColumns(run.Tables[side]);
        QStringList keys{run.Keys[side].CompKey};
        if (several) keys += run.Keys[side].SecondaryCompKey;
        if (several && isKeyField(run.Keys[0].TertiaryCompKey))
            keys += run.Keys[side].TertiaryCompKey;
        for (const QString& key : std::as_const(keys)) {
            const QString what = QStringLiteral("The key \"%1\" ").arg(key);
            const QString gone =
                what + QStringLiteral("is not among the compared columns of %1: ").arg(run.Tables[side].Table);
            if (columns.isEmpty()) return;
            if (side == 0) {
                if (!columns.contains(key))
                    console.showNote(gone + QStringLiteral("its first column, \"%1\", is taken.")
                                                .arg(columns.first()));
                continue;
            }
            if (!several) continue;  // the search ends in an error, which says the same
            const QString first = QStringLiteral("every record is paired with the first that is left.");
            if (!standsInCondition(key))
                console.showNote(what + QStringLiteral("can't be sought, for the signs in its name: ") + first);
            else if (!columns.contains(key, Qt::CaseInsensitive))
                console.showNote(gone + first);
        }
    }
}

/// Where the offsets are the reason that there was nothing to compare.
void noteOffsetsBehindEnd(const DataComparisonRun& run, const DataComparisonResult& result,
                          ConsoleShell& console) {
    const qint32 records[] = {result.Records1, result.Records2};
    if (run.Method == CompMethod::PrimaryKey) return;
    for (size_t side = 0; side < 2; ++side)
        if (run.Offset[side] > 1 && records[side] >= 0 && run.Offset[side] > records[side])
            console.showNote(QStringLiteral("The %1 was to be compared from record %2 on; its table "
                                            "%3 has %4.")
                                 .arg(side == 0 ? QStringLiteral("source") : QStringLiteral("target"),
                                      formatCount(run.Offset[side]), run.Tables[side].Table,
                                      formatCount(records[side])));
}

void checkExportFile(const QString& file) {
    if (file.isEmpty()) return;
    for (const char* ending : {".htm", ".html", ".csv"}) {
        if (!file.endsWith(QLatin1String(ending), Qt::CaseInsensitive)) continue;
        const QString folder = QFileInfo(file).absolutePath();
        if (QFileInfo(folder).isDir()) return;
        throw Failure(QStringLiteral("--export: there is no folder %1. Make it, or choose another "
                                     "place.")
                          .arg(folder));
    }
    throw Failure(QStringLiteral("--export writes .htm, .html or .csv, not \"%1\".")
                      .arg(QFileInfo(file).fileName()));
}

int compareOneTable(const Options& options, ConsoleShell& console, const ComparedServers& servers) {
    checkExportFile(options.exportFile);
    if (options.limit > 0) globals().glngMaxRowsInDiffTable = options.limit;
    const QString targetName = options.targetTable.isEmpty() ? options.table : options.targetTable;
    const CompareDataPair tables{findTable(SourcePanel, servers.sourceDb, options.table),
                                 findTable(TargetPanel, servers.targetDb, targetName)};
    checkAgainstIgnored(options, tables);
    const IgnoredForThisRun ignored(options, tables);
    ConsoleScreens screens(console, options.exportFile);
    const DataComparisonRun run = runOf(options, tables);
    noteUnfitKeys(run, console);
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
    if (!screens.exportFailure.isEmpty()) throw Failure(screens.exportFailure);
    if (!options.exportFile.isEmpty() && !screens.exported)
        console.showNote(QStringLiteral("There is nothing to export: %1 was not written.")
                             .arg(options.exportFile));
    return result.Identical() ? Identical : Different;
}

int compareTables(const Options& options, ConsoleShell& console, const ComparedServers& servers) {
    DataRunRequest request;
    request.sourceDb = servers.sourceDb;
    request.targetDb = servers.targetDb;
    const int before = console.errorCount();
    ObjectKindBoxes tables{};
    tables[0] = true;
    request.selective =
        chooseObjects(options, tables, servers, request.sourceTables, request.targetTables);
    MemoryObjectList lists[2];
    MemoryTextPane panes[2];
    ComparePanels panels{{lists[0], panes[0]}, {lists[1], panes[1]}};
    ConsoleScreens screens(console, {});
    const DataRun run = CompareAll_Data(screens, request, panels, &screens);
    console.clearProgress();
    const bool troubled = console.errorCount() != before;
    if (!run.finished) {
        if (!troubled) console.showError(QStringLiteral("Stopped: there is no report."));
        return Trouble;
    }
    // What could not be compared stands in the report, beside what could.
    writeReport(options, globals().gstrReport);
    if (run.somethingFailed || troubled) return Trouble;
    return run.somethingDiffers ? Different : Identical;
}

}  // namespace

int runData(const Options& options, ConsoleShell& console) {
    const ComparedServers servers = chooseServers(options);
    reachServers(servers);
    return options.table.isEmpty() ? compareTables(options, console, servers)
                                   : compareOneTable(options, console, servers);
}

}  // namespace zov::cli
