#include "shell/console/terminal.h"

#include "shell/console/interrupt.h"

#include <csignal>

#ifdef _WIN32
#include <io.h>
#include <windows.h>
#else
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace zov {
namespace {

constexpr int InterruptLookMs = 50;
// Longer than any password; a file given by mistake is not read into memory.
constexpr qsizetype LongestLine = 64 * 1024;

}  // namespace

#ifdef _WIN32

namespace {
DWORD shownMode = 0;
volatile bool hidden = false;
}  // namespace

bool standardOutputIsTerminal() {
    return _isatty(1) != 0;
}
bool standardErrorIsTerminal() {
    return _isatty(2) != 0;
}
bool standardInputIsTerminal() {
    return _isatty(0) != 0;
}

HiddenTyping::HiddenTyping() {
    HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    if (!GetConsoleMode(input, &shownMode)) return;
    hidden = true;
    SetConsoleMode(input, shownMode & ~DWORD(ENABLE_ECHO_INPUT));
}

HiddenTyping::~HiddenTyping() {
    restoreTerminal();
}

void restoreTerminal() noexcept {
    if (!hidden) return;
    hidden = false;
    SetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), shownMode);
}

LineRead readInputLine(QByteArray& line) {
    line.clear();
    for (char c = 0; line.size() < LongestLine;) {
        const int got = _read(0, &c, 1);
        if (interruptRequested()) return LineRead::Interrupted;
        if (got < 0) return LineRead::Failed;
        if (got == 0) return line.isEmpty() ? LineRead::EndOfInput : LineRead::Line;
        if (c == '\n') return LineRead::Line;
        line.append(c);
    }
    return LineRead::Failed;
}

#else

namespace {
termios shownMode;
volatile std::sig_atomic_t hidden = 0;
using Handler = void (*)(int);
Handler stopHandler = SIG_DFL;
Handler quitHandler = SIG_DFL;
}  // namespace

bool standardOutputIsTerminal() {
    return isatty(STDOUT_FILENO) != 0;
}
bool standardErrorIsTerminal() {
    return isatty(STDERR_FILENO) != 0;
}
bool standardInputIsTerminal() {
    return isatty(STDIN_FILENO) != 0;
}

HiddenTyping::HiddenTyping() {
    if (tcgetattr(STDIN_FILENO, &shownMode) != 0) return;
    stopHandler = std::signal(SIGTSTP, SIG_IGN);
    quitHandler = std::signal(SIGQUIT, SIG_IGN);
    termios mode = shownMode;
    mode.c_lflag &= ~tcflag_t(ECHO);
    hidden = 1;
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &mode);
}

HiddenTyping::~HiddenTyping() {
    if (!hidden) return;
    restoreTerminal();
    std::signal(SIGTSTP, stopHandler);
    std::signal(SIGQUIT, quitHandler);
}

void restoreTerminal() noexcept {
    if (!hidden) return;
    hidden = 0;
    tcsetattr(STDIN_FILENO, TCSANOW, &shownMode);
}

LineRead readInputLine(QByteArray& line) {
    line.clear();
    while (line.size() < LongestLine) {
        pollfd input{STDIN_FILENO, POLLIN, 0};
        const int ready = poll(&input, 1, InterruptLookMs);
        if (interruptRequested()) return LineRead::Interrupted;
        if (ready == 0 || (ready < 0 && errno == EINTR)) continue;
        char c = 0;
        const ssize_t got = read(STDIN_FILENO, &c, 1);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return LineRead::Failed;
        if (got == 0) return line.isEmpty() ? LineRead::EndOfInput : LineRead::Line;
        if (c == '\n') return LineRead::Line;
        line.append(c);
    }
    return LineRead::Failed;
}

#endif

}  // namespace zov
