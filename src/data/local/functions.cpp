#include "data/local/functions.h"

#include "data/local/functions_support.h"
#include "data/local/query_cache.h"

#include <algorithm>
#include <cstring>

namespace zov::local {

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

inline unsigned char folded(unsigned char c) {
    return c >= 'A' && c <= 'Z' ? (unsigned char)(c + 32) : c;
}

inline int trimmedLength(const unsigned char* text, int length) {
    while (length > 0 && text[length - 1] == ' ') --length;
    return length;
}

/// Text that holds letters beyond ASCII, compared by Unicode's own folding.
int compareUnicode(const char* a, int lengthA, const char* b, int lengthB,
                   Qt::CaseSensitivity sensitivity) {
    return QString::compare(QString::fromUtf8(a, lengthA), QString::fromUtf8(b, lengthB),
                            sensitivity);
}

/// T-SQL's comparison of texts: blanks at the end don't count, letters match in any case. A blank
/// that is followed by something sorts as itself, so the order stays total.
int compareNoCase(void*, int lengthA, const void* a, int lengthB, const void* b) {
    const auto* p = static_cast<const unsigned char*>(a);
    const auto* q = static_cast<const unsigned char*>(b);
    const int common = std::min(lengthA, lengthB);
    for (int i = 0; i < common; ++i) {
        if ((p[i] | q[i]) & 0x80)
            return compareUnicode(static_cast<const char*>(a), trimmedLength(p, lengthA),
                                  static_cast<const char*>(b), trimmedLength(q, lengthB),
                                  Qt::CaseInsensitive);
        const unsigned char x = folded(p[i]), y = folded(q[i]);
        if (x == y) continue;
        // "ab " against "ab": the rest of one may be blanks alone.
        if (x == ' ' && trimmedLength(p, lengthA) <= i)
            return trimmedLength(q, lengthB) <= i ? 0 : -1;
        if (y == ' ' && trimmedLength(q, lengthB) <= i) return 1;
        return int(x) - int(y);
    }
    if (lengthA == lengthB) return 0;
    if (lengthA > lengthB)
        return trimmedLength(p, lengthA) > common &&
                       trimmedLength(p, lengthA) > trimmedLength(q, lengthB)
                   ? 1
                   : 0;
    return trimmedLength(q, lengthB) > common &&
                   trimmedLength(q, lengthB) > trimmedLength(p, lengthA)
               ? -1
               : 0;
}

int compareCase(void*, int lengthA, const void* a, int lengthB, const void* b) {
    const int x = trimmedLength(static_cast<const unsigned char*>(a), lengthA);
    const int y = trimmedLength(static_cast<const unsigned char*>(b), lengthB);
    const int order = std::memcmp(a, b, size_t(std::min(x, y)));
    return order ? order : x - y;
}

}  // namespace

void installFunctions(sqlite3* handle, Database& database, ServerStore& store) {
    Q_UNUSED(store);
    // NOCASE is SQLite's own name: plain CREATE TABLE texts keep working in other programs.
    sqlite3_create_collation_v2(handle, "NOCASE", SQLITE_UTF8, nullptr, compareNoCase, nullptr);
    sqlite3_create_collation_v2(handle, "ZOVCASE", SQLITE_UTF8, nullptr, compareCase, nullptr);
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
