// The definition statements: what CREATE, ALTER, DROP, GRANT and the system procedures do to the
// catalogue of an embedded database, and to the SQLite tables behind it. The statement runner calls
// runDefinition with one whole statement; families of statements live in ddl_*.cpp.
#pragma once

#include "data/local/ddl_catalog.h"
#include "data/local/ddl_common.h"

#include <QHash>

#include <optional>
#include <span>
#include <vector>

namespace zov::local {

class Variables;
struct StoredValue;

/// One definition statement with the batch that it stands in.
struct Definition {
    std::span<const Token> tokens;  ///< without ";" and End
    QString batchText;              ///< modules keep all of it
    bool opensBatch = false;        ///< no statement stands before it
};

/// CREATE, ALTER, DROP, TRUNCATE TABLE, GRANT, DENY, REVOKE, ENABLE/DISABLE TRIGGER, UPDATE
/// STATISTICS.
void runDefinition(SessionState& session, const Definition& statement);

// Families. The cursor stands behind the words that chose the family and is read to its end.
void createTable(SessionState& session, TokenCursor& cursor);
void dropTables(SessionState& session, TokenCursor& cursor);
void truncateTable(SessionState& session, TokenCursor& cursor);
void alterTable(SessionState& session, TokenCursor& cursor);
void setTriggersEnabled(SessionState& session, TokenCursor& cursor, bool enabled);

struct IndexWords {
    bool unique = false;
    bool clustered = false;
};
void createIndex(SessionState& session, TokenCursor& cursor, IndexWords words);
void dropIndexes(SessionState& session, TokenCursor& cursor);
void alterIndex(SessionState& session, TokenCursor& cursor);
void createStatistics(SessionState& session, TokenCursor& cursor);
void dropStatistics(SessionState& session, TokenCursor& cursor);
void updateStatistics(SessionState& session, TokenCursor& cursor);

enum class ModuleVerb { Create, Alter, CreateOrAlter };
/// `statement.tokens` from CREATE or ALTER on.
void defineModule(SessionState& session, const Definition& statement);
void dropModules(SessionState& session, TokenCursor& cursor, const QString& kind);
void createDefaultOrRule(SessionState& session, const Definition& statement);
void createSynonym(SessionState& session, TokenCursor& cursor);
void createSequence(SessionState& session, TokenCursor& cursor, bool alter);

void createType(SessionState& session, TokenCursor& cursor);
void dropTypes(SessionState& session, TokenCursor& cursor);

void createSchema(SessionState& session, const Definition& statement);
void alterSchema(SessionState& session, TokenCursor& cursor);
void dropSchema(SessionState& session, TokenCursor& cursor);
void createPrincipal(SessionState& session, TokenCursor& cursor, const QString& kind);
void alterPrincipal(SessionState& session, TokenCursor& cursor, const QString& kind);
void dropPrincipal(SessionState& session, TokenCursor& cursor, const QString& kind);
void alterAuthorization(SessionState& session, TokenCursor& cursor);
enum class PermissionVerb { Grant, Deny, Revoke };
void changePermissions(SessionState& session, TokenCursor& cursor, PermissionVerb verb);

void createLogin(SessionState& session, TokenCursor& cursor, const QString& name);
void alterLogin(SessionState& session, TokenCursor& cursor, const QString& name);
void dropLogin(SessionState& session, const QString& name);

void createDatabase(SessionState& session, TokenCursor& cursor);
void alterDatabase(SessionState& session, TokenCursor& cursor);
void dropDatabases(SessionState& session, TokenCursor& cursor);

/// One argument of EXEC: `name` carries its "@" or is empty.
struct Argument {
    QString name;
    QString text;  ///< the value as text
    bool isNull = false;
};
/// Runs a system procedure that changes the catalogue; false when there is none of that name. Its
/// rows, if any, go to `lines` (sp_helptext).
bool runSystemProcedure(SessionState& session, const QString& name,
                        const std::vector<Argument>& arguments, std::vector<QString>& lines);

// Shared between the families.

/// The number of a login; throws 15151 for an unknown one. `catalog` is master's.
int requireLogin(const Catalog& catalog, const QString& name);
/// What every user of a database is given.
void grantConnect(Catalog& catalog, int user);
/// Throws 15151 unless there is a securable of that scope ("SCHEMA", "TYPE"; empty: an object).
void requireSecurable(Catalog& catalog, const ObjectName& name, const QString& scope);

/// What a column or table constraint says, before it is written.
struct ConstraintSpec {
    QString kind;  ///< PK UQ F C D, as in sysobjects
    QString name;  ///< empty: to be generated
    std::vector<QString> columns;
    std::vector<bool> descending;
    std::optional<bool> clustered;
    QString options;
    QString text;    ///< C and D, as stored
    QString column;  ///< the column that it was written at; empty for the table's own
    ObjectName references;
    std::vector<QString> referencedColumns;
    QString deleteAction = QStringLiteral("NO_ACTION");
    QString updateAction = QStringLiteral("NO_ACTION");
    bool notTrusted = false;
    bool notForReplication = false;
    bool withValues = false;
    int line = 0;
};

/// A column with the constraints and indexes that were written at it.
struct ColumnSpec {
    ColumnFacts facts;
    std::optional<bool> nullable;  ///< when it was said
    std::vector<ConstraintSpec> constraints;
    int line = 0;
};

struct TableIndexSpec {
    IndexFacts facts;  ///< keys without colid
    std::vector<QString> columns;
    bool clustered = false;
    int line = 0;
};

struct TableParts {
    std::vector<ColumnSpec> columns;
    std::vector<ConstraintSpec> constraints;
    std::vector<TableIndexSpec> indexes;
};

/// One element of CREATE TABLE's list or ALTER TABLE ADD's.
void readTableElement(const Catalog& catalog, TokenCursor& cursor, TableParts& parts);
/// Throws error 1702 when a table of `before` columns gets more of them than tables may have;
/// `verb` is CREATE or ALTER.
void refuseTooManyColumns(const char* verb, const QString& table, const TableParts& parts,
                          size_t before);
/// Writes the columns behind those that `table` has, with types and nullability settled.
void writeColumns(Catalog& catalog, const ObjectFacts& table, std::vector<ColumnSpec>& columns,
                  const std::vector<ConstraintSpec>& constraints);
/// Settles type, nullability and collation of a computed column over the columns that `table` has.
/// Most expressions may give null, whatever they are made of: a bare column and ISNULL say
/// otherwise. Throws 207 and 4121 for a column and a function that aren't there.
void typeComputedColumn(Catalog& catalog, const ObjectFacts& table, ColumnFacts& column);
/// Writes one constraint with its index; true when the SQLite table has to be made anew.
bool writeConstraint(Catalog& catalog, const ObjectFacts& table, const ConstraintSpec& constraint);
void writeTableIndex(Catalog& catalog, const ObjectFacts& table, const TableIndexSpec& index);
/// "WITH (...)" or "WITH FILLFACTOR = 90" as "FILLFACTOR=90,PAD_INDEX=ON"; also reads "ON group".
QString readIndexOptions(TokenCursor& cursor);
/// The function's text of "WITH (FUNCTION = 'default()')" behind MASKED.
QString readMask(TokenCursor& cursor);
/// "(a, b DESC)"
void readKeyColumns(TokenCursor& cursor, std::vector<QString>& names,
                    std::vector<bool>& descending);

/// Where a column of a table that is made anew gets its values.
struct ColumnSource {
    QString oldName;                   ///< empty: from `fill`
    std::optional<TypeFacts> oldType;  ///< set when values must be converted
    QString fill;                      ///< an expression's text; empty fills with NULL
};
/// Makes the SQLite table of a new catalogue table.
void makeStorage(Catalog& catalog, const ObjectFacts& table);
/// Makes it anew after a change of its columns or key, with the rows that were there. `sources` by
/// column name in lower case; columns that are not named keep their values.
void rebuildStorage(Catalog& catalog, const ObjectFacts& table, const QString& oldName,
                    const QHash<QString, ColumnSource>& sources = {});
/// (Re)makes one index of SQLite; those that the rowid stands for have none. Throws 1505 where
/// values repeat.
void makeStorageIndex(Catalog& catalog, const ObjectFacts& table, const IndexFacts& index);
void dropStorageIndex(Catalog& catalog, int tableId, int indid);
/// True for the clustered primary key on one whole-number column.
bool isRowidKey(const Catalog& catalog, const ObjectFacts& table, const IndexFacts& index,
                const std::vector<ColumnFacts>& columns);
/// Drops a constraint object and what hangs on it.
void removeConstraint(Catalog& catalog, const ObjectFacts& table, const ObjectFacts& constraint);
/// Drops a table and everything of it.
void removeTable(Catalog& catalog, const ObjectFacts& table);

}  // namespace zov::local
