#include "data/local/query_result.h"

#include "data/base/field_text.h"
#include "data/local/query_parser.h"
#include "data/local/query_translator.h"
#include "data/local/query_values.h"
#include "data/local/server_store.h"

#include <cmath>
#include <cstring>

namespace zov::local {
namespace {

constexpr int OperationsBetweenLooks = 2000;

int lookAtControl(void* data) {
    const auto* control = static_cast<const ExecutionControl*>(data);
    if (control->cancelled.load(std::memory_order_relaxed)) return 1;
    return control->limited.load(std::memory_order_relaxed) && std::chrono::steady_clock::now() > control->deadline;
}

}  // namespace

RunningGuard::RunningGuard(sqlite3* handle, std::shared_ptr<ExecutionControl> control)
    : handle_(handle), control_(std::move(control)) {
    if (control_) sqlite3_progress_handler(handle_, OperationsBetweenLooks, lookAtControl, control_.get());
}

RunningGuard::~RunningGuard() {
    if (control_) sqlite3_progress_handler(handle_, 0, nullptr, nullptr);
}

void bindValue(sqlite3_stmt* statement, int index, const StoredValue& value) {
    switch (value.kind) {
        case StoredValue::Kind::Null: sqlite3_bind_null(statement, index); break;
        case StoredValue::Kind::Integer: sqlite3_bind_int64(statement, index, value.integer); break;
        case StoredValue::Kind::Real: sqlite3_bind_double(statement, index, value.real); break;
        case StoredValue::Kind::Text:
            sqlite3_bind_text(statement, index, value.bytes.constData(), int(value.bytes.size()), SQLITE_TRANSIENT);
            break;
        case StoredValue::Kind::Blob:
            sqlite3_bind_blob(statement, index, value.bytes.constData(), int(value.bytes.size()), SQLITE_TRANSIENT);
            break;
    }
}

StoredValue globalValue(SessionState& session, const QString& name) {
    if (name == u"@@rowcount") return StoredValue::ofInteger(session.rowCount);
    if (name == u"@@trancount") return StoredValue::ofInteger(session.store ? session.store->transactionCount() : 0);
    if (name == u"@@identity") return session.lastIdentity ? StoredValue::ofInteger(*session.lastIdentity) : StoredValue::null();
    if (name == u"@@servername") return StoredValue::ofText(session.store ? session.store->serverName() : QString());
    if (name == u"@@version")
        return StoredValue::ofText(QStringLiteral("Microsoft SQL Server compatible embedded server - %1").arg(session.productVersion));
    if (name == u"@@language") return StoredValue::ofText(QStringLiteral("us_english"));
    if (name == u"@@servicename") return StoredValue::ofText(QStringLiteral("MSSQLSERVER"));
    if (name == u"@@spid") return StoredValue::ofInteger(51);
    if (name == u"@@max_precision") return StoredValue::ofInteger(38);
    if (name == u"@@datefirst") return StoredValue::ofInteger(7);
    if (name == u"@@lock_timeout") return StoredValue::ofInteger(-1);
    if (name == u"@@fetch_status") return StoredValue::ofInteger(-1);
    if (name == u"@@textsize") return StoredValue::ofInteger(2147483647);
    if (name == u"@@error") return StoredValue::ofInteger(session.caught ? session.caught->number : 0);
    if (name == u"@@microsoftversion") return StoredValue::ofInteger(session.productVersion.section(u'.', 0, 0).toInt() << 24);
    if (name == u"db_name") return StoredValue::ofText(session.current ? session.current->name : QString());
    if (name == u"xact_state") return StoredValue::ofInteger(session.store && session.store->transactionCount() > 0);
    if (name.startsWith(QLatin1String("error_"))) {
        if (!session.caught) return StoredValue::null();
        if (name == u"error_message") return StoredValue::ofText(session.caught->text);
        if (name == u"error_number") return StoredValue::ofInteger(session.caught->number);
        if (name == u"error_severity") return StoredValue::ofInteger(session.caught->severity);
        if (name == u"error_state") return StoredValue::ofInteger(session.caught->state);
        if (name == u"error_line") return StoredValue::ofInteger(session.caught->line);
        return StoredValue::null();
    }
    return StoredValue::ofInteger(0);
}

void bindParameters(SessionState& session, const PreparedSelect& select, std::span<const Token> tokens,
                    const Variables& variables) {
    const int count = sqlite3_bind_parameter_count(select.statement);
    for (size_t i = 0; i < select.parameters.size() && int(i) < count; ++i) {
        const ParameterSource& parameter = select.parameters[i];
        const int index = int(i) + 1;
        StoredValue value;
        switch (parameter.kind) {
            case ParameterSource::Kind::Literal: {
                const Token& token = tokens[size_t(parameter.literal)];
                if (token.kind == TokenKind::String && !parameter.convert) {
                    const QByteArray utf8 = token.value.toUtf8();
                    sqlite3_bind_text(select.statement, index, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
                    continue;
                }
                value = literalValue(token);
                break;
            }
            case ParameterSource::Kind::Variable: {
                const StoredValue* found = variables.find(parameter.name);
                if (found) value = *found;
                break;
            }
            case ParameterSource::Kind::Global: value = globalValue(session, parameter.name); break;
        }
        if (parameter.convert) value = convertStored(value, parameter.target, true, session.dateFormat);
        bindValue(select.statement, index, value);
    }
}

StoredValue columnValue(sqlite3_stmt* statement, int column, const ColumnInfo& type) {
    StoredValue value;
    value.type = type;
    value.type.name.clear();
    switch (sqlite3_column_type(statement, column)) {
        case SQLITE_INTEGER:
            value.kind = StoredValue::Kind::Integer;
            value.integer = sqlite3_column_int64(statement, column);
            break;
        case SQLITE_FLOAT:
            value.kind = StoredValue::Kind::Real;
            value.real = sqlite3_column_double(statement, column);
            break;
        case SQLITE_TEXT:
            value.kind = StoredValue::Kind::Text;
            value.bytes = QByteArray(reinterpret_cast<const char*>(sqlite3_column_text(statement, column)), sqlite3_column_bytes(statement, column));
            break;
        case SQLITE_BLOB:
            value.kind = StoredValue::Kind::Blob;
            value.bytes = QByteArray(static_cast<const char*>(sqlite3_column_blob(statement, column)), sqlite3_column_bytes(statement, column));
            break;
        default: break;
    }
    return value;
}

// --- reading cells ------------------------------------------------------------------------------

namespace {

const qint64 powersOfTen[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000, 10000000000,
                              100000000000, 1000000000000, 10000000000000, 100000000000000, 1000000000000000,
                              10000000000000000, 100000000000000000, 1000000000000000000};

void appendSlowly(ColumnCells& cells, sqlite3_value* value);

[[noreturn]] void cellFailed(const ColumnCells& cells, sqlite3_value* value) {
    failWith(8114, QStringLiteral("The value '%1' of column '%2' is no %3.")
                       .arg(QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_value_text(value))), cells.info().name,
                            sqlTypeName(cells.info().type)),
             ado_number::CannotConvert);
}

void appendScaled(ColumnCells& cells, sqlite3_value* value) {
    const int scale = std::clamp(cells.info().scale, 0, 18);
    switch (sqlite3_value_type(value)) {
        case SQLITE_NULL: cells.appendNull(); return;
        case SQLITE_INTEGER: cells.appendInteger(sqlite3_value_int64(value) * powersOfTen[scale]); return;
        case SQLITE_FLOAT: cells.appendInteger(std::llround(sqlite3_value_double(value) * double(powersOfTen[scale]))); return;
        default: break;
    }
    DecimalText decimal;
    if (!DecimalText::parse(QByteArrayView(reinterpret_cast<const char*>(sqlite3_value_text(value)), sqlite3_value_bytes(value)), decimal))
        cellFailed(cells, value);
    decimal.rescale(scale);
    bool fits = true;
    const qint64 digits = decimal.digits.isEmpty() ? 0 : decimal.digits.toLongLong(&fits);
    if (!fits) cellFailed(cells, value);
    cells.appendInteger(decimal.negative ? -digits : digits);
}

void appendGuid(ColumnCells& cells, sqlite3_value* value) {
    const char* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
    char bytes[16];
    int at = 0, high = -1;
    for (int i = 0; text && i < sqlite3_value_bytes(value) && at < 16; ++i) {
        const char c = text[i];
        const int digit = c >= '0' && c <= '9' ? c - '0' : c >= 'A' && c <= 'F' ? c - 'A' + 10 : c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
        if (digit < 0) continue;
        if (high < 0) {
            high = digit;
        } else {
            bytes[at++] = char(high << 4 | digit);
            high = -1;
        }
    }
    if (at != 16) cellFailed(cells, value);
    cells.appendBytes(bytes, 16);
}

/// A text that isn't one in SQLite, or a decimal too long for an integer.
void appendAsText(ColumnCells& cells, sqlite3_value* value) {
    StoredValue stored;
    stored.type = cells.info();
    switch (sqlite3_value_type(value)) {
        case SQLITE_INTEGER:
            stored.kind = StoredValue::Kind::Integer;
            stored.integer = sqlite3_value_int64(value);
            break;
        case SQLITE_FLOAT:
            stored.kind = StoredValue::Kind::Real;
            stored.real = sqlite3_value_double(value);
            break;
        default: {
            const auto* bytes = static_cast<const char*>(sqlite3_value_blob(value));
            cells.appendText(QStringLiteral("0x") + QString::fromLatin1(QByteArray(bytes, sqlite3_value_bytes(value)).toHex().toUpper()));
            return;
        }
    }
    const SqlType type = cells.info().type;
    if (type == SqlType::Decimal || type == SqlType::Numeric) {
        DecimalText decimal = DecimalText::ofValue(stored);
        if (decimal.scale > cells.info().scale) decimal.rescale(cells.info().scale);
        cells.appendText(QString::fromLatin1(decimal.canonical()));
    } else if (stored.kind == StoredValue::Kind::Real) {
        cells.appendText(QString::number(stored.real, 'g', QLocale::FloatingPointShortest));
    } else {
        cells.appendText(QString::number(stored.integer));
    }
}

void appendCell(ColumnCells& cells, sqlite3_value* value) {
    const int kind = sqlite3_value_type(value);
    if (kind == SQLITE_NULL) return cells.appendNull();
    switch (cells.storage()) {
        case Storage::Int8:
        case Storage::Int16:
        case Storage::Int32:
        case Storage::Int64:
            if (kind == SQLITE_INTEGER) return cells.appendInteger(sqlite3_value_int64(value));
            return appendSlowly(cells, value);
        case Storage::Float32:
        case Storage::Float64:
            if (kind == SQLITE_FLOAT || kind == SQLITE_INTEGER) return cells.appendReal(sqlite3_value_double(value));
            return appendSlowly(cells, value);
        case Storage::Scaled64: return appendScaled(cells, value);
        case Storage::Ticks:
        case Storage::TicksOffset: {
            qint64 ticks = 0;
            qint16 offset = 0;
            const char* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
            if (!text || !parseIsoTicks(text, sqlite3_value_bytes(value), ticks, offset)) return appendSlowly(cells, value);
            if (cells.storage() == Storage::Ticks) return cells.appendInteger(ticks);
            return cells.appendTicksOffset(ticks, offset);
        }
        case Storage::Guid: return appendGuid(cells, value);
        case Storage::Text:
            if (kind == SQLITE_TEXT) {
                const char* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
                return cells.appendUtf8(text, sqlite3_value_bytes(value));
            }
            return appendAsText(cells, value);
        case Storage::Bytes: {
            const void* bytes = sqlite3_value_blob(value);
            return cells.appendBytes(bytes, sqlite3_value_bytes(value));
        }
    }
}

/// The inferred type was not what came: converted as an assignment would.
void appendSlowly(ColumnCells& cells, sqlite3_value* value) {
    StoredValue stored;
    const int kind = sqlite3_value_type(value);
    stored.kind = kind == SQLITE_INTEGER ? StoredValue::Kind::Integer : kind == SQLITE_FLOAT ? StoredValue::Kind::Real
                  : kind == SQLITE_TEXT ? StoredValue::Kind::Text : StoredValue::Kind::Blob;
    stored.type = makeType(kind == SQLITE_INTEGER ? SqlType::BigInt : kind == SQLITE_FLOAT ? SqlType::Float
                           : kind == SQLITE_TEXT ? SqlType::NVarChar : SqlType::VarBinary, -1);
    stored.integer = sqlite3_value_int64(value);
    stored.real = sqlite3_value_double(value);
    if (kind == SQLITE_TEXT || kind == SQLITE_BLOB)
        stored.bytes = QByteArray(static_cast<const char*>(sqlite3_value_blob(value)), sqlite3_value_bytes(value));
    const StoredValue converted = convertStored(stored, cells.info(), true, QStringLiteral("mdy"));
    switch (converted.kind) {
        case StoredValue::Kind::Integer: cells.appendInteger(converted.integer); break;
        case StoredValue::Kind::Real: cells.appendReal(converted.real); break;
        case StoredValue::Kind::Text: {
            qint64 ticks = 0;
            qint16 offset = 0;
            if (!parseIsoTicks(converted.bytes.constData(), converted.bytes.size(), ticks, offset)) cellFailed(cells, value);
            if (cells.storage() == Storage::Ticks) cells.appendInteger(ticks);
            else cells.appendTicksOffset(ticks, offset);
            break;
        }
        default: cells.appendNull();
    }
}

class SelectStream : public ResultStream {
 public:
    SelectStream(SessionState& session, std::shared_ptr<PreparedSelect> select)
        : session_(session), control_(session.control), select_(std::move(select)), columns_(select_->columns), limit_(session.rowCountLimit) {}
    ~SelectStream() override { finish(); }

    const std::vector<ColumnInfo>& columns() const override { return columns_; }

    qsizetype fetch(RowStore& rows, qsizetype maxRows) override {
        if (!select_) return 0;
        sqlite3_stmt* statement = select_->statement;
        RunningGuard guard(sqlite3_db_handle(statement), control_);
        if (control_ && lookAtControl(control_.get())) {
            const bool cancelled = control_->cancelled;
            finish();
            if (cancelled) throw DbError(ado_error::Cancelled, QStringLiteral("Operation was canceled."), QStringLiteral("HY008"));
            throw DbError(ado_error::Timeout, QStringLiteral("Query timeout expired"), QStringLiteral("HYT00"));
        }
        const int width = int(columns_.size());
        qsizetype count = 0;
        while (count < maxRows) {
            if (limit_ > 0 && given_ >= limit_) {
                finish();
                return count;
            }
            const int code = sqlite3_step(statement);
            if (code == SQLITE_ROW) {
                for (int i = 0; i < width; ++i) appendCell(rows.column(i), sqlite3_column_value(statement, i));
                ++count;
                ++given_;
                continue;
            }
            if (code == SQLITE_DONE) {
                finish();
                return count;
            }
            fail(code);
        }
        return count;
    }

    bool nextResult() override {
        finish();
        columns_.clear();
        return false;
    }
    void close() override { finish(); }

 private:
    [[noreturn]] void fail(int code) {
        try {
            throwQueryError(sqlite3_db_handle(select_->statement), code, control_.get());
        } catch (...) {
            finish();
            throw;
        }
    }
    void finish() {
        if (!select_) return;
        session_.rowCount = given_;
        sqlite3_reset(select_->statement);
        sqlite3_clear_bindings(select_->statement);
        select_->busy = false;
        select_.reset();
    }

    SessionState& session_;
    std::shared_ptr<ExecutionControl> control_;
    std::shared_ptr<PreparedSelect> select_;
    std::vector<ColumnInfo> columns_;
    qint64 limit_;
    qint64 given_ = 0;
};

/// SELECT @v = ...: nothing to read.
class EmptyStream : public ResultStream {
 public:
    explicit EmptyStream(qint64 rows) : rows_(rows) {}
    const std::vector<ColumnInfo>& columns() const override { return columns_; }
    qsizetype fetch(RowStore&, qsizetype) override { return 0; }
    qint64 affectedRows() const override { return rows_; }
    bool nextResult() override { return false; }
    void close() override {}

 private:
    std::vector<ColumnInfo> columns_;
    qint64 rows_;
};

QueryParser::TypeReader typeReader(SessionState& session) {
    return [&session](std::span<const Token> tokens, qsizetype begin, qsizetype& end) {
        return parseDataType(session, tokens, begin, end);
    };
}

/// What statements share that differ in their literals alone. Empty when the statement can't be kept
/// (it depends on variables).
QString shapeOf(const SessionState& session, std::span<const Token> tokens) {
    QString shape;
    shape.reserve(tokens.empty() ? 16 : (tokens.back().end() - tokens.front().position) + 16);
    shape += session.dateFormat;
    shape += session.quotedIdentifier ? u'q' : u's';
    shape += session.defaultSchema;
    for (const Token& token : tokens) {
        shape += u'\x1f';
        switch (token.kind) {
            case TokenKind::String:
                shape += token.source.startsWith(u'N') || token.source.startsWith(u'n') ? u'\x01' : u'\x02';
                break;
            case TokenKind::Number:
                shape += literalValue(token).type.type == SqlType::Int ? u'\x03' : u'\x04';
                break;
            case TokenKind::Binary: shape += u'\x05'; break;
            default:
                if (token.kind == TokenKind::Word && token.source.startsWith(u'@')) return {};
                shape += token.source;
        }
    }
    return shape;
}

bool literalsMatch(const PreparedSelect& select, std::span<const Token> tokens) {
    for (const auto& [index, text] : select.fixedLiterals)
        if (tokens[size_t(index)].source != text) return false;
    return true;
}

std::shared_ptr<PreparedSelect> translateAndPrepare(SessionState& session, std::span<const Token> tokens, Variables* variables, bool describeOnly) {
    QueryParser parser(tokens, true, typeReader(session));
    const SelectPtr tree = parser.parseSelect();
    parser.expectEnd();
    Translator translator(session, variables);
    TranslatedSelect translated = translator.select(*tree);
    auto select = std::make_shared<PreparedSelect>();
    for (const OutputColumn& column : translated.columns) {
        ColumnInfo info = column.type.info;
        // An untyped NULL is an int to the server.
        if (column.type.untypedNull) info = makeType(SqlType::Int);
        info.name = column.name;
        select->columns.push_back(std::move(info));
    }
    if (describeOnly) return select;
    select->database = &translator.database();
    sqlite3* handle = select->database->handle;
    attachDatabases(translator, *select);
    select->assignments = {translated.assignments.begin(), translated.assignments.end()};
    select->parameters = translator.parameters();
    select->usesTables = translator.usesTables();
    const std::set<int> bound = translator.boundLiterals();
    for (size_t i = 0; i < tokens.size(); ++i) {
        const TokenKind kind = tokens[i].kind;
        const bool literal = kind == TokenKind::String || kind == TokenKind::Number || kind == TokenKind::Binary;
        if (literal && !bound.count(int(i))) select->fixedLiterals.emplace_back(int(i), tokens[i].source.toString());
    }
    if (qEnvironmentVariableIsSet("ZOV_SHOW_SQL")) qInfo("%s", qPrintable(translated.sql));
    select->statement = prepareStatement(handle, translated.sql.toUtf8(), true);
    return select;
}

}  // namespace

void attachDatabases(const Translator& translator, PreparedSelect& select) {
    sqlite3* handle = select.database->handle;
    for (const auto& [alias, file] : translator.attachments()) {
        const QByteArray attach = "ATTACH " + quotedText(file).toUtf8() + " AS " + alias.toUtf8();
        const int code = sqlite3_exec(handle, attach.constData(), nullptr, nullptr, nullptr);
        if (code != SQLITE_OK) throwQueryError(handle, code, nullptr);
        select.attached.append(alias);
    }
}

std::shared_ptr<PreparedSelect> prepareSelect(SessionState& session, std::span<const Token> tokens, Variables& variables) {
    const QString shape = shapeOf(session, tokens);
    QueryCache& own = QueryCache::of(*session.current);
    if (!shape.isEmpty()) {
        const auto known = own.selects.constFind(shape);
        if (known != own.selects.constEnd()) {
            bool refreshed = false;
            for (const auto& entry : known.value()) {
                if (entry->busy || !literalsMatch(*entry, tokens)) continue;
                if (entry->usesTables && !refreshed) {
                    const std::shared_ptr<PreparedSelect> held = entry;
                    own.refresh();   // may drop the list that is being walked
                    if (!own.selects.contains(shape)) break;
                    held->busy = true;
                    return held;
                }
                entry->busy = true;
                return entry;
            }
        }
    }
    std::shared_ptr<PreparedSelect> select = translateAndPrepare(session, tokens, &variables, false);
    // What reads another database would outlive what is known of it.
    if (!shape.isEmpty() && select->attached.isEmpty() && select->database == session.current) {
        if (own.selectCount > 400) {
            own.selects.clear();
            own.selectCount = 0;
        }
        own.selects[shape].push_back(select);
        ++own.selectCount;
    }
    select->busy = true;
    return select;
}

std::unique_ptr<ResultStream> runSelect(SessionState& session, std::span<const Token> statement, Variables& variables) {
    std::shared_ptr<PreparedSelect> select = prepareSelect(session, statement, variables);
    struct Release {
        std::shared_ptr<PreparedSelect>& select;
        ~Release() {
            if (!select) return;
            sqlite3_reset(select->statement);
            select->busy = false;
        }
    } release{select};
    bindParameters(session, *select, statement, variables);
    if (select->assignments.empty()) {
        auto stream = std::make_unique<SelectStream>(session, select);
        select.reset();
        return stream;
    }
    RunningGuard guard(select->database->handle, session.control);
    qint64 rows = 0;
    for (;;) {
        const int code = sqlite3_step(select->statement);
        if (code == SQLITE_DONE) break;
        if (code != SQLITE_ROW) throwQueryError(select->database->handle, code, session.control.get());
        // Each row assigns: the last one stays.
        for (size_t i = 0; i < select->assignments.size(); ++i)
            variables.assign(session, select->assignments[i], columnValue(select->statement, int(i), select->columns[i]));
        ++rows;
    }
    session.rowCount = rows;
    return std::make_unique<EmptyStream>(rows);
}

std::vector<ColumnInfo> describeSelect(SessionState& session, std::span<const Token> statement) {
    return translateAndPrepare(session, statement, nullptr, true)->columns;
}

namespace {

struct Prepared {
    sqlite3_stmt* statement = nullptr;
    ~Prepared() { sqlite3_finalize(statement); }
};

StoredValue evaluateTree(SessionState& session, const Expr& tree, std::span<const Token> tokens, Variables& variables, bool asCondition) {
    Translator translator(session, &variables);
    QString text;
    ColumnInfo type;
    if (asCondition) {
        text = translator.condition(tree);
        type = makeType(SqlType::Bit);
    } else {
        const Sql value = translator.expression(tree);
        text = translator.use(value);
        type = value.type.info;
    }
    PreparedSelect select;
    select.database = &translator.database();
    sqlite3* handle = select.database->handle;
    attachDatabases(translator, select);
    select.parameters = translator.parameters();
    select.statement = prepareStatement(handle, "SELECT " + text.toUtf8(), false);
    bindParameters(session, select, tokens, variables);
    RunningGuard guard(handle, session.control);
    const int code = sqlite3_step(select.statement);
    if (code != SQLITE_ROW) throwQueryError(handle, code, session.control.get());
    return columnValue(select.statement, 0, type);
}

}  // namespace

StoredValue evaluateExpr(SessionState& session, const Expr& tree, std::span<const Token> tokens, Variables& variables) {
    return evaluateTree(session, tree, tokens, variables, false);
}

StoredValue evaluate(SessionState& session, std::span<const Token> expression, Variables& variables) {
    // Most are a literal or a variable alone.
    if (expression.size() == 1) {
        const Token& token = expression[0];
        if (token.kind == TokenKind::String || token.kind == TokenKind::Number || token.kind == TokenKind::Binary) return literalValue(token);
        if (const StoredValue* value = token.kind == TokenKind::Word ? variables.find(token.source.toString()) : nullptr) return *value;
    }
    QueryParser parser(expression, true, typeReader(session));
    const ExprPtr tree = parser.parseExpression();
    parser.expectEnd();
    return evaluateTree(session, *tree, expression, variables, false);
}

bool evaluateCondition(SessionState& session, std::span<const Token> condition, Variables& variables) {
    QueryParser parser(condition, true, typeReader(session));
    const ExprPtr tree = parser.parseCondition();
    parser.expectEnd();
    const StoredValue value = evaluateTree(session, *tree, condition, variables, true);
    return !value.isNull() && value.toInteger() != 0;
}

QString translateForSqlite(SessionState& session, std::span<const Token> expression, int tableId, ColumnInfo* type) {
    QueryParser parser(expression, false, typeReader(session));
    const ExprPtr tree = parser.parseExpression();
    parser.expectEnd();
    Translator translator(session, nullptr);
    if (tableId) {
        if (auto table = QueryCache::of(*session.current).tableById(tableId)) translator.addTable(table, QString(), true);
    }
    const Sql value = translator.expression(*tree);
    if (type) {
        *type = value.type.info;
        type->name.clear();
    }
    return translator.use(value);
}

qsizetype expressionEnd(std::span<const Token> tokens, qsizetype begin) {
    const auto ignoreType = [](std::span<const Token> list, qsizetype at, qsizetype& end) {
        // Sizes and names are read by shape: the types themselves don't matter here.
        end = at + 1;
        while (end + 1 < qsizetype(list.size()) && list[size_t(end)].is(".")) end += 2;
        if (end < qsizetype(list.size()) && list[size_t(end)].is("(")) {
            while (end < qsizetype(list.size()) && !list[size_t(end)].is(")")) ++end;
            ++end;
        }
        return ColumnInfo();
    };
    QueryParser parser(tokens, false, ignoreType, begin);
    parser.parseCondition();
    return parser.position();
}

namespace {

template <typename Read>
qsizetype endOf(std::span<const Token> tokens, qsizetype begin, Read read) {
    const auto ignoreType = [](std::span<const Token> list, qsizetype at, qsizetype& end) {
        end = at + 1;
        while (end + 1 < qsizetype(list.size()) && list[size_t(end)].is(".")) end += 2;
        if (end < qsizetype(list.size()) && list[size_t(end)].is("(")) {
            while (end < qsizetype(list.size()) && !list[size_t(end)].is(")")) ++end;
            ++end;
        }
        return ColumnInfo();
    };
    QueryParser parser(tokens, false, ignoreType, begin);
    read(parser);
    return parser.position();
}

}  // namespace

qsizetype selectEnd(std::span<const Token> tokens, qsizetype begin) {
    return endOf(tokens, begin, [](QueryParser& parser) { parser.parseSelect(); });
}

qsizetype dmlEnd(std::span<const Token> tokens, qsizetype begin) {
    // WITH ... in front says nothing of what follows it.
    qsizetype at = begin;
    int depth = 0;
    while (at < qsizetype(tokens.size())) {
        const Token& token = tokens[size_t(at)];
        if (token.is("(")) ++depth;
        if (token.is(")")) --depth;
        if (depth == 0 && (token.is("insert") || token.is("update") || token.is("delete") || token.is("select"))) break;
        ++at;
    }
    const Token& verb = at < qsizetype(tokens.size()) ? tokens[size_t(at)] : tokens.back();
    return endOf(tokens, begin, [&](QueryParser& parser) {
        if (verb.is("insert")) parser.parseInsert();
        else if (verb.is("update")) parser.parseUpdate();
        else if (verb.is("delete")) parser.parseDelete();
        else parser.parseSelect();
    });
}

ColumnInfo parseDataType(SessionState& session, std::span<const Token> tokens, qsizetype begin, qsizetype& end) {
    end = begin;
    if (begin >= qsizetype(tokens.size()) || !tokens[size_t(begin)].isName())
        failNear(begin < qsizetype(tokens.size()) ? tokens[size_t(begin)] : Token());
    QStringList path{tokens[size_t(end++)].name()};
    while (end + 1 < qsizetype(tokens.size()) && tokens[size_t(end)].is(".") && tokens[size_t(end + 1)].isName()) {
        path.append(tokens[size_t(end + 1)].name());
        end += 2;
    }
    ColumnInfo info;
    const bool system = path.size() == 1 || path[path.size() - 2].compare(u"sys", Qt::CaseInsensitive) == 0;
    bool known = system && typeByName(path.last(), info);
    if (!known && session.current) {
        QueryCache& cache = QueryCache::of(*session.current);
        LookUp find(cache, "SELECT xtype, length, prec, scale, allownulls FROM \"zov$types\" WHERE name = ?1 AND isuser");
        find.bind(path.last());
        if (find.next()) {
            info = typeFromCatalogue(int(find.integer(0)), int(find.integer(1)), int(find.integer(2)), int(find.integer(3)), find.integer(4) != 0);
            known = true;
        }
    }
    if (!known) {
        DbError error(ado_error::SyntaxError, QStringLiteral("Type %1 is not a defined system type.").arg(path.join(u'.')), QStringLiteral("42000"), 243);
        error.line = tokens[size_t(begin)].line;
        throw error;
    }
    // "double precision", "character varying", "char varying"
    if (end < qsizetype(tokens.size()) && tokens[size_t(end)].is("precision") && path[0].compare(u"double", Qt::CaseInsensitive) == 0) ++end;
    if (end < qsizetype(tokens.size()) && tokens[size_t(end)].is("varying")) {
        info.type = info.type == SqlType::NChar ? SqlType::NVarChar : info.type == SqlType::Binary ? SqlType::VarBinary : SqlType::VarChar;
        ++end;
    }
    const bool sized = info.type == SqlType::Char || info.type == SqlType::VarChar || info.type == SqlType::NChar || info.type == SqlType::NVarChar ||
                       info.type == SqlType::Binary || info.type == SqlType::VarBinary;
    if (end < qsizetype(tokens.size()) && tokens[size_t(end)].is("(")) {
        std::vector<QString> sizes;
        for (++end; end < qsizetype(tokens.size()) && !tokens[size_t(end)].is(")"); ++end)
            if (!tokens[size_t(end)].is(",")) sizes.push_back(tokens[size_t(end)].source.toString());
        if (end >= qsizetype(tokens.size())) failNear(tokens.back());
        ++end;
        if (!sizes.empty()) {
            const bool max = sizes[0].compare(u"max", Qt::CaseInsensitive) == 0;
            const int first = max ? -1 : sizes[0].toInt();
            if (sized) {
                info.size = first;
            } else if (info.type == SqlType::Decimal || info.type == SqlType::Numeric) {
                info.precision = first;
                info.scale = sizes.size() > 1 ? sizes[1].toInt() : 0;
                if (first < 1 || first > 38 || info.scale > first)
                    failWith(2750, QStringLiteral("Column or parameter #1: Specified column precision %1 is greater than the maximum precision of 38.").arg(first));
            } else if (info.type == SqlType::Time || info.type == SqlType::DateTime2 || info.type == SqlType::DateTimeOffset) {
                info.scale = std::clamp(first, 0, 7);
            } else if (info.type == SqlType::Float && first <= 24) {
                info.type = SqlType::Real;
            }
        }
    } else if (sized && info.size == 1 && path[0].compare(u"sysname", Qt::CaseInsensitive) != 0) {
        // CAST and CONVERT without a size: thirty. Declarations read their own default.
        info.size = 30;
    }
    return info;
}

}  // namespace zov::local
