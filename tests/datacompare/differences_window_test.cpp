// What the user does in the window of differences: exporting, sorting, leaving.
#include "datacompare/frmCompareData.h"
#include "reports/frmExport.h"
#include "support/recording_shell.h"
#include "support/temp_home.h"

namespace zov {
namespace {

class DifferencesWindow : public ::testing::Test {
 protected:
    DifferencesWindow() {
        form.Caption = QStringLiteral("Differences");
        form.lblTableName[0] = QStringLiteral("Source Table: A");
        form.lblTableName[1] = QStringLiteral("Target Table: B");
        for (int i = 0; i < 3; ++i) form.lblStats[i + 3] = QString::number(i + 1);
        ResultGrid& grid = form.VSFlexGrid1;
        grid.setCols(3);
        grid.setRows(2);
        const char* const cells[2][3] = {{"Row", "b", "A"}, {"1", "bee", "ay"}};
        for (int row = 0; row < 2; ++row)
            for (int column = 0; column < 3; ++column)
                grid.setTextMatrix(row, column, QString::fromLatin1(cells[row][column]));
        grid.setBackColor(1, 1, 1, 1, 255);
    }
    /// Presses OK in the export's screen, for HTML or CSV; a process's export goes by itself.
    void exportTo(const QString& name, int optGen) {
        shell.savePaths = {home.path(name)};
        shell.onScreen = [optGen](Screen& screen) {
            auto& exports = dynamic_cast<frmExport&>(screen);
            exports.Form_Activate();
            if (exports.isClosed()) return;
            exports.optGen = optGen;
            exports.cmdOK_Click();
        };
    }
    std::string file(const char* name) {
        return home.read(QString::fromLatin1(name)).toStdString();
    }

    test::TempHome home;
    test::RecordingShell shell;
    frmCompareData form;
};

TEST_F(DifferencesWindow, ExportsWhatItShows) {
    exportTo(QStringLiteral("x.htm"), 0);
    form.cmdExport_Click();
    EXPECT_NE(file("x.htm").find("<b> Differences</b><p> Source Table: A<br> Target Table: B<p>"),
              std::string::npos);
    EXPECT_NE(file("x.htm").find("<TD BGCOLOR = FF0000><FONT COLOR = 000000>&nbsp bee &nbsp</TD>"),
              std::string::npos);
    const std::string counts =
        "<p align='center'><b> Number of records in  in Source Table: 1<br> "
        "Number of records in  in Target Table: 2<br> Number of different "
        "records: 3";
    EXPECT_TRUE(file("x.htm").ends_with(counts + "</b>\r\n"));
    form.lblMaxRows = QStringLiteral("Only first 1 different records are shown");
    form.lblMaxRowsVisible = true;
    form.IgnoredCount = 2;
    form.IgnoredText = QStringLiteral("Columns ignored during comparison: Source - C,D");
    exportTo(QStringLiteral("x.htm"), 0);
    form.cmdExport_Click();
    EXPECT_TRUE(file("x.htm").ends_with(counts +
                                        "<br> Only first 1 different records are shown<br> "
                                        "Columns ignored during comparison: Source - "
                                        "C,D</b>\r\n"))
        << file("x.htm");
}

TEST_F(DifferencesWindow, SortsItsColumnsWithTheirCellsAndExportsThemSo) {
    form.mnuPopUpSortColumns_Click();
    EXPECT_EQ(form.VSFlexGrid1.backColor(1, 2), 255u);
    exportTo(QStringLiteral("x.csv"), 1);
    shell.yesNoAnswers = {true, false};
    form.cmdExport_Click();
    EXPECT_EQ(file("x.csv"), "\"Row\",\"A\",\"b\"\r\n\"1\",\"ay\",\"bee\"\r\n");
    EXPECT_TRUE(form.CSVWrapInQuot) << "kept for the process that records this export";
}

TEST_F(DifferencesWindow, ExportsByItselfForAProcess) {
    exportTo(QStringLiteral("unasked.csv"), 0);
    form.ExportFilePath = home.path(QStringLiteral("given.csv"));
    form.ExportType = ExportType::Csv;
    form.CSVWrapInQuot = form.IsReplay = true;
    form.Form_Activate();
    form.Form_Activate();
    EXPECT_EQ(file("given.csv"), "\"Row\",\"b\",\"A\"\r\n\"1\",\"bee\",\"ay\"\r\n");
    EXPECT_EQ(shell.takeLines().filter(QStringLiteral("screen ")).size(), 1);
    // A user's window doesn't.
    form.ExportType = ExportType::Ask;
    frmCompareData other;
    other.Form_Activate();
    EXPECT_EQ(shell.takeLines(), QStringList());
    form.cmdExit_Click();
    EXPECT_TRUE(form.isClosed());
}

}  // namespace
}  // namespace zov
