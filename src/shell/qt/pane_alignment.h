// Which lines of two marked panes stand for each other: the road that next and
// previous difference take, and what scrolling together means. Made from the
// lines' colours alone.
#pragma once

#include <QtGlobal>

#include <vector>

namespace zov::qt {

class PaneAlignment {
 public:
    /// A run of differences: where it begins in each pane, lines from 0. A line may lie one behind
    /// the end of a pane whose text is at its end already.
    struct Stop {
        int sourceLine;
        int targetLine;
        int sourceEnd;  ///< one behind the run's last line; equal to the start when it has none
                        ///< here
        int targetEnd;
    };

    /// A line of a pane.
    struct Line {
        quint32 color;  ///< as stored, 0xBBGGRR
        bool isEmpty;   ///< nothing but white space stands there
    };

    PaneAlignment() = default;
    PaneAlignment(const std::vector<Line>& source, const std::vector<Line>& target);

    bool isEmpty() const { return toTarget_.empty() && toSource_.empty(); }
    /// Lines are marked where nothing stands, which are no stop.
    bool hasEmptyDifferences() const { return hasEmptyDifferences_; }
    const std::vector<Stop>& stops() const { return stops_; }
    /// The line of the other pane beside `line` of pane `from` (0 Source, 1 Target).
    int partnerOf(int from, int line) const;

 private:
    std::vector<int> toTarget_;
    std::vector<int> toSource_;
    std::vector<Stop> stops_;
    bool hasEmptyDifferences_ = false;
};

}  // namespace zov::qt
