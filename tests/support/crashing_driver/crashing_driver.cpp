// An ODBC driver with one fault: it crashes when it is to connect.
#include <sql.h>
#include <sqlext.h>

#include <csignal>

namespace {
int something = 0;

SQLRETURN crash() {
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
