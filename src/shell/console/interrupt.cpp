#include "shell/console/interrupt.h"

#include "shell/console/hidden_typing.h"

#include <atomic>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <vector>

namespace zov {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto BetweenLooks = 20ms;

std::atomic<bool> pressed{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may touch nothing else");

extern "C" void onSignal(int signal) {
    if (pressed.exchange(true)) {
        restoreTerminal();
        std::_Exit(InterruptedStatus);
    }
    // Where a handler is forgotten once it ran, it is put back.
    std::signal(signal, onSignal);
}

struct Waits {
    std::mutex guard;
    std::vector<std::function<void()>> cancels;  // the innermost wait last
};
Waits& waits() {
    static Waits waits;
    return waits;
}

}  // namespace

void catchInterrupts() {
    for (const int signal : {
             SIGINT,
             SIGTERM,
#ifdef SIGHUP
             SIGHUP,
#endif
         }) {
        if (std::signal(signal, onSignal) == SIG_IGN) std::signal(signal, SIG_IGN);
    }
}

bool interruptRequested() {
    return pressed.load();
}

BreakOff::BreakOff(std::function<void()> cancel) {
    const std::lock_guard lock(waits().guard);
    waits().cancels.push_back(std::move(cancel));
}

BreakOff::~BreakOff() {
    const std::lock_guard lock(waits().guard);
    waits().cancels.pop_back();
}

struct InterruptWatch::Watcher {
    std::chrono::milliseconds patience;
    QByteArray lastWords;
    std::mutex guard;
    std::condition_variable changed;
    bool workEnded = false;
    bool allEnded = false;
    std::thread watching;
    std::thread cancelling;  // of its own, since a driver may be stuck in a cancel too

    bool soon(const bool& ended) {
        std::unique_lock lock(guard);
        return changed.wait_for(lock, BetweenLooks, [&] { return ended; });
    }
    void end(bool& ended) {
        const std::lock_guard lock(guard);
        ended = true;
        changed.notify_all();
    }
    void cancelWaits() {
        while (!interruptRequested()) {
            if (soon(workEnded)) return;
        }
        do {
            const std::lock_guard lock(waits().guard);
            if (!waits().cancels.empty()) waits().cancels.back()();
        } while (!soon(workEnded));
    }
    void watch() {
        while (!interruptRequested()) {
            if (soon(allEnded)) return;
        }
        const Clock::time_point end = Clock::now() + patience;
        while (Clock::now() < end) {
            if (soon(allEnded)) return;
        }
        restoreTerminal();
        std::fwrite(lastWords.constData(), 1, size_t(lastWords.size()), stderr);
        std::_Exit(InterruptedStatus);
    }
};

InterruptWatch::InterruptWatch(std::chrono::milliseconds patience, const QByteArray& lastWords)
    : watcher_(std::make_unique<Watcher>()) {
    watcher_->patience = patience;
    watcher_->lastWords = lastWords;
    watcher_->watching = std::thread([this] { watcher_->watch(); });
    watcher_->cancelling = std::thread([this] { watcher_->cancelWaits(); });
}

InterruptWatch::~InterruptWatch() {
    watcher_->end(watcher_->workEnded);
    watcher_->cancelling.join();
    watcher_->end(watcher_->allEnded);
    watcher_->watching.join();
}

}  // namespace zov
