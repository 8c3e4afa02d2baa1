// The provider for real SQL Servers, over the ODBC driver manager and whichever
// driver is installed. Data sources are what people type: "host", "host,port",
// "host\instance", "tcp:host,port".
#pragma once

#include "data/base/provider.h"

namespace zov::odbc {

Provider& odbcProvider();

}  // namespace zov::odbc
