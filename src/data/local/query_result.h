// Rows of a running SELECT, from SQLite's values straight into the columns' cells.
#pragma once

#include "data/local/query_cache.h"
#include "data/local/query_parser.h"

namespace zov::local {

/// Watches time-out and cancelling while it lives: SQLite asks it now and then.
class RunningGuard {
 public:
    RunningGuard(sqlite3* handle, std::shared_ptr<ExecutionControl> control);
    ~RunningGuard();
    RunningGuard(const RunningGuard&) = delete;
    RunningGuard& operator=(const RunningGuard&) = delete;

 private:
    sqlite3* handle_;
    std::shared_ptr<ExecutionControl> control_;
};

/// Throws when the running command was cancelled or its time is over.
void throwIfStopped(const ExecutionControl* control);
/// Binds what a prepared statement's parameters stand for. `tokens` are those of the statement.
void bindParameters(SessionState& session, const PreparedSelect& select,
                    std::span<const Token> tokens, const Variables& variables);
void bindValue(sqlite3_stmt* statement, int index, const StoredValue& value);
/// The value of a global ("@@rowcount", "db_name", "error_message" ...).
StoredValue globalValue(SessionState& session, const QString& name);
/// A result's value with a type.
StoredValue columnValue(sqlite3_stmt* statement, int column, const ColumnInfo& type);

/// Reads types with the session's own ones among them.
QueryParser::TypeReader typeReader(SessionState& session);
/// The value of a parsed expression; `tokens` are those that it was parsed from.
StoredValue evaluateExpr(SessionState& session, const Expr& tree, std::span<const Token> tokens,
                         Variables& variables);
/// Attaches the databases that a translation wants beside its own; `select` detaches them.
class Translator;
void attachDatabases(const Translator& translator, PreparedSelect& select);

/// The rows of a statement whose parameters are bound; it is free again when the stream is done.
std::unique_ptr<ResultStream> streamOf(SessionState& session,
                                       std::shared_ptr<PreparedSelect> select);
std::unique_ptr<ResultStream> streamWithoutRows(qint64 affected);

/// Translates and prepares, or finds a statement of the same shape. The result is marked busy.
std::shared_ptr<PreparedSelect> prepareSelect(SessionState& session, std::span<const Token> tokens,
                                              Variables& variables);

}  // namespace zov::local
