#include "support/tds_proxy/tds_proxy.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <list>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace zov {
namespace {

sockaddr_in onThisMachine(quint16 port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

void withoutDelay(int socket) {
    const int yes = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
}

bool sendAll(int socket, const char* bytes, size_t count) {
    while (count > 0) {
        const ssize_t sent = send(socket, bytes, count, MSG_NOSIGNAL);
        if (sent <= 0) return false;
        bytes += sent;
        count -= size_t(sent);
    }
    return true;
}

struct Connection {
    int client = -1, server = -1;
    std::thread thread;
    std::atomic<bool> ended{false};
    ~Connection() {
        if (thread.joinable()) thread.join();
        close(client);
        close(server);
    }
    void cut() {
        shutdown(client, SHUT_RDWR);
        shutdown(server, SHUT_RDWR);
    }
};

}  // namespace

struct TdsProxy::Running {
    int listener = -1;
    quint16 port = 0;
    quint16 serverPort = 0;
    std::thread accepting;
    mutable std::mutex guard;
    std::list<Connection> connections;
    std::vector<WireFault> faults;
    quint64 passed[2] = {0, 0};
    bool dark = false;

    void accept();
    void serve(Connection& connection);
    bool hand(Connection& connection, bool toServer, std::vector<char>& buffer, bool& stalled);
    /// Applies the faults in the next bytes; gives how many of them go on, and what happens behind.
    size_t spoil(char* bytes, size_t count, bool toServer, bool& cut, bool& stall);
};

size_t TdsProxy::Running::spoil(char* bytes, size_t count, bool toServer, bool& cut, bool& stall) {
    const std::lock_guard lock(guard);
    const quint64 first = passed[toServer];
    size_t goOn = count;
    if (dark) {
        stall = true;
        return 0;
    }
    for (const WireFault& fault : faults) {
        if (fault.toServer != toServer || fault.at < first || fault.at >= first + count) continue;
        const size_t place = size_t(fault.at - first);
        if (fault.kind == WireFault::Kind::Flip) {
            bytes[place] = char(bytes[place] ^ (1 << fault.bit));
        } else if (place < goOn) {
            goOn = place;
            cut = fault.kind == WireFault::Kind::Cut;
            stall = !cut;
            dark = dark || fault.kind == WireFault::Kind::Dark;
        }
    }
    // What is held back counts too: the place of a fault is met once.
    passed[toServer] += count;
    return goOn;
}

bool TdsProxy::Running::hand(Connection& connection, bool toServer, std::vector<char>& buffer,
                             bool& stalled) {
    const int from = toServer ? connection.client : connection.server;
    const int to = toServer ? connection.server : connection.client;
    const ssize_t got = recv(from, buffer.data(), buffer.size(), 0);
    if (got <= 0) return false;
    if (stalled) return true;
    bool cut = false;
    const size_t goOn = spoil(buffer.data(), size_t(got), toServer, cut, stalled);
    return sendAll(to, buffer.data(), goOn) && !cut;
}

void TdsProxy::Running::serve(Connection& connection) {
    std::vector<char> buffer(64 * 1024);
    bool stalled = false;
    for (bool goesOn = true; goesOn;) {
        pollfd sides[2] = {{connection.client, POLLIN, 0}, {connection.server, POLLIN, 0}};
        if (poll(sides, 2, -1) < 0) break;
        for (const bool toServer : {true, false}) {
            if (goesOn && sides[toServer ? 0 : 1].revents)
                goesOn = hand(connection, toServer, buffer, stalled);
        }
    }
    connection.cut();
    connection.ended = true;
}

void TdsProxy::Running::accept() {
    for (;;) {
        const int client = ::accept(listener, nullptr, nullptr);
        if (client < 0) return;
        const int server = socket(AF_INET, SOCK_STREAM, 0);
        const sockaddr_in address = onThisMachine(serverPort);
        if (connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
            close(client);
            close(server);
            continue;
        }
        withoutDelay(client);
        withoutDelay(server);
        const std::lock_guard lock(guard);
        connections.remove_if([](const Connection& one) { return one.ended.load(); });
        Connection& connection = connections.emplace_back();
        connection.client = client;
        connection.server = server;
        connection.thread = std::thread([this, &connection] { serve(connection); });
    }
}

TdsProxy::TdsProxy(quint16 serverPort) : running_(std::make_unique<Running>()) {
    running_->serverPort = serverPort;
    running_->listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = onThisMachine(0);
    socklen_t length = sizeof address;
    if (bind(running_->listener, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
        listen(running_->listener, 16) != 0 ||
        getsockname(running_->listener, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        throw std::runtime_error("The proxy can't listen.");
    running_->port = ntohs(address.sin_port);
    running_->accepting = std::thread([this] { running_->accept(); });
}

TdsProxy::~TdsProxy() {
    shutdown(running_->listener, SHUT_RDWR);
    running_->accepting.join();
    close(running_->listener);
    end();
}

quint16 TdsProxy::port() const {
    return running_->port;
}

void TdsProxy::begin(std::vector<WireFault> faults) {
    const std::lock_guard lock(running_->guard);
    running_->faults = std::move(faults);
    running_->passed[0] = running_->passed[1] = 0;
    running_->dark = false;
}

void TdsProxy::end() {
    std::list<Connection> ended;
    {
        const std::lock_guard lock(running_->guard);
        for (Connection& connection : running_->connections) connection.cut();
        ended.swap(running_->connections);
    }
}

quint64 TdsProxy::passed(bool toServer) const {
    const std::lock_guard lock(running_->guard);
    return running_->passed[toServer];
}

}  // namespace zov
