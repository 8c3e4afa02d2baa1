// Reading and writing the catalogue tables of one database, as the definition statements need it.
// Changes go through Catalog::forWriting, which starts the database's part of the statement.
#pragma once

#include "data/local/collation.h"
#include "data/local/ddl_common.h"
#include "data/local/local_session.h"

#include <QString>

#include <optional>
#include <vector>

namespace zov::local {

/// A prepared statement with its values bound in order; throws DbError on any failure.
class CatalogQuery {
 public:
    CatalogQuery(sqlite3* handle, const char* sql);
    ~CatalogQuery();
    CatalogQuery(const CatalogQuery&) = delete;
    CatalogQuery& operator=(const CatalogQuery&) = delete;

    CatalogQuery& add(qint64 value);
    CatalogQuery& add(int value) { return add(qint64(value)); }
    CatalogQuery& add(bool value) { return add(qint64(value)); }
    CatalogQuery& add(const QString& text);  ///< a null text is NULL
    CatalogQuery& add(std::optional<int> value);
    CatalogQuery& addIf(bool wanted, const QString& text) { return wanted ? add(text) : *this; }
    /// False behind the last row.
    bool step();
    /// Runs to the end.
    void run();
    /// Back to the start with no values bound.
    void again();

    qint64 integer(int column) const { return sqlite3_column_int64(statement_, column); }
    int number(int column) const { return sqlite3_column_int(statement_, column); }
    bool isNull(int column) const { return sqlite3_column_type(statement_, column) == SQLITE_NULL; }
    QString text(int column) const;
    std::optional<int> optional(int column) const;
    sqlite3_stmt* raw() const { return statement_; }

 private:
    sqlite3* handle_;
    sqlite3_stmt* statement_ = nullptr;
    int bound_ = 0;
};

/// A column's type as syscolumns tells it.
struct TypeFacts {
    int xtype = 0;
    int xusertype = 0;
    int length = 0;
    std::optional<int> prec;
    std::optional<int> scale;
    bool nullable = true;  ///< when the column doesn't say

    bool isText() const;     ///< has a collation
    bool isInteger() const;  ///< tinyint to bigint
    bool sameStorage(const TypeFacts& other) const;
};

struct ObjectFacts {
    int id = 0;
    QString name;
    int schemaId = 0;
    QString schema;
    QString xtype;
    int parent = 0;
    bool isDisabled = false;
    QString info;

    bool isTable() const { return xtype == QLatin1String("U"); }
    QString display() const { return schema + u'.' + name; }
};

struct ColumnFacts {
    int colid = 0;
    QString name;
    int colorder = 0;
    TypeFacts type;
    bool nullable = true;
    int cdefault = 0;
    int crule = 0;                  ///< a bound rule's id
    QString seed, increment, last;  ///< null without IDENTITY; `last` null before the first row
    QString computed;               ///< null for a plain column
    bool persisted = false;
    bool rowguid = false;
    QString collation;
    /// What few columns are: sparse, hidden, column_set, mask, not_for_replication; addColumn
    /// writes them, columns() doesn't read them.
    std::vector<std::pair<const char*, QString>> details;
};

struct IndexKey {
    int colid = 0;
    bool descending = false;
    bool included = false;
};

struct IndexFacts {
    int indid = 0;
    QString name;
    bool unique = false;
    int constraintId = 0;
    bool disabled = false;
    QString filter;   ///< null without one
    QString options;  ///< null without
    std::vector<IndexKey> keys;
};

class Catalog {
 public:
    /// For reading; changing through it is a mistake of the caller.
    Catalog(SessionState& session, Database& database, bool writing = false);
    /// The database that a statement changes (the current one when `name` says none). While the
    /// object lives it is the session's current one, so that names in expressions are looked up
    /// there.
    static Catalog forWriting(SessionState& session, const ObjectName& name = {});
    /// What the query side remembers of a changed catalogue is forgotten here once more: it may
    /// have looked while the change was under way.
    ~Catalog();
    Catalog(const Catalog&) = delete;
    Catalog& operator=(const Catalog&) = delete;

    SessionState& session() const { return session_; }
    Database& database() const { return database_; }
    sqlite3* handle() const { return database_.handle; }
    bool isVersion8() const;
    QString now() const;  ///< the time of the statement, to the server's 1/300 s

    QString fact(const char* name) const;
    void setFact(const char* name, const QString& value);

    /// The database's collation, by which names are told apart.
    const Collation& names() const;
    bool sameName(const QString& a, const QString& b) const { return names().equal(a, b); }
    /// What stands behind COLLATE in a definition, in the server's spelling; empty for
    /// database_default. An unknown one is told of.
    QString readCollation(TokenCursor& cursor) const;
    /// A table or a column as SQLite knows it, quoted.
    QString storedTable(const QString& schema, const QString& table) const;
    QString storedColumn(const QString& column) const;

    // Schemas and principals
    std::optional<int> schemaId(const QString& name) const;
    QString schemaName(int id) const;
    /// Throws 2760 for an unknown one; an empty name is the default schema.
    int requireSchema(const QString& name) const;
    std::optional<int> principalId(const QString& name) const;
    int requirePrincipal(const QString& name) const;  ///< throws 15151

    // Objects
    std::optional<ObjectFacts> find(const ObjectName& name) const;
    std::optional<ObjectFacts> find(int id) const;
    /// Throws 4902/3701-like "Cannot find the object" unless there is a table of that name.
    ObjectFacts requireTable(const ObjectName& name, const char* action = "alter") const;
    /// Throws 2714 when the schema has such a name.
    void requireFreeName(const QString& name, int schemaId) const;
    int addObject(const QString& name, int schemaId, const QString& xtype, int parent = 0,
                  const QString& info = {}, bool systemNamed = false);
    void touchObject(int id);
    void removeObject(int id);  ///< with its comments, permissions and properties
    std::vector<ObjectFacts> children(int id) const;

    // Columns
    std::vector<ColumnFacts> columns(int id) const;
    void addColumn(int id, const ColumnFacts& column);
    void removeColumns(int id);

    // Facts that few objects have ("sparse", "mask" ...); class 1 for objects and columns (by
    // colid), 6 for types, 7 for indexes
    QString detail(int objectClass, int major, int minor, const char* name) const;  ///< null: none
    /// A null value takes the fact away.
    void setDetail(int objectClass, int major, int minor, const char* name, const QString& value);
    void removeDetails(int objectClass, int major, std::optional<int> minor = {});

    // Indexes
    std::vector<IndexFacts> indexes(int id) const;
    void addIndex(int id, const IndexFacts& index);
    void removeIndex(int id, int indid);
    int nextIndexId(int id, bool clustered) const;

    // Texts
    void setText(int id, const QString& text, bool encrypted = false);
    void appendText(int id, const QString& text, bool encrypted);
    /// All rows joined; null when there is none or it is encrypted.
    QString text(int id) const;

    /// The server's form of a generated constraint name, the same for the same table and column at
    /// each load, and free in the schema.
    QString generatedName(const char* kind, const QString& schema, const QString& table,
                          const QString& column) const;

 private:
    Database& database_;
    SessionState& session_;
    bool writing_ = false;
    Database* outer_ = nullptr;
};

/// Reads a type: "int", "nvarchar(50)", "[dbo].[phone]"; throws 2715 for an unknown one.
TypeFacts readType(const Catalog& catalog, TokenCursor& cursor);
/// The same from a text, as the system procedures take it.
TypeFacts readType(const Catalog& catalog, const QString& text);
/// Catalogue facts of a type that the query side inferred.
TypeFacts typeFacts(const ColumnInfo& info);
ColumnInfo columnInfo(const TypeFacts& type, bool nullable);

QString quoted(const QString& name);

}  // namespace zov::local
