// An ODBC driver with one fault: it crashes when it is to connect, or, with ZOV_CRASH_LATE in the
// environment, makes the program crash at its end.
#include <sql.h>
#include <sqlext.h>

#include <csignal>
#include <cstdlib>

namespace {
int something = 0;

SQLRETURN crash() {
    if (std::getenv("ZOV_CRASH_LATE")) {
        std::atexit([] { std::raise(SIGSEGV); });
        return SQL_ERROR;
    }
    std::raise(SIGSEGV);
    return SQL_ERROR;
}
}  // namespace

extern "C" {

SQLRETURN SQLAllocHandle(SQLSMALLINT, SQLHANDLE, SQLHANDLE* handle) {
    *handle = &something;
    return SQL_SUCCESS;
}
SQLRETURN SQLFreeHandle(SQLSMALLINT, SQLHANDLE) {
    return SQL_SUCCESS;
}
SQLRETURN SQLSetEnvAttr(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER) {
    return SQL_SUCCESS;
}
SQLRETURN SQLSetConnectAttrW(SQLHDBC, SQLINTEGER, SQLPOINTER, SQLINTEGER) {
    return SQL_SUCCESS;
}
SQLRETURN SQLDriverConnect(SQLHDBC, SQLHWND, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT,
                           SQLSMALLINT*, SQLUSMALLINT) {
    return crash();
}
SQLRETURN SQLDriverConnectW(SQLHDBC, SQLHWND, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT,
                            SQLSMALLINT*, SQLUSMALLINT) {
    return crash();
}

}  // extern "C"
