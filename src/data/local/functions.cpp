#include "data/local/functions.h"

#include "data/local/collation.h"
#include "data/local/functions_support.h"
#include "data/local/query_cache.h"
#include "data/local/server_store.h"

#include <algorithm>

namespace zov::local {
namespace {

struct Defined {
    SqlFunction function;
    void* data;
};

// SQLite's own frames lie between a function and its caller: nothing may be thrown through them.
void callDefined(sqlite3_context* context, int count, sqlite3_value** values) {
    try {
        static_cast<Defined*>(sqlite3_user_data(context))->function(context, count, values);
    } catch (const DbError& error) {
        giveError(context, error);
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    }
}

}  // namespace

void define(sqlite3* handle, const char* name, int count, SqlFunction function, void* data,
            bool deterministic) {
    // SQLite frees it, also when it doesn't take the function.
    const int code = sqlite3_create_function_v2(
        handle, name, count, SQLITE_UTF8 | (deterministic ? SQLITE_DETERMINISTIC : 0),
        new Defined{function, data}, callDefined, nullptr, nullptr,
        [](void* defined) { delete static_cast<Defined*>(defined); });
    checkSqlite(handle, code);
}

void* dataOf(sqlite3_context* context) {
    return static_cast<Defined*>(sqlite3_user_data(context))->data;
}

void giveError(sqlite3_context* context, qint32 native, const QString& text) {
    const QByteArray message = "ZOV" + QByteArray::number(native) + ':' + text.toUtf8();
    sqlite3_result_error(context, message.constData(), int(message.size()));
}

void giveError(sqlite3_context* context, const DbError& error) {
    giveError(context, error.native, error.description);
}

StoredValue valueOf(sqlite3_value* value, const ColumnInfo& type) {
    StoredValue result;
    result.type = type;
    switch (sqlite3_value_type(value)) {
        case SQLITE_INTEGER:
            result.kind = StoredValue::Kind::Integer;
            result.integer = sqlite3_value_int64(value);
            break;
        case SQLITE_FLOAT:
            result.kind = StoredValue::Kind::Real;
            result.real = sqlite3_value_double(value);
            break;
        case SQLITE_TEXT:
            result.kind = StoredValue::Kind::Text;
            result.bytes = utf8Of(value).toByteArray();
            break;
        case SQLITE_BLOB:
            result.kind = StoredValue::Kind::Blob;
            result.bytes = QByteArray(static_cast<const char*>(sqlite3_value_blob(value)),
                                      sqlite3_value_bytes(value));
            break;
        default:
            break;
    }
    return result;
}

void giveValue(sqlite3_context* context, const StoredValue& value) {
    switch (value.kind) {
        case StoredValue::Kind::Null:
            return sqlite3_result_null(context);
        case StoredValue::Kind::Integer:
            return sqlite3_result_int64(context, value.integer);
        case StoredValue::Kind::Real:
            return sqlite3_result_double(context, value.real);
        case StoredValue::Kind::Text:
            return giveText(context, value.bytes);
        case StoredValue::Kind::Blob:
            return sqlite3_result_blob(context, value.bytes.constData(), int(value.bytes.size()),
                                       SQLITE_TRANSIENT);
    }
}

namespace {

/// The type of a value that nothing was known of.
ColumnInfo guessedType(sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
        case SQLITE_INTEGER:
            return makeType(SqlType::BigInt);
        case SQLITE_FLOAT:
            return makeType(SqlType::Float);
        case SQLITE_BLOB:
            return makeType(SqlType::VarBinary, -1);
        default:
            return makeType(SqlType::NVarChar, -1);
    }
}

void convert(sqlite3_context* context, sqlite3_value** arguments, bool tolerant) {
    if (isNull(arguments[0])) return sqlite3_result_null(context);
    const qint64 from = sqlite3_value_int64(arguments[1]);
    const ColumnInfo fromType = from < 0 ? guessedType(arguments[0]) : unpackType(from);
    const ColumnInfo toType = unpackType(sqlite3_value_int64(arguments[2]));
    static const QString formats[] = {QStringLiteral("mdy"), QStringLiteral("dmy"),
                                      QStringLiteral("ymd")};
    try {
        giveValue(context, convertStored(valueOf(arguments[0], fromType), toType, true,
                                         formats[std::clamp(sqlite3_value_int(arguments[4]), 0, 2)],
                                         sqlite3_value_int(arguments[3])));
    } catch (const DbError& error) {
        if (tolerant) return sqlite3_result_null(context);
        giveError(context, error);
    }
}

int compareTexts(void* collation, int lengthA, const void* a, int lengthB, const void* b) {
    return static_cast<const Collation*>(collation)->compare(static_cast<const char*>(a), lengthA,
                                                             static_cast<const char*>(b), lengthB);
}

void addCollation(sqlite3* handle, const char* name, const Collation* collation) {
    sqlite3_create_collation_v2(handle, name, SQLITE_UTF8, const_cast<Collation*>(collation),
                                compareTexts, nullptr);
}

}  // namespace

void installFunctions(sqlite3* handle, Database& database, ServerStore& store) {
    Q_UNUSED(store);
    // NOCASE is SQLite's own name: plain CREATE TABLE texts keep working in other programs.
    addCollation(handle, "NOCASE", Collation::standard());
    // Stands in computed columns of older files.
    addCollation(handle, "ZOVCASE", Collation::named(QStringLiteral("Latin1_General_BIN2")));
    sqlite3_collation_needed(handle, nullptr, [](void*, sqlite3* database, int, const char* name) {
        addCollation(database, name, Collation::named(QString::fromUtf8(name)));
    });
    define(handle, "zov_conv", 5,
           [](sqlite3_context* c, int, sqlite3_value** v) { convert(c, v, false); });
    define(handle, "zov_tryconv", 5,
           [](sqlite3_context* c, int, sqlite3_value** v) { convert(c, v, true); });
    installTextFunctions(handle);
    installNumberFunctions(handle);
    installDateFunctions(handle);
    installCatalogFunctions(handle, database);
    installPropertyFunctions(handle, database);
    installSequenceFunctions(handle, database);
}

}  // namespace zov::local
