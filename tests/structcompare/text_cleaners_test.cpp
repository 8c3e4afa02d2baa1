// White space, comments and words of two texts: named rows, then random texts
// against the literal reading of the routines.
#include "core/globals.h"
#include "literal_reference.h"
#include "structcompare/modCompareObjects.h"

#include <gtest/gtest.h>

#include <random>

namespace zov {
namespace {

class TextCleaners : public ::testing::Test {
 protected:
    void SetUp() override { resetGlobals(); }

    /// A text of a few of these pieces.
    QString randomText(const QStringList& pieces, int most) {
        QString text;
        for (int count = int(random_() % uint(most + 1)); count > 0; --count)
            text += pieces[qsizetype(random_() % uint(pieces.size()))];
        return text;
    }
    std::mt19937 random_{20240611};
};

std::string shown(const QString& text) {
    QString result = text;
    result.replace(u'\r', QStringLiteral("\\r")).replace(u'\n', QStringLiteral("\\n"));
    result.replace(u'\t', QStringLiteral("\\t"));
    return result.toStdString();
}

TEST_F(TextCleaners, WhiteSpaceIsFoldedBeforeTextsAreCompared) {
    struct Row {
        const char* name;
        QString a, b;
        bool caseSensitive, same;
    };
    const Row rows[] = {
        {"runs of blanks", "a  b", "a b", true, true},
        {"a blank against none", "a b", "ab", true, false},
        {"a line break for a blank", "a\r\nb", "a b", true, true},
        {"tabs, vertical tabs and NUL", QString::fromUtf16(u"a\t\v\0b", 5), "a b", true, true},
        {"a form feed is a letter", "a\fb", "a b", true, false},
        {"blanks at the ends", "  a ", "a", true, true},
        {"a line break in front stays as one blank", "\r\na", "a", true, false},
        {"line breaks in front on both sides", "\r\n\r\na", "\na", true, true},
        {"a line break behind", "a\r\n", "a", true, false},
        {"letter case that counts", "select 1", "SELECT 1", true, false},
        {"letter case that doesn't", "select  1", "SELECT 1", false, true},
        {"both empty", "", "  ", true, true},
        {"one empty", "", "a", true, false},
        {"as many words, one differs", "a b c", "a x c", true, false},
        {"a word more", "a b", "a b c", true, false},
        {"sharp s keeps its length", "straße", "STRASSE", false, false},
    };
    for (const Row& row : rows) {
        globals().gblnCaseSensitive = row.caseSensitive;
        EXPECT_EQ(CompareProcs_IgnoreWhiteSpace(row.a, row.b), row.same) << row.name;
        EXPECT_EQ(CompareProcs_IgnoreWhiteSpace(row.b, row.a), row.same) << row.name << ", swapped";
    }
}

TEST_F(TextCleaners, NonPrintableCharactersAreReplaced) {
    struct Row {
        QString text, replacement, result;
    };
    const Row rows[] = {
        {"a\r\n\tb", " ", "a b"}, {"\r\na", " ", " a"},  {"a \n", " ", "a "},
        {"a\r\nb", ".", "a..b"},  {"a \rb", ".", "a b"}, {"", " ", ""},
        {"a\r \rb", ".", "a. b"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(ReplaceNonPrintableChars(row.text, row.replacement), row.result)
            << shown(row.text);
}

TEST_F(TextCleaners, WordsAreCountedFromOneAndMayBeEmpty) {
    const QString text = QStringLiteral("one  three");
    const QString blank = QStringLiteral(" ");
    EXPECT_EQ(GetDelimitedWord_Extended(text, 1, blank), "one");
    EXPECT_EQ(GetDelimitedWord_Extended(text, 2, blank), "");
    EXPECT_EQ(GetDelimitedWord_Extended(text, 3, blank), "three");
    EXPECT_EQ(GetDelimitedWord_Extended(text, 4, blank), "");
    EXPECT_EQ(GetDelimitedWord_Extended("a--b--c", 2, "--"), "b");
}

TEST_F(TextCleaners, CommentsAreStripped) {
    struct Row {
        const char* name;
        QString text, result;
    };
    const Row rows[] = {
        {"empty", "", ""},
        {"dashes within a name", "[a--b] int -- c\nd", "[a--b] int \nd"},
        {"a comment's signs within names", "\"/*\" x [*/] /* y */", "\"/*\" x [*/] "},
        {"a bracket within a literal opens no name", "LIKE '[' -- x]", "LIKE '[' "},
        {"no comment: line ends stay", "a\r\nb\nc", "a\r\nb\nc"},
        {"line comment at the end", "SELECT 1 -- x", "SELECT 1 "},
        {"the line end's line feed stays", "SELECT 1 -- x\nGO", "SELECT 1 \nGO"},
        {"CR LF becomes CR CR LF", "a -- x\r\nb\r\nc", "a \nb\r\r\nc"},
        {"a comment line takes the line feed in front", "a\n-- x\nb", "a\r\nb"},
        {"a comment as the first line", "--x\nb", "\nb"},
        {"dashes in a literal start a comment", "SELECT '--', a\nb", "SELECT '\nb"},
        {"block comment within a line", "a /* x */ b", "a  b"},
        {"block comment at the start of a line", "a\n/* x */ b", "a\r b"},
        {"block comment first", "/* x */ b", " b"},
        {"over lines", "a /* x\ny\n*/ b\nc", "a  b\r\nc"},
        {"nested ones end at the first end", "a /* x /* y */ z */ b", "a  z */ b"},
        {"dashes within a block go with it", "a /* -- */ b", "a  b"},
        {"a block opened behind dashes goes first", "a -- /* x\n b */ c\nd", "a \nd"},
        {"the star of the opener ends it", "a /*/ b", "a  b"},
        {"not closed: the front comes twice", "ab/*c", "abb/*c"},
        {"not closed, from the start", "/*c", "*c"},
        {"not closed, one letter in front", "x/*c", "x/*c"},
        {"not closed, behind one that is", "ab/*c*/d/*e", "abdbd/*e"},
        {"only an end", "a */ b", "a */ b"},
        {"three dashes", "a ---x\nb", "a \nb"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(shown(StripCommentsFromProc(row.text)), shown(row.result)) << row.name;
}

TEST_F(TextCleaners, AnUnclosedCommentCannotFillTheMemory) {
    const QString opener = QStringLiteral("/* ");
    const QString stripped = StripCommentsFromProc(QStringLiteral("ab ") + opener.repeated(60));
    EXPECT_LE(stripped.size(), 32 * 1024 * 1024);
    EXPECT_TRUE(stripped.endsWith(opener.repeated(60)));
}

TEST_F(TextCleaners, StrippingRandomTextsAgreesWithTheLiteralRounds) {
    const QStringList pieces = {"/*", "*/",   "--", "-", "/",  "*",  "\r",
                                "\n", "\r\n", " ",  "a", "bc", "\n", "--"};
    for (int i = 0; i < 60000; ++i) {
        // Few openers that aren't closed: each doubles the text.
        const QString text = randomText(pieces, i % 24);
        if (literal::occurrences(text, "/*") > 8) continue;
        ASSERT_EQ(shown(StripCommentsFromProc(text)), shown(literal::stripComments(text)))
            << shown(text);
    }
}

TEST_F(TextCleaners, ComparingRandomTextsAgreesWithTheWordLoop) {
    const QStringList pieces = {" ", "  ", "\r\n", "\t", "\n", "a", "A", "b", "ab", "\v"};
    int same = 0;
    for (int i = 0; i < 60000; ++i) {
        const QString a = randomText(pieces, 5);
        const QString b = randomText(pieces, 5);
        globals().gblnCaseSensitive = i % 2 == 0;
        const bool expected = literal::ignoreWhiteSpace(a, b, globals().gblnCaseSensitive);
        same += expected;
        ASSERT_EQ(CompareProcs_IgnoreWhiteSpace(a, b), expected) << shown(a) << " | " << shown(b);
        ASSERT_EQ(ReplaceNonPrintableChars(a, " "), literal::replaceNonPrintable(a, " "));
        ASSERT_EQ(ReplaceNonPrintableChars(a, "_"), literal::replaceNonPrintable(a, "_"));
    }
    EXPECT_GT(same, 1000);
}

}  // namespace
}  // namespace zov
