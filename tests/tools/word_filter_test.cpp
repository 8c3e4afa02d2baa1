// Cutting a text into tokens, and the words that a search for references names.
#include "tools/CTokenizer.h"
#include "tools/modNonExistObjects.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

/// "token<separator>" of each, with a "q" in front of a quoted one.
std::string tokensOf(CTokenizer tokenizer, const char* text) {
    tokenizer.setText(QString::fromUtf8(text));
    QString all, token, separator;
    bool quoted = false;
    while (tokenizer.GetNextToken(token, separator, quoted)) {
        separator.replace(u'\r', QLatin1StringView("\\r")).replace(u'\n', QLatin1StringView("\\n"));
        all += (quoted ? QStringLiteral("q") : QString()) + token + u'<' + separator +
               QStringLiteral("> ");
    }
    EXPECT_TRUE(token.isEmpty());
    return all.trimmed().toStdString();
}

TEST(Tokenizer, EndsTokensAsItsCharactersSay) {
    CTokenizer plain;
    CTokenizer quotes;
    quotes.setQuoteChars(QStringLiteral("\"'"));
    quotes.setConvertCase(2);
    CTokenizer commas;
    commas.setSeparatorChars(QStringLiteral(","));
    CTokenizer upper;
    upper.setConvertCase(1);
    CTokenizer both;  // a character of two sets is that of the first
    both.setQuoteChars(QStringLiteral(" "));
    struct Case {
        const CTokenizer& tokenizer;
        const char* text;
        const char* tokens;
    };
    const std::vector<Case> cases = {
        {plain, "", ""},
        {plain, "a", ""},  // the one character is the last, which is never begun
        {plain, "abc", "abc<>"},
        {plain, "ab c", "ab<>"},
        {plain, "ab cd", "ab<> cd<>"},
        {plain, "ab \t  cd  ", "ab<> cd<>"},
        {plain, "  ", "<>"},
        {plain, "ab\r\n\r\ncd", "ab<\\r\\n\\r\\n> cd<>"},
        {plain, "ab \r\ncd", "ab<\\r\\n> cd<>"},
        {plain, "\r\nab", "<\\r\\n> ab<>"},
        {commas, "a,b", "a<,>"},
        {commas, "ab,,cd", "ab<,> <,> cd<>"},
        {commas, "ab ,cd", "ab<,> cd<>"},
        {upper, "aB é", "AB<>"},
        {quotes, "abc\"d\"", "qabc<\"> qd<>"},
        {quotes, "\"A b\" C d", "qA b<> c<>"},
        {quotes, "'A\"b' cd", "qA\"b<> cd<>"},
        {quotes, "\"A\"\"B\" ", "qA<\"> qB<>"},
        {quotes, "\"A b\r\ncd", "qA b<\\r\\n> cd<>"},
        {quotes, "\"A bc", "qA bc<>"},
        {both, "a b", "qa< > qb<>"},
    };
    for (const Case& c : cases) EXPECT_EQ(tokensOf(c.tokenizer, c.text), c.tokens) << c.text;
}

TEST(Tokenizer, GoesOnFromWhereItIs) {
    CTokenizer tokenizer;
    tokenizer.setText(QStringLiteral("one two"));
    QString token, separator;
    bool quoted = true;
    EXPECT_TRUE(tokenizer.GetNextToken(token, separator, quoted));
    EXPECT_FALSE(quoted);
    tokenizer.setText(QStringLiteral("three"));
    EXPECT_TRUE(tokenizer.GetNextToken(token, separator, quoted));
    EXPECT_EQ(token, u"three");
    EXPECT_EQ(tokenizer.Text(), u"three");
}

std::string found(ObjectType type, const char* text) {
    return FindRefToNonExistentObjects(type, QString::fromUtf8(text), {}).join(u' ').toStdString();
}

TEST(WordFilter, NamesWhatNothingAccountsFor) {
    using enum ObjectType;
    struct Case {
        ObjectType type;
        const char* text;
        const char* words;
    };
    const std::vector<Case> cases = {
        {View, "", ""},
        {View, "create view v select ab from cd", ""},
        {View, "create view v as select ab from cd ", "ab cd"},
        {View, "create view v as select a from b", "a"},  // a last word of one letter is lost
        {View, "create view v as select ab as cd, ab from [dbo].[T x] ", "ab cd ab dbo.t"},
        {View, "create view v as select 100, 1e5, -3, 1x from ab ", "1x ab"},
        {View, "create view v as select ab -- cd\r\n from /* ef */ gh ", "ab gh"},
        {View, "create view v as select 'one two', \"Three four\" from ab ",
         "'one two' Three four ab"},
        {View,
         "create view v as select unique uniquoe varchar int * / <> >= ", "unique varchar * / >="},
        {View, "create view v as select @x ", "@x"},
        {Procedure, "create procedure p @x int as select @x, @y from ab ", "ab"},
        {Procedure, "create procedure p as select @x from ab ", "@x ab"},
        {Function, "create function f(@x int) returns int as begin return @y end ", ""},
        {Trigger, "create trigger t on tt as set nocount on; select @x ", "on; @x"},
        {Procedure, "create procedure p @as int AS exec dbo ; ab ", "ab"},
    };
    for (const Case& c : cases) EXPECT_EQ(found(c.type, c.text), c.words) << c.text;
}

TEST(WordFilter, ObjectsThatAreHandedInArePassedOver) {
    ObjectListEntry entry;
    entry.Name = QStringLiteral("orders");
    const QString text = QStringLiteral("create view v as select ab from Orders ");
    EXPECT_EQ(FindRefToNonExistentObjects(ObjectType::View, text, {entry}).join(u' '), u"ab");
}

}  // namespace
}  // namespace zov
