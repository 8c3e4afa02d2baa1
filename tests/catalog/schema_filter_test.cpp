// The filter screen, the buttons that open it and the marks that show a filter.
#include "catalog/frmFilterBySchema.h"
#include "catalog/modSchema.h"
#include "catalog/panel_filtering.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

namespace zov {
namespace {

// The check list as text: "[x] (Select All)|[x] dbo|[ ] sales".
QString shown(const GridReport& report) {
    QStringList rows;
    for (size_t row = 0; row < report.records.size(); ++row)
        rows << (report.records[row][SchemaNameColumn].checked ? QStringLiteral("[x] ")
                                                               : QStringLiteral("[ ] ")) +
                    GridRep_GetCellText(report, int(row), SchemaNameColumn);
    return rows.join(u'|');
}

class FilterScreen : public ::testing::Test {
 protected:
    bool showUp(std::function<void(frmFilterBySchema&)> user,
                FilterType type = FilterType::Schema) {
        shell.onScreen = [user = std::move(user)](Screen& screen) {
            user(static_cast<frmFilterBySchema&>(screen));
        };
        frmFilterBySchema screen;
        applied = false;
        list.clear();
        return screen.ShowUp({QStringLiteral("dbo"), QStringLiteral("hr"), QStringLiteral("sales")},
                             SourcePanel, applied, list, type);
    }

    test::TempHome home;
    test::RecordingShell shell;
    bool applied = false;
    QString list;
};

TEST_F(FilterScreen, ShowsAllNamesCheckedWhenNothingIsFiltered) {
    EXPECT_FALSE(showUp([](frmFilterBySchema& screen) {
        EXPECT_EQ(screen.caption(), QStringLiteral("Filter by Schema"));
        EXPECT_EQ(screen.lblInfo,
                  QStringLiteral(
                      "Only objects belonging to selected Schemas will be analyzed/compared."));
        EXPECT_EQ(shown(screen.rpcReport),
                  QStringLiteral("[x] (Select All)|[x] dbo|[x] hr|[x] sales"));
        screen.cmdCancel();
    }));
    showUp(
        [](frmFilterBySchema& screen) {
            EXPECT_EQ(screen.caption(), QStringLiteral("Filter by Owner"));
            screen.cmdCancel();
        },
        FilterType::Owner);
    showUp(
        [](frmFilterBySchema& screen) {
            EXPECT_EQ(screen.caption(), QStringLiteral("Wrong Filter parameter"));
            screen.cmdCancel();
        },
        FilterType(3));
}

TEST_F(FilterScreen, ShowsThePresentFilter) {
    globals().gblnFilterActive[SourcePanel] = true;
    globals().gstrFilterList[SourcePanel] = QStringLiteral("hr,sales");
    showUp([](frmFilterBySchema& screen) {
        EXPECT_EQ(shown(screen.rpcReport),
                  QStringLiteral("[ ] (Select All)|[ ] dbo|[x] hr|[x] sales"));
        screen.rpcReport_ItemCheck(1);
        EXPECT_EQ(shown(screen.rpcReport),
                  QStringLiteral("[x] (Select All)|[x] dbo|[x] hr|[x] sales"));
    });
}

TEST_F(FilterScreen, SelectAllChangesEveryRowAndFollowsThem) {
    EXPECT_TRUE(showUp([](frmFilterBySchema& screen) {
        screen.rpcReport_ItemCheck(2);
        EXPECT_EQ(shown(screen.rpcReport),
                  QStringLiteral("[ ] (Select All)|[x] dbo|[ ] hr|[x] sales"));
        screen.rpcReport_ItemCheck(0);
        EXPECT_EQ(shown(screen.rpcReport),
                  QStringLiteral("[x] (Select All)|[x] dbo|[x] hr|[x] sales"));
        screen.rpcReport_ItemCheck(0);
        EXPECT_EQ(shown(screen.rpcReport),
                  QStringLiteral("[ ] (Select All)|[ ] dbo|[ ] hr|[ ] sales"));
        screen.rpcReport_ItemCheck(99);
        screen.cmdSave();
        EXPECT_FALSE(screen.isClosed());
        screen.rpcReport_ItemCheck(3);
        screen.rpcReport_ItemCheck(1);
        screen.cmdSave();
        EXPECT_TRUE(screen.isClosed());
    }));
    EXPECT_TRUE(applied);
    EXPECT_EQ(list, QStringLiteral("dbo,sales"));
    EXPECT_EQ(shell.lines.filter(QStringLiteral("information")).join(u'\n'),
              QStringLiteral("information: At least one Schema needs to be selected."));
}

TEST_F(FilterScreen, AllNamesAreNoFilter) {
    EXPECT_TRUE(showUp([](frmFilterBySchema& screen) { screen.cmdSave(); }));
    EXPECT_FALSE(applied);
    EXPECT_EQ(list, QString());
}

TEST_F(FilterScreen, UnsavedChangesAreAskedAbout) {
    const auto leave = [&](BoxAnswer answer, bool& closed) {
        shell.yesNoCancelAnswers = {answer};
        return showUp([&](frmFilterBySchema& screen) {
            screen.rpcReport_ItemCheck(1);
            screen.cmdCancel();
            closed = screen.isClosed();
        });
    };
    bool closed = false;
    EXPECT_TRUE(leave(BoxAnswer::Yes, closed));
    EXPECT_TRUE(closed);
    EXPECT_EQ(list, QStringLiteral("hr,sales"));
    EXPECT_FALSE(leave(BoxAnswer::No, closed));
    EXPECT_TRUE(closed);
    EXPECT_FALSE(leave(BoxAnswer::Cancel, closed));
    EXPECT_FALSE(closed);
    EXPECT_TRUE(shell.lines.join(u'\n').contains(
        QStringLiteral("Do you wish to filter objects according to your new Schema selection?")));
}

// A window that writes down what filtering asked of it.
class Window : public FilterWindow {
 public:
    bool& Busy() override { return busy; }
    bool CanFilter(int, FilterType) override { return allowed; }
    const ServerInfo& server(int) override { return info; }
    QString database(int) override { return QStringLiteral("Db"); }
    void RefreshDisplayForPanel(int Index) override {
        asked << QStringLiteral("refresh %1%2").arg(Index).arg(busy ? u" busy" : u"");
    }
    void setFilterText(int Index, const QString& text) override {
        asked << QStringLiteral("text %1 '%2'").arg(Index).arg(text);
    }
    void setFilterMark(int Index, bool visible, const QString& toolTip) override {
        asked << QStringLiteral("mark %1 %2")
                     .arg(Index)
                     .arg(visible ? toolTip : QStringLiteral("off"));
    }
    QString take() { return std::exchange(asked, {}).join(u'\n'); }

    bool busy = false;
    bool allowed = true;
    ServerInfo info;
    QStringList asked;
};

TEST_F(FilterScreen, AButtonStoresTheChoiceAndRefreshesItsPanel) {
    test::ServedDatabases served;
    served.load(QStringLiteral("Db"), QStringLiteral("CREATE SCHEMA sales\nGO\nCREATE SCHEMA hr"));
    Window window;
    window.info = served.server();
    shell.onScreen = [](Screen& screen) {
        auto& filter = static_cast<frmFilterBySchema&>(screen);
        EXPECT_EQ(shown(filter.rpcReport),
                  QStringLiteral("[x] (Select All)|[x] dbo|[x] hr|[x] sales"));
        filter.rpcReport_ItemCheck(1);
        filter.cmdSave();
    };
    cmdFilterBySchema(TargetPanel, window);
    EXPECT_TRUE(globals().gblnFilterActive[TargetPanel]);
    EXPECT_EQ(globals().gstrFilterList[TargetPanel], QStringLiteral("hr,sales"));
    EXPECT_FALSE(globals().gblnFilterActive[SourcePanel]);
    EXPECT_EQ(window.take().toStdString(),
              "refresh 1\n"
              "text 0 ''\nmark 0 off\n"
              "text 1 '(applied filter: hr,sales)'\nmark 1 Click to remove Schema filter");
    EXPECT_FALSE(window.busy);

    // The same choice again changes nothing.
    shell.onScreen = [](Screen& screen) { static_cast<frmFilterBySchema&>(screen).cmdSave(); };
    cmdFilterBySchema(TargetPanel, window);
    EXPECT_EQ(window.take(), QString());

    RemoveFilter(TargetPanel, FilterType::Owner, window);
    EXPECT_FALSE(globals().gblnFilterActive[TargetPanel]);
    EXPECT_EQ(window.take().toStdString(),
              "refresh 1\ntext 0 ''\nmark 0 off\ntext 1 ''\nmark 1 off");

    window.busy = true;
    cmdFilterByOwner(SourcePanel, window);
    window.busy = false;
    window.allowed = false;
    cmdFilterByOwner(SourcePanel, window);
    EXPECT_EQ(window.take(), QString());
}

TEST_F(FilterScreen, SourcesFilterTextHasABlankInFront) {
    Window window;
    globals().gblnFilterActive[SourcePanel] = true;
    globals().gstrFilterList[SourcePanel] = QStringLiteral("dbo");
    Filtering_UpdateDisplay(FilterType::Owner, window);
    EXPECT_EQ(window.take().toStdString(),
              "text 0 ' (applied filter: dbo)'\nmark 0 Click to remove Owner filter\n"
              "text 1 ''\nmark 1 off");
    shell.takeLines();
    Filtering_UpdateDisplay(FilterType(7), window);
    EXPECT_EQ(window.take(), QString());
    EXPECT_TRUE(shell.lines.join(u'\n').contains(QStringLiteral(
        "Sub Filtering_UpdateDisplay - wrong parameter passed (penmFilterType = 7).")));
}

TEST_F(FilterScreen, ADatabaseWithoutObjectsHasNoOwners) {
    test::ServedDatabases served;
    served.load(QStringLiteral("Other"), QStringLiteral("CREATE SCHEMA sales"));
    Window window;
    window.info = served.server();  // its database "Db" doesn't exist
    const ScopedValue<bool> silent(globals().gblnSuppressConnErrors, true);
    cmdFilterByOwner(SourcePanel, window);
    cmdFilterBySchema(SourcePanel, window);
    EXPECT_EQ(shell.lines.join(u'\n'),
              QStringLiteral("information: There are no owners in this database.\n"
                             "information: There are no schemas in this database."));
}

TEST(GridReports, AnswerForCellsThatArentThere) {
    GridReport report;
    EXPECT_EQ(GridRep_GetCellText(report, 0, 0), QString());
    GridRepLoadEntities(report, DataAnalysisGridDefinition(), 9);
    ASSERT_EQ(report.columns.size(), 23u);
    EXPECT_EQ(report.columns[21].caption, QStringLiteral("Value 10"));
    EXPECT_EQ(report.columns[21].width, 120);
    EXPECT_EQ(report.columns[22].caption, QStringLiteral("Count"));
    EXPECT_EQ(report.fontName, QStringLiteral("Tahoma"));

    report.records.resize(3, std::vector<GridReportItem>(2));
    for (int row = 0; row < 3; ++row) {
        report.records[size_t(row)][0].longValue = row % 2;
        report.records[size_t(row)][1].longValue = 10 + row;
        report.records[size_t(row)][1].value = QStringLiteral(" cell ");
    }
    EXPECT_EQ(GridRep_GetCellText(report, 1, 1), QStringLiteral("cell"));
    EXPECT_EQ(GridRep_GetCellText(report, 1, 2), QString());
    EXPECT_EQ(GridRep_GetCellText(report, -1, 0), QString());
    EXPECT_EQ(GridRep_CountRowsMatchingLongVal(report, 0, 0), 2);
    EXPECT_EQ(GridRep_GetTotalForCol_MatchingLongVal(report, 1, 0, 0), 22);
    GridRep_CleanCells_MatchingLongVal(report, 1, 0, 1);
    EXPECT_EQ(GridRep_GetCellText(report, 1, 1), QString());
    GridRep_PaintRow(report, 2, 0xFF);
    EXPECT_EQ(report.records[2][1].backColor, 0xFFu);
}

}  // namespace
}  // namespace zov
