#include "data/local/query_cache.h"

#include "data/local/definitions.h"
#include "data/local/nesting.h"
#include "data/local/server_store.h"
#include "data/local/sorting.h"

#include "data/local/query_values.h"

namespace zov::local {
namespace {

constexpr qsizetype MaxSelects = 400;
constexpr qsizetype MaxInserts = 200;

}  // namespace

int QueryTable::columnIndex(const QString& column) const {
    for (size_t i = 0; i < columns.size(); ++i)
        if (names->equal(columns[i].name, column)) return int(i);
    return -1;
}

PreparedSelect::~PreparedSelect() {
    sqlite3* handle = statement ? sqlite3_db_handle(statement) : nullptr;
    sqlite3_finalize(statement);
    for (const QString& name : attached)
        sqlite3_exec(handle, ("DETACH " + quotedName(name).toUtf8()).constData(), nullptr, nullptr,
                     nullptr);
}

PreparedInsert::~PreparedInsert() {
    sqlite3_finalize(statement);
}

QueryCache::~QueryCache() {
    finalizeAll();
}

QueryCache& QueryCache::of(Database& database) {
    if (!database.queries) database.queries = std::make_shared<QueryCache>(database);
    return *database.queries;
}

void QueryCache::finalizeAll() {
    selects.clear();
    selectCount = 0;
    inserts.clear();
    tables.clear();
    for (const auto& [sql, statement] : lookUps_) sqlite3_finalize(statement);
    lookUps_.clear();
    dataVersion_ = -1;
    collation_ = storedNames_ = nullptr;
}

const Collation* QueryCache::collation() {
    if (!collation_) {
        LookUp fact(*this, "SELECT value FROM \"zov$facts\" WHERE name = 'collation'");
        collation_ = Collation::named(fact.next() ? fact.text(0) : QString());
    }
    return collation_;
}

const Collation* QueryCache::storedNames() {
    if (!storedNames_) storedNames_ = storedCollation(handle, "zov$objects", "name");
    return storedNames_;
}

void QueryCache::forgetCatalogue() {
    collation_ = storedNames_ = nullptr;
    tables.clear();
    inserts.clear();
    for (auto it = selects.begin(); it != selects.end();) {
        auto& list = it.value();
        const auto gone = std::remove_if(list.begin(), list.end(),
                                         [](const auto& select) { return select->usesTables; });
        selectCount -= list.end() - gone;
        list.erase(gone, list.end());
        if (list.empty())
            it = selects.erase(it);
        else
            ++it;
    }
}

void QueryCache::refresh() {
    LookUp version(*this, "PRAGMA data_version");
    const qint64 now = version.next() ? version.integer(0) : -1;
    if (now != dataVersion_) {
        forgetCatalogue();
        dataVersion_ = now;
    }
    if (selectCount > MaxSelects) {
        selects.clear();
        selectCount = 0;
    }
    if (inserts.size() > MaxInserts) inserts.clear();
}

sqlite3_stmt* QueryCache::lookUp(const char* sql) {
    sqlite3_stmt*& statement = lookUps_[sql];
    if (!statement) statement = prepareStatement(handle, sql, true);
    return statement;
}

std::shared_ptr<const QueryTable> QueryCache::table(const QString& schema, const QString& name) {
    const Collation* names = collation();
    const QString key =
        (schema.isEmpty() ? QStringLiteral("dbo") : names->key(schema)) + u'.' + names->key(name);
    const auto known = tables.constFind(key);
    if (known != tables.constEnd()) return known.value();
    qint64 id = 0;
    {
        LookUp find(*this,
                    "SELECT o.id FROM \"zov$objects\" o JOIN \"zov$schemas\" s ON s.schema_id = "
                    "o.schema_id "
                    "WHERE o.name = ?1 AND s.name = ?2");
        find.bind(name).bind(schema.isEmpty() ? QStringLiteral("dbo") : schema);
        if (find.next()) id = find.integer(0);
    }
    std::shared_ptr<const QueryTable> result = id ? tableById(int(id)) : nullptr;
    tables.insert(key, result);
    return result;
}

std::shared_ptr<const QueryTable> QueryCache::tableById(int id) {
    auto table = std::make_shared<QueryTable>();
    table->id = id;
    table->names = collation();
    {
        LookUp find(*this,
                    "SELECT s.name, o.name, o.xtype, o.info FROM \"zov$objects\" o "
                    "JOIN \"zov$schemas\" s ON s.schema_id = o.schema_id WHERE o.id = ?1");
        find.bind(qint64(id));
        if (!find.next()) return nullptr;
        table->schema = find.text(0);
        table->name = find.text(1);
        table->xtype = find.text(2).trimmed();
        if (table->xtype == u"SN") table->text = find.text(3);
    }
    if (table->xtype == u"V") {
        LookUp source(*this, "SELECT text FROM \"zov$comments\" WHERE id = ?1 ORDER BY colid");
        source.bind(qint64(id));
        while (source.next()) table->text += source.text(0);
    }
    if (table->xtype == u"U") {
        const QString stored = storageName(table->schema + u'.' + table->name, *table->names);
        const QByteArray storedUtf8 = stored.toUtf8();
        table->sqlName = quotedName(stored);
        LookUp columns(
            *this,
            "SELECT c.name, c.colid, c.xtype, c.length, c.prec, c.scale, c.isnullable, "
            "c.identity_seed, "
            "c.identity_incr, c.computed, t.name, "
            "(SELECT group_concat(m.text, '') FROM \"zov$comments\" m WHERE m.id = "
            "c.cdefault AND c.cdefault > 0), "
            "c.xusertype, c.collation FROM \"zov$columns\" c LEFT JOIN \"zov$types\" t ON "
            "t.xusertype = c.xusertype "
            "WHERE c.id = ?1 ORDER BY c.colorder");
        columns.bind(qint64(id));
        while (columns.next()) {
            QueryColumn column;
            column.name = columns.text(0);
            column.colid = int(columns.integer(1));
            column.info = typeFromCatalogue(int(columns.integer(2)), int(columns.integer(3)),
                                            int(columns.integer(4)), int(columns.integer(5)),
                                            columns.integer(6) != 0);
            column.info.name = column.name;
            const QString inFile = storageName(column.name, *table->names);
            column.sqlName = quotedName(inFile);
            if (isTextType(column.info.type)) {
                column.collation = Collation::named(columns.text(13));
                column.stored =
                    storedCollation(handle, storedUtf8.constData(), inFile.toUtf8().constData());
            }
            if (!columns.isNull(7)) {
                column.isIdentity = true;
                column.seed = columns.integer(7);
                column.increment = columns.integer(8);
            }
            if (!columns.isNull(9)) column.computed = columns.text(9);
            column.typeName = columns.text(10);
            // A default that was made by itself and bound keeps its whole CREATE DEFAULT.
            if (!columns.isNull(11)) column.defaultText = defaultExpression(columns.text(11));
            table->columns.push_back(std::move(column));
        }
        for (const char* rowid : {"rowid", "_rowid_", "oid"}) {
            if (table->columnIndex(QLatin1String(rowid)) < 0) {
                table->rowid = QLatin1String(rowid);
                break;
            }
        }
    }
    return table;
}

void catalogChanged(Database& database) {
    if (database.queries) database.queries->forgetCatalogue();
}

void releaseQueries(Database& database) {
    if (database.queries) database.queries->finalizeAll();
}

QString storageName(const QString& name, const Collation& names) {
    if (!names.tellsCase()) return name;
    QString marked;
    for (const QChar c : name) {
        const bool capital = c >= u'A' && c <= u'Z';
        if (capital || c == u'^') marked += u'^';
        marked += capital ? QChar(char16_t(c.unicode() + 32)) : c;
    }
    return marked;
}

QString quotedName(const QString& name) {
    QString quoted = name;
    quoted.replace(u'"', QStringLiteral("\"\""));
    return u'"' + quoted + u'"';
}

// Parts without brackets run to the next dot, blanks included: "dbo.my table" is a table's name.
QStringList splitName(const QString& name) {
    QStringList parts;
    qsizetype at = 0;
    for (;;) {
        QString part;
        while (at < name.size() && name[at].isSpace()) ++at;
        const QChar open = at < name.size() ? name[at] : QChar();
        if (open == u'[' || open == u'"') {
            const QChar close = open == u'[' ? u']' : u'"';
            for (++at;; ++at) {
                if (at >= name.size()) return {};
                if (name[at] == close) {
                    if (at + 1 >= name.size() || name[at + 1] != close) break;
                    ++at;
                }
                part += name[at];
            }
            ++at;
            while (at < name.size() && name[at].isSpace()) ++at;
            if (at < name.size() && name[at] != u'.') return {};
        } else {
            while (at < name.size() && name[at] != u'.') part += name[at++];
            while (part.endsWith(u' ')) part.chop(1);
        }
        parts.append(part);
        if (at >= name.size()) break;
        ++at;
    }
    return parts.last().isEmpty() ? QStringList() : parts;
}

sqlite3_stmt* prepareStatement(sqlite3* handle, const QByteArray& sql, bool keep) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v3(handle, sql.constData(), int(sql.size() + 1),
                                        keep ? SQLITE_PREPARE_PERSISTENT : 0, &statement, nullptr);
    if (code != SQLITE_OK) throwQueryError(handle, code, nullptr);
    return statement;
}

void throwQueryError(sqlite3* handle, int code, const ExecutionControl* control) {
    const QString text = QString::fromUtf8(sqlite3_errmsg(handle));
    if ((code & 0xFF) == SQLITE_INTERRUPT) {
        if (control && control->cancelled)
            throw DbError(ado_error::Cancelled, QStringLiteral("Operation was canceled."),
                          QStringLiteral("HY008"));
        throw DbError(ado_error::Timeout, QStringLiteral("Query timeout expired"),
                      QStringLiteral("HYT00"));
    }
    // Our functions raise "ZOV<number>:<text>".
    if (text.startsWith(QLatin1String("ZOV"))) {
        const qsizetype colon = text.indexOf(u':');
        const qint32 native = text.mid(3, colon - 3).toInt();
        // The file or the memory failed while a function looked something up.
        if (native == 823 || native == 824 || native == 701)
            throw DbError(ado_error::Unspecified, text.mid(colon + 1), QStringLiteral("42000"),
                          native);
        const qint32 number = native == 8134 ? ado_error::SyntaxError : ado_number::CannotConvert;
        throw DbError(number, text.mid(colon + 1),
                      native == 8134 ? QStringLiteral("22012") : QStringLiteral("22018"), native);
    }
    if ((code & 0xFF) == SQLITE_BUSY || (code & 0xFF) == SQLITE_LOCKED)
        throw DbError(
            ado_error::Unspecified,
            QStringLiteral(
                "The database is locked by another session. Wait until it is done, and try again."),
            QStringLiteral("HYT00"), 1222);
    switch (code & 0xFF) {
        case SQLITE_FULL:
        case SQLITE_READONLY:
        case SQLITE_IOERR:
        case SQLITE_CANTOPEN:
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
        case SQLITE_NOMEM:
            checkSqlite(handle, code);  // told in plain words
            break;
        default:
            break;
    }
    // What was too deep for SQLite in spite of all.
    if (isTooDeepForSqlite(text)) failTooDeep(0);
    if (text == u"integer overflow")
        throw DbError(
            ado_number::Overflow,
            QStringLiteral("Arithmetic overflow error converting expression to data type int."),
            QStringLiteral("22003"), 8115);
    throw DbError(ado_error::SyntaxError, text, QStringLiteral("42000"));
}

}  // namespace zov::local
