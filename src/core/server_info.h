// One server of the user's list, and a panel's copy of it.
#pragma once

#include <QString>

namespace zov {

struct ServerInfo {
    QString Name;  ///< as typed; also the list's key
    bool SQLAuth = false;
    QString LoginName;
    QString Password;     ///< plain text
    QString MRUDb;        ///< the database last selected on this server
    qint32 RegIndex = 0;  ///< the n of its key `Server`n; 0 when it isn't stored
    QString Version;      ///< as the server reports it, "9.00.1399.06"; empty when unknown
    qint32 NumVersion = 0;
    bool SchemaCheckPerformed = false;
    bool AddSchema = false;
};

/// The number before the first point of a version text; 0 for an empty one.
qint32 GetMajorVersion(const QString& Version);

}  // namespace zov
