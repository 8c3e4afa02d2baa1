// Which lines stand beside each other after a comparison, and where F8 goes.
#include "shell/qt/pane_alignment.h"

#include "structcompare/modMarkDifferences.h"

#include <QString>

#include <gtest/gtest.h>

namespace zov {
namespace {

std::vector<quint32> colors(const char* marks) {
    std::vector<quint32> all;
    for (const char* mark = marks; *mark; ++mark)
        all.push_back(colorOfMark(*mark == '='   ? MarkNotChanged
                                  : *mark == '~' ? MarkChanged
                                  : *mark == '+' ? MarkInserted
                                  : *mark == '-' ? MarkDeleted
                                                 : MarkNone));
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
    };
    for (const auto& row : rows)
        EXPECT_EQ(stopsText(qt::PaneAlignment(colors(row.source), colors(row.target))), row.stops)
            << row.source << " " << row.target;
}

TEST(PaneAlignment, ALineFindsItsPartnerBehindInsertedAndDeletedLines) {
    const qt::PaneAlignment alignment(colors("=--==="), colors("==++=="));
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
