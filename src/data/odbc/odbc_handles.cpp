#include "data/odbc/odbc_handles.h"

#include "data/odbc/odbc_errors.h"

namespace zov::odbc {

Handle::Handle(SQLSMALLINT type, SQLHANDLE parent) : type_(type) {
    if (SQL_SUCCEEDED(SQLAllocHandle(type, parent, &handle_))) return;
    handle_ = nullptr;
    if (!parent)
        throw DbError(ado_error::Unspecified,
                      QStringLiteral("The ODBC driver manager has no memory left."));
    const SQLSMALLINT parentType = type == SQL_HANDLE_STMT ? SQL_HANDLE_DBC : SQL_HANDLE_ENV;
    throw errorFrom(readDiagnostics(parentType, parent), Phase::Executing);
}

void Handle::reset() {
    if (!handle_) return;
    if (type_ == SQL_HANDLE_DBC) SQLDisconnect(handle_);
    SQLFreeHandle(type_, handle_);
    handle_ = nullptr;
}

SQLHENV environment() {
    // Never freed: sessions may end later than anything else of the process.
    static const Handle* const shared = [] {
        SQLSetEnvAttr(nullptr, SQL_ATTR_CONNECTION_POOLING, pointerOf(SQL_CP_OFF), SQL_IS_UINTEGER);
        const Handle* made = new Handle(SQL_HANDLE_ENV, nullptr);
        SQLSetEnvAttr(made->get(), SQL_ATTR_ODBC_VERSION, pointerOf(SQL_OV_ODBC3), 0);
        // unixODBC reads its file's Trace setting when it makes the environment; its tracing
        // writes past its buffers with long texts.
        SQLSetConnectAttrW(nullptr, SQL_ATTR_TRACE, pointerOf(SQL_OPT_TRACE_OFF), 0);
        return made;
    }();
    return shared->get();
}

}  // namespace zov::odbc
