// Comparing lines whatever their order. Lines that differ in letter case only
// show where the exchange sort leaves them, so its order is checked against the sort itself.
#include "core/globals.h"
#include "literal_reference.h"
#include "shell/memory_controls.h"
#include "structcompare/modIgnoreColumnsOrder.h"
#include "structcompare/modSortTypeArrays.h"

#include <gtest/gtest.h>

#include <random>

namespace zov {
namespace {

/// Lines of these texts; lngStart numbers them, so that equal ones can be told apart.
std::vector<CompLine> linesOf(const QStringList& texts) {
    std::vector<CompLine> lines;
    for (const QString& text : texts) lines.push_back({text, 0, qint32(lines.size()), 0});
    return lines;
}

std::string shown(const std::vector<CompLine>& lines) {
    QStringList texts;
    for (const CompLine& line : lines) texts += line.strText + QString::number(line.lngStart);
    return texts.join(u' ').toStdString();
}

TEST(LineOrder, EqualLinesStandWhereTheExchangeSortLeavesThem) {
    std::mt19937 random(7);
    const QStringList words = {"a", "A", "b", "B", "c", "C", "ab", "aB", "Ab", "AB", "", "Ä", "ä"};
    for (int i = 0; i < 20000; ++i) {
        QStringList texts;
        const uint different = 1 + random() % uint(words.size());
        for (int count = i % 30; count > 0; --count) texts += words[random() % different];
        std::vector<CompLine> expected = linesOf(texts);
        std::vector<CompLine> sorted = expected;
        const bool ascending = i % 3 != 0;
        const bool ignoreCase = i % 5 != 0;
        literal::sortArray(expected, ascending, ignoreCase);
        SortArray_CompLine(sorted, ascending, ignoreCase);
        ASSERT_EQ(shown(sorted), shown(expected)) << texts.join(u' ').toStdString();
    }
}

TEST(LineOrder, LongRingsOfEqualLinesTurnAsInTheExchangeSort) {
    std::mt19937 random(11);
    for (int i = 0; i < 20; ++i) {
        QStringList texts;
        for (int line = 0; line < 400; ++line)
            texts += QString(QChar(char16_t(u'a' + random() % 3)));
        std::vector<CompLine> expected = linesOf(texts);
        std::vector<CompLine> sorted = expected;
        literal::sortArray(expected, true, true);
        SortArray_CompLine(sorted, true, true);
        ASSERT_EQ(shown(sorted), shown(expected));
    }
}

TEST(LineOrder, TextsSortByCodeUnits) {
    // U+1D11E is above U+FF61 as a letter and below it as a pair of code units.
    const QString clef = QString::fromUcs4(U"\U0001D11E");
    std::vector<CompLine> lines = linesOf({QString(QChar(0xFF61)), clef, "b", "A"});
    SortArray_CompLine(lines, true, false);
    EXPECT_EQ(lines[0].strText, "A");
    EXPECT_EQ(lines[1].strText, "b");
    EXPECT_EQ(lines[2].strText, clef);
}

TEST(LineOrder, PanesWithTheSameLinesPass) {
    struct Row {
        const char* name;
        QString source, target;
        bool same;
    };
    const Row rows[] = {
        {"other order", "a\r\nb\r\nc", "c\r\na\r\nb", true},
        {"other line ends", "a\r\nb", "b\na", true},
        {"an empty line more", "a\r\nb\r\n", "a\r\nb", false},
        {"an empty line elsewhere", "a\r\n\r\nb", "b\r\na\r\n", true},
        {"a blank more", "a\r\nb ", "a\r\nb", false},
        {"letter case counts", "a\r\nb", "A\r\nb", false},
        {"as often", "a\r\na\r\nb", "a\r\nb\r\nb", false},
        {"both empty", "", "", true},
        {"one empty", "", "a", false},
        // Two lines: the first greatest goes in front, then the order turns once.
        {"x and X in the same order", "x\r\nX", "x\r\nX", true},
        {"x and X swapped", "x\r\nX", "X\r\nx", false},
        // With a smaller line behind, the ring of x and X turns once more on one side only.
        {"x and X swapped, a third line elsewhere", "x\r\nX\r\na", "a\r\nx\r\nX", false},
        {"x and X in the same order, a third line elsewhere", "x\r\nX\r\na", "a\r\nX\r\nx", true},
    };
    resetGlobals();
    for (const Row& row : rows) {
        MemoryTextPane source, target;
        source.setText(row.source);
        target.setText(row.target);
        EXPECT_EQ(CompareProcs_IgnoreColumnsOrder(source, target), row.same) << row.name;
        globals().gblnCaseSensitive = !globals().gblnCaseSensitive;
        EXPECT_EQ(CompareProcs_IgnoreColumnsOrder(source, target), row.same) << row.name;
    }
}

TEST(LineOrder, LinesHaveTheirOffsets) {
    MemoryTextPane pane;
    pane.setText(QStringLiteral("ab\r\n\r\nc"));
    std::vector<CompLine> lines;
    bool error = true;
    ASSERT_EQ(TXText_ConvTextToArray(pane, lines, error), 3);
    EXPECT_FALSE(error);
    EXPECT_EQ(lines[0].strText, "ab");
    EXPECT_EQ(lines[1].strText, "");
    EXPECT_EQ(lines[2].strText, "c");
    EXPECT_EQ(lines[0].lngStart, 0);
    EXPECT_EQ(lines[0].lngEnd, 2);
    EXPECT_EQ(lines[1].lngStart, 3);
    EXPECT_EQ(lines[1].lngEnd, 3);
    EXPECT_EQ(lines[2].lngEnd, 5);
    pane.setText(QString());
    EXPECT_EQ(TXText_ConvTextToArray(pane, lines, error), 0);
    EXPECT_FALSE(error);
    EXPECT_TRUE(lines.empty());
}

}  // namespace
}  // namespace zov
