// Limits to how long a server may be silent while a call of the driver waits for
// it: behind that the session's socket is cut, and the call comes back with an
// error. A server that sends, however slowly, is waited for.
#pragma once

#include "data/odbc/server_socket.h"

#include <atomic>
#include <chrono>
#include <memory>

namespace zov::odbc {

/// What the calls of one session and the thread that watches them share.
class Waiting {
 public:
    /// Nothing is watched without a socket that can be cut.
    static std::shared_ptr<Waiting> on(const ServerSocket& socket);

    /// From any thread: no wait of the current statement may last longer than `limit` from now,
    /// whatever the server sends.
    void shorten(std::chrono::milliseconds limit);
    /// A new statement begins: what was said of the one before is over.
    void beginStatement() { latest_ = 0; }
    /// A wait was over, and the connection with it.
    bool wasCut() const { return cut_; }

 private:
    friend class Patience;
    friend class Watchman;
    using Clock = std::chrono::steady_clock;
    using Moment = Clock::duration::rep;
    static Moment in(std::chrono::milliseconds time) {
        return (Clock::now() + time).time_since_epoch().count();
    }
    void cutIfOver(Moment now);

    ServerSocket socket_;
    std::atomic<Moment> since_{0};   // 0: nobody waits
    std::atomic<Moment> limit_{0};   // of silence; 0: none
    std::atomic<Moment> latest_{0};  // 0: not shortened
    std::atomic<bool> cut_{false};
    // The watching thread's own.
    quint64 received_ = 0;
    Moment lastReceived_ = 0;
};

/// The limit for the length of a scope, which holds one call or several in a row.
class Patience {
 public:
    /// `limit` 0: as long as it takes.
    Patience(Waiting& waiting, std::chrono::milliseconds limit);
    ~Patience() { waiting_.since_ = 0; }
    Patience(const Patience&) = delete;
    Patience& operator=(const Patience&) = delete;

 private:
    Waiting& waiting_;
};

}  // namespace zov::odbc
