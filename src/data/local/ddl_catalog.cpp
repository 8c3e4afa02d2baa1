#include "data/local/ddl_catalog.h"

#include "data/local/catalog_tables.h"
#include "data/local/definitions.h"
#include "data/local/query_cache.h"
#include "data/local/query_collating.h"
#include "data/local/server_store.h"

#include <QDateTime>

#include <limits>

namespace zov::local {

CatalogQuery::CatalogQuery(sqlite3* handle, const char* sql) : handle_(handle) {
    checkSqlite(handle, sqlite3_prepare_v2(handle, sql, -1, &statement_, nullptr));
}
CatalogQuery::~CatalogQuery() {
    sqlite3_finalize(statement_);
}

CatalogQuery& CatalogQuery::add(qint64 value) {
    sqlite3_bind_int64(statement_, ++bound_, value);
    return *this;
}
CatalogQuery& CatalogQuery::add(const QString& text) {
    if (text.isNull()) {
        sqlite3_bind_null(statement_, ++bound_);
    } else {
        const QByteArray utf8 = text.toUtf8();
        sqlite3_bind_text(statement_, ++bound_, utf8.constData(), int(utf8.size()),
                          SQLITE_TRANSIENT);
    }
    return *this;
}
CatalogQuery& CatalogQuery::add(std::optional<int> value) {
    if (value) return add(qint64(*value));
    sqlite3_bind_null(statement_, ++bound_);
    return *this;
}
bool CatalogQuery::step() {
    const int code = sqlite3_step(statement_);
    checkSqlite(handle_, code);
    return code == SQLITE_ROW;
}
void CatalogQuery::run() {
    while (step()) {
    }
}
void CatalogQuery::again() {
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
    bound_ = 0;
}
QString CatalogQuery::text(int column) const {
    if (isNull(column)) return {};
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement_, column)),
                          sqlite3_column_bytes(statement_, column));
    return text.isNull() ? QStringLiteral("") : text;
}
std::optional<int> CatalogQuery::optional(int column) const {
    if (isNull(column)) return std::nullopt;
    return number(column);
}

Catalog::Catalog(SessionState& session, Database& database, bool writing)
    : database_(database), session_(session), writing_(writing), outer_(session.current) {
    if (!writing_) return;
    session_.current = &database_;
    catalogChanged(database_);
}

Catalog::~Catalog() {
    if (!writing_) return;
    catalogChanged(database_);
    session_.current = outer_;
}

Catalog Catalog::forWriting(SessionState& session, const ObjectName& name) {
    if (!name.server.isEmpty())
        fail(117,
             QStringLiteral("The object name '%1' contains more than the maximum number of "
                            "prefixes. The maximum is 2.")
                 .arg(name.display()),
             name.line);
    Database& database =
        name.database.isEmpty() ? *session.current : session.store->database(name.database);
    session.store->willWrite(database);
    return Catalog(session, database, true);
}

bool Catalog::isVersion8() const {
    return session_.store->majorVersion() < 9;
}

QString Catalog::now() const {
    const QDateTime now = QDateTime::currentDateTime();
    const int ms = now.time().msec();
    // datetime counts in 1/300 s: the last digit is 0, 3 or 7.
    const int rounded = (ms * 3 + 5) / 10 * 10 / 3;
    const int shown = std::min(rounded % 10 == 6 ? rounded + 1 : rounded, 997);
    return now.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.")) +
           QString::number(shown).rightJustified(3, u'0');
}

const Collation& Catalog::names() const {
    return *QueryCache::of(database_).collation();
}

QString Catalog::readCollation(TokenCursor& cursor) const {
    const QString name = cursor.name();
    if (name.compare(QLatin1String("database_default"), Qt::CaseInsensitive) == 0) return {};
    const Collation* collation = Collation::named(name);
    tellUnknown(session_, *collation);
    return collation->name();
}

QString Catalog::storedTable(const QString& schema, const QString& table) const {
    return quoted(storageName(schema + u'.' + table, names()));
}
QString Catalog::storedColumn(const QString& column) const {
    return quoted(storageName(column, names()));
}

QString Catalog::fact(const char* name) const {
    CatalogQuery query(handle(), "SELECT value FROM \"zov$facts\" WHERE name=?");
    query.add(QString::fromLatin1(name));
    return query.step() ? query.text(0) : QString();
}
void Catalog::setFact(const char* name, const QString& value) {
    CatalogQuery(handle(), "INSERT OR REPLACE INTO \"zov$facts\"(name, value) VALUES(?, ?)")
        .add(QString::fromLatin1(name))
        .add(value)
        .run();
}

std::optional<int> Catalog::schemaId(const QString& name) const {
    CatalogQuery query(handle(), "SELECT schema_id FROM \"zov$schemas\" WHERE name=?");
    query.add(name);
    if (!query.step()) return std::nullopt;
    return query.number(0);
}
QString Catalog::schemaName(int id) const {
    CatalogQuery query(handle(), "SELECT name FROM \"zov$schemas\" WHERE schema_id=?");
    query.add(id);
    return query.step() ? query.text(0) : QString();
}
int Catalog::requireSchema(const QString& name) const {
    const QString wanted = !name.isEmpty()                    ? name
                           : session_.defaultSchema.isEmpty() ? QStringLiteral("dbo")
                                                              : session_.defaultSchema;
    const std::optional<int> id = schemaId(wanted);
    if (!id)
        fail(2760,
             QStringLiteral("The specified schema name \"%1\" either does not exist or you do not "
                            "have permission to use it.")
                 .arg(wanted));
    return *id;
}
std::optional<int> Catalog::principalId(const QString& name) const {
    CatalogQuery query(handle(), "SELECT uid FROM \"zov$users\" WHERE name=?");
    query.add(name);
    if (!query.step()) return std::nullopt;
    return query.number(0);
}
int Catalog::requirePrincipal(const QString& name) const {
    const std::optional<int> id = principalId(name);
    if (!id)
        fail(15151,
             QStringLiteral("Cannot find the user '%1', because it does not exist or you do not "
                            "have permission.")
                 .arg(name));
    return *id;
}

namespace {
constexpr const char* ObjectColumns =
    "SELECT o.id, o.name, o.schema_id, s.name, o.xtype, o.parent_obj, o.is_disabled, o.info"
    " FROM \"zov$objects\" o JOIN \"zov$schemas\" s ON s.schema_id=o.schema_id ";

ObjectFacts readObject(const CatalogQuery& query) {
    ObjectFacts facts;
    facts.id = query.number(0);
    facts.name = query.text(1);
    facts.schemaId = query.number(2);
    facts.schema = query.text(3);
    facts.xtype = query.text(4);
    facts.parent = query.number(5);
    facts.isDisabled = query.number(6) != 0;
    facts.info = query.text(7);
    return facts;
}
}  // namespace

std::optional<ObjectFacts> Catalog::find(const ObjectName& name) const {
    CatalogQuery query(handle(),
                       (QByteArray(ObjectColumns) + "WHERE s.name=? AND o.name=?").constData());
    const bool defaulted = name.schema.isEmpty();
    const QString first = !defaulted                         ? name.schema
                          : session_.defaultSchema.isEmpty() ? QStringLiteral("dbo")
                                                             : session_.defaultSchema;
    query.add(first).add(name.name);
    if (query.step()) return readObject(query);
    if (!defaulted || first == QLatin1String("dbo")) return std::nullopt;
    query.again();
    query.add(QStringLiteral("dbo")).add(name.name);
    if (query.step()) return readObject(query);
    return std::nullopt;
}
std::optional<ObjectFacts> Catalog::find(int id) const {
    CatalogQuery query(handle(), (QByteArray(ObjectColumns) + "WHERE o.id=?").constData());
    query.add(id);
    if (query.step()) return readObject(query);
    return std::nullopt;
}

ObjectFacts Catalog::requireTable(const ObjectName& name, const char* action) const {
    const std::optional<ObjectFacts> found = find(name);
    if (!found || !found->isTable()) {
        if (qstrcmp(action, "alter") == 0)
            fail(4902,
                 QStringLiteral("Cannot find the object \"%1\" because it does not exist or you do "
                                "not have permissions.")
                     .arg(name.display()),
                 name.line);
        if (qstrcmp(action, "index") == 0)
            fail(1088,
                 QStringLiteral("Cannot find the object \"%1\" because it does not exist or you do "
                                "not have permissions.")
                     .arg(name.display()),
                 name.line);
        fail(4701,
             QStringLiteral("Cannot find the object \"%1\" because it does not exist or you do not "
                            "have permissions.")
                 .arg(name.display()),
             name.line);
    }
    return *found;
}

void Catalog::requireFreeName(const QString& name, int schemaId) const {
    CatalogQuery query(handle(), "SELECT 1 FROM \"zov$objects\" WHERE schema_id=? AND name=?");
    query.add(schemaId).add(name);
    if (query.step())
        fail(2714,
             QStringLiteral("There is already an object named '%1' in the database.").arg(name));
}

int Catalog::addObject(const QString& name, int schemaId, const QString& xtype, int parent,
                       const QString& info, bool systemNamed) {
    if (name.isEmpty()) fail(1038, QStringLiteral("An object or column name is missing or empty."));
    if (name.size() > 128)
        fail(103, QStringLiteral(
                      "The identifier that starts with '%1' is too long. Maximum length is 128.")
                      .arg(name.left(128)));
    requireFreeName(name, schemaId);
    qint64 id = fact("next_object_id").toLongLong();
    CatalogQuery taken(handle(), "SELECT 1 FROM \"zov$objects\" WHERE id=?");
    const auto following = [](qint64 from) {
        const qint64 next = from + ObjectIdStep;
        return next > std::numeric_limits<qint32>::max() ? next - std::numeric_limits<qint32>::max()
                                                         : next;
    };
    if (id <= 0) id = FirstObjectId;
    for (;; id = following(id)) {
        taken.again();
        taken.add(id);
        if (!taken.step()) break;
    }
    setFact("next_object_id", QString::number(following(id)));
    const QString time = now();
    CatalogQuery(
        handle(),
        "INSERT INTO \"zov$objects\"(id, name, schema_id, xtype, parent_obj, crdate, refdate,"
        " modify_date, is_system_named, info) VALUES(?,?,?,?,?,?,?,?,?,?)")
        .add(id)
        .add(name)
        .add(schemaId)
        .add(xtype)
        .add(parent)
        .add(time)
        .add(time)
        .add(time)
        .add(systemNamed)
        .add(info)
        .run();
    return int(id);
}

void Catalog::touchObject(int id) {
    CatalogQuery(handle(), "UPDATE \"zov$objects\" SET modify_date=? WHERE id=?")
        .add(now())
        .add(id)
        .run();
}

void Catalog::removeObject(int id) {
    for (const char* sql :
         {"DELETE FROM \"zov$comments\" WHERE id=?",
          "DELETE FROM \"zov$permissions\" WHERE class=1 AND major_id=?",
          "DELETE FROM \"zov$properties\" WHERE class=1 AND major_id=?",
          "DELETE FROM \"zov$references\" WHERE constid=?",
          "DELETE FROM \"zov$columns\" WHERE id=?", "DELETE FROM \"zov$objects\" WHERE id=?",
          "DELETE FROM \"zov$statistics\" WHERE id=?", "DELETE FROM \"zov$statcolumns\" WHERE id=?",
          "DELETE FROM \"zov$details\" WHERE class IN (1, 7) AND major_id=?"})
        CatalogQuery(handle(), sql).add(id).run();
}

QString Catalog::detail(int objectClass, int major, int minor, const char* name) const {
    CatalogQuery query(handle(),
                       "SELECT value FROM \"zov$details\" WHERE class=? AND major_id=? AND"
                       " minor_id=? AND name=?");
    query.add(objectClass).add(major).add(minor).add(QString::fromLatin1(name));
    return query.step() ? query.text(0) : QString();
}

void Catalog::setDetail(int objectClass, int major, int minor, const char* name,
                        const QString& value) {
    CatalogQuery(handle(),
                 value.isNull()
                     ? "DELETE FROM \"zov$details\" WHERE class=? AND major_id=? AND minor_id=?"
                       " AND name=?"
                     : "INSERT OR REPLACE INTO \"zov$details\"(class, major_id, minor_id, name,"
                       " value) VALUES(?,?,?,?,?)")
        .add(objectClass)
        .add(major)
        .add(minor)
        .add(QString::fromLatin1(name))
        .addIf(!value.isNull(), value)
        .run();
}

void Catalog::removeDetails(int objectClass, int major, std::optional<int> minor) {
    CatalogQuery(handle(),
                 "DELETE FROM \"zov$details\" WHERE class=?1 AND major_id=?2 AND (?3 IS NULL OR"
                 " minor_id=?3)")
        .add(objectClass)
        .add(major)
        .add(minor)
        .run();
}

std::vector<ObjectFacts> Catalog::children(int id) const {
    CatalogQuery query(
        handle(),
        (QByteArray(ObjectColumns) + "WHERE o.parent_obj=? ORDER BY o.rowid").constData());
    query.add(id);
    std::vector<ObjectFacts> result;
    while (query.step()) result.push_back(readObject(query));
    return result;
}

std::vector<ColumnFacts> Catalog::columns(int id) const {
    CatalogQuery query(
        handle(),
        "SELECT colid, name, colorder, xtype, xusertype, length, prec, scale, isnullable,"
        " cdefault, identity_seed, identity_incr, identity_last, computed, is_persisted,"
        " is_rowguid, collation, crule FROM \"zov$columns\" WHERE id=? ORDER BY colorder");
    query.add(id);
    std::vector<ColumnFacts> result;
    while (query.step()) {
        ColumnFacts column;
        column.colid = query.number(0);
        column.name = query.text(1);
        column.colorder = query.number(2);
        column.type.xtype = query.number(3);
        column.type.xusertype = query.number(4);
        column.type.length = query.number(5);
        column.type.prec = query.optional(6);
        column.type.scale = query.optional(7);
        column.nullable = query.number(8) != 0;
        column.cdefault = query.number(9);
        column.seed = query.text(10);
        column.increment = query.text(11);
        column.last = query.text(12);
        column.computed = query.text(13);
        column.persisted = query.number(14) != 0;
        column.rowguid = query.number(15) != 0;
        column.collation = query.text(16);
        column.crule = query.number(17);
        result.push_back(std::move(column));
    }
    return result;
}

void Catalog::addColumn(int id, const ColumnFacts& column) {
    CatalogQuery(
        handle(),
        "INSERT INTO \"zov$columns\"(id, colid, name, colorder, xtype, xusertype, length, prec,"
        " scale, isnullable, cdefault, identity_seed, identity_incr, identity_last, computed,"
        " is_persisted, is_rowguid, collation, crule) "
        "VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)")
        .add(id)
        .add(column.colid)
        .add(column.name)
        .add(column.colorder)
        .add(column.type.xtype)
        .add(column.type.xusertype)
        .add(column.type.length)
        .add(column.type.prec)
        .add(column.type.scale)
        .add(column.nullable)
        .add(column.cdefault)
        .add(column.seed)
        .add(column.increment)
        .add(column.last)
        .add(column.computed)
        .add(column.persisted)
        .add(column.rowguid)
        .add(column.collation)
        .add(column.crule)
        .run();
    for (const auto& [name, value] : column.details) setDetail(1, id, column.colid, name, value);
}

void Catalog::removeColumns(int id) {
    CatalogQuery(handle(), "DELETE FROM \"zov$columns\" WHERE id=?").add(id).run();
}

std::vector<IndexFacts> Catalog::indexes(int id) const {
    CatalogQuery query(handle(),
                       "SELECT indid, name, is_unique, constraint_id, is_disabled, filter, options"
                       " FROM \"zov$indexes\" WHERE id=? AND indid>0 ORDER BY indid");
    query.add(id);
    CatalogQuery keys(
        handle(),
        "SELECT colid, is_desc, is_included FROM \"zov$indexkeys\" WHERE id=? AND indid=?"
        " ORDER BY keyno");
    std::vector<IndexFacts> result;
    while (query.step()) {
        IndexFacts index;
        index.indid = query.number(0);
        index.name = query.text(1);
        index.unique = query.number(2) != 0;
        index.constraintId = query.number(3);
        index.disabled = query.number(4) != 0;
        index.filter = query.text(5);
        index.options = query.text(6);
        keys.again();
        keys.add(id).add(index.indid);
        while (keys.step())
            index.keys.push_back({keys.number(0), keys.number(1) != 0, keys.number(2) != 0});
        result.push_back(std::move(index));
    }
    return result;
}

void Catalog::addIndex(int id, const IndexFacts& index) {
    if (index.indid == 1)  // a clustered index takes the heap's place
        CatalogQuery(handle(), "DELETE FROM \"zov$indexes\" WHERE id=? AND indid=0").add(id).run();
    CatalogQuery(
        handle(),
        "INSERT INTO \"zov$indexes\"(id, indid, name, is_unique, constraint_id, is_disabled,"
        " filter, options) VALUES(?,?,?,?,?,?,?,?)")
        .add(id)
        .add(index.indid)
        .add(index.name)
        .add(index.unique)
        .add(index.constraintId)
        .add(index.disabled)
        .add(index.filter)
        .add(index.options)
        .run();
    CatalogQuery key(handle(),
                     "INSERT INTO \"zov$indexkeys\"(id, indid, keyno, colid, is_desc, is_included)"
                     " VALUES(?,?,?,?,?,?)");
    int number = 0;
    for (const IndexKey& part : index.keys) {
        key.again();
        key.add(id)
            .add(index.indid)
            .add(++number)
            .add(part.colid)
            .add(part.descending)
            .add(part.included);
        key.run();
    }
}

void Catalog::removeIndex(int id, int indid) {
    CatalogQuery(handle(), "DELETE FROM \"zov$indexkeys\" WHERE id=? AND indid=?")
        .add(id)
        .add(indid)
        .run();
    CatalogQuery(handle(), "DELETE FROM \"zov$indexes\" WHERE id=? AND indid=?")
        .add(id)
        .add(indid)
        .run();
    if (indid == 1)
        CatalogQuery(handle(),
                     "INSERT OR IGNORE INTO \"zov$indexes\"(id, indid, name) VALUES(?, 0, NULL)")
            .add(id)
            .run();
}

int Catalog::nextIndexId(int id, bool clustered) const {
    if (clustered) return 1;
    CatalogQuery query(handle(),
                       "SELECT indid FROM \"zov$indexes\" WHERE id=?1 AND indid>1 UNION SELECT "
                       "stats_id FROM \"zov$statistics\" WHERE id=?1 ORDER BY 1");
    query.add(id);
    int next = 2;
    while (query.step() && query.number(0) == next) ++next;
    return next;
}

void Catalog::setText(int id, const QString& text, bool encrypted) {
    CatalogQuery(handle(), "DELETE FROM \"zov$comments\" WHERE id=?").add(id).run();
    appendText(id, text, encrypted);
}

void Catalog::appendText(int id, const QString& text, bool encrypted) {
    constexpr qsizetype RowLength = 4000;
    CatalogQuery last(handle(), "SELECT coalesce(max(colid), 0) FROM \"zov$comments\" WHERE id=?");
    last.add(id);
    int colid = last.step() ? last.number(0) : 0;
    CatalogQuery insert(handle(),
                        "INSERT INTO \"zov$comments\"(id, colid, text, encrypted) VALUES(?,?,?,?)");
    qsizetype at = 0;
    do {
        qsizetype length = std::min(RowLength, text.size() - at);
        // UTF-8 can't hold half of a character outside the basic plane.
        if (at + length < text.size() && text[at + length - 1].isHighSurrogate()) --length;
        insert.again();
        insert.add(id).add(++colid);
        insert.add(encrypted       ? QString()
                   : text.isNull() ? QStringLiteral("")
                                   : text.mid(at, length));
        insert.add(encrypted);
        insert.run();
        at += length;
    } while (at < text.size() && !encrypted);
}

QString Catalog::text(int id) const {
    CatalogQuery query(handle(), "SELECT text FROM \"zov$comments\" WHERE id=? ORDER BY colid");
    query.add(id);
    QString text;
    while (query.step()) text += query.text(0);
    return text;
}

QString Catalog::generatedName(const char* kind, const QString& schema, const QString& table,
                               const QString& column) const {
    const bool key = qstrcmp(kind, "PK") == 0 || qstrcmp(kind, "UQ") == 0;
    const int digits = key && !isVersion8() ? 16 : 8;
    const QString shortTable = table.left(digits == 16 ? 8 : 9);
    QString name =
        QString::fromLatin1(kind) + QStringLiteral("__") + shortTable + QStringLiteral("__");
    // Table and column share fourteen characters.
    if (!key && !column.isEmpty())
        name += column.left(14 - shortTable.size()) + QStringLiteral("__");
    const std::optional<int> id = schemaId(schema);
    for (int attempt = 0;; ++attempt) {
        quint64 hash = 14695981039346656037ULL;
        const QString source =
            QStringList{QString::fromLatin1(kind), schema, table, column, QString::number(attempt)}
                .join(QChar(0x1f))
                .toLower();
        for (const char byte : source.toUtf8()) hash = (hash ^ quint8(byte)) * 1099511628211ULL;
        if (digits == 8) hash = (hash >> 32) ^ (hash & 0xffffffff);
        const QString candidate =
            name + QString::number(hash, 16).toUpper().rightJustified(digits, u'0');
        CatalogQuery taken(handle(), "SELECT 1 FROM \"zov$objects\" WHERE schema_id=? AND name=?");
        taken.add(id.value_or(DboSchemaId)).add(candidate);
        if (!taken.step()) return candidate;
    }
}

QString quoted(const QString& name) {
    return u'"' + QString(name).replace(u'"', QLatin1String("\"\"")) + u'"';
}

}  // namespace zov::local
