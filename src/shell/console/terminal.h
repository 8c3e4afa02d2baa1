// What the console's streams are connected to, and reading a line.
#pragma once

#include <QByteArray>

namespace zov {

bool standardOutputIsTerminal();
bool standardErrorIsTerminal();
bool standardInputIsTerminal();

enum class LineRead { Line, EndOfInput, Interrupted, Failed };
/// The next line of standard input, without its end; nothing behind it is taken. EndOfInput: not a
/// byte was there. Comes back soon after an interrupt.
LineRead readInputLine(QByteArray& line);

}  // namespace zov
