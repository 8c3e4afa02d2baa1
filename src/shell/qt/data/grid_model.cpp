#include "shell/qt/data/grid_model.h"

#include "shell/qt/mark_colors.h"
#include "shell/qt/window_fit.h"

#include <QBrush>
#include <QFont>

namespace zov::qt {
namespace {

// What fits on a screen; a cell may hold megabytes.
constexpr qsizetype ShownCharacters = 400;
constexpr qsizetype ToolTipCharacters = 1000;

QString oneLine(QString text) {
    text.replace(u'\r', u' ').replace(u'\n', u' ').replace(u'\t', u' ');
    return text;
}

}  // namespace

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns_;
}

void GridModel::readAnew() {
    const int rows = std::max(grid_.rowCount() - 1, 0), columns = grid_.columnCount();
    if (rows != rows_ || columns != columns_) {
        beginResetModel();
        rows_ = rows;
        columns_ = columns;
        endResetModel();
    } else if (rows_ > 0 && columns_ > 0) {
        emit dataChanged(index(0, 0), index(rows_ - 1, columns_ - 1));
        emit headerDataChanged(Qt::Horizontal, 0, columns_ - 1);
    }
}

void GridModel::setPalette(const QPalette& palette) {
    palette_ = palette;
    readAnew();
}

QVariant GridModel::background(int row, int column) const {
    quint32 color = grid_.backColor(row, column);
    if (color == GridCells::DefaultBackColor && row % 2 == 0) color = grid_.alternateRowColor();
    if (color == GridCells::DefaultBackColor) return {};
    return QBrush(shownMarkColor(color, palette_));
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const int row = index.row() + 1, column = index.column();
    switch (role) {
        case Qt::DisplayRole:
            return oneLine(grid_.text(row, column).left(ShownCharacters));
        case Qt::ToolTipRole: {
            const QString text = grid_.text(row, column);
            return text.size() < 20 ? QVariant()
                                    : QVariant(plainToolTip(text.left(ToolTipCharacters)));
        }
        case Qt::BackgroundRole:
            return background(row, column);
        case Qt::ForegroundRole:
            return QBrush(shownTextColor(grid_.foreColor(row, column), palette_));
        case Qt::FontRole: {
            if (grid_.foreColor(row, column) == GridCells::DefaultForeColor) return {};
            // Not by its colour alone.
            QFont font;
            font.setBold(true);
            return font;
        }
        case Qt::TextAlignmentRole:
            return column == 0 ? QVariant(Qt::AlignRight | Qt::AlignVCenter) : QVariant();
        default:
            return {};
    }
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::DisplayRole) return oneLine(grid_.text(0, section).left(ShownCharacters));
    if (role == Qt::ToolTipRole) return plainToolTip(grid_.text(0, section));
    return {};
}

}  // namespace zov::qt
