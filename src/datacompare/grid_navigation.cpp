#include "datacompare/grid_navigation.h"

#include "datacompare/frmCompareData.h"
#include "util/text.h"

#include <algorithm>
#include <numeric>

namespace zov {
namespace {

// The second row of a pair belongs to the first.
bool startsDifference(const GridCells& grid, int row) {
    return row <= 1 || grid.backColor(row, 0) != difference_color::TargetHalf ||
           grid.backColor(row - 1, 0) != difference_color::SourceHalf;
}

int firstDifferingColumn(const GridCells& grid, int row) {
    for (int column = 1; column < grid.columnCount(); ++column)
        if (grid.foreColor(row, column) == difference_color::DifferingText) return column;
    return grid.columnCount() > 1 ? 1 : 0;
}

}  // namespace

GridPosition nextDifference(const GridCells& grid, int row, bool forward) {
    const int rows = grid.rowCount();
    if (!forward && row > 1 && !startsDifference(grid, row)) --row;
    for (int at = forward ? row + 1 : row - 1; at > 0 && at < rows; at += forward ? 1 : -1)
        if (startsDifference(grid, at)) return {at, firstDifferingColumn(grid, at)};
    return {};
}

std::vector<int> columnsByName(const GridCells& grid) {
    std::vector<int> order(size_t(std::max(grid.columnCount(), 0)));
    std::iota(order.begin(), order.end(), 0);
    if (order.size() > 2)
        std::stable_sort(order.begin() + 1, order.end(), [&](int a, int b) {
            return grid.text(0, a).compare(grid.text(0, b), Qt::CaseInsensitive) < 0;
        });
    return order;
}

QString cellsAsText(const GridCells& grid, const std::vector<int>& rows,
                    const std::vector<int>& columns) {
    QString text;
    for (const int row : rows) {
        for (size_t i = 0; i < columns.size(); ++i) {
            if (i > 0) text += u'\t';
            const qsizetype begin = text.size();
            grid.appendText(row, columns[i], text);
            for (qsizetype at = begin; at < text.size(); ++at)
                if (text[at] == u'\t' || text[at] == u'\r' || text[at] == u'\n') text[at] = u' ';
        }
        text += CRLF;
    }
    return text;
}

}  // namespace zov
