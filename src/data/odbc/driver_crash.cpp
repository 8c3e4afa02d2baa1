#include "data/odbc/driver_crash.h"

#include <cstring>
#include <mutex>

#ifdef Q_OS_UNIX
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#endif

namespace zov::odbc {
namespace {

thread_local const char* running = nullptr;
thread_local const char* noted = nullptr;  // the name that this thread has put into lastUsed
/// The driver that was called last, by any thread. What it wrote where it shouldn't have may come
/// out long behind its call.
char lastUsed[128] = "";

#ifdef Q_OS_UNIX

constexpr int Crashes[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};
struct sigaction before[std::size(Crashes)];
const char* programName = "";
int exitStatus = 2;

void say(const char* words) {
    // Nothing else may be called in what may be any state.
    if (write(STDERR_FILENO, words, std::strlen(words)) < 0) return;
}

void onCrash(int signal) {
    if (running || *lastUsed) {
        say(programName);
        say(running ? ": The ODBC driver " : ": The program has crashed behind the ODBC driver ");
        say(running ? running : lastUsed);
        say(running
                ? " has crashed, most likely over a damaged answer of the server."
                : ", which most likely damaged its memory over a damaged answer of the server.");
        say(" Nothing was compared.\n"
            "  Try again; if it comes back, install another version of the driver, or name another "
            "one in ZOVRAND_ODBC_DRIVER.\n");
        std::_Exit(exitStatus);
    }
    for (size_t i = 0; i < std::size(Crashes); ++i) {
        if (Crashes[i] == signal) sigaction(signal, &before[i], nullptr);
    }
    // Comes again, and goes to who was there before.
    if (signal == SIGABRT) raise(signal);
}

#endif

}  // namespace

void tellDriverCrashes(const char* program, int status) {
#ifdef Q_OS_UNIX
    programName = program;
    exitStatus = status;
    // A stack that ran over has no room for the handler.
    static char room[64 * 1024];
    stack_t stack{};
    stack.ss_sp = room;
    stack.ss_size = sizeof room;
    sigaltstack(&stack, nullptr);
    struct sigaction action {};
    action.sa_handler = onCrash;
    action.sa_flags = SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (size_t i = 0; i < std::size(Crashes); ++i) sigaction(Crashes[i], &action, &before[i]);
#else
    Q_UNUSED(program);
    Q_UNUSED(status);
#endif
}

DriverCall::DriverCall(const QByteArray& driver) : outer_(running) {
    running = driver.constData();
    if (running == noted) return;
    noted = running;
    static std::mutex notes;
    const std::lock_guard one(notes);
    std::strncpy(lastUsed, running, sizeof lastUsed - 1);
}

DriverCall::~DriverCall() {
    running = outer_;
}

}  // namespace zov::odbc
