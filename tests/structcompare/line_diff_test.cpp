// The minimal line difference behind the side-by-side view.
#include "structcompare/line_diff.h"

#include <gtest/gtest.h>

#include <random>

namespace zov {
namespace {

std::string printed(const char* source, const char* target) {
    const QStringList a = QString::fromLatin1(source).split(u' ', Qt::SkipEmptyParts);
    const QStringList b = QString::fromLatin1(target).split(u' ', Qt::SkipEmptyParts);
    QStringList rows;
    for (const AlignedRow& row : alignLines(a, b))
        rows += (row.source < 0 ? QStringLiteral("-") : a[row.source]) + (row.equal ? u'=' : u'|') +
                (row.target < 0 ? QStringLiteral("-") : b[row.target]);
    return rows.join(u' ').toStdString();
}

TEST(LineDiff, AlignsWithTheFewestEdits) {
    EXPECT_EQ(printed("", ""), "");
    EXPECT_EQ(printed("a b c", "a b c"), "a=a b=b c=c");
    EXPECT_EQ(printed("a b c", "a x b c"), "a=a -|x b=b c=c");
    EXPECT_EQ(printed("a x b c", "a b c"), "a=a x|- b=b c=c");
    EXPECT_EQ(printed("a b c", "a y c"), "a=a b|y c=c");
    EXPECT_EQ(printed("a b", ""), "a|- b|-");
    EXPECT_EQ(printed("", "a b"), "-|a -|b");
    EXPECT_EQ(printed("a b d e", "x b c d"), "a|x b=b -|c d=d e|-");
}

// The number of lines kept equal is that of the longest common subsequence, and every line comes
// once and in order.
TEST(LineDiff, KeepsAsManyLinesAsAnyDiffCan) {
    std::mt19937 random(7);
    for (int round = 0; round < 400; ++round) {
        QStringList a, b;
        for (unsigned i = random() % 14; i > 0; --i) a += QString(QChar(u'a' + int(random() % 4)));
        for (unsigned i = random() % 14; i > 0; --i) b += QString(QChar(u'a' + int(random() % 4)));
        std::vector<std::vector<int>> lcs(size_t(a.size()) + 1,
                                          std::vector<int>(size_t(b.size()) + 1, 0));
        for (qsizetype i = a.size(); i-- > 0;)
            for (qsizetype j = b.size(); j-- > 0;)
                lcs[size_t(i)][size_t(j)] = a[i] == b[j] ? lcs[size_t(i) + 1][size_t(j) + 1] + 1
                                                         : std::max(lcs[size_t(i) + 1][size_t(j)],
                                                                    lcs[size_t(i)][size_t(j) + 1]);
        int equal = 0, nextSource = 0, nextTarget = 0;
        for (const AlignedRow& row : alignLines(a, b)) {
            if (row.source >= 0) {
                ASSERT_EQ(row.source, nextSource++);
            }
            if (row.target >= 0) {
                ASSERT_EQ(row.target, nextTarget++);
            }
            if (!row.equal) continue;
            ++equal;
            ASSERT_EQ(a[row.source], b[row.target]);
        }
        ASSERT_EQ(nextSource, a.size());
        ASSERT_EQ(nextTarget, b.size());
        ASSERT_EQ(equal, lcs[0][0])
            << a.join(u' ').toStdString() << " / " << b.join(u' ').toStdString();
    }
}

TEST(LineDiff, AReplacedLineStandsBesideTheOneItBecame) {
    const struct {
        const char* what;
        QStringList source, target;
        const char* rows;
    } tables[] = {
        {"a column went, the next one grew",
         {QStringLiteral("[Fax] [Phone] NULL"), QStringLiteral("[Email] [varchar] (120) NULL")},
         {QStringLiteral("[Email] [varchar] (254) NULL")},
         "0|- 1|0"},
        {"a column came before one that grew",
         {QStringLiteral("[Email] [varchar] (120) NULL")},
         {QStringLiteral("[Born] [date]"), QStringLiteral("[Email] [varchar] (254) NULL")},
         "-|0 0|1"},
        {"nothing in common: as they come",
         {QStringLiteral("a b c"), QStringLiteral("d")},
         {QStringLiteral("x y z")},
         "0|0 1|-"},
        {"brackets and blanks are nothing in common",
         {QStringLiteral("[a] (1)"), QStringLiteral("[b] (2)")},
         {QStringLiteral("[b] (3)")},
         "0|- 1|0"},
    };
    for (const auto& table : tables) {
        QStringList rows;
        for (const AlignedRow& row : alignLines(table.source, table.target))
            rows += (row.source < 0 ? QStringLiteral("-") : QString::number(row.source)) + u'|' +
                    (row.target < 0 ? QStringLiteral("-") : QString::number(row.target));
        EXPECT_EQ(rows.join(u' ').toStdString(), table.rows) << table.what;
    }
}

TEST(LineDiff, TellsTheWordsThatChanged) {
    const ChangedWords changed = changedWords(QStringLiteral("[Name] [varchar] (50) NULL"),
                                              QStringLiteral("[Name] [varchar] (80) NOT NULL"));
    ASSERT_EQ(changed.source.size(), 1u);
    EXPECT_EQ(changed.source[0].start, 18);
    EXPECT_EQ(changed.source[0].length, 2);
    ASSERT_EQ(changed.target.size(), 3u);
    EXPECT_EQ(changed.target[0].start, 18);
}

}  // namespace
}  // namespace zov
