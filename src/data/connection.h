// ADO's Connection over a provider.
#pragma once

#include "data/base/provider.h"
#include "data/command.h"

#include <QString>

#include <memory>

namespace zov {

class Recordset;
class RowSource;

/// One session with a database. Closed when the last owner lets go: a server-side recordset keeps
/// the connection that it streams from alive.
class Connection {
 public:
    Connection() = default;
    /// A connection over a session that is open already.
    explicit Connection(std::shared_ptr<ProviderConnection> session)
        : session_(std::move(session)) {}

    QString ConnectionString;
    int CursorLocation = 2;       ///< 2 server-side, 3 client-side
    bool createDatabase = false;  ///< make a missing database (scripts that fill a new one)

    /// Connects; throws DbError.
    void Open();
    /// Lets the session go. A recordset that still streams keeps what it needs until it is closed.
    void Close();
    bool isOpen() const { return session_ != nullptr; }

    /// The session, for commands. The stream of an earlier command that still runs on it is read to
    /// its end into its recordset first, so that nobody sees "connection is busy".
    std::shared_ptr<ProviderConnection> sessionForNewCommand();
    void noteStream(const std::shared_ptr<RowSource>& stream) { running_ = stream; }

    /// Hands the session to a connection that another thread may work with. This one is closed
    /// until takeBack(); without it, since the work was left behind, it stays so.
    std::shared_ptr<Connection> lend();
    void takeBack(Connection& lent);
    /// Its session is still with work that was left behind.
    bool isLent() const { return lent_; }
    ProviderConnection* session() const { return session_.get(); }
    /// "server.database", as accounts of runs name it.
    QString place() const;

    /// Version of ADO whose meanings this layer gives; 0 would mean that no provider is there.
    static double Version() { return 6.1; }

 private:
    std::shared_ptr<ProviderConnection> session_;
    std::weak_ptr<RowSource> running_;
    bool lent_ = false;
};

/// Runs a command that gives no rows (rows are read and dropped); throws DbError.
CommandResult ExecuteCommand(Command& command);

}  // namespace zov
