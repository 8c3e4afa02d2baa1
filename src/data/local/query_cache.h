// What the query side keeps with an open database: facts of its tables, prepared
// statements by their shape, and the small look-ups of the catalogue functions.
#pragma once

#include "data/local/collation.h"
#include "data/local/query_engine.h"
#include "data/local/query_types.h"

#include <QHash>

#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

namespace zov::local {

/// Throws the DbError that stands for SQLite's last failure on the handle: time-out, cancelled,
/// an error raised by one of our functions, a constraint, a locked file.
[[noreturn]] void throwQueryError(sqlite3* handle, int code, const ExecutionControl* control);

struct QueryColumn {
    QString name;
    QString sqlName;  ///< quoted for SQLite
    int colid = 0;
    ColumnInfo info;                       ///< with its name
    const Collation* collation = nullptr;  ///< of a text
    const Collation* stored = nullptr;     ///< by which SQLite compares it; null: by its bytes
    QString defaultText;                   ///< null without a default
    bool isIdentity = false;
    qint64 seed = 1, increment = 1;
    QString computed;  ///< null for a plain column
    QString typeName;  ///< as the catalogue calls it
};

/// A table, a view or a synonym as queries need it.
struct QueryTable {
    int id = 0;
    QString schema;
    QString name;
    QString xtype;    ///< U, V, SN ...
    QString sqlName;  ///< of a table, quoted for SQLite
    QString rowid;    ///< a name for SQLite's row number that no column has taken
    QString text;     ///< of a view, its source; of a synonym, what it stands for
    std::vector<QueryColumn> columns;
    const Collation* names = Collation::standard();  ///< by which its columns' names are told apart

    int columnIndex(const QString& column) const;
};

/// Where a parameter of a prepared statement gets its value from.
struct ParameterSource {
    enum class Kind { Literal, Variable, Global };
    Kind kind = Kind::Literal;
    int literal = -1;      ///< index of the token within the statement
    QString name;          ///< of the variable or the global
    bool convert = false;  ///< to `target`
    ColumnInfo target;
};

/// A SELECT that was translated and prepared.
struct PreparedSelect {
    sqlite3_stmt* statement = nullptr;
    std::vector<ColumnInfo> columns;
    std::vector<ParameterSource> parameters;
    std::vector<QString> assignments;  ///< variable per column of SELECT @v = ...
    std::vector<std::pair<int, QString>>
        fixedLiterals;  ///< tokens whose text is part of the statement
    Database* database = nullptr;
    QStringList attached;     ///< schema names to detach when the statement goes
    bool usesTables = false;  ///< of the user: void when the catalogue changes
    bool busy = false;

    PreparedSelect() = default;
    PreparedSelect(const PreparedSelect&) = delete;
    PreparedSelect& operator=(const PreparedSelect&) = delete;
    ~PreparedSelect();
};

struct PreparedInsert {
    sqlite3_stmt* statement = nullptr;
    std::shared_ptr<const QueryTable> table;
    std::map<size_t, StoredValue> defaults;  ///< those that are the same for each row, by column
    ~PreparedInsert();
};

struct QueryCache {
    explicit QueryCache(Database& database) : database(database), handle(database.handle) {}
    ~QueryCache();

    static QueryCache& of(Database& database);

    /// Drops what another connection's changes made stale. Cheap; once a statement.
    void refresh();
    /// The database's: of its names, of literals and variables.
    const Collation* collation();
    /// By which SQLite compares the catalogue's names.
    const Collation* storedNames();
    /// Null when there is none. An empty `schema` means dbo.
    std::shared_ptr<const QueryTable> table(const QString& schema, const QString& name);
    std::shared_ptr<const QueryTable> tableById(int id);
    void forgetCatalogue();
    void finalizeAll();

    /// A catalogue look-up, prepared once; reset by LookUp's end.
    sqlite3_stmt* lookUp(const char* sql);

    Database& database;
    sqlite3* handle;
    QHash<QString, std::vector<std::shared_ptr<PreparedSelect>>> selects;  // by shape
    qsizetype selectCount = 0;
    QHash<QString, std::shared_ptr<PreparedInsert>> inserts;   // by table and columns
    QHash<QString, std::shared_ptr<const QueryTable>> tables;  // null pointers remembered too

 private:
    std::unordered_map<const char*, sqlite3_stmt*> lookUps_;
    qint64 dataVersion_ = -1;
    const Collation* collation_ = nullptr;
    const Collation* storedNames_ = nullptr;
};

/// One use of a catalogue look-up.
class LookUp {
 public:
    LookUp(QueryCache& cache, const char* sql) : statement_(cache.lookUp(sql)) {}
    ~LookUp() {
        sqlite3_reset(statement_);
        sqlite3_clear_bindings(statement_);
    }
    LookUp(const LookUp&) = delete;
    LookUp& operator=(const LookUp&) = delete;

    LookUp& bind(qint64 value) {
        sqlite3_bind_int64(statement_, ++bound_, value);
        return *this;
    }
    LookUp& bind(const QString& text) {
        const QByteArray utf8 = text.toUtf8();
        sqlite3_bind_text(statement_, ++bound_, utf8.constData(), int(utf8.size()),
                          SQLITE_TRANSIENT);
        return *this;
    }
    LookUp& bindNull() {
        ++bound_;  // what isn't bound is null
        return *this;
    }
    sqlite3_stmt* statement() const { return statement_; }
    /// False behind the last row. A row that can't be read throws.
    bool next() {
        const int code = sqlite3_step(statement_);
        if (code != SQLITE_ROW && code != SQLITE_DONE)
            throwQueryError(sqlite3_db_handle(statement_), code, nullptr);
        return code == SQLITE_ROW;
    }
    bool isNull(int column) const { return sqlite3_column_type(statement_, column) == SQLITE_NULL; }
    qint64 integer(int column) const { return sqlite3_column_int64(statement_, column); }
    QString text(int column) const {
        return QString::fromUtf8(
            reinterpret_cast<const char*>(sqlite3_column_text(statement_, column)),
            sqlite3_column_bytes(statement_, column));
    }

 private:
    sqlite3_stmt* statement_;
    int bound_ = 0;
};

/// Prepares or throws DbError with what SQLite said.
sqlite3_stmt* prepareStatement(sqlite3* handle, const QByteArray& sql, bool keep);
/// An identifier in double quotes.
QString quotedName(const QString& name);
/// What a table, a column is called in SQLite, which takes names that differ in the case of A to Z
/// for one: where the database's collation tells them apart, capitals are marked.
QString storageName(const QString& name, const Collation& names);
/// A T-SQL name split at its dots: "dbo.[a b]" gives two parts. Empty list when it isn't a name.
QStringList splitName(const QString& name);

}  // namespace zov::local
