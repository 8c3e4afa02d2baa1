// Finding one's way in a grid of data: from difference to difference, to a text,
// columns by name, cells as text for the clipboard.
#pragma once

#include "shell/grid_cells.h"

#include <vector>

namespace zov {

/// A cell; row 0 and below: none.
struct GridPosition {
    int row = 0;
    int column = 0;
    bool operator==(const GridPosition&) const = default;
};

/// The first row of the next difference behind `row` (before it when not `forward`) and in it the
/// first cell that differs, else column 1. A pair is one difference. No row when there is none.
GridPosition nextDifference(const GridCells& grid, int row, bool forward);

/// The next data cell that holds `text`, row by row from the one behind `from` (before it when not
/// `forward`), around the grid's end to `from` itself. No row when none does. `goOn`, asked once a
/// row, ends a long search.
template <typename GoOn>
GridPosition findText(const GridCells& grid, const QString& text, GridPosition from, bool forward,
                      Qt::CaseSensitivity cs, GoOn goOn) {
    const int rows = grid.rowCount() - 1, columns = grid.columnCount();
    if (rows < 1 || columns < 1 || text.isEmpty()) return {};
    const qint64 cells = qint64(rows) * columns;
    qint64 at = from.row < 1 ? (forward ? -1 : cells)
                             : qint64(from.row - 1) * columns + qBound(0, from.column, columns - 1);
    QString cell;
    for (qint64 tried = 0; tried < cells; ++tried) {
        at = (at + (forward ? 1 : -1) + cells) % cells;
        const int row = int(at / columns) + 1, column = int(at % columns);
        if ((column == 0) && !goOn()) return {};
        cell.truncate(0);
        grid.appendText(row, column, cell);
        if (cell.contains(text, cs)) return {row, column};
    }
    return {};
}

/// The columns' places by their headers, ignoring case: element i is the present column that comes
/// to place i. The column with the numbers stays first.
std::vector<int> columnsByName(const GridCells& grid);

/// Cells as lines with tabs between them and CRLF behind each, ready to be pasted into a sheet;
/// tabs and line breaks within a cell become blanks. Rows and columns as listed, each in rising
/// order.
QString cellsAsText(const GridCells& grid, const std::vector<int>& rows,
                    const std::vector<int>& columns);

}  // namespace zov
