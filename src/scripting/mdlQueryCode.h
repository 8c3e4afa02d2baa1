// A table as text: one line a column, and one line an index. The lines are what
// panes show and comparisons compare, so every blank in them counts. Enter at
// GetTableStructure and GetIndexes; modNew.h puts the two together.
#pragma once

#include "catalog/mdlObjects.h"

namespace zov {

/// One column of a table, or one index. A record of an index has strName, strLine and strIndexText
/// only.
struct ColumnRecord {
    QString strName;       ///< the column; the index
    QString strDataType;   ///< as the catalogue gives it; a user type by its own name
    QString strPrecision;  ///< `prec` of types that show a length, else empty
    QString strTypeSpec;   ///< "varchar (50)", "decimal (18,2) "
    QString strLine;       ///< the finished line without suffix; an index's last key column
    bool blnMatched = false;
    qint32 lngStatus = 0;
    QString strIndexText;  ///< the whole text of the index
};

struct TableStructure {
    QString structureText;  ///< lines parted by CRLF, none behind the last
    std::vector<ColumnRecord> columns;
    qint32 lastColumnIndex = -1;    ///< of `columns`, -1 when there is none
    qint32 ignoredColumnCount = 0;  ///< columns marked as ignored, found in the table or not
    bool found = false;  ///< the table's columns could be read, and there is one at least
};

/// Reads a table's columns in their physical order. `tableName` has no owner and goes into the
/// literals as it stands. `ignoredColumnKind` is an IgnoreMode. `objectId` below 1: found by name,
/// and where two owners hold that name the columns of both come back mixed. `lineSuffix` goes
/// behind every line. Query failures are silent and give an empty text; any other error is reported
/// and gives false.
bool GetTableStructure(const ServerInfo& server, const QString& dbName, const QString& tableName,
                       TableStructure& structure, bool useIgnoredColumns, qint32 ignoredColumnKind,
                       qint32 objectId, const QString& lineSuffix);
/// The same with the table's name in two forms: `tableLiteral`, its quotes doubled, for the
/// statement, and `storedName` for the key of the ignored columns (ObjectRef::storedName).
bool GetTableStructure(const ServerInfo& server, const QString& dbName, const QString& storedName,
                       const QString& tableLiteral, TableStructure& structure,
                       bool useIgnoredColumns, qint32 ignoredColumnKind, qint32 objectId,
                       const QString& lineSuffix);

/// The same for a table whose schema and name are known apart. One with an id that has no columns
/// can't be read: it goes into the account of the run, as does a default or a seed without its
/// text.
bool GetTableStructure(const ServerInfo& server, const QString& dbName, const ObjectRef& table,
                       TableStructure& structure, bool useIgnoredColumns, qint32 ignoredColumnKind,
                       const QString& lineSuffix);

/// 0 for a table that isn't there.
qint32 GetColumnsCount(const ServerInfo& server, const QString& dbName, const QString& tableName,
                       qint32 ignoredColumnKind, qint32 objectId);

/// The definition as the server stores it, "((0))"; empty when the column has none.
QString GetDefaultValue(const ServerInfo& server, const QString& dbName, qint32 tableId,
                        qint32 colId);
/// From sys.objects, so for major version 9 and above only. Silent. Empty for a default that was
/// bound to the column or its type: that one is no constraint.
QString GetDefaultConstraintName(const ServerInfo& server, const QString& dbName, qint32 tableId,
                                 qint32 defaultId);

/// One line an index, each with CRLF behind it. Found through the table's child objects
/// (constraints, defaults, triggers): a table that has none shows no indexes. `indexes`, when
/// given, gets a record for each index.
QString GetIndexes(const ServerInfo& server, const QString& tableName, const QString& dbName,
                   bool clusteredOnly, const QString& nameSuffix,
                   std::vector<ColumnRecord>* indexes = nullptr);
/// The same; the id goes into the statement where the name has namesakes.
QString GetIndexes(const ServerInfo& server, const ObjectRef& table, const QString& dbName,
                   bool clusteredOnly, const QString& nameSuffix,
                   std::vector<ColumnRecord>* indexes = nullptr);

/// The defaults of a table as a statement for a script that declares @Database and @ErrorVal.
QString GetTableConstraints(const ServerInfo& server, const QString& tableName,
                            const QString& dbName);
/// The indexes of a view in the same form; empty for any other type, without asking the server.
QString GetExtras(const ServerInfo& server, const QString& objectName, const QString& dbName,
                  ObjectType objectType);
QString GetExtras(const ServerInfo& server, const ObjectRef& object, const QString& dbName);

}  // namespace zov
