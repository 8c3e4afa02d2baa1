// Two databases with tables to compare, a run without windows, and its result as
// lines of text: the outcome with its counts, then the grid as it would be shown.
#pragma once

#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "datacompare/frmCompareData.h"
#include "datacompare/frmCompareStatus.h"
#include "datacompare/modCompareData.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

namespace zov::test {

/// "S" and "T" are the halves of a pair, "+" is in Source only, "-" in Target only, "." has no
/// colour; "*" stands before a red cell.
inline QString shownGrid(const GridCells& grid) {
    QStringList lines;
    for (int row = 1; row < grid.rowCount(); ++row) {
        const quint32 back = grid.backColor(row, 0);
        QString line = back == difference_color::SourceHalf   ? QStringLiteral("S")
                       : back == difference_color::TargetHalf ? QStringLiteral("T")
                       : back == difference_color::SourceOnly ? QStringLiteral("+")
                       : back == difference_color::TargetOnly ? QStringLiteral("-")
                                                              : QStringLiteral(".");
        for (int column = 0; column < grid.columnCount(); ++column) {
            line += column == 0 ? u' ' : u'|';
            if (grid.foreColor(row, column) == difference_color::DifferingText) line += u'*';
            line += grid.text(row, column);
        }
        lines += line;
    }
    return lines.join(u'\n');
}

class DataComparison : public ::testing::TestWithParam<Road>, public DataComparisonScreens {
 protected:
    /// Both tables are named T.
    void load(const QString& source, const QString& target) {
        served.load(QStringLiteral("Src"), source);
        served.load(QStringLiteral("Tgt"), target);
        useTable(QStringLiteral("T"));
    }
    void useTable(const QString& table) {
        for (size_t side = 0; side < 2; ++side) {
            run.Tables[side] = {served.server(),
                                side ? QStringLiteral("Tgt") : QStringLiteral("Src"), table, 0};
            globals().gtCurrentServers[side] = served.server();
        }
        shell.takeLines();
    }
    void byKey(const CompKeys& source, const CompKeys& target) {
        run.Method = CompMethod::PrimaryKey;
        run.Keys[0] = source;
        run.Keys[1] = target;
    }
    void byKey(const QString& key) { byKey({key, {}, {}}, {key, {}, {}}); }
    void orderBy(const QString& key) {
        for (QString& order : run.OrderBy) order = BuildOrderByClause(key, {}, {});
    }
    void ignore(int side, const QStringList& columns) {
        const CompareDataTable& table = run.Tables[size_t(side)];
        SaveIgnoredColumnsList(IgnoreMode::DataComparison, table.key(), columns);
    }

    /// "different 3/4/2" (records of both, differences), and the grid below it.
    std::string compared() {
        grid.clear();
        result = ExecuteDataComparison(run, this);
        static const char* const names[] = {"not run", "cancelled", "identical", "different",
                                            "failed"};
        QString text =
            QString::fromLatin1(names[int(result.Outcome)]) + QStringLiteral(" %1/%2/%3")
                                                                  .arg(result.Records1)
                                                                  .arg(result.Records2)
                                                                  .arg(result.Differences);
        if (!grid.isEmpty()) text += u'\n' + grid;
        return text.toStdString();
    }
    std::string told() { return shell.takeLines().join(u'\n').toStdString(); }

    void showStatus(frmCompareStatus& screen) override {
        if (onStatus) onStatus(screen);
        screen.Form_Activate();
        EXPECT_TRUE(screen.isClosed());
    }
    void showDifferences(frmCompareData& screen) override {
        grid = shownGrid(screen.VSFlexGrid1);
        EXPECT_TRUE(screen.VSFlexGrid1.Redraw());
        if (onDifferences) onDifferences(screen);
    }

    TempHome home;
    RecordingShell shell;
    ServedDatabases served{GetParam()};
    DataComparisonRun run;
    DataComparisonResult result;
    QString grid;
    std::function<void(frmCompareStatus&)> onStatus;
    std::function<void(frmCompareData&)> onDifferences;
};

}  // namespace zov::test
