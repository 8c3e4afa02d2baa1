// What a failure looks like to its user: the feedback screen, its address, the
// simple boxes.
#include "core/error_report.h"

#include "core/frmErrorReport.h"
#include "core/globals.h"
#include "support/recording_shell.h"
#include "support/temp_home.h"
#include "util/numbered_error.h"

#include <gtest/gtest.h>

#include <QFileInfo>

namespace zov {
namespace {

class ErrorReport : public ::testing::Test {
 protected:
    test::RecordingShell recorder;

    void playUser(const std::function<void(frmErrorReport&)>& user) {
        recorder.onScreen = [user](Screen& screen) { user(dynamic_cast<frmErrorReport&>(screen)); };
    }
};

TEST_F(ErrorReport, ShowsTheFactsInItsText) {
    struct Row {
        const char* description;
        const char* extra;
        const char* text;
    };
    const Row rows[] = {
        {"Login failed.", "", "1.1 187 Error -5 (mdlData:GetAdoRS)\r\n\r\nLogin failed."},
        {"100% %1", "Line: %2",
         "1.1 187 Error -5 (mdlData:GetAdoRS)\r\n\r\n100% %1\r\n\r\nLine: %2"},
        {"", "", "1.1 187 Error -5 (mdlData:GetAdoRS)\r\n\r\n"},
    };
    for (const Row& row : rows) {
        QString shown;
        playUser([&](frmErrorReport& screen) {
            shown = screen.txtErrDesc;
            EXPECT_EQ(screen.caption(), u"An error occurred in Zovrand");
            EXPECT_EQ(screen.lblTitle, u"Voluntary Feedback - Please Help Us");
            EXPECT_EQ(screen.lblIntro.count(QStringLiteral("\r\n")), 6);
            screen.cmdCancel();
            EXPECT_TRUE(screen.isClosed());
        });
        ShowErrorReport(-5, QString::fromLatin1(row.description), ProgramVersionText(),
                        ProgramBuildNumber, QStringLiteral("mdlData"), QStringLiteral("GetAdoRS"),
                        QString::fromLatin1(row.extra));
        EXPECT_EQ(shown, QString::fromLatin1(row.text));
    }
    EXPECT_EQ(recorder.lines.filter(QStringLiteral("open ")), QStringList());
}

TEST_F(ErrorReport, SendsBlanksAsPlusAndNothingElseEscaped) {
    playUser([](frmErrorReport& screen) {
        screen.txtComments = QStringLiteral("I did this & that");
        screen.txtEmail = QStringLiteral("a b@c");
        screen.cmdSend();
        screen.cmdSend();  // a double click
        EXPECT_TRUE(screen.isClosed());
    });
    ShowErrorReport(7, QStringLiteral("Bad #1 & more"), QStringLiteral("1.1"), 187,
                    QStringLiteral("m M"), QStringLiteral("p"), QStringLiteral("x y"));
    EXPECT_EQ(
        recorder.lines,
        (QStringList{
            QStringLiteral("screen frmErrorReport"),
            QStringLiteral("open https://zovrand.example/error.php?ErrNum=7&ErrDesc=Bad+#1+&+more"
                           "&ProgVer=1.1&BuildNum=187&ModuleName=m M&ProcName=p"
                           "&Comments=I+did+this+&+that&Email=a+b@c&ExtraDesc=x y")}));
}

TEST_F(ErrorReport, EmptyCommentsSendEmptyValues) {
    playUser([](frmErrorReport& screen) { screen.cmdSend(); });
    ShowErrorReport(123456, QStringLiteral("Test Error"), QStringLiteral("1.1"), 187,
                    QStringLiteral("frmMain"), QStringLiteral("ID_DEBUG_ERROR_REPORT"), {});
    EXPECT_EQ(recorder.lines.last(),
              u"open https://zovrand.example/error.php?ErrNum=123456&ErrDesc=Test+Error&ProgVer=1.1"
              "&BuildNum=187&ModuleName=frmMain&ProcName=ID_DEBUG_ERROR_REPORT&Comments=&Email=&"
              "ExtraDesc=");
}

TEST_F(ErrorReport, AnEscapingExceptionIsReportedUnderItsNames) {
    struct Row {
        const char* name;
        std::function<void()> thrower;
        const char* line;
    };
    const Row rows[] = {
        {"numbered", [] { throw NumberedError(qint32(0x80004005), QStringLiteral("gone")); },
         "gone (error -2147467259 in mdlX:DoIt; step 3)"},
        {"memory", [] { throw std::bad_alloc(); }, "Out of memory (error 7 in mdlX:DoIt; step 3)"},
        {"standard", [] { throw std::runtime_error("odd"); },
         "odd (error 51 in mdlX:DoIt; step 3)"},
        {"anything", [] { throw 5; }, "Internal error (error 51 in mdlX:DoIt; step 3)"},
    };
    for (const Row& row : rows) {
        QString line;
        playUser([&](frmErrorReport& screen) { line = screen.plainText(); });
        const int result = guarded(
            "mdlX", "DoIt", -1,
            [&] {
                row.thrower();
                return 0;
            },
            [] { return QStringLiteral("step 3"); });
        EXPECT_EQ(result, -1) << row.name;
        EXPECT_EQ(line, QString::fromLatin1(row.line)) << row.name;
    }
    EXPECT_EQ(guarded("m", "p", -1, [] { return 4; }), 4);
}

TEST_F(ErrorReport, SimpleRoutinesShowABox) {
    try {
        throw NumberedError(76, QStringLiteral("Path not found"));
    } catch (...) {
        showCaughtErrorInSub("CopyToFile");
        showCaughtErrorTitled("Parse");
    }
    EXPECT_EQ(
        recorder.lines,
        (QStringList{
            QStringLiteral("exclamation: Error in Sub CopyToFile, error nr 76 (Path not found)."),
            QStringLiteral("exclamation [Parse]: Error: 76. Path not found")}));
}

TEST(Log, IsNeverWrittenAndDeletedQuietly) {
    test::TempHome home;
    globals().gstrAppPath = home.path() + u'/';
    globals().gblnDebugMode = true;
    LogWrite(QStringLiteral("Begin LoadServer, p_Serv.strName = x"));
    const QString log = home.path(QStringLiteral("ErrorLog.txt"));
    EXPECT_FALSE(QFileInfo::exists(log));
    home.write(QStringLiteral("ErrorLog.txt"), "old");
    DeleteLogFile();
    EXPECT_FALSE(QFileInfo::exists(log));
    DeleteLogFile();
}

}  // namespace
}  // namespace zov
