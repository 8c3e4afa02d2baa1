#include "scripting/facts_reader.h"

#include "scripting/type_names.h"

#include <algorithm>

namespace zov {
namespace facts {

bool FactsReader::each(const QString& sql, const std::function<void(Row)>& take) {
    std::unique_ptr<Recordset> rows;
    if (GetAdoRS(server_, adCmdText, sql, rows, database_) == -1 || !rows || !rows->isOpen())
        return false;
    for (; !rows->isEof(); rows->MoveNext()) take(*rows);
    return true;
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

}  // namespace facts

bool readDatabaseFacts(const ServerInfo& server, const QString& database, DatabaseFacts& facts) {
    return facts::FactsReader(server, database, 0).readAll(facts);
}

bool readTableFacts(const ServerInfo& server, const QString& database, qint32 id,
                    TableFacts& table) {
    facts::FactsReader reader(server, database, id);
    if (!reader.readTables() || reader.tables.empty()) return false;
    table = std::move(reader.tables.front());
    return true;
}

bool readTableHangers(const ServerInfo& server, const QString& database, qint32 id,
                      TableHangers& hangers) {
    return facts::FactsReader(server, database, id).readHangers(hangers);
}

}  // namespace zov
