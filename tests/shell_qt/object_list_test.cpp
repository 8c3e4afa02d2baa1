// The list of objects: what the logic sees of it, sorting, type-ahead.
#include "shell/qt/object_list_view.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace zov {
namespace {

using qt::ObjectListModel;
using qt::ObjectListView;

std::vector<ObjectListRow> rows() {
    return {{QStringLiteral("Invoice"), QStringLiteral("2020-03-01 10:00:00"), 30},
            {QStringLiteral("address"), QStringLiteral("2021-01-01 10:00:00"), 4},
            {QStringLiteral("Customer"), QStringLiteral("2019-12-31 23:59:59"), 200}};
}

QString shown(const ObjectListView& list) {
    QStringList names;
    for (int row = 0; row < list.model()->rowCount(); ++row)
        names += list.model()->index(row, 0).data().toString();
    return names.join(u' ');
}

TEST(ObjectList, TheModelKeepsTheRulesOfModels) {
    ObjectListModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.setRows(rows());
    model.removeRowAt(1);
    model.setRows({});
    model.setRows(rows());
    EXPECT_EQ(model.index(0, ObjectListModel::NameColumn).data(Qt::ToolTipRole).toString(),
              QStringLiteral("Id: 30, Name: Invoice, Ref. Date: 2020-03-01 10:00:00"));
}

TEST(ObjectList, ShowsTheServersOrderUntilAHeadingIsClicked) {
    ObjectListView list;
    list.setRows(rows());
    EXPECT_EQ(shown(list), QStringLiteral("Invoice address Customer"));
    const struct {
        int column;
        Qt::SortOrder order;
        const char* names;
    } sorts[] = {
        {ObjectListModel::NameColumn, Qt::AscendingOrder, "address Customer Invoice"},
        {ObjectListModel::NameColumn, Qt::DescendingOrder, "Invoice Customer address"},
        {ObjectListModel::DateColumn, Qt::AscendingOrder, "Customer Invoice address"},
        {ObjectListModel::IdColumn, Qt::AscendingOrder, "address Invoice Customer"},
        {-1, Qt::AscendingOrder, "Invoice address Customer"},
    };
    for (const auto& sort : sorts) {
        list.header()->setSortIndicator(sort.column, sort.order);
        EXPECT_EQ(shown(list), QLatin1String(sort.names)) << sort.column;
        // The logic's numbers stay those of the rows as they came.
        EXPECT_EQ(list.row(0).name, QStringLiteral("Invoice"));
        list.selectRow(2);
        EXPECT_EQ(list.selectedIndex(), 2);
        EXPECT_EQ(list.currentIndex().data().toString(), QStringLiteral("Customer"));
    }
}

TEST(ObjectList, OfSeveralSelectedRowsTheUppermostCounts) {
    ObjectListView list;
    list.setRows(rows());
    list.selectAll();
    EXPECT_EQ(list.selectedCount(), 3);
    EXPECT_EQ(list.selectedIndex(), 0);
    list.header()->setSortIndicator(ObjectListModel::NameColumn, Qt::AscendingOrder);
    EXPECT_EQ(list.selectedIndex(), 1);
}

TEST(ObjectList, ARemovedRowTakesItsSelectionWithIt) {
    ObjectListView list;
    list.setRows(rows());
    list.selectRow(1);
    list.Tag = QStringLiteral("OFF");
    list.removeRow(0);
    EXPECT_EQ(list.rowCount(), 2);
    EXPECT_EQ(list.selectedIndex(), 0);
    EXPECT_EQ(list.row(0).name, QStringLiteral("address"));
    list.setRows(rows());
    EXPECT_EQ(list.selectedIndex(), -1);
    EXPECT_EQ(list.selectedCount(), 0);
}

TEST(ObjectList, TellsOfASelectionUnlessItsTagIsOff) {
    ObjectListView list;
    list.setRows(rows());
    QSignalSpy selected(&list, &ObjectListView::objectSelected);
    list.selectRow(1);
    EXPECT_EQ(selected.count(), 1);
    list.Tag = QStringLiteral("OFF");
    list.selectRow(2);
    list.selectRow(-1);
    EXPECT_EQ(selected.count(), 1);
    list.Tag.clear();
    list.selectRow(99);
    EXPECT_EQ(list.selectedIndex(), -1);
}

TEST(ObjectList, TypedLettersGoToTheName) {
    ObjectListView list;
    list.setRows(rows());
    list.show();
    list.setFocus();
    QTest::keyClicks(&list, QStringLiteral("cu"));
    EXPECT_EQ(list.selectedIndex(), 2);
}

}  // namespace
}  // namespace zov
