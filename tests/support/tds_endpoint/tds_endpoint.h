// A TDS 7.4 server on 127.0.0.1 in front of a Provider, so that tests reach the embedded server
// through a real driver. Start it, connect to its port, let it go out of scope. It serves any
// number of clients, each in threads of its own, and can be told to misbehave.
#pragma once

#include "support/tds_endpoint/tds_options.h"

#include <QStringList>

#include <memory>

namespace zov {

class TdsEndpoint {
 public:
    TdsEndpoint();
    /// Stops.
    ~TdsEndpoint();
    TdsEndpoint(const TdsEndpoint&) = delete;
    TdsEndpoint& operator=(const TdsEndpoint&) = delete;

    /// Begins to listen; gives the port. Throws std::runtime_error when it can't.
    quint16 start(const TdsEndpointOptions& options);
    /// Cuts all connections and waits for their threads. Counters and statements stay.
    void stop();
    quint16 port() const;  ///< 0 when stopped

    // The calls below need an endpoint that was started once.

    /// From the next statement or login on, also of sessions that are open.
    void setFaults(const TdsFaults& faults);
    TdsCounters counters() const;
    /// Texts of batches, and of calls as "sp_name" or the statement that they carry, oldest first.
    QStringList statements() const;
    /// Forgets statements and counters but for the open sessions.
    void resetCounters();

    /// "127.0.0.1,PORT": the data source for a connection string.
    QString dataSource() const;

 private:
    struct Running;
    std::unique_ptr<Running> running_;
};

}  // namespace zov
