// What is said of texts that look different and count as identical.
#include "structcompare/left_out.h"

#include "core/globals.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

TEST(LeftOut, NamesWhatMadeTheTextsTheSame) {
    const struct {
        const char* what;
        ObjectType type;
        const char* source;
        const char* target;
        bool whitespace, caseSensitive, colSeq;
        const char* phrases;
    } rows[] = {
        {"equal", ObjectType::Procedure, "a", "a", true, false, true, ""},
        {"blanks", ObjectType::Function, "a b", "a\r\n\tb", true, true, true, "white space"},
        {"case", ObjectType::Function, "SELECT 1", "select 1", true, false, true, "letter case"},
        {"both", ObjectType::Function, "SELECT  1", "select 1", true, false, true,
         "white space and letter case"},
        {"order", ObjectType::Table, "[a] int\r\n[b] int", "[b] int\r\n[a] int", true, true, true,
         "the order of the lines"},
        {"header", ObjectType::View, "CREATE VIEW dbo.V AS SELECT 1", "CREATE VIEW [V] AS SELECT 1",
         false, true, false, "how the view's first line writes its name"},
        {"header, blanks", ObjectType::View, "CREATE VIEW dbo.V AS SELECT 1",
         "CREATE VIEW [V] AS  SELECT 1", true, true, false,
         "how the view's first line writes its name and white space"},
        {"owner", ObjectType::Procedure, "CREATE PROCEDURE dbo.p AS", "CREATE PROCEDURE p AS", true,
         false, false, "the owner dbo, comments, white space and letter case"},
        {"owner alone", ObjectType::Procedure, "CREATE PROCEDURE dbo.p AS", "CREATE PROCEDURE p AS",
         false, true, false, "the owner dbo and comments"},
        {"columns", ObjectType::Table, "[a] int\r\n[b] int", "[a] int", true, true, true,
         "columns that are ignored"},
    };
    resetGlobals();
    for (const auto& row : rows) {
        globals().gblnIgnoreWhitespace = row.whitespace;
        globals().gblnCaseSensitive = row.caseSensitive;
        globals().gblnIgnoreColSeq = row.colSeq;
        globals().gblnIgnoreComments = true;
        EXPECT_EQ(joinedWithAnd(LeftOutOfAccount(row.type, QLatin1String(row.source),
                                                 QLatin1String(row.target)))
                      .toStdString(),
                  row.phrases)
            << row.what;
    }
    resetGlobals();
}

}  // namespace
}  // namespace zov
