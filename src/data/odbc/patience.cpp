#include "data/odbc/patience.h"

#include <algorithm>
#include <condition_variable>
#include <list>
#include <mutex>
#include <thread>

namespace zov::odbc {

using namespace std::chrono_literals;

/// Looks at all sessions' waits a few times a second while there are sessions.
class Watchman {
 public:
    static Watchman& instance() {
        // Never freed: its thread lasts as long as the process.
        static Watchman* const watchman = new Watchman;
        return *watchman;
    }

    void watch(const std::shared_ptr<Waiting>& waiting) {
        const std::lock_guard lock(guard_);
        watched_.push_back(waiting);
        changed_.notify_all();
    }

 private:
    Watchman() {
        std::thread([this] { run(); }).detach();
    }

    void run() {
        std::unique_lock lock(guard_);
        for (;;) {
            changed_.wait(lock, [this] { return !watched_.empty(); });
            changed_.wait_for(lock, 50ms);
            const Waiting::Moment now = Waiting::in(0ms);
            for (auto at = watched_.begin(); at != watched_.end();) {
                if (const std::shared_ptr<Waiting> waiting = at->lock()) {
                    waiting->cutIfOver(now);
                    ++at;
                } else {
                    at = watched_.erase(at);
                }
            }
        }
    }

    std::mutex guard_;
    std::condition_variable changed_;
    std::list<std::weak_ptr<Waiting>> watched_;
};

std::shared_ptr<Waiting> Waiting::on(const ServerSocket& socket) {
    auto waiting = std::make_shared<Waiting>();
    waiting->socket_ = socket;
    if (socket.isKnown()) Watchman::instance().watch(waiting);
    return waiting;
}

void Waiting::shorten(std::chrono::milliseconds limit) {
    const Moment moment = in(limit);
    const Moment earlier = latest_;
    if (earlier == 0 || moment < earlier) latest_ = moment;
}

void Waiting::cutIfOver(Moment now) {
    const Moment since = since_, limit = limit_, latest = latest_;
    if (since == 0 || cut_) return;
    if (const quint64 received = socket_.received(); received != received_) {
        received_ = received;
        lastReceived_ = now;
    }
    const bool silent = limit != 0 && now - std::max(since, lastReceived_) >= limit;
    if (!silent && (latest == 0 || now < latest)) return;
    cut_ = true;
    socket_.cut();
}

Patience::Patience(Waiting& waiting, std::chrono::milliseconds limit) : waiting_(waiting) {
    waiting_.limit_ = std::chrono::duration_cast<Waiting::Clock::duration>(limit).count();
    waiting_.since_ = Waiting::in(std::chrono::milliseconds(0));
}

}  // namespace zov::odbc
