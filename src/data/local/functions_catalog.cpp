// Functions that look into the catalogue: OBJECTPROPERTY, IDENT_SEED, OBJECT_ID,
// SERVERPROPERTY and their like.
#include "data/local/catalog_views.h"
#include "data/local/functions_support.h"
#include "data/local/query_cache.h"
#include "data/local/server_store.h"
#include "data/local/sqlite_files.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace zov::local {
namespace {

Database& databaseOf(sqlite3_context* context) {
    return *static_cast<Database*>(dataOf(context));
}
QueryCache& cacheOf(sqlite3_context* context) {
    return QueryCache::of(databaseOf(context));
}

bool is(const QString& text, const char* word) {
    return text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
}

/// The object of a name "db.schema.name"; 0 when there is none. `cache` moves to the database
/// named.
int objectId(QueryCache*& cache, const QString& name, const QString& type) {
    const QStringList parts = splitName(name);
    if (parts.isEmpty() || parts.size() > 3) return 0;
    if (parts.size() == 3 && !parts[0].isEmpty() &&
        parts[0].compare(cache->database.name, Qt::CaseInsensitive) != 0) {
        ServerStore* store = cache->database.store;
        if (!store || !store->hasDatabase(parts[0])) return 0;
        cache = &QueryCache::of(store->database(parts[0]));
    }
    QString schema = parts.size() > 1 ? parts[parts.size() - 2] : QString();
    if (schema.isEmpty()) schema = QStringLiteral("dbo");
    LookUp find(*cache,
                "SELECT o.id, o.xtype FROM \"zov$objects\" o JOIN \"zov$schemas\" s ON s.schema_id "
                "= o.schema_id "
                "WHERE o.name = ?1 AND s.name = ?2");
    find.bind(parts.last()).bind(schema);
    while (find.next())
        if (type.isEmpty() ||
            find.text(1).trimmed().compare(type.trimmed(), Qt::CaseInsensitive) == 0)
            return int(find.integer(0));
    return 0;
}

void giveObjectId(sqlite3_context* context, int count, sqlite3_value** v) {
    if (isNull(v[0])) return sqlite3_result_null(context);
    QueryCache* cache = &cacheOf(context);
    const int id = objectId(cache, textOf(v[0]), count > 1 ? textOf(v[1]) : QString());
    if (id) return giveInt(context, id);
    sqlite3_result_null(context);
}

bool triggerHas(const QString& info, const char* word) {
    return info.contains(QLatin1String(word), Qt::CaseInsensitive);
}

/// -1 for a property that objects of this kind don't have.
int propertyOf(QueryCache& cache, int id, const QString& xtype, int parent, bool shipped,
               bool disabled, bool untrusted, int schema, const QString& info,
               const QString& property) {
    const auto kind = [&](const char* type) { return xtype == QLatin1String(type); };
    const auto exists = [&](const char* sql) {
        LookUp look(cache, sql);
        look.bind(qint64(id));
        return look.next() ? 1 : 0;
    };
    if (is(property, "IsProcedure")) return kind("P");
    if (is(property, "IsView")) return kind("V");
    if (is(property, "IsTrigger")) return kind("TR");
    if (is(property, "IsUserTable")) return kind("U");
    if (is(property, "IsTable")) return kind("U") || kind("S");
    if (is(property, "IsSystemTable")) return kind("S");
    if (is(property, "IsScalarFunction")) return kind("FN");
    if (is(property, "IsInlineFunction")) return kind("IF");
    if (is(property, "IsTableFunction")) return kind("TF") || kind("IF");
    if (is(property, "IsMSShipped")) return shipped;
    if (is(property, "IsPrimaryKey")) return kind("PK");
    if (is(property, "IsUniqueCnst")) return kind("UQ");
    if (is(property, "IsForeignKey")) return kind("F");
    if (is(property, "IsCheckCnst")) return kind("C");
    if (is(property, "IsDefaultCnst")) return kind("D") && parent > 0;
    if (is(property, "IsDefault")) return kind("D") && parent == 0;
    if (is(property, "IsRule")) return kind("R");
    if (is(property, "IsConstraint"))
        return kind("PK") || kind("UQ") || kind("F") || kind("C") || (kind("D") && parent > 0);
    if (is(property, "IsExecuted"))
        return kind("P") || kind("V") || kind("TR") || kind("FN") || kind("IF") || kind("TF");
    if (is(property, "IsExtendedProc") || is(property, "IsReplProc") || is(property, "IsQueue") ||
        is(property, "IsSchemaBound"))
        return 0;
    if (is(property, "IsSynonym")) return kind("SN");
    if (is(property, "IsEncrypted"))
        return exists("SELECT 1 FROM \"zov$comments\" WHERE id = ?1 AND encrypted");
    if (is(property, "SchemaId")) return schema;
    if (is(property, "OwnerId")) {
        LookUp look(cache, "SELECT principal_id FROM \"zov$schemas\" WHERE schema_id = ?1");
        look.bind(qint64(schema));
        return look.next() ? int(look.integer(0)) : -1;
    }
    if (is(property, "CnstIsDisabled")) return disabled;
    if (is(property, "CnstIsNotTrusted")) return untrusted;
    if (is(property, "CnstIsNotRepl"))
        return exists(
            "SELECT 1 FROM \"zov$details\" WHERE class = 1 AND major_id = ?1 AND minor_id = 0 "
            "AND name = 'not_for_replication'");
    if (is(property, "CnstIsDeleteCascade"))
        return exists(
            "SELECT 1 FROM \"zov$references\" WHERE constid = ?1 AND delete_action = 'CASCADE'");
    if (is(property, "CnstIsUpdateCascade"))
        return exists(
            "SELECT 1 FROM \"zov$references\" WHERE constid = ?1 AND update_action = 'CASCADE'");
    if (is(property, "CnstIsClustKey"))
        return exists("SELECT 1 FROM \"zov$indexes\" WHERE constraint_id = ?1 AND indid = 1");
    if (is(property, "CnstIsNonclustKey"))
        return exists("SELECT 1 FROM \"zov$indexes\" WHERE constraint_id = ?1 AND indid > 1");
    if (is(property, "ExecIsQuotedIdentOn") || is(property, "ExecIsAnsiNullsOn") ||
        is(property, "IsAnsiNullsOn") || is(property, "IsQuotedIdentOn"))
        return 1;
    if (property.startsWith(QLatin1String("ExecIs"), Qt::CaseInsensitive)) {
        if (!kind("TR")) return is(property, "ExecIsStartup") ? 0 : -1;
        if (is(property, "ExecIsTriggerDisabled")) return disabled;
        if (is(property, "ExecIsInsteadOfTrigger")) return triggerHas(info, "INSTEAD");
        if (is(property, "ExecIsAfterTrigger")) return !triggerHas(info, "INSTEAD");
        if (is(property, "ExecIsInsertTrigger")) return triggerHas(info, "INSERT");
        if (is(property, "ExecIsUpdateTrigger")) return triggerHas(info, "UPDATE");
        if (is(property, "ExecIsDeleteTrigger")) return triggerHas(info, "DELETE");
        return 0;
    }
    if (property.startsWith(QLatin1String("TableHas"), Qt::CaseInsensitive)) {
        if (!kind("U") && !kind("V")) return -1;
        if (is(property, "TableHasPrimaryKey"))
            return exists("SELECT 1 FROM \"zov$objects\" WHERE parent_obj = ?1 AND xtype = 'PK'");
        if (is(property, "TableHasUniqueCnst"))
            return exists("SELECT 1 FROM \"zov$objects\" WHERE parent_obj = ?1 AND xtype = 'UQ'");
        if (is(property, "TableHasForeignKey"))
            return exists("SELECT 1 FROM \"zov$objects\" WHERE parent_obj = ?1 AND xtype = 'F'");
        if (is(property, "TableHasForeignRef"))
            return exists("SELECT 1 FROM \"zov$references\" WHERE rkeyid = ?1");
        if (is(property, "TableHasCheckCnst"))
            return exists("SELECT 1 FROM \"zov$objects\" WHERE parent_obj = ?1 AND xtype = 'C'");
        if (is(property, "TableHasDefaultCnst"))
            return exists("SELECT 1 FROM \"zov$objects\" WHERE parent_obj = ?1 AND xtype = 'D'");
        if (is(property, "TableHasIdentity"))
            return exists(
                "SELECT 1 FROM \"zov$columns\" WHERE id = ?1 AND identity_seed IS NOT NULL");
        if (is(property, "TableHasRowGuidCol"))
            return exists("SELECT 1 FROM \"zov$columns\" WHERE id = ?1 AND is_rowguid");
        if (is(property, "TableHasTimestamp"))
            return exists("SELECT 1 FROM \"zov$columns\" WHERE id = ?1 AND xtype = 189");
        if (is(property, "TableHasTextImage"))
            return exists("SELECT 1 FROM \"zov$columns\" WHERE id = ?1 AND xtype IN (34, 35, 99)");
        if (is(property, "TableHasClustIndex"))
            return exists("SELECT 1 FROM \"zov$indexes\" WHERE id = ?1 AND indid = 1");
        if (is(property, "TableHasNonclustIndex"))
            return exists("SELECT 1 FROM \"zov$indexes\" WHERE id = ?1 AND indid > 1");
        if (is(property, "TableHasIndex"))
            return exists("SELECT 1 FROM \"zov$indexes\" WHERE id = ?1 AND indid > 0");
        for (const char* event : {"Insert", "Update", "Delete"}) {
            if (!is(property, (QByteArray("TableHas") + event + "Trigger").constData())) continue;
            LookUp look(cache,
                        "SELECT 1 FROM \"zov$objects\" WHERE parent_obj = ?1 AND xtype = 'TR' AND "
                        "info LIKE ?2");
            look.bind(qint64(id)).bind(u'%' + QLatin1String(event) + u'%');
            return look.next() ? 1 : 0;
        }
        return 0;
    }
    if (is(property, "TableIsFake")) return 0;
    if (is(property, "IsIndexable")) return kind("U");
    if (is(property, "IsDeterministic")) return 0;
    return -1;
}

void objectProperty(sqlite3_context* context, int, sqlite3_value** v) {
    if (isNull(v[0]) || isNull(v[1])) return sqlite3_result_null(context);
    QueryCache& cache = cacheOf(context);
    const qint64 id = sqlite3_value_int64(v[0]);
    LookUp find(
        cache,
        "SELECT xtype, parent_obj, is_ms_shipped, is_disabled, is_not_trusted, schema_id, info "
        "FROM \"zov$objects\" WHERE id = ?1");
    find.bind(id);
    if (!find.next()) return sqlite3_result_null(context);
    const QString property = textOf(v[1]);
    if (is(property, "BaseType")) return giveText(context, find.text(0).trimmed().leftJustified(2));
    const int value = propertyOf(cache, int(id), find.text(0).trimmed(), int(find.integer(1)),
                                 find.integer(2) != 0, find.integer(3) != 0, find.integer(4) != 0,
                                 int(find.integer(5)), find.text(6), property);
    if (value < 0) return sqlite3_result_null(context);
    giveInt(context, value);
}

/// INDEXPROPERTY of statistics that are no index.
void statisticsProperty(sqlite3_context* context, sqlite3_value** v, const QString& property) {
    LookUp find(cacheOf(context),
                "SELECT stats_id FROM \"zov$statistics\" WHERE id = ?1 AND name = ?2");
    find.bind(sqlite3_value_int64(v[0])).bind(textOf(v[1]));
    if (!find.next()) return sqlite3_result_null(context);
    giveInt(context, is(property, "IndexID") ? find.integer(0) : is(property, "IsStatistics"));
}

void indexProperty(sqlite3_context* context, int, sqlite3_value** v) {
    if (isNull(v[0]) || isNull(v[1]) || isNull(v[2])) return sqlite3_result_null(context);
    LookUp find(cacheOf(context),
                "SELECT indid, is_unique, is_disabled, (SELECT count(*) FROM \"zov$indexkeys\" k "
                "WHERE k.id = i.id "
                "AND k.indid = i.indid) FROM \"zov$indexes\" i WHERE id = ?1 AND name = ?2");
    find.bind(sqlite3_value_int64(v[0])).bind(textOf(v[1]));
    const QString property = textOf(v[2]);
    if (!find.next()) return statisticsProperty(context, v, property);
    if (is(property, "IndexID")) return giveInt(context, find.integer(0));
    if (is(property, "IsUnique")) return giveInt(context, find.integer(1));
    if (is(property, "IsClustered")) return giveInt(context, find.integer(0) == 1);
    if (is(property, "IsDisabled")) return giveInt(context, find.integer(2));
    for (const char* none :
         {"IsStatistics", "IsHypothetical", "IsAutoStatistics", "IsPadIndex", "IndexFillFactor",
          "IsFulltextKey", "IsPageLockDisallowed", "IsRowLockDisallowed", "IndexDepth",
          "IsColumnstore", "IsOptimizedForSequentialKey"})
        if (is(property, none)) return giveInt(context, 0);
    sqlite3_result_null(context);
}

void columnProperty(sqlite3_context* context, int, sqlite3_value** v) {
    if (isNull(v[0]) || isNull(v[1]) || isNull(v[2])) return sqlite3_result_null(context);
    LookUp find(
        cacheOf(context),
        "SELECT colid, isnullable, identity_seed IS NOT NULL, computed IS NOT NULL, prec, scale, "
        "is_rowguid, "
        "length, xtype, cdefault, is_persisted FROM \"zov$columns\" WHERE id = ?1 AND name = ?2");
    find.bind(sqlite3_value_int64(v[0])).bind(textOf(v[1]));
    if (!find.next()) return sqlite3_result_null(context);
    const QString property = textOf(v[2]);
    const qint64 xtype = find.integer(8);
    if (is(property, "ColumnId")) return giveInt(context, find.integer(0));
    if (is(property, "AllowsNull")) return giveInt(context, find.integer(1));
    if (is(property, "IsIdentity")) return giveInt(context, find.integer(2));
    if (is(property, "IsComputed")) return giveInt(context, find.integer(3));
    if (is(property, "Precision"))
        return find.isNull(4) ? sqlite3_result_null(context) : giveInt(context, find.integer(4));
    if (is(property, "Scale"))
        return find.isNull(5) ? sqlite3_result_null(context) : giveInt(context, find.integer(5));
    if (is(property, "IsRowGuidCol")) return giveInt(context, find.integer(6));
    if (is(property, "CharMaxLen"))
        return xtype == 231 || xtype == 239
                   ? giveInt(context, find.integer(7) < 0 ? -1 : find.integer(7) / 2)
               : xtype == 167 || xtype == 175 || xtype == 165 || xtype == 173
                   ? giveInt(context, find.integer(7))
                   : sqlite3_result_null(context);
    if (is(property, "UsesAnsiTrim")) return giveInt(context, 1);
    if (is(property, "IsIndexable"))
        return giveInt(context, xtype != 34 && xtype != 35 && xtype != 99 && xtype != 241);
    for (const char* none : {"IsFulltextIndexed", "IsCursorType", "IsOutParam"})
        if (is(property, none)) return giveInt(context, 0);
    static const struct {
        const char* property;
        const char* detail;
    } details[] = {{"IsIdNotForRepl", "not_for_replication"},
                   {"IsSparse", "sparse"},
                   {"IsHidden", "hidden"},
                   {"IsColumnSet", "column_set"}};
    for (const auto& one : details) {
        if (!is(property, one.property)) continue;
        LookUp look(
            cacheOf(context),
            "SELECT 1 FROM \"zov$details\" WHERE class = 1 AND major_id = ?1 AND minor_id = ?2 "
            "AND name = ?3");
        look.bind(sqlite3_value_int64(v[0])).bind(find.integer(0)).bind(QLatin1String(one.detail));
        return giveInt(context, look.next());
    }
    if (is(property, "IsDeterministic")) return giveInt(context, find.integer(3));
    if (is(property, "IsPersisted") || is(property, "IsPrecise"))
        return giveInt(context, find.integer(10));
    sqlite3_result_null(context);
}

void giveIdentity(sqlite3_context* context, sqlite3_value* name, const char* sql) {
    if (isNull(name)) return sqlite3_result_null(context);
    QueryCache* cache = &cacheOf(context);
    const int id = objectId(cache, textOf(name), QString());
    if (!id) return sqlite3_result_null(context);
    LookUp find(*cache, sql);
    find.bind(qint64(id));
    if (!find.next() || find.isNull(0)) return sqlite3_result_null(context);
    giveText(context, find.text(0));
}

/// A text that one look-up by one number or name gives; null without a row.
template <typename Key>
void giveFound(sqlite3_context* context, QueryCache& cache, const char* sql, Key key) {
    LookUp find(cache, sql);
    find.bind(key);
    if (!find.next() || find.isNull(0)) return sqlite3_result_null(context);
    sqlite3_result_text(context, find.text(0).toUtf8().constData(), -1, SQLITE_TRANSIENT);
}
template <typename Key>
void giveFoundInt(sqlite3_context* context, QueryCache& cache, const char* sql, Key key) {
    LookUp find(cache, sql);
    find.bind(key);
    if (!find.next() || find.isNull(0)) return sqlite3_result_null(context);
    giveInt(context, find.integer(0));
}

/// The cache of the database with that id, for functions that take one; null when there is none.
QueryCache* cacheById(QueryCache& current, qint64 dbid) {
    if (dbid == current.database.dbid) return &current;
    ServerStore* store = current.database.store;
    if (!store) return nullptr;
    for (const DatabaseFacts& facts : store->databases())
        if (facts.dbid == dbid) return &QueryCache::of(store->database(facts.name));
    return nullptr;
}

void objectName(sqlite3_context* context, int count, sqlite3_value** v) {
    QueryCache* cache =
        count > 1 ? cacheById(cacheOf(context), sqlite3_value_int64(v[1])) : &cacheOf(context);
    if (isNull(v[0]) || !cache) return sqlite3_result_null(context);
    giveFound(context, *cache, "SELECT name FROM \"zov$objects\" WHERE id = ?1",
              qint64(sqlite3_value_int64(v[0])));
}

void objectSchemaName(sqlite3_context* context, int count, sqlite3_value** v) {
    QueryCache* cache =
        count > 1 ? cacheById(cacheOf(context), sqlite3_value_int64(v[1])) : &cacheOf(context);
    if (isNull(v[0]) || !cache) return sqlite3_result_null(context);
    giveFound(context, *cache,
              "SELECT s.name FROM \"zov$objects\" o JOIN \"zov$schemas\" s ON s.schema_id = "
              "o.schema_id WHERE o.id = ?1",
              qint64(sqlite3_value_int64(v[0])));
}

void serverProperty(sqlite3_context* context, int, sqlite3_value** v) {
    const ServerStore* store = databaseOf(context).store;
    const QString property = textOf(v[0]);
    const QString version = store ? store->productVersion() : QString();
    if (is(property, "ProductVersion")) return giveText(context, version);
    if (is(property, "ProductMajorVersion")) return giveText(context, version.section(u'.', 0, 0));
    if (is(property, "ProductMinorVersion")) return giveText(context, version.section(u'.', 1, 1));
    if (is(property, "ProductBuild")) return giveText(context, version.section(u'.', 2, 2));
    if (is(property, "ProductLevel")) return giveText(context, QByteArray("RTM"));
    if (is(property, "Edition")) return giveText(context, QByteArray("Developer Edition (64-bit)"));
    if (is(property, "EngineEdition")) return giveInt(context, 3);
    if (is(property, "ServerName") || is(property, "MachineName") ||
        is(property, "ComputerNamePhysicalNetBIOS"))
        return giveText(context, store ? store->serverName() : QString());
    if (is(property, "Collation")) return giveText(context, QByteArray(DefaultCollation));
    for (const char* none : {"IsClustered", "IsIntegratedSecurityOnly", "IsFullTextInstalled",
                             "IsHadrEnabled", "IsSingleUser", "IsLocalDB", "IsXTPSupported"})
        if (is(property, none)) return giveInt(context, 0);
    if (is(property, "LCID")) return giveInt(context, 1033);
    sqlite3_result_null(context);
}

void databaseProperty(sqlite3_context* context, int, sqlite3_value** v) {
    ServerStore* store = databaseOf(context).store;
    if (isNull(v[0]) || isNull(v[1]) || !store || !store->hasDatabase(textOf(v[0])))
        return sqlite3_result_null(context);
    const QString property = textOf(v[1]);
    if (is(property, "Status")) return giveText(context, QByteArray("ONLINE"));
    if (is(property, "Recovery")) return giveText(context, QByteArray("FULL"));
    if (is(property, "Updateability")) return giveText(context, QByteArray("READ_WRITE"));
    if (is(property, "UserAccess")) return giveText(context, QByteArray("MULTI_USER"));
    if (is(property, "Collation"))
        for (const DatabaseFacts& facts : store->databases())
            if (fold(facts.name) == fold(textOf(v[0]))) return giveText(context, facts.collation);
    if (is(property, "Version")) return giveInt(context, 957);
    if (property.startsWith(QLatin1String("Is"), Qt::CaseInsensitive)) return giveInt(context, 0);
    sqlite3_result_null(context);
}

void giveDatabases(sqlite3_context* context, int, sqlite3_value**) {
    ServerStore* store = databaseOf(context).store;
    QJsonArray list;
    if (store) {
        for (const DatabaseFacts& facts : store->databases())
            list.append(QJsonObject{{QStringLiteral("name"), facts.name},
                                    {QStringLiteral("dbid"), facts.dbid},
                                    {QStringLiteral("file"), facts.file},
                                    {QStringLiteral("created"), facts.created},
                                    {QStringLiteral("compatibility"), facts.compatibility},
                                    {QStringLiteral("collation"), facts.collation}});
    }
    giveText(context, QJsonDocument(list).toJson(QJsonDocument::Compact));
}

/// Rows of master's catalogue as JSON, a key per column; a server whose master was never written to
/// has none.
QJsonArray rowsOfMaster(ServerStore* store, const char* sql, const QStringList& keys) {
    QJsonArray rows;
    if (!store) return rows;
    for (const DatabaseFacts& facts : store->databases()) {
        if (facts.dbid != 1 || facts.file.isEmpty()) continue;
        LookUp find(QueryCache::of(store->database(facts.name)), sql);
        while (find.next()) {
            QJsonObject row;
            for (int i = 0; i < keys.size(); ++i)
                if (!find.isNull(i)) row.insert(keys[i], find.text(i));
            rows.append(row);
        }
    }
    return rows;
}

void giveLogins(sqlite3_context* context, int, sqlite3_value**) {
    const QString made = QStringLiteral("2003-04-08 09:10:35.460");
    const auto fixed = [&](const char* name, int id, const char* type) {
        return QJsonObject{{QStringLiteral("name"), QLatin1String(name)},
                           {QStringLiteral("id"), id},
                           {QStringLiteral("type"), QLatin1String(type)},
                           {QStringLiteral("disabled"), 0},
                           {QStringLiteral("created"), made},
                           {QStringLiteral("database"), QStringLiteral("master")}};
    };
    QJsonArray rows{fixed("sa", 1, "S"), fixed("public", 2, "R")};
    for (const QJsonValue& row : rowsOfMaster(
             databaseOf(context).store,
             "SELECT name, principal_id, type, is_disabled, created, default_database FROM "
             "\"zov$logins\" ORDER BY principal_id",
             {QStringLiteral("name"), QStringLiteral("id"), QStringLiteral("type"),
              QStringLiteral("disabled"), QStringLiteral("created"), QStringLiteral("database")})) {
        QJsonObject numbers = row.toObject();
        for (const char* key : {"id", "disabled"})
            numbers[QLatin1String(key)] = numbers[QLatin1String(key)].toString().toInt();
        rows.append(numbers);
    }
    giveText(context, QJsonDocument(rows).toJson(QJsonDocument::Compact));
}

void giveServerPermissions(sqlite3_context* context, int, sqlite3_value**) {
    QJsonArray rows = rowsOfMaster(
        databaseOf(context).store,
        "SELECT grantee, type, permission_name, state FROM \"zov$permissions\" WHERE class = 100",
        {QStringLiteral("grantee"), QStringLiteral("type"), QStringLiteral("permission"),
         QStringLiteral("state")});
    giveText(context, QJsonDocument(rows).toJson(QJsonDocument::Compact));
}

void typeDescription(sqlite3_context* context, int, sqlite3_value** v) {
    static const struct {
        const char* type;
        const char* text;
    } names[] = {{"U", "USER_TABLE"},
                 {"V", "VIEW"},
                 {"P", "SQL_STORED_PROCEDURE"},
                 {"FN", "SQL_SCALAR_FUNCTION"},
                 {"IF", "SQL_INLINE_TABLE_VALUED_FUNCTION"},
                 {"TF", "SQL_TABLE_VALUED_FUNCTION"},
                 {"TR", "SQL_TRIGGER"},
                 {"PK", "PRIMARY_KEY_CONSTRAINT"},
                 {"UQ", "UNIQUE_CONSTRAINT"},
                 {"F", "FOREIGN_KEY_CONSTRAINT"},
                 {"C", "CHECK_CONSTRAINT"},
                 {"D", "DEFAULT_CONSTRAINT"},
                 {"R", "RULE"},
                 {"SN", "SYNONYM"},
                 {"SO", "SEQUENCE_OBJECT"},
                 {"TT", "TYPE_TABLE"},
                 {"S", "SYSTEM_TABLE"}};
    const QByteArrayView type = utf8Of(v[0]).trimmed();
    for (const auto& name : names)
        if (type == name.type) return sqlite3_result_text(context, name.text, -1, SQLITE_STATIC);
    sqlite3_result_null(context);
}

void rowCount(sqlite3_context* context, int, sqlite3_value** v) {
    const std::shared_ptr<const QueryTable> table =
        cacheOf(context).tableById(sqlite3_value_int(v[0]));
    if (!table || table->xtype != u"U") return giveInt(context, 0);
    sqlite3* handle = sqlite3_context_db_handle(context);
    const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement(
        prepareStatement(handle, "SELECT count(*) FROM " + table->sqlName.toUtf8(), false),
        sqlite3_finalize);
    const int code = sqlite3_step(statement.get());
    if (code != SQLITE_ROW) throwQueryError(handle, code, nullptr);
    giveInt(context, sqlite3_column_int64(statement.get(), 0));
}

}  // namespace

void installCatalogFunctions(sqlite3* handle, Database& database) {
    // What looks into tables can't be called deterministic beyond one statement; within one it is,
    // and SQLite then calls it once when its arguments are the same for all rows.
    const auto look = [&](const char* name, int count, SqlFunction function) {
        define(handle, name, count, function, &database);
    };
    look("object_id", 1, giveObjectId);
    look("object_id", 2, giveObjectId);
    look("objectproperty", 2, objectProperty);
    look("indexproperty", 3, indexProperty);
    look("columnproperty", 3, columnProperty);
    look("object_name", 1, objectName);
    look("object_name", 2, objectName);
    look("object_schema_name", 1, objectSchemaName);
    look("object_schema_name", 2, objectSchemaName);
    look("serverproperty", 1, serverProperty);
    look("databasepropertyex", 2, databaseProperty);
    look("zov_type_desc", 1, typeDescription);
    define(handle, "zov_databases", 0, giveDatabases, &database, false);
    define(handle, "zov_logins", 0, giveLogins, &database, false);
    define(handle, "zov_server_permissions", 0, giveServerPermissions, &database, false);
    define(handle, "zov_rowcount", 1, rowCount, &database, false);
    look("ident_seed", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        giveIdentity(c, v[0],
                     "SELECT identity_seed FROM \"zov$columns\" WHERE id = ?1 AND identity_seed IS "
                     "NOT NULL");
    });
    look("ident_incr", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        giveIdentity(c, v[0],
                     "SELECT identity_incr FROM \"zov$columns\" WHERE id = ?1 AND identity_seed IS "
                     "NOT NULL");
    });
    look("ident_current", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        giveIdentity(c, v[0],
                     "SELECT coalesce(identity_last, identity_seed) FROM \"zov$columns\" WHERE id "
                     "= ?1 AND identity_seed IS NOT NULL");
    });
    look("object_definition", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        giveFound(c, cacheOf(c),
                  "SELECT group_concat(text, '') FROM (SELECT text FROM \"zov$comments\" WHERE id "
                  "= ?1 AND NOT encrypted ORDER BY colid)",
                  qint64(sqlite3_value_int64(v[0])));
    });
    const SqlFunction schemaName = [](sqlite3_context* c, int count, sqlite3_value** v) {
        if (!count) return sqlite3_result_text(c, "dbo", -1, SQLITE_STATIC);
        if (isNull(v[0])) return sqlite3_result_null(c);
        giveFound(c, cacheOf(c), "SELECT name FROM \"zov$schemas\" WHERE schema_id = ?1",
                  qint64(sqlite3_value_int64(v[0])));
    };
    look("schema_name", 0, schemaName);
    look("schema_name", 1, schemaName);
    const SqlFunction schemaId = [](sqlite3_context* c, int count, sqlite3_value** v) {
        if (!count) return giveInt(c, 1);
        giveFoundInt(c, cacheOf(c), "SELECT schema_id FROM \"zov$schemas\" WHERE name = ?1",
                     textOf(v[0]));
    };
    look("schema_id", 0, schemaId);
    look("schema_id", 1, schemaId);
    const SqlFunction userName = [](sqlite3_context* c, int count, sqlite3_value** v) {
        if (!count) return sqlite3_result_text(c, "dbo", -1, SQLITE_STATIC);
        if (isNull(v[0])) return sqlite3_result_null(c);
        giveFound(c, cacheOf(c), "SELECT name FROM \"zov$users\" WHERE uid = ?1",
                  qint64(sqlite3_value_int64(v[0])));
    };
    look("user_name", 0, userName);
    look("user_name", 1, userName);
    const SqlFunction userId = [](sqlite3_context* c, int count, sqlite3_value** v) {
        if (!count) return giveInt(c, 1);
        giveFoundInt(c, cacheOf(c), "SELECT uid FROM \"zov$users\" WHERE name = ?1", textOf(v[0]));
    };
    look("user_id", 0, userId);
    look("user_id", 1, userId);
    look("col_name", 2, [](sqlite3_context* c, int, sqlite3_value** v) {
        LookUp find(cacheOf(c), "SELECT name FROM \"zov$columns\" WHERE id = ?1 AND colid = ?2");
        find.bind(sqlite3_value_int64(v[0])).bind(sqlite3_value_int64(v[1]));
        if (!find.next()) return sqlite3_result_null(c);
        giveText(c, find.text(0));
    });
    look("col_length", 2, [](sqlite3_context* c, int, sqlite3_value** v) {
        QueryCache* cache = &cacheOf(c);
        const int id = isNull(v[0]) ? 0 : objectId(cache, textOf(v[0]), QString());
        LookUp find(*cache, "SELECT length FROM \"zov$columns\" WHERE id = ?1 AND name = ?2");
        find.bind(qint64(id)).bind(textOf(v[1]));
        if (!id || !find.next()) return sqlite3_result_null(c);
        giveInt(c, find.integer(0));
    });
    look("index_col", 3, [](sqlite3_context* c, int, sqlite3_value** v) {
        QueryCache* cache = &cacheOf(c);
        const int id = isNull(v[0]) ? 0 : objectId(cache, textOf(v[0]), QString());
        LookUp find(*cache,
                    "SELECT c.name FROM \"zov$indexkeys\" k JOIN \"zov$columns\" c ON c.id = k.id "
                    "AND c.colid = k.colid "
                    "WHERE k.id = ?1 AND k.indid = ?2 AND k.keyno = ?3 AND NOT k.is_included");
        find.bind(qint64(id)).bind(sqlite3_value_int64(v[1])).bind(sqlite3_value_int64(v[2]));
        if (!id || !find.next()) return sqlite3_result_null(c);
        giveText(c, find.text(0));
    });
    look("type_name", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        giveFound(c, cacheOf(c), "SELECT name FROM \"zov$types\" WHERE xusertype = ?1",
                  qint64(sqlite3_value_int64(v[0])));
    });
    look("type_id", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        const QStringList parts = splitName(textOf(v[0]));
        if (parts.isEmpty()) return sqlite3_result_null(c);
        giveFoundInt(c, cacheOf(c), "SELECT xusertype FROM \"zov$types\" WHERE name = ?1",
                     parts.last());
    });
    look("typeproperty", 2, [](sqlite3_context* c, int, sqlite3_value** v) {
        LookUp find(cacheOf(c),
                    "SELECT prec, scale, allownulls, schema_id FROM \"zov$types\" WHERE name = ?1");
        find.bind(textOf(v[0]));
        if (!find.next()) return sqlite3_result_null(c);
        const QString property = textOf(v[1]);
        const int column = is(property, "Precision")    ? 0
                           : is(property, "Scale")      ? 1
                           : is(property, "AllowsNull") ? 2
                           : is(property, "OwnerId")    ? 3
                                                        : -1;
        if (column < 0 || find.isNull(column)) return sqlite3_result_null(c);
        giveInt(c, find.integer(column));
    });
    const SqlFunction dbName = [](sqlite3_context* c, int count, sqlite3_value** v) {
        Database& own = databaseOf(c);
        if (!count) return giveText(c, own.name);
        if (own.store)
            for (const DatabaseFacts& facts : own.store->databases())
                if (facts.dbid == sqlite3_value_int(v[0])) return giveText(c, facts.name);
        sqlite3_result_null(c);
    };
    look("db_name", 0, dbName);
    look("db_name", 1, dbName);
    const SqlFunction dbId = [](sqlite3_context* c, int count, sqlite3_value** v) {
        Database& own = databaseOf(c);
        if (!count) return giveInt(c, own.dbid);
        if (own.store)
            for (const DatabaseFacts& facts : own.store->databases())
                if (facts.name.compare(textOf(v[0]), Qt::CaseInsensitive) == 0)
                    return giveInt(c, facts.dbid);
        sqlite3_result_null(c);
    };
    define(handle, "db_id", 0, dbId, &database, false);
    define(handle, "db_id", 1, dbId, &database, false);
    const SqlFunction login = [](sqlite3_context* c, int, sqlite3_value**) {
        sqlite3_result_text(c, "sa", -1, SQLITE_STATIC);
    };
    look("zov_login", 0, login);
    look("zov_login", 1, login);
    const SqlFunction member = [](sqlite3_context* c, int, sqlite3_value**) {
        sqlite3_result_int(c, 1);
    };
    look("zov_is_member", 1, member);
    look("zov_is_member", 2, member);
    look("zov_has_dbaccess", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        ServerStore* store = databaseOf(c).store;
        if (store && store->hasDatabase(textOf(v[0]))) return sqlite3_result_int(c, 1);
        sqlite3_result_null(c);
    });
    // Who is here owns everything; null where a database is asked about that isn't there.
    const SqlFunction hasPermission = [](sqlite3_context* c, int, sqlite3_value** v) {
        ServerStore* store = databaseOf(c).store;
        const bool aboutDatabase = textOf(v[1]).compare(u"DATABASE", Qt::CaseInsensitive) == 0;
        if (aboutDatabase && store && !store->hasDatabase(textOf(v[0])))
            return sqlite3_result_null(c);
        sqlite3_result_int(c, 1);
    };
    for (int count = 3; count <= 5; ++count) look("zov_has_perms", count, hasPermission);
    look("zov_host", 0, [](sqlite3_context* c, int, sqlite3_value**) {
        sqlite3_result_text(c, "localhost", -1, SQLITE_STATIC);
    });
    look("zov_app", 0, [](sqlite3_context* c, int, sqlite3_value**) {
        sqlite3_result_text(c, "zovrand", -1, SQLITE_STATIC);
    });
    look("zov_parsename", 2, [](sqlite3_context* c, int, sqlite3_value** v) {
        const QStringList parts = isNull(v[0]) ? QStringList() : splitName(textOf(v[0]));
        const int wanted = sqlite3_value_int(v[1]);
        if (wanted < 1 || wanted > parts.size() || parts.size() > 4) return sqlite3_result_null(c);
        giveText(c, parts[parts.size() - wanted]);
    });
}

}  // namespace zov::local
