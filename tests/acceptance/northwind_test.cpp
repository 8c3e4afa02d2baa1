// What a user who knows Northwind and pubs sees of them after loading the published scripts.
#include "cli_runner.h"

#include <QRegularExpression>

namespace zov::acceptance {
namespace {

const QString Server = QStringLiteral("local:published");
const QString Northwind = QStringLiteral("Northwind");
const QString Pubs = QStringLiteral("pubs");

class PublishedDatabases : public ::testing::Test {
 protected:
    static void SetUpTestSuite() {
        if (publishedScriptsFolder().isEmpty()) return;
        home_ = new CliHome;
        northwindLoad_ =
            home_->load(Server, Northwind, {publishedScriptsFolder() + "northwind.sql"});
        pubsLoad_ = home_->load(Server, Pubs, {publishedScriptsFolder() + "pubs.sql"});
    }
    static void TearDownTestSuite() {
        delete home_;
        home_ = nullptr;
    }
    void SetUp() override {
        if (!home_) GTEST_SKIP() << NoPublishedScripts;
    }

    static QStringList list(const QString& database, const QString& type) {
        return home_->list(Server, database, type);
    }
    static QString text(const QString& database, const QString& type, const QString& name) {
        return home_->text(Server, database, type, name);
    }
    /// The batch of the published script that begins with `opening`, without blank lines around it.
    static QString batchOf(const QString& script, const QString& opening) {
        QFile file(publishedScriptsFolder() + script);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QString all = QString::fromUtf8(file.readAll());
        static const QRegularExpression Go(
            QStringLiteral("^go[ \\t]*$"),
            QRegularExpression::MultilineOption | QRegularExpression::CaseInsensitiveOption);
        for (const QString& batch : all.split(Go))
            if (batch.trimmed().startsWith(opening)) return batch.trimmed();
        ADD_FAILURE() << "no batch begins with " << opening.toStdString();
        return {};
    }

    static CliHome* home_;
    static CliResult northwindLoad_;
    static CliResult pubsLoad_;
};
CliHome* PublishedDatabases::home_ = nullptr;
CliResult PublishedDatabases::northwindLoad_;
CliResult PublishedDatabases::pubsLoad_;

TEST_F(PublishedDatabases, LoadingLeavesNothingOut) {
    // pubs prints where it stands; nothing may say that something was skipped.
    for (const CliResult& load : {northwindLoad_, pubsLoad_}) {
        const QString all = load.out + load.err;
        for (const char* word : {"skipped", "ignored", "unknown", "rror"})
            EXPECT_FALSE(all.contains(QLatin1String(word))) << ::testing::PrintToString(load);
    }
}

TEST_F(PublishedDatabases, NorthwindListsItsObjectsByName) {
    EXPECT_EQ(
        list(Northwind, "tables"),
        (QStringList{"Categories", "CustomerCustomerDemo", "CustomerDemographics", "Customers",
                     "Employees", "EmployeeTerritories", "Order Details", "Orders", "Products",
                     "Region", "Shippers", "Suppliers", "Territories"}));
    EXPECT_EQ(list(Northwind, "procedures"),
              (QStringList{"CustOrderHist", "CustOrdersDetail", "CustOrdersOrders",
                           "Employee Sales by Country", "Sales by Year", "SalesByCategory",
                           "Ten Most Expensive Products"}));
    EXPECT_EQ(list(Northwind, "views"),
              (QStringList{"Alphabetical list of products", "Category Sales for 1997",
                           "Current Product List", "Customer and Suppliers by City", "Invoices",
                           "Order Details Extended", "Order Subtotals", "Orders Qry",
                           "Product Sales for 1997", "Products Above Average Price",
                           "Products by Category", "Quarterly Orders", "Sales by Category",
                           "Sales Totals by Amount", "Summary of Sales by Quarter",
                           "Summary of Sales by Year"}));
    EXPECT_EQ(list(Northwind, "relationships"),
              (QStringList{"FK_CustomerCustomerDemo", "FK_CustomerCustomerDemo_Customers",
                           "FK_Employees_Employees", "FK_EmployeeTerritories_Employees",
                           "FK_EmployeeTerritories_Territories", "FK_Order_Details_Orders",
                           "FK_Order_Details_Products", "FK_Orders_Customers",
                           "FK_Orders_Employees", "FK_Orders_Shippers", "FK_Products_Categories",
                           "FK_Products_Suppliers", "FK_Territories_Region"}));
    // Clustered ones only: the five tables at the end of the script have keys that aren't.
    EXPECT_EQ(list(Northwind, "constraints"),
              (QStringList{"PK_Categories", "PK_Customers", "PK_Employees", "PK_Order_Details",
                           "PK_Orders", "PK_Products", "PK_Shippers", "PK_Suppliers"}));
    EXPECT_EQ(list(Northwind, "functions"), QStringList());
    EXPECT_EQ(list(Northwind, "triggers"), QStringList());
    EXPECT_EQ(list(Northwind, "table"), list(Northwind, "tables"));
}

TEST_F(PublishedDatabases, PubsListsItsObjectsByName) {
    EXPECT_EQ(list(Pubs, "tables"),
              (QStringList{"authors", "discounts", "employee", "jobs", "pub_info", "publishers",
                           "roysched", "sales", "stores", "titleauthor", "titles"}));
    EXPECT_EQ(list(Pubs, "procedures"), (QStringList{"byroyalty", "reptq1", "reptq2", "reptq3"}));
    EXPECT_EQ(list(Pubs, "views"), QStringList{"titleview"});
    EXPECT_EQ(list(Pubs, "triggers"), QStringList{"employee_insupd"});
    EXPECT_EQ(list(Pubs, "functions"), QStringList());

    // Nobody named these: the server makes names of the table, the column and the object's id.
    QStringList expected{"FK__discounts__stor_", "FK__employee__job_id", "FK__employee__pub_id",
                         "FK__pub_info__pub_id", "FK__roysched__title_", "FK__sales__stor_id",
                         "FK__sales__title_id",  "FK__titleauth__au_id", "FK__titleauth__title",
                         "FK__titles__pub_id"};
    const QStringList found = list(Pubs, "relationships");
    ASSERT_EQ(found.size(), expected.size()) << found.join(u'\n').toStdString();
    for (qsizetype i = 0; i < found.size(); ++i) {
        const QRegularExpression form(u'^' + expected[i] + "__[0-9A-F]{8}$");
        EXPECT_TRUE(form.match(found[i]).hasMatch()) << found[i].toStdString();
    }
    const QStringList keys = list(Pubs, "constraints");
    ASSERT_EQ(keys.size(), 1) << keys.join(u'\n').toStdString();
    EXPECT_TRUE(QRegularExpression("^PK__jobs__[0-9A-F]{16}$").match(keys[0]).hasMatch())
        << keys[0].toStdString();
}

TEST_F(PublishedDatabases, TablesHoldAllTheirRows) {
    struct Row {
        QString database, table;
        int rows;
    };
    const Row rows[] = {{Northwind, "Categories", 8},
                        {Northwind, "CustomerCustomerDemo", 0},
                        {Northwind, "Customers", 91},
                        {Northwind, "Employees", 9},
                        {Northwind, "[Order Details]", 2155},
                        {Northwind, "Orders", 830},
                        {Northwind, "Products", 77},
                        {Northwind, "Region", 4},
                        {Northwind, "Shippers", 3},
                        {Northwind, "Suppliers", 29},
                        {Northwind, "Territories", 53},
                        {Northwind, "EmployeeTerritories", 49},
                        {Pubs, "authors", 23},
                        {Pubs, "publishers", 8},
                        {Pubs, "titles", 18},
                        {Pubs, "titleauthor", 25},
                        {Pubs, "stores", 6},
                        {Pubs, "sales", 21},
                        {Pubs, "roysched", 86},
                        {Pubs, "discounts", 3},
                        {Pubs, "jobs", 14},
                        {Pubs, "pub_info", 8},
                        {Pubs, "employee", 43}};
    for (const Row& row : rows)
        EXPECT_EQ(
            home_->value(Server, row.database, "SELECT COUNT(*) AS RecsCount FROM " + row.table),
            QString::number(row.rows))
            << row.table.toStdString();
}

TEST_F(PublishedDatabases, ValuesReadAsTheyWereWritten) {
    struct Row {
        QString database, sql, value;
    };
    const Row rows[] = {
        {Northwind, "SELECT ContactName FROM Customers WHERE CustomerID = 'BERGS'",
         "Christina Berglund"},
        {Northwind, "SELECT CompanyName FROM Customers WHERE CustomerID = 'TRADH'",
         QStringLiteral("Tradição Hipermercados")},
        {Northwind, "SELECT CompanyName FROM Customers WHERE CustomerID = 'TRAIH'",
         "Trail's Head Gourmet Provisioners"},
        {Northwind, "SELECT Freight FROM Orders WHERE OrderID = 10248", "32.38"},
        {Northwind, "SELECT OrderDate FROM Orders WHERE OrderID = 10248", "1996-07-04 00:00:00"},
        {Northwind, "SELECT Discount FROM [Order Details] WHERE OrderID = 10250 AND ProductID = 51",
         "0.15"},
        {Northwind, "SELECT Discontinued FROM Products WHERE ProductID = 5", "True"},
        {Northwind, "SELECT Region FROM Customers WHERE CustomerID = 'ALFKI'", "Null"},
        {Pubs, "SELECT au_lname FROM authors WHERE au_id = '267-41-2394'", "O'Leary"},
        {Pubs, "SELECT discount FROM discounts WHERE discounttype = 'Volume Discount'", "6.7"},
        {Pubs, "SELECT state FROM publishers WHERE pub_id = '9901'", "Null"}};
    for (const Row& row : rows)
        EXPECT_EQ(home_->value(Server, row.database, row.sql), row.value) << row.sql.toStdString();
}

TEST_F(PublishedDatabases, NorthwindTablesReadLineByLine) {
    EXPECT_EQ(text(Northwind, "table", "Orders"),
              QStringLiteral("[OrderID] [int] IDENTITY(1,1) NOT NULL\n"
                             "[CustomerID] [nchar] (5) NULL\n"
                             "[EmployeeID] [int] NULL\n"
                             "[OrderDate] [datetime] NULL\n"
                             "[RequiredDate] [datetime] NULL\n"
                             "[ShippedDate] [datetime] NULL\n"
                             "[ShipVia] [int] NULL\n"
                             "[Freight] [money] NULL CONSTRAINT [DF_Orders_Freight] DEFAULT ((0))\n"
                             "[ShipName] [nvarchar] (40) NULL\n"
                             "[ShipAddress] [nvarchar] (60) NULL\n"
                             "[ShipCity] [nvarchar] (15) NULL\n"
                             "[ShipRegion] [nvarchar] (15) NULL\n"
                             "[ShipPostalCode] [nvarchar] (10) NULL\n"
                             "[ShipCountry] [nvarchar] (15) NULL\n"
                             "\n"
                             "CONSTRAINT [PK_Orders] PRIMARY KEY CLUSTERED ([OrderID])\n"
                             "INDEX [CustomerID] ([CustomerID])\n"
                             "INDEX [CustomersOrders] ([CustomerID])\n"
                             "INDEX [EmployeeID] ([EmployeeID])\n"
                             "INDEX [EmployeesOrders] ([EmployeeID])\n"
                             "INDEX [OrderDate] ([OrderDate])\n"
                             "INDEX [ShippedDate] ([ShippedDate])\n"
                             "INDEX [ShippersOrders] ([ShipVia])\n"
                             "INDEX [ShipPostalCode] ([ShipPostalCode])"));
    EXPECT_EQ(
        text(Northwind, "table", "Order Details"),
        QStringLiteral(
            "[OrderID] [int] NOT NULL\n"
            "[ProductID] [int] NOT NULL\n"
            "[UnitPrice] [money] NOT NULL CONSTRAINT [DF_Order_Details_UnitPrice] DEFAULT ((0))\n"
            "[Quantity] [smallint] NOT NULL CONSTRAINT [DF_Order_Details_Quantity] DEFAULT ((1))\n"
            "[Discount] [real] NOT NULL CONSTRAINT [DF_Order_Details_Discount] DEFAULT ((0))\n"
            "\n"
            "CONSTRAINT [PK_Order_Details] PRIMARY KEY CLUSTERED ([OrderID], [ProductID])\n"
            "INDEX [OrderID] ([OrderID])\n"
            "INDEX [OrdersOrder_Details] ([OrderID])\n"
            "INDEX [ProductID] ([ProductID])\n"
            "INDEX [ProductsOrder_Details] ([ProductID])"));
    EXPECT_EQ(text(Northwind, "table", "Categories"),
              QStringLiteral("[CategoryID] [int] IDENTITY(1,1) NOT NULL\n"
                             "[CategoryName] [nvarchar] (15) NOT NULL\n"
                             "[Description] [ntext] NULL\n"
                             "[Picture] [image] NULL\n"
                             "\n"
                             "CONSTRAINT [PK_Categories] PRIMARY KEY CLUSTERED ([CategoryID])\n"
                             "INDEX [CategoryName] ([CategoryName])"));
    // Keys that aren't clustered read as plain indexes.
    EXPECT_EQ(text(Northwind, "table", "Territories"),
              QStringLiteral("[TerritoryID] [nvarchar] (20) NOT NULL\n"
                             "[TerritoryDescription] [nchar] (50) NOT NULL\n"
                             "[RegionID] [int] NOT NULL\n"
                             "\n"
                             "INDEX [PK_Territories] ([TerritoryID])"));
    EXPECT_EQ(text(Northwind, "table", "CustomerCustomerDemo"),
              QStringLiteral("[CustomerID] [nchar] (5) NOT NULL\n"
                             "[CustomerTypeID] [nchar] (10) NOT NULL\n"
                             "\n"
                             "INDEX [PK_CustomerCustomerDemo] ([CustomerID], [CustomerTypeID])"));
}

TEST_F(PublishedDatabases, PubsTablesShowUserTypesAndGeneratedNames) {
    // The ids within generated names are this server's own.
    const auto masked = [](QString text) {
        static const QRegularExpression Id(QStringLiteral("__([0-9A-F]{16}|[0-9A-F]{8})\\]"));
        return text.replace(Id, QStringLiteral("__#]"));
    };
    EXPECT_EQ(masked(text(Pubs, "table", "authors")),
              QStringLiteral("[au_id] [id] NOT NULL\n"
                             "[au_lname] [varchar] (40) NOT NULL\n"
                             "[au_fname] [varchar] (20) NOT NULL\n"
                             "[phone] [char] (12) NOT NULL CONSTRAINT [DF__authors__phone__#] "
                             "DEFAULT ('UNKNOWN')\n"
                             "[address] [varchar] (40) NULL\n"
                             "[city] [varchar] (20) NULL\n"
                             "[state] [char] (2) NULL\n"
                             "[zip] [char] (5) NULL\n"
                             "[contract] [bit] NOT NULL\n"
                             "\n"
                             "CLUSTERED INDEX [UPKCL_auidind] ([au_id])\n"
                             "INDEX [aunmind] ([au_lname], [au_fname])"));
    EXPECT_EQ(
        masked(text(Pubs, "table", "titles")),
        QStringLiteral("[title_id] [tid] NOT NULL\n"
                       "[title] [varchar] (80) NOT NULL\n"
                       "[type] [char] (12) NOT NULL CONSTRAINT [DF__titles__type__#] DEFAULT "
                       "('UNDECIDED')\n"
                       "[pub_id] [char] (4) NULL\n"
                       "[price] [money] NULL\n"
                       "[advance] [money] NULL\n"
                       "[royalty] [int] NULL\n"
                       "[ytd_sales] [int] NULL\n"
                       "[notes] [varchar] (200) NULL\n"
                       "[pubdate] [datetime] NOT NULL CONSTRAINT [DF__titles__pubdate__#] DEFAULT "
                       "(getdate())\n"
                       "\n"
                       "CLUSTERED INDEX [UPKCL_titleidind] ([title_id])\n"
                       "INDEX [titleind] ([title])"));
    EXPECT_EQ(
        masked(text(Pubs, "table", "jobs")),
        QStringLiteral("[job_id] [smallint] IDENTITY(1,1) NOT NULL\n"
                       "[job_desc] [varchar] (50) NOT NULL CONSTRAINT [DF__jobs__job_desc__#] "
                       "DEFAULT ('New Position - title not formalized yet')\n"
                       "[min_lvl] [tinyint] NOT NULL\n"
                       "[max_lvl] [tinyint] NOT NULL\n"
                       "\n"
                       "CONSTRAINT [PK__jobs__#] PRIMARY KEY CLUSTERED ([job_id])"));
    EXPECT_EQ(
        masked(text(Pubs, "table", "employee")),
        QStringLiteral("[emp_id] [empid] NOT NULL\n"
                       "[fname] [varchar] (20) NOT NULL\n"
                       "[minit] [char] (1) NULL\n"
                       "[lname] [varchar] (30) NOT NULL\n"
                       "[job_id] [smallint] NOT NULL CONSTRAINT [DF__employee__job_id__#] DEFAULT "
                       "((1))\n"
                       "[job_lvl] [tinyint] NULL CONSTRAINT [DF__employee__job_lv__#] DEFAULT "
                       "((10))\n"
                       "[pub_id] [char] (4) NOT NULL CONSTRAINT [DF__employee__pub_id__#] DEFAULT "
                       "('9952')\n"
                       "[hire_date] [datetime] NOT NULL CONSTRAINT [DF__employee__hire_d__#] "
                       "DEFAULT (getdate())\n"
                       "\n"
                       "CLUSTERED INDEX [employee_ind] ([lname], [fname], [minit])\n"
                       "INDEX [PK_emp_id] ([emp_id])"));
    // A foreign key is a child object too, so the index shows; without an index there is no block.
    EXPECT_EQ(text(Pubs, "table", "roysched"), QStringLiteral("[title_id] [tid] NOT NULL\n"
                                                              "[lorange] [int] NULL\n"
                                                              "[hirange] [int] NULL\n"
                                                              "[royalty] [int] NULL\n"
                                                              "\n"
                                                              "INDEX [titleidind] ([title_id])"));
    EXPECT_EQ(text(Pubs, "table", "discounts"),
              QStringLiteral("[discounttype] [varchar] (40) NOT NULL\n"
                             "[stor_id] [char] (4) NULL\n"
                             "[lowqty] [smallint] NULL\n"
                             "[highqty] [smallint] NULL\n"
                             "[discount] [decimal](4,2) NOT NULL"));
    EXPECT_EQ(text(Pubs, "table", "sales").section(u'\n', -2),
              QStringLiteral("CLUSTERED INDEX [UPKCL_sales] ([stor_id], [ord_num], [title_id])\n"
                             "INDEX [titleidind] ([title_id])"));
    EXPECT_EQ(text(Pubs, "table", "pub_info"),
              QStringLiteral("[pub_id] [char] (4) NOT NULL\n"
                             "[logo] [image] NULL\n"
                             "[pr_info] [text] NULL\n"
                             "\n"
                             "CLUSTERED INDEX [UPKCL_pubinfo] ([pub_id])"));
}

TEST_F(PublishedDatabases, SourcesReadToTheByte) {
    struct Row {
        QString database, type, name, script, opening;
    };
    const Row rows[] = {
        {Northwind, "view", "Customer and Suppliers by City", "northwind.sql",
         "create view \"Customer and Suppliers by City\""},
        {Northwind, "view", "Alphabetical list of products", "northwind.sql",
         "create view \"Alphabetical list of products\""},
        {Northwind, "view", "Current Product List", "northwind.sql",
         "create view \"Current Product List\""},
        {Northwind, "view", "Orders Qry", "northwind.sql", "create view \"Orders Qry\""},
        {Northwind, "view", "Products Above Average Price", "northwind.sql",
         "create view \"Products Above Average Price\""},
        {Northwind, "view", "Products by Category", "northwind.sql",
         "create view \"Products by Category\""},
        {Northwind, "view", "Quarterly Orders", "northwind.sql",
         "create view \"Quarterly Orders\""},
        {Northwind, "view", "Invoices", "northwind.sql", "create view Invoices"},
        {Northwind, "view", "Order Details Extended", "northwind.sql",
         "create view \"Order Details Extended\""},
        {Northwind, "view", "Order Subtotals", "northwind.sql", "create view \"Order Subtotals\""},
        {Northwind, "view", "Product Sales for 1997", "northwind.sql",
         "create view \"Product Sales for 1997\""},
        {Northwind, "view", "Sales by Category", "northwind.sql",
         "create view \"Sales by Category\""},
        {Northwind, "view", "Summary of Sales by Year", "northwind.sql",
         "create view \"Summary of Sales by Year\""},
        {Northwind, "procedure", "Ten Most Expensive Products", "northwind.sql",
         "create procedure \"Ten Most Expensive Products\""},
        {Northwind, "procedure", "Employee Sales by Country", "northwind.sql",
         "create procedure \"Employee Sales by Country\""},
        {Northwind, "procedure", "Sales by Year", "northwind.sql",
         "create procedure \"Sales by Year\""},
        {Northwind, "procedure", "CustOrdersDetail", "northwind.sql",
         "CREATE PROCEDURE CustOrdersDetail"},
        {Northwind, "procedure", "CustOrdersOrders", "northwind.sql",
         "CREATE PROCEDURE CustOrdersOrders"},
        {Northwind, "procedure", "CustOrderHist", "northwind.sql",
         "CREATE PROCEDURE CustOrderHist"},
        {Northwind, "procedure", "SalesByCategory", "northwind.sql",
         "CREATE PROCEDURE SalesByCategory"},
        {Pubs, "procedure", "byroyalty", "pubs.sql", "CREATE PROCEDURE byroyalty"},
        {Pubs, "procedure", "reptq1", "pubs.sql", "CREATE PROCEDURE reptq1"},
        {Pubs, "procedure", "reptq2", "pubs.sql", "CREATE PROCEDURE reptq2"},
        {Pubs, "procedure", "reptq3", "pubs.sql", "CREATE PROCEDURE reptq3"},
        {Pubs, "view", "titleview", "pubs.sql", "CREATE VIEW titleview"},
        {Pubs, "trigger", "employee_insupd", "pubs.sql", "CREATE TRIGGER employee_insupd"}};
    for (const Row& row : rows)
        EXPECT_EQ(text(row.database, row.type, row.name), batchOf(row.script, row.opening));
}

TEST_F(PublishedDatabases, RelationshipsAndConstraintsReadInFourLines) {
    struct Row {
        QString name, table, column, referencedTable, referencedColumn;
    };
    // A key over several columns would show its first pair; these have one each.
    const Row rows[] = {
        {"FK_CustomerCustomerDemo", "CustomerCustomerDemo", "CustomerTypeID",
         "CustomerDemographics", "CustomerTypeID"},
        {"FK_CustomerCustomerDemo_Customers", "CustomerCustomerDemo", "CustomerID", "Customers",
         "CustomerID"},
        {"FK_Employees_Employees", "Employees", "ReportsTo", "Employees", "EmployeeID"},
        {"FK_EmployeeTerritories_Employees", "EmployeeTerritories", "EmployeeID", "Employees",
         "EmployeeID"},
        {"FK_EmployeeTerritories_Territories", "EmployeeTerritories", "TerritoryID", "Territories",
         "TerritoryID"},
        {"FK_Order_Details_Orders", "Order Details", "OrderID", "Orders", "OrderID"},
        {"FK_Order_Details_Products", "Order Details", "ProductID", "Products", "ProductID"},
        {"FK_Orders_Customers", "Orders", "CustomerID", "Customers", "CustomerID"},
        {"FK_Orders_Employees", "Orders", "EmployeeID", "Employees", "EmployeeID"},
        {"FK_Orders_Shippers", "Orders", "ShipVia", "Shippers", "ShipperID"},
        {"FK_Products_Categories", "Products", "CategoryID", "Categories", "CategoryID"},
        {"FK_Products_Suppliers", "Products", "SupplierID", "Suppliers", "SupplierID"},
        {"FK_Territories_Region", "Territories", "RegionID", "Region", "RegionID"}};
    for (const Row& row : rows)
        EXPECT_EQ(
            text(Northwind, "relationship", row.name),
            QStringLiteral("TABLE %1\nCONSTRAINT [%2]\nFOREIGN KEY [%3]\nREFERENCES [%4] [%5]")
                .arg(row.table, row.name, row.column, row.referencedTable, row.referencedColumn));
    for (const QString& table : QStringList{"Categories", "Customers", "Employees", "Orders",
                                            "Products", "Shippers", "Suppliers"}) {
        const QString key = table == "Categories" ? "CategoryID" : table.chopped(1) + "ID";
        EXPECT_EQ(text(Northwind, "constraint", "PK_" + table),
                  QStringLiteral(
                      "CONSTRAINT [PK_%1] \nPRIMARY KEY CLUSTERED \nON COLUMN [%2]\nON TABLE [%1]")
                      .arg(table, key));
    }
}

TEST_F(PublishedDatabases, ACopyComparesCleanWithItsOriginal) {
    home_->load(Server, "Northwind2", {publishedScriptsFolder() + "northwind.sql"});
    const CliResult result =
        home_->run({"compare", "--source", Server, "--source-db", Northwind, "--target", Server,
                    "--target-db", "Northwind2", "--details"});
    EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
    EXPECT_EQ(result.err, QString());
    EXPECT_EQ(withoutTime(result.out.trimmed()),
              QStringLiteral("Comparison of databases\n"
                             "\n"
                             "Source database local:published.Northwind\n"
                             "Target database local:published.Northwind2\n"
                             "\n\n"
                             "Comparison of tables\n"
                             "There are 13 tables in Source database.\n"
                             "There are 13 tables in Target database.\n"
                             "The structure of all tables in both databases is identical.\n"
                             "\n"
                             "Comparison of procedures\n"
                             "There are 7 procedures in Source database.\n"
                             "There are 7 procedures in Target database.\n"
                             "All procedures in both databases are identical.\n"
                             "\n"
                             "Comparison of functions\n"
                             "There are no functions in Source database.\n"
                             "There are no functions in Target database.\n"
                             "\n"
                             "Comparison of views\n"
                             "There are 16 views in Source database.\n"
                             "There are 16 views in Target database.\n"
                             "All views in both databases are identical.\n"
                             "\n"
                             "Comparison of triggers\n"
                             "There are no triggers in Source database.\n"
                             "There are no triggers in Target database.\n"
                             "\n"
                             "Comparison of relationships\n"
                             "There are 13 relationships in Source database.\n"
                             "There are 13 relationships in Target database.\n"
                             "All relationships in both databases are identical.\n"
                             "\n"
                             "Time Elapsed: *"));
}

}  // namespace
}  // namespace zov::acceptance
