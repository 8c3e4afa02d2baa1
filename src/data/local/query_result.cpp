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
    return control->limited.load(std::memory_order_relaxed) &&
           std::chrono::steady_clock::now() > control->deadline;
}

}  // namespace

void throwIfStopped(const ExecutionControl* control) {
    if (!control || !lookAtControl(const_cast<ExecutionControl*>(control))) return;
    if (control->cancelled)
        throw DbError(ado_error::Cancelled, QStringLiteral("Operation was canceled."),
                      QStringLiteral("HY008"));
    throw DbError(ado_error::Timeout, QStringLiteral("Query timeout expired"),
                  QStringLiteral("HYT00"));
}

RunningGuard::RunningGuard(sqlite3* handle, std::shared_ptr<ExecutionControl> control)
    : handle_(handle), control_(std::move(control)) {
    if (control_)
        sqlite3_progress_handler(handle_, OperationsBetweenLooks, lookAtControl, control_.get());
}

RunningGuard::~RunningGuard() {
    if (control_) sqlite3_progress_handler(handle_, 0, nullptr, nullptr);
}

void bindValue(sqlite3_stmt* statement, int index, const StoredValue& value) {
    switch (value.kind) {
        case StoredValue::Kind::Null:
            sqlite3_bind_null(statement, index);
            break;
        case StoredValue::Kind::Integer:
            sqlite3_bind_int64(statement, index, value.integer);
            break;
        case StoredValue::Kind::Real:
            sqlite3_bind_double(statement, index, value.real);
            break;
        case StoredValue::Kind::Text:
            sqlite3_bind_text(statement, index, value.bytes.constData(), int(value.bytes.size()),
                              SQLITE_TRANSIENT);
            break;
        case StoredValue::Kind::Blob:
            sqlite3_bind_blob(statement, index, value.bytes.constData(), int(value.bytes.size()),
                              SQLITE_TRANSIENT);
            break;
    }
}

StoredValue globalValue(SessionState& session, const QString& name) {
    if (name == u"@@rowcount") return StoredValue::ofInteger(session.rowCount);
    if (name == u"@@trancount")
        return StoredValue::ofInteger(session.store ? session.store->transactionCount() : 0);
    if (name == u"@@identity")
        return session.lastIdentity ? StoredValue::ofInteger(*session.lastIdentity)
                                    : StoredValue::null();
    if (name == u"@@servername")
        return StoredValue::ofText(session.store ? session.store->serverName() : QString());
    if (name == u"@@version")
        return StoredValue::ofText(
            QStringLiteral("Microsoft SQL Server compatible embedded server - %1")
                .arg(session.productVersion));
    if (name == u"@@language") return StoredValue::ofText(QStringLiteral("us_english"));
    if (name == u"@@servicename") return StoredValue::ofText(QStringLiteral("MSSQLSERVER"));
    if (name == u"@@spid") return StoredValue::ofInteger(51);
    if (name == u"@@max_precision") return StoredValue::ofInteger(38);
    if (name == u"@@datefirst") return StoredValue::ofInteger(7);
    if (name == u"@@lock_timeout") return StoredValue::ofInteger(-1);
    if (name == u"@@fetch_status") return StoredValue::ofInteger(-1);
    if (name == u"@@textsize") return StoredValue::ofInteger(2147483647);
    if (name == u"@@error")
        return StoredValue::ofInteger(session.caught ? session.caught->number : 0);
    if (name == u"@@microsoftversion")
        return StoredValue::ofInteger(session.productVersion.section(u'.', 0, 0).toInt() << 24);
    if (name == u"db_name")
        return StoredValue::ofText(session.current ? session.current->name : QString());
    if (name == u"xact_state")
        return StoredValue::ofInteger(session.store && session.store->transactionCount() > 0);
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

void bindParameters(SessionState& session, const PreparedSelect& select,
                    std::span<const Token> tokens, const Variables& variables) {
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
                    sqlite3_bind_text(select.statement, index, utf8.constData(), int(utf8.size()),
                                      SQLITE_TRANSIENT);
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
            case ParameterSource::Kind::Global:
                value = globalValue(session, parameter.name);
                break;
        }
        if (parameter.convert)
            value = convertStored(value, parameter.target, true, session.dateFormat);
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
            value.bytes =
                QByteArray(reinterpret_cast<const char*>(sqlite3_column_text(statement, column)),
                           sqlite3_column_bytes(statement, column));
            break;
        case SQLITE_BLOB:
            value.kind = StoredValue::Kind::Blob;
            value.bytes =
                QByteArray(static_cast<const char*>(sqlite3_column_blob(statement, column)),
                           sqlite3_column_bytes(statement, column));
            break;
        default:
            break;
    }
    return value;
}

// --- reading cells ------------------------------------------------------------------------------

namespace {

const qint64 powersOfTen[] = {1,
                              10,
                              100,
                              1000,
                              10000,
                              100000,
                              1000000,
                              10000000,
                              100000000,
                              1000000000,
                              10000000000,
                              100000000000,
                              1000000000000,
                              10000000000000,
                              100000000000000,
                              1000000000000000,
                              10000000000000000,
                              100000000000000000,
                              1000000000000000000};

void appendSlowly(ColumnCells& cells, sqlite3_value* value);

[[noreturn]] void cellFailed(const ColumnCells& cells, sqlite3_value* value) {
    failWith(8114,
             QStringLiteral("The value '%1' of column '%2' is no %3.")
                 .arg(QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_value_text(value))),
                      cells.info().name, sqlTypeName(cells.info().type)),
             ado_number::CannotConvert);
}

void appendScaled(ColumnCells& cells, sqlite3_value* value) {
    const int scale = std::clamp(cells.info().scale, 0, 18);
    switch (sqlite3_value_type(value)) {
        case SQLITE_NULL:
            cells.appendNull();
            return;
        case SQLITE_INTEGER:
            cells.appendInteger(sqlite3_value_int64(value) * powersOfTen[scale]);
            return;
        case SQLITE_FLOAT:
            cells.appendInteger(
                std::llround(sqlite3_value_double(value) * double(powersOfTen[scale])));
            return;
        default:
            break;
    }
    DecimalText decimal;
    if (!DecimalText::parse(QByteArrayView(reinterpret_cast<const char*>(sqlite3_value_text(value)),
                                           sqlite3_value_bytes(value)),
                            decimal))
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
        const int digit = c >= '0' && c <= '9'   ? c - '0'
                          : c >= 'A' && c <= 'F' ? c - 'A' + 10
                          : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                                 : -1;
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
            cells.appendText(QStringLiteral("0x") +
                             QString::fromLatin1(
                                 QByteArray(bytes, sqlite3_value_bytes(value)).toHex().toUpper()));
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
    // A text that comes as nothing is one that found no room.
    if (kind == SQLITE_TEXT && !sqlite3_value_text(value)) throw std::bad_alloc();
    switch (cells.storage()) {
        case Storage::Int8:
        case Storage::Int16:
        case Storage::Int32:
        case Storage::Int64:
            if (kind == SQLITE_INTEGER) return cells.appendInteger(sqlite3_value_int64(value));
            return appendSlowly(cells, value);
        case Storage::Float32:
        case Storage::Float64:
            if (kind == SQLITE_FLOAT || kind == SQLITE_INTEGER)
                return cells.appendReal(sqlite3_value_double(value));
            return appendSlowly(cells, value);
        case Storage::Scaled64:
            return appendScaled(cells, value);
        case Storage::Ticks:
        case Storage::TicksOffset: {
            qint64 ticks = 0;
            qint16 offset = 0;
            const char* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
            if (!text || !parseIsoTicks(text, sqlite3_value_bytes(value), ticks, offset))
                return appendSlowly(cells, value);
            if (cells.storage() == Storage::Ticks) return cells.appendInteger(ticks);
            return cells.appendTicksOffset(ticks, offset);
        }
        case Storage::Guid:
            return appendGuid(cells, value);
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
    stored.kind = kind == SQLITE_INTEGER ? StoredValue::Kind::Integer
                  : kind == SQLITE_FLOAT ? StoredValue::Kind::Real
                  : kind == SQLITE_TEXT  ? StoredValue::Kind::Text
                                         : StoredValue::Kind::Blob;
    stored.type = makeType(kind == SQLITE_INTEGER ? SqlType::BigInt
                           : kind == SQLITE_FLOAT ? SqlType::Float
                           : kind == SQLITE_TEXT  ? SqlType::NVarChar
                                                  : SqlType::VarBinary,
                           -1);
    stored.integer = sqlite3_value_int64(value);
    stored.real = sqlite3_value_double(value);
    if (kind == SQLITE_TEXT || kind == SQLITE_BLOB)
        stored.bytes = QByteArray(static_cast<const char*>(sqlite3_value_blob(value)),
                                  sqlite3_value_bytes(value));
    const StoredValue converted = convertStored(stored, cells.info(), true, QStringLiteral("mdy"));
    switch (converted.kind) {
        case StoredValue::Kind::Integer:
            cells.appendInteger(converted.integer);
            break;
        case StoredValue::Kind::Real:
            cells.appendReal(converted.real);
            break;
        case StoredValue::Kind::Text: {
            qint64 ticks = 0;
            qint16 offset = 0;
            if (!parseIsoTicks(converted.bytes.constData(), converted.bytes.size(), ticks, offset))
                cellFailed(cells, value);
            if (cells.storage() == Storage::Ticks)
                cells.appendInteger(ticks);
            else
                cells.appendTicksOffset(ticks, offset);
            break;
        }
        default:
            cells.appendNull();
    }
}

class SelectStream : public ResultStream {
 public:
    SelectStream(SessionState& session, std::shared_ptr<PreparedSelect> select)
        : session_(session),
          control_(session.control),
          select_(std::move(select)),
          columns_(select_->columns),
          limit_(session.rowCountLimit) {}
    ~SelectStream() override { finish(); }

    const std::vector<ColumnInfo>& columns() const override { return columns_; }

    qsizetype fetch(RowStore& rows, qsizetype maxRows) override {
        if (!select_) return 0;
        sqlite3_stmt* statement = select_->statement;
        RunningGuard guard(sqlite3_db_handle(statement), control_);
        try {
            throwIfStopped(control_.get());
        } catch (...) {
            finish();
            throw;
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
                for (int i = 0; i < width; ++i)
                    appendCell(rows.column(i), sqlite3_column_value(statement, i));
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

}  // namespace

std::unique_ptr<ResultStream> streamOf(SessionState& session,
                                       std::shared_ptr<PreparedSelect> select) {
    return std::make_unique<SelectStream>(session, std::move(select));
}

std::unique_ptr<ResultStream> streamWithoutRows(qint64 affected) {
    return std::make_unique<EmptyStream>(affected);
}

}  // namespace zov::local
