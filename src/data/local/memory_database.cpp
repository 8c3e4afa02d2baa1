#include "data/local/memory_database.h"

#include "data/local/local_provider.h"
#include "data/local/sqlite_files.h"

#include <atomic>
#include <new>

namespace zov::local {
namespace {

QString freshMemory() {
    static std::atomic<int> counter = 0;
    return QStringLiteral("zovrand-memory-%1").arg(++counter);
}

/// Copies what was serialized into a database in memory.
void restore(sqlite3* target, QByteArray& content) {
    const SqliteHandle source(openFile(QString(), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE));
    checkSqlite(
        source.get(),
        sqlite3_deserialize(source.get(), "main", reinterpret_cast<unsigned char*>(content.data()),
                            content.size(), content.size(), SQLITE_DESERIALIZE_READONLY));
    sqlite3_backup* copy = sqlite3_backup_init(target, "main", source.get(), "main");
    int code = sqlite3_errcode(target);
    if (copy) {
        sqlite3_backup_step(copy, -1);
        code = sqlite3_backup_finish(copy);
    }
    checkSqlite(target, code);
}

std::unique_ptr<ServerStore> restored(const MemoryPlace& place, QByteArray& content) {
    // It lives until the store has a handle of its own.
    const SqliteHandle first(openMemory(place.memory));
    restore(first.get(), content);
    return ServerStore::ofMemory(place);
}

}  // namespace

MemoryDatabase::MemoryDatabase(const QString& serverName, const QString& database,
                               const QString& version, QByteArray content)
    : place_{freshMemory(), serverName, version, database}, store_(restored(place_, content)) {}

MemoryDatabase::MemoryDatabase(const QString& serverName, const QString& database,
                               const QString& version, const QString& collation)
    : place_{freshMemory(), serverName, version, database},
      store_(ServerStore::makeMemory(place_, collation)) {}

MemoryDatabase::~MemoryDatabase() {
    store_.reset();
    ServerStore::closeIdle(place_);
}

sqlite3* MemoryDatabase::handle() {
    return store_->database(place_.database).handle;
}

QByteArray MemoryDatabase::serialized() {
    sqlite3_int64 size = 0;
    const std::unique_ptr<unsigned char, decltype(&sqlite3_free)> bytes(
        sqlite3_serialize(handle(), "main", &size, 0), sqlite3_free);
    if (!bytes) throw std::bad_alloc();
    return QByteArray(reinterpret_cast<const char*>(bytes.get()), qsizetype(size));
}

std::unique_ptr<ProviderConnection> MemoryDatabase::connect() const {
    return sessionOn(ServerStore::ofMemory(place_), place_.database);
}

}  // namespace zov::local
