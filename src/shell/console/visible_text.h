// Signs that a terminal would act on rather than show: what a server sends or an
// object is called must not move the cursor, forge lines or turn letters around.
#pragma once

#include <QString>

namespace zov {

enum class LineBreaks {
    Show,  ///< as signs, for what stands on one line
    Keep,  ///< and tabs: for a text of many lines
};

/// Control characters as their pictures (escape as U+241B), others that are not seen but change
/// what is (further controls, line separators, marks of direction) as "<U+202E>".
QString visibleText(const QString& text, LineBreaks lineBreaks = LineBreaks::Show);

}  // namespace zov
