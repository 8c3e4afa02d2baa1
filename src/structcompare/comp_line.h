// One line of an object's text as a pane holds it, and the array of a pane's lines.
#pragma once

#include "shell/controls.h"

#include <QString>

#include <vector>

namespace zov {

struct CompLine {
    QString strText;      ///< without its line break
    qint32 lngMark = 0;   ///< the verdict of the marking of differences; 0 until marked
    qint32 lngStart = 0;  ///< offset of the first character in the pane's text, from 0
    qint32 lngEnd = 0;    ///< one before the next line's start; the text's length for the last line
};

/// The lines of a pane and their count. `error` is set when the pane gives offsets that make no
/// sense; the lines read until then stand. An empty pane gives 0 lines and no error.
/// Line number n, counted from 1, is element n - 1.
qint32 TXText_ConvTextToArray(const TextPane& pane, std::vector<CompLine>& lines, bool& error);

}  // namespace zov
