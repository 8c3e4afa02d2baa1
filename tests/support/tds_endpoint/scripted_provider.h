// A Provider whose answers a test writes down: statement text -> results. With it the wire is
// tested for every column type without a server behind it.
#pragma once

#include "data/base/db_error.h"
#include "data/base/provider.h"

#include <functional>
#include <map>
#include <mutex>
#include <optional>

namespace zov {

/// One result of a scripted answer.
struct ScriptedResult {
    std::vector<ColumnInfo> columns;
    qint64 rowCount = 0;
    /// Appends row number `row` (from 0) to `rows`, column by column.
    std::function<void(RowStore& rows, qint64 row)> fill;
    qint64 affectedRows = -1;
    std::vector<ServerMessage> messages;  ///< arrive in front of the result
    std::optional<DbError> error;         ///< instead of the result; ends the answer
};

struct ScriptedAnswer {
    std::vector<ScriptedResult> results;
    std::vector<ServerMessage> lastMessages;  ///< arrive behind the last result
    bool untilCancelled = false;              ///< runs until somebody cancels it
    qint32 returnValue = 0;
    std::vector<QVariant> outputs;  ///< by parameter
};

/// Thread safe: sessions may run at once.
class ScriptedProvider : public Provider {
 public:
    std::unique_ptr<ProviderConnection> open(const ConnectionSpec& spec,
                                             bool createDatabase) override;

    /// The answer to a statement or a procedure's name, to the letter.
    void answer(const QString& statement, ScriptedAnswer answer);
    /// Asked when no answer fits; without it the statement is an error 2812.
    std::function<std::optional<ScriptedAnswer>(const CommandSpec&)> otherwise;

    std::vector<CommandSpec> commands() const;
    QString lastDatabase() const;
    int cancels() const;

    ScriptedAnswer answerFor(const CommandSpec& command);
    void noteCancel();

 private:
    mutable std::mutex mutex_;
    std::map<QString, ScriptedAnswer> answers_;
    std::vector<CommandSpec> commands_;
    QString lastDatabase_;
    int cancels_ = 0;
};

}  // namespace zov
