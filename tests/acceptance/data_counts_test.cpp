// Rows told apart, held against plain SQL on the same databases: the samples, and Northwind against
// a copy that a script changed. Then the same over ODBC: the same counts, and the same file to the
// byte.
#include "wired_server.h"

namespace zov::acceptance {
namespace {

constexpr char Changes[] = R"sql(
UPDATE Orders SET Freight = Freight + 1 WHERE OrderID % 37 = 0
UPDATE Orders SET ShipRegion = 'Null' WHERE ShipRegion IS NULL AND OrderID % 50 = 1
UPDATE Orders SET ShippedDate = NULL WHERE OrderID % 71 = 2
UPDATE Customers SET City = UPPER(City) WHERE Country = 'Germany'
UPDATE Customers SET ContactName = ContactName + N'  ' WHERE Country = 'France'
UPDATE Customers SET Fax = NULL WHERE Country = 'UK'
INSERT INTO Customers (CustomerID, CompanyName, Country) VALUES (N'O''REI', N'O''Reilly, "Books" & <Co>', N'Eire')
UPDATE [Order Details] SET Quantity = Quantity + 1 WHERE ProductID = 11
DELETE FROM [Order Details] WHERE ProductID = 23
INSERT INTO [Order Details] (OrderID, ProductID, UnitPrice, Quantity, Discount) VALUES (10248, 77, 13, 5, 0)
DELETE FROM [Order Details] WHERE OrderID IN (10250, 10400, 11077)
DELETE FROM Orders WHERE OrderID IN (10250, 10400, 11077)
UPDATE Categories SET Description = N'Seaweed and more' WHERE CategoryID = 8
UPDATE Employees SET Photo = 0x01 WHERE EmployeeID = 4
GO
)sql";

/// A table of two databases. Northwind's is left out where its script isn't there.
struct Table {
    const char*
        source;  ///< by key: the database with fewer rows, so that the walk sees all of them
    const char* target;
    const char* name;
    const char* sqlName;
    const char* keys;   ///< one to three
    const char* texts;  ///< the compared columns without the keys
    const char* others;
};
constexpr Table Tables[] = {
    {"ShopBefore", "ShopAfter", "SalesOrder", "sales.SalesOrder", "OrderNo", "Status,Remarks",
     "CustomerNo,OrderDate,RequiredDate,ShippedOn,Freight"},
    {"ShopBefore", "ShopAfter", "Lot", "stock.Lot", "LotNo", "Garden",
     "PurchaseNo,LineNo,HarvestedOn,BestBefore,Certificate"},
    {"ShopBefore", "ShopAfter", "OrderLine", "sales.OrderLine", "OrderNo,LineNo", "",
     "ProductId,Quantity,UnitPrice,DiscountPct,LineTotal"},
    {"ShopBefore", "ShopAfter", "Price List", "sales.[Price List]", "ProductId,ValidFrom,Currency",
     "", "ValidTo,Net Price"},
    {"Northwind", "Changed", "Customers", "dbo.Customers", "CustomerID",
     "CompanyName,ContactName,ContactTitle,Address,City,Region,PostalCode,Country,Phone,Fax", ""},
    {"Changed", "Northwind", "Orders", "dbo.Orders", "OrderID",
     "CustomerID,ShipName,ShipAddress,ShipCity,ShipRegion,ShipPostalCode,ShipCountry",
     "EmployeeID,OrderDate,RequiredDate,ShippedDate,ShipVia,Freight"},
    {"Changed", "Northwind", "Order Details", "dbo.[Order Details]", "OrderID,ProductID", "",
     "UnitPrice,Quantity,Discount"},
    {"Changed", "Northwind", "Order Details", "dbo.[Order Details]", "ProductID,Quantity,OrderID",
     "", "UnitPrice,Discount"},
};

QStringList names(const char* list) {
    return QString::fromLatin1(list).split(u',', Qt::SkipEmptyParts);
}

class DataCounts : public ::testing::Test {
 protected:
    static void SetUpTestSuite() {
        home_ = new CliHome;
        folder_ = "local:" + home_->path("servers");
        home_->load(folder_, "ShopBefore", {samplesFolder() + "shop_before.sql"});
        home_->load(folder_, "ShopAfter", {samplesFolder() + "shop_after.sql"});
        if (hasNorthwind()) {
            home_->load(folder_, "Northwind", {publishedScriptsFolder() + "northwind.sql"});
            home_->load(folder_, "Changed", {publishedScriptsFolder() + "northwind.sql"});
            home_->loadText(folder_, "Changed", Changes);
        }
        endpoint_ = new TdsEndpoint;
        serve(*endpoint_, folder_, *home_);
    }
    static void TearDownTestSuite() {
        delete endpoint_;
        delete home_;
    }
    static bool hasNorthwind() { return !publishedScriptsFolder().isEmpty(); }
    static std::vector<Table> tables() {
        std::vector<Table> there;
        for (const Table& table : Tables)
            if (hasNorthwind() || QByteArrayView(table.source).startsWith("Shop"))
                there.push_back(table);
        return there;
    }

    static CliResult data(const QString& server, const QString& source, const QString& target,
                          const QStringList& options) {
        return home_->run(QStringList{"data", "--source", server, "--source-db", source, "--target",
                                      server, "--target-db", target} +
                          options);
    }
    /// "A different B" of a summary: both tables' rows and the differences.
    static QList<int> counts(const CliResult& result, const Table& table) {
        if (result.status == 0) {
            const int rows =
                count(table.source, QStringLiteral("SELECT COUNT(*) FROM ") + table.sqlName);
            return {rows, rows, 0};
        }
        EXPECT_EQ(result.status, 1) << ::testing::PrintToString(result);
        QList<int> numbers;
        for (const QString& line :
             result.outLines().first(std::min<qsizetype>(3, result.outLines().size())))
            numbers += line.section(u' ', -1).remove(u',').toInt();
        return numbers;
    }
    /// The first line in which two texts differ; empty when they are the same.
    static QString firstDifference(const QString& a, const QString& b) {
        const QStringList lines = a.split(u'\n'), others = b.split(u'\n');
        for (qsizetype i = 0; i < std::max(lines.size(), others.size()); ++i)
            if (lines.value(i) != others.value(i))
                return "line " + QString::number(i) + ": " + lines.value(i).left(200) + " / " +
                       others.value(i).left(200);
        return a == b ? QString() : QStringLiteral("the number of lines");
    }
    static int count(const QString& database, const QString& sql) {
        return home_->value(folder_, database, sql).toInt();
    }

    /// Whether rows a and b differ, as SQL says it: texts without the blanks at their ends, a null
    /// as the text Null.
    static QString differ(const Table& table, bool caseSensitive, const QString& ignored) {
        QStringList conditions{"1 = 0"};
        for (const QString& column : names(table.texts)) {
            QString both[2];
            for (int side = 0; side < 2; ++side) {
                both[side] = QStringLiteral("ISNULL(LTRIM(RTRIM(%1.[%2])), N'Null')")
                                 .arg(side ? "b" : "a", column);
                if (caseSensitive)
                    both[side] =
                        "CONVERT(varbinary(max), CONVERT(nvarchar(max), " + both[side] + "))";
            }
            if (column != ignored) conditions += both[0] + " <> " + both[1];
        }
        for (const QString& column : names(table.others))
            if (column != ignored)
                conditions += QStringLiteral(
                                  "a.[%1] <> b.[%1] OR a.[%1] IS NULL AND b.[%1] IS NOT NULL OR "
                                  "a.[%1] IS NOT NULL AND b.[%1] IS NULL")
                                  .arg(column);
        return u'(' + conditions.join(" OR ") + u')';
    }
    static QString sameKey(const Table& table) {
        QStringList conditions;
        for (const QString& key : names(table.keys))
            conditions += QStringLiteral("a.[%1] = b.[%1]").arg(key);
        return conditions.join(" AND ");
    }
    static QString targetName(const Table& table) {
        return QStringLiteral("%1.%2").arg(table.target, table.sqlName);
    }
    static int rowsOf(const Table& table, bool target) {
        return count(table.source, "SELECT COUNT(*) FROM " +
                                       (target ? targetName(table) : QString(table.sqlName)));
    }

    static CliHome* home_;
    static TdsEndpoint* endpoint_;
    static QString folder_;
};
CliHome* DataCounts::home_ = nullptr;
TdsEndpoint* DataCounts::endpoint_ = nullptr;
QString DataCounts::folder_;

// Pairs that differ, the Source's rows alone, and what the numbers of rows differ by.
TEST_F(DataCounts, ByKeyAgreeWithPlainSql) {
    int differences = 0;
    for (const Table& table : tables())
        for (const bool caseSensitive : {true, false})
            for (const QString& ignored :
                 {QString(), (names(table.texts) + names(table.others)).last()}) {
                const int one = rowsOf(table, false), two = rowsOf(table, true);
                ASSERT_LE(one, two) << table.name;
                const int changed = count(
                    table.source, "SELECT COUNT(*) FROM " + QString(table.sqlName) + " a JOIN " +
                                      targetName(table) + " b ON " + sameKey(table) + " WHERE " +
                                      differ(table, caseSensitive, ignored));
                const int onlyOne =
                    count(table.source, "SELECT COUNT(*) FROM " + QString(table.sqlName) +
                                            " a WHERE NOT EXISTS (SELECT * FROM " +
                                            targetName(table) + " b WHERE " + sameKey(table) + ")");
                QStringList options{
                    "--table", table.name,
                    "--key",   table.keys,
                    "--set",   QStringLiteral("DataCaseSensitive=%1").arg(int(caseSensitive))};
                if (!ignored.isEmpty()) options += {"--ignore", ignored};
                const QList<int> expected{one, two, changed + onlyOne + two - one};
                EXPECT_EQ(counts(data(folder_, table.source, table.target, options), table),
                          expected)
                    << table.source << ' ' << options.join(u' ').toStdString();
                differences += expected[2];
            }
    EXPECT_GT(differences, 100);
}

// Records in a given order, from given places on: the pairs of the same place, and the rest.
TEST_F(DataCounts, ByRecordAgreeWithPlainSql) {
    for (const Table& table : tables())
        for (const auto& [offset1, offset2] : {std::pair{1, 1}, {2, 2}, {3, 5}, {4, 1}}) {
            const int one = rowsOf(table, false), two = rowsOf(table, true);
            QStringList order;
            for (const QString& key : names(table.keys)) order += u'[' + key + u']';
            const auto numbered = [&](const QString& name) {
                return "(SELECT *, ROW_NUMBER() OVER (ORDER BY " + order.join(u',') +
                       ") AS n FROM " + name + ")";
            };
            QStringList keyDiffers;
            for (const QString& key : names(table.keys))
                keyDiffers += QStringLiteral("a.[%1] <> b.[%1]").arg(key);
            const int pairs = count(
                table.source,
                "SELECT COUNT(*) FROM " + numbered(table.sqlName) + " a JOIN " +
                    numbered(targetName(table)) +
                    QStringLiteral(" b ON a.n = b.n + (%1) WHERE a.n >= %2 AND b.n >= %3 AND (")
                        .arg(offset1 - offset2)
                        .arg(offset1)
                        .arg(offset2) +
                    differ(table, true, {}) + " OR " + keyDiffers.join(" OR ") + ")");
            const QStringList options{"--table",         table.name,
                                      "--method",        "record",
                                      "--sort",          table.keys,
                                      "--offset",        QString::number(offset1),
                                      "--target-offset", QString::number(offset2)};
            const QList<int> expected{one, two,
                                      pairs + std::abs((one - offset1) - (two - offset2))};
            EXPECT_EQ(counts(data(folder_, table.source, table.target, options), table), expected)
                << table.source << ' ' << options.join(u' ').toStdString();
        }
}

// Where Source has more rows the walk ends with the first match at or behind the last place of
// Target.
TEST_F(DataCounts, ByKeyStopAtTheLimitOfTheSmallerTable) {
    if (!hasNorthwind()) GTEST_SKIP() << NoPublishedScripts;
    Table table = Tables[5];
    std::swap(table.source, table.target);
    const QString early =
        QStringLiteral("(SELECT COUNT(*) FROM Orders e WHERE e.OrderID <= a.OrderID) <= 827");
    const QString from = QStringLiteral("SELECT COUNT(*) FROM Orders a ");
    const int changed =
        count("Northwind", from + "JOIN Changed.dbo.Orders b ON a.OrderID = b.OrderID WHERE " +
                               differ(table, true, {}) + " AND " + early);
    const int onlyOne =
        count("Northwind", from +
                               "WHERE NOT EXISTS (SELECT * FROM Changed.dbo.Orders b WHERE "
                               "a.OrderID = b.OrderID) AND " +
                               early);
    EXPECT_EQ(onlyOne, 2) << "the third one is behind the end";
    EXPECT_EQ(
        counts(data(folder_, "Northwind", "Changed", {"--table", "Orders", "--key", "OrderID"}),
               table),
        (QList<int>{830, 827, changed + onlyOne + 3}));
}

TEST_F(DataCounts, TheSameComesOverTheWire) {
    std::vector<std::pair<Table, QStringList>> runs;
    for (const Table& table : tables()) {
        runs.push_back({table, {"--key", table.keys, "--limit", "20"}});
        runs.push_back(
            {table,
             {"--method", "record", "--sort", table.keys, "--offset", "3", "--limit", "1000"}});
    }
    // Old large objects, and binary ones.
    if (hasNorthwind()) {
        runs.push_back({{"Northwind", "Changed", "Employees", "", "", "", ""},
                        {"--key", "LastName,FirstName"}});
        runs.push_back(
            {{"Northwind", "Changed", "Categories", "", "", "", ""}, {"--method", "record"}});
    }
    const auto run = [&](const QString& server, const Table& table, const QStringList& options) {
        const QString file = home_->path("rows.htm");
        QFile::remove(file);
        const CliResult result =
            data(server, table.source, table.target,
                 QStringList{"--table", table.name, "--export", file} + options);
        QFile rows(file);
        QString all = QStringLiteral("%1\n%2%3\n").arg(result.status).arg(result.out, result.err);
        if (rows.open(QIODevice::ReadOnly))
            all += QString::fromLatin1(rows.readAll()).replace(server, "SERVER");
        return all;
    };
    for (const auto& [table, options] : runs) {
        SCOPED_TRACE(table.name + (' ' + options.join(u' ').toStdString()));
        const QString here = run(folder_, table, options);
        EXPECT_TRUE(here.startsWith("1\n") && here.contains("</HTML>"))
            << here.left(500).toStdString();
        for (const char* cursors : {"CursorConnectionUseServer=1", "CursorConnectionUseServer=0"})
            EXPECT_EQ(firstDifference(run(endpoint_->dataSource(), table,
                                          options + QStringList{"--login", "sa", "--set", cursors}),
                                      here),
                      QString())
                << cursors;
    }
}

// Spreadsheets' importers take a quotation mark in a value for one when it is written twice.
TEST_F(DataCounts, AnExportIsReadBackCellByCell) {
    const QString file = home_->write("quotes.csv", {});
    const QByteArray script =
        "IF OBJECT_ID('Quotes') IS NULL CREATE TABLE Quotes (Id int, T nvarchar(40))\nDELETE FROM "
        "Quotes\nINSERT INTO Quotes VALUES (1, N'say \"%1\", twice')\nGO\n";
    for (const char* database : {"ShopBefore", "ShopAfter"})
        home_->loadText(folder_, database, QByteArray(script).replace("%1", database));
    EXPECT_EQ(data(folder_, "ShopBefore", "ShopAfter",
                   {"--table", "Quotes", "--key", "Id", "--export", file})
                  .status,
              1);
    QFile rows(file);
    EXPECT_TRUE(rows.open(QIODevice::ReadOnly));
    EXPECT_EQ(rows.readAll().toStdString(),
              "\"Row\",\"Id\",\"T\"\r\n\"1\",\"1\",\"say \"\"ShopBefore\"\", twice\"\r\n"
              "\"1\",\"1\",\"say \"\"ShopAfter\"\", twice\"\r\n");
}

}  // namespace
}  // namespace zov::acceptance
