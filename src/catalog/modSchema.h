// Schemas: listing them, looking up an object's, and the filter by schema that
// each panel can carry (gblnFilterActive, gstrFilterList).
#pragma once

#include "catalog/object_ref.h"
#include "core/server_info.h"

namespace zov {

/// Without the server's own schemas, ordered; the result is their number.
qint32 GetAllSchemas(const ServerInfo& Server, const QString& DbName, QStringList& Schemas);
/// By name, from INFORMATION_SCHEMA, a trigger's from its text; empty when unknown.
QString GetSchemaForObject(const ServerInfo& Server, const QString& DbName,
                           const QString& ObjectName, ObjectType Type);

/// The join and the condition that narrow a list to the panel's chosen schemas. False when the
/// panel has no filter or the type knows none.
bool GetSchemaFilter(ObjectType Type, bool IgnoreSysObjects, const QString& ObjectName,
                     const QString& NameCondition, int Index, QString& Join, QString& Condition);
/// Owner filtering doesn't touch the catalogue's text: always false.
bool GetOwnerFilter(ObjectType Type, bool IgnoreSysObjects, const QString& ObjectName,
                    const QString& NameCondition, int Index, QString& Join, QString& Condition);
/// The lines that reports show for the active filters, without a line break at the end.
QString BuildSchemaFilteringString();
/// Runs at every change of the panel's server or database: a filter belongs to one database.
void ResetFilter(int Index);

/// For a statement that failed with `ErrNumber`: when the table's name needs its schema, puts it in
/// front of `Name` and says true; the caller runs the statement again. Remembers in `Server` that
/// names were looked up, and whether it helped.
bool RetryWithSchema(ServerInfo& Server, const QString& DbName, QString& Name, ObjectType Type,
                     qint32 ErrNumber);

/// Whether the server has OBJECT_SCHEMA_NAME, which came with a service pack of version 9.
/// `majorVersion` -1: taken from the text.
bool Is_OBJECT_SCHEMA_NAME_Implemented(const QString& versionText, qint32 majorVersion = -1);

/// The schema (the owner on servers below version 9) of the object with this catalogue id; empty
/// when there is no such object. False when the server can't be asked. A server without
/// OBJECT_SCHEMA_NAME is asked in the old way from then on, until the program ends.
bool Db_GetObjSchemaById(const ServerInfo& Server, ObjectType Type, const QString& DbName,
                         qint32 ObjectId, QString& Schema);
/// Forgets which servers lack OBJECT_SCHEMA_NAME.
void ForgetSchemaFunctionFindings();

}  // namespace zov
