// A grid from lines of text, for whatever reads grids: cells parted by "|".
#pragma once

#include "shell/grid_cells.h"

#include <QStringList>

#include <map>
#include <set>
#include <vector>

namespace zov::test {

class TextGrid : public GridCells {
 public:
    TextGrid(std::initializer_list<const char*> lines) {
        for (const char* line : lines) rows.push_back(QString::fromUtf8(line).split(u'|'));
    }
    int rowCount() const override { return int(rows.size()); }
    int columnCount() const override { return rows.empty() ? 0 : int(rows[0].size()); }
    QString text(int row, int column) const override {
        return size_t(row) < rows.size() ? rows[size_t(row)].value(column) : QString();
    }
    quint32 backColor(int row, int column) const override {
        const auto at = backColors.find({row, column});
        return at == backColors.end() ? DefaultBackColor : at->second;
    }
    quint32 foreColor(int row, int column) const override {
        const auto at = foreColors.find({row, column});
        return at == foreColors.end() ? DefaultForeColor : at->second;
    }
    quint32 alternateRowColor() const override { return alternate; }
    bool isNumber(int row, int column) const override {
        return row > 0 && numbers.contains(column);
    }

    std::vector<QStringList> rows;
    std::map<std::pair<int, int>, quint32> backColors, foreColors;
    quint32 alternate = DefaultBackColor;
    std::set<int> numbers;  ///< columns
};

}  // namespace zov::test
