// A session with the embedded server, and the seams between its parts:
//   statement_runner  a batch: IF, BEGIN/END, variables, PRINT, EXEC; hands statements on
//   query_*           SELECT and friends: T-SQL to SQLite (translator, functions, catalogue views)
//   ddl_*             CREATE/ALTER/DROP, GRANT/DENY, system procedures: writes the catalogue
// One SQLite connection per open database of the session.
#pragma once

#include "data/base/provider.h"
#include "data/local/tsql_lexer.h"

#include <sqlite3.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>

namespace zov::local {

class ServerStore;  // the folder of database files: names, create, drop, staging during a load

struct QueryCache;  // what the query side keeps with a handle: table facts, prepared statements

/// One open database of a session.
struct Database {
    QString name;
    sqlite3* handle = nullptr;
    int dbid = 0;
    bool isCopy = false;  ///< the handle isn't the file's, which could be read but not written
    std::shared_ptr<QueryCache> queries;  ///< made at first use; see releaseQueries
    /// The store that holds the handle now. Handles outlive sessions and pass from one store to the
    /// next: functions on a handle ask this, never the store that they were installed with.
    ServerStore* store = nullptr;
};

/// Stops a running command: set from any thread, looked at while rows are made.
struct ExecutionControl {
    std::atomic<bool> cancelled = false;
    std::atomic<bool> limited = false;
    std::chrono::steady_clock::time_point deadline;  ///< when limited
};

/// State that statements read and change.
struct SessionState {
    ServerStore* store = nullptr;
    Database* current = nullptr;  ///< set by USE
    bool quotedIdentifier = true;
    bool ansiNulls = true;
    bool identityInsert = false;
    int identityInsertTable = 0;  ///< id of the table that identityInsert is on for
    QString defaultSchema;        ///< of unqualified names; empty is dbo
    bool noCount = false;
    bool noExec = false;       ///< SET NOEXEC: nothing but SET NOEXEC OFF is run
    bool toldNoExec = false;   ///< that statements are passed over by it
    qint64 rowCountLimit = 0;  ///< SET ROWCOUNT; 0 without limit
    QString dateFormat = QStringLiteral("mdy");
    QString productVersion;              ///< "16.0.4085.2", or "8.00.2039" of an old one
    qint64 rowCount = 0;                 ///< @@ROWCOUNT
    std::optional<qint64> lastIdentity;  ///< @@IDENTITY, SCOPE_IDENTITY()
    std::vector<ServerMessage> messages;
    std::set<QString> toldCollations;  ///< unknown ones that a message was given for
    /// The error that a CATCH block handles, for ERROR_MESSAGE() and its like.
    struct CaughtError {
        qint32 number = 0;
        int severity = 0;
        int state = 0;
        int line = 0;
        QString text;
    };
    std::optional<CaughtError> caught;
    bool databaseChosen = false;  ///< by USE; false: where the session began
    /// Asked whether a batch goes on behind a statement that failed; may be empty.
    std::function<bool(const DbError&)> statementFailed;
    std::shared_ptr<ExecutionControl> control;  ///< may be null
};

}  // namespace zov::local
