// Tables, views with indexes and table types: columns, indexes, keys, checks.
#include "scripting/facts_reader.h"
#include "scripting/type_names.h"
#include "shell/shell.h"

#include <algorithm>

namespace zov::facts {

bool FactsReader::readObjects() {
    const QString sql =
        s("SELECT o.object_id, s.name AS schema_name, o.name, o.type, o.parent_object_id "
          "FROM sys.objects o INNER JOIN sys.schemas s ON s.schema_id = o.schema_id "
          "WHERE o.is_ms_shipped = 0") +
        only("o.object_id") + s(" ORDER BY s.name, o.name, o.object_id");
    return each(sql, [&](Row row) {
        const auto [id, object] = addObject(row);
        if (object.type != u"U" && object.type != u"V" && object.type != u"TT") return;
        tableAt_.insert(id, qsizetype(tables.size()));
        TableFacts& table = tables.emplace_back();
        table.schema = object.schema;
        table.name = object.name;
        table.id = id;
    });
}

std::pair<qint32, FactsReader::Object> FactsReader::addObject(Row row) {
    const qint32 id = numberOf(row, "object_id");
    const Object object{textOf(row, "schema_name"), textOf(row, "name"),
                        textOf(row, "type").trimmed(), numberOf(row, "parent_object_id")};
    objects_.insert(id, object);
    return {id, object};
}

ColumnFacts FactsReader::columnOf(Row row) {
    ColumnFacts column;
    column.name = textOf(row, "name");
    column.id = numberOf(row, "column_id");
    const TypeInStatement type{textOf(row, "type_schema"),     textOf(row, "type_name"),
                               flagOf(row, "is_user_defined"), numberOf(row, "max_length"),
                               numberOf(row, "precision"),     numberOf(row, "scale")};
    column.type = typeInStatement(type);
    column.baseType = textOf(row, "base_type");
    column.nullable = flagOf(row, "is_nullable");
    column.isIdentity = flagOf(row, "is_identity");
    column.seed = textOf(row, "seed");
    column.increment = textOf(row, "increment");
    column.notForReplication = flagOf(row, "is_not_for_replication");
    if (flagOf(row, "is_computed")) column.computed = textOf(row, "definition");
    column.isPersisted = flagOf(row, "is_persisted");
    column.defaultName = textOf(row, "default_name");
    column.defaultText = textOf(row, "default_text");
    if (column.defaultName.isEmpty())
        column.boundDefault = nameOrNone(row, "bound_schema", "bound_name");
    column.boundRule = nameOrNone(row, "rule_schema", "rule_name");
    column.isRowGuid = flagOf(row, "is_rowguidcol");
    column.isSparse = flagOf(row, "is_sparse");
    column.isColumnSet = flagOf(row, "is_column_set");
    column.isRowVersion = isRowVersionType(type);
    column.mask = textOf(row, "mask");
    // A user type brings its collation along.
    if (!type.isUserDefined) column.collation = textOf(row, "collation_name");
    return column;
}

bool FactsReader::readColumns() {
    const bool sparse = version_ >= FirstVersionWithSparse;
    const bool masks = version_ >= FirstVersionWithMasks;
    const QString sql =
        s("SELECT c.object_id, c.column_id, c.name, ts.name AS type_schema, "
          "ty.name AS type_name, bt.name AS base_type, ty.is_user_defined, c.max_length, "
          "c.precision, c.scale, "
          "c.collation_name, c.is_nullable, c.is_identity, c.is_computed, c.is_rowguidcol, "
          "CONVERT(nvarchar(60), ic.seed_value) AS seed, "
          "CONVERT(nvarchar(60), ic.increment_value) AS increment, ic.is_not_for_replication, "
          "cc.is_persisted, dc.name AS default_name, bs.name AS bound_schema, "
          "bo.name AS bound_name, rs.name AS rule_schema, ro.name AS rule_name, "
          "c.xml_collection_id, ") +
        s(sparse ? "c.is_sparse, c.is_column_set, " : "0 AS is_sparse, 0 AS is_column_set, ") +
        s(masks ? "mc.masking_function AS mask, " : "NULL AS mask, ") +
        s("cc.definition, dc.definition AS default_text "
          "FROM sys.columns c INNER JOIN sys.objects o ON o.object_id = c.object_id "
          "INNER JOIN sys.types ty ON ty.user_type_id = c.user_type_id "
          "INNER JOIN sys.schemas ts ON ts.schema_id = ty.schema_id "
          "LEFT JOIN sys.types bt ON bt.user_type_id = c.system_type_id "
          "LEFT JOIN sys.identity_columns ic ON ic.object_id = c.object_id "
          "AND ic.column_id = c.column_id "
          "LEFT JOIN sys.computed_columns cc ON cc.object_id = c.object_id "
          "AND cc.column_id = c.column_id "
          "LEFT JOIN sys.default_constraints dc ON dc.object_id = c.default_object_id "
          "LEFT JOIN sys.objects bo ON bo.object_id = c.default_object_id "
          "LEFT JOIN sys.schemas bs ON bs.schema_id = bo.schema_id "
          "LEFT JOIN sys.objects ro ON ro.object_id = c.rule_object_id "
          "LEFT JOIN sys.schemas rs ON rs.schema_id = ro.schema_id ") +
        s(masks ? "LEFT JOIN sys.masked_columns mc ON mc.object_id = c.object_id "
                  "AND mc.column_id = c.column_id "
                : "") +
        s("WHERE o.type IN ('U', 'TT')") + only("c.object_id") +
        s(" ORDER BY c.object_id, c.column_id");
    return each(sql, [&](Row row) {
        TableFacts* table = tableOf(numberOf(row, "object_id"));
        if (!table) return;
        ColumnFacts column = columnOf(row);
        if (column.collation == databaseCollation_) column.collation.clear();
        if (numberOf(row, "xml_collection_id") > 0)
            table->beyond +=
                QStringLiteral("the XML schema collection of column ") + quoteName(column.name);
        if (flagOf(row, "is_computed") && column.computed.isEmpty())
            table->beyond += QStringLiteral(
                                 "the expression of computed column %1, which can't be "
                                 "read,")
                                 .arg(quoteName(column.name));
        if (!column.defaultName.isEmpty() && column.defaultText.isEmpty()) {
            table->beyond += QStringLiteral("default %1, whose text can't be read,")
                                 .arg(quoteName(column.defaultName));
            column.defaultName.clear();
        }
        table->columns.push_back(std::move(column));
    });
}

bool FactsReader::readIndexes() {
    const bool filters = version_ >= FirstVersionWithSparse;
    const QString sql =
        s("SELECT i.object_id, i.index_id, i.name, i.type, i.is_unique, i.is_primary_key, "
          "i.is_unique_constraint, i.is_disabled, i.ignore_dup_key, i.fill_factor, i.is_padded, "
          "i.allow_row_locks, i.allow_page_locks, ") +
        s(filters ? "i.filter_definition " : "NULL AS filter_definition ") +
        s("FROM sys.indexes i INNER JOIN sys.objects o ON o.object_id = i.object_id "
          "WHERE i.type > 0 AND i.is_hypothetical = 0 AND o.type IN ('U', 'V', 'TT')") +
        only("i.object_id") + s(" ORDER BY i.object_id, i.index_id");
    if (!each(sql, [&](Row row) {
            TableFacts* table = tableOf(numberOf(row, "object_id"));
            if (!table) return;
            IndexFacts& index = table->indexes.emplace_back();
            index.name = textOf(row, "name");
            index.id = numberOf(row, "index_id");
            index.kind = numberOf(row, "type");
            index.isUnique = flagOf(row, "is_unique");
            index.isPrimaryKey = flagOf(row, "is_primary_key");
            index.isUniqueConstraint = flagOf(row, "is_unique_constraint");
            index.isDisabled = flagOf(row, "is_disabled");
            index.ignoresDuplicates = flagOf(row, "ignore_dup_key");
            index.fillFactor = numberOf(row, "fill_factor");
            index.isPadded = flagOf(row, "is_padded");
            index.rowLocks = flagOf(row, "allow_row_locks");
            index.pageLocks = flagOf(row, "allow_page_locks");
            index.filter = textOf(row, "filter_definition");
        }))
        return false;
    const QString columns =
        s("SELECT ic.object_id, ic.index_id, c.name, ic.is_descending_key, "
          "ic.is_included_column, ic.key_ordinal, ic.index_column_id "
          "FROM sys.index_columns ic INNER JOIN sys.columns c ON c.object_id = ic.object_id "
          "AND c.column_id = ic.column_id WHERE 1 = 1") +
        only("ic.object_id") +
        s(" ORDER BY ic.object_id, ic.index_id, ic.key_ordinal, ic.index_column_id");
    return each(columns, [&](Row row) {
        TableFacts* table = tableOf(numberOf(row, "object_id"));
        if (!table) return;
        const qint32 id = numberOf(row, "index_id");
        const auto index = std::find_if(table->indexes.begin(), table->indexes.end(),
                                        [&](const IndexFacts& one) { return one.id == id; });
        if (index == table->indexes.end()) return;
        // A columnstore's columns count as included; a partition's column may be neither.
        if (flagOf(row, "is_included_column"))
            index->included += textOf(row, "name");
        else if (numberOf(row, "key_ordinal") > 0)
            index->keys.push_back({textOf(row, "name"), flagOf(row, "is_descending_key")});
    });
}

static QString actionOf(int code) {
    switch (code) {
        case 1:
            return QStringLiteral("CASCADE");
        case 2:
            return QStringLiteral("SET NULL");
        case 3:
            return QStringLiteral("SET DEFAULT");
        default:
            return {};
    }
}

bool FactsReader::eachForeignKey(const QString& condition,
                                 const std::function<void(Row, ConstraintFacts&&)>& take) {
    QHash<qint32, std::pair<QStringList, QStringList>> columnsOf;
    const QString columns = s("SELECT fk.constraint_object_id, pc.name, rc.name AS referenced_name "
                              "FROM sys.foreign_key_columns fk "
                              "INNER JOIN sys.columns pc ON pc.object_id = fk.parent_object_id "
                              "AND pc.column_id = fk.parent_column_id "
                              "INNER JOIN sys.columns rc ON rc.object_id = fk.referenced_object_id "
                              "AND rc.column_id = fk.referenced_column_id WHERE 1 = 1") +
                            condition +
                            s(" ORDER BY fk.constraint_object_id, fk.constraint_column_id");
    if (!each(columns, [&](Row row) {
            auto& [own, referenced] = columnsOf[numberOf(row, "constraint_object_id")];
            own += textOf(row, "name");
            referenced += textOf(row, "referenced_name");
        }))
        return false;
    const QString sql =
        s("SELECT fk.object_id, fk.parent_object_id, ks.name AS key_schema, fk.name, "
          "ps.name AS parent_schema, po.name AS parent_name, "
          "rs.name AS referenced_schema, ro.name AS referenced_name, "
          "fk.delete_referential_action, fk.update_referential_action, fk.is_disabled, "
          "fk.is_not_trusted, fk.is_not_for_replication "
          "FROM sys.foreign_keys fk INNER JOIN sys.schemas ks ON ks.schema_id = fk.schema_id "
          "INNER JOIN sys.objects po ON po.object_id = fk.parent_object_id "
          "INNER JOIN sys.schemas ps ON ps.schema_id = po.schema_id "
          "INNER JOIN sys.objects ro ON ro.object_id = fk.referenced_object_id "
          "INNER JOIN sys.schemas rs ON rs.schema_id = ro.schema_id WHERE 1 = 1") +
        condition + s(" ORDER BY ks.name, fk.name");
    return each(sql, [&](Row row) {
        ConstraintFacts key;
        key.id = numberOf(row, "object_id");
        key.schema = textOf(row, "key_schema");
        key.name = textOf(row, "name");
        key.referencedSchema = textOf(row, "referenced_schema");
        key.referencedTable = textOf(row, "referenced_name");
        key.onDelete = actionOf(numberOf(row, "delete_referential_action"));
        key.onUpdate = actionOf(numberOf(row, "update_referential_action"));
        key.isDisabled = flagOf(row, "is_disabled");
        key.isNotTrusted = flagOf(row, "is_not_trusted");
        key.notForReplication = flagOf(row, "is_not_for_replication");
        std::tie(key.columns, key.referencedColumns) = columnsOf.value(key.id);
        take(row, std::move(key));
    });
}

bool FactsReader::readForeignKeys() {
    return eachForeignKey(only("fk.parent_object_id"), [&](Row row, ConstraintFacts&& key) {
        if (TableFacts* table = tableOf(numberOf(row, "parent_object_id")))
            table->foreignKeys.push_back(std::move(key));
    });
}

bool FactsReader::readHangers(TableHangers& hangers) {
    const QString itsOwn = QStringLiteral(
                               " AND fk.referenced_object_id = %1 "
                               "AND fk.parent_object_id <> %1")
                               .arg(tableId_);
    DatabaseFacts facts;
    if (!eachForeignKey(itsOwn,
                        [&](Row row, ConstraintFacts&& key) {
                            hangers.referencedBy.push_back(
                                {nameOrNone(row, "parent_schema", "parent_name"), std::move(key)});
                        }) ||
        !each(s("SELECT o.object_id, s.name AS schema_name, o.name, o.type, o.parent_object_id "
                "FROM sys.objects o INNER JOIN sys.schemas s ON s.schema_id = o.schema_id "
                "WHERE o.type = 'TR' AND o.parent_object_id = ") +
                  QString::number(tableId_) + s(" ORDER BY s.name, o.name"),
              [&](Row row) { addObject(row); }) ||
        !readModules(facts))
        return false;
    for (ModuleFacts& module : facts.modules)
        if (module.type == u"TR" && module.parentId == tableId_)
            hangers.triggers.push_back(std::move(module));
    return true;
}

bool FactsReader::readChecks() {
    const QString sql =
        s("SELECT c.object_id, c.parent_object_id, s.name AS schema_name, c.name, c.is_disabled, "
          "c.is_not_trusted, c.is_not_for_replication, c.definition "
          "FROM sys.check_constraints c INNER JOIN sys.schemas s ON s.schema_id = c.schema_id "
          "WHERE 1 = 1") +
        only("c.parent_object_id") + s(" ORDER BY s.name, c.name");
    return each(sql, [&](Row row) {
        TableFacts* table = tableOf(numberOf(row, "parent_object_id"));
        if (!table) return;
        ConstraintFacts check;
        check.id = numberOf(row, "object_id");
        check.schema = textOf(row, "schema_name");
        check.name = textOf(row, "name");
        check.isDisabled = flagOf(row, "is_disabled");
        check.isNotTrusted = flagOf(row, "is_not_trusted");
        check.notForReplication = flagOf(row, "is_not_for_replication");
        check.check = textOf(row, "definition");
        if (check.check.isEmpty())
            table->beyond += QStringLiteral("the condition of check %1, which can't be read,")
                                 .arg(quoteName(check.name));
        else
            table->checks.push_back(std::move(check));
    });
}

bool FactsReader::readBeyond() {
    if (version_ < FirstVersionWithMasks) return true;
    return each(s("SELECT t.object_id, t.temporal_type, t.is_memory_optimized FROM sys.tables t "
                  "WHERE (t.temporal_type <> 0 OR t.is_memory_optimized <> 0)") +
                    only("t.object_id"),
                [&](Row row) {
                    TableFacts* table = tableOf(numberOf(row, "object_id"));
                    if (!table) return;
                    if (numberOf(row, "temporal_type") != 0)
                        table->beyond += QStringLiteral("its history of rows");
                    if (flagOf(row, "is_memory_optimized"))
                        table->beyond += QStringLiteral("its place in memory");
                });
}

bool FactsReader::readTables() {
    if (version_ < FirstVersionWithViews) {
        shell().messageBox(
            QStringLiteral("%1 is of version %2. Scripts that can be run are made of servers of "
                           "version 9 (SQL Server 2005) and later.")
                .arg(server_.Name, server_.Version),
            {}, BoxIcon::Exclamation);
        return false;
    }
    return each(s("SELECT d.collation_name FROM sys.databases d WHERE d.name = DB_NAME()"),
                [&](Row row) { databaseCollation_ = row.field(0).text(); }) &&
           readObjects() && readColumns() && readIndexes() && readForeignKeys() && readChecks() &&
           readBeyond();
}

}  // namespace zov::facts
