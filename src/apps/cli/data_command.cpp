// zovrand-cli data
#include "apps/cli/cli_support.h"
#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "datacompare/compare_all_data.h"
#include "datacompare/compare_records.h"
#include "datacompare/frmCompareData.h"
#include "datacompare/frmCompareDataOptions.h"
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
        if (meansObject(name, row))
            return {globals().gtCurrentServers[panel], database, row.name, row.id};
    throw Failure(QStringLiteral("The %1 database %2 has no table \"%3\" (letter case counts).\n"
                                 "Names are shown by: zovrand-cli list -t tables.")
                      .arg(source ? QStringLiteral("source") : QStringLiteral("target"), database,
                           name));
}

std::vector<ColumnRecord> allColumnsOf(const CompareDataTable& table) {
    TableStructure structure;
    GetTableStructure(table.Server, table.Db, table.Table, structure, false,
                      IgnoreMode::DataComparison, table.ObjectId, {});
    return structure.columns;
}

/// In the letters given, else in any; null when there is none.
const ColumnRecord* columnNamed(const std::vector<ColumnRecord>& columns, const QString& name) {
    const ColumnRecord* found = nullptr;
    for (const ColumnRecord& column : columns) {
        if (column.strName == name) return &column;
        if (!found && column.strName.compare(name, Qt::CaseInsensitive) == 0) found = &column;
    }
    return found;
}

/// The columns that an option names, as the table writes them; throws Failure for one that it hasn't
/// got. `compared`: the rows are sorted or sought by them.
QStringList columnsOf(const CompareDataTable& table, const QString& names, const QString& option,
                      int most, bool compared) {
    const std::vector<ColumnRecord> all = allColumnsOf(table);
    QStringList columns;
    for (const QString& name : splitNames(names)) {
        const ColumnRecord* found = columnNamed(all, name);
        if (!found)
            throw Failure(QStringLiteral("%1: the table %2 of %3 has no column \"%4\".\nIts columns are "
                                         "shown by: zovrand-cli text -t table.")
                              .arg(option, table.Table, table.Db, name));
        if (columns.contains(found->strName))
            throw Failure(QStringLiteral("%1 names the column \"%2\" twice.").arg(option, found->strName));
        if (compared && frmCompareDataOptions::isLargeObjectType(found->strDataType))
            throw Failure(QStringLiteral("%1 %2: The text, ntext, and image data types cannot be "
                                         "compared or sorted.")
                              .arg(option, found->strName));
        columns += found->strName;
    }
    if (columns.isEmpty()) throw Failure(QStringLiteral("%1 names no column.").arg(option));
    if (most > 0 && columns.size() > most)
        throw Failure(QStringLiteral("%1 takes at most %2 columns.").arg(option).arg(most));
    return columns;
}

/// Options for both sides: the target's own, or the source's for both.
struct BothSides {
    QStringList columns[2];
    BothSides() = default;
    BothSides(const CompareDataPair& tables, const QString& source, const QString& target,
              const QString& option, int most) {
        columns[0] = columnsOf(tables[0], source, option, most, true);
        columns[1] = target.isEmpty()
                         ? columnsOf(tables[1], source, option, most, true)
                         : columnsOf(tables[1], target, targetOption(option), most, true);
        if (columns[0].size() != columns[1].size())
            throw Failure(QStringLiteral("%1: both sides need the same number of columns.").arg(option));
    }
    static QString targetOption(const QString& option) {
        return QStringLiteral("--target-") + option.mid(2);
    }
    CompKeys keys(int side) const {
        const QStringList& names = columns[side];
        return {names.value(0, NoField), names.value(1, NoField), names.value(2, NoField)};
    }
};

/// A column that one table alone has is left out of that one.
BothSides ignoredColumns(const Options& options, const CompareDataPair& tables) {
    const QString option = QStringLiteral("--ignore");
    BothSides ignored;
    if (!options.targetIgnore.isEmpty()) {
        ignored.columns[0] = columnsOf(tables[0], options.ignore, option, 0, false);
        ignored.columns[1] =
            columnsOf(tables[1], options.targetIgnore, BothSides::targetOption(option), 0, false);
    } else {
        const std::vector<ColumnRecord> all[] = {allColumnsOf(tables[0]), allColumnsOf(tables[1])};
        for (const QString& name : splitNames(options.ignore)) {
            const ColumnRecord* found[] = {columnNamed(all[0], name), columnNamed(all[1], name)};
            if (!found[0] && !found[1])
                throw Failure(QStringLiteral("%1: neither table has a column \"%2\".\nTheir columns are "
                                             "shown by: zovrand-cli text -t table.")
                                  .arg(option, name));
            for (size_t side = 0; side < 2; ++side)
                if (found[side]) ignored.columns[side] += found[side]->strName;
        }
    }
    for (QStringList& columns : ignored.columns) columns.removeDuplicates();
    return ignored;
}

/// The stored ignored columns, or a copy of them with this run's in place of the two tables'.
class IgnoredForThisRun {
 public:
    IgnoredForThisRun(const Options& options, const CompareDataPair& tables)
        : restore_(globals().gstrIgnoredColsDataIni, globals().gstrIgnoredColsDataIni) {
        if (options.ignore.isEmpty()) return;
        const BothSides ignored = ignoredColumns(options, tables);
        const QString copy = folder_.filePath(QStringLiteral("ignored.ini"));
        if (QFile::exists(globals().gstrIgnoredColsDataIni))
            QFile::copy(globals().gstrIgnoredColsDataIni, copy);
        globals().gstrIgnoredColsDataIni = copy;
        qsizetype left[2];
        for (size_t side = 0; side < 2; ++side) {
            SaveIgnoredColumnsList(
                IgnoreMode::DataComparison,
                GetObjectKeyName(tables[side].Server.Name, tables[side].Db, tables[side].Table),
                ignored.columns[side]);
            left[side] = qsizetype(allColumnsOf(tables[side]).size()) - ignored.columns[side].size();
            if (left[side] < 1)
                throw Failure(QStringLiteral("--ignore leaves no column of %1 to be compared.")
                                  .arg(tables[side].Table));
        }
        // Columns are paired by their places: one too few on a side would shift them.
        if (left[0] != left[1])
            throw Failure(QStringLiteral("--ignore leaves %1 columns of the source table and %2 of the "
                                         "target table: both need the same number.\nName the columns "
                                         "to leave out of the target with --target-ignore.")
                              .arg(left[0])
                              .arg(left[1]));
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
        if (options.offset > 1 || options.targetOffset > 1)
            throw Failure(QStringLiteral("--offset belongs to --method record."));
        const BothSides keys(tables, options.key, options.targetKey, QStringLiteral("--key"), MostKeys);
        run.Method = CompMethod::PrimaryKey;
        for (int side = 0; side < 2; ++side) run.Keys[side] = keys.keys(side);
    }
    if (run.Method == CompMethod::PrimaryKey &&
        (!isKeyField(run.Keys[0].CompKey) || !isKeyField(run.Keys[1].CompKey)))
        throw Failure(QStringLiteral("No key is stored for %1.\nGive one to three columns with --key.")
                          .arg(tables[0].Table));
    if (!options.sort.isEmpty()) {
        const BothSides sort(tables, options.sort, options.targetSort, QStringLiteral("--sort"),
                             MostKeys);
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
    const BothSides ignored = ignoredColumns(options, tables);
    const auto check = [&](const QString& source, const QString& target, const QString& option) {
        if (source.isEmpty()) return;
        const BothSides used(tables, source, target, option, MostKeys);
        for (int side = 0; side < 2; ++side)
            for (const QString& column : used.columns[side])
                if (ignored.columns[side].contains(column))
                    throw Failure(QStringLiteral("%1 and --ignore both name the column \"%2\".")
                                      .arg(option, column));
    };
    check(options.key, options.targetKey, QStringLiteral("--key"));
    check(options.sort, options.targetSort, QStringLiteral("--sort"));
}

/// Which stored settings take part, so that nobody wonders at the result.
void noteStoredSettings(const Options& options, const DataComparisonRun& run, ConsoleShell& console) {
    QStringList stored;
    if (run.Method == CompMethod::PrimaryKey && options.key.isEmpty()) {
        const CompKeys& keys = run.Keys[0];
        QStringList names;
        for (const QString& key : {keys.CompKey, keys.SecondaryCompKey, keys.TertiaryCompKey})
            if (isKeyField(key)) names += key;
        stored += QStringLiteral("the key ") + names.join(QStringLiteral(", "));
    }
    if (!run.OrderBy[0].isEmpty() && options.sort.isEmpty())
        stored += QStringLiteral("the order") + run.OrderBy[0].mid(int(qstrlen(" ORDER BY"))).chopped(1);
    if (run.Offset[0] > 1 && options.offset < 0)
        stored += QStringLiteral("the start from record ") + formatCount(run.Offset[0]);
    if (!stored.isEmpty())
        console.showNote(QStringLiteral("As stored for %1: %2.")
                             .arg(run.Tables[0].Table, stored.join(QStringLiteral("; "))));
}

/// Tables may have different columns; what that comes to nobody sees in the counts.
void noteDifferentColumns(const DataComparisonRun& run, ConsoleShell& console) {
    const QStringList columns[] = {ComparedColumns(run.Tables[0]), ComparedColumns(run.Tables[1])};
    QStringList lacking[2];
    for (size_t side = 0; side < 2; ++side)
        for (const QString& column : columns[side])
            if (!columns[1 - side].contains(column, Qt::CaseInsensitive)) lacking[side] += column;
    if (lacking[0].isEmpty() && lacking[1].isEmpty()) return;
    if (lacking[0].isEmpty())
        console.showNote(QStringLiteral("Not compared, since only the target table has it: ") +
                         lacking[1].join(QStringLiteral(", ")) + u'.');
    else
        console.showNote(QStringLiteral("The target table lacks %1: its own columns are compared, paired "
                                        "with the source's by their places.")
                             .arg(lacking[0].join(QStringLiteral(", "))));
}

/// A key that is given for this run must be among what is compared.
void checkGivenKey(const Options& options, const DataComparisonRun& run) {
    if (options.key.isEmpty()) return;
    for (size_t side = 0; side < 2; ++side) {
        const QStringList compared = ComparedColumns(run.Tables[side]);
        const CompKeys& keys = run.Keys[side];
        for (const QString& key : {keys.CompKey, keys.SecondaryCompKey, keys.TertiaryCompKey})
            if (isKeyField(key) && !compared.contains(key))
                throw Failure(QStringLiteral("--key: the column \"%1\" of %2 is ignored, as stored.\nName "
                                             "the columns to ignore in this run with --ignore.")
                                  .arg(key, run.Tables[side].Table));
    }
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
    if (globals().glngMaxRowsInDiffTable < 1)
        throw Failure(QStringLiteral("MaxRowsInDiffTable is %1; it must be at least 1.")
                          .arg(globals().glngMaxRowsInDiffTable));
    const QString targetName = options.targetTable.isEmpty() ? options.table : options.targetTable;
    const CompareDataPair tables{findTable(SourcePanel, servers.sourceDb, options.table),
                                 findTable(TargetPanel, servers.targetDb, targetName)};
    checkAgainstIgnored(options, tables);
    const IgnoredForThisRun ignored(options, tables);
    ConsoleScreens screens(console, options.exportFile);
    const DataComparisonRun run = runOf(options, tables);
    checkGivenKey(options, run);
    noteStoredSettings(options, run, console);
    noteDifferentColumns(run, console);
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
