// Counting the values of a column, and the order in which they are shown.
#include "analysis/distinct_values.h"
#include "data/base/field_text.h"
#include "util/numbered_error.h"

#include <gtest/gtest.h>

#include <random>

namespace zov {
namespace {

// What the analyzer is described by: a search through all values seen so far, row by row.
std::vector<TwoStr> countedOneByOne(const ColumnCells& cells) {
    std::vector<TwoStr> values;
    for (qsizetype row = 0; row < cells.count(); ++row) {
        const QString text = FieldText(cells.cell(row));
        const qint32 place = GetElIndexInArr_TwoStr(values, qint32(values.size()), text);
        if (place < 0)
            values.push_back({text, QString(), qint32(values.size()), 1});
        else
            ++values[size_t(place)].Count;
    }
    return values;
}

std::string shown(const std::vector<TwoStr>& values) {
    QString text;
    for (const TwoStr& value : values)
        text += QStringLiteral("%1:%2x%3 ").arg(value.Index).arg(value.Str1).arg(value.Count);
    return text.toStdString();
}

ColumnCells column(SqlType type) {
    ColumnInfo info;
    info.type = type;
    return ColumnCells(info);
}

TEST(DistinctValues, AreThoseOfASearchThroughAllSeen) {
    std::mt19937 random(7);
    const auto below = [&](int bound) { return int(random() % unsigned(bound)); };
    ColumnCells texts = column(SqlType::NVarChar);
    ColumnCells numbers = column(SqlType::Int);
    ColumnCells reals = column(SqlType::Float);
    ColumnCells bits = column(SqlType::Bit);
    ColumnCells times = column(SqlType::DateTime2);
    const QStringList words = {QStringLiteral("a"),    QStringLiteral("A"),
                               QStringLiteral("a "),   QStringLiteral("é"),
                               QStringLiteral("Null"), QString(),
                               QStringLiteral("日本"), QStringLiteral("abcdefghij")};
    for (int row = 0; row < 3000; ++row) {
        const bool isNull = below(10) == 0;
        if (isNull) {
            for (ColumnCells* cells : {&texts, &numbers, &reals, &bits, &times})
                cells->appendNull();
            continue;
        }
        texts.appendText(below(2) ? words[below(int(words.size()))] : QString::number(below(900)));
        numbers.appendInteger(below(1500) - 700);
        reals.appendReal(below(50) / 8.0 - 0.0);
        bits.appendInteger(below(2));
        times.appendInteger(qint64(below(700)) * 36'000'000'001LL);
    }
    for (const ColumnCells* cells : {&texts, &numbers, &reals, &bits, &times}) {
        DistinctValues distinct;
        distinct.add(*cells, 0, 1000);
        distinct.add(*cells, 1000, 2000);
        EXPECT_EQ(shown(distinct.take()), shown(countedOneByOne(*cells)));
        EXPECT_EQ(distinct.size(), 0);
    }
}

TEST(DistinctValues, ANullAndTheTextNullAreOneValue) {
    ColumnCells cells = column(SqlType::NVarChar);
    cells.appendNull();
    cells.appendText(u"Null");
    cells.appendText(u"null");
    DistinctValues distinct;
    distinct.add(cells, 0, 3);
    EXPECT_EQ(shown(distinct.take()), "0:Nullx2 1:nullx1 ");
}

std::vector<TwoStr> withCounts(const std::vector<qint32>& counts) {
    std::vector<TwoStr> values;
    for (const qint32 count : counts)
        values.push_back({QString::number(values.size()), QString(), qint32(values.size()), count});
    return values;
}

std::string countsOf(const std::vector<TwoStr>& values) {
    std::string text;
    for (const TwoStr& value : values) text += std::to_string(value.Count) + ' ';
    return text;
}

TEST(SortByCount, MakesTwoPassesAGapAndNoMore) {
    struct Case {
        std::vector<qint32> counts;
        const char* descending;
        const char* ascending;
    };
    // By hand: gap 4 forward and back, then 2, then 1.
    const std::vector<Case> cases = {
        {{}, "", ""},
        {{5}, "5 ", "5 "},
        {{1, 2}, "2 1 ", "1 2 "},
        {{1, 2, 3}, "3 2 1 ", "1 2 3 "},
        {{1, 2, 3, 4, 5, 6, 7, 8}, "8 7 6 5 4 3 2 1 ", "1 2 3 4 5 6 7 8 "},
        // One gap of 1 alone would need more passes: 2 values past their place stay there.
        {{3, 3, 1, 1, 2, 9, 4}, "9 4 3 3 2 1 1 ", "1 1 2 3 3 4 9 "},
    };
    for (const Case& c : cases) {
        std::vector<TwoStr> values = withCounts(c.counts);
        ShellSortArray_TwoStr_ByLongEl(values, true);
        EXPECT_EQ(countsOf(values), c.descending);
        values = withCounts(c.counts);
        ShellSortArray_TwoStr_ByLongEl(values, false);
        EXPECT_EQ(countsOf(values), c.ascending);
    }
}

TEST(SortByCount, IsCloseToSortedOnly) {
    // A long column shows that the order is not always strict; the exact one is.
    std::mt19937 random(3);
    bool somewhereUnsorted = false;
    for (int round = 0; round < 20; ++round) {
        std::vector<qint32> counts(500);
        for (qint32& count : counts) count = qint32(random() % 400);
        std::vector<TwoStr> values = withCounts(counts);
        std::vector<TwoStr> exact = values;
        ShellSortArray_TwoStr_ByLongEl(values, true);
        SortByCountExactly(exact, true);
        const auto isSorted = [](const std::vector<TwoStr>& list) {
            return std::is_sorted(list.begin(), list.end(), [](const TwoStr& a, const TwoStr& b) {
                return a.Count != b.Count ? a.Count > b.Count : a.Index < b.Index;
            });
        };
        EXPECT_TRUE(isSorted(exact));
        const auto byCount = [](const TwoStr& a, const TwoStr& b) { return a.Count > b.Count; };
        somewhereUnsorted |= !std::is_sorted(values.begin(), values.end(), byCount);
    }
    EXPECT_TRUE(somewhereUnsorted);
}

TEST(SortByCount, CountsPlacesInSixteenBits) {
    std::vector<TwoStr> values = withCounts(std::vector<qint32>(32767, 1));
    values.back().Count = 2;
    ShellSortArray_TwoStr_ByLongEl(values, true);
    EXPECT_EQ(values.front().Count, 2);
    values.push_back({});
    try {
        ShellSortArray_TwoStr_ByLongEl(values, true);
        FAIL() << "no overflow";
    } catch (const NumberedError& error) {
        EXPECT_EQ(error.number, 6);
    }
    SortByCountExactly(values, false);
    EXPECT_EQ(values.front().Count, 0);
}

}  // namespace
}  // namespace zov
