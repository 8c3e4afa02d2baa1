// What drivers and servers say when something fails (or only talks), as DbError
// and ServerMessage. Knows the habits of FreeTDS and of Microsoft's drivers.
#pragma once

#include "data/base/provider.h"
#include "data/odbc/odbc_api.h"

#include <vector>

namespace zov::odbc {

/// One diagnostic record, without the brackets in which drivers name themselves.
struct Diagnostic {
    QString sqlState;
    qint32 native = 0;  ///< the server's message number, or the driver's own (FreeTDS: 20000 on)
    QString text;
    int line = 0;      ///< from 1, 0 when unknown
    int severity = 0;  ///< 0 when unknown
};

enum class Phase { Connecting, Executing };

/// In the driver's order: the worst first.
std::vector<Diagnostic> readDiagnostics(SQLSMALLINT handleType, SQLHANDLE handle);

/// One error out of what a failed call left: number, state and line of the record that counts most,
/// the texts of all that add something, one a line. `records` may be empty.
DbError errorFrom(const std::vector<Diagnostic>& records, Phase phase);

/// Of a call that succeeded otherwise.
bool isError(const Diagnostic& record);

/// The informational records (PRINT, RAISERROR below severity 11), as messages.
void appendMessages(const std::vector<Diagnostic>& records, std::vector<ServerMessage>& to);

bool isLoginRefusal(const DbError& error);
/// The login is good, but there is no such database or the login may not enter it.
bool isUnknownDatabase(const DbError& error);

/// `text` without "[Microsoft][ODBC Driver 18 for SQL Server][SQL Server]" and their like. What a
/// server itself put into brackets stays.
QString withoutDriverPrefix(const QString& text);

}  // namespace zov::odbc
