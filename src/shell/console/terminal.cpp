#include "shell/console/terminal.h"

#ifdef _WIN32
#include <io.h>
#include <windows.h>
#else
#include <termios.h>
#include <unistd.h>
#endif

namespace zov {

#ifdef _WIN32

bool standardErrorIsTerminal() {
    return _isatty(2) != 0;
}
bool standardInputIsTerminal() {
    return _isatty(0) != 0;
}

void setTerminalEcho(bool on) {
    HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    if (!GetConsoleMode(input, &mode)) return;
    SetConsoleMode(input, on ? mode | ENABLE_ECHO_INPUT : mode & ~DWORD(ENABLE_ECHO_INPUT));
}

#else

bool standardErrorIsTerminal() {
    return isatty(STDERR_FILENO) != 0;
}
bool standardInputIsTerminal() {
    return isatty(STDIN_FILENO) != 0;
}

void setTerminalEcho(bool on) {
    termios mode;
    if (tcgetattr(STDIN_FILENO, &mode) != 0) return;
    if (on) {
        mode.c_lflag |= tcflag_t(ECHO);
    } else {
        mode.c_lflag &= ~tcflag_t(ECHO);
    }
    tcsetattr(STDIN_FILENO, TCSANOW, &mode);
}

#endif

}  // namespace zov
