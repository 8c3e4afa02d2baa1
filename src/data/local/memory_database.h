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
    /// One that serialized() gave. Throws DbError when that is damaged.
    MemoryDatabase(const QString& serverName, const QString& database, const QString& version,
                   QByteArray content);
    ~MemoryDatabase();
    MemoryDatabase(const MemoryDatabase&) = delete;
    MemoryDatabase& operator=(const MemoryDatabase&) = delete;

    const QString& name() const { return place_.database; }
    /// For its maker, until the first session begins.
    sqlite3* handle();
    /// All that is in it, as bytes of SQLite's.
    QByteArray serialized();
    /// A session with it, from any thread. It must be gone before the database is.
    std::unique_ptr<ProviderConnection> connect() const;

 private:
    MemoryPlace place_;
    std::unique_ptr<ServerStore> store_;
};

}  // namespace zov::local
