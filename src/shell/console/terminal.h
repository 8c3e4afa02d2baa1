// What the console's streams are connected to.
#pragma once

namespace zov {

bool standardErrorIsTerminal();
bool standardInputIsTerminal();
/// Shows or hides what is typed on standard input; nothing when it is no terminal.
void setTerminalEcho(bool on);

}  // namespace zov
