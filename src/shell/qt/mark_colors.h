// The colours that mark compared lines. The logic hands them out as fixed
// 0xBBGGRR values; on a dark palette they are shown as shades of themselves on
// which light text stays readable.
#pragma once

#include <QColor>
#include <QPalette>

namespace zov::qt {

/// A stored colour, 0xBBGGRR, as the palette shows it behind text. White - "not changed" - is the
/// palette's own base colour.
QColor shownMarkColor(quint32 bgr, const QPalette& palette);

/// A stored text colour, 0xBBGGRR. Black is the palette's own; on a dark palette the others become
/// light enough to be read.
QColor shownTextColor(quint32 bgr, const QPalette& palette);

bool isDarkPalette(const QPalette& palette);

}  // namespace zov::qt
