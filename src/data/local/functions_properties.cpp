// fn_listextendedproperty: the extended properties of what its levels name, as rows of JSON.
#include "data/local/functions_support.h"
#include "data/local/query_cache.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace zov::local {
namespace {

/// What an object is called at a level, and which objects that means.
struct LevelKind {
    const char* level;
    const char* types;  ///< xtypes with blanks around
};

constexpr LevelKind ObjectKinds[] = {
    {"TABLE", " U "},           {"VIEW", " V "},     {"PROCEDURE", " P "},
    {"FUNCTION", " FN IF TF "}, {"SYNONYM", " SN "}, {"SEQUENCE", " SO "},
    {"DEFAULT", " D "},         {"RULE", " R "},     {"TABLE_TYPE", " TT "}};
constexpr LevelKind ChildKinds[] = {{"CONSTRAINT", " PK UQ F C D "}, {"TRIGGER", " TR "}};

// Each query gives name of the object, name and value of the property; ?1 is the property's name,
// ?2 to ?4 are the names of the levels (null: all), ?5 the kinds of level 1, ?6 those of level 2.
#define OF_PROPERTY " AND (?1 IS NULL OR p.name = ?1)"
#define IN_SCHEMA \
    " JOIN \"zov$schemas\" s ON s.schema_id = o.schema_id AND (?2 IS NULL OR s.name = ?2)"
#define OF_OBJECT " AND instr(?5, ' ' || o.xtype || ' ') > 0 AND (?3 IS NULL OR o.name = ?3)"

constexpr const char* OfDatabase =
    "SELECT NULL, p.name, p.value FROM \"zov$properties\" p WHERE p.class = 0" OF_PROPERTY;
constexpr const char* OfSchemas =
    "SELECT s.name, p.name, p.value FROM \"zov$properties\" p JOIN \"zov$schemas\" s ON "
    "s.schema_id = "
    "p.major_id WHERE p.class = 3 AND (?2 IS NULL OR s.name = ?2)" OF_PROPERTY;
constexpr const char* OfUsers =
    "SELECT u.name, p.name, p.value FROM \"zov$properties\" p JOIN \"zov$users\" u ON u.uid = "
    "p.major_id WHERE p.class = 4 AND (?2 IS NULL OR u.name = ?2)" OF_PROPERTY;
constexpr const char* OfTypes =
    "SELECT o.name, p.name, p.value FROM \"zov$properties\" p JOIN \"zov$types\" o ON o.xusertype "
    "= "
    "p.major_id" IN_SCHEMA " WHERE p.class = 6 AND (?3 IS NULL OR o.name = ?3)" OF_PROPERTY;
constexpr const char* OfObjects =
    "SELECT o.name, p.name, p.value FROM \"zov$properties\" p JOIN \"zov$objects\" o ON o.id = "
    "p.major_id" IN_SCHEMA " WHERE p.class = 1 AND p.minor_id = 0" OF_OBJECT OF_PROPERTY;
constexpr const char* OfColumns =
    "SELECT c.name, p.name, p.value FROM \"zov$properties\" p JOIN \"zov$objects\" o ON o.id = "
    "p.major_id" IN_SCHEMA
    " JOIN \"zov$columns\" c ON c.id = o.id AND c.colid = p.minor_id WHERE p.class = 1 AND (?4 IS "
    "NULL "
    "OR c.name = ?4)" OF_OBJECT OF_PROPERTY;
constexpr const char* OfIndexes =
    "SELECT i.name, p.name, p.value FROM \"zov$properties\" p JOIN \"zov$objects\" o ON o.id = "
    "p.major_id" IN_SCHEMA
    " JOIN \"zov$indexes\" i ON i.id = o.id AND i.indid = p.minor_id WHERE p.class = 7 AND (?4 IS "
    "NULL "
    "OR i.name = ?4)" OF_OBJECT OF_PROPERTY;
constexpr const char* OfChildren =
    "SELECT k.name, p.name, p.value FROM \"zov$properties\" p JOIN \"zov$objects\" k ON k.id = "
    "p.major_id JOIN \"zov$objects\" o ON o.id = k.parent_obj" IN_SCHEMA
    " WHERE p.class = 1 AND p.minor_id = 0 AND instr(?6, ' ' || k.xtype || ' ') > 0 AND (?4 IS "
    "NULL OR "
    "k.name = ?4)" OF_OBJECT OF_PROPERTY;

#undef OF_PROPERTY
#undef IN_SCHEMA
#undef OF_OBJECT

template <size_t Count>
QString typesOf(const LevelKind (&kinds)[Count], const QString& level) {
    for (const LevelKind& kind : kinds)
        if (level == QLatin1StringView(kind.level)) return QLatin1StringView(kind.types);
    return {};
}

/// The query for the deepest level that is given; null for levels that nothing is kept of.
const char* queryFor(const QString& level0, const QString& level1, const QString& level2,
                     const QString& types1, const QString& types2) {
    if (level0.isEmpty()) return OfDatabase;
    const bool schema = level0 == QLatin1StringView("SCHEMA");
    if (level1.isEmpty())
        return schema ? OfSchemas : level0 == QLatin1StringView("USER") ? OfUsers : nullptr;
    if (level1 == QLatin1StringView("TYPE")) return OfTypes;
    if (types1.isEmpty()) return nullptr;
    if (level2.isEmpty()) return OfObjects;
    if (level2 == QLatin1StringView("COLUMN")) return OfColumns;
    if (level2 == QLatin1StringView("INDEX")) return OfIndexes;
    return types2.isEmpty() ? nullptr : OfChildren;
}

void listProperties(sqlite3_context* context, int, sqlite3_value** v) {
    const auto level = [&](int i) { return textOf(v[i]).trimmed().toUpper(); };
    const QString level0 = level(1), level1 = level(3), level2 = level(5);
    const QString types1 = typesOf(ObjectKinds, level1), types2 = typesOf(ChildKinds, level2);
    const QString deepest = !level2.isEmpty() ? level2 : !level1.isEmpty() ? level1 : level0;
    const char* sql = queryFor(level0, level1, level2, types1, types2);
    if (!sql)
        return giveError(
            context, 40000,
            QStringLiteral("The embedded server doesn't list the extended properties of "
                           "%1.")
                .arg(deepest));
    LookUp find(QueryCache::of(*static_cast<Database*>(dataOf(context))), sql);
    for (const int name : {0, 2, 4, 6}) {
        if (isNull(v[name]))
            find.bindNull();
        else
            find.bind(textOf(v[name]));
    }
    if (sqlite3_bind_parameter_count(find.statement()) >= 5) find.bind(types1);
    if (sqlite3_bind_parameter_count(find.statement()) >= 6) find.bind(types2);
    QJsonArray rows;
    while (find.next()) {
        QJsonObject row{{QStringLiteral("name"), find.text(1)}};
        if (!deepest.isEmpty()) row.insert(QStringLiteral("objtype"), deepest);
        if (!find.isNull(0)) row.insert(QStringLiteral("objname"), find.text(0));
        if (!find.isNull(2)) row.insert(QStringLiteral("value"), find.text(2));
        rows.append(row);
    }
    giveText(context, QJsonDocument(rows).toJson(QJsonDocument::Compact));
}

}  // namespace

void installPropertyFunctions(sqlite3* handle, Database& database) {
    define(handle, "zov_properties", 7, listProperties, &database, false);
}

}  // namespace zov::local
