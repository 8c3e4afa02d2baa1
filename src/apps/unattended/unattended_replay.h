// Saved processes run without a window: the main window's controller with panels in
// memory goes the same way as it does on a desktop. Enter at replayUnattended.
#pragma once

#include "apps/unattended/unattended_shell.h"
#include "saved/modSavedProcess.h"

namespace zov {

class frmMain;

namespace unattended {

/// Exit statuses, of a replay and of the programs.
inline constexpr int Identical = 0;
inline constexpr int Different = 1;
inline constexpr int Trouble = 2;

struct Outcome {
    int status = Trouble;
    QString report;        ///< empty when the comparison gave none
    SavedProcess process;  ///< as it was run; without a name when it came to none
};

/// Starts a window in memory and lets `run` have a process replayed in it. `adjust` changes what
/// was read of the process; may be empty. The status is Trouble unless the comparison reached its
/// end, everything asked for was done, and nothing was told that an attended user would have to
/// look into.
Outcome replay(UnattendedShell& shell, const std::function<void(frmMain&)>& run,
               const std::function<void(SavedProcess&)>& adjust = {});

/// As a desktop does at its start: the process that the command line named.
Outcome replayOfCommandLine(UnattendedShell& shell);

}  // namespace unattended
}  // namespace zov
