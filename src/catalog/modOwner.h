// Owners of a database's objects, the owner box of a panel, and the rule that
// names an object in a statement.
#pragma once

#include "catalog/mdlObjects.h"

namespace zov {

/// The owners' names, joined by commas; the result is their number.
qint32 GetAllOwners(const ServerInfo& Server, const QString& DbName, QString& OwnerList);
/// The same as a list, ordered by name.
qint32 GetAllOwnersIntoArray(const ServerInfo& Server, const QString& DbName, QStringList& Owners);
/// Empty when there is no such object.
QString GetOwner(const ServerInfo& Server, const QString& DbName, const QString& ObjectName,
                 ObjectType Type);
/// The same; the id goes into the statement where the name has namesakes.
QString GetOwner(const ServerInfo& Server, const QString& DbName, const ObjectRef& Object);

/// Fills the owner box, "All Owners" first; nothing happens while gblnShowOwners is off.
void LoadOwners(const ServerInfo& Server, const QString& DbName, ChoiceList& cmbOwners);

/// The name to use in statements: [schema].[name], or the name in brackets where no schema is
/// needed. `ObjectName` may carry its schema or owner in front of a point; `Id` below 1 means
/// unknown. As it came while gblnExtendedNames is off or when the schema can't be asked.
QString GetExtendedObjectName(const ServerInfo& Server, const QString& DbName,
                              const QString& ObjectName, ObjectType Type, qint32 Id);
/// The same for an object whose name isn't looked into: one whose schema isn't known is asked for
/// by its id, and without one by its name.
QString GetExtendedObjectName(const ServerInfo& Server, const QString& DbName,
                              const ObjectRef& Object);

}  // namespace zov
