// The query side of the embedded server: SELECT, INSERT, UPDATE, DELETE and
// expressions, given as T-SQL tokens and run by SQLite. Enter at runSelect and
// its neighbours; query_parser reads the tokens, query_translator writes SQLite's
// dialect, query_result streams the rows. Control flow and DDL are not known here.
#pragma once

#include "data/local/local_session.h"

#include <QHash>

#include <functional>

namespace zov::local {

/// A value with its type. Text and date types hold UTF-8 text in the storage form of the type.
struct StoredValue {
    enum class Kind { Null, Integer, Real, Text, Blob };

    Kind kind = Kind::Null;
    qint64 integer = 0;
    double real = 0;
    QByteArray bytes;  ///< Text (UTF-8) and Blob
    ColumnInfo type;   ///< as declared or inferred; its name stays empty

    bool isNull() const { return kind == Kind::Null; }
    /// The text that an implicit conversion to nvarchar gives (PRINT, EXEC, concatenation); empty
    /// for a null.
    QString text() const;
    /// The value as a whole number, texts by their digits; 0 for a null.
    qint64 toInteger() const;

    static StoredValue null();
    static StoredValue ofInteger(qint64 value, SqlType type = SqlType::Int);
    static StoredValue ofReal(double value);
    /// nvarchar of the text's own length.
    static StoredValue ofText(const QString& text);
};

/// The local variables of a batch. Names carry their "@" and are found in any case.
class Variables {
 public:
    /// False when the name is taken already. The value starts as null.
    bool declare(const QString& name, const ColumnInfo& type);
    bool contains(const QString& name) const { return values_.contains(name.toLower()); }
    /// Null pointer when it isn't declared.
    const StoredValue* find(const QString& name) const;
    /// Converts to the variable's declared type; throws DbError (137 when it isn't declared).
    void assign(const SessionState& session, const QString& name, const StoredValue& value);

 private:
    QHash<QString, StoredValue> values_;
};

/// Runs SELECT (also WITH ..., (SELECT ...), UNION and the like). Tokens exclude the statement's
/// ";" and the End token and must stay valid for the call only. `SELECT @v = ...` runs at once and
/// gives a stream without columns. The session must outlive the stream.
std::unique_ptr<ResultStream> runSelect(SessionState& session, std::span<const Token> statement,
                                        Variables& variables);

/// The columns that a SELECT would give, without running it (views, SELECT INTO).
/// `variables` may be null when the statement mentions none. `collations` gets the name of each
/// column's collation.
std::vector<ColumnInfo> describeSelect(SessionState& session, std::span<const Token> statement,
                                       const Variables* variables = nullptr,
                                       std::vector<QString>* collations = nullptr);

/// Run one statement; the result is the number of rows touched (also left in session.rowCount).
/// `copying` rows into a table made for them: identities and row versions stay what they were.
qint64 runInsert(SessionState& session, std::span<const Token> statement, Variables& variables,
                 bool copying = false);
qint64 runUpdate(SessionState& session, std::span<const Token> statement, Variables& variables);
qint64 runDelete(SessionState& session, std::span<const Token> statement, Variables& variables);

/// An expression's value; subqueries are allowed.
StoredValue evaluate(SessionState& session, std::span<const Token> expression,
                     Variables& variables);
/// A condition, as behind IF and WHILE; unknown counts as false.
bool evaluateCondition(SessionState& session, std::span<const Token> condition,
                       Variables& variables);

/// An expression over the columns of `table` ([schema].[name] resolved already to the object's id)
/// in SQLite's dialect, for generated columns; `type` gets the inferred type, `collation` the name
/// of a text's, empty for the database's. `tableId` 0: no columns.
QString translateForSqlite(SessionState& session, std::span<const Token> expression, int tableId,
                           ColumnInfo* type = nullptr, QString* collation = nullptr);

/// How many of `tokens` from `begin` on make one expression or condition: the index behind it. The
/// end is where the grammar can't go on (a keyword, an unmatched ")" or ",").
qsizetype expressionEnd(std::span<const Token> tokens, qsizetype begin);
/// The same for a whole SELECT statement with its WITH, UNION, ORDER BY and OPTION parts.
qsizetype selectEnd(std::span<const Token> tokens, qsizetype begin);
/// The same for INSERT, UPDATE and DELETE.
qsizetype dmlEnd(std::span<const Token> tokens, qsizetype begin);

/// `value` in the storage form of `type` (the conversion that an assignment does). Throws DbError:
/// 245/241/8114 not convertible, 220/8115 overflow; too long texts are cut when `cut` is set (as
/// for variables and CAST) and kept whole otherwise: the caller of an INSERT checks.
StoredValue convertValue(const SessionState& session, const StoredValue& value,
                         const ColumnInfo& type, bool cut = true);

/// "int", "nvarchar(30)", "numeric(10, 2)", "[dbo].[myType]" from `begin` on; `end` gets the index
/// behind it. Throws DbError 2715 "Cannot find data type" for an unknown one.
ColumnInfo parseDataType(SessionState& session, std::span<const Token> tokens, qsizetype begin,
                         qsizetype& end);

/// To be called on each change of a database's catalogue (DDL, rollback): what was remembered of
/// its tables and the statements that were prepared on them is forgotten.
void catalogChanged(Database& database);
/// To be called before a database's handle is closed: finalises all prepared statements.
void releaseQueries(Database& database);

}  // namespace zov::local
