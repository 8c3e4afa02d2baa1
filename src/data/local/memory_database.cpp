#include "data/local/memory_database.h"

#include "data/local/local_provider.h"

#include <atomic>

namespace zov::local {
namespace {

QString freshMemory() {
    static std::atomic<int> counter = 0;
    return QStringLiteral("zovrand-memory-%1").arg(++counter);
}

}  // namespace

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

std::unique_ptr<ProviderConnection> MemoryDatabase::connect() const {
    return sessionOn(ServerStore::ofMemory(place_), place_.database);
}

}  // namespace zov::local
