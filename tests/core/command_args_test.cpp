// The command line as switches with values, and what start-up makes of it.
#include "core/CCommandArgs.h"

#include "core/globals.h"
#include "core/mdlMain.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace zov {
namespace {

QString pairsOf(const QString& line, const QString& delim = QStringLiteral("/")) {
    CCommandArgs arguments;
    arguments.Delim = delim;
    arguments.TestString = line;
    arguments.Parse();
    QStringList pairs;
    for (int i = 1; i <= arguments.Count(); ++i) {
        pairs += arguments.Key(i) + u'=' + arguments.Value(i);
    }
    return pairs.join(u'|');
}

TEST(CommandArgs, SplitsIntoSwitchesWithValues) {
    struct Row {
        const char* line;
        const char* pairs;
    };
    const Row rows[] = {
        {"/RunSavedComp 12", "RunSavedComp=12"},
        {"/a /b 2", "a=a|b=2"},
        {"x /a 1", "a=1"},
        {"/a b/c", "a=b|c=c"},
        {"/a  two words ", "a=two words"},
        {"/ a b", "=a b"},
        {"//x", "=|x=x"},
        {"/", "="},
        {"/a\t1", "a\t1=a\t1"},
        {"no switch", ""},
        {"", ""},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(pairsOf(QString::fromLatin1(row.line)), QString::fromLatin1(row.pairs))
            << row.line;
    }
    EXPECT_EQ(pairsOf(QStringLiteral("-X1 a-x2"), QStringLiteral("-x")), u"1=a|2=2");
    EXPECT_EQ(pairsOf(QStringLiteral("/a 1"), QString()), u"");
}

TEST(CommandArgs, ItemsAreFoundByKeyInAnyCaseOrByIndex) {
    CCommandArgs arguments;
    arguments.Delim = QStringLiteral("/");
    arguments.TestString = QStringLiteral("/runsavedcomp 12 /x y /X z /7 seven");
    arguments.Parse();
    struct Row {
        const char* item;
        const char* value;
    };
    const Row rows[] = {{"RunSavedComp", "12"},
                        {"x", "y"},
                        {"none", ""},
                        {"1", "12"},
                        {"4", "seven"},
                        {"7", ""},  // a number is never a key
                        {"0", ""},
                        {"-1", ""},
                        {"5", ""},
                        {"", ""}};
    for (const Row& row : rows) {
        EXPECT_EQ(arguments.Item(QString::fromLatin1(row.item)), QString::fromLatin1(row.value))
            << row.item;
    }
}

TEST(CommandArgs, AnEmptyLineKeepsTheEarlierPairs) {
    CCommandArgs arguments;
    arguments.Delim = QStringLiteral("/");
    arguments.TestString = QStringLiteral("/a 1");
    arguments.Parse();
    arguments.TestString.clear();
    arguments.Parse();
    EXPECT_EQ(arguments.Count(), 1);
}

TEST(ParseCommandLine, SetsTheProcessToRun) {
    struct Row {
        const char* line;
        qint32 id;
    };
    const Row rows[] = {{"/RunSavedComp 12", 12},
                        {"/runsavedcomp 12abc", 12},
                        {"/RunSavedComp abc", 0},
                        {"/RunSavedComp", 0},
                        {"RunSavedComp 12", 0},
                        {"", 0},
                        {"/RunSavedComp 2.5", 2},
                        {"/RunSavedComp 3.5", 4},
                        {"/RunSavedComp 99999999999", 2147483647}};
    for (const Row& row : rows) {
        resetGlobals();
        ParseCommandLine(QString::fromLatin1(row.line));
        EXPECT_EQ(globals().glngSavedProcessId, row.id) << row.line;
    }
}

}  // namespace
}  // namespace zov
