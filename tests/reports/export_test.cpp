// The files that exports write, and what their user is asked and told.
#include "reports/frmExport.h"
#include "support/full_disk.h"
#include "support/recording_shell.h"
#include "support/temp_home.h"
#include "support/text_grid.h"

#include <QDate>

namespace zov {
namespace {

class Export : public ::testing::Test {
 protected:
    Export() {
        source.grid = &grid;
        source.caption = QStringLiteral("Differences between data in tables 'A' and '<B>'");
        source.lblTableName[0] = QStringLiteral("Source Table: A");
        source.lblTableName[1] = QStringLiteral("Target Table: <B>");
    }
    /// Plays the user: presses OK with this choice.
    frmExport::Result press(int optGen, const frmExport::Request& request = {}) {
        shell.onScreen = [optGen](Screen& screen) {
            auto& form = dynamic_cast<frmExport&>(screen);
            form.Form_Activate();
            if (form.isClosed()) return;
            form.optGen = optGen;
            form.cmdOK_Click();
            EXPECT_TRUE(form.isClosed());
        };
        return frmExport().ShowUp(source, request);
    }
    frmExport::Request to(const QString& name, qint32 type) {
        frmExport::Request request;
        request.Path = home.path(name);
        request.ExportType = type;
        return request;
    }
    std::string told() {
        QString all = shell.takeLines().join(u'\n');
        return all.replace(home.path(), QStringLiteral("HOME")).toStdString();
    }
    std::string file(const char* name) {
        return home.read(QString::fromLatin1(name)).toStdString();
    }

    test::TempHome home;
    test::RecordingShell shell;
    test::TextGrid grid{"Row|Id|Name", "1| 7 |a<b & c", "1|7|S\u00e3o"};
    ExportSource source;
};

TEST_F(Export, OfDifferencesToHtmlKeepsTheColoursOfTheScreen) {
    grid.backColors = {{{1, 1}, 0xFFFF00}, {{1, 2}, 0xFFFF00}, {{2, 1}, 0x80FFFF}, {{2, 2}, 255}};
    grid.foreColors = {{{1, 2}, 255}, {{2, 2}, 0x010203}};
    const char* stats[] = {"Number of records in  in Source Table:", "T:", "D:", "1,000", "2", "3"};
    for (int i = 0; i < 6; ++i) source.lblStats[i] = QString::fromLatin1(stats[i]);
    source.heldBackCount = 3;
    source.heldBackNote = QStringLiteral("Only first 1 different records are shown");
    shell.yesNoAnswers = {true};
    const frmExport::Result result = press(1, to(QStringLiteral("x.htm"), ExportType::Html));
    EXPECT_TRUE(result.Success);
    EXPECT_EQ(result.Type, ExportType::Html);
    EXPECT_EQ(file("x.htm"),
              "<HTML><HEAD><TITLE>Data Differences </TITLE></HEAD>\r\n"
              "<BODY BGCOLOR = \"FFFFFF\">\r\n"
              "<p align='center'><b> Differences between data in tables 'A' and '&lt;B&gt;'</b><p> "
              "Source Table: A<br> Target Table: &lt;B&gt;<p>\r\n"
              "<TABLE BGCOLOR = \"000000\" WIDTH = \"100%\">\r\n"
              "<TR>\r\n"
              "<TD BGCOLOR = CCCCC><B>&nbsp Row &nbsp</B></TD>\r\n"
              "<TD BGCOLOR = CCCCC><B>&nbsp Id &nbsp</B></TD>\r\n"
              "<TD BGCOLOR = CCCCC><B>&nbsp Name &nbsp</B></TD>\r\n"
              "</TR>\r\n"
              "<TR>\r\n"
              "<TD BGCOLOR = CCCCC><FONT COLOR = 000000>&nbsp 1 &nbsp</TD>\r\n"
              "<TD BGCOLOR = 00FFFF><FONT COLOR = 000000>&nbsp 7 &nbsp</TD>\r\n"
              "<TD BGCOLOR = 00FFFF><FONT COLOR = FF0000>&nbsp a&lt;b &amp; c &nbsp</TD>\r\n"
              "</TR>\r\n"
              "<TR>\r\n"
              "<TD BGCOLOR = CCCCC><FONT COLOR = 000000>&nbsp 1 &nbsp</TD>\r\n"
              "<TD BGCOLOR = FFFF80><FONT COLOR = 000000>&nbsp 7 &nbsp</TD>\r\n"
              "<TD BGCOLOR = FF0000><FONT COLOR = 030201>&nbsp S&#227;o &nbsp</TD>\r\n"
              "</TR>\r\n"
              "</TABLE></BODY></HTML>\r\n"
              "<p align='center'><b> Number of records in  in Source Table: 1,000<br> T: 2<br> D: 3"
              "<br> Only first 1 different records are shown</b>\r\n");
    EXPECT_EQ(told(),
              "screen frmExport\n"
              "yes/no [HTML Code Generated]: HTML code was generated and saved in "
              "file\\n\\n'HOME/x.htm'\\n\\nDo you want to view that file in your browser "
              "now?\\n -> yes\n"
              "open HOME/x.htm");
    EXPECT_EQ(shell.waitDepth, 0);
}

// Letters that take two units, also where the cell ends behind them or within them.
TEST_F(Export, OfLettersBeyondTheBasicPlaneToHtmlGivesOneReferenceEach) {
    const QString smile = QStringLiteral("\U0001F600");
    const struct {
        QString cell;
        const char* shown;
    } table[] = {
        {smile, "&#128512;"},
        {u'a' + smile, "a&#128512;"},
        {smile + smile, "&#128512;&#128512;"},
        {smile + u'<', "&#128512;&lt;"},
        {QStringLiteral("\u0416\u4E2D"), "&#1046;&#20013;"},
        {u'a' + smile.left(1), "a&#65533;"},
        {smile.mid(1) + u'a', "&#65533;a"},
    };
    for (const auto& row : table) {
        grid.rows = {{QStringLiteral("Row"), QStringLiteral("A")}, {QStringLiteral("1"), row.cell}};
        press(0, to(QStringLiteral("x.htm"), ExportType::Html));
        EXPECT_NE(file("x.htm").find("&nbsp " + std::string(row.shown) + " &nbsp</TD>\r\n</TR>"),
                  std::string::npos)
            << row.shown << '\n'
            << file("x.htm");
    }
}

TEST_F(Export, OfATableColoursEverySecondRowAndSaysHowFarItIs) {
    source.mode = ExportMode::TableData;
    source.lblStats[0] = QStringLiteral("Number of records: 2,000");
    grid.alternate = 0xFFFF00;
    const auto heading = [&] { return file("x.htm").substr(0, 330); };
    press(0, to(QStringLiteral("x.htm"), ExportType::Html));
    EXPECT_NE(heading().find("<br> <p>"), std::string::npos) << heading();
    EXPECT_NE(file("x.htm").find("<TD BGCOLOR = FFFFFF><FONT COLOR = 000000>&nbsp a&lt;b"),
              std::string::npos);
    EXPECT_NE(file("x.htm").find("<TD BGCOLOR = 00FFFF><FONT COLOR = 000000>&nbsp S"),
              std::string::npos);
    EXPECT_TRUE(file("x.htm").ends_with("</TABLE></BODY></HTML>\r\n"));
    source.lblCurRec = QStringLiteral("1,234");
    source.lblCurRecVisible = true;
    press(0, to(QStringLiteral("x.htm"), ExportType::Html));
    EXPECT_NE(
        heading().find("A<br> Number of records: 2,000<br> Number of records loaded: 1233<p>"),
        std::string::npos)
        << heading();
}

TEST_F(Export, ToCsvTrimsWrapsAndEscapesNothing) {
    grid.rows = {{QStringLiteral("Row"), QStringLiteral("A"), QStringLiteral("B")},
                 {QStringLiteral("1"), QStringLiteral("  x,y \t"), QStringLiteral("say \"hi\"")}};
    const auto csv = [&](bool wrap) {
        frmExport::Request request = to(QStringLiteral("x.csv"), ExportType::Csv);
        request.Wrap = wrap;
        request.AutoClose = request.Replay = true;
        EXPECT_TRUE(press(0, request).Success);
        EXPECT_EQ(told(), "screen frmExport");
        return file("x.csv");
    };
    EXPECT_EQ(csv(false), "Row,A,B\r\n1,x,y \t,say \"hi\"\r\n");
    EXPECT_EQ(csv(true), "\"Row\",\"A\",\"B\"\r\n\"1\",\"x,y \t\",\"say \"hi\"\"\r\n");
    grid.rows[1][1] = QStringLiteral("\u0416");
    EXPECT_EQ(csv(false), "\xEF\xBB\xBFRow,A,B\r\n1,\xD0\x96,say \"hi\"\r\n");
    grid.rows.resize(1);
    EXPECT_EQ(csv(false), "Row,A,B\r\n");
}

// Whoever can write into a table must not be able to run a formula in somebody's spreadsheet.
TEST_F(Export, CsvThatIsSafeForSpreadsheetsRunsNothing) {
    grid.rows = {{QStringLiteral("Row"), QStringLiteral("=Head"), QStringLiteral("Count")},
                 {QStringLiteral("1"), QStringLiteral("=1+1"), QStringLiteral("-5")},
                 {QStringLiteral("2"), QStringLiteral("  +1 "), QStringLiteral("5")},
                 {QStringLiteral("3"), QStringLiteral("-5"), QStringLiteral("Null")},
                 {QStringLiteral("4"), QStringLiteral("@SUM(A1)"), QStringLiteral("-0.5")},
                 {QStringLiteral("5"), QStringLiteral("\t=1"), QStringLiteral("1")},
                 {QStringLiteral("6"), QStringLiteral("\r=1"), QStringLiteral("1")},
                 {QStringLiteral("7"), QStringLiteral("say \"=1\""), QStringLiteral("1")},
                 {QStringLiteral("8"), QStringLiteral("=\"a,b\""), QStringLiteral("1")},
                 {QStringLiteral("9"), QString(), QStringLiteral("1")}};
    grid.numbers = {2};
    ExportRun run;
    run.safeForSpreadsheets = true;
    ASSERT_EQ(writeGridCsv(source, home.path(QStringLiteral("safe.csv")), false, run),
              ExportEnd::Written);
    EXPECT_EQ(file("safe.csv"),
              "\"Row\",\"'=Head\",\"Count\"\r\n"
              "\"1\",\"'=1+1\",\"-5\"\r\n"
              "\"2\",\"'+1\",\"5\"\r\n"
              "\"3\",\"'-5\",\"Null\"\r\n"
              "\"4\",\"'@SUM(A1)\",\"-0.5\"\r\n"
              "\"5\",\"'\t=1\",\"1\"\r\n"
              "\"6\",\"'\r=1\",\"1\"\r\n"
              "\"7\",\"say \"\"=1\"\"\",\"1\"\r\n"
              "\"8\",\"'=\"\"a,b\"\"\",\"1\"\r\n"
              "\"9\",\"\",\"1\"\r\n");
    // A report knows no types: what reads as a number is one.
    GridReport report;
    report.columns.resize(2);
    report.records.resize(1);
    report.records[0].resize(2);
    report.records[0][0].value = QStringLiteral("-5");
    report.records[0][1].value = QStringLiteral("-5+A1");
    source.report = &report;
    ASSERT_EQ(writeReportCsv(source, home.path(QStringLiteral("safe.csv")), false, run),
              ExportEnd::Written);
    EXPECT_EQ(file("safe.csv"), "\"-5\",\"'-5+A1\"\r\n");
    // The box of the screen, which spares the question about quotation marks.
    shell.savePaths = {home.path(QStringLiteral("box.csv"))};
    shell.onScreen = [](Screen& screen) {
        auto& form = dynamic_cast<frmExport&>(screen);
        form.optGen = 1;
        form.chkCsvSafe = true;
        form.cmdOK_Click();
    };
    frmExport::Request request;
    EXPECT_TRUE(frmExport().ShowUp(source, request).Wrap);
    EXPECT_TRUE(file("box.csv").starts_with("\"Row\",\"'=Head\"")) << file("box.csv");
    EXPECT_EQ(told().find("Do you want to wrap"), std::string::npos);
}

TEST_F(Export, AsksForThePathAndForQuotationMarks) {
    const std::string day = QDate::currentDate().toString(QStringLiteral("yyyyMMdd")).toStdString();
    const std::string proposed = "HOME/documents/" + day;
    EXPECT_FALSE(press(0).Success);
    EXPECT_EQ(told(),
              "screen frmExport\n"
              "save [Save (H)yper (T)est (M)arkup (L)anguage Export File] Export Files "
              "(*.htm)|*.htm | " +
                  proposed +
                  ".htm -> \n"
                  "information [HTML Export File]: The export operation was cancelled.\\n");
    EXPECT_FALSE(press(1).Success);
    EXPECT_EQ(told(),
              "screen frmExport\n"
              "save [Save Excel - (C)omma (S)eparated (V)alues Export File] Export Files "
              "(*.csv)|*.csv | " +
                  proposed +
                  ".csv -> \n"
                  "information [Comma Delimited Export File]: The export operation was "
                  "cancelled.\\n");
    shell.savePaths = {home.path(QStringLiteral("mine.csv"))};
    shell.yesNoAnswers = {true, false};
    const frmExport::Result result = press(1);
    EXPECT_TRUE(result.Success && result.Wrap);
    EXPECT_EQ(result.Path, home.path(QStringLiteral("mine.csv")));
    const std::string asked = told();
    EXPECT_NE(
        asked.find("yes/no [Comma Delimited File]: Data which has commas in it is split into "
                   "separate pieces in comma separated values file.\\n\\nTo prevent that, the "
                   "program can wrap up data into quotation marks.\\n\\nIf your data doesn't "
                   "have commas, adding quotation marks is not needed.\\n\\n\\nDo you want to "
                   "wrap up data in quotation marks? -> yes"),
        std::string::npos)
        << asked;
    EXPECT_TRUE(
        asked.ends_with("yes/no [Comma Delimited File Generated]: Data was successfully "
                        "exported to file\\n\\n'HOME/mine.csv'\\n\\nDo you want to view "
                        "that file now?\\n -> no"))
        << asked;
}

TEST_F(Export, GivesANameItsEnding) {
    const QString typed = home.path(QStringLiteral("typed"));
    shell.savePaths = {typed};
    EXPECT_EQ(press(0).Path, typed + QStringLiteral(".htm"));
    told();
    shell.savePaths = {typed};
    EXPECT_FALSE(press(0).Success) << "not over an older file unasked";
    EXPECT_NE(
        told().find("yes/no: HOME/typed.htm already exists.\\nDo you want to replace it? -> no"),
        std::string::npos);
    EXPECT_FALSE(QFile::exists(typed));
}

TEST_F(Export, ThatIsCancelledKeepsTheRowsSoFar) {
    for (int i = 0; i < 1000; ++i) grid.rows.push_back(grid.rows[1]);
    for (const int optGen : {0, 1}) {
        const QString path = home.path(QStringLiteral("x.txt"));
        shell.savePaths = {path};
        frmExport* shown = nullptr;
        shell.onScreen = [&](Screen& screen) {
            shown = dynamic_cast<frmExport*>(&screen);
            shown->optGen = optGen;
            shown->cmdOK_Click();
        };
        shell.onPump = [&] {
            if (shown->lblProgress() == u"5 of 1,002") shown->cmdCancel_Click();
        };
        const frmExport::Result result = frmExport().ShowUp(source, {});
        EXPECT_FALSE(result.Success);
        EXPECT_FALSE(globals().gblnStop) << "the next comparison would be stopped too";
        EXPECT_TRUE(told().ends_with("information: Operation cancelled by user."));
        const std::string text = file("x.txt");
        EXPECT_EQ(text.find("</TABLE>"), std::string::npos);
        const std::string rowEnd = optGen == 0 ? "</TR>" : "\r\n";
        int rows = 0;
        for (size_t at = 0; (at = text.find(rowEnd, at)) != std::string::npos; ++at) ++rows;
        EXPECT_EQ(rows, 5) << "the header and four rows";
    }
}

TEST_F(Export, ThatCannotBeWrittenLeavesTheOldFile) {
    for (int i = 0; i < 40000; ++i) grid.rows.push_back(grid.rows[1]);
    for (const qint32 type : {ExportType::Html, ExportType::Csv}) {
        home.write(QStringLiteral("old"), "yesterday's");
        {
            const test::FullDisk full(100'000);
            EXPECT_FALSE(press(0, to(QStringLiteral("old"), type)).Success);
        }
        EXPECT_EQ(file("old"), "yesterday's");
        EXPECT_EQ(told(),
                  "screen frmExport\n"
                  "exclamation: Cannot write HOME/old: File too large.\\n\\nNothing was "
                  "exported. An older file of this name is as it was.");
        QDir().mkpath(home.path(QStringLiteral("folder")));
        EXPECT_FALSE(press(0, to(QStringLiteral("folder"), type)).Success);
        EXPECT_TRUE(told().find("Cannot write HOME/folder") != std::string::npos);
    }
    EXPECT_EQ(QDir(home.path()).entryList(QDir::Files), QStringList{QStringLiteral("old")});
}

TEST_F(Export, OfAReportLeavesPictureRowsOut) {
    GridReport report;
    report.columns.resize(3);
    report.columns[0].caption = QStringLiteral(" Name ");
    report.columns[1].caption = QStringLiteral("Type");
    report.columns[2].caption = QStringLiteral("Values");
    report.records.resize(2, std::vector<GridReportItem>(3));
    report.records[0][0].value = QStringLiteral("Id");
    report.records[0][1].value = QStringLiteral("int");
    report.records[0][2].value = QStringLiteral("7");
    report.records[1][0].value = QStringLiteral("Photo");
    report.records[1][1].value = QStringLiteral("image");
    report.records[1][2].value = QStringLiteral("0xFF");
    source.mode = ExportMode::DataAnalysis;
    source.grid = nullptr;
    source.report = &report;
    source.caption = QStringLiteral("Analyzer");
    frmExport::Request request = to(QStringLiteral("x.csv"), ExportType::Csv);
    request.AutoClose = true;
    press(0, request);
    EXPECT_EQ(file("x.csv"), "Id,int,7\r\nPhoto,image,\r\n");
    EXPECT_NE(told().find("Comma Delimited File Generated"), std::string::npos);
    press(0, to(QStringLiteral("x.htm"), ExportType::Html));
    EXPECT_EQ(file("x.htm"),
              "<HTML><HEAD><TITLE>Data Differences  </TITLE></HEAD>\r\n"
              "<BODY BGCOLOR = \"FFFFFF\">\r\n"
              "<p align='center'><b> Analyzer</b><p> \r\n"
              "<TABLE BGCOLOR = \"000000\" WIDTH = \"100%\">\r\n"
              "<TR>\r\n"
              "<TD BGCOLOR = CCCCC><B>&nbsp Name &nbsp</B></TD>\r\n"
              "<TD BGCOLOR = CCCCC><B>&nbsp Type &nbsp</B></TD>\r\n"
              "<TD BGCOLOR = CCCCC><B>&nbsp Values &nbsp</B></TD>\r\n"
              "</TR>\r\n"
              "<TR>\r\n"
              "<TD BGCOLOR = CCCCC><FONT COLOR = 000000>&nbsp Id &nbsp</TD>\r\n"
              "<TD BGCOLOR = FFFFFF><FONT COLOR = 000000>&nbsp int &nbsp</TD>\r\n"
              "<TD BGCOLOR = FFFFFF><FONT COLOR = 000000>&nbsp 7 &nbsp</TD>\r\n"
              "</TR>\r\n"
              "<TR>\r\n"
              "<TD BGCOLOR = CCCCC><FONT COLOR = 000000>&nbsp Photo &nbsp</TD>\r\n"
              "<TD BGCOLOR = FFFFFF><FONT COLOR = 000000>&nbsp image &nbsp</TD>\r\n"
              "<TD BGCOLOR = FFFFFF><FONT COLOR = 000000>&nbsp  &nbsp</TD>\r\n"
              "</TR>\r\n"
              "</TABLE></BODY></HTML>\r\n");
    source.mode = 4;
    EXPECT_FALSE(press(0).Success);
    EXPECT_TRUE(told().ends_with("Error in cmdOK_Click, wrong value of mlngMode"));
}

TEST(RgbToHtml, PutsRedFirst) {
    EXPECT_EQ(RgbToHtml(255), u"FF0000");
    EXPECT_EQ(RgbToHtml(0xFFFF00), u"00FFFF");
    EXPECT_EQ(RgbToHtml(0x0A), u"0A0000");
    EXPECT_EQ(RgbToHtml(0), u"000000");
}

}  // namespace
}  // namespace zov
