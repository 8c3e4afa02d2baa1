// The text pane: offsets, what is read back, coloured lines as they are painted, finding.
#include "shell/qt/appearance.h"
#include "shell/qt/find_bar.h"
#include "shell/qt/mark_colors.h"
#include "shell/qt/text_find.h"
#include "shell/qt/text_pane_widget.h"
#include "shell_qt/desktop.h"
#include "structcompare/modMarkDifferences.h"

#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>

#include <gtest/gtest.h>

namespace zov {
namespace {

using qt::TextPaneWidget;

TEST(TextPane, LineBreaksOfAnyKindCountAsOneCharacter) {
    TextPaneWidget pane;
    const struct {
        const char* text;
        std::vector<int> starts;
    } rows[] = {
        {"", {}},
        {"a", {0}},
        {"a\r\nbc\r\n", {0, 2, 5}},
        {"a\rb\nc", {0, 2, 4}},
        {"\r\n\r\n", {0, 1, 2}},
    };
    for (const auto& row : rows) {
        pane.setText(QLatin1String(row.text));
        EXPECT_EQ(pane.text(), QLatin1String(row.text));
        ASSERT_EQ(pane.lineCount(), int(row.starts.size())) << row.text;
        for (int line = 0; line < pane.lineCount(); ++line)
            EXPECT_EQ(pane.lineStart(line), row.starts[size_t(line)]) << row.text;
        EXPECT_EQ(pane.lineStart(pane.lineCount()), -1);
        EXPECT_EQ(pane.lineStart(-1), -1);
    }
}

TEST(TextPane, CharactersThatADocumentWouldReplaceStay) {
    TextPaneWidget pane;
    const QString text = QStringLiteral("a\u00A0b \u2028 \U0001F600\ttab");
    pane.setText(text);
    EXPECT_EQ(pane.plainText(), text);
    EXPECT_EQ(pane.text(), text);
}

TEST(TextPane, ASelectionOverLinesHasTheLineBreaksOfTexts) {
    TextPaneWidget pane;
    pane.setText(QStringLiteral("one\r\ntwo\r\nthree"));
    QTextCursor cursor = pane.textCursor();
    cursor.setPosition(2);
    cursor.setPosition(9, QTextCursor::KeepAnchor);
    pane.setTextCursor(cursor);
    EXPECT_EQ(pane.selectedText(), QStringLiteral("e\r\ntwo\r\nt"));
}

TEST(TextPane, CannotBeTypedIn) {
    TextPaneWidget pane;
    pane.setText(QStringLiteral("SELECT 1"));
    pane.show();
    QTest::keyClicks(&pane, QStringLiteral("x"));
    QTest::keyClick(&pane, Qt::Key_Delete);
    EXPECT_EQ(pane.toPlainText(), QStringLiteral("SELECT 1"));
}

/// The background of a line beside its text, as it is painted.
QColor paintedColor(TextPaneWidget& pane, int line) {
    const QImage image = pane.viewport()->grab().toImage();
    const double scale = image.devicePixelRatio();
    const QRect block = pane.cursorRect(QTextCursor(pane.document()->findBlockByNumber(line)));
    return image.pixelColor(int((pane.viewport()->width() - 4) * scale),
                            int(block.center().y() * scale));
}

TEST(TextPane, MarkedLinesArePaintedOverTheirWholeWidth) {
    for (const qt::Appearance appearance : {qt::Appearance::Light, qt::Appearance::Dark}) {
        qt::applyAppearance(appearance);
        TextPaneWidget source, target;
        for (TextPaneWidget* pane : {&source, &target}) {
            pane->resize(400, 300);
            pane->show();
        }
        source.setText(QStringLiteral("same\r\nold\r\nsame too\r\ngone"));
        target.setText(QStringLiteral("same\r\nnew\r\nsame too"));
        bool error = false;
        Mark_Differences(source, target, error, ObjectType::Procedure);
        ASSERT_FALSE(error);
        const qint32 marks[] = {MarkNotChanged, MarkChanged, MarkNotChanged, MarkDeleted};
        for (int line = 0; line < 4; ++line) {
            EXPECT_EQ(source.lineColor(line), colorOfMark(marks[line]));
            EXPECT_EQ(paintedColor(source, line),
                      qt::shownMarkColor(colorOfMark(marks[line]), source.palette()))
                << "line " << line;
        }
        source.setText(QStringLiteral("another"));
        EXPECT_FALSE(source.hasMarks());
        EXPECT_EQ(paintedColor(source, 0), source.palette().color(QPalette::Base));
    }
    qt::applyAppearance(qt::Appearance::Light);
}

TEST(TextPane, TextStaysReadableOnEveryMarkInBothPalettes) {
    for (const qt::Appearance appearance : {qt::Appearance::Light, qt::Appearance::Dark}) {
        qt::applyAppearance(appearance);
        TextPaneWidget pane;
        pane.setText(QStringLiteral("SELECT [name], 'text', 42 FROM t -- comment"));
        pane.show();
        // Highlighting is done with the next events.
        QTest::qWait(20);
        const QTextBlock block = pane.document()->firstBlock();
        std::vector<QColor> shades = {pane.palette().color(QPalette::Text)};
        for (const QTextLayout::FormatRange& range : block.layout()->formats())
            shades.push_back(range.format.foreground().color());
        EXPECT_GE(shades.size(), 6U) << "nothing is highlighted";
        for (const qint32 mark :
             {MarkNone, MarkNotChanged, MarkChanged, MarkInserted, MarkDeleted}) {
            const QColor ground = qt::shownMarkColor(colorOfMark(mark), pane.palette());
            for (const QColor& shade : shades)
                EXPECT_GE(qt::contrastOf(shade, ground), 4.0)
                    << shade.name().toStdString() << " on " << ground.name().toStdString();
        }
    }
    qt::applyAppearance(qt::Appearance::Light);
}

TEST(TextPane, TheFindBarCountsAndGoesRoundTheText) {
    QWidget window;
    TextPaneWidget pane(&window);
    qt::FindBar bar(&pane, &window);
    window.show();
    pane.setText(QStringLiteral("select a\r\nSELECT b\r\nfrom c"));
    bar.open();
    auto* wanted = bar.findChild<QLineEdit*>(QStringLiteral("findText"));
    auto* found = bar.findChild<QLabel*>(QStringLiteral("findCount"));
    QTest::keyClicks(wanted, QStringLiteral("select"));
    EXPECT_EQ(found->text(), QStringLiteral("1 of 2"));
    EXPECT_EQ(pane.textCursor().selectionStart(), 0);
    QTest::keyClick(wanted, Qt::Key_Return);
    EXPECT_EQ(pane.textCursor().selectionStart(), 9);
    EXPECT_EQ(found->text(), QStringLiteral("2 of 2"));
    QTest::keyClick(wanted, Qt::Key_Return);
    EXPECT_EQ(pane.textCursor().selectionStart(), 0) << "back at the first";
    bar.findNext(false);
    EXPECT_EQ(pane.textCursor().selectionStart(), 9) << "and round the other way";
    QTest::keyClicks(wanted, QStringLiteral("x"));
    EXPECT_EQ(found->text(), QStringLiteral("not found"));
    EXPECT_TRUE(pane.extraSelections().isEmpty());
}

TEST(TextPane, FindingGoesByTheCaretAndCountsWhatItCannotMark) {
    TextPaneWidget pane;
    pane.setText(QStringLiteral("ab aab\r\n").repeated(3000));
    qt::TextFind find(&pane);
    find.search(QStringLiteral("AB"));
    EXPECT_EQ(find.count(), 6000);
    EXPECT_EQ(find.note(), QStringLiteral("6000 found"));
    pane.setCaret(4);
    find.goOn(true);
    EXPECT_EQ(find.note(), QStringLiteral("2 of 6000")) << "the place at the caret counts";
    find.goOn(false);
    find.goOn(false);
    EXPECT_EQ(find.note(), QStringLiteral("6000 of 6000")) << "around the start";
    find.search(QStringLiteral("b a"));
    EXPECT_EQ(find.count(), 3000);
    find.search(QStringLiteral("<b>"));
    find.goOn(true);
    EXPECT_EQ(find.note(), QStringLiteral("not found"));
    find.search({});
    EXPECT_EQ(find.note(), QString());
}

TEST(TextPane, ZoomTakesTheGutterAlong) {
    TextPaneWidget pane;
    pane.setText(QStringLiteral("SELECT 1"));
    const int width = pane.lineNumberWidth(), letter = pane.fontMetrics().height();
    pane.setZoom(8);
    EXPECT_GT(pane.fontMetrics().height(), letter);
    EXPECT_GT(pane.lineNumberWidth(), width);
    EXPECT_EQ(pane.viewport()->x() - pane.contentsRect().x(), pane.lineNumberWidth());
    pane.setZoom(0);
    EXPECT_EQ(pane.lineNumberWidth(), width);
}

TEST(TextPane, TheFindBarTakesTheSelectionAndClosesWithEsc) {
    QWidget window;
    TextPaneWidget pane(&window);
    qt::FindBar bar(&pane, &window);
    window.show();
    EXPECT_TRUE(test::activate(window));
    pane.setText(QStringLiteral("alpha beta alpha"));
    QTextCursor cursor = pane.textCursor();
    cursor.setPosition(5, QTextCursor::KeepAnchor);
    pane.setTextCursor(cursor);
    bar.open();
    auto* wanted = bar.findChild<QLineEdit*>(QStringLiteral("findText"));
    EXPECT_EQ(wanted->text(), QStringLiteral("alpha"));
    EXPECT_EQ(pane.extraSelections().size(), 2);
    QTest::keyClick(wanted, Qt::Key_Escape);
    EXPECT_FALSE(bar.isVisible());
    EXPECT_TRUE(pane.extraSelections().isEmpty());
}

}  // namespace
}  // namespace zov
