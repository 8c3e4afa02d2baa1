// BSD sockets behind Listener and Channel.
#include "support/tds_endpoint/tds_socket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace zov::tds {
namespace {

constexpr size_t HeaderSize = 8;
constexpr qsizetype LargestMessage = 512 * 1024 * 1024;
constexpr quint8 EndOfMessage = 1;
constexpr quint8 IgnoreMessage = 2;

[[noreturn]] void throwSystemError(const char* what) {
    throw ConnectionGone(std::string(what) + ": " + std::strerror(errno));
}

}  // namespace

Listener::Listener(quint16 port) {
    socket_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket_ < 0) throwSystemError("socket");
    const int on = 1;
    ::setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(socket_, reinterpret_cast<sockaddr*>(&address), length) < 0 ||
        ::listen(socket_, 64) < 0 ||
        ::getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length) < 0 ||
        ::pipe2(wake_, O_CLOEXEC) < 0) {
        const int error = errno;
        ::close(socket_);
        errno = error;
        throwSystemError("listen on 127.0.0.1");
    }
    port_ = ntohs(address.sin_port);
}

Listener::~Listener() {
    ::close(socket_);
    ::close(wake_[0]);
    ::close(wake_[1]);
}

int Listener::accept() {
    for (;;) {
        std::array<pollfd, 2> waiting{pollfd{socket_, POLLIN, 0}, pollfd{wake_[0], POLLIN, 0}};
        if (::poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR) return -1;
        if (waiting[1].revents) return -1;
        if (!(waiting[0].revents & POLLIN)) continue;
        const int client = ::accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
        if (client >= 0) return client;
    }
}

void Listener::shutDown() {
    [[maybe_unused]] const ssize_t written = ::write(wake_[1], "x", 1);
}

Channel::Channel(int socket) : socket_(socket) {
    const int on = 1;
    ::setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

Channel::~Channel() {
    ::close(socket_);
}

bool Channel::waitReadable(int milliseconds) {
    pollfd waiting{socket_, POLLIN, 0};
    return ::poll(&waiting, 1, milliseconds) > 0;
}

bool Channel::readExactly(char* to, size_t count) {
    while (count) {
        const ssize_t got = ::recv(socket_, to, count, 0);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        to += got;
        count -= size_t(got);
    }
    return true;
}

bool Channel::read(Message& message) {
    for (;;) {
        message.payload.clear();
        quint8 status = 0;
        do {
            std::array<unsigned char, HeaderSize> header;
            if (!readExactly(reinterpret_cast<char*>(header.data()), HeaderSize)) return false;
            const size_t length = size_t(header[2]) << 8 | header[3];
            if (length < HeaderSize) throw Malformed("packet shorter than its header");
            message.type = PacketType(header[0]);
            status = header[1];
            const qsizetype before = message.payload.size();
            if (before + qsizetype(length) > LargestMessage) throw Malformed("message too long");
            message.payload.resize(before + qsizetype(length - HeaderSize));
            if (!readExactly(message.payload.data() + before, length - HeaderSize)) return false;
        } while (!(status & EndOfMessage));
        // A client that gives up while it is still sending asks for the message to be forgotten.
        if (!(status & IgnoreMessage)) return true;
    }
}

void Channel::writeAll(iovec* parts, int count) {
    while (count) {
        msghdr message{};
        message.msg_iov = parts;
        message.msg_iovlen = size_t(count);
        ssize_t sent = ::sendmsg(socket_, &message, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) continue;
        if (sent < 0) throwSystemError("send");
        while (count && size_t(sent) >= parts->iov_len) {
            sent -= ssize_t(parts->iov_len);
            ++parts;
            --count;
        }
        if (count) {
            parts->iov_base = static_cast<char*>(parts->iov_base) + sent;
            parts->iov_len -= size_t(sent);
        }
    }
}

void Channel::send(Upto upto) {
    constexpr size_t AtOnce = 64;
    const size_t payload = packetSize_ - HeaderSize;
    std::array<std::array<quint8, HeaderSize>, AtOnce> headers;
    std::array<iovec, AtOnce * 2> parts;
    size_t count = 0;
    size_t at = 0;
    bool ended = false;
    // The last packet carries the end mark: a message that fills its packets keeps one back for it.
    while (!ended) {
        const size_t left = out.size() - at;
        if (upto == Upto::WholePackets ? left <= payload : upto == Upto::Everything && !left) break;
        const size_t length = std::min(payload, left);
        ended = upto == Upto::MessageEnd && length == left;
        const size_t whole = length + HeaderSize;
        headers[count] = {quint8(PacketType::Response),
                          quint8(ended ? EndOfMessage : 0),
                          quint8(whole >> 8),
                          quint8(whole & 255),
                          0,
                          0,
                          packetNumber_++,
                          0};
        parts[count * 2] = {headers[count].data(), HeaderSize};
        parts[count * 2 + 1] = {out.data() + at, length};
        at += length;
        if (++count == AtOnce) {
            writeAll(parts.data(), int(count * 2));
            count = 0;
        }
    }
    if (count) writeAll(parts.data(), int(count * 2));
    out.dropFront(at);
    if (ended) packetNumber_ = 1;
}

void Channel::shutDown() {
    ::shutdown(socket_, SHUT_RDWR);
}

}  // namespace zov::tds
