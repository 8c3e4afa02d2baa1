// INSERT, UPDATE and DELETE: conversions, defaults, identities, and what is refused.
#include "local_server.h"

#include <gtest/gtest.h>

namespace zov::local {
namespace {

class Changes : public testing::Test {
 protected:
    LocalServer server;
    void SetUp() override {
        server.run(
            QStringLiteral("CREATE TABLE T (id int IDENTITY(10,5) NOT NULL CONSTRAINT PK_T PRIMARY "
                           "KEY, name varchar(5) NOT NULL, "
                           "kind char(3) NULL CONSTRAINT DF_kind DEFAULT ('abc'), price "
                           "decimal(6,2) NULL DEFAULT (1.5), "
                           "made datetime NULL, stamp rowversion, twice AS (price * 2))\n"
                           "CREATE TABLE U (code varchar(3) NOT NULL CONSTRAINT UQ_U UNIQUE, n int "
                           "NULL, small tinyint NULL)\n"
                           "CREATE UNIQUE INDEX IX_n ON U(n)"));
    }
};

TEST_F(Changes, InsertTakesColumnListsDefaultsAndManyRows) {
    server.run(QStringLiteral("INSERT INTO T (name) VALUES ('a')"));
    server.run(QStringLiteral(
        "INSERT T (made, name, price) VALUES ('19970704', 'b', 2.345), (NULL, 'c', DEFAULT)"));
    server.run(
        QStringLiteral("INSERT T VALUES ('d', 'x', -0.004, '1997-07-04 10:30:15.126', DEFAULT)"));
    server.run(QStringLiteral(
        "INSERT INTO T (name, price) SELECT UPPER(name), price * 2 FROM T WHERE id < 20"));
    EXPECT_EQ(server.rows(QStringLiteral("SELECT id, name, kind, price, made FROM T")),
              "id|name|kind|price|made\n10|a|abc|1.5|NULL\n15|b|abc|2.35|1997-07-04 "
              "00:00:00\n20|c|abc|1.5|NULL\n"
              "25|d|x  |0|1997-07-04 10:30:15.127\n30|A|abc|3|NULL\n35|B|abc|4.7|NULL\n");
    EXPECT_EQ(server.value(QStringLiteral("SELECT COUNT(DISTINCT stamp) FROM T")), "6");
    EXPECT_EQ(
        server.value(QStringLiteral("INSERT T (name) VALUES ('z') SELECT @@IDENTITY, @@ROWCOUNT")),
        "40|1");
}

TEST_F(Changes, ExplicitIdentitiesMoveTheNextOne) {
    server.run(
        QStringLiteral("SET IDENTITY_INSERT T ON INSERT T (id, name) VALUES (100, 'a') SET "
                       "IDENTITY_INSERT T OFF"));
    server.run(QStringLiteral("INSERT T (name) VALUES ('b')"));
    EXPECT_EQ(server.value(QStringLiteral("SELECT id FROM T ORDER BY id")), "100\n105");
    EXPECT_EQ(
        server.value(QStringLiteral(
            "SELECT IDENT_SEED('T'), IDENT_INCR('dbo.T'), IDENT_CURRENT('T'), IDENT_SEED('U')")),
        "10|5|105|NULL");
}

TEST_F(Changes, UpdateAndDelete) {
    server.run(QStringLiteral("INSERT T (name, price) VALUES ('a', 1), ('b', 2), ('c', 3)"));
    server.run(QStringLiteral("INSERT U VALUES ('a', 7, 1), ('b', 8, 2)"));
    EXPECT_EQ(server.value(QStringLiteral("UPDATE T SET price = price * 10, made = '20200101' "
                                          "WHERE name <> 'b' SELECT @@ROWCOUNT")),
              "2");
    EXPECT_EQ(server.value(QStringLiteral("SELECT price FROM T ORDER BY id")), "10\n2\n30");
    server.run(
        QStringLiteral("UPDATE t SET price = u.n, kind = DEFAULT FROM T t INNER JOIN U u ON u.code "
                       "= t.name WHERE u.small > 1"));
    EXPECT_EQ(server.value(QStringLiteral("SELECT price FROM T ORDER BY id")), "10\n8\n30");
    server.run(QStringLiteral("UPDATE T SET price += 1, name = name + 'x'"));
    EXPECT_EQ(server.value(QStringLiteral("SELECT name, price FROM T ORDER BY id")),
              "ax|11\nbx|9\ncx|31");
    EXPECT_EQ(server.value(QStringLiteral(
                  "DECLARE @p money UPDATE T SET @p = price = 5 WHERE name = 'ax' SELECT @p")),
              "5");
    server.run(QStringLiteral("DELETE FROM T WHERE name = 'BX'"));
    server.run(QStringLiteral("DELETE T FROM T JOIN U ON U.code + 'x' = T.name"));
    EXPECT_EQ(server.value(QStringLiteral("SELECT name FROM T")), "cx");
    server.run(QStringLiteral("DELETE TOP (1) FROM U"));
    EXPECT_EQ(server.value(QStringLiteral("SELECT COUNT(*) FROM U")), "1");
    server.run(QStringLiteral("DELETE U"));
    EXPECT_EQ(server.value(QStringLiteral("SELECT COUNT(*) FROM U")), "0");
}

TEST_F(Changes, WhatIsRefusedLeavesNothingBehind) {
    server.run(QStringLiteral("INSERT U VALUES ('a', 1, 1)"));
    server.run(QStringLiteral("INSERT T (name) VALUES ('a')"));
    const struct {
        const char* sql;
        const char* expected;
    } cases[] = {
        {"INSERT T (name) VALUES ('toolong')", "8152: String or binary data would be truncated."},
        {"INSERT T (kind) VALUES ('x')",
         "515: Cannot insert the value NULL into column 'name', table 'Test.dbo.T'; column does "
         "not allow nulls. INSERT fails."},
        {"UPDATE T SET name = NULL",
         "515: Cannot insert the value NULL into column 'name', table 'Test.dbo.T'; column does "
         "not allow nulls. UPDATE fails."},
        {"INSERT U VALUES ('b', 2, 1), ('A', 3, 1)",
         "2627: Violation of UNIQUE KEY constraint 'UQ_U'. Cannot insert duplicate key in object "
         "'dbo.U'. The duplicate key value is (A)."},
        {"INSERT U VALUES ('c', 1, 1)",
         "2601: Cannot insert duplicate key row in object 'dbo.U' with unique index 'IX_n'. The "
         "duplicate key value is (1)."},
        {"SET IDENTITY_INSERT T ON INSERT T (id, name) VALUES (10, 'b')",
         "2627: Violation of PRIMARY KEY constraint 'PK_T'. Cannot insert duplicate key in object "
         "'dbo.T'. The duplicate key value is (10)."},
        {"SET IDENTITY_INSERT T OFF INSERT T (id, name) VALUES (11, 'b')",
         "544: Cannot insert explicit value for identity column in table 'T' when IDENTITY_INSERT "
         "is set to OFF."},
        {"INSERT T (nothing) VALUES (1)", "207: Invalid column name 'nothing'."},
        {"INSERT Missing VALUES (1)", "208: Invalid object name 'Missing'."},
        {"INSERT U VALUES ('x')",
         "213: Column name or number of supplied values does not match table definition."},
        {"INSERT U (code) VALUES ('x', 2)",
         "110: There are fewer columns in the INSERT statement than values specified in the VALUES "
         "clause. The number of values in the VALUES "
         "clause must match the number of columns specified in the INSERT statement."},
        {"INSERT U (code, n) VALUES ('x', 'abc')",
         "245: Conversion failed when converting the varchar value 'abc' to data type int."},
        {"INSERT U (code, small) VALUES ('x', 256)",
         "220: Arithmetic overflow error for data type tinyint, value = 256."},
        {"INSERT T (name, price) VALUES ('x', 12345.678)",
         "8115: Arithmetic overflow error converting numeric to data type decimal."},
        {"INSERT T (name, made) VALUES ('x', '2020-02-30')",
         "241: Conversion failed when converting date and/or time from character string."},
        {"INSERT T (name, twice) VALUES ('x', 1)",
         "271: The column \"twice\" cannot be modified because it is either a computed column or "
         "is the result of a UNION operator."},
        {"INSERT T (name, stamp) VALUES ('x', 0x01)",
         "273: Cannot insert an explicit value into a timestamp column. Use INSERT with a column "
         "list to exclude the timestamp column, or insert a "
         "DEFAULT into the timestamp column."},
        {"UPDATE T SET id = 5", "8102: Cannot update identity column 'id'."},
        {"UPDATE T SET nothing = 5", "207: Invalid column name 'nothing'."},
        {"DELETE Missing", "208: Invalid object name 'Missing'."},
        {"UPDATE T name = 5", "102: Incorrect syntax near 'name'."},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(server.error(QString::fromUtf8(c.sql)), c.expected) << c.sql;
        EXPECT_EQ(server.value(
                      QStringLiteral("SELECT (SELECT COUNT(*) FROM U), (SELECT COUNT(*) FROM T)")),
                  "1|1")
            << c.sql;
    }
}

TEST_F(Changes, EveryTypeReadsBackAsItWasWritten) {
    server.run(
        QStringLiteral("CREATE TABLE Types (b bit, t tinyint, s smallint, i int, l bigint, d9 "
                       "decimal(9,3), d38 decimal(38,4), m money, sm smallmoney, "
                       "r real, f float, da date, ti time(3), sd smalldatetime, dt datetime, d2 "
                       "datetime2, o datetimeoffset(0), c char(3), vc varchar(max), "
                       "tx text, nc nchar(3), nv nvarchar(10), nt ntext, x xml, bi binary(4), vb "
                       "varbinary(max), im image, g uniqueidentifier, v sql_variant)"));
    server.run(QString::fromUtf8(
        "INSERT Types VALUES (1, 255, -32768, 2147483647, -9223372036854775807, 123456.789, "
        "1234567890123456789012345678901234.5678, "
        "-922337203685477.5807, 214748.3647, 0.1, 1e300, '0001-01-01', '23:59:59.9994', '20200101 "
        "10:29:31', '99991231 23:59:59.997', "
        "'2020-02-29 12:00:00.1234567', '2020-01-01 10:00 -05:30', 'ab', 'it''s', 'text', "
        "N'\xE2\x82\xAC', N'\xF0\x9F\x98\x80z', N'\xC3\xA9', "
        "N'<a/>', 0x01, 0x, 0xFF00, '{6f9619ff-8b86-d011-b42d-00c04fc964ff}', 12)"));
    EXPECT_EQ(server.value(QStringLiteral("SELECT * FROM Types")),
              "True|255|-32768|2147483647|-9223372036854775807|123456.789|"
              "1234567890123456789012345678901234.5678|-922337203685477.5807|"
              "214748.3647|0.1|1e+300|0001-01-01|23:59:59.999|2020-01-01 10:30:00|9999-12-31 "
              "23:59:59.997|2020-02-29 12:00:00.1234567|"
              "2020-01-01 10:00:00 -05:30|ab |it's|text|\xE2\x82\xAC  "
              "|\xF0\x9F\x98\x80z|\xC3\xA9|<a/>|0x01000000|0x|0xFF00|"
              "{6F9619FF-8B86-D011-B42D-00C04FC964FF}|12");
    EXPECT_EQ(
        server.value(QStringLiteral(
            "SELECT COUNT(*) FROM Types WHERE d38 = 1234567890123456789012345678901234.5678 AND "
            "g = '6F9619FF-8B86-D011-B42D-00C04FC964FF' AND da = '0001-01-01' AND m < 0 AND c = "
            "'AB' AND b = 1")),
        "1");
    server.run(QStringLiteral("DELETE Types INSERT Types (i) VALUES (NULL)"));
    EXPECT_EQ(server.value(QStringLiteral("SELECT COUNT(*) FROM Types WHERE b IS NULL AND x IS "
                                          "NULL AND g IS NULL AND dt IS NULL")),
              "1");
}

}  // namespace
}  // namespace zov::local
