#include "shell/console/interrupt.h"

#include <atomic>
#include <csignal>
#include <cstdlib>

namespace zov {
namespace {

std::atomic<bool> pressed{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may touch nothing else");

extern "C" void onSignal(int signal) {
    if (pressed.exchange(true)) std::_Exit(InterruptedStatus);
    // Where a handler is forgotten once it ran, it is put back.
    std::signal(signal, onSignal);
}

}  // namespace

void catchInterrupts() {
    std::signal(SIGINT, onSignal);
}

bool interruptRequested() {
    return pressed.load();
}

}  // namespace zov
