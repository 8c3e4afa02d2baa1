// What counts as the same value, and how keys are sought: nulls, blanks, letter
// case, quotes, types that differ, columns that differ, and columns left out.
#include "comparison_fixture.h"

#include "data/base/field_text.h"
#include "data/criteria.h"
#include "data/mdlData.h"
#include "datacompare/key_lookup.h"

namespace zov {
namespace {

using test::Road;

class CompareFieldsTest : public test::DataComparison {
 protected:
    /// One table each, made anew: columns and rows as SQL.
    void tables(const char* columns1, const QStringList& rows1, const char* columns2,
                const QStringList& rows2) {
        load(script(columns1, rows1), script(columns2, rows2));
    }
    static QString script(const char* columns, const QStringList& rows) {
        QString sql = QStringLiteral(
                          "IF EXISTS (SELECT * FROM sysobjects WHERE name = 'T') DROP TABLE "
                          "dbo.T\nGO\nCREATE TABLE dbo.T (%1)\nGO\n")
                          .arg(QLatin1String(columns));
        for (const QString& row : rows)
            sql += QStringLiteral("INSERT INTO T VALUES (%1)\n").arg(row);
        return sql + QStringLiteral("GO\n");
    }
};
INSTANTIATE_TEST_SUITE_P(Roads, CompareFieldsTest, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

TEST_P(CompareFieldsTest, ValuesAreComparedByTheirTrimmedTexts) {
    const struct {
        const char* type1;
        const char* value1;
        const char* type2;
        const char* value2;
        bool same;
        bool sameIgnoringCase;
    } table[] = {
        {"nvarchar(9)", "N'ABC '", "nvarchar(9)", "N' ABC'", true, true},
        {"nvarchar(9)", "N'abc'", "nvarchar(9)", "N'ABC'", false, true},
        {"nvarchar(9)", "N'straße'", "nvarchar(9)", "N'STRAßE'", false, true},
        {"nvarchar(9)", "N'stra\u00dfe'", "nvarchar(9)", "N'STRASSE'", false, false},
        {"nvarchar(9)", "N'\tA'", "nvarchar(9)", "N'A'", false, false},
        {"nvarchar(9)", "NULL", "nvarchar(9)", "NULL", true, true},
        {"nvarchar(9)", "NULL", "nvarchar(9)", "N'Null'", true, true},
        {"nvarchar(9)", "N' NULL '", "int", "NULL", false, true},
        {"nvarchar(9)", "NULL", "nvarchar(9)", "N''", false, false},
        {"int", "NULL", "int", "0", false, false},
        {"int", "7", "bigint", "7", true, true},
        {"int", "7", "nvarchar(9)", "N'7 '", true, true},
        {"int", "7", "nvarchar(9)", "N'07'", false, false},
        {"int", "7", "decimal(9,2)", "7.00", true, true},
        {"decimal(9,2)", "7.50", "decimal(9,4)", "7.5000", true, true},
        {"decimal(9,2)", "7.50", "decimal(9,4)", "7.5001", false, false},
        {"decimal(30,2)", "7.50", "decimal(9,4)", "7.5000", true, true},
        {"decimal(9,2)", "7.50", "varchar(9)", "'7.50'", false, false},
        {"money", "7.5", "decimal(9,2)", "7.5", true, true},
        {"bit", "1", "bit", "1", true, true},
        {"bit", "1", "int", "1", false, false},
        {"bit", "1", "varchar(9)", "'TRUE'", false, true},
        {"float", "0.1", "float", "0.1", true, true},
        {"real", "0.1", "float", "0.1", true, true},
        {"float", "0.1", "float", "0.2", false, false},
        {"datetime", "'2024-02-29 10:30:00'", "datetime2", "'2024-02-29 10:30:00'", true, true},
        {"datetime", "'2024-02-29'", "date", "'2024-02-29'", false, false},
        {"datetimeoffset(3)", "'2024-02-29 10:30:00 +02:00'", "datetimeoffset(7)",
         "'2024-02-29 10:30:00 +02:00'", true, true},
        // One offset for another, and one moment told in two ways.
        {"datetimeoffset(7)", "'2024-02-29 10:30:00 +02:00'", "datetimeoffset(7)",
         "'2024-02-29 10:30:00 +03:00'", false, false},
        {"datetimeoffset(7)", "'2024-02-29 10:30:00 +02:00'", "datetimeoffset(7)",
         "'2024-02-29 08:30:00 +00:00'", false, false},
        {"datetimeoffset(7)", "'2024-02-29 10:30:00 +00:00'", "datetime2(7)",
         "'2024-02-29 10:30:00'", false, false},
        {"date", "'2024-02-29'", "varchar(20)", "'2024-02-29'", true, true},
        {"varbinary(8)", "0x0A0B", "varbinary(8)", "0x0A0B", true, true},
        {"varbinary(8)", "0x0A0B", "varbinary(8)", "0x0A0C", false, false},
        {"uniqueidentifier", "'6F9619FF-8B86-D011-B42D-00C04FC964FF'", "uniqueidentifier",
         "'6f9619ff-8b86-d011-b42d-00c04fc964ff'", true, true},
    };
    for (const auto& row : table) {
        tables((QByteArray("V ") + row.type1).constData(), {QString::fromUtf8(row.value1)},
               (QByteArray("V ") + row.type2).constData(), {QString::fromUtf8(row.value2)});
        for (const bool caseSensitive : {true, false}) {
            globals().gblnDataCaseSensitive = caseSensitive;
            const bool same = caseSensitive ? row.same : row.sameIgnoringCase;
            EXPECT_EQ(compared().substr(0, 15), same ? "identical 1/1/0" : "different 1/1/1")
                << row.type1 << ' ' << row.value1 << " : " << row.type2 << ' ' << row.value2
                << (caseSensitive ? "" : ", case ignored");
        }
    }
}

// The red of a pair goes by the texts to the letter, and not by what found the pair.
TEST_P(CompareFieldsTest, RedShowsWhatWasOverlooked) {
    globals().gblnDataCaseSensitive = false;
    tables("A nvarchar(9), B nvarchar(9), C int", {"N'x', N'abc', 1"},
           "A nvarchar(9), B nvarchar(9), C int", {"N'x ', N'ABC', 2"});
    EXPECT_EQ(compared(), "different 1/1/1\nS 1|*x|*abc|*1\nT 1|*x |*ABC|*2");
}

TEST_P(CompareFieldsTest, ColumnsArePairedByPlace) {
    // A column more in Target, at its end: the Source's columns are what is read.
    tables("A int, B int", {"1, 2"}, "A int, B int, C int", {"1, 2, 3"});
    EXPECT_EQ(compared(), "identical 1/1/0");
    // In another order they are read in the Source's.
    tables("A int, B int", {"1, 2"}, "B int, A int", {"2, 1"});
    EXPECT_EQ(compared(), "identical 1/1/0");
    // A column more in Source: the Target is read with its own, and the last is missing.
    tables("A int, C nvarchar(5)", {"1, N'x'", "2, N' '"}, "A int", {"1", "2"});
    EXPECT_EQ(compared(), "different 2/2/1\nS 1|1|*x\nT 1|1|*");
    // Other names: by place, too.
    tables("A int, B int", {"1, 2"}, "X int, Y int", {"1, 3"});
    EXPECT_EQ(compared(), "different 1/1/1\nS 1|1|*2\nT 1|1|*3");
    EXPECT_EQ(told(), "");
}

TEST_P(CompareFieldsTest, IgnoredColumnsAreLeftOutAndMentioned) {
    tables("A int, B int, C int", {"1, 2, 3"}, "A int, B int, C int", {"1, 9, 3"});
    ignore(0, {QStringLiteral("B")});
    EXPECT_EQ(compared(), "identical 1/1/0");
    EXPECT_EQ(told(),
              "information: Data stored in both tables is identical.\\n"
              "Column ignored during comparison: Source - B");
    // The Target's own play no part while the Source's columns can be read there.
    ignore(0, {QStringLiteral("A")});
    ignore(1, {QStringLiteral("B"), QStringLiteral("C")});
    QString labels;
    onDifferences = [&](frmCompareData& screen) { labels = screen.lblGen0; };
    EXPECT_EQ(compared(), "different 1/1/1\nS 1|*2|3\nT 1|*9|3");
    EXPECT_EQ(labels.toStdString(), "NOTE: 3 columns were ignored.");
    run.ShowDifferences = false;
    EXPECT_EQ(compared(), "different 1/1/1");
    EXPECT_EQ(told(),
              "information: Number of records in first table: 1\\n"
              "Number of records in second table: 1\\nNumber of different records: 1\\n"
              "Columns ignored during comparison: Source - A Target - B,C");
}

TEST_P(CompareFieldsTest, OneKeySeeksNullAsAText) {
    const char* columns = "K nvarchar(20), V int";
    tables(columns, {"NULL, 1", "N'o''Neil', 2", "N'Ab', 3"}, columns,
           {"N'AB', 3", "N'O''NEIL', 2", "N'null', 1"});
    byKey(QStringLiteral("K"));
    globals().gblnDataCaseSensitive = false;
    EXPECT_EQ(compared(), "identical 3/3/0");
    // A null in Target isn't found, nor is one by a number's key.
    tables(columns, {"NULL, 1"}, columns, {"NULL, 1"});
    EXPECT_EQ(compared(), "different 1/1/1\n+ 1|Null|1\n- 1|Null|1");
    tables("K int, V int", {"NULL, 1"}, "K int, V int", {"NULL, 1"});
    EXPECT_EQ(compared(), "different 1/1/1\n+ 1|Null|1\n- 1|Null|1");
}

TEST_P(CompareFieldsTest, SeveralKeysSeekNullAsNull) {
    const char* columns = "K int, L nvarchar(20), M datetime, V int";
    const QStringList rows = {"1, NULL, '2024-01-01', 1", "1, N'b', NULL, 2",
                              "NULL, N'Null', NULL, 3", "2, N'it''s', '2024-01-02', 4"};
    tables(columns, rows, columns, {rows[3], rows[1], rows[0], "NULL, NULL, NULL, 3"});
    const CompKeys keys{QStringLiteral("K"), QStringLiteral("L"), QStringLiteral("M")};
    byKey(keys, keys);
    EXPECT_EQ(compared(), "identical 4/4/0");
    byKey({keys.CompKey, keys.SecondaryCompKey, {}},
          {keys.CompKey, keys.SecondaryCompKey, NoField});
    EXPECT_EQ(compared(), "identical 4/4/0");
    // A text Null in Target is no null, and is not found.
    tables(columns, {"1, N'Null', NULL, 1"}, columns, {"1, N'Null', NULL, 1"});
    EXPECT_EQ(compared(), "different 1/1/1\n+ 1|1|Null|Null|1\n- 1|1|Null|Null|1");
    // Where it breaks the condition, Target stays where it is, and its first row is the match.
    tables(columns, {"1, N'''Null''', NULL, 1"}, columns, {"7, N'x', NULL, 7", "1, N'y', NULL, 1"});
    EXPECT_EQ(compared(),
              "different 1/2/2\nS 1|*1|*'Null'|Null|*1\nT 1|*7|*x|Null|*7\n- 1|1|y|Null|1");
    EXPECT_EQ(told(), "");
}

TEST_P(CompareFieldsTest, TheTargetsSecondKeyDecidesHowManyThereAre) {
    const char* columns = "K int, L int, V int";
    tables(columns, {"1, 1, 1", "1, 2, 2"}, columns, {"1, 2, 2", "1, 1, 1"});
    // The Source's second alone is not looked at.
    byKey({QStringLiteral("K"), QStringLiteral("L"), {}}, {QStringLiteral("K"), NoField, {}});
    EXPECT_EQ(compared().substr(0, 15), "different 2/2/2");
    byKey({QStringLiteral("K"), QStringLiteral("L"), {}},
          {QStringLiteral("K"), QStringLiteral("L"), {}});
    EXPECT_EQ(compared(), "identical 2/2/0");
}

TEST_P(CompareFieldsTest, AKeyThatIsGoneIsTheFirstFieldOrAnError) {
    const char* columns = "K int, L int";
    tables(columns, {"1, 5", "2, 6"}, columns, {"2, 6", "1, 5"});
    // In Source its place is taken by the first field.
    byKey({QStringLiteral("Gone"), {}, {}}, {QStringLiteral("K"), {}, {}});
    EXPECT_EQ(compared(), "identical 2/2/0");
    told();
    // Letter case counts there.
    byKey({QStringLiteral("l"), {}, {}}, {QStringLiteral("L"), {}, {}});
    EXPECT_EQ(compared().substr(0, 15), "different 2/2/2");
    told();
    byKey(QStringLiteral("Gone"));
    EXPECT_EQ(compared(), "failed 2/2/0");
    EXPECT_EQ(told(),
              "exclamation: Error occured while comparing records.\\n\\nError 3001 (The key "
              "\"Gone\" is not among the compared columns of the Target table. Choose another "
              "key.); line 0.\\n\n"
              "information: The comparison was broken off by an error.");
    // With several keys the search stays on the first row.
    byKey({QStringLiteral("K"), QStringLiteral("L"), {}},
          {QStringLiteral("K"), QStringLiteral("Gone"), {}});
    EXPECT_EQ(compared().substr(0, 15), "different 2/2/2");
    told();
    // None was chosen.
    byKey({QStringLiteral("K"), {}, {}}, {NoField, {}, {}});
    EXPECT_EQ(compared(), "failed 2/2/0");
    EXPECT_NE(told().find("No key field is chosen for the Target table. Choose one on the page"),
              std::string::npos);
    // A name that no condition takes is as good as gone.
    tables("[My Key] int, L int", {"1, 5"}, "[My Key] int, L int", {"1, 5"});
    byKey(QStringLiteral("My Key"));
    EXPECT_EQ(compared(), "failed 1/1/0");
    EXPECT_NE(told().find("The key \"My Key\" can't be sought: its name holds a blank"),
              std::string::npos);
}

// A text is read as the Target's type reads it: what lies behind that type's ends is nobody's key,
// also where it would come round to a number that is there.
TEST_P(CompareFieldsTest, ATextKeyIsSoughtUpToTheEndsOfIntegerTypes) {
    const struct {
        const char* type;
        const char* least;
        const char* most;
        const char* below;   ///< would come round to the most
        const char* beyond;  ///< would come round to the least
    } table[] = {
        {"tinyint", "0", "255", "-1", "256"},
        {"smallint", "-32768", "32767", "-32769", "32768"},
        {"int", "-2147483648", "2147483647", "-2147483649", "2147483648"},
        {"bigint", "-9223372036854775808", "9223372036854775807", "-9223372036854775809",
         "9223372036854775808"},
    };
    byKey(QStringLiteral("K"));
    for (const auto& row : table) {
        const auto text = [](const char* number) { return QStringLiteral("N'%1'").arg(number); };
        const QByteArray columns = QByteArray("K ") + row.type;
        const char* texts = "K nvarchar(30)";
        const QStringList ends = {row.most, row.least};
        tables(texts, {text(row.least), text(row.most)}, columns.constData(), ends);
        EXPECT_EQ(compared(), "identical 2/2/0") << row.type;
        tables(texts, {text(row.below), text(row.beyond)}, columns.constData(), ends);
        EXPECT_EQ(compared(), QStringLiteral("different 2/2/2\n+ 1|%1\n+ 2|%2\n- 1|%3\n- 2|%4")
                                  .arg(row.below, row.beyond, row.most, row.least)
                                  .toStdString())
            << row.type;
    }
}

// Whatever the two types are, the index must find what the condition on the value's text meets
// first, row by row.
TEST_P(CompareFieldsTest, TheIndexFindsWhatTheConditionMeets) {
    const char* const types[] = {"int",          "smallint", "bigint",        "decimal(9,2)",
                                 "decimal(9,3)", "float",    "decimal(30,2)", "real",
                                 "bit",          "money",    "date",          "nvarchar(30)",
                                 "datetime",     "tinyint",  "binary(2)",     "datetimeoffset(7)"};
    const QStringList numbers = {QStringLiteral("0"), QStringLiteral("NULL"), QStringLiteral("1")};
    const QStringList times = {QStringLiteral("'2024-01-01'"), QStringLiteral("NULL"),
                               QStringLiteral("'2024-01-02'")};
    const QStringList offsets = {QStringLiteral("'2024-01-01 02:00:00 +02:00'"),
                                 QStringLiteral("'2024-01-01 02:00:00 +01:00'")};
    const auto rowsOf = [&](const QByteArray& type) {
        if (type.startsWith("datetimeoffset")) return offsets + times;
        if (type.startsWith("date")) return times;
        if (type.startsWith("binary"))
            return QStringList{QStringLiteral("0x3031"), QStringLiteral("NULL")};
        return type.startsWith("nvarchar")
                   ? numbers + times + QStringList{QStringLiteral("N'tRUE'")}
                   : numbers;
    };
    const ScopedValue<qint32> client(globals().glngCursorLocation, adUseClient);
    for (const QByteArray first : types) {
        for (const QByteArray second : types) {
            tables(("K " + first).constData(), rowsOf(first), ("K " + second).constData(),
                   rowsOf(second));
            std::unique_ptr<Recordset> rs[2];
            for (const int side : {0, 1})
                ASSERT_NE(GetAdoRS(served.server(), adCmdText, QStringLiteral("SELECT K FROM T"),
                                   rs[side], run.Tables[size_t(side)].Db),
                          -1);
            const CompKeys keys[2] = {{QStringLiteral("K"), {}, {}}, {QStringLiteral("K"), {}, {}}};
            KeyedRows rows(*rs[1]);
            KeyLookup lookup(*rs[0], rows, keys);
            for (; !rs[0]->isEof(); rs[0]->MoveNext()) {
                const QString text = FieldText(rs[0]->field(0).cell());
                Criterion criterion;
                criterion.column = 0;
                criterion.value = readAs(rows.columnInfo(0), text);
                rows.findFirst([&](const RowView& row) {
                    return meetsCriterion(*row.rows, row.row, criterion);
                });
                const qint64 wanted = rows.rowNumber();
                rows.MoveFirst();
                EXPECT_EQ(lookup.FindRecordByKey(RowView(*rs[0])), wanted < 0 ? 0 : 1);
                EXPECT_EQ(rows.rowNumber(), wanted)
                    << first.constData() << " in " << second.constData() << ": "
                    << text.toStdString();
            }
        }
    }
}

}  // namespace
}  // namespace zov
