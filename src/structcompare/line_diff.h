// A minimal line difference (Myers, "An O(ND) Difference Algorithm", 1986), for
// showing two texts side by side, and the words in which two lines differ.
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace zov {

/// One row of two texts side by side; -1 where a side has no line. Lines from 0.
struct AlignedRow {
    int source = -1;
    int target = -1;
    bool equal = false;
};

/// Aligns two texts' lines with the fewest insertions and deletions. Lines that were replaced stand
/// beside the ones that they share their words with, the others as far as both sides have some.
std::vector<AlignedRow> alignLines(const QStringList& source, const QStringList& target);

/// A stretch of a line, in characters from 0.
struct TextRange {
    qsizetype start = 0;
    qsizetype length = 0;
};
struct ChangedWords {
    std::vector<TextRange> source;
    std::vector<TextRange> target;
};
/// The words (runs of letters and digits, or single other characters) that differ between two
/// lines.
ChangedWords changedWords(const QString& source, const QString& target);

}  // namespace zov
