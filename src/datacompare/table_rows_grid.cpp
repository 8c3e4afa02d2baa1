#include "datacompare/table_rows_grid.h"

#include "data/base/field_text.h"

namespace zov {

void TableRowsGrid::reset(const QStringList& columns, quint32 alternateRowColor) {
    columns_ = columns;
    alternateRowColor_ = alternateRowColor;
    rows_.reset();
    fieldCount_ = loaded_ = 0;
    rowCount_ = 1;
}

void TableRowsGrid::setRows(std::unique_ptr<Recordset> rows) {
    rows_ = std::move(rows);
    loaded_ = 0;
    fieldCount_ = rows_ ? rows_->fieldCount() : 0;
    rowCount_ = fieldCount_ ? int(rows_->rowStore().rowCount()) + 1 : 1;
}

QString TableRowsGrid::text(int row, int column) const {
    QString text;
    appendText(row, column, text);
    return text;
}

void TableRowsGrid::appendText(int row, int column, QString& to) const {
    if (row < 0 || column < 0 || column >= columnCount()) return;
    if (row == 0) {
        to += column == 0 ? QStringLiteral("Row") : columns_[column - 1];
    } else if (row <= loaded_) {
        if (column == 0)
            to += QString::number(row);
        else if (column <= fieldCount_)
            appendFieldText(rows_->rowStore().cell(row - 1, column - 1), to);
    }
}

bool TableRowsGrid::isNumber(int row, int column) const {
    if (row < 1 || column < 0 || column > fieldCount_) return false;
    return column == 0 || isNumericType(rows_->field(column - 1).info().type);
}

}  // namespace zov
