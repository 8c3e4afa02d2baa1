// Typing that isn't shown.
#pragma once

namespace zov {

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

}  // namespace zov
