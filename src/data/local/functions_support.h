// Small helpers of the registered SQL functions.
#pragma once

#include "data/local/query_values.h"

#include <sqlite3.h>

namespace zov::local {

using SqlFunction = void (*)(sqlite3_context*, int, sqlite3_value**);

/// `count` -1: any number of arguments. Not deterministic ones are evaluated for each row. What a
/// function throws comes out of the statement as its error.
void define(sqlite3* handle, const char* name, int count, SqlFunction function,
            void* data = nullptr, bool deterministic = true);
/// What define() was given.
void* dataOf(sqlite3_context* context);

inline bool isNull(sqlite3_value* value) {
    return sqlite3_value_type(value) == SQLITE_NULL;
}

inline QByteArrayView utf8Of(sqlite3_value* value) {
    const char* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
    return QByteArrayView(text, sqlite3_value_bytes(value));
}
inline QString textOf(sqlite3_value* value) {
    return QString::fromUtf8(utf8Of(value));
}

inline void giveText(sqlite3_context* context, const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    sqlite3_result_text(context, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
}
inline void giveText(sqlite3_context* context, const QByteArray& utf8) {
    sqlite3_result_text(context, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
}
inline void giveInt(sqlite3_context* context, qint64 value) {
    sqlite3_result_int64(context, value);
}

/// An error that comes out of the statement as a DbError with this number.
void giveError(sqlite3_context* context, qint32 native, const QString& text);
void giveError(sqlite3_context* context, const DbError& error);

/// A value with the static type that the translator knew.
StoredValue valueOf(sqlite3_value* value, const ColumnInfo& type);
void giveValue(sqlite3_context* context, const StoredValue& value);

struct Database;
void installTextFunctions(sqlite3* handle);
void installNumberFunctions(sqlite3* handle);
void installDateFunctions(sqlite3* handle);
void installCatalogFunctions(sqlite3* handle, Database& database);
void installPropertyFunctions(sqlite3* handle, Database& database);
void installSequenceFunctions(sqlite3* handle, Database& database);

}  // namespace zov::local
