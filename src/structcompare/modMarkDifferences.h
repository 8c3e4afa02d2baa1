// Colours the lines of two panes by what became of them. A greedy walk with a
// look-ahead of twenty lines, not a minimal difference; a table's lines, whose
// order means little, are paired by their first word instead. It only shows: the
// verdict identical or different is made elsewhere.
#pragma once

#include "catalog/mdlObjects.h"
#include "structcompare/comp_line.h"

namespace zov {

/// Verdicts of CompLine::lngMark.
inline constexpr qint32 MarkNone = 0;
inline constexpr qint32 MarkNotChanged = 10;
inline constexpr qint32 MarkChanged = 20;
inline constexpr qint32 MarkInserted = 30;  ///< only in Target
inline constexpr qint32 MarkDeleted = 40;   ///< only in Source

/// The background of a mark, 0xBBGGRR; 0 for a value that is no mark.
quint32 colorOfMark(qint32 mark);
/// What the colour screen calls a mark; empty for lines without a verdict.
QString captionOfMark(qint32 mark);

struct MarkedLines {
    std::vector<CompLine> source;
    std::vector<CompLine> target;
};

/// Marks and paints the lines of two panes. Equal panes are left as they are; with one pane empty
/// the other's lines are marked but not painted. `error` is set (after a box) when a pane's lines
/// can't be read.
MarkedLines Mark_Differences(TextPane& source, TextPane& target, bool& error,
                             ObjectType objectType);

/// The walk for everything but tables; every line gets a mark unless the walk ends before it.
void MarkByWalk(std::vector<CompLine>& source, std::vector<CompLine>& target);

/// The pairing for tables: target lines that find no partner keep the mark they have.
void Mark_Differences_Tables(std::vector<CompLine>& source, std::vector<CompLine>& target);

/// A column's line, upper-cased, without its constraint and its default.
QString StripExtraColInfo(const QString& line);

/// Puts a pane's text on the clipboard line by line, each with CR LF behind it; colours are left
/// behind. An empty pane leaves the clipboard as it is.
void TxText_CopyToClipboard(TextPane& pane);

/// The text of a line array, each line with CR LF behind it.
QString TXText_ConvArrayToText(const std::vector<CompLine>& lines);

}  // namespace zov
