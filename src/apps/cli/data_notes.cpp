#include "apps/cli/data_notes.h"

#include "datacompare/key_lookup.h"
#include "datacompare/table_reading.h"
#include "shell/console/console_shell.h"
#include "util/text.h"

namespace zov::cli {

void noteStoredSettings(const Options& options, const DataComparisonRun& run,
                        ConsoleShell& console) {
    QStringList stored;
    if (run.Method == CompMethod::PrimaryKey && options.key.isEmpty()) {
        const CompKeys& keys = run.Keys[0];
        QStringList names;
        for (const QString& key : {keys.CompKey, keys.SecondaryCompKey, keys.TertiaryCompKey})
            if (isKeyField(key)) names += key;
        stored += QStringLiteral("the key ") + names.join(QStringLiteral(", "));
    }
    if (!run.OrderBy[0].isEmpty() && options.sort.isEmpty())
        stored +=
            QStringLiteral("the order") + run.OrderBy[0].mid(int(qstrlen(" ORDER BY"))).chopped(1);
    if (run.Offset[0] > 1 && options.offset < 0)
        stored += QStringLiteral("the start from record ") + formatCount(run.Offset[0]);
    if (!stored.isEmpty())
        console.showNote(QStringLiteral("As stored for %1: %2.")
                             .arg(run.Tables[0].Table, stored.join(QStringLiteral("; "))));
}

void noteSchemas(const DataComparisonRun& run, ConsoleShell& console) {
    const CompareDataTable& source = run.Tables[0];
    const CompareDataTable& target = run.Tables[1];
    if (source.Schema.isEmpty() || target.Schema.isEmpty() || source.name() != target.name())
        return;
    if (source.Schema.compare(target.Schema, Qt::CaseInsensitive) == 0) return;
    console.showNote(QStringLiteral("%1 of the source is compared with %2 of the target.")
                         .arg(source.object().fullName(), target.object().fullName()));
}

void noteDifferentColumns(const DataComparisonRun& run, ConsoleShell& console) {
    const auto names = [](const std::vector<ColumnRecord>& columns) {
        QStringList names;
        for (const ColumnRecord& column : columns) names += column.strName;
        return names;
    };
    const auto without = [](const QStringList& these, const QStringList& those) {
        QStringList left;
        for (const QString& name : these)
            if (!those.contains(name, Qt::CaseInsensitive)) left += name;
        return left;
    };
    const auto note = [&](const QString& text, const QStringList& columns) {
        if (!columns.isEmpty()) console.showNote(text + columns.join(QStringLiteral(", ")) + u'.');
    };
    const CompareDataTable& source = run.Tables[0];
    const CompareDataTable& target = run.Tables[1];
    const QStringList compared = ComparedColumns(source);
    const QStringList allOfSource = names(ColumnsOfTable(source, false));
    const QStringList allOfTarget = names(ColumnsOfTable(target, false));
    const QStringList lacking = without(compared, allOfTarget);
    if (!lacking.isEmpty()) {
        console.showNote(
            QStringLiteral("The target table lacks %1: its own columns are compared, paired "
                           "with the source's by their places.")
                .arg(lacking.join(QStringLiteral(", "))));
        return;
    }
    note(QStringLiteral("Not compared, since only the target table has it: "),
         without(allOfTarget, allOfSource));
    // The source's columns are asked of both tables.
    const QStringList ignoredInTarget = without(allOfTarget, ComparedColumns(target));
    note(QStringLiteral(
             "Ignored in the target and compared all the same, since the source's columns "
             "decide: "),
         without(ignoredInTarget, without(ignoredInTarget, compared)));
}

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
            const QString gone = what + QStringLiteral("is not among the compared columns of %1: ")
                                            .arg(run.Tables[side].Table);
            if (columns.isEmpty()) return;
            if (side == 0) {
                if (!columns.contains(key))
                    console.showNote(
                        gone +
                        QStringLiteral("its first column, \"%1\", is taken.").arg(columns.first()));
                continue;
            }
            if (!several) continue;  // the search ends in an error, which says the same
            const QString first =
                QStringLiteral("every record is paired with the first that is left.");
            if (!standsInCondition(key))
                console.showNote(
                    what + QStringLiteral("can't be sought, for the signs in its name: ") + first);
            else if (!columns.contains(key, Qt::CaseInsensitive))
                console.showNote(gone + first);
        }
    }
}

void noteOffsetsBehindEnd(const DataComparisonRun& run, const DataComparisonResult& result,
                          ConsoleShell& console) {
    const qint32 records[] = {result.Records1, result.Records2};
    if (run.Method == CompMethod::PrimaryKey) return;
    for (size_t side = 0; side < 2; ++side)
        if (run.Offset[side] > 1 && records[side] >= 0 && run.Offset[side] > records[side])
            console.showNote(
                QStringLiteral("The %1 was to be compared from record %2 on; its table "
                               "%3 has %4.")
                    .arg(side == 0 ? QStringLiteral("source") : QStringLiteral("target"),
                         formatCount(run.Offset[side]), run.Tables[side].Table,
                         formatCount(records[side])));
}

}  // namespace zov::cli
