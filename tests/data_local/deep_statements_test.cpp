// Statements of many operands, and of many levels: long chains give what they add up to, deep
// nesting works or is refused with its line, and nothing ends the process.
#include "local_server.h"

#include <gtest/gtest.h>

namespace zov::local {
namespace {

class DeepStatements : public testing::Test {
 protected:
    static void SetUpTestSuite() {
        server = new LocalServer;
        server->run(QStringLiteral(
            "CREATE TABLE N (id int NOT NULL PRIMARY KEY, a int NULL, d decimal(9,2) NULL, name "
            "nvarchar(20) NULL)\n"
            "INSERT N VALUES (1, 3, 0.01, N'one'), (2, 5, 10.10, N'two'), (3, NULL, NULL, NULL)"));
    }
    static void TearDownTestSuite() { delete server; }

    static LocalServer* server;
};
LocalServer* DeepStatements::server = nullptr;

/// "x op x op x ...", `count` times.
QString chain(const QString& operand, const QString& op, int count) {
    QStringList parts;
    for (int i = 0; i < count; ++i) parts << operand;
    return parts.join(u' ' + op + u' ');
}

/// What the server says to the text: a value, or "error N: text".
std::string said(LocalServer& server, const QString& sql) {
    try {
        return server.value(sql);
    } catch (const DbError& error) {
        return "error " + std::to_string(error.native) + ": " + error.description.toStdString();
    }
}

struct Chain {
    const char* name;
    QString sql;
    std::string expected;
};

std::string lettersOf(const char* letters, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += letters;
    return text;
}

/// A chain of all operators on whole numbers and its value: * and % bind more tightly, the others
/// go from left to right.
std::pair<QString, int> operatorsByTurns(int count) {
    QString text = QStringLiteral("0");
    std::vector<std::pair<char, int>> terms{{'+', 0}};
    for (int i = 1; i < count; ++i) {
        const char op = "+-&|^*%"[i % 7];
        const int operand = i % 90 + 1;
        text += QStringLiteral(" %1 %2").arg(QLatin1Char(op)).arg(operand);
        if (op == '*')
            terms.back().second *= operand;
        else if (op == '%')
            terms.back().second %= operand;
        else
            terms.push_back({op, operand});
    }
    int value = 0;
    for (const auto& [op, term] : terms)
        value = op == '+'   ? value + term
                : op == '-' ? value - term
                : op == '&' ? value & term
                : op == '|' ? value | term
                            : value ^ term;
    return {text, value};
}

TEST_F(DeepStatements, AChainOfTenThousandOperandsGivesItsValue) {
    constexpr int Many = 10000;
    const auto [mixedText, mixed] = operatorsByTurns(Many);
    const QString select = QStringLiteral("SELECT ");
    const QString ofOne = QStringLiteral(" FROM N WHERE id = 1");
    const std::vector<Chain> chains = {
        {"sum of numbers", select + chain(QStringLiteral("1"), QStringLiteral("+"), Many), "10000"},
        {"sum of a column", select + chain(QStringLiteral("a"), QStringLiteral("+"), Many) + ofOne,
         "30000"},
        {"differences",
         select + QStringLiteral("100000 - ") +
             chain(QStringLiteral("a"), QStringLiteral("-"), Many) + ofOne,
         "70000"},
        {"a null among them",
         select + chain(QStringLiteral("a"), QStringLiteral("+"), Many) +
             QStringLiteral(" FROM N WHERE id = 3"),
         "NULL"},
        {"decimals, cent by cent",
         select + chain(QStringLiteral("d"), QStringLiteral("+"), Many) + ofOne, "100"},
        {"quotients",
         select + QStringLiteral("1024 / ") + chain(QStringLiteral("1"), QStringLiteral("/"), Many),
         "1024"},
        {"quotients of a column",
         select + QStringLiteral("a / ") + chain(QStringLiteral("id"), QStringLiteral("/"), Many) +
             ofOne,
         "3"},
        {"texts",
         select + QStringLiteral("LEN(") +
             chain(QStringLiteral("CAST(name AS nvarchar(max))"), QStringLiteral("+"), Many) +
             QStringLiteral(")") + ofOne,
         "30000"},
        {"exclusive or", select + chain(QStringLiteral("a"), QStringLiteral("^"), Many + 1) + ofOne,
         "3"},
        {"operators by turns", select + mixedText, std::to_string(mixed)},
        {"AND",
         select + QStringLiteral("COUNT(*) FROM N WHERE ") +
             chain(QStringLiteral("a > 2"), QStringLiteral("AND"), Many),
         "2"},
        {"OR",
         select + QStringLiteral("COUNT(*) FROM N WHERE ") +
             chain(QStringLiteral("a = 3"), QStringLiteral("OR"), Many),
         "1"},
        {"in a condition",
         QStringLiteral("IF ") + chain(QStringLiteral("1"), QStringLiteral("+"), Many) +
             QStringLiteral(" = 10000 SELECT 'yes'"),
         "yes"},
        {"in a variable",
         QStringLiteral("DECLARE @v int SET @v = ") +
             chain(QStringLiteral("2"), QStringLiteral("+"), Many) + QStringLiteral(" SELECT @v"),
         "20000"},
    };
    for (const Chain& c : chains) EXPECT_EQ(said(*server, c.sql), c.expected) << c.name;
}

TEST_F(DeepStatements, AChainIsWorkedOutFromTheLeft) {
    const std::vector<Chain> chains = {
        {"divide by zero",
         QStringLiteral("SELECT ") + chain(QStringLiteral("a"), QStringLiteral("+"), 900) +
             QStringLiteral(" / (a - a) FROM N WHERE id = 1"),
         "error 8134: Divide by zero error encountered."},
        {"T-SQL's ranks", QStringLiteral("SELECT 6 & 3 + 8, 1 + 2 & 2, 2 ^ 3 * 2, 8 - 3 ^ 1"),
         "10|2|4|4"},
        {"a division that isn't reached",
         QStringLiteral("SELECT CASE WHEN id = 1 THEN 1 ELSE ") +
             chain(QStringLiteral("(1 / (id - 1))"), QStringLiteral("+"), 900) +
             QStringLiteral(" END FROM N WHERE id = 1"),
         "1"},
        {"texts and what follows",
         QStringLiteral("SELECT ") + chain(QStringLiteral("'ab'"), QStringLiteral("+"), 600) +
             QStringLiteral(" + CAST(a AS varchar(9)) FROM N WHERE id = 1"),
         lettersOf("ab", 600) + "3"},
        {"beside an aggregate",
         QStringLiteral("SELECT ") + chain(QStringLiteral("COUNT(*)"), QStringLiteral("+"), 500) +
             QStringLiteral(" FROM N"),
         "1500"},
        {"within an aggregate",
         QStringLiteral("SELECT SUM(") + chain(QStringLiteral("a"), QStringLiteral("+"), 2000) +
             QStringLiteral(") FROM N"),
         "16000"},
        {"in groups and their order",
         QStringLiteral("SELECT id FROM N ORDER BY ") +
             chain(QStringLiteral("a"), QStringLiteral("+"), 1000) + QStringLiteral(" DESC"),
         "2\n1\n3"},
    };
    for (const Chain& c : chains) EXPECT_EQ(said(*server, c.sql), c.expected) << c.name;
}

TEST_F(DeepStatements, TenThousandPartsOfAUnionGiveTheirRows) {
    const auto parts = [](const QString& operation, int count, int modulo) {
        QStringList selects;
        for (int i = 0; i < count; ++i) selects << QStringLiteral("SELECT %1 AS n").arg(i % modulo);
        return selects.join(u' ' + operation + u' ');
    };
    const QString all = QStringLiteral("UNION ALL");
    const std::vector<Chain> unions = {
        {"rows and their sum",
         QStringLiteral("SELECT COUNT(*), SUM(n) FROM (") + parts(all, 10000, 10000) +
             QStringLiteral(") AS t"),
         "10000|49995000"},
        {"each row once",
         QStringLiteral("SELECT COUNT(*) FROM (") + parts(QStringLiteral("UNION"), 1000, 7) +
             QStringLiteral(") AS t"),
         "7"},
        {"UNION takes away what came before, not what follows",
         QStringLiteral("SELECT COUNT(*) FROM (") + parts(all, 600, 7) +
             QStringLiteral(" UNION SELECT 3 UNION ALL SELECT 3) AS t"),
         "8"},
        {"EXCEPT takes away from all before it",
         QStringLiteral("SELECT COUNT(*) FROM (") + parts(all, 600, 7) +
             QStringLiteral(" EXCEPT SELECT 3) AS t"),
         "6"},
        {"INTERSECT binds more tightly",
         QStringLiteral("SELECT COUNT(*) FROM (") + parts(all, 600, 600) +
             QStringLiteral(" UNION ALL SELECT 3 INTERSECT SELECT 4) AS t"),
         "600"},
        {"the first of them in order",
         parts(all, 1000, 1000) + QStringLiteral(" ORDER BY n DESC OFFSET 998 ROWS"), "1\n0"},
        {"rows of VALUES",
         QStringLiteral("SELECT COUNT(*), SUM(n) FROM (VALUES ") +
             chain(QStringLiteral("(2)"), QStringLiteral(","), 5000) + QStringLiteral(") AS t(n)"),
         "5000|10000"},
        {"inserted",
         QStringLiteral("CREATE TABLE U (n int) INSERT U ") + parts(all, 10000, 100) +
             QStringLiteral(" INSERT INTO U VALUES ") +
             chain(QStringLiteral("(100)"), QStringLiteral(","), 10000) +
             QStringLiteral(" SELECT COUNT(*), SUM(n) FROM U DROP TABLE U"),
         "20000|1495000"},
    };
    for (const Chain& c : unions) EXPECT_EQ(said(*server, c.sql), c.expected) << c.name;
}

/// Something around "1" or "1 = 1" a number of times.
struct Nest {
    const char* name;
    const char* before;
    const char* open;
    const char* middle;
    const char* close;
    const char* after;
    const char* expected;  ///< of an odd number
    int works;             ///< so deep at least
};

const Nest nests[] = {
    {"parentheses", "SELECT ", "(", "1", ")", "", "1", 1000},
    {"parentheses around conditions", "SELECT COUNT(*) FROM N WHERE ", "(", "1 = 1", ")", "", "3",
     1000},
    {"sums to the left", "SELECT ", "(", "1", " + 1)", "", "", 1000},
    {"sums to the right", "SELECT ", "(1 + ", "1", ")", "", "", 1000},
    {"sums of a column", "SELECT ", "(a + ", "1", ")", " FROM N WHERE id = 3", "NULL", 1000},
    {"signs", "SELECT ", "- ", "1", "", "", "-1", 1000},
    {"NOT", "SELECT COUNT(*) FROM N WHERE ", "NOT ", "1 = 2", "", "", "3", 250},
    {"CASE in ELSE", "SELECT ", "CASE WHEN a = 1 THEN 0 ELSE ", "7", " END", " FROM N WHERE id = 1",
     "7", 150},
    {"CASE in THEN", "SELECT ", "CASE WHEN a = 3 THEN ", "7", " ELSE 0 END", " FROM N WHERE id = 1",
     "7", 150},
    {"functions", "SELECT ", "ABS(", "a", ")", " FROM N WHERE id = 1", "3", 1000},
    {"REPLACE", "SELECT ", "REPLACE(", "name", ", 'x', 'y')", " FROM N WHERE id = 1", "one", 1000},
    {"COALESCE", "SELECT ", "COALESCE(", "a", ", 5)", " FROM N WHERE id = 3", "5", 150},
    {"CAST", "SELECT ", "CAST(", "a", " AS int)", " FROM N WHERE id = 1", "3", 1000},
    {"queries", "SELECT ", "(SELECT ", "7", ")", "", "7", 60},
    {"queries in parentheses", "", "(", "SELECT 7", ")", "", "7", 1000},
    {"derived tables", "", "SELECT n FROM (", "SELECT 7 AS n", ") AS t", "", "7", 60},
    {"EXISTS", "SELECT COUNT(*) FROM N WHERE ", "EXISTS (SELECT 1 FROM N WHERE ", "1 = 1", ")", "",
     "3", 32},
    {"IN", "SELECT COUNT(*) FROM N WHERE ", "1 IN (SELECT id FROM N WHERE ", "1 = 1", ")", "", "3",
     32},
    {"blocks", "", "BEGIN ", "SELECT 7", " END", "", "7", 1000},
    {"IF", "", "IF 1 = 1 ", "SELECT 7", "", "", "7", 1000},
    {"TRY", "", "BEGIN TRY ", "SELECT 7", " END TRY BEGIN CATCH END CATCH", "", "7", 1000},
};

QString nested(const Nest& nest, int depth) {
    const auto text = [](const char* part) { return QString::fromUtf8(part); };
    return text(nest.before) + text(nest.open).repeated(depth) + text(nest.middle) +
           text(nest.close).repeated(depth) + text(nest.after);
}

TEST_F(DeepStatements, NestingWorksOrIsRefused) {
    const std::string refused =
        "error 191: Some part of your SQL statement is nested too deeply. Rewrite the query or "
        "break it up into smaller queries.";
    for (const Nest& nest : nests) {
        for (const int depth : {1, 9, 33, 61, 151, 251, 501, 999, 1025, 2001, 100001}) {
            const std::string got = said(*server, nested(nest, depth));
            const std::string value = *nest.expected ? nest.expected : std::to_string(depth + 1);
            if (depth <= nest.works)
                EXPECT_EQ(got, value) << nest.name << " " << depth;
            else if (depth > 1024)
                EXPECT_EQ(got, refused) << nest.name << " " << depth;
            else
                EXPECT_TRUE(got == value || got == refused) << nest.name << " " << depth << got;
        }
    }
}

TEST_F(DeepStatements, WhatIsNestedMoreThanOnceIsNoWorkWithoutEnd) {
    // Each level of these is written or asked for twice.
    const Nest twice[] = {
        {"BETWEEN", "SELECT ", "CASE WHEN ", "a", " BETWEEN 1 AND 5 THEN 1 ELSE 0 END",
         " FROM N WHERE id = 1", "1", 3},
        {"CASE with an operand", "SELECT ", "CASE ", "a", " WHEN 1 THEN 2 WHEN 2 THEN 1 ELSE 1 END",
         " FROM N WHERE id = 1", "1", 3},
        {"COALESCE", "SELECT ", "COALESCE(", "a", ", 1, 2)", " FROM N WHERE id = 1", "3", 150},
        {"CONCAT", "SELECT ", "CONCAT('', ", "name", ")", " FROM N WHERE id = 1", "one", 500},
        {"exclusive or", "SELECT ", "(2 ^ ", "a", ")", " FROM N WHERE id = 1", "1", 500},
    };
    for (const Nest& nest : twice)
        for (const int depth : {1, 3, 21, 101, 301}) {
            const std::string got = said(*server, nested(nest, depth));
            if (depth <= nest.works)
                EXPECT_EQ(got, nest.expected) << nest.name << " " << depth;
            else
                EXPECT_TRUE(got == nest.expected || got.starts_with("error 191"))
                    << nest.name << got;
        }
    const Nest joins{"joins",
                     "SELECT COUNT(*) FROM ",
                     "((SELECT 1 AS a FROM ",
                     "N",
                     ") AS x CROSS JOIN (SELECT 1 AS b) AS y)",
                     "",
                     "3",
                     25};
    EXPECT_EQ(said(*server, nested(joins, joins.works)), joins.expected);
}

TEST_F(DeepStatements, PartsThatWereCutOffSeeTheQueriesAroundThem) {
    const auto deep = [](const QString& value) {
        return QStringLiteral("ABS(").repeated(40) + value + QString(40, u')');
    };
    const auto choice = [](const QString& value) {
        return QStringLiteral("CASE WHEN 1 = 2 THEN 0 ELSE ").repeated(40) + value +
               QStringLiteral(" END").repeated(40);
    };
    const std::vector<Chain> queries = {
        {"a column of each row",
         QStringLiteral("SELECT id, ") + deep(QStringLiteral("a")) +
             QStringLiteral(" FROM N ORDER BY id"),
         "1|3\n2|5\n3|NULL"},
        {"twice in one text",
         QStringLiteral("SELECT ") + deep(QStringLiteral("a")) + u'+' + deep(QStringLiteral("id")) +
             QStringLiteral(" FROM N WHERE id = 2"),
         "7"},
        {"a query within one",
         QStringLiteral("SELECT ") +
             choice(QStringLiteral("(SELECT MAX(o.id) FROM N AS o WHERE o.a < n.a)")) +
             QStringLiteral(" FROM N AS n ORDER BY n.id"),
         "NULL\n1\nNULL"},
        {"one within a query",
         QStringLiteral("SELECT n.id FROM N AS n WHERE EXISTS (SELECT 1 FROM N AS o WHERE o.id < "
                        "n.id AND ") +
             choice(QStringLiteral("o.a + n.id")) + QStringLiteral(" = 5)"),
         "2"},
        {"a branch that isn't taken",
         QStringLiteral("SELECT CASE WHEN id = 1 THEN 7 ELSE ") +
             deep(QStringLiteral("1 / (id - 1)")) + QStringLiteral(" END FROM N ORDER BY id"),
         "7\n1\n0"},
        {"groups",
         QStringLiteral("SELECT ") + deep(QStringLiteral("id % 2")) + QStringLiteral(", SUM(") +
             deep(QStringLiteral("a")) + QStringLiteral(") FROM N GROUP BY ") +
             deep(QStringLiteral("id % 2")) + QStringLiteral(" ORDER BY 1"),
         "0|5\n1|3"},
        {"a common table",
         QStringLiteral("WITH c AS (SELECT ") + deep(QStringLiteral("a")) +
             QStringLiteral(" AS v FROM N) SELECT ") +
             choice(QStringLiteral("(SELECT COUNT(*) FROM c WHERE v < x.v)")) +
             QStringLiteral(" FROM c AS x WHERE v = 5"),
         "1"},
        {"a comparison by its collation",
         QStringLiteral("SELECT COUNT(*) FROM N WHERE ") + QStringLiteral("REPLACE(").repeated(40) +
             QStringLiteral("name") + QStringLiteral(", 'x', 'y')").repeated(40) +
             QStringLiteral(" = N'ONE'"),
         "1"},
        {"a changed and a removed row",
         QStringLiteral("CREATE TABLE C (id int, v int) INSERT C VALUES (1, 1), (2, 2), (3, 3) "
                        "UPDATE C SET v = ") +
             chain(QStringLiteral("v"), QStringLiteral("+"), 2000) + u'+' +
             choice(QStringLiteral("id")) + QStringLiteral(" WHERE ") +
             choice(QStringLiteral("id")) + QStringLiteral(" > 1 DELETE C WHERE ") +
             deep(QStringLiteral("id")) + QStringLiteral(" = 2 SELECT id, v FROM C DROP TABLE C"),
         "1|1\n3|6003"},
    };
    for (const Chain& c : queries) EXPECT_EQ(said(*server, c.sql), c.expected) << c.name;

    LocalServer own;
    own.run(QStringLiteral("CREATE TABLE T (a int) INSERT T VALUES (2)"));
    own.run(QStringLiteral("CREATE VIEW V AS WITH c AS (SELECT a FROM T) SELECT ") +
            choice(QStringLiteral("(SELECT MAX(a) FROM c)")) + u'+' +
            chain(QStringLiteral("a"), QStringLiteral("+"), 3000) + QStringLiteral(" AS v FROM c"));
    EXPECT_EQ(said(own, QStringLiteral("SELECT v FROM V UNION ALL SELECT v + 1 FROM V")),
              "6002\n6003");
}

TEST_F(DeepStatements, ParenthesesAroundQueriesAreRead) {
    const Chain cases[] = {
        {"a query in a sum", QStringLiteral("SELECT ((SELECT 1) + 1)"), "2"},
        {"in a sum of parentheses", QStringLiteral("SELECT (((SELECT 1)) + (((SELECT 2))))"), "3"},
        {"a union of queries", QStringLiteral("SELECT ((SELECT 1) UNION (SELECT 1))"), "1"},
        {"a derived union",
         QStringLiteral("SELECT COUNT(*) FROM (((SELECT 1 AS n) UNION ALL (SELECT 2))) AS t"), "2"},
        {"joins in parentheses",
         QStringLiteral(
             "SELECT COUNT(*) FROM (((SELECT 1 AS n) AS a CROSS JOIN (N AS b JOIN N AS c "
             "ON b.id = c.id)) CROSS JOIN N AS d)"),
         "9"},
        {"a derived table needs its name", QStringLiteral("SELECT * FROM ((SELECT 1 AS n))"),
         "error 102: Incorrect syntax near ')'."},
        {"IN", QStringLiteral("SELECT COUNT(*) FROM N WHERE id IN (((SELECT 2)))"), "1"},
    };
    for (const Chain& c : cases) EXPECT_EQ(said(*server, c.sql), c.expected) << c.name;
}

TEST_F(DeepStatements, TooMuchOfAThingIsRefusedWithItsLine) {
    const auto failure = [&](const QString& sql) {
        try {
            server->run(sql);
        } catch (const DbError& error) {
            return std::to_string(error.line) + ": " + std::to_string(error.native) + ": " +
                   error.description.toStdString();
        }
        return std::string("no error");
    };
    const auto columns = [](int from, int count) {
        QStringList list;
        for (int i = 0; i < count; ++i) list << QStringLiteral("\nc%1 int").arg(from + i);
        return list.join(u',');
    };
    const std::string deep =
        "191: Some part of your SQL statement is nested too deeply. Rewrite the query or break it "
        "up into smaller queries.";
    EXPECT_EQ(failure(QStringLiteral("PRINT 'x'\n\nSELECT ") + QString(2000, u'(') + u'1' +
                      QString(2000, u')')),
              "3: " + deep);
    EXPECT_EQ(failure(QStringLiteral("BEGIN\n").repeated(100000)), "1025: " + deep);
    EXPECT_EQ(failure(QStringLiteral("CREATE TABLE W (a int DEFAULT\n") + QString(100000, u'(') +
                      u'1' + QString(100000, u')') + u')'),
              "2: " + deep);
    EXPECT_EQ(failure(QStringLiteral("PRINT 1\nCREATE TABLE W (a int, b AS ") +
                      chain(QStringLiteral("a"), QStringLiteral("+"), 10000) + u')'),
              "2: " + deep)
        << "a computed column, which SQLite has to hold, isn't nothing";
    EXPECT_EQ(failure(QStringLiteral("CREATE TABLE W (") + columns(1, 100000) + u')'),
              "1026: 1702: CREATE TABLE failed because column 'c1025' in table 'W' exceeds the "
              "maximum of 1024 columns.");
    server->run(QStringLiteral("CREATE TABLE W (") + columns(1, 1024) + u')');
    EXPECT_EQ(failure(QStringLiteral("ALTER TABLE W ADD c1025 int")),
              "1: 1702: ALTER TABLE failed because column 'c1025' in table 'W' exceeds the maximum "
              "of 1024 columns.");
    EXPECT_EQ(failure(QStringLiteral("SELECT ") +
                      chain(QStringLiteral("1"), QStringLiteral(","), 100000)),
              "1: 1056: The number of elements in the select list exceeds the maximum allowed "
              "number of 4096 elements.");
    EXPECT_EQ(failure(QStringLiteral("SELECT 1 FROM ") +
                      chain(QStringLiteral("N"), QStringLiteral("CROSS JOIN"), 100000)),
              "1: 106: Too many table names in the query. The maximum allowable is 256.");
}

TEST_F(DeepStatements, DefaultsAndChoicesAreAsLongAsTheyLike) {
    LocalServer own;
    own.run(QStringLiteral("CREATE TABLE D (id int, plain int DEFAULT ") + QString(900, u'(') +
            u'7' + QString(900, u')') + QStringLiteral(", summed int DEFAULT ") +
            chain(QStringLiteral("1"), QStringLiteral("+"), 400) +
            QStringLiteral(", many int DEFAULT ") +
            chain(QStringLiteral("1"), QStringLiteral("+"), 10000) + QStringLiteral(", c AS ") +
            chain(QStringLiteral("id"), QStringLiteral("+"), 200) + QStringLiteral(")"));
    own.run(QStringLiteral("INSERT D(id) VALUES (2)"));
    EXPECT_EQ(said(own, QStringLiteral("SELECT * FROM D")), "2|7|400|10000|400");
    EXPECT_EQ(said(own, QStringLiteral("SELECT definition FROM sys.default_constraints WHERE "
                                       "definition LIKE '%7%'")),
              "((7))");
    // IF ... ELSE IF ... is a row, however long.
    EXPECT_EQ(said(own, QStringLiteral("DECLARE @i int SET @i = 9999\n") +
                            QStringLiteral("IF @i = 0 SELECT 'no' ELSE ").repeated(10000) +
                            QStringLiteral("SELECT 'last'")),
              "last");
}

}  // namespace
}  // namespace zov::local
