#include "structcompare/comp_line.h"

namespace zov {

qint32 TXText_ConvTextToArray(const TextPane& pane, std::vector<CompLine>& lines, bool& error) {
    error = false;
    lines.clear();
    const int count = pane.lineCount();
    const QString text = pane.plainText();
    if (count < 1 || text.isEmpty()) return 0;

    lines.reserve(size_t(count));
    for (int line = 0; line < count; ++line) {
        const int start = pane.lineStart(line);
        const int next = line + 1 < count ? pane.lineStart(line + 1) : int(text.size()) + 1;
        const int end = next - 1;
        if (start == -1 || next == -1 || end < start) {
            error = true;
            break;
        }
        lines.push_back({text.mid(start, end - start), 0, start, end});
    }
    return qint32(lines.size());
}

}  // namespace zov
