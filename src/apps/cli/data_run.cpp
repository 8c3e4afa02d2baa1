#include "apps/cli/data_run.h"

#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "core/run_account.h"
#include "datacompare/frmCompareDataOptions.h"
#include "datacompare/table_reading.h"
#include "util/atomic_file.h"
#include "util/text.h"

#include <QFileInfo>

#include <algorithm>
#include <iterator>

namespace zov::cli {
namespace {

constexpr int MostKeys = 3;

/// Throws Failure where they can't be read.
std::vector<ColumnRecord> allColumnsOf(const CompareDataTable& table) {
    std::vector<ColumnRecord> columns = ColumnsOfTable(table, false);
    if (columns.empty())
        throw Failure(
            QStringLiteral("The columns of %1 in %2 can't be read.\nLook whether the login "
                           "may see the table, and run the command again.")
                .arg(table.Table, table.Db));
    return columns;
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

/// The columns that an option names, as the table writes them; throws Failure for one that it
/// hasn't got. `compared`: the rows are sorted or sought by them.
QStringList columnsOf(const CompareDataTable& table, const QString& names, const QString& option,
                      int most, bool compared) {
    const std::vector<ColumnRecord> all = allColumnsOf(table);
    QStringList columns;
    for (const QString& name : splitNames(names)) {
        const ColumnRecord* found = columnNamed(all, name);
        if (!found)
            throw Failure(
                QStringLiteral("%1: the table %2 of %3 has no column \"%4\".\nIts columns are "
                               "shown by: zovrand-cli text -t table.")
                    .arg(option, table.Table, table.Db, name));
        if (columns.contains(found->strName))
            throw Failure(
                QStringLiteral("%1 names the column \"%2\" twice.").arg(option, found->strName));
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
            throw Failure(
                QStringLiteral("%1: both sides need the same number of columns.").arg(option));
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
                throw Failure(
                    QStringLiteral("%1: neither table has a column \"%2\".\nTheir columns are "
                                   "shown by: zovrand-cli text -t table.")
                        .arg(option, name));
            for (size_t side = 0; side < 2; ++side)
                if (found[side]) ignored.columns[side] += found[side]->strName;
        }
    }
    for (QStringList& columns : ignored.columns) columns.removeDuplicates();
    return ignored;
}

/// What the options say of the method; else the stored one.
qint32 methodOf(const Options& options, qint32 stored) {
    if (options.key.isEmpty() && options.method.isEmpty()) return stored;
    if (options.method == u"record") {
        if (!options.key.isEmpty()) throw Failure(QStringLiteral("--key belongs to --method key."));
        return CompMethod::RecordByRecord;
    }
    return CompMethod::PrimaryKey;
}

}  // namespace

void ignoredColumnsOf(const Options& options, const CompareDataPair& tables,
                      QStringList (&columns)[2]) {
    if (options.ignore.isEmpty()) return;
    const BothSides ignored = ignoredColumns(options, tables);
    for (int side = 0; side < 2; ++side) columns[side] = ignored.columns[side];
}

QStringList columnsNamed(const CompareDataTable& table, const QString& names,
                         const QString& option) {
    return columnsOf(table, names, option, 0, false);
}

CompareDataTable findTable(int panel, const QString& database, const QString& name,
                           TableOfSide side) {
    const QString whose = side == TableOfSide::Only ? QString()
                          : panel == SourcePanel    ? QStringLiteral("source ")
                                                    : QStringLiteral("target ");
    std::vector<ObjectListRow> listed, meant;
    RunAccount account;
    {
        const KeepAccount keep(account);
        listed = listedObjects(ObjectType::Table, panel, database);
    }
    // To the letter first, then whatever the case.
    for (const Qt::CaseSensitivity cs : {Qt::CaseSensitive, Qt::CaseInsensitive})
        if (meant.empty())
            std::copy_if(listed.begin(), listed.end(), std::back_inserter(meant),
                         [&](const ObjectListRow& row) { return meansObject(name, row, cs); });
    // The list is short of something, and no table may be missed or taken for another.
    if (!account.isWhole())
        throw Failure(QStringLiteral("The tables of the %1database %2 can't be listed.\n%3")
                          .arg(whose, database, account.entries().front().sentence()));
    if (meant.empty())
        throw Failure(QStringLiteral("The %1database %2 has no table \"%3\".\n"
                                     "Names are shown by: zovrand-cli list -t tables.")
                          .arg(whose, database, name));
    if (meant.size() > 1) {
        throw Failure(
            QStringLiteral("Several tables have this name: \"%1\" is %2 in the %3database "
                           "%4.\nName one of them so, with its schema.")
                .arg(name, fullNames(meant), whose, database));
    }
    return TableOf(globals().gtCurrentServers[panel], database,
                   objectOf(meant.front(), ObjectType::Table));
}

IgnoredForThisRun::IgnoredForThisRun(const Options& options, const CompareDataPair& tables)
    : restore_(globals().gstrIgnoredColsDataIni, globals().gstrIgnoredColsDataIni) {
    if (options.ignore.isEmpty()) return;
    const BothSides ignored = ignoredColumns(options, tables);
    const QString copy = folder_.filePath(QStringLiteral("ignored.ini"));
    QByteArray stored;
    QString trouble = folder_.isValid() ? readWholeFile(globals().gstrIgnoredColsDataIni, stored)
                                        : folder_.errorString();
    if (trouble.isEmpty()) trouble = writeFileAtomically(copy, stored);
    if (!trouble.isEmpty())
        throw Failure(QStringLiteral("--ignore: the list of ignored columns can't be made. ") +
                      trouble);
    globals().gstrIgnoredColsDataIni = copy;
    qsizetype left[2];
    for (size_t side = 0; side < 2; ++side) {
        if (!SaveIgnoredColumnsList(IgnoreMode::DataComparison, tables[side].key(),
                                    ignored.columns[side]))
            throw Failure(
                QStringLiteral("--ignore: the list of ignored columns can't be written.\n"
                               "Make room where temporary files are kept."));
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

DataComparisonRun runOf(const Options& options, const CompareDataPair& tables) {
    DataCompSettings settings = ReadDataCompSettings(
        tables[0].Db, tables[1].Db, tables[0].storedName(), tables[1].storedName());
    settings.Method = methodOf(options, settings.Method);
    DataComparisonRun run = DataComparisonRunOf(tables, settings);
    if (!options.key.isEmpty()) {
        const BothSides keys(tables, options.key, options.targetKey, QStringLiteral("--key"),
                             MostKeys);
        for (int side = 0; side < 2; ++side) run.Keys[side] = keys.keys(side);
    }
    if (run.Method == CompMethod::PrimaryKey &&
        (!isKeyField(run.Keys[0].CompKey) || !isKeyField(run.Keys[1].CompKey)))
        throw Failure(
            QStringLiteral("No key is stored for %1.\nGive one to three columns with --key.")
                .arg(tables[0].Table));
    if (!options.sort.isEmpty()) {
        const BothSides sort(tables, options.sort, options.targetSort, QStringLiteral("--sort"),
                             MostKeys);
        for (int side = 0; side < 2; ++side) {
            const QStringList& by = sort.columns[side];
            run.OrderBy[side] = BuildOrderByClause(by.value(0), by.value(1), by.value(2));
        }
    }
    if (run.Method == CompMethod::PrimaryKey && (options.offset > 1 || options.targetOffset > 1))
        throw Failure(QStringLiteral("--offset belongs to --method record."));
    if (options.offset >= 0) run.Offset[0] = options.offset;
    if (options.targetOffset >= 0) run.Offset[1] = options.targetOffset;
    run.Quiet = true;
    run.ShowDifferences = !options.exportFile.isEmpty();
    return run;
}

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

void checkGivenKey(const Options& options, const DataComparisonRun& run) {
    if (options.key.isEmpty()) return;
    for (size_t side = 0; side < 2; ++side) {
        const QStringList compared = ComparedColumns(run.Tables[side]);
        const CompKeys& keys = run.Keys[side];
        for (const QString& key : {keys.CompKey, keys.SecondaryCompKey, keys.TertiaryCompKey})
            if (isKeyField(key) && !compared.contains(key))
                throw Failure(
                    QStringLiteral("--key: the column \"%1\" of %2 is ignored, as stored.\nName "
                                   "the columns to ignore in this run with --ignore.")
                        .arg(key, run.Tables[side].Table));
    }
}

void checkExportFile(const Options& options) {
    const QString& file = options.exportFile;
    if (options.csvSafe && !file.endsWith(QStringLiteral(".csv"), Qt::CaseInsensitive))
        throw Failure(QStringLiteral("--csv-safe belongs to an --export of .csv."));
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

}  // namespace zov::cli
