#include "structcompare/modScript.h"

#include "core/error_report.h"
#include "core/modIgnoreColumns.h"
#include "data/sql_names.h"
#include "scripting/modSql.h"
#include "util/text.h"

#include <QHash>

#include <algorithm>

namespace zov {
namespace {

namespace status = update_status;

constexpr const char* Module = "modScript";

void setAll(std::vector<ColumnRecord>& records, qint32 value) {
    for (ColumnRecord& record : records) record.lngStatus = value;
}

/// Drops in front of the columns' changes, what is made behind them.
QString withIndexes(const QString& columns, const std::vector<ColumnRecord>& source,
                    const std::vector<ColumnRecord>& target, const QString& tableName) {
    QString drops, creates;
    const auto drop = [&](const ColumnRecord& index) {
        drops += BuildIndexDropStatement(index, tableName) + CRLF;
    };
    for (const ColumnRecord& index : target)
        if (index.lngStatus == status::OnlyTarget || index.lngStatus == status::Differs)
            drop(index);
    for (const ColumnRecord& index : source) {
        if (index.lngStatus == status::Rebuilt) drop(index);
        if (index.lngStatus == status::OnlySource || index.lngStatus == status::Differs ||
            index.lngStatus == status::Rebuilt)
            creates += BuildIndexCreateStatement(index, tableName) + CRLF;
    }
    return drops + columns + creates;
}

void markRebuilt(std::vector<ColumnRecord>& indexes, const std::vector<ColumnRecord>& columns) {
    for (ColumnRecord& index : indexes) {
        if (index.lngStatus != status::Same) continue;
        for (const ColumnRecord& column : columns)
            if (column.lngStatus == status::Differs && column.strName == index.strLine)
                index.lngStatus = status::Rebuilt;
    }
}

bool readStructure(const UpdateSide& side, TableStructure& structure) {
    return GetTableStructure(side.server, side.database, side.table, structure, false,
                             IgnoreMode::StructureComparison, QStringLiteral(",")) &&
           structure.found;
}

}  // namespace

QString ScriptColDiffs(const QString&, const ColumnRecord& source, const ColumnRecord&) {
    return QStringLiteral("ALTER COLUMN ") + source.strLine;
}

bool UpdateScript_Tables(const QString& tableName, std::vector<ColumnRecord>& source,
                         std::vector<ColumnRecord>& target, ColumnChanges& changes) {
    return guarded(Module, "UpdateScript_Tables", false, [&] {
        changes = {};
        QString script = QStringLiteral("ALTER TABLE ") +
                         (isRegularName(tableName) ? tableName : quoteName(tableName)) + u' ';
        QHash<QString, size_t> targetAt;
        for (size_t i = target.size(); i-- > 0;) targetAt.insert(target[i].strName.toUpper(), i);
        for (ColumnRecord& column : source) {
            const auto found = targetAt.constFind(column.strName.toUpper());
            if (found == targetAt.constEnd()) {
                column.lngStatus = status::OnlySource;
                ++changes.added;
                script += QStringLiteral("ADD ") + column.strLine + CRLF;
                continue;
            }
            ColumnRecord& twin = target[*found];
            twin.blnMatched = true;
            const bool same = column.strLine == twin.strLine;
            column.lngStatus = twin.lngStatus = same ? status::Same : status::Differs;
            ++(same ? changes.same : changes.changed);
            if (!same) script += ScriptColDiffs(tableName, column, twin) + CRLF;
        }
        for (ColumnRecord& column : target) {
            if (column.blnMatched) continue;
            column.lngStatus = status::OnlyTarget;
            ++changes.dropped;
            script += QStringLiteral(" DROP COLUMN ") + column.strLine + CRLF;
        }
        if (changes.any()) changes.script = script;
        return true;
    });
}

bool CompareIndexes(std::vector<ColumnRecord>& source, std::vector<ColumnRecord>& target,
                    bool columnsSame, IndexChanges& changes) {
    return guarded(Module, "CompareIndexes", false, [&] {
        changes = {};
        if (columnsSame) {
            setAll(source, status::Same);
            setAll(target, status::Same);
            changes.same = qint32(source.size());
            return true;
        }
        setAll(source, status::OnlySource);
        for (ColumnRecord& index : target) {
            const auto twin =
                std::find_if(source.begin(), source.end(),
                             [&](const ColumnRecord& one) { return one.strName == index.strName; });
            if (twin == source.end()) {
                index.lngStatus = status::OnlyTarget;
                ++changes.onlyTarget;
                continue;
            }
            const bool same = twin->strIndexText == index.strIndexText;
            twin->lngStatus = index.lngStatus = same ? status::Same : status::Differs;
            ++(same ? changes.same : changes.changed);
        }
        changes.onlySource =
            qint32(std::count_if(source.begin(), source.end(), [](const ColumnRecord& one) {
                return one.lngStatus == status::OnlySource;
            }));
        return true;
    });
}

bool GenerateUpdateScript(const UpdateSide& source, const UpdateSide& target, QString& script) {
    return guarded(Module, "GenerateUpdateScript", false, [&] {
        script.clear();
        TableStructure sourceTable, targetTable;
        if (!readStructure(source, sourceTable) || !readStructure(target, targetTable))
            return false;
        bool columnsSame = sourceTable.structureText == targetTable.structureText;
        ColumnChanges columns;
        if (!columnsSame) {
            if (!UpdateScript_Tables(target.table.name, sourceTable.columns, targetTable.columns,
                                     columns))
                return false;
            columnsSame = !columns.any();
        }
        std::vector<ColumnRecord> sourceIndexes, targetIndexes;
        const QString sourceText =
            GetIndexes(source.server, source.table, source.database, false, {}, &sourceIndexes);
        const QString targetText =
            GetIndexes(target.server, target.table, target.database, false, {}, &targetIndexes);
        if (columnsSame && sourceText == targetText) return true;
        IndexChanges indexes;
        if (!CompareIndexes(sourceIndexes, targetIndexes, columnsSame, indexes)) return false;
        markRebuilt(sourceIndexes, sourceTable.columns);
        script = withIndexes(columns.script, sourceIndexes, targetIndexes, target.table.name);
        return true;
    });
}

}  // namespace zov
