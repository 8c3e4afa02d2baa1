// How expressions of defaults, checks, computed columns and index filters read back.
#include "data_local/scripted_server.h"

#include "data/local/definitions.h"

#include <gtest/gtest.h>

namespace zov::local {
namespace {

struct Case {
    const char* written;
    const char* stored;
};

QString stored(const char* written, DefinitionForm form) {
    const QString text = QString::fromUtf8(written);
    const std::vector<Token> tokens = tokenize(text);
    return storedExpression(tokens, form);
}

TEST(StoredDefinitions, ReadBackInTheServersForm) {
    const Case cases[] = {
        {"0", "((0))"},
        {"(0)", "((0))"},
        {"((0))", "((0))"},
        {"-1", "((-1))"},
        {"- 1", "((-1))"},
        {"+5", "((5))"},
        {"007", "((7))"},
        {"1.50", "((1.50))"},
        {".5", "((0.5))"},
        {"3000000000", "((3000000000.))"},
        {"1e3", "((1.0000000000000000e+003))"},
        {"$9.99", "(($9.99))"},
        {"0x00FF", "(0x00FF)"},
        {"'x'", "('x')"},
        {"('it''s')", "('it''s')"},
        {"n'x'", "(N'x')"},
        {"NULL", "(NULL)"},
        {"GETDATE()", "(getdate())"},
        {"( getdate ( ) )", "(getdate())"},
        {"CURRENT_TIMESTAMP", "(getdate())"},
        {"SYSTEM_USER", "(suser_sname())"},
        {"user", "(user_name())"},
        {"NEXT VALUE FOR dbo.seq", "(NEXT VALUE FOR [dbo].[seq])"},
        {"UnitPrice >= 0", "([UnitPrice]>=(0))"},
        {"[Unit Price]!<0", "([Unit Price]>=(0))"},
        {"a != b", "([a]<>[b])"},
        {"a > 0 and (a <= 1)", "([a]>(0) AND [a]<=(1))"},
        {"a = 1 or b = 2 and c = 3", "([a]=(1) OR [b]=(2) AND [c]=(3))"},
        {"(a = 1 or b = 2) and c = 3", "(([a]=(1) OR [b]=(2)) AND [c]=(3))"},
        {"c in ('a', 'b', 'c')", "([c]='c' OR [c]='b' OR [c]='a')"},
        {"c in ('a')", "([c]='a')"},
        {"c in ('a','b') and d = 1", "(([c]='b' OR [c]='a') AND [d]=(1))"},
        {"c not in ('a', 'b')", "(NOT ([c]='b' OR [c]='a'))"},
        {"a between 1 and 10", "([a]>=(1) AND [a]<=(10))"},
        {"a not between 1 and 10", "([a]<(1) OR [a]>(10))"},
        {"zip LIKE '[0-9]%'", "([zip] like '[0-9]%')"},
        {"zip not like '!%' escape '!'", "(NOT [zip] like '!%' escape '!')"},
        {"a is null or b Is Not Null", "([a] IS NULL OR [b] IS NOT NULL)"},
        {"not (a = 1 or b = 2)", "(NOT ([a]=(1) OR [b]=(2)))"},
        {"not a = 1", "(NOT [a]=(1))"},
        {"a + b + c", "(([a]+[b])+[c])"},
        {"a + (b + c)", "([a]+([b]+[c]))"},
        {"a * (1.0 - b)", "([a]*((1.0)-[b]))"},
        {"a + b > 3", "(([a]+[b])>(3))"},
        {"-a", "(-[a])"},
        {"~a & 4", "(~[a]&(4))"},
        {"LEN(a) > 0", "(len([a])>(0))"},
        {"Upper(\"a b\")", "(upper([a b]))"},
        {"cast(a as decimal(10, 2))", "(CONVERT([decimal](10,2),[a]))"},
        {"CAST(a AS VARCHAR(MAX))", "(CONVERT([varchar](max),[a]))"},
        {"convert(varchar(10), d, 101)", "(CONVERT([varchar](10),[d],(101)))"},
        {"convert(integer, a)", "(CONVERT([int],[a]))"},
        {"DATEADD(DD, -18, getdate())", "(dateadd(day,(-18),getdate()))"},
        {"dbo.Tax(price, DEFAULT)", "([dbo].[Tax]([price],default))"},
        {"case when a > 0 then 'p' else 'n' end", "(case when [a]>(0) then 'p' else 'n' end)"},
        {"CASE a WHEN 1 THEN 2 END", "(case [a] when (1) then (2) end)"},
        {"iif(a = 1, 2, 3)", "(case when [a]=(1) then (2) else (3) end)"},
        {"a collate Latin1_General_BIN = 'x'", "([a] collate Latin1_General_BIN='x')"},
        {"[we]]ird] = 1", "([we]]ird]=(1))"},
        {"a /* why */ = -- because\n 1", "([a]=(1))"},
        // What the printer doesn't know keeps its words.
        {"exists (select 1 from t)", "(exists (select 1 from t))"},
        {"(x.value('a','int')) = 1 +", "((x.value('a','int')) = 1 +)"},
    };
    for (const Case& one : cases)
        EXPECT_EQ(stored(one.written, DefinitionForm::Current).toStdString(), one.stored)
            << one.written;
}

TEST(StoredDefinitions, AreTheSameWhenTheyAreStoredAgain) {
    for (const char* text : {"((0))", "([a]>=(0) AND [a]<=(9))", "(NOT [a] like 'x%')",
                             "(([a]+' ')+[b])", "(case when [a]=(1) then (2) else (3) end)",
                             "((3000000000.))", "(dateadd(day,(-18),getdate()))",
                             "(([a]=(1) OR [b]=(2)) AND [c]=(3))", "(NOT ([c]='b' OR [c]='a'))"})
        EXPECT_EQ(stored(text, DefinitionForm::Current).toStdString(), text);
}

TEST(StoredDefinitions, FiltersKeepTheirListsAndOldServersTheirWords) {
    EXPECT_EQ(stored("a IN (1,2) AND b IS NOT NULL", DefinitionForm::Filter),
              QStringLiteral("([a] IN ((1), (2)) AND [b] IS NOT NULL)"));
    const Case cases[] = {
        {"0", "(0)"},
        {"((0))", "(0)"},
        {"( a >  0 )", "(a >  0)"},
        {"(a) + (b)", "((a) + (b))"},
        {"'x'", "('x')"},
    };
    for (const Case& one : cases)
        EXPECT_EQ(stored(one.written, DefinitionForm::AsWritten).toStdString(), one.stored)
            << one.written;
}

}  // namespace
}  // namespace zov::local
