#include "shell/qt/pane_alignment.h"

#include "structcompare/modMarkDifferences.h"

#include <algorithm>

namespace zov::qt {

PaneAlignment::PaneAlignment(const std::vector<Line>& source, const std::vector<Line>& target)
    : toTarget_(source.size()), toSource_(target.size()) {
    const quint32 deleted = colorOfMark(MarkDeleted);
    const quint32 inserted = colorOfMark(MarkInserted);
    const quint32 changed = colorOfMark(MarkChanged);
    size_t i = 0, j = 0;
    bool inRun = false;
    while (i < source.size() || j < target.size()) {
        const Line* left = i < source.size() ? &source[i] : nullptr;
        const Line* right = j < target.size() ? &target[j] : nullptr;
        // Two empty lines stand for each other, though a table's have no partner by their marks.
        const bool bothEmpty = left && right && left->isEmpty && right->isEmpty;
        const bool isDeleted = left && left->color == deleted && !bothEmpty;
        const bool isInserted = right && right->color == inserted && !bothEmpty;
        const bool isChanged =
            !bothEmpty && ((left && left->color == changed) || (right && right->color == changed));
        // A line that only one side has moves that side alone.
        const bool takeSource = left && (isDeleted || !isInserted);
        const bool takeTarget = right && !isDeleted;
        bool differs = isDeleted || isInserted || isChanged;
        const bool nothingStandsHere =
            (!takeSource || left->isEmpty) && (!takeTarget || right->isEmpty);
        if (differs && nothingStandsHere && !inRun) {
            // Nothing to look at. Within a run of other differences it is part of that.
            hasEmptyDifferences_ = true;
            differs = false;
        }
        if (differs && !inRun) stops_.push_back({int(i), int(j), int(i), int(j)});
        inRun = differs;
        if (takeSource) toTarget_[i] = int(j);
        if (takeTarget) toSource_[j] = int(i);
        i += takeSource;
        j += takeTarget;
        if (differs) {
            stops_.back().sourceEnd = int(i);
            stops_.back().targetEnd = int(j);
        }
    }
}

int PaneAlignment::partnerOf(int from, int line) const {
    const std::vector<int>& map = from == 0 ? toTarget_ : toSource_;
    if (map.empty() || line < 0) return line;
    const int last = int(map.size()) - 1;
    return line <= last ? map[size_t(line)] : map.back() + (line - last);
}

}  // namespace zov::qt
