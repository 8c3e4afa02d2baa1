// An open database of a store with its part in transactions, and the pool of handles that no
// session uses now. For server_store's own files only.
#pragma once

#include "data/local/query_engine.h"
#include "data/local/sqlite_files.h"

#include <mutex>

namespace zov::local {

/// "ZOVD" in the head of our files.
inline constexpr int ApplicationId = 0x5A4F5644;

/// A query of the store's own on a database's file.
class StoreStatement {
 public:
    StoreStatement(sqlite3* handle, const char* sql) {
        checkSqlite(handle, sqlite3_prepare_v2(handle, sql, -1, &statement_, nullptr));
    }
    ~StoreStatement() { sqlite3_finalize(statement_); }
    StoreStatement(const StoreStatement&) = delete;
    StoreStatement& operator=(const StoreStatement&) = delete;
    bool step() {
        const int code = sqlite3_step(statement_);
        checkSqlite(sqlite3_db_handle(statement_), code);
        return code == SQLITE_ROW;
    }
    sqlite3_stmt* get() const { return statement_; }
    QString text(int column) const {
        return QString::fromUtf8(
            reinterpret_cast<const char*>(sqlite3_column_text(statement_, column)));
    }

 private:
    sqlite3_stmt* statement_ = nullptr;
};

/// Keeps what a file tells of itself, in the place of what it told before.
inline void storeFact(sqlite3* handle, const char* name, const QString& value) {
    StoreStatement store(handle,
                         "INSERT OR REPLACE INTO \"zov$facts\"(name, value) VALUES(?1, ?2)");
    const QByteArray utf8 = value.toUtf8();
    sqlite3_bind_text(store.get(), 1, name, -1, SQLITE_STATIC);
    sqlite3_bind_text(store.get(), 2, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
    store.step();
}

struct ServerStore::Entry {
    Database database;
    QString file;
    bool staged = false;  // a new file that nobody else sees yet
    bool readOnly = false;
    bool begun = false;        // BEGIN was sent
    bool marked = false;       // SAVEPOINT of the session's transaction was sent
    bool inStatement = false;  // SAVEPOINT (or BEGIN) of the running statement was sent
    qint64 seenVersion = -1;
    sqlite3_stmt* savepoint = nullptr;
    sqlite3_stmt* release = nullptr;
    sqlite3_stmt* version = nullptr;

    ~Entry() { close(); }

    void prepare() {
        prepareOne("SAVEPOINT zov_statement", savepoint);
        prepareOne("RELEASE zov_statement", release);
        prepareOne("PRAGMA data_version", version);
    }
    void prepareOne(const char* sql, sqlite3_stmt*& statement) {
        checkSqlite(database.handle,
                    sqlite3_prepare_v3(database.handle, sql, -1, SQLITE_PREPARE_PERSISTENT,
                                       &statement, nullptr));
    }
    void run(sqlite3_stmt* statement) {
        const int code = sqlite3_step(statement);
        sqlite3_reset(statement);
        checkSqlite(database.handle, code);
    }
    qint64 currentVersion() {
        const int code = sqlite3_step(version);
        const qint64 value = code == SQLITE_ROW ? sqlite3_column_int64(version, 0) : -1;
        sqlite3_reset(version);
        checkSqlite(database.handle, code);
        return value;
    }
    /// The file's own transaction is at an end, whichever.
    void settled() { begun = marked = inStatement = false; }
    /// Undoes what isn't committed; a failure is no matter, since closing undoes it as well.
    void rollBack() {
        settled();
        if (!database.handle) return;
        if (!sqlite3_get_autocommit(database.handle))
            sqlite3_exec(database.handle, "ROLLBACK", nullptr, nullptr, nullptr);
        catalogChanged(database);
    }
    void close() {
        if (!database.handle) return;
        releaseQueries(database);
        database.queries.reset();
        for (sqlite3_stmt* statement : {savepoint, release, version}) sqlite3_finalize(statement);
        savepoint = release = version = nullptr;
        sqlite3_close_v2(database.handle);
        database.handle = nullptr;
    }
    /// Statements that read several files hold the others attached.
    void detachOthers() {
        if (!database.handle || !sqlite3_db_name(database.handle, 2)) return;
        releaseQueries(database);
    }
    bool idle() const {
        if (!database.handle || staged || readOnly || !sqlite3_get_autocommit(database.handle))
            return false;
        for (sqlite3_stmt* statement = sqlite3_next_stmt(database.handle, nullptr); statement;
             statement = sqlite3_next_stmt(database.handle, statement))
            if (sqlite3_stmt_busy(statement)) return false;
        return true;
    }
};

/// Handles that no session uses now, newest last.
struct ServerStore::Pool {
    static constexpr size_t Capacity = 16;
    std::mutex mutex;
    std::vector<std::unique_ptr<Entry>> idle;

    std::unique_ptr<Entry> take(const QString& file) {
        std::unique_ptr<Entry> found;
        {
            const std::lock_guard lock(mutex);
            for (auto at = idle.rbegin(); at != idle.rend(); ++at) {
                if ((*at)->file != file) continue;
                found = std::move(*at);
                idle.erase(std::next(at).base());
                break;
            }
        }
        if (!found) return {};
        int moved = 0;
        sqlite3_file_control(found->database.handle, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
        if (moved) return {};  // another file has that name now
        return found;
    }
    void give(std::unique_ptr<Entry> entry) {
        std::unique_ptr<Entry> evicted;
        const std::lock_guard lock(mutex);
        idle.push_back(std::move(entry));
        if (idle.size() > Capacity) {
            evicted = std::move(idle.front());
            idle.erase(idle.begin());
        }
    }
    void purge(const QString& file) {
        const std::lock_guard lock(mutex);
        std::erase_if(idle, [&](const auto& entry) { return entry->file == file; });
    }
    void purgeFolder(const QString& folder) {
        const std::lock_guard lock(mutex);
        std::erase_if(idle,
                      [&](const auto& entry) { return entry->file.startsWith(folder + u'/'); });
    }
};

}  // namespace zov::local
