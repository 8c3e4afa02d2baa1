// The driver manager's header, and what its interface lacks.
#pragma once

#include <QString>

#ifdef Q_OS_WIN
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>

namespace zov::odbc {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t));

/// Type codes that only SQL Server's drivers use.
inline constexpr SQLSMALLINT TypeVariant = -150;
inline constexpr SQLSMALLINT TypeUdt = -151;
inline constexpr SQLSMALLINT TypeXml = -152;
inline constexpr SQLSMALLINT TypeTime2 = -154;
inline constexpr SQLSMALLINT TypeTimestampOffset = -155;

/// A number where the interface wants a pointer.
inline SQLPOINTER pointerOf(SQLULEN value) {
    return reinterpret_cast<SQLPOINTER>(value);
}

/// For arguments that are only read, though the interface doesn't say const.
inline SQLWCHAR* wide(const QString& text) {
    return reinterpret_cast<SQLWCHAR*>(const_cast<ushort*>(text.utf16()));
}

}  // namespace zov::odbc
