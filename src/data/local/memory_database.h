// A database of the embedded server that lives in memory: made empty, filled by its maker through
// its handle, then read by any number of sessions.
#pragma once

#include "data/base/provider.h"
#include "data/local/server_store.h"

namespace zov::local {

class MemoryDatabase {
 public:
    /// An empty one. `collation` is the database's, `version` the product version of the server
    /// that it is to answer as.
    MemoryDatabase(const QString& serverName, const QString& database, const QString& version,
                   const QString& collation);
    ~MemoryDatabase();
    MemoryDatabase(const MemoryDatabase&) = delete;
    MemoryDatabase& operator=(const MemoryDatabase&) = delete;

    /// For its maker, until the first session begins.
    sqlite3* handle();
    /// A session with it, from any thread. It must be gone before the database is.
    std::unique_ptr<ProviderConnection> connect() const;

 private:
    MemoryPlace place_;
    std::unique_ptr<ServerStore> store_;
};

}  // namespace zov::local
