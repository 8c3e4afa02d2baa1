#include "shell/qt/pane_alignment.h"

#include "structcompare/modMarkDifferences.h"

#include <algorithm>

namespace zov::qt {

PaneAlignment::PaneAlignment(const std::vector<quint32>& source, const std::vector<quint32>& target)
    : toTarget_(source.size()), toSource_(target.size()) {
    const quint32 deleted = colorOfMark(MarkDeleted);
    const quint32 inserted = colorOfMark(MarkInserted);
    const quint32 changed = colorOfMark(MarkChanged);
    size_t i = 0, j = 0;
    bool inRun = false;
    while (i < source.size() || j < target.size()) {
        const bool isDeleted = i < source.size() && source[i] == deleted;
        const bool isInserted = j < target.size() && target[j] == inserted;
        const bool isChanged = (i < source.size() && source[i] == changed) ||
                               (j < target.size() && target[j] == changed);
        const bool differs = isDeleted || isInserted || isChanged;
        if (differs && !inRun) stops_.push_back({int(i), int(j), int(i), int(j)});
        inRun = differs;
        // A line that only one side has moves that side alone.
        const bool takeSource = i < source.size() && (isDeleted || !isInserted);
        const bool takeTarget = j < target.size() && !isDeleted;
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
