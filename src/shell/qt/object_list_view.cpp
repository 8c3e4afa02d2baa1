#include "shell/qt/object_list_view.h"

#include "shell/qt/window_fit.h"

#include <QHeaderView>
#include <QLocale>
#include <QPainter>
#include <QSortFilterProxyModel>

#include <algorithm>

namespace zov::qt {
namespace {

// "#,###": nothing for zero.
QString groupedId(qint32 id) {
    return id == 0 ? QString() : QLocale(QLocale::English, QLocale::UnitedStates).toString(id);
}

class ShownOrder : public QSortFilterProxyModel {
 public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

 protected:
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override {
        const auto* rows = static_cast<const ObjectListModel*>(sourceModel());
        const ObjectListRow& a = rows->row(left.row());
        const ObjectListRow& b = rows->row(right.row());
        if (left.column() == ObjectListModel::IdColumn && a.id != b.id) return a.id < b.id;
        // Dates are written year first: their texts sort as they do.
        if (left.column() == ObjectListModel::DateColumn && a.refDate != b.refDate)
            return a.refDate < b.refDate;
        return a.name.compare(b.name, Qt::CaseInsensitive) < 0;
    }
};

}  // namespace

int ObjectListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(rows_.size());
}

int ObjectListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ObjectListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const ObjectListRow& row = rows_[size_t(index.row())];
    if (role == Qt::ToolTipRole)
        return plainToolTip(QStringLiteral("Id: %1, Name: %2, Ref. Date: %3")
                                .arg(groupedId(row.id), row.name, row.refDate));
    if (role == Qt::TextAlignmentRole && index.column() == IdColumn)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole) return {};
    switch (index.column()) {
        case NameColumn:
            return row.name;
        case DateColumn:
            return row.refDate;
        default:
            return row.id;
    }
}

QVariant ObjectListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    static const char* const titles[] = {"Name", "Reference date", "Id"};
    return section < ColumnCount ? QString::fromLatin1(titles[section]) : QVariant();
}

void ObjectListModel::setRows(std::vector<ObjectListRow> rows) {
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
}

void ObjectListModel::removeRowAt(int row) {
    beginRemoveRows({}, row, row);
    rows_.erase(rows_.begin() + row);
    endRemoveRows();
}

ObjectListView::ObjectListView(QWidget* parent)
    : QTreeView(parent), model_(new ObjectListModel(this)), shown_(new ShownOrder(this)) {
    shown_->setSourceModel(model_);
    setModel(shown_);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setSelectionMode(ExtendedSelection);
    setAllColumnsShowFocus(true);
    setTabKeyNavigation(false);
    setIndentation(0);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(ObjectListModel::NameColumn, QHeaderView::Stretch);
    header()->setSectionResizeMode(ObjectListModel::DateColumn, QHeaderView::Interactive);
    header()->setSectionResizeMode(ObjectListModel::IdColumn, QHeaderView::Interactive);
    header()->resizeSection(
        ObjectListModel::DateColumn,
        fontMetrics().horizontalAdvance(QStringLiteral("0000-00-00 00:00:00.000")) + 16);
    header()->setSectionsMovable(false);
    header()->setHighlightSections(false);
    // In the server's order, until the user asks for another one; a third click gives it back.
    header()->setSortIndicatorClearable(true);
    header()->setSortIndicator(-1, Qt::AscendingOrder);
    setSortingEnabled(true);
    setColumnHidden(ObjectListModel::IdColumn, true);
}

void ObjectListView::setRows(std::vector<ObjectListRow> rows) {
    model_->setRows(std::move(rows));
    emit rowsChanged();
}

void ObjectListView::removeRow(int index) {
    model_->removeRowAt(index);
    emit rowsChanged();
}

int ObjectListView::selectedCount() const {
    return int(selectionModel()->selectedRows().size());
}

std::vector<int> ObjectListView::selectedRows() const {
    std::vector<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedRows())
        rows.push_back(shown_->mapToSource(index).row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

int ObjectListView::selectedIndex() const {
    QModelIndex first;
    for (const QModelIndex& index : selectionModel()->selectedRows())
        if (!first.isValid() || index.row() < first.row()) first = index;
    return shown_->mapToSource(first).row();
}

void ObjectListView::selectRow(int index) {
    if (index < 0 || index >= rowCount()) {
        selectionModel()->clearSelection();
        return;
    }
    const QModelIndex at = shown_->mapFromSource(model_->index(index, ObjectListModel::NameColumn));
    selectionModel()->setCurrentIndex(
        at, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    scrollTo(at);
}

void ObjectListView::setEmptyText(const QString& text) {
    emptyText_ = text;
    viewport()->update();
}

void ObjectListView::selectionChanged(const QItemSelection& selected,
                                      const QItemSelection& deselected) {
    QTreeView::selectionChanged(selected, deselected);
    if (Tag != u"OFF") emit objectSelected();
}

void ObjectListView::paintEvent(QPaintEvent* event) {
    QTreeView::paintEvent(event);
    if (model_->rowCount() > 0 || emptyText_.isEmpty()) return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(16, 16, -16, -16),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, emptyText_);
}

}  // namespace zov::qt
