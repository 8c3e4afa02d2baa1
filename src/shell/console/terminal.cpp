#include "shell/console/terminal.h"

#include "shell/console/interrupt.h"

#ifdef _WIN32
#include <io.h>
#else
#include <poll.h>
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

bool standardOutputIsTerminal() {
    return _isatty(1) != 0;
}
bool standardErrorIsTerminal() {
    return _isatty(2) != 0;
}
bool standardInputIsTerminal() {
    return _isatty(0) != 0;
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

bool standardOutputIsTerminal() {
    return isatty(STDOUT_FILENO) != 0;
}
bool standardErrorIsTerminal() {
    return isatty(STDERR_FILENO) != 0;
}
bool standardInputIsTerminal() {
    return isatty(STDIN_FILENO) != 0;
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
