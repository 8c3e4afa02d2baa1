#include "data/odbc/server_socket.h"

#ifdef __linux__
#include <dirent.h>
#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <vector>
#endif

namespace zov::odbc {

#ifdef __linux__

namespace {

struct OpenSocket {
    int descriptor;
    quint64 identity;
    int peerPort;
};

/// 0 when the descriptor is no socket. No two sockets that live at once have one number.
quint64 identityOf(int descriptor) {
    struct stat status;
    if (fstat(descriptor, &status) != 0 || !S_ISSOCK(status.st_mode)) return 0;
    return quint64(status.st_ino);
}

/// 0 when the socket isn't connected over TCP.
int peerPortOf(int descriptor) {
    sockaddr_storage peer;
    socklen_t length = sizeof peer;
    if (getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &length) != 0) return 0;
    if (peer.ss_family == AF_INET) return ntohs(reinterpret_cast<sockaddr_in&>(peer).sin_port);
    if (peer.ss_family == AF_INET6) return ntohs(reinterpret_cast<sockaddr_in6&>(peer).sin6_port);
    return 0;
}

std::vector<OpenSocket> openSockets() {
    std::vector<OpenSocket> sockets;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc/self/fd"), closedir);
    if (!folder) return sockets;
    while (const dirent* entry = readdir(folder.get())) {
        char* end = nullptr;
        const long descriptor = std::strtol(entry->d_name, &end, 10);
        if (end == entry->d_name || *end != 0) continue;
        const quint64 identity = identityOf(int(descriptor));
        const int peerPort = identity ? peerPortOf(int(descriptor)) : 0;
        if (peerPort) sockets.push_back({int(descriptor), identity, peerPort});
    }
    return sockets;
}

}  // namespace

ServerSocket::Present ServerSocket::present() {
    Present present;
    for (const OpenSocket& socket : openSockets()) present.insert(socket.identity);
    return present;
}

ServerSocket ServerSocket::since(const Present& before, int port) {
    // Sockets that belong to sessions: another one may have been opened at the same time.
    static std::mutex guard;
    static Present taken;
    const std::lock_guard lock(guard);
    Present open;
    ServerSocket found;
    int candidates = 0;
    for (const OpenSocket& socket : openSockets()) {
        open.insert(socket.identity);
        if (before.count(socket.identity) || taken.count(socket.identity)) continue;
        if (port && socket.peerPort != port) continue;
        found.descriptor_ = socket.descriptor;
        found.identity_ = socket.identity;
        ++candidates;
    }
    std::erase_if(taken, [&](quint64 identity) { return !open.count(identity); });
    if (candidates != 1) return {};
    taken.insert(found.identity_);
    return found;
}

quint64 ServerSocket::received() const {
    tcp_info info{};
    socklen_t length = sizeof info;
    if (getsockopt(descriptor_, IPPROTO_TCP, TCP_INFO, &info, &length) != 0) return 0;
    return length >= offsetof(tcp_info, tcpi_bytes_received) + sizeof info.tcpi_bytes_received
               ? quint64(info.tcpi_bytes_received)
               : 0;
}

void ServerSocket::cut() const {
    // The number may be another file's by now.
    if (isKnown() && identityOf(descriptor_) == identity_) shutdown(descriptor_, SHUT_RDWR);
}

#else

ServerSocket::Present ServerSocket::present() {
    return {};
}
ServerSocket ServerSocket::since(const Present&, int) {
    return {};
}
quint64 ServerSocket::received() const {
    return 0;
}
void ServerSocket::cut() const {}

#endif

}  // namespace zov::odbc
