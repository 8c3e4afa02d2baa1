// Granted and denied rights of a database, from sys.database_permissions
// (major version 9 and above): records, list rows and texts.
#pragma once

#include "catalog/mdlObjects.h"

namespace zov {

struct PermissionRecord {
    qint32 lngId = 0;  ///< running number from 1
    qint32 lngObjectId = 0;
    QString strTypeDesc;  ///< "USER_TABLE"
    QString strSchemaName;
    QString strObjectName;
    qint32 lngMinorId = 0;  ///< above 0 for a column
    QString strMinorName;
    QString strState;           ///< "GRANT", "DENY"
    QString strPermissionName;  ///< "SELECT"
    QString strObjectType;      ///< "U", "V", "P"
};

/// True also for an empty recordset; false when it can't be read, which is reported.
bool ConvertRecordsetToPermissionsArray(Recordset& rows,
                                        std::vector<PermissionRecord>& permissions);
/// The rows of an object list: the id is the record's running number, the state goes with it.
std::vector<ObjectListEntry> ConvertPermissionsArrayToTwoStrArray(
    const std::vector<PermissionRecord>& permissions);
/// `side` 0 Source, 1 Target; `number` from 1, 0 gives an empty text.
QString GetPermissionText(int side, qint32 number);
/// "TABLE", "TABLE COLUMN", "VIEW", "FUNCTION", else the catalogue's own description.
QString GetObjectShortName(const PermissionRecord& permission);

/// The records behind a panel's list.
std::vector<PermissionRecord>& permissionsOfSide(int side);

}  // namespace zov
