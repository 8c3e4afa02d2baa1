// The one text form of every object, which panes show and comparisons compare.
// Enter at UpdateProcedureTextBox for a pane, at the Get...Text routines for a text.
#pragma once

#include "scripting/mdlQueryCode.h"

#include <functional>

namespace zov {

/// Shows an object in the pane. `selProcName` empty and `objectId` below 1 mean the list's selected
/// row; with an id given the selection isn't looked at. An object whose text can't be read empties
/// the pane, whose `Trouble` says why; a box tells it unless the failure was told already.
void UpdateProcedureTextBox(const ServerInfo& server, TextPane& pane, ObjectList& list,
                            ObjectType objectType, const QString& dbName,
                            const QString& selProcName, qint32 objectId, int panel);
/// The same for one object, whatever the list's selection. False when there is trouble that nobody
/// has told yet.
bool ShowObjectText(const ServerInfo& server, TextPane& pane, const QString& dbName,
                    const ObjectRef& object, int panel);

// The texts below are empty for an object whose text can't be read, and only then, but for a table
// whose columns are all ignored. What could not be read goes into the account of the run.

/// The source of a procedure, function, view or trigger, found by its bare name; where that has
/// namesakes by its id as well.
QString GetObjectText(const ServerInfo& server, const ObjectRef& object, const QString& dbName);
QString GetObjectText(const ServerInfo& server, const QString& objectName, const QString& dbName,
                      ObjectType objectType);
/// The same on a connection that the caller holds.
QString GetObjectTextOnConnection(const std::shared_ptr<Connection>& connection,
                                  const ServerInfo& server, const ObjectRef& object,
                                  const QString& dbName);

/// The columns and, behind an empty line, the indexes. With gblnIgnoreIndexes on there is no index
/// block unless `clusteredOnly` asks for the clustered one. `ignoredColumnCount` may be null.
/// A table that can't be read has neither block.
QString GetTableStructureWithIndexes(const ServerInfo& server, const ObjectRef& table,
                                     const QString& dbName, bool useIgnoredColumns,
                                     qint32* ignoredColumnCount, const QString& lineSuffix = {},
                                     bool clusteredOnly = false,
                                     const QString& indexNameSuffix = {});
QString GetTableStructureWithIndexes(const ServerInfo& server, const QString& tableName,
                                     const QString& dbName, bool useIgnoredColumns,
                                     qint32* ignoredColumnCount, qint32 objectId,
                                     const QString& lineSuffix = {}, bool clusteredOnly = false,
                                     const QString& indexNameSuffix = {});

/// Four lines, with the first pair of columns however many the key has.
QString GetRelationshipText(const ServerInfo& server, const ObjectRef& relationship,
                            const QString& dbName);
QString GetRelationshipText(const ServerInfo& server, const QString& relationshipName,
                            const QString& dbName);
/// A clustered index by name, worded as a primary key, with its first column.
QString GetConstraintText(const ServerInfo& server, const ObjectRef& constraint,
                          const QString& dbName);
QString GetConstraintText(const ServerInfo& server, const QString& constraintName,
                          const QString& dbName);

/// How a list of objects is watched while it is made: the name at hand, and whether to stop.
struct ListingProgress {
    std::function<void(const QString&)> showName;
    std::function<bool()> cancelled;
};
/// One line an object, tables with their numbers of records.
QString RecordsetToString(const ListingProgress& progress, Recordset* objects,
                          ObjectType objectType, const ServerInfo& server, const QString& dbName,
                          bool numbered);

/// Takes blanks, tabs and line breaks off both ends; a text of one character stays as it is.
QString TrimBlanksAndLineBreaks(const QString& text);

/// The texts above as the catalogue's lists ask for them.
ObjectTexts& objectTexts();

}  // namespace zov
