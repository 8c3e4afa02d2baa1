// A grid of cells as views and exports read it: texts and colours, made when
// asked for. Row 0 is the header, column 0 holds the rows' numbers. The grid of
// data differences and that of a table's data realise it.
#pragma once

#include <QString>

namespace zov {

class GridCells {
 public:
    /// Colours are 0xBBGGRR. These two are those of a cell that nobody coloured.
    static constexpr quint32 DefaultBackColor = 0xFFFFFF;
    static constexpr quint32 DefaultForeColor = 0x000000;

    virtual ~GridCells() = default;
    /// Rows, the header included.
    virtual int rowCount() const = 0;
    /// Columns, the one with the numbers included.
    virtual int columnCount() const = 0;
    /// Empty where there is no such cell.
    virtual QString text(int row, int column) const = 0;
    /// Adds the cell's text to `to`; for those who read many.
    virtual void appendText(int row, int column, QString& to) const { to += text(row, column); }
    virtual quint32 backColor(int row, int column) const {
        (void)row, (void)column;
        return DefaultBackColor;
    }
    virtual quint32 foreColor(int row, int column) const {
        (void)row, (void)column;
        return DefaultForeColor;
    }
    /// The cell belongs to a column of numbers, so that its text is one, or stands for none.
    virtual bool isNumber(int row, int column) const {
        (void)row, (void)column;
        return false;
    }
    /// The background of every second data row where cells have none of their own.
    virtual quint32 alternateRowColor() const { return DefaultBackColor; }
};

}  // namespace zov
