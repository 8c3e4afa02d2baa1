// Ctrl-C: the first press asks the run to stop at its next named point, the
// second ends the program.
#pragma once

namespace zov {

/// From now on Ctrl-C counts as said above.
void catchInterrupts();
/// Ctrl-C was pressed. Any thread may ask.
bool interruptRequested();
/// Exit status of a program that Ctrl-C has ended.
inline constexpr int InterruptedStatus = 130;

}  // namespace zov
