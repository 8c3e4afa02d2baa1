// The provider for real SQL Servers, over the ODBC driver manager and whichever
// driver is installed. Data sources are what people type: "host", "host,port",
// "host\instance", "tcp:host,port".
#pragma once

#include "data/base/provider.h"

namespace zov::odbc {

Provider& odbcProvider();

/// Closes the sessions that wait, idle, for somebody to use them again: before a database is
/// detached, or its server stopped. Servers that were silent a moment ago may be asked again.
void dropIdleSessions();

}  // namespace zov::odbc
