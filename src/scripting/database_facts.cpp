#include "scripting/database_facts.h"

#include "core/run_account.h"
#include "data/mdlData.h"
#include "data/sql_names.h"
#include "scripting/type_names.h"
#include "shell/shell.h"

#include <QHash>

#include <algorithm>
#include <functional>

namespace zov {
namespace {

constexpr int FirstVersionWithViews = 9;
constexpr int FirstVersionWithSparse = 10;
constexpr int FirstVersionWithSequences = 11;
constexpr int FirstVersionWithMasks = 13;

QString s(const char* text) {
    return QString::fromLatin1(text);
}

/// The reading of one database. Statements are silent about nothing: what fails was reported, and
/// ends the reading.
class FactsReader {
 public:
    FactsReader(const ServerInfo& server, const QString& database, qint32 tableId)
        : server_(server),
          database_(database),
          tableId_(tableId),
          version_(GetMajorVersion(server.Version)) {}

    bool readTables();
    bool readAll(DatabaseFacts& facts);
    /// Of the one table that is read.
    bool readHangers(TableHangers& hangers);
    std::vector<TableFacts> tables;  ///< tables, views and table types, told apart by kinds_

    /// One row of an object, as sys.objects has it.
    struct Object {
        QString schema, name, type;
        qint32 parent = 0;
    };

 private:
    using Row = const Recordset&;
    bool each(const QString& sql, const std::function<void(Row)>& take);
    /// " AND column = id" when one table alone is read.
    QString only(const char* column) const {
        return tableId_ < 1 ? QString()
                            : QStringLiteral(" AND %1 = %2").arg(s(column)).arg(tableId_);
    }
    TableFacts* tableOf(qint32 id) {
        const auto found = tableAt_.constFind(id);
        return found == tableAt_.constEnd() ? nullptr : &tables[size_t(*found)];
    }
    bool readObjects();
    std::pair<qint32, Object> addObject(Row row);
    bool readColumns();
    bool readIndexes();
    bool eachForeignKey(const QString& condition,
                        const std::function<void(Row, ConstraintFacts&&)>& take);
    bool readForeignKeys();
    bool readChecks();
    bool readBeyond();
    bool readModules(DatabaseFacts& facts);
    bool readTriggers(DatabaseFacts& facts);
    bool readTypes(DatabaseFacts& facts);
    bool readSequences(DatabaseFacts& facts);
    bool readRest(DatabaseFacts& facts);
    void noteUnknownObject(const Object& object, DatabaseFacts& facts) const;
    static ColumnFacts columnOf(Row row);

    const ServerInfo& server_;
    const QString& database_;
    qint32 tableId_;
    qint32 version_;
    QHash<qint32, Object> objects_;
    QHash<qint32, qsizetype> tableAt_;
    QString databaseCollation_;
};

QString textOf(const Recordset& row, const char* field) {
    return row.field(s(field)).text();
}
bool flagOf(const Recordset& row, const char* field) {
    return row.field(s(field)).toInt64() != 0;
}
qint32 numberOf(const Recordset& row, const char* field) {
    return qint32(row.field(s(field)).toInt64());
}
QString nameOrNone(const Recordset& row, const char* schema, const char* name) {
    const QString text = textOf(row, name);
    return text.isEmpty() ? QString() : quotedName(textOf(row, schema), text);
}

bool FactsReader::each(const QString& sql, const std::function<void(Row)>& take) {
    std::unique_ptr<Recordset> rows;
    if (GetAdoRS(server_, adCmdText, sql, rows, database_) == -1 || !rows || !rows->isOpen())
        return false;
    for (; !rows->isEof(); rows->MoveNext()) take(*rows);
    return true;
}

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

QString actionOf(int code) {
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

bool FactsReader::readModules(DatabaseFacts& facts) {
    static const QStringList kinds = {s("P"), s("FN"), s("IF"), s("TF"),
                                      s("V"), s("TR"), s("R"),  s("D")};
    QHash<qint32, size_t> at;
    const auto add = [&](qint32 id, const Object& object) {
        ModuleFacts module;
        module.schema = object.schema;
        module.name = object.name;
        module.id = id;
        module.type = object.type;
        module.parentId = object.parent;
        at.insert(id, facts.modules.size());
        facts.modules.push_back(std::move(module));
    };
    for (auto object = objects_.cbegin(); object != objects_.cend(); ++object) {
        // A default with a parent is a column's constraint.
        if (kinds.contains(object->type) && (object->type != u"D" || object->parent == 0))
            add(object.key(), *object);
        else
            noteUnknownObject(*object, facts);
    }
    if (!each(s("SELECT m.object_id, m.uses_ansi_nulls, m.uses_quoted_identifier, m.definition "
                "FROM sys.sql_modules m"),
              [&](Row row) {
                  const auto found = at.constFind(numberOf(row, "object_id"));
                  if (found == at.constEnd()) return;
                  ModuleFacts& module = facts.modules[*found];
                  module.ansiNulls = flagOf(row, "uses_ansi_nulls");
                  module.quotedIdentifier = flagOf(row, "uses_quoted_identifier");
                  module.text = textOf(row, "definition");
              }))
        return false;
    return readTriggers(facts);
}

bool FactsReader::readTriggers(DatabaseFacts& facts) {
    return each(s("SELECT t.object_id, t.name, t.parent_id, t.is_disabled, m.uses_ansi_nulls, "
                  "m.uses_quoted_identifier, m.definition FROM sys.triggers t "
                  "LEFT JOIN sys.sql_modules m ON m.object_id = t.object_id "
                  "WHERE t.is_ms_shipped = 0 AND t.type = 'TR'"),
                [&](Row row) {
                    const qint32 id = numberOf(row, "object_id");
                    auto known = std::find_if(facts.modules.begin(), facts.modules.end(),
                                              [&](const ModuleFacts& one) { return one.id == id; });
                    if (known == facts.modules.end()) {
                        // One on the database stands in no schema, and isn't among the objects.
                        ModuleFacts trigger;
                        trigger.name = textOf(row, "name");
                        trigger.id = id;
                        trigger.type = s("TR");
                        trigger.ansiNulls = flagOf(row, "uses_ansi_nulls");
                        trigger.quotedIdentifier = flagOf(row, "uses_quoted_identifier");
                        trigger.text = textOf(row, "definition");
                        known = facts.modules.insert(facts.modules.end(), std::move(trigger));
                    }
                    known->parentId = numberOf(row, "parent_id");
                    known->isDisabled = flagOf(row, "is_disabled");
                    if (known->parentId == 0) known->schema.clear();
                });
}

void FactsReader::noteUnknownObject(const Object& object, DatabaseFacts& facts) const {
    static const QHash<QString, QString> kinds = {
        {s("PC"), s("CLR procedure")},     {s("FS"), s("CLR function")},
        {s("FT"), s("CLR function")},      {s("AF"), s("CLR aggregate")},
        {s("TA"), s("CLR trigger")},       {s("SQ"), s("service queue")},
        {s("X"), s("extended procedure")}, {s("RF"), s("replication filter")},
        {s("PG"), s("plan guide")},        {s("SP"), s("security policy")},
        {s("ET"), s("external table")},    {s("EC"), s("edge constraint")},
    };
    const auto kind = kinds.constFind(object.type);
    if (kind != kinds.constEnd())
        facts.beyond += *kind + u' ' + quotedName(object.schema, object.name);
}

bool FactsReader::readTypes(DatabaseFacts& facts) {
    QHash<qint32, size_t> at;
    if (!each(s("SELECT t.user_type_id, s.name AS schema_name, t.name, t.max_length, "
                "t.precision, t.scale, t.is_nullable, t.is_table_type, t.is_assembly_type, "
                "b.name AS base_name, ds.name AS bound_schema, dob.name AS bound_name, "
                "rs.name AS rule_schema, ro.name AS rule_name "
                "FROM sys.types t INNER JOIN sys.schemas s ON s.schema_id = t.schema_id "
                "LEFT JOIN sys.types b ON b.user_type_id = t.system_type_id "
                "LEFT JOIN sys.objects dob ON dob.object_id = t.default_object_id "
                "LEFT JOIN sys.schemas ds ON ds.schema_id = dob.schema_id "
                "LEFT JOIN sys.objects ro ON ro.object_id = t.rule_object_id "
                "LEFT JOIN sys.schemas rs ON rs.schema_id = ro.schema_id "
                "WHERE t.is_user_defined = 1 ORDER BY s.name, t.name"),
              [&](Row row) {
                  const QString schema = textOf(row, "schema_name"), name = textOf(row, "name");
                  if (flagOf(row, "is_assembly_type")) {
                      facts.beyond += QStringLiteral("CLR type ") + quotedName(schema, name);
                      return;
                  }
                  UserTypeFacts type;
                  type.schema = schema;
                  type.name = name;
                  type.id = numberOf(row, "user_type_id");
                  type.nullable = flagOf(row, "is_nullable");
                  type.boundDefault = nameOrNone(row, "bound_schema", "bound_name");
                  type.boundRule = nameOrNone(row, "rule_schema", "rule_name");
                  if (!flagOf(row, "is_table_type"))
                      type.base = typeInStatement({{},
                                                   textOf(row, "base_name"),
                                                   false,
                                                   numberOf(row, "max_length"),
                                                   numberOf(row, "precision"),
                                                   numberOf(row, "scale")});
                  at.insert(type.id, facts.types.size());
                  facts.types.push_back(std::move(type));
              }))
        return false;
    if (version_ < FirstVersionWithSparse) return true;
    return each(s("SELECT tt.user_type_id, tt.type_table_object_id FROM sys.table_types tt "
                  "WHERE tt.is_user_defined = 1"),
                [&](Row row) {
                    const auto type = at.constFind(numberOf(row, "user_type_id"));
                    const TableFacts* table = tableOf(numberOf(row, "type_table_object_id"));
                    if (type != at.constEnd() && table) facts.types[*type].table = *table;
                });
}

bool FactsReader::readSequences(DatabaseFacts& facts) {
    if (version_ < FirstVersionWithSequences) return true;
    return each(
        s("SELECT s.name AS schema_name, q.name, ts.name AS type_schema, ty.name AS type_name, "
          "ty.is_user_defined, q.precision, q.scale, q.is_cycling, q.is_cached, q.cache_size, "
          "CONVERT(nvarchar(60), q.start_value) AS start_value, "
          "CONVERT(nvarchar(60), q.increment) AS increment, "
          "CONVERT(nvarchar(60), q.minimum_value) AS minimum_value, "
          "CONVERT(nvarchar(60), q.maximum_value) AS maximum_value "
          "FROM sys.sequences q INNER JOIN sys.schemas s ON s.schema_id = q.schema_id "
          "INNER JOIN sys.types ty ON ty.user_type_id = q.user_type_id "
          "INNER JOIN sys.schemas ts ON ts.schema_id = ty.schema_id ORDER BY s.name, q.name"),
        [&](Row row) {
            SequenceFacts& sequence = facts.sequences.emplace_back();
            sequence.schema = textOf(row, "schema_name");
            sequence.name = textOf(row, "name");
            sequence.type = typeInStatement({textOf(row, "type_schema"), textOf(row, "type_name"),
                                             flagOf(row, "is_user_defined"), 0,
                                             numberOf(row, "precision"), numberOf(row, "scale")});
            sequence.start = textOf(row, "start_value");
            sequence.increment = textOf(row, "increment");
            sequence.minimum = textOf(row, "minimum_value");
            sequence.maximum = textOf(row, "maximum_value");
            sequence.cycles = flagOf(row, "is_cycling");
            sequence.isCached = flagOf(row, "is_cached");
            sequence.cacheSize = numberOf(row, "cache_size");
        });
}

bool FactsReader::readRest(DatabaseFacts& facts) {
    constexpr int FirstFixedSchema = 16384;
    return each(s("SELECT s.name FROM sys.schemas s WHERE s.schema_id > 4 AND s.schema_id < ") +
                    QString::number(FirstFixedSchema) + s(" ORDER BY s.name"),
                [&](Row row) { facts.schemas += row.field(0).text(); }) &&
           each(s("SELECT s.name AS schema_name, y.name, y.base_object_name FROM sys.synonyms y "
                  "INNER JOIN sys.schemas s ON s.schema_id = y.schema_id "
                  "ORDER BY s.name, y.name"),
                [&](Row row) {
                    facts.synonyms.push_back({textOf(row, "schema_name"), textOf(row, "name"),
                                              textOf(row, "base_object_name")});
                });
}

bool FactsReader::readAll(DatabaseFacts& facts) {
    if (!readTables() || !readModules(facts) || !readTypes(facts) || !readSequences(facts) ||
        !readRest(facts))
        return false;
    for (TableFacts& table : tables) {
        const QString& type = objects_[table.id].type;
        if (type == u"U")
            facts.tables.push_back(std::move(table));
        else if (type == u"V" && !table.indexes.empty())
            facts.indexedViews.push_back(std::move(table));
    }
    std::sort(facts.modules.begin(), facts.modules.end(),
              [](const ModuleFacts& a, const ModuleFacts& b) {
                  return std::tie(a.schema, a.name, a.id) < std::tie(b.schema, b.name, b.id);
              });
    facts.beyond.sort();
    return true;
}

}  // namespace

QString TableFacts::quoted() const {
    return quotedName(schema, name);
}

const ColumnFacts* TableFacts::column(const QString& wanted) const {
    for (const ColumnFacts& one : columns)
        if (one.name == wanted) return &one;
    return nullptr;
}

QString ModuleFacts::quoted() const {
    return quotedName(schema, name);
}

bool readDatabaseFacts(const ServerInfo& server, const QString& database, DatabaseFacts& facts) {
    return FactsReader(server, database, 0).readAll(facts);
}

bool readTableFacts(const ServerInfo& server, const QString& database, qint32 id,
                    TableFacts& table) {
    FactsReader reader(server, database, id);
    if (!reader.readTables() || reader.tables.empty()) return false;
    table = std::move(reader.tables.front());
    return true;
}

bool readTableHangers(const ServerInfo& server, const QString& database, qint32 id,
                      TableHangers& hangers) {
    return FactsReader(server, database, id).readHangers(hangers);
}

}  // namespace zov
