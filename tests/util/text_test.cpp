// Numbers out of texts, trimming, cutting at dots, display formats.
#include "util/text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zov {
namespace {

TEST(Val, TakesTheLongestLeadingNumber) {
    struct Row {
        const char* text;
        double number;
    };
    const Row rows[] = {
        {"12", 12},        {"12abc", 12},       {"abc", 0},   {"", 0},
        {"  7 apples", 7}, {"\t\n3", 3},        {"-4x", -4},  {"+5", 5},
        {"1.5.2", 1.5},    {".5", 0.5},         {"5.", 5},    {".", 0},
        {"-", 0},          {"1e3", 1000},       {"1e", 1},    {"1e+", 1},
        {"2E-1z", 0.2},    {"9.00.1399.06", 9}, {"1,234", 1}, {"--1", 0},
    };
    for (const Row& row : rows) {
        EXPECT_DOUBLE_EQ(Val(QString::fromLatin1(row.text)), row.number) << row.text;
    }
}

TEST(RoundToInt32, RoundsHalvesToEvenAndStopsAtTheRangesEnds) {
    struct Row {
        double from;
        qint32 to;
    };
    const Row rows[] = {{0.5, 0},
                        {1.5, 2},
                        {2.5, 2},
                        {-0.5, 0},
                        {-1.5, -2},
                        {2.4999, 2},
                        {1e9, 1'000'000'000},
                        {3e9, 2147483647},
                        {-3e9, -2147483647 - 1},
                        {std::numeric_limits<double>::infinity(), 2147483647},
                        {-std::numeric_limits<double>::infinity(), -2147483647 - 1},
                        {std::nan(""), 0}};
    for (const Row& row : rows) EXPECT_EQ(roundToInt32(row.from), row.to) << row.from;
    EXPECT_EQ(ValInt32(QStringLiteral("1e999")), 2147483647);
    EXPECT_EQ(roundToInt64(-1e300), std::numeric_limits<qint64>::min());
}

TEST(IsNumeric, WantsTheWholeText) {
    for (const char* text : {"12", " 12 ", "-1.5", "1e3", ".5"}) {
        EXPECT_TRUE(isNumeric(QString::fromLatin1(text))) << text;
    }
    for (const char* text : {"", " ", "12a", "1 2", "e3", "1,5", "0x10"}) {
        EXPECT_FALSE(isNumeric(QString::fromLatin1(text))) << text;
    }
}

TEST(Trim, CutsBlanksAlone) {
    EXPECT_EQ(Trim(u"  a b  "), u"a b");
    EXPECT_EQ(Trim(u"\ta\r\n"), u"\ta\r\n");
    EXPECT_EQ(Trim(u"   "), u"");
    EXPECT_EQ(LTrim(u" a "), u"a ");
    EXPECT_EQ(RTrim(u" a "), u" a");
}

TEST(Dots, CutNames) {
    EXPECT_EQ(partBehindLastDot(QStringLiteral("dbo.Orders")), u"Orders");
    EXPECT_EQ(partBehindLastDot(QStringLiteral("Orders")), u"Orders");
    EXPECT_EQ(partBehindLastDot(QStringLiteral("Orders.")), u"");
    EXPECT_EQ(partBeforeFirstDot(QStringLiteral("9.00.1399")), u"9");
    EXPECT_EQ(partBeforeFirstDot(QStringLiteral("9")), u"9");
}

TEST(Formats, CountsAndTimes) {
    EXPECT_EQ(formatCount(0), u"0");
    EXPECT_EQ(formatCount(999), u"999");
    EXPECT_EQ(formatCount(1000), u"1,000");
    EXPECT_EQ(formatCount(-1234567), u"-1,234,567");
    EXPECT_EQ(formatCount(-123), u"-123");
    EXPECT_EQ(formatElapsed(0), u"00:00:00");
    EXPECT_EQ(formatElapsed(59'999), u"00:00:59");
    EXPECT_EQ(formatElapsed(3'661'000), u"01:01:01");
    EXPECT_EQ(formatElapsed(-5), u"00:00:00");
}

TEST(LineBreaks, OfEveryKindBecomeOne) {
    EXPECT_EQ(withLf(QStringLiteral("a\r\nb\rc\nd\r\n")), u"a\nb\nc\nd\n");
    EXPECT_EQ(withCrLf(QStringLiteral("a\r\nb\rc\nd\r\n")), u"a\r\nb\r\nc\r\nd\r\n");
}

}  // namespace
}  // namespace zov
