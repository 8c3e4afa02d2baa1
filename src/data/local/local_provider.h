// The embedded server as a provider: "local:NAME" or "local:/a/path".
#pragma once

#include "data/base/provider.h"

namespace zov::local {

class ServerStore;

/// Connections to embedded servers. Open handles are kept by the process, so that opening a
/// database again costs little.
Provider& localProvider();
/// Whether a data source names an embedded server.
bool isLocalDataSource(const QString& dataSource);
/// A session with one of a store's databases.
std::unique_ptr<ProviderConnection> sessionOn(std::unique_ptr<ServerStore> store,
                                              const QString& database);

}  // namespace zov::local
