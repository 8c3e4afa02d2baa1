// Preparing a text pane before its first use.
#pragma once

#include "shell/controls.h"

namespace zov {

/// The least page of a pane, in twips; also what an unset setting gives.
inline constexpr qint32 LeastPaneWidth = 20000;
inline constexpr qint32 LeastPaneHeight = 15840;

/// Empties the pane and puts it on a page of the stored `PageWidth` and `PageHeight`, raised to the
/// least ones.
void InitializeTXTextControl(TextPane& pane);

}  // namespace zov
