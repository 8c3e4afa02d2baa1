#include "data/local/statement_runner.h"

#include "data/local/batch_steps.h"
#include "data/local/ddl.h"
#include "data/local/definitions.h"
#include "data/local/query_engine.h"
#include "data/local/server_store.h"

#include <QDateTime>
#include <QSet>

#include <deque>

namespace zov::local {
namespace {

constexpr qint64 MostSteps = 50'000'000;   // a WHILE that never ends, ends here
constexpr int MostFrames = 32;             // nested EXEC, as the server's limit

bool same(const QString& a, const char* b) { return a.compare(QLatin1String(b), Qt::CaseInsensitive) == 0; }

/// Rows of one text column that a system procedure gave.
class TextRows : public ResultStream {
 public:
    TextRows(const QString& column, std::vector<QString> lines) : lines_(std::move(lines)) {
        ColumnInfo info;
        info.name = column;
        info.type = SqlType::NVarChar;
        info.size = 255;
        columns_.push_back(info);
    }
    const std::vector<ColumnInfo>& columns() const override { return columns_; }
    qsizetype fetch(RowStore& rows, qsizetype maxRows) override {
        qsizetype count = 0;
        for (; count < maxRows && at_ < lines_.size(); ++count) rows.column(0).appendText(lines_[at_++]);
        return count;
    }
    bool nextResult() override { return false; }
    void close() override { at_ = lines_.size(); }

 private:
    std::vector<ColumnInfo> columns_;
    std::vector<QString> lines_;
    size_t at_ = 0;
};

/// The first rows of another stream, for SET ROWCOUNT.
class LimitedRows : public ResultStream {
 public:
    LimitedRows(std::unique_ptr<ResultStream> rows, qint64 limit) : rows_(std::move(rows)), left_(limit) {}
    const std::vector<ColumnInfo>& columns() const override { return rows_->columns(); }
    qsizetype fetch(RowStore& rows, qsizetype maxRows) override {
        if (left_ <= 0) return 0;
        const qsizetype count = rows_->fetch(rows, qsizetype(std::min<qint64>(maxRows, left_)));
        left_ -= count;
        return count;
    }
    bool nextResult() override { return false; }
    void close() override { rows_->close(); }

 private:
    std::unique_ptr<ResultStream> rows_;
    qint64 left_;
};

StoredValue storedValue(const QVariant& value) {
    if (!value.isValid() || value.isNull()) return StoredValue::null();
    switch (value.typeId()) {
        case QMetaType::Bool: return StoredValue::ofInteger(value.toBool(), SqlType::Bit);
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Short: return StoredValue::ofInteger(value.toLongLong());
        case QMetaType::LongLong:
        case QMetaType::ULongLong: return StoredValue::ofInteger(value.toLongLong(), SqlType::BigInt);
        case QMetaType::Double:
        case QMetaType::Float: return StoredValue::ofReal(value.toDouble());
        case QMetaType::QDateTime:
            return StoredValue::ofText(value.toDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz")));
        case QMetaType::QDate: return StoredValue::ofText(value.toDate().toString(Qt::ISODate));
        case QMetaType::QByteArray: {
            StoredValue bytes;
            bytes.kind = StoredValue::Kind::Blob;
            bytes.bytes = value.toByteArray();
            bytes.type.type = SqlType::VarBinary;
            bytes.type.size = -1;
            return bytes;
        }
        default: return StoredValue::ofText(value.toString());
    }
}

QVariant variantOf(const StoredValue& value) {
    switch (value.kind) {
        case StoredValue::Kind::Null: return {};
        case StoredValue::Kind::Integer: return QVariant::fromValue(value.integer);
        case StoredValue::Kind::Real: return value.real;
        case StoredValue::Kind::Text: return QString::fromUtf8(value.bytes);
        case StoredValue::Kind::Blob: return value.bytes;
    }
    return {};
}

ColumnInfo typeOfParameter(const CommandParameter& parameter) {
    ColumnInfo info;
    switch (parameter.type) {
        case 3: info.type = SqlType::Int; break;
        case 5: info.type = SqlType::Float; break;
        case 7: info.type = SqlType::DateTime; break;
        case 11: info.type = SqlType::Bit; break;
        default:
            info.type = SqlType::NVarChar;
            info.size = -1;
            break;
    }
    return info;
}

// The printf-like text of RAISERROR.
QString formatMessage(const QString& format, const std::vector<StoredValue>& arguments) {
    QString text;
    size_t next = 0;
    for (qsizetype i = 0; i < format.size(); ++i) {
        if (format[i] != u'%') {
            text += format[i];
            continue;
        }
        if (i + 1 < format.size() && format[i + 1] == u'%') {
            text += u'%';
            ++i;
            continue;
        }
        qsizetype at = i + 1;
        bool left = false, zero = false, plus = false;
        for (; at < format.size() && QStringLiteral("-+0# ").contains(format[at]); ++at) {
            left = left || format[at] == u'-';
            zero = zero || format[at] == u'0';
            plus = plus || format[at] == u'+';
        }
        const auto size = [&] {
            int value = 0;
            if (at < format.size() && format[at] == u'*') {
                value = next < arguments.size() ? int(arguments[next++].toInteger()) : 0;
                ++at;
            }
            while (at < format.size() && format[at].isDigit()) value = std::min(value * 10 + format[at++].digitValue(), 2048);
            return value;
        };
        const int width = size();
        int precision = -1;
        if (at < format.size() && format[at] == u'.') {
            ++at;
            precision = size();
        }
        if (QStringView(format).mid(at).startsWith(u"I64")) at += 3;
        while (at < format.size() && (format[at] == u'l' || format[at] == u'h')) ++at;
        if (at >= format.size() || !QStringLiteral("dsiouxX").contains(format[at])) {
            text += format[i];   // no placeholder after all
            continue;
        }
        QString part = QStringLiteral("(null)");
        if (next < arguments.size()) {
            const StoredValue& value = arguments[next++];
            if (!value.isNull()) {
                switch (format[at].unicode()) {
                    case u's': part = value.text(); break;
                    case u'o': part = QString::number(quint64(value.toInteger()), 8); break;
                    case u'x': part = QString::number(quint32(value.toInteger()), 16); break;
                    case u'X': part = QString::number(quint32(value.toInteger()), 16).toUpper(); break;
                    case u'u': part = QString::number(quint32(value.toInteger())); break;
                    default: part = (plus && value.toInteger() >= 0 ? QStringLiteral("+") : QString()) +
                                    QString::number(value.toInteger());
                }
            }
            if (format[at] == u's' && precision >= 0) part.truncate(precision);
        }
        const bool zeros = zero && !left && format[at] != u's';
        text += left ? part.leftJustified(width) : part.rightJustified(width, zeros ? u'0' : u' ');
        i = at;
    }
    return text;
}

/// One text that is being run: the batch, or what EXEC was given.
struct Frame {
    QString text;
    std::vector<Token> tokens;
    std::vector<BatchStep> steps;
    size_t at = 0;                      // the step to run next
    std::vector<size_t> tries;          // where errors go, innermost last
    std::shared_ptr<Variables> variables = std::make_shared<Variables>();
    QString returnTo;                   // the database that was current before, empty for the batch
    struct Output {
        QString inner, outer;
    };
    std::vector<Output> outputs;        // of sp_executesql, for the caller's variables

    std::span<const Token> span(const BatchStep& step) const {
        return std::span<const Token>(tokens).subspan(step.begin, step.end - step.begin);
    }
};

class BatchStream : public ResultStream {
 public:
    BatchStream(SessionState& session, const QString& text, const CommandSpec& command)
        : session_(session), command_(command) {
        if (!session_.current || !session_.current->handle)
            session_.current = &session_.store->database(QStringLiteral("master"));
        session_.store->noticeForeignChanges();
        if (command.storedProcedure) startProcedure(text);
        else startText(text);
        run();
        takeNext();
    }
    ~BatchStream() override { BatchStream::close(); }

    const std::vector<ColumnInfo>& columns() const override {
        static const std::vector<ColumnInfo> none;
        return current_.rows ? current_.rows->columns() : none;
    }
    qsizetype fetch(RowStore& rows, qsizetype maxRows) override {
        if (!current_.rows) return 0;
        try {
            return current_.rows->fetch(rows, maxRows);
        } catch (DbError& error) {
            frames_.clear();
            if (error.line == 0) error.line = rowsLine_;
            throw;
        }
    }
    qint64 affectedRows() const override { return current_.rows ? current_.rows->affectedRows() : current_.affected; }
    bool nextResult() override {
        current_ = {};
        if (results_.empty()) run();
        return takeNext();
    }
    qint32 returnValue() const override { return returnValue_; }
    QVariant outputValue(int parameterIndex) const override {
        if (!parameters_ || parameterIndex < 0 || size_t(parameterIndex) >= command_.parameters.size()) return {};
        const StoredValue* value = parameters_->find(parameterName(size_t(parameterIndex)));
        return value ? variantOf(*value) : QVariant();
    }
    void close() override {
        current_ = {};
        results_.clear();
        while (!frames_.empty()) leaveFrame();
    }

 private:
    struct Result {
        std::unique_ptr<ResultStream> rows;
        qint64 affected = -1;
    };

    bool takeNext() {
        if (results_.empty()) return false;
        current_ = std::move(results_.front());
        results_.pop_front();
        return true;
    }

    QString parameterName(size_t index) const {
        const QString name = command_.parameters[index].name;
        return name.startsWith(u'@') ? name : u'@' + name;
    }

    Frame& frame() { return *frames_.back(); }
    Variables& variables() { return *frame().variables; }

    void pushFrame(const QString& text) {
        if (frames_.size() >= MostFrames)
            fail(217, QStringLiteral("Maximum stored procedure, function, trigger, or view nesting level exceeded "
                                     "(limit 32)."));
        auto frame = std::make_unique<Frame>();
        frame->text = text;
        frame->tokens = tokenize(frame->text, session_.quotedIdentifier);
        frame->steps = cutBatch(frame->tokens);
        if (!frames_.empty()) frame->returnTo = session_.current->name;
        frames_.push_back(std::move(frame));
    }

    void leaveFrame() {
        const std::unique_ptr<Frame> done = std::move(frames_.back());
        frames_.pop_back();
        if (frames_.empty()) return;
        for (const Frame::Output& output : done->outputs)
            if (const StoredValue* value = done->variables->find(output.inner))
                variables().assign(session_, output.outer, *value);
        // USE within EXEC ends with it.
        if (done->returnTo != session_.current->name && session_.store->hasDatabase(done->returnTo))
            session_.current = &session_.store->database(done->returnTo);
    }

    void startText(const QString& text) {
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

    // A call of a procedure by name, with the command's parameters.
    void startProcedure(const QString& written) {
        const ObjectName name = ObjectName::parse(written);
        std::vector<Given> given;
        for (size_t i = 0; i < command_.parameters.size(); ++i) {
            const CommandParameter& parameter = command_.parameters[i];
            if (parameter.direction == 4) continue;
            Given argument;
            if (!parameter.name.isEmpty()) argument.name = parameterName(i);
            argument.value = storedValue(parameter.value);
            argument.output = (parameter.direction & 2) != 0 ? argument.name : QString();
            given.push_back(std::move(argument));
        }
        pushFrame(QString());   // the caller of what is called
        if (same(name.name, "sp_executesql")) {
            executeSql(given);
            parameters_ = frame().variables;
            for (Frame::Output& output : frame().outputs) output.outer.clear();
            frame().outputs.clear();
            return;
        }
        statement([&] { callProcedure(name, given); }, 1, {});
    }

    // Runs until a result with rows is there, or all is done.
    void run() {
        while (!frames_.empty() && (results_.empty() || !results_.back().rows)) {
            if (frame().at >= frame().steps.size()) {
                leaveFrame();
                continue;
            }
            checkLimits();
            const BatchStep step = frame().steps[frame().at++];
            switch (step.kind) {
                case BatchStep::Kind::Jump: frame().at = step.target; break;
                case BatchStep::Kind::EnterTry: frame().tries.push_back(step.target); break;
                case BatchStep::Kind::LeaveTry:
                    if (!frame().tries.empty()) frame().tries.pop_back();
                    break;
                case BatchStep::Kind::LeaveCatch: session_.caught.reset(); break;
                case BatchStep::Kind::Return: leaveText(step); break;
                case BatchStep::Kind::BranchUnless: {
                    const size_t depth = frames_.size();
                    bool holds = false;
                    statement([&] { holds = evaluateCondition(session_, frame().span(step), variables()); },
                              step.line, frame().span(step));
                    // A failed condition may have jumped to a CATCH already.
                    if (!failed_ && !holds && frames_.size() == depth) frame().at = step.target;
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

    void checkLimits() {
        if (++steps_ > MostSteps)
            fail(40000, QStringLiteral("The batch was stopped: a loop in it does not seem to end."));
        if (!session_.control) return;
        if (session_.control->cancelled)
            throw DbError(ado_error::Cancelled, QStringLiteral("Operation canceled."), QStringLiteral("HY008"));
        if (session_.control->limited && (steps_ & 63) == 0 &&
            std::chrono::steady_clock::now() > session_.control->deadline)
            throw DbError(ado_error::Timeout, QStringLiteral("Query timeout expired"), QStringLiteral("HYT00"));
    }

    void leaveText(const BatchStep& step) {
        const std::span<const Token> tokens = frame().span(step).subspan(1);
        if (!tokens.empty()) {
            statement([&] { returnValue_ = qint32(evaluate(session_, tokens, variables()).toInteger()); }, step.line,
                      frame().span(step));
            if (failed_) return;
        }
        leaveFrame();
    }

    // One statement: all of it or nothing; an error goes to the CATCH around it, or out with the line
    // of the batch's own statement.
    template <typename Action>
    void statement(Action&& action, int line, std::span<const Token> tokens) {
        failed_ = false;
        const size_t depth = frames_.size();
        session_.store->beginStatement();
        try {
            action();
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

    void handle(DbError& error, int line, std::span<const Token> tokens) {
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
        if (frames_.size() > 1 && session_.store->hasDatabase(frames_[1]->returnTo))
            session_.current = &session_.store->database(frames_[1]->returnTo);
        frames_.clear();
        throw error;
    }

    void execute(std::span<const Token> tokens, bool first) {
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
        if (verb.is("CHECKPOINT") || verb.is("RECONFIGURE")) return;   // nothing waits to be written
        if (verb.is("DBCC")) return dbcc(tokens);
        for (const char* word : {"CREATE", "ALTER", "DROP", "TRUNCATE", "GRANT", "DENY", "REVOKE", "UPDATE", "ENABLE",
                                 "DISABLE"})
            if (verb.is(word)) return define(tokens, first);
        for (const char* word : {"MERGE", "BULK", "BACKUP", "RESTORE", "WAITFOR", "KILL", "SHUTDOWN", "OPEN", "FETCH",
                                 "CLOSE", "DEALLOCATE", "GOTO", "SAVE", "READTEXT", "WRITETEXT", "UPDATETEXT",
                                 "REVERT", "SETUSER", "DUMP", "LOAD"})
            if (verb.is(word))
                fail(40000, QStringLiteral("The embedded server doesn't run %1 statements.").arg(QLatin1String(word)),
                     verb.line);
        // The first statement of a batch may call a procedure without EXEC.
        const bool named = verb.isName() && !verb.source.startsWith(u'@') && (!more || !tokens[1].is(":"));
        if (first && named && looksLikeCall(tokens)) return exec(tokens);
        failSyntax(verb);
    }

    // "sp_addtype id, 'int'", but not a misspelt statement such as "CREAT TABLE t (...)".
    bool looksLikeCall(std::span<const Token> tokens) const {
        TokenCursor cursor(tokens);
        const ObjectName name = cursor.objectName();
        if (name.name.startsWith(QLatin1String("sp_"), Qt::CaseInsensitive) ||
            name.name.startsWith(QLatin1String("xp_"), Qt::CaseInsensitive))
            return true;
        const Catalog catalog(session_, *session_.current);
        return name.database.isEmpty() && catalog.find(name).has_value();
    }

    void changed(qint64 rows) {
        session_.rowCount = rows;
        if (session_.noCount) return;
        Result result;
        result.affected = rows;
        results_.push_back(std::move(result));
    }

    void define(std::span<const Token> tokens, bool first) {
        Definition definition;
        definition.tokens = tokens;
        // Only modules keep the text of their batch.
        definition.batchText = frame().text;
        definition.opensBatch = first;
        runDefinition(session_, definition);
    }

    void query(std::span<const Token> tokens) {
        size_t verb = 0;
        if (tokens.front().is("WITH")) {
            int depth = 0;
            for (verb = 0; verb < tokens.size(); ++verb) {
                if (tokens[verb].is("(")) ++depth;
                if (tokens[verb].is(")")) --depth;
                if (depth == 0 && (tokens[verb].is("SELECT") || tokens[verb].is("INSERT") || tokens[verb].is("UPDATE") ||
                                   tokens[verb].is("DELETE")))
                    break;
            }
            if (verb < tokens.size()) {
                if (tokens[verb].is("INSERT")) return changed(runInsert(session_, tokens, variables()));
                if (tokens[verb].is("UPDATE")) return changed(runUpdate(session_, tokens, variables()));
                if (tokens[verb].is("DELETE")) return changed(runDelete(session_, tokens, variables()));
            }
        }
        if (const size_t into = intoOf(tokens); into > 0) return selectInto(tokens, into);
        std::unique_ptr<ResultStream> rows = runSelect(session_, tokens, variables());
        if (!rows || rows->columns().empty()) return;
        rowsLine_ = tokens.front().line;
        Result result;
        if (session_.rowCountLimit > 0) rows = std::make_unique<LimitedRows>(std::move(rows), session_.rowCountLimit);
        result.rows = std::move(rows);
        results_.push_back(std::move(result));
    }

    // The place of SELECT ... INTO table, 0 without.
    static size_t intoOf(std::span<const Token> tokens) {
        int depth = 0;
        for (size_t i = 0; i < tokens.size(); ++i) {
            if (tokens[i].is("(")) ++depth;
            if (tokens[i].is(")")) --depth;
            if (depth > 0) continue;
            if (tokens[i].is("FROM") || tokens[i].is("UNION")) return 0;
            if (tokens[i].is("INTO")) return i;
        }
        return 0;
    }

    void selectInto(std::span<const Token> tokens, size_t into) {
        TokenCursor cursor(tokens.subspan(into + 1));
        const ObjectName name = cursor.objectName();
        if (name.name.startsWith(u'#'))
            fail(40000, QStringLiteral("The embedded server keeps no temporary tables ('%1').").arg(name.name), name.line);
        const std::span<const Token> before = tokens.first(into);
        const std::span<const Token> after = cursor.rest();
        const QString select = sourceText(before) + u' ' + sourceText(after);
        const std::vector<Token> selectTokens = tokenize(select, session_.quotedIdentifier);
        const std::vector<ColumnInfo> columns =
            describeSelect(session_, std::span<const Token>(selectTokens).first(selectTokens.size() - 1));
        QString target = bracketed(name.name);
        if (!name.schema.isEmpty()) target.prepend(bracketed(name.schema) + u'.');
        if (!name.database.isEmpty())
            target.prepend(bracketed(name.database) + (name.schema.isEmpty() ? QStringLiteral("..") : QStringLiteral(".")));
        {
            Catalog catalog = Catalog::forWriting(session_, name);
            ObjectFacts table;
            table.name = name.name;
            table.schemaId = catalog.requireSchema(name.schema);
            table.schema = catalog.schemaName(table.schemaId);
            table.xtype = QStringLiteral("U");
            table.id = catalog.addObject(table.name, table.schemaId, table.xtype);
            CatalogQuery(catalog.handle(), "INSERT INTO \"zov$indexes\"(id, indid, name) VALUES(?, 0, NULL)")
                .add(table.id)
                .run();
            std::vector<ColumnSpec> specs;
            for (const ColumnInfo& info : columns) {
                ColumnSpec spec;
                spec.facts.name = info.name;
                if (info.name.isEmpty())
                    fail(1038, QStringLiteral("An object or column name is missing or empty. For SELECT INTO "
                                              "statements, verify each column has a name."),
                         name.line);
                spec.facts.type = typeFacts(info);
                spec.nullable = info.nullable;
                spec.line = name.line;
                specs.push_back(std::move(spec));
            }
            writeColumns(catalog, table, specs, {});
            makeStorage(catalog, table);
        }
        const QString insert = QStringLiteral("INSERT INTO %1 %2").arg(target, select);
        const std::vector<Token> insertTokens = tokenize(insert, session_.quotedIdentifier);
        changed(runInsert(session_, std::span<const Token>(insertTokens).first(insertTokens.size() - 1), variables()));
    }

    void use(std::span<const Token> tokens) {
        TokenCursor cursor(tokens.subspan(1));
        const QString name = cursor.name();
        cursor.expectEnd();
        session_.current = &session_.store->database(name);
    }

    void transaction(std::span<const Token> tokens) {
        TokenCursor cursor(tokens);
        const Token& verb = cursor.next();
        if (verb.is("BEGIN")) cursor.accept("DISTRIBUTED");
        if (!cursor.accept("TRAN") && !cursor.accept("TRANSACTION") && !cursor.accept("WORK") && verb.is("BEGIN"))
            cursor.failHere();
        if (cursor.peek().isName() && !cursor.is("WITH")) cursor.name();
        if (cursor.accept("WITH")) {
            if (cursor.accept("MARK")) {
                if (!cursor.atEnd()) cursor.next();
            } else {
                cursor.parenthesised();
            }
        }
        cursor.expectEnd();
        if (verb.is("BEGIN")) session_.store->beginTransaction();
        else if (verb.is("COMMIT")) session_.store->commitTransaction();
        else session_.store->rollbackTransaction();
    }

    void print(std::span<const Token> expression) {
        if (expression.empty()) failSyntax(Token());
        session_.messages.push_back({0, 0, expression.front().line, evaluate(session_, expression, variables()).text()});
    }

    void declare(std::span<const Token> tokens) {
        TokenCursor cursor(tokens.subspan(1));
        do {
            const Token& name = cursor.next();
            if (!name.source.startsWith(u'@'))
                fail(40000, QStringLiteral("The embedded server doesn't run cursors."), name.line);
            cursor.accept("AS");
            if (cursor.is("TABLE"))
                fail(40000, QStringLiteral("The embedded server keeps no table variables ('%1').").arg(name.source),
                     name.line);
            if (cursor.is("CURSOR"))
                fail(40000, QStringLiteral("The embedded server doesn't run cursors."), name.line);
            qsizetype end = 0;
            const std::span<const Token> rest = cursor.rest();
            if (rest.empty()) cursor.failHere();
            const ColumnInfo type = parseDataType(session_, rest, 0, end);
            cursor.skip(size_t(end));
            if (!variables().declare(name.source.toString(), type))
                fail(134, QStringLiteral("The variable name '%1' has already been declared. Variable names must be "
                                         "unique within a query batch or stored procedure.")
                              .arg(name.source),
                     name.line);
            if (cursor.accept("="))
                variables().assign(session_, name.source.toString(),
                                   evaluate(session_, cursor.until({}), variables()));
        } while (cursor.accept(","));
        cursor.expectEnd();
    }

    void set(std::span<const Token> tokens) {
        TokenCursor cursor(tokens.subspan(1));
        if (cursor.peek().source.startsWith(u'@')) return setVariable(cursor);
        if (cursor.accept("IDENTITY_INSERT")) return setIdentityInsert(cursor);
        if (cursor.accept({"TRANSACTION", "ISOLATION", "LEVEL"})) {
            if (!cursor.accept({"READ", "UNCOMMITTED"}) && !cursor.accept({"READ", "COMMITTED"}) &&
                !cursor.accept({"REPEATABLE", "READ"}) && !cursor.accept("SNAPSHOT") && !cursor.accept("SERIALIZABLE"))
                cursor.failHere();
            cursor.expectEnd();
            return;
        }
        if (cursor.accept("STATISTICS")) {
            do cursor.name();
            while (cursor.accept(","));
            if (!cursor.accept("ON")) cursor.expect("OFF");
            cursor.expectEnd();
            return;
        }
        static const QSet<QString> switches = [] {
            QSet<QString> set;
            for (const char* name :
                 {"ANSI_DEFAULTS", "ANSI_NULLS", "ANSI_NULL_DFLT_ON", "ANSI_NULL_DFLT_OFF", "ANSI_PADDING",
                  "ANSI_WARNINGS", "ARITHABORT", "ARITHIGNORE", "CONCAT_NULL_YIELDS_NULL", "CURSOR_CLOSE_ON_COMMIT",
                  "FMTONLY", "FORCEPLAN", "IMPLICIT_TRANSACTIONS", "NOCOUNT", "NOEXEC", "NUMERIC_ROUNDABORT", "PARSEONLY",
                  "QUOTED_IDENTIFIER", "REMOTE_PROC_TRANSACTIONS", "SHOWPLAN_ALL", "SHOWPLAN_TEXT", "SHOWPLAN_XML",
                  "XACT_ABORT", "NO_BROWSETABLE", "DISABLE_DEF_CNST_CHK"})
                set.insert(QLatin1String(name));
            return set;
        }();
        static const QSet<QString> valued = [] {
            QSet<QString> set;
            for (const char* name : {"DATEFIRST", "DATEFORMAT", "DEADLOCK_PRIORITY", "LANGUAGE", "LOCK_TIMEOUT", "ROWCOUNT",
                                     "TEXTSIZE", "QUERY_GOVERNOR_COST_LIMIT", "CONTEXT_INFO"})
                set.insert(QLatin1String(name));
            return set;
        }();
        const Token& option = cursor.peek();
        QStringList names;
        do names.push_back(cursor.name().toUpper());
        while (cursor.accept(","));
        if (names.size() == 1 && valued.contains(names.front())) return setValue(names.front(), cursor, option);
        for (const QString& name : names)
            if (!switches.contains(name))
                fail(195, QStringLiteral("'%1' is not a recognized SET option.").arg(name), option.line);
        const bool on = cursor.accept("ON");
        if (!on) cursor.expect("OFF");
        cursor.expectEnd();
        for (const QString& name : names) {
            if (name == QLatin1String("NOCOUNT")) session_.noCount = on;
            if (name == QLatin1String("QUOTED_IDENTIFIER") || name == QLatin1String("ANSI_DEFAULTS"))
                session_.quotedIdentifier = on;
            if (name == QLatin1String("ANSI_NULLS") || name == QLatin1String("ANSI_DEFAULTS")) session_.ansiNulls = on;
            if (on && (name == QLatin1String("NOEXEC") || name == QLatin1String("PARSEONLY") ||
                       name == QLatin1String("IMPLICIT_TRANSACTIONS")))
                fail(40000, QStringLiteral("The embedded server doesn't know SET %1 ON.").arg(name), option.line);
        }
    }

    void setValue(const QString& name, TokenCursor& cursor, const Token& option) {
        QString value;
        if (cursor.peek().source.startsWith(u'@')) {
            const std::span<const Token> rest = cursor.rest();
            value = evaluate(session_, rest, variables()).text();
        } else if (cursor.is("-") || cursor.peek().kind == TokenKind::Number) {
            value = cursor.wholeNumber();
            cursor.expectEnd();
        } else {
            value = cursor.peek().kind == TokenKind::Binary ? cursor.next().source.toString() : cursor.nameOrText();
            cursor.expectEnd();
        }
        if (name == QLatin1String("ROWCOUNT")) session_.rowCountLimit = value.toLongLong();
        if (name == QLatin1String("DATEFORMAT")) {
            const QString format = value.toLower();
            static const QStringList formats = {QStringLiteral("mdy"), QStringLiteral("dmy"), QStringLiteral("ymd"),
                                                QStringLiteral("ydm"), QStringLiteral("myd"), QStringLiteral("dym")};
            if (!formats.contains(format))
                fail(2741, QStringLiteral("SET DATEFORMAT date order '%1' is invalid.").arg(value), option.line);
            session_.dateFormat = format;
        }
        if (name == QLatin1String("LANGUAGE"))
            session_.dateFormat = same(value, "us_english") || same(value, "english") ? QStringLiteral("mdy")
                                                                                      : QStringLiteral("dmy");
    }

    void setVariable(TokenCursor& cursor) {
        const Token& name = cursor.next();
        const Token& op = cursor.next();
        const std::span<const Token> expression = cursor.rest();
        if (expression.empty()) cursor.failHere();
        if (op.is("=")) {
            variables().assign(session_, name.source.toString(), evaluate(session_, expression, variables()));
            return;
        }
        if (op.source.size() != 2 || op.source[1] != u'=') failSyntax(op);
        const QString text =
            name.source.toString() + u' ' + op.source[0] + QStringLiteral(" (") + sourceText(expression) + u')';
        const std::vector<Token> tokens = tokenize(text, session_.quotedIdentifier);
        variables().assign(session_, name.source.toString(),
                           evaluate(session_, std::span<const Token>(tokens).first(tokens.size() - 1), variables()));
    }

    void setIdentityInsert(TokenCursor& cursor) {
        const ObjectName name = cursor.objectName();
        const bool on = cursor.accept("ON");
        if (!on) cursor.expect("OFF");
        cursor.expectEnd();
        Database& database = name.database.isEmpty() ? *session_.current : session_.store->database(name.database);
        const Catalog catalog(session_, database);
        const ObjectFacts table = catalog.requireTable(name, "index");
        bool identity = false;
        for (const ColumnFacts& column : catalog.columns(table.id)) identity = identity || !column.seed.isNull();
        if (!identity)
            fail(8106, QStringLiteral("Table '%1' does not have the identity property. Cannot perform SET operation.")
                           .arg(name.display()),
                 name.line);
        if (on && session_.identityInsert && session_.identityInsertTable != table.id) {
            const auto other = catalog.find(session_.identityInsertTable);
            fail(8107, QStringLiteral("IDENTITY_INSERT is already ON for table '%1'. Cannot perform SET operation for "
                                      "table '%2'.")
                           .arg(other ? database.name + u'.' + other->display() : QString(), name.display()),
                 name.line);
        }
        if (!on && session_.identityInsertTable != table.id) return;
        session_.identityInsert = on;
        session_.identityInsertTable = on ? table.id : 0;
    }

    std::vector<StoredValue> values(TokenCursor& cursor) {
        std::vector<StoredValue> result;
        while (cursor.accept(",")) result.push_back(evaluate(session_, cursor.until({}), variables()));
        return result;
    }

    [[noreturn]] void raise(qint32 number, int severity, int state, const QString& text, int line) {
        raisedSeverity_ = severity;
        raisedState_ = state;
        fail(number, text, line);
    }

    void raiseError(std::span<const Token> tokens) {
        const int line = tokens.front().line;
        TokenCursor outer(tokens.subspan(1));
        if (!outer.is("(")) {
            // RAISERROR 50001 'text', the form of old scripts
            const StoredValue number = evaluate(session_, outer.rest().first(1), variables());
            outer.next();
            if (outer.atEnd()) outer.failHere();
            raise(qint32(number.toInteger()), 16, 1, evaluate(session_, outer.rest(), variables()).text(), line);
        }
        TokenCursor cursor(outer.parenthesised());
        const StoredValue message = evaluate(session_, cursor.until({}), variables());
        cursor.expect(",");
        const int severity = int(evaluate(session_, cursor.until({}), variables()).toInteger());
        cursor.expect(",");
        const int state = int(evaluate(session_, cursor.until({}), variables()).toInteger());
        const std::vector<StoredValue> arguments = values(cursor);
        cursor.expectEnd();
        if (outer.accept("WITH"))
            do {
                if (!outer.accept("NOWAIT") && !outer.accept("LOG") && !outer.accept("SETERROR")) outer.failHere();
            } while (outer.accept(","));
        outer.expectEnd();
        const bool byNumber = message.kind == StoredValue::Kind::Integer;
        const qint32 number = byNumber ? qint32(message.integer) : 50000;
        const QString text =
            byNumber ? QStringLiteral("Error %1, severity %2, state %3 was raised, but no message with that error number "
                                      "was found in sys.messages.")
                           .arg(number)
                           .arg(severity)
                           .arg(state)
                     : formatMessage(message.text(), arguments);
        if (severity > 10) raise(number, severity, state, text, line);
        session_.messages.push_back({severity, number, line, text});
    }

    void throwError(std::span<const Token> tokens) {
        const int line = tokens.front().line;
        TokenCursor cursor(tokens.subspan(1));
        if (cursor.atEnd()) {
            if (!session_.caught)
                fail(10704, QStringLiteral("To rethrow an error, a THROW statement must be used inside a CATCH block. "
                                           "Insert the THROW statement inside a CATCH block, or add error parameters to "
                                           "the THROW statement."),
                     line);
            const SessionState::CaughtError error = *session_.caught;
            raise(error.number, error.severity, error.state, error.text, error.line);
        }
        const qint64 number = evaluate(session_, cursor.until({}), variables()).toInteger();
        cursor.expect(",");
        const QString text = evaluate(session_, cursor.until({}), variables()).text();
        cursor.expect(",");
        const int state = int(evaluate(session_, cursor.until({}), variables()).toInteger());
        cursor.expectEnd();
        raise(qint32(number), 16, state, text, line);
    }

    void dbcc(std::span<const Token> tokens) {
        TokenCursor cursor(tokens.subspan(1));
        const Token& command = cursor.peek();
        const QString name = cursor.name().toUpper();
        static const QSet<QString> checks = [] {
            QSet<QString> set;
            for (const char* word :
                 {"CHECKALLOC", "CHECKCATALOG", "CHECKCONSTRAINTS", "CHECKDB", "CHECKTABLE", "CLEANTABLE", "DBREINDEX",
                  "DROPCLEANBUFFERS", "FREEPROCCACHE", "FREESYSTEMCACHE", "INDEXDEFRAG", "SHRINKDATABASE", "SHRINKFILE",
                  "TRACEON", "TRACEOFF", "UPDATEUSAGE"})
                set.insert(QLatin1String(word));
            return set;
        }();
        if (checks.contains(name)) return;   // they look after pages and caches that aren't here
        if (name != QLatin1String("CHECKIDENT"))
            fail(2526, QStringLiteral("Incorrect DBCC statement: the embedded server doesn't know DBCC %1.").arg(name),
                 command.line);
        TokenCursor inner(cursor.parenthesised());
        const ObjectName table = ObjectName::parse(inner.nameOrText());
        bool reseed = false;
        QString seed;
        if (inner.accept(",")) {
            if (inner.accept("RESEED")) {
                reseed = true;
                if (inner.accept(",")) seed = inner.wholeNumber();
            } else {
                inner.expect("NORESEED");
            }
        }
        inner.expectEnd();
        if (!reseed || seed.isNull()) return;
        Catalog catalog = Catalog::forWriting(session_, table);
        const ObjectFacts found = catalog.requireTable(table, "index");
        CatalogQuery(catalog.handle(),
                     "UPDATE \"zov$columns\" SET identity_last=? WHERE id=? AND identity_seed IS NOT NULL")
            .add(seed)
            .add(found.id)
            .run();
    }

    /// An argument of EXEC before it is known what is called.
    struct Given {
        QString name;      // "@x" or empty
        StoredValue value;
        QString output;    // the variable that gets the value back
    };

    void exec(std::span<const Token> tokens) {
        TokenCursor cursor(tokens);
        if (cursor.is("(")) {
            const std::span<const Token> expression = cursor.parenthesised();
            if (cursor.accept("AT"))
                fail(40000, QStringLiteral("The embedded server knows no linked servers."), tokens.front().line);
            if (cursor.accept("AS")) {
                cursor.next();
                cursor.expect("=");
                cursor.next();
            }
            cursor.expectEnd();
            const QString text = evaluate(session_, expression, variables()).text();
            pushFrame(text);
            return;
        }
        QString result;
        if (cursor.peek().source.startsWith(u'@') && cursor.peek(1).is("=")) {
            result = cursor.next().source.toString();
            cursor.next();
        }
        ObjectName name;
        if (cursor.peek().source.startsWith(u'@')) {
            const StoredValue* value = variables().find(cursor.peek().source.toString());
            if (!value)
                fail(137, QStringLiteral("Must declare the scalar variable \"%1\".").arg(cursor.peek().source),
                     cursor.peek().line);
            cursor.next();
            name = ObjectName::parse(value->text());
        } else {
            name = cursor.objectName();
        }
        if (cursor.accept(";")) cursor.wholeNumber();
        std::vector<Given> given;
        if (!cursor.atEnd() && !cursor.is("WITH")) {
            do given.push_back(argument(cursor));
            while (cursor.accept(","));
        }
        if (cursor.accept("WITH")) cursor.expect("RECOMPILE");
        cursor.expectEnd();
        if (same(name.name, "sp_executesql")) {
            executeSql(given);
            return;
        }
        callProcedure(name, given);
        if (!result.isEmpty()) variables().assign(session_, result, StoredValue::ofInteger(0));
    }

    Given argument(TokenCursor& cursor) {
        Given given;
        if (cursor.peek().source.startsWith(u'@') && cursor.peek(1).is("=")) {
            given.name = cursor.next().source.toString();
            cursor.next();
        }
        const Token& token = cursor.peek();
        if (token.kind == TokenKind::Word && !token.source.startsWith(u'@')) {
            // A bare word is a text, but for the two that mean something.
            cursor.next();
            if (!token.is("NULL") && !token.is("DEFAULT")) given.value = StoredValue::ofText(token.source.toString());
        } else if (token.kind == TokenKind::Quoted) {
            given.value = StoredValue::ofText(cursor.next().value);
        } else {
            const std::span<const Token> expression = cursor.until({"OUTPUT", "OUT", "WITH"});
            given.value = evaluate(session_, expression, variables());
            if (cursor.accept("OUTPUT") || cursor.accept("OUT")) given.output = token.source.toString();
        }
        return given;
    }

    void callProcedure(const ObjectName& name, const std::vector<Given>& given) {
        std::vector<Argument> arguments;
        for (const Given& one : given) {
            Argument argument;
            argument.name = one.name;
            argument.isNull = one.value.isNull();
            argument.text = one.value.text();
            arguments.push_back(std::move(argument));
        }
        std::vector<QString> lines;
        bool known = false;
        Database* const current = session_.current;
        try {
            // "Northwind..sp_rename" works on that database.
            if (!name.database.isEmpty() && !same(name.database, "master"))
                session_.current = &session_.store->database(name.database);
            known = runSystemProcedure(session_, name.name, arguments, lines);
            session_.current = current;
        } catch (DbError& error) {
            session_.current = current;
            error.line = 0;
            throw error;
        }
        if (!known) {
            const Catalog catalog(session_, *current);
            const auto found = name.database.isEmpty() ? catalog.find(name) : std::nullopt;
            if (found && found->xtype == QLatin1String("P"))
                fail(40000, QStringLiteral("The embedded server keeps procedures as text and doesn't run them: '%1'.")
                                .arg(name.display()),
                     name.line);
            fail(2812, QStringLiteral("Could not find stored procedure '%1'.").arg(name.display()), name.line);
        }
        if (lines.empty()) return;
        Result result;
        result.rows = std::make_unique<TextRows>(QStringLiteral("Text"), std::move(lines));
        results_.push_back(std::move(result));
    }

    // sp_executesql N'text', N'@a int, @b nvarchar(10) OUTPUT', values
    void executeSql(const std::vector<Given>& given) {
        if (given.empty())
            fail(201, QStringLiteral("Procedure or function 'sp_executesql' expects parameter '@statement', which was "
                                     "not supplied."));
        const QString text = given[0].value.text();
        const QString definitions = given.size() > 1 ? given[1].value.text() : QString();
        pushFrame(text);
        const std::vector<Token> tokens = tokenize(definitions, session_.quotedIdentifier);
        TokenCursor cursor(tokens);
        size_t position = 2;
        while (!cursor.atEnd()) {
            const QString name = cursor.next().source.toString();
            cursor.accept("AS");
            qsizetype end = 0;
            const ColumnInfo type = parseDataType(session_, cursor.rest(), 0, end);
            cursor.skip(size_t(end));
            const bool hasDefault = cursor.accept("=");
            StoredValue value;
            if (hasDefault) value = evaluate(session_, cursor.until({"OUTPUT", "OUT"}), variables());
            const bool output = cursor.accept("OUTPUT") || cursor.accept("OUT");
            variables().declare(name, type);
            const Given* found = nullptr;
            for (size_t i = 2; i < given.size(); ++i)
                if (given[i].name.compare(name, Qt::CaseInsensitive) == 0) found = &given[i];
            if (!found && position < given.size() && given[position].name.isEmpty()) found = &given[position];
            ++position;
            if (!found && !hasDefault)
                fail(8178, QStringLiteral("The parameterized query '%1' expects the parameter '%2', which was not "
                                          "supplied.")
                               .arg(text.left(200), name));
            variables().assign(session_, name, found ? found->value : value);
            if (found && output && !found->output.isEmpty()) frame().outputs.push_back({name, found->output});
            if (!cursor.accept(",")) break;
        }
        cursor.expectEnd();
    }

    SessionState& session_;
    CommandSpec command_;
    std::vector<std::unique_ptr<Frame>> frames_;
    std::deque<Result> results_;
    Result current_;
    std::shared_ptr<Variables> parameters_;
    qint32 returnValue_ = 0;
    qint64 steps_ = 0;
    bool failed_ = false;
    int raisedSeverity_ = 0;
    int raisedState_ = 1;
    int rowsLine_ = 0;
};

}  // namespace

std::unique_ptr<ResultStream> runBatch(SessionState& session, const QString& batchText, const CommandSpec& command) {
    return std::make_unique<BatchStream>(session, batchText, command);
}

}  // namespace zov::local
