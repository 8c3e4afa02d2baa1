// A proxy on 127.0.0.1 between a driver and a server, which hands bytes on as they
// come and can be told to spoil some: what a bad wire, or an enemy in it, does.
#pragma once

#include <QtGlobal>

#include <memory>
#include <vector>

namespace zov {

struct WireFault {
    enum class Kind {
        Flip,   ///< one bit of one byte
        Cut,    ///< the connection ends here
        Stall,  ///< nothing comes behind it on this connection, which stays
        Dark,   ///< nor on any other
    };
    Kind kind = Kind::Flip;
    bool toServer = false;  ///< else in what the server sends
    quint64 at = 0;         ///< byte, counted over all connections of one direction
    int bit = 0;
};

class TdsProxy {
 public:
    /// In front of the server on this port. Throws std::runtime_error when it can't listen.
    explicit TdsProxy(quint16 serverPort);
    /// Cuts all connections and waits for their threads.
    ~TdsProxy();
    TdsProxy(const TdsProxy&) = delete;
    TdsProxy& operator=(const TdsProxy&) = delete;

    quint16 port() const;
    /// Counts bytes anew, and spoils these.
    void begin(std::vector<WireFault> faults);
    /// Cuts what is open.
    void end();
    /// Bytes that came since begin().
    quint64 passed(bool toServer) const;

 private:
    struct Running;
    std::unique_ptr<Running> running_;
};

}  // namespace zov
