// What the catalogue knows of a database's objects, read in a constant number of statements over
// the views of version 9 and later. It is what scripts that a server can run are printed from.
// Enter at readDatabaseFacts, or at readTableFacts for one table.
#pragma once

#include "catalog/object_ref.h"
#include "core/server_info.h"

#include <QStringList>

#include <optional>
#include <vector>

namespace zov {

struct ColumnFacts {
    QString name;
    qint32 id = 0;
    QString type;       ///< as it stands in a statement: "varchar(50)", "[sales].[Phone]"
    QString baseType;   ///< the server's own type below: "nvarchar"
    QString collation;  ///< empty: the database's own, or none
    bool nullable = true;
    bool isIdentity = false;
    QString seed, increment;
    bool notForReplication = false;
    QString computed;  ///< the expression; empty for a column that is stored as it is given
    bool isPersisted = false;
    QString defaultName, defaultText;  ///< of its constraint
    QString boundDefault, boundRule;   ///< quoted names of objects bound to it
    bool isRowGuid = false, isSparse = false, isColumnSet = false;
    bool isRowVersion = false;
    QString mask;
};

struct IndexColumnFacts {
    QString name;
    bool isDescending = false;
};

struct IndexFacts {
    enum Kind { Clustered = 1, Nonclustered = 2, ClusteredColumnstore = 5, Columnstore = 6 };
    QString name;
    qint32 id = 0;
    int kind = Nonclustered;  ///< other numbers: kinds that no statement is printed for
    bool isUnique = false, isPrimaryKey = false, isUniqueConstraint = false;
    bool isDisabled = false, ignoresDuplicates = false, isPadded = false;
    bool rowLocks = true, pageLocks = true;
    int fillFactor = 0;
    QString filter;
    std::vector<IndexColumnFacts> keys;
    QStringList included;

    bool isConstraint() const { return isPrimaryKey || isUniqueConstraint; }
};

/// A foreign key or a check.
struct ConstraintFacts {
    QString name;
    qint32 id = 0;
    QString schema;
    bool isDisabled = false, isNotTrusted = false, notForReplication = false;
    QString check;  ///< the condition; empty for a foreign key
    QStringList columns;
    QString referencedSchema, referencedTable;
    QStringList referencedColumns;
    QString onDelete, onUpdate;  ///< "CASCADE" ...; empty for no action
};

/// A table; a view with its indexes, or a table type, have the same parts.
struct TableFacts {
    QString schema, name;
    qint32 id = 0;
    std::vector<ColumnFacts> columns;
    std::vector<IndexFacts> indexes;
    std::vector<ConstraintFacts> foreignKeys, checks;
    /// What it has that no statement here makes, as words for a sentence.
    QStringList beyond;

    QString quoted() const;
    const ColumnFacts* column(const QString& name) const;
};

/// A procedure, function, view, trigger, or a default or rule that stands alone.
struct ModuleFacts {
    QString schema, name;
    qint32 id = 0;
    QString type;  ///< as in sys.objects: P, FN, IF, TF, V, TR, D, R
    QString text;  ///< empty: it is encrypted or kept from this login
    bool ansiNulls = true, quotedIdentifier = true;
    qint32 parentId = 0;  ///< a trigger's table or view; 0 for one on the database
    bool isDisabled = false;

    QString quoted() const;
};

struct UserTypeFacts {
    QString schema, name;
    qint32 id = 0;
    QString base;  ///< "varchar(24)"; empty for a table type
    bool nullable = true;
    QString boundDefault, boundRule;
    std::optional<TableFacts> table;
};

struct SequenceFacts {
    QString schema, name, type, start, increment, minimum, maximum;
    bool cycles = false, isCached = false;
    qint32 cacheSize = 0;  ///< 0: the server's choice
};

struct SynonymFacts {
    QString schema, name, base;  ///< `base` as it stands in a statement
};

struct DatabaseFacts {
    QStringList schemas;  ///< the users' own
    std::vector<UserTypeFacts> types;
    std::vector<SequenceFacts> sequences;
    std::vector<SynonymFacts> synonyms;
    std::vector<TableFacts> tables;
    std::vector<TableFacts> indexedViews;  ///< their indexes alone
    std::vector<ModuleFacts> modules;
    /// Objects of kinds that no statement here makes: "CLR stored procedure [dbo].[x]".
    QStringList beyond;
};

/// Ordered by schema and name. False, after a report or a box, when the server is of a version
/// below 9 or something could not be read.
bool readDatabaseFacts(const ServerInfo& server, const QString& database, DatabaseFacts& facts);
/// One table by its id; false, too, when it isn't there.
bool readTableFacts(const ServerInfo& server, const QString& database, qint32 id,
                    TableFacts& table);

/// What hangs on a table and goes with it when it is dropped.
struct TableHangers {
    struct ForeignKey {
        QString quotedTable;  ///< another table, whose key it is
        ConstraintFacts key;
    };
    std::vector<ForeignKey> referencedBy;
    std::vector<ModuleFacts> triggers;
};
bool readTableHangers(const ServerInfo& server, const QString& database, qint32 id,
                      TableHangers& hangers);

}  // namespace zov
