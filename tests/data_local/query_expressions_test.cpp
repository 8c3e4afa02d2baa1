// Expressions of T-SQL: what they give, and of which type.
#include "local_server.h"

#include <gtest/gtest.h>

namespace zov::local {
namespace {

struct Case {
    const char* sql;
    const char* expected;
};

class Expressions : public testing::Test {
 protected:
    static void SetUpTestSuite() {
        server = new LocalServer;
        server->run(QStringLiteral(
            "CREATE TABLE T (id int NOT NULL PRIMARY KEY, name nvarchar(20) NULL, code char(5) "
            "NULL, price money NULL, "
            "qty smallint NULL, ratio real NULL, made datetime NULL, day date NULL, wide "
            "decimal(38,10) NULL, "
            "amount decimal(10,2) NULL, flag bit NULL, guid uniqueidentifier NULL, bytes "
            "varbinary(10) NULL, at datetime2(3) NULL)\n"
            "INSERT T VALUES(1, N'Anna', 'ab', 12.5, 3, 0.25, '19970704 10:30', '1997-07-04', "
            "12345678901234567890.5, 10.10, 1, "
            "'6f9619ff-8b86-d011-b42d-00c04fc964ff', 0x0102, '2020-02-29 23:59:59.9996')\n"
            "INSERT T VALUES(2, N'bertha', 'AB', 7, 10, 1.5, '19971231', '1998-01-01', "
            "-0.0000000001, 3.33, 0, NULL, 0x, NULL)\n"
            "INSERT T(id) VALUES(3)"));
    }
    static void TearDownTestSuite() { delete server; }

    void check(const std::vector<Case>& cases) {
        for (const Case& c : cases) {
            std::string got;
            try {
                got = server->value(QString::fromUtf8(c.sql));
            } catch (const DbError& error) {
                got = "error " + std::to_string(error.native) + ": " +
                      error.description.toStdString();
            }
            EXPECT_EQ(got, c.expected) << c.sql;
        }
    }

    static LocalServer* server;
};
LocalServer* Expressions::server = nullptr;

TEST_F(Expressions, Arithmetic) {
    check({
        {"SELECT 7 / 2", "3"},
        {"SELECT -7 / 2", "-3"},
        {"SELECT -7 % 3", "-1"},
        {"SELECT 7 / 2.0", "3.5"},
        {"SELECT 1 + 2 * 3 - 4", "3"},
        {"SELECT (1 + 2) * 3", "9"},
        {"SELECT 10 - 3 - 2", "5"},
        {"SELECT 6 & 3 | 8", "10"},
        {"SELECT 6 ^ 3", "5"},
        {"SELECT ~5", "-6"},
        {"SELECT 0x80 & 255", "128"},
        {"SELECT '5' + 3", "8"},
        {"SELECT 0.1 + 0.2", "0.3"},
        {"SELECT amount * 3 FROM T WHERE id = 1", "30.3"},
        {"SELECT amount / 3 FROM T WHERE id = 1", "3.366666"},
        {"SELECT 2.0 / 3, 1.0 / 4, 0.3 / 0.1", "0.666666|0.25|3"},
        {"SELECT price * qty FROM T WHERE id = 1", "37.5"},
        {"SELECT CASE WHEN amount * 3 = 30.3 THEN 'exact' ELSE 'off' END FROM T WHERE id = 1",
         "exact"},
        {"SELECT NULL + 1", "NULL"},
        {"SELECT 1 / 0", "error 8134: Divide by zero error encountered."},
        {"SELECT 10 / (qty - qty) FROM T WHERE id = 1",
         "error 8134: Divide by zero error encountered."},
        {"SELECT 'abc' + 1",
         "error 245: Conversion failed when converting the varchar value 'abc' to data type int."},
        {"SELECT wide FROM T WHERE id = 1", "12345678901234567890.5"},
        {"SELECT id FROM T WHERE wide > 0 ORDER BY wide DESC", "1"},
        {"SELECT COUNT(*) FROM T WHERE wide = 12345678901234567890.5", "1"},
        {"SELECT SUM(wide) FROM T", "12345678901234567890.4999999999"},
    });
}

TEST_F(Expressions, TextsCompareIgnoringCaseAndBlanksBehind) {
    check({
        {"SELECT COUNT(*) FROM T WHERE name = 'ANNA'", "1"},
        {"SELECT COUNT(*) FROM T WHERE name = 'anna   '", "1"},
        {"SELECT COUNT(*) FROM T WHERE name = ' anna'", "0"},
        {"SELECT COUNT(*) FROM T WHERE code = 'ab'", "2"},
        {"SELECT COUNT(DISTINCT code) FROM T", "1"},
        {"SELECT COUNT(*) FROM T WHERE name LIKE '[a-b]%'", "2"},
        {"SELECT COUNT(*) FROM T WHERE name LIKE '[^a]%'", "1"},
        {"SELECT COUNT(*) FROM T WHERE name LIKE '_nn_'", "1"},
        {"SELECT COUNT(*) FROM T WHERE name NOT LIKE 'a%'", "1"},
        {"SELECT CASE WHEN '50%' LIKE '50!%' ESCAPE '!' THEN 1 ELSE 0 END", "1"},
        {"SELECT CASE WHEN 'a_b' LIKE 'a[_]b' THEN 1 ELSE 0 END", "1"},
        {"SELECT CASE WHEN 'aXb' LIKE 'a[_]b' THEN 1 ELSE 0 END", "0"},
        {"SELECT CASE WHEN UPPER(name) = 'anna' THEN 1 ELSE 0 END FROM T WHERE id = 1", "1"},
        {"SELECT CASE WHEN name COLLATE Latin1_General_BIN = 'ANNA' THEN 1 ELSE 0 END FROM T WHERE "
         "id = 1",
         "0"},
        {"SELECT CASE WHEN N'\xC3\x89t\xC3\xA9' = N'\xC3\xA9T\xC3\x89' THEN 1 ELSE 0 END", "1"},
        {"SELECT MAX(name) FROM T", "bertha"},
        {"SELECT name + '!' + code + '.' FROM T WHERE id = 1", "Anna!ab   ."},
        {"SELECT COUNT(*) FROM T WHERE name IN ('ANNA', 'x')", "1"},
        {"SELECT COUNT(*) FROM T WHERE name NOT IN (SELECT name FROM T WHERE id = 1)", "1"},
    });
}

TEST_F(Expressions, TextFunctions) {
    check({
        {"SELECT LEN('ab  ')", "2"},
        {"SELECT DATALENGTH('ab  ')", "4"},
        {"SELECT DATALENGTH(N'ab')", "4"},
        {"SELECT SUBSTRING('abcdef', 2, 3)", "bcd"},
        {"SELECT SUBSTRING('abcdef', 0, 3)", "ab"},
        {"SELECT LEFT('abc', 2) + RIGHT('abc', 1)", "abc"},
        {"SELECT LTRIM('  x ') + '.' + RTRIM(' y  ')", "x . y"},
        {"SELECT REPLACE('AbAb', 'a', 'x')", "xbxb"},
        {"SELECT STUFF('abcdef', 2, 3, 'XY')", "aXYef"},
        {"SELECT CHARINDEX('C', 'abcabc')", "3"},
        {"SELECT CHARINDEX('c', 'abcabc', 4)", "6"},
        {"SELECT PATINDEX('%[0-9]%', 'abc5d')", "4"},
        {"SELECT PATINDEX('ab%', 'abc')", "1"},
        {"SELECT REPLICATE('ab', 3)", "ababab"},
        {"SELECT LEN(REPLICATE('ab', 5000)) + LEN(REPLICATE(N'ab', 5000))", "12000"},
        {"SELECT LEN(REPLICATE(CAST(N'ab' AS nvarchar(max)), 5000))", "10000"},
        {"SELECT CAST(-9223372036854775808 AS bigint), CAST('-9223372036854775808' AS bigint)",
         "-9223372036854775808|-9223372036854775808"},
        {"SELECT '[' + SPACE(3) + ']'", "[   ]"},
        {"SELECT STR(12.345, 8, 2)", "   12.35"},
        {"SELECT QUOTENAME('a]b')", "[a]]b]"},
        {"SELECT ASCII('A'), 1", "65|1"},
        {"SELECT CHAR(65) + NCHAR(8364)", "A\xE2\x82\xAC"},
        {"SELECT UPPER('\xC3\xA9') + LOWER('ABC') + REVERSE('xyz')",
         "\xC3\x89"
         "abczyx"},
        {"SELECT CONCAT('a', NULL, 1, 'b')", "a1b"},
        {"SELECT ISNULL(NULL, 'x') + COALESCE(NULL, NULL, 'y') + ISNULL(NULLIF('a', 'A'), 'z')",
         "xyz"},
        {"SELECT IIF(1 > 2, 'a', 'b') + CHOOSE(2, 'p', 'q')", "bq"},
        {"SELECT ISNUMERIC('1.5') + ISNUMERIC('abc') + ISDATE('20200230') + ISDATE('2020-02-29')",
         "2"},
        {"SELECT PARSENAME('a.b.[c d]', 1)", "c d"},
        {"SELECT NOSUCH(1)", "error 195: 'NOSUCH' is not a recognized built-in function name."},
        {"SELECT LEFT('abc', -1)",
         "error 537: Invalid length parameter passed to the LEFT or SUBSTRING function."},
    });
}

TEST_F(Expressions, Dates) {
    check({
        {"SELECT COUNT(*) FROM T WHERE made BETWEEN '19970101' AND '19971231'", "2"},
        {"SELECT COUNT(*) FROM T WHERE made > 'Jul 4 1997 10:29AM'", "2"},
        {"SELECT COUNT(*) FROM T WHERE made < '07/05/1997'", "1"},
        {"SELECT COUNT(*) FROM T WHERE day = '19970704'", "1"},
        {"SELECT COUNT(*) FROM T WHERE day < made", "1"},
        {"SELECT COUNT(*) FROM T WHERE made IN ('1997-12-31', '2001-01-01')", "1"},
        {"SELECT at FROM T WHERE id = 1", "2020-03-01 00:00:00"},
        {"SELECT made + 1 FROM T WHERE id = 1", "1997-07-05 10:30:00"},
        {"SELECT DATEADD(month, 1, '20200131')", "2020-02-29 00:00:00"},
        {"SELECT DATEADD(mi, -30, made) FROM T WHERE id = 1", "1997-07-04 10:00:00"},
        {"SELECT DATEDIFF(year, '19991231', '20000101')", "1"},
        {"SELECT DATEDIFF(dd, '20200228', '20200301')", "2"},
        {"SELECT DATEPART(weekday, '20261122')", "1"},
        {"SELECT DATENAME(month, made) + ' ' + DATENAME(dw, made) FROM T WHERE id = 1",
         "July Friday"},
        {"SELECT YEAR(made) * 100 + MONTH(made) FROM T WHERE id = 1", "199707"},
        {"SELECT CONVERT(varchar(30), made, 120) FROM T WHERE id = 1", "1997-07-04 10:30:00"},
        {"SELECT CONVERT(varchar(30), made, 103) FROM T WHERE id = 1", "04/07/1997"},
        {"SELECT CONVERT(varchar(30), made) FROM T WHERE id = 1", "Jul  4 1997 10:30AM"},
        {"SELECT CONVERT(char(8), made, 112) FROM T WHERE id = 1", "19970704"},
        {"SELECT CONVERT(varchar(30), made, 126) FROM T WHERE id = 1", "1997-07-04T10:30:00"},
        {"SELECT CONVERT(datetime, '31/12/1999', 103)", "1999-12-31 00:00:00"},
        {"SET DATEFORMAT dmy SELECT CAST('02/01/1997' AS datetime)", "1997-01-02 00:00:00"},
        {"SET DATEFORMAT mdy SELECT CAST('02/01/1997' AS datetime)", "1997-02-01 00:00:00"},
        {"SELECT CAST('2020-01-01 10:20:30.005' AS datetime)", "2020-01-01 10:20:30.007"},
        {"SELECT CAST('10:20 PM' AS time(0))", "22:20:00"},
        {"SELECT COUNT(*) FROM T WHERE made = 'yesterday'",
         "error 241: Conversion failed when converting date and/or time from character string."},
        {"SELECT CAST('17520101' AS datetime)",
         "error 242: The conversion of a varchar data type to a datetime data type resulted in an "
         "out-of-range value."},
    });
}

TEST_F(Expressions, Conversions) {
    check({
        {"SELECT CAST(12.345 AS decimal(5,2))", "12.35"},
        {"SELECT CAST(1234.5 AS varchar(10))", "1234.5"},
        {"SELECT CAST(2.5 AS int)", "2"},
        {"SELECT CAST('abcdef' AS varchar(3))", "abc"},
        {"SELECT CAST(CAST(12.5 AS money) AS varchar(20))", "12.50"},
        {"SELECT CONVERT(varchar(20), CAST(1234567.5 AS money), 1)", "1,234,567.50"},
        {"SELECT CAST('$1,234.5' AS money)", "1234.5"},
        {"SELECT CAST('true' AS bit)", "True"},
        {"SELECT CAST(0x41 AS varchar(5))", "A"},
        {"SELECT CONVERT(varchar(10), 0x1fAB, 1)", "0x1FAB"},
        {"SELECT CAST(258 AS binary(4))", "0x00000102"},
        {"SELECT CAST(guid AS varchar(40)) FROM T WHERE id = 1",
         "6F9619FF-8B86-D011-B42D-00C04FC964FF"},
        {"SELECT guid FROM T WHERE guid = '{6F9619FF-8B86-D011-B42D-00C04FC964FF}'",
         "{6F9619FF-8B86-D011-B42D-00C04FC964FF}"},
        {"SELECT TRY_CAST('x' AS int)", "NULL"},
        {"SELECT ROUND(12.345, 1)", "12.3"},
        {"SELECT ROUND(1255, -2)", "1300"},
        {"SELECT FLOOR(-2.5), 0", "-3|0"},
        {"SELECT CEILING(2.1) + ABS(-3) + SIGN(-9)", "5"},
        {"SELECT POWER(2, 10)", "1024"},
        {"SELECT CAST(300 AS tinyint)",
         "error 220: Arithmetic overflow error for data type tinyint, value = 300."},
        {"SELECT CAST('1.5' AS int)",
         "error 245: Conversion failed when converting the varchar value '1.5' to data type int."},
        {"SELECT CAST('x' AS decimal(5,2))",
         "error 8114: Error converting data type varchar to decimal."},
        {"SELECT CAST('x' AS uniqueidentifier)",
         "error 8169: Conversion failed when converting from a character string to "
         "uniqueidentifier."},
        {"SELECT CAST(1 AS nosuch)", "error 243: Type nosuch is not a defined system type."},
    });
}

TEST_F(Expressions, ResultTypes) {
    const std::vector<Case> cases = {
        {"SELECT id, name, code, price, qty, ratio, made, day, wide, flag, guid, bytes, at FROM T",
         "int nvarchar(20) char(5) money smallint real datetime date decimal(38,10) bit "
         "uniqueidentifier varbinary(10) datetime2"},
        {"SELECT 1, 'abc', N'ab', 1.50, 1e0, $1, 0x01, NULL",
         "int varchar(3) nvarchar(2) numeric(3,2) float money varbinary(1) int"},
        {"SELECT COUNT(*), SUM(qty), AVG(price), MAX(name) FROM T", "int int money nvarchar(20)"},
        {"SELECT name + code, CAST(id AS bigint), amount * 2, id + 1.5 FROM T",
         "nvarchar(25) bigint decimal(12,2) numeric(12,1)"},
        {"SELECT CASE WHEN id = 1 THEN 'abc' ELSE N'defg' END, ISNULL(code, ''), GETDATE() FROM T",
         "nvarchar(4) char(5) datetime"},
        {"SELECT LEFT(name, 3), DB_NAME(), REPLACE(code, 'a', 'b'), CONVERT(nvarchar(max), id) "
         "FROM T",
         "nvarchar(3) nvarchar(128) varchar(8000) nvarchar(max)"},
        {"SELECT serverproperty('ProductVersion') AS ServerVer, ident_seed('T')",
         "sql_variant numeric(38,0)"},
    };
    for (const Case& c : cases) {
        if (c.expected) {
            EXPECT_EQ(server->types(QString::fromUtf8(c.sql)), c.expected) << c.sql;
        }
    }
}

TEST_F(Expressions, Variables) {
    check({
        {"DECLARE @a int, @b varchar(3) SET @a = 5 SELECT @b = 'abcdef' SELECT @a + 1, @b",
         "6|abc"},
        {"DECLARE @n nvarchar(20) SELECT @n = name FROM T WHERE id = 2 SELECT @n", "bertha"},
        {"DECLARE @d datetime SET @d = '19970704' SELECT COUNT(*) FROM T WHERE made >= @d", "2"},
        {"SELECT id FROM T WHERE id < 3 SELECT @@ROWCOUNT", "1\n2\n\n2"},
        {"SELECT @x", "error 137: Must declare the scalar variable \"@x\"."},
    });
}

}  // namespace
}  // namespace zov::local
