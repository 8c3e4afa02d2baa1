// Ctrl-C, and the signals that ask a program to end: the first asks the run to
// stop at its next named point and breaks off what it waits for, the second ends
// the program.
#pragma once

#include <QByteArray>

#include <chrono>
#include <functional>
#include <memory>

namespace zov {

/// From now on SIGINT, SIGTERM and SIGHUP count as said above. One that was ignored when the
/// program started (nohup, a shell's background job) stays ignored.
void catchInterrupts();
/// One of them came. Any thread may ask.
bool interruptRequested();
/// Exit status of a program that one of them has ended: it has no result.
inline constexpr int InterruptedStatus = 2;

/// For the length of a wait: `cancel` is called from another thread, again and again, once the
/// interrupt came. An InterruptWatch must be there.
class BreakOff {
 public:
    explicit BreakOff(std::function<void()> cancel);
    ~BreakOff();
    BreakOff(const BreakOff&) = delete;
    BreakOff& operator=(const BreakOff&) = delete;
};

/// Watches for the interrupt while it lives. A program that hasn't ended its work `patience` after
/// it waits for something that can't be broken off: it is ended, with `lastWords` on standard
/// error.
class InterruptWatch {
 public:
    InterruptWatch(std::chrono::milliseconds patience, const QByteArray& lastWords);
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

 private:
    struct Watcher;
    std::unique_ptr<Watcher> watcher_;
};

}  // namespace zov
