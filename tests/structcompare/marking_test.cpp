// The colours of compared lines.
#include "shell/memory_controls.h"
#include "structcompare/modMarkDifferences.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

// Marks of both sides as "10 20 / 10 30" for texts whose lines are parted by "|".
std::string marks(const QString& source, const QString& target,
                  ObjectType type = ObjectType::Procedure, size_t* paints = nullptr) {
    MemoryTextPane panes[2];
    panes[0].setText(QString(source).replace(u'|', QStringLiteral("\r\n")));
    panes[1].setText(QString(target).replace(u'|', QStringLiteral("\r\n")));
    bool error = true;
    const MarkedLines lines = Mark_Differences(panes[0], panes[1], error, type);
    EXPECT_FALSE(error);
    if (paints) *paints = panes[0].paints().size() + panes[1].paints().size();
    QStringList parts;
    for (const CompLine& line : lines.source) parts += QString::number(line.lngMark);
    parts += QStringLiteral("/");
    for (const CompLine& line : lines.target) parts += QString::number(line.lngMark);
    return parts.join(u' ').toStdString();
}

TEST(Marking, WalksWithAWindowOfTwentyLines) {
    const struct {
        const char* name;
        const char* source;
        const char* target;
        const char* marks;
    } rows[] = {
        {"insertion", "A|B|C", "A|X|B|C", "10 10 10 / 10 30 10 10"},
        {"deletion", "A|X|B", "A|B", "10 40 10 / 10 10"},
        {"change", "A|B|C", "A|Y|C", "10 20 10 / 10 20 10"},
        {"target is longer", "a", "a|b", "10 / 10 30"},
        {"source is longer", "a|b|c", "a", "10 40 40 / 10"},
        {"read as an insertion when it could be either", "A|B", "B|A", "10 40 / 30 10"},
        {"letter case is a change", "a", "A", "20 / 20"},
        {"blanks are a change", "a ", "a", "20 / 20"},
        {"equal texts have no marks", "a|b", "a|b", "/"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(marks(QString::fromLatin1(row.source), QString::fromLatin1(row.target)),
                  row.marks)
            << row.name;
}

TEST(Marking, ALineTwentyOneAheadIsOutOfSight) {
    QString far20 = QStringLiteral("x|").repeated(20) + u'S';
    QString far21 = QStringLiteral("x|").repeated(21) + u'S';
    EXPECT_EQ(marks(QStringLiteral("S"), far20).substr(0, 7), "10 / 30");
    EXPECT_EQ(marks(QStringLiteral("S"), far21).substr(0, 7), "20 / 20");
}

TEST(Marking, OneEmptyPaneIsMarkedButNotPainted) {
    size_t paints = 9;
    EXPECT_EQ(marks(QString(), QStringLiteral("a|b"), ObjectType::View, &paints), "/ 30 30");
    EXPECT_EQ(paints, 0u);
    EXPECT_EQ(marks(QStringLiteral("a"), QStringLiteral("b"), ObjectType::View, &paints),
              "20 / 20");
    EXPECT_EQ(paints, 2u);
}

TEST(Marking, ATablesLinesArePairedByTheirFirstWord) {
    const struct {
        const char* name;
        const char* source;
        const char* target;
        const char* marks;
    } rows[] = {
        {"moved column", "[a] [int] NULL|[b] [int] NULL", "[b] [int] NULL|[a] [int] NULL",
         "10 10 / 10 10"},
        {"letter case", "[a] [int] NULL", "[A] [INT] null", "10 / 10"},
        {"only the default differs", "[a] [int] NULL CONSTRAINT [x] DEFAULT ((0))",
         "[a] [int] NULL", "10 / 10"},
        {"type differs", "[a] [int] NULL", "[a] [bigint] NULL", "20 / 20"},
        {"only in one", "[a] [int] NULL", "[b] [int] NULL", "40 / 30"},
        {"the second index meets the first", "INDEX [i] ([a])|INDEX [j] ([b])",
         "INDEX [i] ([a])|INDEX [j] ([c])", "10 20 / 20 30"},
        {"a blank line between stays without verdict", "[a] [int] NULL||INDEX [i] ([a])",
         "[a] [int] NULL|[c] [int] NULL", "10 0 40 / 10 30"},
        {"names with a blank share their beginning", "[a b] [int] NULL", "[a c] [int] NULL",
         "20 / 20"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(marks(QString::fromLatin1(row.source), QString::fromLatin1(row.target),
                        ObjectType::Table),
                  row.marks)
            << row.name;
}

}  // namespace
}  // namespace zov
