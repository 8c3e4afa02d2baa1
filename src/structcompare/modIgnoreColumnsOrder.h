// The test that takes two objects as identical when they hold the same lines in any order.
#pragma once

#include "shell/controls.h"

namespace zov {

/// Every line of the panes takes part, blank lines and index lines too. Lines that differ in letter
/// case only may pass or fail by where they stand (see SortArray_CompLine).
bool CompareProcs_IgnoreColumnsOrder(const TextPane& source, const TextPane& target);

}  // namespace zov
