// The grid of a data comparison, without a display: texts and colours of cells as
// the comparison writes them and as the view, the search and the export read them
// (shell/grid_cells.h). A row is one stretch of an arena, its colours are an entry
// of a shared palette, so that a million rows cost their texts and little more.
#pragma once

#include "shell/grid_cells.h"

#include <QStringView>

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

namespace zov {

/// The texts of one row on their way into a grid; kept by who writes many rows, to be filled anew.
class RowTexts {
 public:
    void clear() {
        chars_.resize(0);
        ends_.clear();
    }
    /// The text that grows into the next cell; endCell() closes it.
    QString& open() { return chars_; }
    void endCell() { ends_.push_back(quint32(chars_.size())); }
    void addCell(QStringView text) {
        chars_ += text;
        endCell();
    }
    int count() const { return int(ends_.size()); }
    QStringView cell(int index) const {
        const quint32 begin = index ? ends_[size_t(index) - 1] : 0;
        return QStringView(chars_).mid(begin, ends_[size_t(index)] - begin);
    }

 private:
    QString chars_;
    std::vector<quint32> ends_;
};

class ResultGrid : public GridCells {
 public:
    static constexpr int NumberColumnWidth = 540;  ///< twips
    static constexpr int DataColumnWidth = 1440;   ///< twips

    ResultGrid();
    ResultGrid(const ResultGrid&) = delete;
    ResultGrid& operator=(const ResultGrid&) = delete;

    // Row 0 is the fixed header, column 0 the rows' numbers. Rows and columns that don't exist are
    // read as empty, and writing to them does nothing.

    int Rows() const { return int(rows_.size()); }
    /// Drops rows at the end, or adds empty ones.
    void setRows(int count);
    int Cols() const { return columns_; }
    /// Columns keep their texts; to be set before data rows are written.
    void setCols(int count);
    /// Takes one row out; those below move up.
    void RemoveItem(int row);

    QString TextMatrix(int row, int column) const { return textView(row, column).toString(); }
    void setTextMatrix(int row, int column, QStringView text);
    /// The text in place; valid until the grid is written to.
    QStringView textView(int row, int column) const;
    /// Writes all cells of a row from column 0 on; cells beyond `texts` keep what they hold.
    void setRowTexts(int row, const RowTexts& texts);

    /// Colours 0xBBGGRR over a rectangle, its last row and column included.
    void setBackColor(int row1, int column1, int row2, int column2, quint32 color);
    void setForeColor(int row1, int column1, int row2, int column2, quint32 color);
    /// One row's text colours, `colors[i]` for column `firstColumn` + i; in one step.
    void setForeColors(int row, int firstColumn, const std::vector<quint32>& colors);

    /// Twips.
    int colWidth(int column) const;
    void setColWidth(int column, int twips);

    /// All data cells of the column are numbers.
    void setNumberColumn(int column, bool isNumber);

    /// Off: `onChanged` is not called; it is called once when redrawing is switched on again.
    bool Redraw() const { return redraw_; }
    void setRedraw(bool on);
    /// Texts, colours, rows or columns have changed: a view reads everything anew.
    std::function<void()> onChanged;

    void setAlternateRowColor(quint32 color) { alternateRowColor_ = color; }

    /// Puts present column `order[i]` at place i; texts, colours, widths and headers move together.
    /// Column 0 must stay; an order that is no permutation is ignored.
    void setColumnOrder(const std::vector<int>& order);

    /// Bytes that texts, rows and colours take up.
    qsizetype reservedBytes() const;

    // GridCells
    int rowCount() const override { return Rows(); }
    int columnCount() const override { return Cols(); }
    QString text(int row, int column) const override { return TextMatrix(row, column); }
    void appendText(int row, int column, QString& to) const override {
        to += textView(row, column);
    }
    quint32 backColor(int row, int column) const override;
    quint32 foreColor(int row, int column) const override;
    bool isNumber(int row, int column) const override;
    quint32 alternateRowColor() const override { return alternateRowColor_; }

 private:
    struct CellColors {
        quint32 back = DefaultBackColor;
        quint32 fore = DefaultForeColor;
        bool operator==(const CellColors&) const = default;
    };
    using RowColors = std::vector<CellColors>;  // by stored column; shorter: the rest has defaults
    struct RowColorsHash {
        size_t operator()(const RowColors& colors) const;
    };

    // A row's texts: a count, that many ends (each the place behind a text, in characters from the
    // first text), then the characters. Null: all cells are empty.
    struct Row {
        const quint32* texts = nullptr;
        quint32 colors = 0;  // place in palette_
    };

    bool hasCell(int row, int column) const {
        return row >= 0 && row < Rows() && column >= 0 && column < columns_;
    }
    int stored(int column) const { return order_.empty() ? column : order_[size_t(column)]; }
    QStringView storedText(const Row& row, int storedColumn) const;
    void writeTexts(Row& row, const std::vector<QStringView>& texts);
    static size_t wordsOf(const quint32* texts);
    quint32* allocate(size_t words);
    void forget(Row& row);
    void compactWhenWasteful();
    quint32 colorsEntry(RowColors colors);
    template <typename Change>
    void changeColors(int row1, int row2, Change change);
    void noteChange() {
        if (redraw_ && onChanged) onChanged();
    }

    std::vector<Row> rows_;
    int columns_ = 1;
    std::vector<int> order_;     // shown column -> stored column; empty: as stored
    std::vector<int> widths_;    // by stored column
    std::vector<bool> numbers_;  // by stored column; shorter: the rest has texts
    bool redraw_ = true;
    quint32 alternateRowColor_ = DefaultBackColor;

    struct Chunk {
        std::unique_ptr<quint32[]> words;
        size_t size = 0;
        size_t used = 0;
    };
    std::vector<Chunk> chunks_;
    size_t liveWords_ = 0;
    size_t usedWords_ = 0;
    std::vector<QStringView> scratch_;

    std::vector<const RowColors*> palette_;
    std::unordered_map<RowColors, quint32, RowColorsHash> paletteIndex_;
};

}  // namespace zov
