// `pvlSqlObj`: the objects of a panel in a table view over a model that holds the
// rows as they came, so that thousands of objects cost nothing to show. A click
// on a heading sorts what is shown; the logic's row numbers stay those of the
// rows as they came.
#pragma once

#include "shell/controls.h"

#include <QAbstractTableModel>
#include <QTreeView>

class QSortFilterProxyModel;

namespace zov::qt {

class ObjectListModel : public QAbstractTableModel {
    Q_OBJECT
 public:
    enum Column { NameColumn, DateColumn, IdColumn, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    void setRows(std::vector<ObjectListRow> rows);
    void removeRowAt(int row);
    const ObjectListRow& row(int index) const { return rows_[size_t(index)]; }

 private:
    std::vector<ObjectListRow> rows_;
};

class ObjectListView : public QTreeView, public ObjectList {
    Q_OBJECT
 public:
    explicit ObjectListView(QWidget* parent = nullptr);

    int rowCount() const override { return model_->rowCount(); }
    const ObjectListRow& row(int index) const override { return model_->row(index); }
    void setRows(std::vector<ObjectListRow> rows) override;
    void removeRow(int index) override;
    int selectedCount() const override;
    std::vector<int> selectedRows() const;
    /// The selected row that is shown uppermost.
    int selectedIndex() const override;
    void selectRow(int index) override;
    void setRedraw(bool on) override { setUpdatesEnabled(on); }
    void refresh() override { viewport()->update(); }

    /// What an empty list says in its place.
    void setEmptyText(const QString& text);
    QString emptyText() const { return emptyText_; }

 signals:
    /// The selection changed, by the user or by the program; silent while the tag is "OFF".
    void objectSelected();
    /// The list has other rows than before.
    void rowsChanged();

 protected:
    void selectionChanged(const QItemSelection& selected,
                          const QItemSelection& deselected) override;
    void paintEvent(QPaintEvent* event) override;

 private:
    ObjectListModel* model_;
    QSortFilterProxyModel* shown_;
    QString emptyText_;
};

}  // namespace zov::qt
