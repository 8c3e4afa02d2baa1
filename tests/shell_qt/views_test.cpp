// What is drawn by hand or by rules of its own: highlighting, two texts side by
// side, the palette.
#include "shell/qt/appearance.h"
#include "shell/qt/mark_colors.h"
#include "shell/qt/side_by_side_view.h"
#include "shell/qt/sql_highlighter.h"
#include "structcompare/modMarkDifferences.h"

#include <QApplication>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <gtest/gtest.h>

namespace zov {
namespace {

/// Each character's kind: k keyword, s string, c comment, n number, q quoted name, . none; lines
/// parted by "|".
QString kinds(const QString& text) {
    QTextDocument document;
    qt::SqlHighlighter highlighter(&document);
    document.setPlainText(text);
    highlighter.rehighlight();
    QStringList lines;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        QString line(block.length() - 1, u'.');
        for (const QTextLayout::FormatRange& range : block.layout()->formats()) {
            const QRgb color = range.format.foreground().color().rgb() & 0xFFFFFF;
            const QChar kind = color == 0x0029A0   ? u'k'
                               : color == 0x8F1010 ? u's'
                               : color == 0x11501A ? u'c'
                               : color == 0x5E2A80 ? u'n'
                                                   : u'q';
            for (int i = 0; i < range.length; ++i) line[range.start + i] = kind;
        }
        lines += line;
    }
    return lines.join(u'|');
}

TEST(Highlighting, TellsTheKindsOfTokensApart) {
    const struct {
        const char* text;
        const char* kinds;
    } rows[] = {
        {"SELECT a", "kkkkkk.."},
        {"selected", "........"},
        {"x 'a''b' y", "..ssssss.."},
        {"a -- b 'c'", "..cccccccc"},
        {"a /* b */ c", "..ccccccc.."},
        {"[from] from", "qqqqqq.kkkk"},
        {"a1 12.5", "...nnnn"},
        {"@select #table", ".............."},
        {"'open\nstill' x", "sssss|ssssss.."},
        {"/* open\nstill */ x", "ccccccc|cccccccc.."},
        {"'-- no' -- yes", "sssssss.cccccc"},
        {"[no 'string] 's'", "qqqqqqqqqqqq.sss"},
        {"[open", "qqqqq"},
        {"", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(kinds(QLatin1String(row.text)).toStdString(), row.kinds) << row.text;
}

TEST(SideBySide, CountsRunsAndGoesThroughThem) {
    qt::SideBySideView view;
    view.resize(500, 200);
    view.show();
    const QStringList source = {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"),
                                QStringLiteral("d")};
    const QStringList target = {QStringLiteral("a"), QStringLiteral("x"), QStringLiteral("c"),
                                QStringLiteral("d"), QStringLiteral("e")};
    view.setTexts(source, target, alignLines(source, target));
    EXPECT_EQ(view.differenceCount(), 2);
    EXPECT_TRUE(view.goToDifference(true));
    EXPECT_TRUE(view.goToDifference(true));
    EXPECT_FALSE(view.goToDifference(true));
    EXPECT_TRUE(view.goToDifference(false));
    EXPECT_FALSE(view.goToDifference(false));
    EXPECT_EQ(view.currentDifference(), 1);
    view.setTexts(source, source, alignLines(source, source));
    EXPECT_EQ(view.currentDifference(), 0);
    EXPECT_EQ(view.differenceCount(), 0);
    EXPECT_FALSE(view.goToDifference(true));
}

TEST(SideBySide, TheCurrentDifferenceIsSeen) {
    const QStringList source = {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")};
    const QStringList target = {QStringLiteral("a"), QStringLiteral("x"), QStringLiteral("c"),
                                QStringLiteral("d")};
    for (const qt::Appearance appearance : {qt::Appearance::Light, qt::Appearance::Dark}) {
        qt::applyAppearance(appearance);
        qt::SideBySideView view;
        view.resize(500, 200);
        view.show();
        view.setTexts(source, target, alignLines(source, target));
        const auto framed = [&](int row) {
            const QImage image = view.viewport()->grab().toImage();
            const double scale = image.devicePixelRatio();
            const int height = view.fontMetrics().lineSpacing() + 2;
            return image.pixelColor(int(scale), int((row + 0.5) * height * scale)) ==
                   view.palette().color(QPalette::Highlight);
        };
        EXPECT_FALSE(framed(1));
        view.goToDifference(true);
        EXPECT_TRUE(framed(1));
        view.goToDifference(true);
        EXPECT_FALSE(framed(1));
        EXPECT_TRUE(framed(3)) << "a row that only Target has";
    }
    qt::applyAppearance(qt::Appearance::Light);
}

TEST(SideBySide, LongTextsAreReachedByScrolling) {
    qt::SideBySideView view;
    view.resize(500, 200);
    view.show();
    QStringList lines;
    for (int i = 0; i < 5000; ++i) lines += QString(400, u'x');
    view.setTexts(lines, lines, alignLines(lines, lines));
    EXPECT_GT(view.verticalScrollBar()->maximum(), 4900);
    EXPECT_LT(view.verticalScrollBar()->maximum(), 5000);
    EXPECT_GT(view.horizontalScrollBar()->maximum(), 300);
    // Drawing costs what is seen.
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
    EXPECT_FALSE(view.grab().isNull());
}

TEST(MarkColors, TheFiveMarksStayApartInTheDarkPalette) {
    qt::applyAppearance(qt::Appearance::Dark);
    const QPalette palette = QApplication::palette();
    std::vector<QColor> shades;
    for (const qint32 mark : {MarkNone, MarkNotChanged, MarkChanged, MarkInserted, MarkDeleted})
        shades.push_back(qt::shownMarkColor(colorOfMark(mark), palette));
    for (size_t a = 0; a < shades.size(); ++a) {
        for (size_t b = a + 1; b < shades.size(); ++b) {
            const int distance = std::abs(shades[a].red() - shades[b].red()) +
                                 std::abs(shades[a].green() - shades[b].green()) +
                                 std::abs(shades[a].blue() - shades[b].blue());
            EXPECT_GT(distance, 40) << a << " and " << b;
        }
    }
    qt::applyAppearance(qt::Appearance::Light);
    EXPECT_EQ(qt::shownMarkColor(colorOfMark(MarkChanged), QApplication::palette()),
              QColor(0xC0, 0xFF, 0xC0));
    EXPECT_EQ(qt::shownMarkColor(colorOfMark(MarkInserted), QApplication::palette()),
              QColor(0x7A, 0xC3, 0xD9));
}

}  // namespace
}  // namespace zov
