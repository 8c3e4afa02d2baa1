// A running batch: a stack of texts (the batch, and what EXEC was given) with their steps, and the
// results that wait to be read. Three files hold it: statement_runner (the flow from step to step),
// batch_statements (what a statement does that is no definition) and batch_calls (EXEC).
#pragma once

#include "data/local/batch_steps.h"
#include "data/local/ddl.h"
#include "data/local/query_engine.h"
#include "data/local/server_store.h"

#include <deque>

namespace zov::local {

/// One text that is being run.
struct Frame {
    QString text;
    std::vector<Token> tokens;
    std::vector<BatchStep> steps;
    size_t at = 0;              ///< the step to run next
    std::vector<size_t> tries;  ///< where errors go, innermost last
    std::shared_ptr<Variables> variables = std::make_shared<Variables>();
    QString returnTo;  ///< the database that was current before, empty for the batch
    /// What SET had said before: an EXEC's own settings end with it.
    struct Settings {
        bool quotedIdentifier, ansiNulls, noCount;
        qint64 rowCountLimit;
        QString dateFormat;
    };
    std::optional<Settings> settings;
    struct Output {
        QString inner, outer;
    };
    std::vector<Output> outputs;  ///< of sp_executesql, for the caller's variables

    std::span<const Token> span(const BatchStep& step) const {
        return std::span<const Token>(tokens).subspan(step.begin, step.end - step.begin);
    }
};

class BatchStream : public ResultStream {
 public:
    BatchStream(SessionState& session, const QString& text, const CommandSpec& command);
    ~BatchStream() override { BatchStream::close(); }

    const std::vector<ColumnInfo>& columns() const override;
    qsizetype fetch(RowStore& rows, qsizetype maxRows) override;
    qint64 affectedRows() const override {
        return current_.rows ? current_.rows->affectedRows() : current_.affected;
    }
    bool nextResult() override;
    qint32 returnValue() const override { return returnValue_; }
    QVariant outputValue(int parameterIndex) const override;
    void close() override;

 private:
    struct Result {
        std::unique_ptr<ResultStream> rows;
        qint64 affected = -1;
    };
    /// An argument of EXEC before it is known what is called.
    struct Given {
        QString name;  // "@x" or empty
        StoredValue value;
        QString output;  // the variable that gets the value back
    };

    Frame& frame() { return *frames_.back(); }
    Variables& variables() { return *frame().variables; }
    bool takeNext();
    QString parameterName(size_t index) const;

    // The flow (statement_runner.cpp)
    void pushFrame(const QString& text);
    void leaveFrame();
    void startText(const QString& text);
    void run();
    bool passesOver(const BatchStep& step);
    void checkLimits();
    void leaveText(const BatchStep& step);
    template <typename Action>
    void statement(Action&& action, int line, std::span<const Token> tokens);
    void handle(DbError& error, int line, std::span<const Token> tokens);
    void execute(std::span<const Token> tokens, bool first);
    bool looksLikeCall(std::span<const Token> tokens) const;
    void changed(qint64 rows);

    // Statements (batch_statements.cpp)
    void define(std::span<const Token> tokens, bool first);
    void query(std::span<const Token> tokens);
    void selectInto(std::span<const Token> tokens, size_t into);
    void use(std::span<const Token> tokens);
    void transaction(std::span<const Token> tokens);
    void print(std::span<const Token> expression);
    void declare(std::span<const Token> tokens);
    void set(std::span<const Token> tokens);
    void setValue(const QString& name, TokenCursor& cursor, const Token& option);
    void setVariable(TokenCursor& cursor);
    void setIdentityInsert(TokenCursor& cursor);
    std::vector<StoredValue> values(TokenCursor& cursor);
    [[noreturn]] void raise(qint32 number, int severity, int state, const QString& text, int line);
    void raiseError(std::span<const Token> tokens);
    void throwError(std::span<const Token> tokens);
    void dbcc(std::span<const Token> tokens);

    // Calls (batch_calls.cpp)
    void startProcedure(const QString& written);
    void exec(std::span<const Token> tokens);
    Given argument(TokenCursor& cursor);
    void callProcedure(const ObjectName& name, const std::vector<Given>& given);
    void executeSql(const std::vector<Given>& given);

    SessionState& session_;
    CommandSpec command_;
    std::vector<std::unique_ptr<Frame>> frames_;
    std::deque<Result> results_;
    Result current_;
    std::shared_ptr<Variables> parameters_;
    qint32 returnValue_ = 0;
    qint64 steps_ = 0;
    bool failed_ = false;
    bool passedBy_ = false;  ///< the statement failed, and the batch goes on behind it
    int raisedSeverity_ = 0;
    int raisedState_ = 1;
    int rowsLine_ = 0;
    QString rowsWords_;
};

// One statement: all of it or nothing; an error goes to the CATCH around it, or out with the line
// of the batch's own statement.
template <typename Action>
void BatchStream::statement(Action&& action, int line, std::span<const Token> tokens) {
    failed_ = passedBy_ = false;
    const size_t depth = frames_.size();
    session_.store->beginStatement();
    try {
        try {
            action();
        } catch (const std::bad_alloc&) {
            checkSqlite(nullptr, SQLITE_NOMEM);
        }
        session_.store->endStatement(true);
    } catch (DbError& error) {
        failed_ = true;
        try {
            session_.store->endStatement(false);
        } catch (const DbError&) {
            // The statement's own error is the one to tell.
        }
        while (frames_.size() > depth) leaveFrame();
        handle(error, line, tokens);
    }
}

/// A command's parameter as a value and back.
StoredValue storedValue(const QVariant& value);
QVariant variantOf(const StoredValue& value);
ColumnInfo typeOfParameter(const CommandParameter& parameter);

}  // namespace zov::local
