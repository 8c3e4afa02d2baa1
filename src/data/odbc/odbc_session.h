// One session with a server, and the pool where idle ones wait for half a minute:
// connecting costs several round trips and a login, and the system opens a
// connection for every query.
#pragma once

#include "data/odbc/driver_crash.h"
#include "data/odbc/odbc_driver.h"
#include "data/odbc/odbc_errors.h"
#include "data/odbc/odbc_handles.h"
#include "data/odbc/patience.h"

#include <memory>
#include <mutex>

namespace zov::odbc {

class Session {
 public:
    /// Connects and logs in; throws DbError.
    Session(const QString& connectionString, const ServerAddress& server,
            const ConnectionSpec& spec);

    SQLHDBC handle() const { return connection_.get(); }
    const QString& key() const { return key_; }
    /// The driver's name, for a DriverCall.
    const QByteArray& driver() const { return driver_; }
    ~Session();
    /// Columns of a result may be read piecewise in any order, in front of bound ones too.
    bool readsAnyColumn() const { return readsAnyColumn_; }

    /// The statement that cancel() stops, while it lives; null when it ended.
    void setRunning(SQLHSTMT statement);
    bool isBusy() const;
    void cancel();
    bool wasCancelled() const;

    /// Called with each command's text: a session whose state may have been changed by what ran on
    /// it (SET, USE, a transaction, a temporary table) isn't handed to somebody else.
    void noteCommand(const QString& text, bool isProcedure);
    /// Something failed: the session may go on, but is not used for anybody else.
    void noteFailure() { reusable_ = false; }
    bool isReusable() const { return reusable_ && !waiting_->wasCut(); }

    /// Turns a failed call into its error, and notes it.
    DbError failure(SQLSMALLINT handleType, SQLHANDLE handle);

    /// The driver waits for the server in this scope: for `seconds` of silence (0: without limit)
    /// and a moment more, for the answer to the cancel that a driver sends then. A server that is
    /// silent behind that, or goes on behind cancel(), loses the connection.
    Patience whileWaiting(int seconds) const;
    /// For a call that only tidies up.
    Patience whileClosing() const;

    /// Forgets what its last user left. False when the driver knows that the server is gone.
    bool reset();
    /// The same, and sets its database anew. False when the server is gone, or doesn't give it any
    /// more.
    bool makeFresh();

    std::vector<ServerMessage> messages;
    /// Whether it is known that the server still answers; else its first command tells.
    bool isProven = true;

 private:
    void rememberDatabase();

    QByteArray driver_;
    Handle connection_;
    std::shared_ptr<Waiting> waiting_;
    QString key_;
    QString server_;    ///< as the user named it
    QString database_;  // where the login landed
    bool readsAnyColumn_ = false;
    bool reusable_ = true;

    mutable std::mutex runningGuard_;
    SQLHSTMT running_ = nullptr;
    bool cancelled_ = false;
};

/// A command that only reads, as far as its words tell.
bool leavesSessionAsItWas(const QString& commandText);

/// Hands out an idle session with this very connection string, or a new one. When its last owner
/// lets go it returns to the pool, or ends.
std::shared_ptr<Session> borrowSession(const QString& connectionString, const ServerAddress& server,
                                       const ConnectionSpec& spec);
/// A new session in place of one whose server went away while it was idle.
std::shared_ptr<Session> replaceSession(const Session& dead, const ServerAddress& server,
                                        const ConnectionSpec& spec);

/// Closes the sessions that wait, idle, for somebody to use them again: before a database is
/// detached, or its server stopped. Servers that were silent a moment ago may be asked again.
void dropIdleSessions();

}  // namespace zov::odbc
