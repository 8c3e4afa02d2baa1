// Sockets and packets: the one place of the endpoint that calls the operating system.
// A message is cut into packets of the negotiated size, each behind a header of eight bytes.
#pragma once

#include "support/tds_endpoint/tds_bytes.h"

#include <stdexcept>

struct iovec;

namespace zov::tds {

/// The other side is gone, or the endpoint is being stopped.
struct ConnectionGone : std::runtime_error {
    using std::runtime_error::runtime_error;
};

enum class PacketType : quint8 {
    Batch = 1,
    Rpc = 3,
    Response = 4,
    Attention = 6,
    BulkLoad = 7,
    Transaction = 14,
    Login = 16,
    Sspi = 17,
    PreLogin = 18,
};

struct Message {
    PacketType type = PacketType::Batch;
    QByteArray payload;
};

/// A listening socket on 127.0.0.1.
class Listener {
 public:
    /// Port 0 lets the system choose. Throws ConnectionGone when the port can't be had.
    explicit Listener(quint16 port);
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    quint16 port() const { return port_; }
    /// The next client's socket, -1 once the listener was shut down.
    int accept();
    void shutDown();

 private:
    int socket_ = -1;
    int wake_[2] = {-1, -1};
    quint16 port_ = 0;
};

/// One client. A single thread may read and another one write; shutDown comes from any.
class Channel {
 public:
    explicit Channel(int socket);
    ~Channel();
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    /// Waits at most `milliseconds` (-1: without limit) for something to read.
    bool waitReadable(int milliseconds);
    /// A whole message. False at the stream's end; Malformed for a header that can't be.
    bool read(Message& message);
    void setPacketSize(int bytes) { packetSize_ = size_t(bytes); }

    /// What the next response consists of; `send` cuts it into packets.
    ByteBuffer out;
    enum class Upto {
        WholePackets,  ///< what doesn't fill a packet waits
        Everything,
        MessageEnd,  ///< everything, and the last packet says that nothing follows
    };
    void send(Upto upto);
    /// Sends when a good many packets are waiting.
    void sendSome() {
        if (out.size() >= SendAbove) send(Upto::WholePackets);
    }
    void shutDown();

 private:
    static constexpr size_t SendAbove = 256 * 1024;
    bool readExactly(char* to, size_t count);
    void writeAll(iovec* parts, int count);

    int socket_;
    size_t packetSize_ = 4096;
    quint8 packetNumber_ = 1;
};

}  // namespace zov::tds
