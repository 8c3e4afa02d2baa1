// Which lines stand beside each other after a comparison, and where F8 goes.
#include "shell/qt/pane_alignment.h"

#include "structcompare/modMarkDifferences.h"

#include <QString>

#include <gtest/gtest.h>

namespace zov {
namespace {

/// One letter a line: "=" the same, "~" changed, "+" inserted, "-" deleted, "?" without a verdict;
/// empty lines are "_" without a verdict or the same, "i" inserted, "d" deleted.
std::vector<qt::PaneAlignment::Line> lines(const char* marks) {
    std::vector<qt::PaneAlignment::Line> all;
    for (const char* mark = marks; *mark; ++mark) {
        const bool isEmpty = *mark == '_' || *mark == 'i' || *mark == 'd';
        all.push_back({colorOfMark(*mark == '='                   ? MarkNotChanged
                                   : *mark == '~'                 ? MarkChanged
                                   : *mark == '+' || *mark == 'i' ? MarkInserted
                                   : *mark == '-' || *mark == 'd' ? MarkDeleted
                                                                  : MarkNone),
                       isEmpty});
    }
    return all;
}

std::string stopsText(const qt::PaneAlignment& alignment) {
    QStringList stops;
    for (const auto& stop : alignment.stops())
        stops += QStringLiteral("%1-%2/%3-%4")
                     .arg(stop.sourceLine)
                     .arg(stop.sourceEnd)
                     .arg(stop.targetLine)
                     .arg(stop.targetEnd);
    return stops.join(u' ').toStdString();
}

TEST(PaneAlignment, ARunOfDifferencesIsOneStopInBothPanes) {
    const struct {
        const char* source;
        const char* target;
        const char* stops;
    } rows[] = {
        {"", "", ""},
        {"===", "===", ""},
        {"=~=", "=~=", "1-2/1-2"},
        {"==", "=++=", "1-1/1-3"},
        {"=--=", "==", "1-3/1-1"},
        {"=--~=", "=+~=", "1-4/1-3"},
        {"=~==", "=~==++", "1-2/1-2 4-4/4-6"},
        {"--", "", "0-2/0-0"},
        {"", "+", "0-0/0-1"},
        // A blank line of a table has no verdict: it is no difference.
        {"=?=~", "=?=~", "3-4/3-4"},
        {"=?=", "==", ""},
        // Lines of a table may be paired across: every marked line is in some run.
        {"==~", "~==", "0-1/0-1 2-3/2-3"},
        // A table's empty line between columns and indexes is inserted by its mark.
        {"=_=", "=i=", ""},
        {"~_~", "~i~", "0-1/0-1 2-3/2-3"},
        // Empty lines alone are nothing to stop at, within other differences they are part of them.
        {"==", "=ii=", ""},
        {"=d=", "==", ""},
        {"==", "=+i+=", "1-1/1-4"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(stopsText(qt::PaneAlignment(lines(row.source), lines(row.target))), row.stops)
            << row.source << " " << row.target;
}

TEST(PaneAlignment, KnowsOfEmptyLinesThatDiffer) {
    EXPECT_TRUE(qt::PaneAlignment(lines("=="), lines("=i=")).hasEmptyDifferences());
    EXPECT_FALSE(qt::PaneAlignment(lines("=_="), lines("=i=")).hasEmptyDifferences());
    EXPECT_FALSE(qt::PaneAlignment(lines("=="), lines("=+i=")).hasEmptyDifferences());
}

TEST(PaneAlignment, ALineFindsItsPartnerBehindInsertedAndDeletedLines) {
    const qt::PaneAlignment alignment(lines("=--==="), lines("==++=="));
    const int sourceLines[] = {0, 1, 1, 1, 4, 5};
    for (int line = 0; line < 6; ++line)
        EXPECT_EQ(alignment.partnerOf(0, line), sourceLines[line]) << line;
    const int targetLines[] = {0, 3, 4, 4, 4, 5};
    for (int line = 0; line < 6; ++line)
        EXPECT_EQ(alignment.partnerOf(1, line), targetLines[line]) << line;
    EXPECT_EQ(alignment.partnerOf(0, 9), 9) << "behind the end";
    EXPECT_EQ(qt::PaneAlignment().partnerOf(0, 7), 7) << "nothing compared";
}

}  // namespace
}  // namespace zov
