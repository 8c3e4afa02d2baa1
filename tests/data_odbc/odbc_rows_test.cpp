// Rows through the driver: every type, long cells, blocks and their borders.
#include "data_odbc/odbc_fixture.h"

namespace zov {
namespace {

const QString smile = QStringLiteral("aé中\U0001F600z");

struct TypeCase {
    const char* name;
    ColumnInfo column;
    std::function<void(ColumnCells&)> append;
    QString text;
    int size = 0;  ///< as described afterwards
};

void PrintTo(const TypeCase& test, std::ostream* out) {
    *out << test.name;
}

std::function<void(ColumnCells&)> integer(qint64 value) {
    return [value](ColumnCells& to) { to.appendInteger(value); };
}
std::function<void(ColumnCells&)> real(double value) {
    return [value](ColumnCells& to) { to.appendReal(value); };
}
std::function<void(ColumnCells&)> text(const QString& value) {
    return [value](ColumnCells& to) { to.appendText(value); };
}
std::function<void(ColumnCells&)> binary(const QByteArray& value) {
    return [value](ColumnCells& to) { to.appendBytes(value.constData(), value.size()); };
}
qint64 ticks(int year, int month, int day, int hour, int minute, int second, qint64 fraction) {
    return daysFromCivil(year, month, day) * TicksPerDay +
           (qint64(hour) * 3600 + minute * 60 + second) * TicksPerSecond + fraction;
}

ColumnInfo typed(SqlType type, int size = 0, int precision = 0, int scale = 0) {
    return columnOf(QStringLiteral("c"), type, size, precision, scale);
}

std::vector<TypeCase> typeCases() {
    using T = SqlType;
    const auto s = [](const char* ascii) { return QString::fromLatin1(ascii); };
    const QString nines(28, u'9');
    return {
        {"BitOn", typed(T::Bit), integer(1), s("True")},
        {"BitOff", typed(T::Bit), integer(0), s("False")},
        {"TinyIntIsUnsigned", typed(T::TinyInt), integer(255), s("255")},
        {"SmallIntLowest", typed(T::SmallInt), integer(-32768), s("-32768")},
        {"IntLowest", typed(T::Int), integer(INT_MIN), s("-2147483648")},
        {"BigIntLowest", typed(T::BigInt), integer(LLONG_MIN), s("-9223372036854775808")},
        {"BigIntBeyondDoubles", typed(T::BigInt), integer(9007199254740993), s("9007199254740993")},
        {"RealInItsShortestForm", typed(T::Real), real(0.1f), s("0.1")},
        {"FloatInItsShortestForm", typed(T::Float), real(0.1), s("0.1")},
        {"FloatTiny", typed(T::Float), real(5e-324), s("5e-324")},
        {"MoneyLowest", typed(T::Money, 0, 19, 4), integer(LLONG_MIN), s("-922337203685477.5808")},
        {"MoneyKeepsFourDigits", typed(T::Money, 0, 19, 4), integer(12345), s("1.2345")},
        {"SmallMoney", typed(T::SmallMoney, 0, 10, 4), integer(-123456), s("-12.3456")},
        {"DecimalOfEighteenDigits", typed(T::Decimal, 0, 18, 4), integer(-123456789012345678),
         s("-12345678901234.5678")},
        {"DecimalBelowOne", typed(T::Decimal, 0, 5, 5), integer(-7), s("-0.00007")},
        {"NumericWithoutFraction", typed(T::Numeric, 0, 18, 0), integer(999999999999999999),
         s("999999999999999999")},
        {"DecimalOfThirtyEightDigits", typed(T::Decimal, 0, 38, 10),
         text(u'-' + nines + QStringLiteral(".9999999999")),
         u'-' + nines + QStringLiteral(".9999999999")},
        {"NumericOfThirtyEightDigitsIsCanonical", typed(T::Numeric, 0, 38, 10), text(s("12.5")),
         s("12.5")},
        {"NumericZero", typed(T::Numeric, 0, 38, 0), text(s("0")), s("0")},
        {"DateFirst", typed(T::Date), integer(0), s("0001-01-01")},
        {"DateLast", typed(T::Date), integer(ticks(9999, 12, 31, 0, 0, 0, 0)), s("9999-12-31")},
        {"TimeWithAllDigits", typed(T::Time, 0, 0, 7), integer(TicksPerDay - 1),
         s("23:59:59.9999999")},
        {"TimeOfSeconds", typed(T::Time), integer(TicksPerSecond), s("00:00:01")},
        {"SmallDateTime", typed(T::SmallDateTime), integer(ticks(2009, 7, 8, 2, 3, 0, 0)),
         s("2009-07-08 02:03:00")},
        {"DateTimeAtItsStart", typed(T::DateTime, 0, 0, 3), integer(ticks(1753, 1, 1, 0, 0, 0, 0)),
         s("1753-01-01 00:00:00")},
        {"DateTimeOfThreeHundredths", typed(T::DateTime, 0, 0, 3),
         integer(ticks(2009, 7, 8, 2, 3, 4, 9'970'000)), s("2009-07-08 02:03:04.997")},
        {"DateTime2WithAllDigits", typed(T::DateTime2, 0, 0, 7),
         integer(ticks(2024, 2, 29, 23, 59, 59, 1'234'567)), s("2024-02-29 23:59:59.1234567")},
        {"DateTime2Lowest", typed(T::DateTime2, 0, 0, 7), integer(0), s("0001-01-01 00:00:00")},
        {"DateTimeOffsetWest", typed(T::DateTimeOffset, 0, 0, 7),
         [](ColumnCells& to) {
             to.appendTicksOffset(ticks(2024, 2, 29, 17, 55, 45, 6'789'012), -570);
         },
         s("2024-02-29 17:55:45.6789012 -09:30")},
        {"DateTime2OfTheYear999", typed(T::DateTime2, 0, 0, 7),
         integer(ticks(999, 12, 31, 23, 59, 59, 9'999'999)), s("0999-12-31 23:59:59.9999999")},
        {"DateTime2OfTheYear87", typed(T::DateTime2, 0, 0, 3),
         integer(ticks(87, 2, 28, 1, 2, 3, 4'560'000)), s("0087-02-28 01:02:03.456")},
        {"DateTime2BeforeTheReform", typed(T::DateTime2, 0, 0, 0),
         integer(ticks(1582, 10, 4, 12, 0, 0, 0)), s("1582-10-04 12:00:00")},
        {"DateTime2InALeapYearOfOld", typed(T::DateTime2, 0, 0, 0),
         integer(ticks(400, 2, 29, 0, 0, 0, 0)), s("0400-02-29 00:00:00")},
        {"DateTime2Last", typed(T::DateTime2, 0, 0, 7),
         integer(ticks(9999, 12, 31, 23, 59, 59, 9'999'999)), s("9999-12-31 23:59:59.9999999")},
        {"DateOfTheYear7", typed(T::Date), integer(ticks(7, 3, 1, 0, 0, 0, 0)), s("0007-03-01")},
        {"DateTimeOffsetOfTheYear999", typed(T::DateTimeOffset, 0, 0, 7),
         [](ColumnCells& to) {
             to.appendTicksOffset(ticks(999, 12, 31, 23, 59, 59, 1'234'567), 60);
         },
         s("0999-12-31 23:59:59.1234567 +01:00")},
        {"DateTimeOffsetOfTheYear5", typed(T::DateTimeOffset, 0, 0, 0),
         [](ColumnCells& to) { to.appendTicksOffset(ticks(5, 6, 7, 8, 9, 10, 0), -330); },
         s("0005-06-07 08:09:10 -05:30")},
        {"DateTimeOffsetFirst", typed(T::DateTimeOffset, 0, 0, 7),
         [](ColumnCells& to) { to.appendTicksOffset(0, -840); }, s("0001-01-01 00:00:00 -14:00")},
        {"DateTimeOffsetLast", typed(T::DateTimeOffset, 0, 0, 7),
         [](ColumnCells& to) {
             to.appendTicksOffset(ticks(9999, 12, 31, 23, 59, 59, 9'999'999), 840);
         },
         s("9999-12-31 23:59:59.9999999 +14:00")},
        {"DateTimeOffsetEast", typed(T::DateTimeOffset),
         [](ColumnCells& to) { to.appendTicksOffset(ticks(2024, 2, 29, 0, 0, 0, 0), 840); },
         s("2024-02-29 00:00:00 +14:00")},
        {"CharIsPadded", typed(T::Char, 5), text(s("ab   ")), s("ab   "), 5},
        {"VarCharOfItsCodePage", typed(T::VarChar, 20), text(QStringLiteral("€uro é")),
         QStringLiteral("€uro é"), 20},
        {"VarCharEmpty", typed(T::VarChar, 20), text({}), {}, 20},
        {"VarCharFull", typed(T::VarChar, 8000), text(QString(8000, u'x')), QString(8000, u'x'),
         8000},
        {"NChar", typed(T::NChar, 8), text(smile + s("  ")), smile + s("  "), 8},
        {"NVarCharBeyondTheBasicPlane", typed(T::NVarChar, 50), text(smile), smile, 50},
        {"NVarCharFullOfPairs", typed(T::NVarChar, 4000), text(smile.mid(3, 2).repeated(2000)),
         smile.mid(3, 2).repeated(2000), 4000},
        {"NVarCharWithQuotesAndBreaks", typed(T::NVarChar, 50), text(s("a'b\"c\r\n\t]")),
         s("a'b\"c\r\n\t]"), 50},
        {"TextOfItsCodePage", typed(T::Text, -1), text(QStringLiteral("h€llo")),
         QStringLiteral("h€llo"), -1},
        {"NText", typed(T::NText, -1), text(smile), smile, -1},
        {"NVarCharMaxEmpty", typed(T::NVarChar, -1), text({}), {}, -1},
        {"NVarCharMaxOfManyPieces", typed(T::NVarChar, -1), text(smile.repeated(40'000)),
         smile.repeated(40'000), -1},
        {"VarCharMaxOfManyPieces", typed(T::VarChar, -1), text(QString(300'000, u'y')),
         QString(300'000, u'y'), -1},
        {"Xml", typed(T::Xml, -1), text(QStringLiteral("<a>中</a>")), QStringLiteral("<a>中</a>"),
         -1},
        {"VariantText", typed(T::Variant), text(QStringLiteral("中 8.00.194")),
         QStringLiteral("中 8.00.194"), -1},
        {"VariantLongest", typed(T::Variant), text(QString(4000, u'v')), QString(4000, u'v'), -1},
        // The driver reports more of it for ever.
        {"VariantNumber", typed(T::Variant), text(s("42")), s("42"), -1},
        {"Binary", typed(T::Binary, 4), binary(QByteArray("\0\1\2\3", 4)), s("0x00010203"), 4},
        {"VarBinaryEmpty", typed(T::VarBinary, 20), binary({}), s("0x"), 20},
        {"VarBinaryFull", typed(T::VarBinary, 8000), binary(QByteArray(8000, '\xA5')),
         s("0x") + s("A5").repeated(8000), 8000},
        {"VarBinaryMaxOfManyPieces", typed(T::VarBinary, -1), binary(QByteArray(150'000, '\x80')),
         s("0x") + s("80").repeated(150'000), -1},
        {"Image", typed(T::Image, -1), binary(QByteArray("\0\1", 2)), s("0x0001"), -1},
        {"RowVersion", typed(T::RowVersion, 8), binary(QByteArray("\0\0\0\0\0\0\7\xD1", 8)),
         s("0x00000000000007D1"), 8},
        {"UniqueIdentifier", typed(T::UniqueIdentifier),
         binary(QByteArray::fromHex("6F9619FF8B86D011B42D00C04FC964FF")),
         s("{6F9619FF-8B86-D011-B42D-00C04FC964FF}")},
    };
}

class OdbcTypeTest : public OdbcTest, public ::testing::WithParamInterface<TypeCase> {};

// Alone, then behind a bound column and in front of one, with a null between values: the order of
// reading must not show.
TEST_P(OdbcTypeTest, ComesBackAsItWas) {
    const TypeCase& test = GetParam();
    const ColumnInfo before = columnOf(QStringLiteral("before"), SqlType::Int);
    const ColumnInfo after = columnOf(QStringLiteral("after"), SqlType::NVarChar, 20);
    script.answer(QStringLiteral("SELECT c"),
                  rowsOf({before, test.column, after}, 3, [&](RowStore& rows, qint64 row) {
                      rows.column(0).appendInteger(row);
                      if (row == 1)
                          rows.column(1).appendNull();
                      else
                          test.append(rows.column(1));
                      rows.column(2).appendText(QStringLiteral("end%1").arg(row));
                  }));
    const auto connection = open();
    const auto stream = run(*connection, QStringLiteral("SELECT c"));
    ASSERT_EQ(stream->columns().size(), 3u);
    const ColumnInfo& column = stream->columns()[1];
    EXPECT_EQ(sqlTypeName(column.type), sqlTypeName(test.column.type));
    EXPECT_EQ(column.size, test.size);
    EXPECT_EQ(column.scale, test.column.scale);
    EXPECT_EQ(column.precision, test.column.precision);
    const QStringList expected = {QStringLiteral("0|") + test.text + QStringLiteral("|end0"),
                                  QStringLiteral("1|NULL|end1"),
                                  QStringLiteral("2|") + test.text + QStringLiteral("|end2")};
    EXPECT_EQ(readRows(*stream), expected);
}

INSTANTIATE_TEST_SUITE_P(EveryType, OdbcTypeTest, ::testing::ValuesIn(typeCases()),
                         [](const auto& info) { return std::string(info.param.name); });

using OdbcRowsTest = OdbcTest;

TEST_F(OdbcRowsTest, NoRowIsLostAtTheBordersOfBlocks) {
    const auto connection = open();
    for (const qint64 count : {0, 1, 511, 512, 513, 1024, 3000}) {
        const QString statement = QStringLiteral("SELECT %1").arg(count);
        script.answer(statement, numbers(count));
        for (const qsizetype step : {1, 7, 512, 100'000}) {
            const auto stream = run(*connection, statement);
            const QStringList rows = readRows(*stream, step);
            ASSERT_EQ(rows.size(), count) << "in steps of " << step;
            for (qsizetype i = 0; i < rows.size(); ++i) ASSERT_EQ(rows[i], QString::number(i));
            EXPECT_FALSE(stream->nextResult());
        }
    }
}

TEST_F(OdbcRowsTest, NullsStandWhereTheyStoodInABlock) {
    script.answer(QStringLiteral("SELECT n"),
                  rowsOf({columnOf(QStringLiteral("n"), SqlType::Int),
                          columnOf(QStringLiteral("t"), SqlType::NVarChar, 10)},
                         2000, [](RowStore& rows, qint64 row) {
                             if (row % 3 == 0)
                                 rows.column(0).appendNull();
                             else
                                 rows.column(0).appendInteger(row);
                             if (row % 5 == 0)
                                 rows.column(1).appendNull();
                             else
                                 rows.column(1).appendText(QString(row % 10, u'x'));
                         }));
    const auto connection = open();
    const QStringList rows = readRows(*run(*connection, QStringLiteral("SELECT n")));
    ASSERT_EQ(rows.size(), 2000);
    for (int row = 0; row < 2000; ++row) {
        const QString number = row % 3 ? QString::number(row) : QStringLiteral("NULL");
        const QString text = row % 5 ? QString(row % 10, u'x') : QStringLiteral("NULL");
        ASSERT_EQ(rows[row], number + u'|' + text);
    }
}

TEST_F(OdbcRowsTest, LongCellsOfManyRowsKeepTheirRow) {
    script.answer(QStringLiteral("SELECT long"),
                  rowsOf({columnOf(QStringLiteral("a"), SqlType::NVarChar, -1),
                          columnOf(QStringLiteral("n"), SqlType::Int),
                          columnOf(QStringLiteral("b"), SqlType::VarBinary, -1)},
                         200, [](RowStore& rows, qint64 row) {
                             rows.column(0).appendText(smile.repeated(row * 137));
                             rows.column(1).appendInteger(row);
                             const QByteArray bytes(row * 600, char(row));
                             rows.column(2).appendBytes(bytes.constData(), bytes.size());
                         }));
    const auto connection = open();
    const auto stream = run(*connection, QStringLiteral("SELECT long"));
    RowStore rows(stream->columns());
    int calls = 0;
    while (stream->fetch(rows, 1000) > 0) ++calls;
    ASSERT_EQ(rows.rowCount(), 200);
    // Rows of 40 MB in all come in portions, so that a caller can stop.
    EXPECT_GT(calls, 1);
    for (int row = 0; row < 200; ++row) {
        ASSERT_EQ(rows.cell(row, 0).text.toString(), smile.repeated(row * 137));
        ASSERT_EQ(rows.cell(row, 1).integer, row);
        ASSERT_EQ(rows.cell(row, 2).bytes.toByteArray(), QByteArray(row * 600, char(row)));
    }
}

// A driver may describe a column too narrow, as some do with letters that take several bytes. What
// comes is read whole, or the read fails: a cell that was cut would compare as another value.
TEST_F(OdbcRowsTest, ACellLongerThanItsColumnIsNeverCut) {
    const struct {
        const char* name;
        SqlType type;
        int described;
        int sent;
    } table[] = {
        {"nvarchar", SqlType::NVarChar, 5, 6},   {"nvarchar", SqlType::NVarChar, 5, 3000},
        {"varchar", SqlType::VarChar, 10, 11},   {"varchar", SqlType::VarChar, 10, 7000},
        {"varbinary", SqlType::VarBinary, 4, 5}, {"varbinary", SqlType::VarBinary, 4, 7999},
    };
    for (const auto& row : table) {
        const bool isBinary = row.type == SqlType::VarBinary;
        const QString statement = QStringLiteral("SELECT %1 %2").arg(row.name).arg(row.sent);
        const QString whole(row.sent, u'x');
        const QByteArray bytes(row.sent, 'x');
        script.answer(
            statement,
            rowsOf({columnOf(QStringLiteral("c"), row.type, row.described),
                    columnOf(QStringLiteral("n"), SqlType::Int)},
                   3, [&](RowStore& rows, qint64 at) {
                       const bool isLong = at == 1;
                       if (isBinary)
                           rows.column(0).appendBytes(bytes.constData(), isLong ? row.sent : 2);
                       else
                           rows.column(0).appendText(isLong ? whole : QStringLiteral("xx"));
                       rows.column(1).appendInteger(at);
                   }));
        const auto connection = open();
        try {
            const auto stream = run(*connection, statement);
            RowStore rows(stream->columns());
            while (stream->fetch(rows, 100) > 0) {
            }
            ASSERT_EQ(rows.rowCount(), 3) << row.name << ' ' << row.sent;
            const CellView cell = rows.cell(1, 0);
            EXPECT_EQ(isBinary ? cell.bytes.size() : cell.text.size(), row.sent) << row.name;
            EXPECT_EQ(rows.cell(2, 1).integer, 2) << row.name << ' ' << row.sent;
        } catch (const DbError& error) {
            EXPECT_FALSE(error.description.isEmpty());
        }
    }
}

TEST_F(OdbcRowsTest, ColumnNamesAreKeptToTheLetter) {
    const QStringList names = {
        QStringLiteral("Größe in mm"), QStringLiteral("a]b\"c'd"), QString(),
        QStringLiteral("a"),           QStringLiteral("a"),        QString(128, u'ü')};
    std::vector<ColumnInfo> columns;
    for (const QString& name : names) columns.push_back(columnOf(name, SqlType::Int));
    script.answer(QStringLiteral("SELECT names"), rowsOf(columns, 0, nullptr));
    const auto connection = open();
    const auto stream = run(*connection, QStringLiteral("SELECT names"));
    QStringList got;
    for (const ColumnInfo& column : stream->columns()) got.append(column.name);
    EXPECT_EQ(got, names);
}

}  // namespace
}  // namespace zov
