// The only road to a server: every query of the system passes through here.
// The rule is one new connection per call; only loops over many objects open a
// connection of their own and hand it in.
#pragma once

#include "core/server_info.h"
#include "data/recordset.h"

#include <QVariant>

#include <memory>
#include <vector>

namespace zov {

/// The connection string of a server and a database (left out when empty).
QString BuildConnectionString(const ServerInfo& Server, const QString& Database);

struct AdoFailure {
    qint32 ErrNumber = 0;
    QString ErrDescription;
    bool Unreachable = false;  ///< no server answered: asking it once more would wait once more
};
/// Reports it as the query that failed would have, had it not been a silent one.
void ReportAdoFailure(const AdoFailure& Failure);

/// Input-and-output parameters of a call: in, the value; out, the parameter after the run.
using OutParams = std::vector<Parameter>;

/// Runs a command on a connection of its own. `Rs` becomes a new recordset, or null when
/// `CommandText` is empty (which only tests the connection). The result is the command's return
/// value, 0 for a text query, and -1 on any failure, told in `Failure` and, unless
/// gblnSuppressConnErrors is on, reported. A procedure's rows are all read before it comes back,
/// whatever the cursor location: only behind them are its return value and outputs.
qint32 GetAdoRS(const ServerInfo& Server, int CommandType, const QString& CommandText,
                std::unique_ptr<Recordset>& Rs, const QString& Database,
                AdoFailure* Failure = nullptr, const std::vector<QVariant>& InParams = {},
                OutParams* Outputs = nullptr);

/// The same on a connection that the caller opened; the connection decides the database.
qint32 GetAdoRS_OnConnection(const std::shared_ptr<Connection>& Connection, int CommandType,
                             const QString& CommandText, std::unique_ptr<Recordset>& Rs);

/// Opens a connection that the caller owns. A failure is reported and gives false.
bool ADO_Connection_Open(std::shared_ptr<Connection>& Connection, const ServerInfo& Server,
                         const QString& Database);

/// Runs a statement without rows on a connection of its own; its return value, -1 on failure, which
/// is always reported.
qint32 ExecAdoCmd(const ServerInfo& Server, int CommandType, const QString& CommandText,
                  const QString& Database, const std::vector<QVariant>& InParams = {},
                  OutParams* Outputs = nullptr);

/// Adds one parameter and gives back its generated name; an invalid value adds nothing and gives an
/// empty name. Kinds other than text, 32-bit integer, double, boolean, date or null end the
/// program.
QString AddAdoParameter(Command& Command, const QVariant& Value, int Direction);

/// False, too, when the server could not say (which is reported); `Failed`, when given, tells.
bool NullExistsInColumn(const ServerInfo& Server, const QString& Database, const QString& Table,
                        const QString& Column, bool* Failed = nullptr);

/// The stored source of a programmable object: the rows of syscomments, joined. `ObjectName` goes
/// into the literal as it stands; `ObjectId` from 1 on tells it from its namesakes. `Whole`, when
/// given, tells whether there was a row and each had a text: the source of an object that is
/// encrypted, or hidden from the login, has none.
QString GetObjectTextFromComments(const ServerInfo& Server, const QString& Database,
                                  const QString& ObjectName, qint32 ObjectId = 0,
                                  bool* Whole = nullptr);
QString GetObjectTextFromComments_OnConnection(const std::shared_ptr<Connection>& Connection,
                                               const QString& ObjectName, qint32 ObjectId = 0,
                                               bool* Whole = nullptr);

}  // namespace zov
