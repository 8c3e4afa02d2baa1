// The shell of a run that nobody watches: boxes are lines on standard error and are
// taken for confirmed, questions are answered No, result screens do by themselves
// what a replay asks of them and go; any other screen is left at once.
#pragma once

#include "shell/console/console_shell.h"

namespace zov {

class UnattendedShell : public ConsoleShell {
 public:
    using ConsoleShell::ConsoleShell;

    /// The text of the last report that came up; empty when none did.
    QString report;
    /// A result came up (a report, or rows that differ).
    bool resultShown = false;

    void showModal(Screen& screen) override;
};

}  // namespace zov
