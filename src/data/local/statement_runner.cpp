#include "data/local/statement_runner.h"

#include "data/local/batch_stream.h"

namespace zov::local {
namespace {

constexpr qint64 MostSteps = 50'000'000;  // a WHILE that never ends, ends here
constexpr int MostFrames = 32;            // nested EXEC, as the server's limit

}  // namespace

BatchStream::BatchStream(SessionState& session, const QString& text, const CommandSpec& command)
    : session_(session), command_(command) {
    if (!session_.current || !session_.current->handle)
        session_.current = &session_.store->database(QStringLiteral("master"));
    session_.store->noticeForeignChanges();
    if (command.storedProcedure)
        startProcedure(text);
    else
        startText(text);
    run();
    takeNext();
}

const std::vector<ColumnInfo>& BatchStream::columns() const {
    static const std::vector<ColumnInfo> none;
    return current_.rows ? current_.rows->columns() : none;
}

qsizetype BatchStream::fetch(RowStore& rows, qsizetype maxRows) {
    if (!current_.rows) return 0;
    try {
        try {
            return current_.rows->fetch(rows, maxRows);
        } catch (const std::bad_alloc&) {
            current_.rows->close();
            checkSqlite(nullptr, SQLITE_NOMEM);
            throw;
        }
    } catch (DbError& error) {
        if (error.line == 0) error.line = rowsLine_;
        if (error.nearText.isEmpty()) error.nearText = rowsWords_;
        const bool stopped =
            error.number == ado_error::Cancelled || error.number == ado_error::Timeout;
        if (!stopped && session_.statementFailed && session_.statementFailed(error)) {
            current_ = {};
            return 0;
        }
        frames_.clear();
        throw;
    }
}

bool BatchStream::nextResult() {
    current_ = {};
    if (results_.empty()) run();
    return takeNext();
}

QVariant BatchStream::outputValue(int parameterIndex) const {
    if (!parameters_ || parameterIndex < 0 || size_t(parameterIndex) >= command_.parameters.size())
        return {};
    const StoredValue* value = parameters_->find(parameterName(size_t(parameterIndex)));
    return value ? variantOf(*value) : QVariant();
}

void BatchStream::close() {
    current_ = {};
    results_.clear();
    while (!frames_.empty()) leaveFrame();
}

bool BatchStream::takeNext() {
    if (results_.empty()) return false;
    current_ = std::move(results_.front());
    results_.pop_front();
    return true;
}

QString BatchStream::parameterName(size_t index) const {
    const QString name = command_.parameters[index].name;
    return name.startsWith(u'@') ? name : u'@' + name;
}

void BatchStream::pushFrame(const QString& text) {
    if (frames_.size() >= MostFrames)
        fail(217, QStringLiteral(
                      "Maximum stored procedure, function, trigger, or view nesting level exceeded "
                      "(limit 32)."));
    auto frame = std::make_unique<Frame>();
    frame->text = text;
    frame->tokens = tokenize(frame->text, session_.quotedIdentifier);
    frame->steps = cutBatch(frame->tokens);
    if (!frames_.empty()) {
        frame->returnTo = session_.current->name;
        frame->settings = {session_.quotedIdentifier, session_.ansiNulls, session_.noCount,
                           session_.rowCountLimit, session_.dateFormat};
    }
    frames_.push_back(std::move(frame));
}

void BatchStream::leaveFrame() {
    const std::unique_ptr<Frame> done = std::move(frames_.back());
    frames_.pop_back();
    if (done->settings) {
        session_.quotedIdentifier = done->settings->quotedIdentifier;
        session_.ansiNulls = done->settings->ansiNulls;
        session_.noCount = done->settings->noCount;
        session_.rowCountLimit = done->settings->rowCountLimit;
        session_.dateFormat = done->settings->dateFormat;
    }
    if (frames_.empty()) return;
    for (const Frame::Output& output : done->outputs)
        if (const StoredValue* value = done->variables->find(output.inner))
            variables().assign(session_, output.outer, *value);
    // USE within EXEC ends with it.
    if (done->returnTo != session_.current->name && session_.store->hasDatabase(done->returnTo))
        session_.current = &session_.store->database(done->returnTo);
}

void BatchStream::startText(const QString& text) {
    try {
        pushFrame(text);
    } catch (DbError& error) {
        // Nothing was cut into statements yet: the line itself tells where.
        error.nearText = text.section(u'\n', error.line - 1, error.line - 1).simplified().left(60);
        throw error;
    }
    if (command_.parameters.empty()) return;
    parameters_ = frame().variables;
    for (size_t i = 0; i < command_.parameters.size(); ++i) {
        const CommandParameter& parameter = command_.parameters[i];
        if (parameter.name.isEmpty() || parameter.direction == 4) continue;
        variables().declare(parameterName(i), typeOfParameter(parameter));
        variables().assign(session_, parameterName(i), storedValue(parameter.value));
    }
}

// Runs until a result with rows is there, or all is done.
void BatchStream::run() {
    while (!frames_.empty() && (results_.empty() || !results_.back().rows)) {
        if (frame().at >= frame().steps.size()) {
            leaveFrame();
            continue;
        }
        checkLimits();
        const BatchStep step = frame().steps[frame().at++];
        if (session_.noExec && passesOver(step)) continue;
        switch (step.kind) {
            case BatchStep::Kind::Jump:
                frame().at = step.target;
                break;
            case BatchStep::Kind::EnterTry:
                frame().tries.push_back(step.target);
                break;
            case BatchStep::Kind::LeaveTry:
                if (!frame().tries.empty()) frame().tries.pop_back();
                break;
            case BatchStep::Kind::LeaveCatch:
                session_.caught.reset();
                break;
            case BatchStep::Kind::Return:
                leaveText(step);
                break;
            case BatchStep::Kind::BranchUnless: {
                const size_t depth = frames_.size();
                bool holds = false;
                statement(
                    [&] { holds = evaluateCondition(session_, frame().span(step), variables()); },
                    step.line, frame().span(step));
                // A failed condition may have jumped to a CATCH already; one that is passed by
                // takes what it guards along.
                if (passedBy_ || (!failed_ && !holds && frames_.size() == depth))
                    frame().at = step.target;
                break;
            }
            case BatchStep::Kind::Statement: {
                const std::span<const Token> tokens = frame().span(step);
                const bool first = step.begin == 0;
                statement([&] { execute(tokens, first); }, step.line, tokens);
                break;
            }
        }
    }
}

// Under SET NOEXEC no condition holds, and no statement runs but the one that ends it.
bool BatchStream::passesOver(const BatchStep& step) {
    if (step.kind == BatchStep::Kind::BranchUnless) {
        frame().at = step.target;
        return true;
    }
    if (step.kind == BatchStep::Kind::Return) return true;
    if (step.kind != BatchStep::Kind::Statement) return false;
    const std::span<const Token> tokens = frame().span(step);
    if (tokens.size() > 2 && tokens[0].is("SET") && tokens[1].is("NOEXEC")) return false;
    if (!std::exchange(session_.toldNoExec, true)) {
        ServerMessage message;
        message.text = QStringLiteral("NOEXEC is ON: statements are not run until it is set OFF.");
        session_.messages.push_back(message);
    }
    return true;
}

void BatchStream::checkLimits() {
    if (++steps_ > MostSteps)
        fail(40000, QStringLiteral("The batch was stopped: a loop in it does not seem to end."));
    if (!session_.control) return;
    if (session_.control->cancelled)
        throw DbError(ado_error::Cancelled, QStringLiteral("Operation was canceled."),
                      QStringLiteral("HY008"));
    if (session_.control->limited && (steps_ & 63) == 0 &&
        std::chrono::steady_clock::now() > session_.control->deadline)
        throw DbError(ado_error::Timeout, QStringLiteral("Query timeout expired"),
                      QStringLiteral("HYT00"));
}

void BatchStream::leaveText(const BatchStep& step) {
    const std::span<const Token> tokens = frame().span(step).subspan(1);
    if (!tokens.empty()) {
        statement(
            [&] { returnValue_ = qint32(evaluate(session_, tokens, variables()).toInteger()); },
            step.line, frame().span(step));
        if (failed_) return;
    }
    leaveFrame();
}

void BatchStream::handle(DbError& error, int line, std::span<const Token> tokens) {
    const bool stopped = error.number == ado_error::Cancelled || error.number == ado_error::Timeout;
    for (size_t depth = frames_.size(); depth > 0 && !stopped; --depth) {
        if (frames_[depth - 1]->tries.empty()) continue;
        while (frames_.size() > depth) leaveFrame();
        SessionState::CaughtError caught;
        caught.number = error.native;
        caught.severity = raisedSeverity_ ? raisedSeverity_ : 16;
        caught.state = raisedState_;
        caught.line = error.line ? error.line : line;
        caught.text = error.description;
        session_.caught = caught;
        raisedSeverity_ = 0;
        raisedState_ = 1;
        frame().at = frame().tries.back();
        frame().tries.pop_back();
        return;
    }
    // Lines within a text that EXEC was given mean nothing to the reader of the batch.
    if (frames_.size() > 1) {
        const Frame& outer = *frames_.front();
        const BatchStep& step = outer.steps[outer.at - 1];
        line = step.line;
        tokens = outer.span(step);
        error.line = 0;
    }
    if (error.line == 0) error.line = line;
    if (error.nearText.isEmpty() && !tokens.empty()) {
        error.nearText = sourceText(tokens).left(200).simplified().left(60);
    }
    if (!stopped && session_.statementFailed && session_.statementFailed(error)) {
        passedBy_ = true;
        return;
    }
    if (frames_.size() > 1 && session_.store->hasDatabase(frames_[1]->returnTo))
        session_.current = &session_.store->database(frames_[1]->returnTo);
    frames_.clear();
    throw error;
}

void BatchStream::execute(std::span<const Token> tokens, bool first) {
    const Token& verb = tokens.front();
    const bool more = tokens.size() > 1;
    if (verb.is("INSERT")) return changed(runInsert(session_, tokens, variables()));
    if (verb.is("SELECT") || verb.is("WITH") || verb.is("(")) return query(tokens);
    if (verb.is("UPDATE") && !(more && tokens[1].is("STATISTICS")))
        return changed(runUpdate(session_, tokens, variables()));
    if (verb.is("DELETE")) return changed(runDelete(session_, tokens, variables()));
    if (verb.is("SET")) return set(tokens);
    if (verb.is("DECLARE")) return declare(tokens);
    if (verb.is("EXEC") || verb.is("EXECUTE")) return exec(tokens.subspan(1));
    if (verb.is("PRINT")) return print(tokens.subspan(1));
    if (verb.is("RAISERROR")) return raiseError(tokens);
    if (verb.is("THROW")) return throwError(tokens);
    if (verb.is("USE")) return use(tokens);
    if (verb.is("BEGIN") || verb.is("COMMIT") || verb.is("ROLLBACK")) return transaction(tokens);
    if (verb.is("CHECKPOINT") || verb.is("RECONFIGURE")) return;  // nothing waits to be written
    if (verb.is("DBCC")) return dbcc(tokens);
    for (const char* word : {"CREATE", "ALTER", "DROP", "TRUNCATE", "GRANT", "DENY", "REVOKE",
                             "UPDATE", "ENABLE", "DISABLE"})
        if (verb.is(word)) return define(tokens, first);
    for (const char* word :
         {"MERGE",     "BULK",       "BACKUP", "RESTORE",    "WAITFOR", "KILL", "SHUTDOWN",
          "OPEN",      "FETCH",      "CLOSE",  "DEALLOCATE", "GOTO",    "SAVE", "READTEXT",
          "WRITETEXT", "UPDATETEXT", "REVERT", "SETUSER",    "DUMP",    "LOAD"})
        if (verb.is(word))
            fail(40000,
                 QStringLiteral("The embedded server doesn't run %1 statements.")
                     .arg(QLatin1String(word)),
                 verb.line);
    // The first statement of a batch may call a procedure without EXEC.
    const bool named =
        verb.isName() && !verb.source.startsWith(u'@') && (!more || !tokens[1].is(":"));
    if (first && named && looksLikeCall(tokens)) return exec(tokens);
    failSyntax(verb);
}

// "sp_addtype id, 'int'", but not a misspelt statement such as "CREAT TABLE t (...)".
bool BatchStream::looksLikeCall(std::span<const Token> tokens) const {
    TokenCursor cursor(tokens);
    const ObjectName name = cursor.objectName();
    if (name.name.startsWith(QLatin1String("sp_"), Qt::CaseInsensitive) ||
        name.name.startsWith(QLatin1String("xp_"), Qt::CaseInsensitive))
        return true;
    const Catalog catalog(session_, *session_.current);
    return name.database.isEmpty() && catalog.find(name).has_value();
}

void BatchStream::changed(qint64 rows) {
    session_.rowCount = rows;
    if (session_.noCount) return;
    Result result;
    result.affected = rows;
    results_.push_back(std::move(result));
}

std::unique_ptr<ResultStream> runBatch(SessionState& session, const QString& batchText,
                                       const CommandSpec& command) {
    return std::make_unique<BatchStream>(session, batchText, command);
}

}  // namespace zov::local
