// The detailed list: two texts by line position, with its oddities at both ends.
#include "structcompare/line_differences.h"
#include "core/globals.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

TEST(LineDifferences, LinesAreListedByPosition) {
    struct Row {
        const char* name;
        QString source, target, result;  // with "|" for CR LF
        bool ignoreWhitespace = true, caseSensitive = true;
    };
    const Row rows[] = {
        {"equal", "a|b", "a|b", ""},
        {"a line in the middle", "a|b|c", "a|x|c",
         "Differences in Source:| b||Differences in Target:| x||"},
        {"white space that counts keeps the line feed", "a|b|c", "a|x|c",
         "Differences in Source:|\nb||Differences in Target:|\nx||", false},
        {"the first line", "a|b", "x|b", "Differences in Source:|a||Differences in Target:|x||"},
        {"white space only", "a  b", "a b", "Differences in Target:||"},
        {"white space only, and it counts", "a  b", "a b",
         "Differences in Source:|a  b||Differences in Target:|a b||", false},
        {"a comma only", "a,|b", "a|b", "Differences in Target:||"},
        {"a line break at the end only", "a|b|", "a|b", "Differences in Target:||"},
        {"target is longer", "a", "a|b|c", "Differences in Target:|b|c||"},
        {"source is longer", "a|b|c", "a", "Differences in Source:|b|c||"},
        {"source is longer, with a pair that differs", "a|b|c", "x|b",
         "Differences in Source:|a|c|||Differences in Target:|x|"},
        {"target is longer, with a pair that differs", "a|b", "x|b|c",
         "Differences in Source:|a||Differences in Target:|x|c||"},
        {"letter case that doesn't count", "a|b", "A|c",
         "Differences in Source:| B||Differences in Target:| C||", true, false},
        {"a break in the very first place isn't seen", "|a", "x|a",
         "Differences in Source:| a||Differences in Target:|x|a||"},
        {"source is empty: the first character of target is lost", "", "abc",
         "Differences in Target:|bc||"},
        {"target is empty: the first character of source is lost", "abc", "",
         "Differences in Source:|bc||"},
        {"line feeds alone part no lines", "a\nb", "a\nc",
         "Differences in Source:|a b||Differences in Target:|a c||"},
    };
    for (const Row& row : rows) {
        resetGlobals();
        globals().gblnIgnoreWhitespace = row.ignoreWhitespace;
        globals().gblnCaseSensitive = row.caseSensitive;
        QString source = row.source, target = row.target, result = QStringLiteral("left over");
        source.replace(u'|', QStringLiteral("\r\n"));
        target.replace(u'|', QStringLiteral("\r\n"));
        ListLineDifferences(source, target, result);
        result.replace(QStringLiteral("\r\n"), QStringLiteral("|"));
        EXPECT_EQ(result.toStdString(), row.result.toStdString()) << row.name;
    }
    resetGlobals();
}

TEST(LineDifferences, OneCommaAtTheEndDoesNotCount) {
    struct Row {
        QString a, b;
        bool same;
    };
    const Row rows[] = {{"a", "a", true},    {"a,", "a", true},    {" a ,", "a", true},
                        {"a,", " a,", true}, {"a, ", "a", false},  {"a,,", "a", false},
                        {"a", "b", false},   {"a,,", "a,", false}, {",", "", true}};
    for (const Row& row : rows) {
        EXPECT_EQ(AreLinesEqualIgnoringComma(row.a, row.b), row.same) << row.a.toStdString();
        EXPECT_EQ(AreLinesEqualIgnoringComma(row.b, row.a), row.same) << row.b.toStdString();
    }
}

}  // namespace
}  // namespace zov
