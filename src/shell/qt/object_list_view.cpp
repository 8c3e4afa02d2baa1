#include "shell/qt/object_list_view.h"

#include <QHeaderView>
#include <QLocale>

namespace zov::qt {
namespace {

enum Column { NameColumn, DateColumn, IdColumn, ColumnCount };

// "#,###": nothing for zero.
QString groupedId(qint32 id) {
    return id == 0 ? QString() : QLocale(QLocale::English, QLocale::UnitedStates).toString(id);
}

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
        return QStringLiteral("Id: %1, Name: %2, Ref. Date: %3")
            .arg(groupedId(row.id), row.name, row.refDate);
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
    : QTreeView(parent), model_(new ObjectListModel(this)) {
    setModel(model_);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    setSelectionMode(ExtendedSelection);
    setAllColumnsShowFocus(true);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    header()->setSectionResizeMode(DateColumn, QHeaderView::Interactive);
    header()->setSectionResizeMode(IdColumn, QHeaderView::Interactive);
    setColumnHidden(IdColumn, true);
}

void ObjectListView::setRows(std::vector<ObjectListRow> rows) {
    model_->setRows(std::move(rows));
}

int ObjectListView::selectedCount() const {
    return int(selectionModel()->selectedRows().size());
}

int ObjectListView::selectedIndex() const {
    int first = -1;
    for (const QModelIndex& index : selectionModel()->selectedRows())
        if (first < 0 || index.row() < first) first = index.row();
    return first;
}

void ObjectListView::selectRow(int index) {
    if (index < 0 || index >= rowCount()) {
        selectionModel()->clearSelection();
        return;
    }
    const QModelIndex at = model_->index(index, NameColumn);
    setCurrentIndex(at);
    scrollTo(at);
}

void ObjectListView::selectionChanged(const QItemSelection& selected,
                                      const QItemSelection& deselected) {
    QTreeView::selectionChanged(selected, deselected);
    if (Tag != u"OFF") emit objectSelected();
}

}  // namespace zov::qt
