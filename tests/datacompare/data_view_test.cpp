// A table's rows in a grid, and finding one's way in grids of data.
#include "datacompare/frmCompareData.h"
#include "datacompare/frmDataView.h"
#include "datacompare/grid_navigation.h"
#include "reports/frmExport.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"
#include "support/text_grid.h"

#include <stdexcept>

namespace zov {
namespace {

using test::Road;

class DataView : public ::testing::TestWithParam<Road> {
 protected:
    void SetUp() override {
        QString script = QStringLiteral(
            "CREATE TABLE dbo.T (Id int NOT NULL, Name nvarchar(20) NULL, Amount decimal(9,2) "
            "NULL)\nGO\nCREATE TABLE dbo.Empty (Id int)\nGO\n");
        for (int i = 1; i <= 100; ++i)
            script += QStringLiteral("INSERT INTO T VALUES (%1, 'n%1', %1.50)\n").arg(i);
        script += QStringLiteral("GO\nUPDATE T SET Name = NULL, Amount = NULL WHERE Id = 2\nGO\n");
        served.load(QStringLiteral("Db"), script);
        for (ServerInfo& server : globals().gtCurrentServers) server = served.server();
        shell.takeLines();
    }
    void show(const char* table, const std::function<void(frmDataView&)>& user) {
        shell.onScreen = [=](Screen& screen) {
            if (auto* form = dynamic_cast<frmDataView*>(&screen)) user(*form);
        };
        const QString name = QString::fromLatin1(table);
        frmDataView().ShowUp(u'[' + name + u']', name, QStringLiteral("Db"), TargetPanel, 0);
    }
    std::string told() { return shell.takeLines().join(u'\n').toStdString(); }
    static std::string row(const GridCells& grid, int row) {
        QStringList cells;
        for (int column = 0; column < grid.columnCount(); ++column) cells += grid.text(row, column);
        return cells.join(u'|').toStdString();
    }

    test::TempHome home;
    test::RecordingShell shell;
    test::ServedDatabases served{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Roads, DataView, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

TEST_P(DataView, ShowsEveryRowOfATable) {
    show("T", [&](frmDataView& form) {
        EXPECT_EQ(form.lblTableName,
                  QStringLiteral("Table: T (Database: Db, Server: ") + served.server().Name + u')');
        EXPECT_EQ(form.lblStats, u"Number of records: 100");
        EXPECT_FALSE(form.cmdExportEnabled);
        form.Form_Activate();
        const TableRowsGrid& grid = form.VSFlexGrid1;
        EXPECT_EQ(grid.rowCount(), 101);
        EXPECT_EQ(row(grid, 0), "Row|Id|Name|Amount");
        EXPECT_EQ(row(grid, 1), "1|1|n1|1.5");
        EXPECT_EQ(row(grid, 2), "2|2|Null|Null");
        EXPECT_EQ(row(grid, 100), "100|100|n100|100.5");
        EXPECT_EQ(row(grid, 101), "|||");
        EXPECT_EQ(grid.alternateRowColor(), 0xFFFF00u);
        EXPECT_EQ(form.lblCurRec, u"100");
        EXPECT_EQ(form.ProgressBar, 100);
        EXPECT_TRUE(form.cmdExportEnabled);
        EXPECT_FALSE(form.cmdStopEnabled || form.loadControlsVisible);
        form.cmdExit_Click();
        EXPECT_TRUE(form.isClosed());
    });
    EXPECT_EQ(told(), "screen frmDataView");
    EXPECT_EQ(shell.waitDepth, 0);
}

TEST_P(DataView, StaysClosedWithoutRows) {
    show("Empty", [](frmDataView&) { FAIL(); });
    EXPECT_EQ(told(), "information [View Data]: Table Empty doesn't contain any data.");
    show("Dropped", [](frmDataView&) { FAIL(); });
    const std::string said = told();
    EXPECT_TRUE(
        said.ends_with("exclamation [View Data]: Error while reading data from table Dropped."))
        << said;
    EXPECT_THROW(frmDataView().ShowUp({}, {}, {}, 2, 0), std::out_of_range);
}

TEST_P(DataView, ThatIsStoppedKeepsTheRowsReadSoFar) {
    show("T", [&](frmDataView& form) {
        shell.onPump = [&] {
            if (form.VSFlexGrid1.loaded() == 50) form.cmdStop_Click();
        };
        form.Form_Activate();
        EXPECT_EQ(form.VSFlexGrid1.rowCount(), 101);
        EXPECT_EQ(row(form.VSFlexGrid1, 50), "50|50|n50|50.5");
        EXPECT_EQ(row(form.VSFlexGrid1, 51), "|||");
        EXPECT_TRUE(form.cmdExportEnabled);
        EXPECT_FALSE(form.isClosed());
    });
    EXPECT_EQ(told(), "screen frmDataView");
}

TEST_P(DataView, ThatIsLeftWhileLoadingClosesAtItsEnd) {
    show("T", [&](frmDataView& form) {
        shell.onPump = [&] {
            if (form.VSFlexGrid1.loaded() != 7) return;
            form.cmdExport_Click();
            form.cmdExit_Click();
            EXPECT_FALSE(form.isClosed());
        };
        form.Form_Activate();
        EXPECT_TRUE(form.isClosed());
        EXPECT_EQ(form.VSFlexGrid1.loaded(), 7);
    });
    EXPECT_EQ(told(), "screen frmDataView") << "no export while rows are coming";
}

TEST_P(DataView, ExportsItsRows) {
    shell.savePaths = {home.path(QStringLiteral("rows.csv"))};
    shell.onScreen = [&](Screen& screen) {
        if (auto* form = dynamic_cast<frmDataView*>(&screen)) {
            form->Form_Activate();
            form->cmdExport_Click();
        } else if (auto* exports = dynamic_cast<frmExport*>(&screen)) {
            exports->optGen = 1;
            exports->cmdOK_Click();
        }
    };
    frmDataView().ShowUp(QStringLiteral("[T]"), QStringLiteral("T"), QStringLiteral("Db"), 0, 0);
    EXPECT_TRUE(home.read(QStringLiteral("rows.csv"))
                    .startsWith("Row,Id,Name,Amount\r\n1,1,n1,1.5\r\n2,2,Null,Null\r\n"));
}

class GridNavigation : public ::testing::Test {
 protected:
    GridNavigation() {
        const auto paint = [&](int row, quint32 color) { grid.backColors[{row, 0}] = color; };
        paint(1, difference_color::SourceHalf);
        paint(2, difference_color::TargetHalf);
        paint(3, difference_color::SourceOnly);
        paint(4, difference_color::SourceHalf);
        paint(5, difference_color::TargetHalf);
        paint(6, difference_color::TargetOnly);
        grid.foreColors = {{{1, 2}, 255}, {{2, 2}, 255}, {{4, 1}, 255}, {{4, 2}, 255}};
    }
    test::TextGrid grid{"Row|b|A|c", "1|x|one|",     "1|x|two|", "2|y|three\tfour|",
                        "3|z|x|q",   "3|z|X\r\ny|q", "9|w|w|w"};
};

TEST_F(GridNavigation, GoesFromDifferenceToDifference) {
    EXPECT_EQ(nextDifference(grid, 0, true), (GridPosition{1, 2}));
    EXPECT_EQ(nextDifference(grid, 1, true), (GridPosition{3, 1}));
    EXPECT_EQ(nextDifference(grid, 2, true), (GridPosition{3, 1}));
    EXPECT_EQ(nextDifference(grid, 3, true), (GridPosition{4, 1}));
    EXPECT_EQ(nextDifference(grid, 4, true), (GridPosition{6, 1}));
    EXPECT_EQ(nextDifference(grid, 6, true), GridPosition{});
    EXPECT_EQ(nextDifference(grid, 6, false), (GridPosition{4, 1}));
    EXPECT_EQ(nextDifference(grid, 5, false), (GridPosition{3, 1})) << "its first row is its place";
    EXPECT_EQ(nextDifference(grid, 3, false), (GridPosition{1, 2}));
    EXPECT_EQ(nextDifference(grid, 2, false), GridPosition{});
}

TEST_F(GridNavigation, FindsTextsAroundTheEnd) {
    const auto find = [&](const char* text, GridPosition from, bool forward) {
        return findText(grid, QString::fromLatin1(text), from, forward, Qt::CaseInsensitive,
                        [] { return true; });
    };
    EXPECT_EQ(find("x", {}, true), (GridPosition{1, 1}));
    EXPECT_EQ(find("x", {1, 1}, true), (GridPosition{2, 1}));
    EXPECT_EQ(find("x", {5, 2}, true), (GridPosition{1, 1}));
    EXPECT_EQ(find("x", {1, 1}, false), (GridPosition{5, 2}));
    EXPECT_EQ(find("w", {6, 1}, true), (GridPosition{6, 2}));
    EXPECT_EQ(find("three", {3, 2}, true), (GridPosition{3, 2})) << "the only place";
    EXPECT_EQ(find("Row", {}, true), GridPosition{}) << "headers are no data";
    EXPECT_EQ(find("", {}, true), GridPosition{});
}

TEST_F(GridNavigation, CopiesCellsForASheet) {
    EXPECT_EQ(cellsAsText(grid, {3, 5}, {0, 2}), u"2\tthree four\r\n3\tX  y\r\n");
    EXPECT_EQ(columnsByName(grid), (std::vector<int>{0, 2, 1, 3}));
}

}  // namespace
}  // namespace zov
