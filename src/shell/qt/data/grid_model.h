// A grid of cells (shell/grid_cells.h) as an item model: nothing is copied, a cell
// is asked for when it is painted, so that a million rows show at once. The
// grid's row 0 is the header; model row 0 is its row 1.
#pragma once

#include "shell/grid_cells.h"

#include <QAbstractTableModel>
#include <QPalette>

namespace zov::qt {

class GridModel : public QAbstractTableModel {
    Q_OBJECT
 public:
    GridModel(const GridCells& grid, QObject* parent) : QAbstractTableModel(parent), grid_(grid) {}

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// The grid has changed: other rows or columns reset the model, other cells are painted anew.
    void readAnew();
    /// The colours go by this palette.
    void setPalette(const QPalette& palette);

    const GridCells& grid() const { return grid_; }

 private:
    QVariant background(int row, int column) const;

    const GridCells& grid_;
    QPalette palette_;
    int rows_ = 0;
    int columns_ = 0;
};

}  // namespace zov::qt
