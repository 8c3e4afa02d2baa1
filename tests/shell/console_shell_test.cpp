// What the command line's user sees of boxes, questions and progress.
#include "shell/console/console_shell.h"

#include "shell/screen.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

class Console : public ::testing::Test {
 protected:
    QString written;
    ConsoleShell shell{QStringLiteral("prog"), [this](const QString& text) { written += text; },
                       true};
    ConsoleShell quiet{QStringLiteral("prog"), [this](const QString& text) { written += text; },
                       false};
};

TEST_F(Console, BoxesAreLines) {
    shell.messageBox(QStringLiteral("Two\r\n\r\nparagraphs."), QStringLiteral("Title"),
                     BoxIcon::Information);
    EXPECT_EQ(written, u"prog: Title: Two\n  paragraphs.\n");
    EXPECT_EQ(shell.errorCount(), 0);
    shell.messageBox(QStringLiteral("bad"), QString(), BoxIcon::Exclamation);
    shell.messageBox(QStringLiteral("worse"), QString(), BoxIcon::Critical);
    shell.showError(QStringLiteral("worst\nTry this."));
    EXPECT_EQ(shell.errorCount(), 3);
    EXPECT_TRUE(
        written.endsWith(QStringLiteral("prog: bad\nprog: worse\nprog: worst\n  Try this.\n")));
}

TEST_F(Console, QuestionsAreAnsweredNo) {
    EXPECT_FALSE(shell.askYesNo(QStringLiteral("Sure?"), QString()));
    EXPECT_EQ(shell.askYesNoCancel(QStringLiteral("Save?"), QString()), BoxAnswer::No);
    EXPECT_EQ(written, u"prog: Sure? - answered No\nprog: Save? - answered No\n");
    EXPECT_EQ(shell.askSavePath({}, {}, {}), QString());
}

TEST_F(Console, ProgressIsWipedBeforeAMessage) {
    shell.showProgress(QStringLiteral("Comparing"));
    shell.messageBox(QStringLiteral("box"), QString(), BoxIcon::Information);
    EXPECT_EQ(written, u"\rComparing\r         \rprog: box\n");
    written.clear();
    shell.showProgress(QString(200, u'x'));
    EXPECT_EQ(written, u'\r' + QString(79, u'x'));
}

TEST_F(Console, WithoutATerminalThereIsNoProgress) {
    quiet.showProgress(QStringLiteral("Comparing"));
    quiet.clearProgress();
    EXPECT_EQ(written, QString());
}

TEST_F(Console, AScreenTellsItsTextOrNothing) {
    struct Told : Screen {
        QString text;
        QString screenName() const override { return QStringLiteral("frmX"); }
        QString caption() const override { return {}; }
        QString plainText() const override { return text; }
    } screen;
    shell.showModal(screen);
    EXPECT_EQ(written, QString());
    EXPECT_EQ(shell.errorCount(), 0);
    screen.text = QStringLiteral("It broke (error 5)");
    shell.showModal(screen);
    EXPECT_EQ(written, u"prog: It broke (error 5)\n");
    EXPECT_EQ(shell.errorCount(), 1);
}

}  // namespace
}  // namespace zov
