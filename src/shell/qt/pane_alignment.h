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

    PaneAlignment() = default;
    /// Colours of the panes' lines as stored, 0xBBGGRR, one for each line.
    PaneAlignment(const std::vector<quint32>& source, const std::vector<quint32>& target);

    bool isEmpty() const { return toTarget_.empty() && toSource_.empty(); }
    const std::vector<Stop>& stops() const { return stops_; }
    /// The line of the other pane beside `line` of pane `from` (0 Source, 1 Target).
    int partnerOf(int from, int line) const;

 private:
    std::vector<int> toTarget_;
    std::vector<int> toSource_;
    std::vector<Stop> stops_;
};

}  // namespace zov::qt
