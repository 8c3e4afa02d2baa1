// What can be listed and compared: the object types, the one catalogue text for
// each of them, and the loading of an object list. Enter at LoadObjects for a
// panel, at BuildObjSQLString for the text alone. Knows nothing of how an
// object's text is made: that is handed in as ObjectTexts.
#pragma once

#include "catalog/object_directory.h"
#include "catalog/object_ref.h"
#include "data/mdlData.h"
#include "data/sql_names.h"
#include "shell/controls.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace zov {

/// "Procedure" or "procedures"; "Object" and "objects" for any other value.
QString GetObjectTypeName(ObjectType Type, bool Plural);

/// The type at a list position: 0 tables, 1 procedures, 2 functions, 3 views, 4 triggers,
/// 5 relationships. Any other position gives a value that is no type (0).
ObjectType ObjectTypeFromPosition(int position);

/// Fills `cmbType`: names, with the type as item data; the first one selected. "Constraints" and
/// "Permissions" are offered as the settings say. The combo is tagged "OFF" meanwhile.
void LoadObjectTypesCombo(ChoiceList& Combo);

/// One object of a loaded list.
struct ObjectListEntry {
    QString Name;  ///< with its schema in front where the list holds the bare name twice
    QString RefDate;
    qint32 Id = 0;
    qint32 Mode = 0;          ///< the caller's
    QString Schema;           ///< empty until looked up
    QString ObjectName = {};  ///< as the catalogue has it, whatever Name shows; empty: Name is that
    bool HasNamesakes = false;  ///< other objects of the database may have this name
};

/// What a list needs from the makers of texts, which stand above the catalogue.
class ObjectTexts {
 public:
    virtual ~ObjectTexts() = default;
    /// Shows the text of the list's selected object in the pane; selects the first row when none
    /// is.
    virtual void showSelectedObject(const ServerInfo& Server, TextPane& pane, ObjectList& list,
                                    ObjectType Type, const QString& DbName, int Index) = 0;
    /// Keeps the permission records of `rows` for the panel, and gives them as a list.
    virtual std::vector<ObjectListEntry> keepPermissions(Recordset& rows, int Index) = 0;
};

/// The statement that lists the objects of a type as name, refdate, id. `ObjectName` narrows it to
/// one name and goes into the literal as it stands; `NameCondition` is the tail of a condition on
/// [name], "LIKE 'A%'"; `Index` is the panel, whose filter applies. Empty, with a box, for an
/// unknown type.
QString BuildObjSQLString(ObjectType Type, bool IgnoreSysObjects, const QString& ObjectName,
                          const QString& NameCondition, int Index);

/// Loads a panel's list. A failed query was reported by GetAdoRS and leaves the list empty.
/// `texts` may be null when nothing is to be shown and the type isn't Permission; `Busy`, when
/// given, is the window's re-entrancy flag, set meanwhile. `directory` is the database's when the
/// caller has read it already; otherwise it is read for a list that isn't empty.
void LoadObjects(const ServerInfo& Server, ObjectList& pvlSqlObj, TextPane& txtTXProc,
                 ObjectType Type, const QString& DbName, bool SelectFirst,
                 const QString& NameCondition, int Index, ObjectTexts* texts, bool* Busy = nullptr,
                 const ObjectDirectory* directory = nullptr);

/// The same query as a recordset on the caller's connection; null after a failure.
void LoadObjects_ToRecordset(const std::shared_ptr<Connection>& Connection,
                             std::unique_ptr<Recordset>& Rs, ObjectType Type, int Index);

/// Reads fields 0, 1 and 2 of every row; false when there is none. Leaves the recordset at its end.
bool RecordsetToObjectList(Recordset& Rs, std::vector<ObjectListEntry>& List, qint32 Mode);

/// Equal names (to the letter) side by side. Lists come ordered by name.
bool ListHasAdjacentDuplicates(const std::vector<ObjectListEntry>& List);

/// Looks up the schema of every entry that shares its name with a neighbour, and puts it in front
/// of the name. Stops at the first lookup that fails.
void FillSchemasForDuplicates(const ServerInfo& Server, ObjectType Type, const QString& DbName,
                              std::vector<ObjectListEntry>& List);

/// What a list carries beside what it shows: each entry's schema and whether its name is shared.
void DescribeEntries(const ObjectDirectory& directory, std::vector<ObjectListEntry>& List);

/// Puts the schema in front of every name that the list holds twice, wherever its rows stand: a
/// server's order may have put others between them, and a lookup may have failed.
void showSchemasOfNamesakes(std::vector<ObjectListEntry>& List);

void LoadListView(ObjectList& pvlSqlObj, const std::vector<ObjectListEntry>& List);
/// "Id: 1,234, Name: Orders, Ref. Date: ...".
QString GetObjectToolTip(const ObjectListRow& row);

/// All objects of one type, with schemas and bare names; false, with a box, when the query fails.
bool GetAllObjectsOfType(const ServerInfo& Server, const QString& DbName, ObjectType Type,
                         std::vector<ObjectListEntry>& Names, int Index);
/// All objects of all types, type by type; false when one can't be had.
bool GetListOfAllObjects(const ServerInfo& Server, const QString& DbName,
                         std::vector<ObjectListEntry>& Objects, int Index);
/// Column names of a table, of all tables when its name is empty. Failures are silent.
QStringList GetListOfAllColumns(const ServerInfo& Server, const QString& DbName,
                                const QString& TableName);
/// The trimmed, lower-cased word against the names as stored.
bool IsItDbObject(const QString& Word, const std::vector<ObjectListEntry>& Objects);

}  // namespace zov
