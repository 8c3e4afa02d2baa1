// Runs one T-SQL batch on the embedded server: cuts it into statements (T-SQL has no required
// separator between them), runs the control flow, hands queries to query_engine and definitions to
// ddl_*. Enter at runBatch.
#pragma once

#include "data/local/local_session.h"

namespace zov::local {

/// Runs `batchText` up to its first result that has rows, or whole when there is none; the rest
/// runs at nextResult(). With `command.storedProcedure` the text is a system procedure's name and
/// the command's parameters are its arguments; the user's own procedures are not run. Statements
/// that change rows give a result without columns each, unless NOCOUNT is on. Throws DbError with
/// the line of the statement within the batch and its first words; what that statement did is
/// undone. The session must outlive the stream.
std::unique_ptr<ResultStream> runBatch(SessionState& session, const QString& batchText,
                                       const CommandSpec& command);

}  // namespace zov::local
