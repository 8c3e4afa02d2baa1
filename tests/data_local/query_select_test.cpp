// SELECT: joins, grouping, ordering, unions, views, names, and what is refused.
#include "local_server.h"

#include <gtest/gtest.h>

namespace zov::local {
namespace {

struct Case {
    const char* sql;
    const char* expected;
};

class Selects : public testing::Test {
 protected:
    static void SetUpTestSuite() {
        server = new LocalServer;
        server->run(
            QStringLiteral("CREATE TABLE Customers (Id int NOT NULL PRIMARY KEY, Name nvarchar(20) "
                           "NOT NULL, City nvarchar(20) NULL)\n"
                           "CREATE TABLE Orders (Id int NOT NULL PRIMARY KEY, CustomerId int NULL, "
                           "Total money NOT NULL, Placed datetime NOT NULL)\n"
                           "CREATE TABLE [Odd ]] \"name\"] ([a b] int NOT NULL, [c]]d] int NULL, "
                           "[select] int NULL, [\u00e9t\u00e9.x] nvarchar(10) NULL)\n"
                           "INSERT Customers VALUES(1, N'Anna', N'Oslo')\n"
                           "INSERT Customers VALUES(2, N'Bert', N'Rome'), (3, N'Cleo', NULL), (4, "
                           "N'anna', N'Oslo')\n"
                           "INSERT Orders VALUES(10, 1, 5, '20200101'), (11, 1, 7.5, '20200201'), "
                           "(12, 2, 1, '20200301'), (13, NULL, 9, '20200401')\n"
                           "INSERT [Odd ]] \"name\"] VALUES(1, 2, 3, N'x')"));
        server->run(QStringLiteral("CREATE SCHEMA sales"));
        server->run(
            QStringLiteral("CREATE TABLE sales.Orders (Id int NOT NULL, Note varchar(10) NULL)"));
        server->run(QStringLiteral("INSERT sales.Orders VALUES(1, 'other')"));
        server->run(
            QStringLiteral("CREATE VIEW Totals (Who, Amount) AS SELECT c.Name, SUM(o.Total) FROM "
                           "Customers c JOIN Orders o "
                           "ON o.CustomerId = c.Id GROUP BY c.Name"));
        server->run(
            QStringLiteral("/* over another */ CREATE VIEW dbo.Rich AS SELECT * FROM Totals WHERE "
                           "Amount > 2 WITH CHECK OPTION"));
    }
    static void TearDownTestSuite() { delete server; }

    static void check(const std::vector<Case>& cases) {
        for (const Case& c : cases) {
            std::string got;
            try {
                got = server->value(QString::fromUtf8(c.sql));
            } catch (const DbError& error) {
                got = std::to_string(error.native) + ": " + error.description.toStdString();
            }
            EXPECT_EQ(got, c.expected) << c.sql;
        }
    }

    static LocalServer* server;
};
LocalServer* Selects::server = nullptr;

TEST_F(Selects, Joins) {
    check({
        {"SELECT c.Name, o.Total FROM Customers c INNER JOIN Orders o ON o.CustomerId = c.Id ORDER "
         "BY o.Id",
         "Anna|5\nAnna|7.5\nBert|1"},
        {"SELECT c.Name, o.Id FROM Customers c LEFT JOIN Orders o ON o.CustomerId = c.Id ORDER BY "
         "c.Id, o.Id",
         "Anna|10\nAnna|11\nBert|12\nCleo|NULL\nanna|NULL"},
        {"SELECT c.Name, o.Id FROM Customers c RIGHT OUTER JOIN Orders o ON o.CustomerId = c.Id "
         "ORDER BY o.Id",
         "Anna|10\nAnna|11\nBert|12\nNULL|13"},
        {"SELECT COUNT(*) FROM Customers c FULL JOIN Orders o ON o.CustomerId = c.Id", "6"},
        {"SELECT COUNT(*) FROM Customers, Orders", "16"},
        {"SELECT COUNT(*) FROM Customers CROSS JOIN Orders", "16"},
        {"SELECT c.Name FROM Customers c, Orders o WHERE c.Id = o.CustomerId AND o.Id = 12",
         "Bert"},
        {"SELECT COUNT(*) FROM (Customers a INNER JOIN (Orders b INNER JOIN Customers d ON "
         "b.CustomerId = d.Id) ON a.Id = d.Id)",
         "3"},
        {"SELECT COUNT(*) FROM Customers a LEFT JOIN (Orders b INNER JOIN Customers d ON "
         "b.CustomerId = d.Id) ON a.Id = d.Id",
         "5"},
        {"SELECT COUNT(*) FROM Customers a LEFT JOIN Orders b INNER JOIN Customers d ON "
         "b.CustomerId = d.Id ON a.Id = d.Id",
         "5"},
        {"SELECT Customers.Name FROM Customers WITH (NOLOCK) JOIN dbo.Orders (NOLOCK) ON "
         "dbo.Orders.CustomerId = Customers.Id WHERE Orders.Id = 10",
         "Anna"},
    });
}

TEST_F(Selects, GroupingAndOrdering) {
    check({
        {"SELECT City, COUNT(*) FROM Customers GROUP BY City ORDER BY City",
         "NULL|1\nOslo|2\nRome|1"},
        {"SELECT Name, COUNT(*) AS n FROM Customers GROUP BY Name HAVING COUNT(*) > 1", "Anna|2"},
        {"SELECT CustomerId, MAX(Total) FROM Orders GROUP BY CustomerId HAVING MAX(Total) >= 5 "
         "ORDER BY 2 DESC",
         "NULL|9\n1|7.5"},
        {"SELECT DISTINCT Name FROM Customers WHERE Name LIKE 'a%'", "Anna"},
        {"SELECT AVG(Id), AVG(Total) FROM Orders", "11|5.625"},
        {"SELECT TOP 2 Id FROM Orders ORDER BY Total DESC", "13\n11"},
        {"SELECT TOP (1) Id FROM Orders ORDER BY Placed", "10"},
        {"SELECT Id FROM Orders ORDER BY Id OFFSET 1 ROWS FETCH NEXT 2 ROWS ONLY", "11\n12"},
        {"SELECT Id AS [an alias] FROM Orders ORDER BY [an alias] DESC", "13\n12\n11\n10"},
        {"SELECT twice = Id * 2 FROM Orders WHERE Id < 12 ORDER BY twice DESC", "22\n20"},
        {"SELECT Name FROM Customers ORDER BY LEN(Name), Name DESC, Id", "Cleo\nBert\nAnna\nanna"},
        {"SELECT Id, ROW_NUMBER() OVER (PARTITION BY CustomerId ORDER BY Total DESC) FROM Orders "
         "WHERE CustomerId = 1 ORDER BY Id",
         "10|2\n11|1"},
        {"SELECT CAST(g AS varchar(36)) FROM (VALUES (CAST('00000002-0000-0000-0000-000000000001' "
         "AS uniqueidentifier)), "
         "(CAST('00000001-0000-0000-0000-000000000002' AS uniqueidentifier))) AS v(g) ORDER BY g "
         "DESC",
         "00000001-0000-0000-0000-000000000002\n00000002-0000-0000-0000-000000000001"},
        {"SELECT Id FROM Orders ORDER BY 3",
         "108: The ORDER BY position number 3 is out of range of the number of items in the select "
         "list."},
    });
}

TEST_F(Selects, SubqueriesAndUnions) {
    check({
        {"SELECT Name FROM Customers c WHERE EXISTS (SELECT * FROM Orders WHERE CustomerId = c.Id) "
         "ORDER BY 1",
         "Anna\nBert"},
        {"SELECT Name FROM Customers WHERE Id NOT IN (SELECT CustomerId FROM Orders WHERE "
         "CustomerId IS NOT NULL) ORDER BY Id",
         "Cleo\nanna"},
        {"SELECT Id FROM Orders WHERE Total > (SELECT AVG(Total) FROM Orders) ORDER BY Id",
         "11\n13"},
        {"SELECT Id FROM Orders WHERE Total >= ALL (SELECT Total FROM Orders)", "13"},
        {"SELECT (SELECT MAX(Total) FROM Orders o WHERE o.CustomerId = c.Id) FROM Customers c "
         "ORDER BY c.Id",
         "7.5\n1\nNULL\nNULL"},
        {"SELECT t.n FROM (SELECT COUNT(*) AS n FROM Orders) t", "4"},
        {"SELECT x FROM (VALUES (1), (2)) AS v(x) ORDER BY x DESC", "2\n1"},
        {"SELECT UPPER(Name) AS Name FROM Customers WHERE Id = 4 UNION SELECT N'ANNA' UNION ALL "
         "SELECT N'Zoe' ORDER BY Name",
         "ANNA\nZoe"},
        {"SELECT Name FROM Customers EXCEPT SELECT 'anna' ORDER BY 1", "Bert\nCleo"},
        {"SELECT Id FROM Customers INTERSECT SELECT CustomerId FROM Orders ORDER BY Id", "1\n2"},
        {"WITH big AS (SELECT * FROM Orders WHERE Total > 5) SELECT COUNT(*) FROM big", "2"},
        {"WITH n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 5) SELECT SUM(i) FROM n",
         "15"},
        {"SELECT Id, Name FROM Customers UNION SELECT 1",
         "205: All queries combined using a UNION, INTERSECT or EXCEPT operator must have an equal "
         "number of expressions in their target lists."},
    });
}

TEST_F(Selects, ViewsAreReadThroughTheirText) {
    check({
        {"SELECT * FROM Totals ORDER BY Who", "Anna|12.5\nBert|1"},
        {"SELECT Who FROM dbo.Rich", "Anna"},
        {"SELECT COUNT(*) FROM Rich r JOIN Customers c ON c.Name = r.Who", "2"},
    });
    EXPECT_EQ(server->types(QStringLiteral("SELECT * FROM Rich")), "nvarchar(20) money");
    server->run(QStringLiteral("CREATE TABLE Gone (a int)"));
    server->run(QStringLiteral("CREATE VIEW OfGone AS SELECT a FROM Gone"));
    server->run(QStringLiteral("DROP TABLE Gone"));
    EXPECT_EQ(server->error(QStringLiteral("SELECT * FROM OfGone")),
              "208: Invalid object name 'Gone'. Could not use view or function 'OfGone' because of "
              "binding errors.");
    server->run(QStringLiteral("DROP VIEW OfGone"));
}

TEST_F(Selects, NamesOfAllKinds) {
    check({
        {"SELECT [a b] + [c]]d] + [select] FROM [Odd ]] \"name\"]", "6"},
        {"SELECT \"a b\" FROM \"Odd ] \"\"name\"\"\"", "1"},
        {"SELECT o.[\u00e9t\u00e9.x] FROM dbo.[Odd ]] \"name\"] o", "x"},
        {"SELECT Note FROM sales.Orders", "other"},
        {"SELECT COUNT(*) FROM Test.dbo.Orders", "4"},
        {"SELECT COUNT(*) FROM Test..Orders", "4"},
        {"SELECT COUNT(*) FROM ORDERS", "4"},
        {"SELECT dbo.Orders.Id, sales.Orders.Id FROM dbo.Orders, sales.Orders WHERE dbo.Orders.Id "
         "= 10",
         "10|1"},
        {"SELECT Name AS 'a name', Name [another], \"third\" = Id FROM Customers WHERE Id = 2",
         "Bert|Bert|2"},
    });
    EXPECT_EQ(server->rows(QStringLiteral(
                  "SELECT Id, Id, COUNT(*) FROM Customers WHERE Id = 1 GROUP BY Id")),
              "Id|Id|\n1|1|1\n");
}

TEST_F(Selects, WhatIsWrongIsToldAsTheServerDoes) {
    check({
        {"SELECT * FROM Missing", "208: Invalid object name 'Missing'."},
        {"SELECT * FROM sales.Customers", "208: Invalid object name 'sales.Customers'."},
        {"SELECT * FROM nowhere.dbo.Orders", "208: Invalid object name 'nowhere.dbo.Orders'."},
        {"SELECT nothing FROM Orders", "207: Invalid column name 'nothing'."},
        {"SELECT Id FROM Customers, Orders", "209: Ambiguous column name 'Id'."},
        {"SELECT z.Id FROM Orders o",
         "4104: The multi-part identifier \"z.Id\" could not be bound."},
        {"SELECT Orders.Id FROM Orders o",
         "4104: The multi-part identifier \"Orders.Id\" could not be bound."},
        {"SELECT Id FROM Orders WHERE", "156: Incorrect syntax near the keyword 'WHERE'."},
        {"SELECT (1 + 2", "102: Incorrect syntax near '2'."},
        {"SELECT 'abc", "105: Unclosed quotation mark after the character string 'abc'."},
        {"SELECT COUNT(*) AS n FROM Orders WHERE Id = '1' AND Total = 'x'y'",
         "105: Unclosed quotation mark after the character string ''."},
        {"SELECT Id FROM Orders GROUP", "156: Incorrect syntax near the keyword 'GROUP'."},
        {"SELECT *", "263: Must specify table to select from."},
        {"SELECT Id FROM Orders WHERE Id",
         "4145: An expression of non-boolean type specified in a context where a condition is "
         "expected, near 'Id'."},
        {"SELECT (SELECT Id, Name FROM Customers)",
         "116: Only one expression can be specified in the select list when the subquery is not "
         "introduced with EXISTS."},
        {"SELECT * FROM Orders a, Customers a",
         "1012: The objects \"a\" and \"a\" in the FROM clause have the same exposed names. Use "
         "correlation names to distinguish them."},
        {"SELECT dbo.fn_none(1)",
         "0: The function 'dbo.fn_none' can't be called: the embedded server keeps functions as "
         "text and does not run them."},
    });
}

TEST_F(Selects, AStatementOfOneShapeIsReadAnewForEachLiteral) {
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(server->value(QStringLiteral("SELECT Name FROM Customers WHERE Id = 1")), "Anna");
        EXPECT_EQ(server->value(QStringLiteral("SELECT Name FROM Customers WHERE Id = 2")), "Bert");
        EXPECT_EQ(server->types(QStringLiteral("SELECT 'ab' FROM Customers WHERE Id = 2")),
                  "varchar(2)");
        EXPECT_EQ(server->types(QStringLiteral("SELECT 'abcd' FROM Customers WHERE Id = 2")),
                  "varchar(4)");
        EXPECT_EQ(server->value(QStringLiteral("SELECT TOP 1 Id FROM Orders ORDER BY 1")), "10");
        EXPECT_EQ(server->value(QStringLiteral("SELECT TOP 2 Id FROM Orders ORDER BY 1")),
                  "10\n11");
        EXPECT_EQ(server->value(QStringLiteral(
                      "SELECT LEFT(Name, 1) + 'x' FROM Customers WHERE Name = 'bert'")),
                  "Bx");
        EXPECT_EQ(server->value(QStringLiteral(
                      "SELECT LEFT(Name, 2) + 'y' FROM Customers WHERE Name = 'cleo'")),
                  "Cly");
    }
    // A change of the table is seen by statements that were prepared before it.
    server->run(QStringLiteral("CREATE TABLE Changing (a int)"));
    EXPECT_EQ(server->rows(QStringLiteral("SELECT * FROM Changing")), "a\n");
    server->run(QStringLiteral("ALTER TABLE Changing ADD b varchar(5) NULL"));
    EXPECT_EQ(server->rows(QStringLiteral("SELECT * FROM Changing")), "a|b\n");
    const auto other = server->open(QStringLiteral("Test"));
    EXPECT_EQ(LocalServer::rows(*other, QStringLiteral("SELECT * FROM Changing")), "a|b\n");
    server->run(QStringLiteral("DROP TABLE Changing"));
    server->run(QStringLiteral("CREATE TABLE Changing (c int)"));
    EXPECT_EQ(LocalServer::rows(*other, QStringLiteral("SELECT * FROM Changing")), "c\n");
    server->run(QStringLiteral("DROP TABLE Changing"));
    EXPECT_THROW(LocalServer::rows(*other, QStringLiteral("SELECT * FROM Changing")), DbError);
}

TEST_F(Selects, TornStatementsEndInAnErrorAndNothingElse) {
    const char* const statements[] = {
        "SELECT TOP 2 c.Name AS n, COUNT(*) FROM Customers c LEFT JOIN Orders o ON o.CustomerId = "
        "c.Id WHERE c.Id IN (1, 2) AND "
        "c.Name LIKE 'a%' GROUP BY c.Name HAVING COUNT(*) > 0 ORDER BY 2 DESC",
        "SELECT CASE WHEN Id BETWEEN 1 AND 3 THEN 'x' ELSE CAST(Id AS varchar(5)) END FROM (SELECT "
        "Id FROM Orders UNION ALL SELECT 1) t "
        "WHERE EXISTS (SELECT * FROM Customers WHERE City IS NOT NULL)",
        "WITH w (a) AS (SELECT Id FROM Orders) SELECT a, ROW_NUMBER() OVER (ORDER BY a DESC) FROM "
        "w WHERE NOT a = ALL (SELECT 1)",
        "INSERT INTO Customers (Id, Name) SELECT Id + 100, N'x' FROM Orders WHERE 1 = 0",
        "UPDATE c SET Name = 'z', City = DEFAULT FROM Customers c JOIN Orders o ON o.Id = c.Id "
        "WHERE o.Total > $1.5 AND 1 = 0",
        "DELETE TOP (1) FROM Customers WHERE Id = -1 AND DATEDIFF(day, '20200101', GETDATE()) > "
        "1e3",
    };
    int torn = 0, refused = 0;
    for (const char* statement : statements) {
        const QStringList words = QString::fromLatin1(statement).split(u' ');
        for (qsizetype i = 0; i < words.size(); ++i) {
            QStringList without = words, twice = words, cut = words.mid(0, i);
            without.removeAt(i);
            twice.insert(i, words[i]);
            for (const QStringList& text : {without, twice, cut}) {
                // What still is a statement may change rows: none of that is kept.
                const std::string outcome =
                    server->error(QStringLiteral("BEGIN TRAN ") + text.join(u' '));
                server->error(QStringLiteral("IF @@TRANCOUNT > 0 ROLLBACK TRAN"));
                ++torn;
                refused += outcome != "no error";
            }
        }
    }
    EXPECT_GT(torn, 400);
    EXPECT_GT(refused, torn / 2);
    EXPECT_EQ(server->value(QStringLiteral(
                  "SELECT (SELECT COUNT(*) FROM Customers), (SELECT COUNT(*) FROM Orders)")),
              "4|4");
    // Nesting without end is refused before the stack is.
    EXPECT_EQ(
        server
            ->error(QStringLiteral("SELECT ") + QString(20000, u'(') + u'1' + QString(20000, u')'))
            .substr(0, 4),
        "191:");
    EXPECT_EQ(
        server
            ->error(QStringLiteral("SELECT ") +
                    QString(20000, u'-').replace(QStringLiteral("--"), QStringLiteral("- ")) + u'1')
            .substr(0, 4),
        "191:");
}

}  // namespace
}  // namespace zov::local
