// The default text of every kind of value, and comparing values.
#include "data/base/field_text.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

ColumnInfo column(SqlType type, int precision = 0, int scale = 0) {
    return {QStringLiteral("c"), type, 0, precision, scale, true};
}

RowStore oneCell(const ColumnInfo& info) {
    return RowStore({info});
}

RowStore integerCell(const ColumnInfo& info, qint64 value) {
    RowStore store = oneCell(info);
    store.column(0).appendInteger(value);
    return store;
}

RowStore realCell(const ColumnInfo& info, double value) {
    RowStore store = oneCell(info);
    store.column(0).appendReal(value);
    return store;
}

RowStore textCell(const ColumnInfo& info, const char* value) {
    RowStore store = oneCell(info);
    store.column(0).appendUtf8(value, qsizetype(strlen(value)));
    return store;
}

RowStore timeCell(SqlType type, const char* iso) {
    RowStore store = oneCell(column(type));
    qint64 ticks = 0;
    qint16 offset = 0;
    EXPECT_TRUE(parseIsoTicks(iso, qsizetype(strlen(iso)), ticks, offset)) << iso;
    if (type == SqlType::DateTimeOffset)
        store.column(0).appendTicksOffset(ticks, offset);
    else
        store.column(0).appendInteger(ticks);
    return store;
}

RowStore bytesCell(SqlType type, const QByteArray& bytes) {
    RowStore store = oneCell(column(type));
    store.column(0).appendBytes(bytes.constData(), bytes.size());
    return store;
}

std::string textOf(const RowStore& store) {
    return cellText(store.cell(0, 0)).toStdString();
}

TEST(FieldText, EveryTypeHasItsPlainForm) {
    EXPECT_EQ(textOf(integerCell(column(SqlType::Bit), 1)), "True");
    EXPECT_EQ(textOf(integerCell(column(SqlType::Bit), 0)), "False");
    EXPECT_EQ(textOf(integerCell(column(SqlType::TinyInt), 255)), "255");
    EXPECT_EQ(textOf(integerCell(column(SqlType::SmallInt), -32768)), "-32768");
    EXPECT_EQ(textOf(integerCell(column(SqlType::Int), -2147483648LL)), "-2147483648");
    EXPECT_EQ(textOf(integerCell(column(SqlType::BigInt), std::numeric_limits<qint64>::min())),
              "-9223372036854775808");
    EXPECT_EQ(textOf(integerCell(column(SqlType::Decimal, 10, 2), 1250)), "12.5");
    EXPECT_EQ(textOf(integerCell(column(SqlType::Decimal, 18), std::numeric_limits<qint64>::min())),
              "-9223372036854775808");
    EXPECT_EQ(textOf(integerCell(column(SqlType::Decimal, 10, 2), -5)), "-0.05");
    EXPECT_EQ(textOf(integerCell(column(SqlType::Decimal, 18, 0), 1200)), "1200");
    EXPECT_EQ(
        textOf(integerCell(column(SqlType::Money, 19, 4), std::numeric_limits<qint64>::min())),
        "-922337203685477.5808");
    EXPECT_EQ(textOf(textCell(column(SqlType::Numeric, 38, 4), "12345678901234567890.1200")),
              "12345678901234567890.12");
    EXPECT_EQ(textOf(textCell(column(SqlType::Numeric, 38, 4), "-.5000")), "-0.5");
    EXPECT_EQ(textOf(realCell(column(SqlType::Float), 0.1)), "0.1");
    EXPECT_EQ(textOf(realCell(column(SqlType::Float), 1e300)), "1e+300");
    EXPECT_EQ(textOf(realCell(column(SqlType::Real), 0.15000000596046448)), "0.15");
    EXPECT_EQ(textOf(textCell(column(SqlType::NVarChar), "1.50")), "1.50");
    EXPECT_EQ(textOf(textCell(column(SqlType::NVarChar),
                              "Gr\xC3\xB6\xC3\x9F"
                              "e")),
              "Gr\xC3\xB6\xC3\x9F"
              "e");
    EXPECT_EQ(textOf(bytesCell(SqlType::VarBinary, QByteArray::fromHex("00ffa1"))), "0x00FFA1");
    EXPECT_EQ(textOf(bytesCell(SqlType::VarBinary, {})), "0x");
    EXPECT_EQ(textOf(bytesCell(SqlType::UniqueIdentifier,
                               QByteArray::fromHex("00112233445566778899aabbccddeeff"))),
              "{00112233-4455-6677-8899-AABBCCDDEEFF}");
}

TEST(FieldText, TimesShowAFractionOnlyWhereThereIsOne) {
    EXPECT_EQ(textOf(timeCell(SqlType::DateTime, "1996-07-04 00:00:00.000")),
              "1996-07-04 00:00:00");
    EXPECT_EQ(textOf(timeCell(SqlType::DateTime, "1753-01-01 23:59:59.997")),
              "1753-01-01 23:59:59.997");
    EXPECT_EQ(textOf(timeCell(SqlType::DateTime2, "9999-12-31T23:59:59.9999999")),
              "9999-12-31 23:59:59.9999999");
    EXPECT_EQ(textOf(timeCell(SqlType::Date, "0001-01-01")), "0001-01-01");
    EXPECT_EQ(textOf(timeCell(SqlType::Time, "08:05:00.5000000")), "08:05:00.5");
    EXPECT_EQ(textOf(timeCell(SqlType::DateTimeOffset, "2024-02-29 12:00:00 -09:30")),
              "2024-02-29 12:00:00 -09:30");
}

TEST(FieldText, NotEveryTextIsATime) {
    qint64 ticks = 0;
    qint16 offset = 0;
    for (const char* text :
         {"", "2023-02-29", "2023-13-01", "2023-00-10", "2023-01-32", "0000-01-01", "2023-1-1",
          "24:00:00", "12:60:00", "12:00:61", "2023-01-01x12:00:00", "2023-01-01 12:00:00 +15:00",
          "2023-01-01 12:00:00Z", "12:00"})
        EXPECT_FALSE(parseIsoTicks(text, qsizetype(strlen(text)), ticks, offset)) << text;
}

TEST(CompareCells, MeetsByValueAcrossWidthsAndScales) {
    const auto order = [](const RowStore& a, const RowStore& b) {
        return compareCells(a.cell(0, 0), b.cell(0, 0));
    };
    EXPECT_EQ(order(integerCell(column(SqlType::Int), 5), integerCell(column(SqlType::BigInt), 5)),
              0);
    EXPECT_EQ(order(integerCell(column(SqlType::Decimal, 10, 2), 500),
                    integerCell(column(SqlType::Int), 5)),
              0);
    EXPECT_EQ(order(integerCell(column(SqlType::Decimal, 18, 18), 1),
                    integerCell(column(SqlType::Money, 19, 4), 0)),
              1);
    EXPECT_EQ(order(integerCell(column(SqlType::Int), 2), realCell(column(SqlType::Float), 2.5)),
              -1);
    EXPECT_EQ(order(timeCell(SqlType::DateTimeOffset, "2024-01-01 12:00:00 +02:00"),
                    timeCell(SqlType::DateTimeOffset, "2024-01-01 10:00:00 +00:00")),
              0);
    EXPECT_NE(order(textCell(column(SqlType::NVarChar), "abc"),
                    textCell(column(SqlType::NVarChar), "ABC")),
              0);
    const RowStore lower = textCell(column(SqlType::NVarChar), "straße");
    const RowStore upper = textCell(column(SqlType::NVarChar), "STRASSE");
    EXPECT_NE(compareCells(lower.cell(0, 0), upper.cell(0, 0), Qt::CaseInsensitive), 0);
    RowStore null = oneCell(column(SqlType::Int));
    null.column(0).appendNull();
    EXPECT_EQ(order(null, integerCell(column(SqlType::Int), -1)), -1);
    EXPECT_EQ(order(null, null), 0);
}

}  // namespace
}  // namespace zov
