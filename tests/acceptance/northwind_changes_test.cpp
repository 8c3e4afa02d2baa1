// Northwind against a copy that a small script changed: whole reports, line by line, and what each
// comparison option makes of them.
#include "cli_runner.h"

namespace zov::acceptance {
namespace {

const QString Server = QStringLiteral("local:try");

// One change of a kind each. The view's body and the swapped table's key stay as they were.
constexpr char Changes[] = R"sql(
ALTER TABLE Customers ALTER COLUMN CompanyName nvarchar (60) NOT NULL
GO
ALTER TABLE Products DROP CONSTRAINT DF_Products_ReorderLevel
ALTER TABLE Products ADD CONSTRAINT DF_Products_ReorderLevel DEFAULT (5) FOR ReorderLevel
GO
ALTER PROCEDURE CustOrderHist @CustomerID nchar(5)
AS
SELECT ProductName,   Total=SUM(Quantity)
FROM Products P, [Order Details] OD, Orders O, Customers C -- four at once
WHERE C.CustomerID = @CustomerID
    AND C.CustomerID = O.CustomerID AND O.OrderID = OD.OrderID AND OD.ProductID = P.ProductID
GROUP BY ProductName
GO
DROP VIEW "Current Product List"
GO
CREATE VIEW [dbo].[Current Product List] AS
SELECT Product_List.ProductID, Product_List.ProductName
FROM Products AS Product_List
WHERE (((Product_List.Discontinued)=0))
--ORDER BY Product_List.ProductName
GO
DROP INDEX "Orders"."ShippedDate"
GO
CREATE TABLE [Shipping Log]
(
    LogId int IDENTITY (1, 1) NOT NULL CONSTRAINT PK_Shipping_Log PRIMARY KEY CLUSTERED,
    [Shipped on] datetime NOT NULL CONSTRAINT DF_Shipping_Log DEFAULT getdate(),
    Note nvarchar(max) NULL
)
GO
DROP TABLE EmployeeTerritories
GO
CREATE TABLE EmployeeTerritories
(
    TerritoryID nvarchar (20) NOT NULL,
    EmployeeID int NOT NULL,
    CONSTRAINT PK_EmployeeTerritories PRIMARY KEY NONCLUSTERED (EmployeeID, TerritoryID),
    CONSTRAINT FK_EmployeeTerritories_Employees FOREIGN KEY (EmployeeID) REFERENCES Employees (EmployeeID),
    CONSTRAINT FK_EmployeeTerritories_Territories FOREIGN KEY (TerritoryID) REFERENCES Territories (TerritoryID)
)
GO
)sql";

const QString Heading = QStringLiteral(
    "Comparison of databases\n"
    "\n"
    "Source database local:try.Northwind\n"
    "Target database local:try.Changed\n");

const QString TablesSection = QStringLiteral(
    "\n\n"
    "Comparison of tables\n"
    "There are 13 tables in Source database.\n"
    "There are 14 tables in Target database.\n"
    "List of tables which differ:\n"
    "\tCustomers\n"
    "\tOrders\n"
    "\tProducts\n"
    "\t(3 tables)\n"
    "List of tables which exist in Target database but not in Source database:\n"
    "\tShipping Log\n"
    "\t(1 table)\n"
    "All 10 remaining tables have identical structures:\n"
    "\tCategories\n"
    "\tCustomerCustomerDemo\n"
    "\tCustomerDemographics\n"
    "\tEmployees\n"
    "\tEmployeeTerritories\n"
    "\tOrder Details\n"
    "\tRegion\n"
    "\tShippers\n"
    "\tSuppliers\n"
    "\tTerritories");

// Lines behind the first carry the folded line feed of the break before them. The rest of the
// longer side stands as it is, and an empty rest leaves a blank line.
const QString TablesDetails = QStringLiteral(
    "\n===========================================\n"
    "\n"
    "Detailed list of differences between compared tables\n"
    "\n"
    "1. Customers\n"
    "\n"
    "Differences in Source:\n"
    " [CompanyName] [nvarchar] (40) NOT NULL\n"
    "\n"
    "Differences in Target:\n"
    " [CompanyName] [nvarchar] (60) NOT NULL\n"
    "\n"
    "\n"
    "2. Orders\n"
    "\n"
    "Differences in Source:\n"
    " INDEX [ShippedDate] ([ShippedDate])\n"
    " INDEX [ShippersOrders] ([ShipVia])\n"
    "INDEX [ShipPostalCode] ([ShipPostalCode])\n"
    "\n"
    "\n"
    "Differences in Target:\n"
    " INDEX [ShippersOrders] ([ShipVia])\n"
    " INDEX [ShipPostalCode] ([ShipPostalCode])\n"
    "\n"
    "3. Products\n"
    "\n"
    "Differences in Source:\n"
    " [ReorderLevel] [smallint] NULL CONSTRAINT [DF_Products_ReorderLevel] DEFAULT ((0))\n"
    "\n"
    "Differences in Target:\n"
    " [ReorderLevel] [smallint] NULL CONSTRAINT [DF_Products_ReorderLevel] DEFAULT ((5))\n"
    "\n");

const QString ProceduresSection = QStringLiteral(
    "\n\n"
    "Comparison of procedures\n"
    "There are 7 procedures in Source database.\n"
    "There are 7 procedures in Target database.\n"
    "All procedures in both databases are identical.");
const QString FunctionsSection = QStringLiteral(
    "\n\n"
    "Comparison of functions\n"
    "There are no functions in Source database.\n"
    "There are no functions in Target database.");
const QString ViewsSection = QStringLiteral(
    "\n\n"
    "Comparison of views\n"
    "There are 16 views in Source database.\n"
    "There are 16 views in Target database.\n"
    "All views in both databases are identical.");
const QString TriggersSection = QStringLiteral(
    "\n\n"
    "Comparison of triggers\n"
    "There are no triggers in Source database.\n"
    "There are no triggers in Target database.");
const QString RelationshipsSection = QStringLiteral(
    "\n\n"
    "Comparison of relationships\n"
    "There are 13 relationships in Source database.\n"
    "There are 13 relationships in Target database.\n"
    "All relationships in both databases are identical.");
const QString ConstraintsSection = QStringLiteral(
    "\n\n"
    "Comparison of constraints\n"
    "There are 8 constraints in Source database.\n"
    "There are 9 constraints in Target database.\n"
    "List of constraints which exist in Target database but not in Source database:\n"
    "\tPK_Shipping_Log\n"
    "\t(1 constraint)\n"
    "All 8 remaining constraints are identical:\n"
    "\tPK_Categories\n"
    "\tPK_Customers\n"
    "\tPK_Employees\n"
    "\tPK_Order_Details\n"
    "\tPK_Orders\n"
    "\tPK_Products\n"
    "\tPK_Shippers\n"
    "\tPK_Suppliers");
const QString End = QStringLiteral("\n\nTime Elapsed: *");

class ChangedNorthwind : public ::testing::Test {
 protected:
    static void SetUpTestSuite() {
        if (publishedScriptsFolder().isEmpty()) return;
        home_ = new CliHome;
        const QString script = publishedScriptsFolder() + "northwind.sql";
        home_->load(Server, "Northwind", {script});
        home_->load(Server, "Changed", {script});
        home_->loadText(Server, "Changed", Changes);
    }
    static void TearDownTestSuite() {
        delete home_;
        home_ = nullptr;
    }
    void SetUp() override {
        if (!home_) GTEST_SKIP() << NoPublishedScripts;
    }

    static CliResult compare(const QStringList& options) {
        return home_->run(QStringList{"compare", "--source", Server, "--source-db", "Northwind",
                                      "--target", Server, "--target-db", "Changed"} +
                          options);
    }
    /// The report of a run that is expected to find differences (status 1) or none (0), with the
    /// line break that ends the output taken off.
    static QString report(const QStringList& options, int status = 1) {
        CliResult result = compare(options);
        EXPECT_EQ(result.status, status) << ::testing::PrintToString(result);
        EXPECT_EQ(result.err, QString());
        EXPECT_FALSE(result.out.contains(u'\r'));
        if (result.out.endsWith(u'\n')) result.out.chop(1);
        return withoutTime(result.out);
    }

    static CliHome* home_;
};
CliHome* ChangedNorthwind::home_ = nullptr;

TEST_F(ChangedNorthwind, SimpleReport) {
    EXPECT_EQ(report({}), Heading + TablesSection + ProceduresSection + FunctionsSection +
                              ViewsSection + TriggersSection + RelationshipsSection + End);
}

TEST_F(ChangedNorthwind, DetailsFollowTheKindTheyBelongTo) {
    EXPECT_EQ(report({"--details"}), Heading + TablesSection + TablesDetails + ProceduresSection +
                                         FunctionsSection + ViewsSection + TriggersSection +
                                         RelationshipsSection + End);
}

TEST_F(ChangedNorthwind, ConstraintsAreAKindOfTheirOwnOnRequest) {
    EXPECT_EQ(report({"--set", "AnalyzeConstraints=1"}),
              Heading + TablesSection + ProceduresSection + FunctionsSection + ViewsSection +
                  TriggersSection + RelationshipsSection + ConstraintsSection + End);
}

TEST_F(ChangedNorthwind, ChosenKindsAreComparedInTheUsualOrder) {
    EXPECT_EQ(report({"-t", "views,procedures"}, 0),
              Heading + ProceduresSection + ViewsSection + End);
    EXPECT_EQ(report({"-t", "table"}), Heading + TablesSection + End);
}

TEST_F(ChangedNorthwind, SelectiveReportsNameOnlyWhatWasChosen) {
    EXPECT_EQ(report({"-t", "tables,procedures", "--select",
                      "Customers,EmployeeTerritories,CustOrderHist", "--details"}),
              Heading +
                  QStringLiteral("\n\n"
                                 "Selective comparison of tables\n"
                                 "\n"
                                 "3 objects selected in Source database\n"
                                 "3 objects selected in Target database\n"
                                 "\n"
                                 "List of tables which differ:\n"
                                 "\tCustomers\n"
                                 "\t(1 table)\n"
                                 "One table [EmployeeTerritories] has identical structure in both "
                                 "databases.\n"
                                 "===========================================\n"
                                 "\n"
                                 "Detailed list of differences between compared tables\n"
                                 "\n"
                                 "1. Customers\n"
                                 "\n"
                                 "Differences in Source:\n"
                                 " [CompanyName] [nvarchar] (40) NOT NULL\n"
                                 "\n"
                                 "Differences in Target:\n"
                                 " [CompanyName] [nvarchar] (60) NOT NULL\n"
                                 "\n"
                                 "\n\n"
                                 "Selective comparison of procedures\n"
                                 "\n"
                                 "3 objects selected in Source database\n"
                                 "3 objects selected in Target database\n"
                                 "\n"
                                 "All selected procedures in both databases are identical.") +
                  End);
    EXPECT_EQ(report({"-t", "tables", "--select", "Region,Order Details"}, 0),
              Heading +
                  QStringLiteral("\n\n"
                                 "Selective comparison of tables\n"
                                 "\n"
                                 "2 objects selected in Source database\n"
                                 "2 objects selected in Target database\n"
                                 "\n"
                                 "The structure of all selected tables in both databases is "
                                 "identical.") +
                  End);
    // What one side lacks is a difference all the same.
    const QString missing = report({"-t", "tables", "--select", "Shipping Log"});
    EXPECT_TRUE(missing.contains(
        "List of tables which exist in Target database but not in Source database:\n"
        "\tShipping Log\n"
        "\t(1 table)\n"
        "There are no tables which have identical structure in both databases."))
        << missing.toStdString();
}

TEST_F(ChangedNorthwind, EachOptionDecidesWhatDiffers) {
    const auto differing = [](const QString& report, const QString& plural) {
        const QString heading = QStringLiteral("List of %1 which differ:\n").arg(plural);
        const qsizetype at = report.indexOf(heading);
        if (at < 0) return QStringList();
        QStringList names;
        for (const QString& line : report.mid(at + heading.size()).split(u'\n')) {
            if (!line.startsWith(u'\t') || line.startsWith("\t(")) break;
            names.append(line.mid(1));
        }
        return names;
    };
    struct Row {
        QStringList settings;
        QStringList tables, procedures, views;
    };
    const QStringList usual{"Customers", "Orders", "Products"};
    const Row rows[] = {
        {{"CaseSensitive=1", "IgnoreWhitespace=1", "IgnoreComments=1", "IgnoreIndexes=0",
          "IgnoreColSeq=1", "IgnoreSysObjects=1"},
         usual,
         {},
         {}},
        {{"IgnoreIndexes=1"}, {"Customers", "Products"}, {}, {}},
        {{"IgnoreColSeq=0"}, {"Customers", "EmployeeTerritories", "Orders", "Products"}, {}, {}},
        {{"IgnoreComments=0"}, usual, {"CustOrderHist"}, {}},
        {{"IgnoreWhitespace=0"}, usual, {"CustOrderHist"}, {}},
        {{"IgnoreComments=0", "IgnoreWhitespace=0"}, usual, {"CustOrderHist"}, {}},
        {{"CaseSensitive=0"}, usual, {}, {}},
        {{"IgnoreIndexes=1", "IgnoreColSeq=0"},
         {"Customers", "EmployeeTerritories", "Products"},
         {},
         {}}};
    for (const Row& row : rows) {
        QStringList options;
        for (const QString& setting : row.settings) options += {"--set", setting};
        const QString text = report(options);
        SCOPED_TRACE(row.settings.join(u' ').toStdString());
        EXPECT_EQ(differing(text, "tables"), row.tables);
        EXPECT_EQ(differing(text, "procedures"), row.procedures);
        EXPECT_EQ(differing(text, "views"), row.views);
    }
}

TEST_F(ChangedNorthwind, DetailsShowTheLinesAsTheOptionsLeaveThem) {
    // Upper-cased, for lines are compared so; the rest of the longer side never was compared.
    EXPECT_TRUE(report({"-t", "tables", "--details", "--set", "CaseSensitive=0"})
                    .contains("Differences in Source:\n"
                              " INDEX [SHIPPEDDATE] ([SHIPPEDDATE])\n"
                              " INDEX [SHIPPERSORDERS] ([SHIPVIA])\n"
                              "INDEX [ShipPostalCode] ([ShipPostalCode])\n"
                              "\n\n"
                              "Differences in Target:\n"
                              " INDEX [SHIPPERSORDERS] ([SHIPVIA])\n"
                              " INDEX [SHIPPOSTALCODE] ([SHIPPOSTALCODE])\n"));
    // Without folding the line feed in front of a line stays one.
    EXPECT_TRUE(report({"-t", "tables", "--details", "--set", "IgnoreWhitespace=0"})
                    .contains("1. Customers\n"
                              "\n"
                              "Differences in Source:\n"
                              "\n[CompanyName] [nvarchar] (40) NOT NULL\n"
                              "\n"
                              "Differences in Target:\n"
                              "\n[CompanyName] [nvarchar] (60) NOT NULL\n"));
    // The first line of a text has no break before it.
    EXPECT_TRUE(report({"-t", "tables", "--details", "--set", "IgnoreColSeq=0"})
                    .contains("2. EmployeeTerritories\n"
                              "\n"
                              "Differences in Source:\n"
                              "[EmployeeID] [int] NOT NULL\n"
                              " [TerritoryID] [nvarchar] (20) NOT NULL\n"
                              "\n"
                              "Differences in Target:\n"
                              "[TerritoryID] [nvarchar] (20) NOT NULL\n"
                              " [EmployeeID] [int] NOT NULL\n"
                              "\n\n"
                              "3. Orders\n"));
    // A source with bare line feeds is one line.
    EXPECT_TRUE(
        report({"-t", "procedures", "--details", "--set", "IgnoreComments=0"})
            .contains(
                "1. CustOrderHist\n"
                "\n"
                "Differences in Source:\n"
                "CREATE PROCEDURE CustOrderHist @CustomerID nchar(5) AS SELECT ProductName, "
                "Total=SUM(Quantity) FROM Products P, [Order Details] OD, Orders O, Customers "
                "C WHERE C.CustomerID = @CustomerID AND C.CustomerID = O.CustomerID AND "
                "O.OrderID = OD.OrderID AND OD.ProductID = P.ProductID GROUP BY ProductName\n"
                "\n"
                "Differences in Target:\n"
                "CREATE PROCEDURE CustOrderHist @CustomerID nchar(5) AS SELECT ProductName, "
                "Total=SUM(Quantity) FROM Products P, [Order Details] OD, Orders O, Customers "
                "C -- four at once WHERE C.CustomerID = @CustomerID AND C.CustomerID = "
                "O.CustomerID AND O.OrderID = OD.OrderID AND OD.ProductID = P.ProductID GROUP "
                "BY ProductName\n"));
}

TEST_F(ChangedNorthwind, AReportInAFileHasTheSystemsLineEnds) {
    const QString file = home_->path("report.txt");
    const CliResult result = compare({"--details", "-o", file});
    EXPECT_EQ(result.status, 1) << ::testing::PrintToString(result);
    QFile written(file);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    QString text = QString::fromUtf8(written.readAll());
    EXPECT_EQ(text.count(u'\n'), text.count("\r\n"));
    EXPECT_EQ(withoutTime(text.replace("\r\n", "\n").trimmed()), report({"--details"}).trimmed());
}

TEST_F(ChangedNorthwind, ComparingTheOtherWayRoundSwapsTheSides) {
    const CliResult result =
        home_->run({"compare", "--source", Server, "--source-db", "Changed", "--target", Server,
                    "--target-db", "Northwind", "-t", "tables"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(
        result.out.contains("List of tables which exist in Source database but not in Target "
                            "database:\n\tShipping Log\n\t(1 table)\n"))
        << ::testing::PrintToString(result);
}

TEST_F(ChangedNorthwind, ASettingForOneRunIsNotKept) {
    report({"--set", "IgnoreIndexes=1"});
    EXPECT_TRUE(report({"-t", "tables"}).contains("\tOrders\n\tProducts\n\t(3 tables)"));
}

}  // namespace
}  // namespace zov::acceptance
