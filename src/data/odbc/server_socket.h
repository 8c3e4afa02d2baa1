// The socket of a session that a driver has opened. The drivers wait for a silent
// server as long as they like, and twice that behind a time-out; a socket that is
// cut ends every wait on it at once.
#pragma once

#include <QtGlobal>

#include <set>

namespace zov::odbc {

class ServerSocket {
 public:
    /// Identities of the TCP sockets that the process has now.
    using Present = std::set<quint64>;
    static Present present();
    /// The one that has come since, to a server's port `port` (0: any). Unknown when there are
    /// several or none, and off Linux.
    static ServerSocket since(const Present& before, int port);

    bool isKnown() const { return identity_ != 0; }
    /// Bytes that have come so far; 0 when that can't be told.
    quint64 received() const;
    /// From any thread; nothing when the driver has closed it already.
    void cut() const;

 private:
    int descriptor_ = -1;
    quint64 identity_ = 0;
};

}  // namespace zov::odbc
