// A table's rows as a grid: header and numbers are made up, the cells' texts are
// made from the stored rows when they are asked for.
#pragma once

#include "data/recordset.h"
#include "shell/grid_cells.h"

#include <QStringList>

#include <memory>

namespace zov {

class TableRowsGrid : public GridCells {
 public:
    /// Headers of the columns, without that of the numbers. A grid without rows.
    void reset(const QStringList& columns, quint32 alternateRowColor);
    /// Takes over a client-side recordset; its rows are there, and blank until they are loaded.
    /// Columns beyond its fields stay empty.
    void setRows(std::unique_ptr<Recordset> rows);
    /// Data rows of the recordset.
    qint32 count() const { return rowCount_ - 1; }
    /// How many rows are shown; the others are blank.
    void setLoaded(qint32 rows) { loaded_ = rows; }
    qint32 loaded() const { return loaded_; }

    int rowCount() const override { return rowCount_; }
    int columnCount() const override { return int(columns_.size()) + 1; }
    QString text(int row, int column) const override;
    void appendText(int row, int column, QString& to) const override;
    bool isNumber(int row, int column) const override;
    quint32 alternateRowColor() const override { return alternateRowColor_; }

 private:
    QStringList columns_;
    std::unique_ptr<Recordset> rows_;
    int fieldCount_ = 0;
    int rowCount_ = 1;
    qint32 loaded_ = 0;
    quint32 alternateRowColor_ = DefaultBackColor;
};

}  // namespace zov
