// Two texts side by side, the meaning of the colours, and a pane's text on its way
// to the clipboard.
#include "shell/memory_controls.h"
#include "structcompare/frmCompareText.h"
#include "structcompare/frmSpare.h"
#include "structcompare/modMarkDifferences.h"
#include "support/recording_shell.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

TEST(ColorScreen, ShowsTheFiveMarksInOrder) {
    test::RecordingShell shell;
    shell.onScreen = [](Screen& screen) {
        auto& colors = dynamic_cast<frmColorSchema&>(screen);
        EXPECT_EQ(colors.caption(), u"Color Schema");
        EXPECT_EQ(colors.lblInfo,
                  u"Following colors are used to mark differences in structure of compared "
                  u"objects.");
        colors.cmdClose();
        EXPECT_TRUE(colors.isClosed());
    };
    frmColorSchema().ShowUp();
    QStringList lines;
    for (const frmColorSchema::Swatch& swatch : frmColorSchema::swatches())
        lines += QString::number(swatch.color, 16).toUpper().rightJustified(6, u'0') + u' ' +
                 swatch.caption;
    EXPECT_EQ(lines.join(u'\n').toStdString(),
              "D9C37A Inserted (exists only in target)\n"
              "C0C0FF Deleted (exists only in source)\n"
              "C0FFC0 Changed\n"
              "FFFFFF Not Changed\n"
              "00FFFF ");
    EXPECT_EQ(colorOfMark(50), 0u);
    EXPECT_EQ(colorOfMark(-1), 0u);
}

TEST(SideBySide, AlignsWhateverTheLineBreaks) {
    test::RecordingShell shell;
    const struct {
        const char* source;
        const char* target;
        const char* shown;
    } rows[] = {
        {"a\r\nb\r\nc", "a\nc", "  a\n- b\n  c\n"},
        {"a", "a", "  a\n"},
        {"", "a", "- \n+ a\n"},
        {"a\rb", "a\r\nx\r\nb", "  a\n+ x\n  b\n"},
    };
    for (const auto& row : rows) {
        shell.onScreen = [&](Screen& screen) {
            auto& texts = dynamic_cast<frmCompareText&>(screen);
            EXPECT_EQ(texts.caption(), u"Comparison of Selected Objects");
            EXPECT_EQ(texts.lblSource + texts.lblTarget, u"S.DT.D");
            EXPECT_EQ(texts.plainText().replace(QStringLiteral("\r\n"), QStringLiteral("\n")),
                      QString::fromLatin1(row.shown));
            texts.cmdClose();
        };
        frmCompareText().ShowUp(QStringLiteral("S.D"), QString::fromLatin1(row.source),
                                QStringLiteral("T.D"), QString::fromLatin1(row.target));
    }
    EXPECT_EQ(shell.lines.size(), 4);
}

TEST(PaneText, GoesToTheClipboardWithABreakBehindEachLine) {
    test::RecordingShell shell;
    MemoryTextPane pane;
    for (const char* text : {"a\r\nb", "a\nb", "a\rb"}) {
        pane.setText(QString::fromLatin1(text));
        TxText_CopyToClipboard(pane);
        EXPECT_EQ(shell.clipboard, u"a\r\nb\r\n");
    }
    pane.setText({});
    TxText_CopyToClipboard(pane);
    EXPECT_EQ(shell.clipboard, u"a\r\nb\r\n");
    EXPECT_EQ(shell.lines.size(), 3);
}

TEST(CommentStripping, IsShownOnItsTestScreen) {
    test::RecordingShell shell;
    shell.onScreen = [](Screen& screen) {
        auto& spare = dynamic_cast<frmSpare&>(screen);
        EXPECT_EQ(spare.txtSource, u"SELECT 1 -- one");
        spare.cmdStrip_Click();
        EXPECT_EQ(screen.plainText(), u"SELECT 1 ");
    };
    frmSpare().ShowUp(QStringLiteral("SELECT 1 -- one"));
}

TEST(ColumnLines, LoseConstraintAndDefaultForTheMarks) {
    const struct {
        const char* line;
        const char* stripped;
    } rows[] = {
        {"[A] [INT] NULL", "[A] [INT] NULL"},
        {"[A] [INT] NULL CONSTRAINT [X] DEFAULT (1)", "[A] [INT] NULL"},
        {"[A] [INT] NULL DEFAULT (1)", "[A] [INT] NULL"},
        {"[A] [INT] DEFAULT (1) CONSTRAINT [X]", "[A] [INT]"},
        {"CONSTRAINT [X]", "CONSTRAINT [X]"},
        {"DEFAULT", "DEFAULT"},
        {"  [A] [INT] ", "[A] [INT]"},
        {"[CONSTRAINTS] [INT] NULL", "["},
        {"", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(StripExtraColInfo(QString::fromLatin1(row.line)).toStdString(), row.stripped);
}

}  // namespace
}  // namespace zov
