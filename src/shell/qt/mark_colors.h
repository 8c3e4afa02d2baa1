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

/// A ground as it is seen where its cell is selected: nearer to the palette's highlight, and still
/// the colour that it is, since that says what differs.
QColor selectedGround(const QColor& ground, const QPalette& palette);

/// How far two colours stand apart for who reads one on the other, from 1 (not at all) to 21.
double contrastOf(const QColor& a, const QColor& b);
/// A text colour in its own hue, as dark or as light as it takes to be read on the ground.
QColor readableOn(const QColor& ground, const QColor& text);

bool isDarkPalette(const QPalette& palette);

}  // namespace zov::qt
