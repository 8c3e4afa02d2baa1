// Which provider a data source belongs to: "local:..." is the embedded server,
// everything else is a SQL Server behind ODBC.
#pragma once

#include "data/base/provider.h"

#include <memory>

namespace zov {

Provider& providerFor(const QString& dataSource);

/// A session with the server itself, whatever images are in use.
std::unique_ptr<ProviderConnection> openDirectly(const QString& connectionString);

}  // namespace zov
