#include "shell/console/hidden_typing.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <termios.h>
#include <unistd.h>

#include <csignal>
#endif

namespace zov {

#ifdef _WIN32

namespace {
DWORD shownMode = 0;
volatile bool hidden = false;
}  // namespace

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

#else

namespace {
termios shownMode;
volatile std::sig_atomic_t hidden = 0;
using Handler = void (*)(int);
Handler stopHandler = SIG_DFL;
Handler quitHandler = SIG_DFL;
}  // namespace

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

#endif

}  // namespace zov
