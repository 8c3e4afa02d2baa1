// Which provider a data source belongs to: "local:..." is the embedded server,
// everything else is a SQL Server behind ODBC.
#pragma once

#include "data/base/provider.h"

namespace zov {

Provider& providerFor(const QString& dataSource);

}  // namespace zov
