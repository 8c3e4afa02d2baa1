// What the console's streams are connected to, and typing that isn't shown.
#pragma once

#include <QByteArray>

namespace zov {

bool standardOutputIsTerminal();
bool standardErrorIsTerminal();
bool standardInputIsTerminal();

/// While it lives, what is typed on the terminal isn't shown, and the keys that would stop the
/// program with its terminal in that state don't. Nothing when standard input is no terminal.
class HiddenTyping {
 public:
    HiddenTyping();
    ~HiddenTyping();
    HiddenTyping(const HiddenTyping&) = delete;
    HiddenTyping& operator=(const HiddenTyping&) = delete;
};

/// Ends an open HiddenTyping; a signal handler may call it.
void restoreTerminal() noexcept;

enum class LineRead { Line, EndOfInput, Interrupted, Failed };
/// The next line of standard input, without its end; nothing behind it is taken. EndOfInput: not a
/// byte was there. Comes back soon after an interrupt.
LineRead readInputLine(QByteArray& line);

}  // namespace zov
