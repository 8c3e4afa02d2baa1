// Statements that can be run, made from the texts of objects.
#pragma once

#include "scripting/modNew.h"

namespace zov {

struct CreateStatementRequest {
    QString dbName;
    QString objectName;
    ObjectRef object = {};   ///< with schema and name apart, where a list's row is meant
    QString constraintName;  ///< the relationship's name, when it isn't objectName
    ObjectType objectType = ObjectType::Table;
    qint32 objectId = 0;
    QString lineSuffix;
    QString ownerFrom;  ///< replaced by ownerTo in names and source texts when not empty
    QString ownerTo;
    bool bodyOnly = false;  ///< without the header that drops the old object
    bool useIgnoredColumns = false;

    ObjectRef meant() const {
        return object.name.isEmpty() ? objectNamed(objectName, objectType, objectId) : object;
    }
};
/// Empty, with `ok` false, when the request is incomplete (which a box tells), fails, or when the
/// object has no text that can be read (which goes into the account of the run).
QString BuildObjectCreateStatement(const ServerInfo& server, const CreateStatementRequest& request,
                                   bool& ok);

/// A statement within EXEC, to be run in another database: that of `dbName`, or the one that the
/// surrounding script has in @Database when it is empty. What stands before the first "create"
/// goes.
QString WrapStatementForDatabase(const QString& sql, const QString& dbName);
/// Runs a script so wrapped; false, with a box, when it fails.
bool SQL_Execute(const ServerInfo& connection, const QString& sql, const QString& dbName);

/// Both are empty when the record is no finished index or the table's name is empty.
QString BuildIndexDropStatement(const ColumnRecord& index, const QString& tableName);
QString BuildIndexCreateStatement(const ColumnRecord& index, const QString& tableName);

}  // namespace zov
