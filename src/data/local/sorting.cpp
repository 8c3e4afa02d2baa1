#include "data/local/sorting.h"

#include "data/local/query_cache.h"
#include "data/local/sqlite_files.h"

#include <QRegularExpression>

#include <sqlite3.h>

namespace zov::local {
namespace {

QString textOf(sqlite3_stmt* statement, int column) {
    return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, column)),
                             sqlite3_column_bytes(statement, column));
}

/// All rows of a select of texts.
std::vector<QStringList> readRows(sqlite3* handle, const char* sql) {
    sqlite3_stmt* statement = nullptr;
    checkSqlite(handle, sqlite3_prepare_v2(handle, sql, -1, &statement, nullptr));
    std::vector<QStringList> rows;
    int code = SQLITE_OK;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
        QStringList& row = rows.emplace_back();
        for (int i = 0; i < sqlite3_column_count(statement); ++i) row << textOf(statement, i);
    }
    sqlite3_finalize(statement);
    checkSqlite(handle, code);
    return rows;
}

QString quotedIdentifier(QString name) {
    return u'"' + name.replace(u'"', QLatin1String("\"\"")) + u'"';
}

bool reindex(sqlite3* handle, const QString& what) {
    const QByteArray sql = ("REINDEX " + quotedIdentifier(what)).toUtf8();
    const int code = sqlite3_exec(handle, sql.constData(), nullptr, nullptr, nullptr);
    if ((code & 0xff) == SQLITE_CONSTRAINT) return false;
    checkSqlite(handle, code);
    return true;
}

/// The one table that is kept in the order of its names itself. False when two became one.
bool refillProperties(sqlite3* handle) {
    const int code =
        sqlite3_exec(handle,
                     "CREATE TEMP TABLE \"zov$refill\" AS SELECT * FROM main.\"zov$properties\";"
                     "DELETE FROM main.\"zov$properties\";"
                     "INSERT INTO main.\"zov$properties\" SELECT * FROM temp.\"zov$refill\"",
                     nullptr, nullptr, nullptr);
    const bool clash = (code & 0xff) == SQLITE_CONSTRAINT;
    if (!clash) checkSqlite(handle, code);
    execSql(handle, "DROP TABLE IF EXISTS temp.\"zov$refill\"");
    return !clash;
}

[[noreturn]] void failTwoNames(const QString& database, const Collation& collation) {
    throw nativeError(
        5072, QStringLiteral("ALTER DATABASE failed. The default collation of database '%1' "
                             "cannot be set to %2: it would make one name of two.")
                  .arg(database, collation.name()));
}

/// The SQLite names of the tables and columns, which mark capitals where the collation tells cases
/// apart. False when two columns would become one.
bool renameStorage(sqlite3* handle, const Collation& from, const Collation& to) {
    if (from.tellsCase() == to.tellsCase()) return true;
    const auto rename = [&](const QString& what, const QString& before, const QString& after) {
        if (before == after) return true;
        const QByteArray sql =
            (QStringLiteral("ALTER TABLE ") + what + quotedIdentifier(after)).toUtf8();
        const int code = sqlite3_exec(handle, sql.constData(), nullptr, nullptr, nullptr);
        if ((code & 0xff) != SQLITE_ERROR) checkSqlite(handle, code);
        return code == SQLITE_OK;
    };
    for (const QStringList& table :
         readRows(handle,
                  "SELECT o.id, s.name || '.' || o.name FROM \"zov$objects\" o JOIN "
                  "\"zov$schemas\" s ON s.schema_id=o.schema_id WHERE o.xtype='U'")) {
        const QString before = storageName(table[1], from), after = storageName(table[1], to);
        if (!rename(quotedIdentifier(before) + QStringLiteral(" RENAME TO "), before, after))
            return false;
        for (const QStringList& column :
             readRows(handle, ("SELECT name FROM \"zov$columns\" WHERE id=" + table[0].toLatin1())
                                  .constData())) {
            const QString old = storageName(column[0], from);
            if (!rename(quotedIdentifier(after) + QStringLiteral(" RENAME COLUMN ") +
                            quotedIdentifier(old) + QStringLiteral(" TO "),
                        old, storageName(column[0], to)))
                return false;
        }
    }
    return true;
}

/// Files of earlier versions say what their database's collation is and don't go by it.
void followDatabaseCollation(sqlite3* handle) {
    const std::vector<QStringList> facts =
        readRows(handle, "SELECT value FROM \"zov$facts\" WHERE name='collation'");
    const Collation* wanted = Collation::named(facts.empty() ? QString() : facts[0][0]);
    if (storedCollation(handle, "zov$objects", "name") == wanted) return;
    execSql(handle, "SAVEPOINT zov_names");
    try {
        setNameCollation(handle, *wanted, QString());
        execSql(handle, "RELEASE zov_names");
    } catch (const DbError& error) {
        // Names that would become one stay as they are.
        if (error.native != 5072) throw;
        execSql(handle, "ROLLBACK TO zov_names");
        execSql(handle, "RELEASE zov_names");
    }
}

[[noreturn]] void failOneName() {
    throw nativeError(1505,
                      QStringLiteral("Two names of this database are one name by the sorting rules "
                                     "of this machine; the database was made under other rules. "
                                     "Rename one of them where it was made."),
                      ado_error::IntegrityViolation);
}

/// Runs `change` in a transaction of its own.
template <typename Change>
void inTransaction(sqlite3* handle, Change change) {
    execSql(handle, "BEGIN IMMEDIATE");
    try {
        change();
        execSql(handle, "COMMIT");
    } catch (...) {
        sqlite3_exec(handle, "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
}

}  // namespace

bool sortingIsCurrent(sqlite3* handle) {
    const std::vector<QStringList> rows =
        readRows(handle, "SELECT value FROM \"zov$facts\" WHERE name='sorting'");
    return !rows.empty() && rows[0][0] == Collation::sortingVersion();
}

void noteSorting(sqlite3* handle) {
    execSql(handle, QStringLiteral("INSERT OR REPLACE INTO \"zov$facts\"(name, value) "
                                   "VALUES('sorting', '%1')")
                        .arg(Collation::sortingVersion()));
}

void renewSorting(sqlite3* handle) {
    inTransaction(handle, [&] {
        // Another session may have done it while this one waited for the lock.
        if (sortingIsCurrent(handle)) return;
        for (const QStringList& row : readRows(
                 handle, "SELECT name, coalesce(sql, '') FROM sqlite_master WHERE type='index'")) {
            const QString& name = row[0];
            QString sql = row[1];
            if (reindex(handle, name)) continue;
            if (sql.isEmpty() || name.startsWith(QLatin1String("zov$objects"))) failOneName();
            execSql(handle, QStringLiteral("DROP INDEX ") + quotedIdentifier(name));
            sql.replace(QLatin1String("CREATE UNIQUE INDEX"), QLatin1String("CREATE INDEX"));
            execSql(handle, sql);
        }
        if (!refillProperties(handle)) failOneName();
        followDatabaseCollation(handle);
        noteSorting(handle);
    });
}

sqlite3* privateCopy(sqlite3* source) {
    sqlite3* copy = openFile(QString(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    sqlite3_backup* backup = sqlite3_backup_init(copy, "main", source, "main");
    int code = backup ? sqlite3_backup_step(backup, -1) : sqlite3_errcode(copy);
    if (backup) {
        const int end = sqlite3_backup_finish(backup);
        if (code == SQLITE_DONE) code = end;
    }
    try {
        checkSqlite(copy, code);
    } catch (...) {
        sqlite3_close_v2(copy);
        throw;
    }
    return copy;
}

void setNameCollation(sqlite3* handle, const Collation& collation, const QString& database) {
    static const QRegularExpression given(QStringLiteral("COLLATE (?:NOCASE|\"(?:[^\"]|\"\")*\")"));
    const std::vector<QStringList> tables =
        readRows(handle,
                 "SELECT name, sql FROM sqlite_master WHERE type='table' AND name LIKE 'zov$%' "
                 "AND sql LIKE '%COLLATE%'");
    const Collation* before = storedCollation(handle, "zov$objects", "name");
    const int version = readRows(handle, "PRAGMA schema_version")[0][0].toInt();
    // The tables stay where they are: only what their columns compare by is written anew, which
    // SQLite lets happen in its schema alone.
    execSql(handle, "PRAGMA writable_schema=ON");
    try {
        for (const QStringList& table : tables) {
            QString sql = table[1];
            sql.replace(given, QStringLiteral("COLLATE ") + collation.sqlName());
            sqlite3_stmt* update = nullptr;
            checkSqlite(
                handle,
                sqlite3_prepare_v2(handle,
                                   "UPDATE sqlite_master SET sql=?1 WHERE type='table' AND name=?2",
                                   -1, &update, nullptr));
            const QByteArray text = sql.toUtf8(), name = table[0].toUtf8();
            sqlite3_bind_text(update, 1, text.constData(), int(text.size()), SQLITE_STATIC);
            sqlite3_bind_text(update, 2, name.constData(), int(name.size()), SQLITE_STATIC);
            sqlite3_step(update);
            checkSqlite(handle, sqlite3_finalize(update));
        }
        execSql(handle, QStringLiteral("PRAGMA schema_version=%1").arg(version + 1));
    } catch (...) {
        sqlite3_exec(handle, "PRAGMA writable_schema=RESET", nullptr, nullptr, nullptr);
        throw;
    }
    execSql(handle, "PRAGMA writable_schema=RESET");
    for (const QStringList& table : tables) {
        if (table[0] == u"zov$properties" ? refillProperties(handle) : reindex(handle, table[0]))
            continue;
        failTwoNames(database, collation);
    }
    if (before && !renameStorage(handle, *before, collation)) failTwoNames(database, collation);
}

const Collation* storedCollation(sqlite3* handle, const char* table, const char* column) {
    const char* name = nullptr;
    if (sqlite3_table_column_metadata(handle, "main", table, column, nullptr, &name, nullptr,
                                      nullptr, nullptr) != SQLITE_OK ||
        !name || qstricmp(name, "BINARY") == 0)
        return nullptr;
    return qstricmp(name, "NOCASE") == 0 ? Collation::standard()
                                         : Collation::named(QString::fromUtf8(name));
}

}  // namespace zov::local
