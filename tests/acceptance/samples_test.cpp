// The samples of a small business, a release apart: loaded, looked at, compared, as the samples'
// own page promises.
#include "cli_runner.h"

#include <QRegularExpression>

namespace zov::acceptance {
namespace {

const QString Server = QStringLiteral("local:samples");
const QString Before = QStringLiteral("ShopBefore");
const QString After = QStringLiteral("ShopAfter");

class Samples : public ::testing::Test {
 protected:
    static void SetUpTestSuite() {
        home_ = new CliHome;
        home_->load(Server, Before, {samplesFolder() + "shop_before.sql"});
        home_->load(Server, After, {samplesFolder() + "shop_after.sql"});
    }
    static void TearDownTestSuite() {
        delete home_;
        home_ = nullptr;
    }
    static QStringList list(const QString& type, const QString& database = Before) {
        return home_->list(Server, database, type);
    }
    static QString text(const QString& type, const QString& name,
                        const QString& database = Before) {
        return home_->text(Server, database, type, name);
    }
    static CliResult compare(const QStringList& options = {}) {
        return home_->run(QStringList{"compare", "--source", Server, "--source-db", Before,
                                      "--target", Server, "--target-db", After} +
                          options);
    }

    static CliHome* home_;
};
CliHome* Samples::home_ = nullptr;

TEST_F(Samples, EveryTypeIsListed) {
    EXPECT_EQ(list("tables"),
              (QStringList{"Category", "sales.ChangeLog", "stock.ChangeLog", "Country", "Customer",
                           "FaxQueue", "Lot", "OrderLine", "Payment", "Price List", "Product",
                           "PurchaseLine", "PurchaseOrder", "SalesOrder", "Setting", "StockMove",
                           "Subscription", "Supplier", "Warehouse"}));
    EXPECT_EQ(list("procedures"),
              (QStringList{"MonthlyReport", "PlaceOrder", "PurgeFaxQueue", "ReceiveLot",
                           "RenewSubscriptions", "SearchProducts", "ShipOrder", "TransferLot"}));
    EXPECT_EQ(list("functions"), (QStringList{"fnFormatWeight", "fnLegacyCode", "fnOpenOrdersOf",
                                              "fnStockCard", "fnVatRate"}));
    EXPECT_EQ(list("views"), (QStringList{"vCustomerTurnover", "vFaxJournal", "vLotTrace",
                                          "vOpenOrders", "vProductCatalog", "vStockOnHand"}));
    EXPECT_EQ(list("triggers"), (QStringList{"trPayment_CloseOrder", "trProduct_Price",
                                             "trSalesOrder_Log", "trStockMove_NoDelete"}));
    EXPECT_EQ(list("relationships").size(), 20);
    EXPECT_EQ(list("relationships", After).size(), 22);

    QStringList keys = list("constraints");
    for (QString& key : keys) key.replace(QRegularExpression("__[0-9A-F]{16}$"), "__#");
    EXPECT_EQ(keys,
              (QStringList{"PK__FaxQueue__#", "PK_Categories", "PK_Country", "PK_Customer",
                           "PK_Lot", "PK_OrderLine", "PK_Payment", "PK_Price List", "PK_Product",
                           "PK_PurchaseLine", "PK_PurchaseOrder", "PK_SalesOrder", "PK_Setting",
                           "PK_StockMove", "PK_Supplier", "PK_Warehouse"}));

    const QStringList permissions = list("permissions");
    for (const char* row :
         {"SELECT TABLE Product", "SELECT TABLE COLUMN Customer", "UPDATE TABLE COLUMN Customer",
          "DELETE TABLE Payment", "EXECUTE SQL_STORED_PROCEDURE PlaceOrder"})
        EXPECT_TRUE(permissions.contains(QLatin1String(row))) << row;
    // Each right of an object is one, each column counts; those of a whole schema have no object.
    EXPECT_EQ(permissions.size(), 23) << permissions.join(u'\n').toStdString();
}

TEST_F(Samples, TablesShowTypesDefaultsAndKeys) {
    EXPECT_EQ(
        text("table", "Product"),
        QStringLiteral(
            "[ProductId] [int] IDENTITY(1,1) NOT NULL\n"
            "[Sku] [Sku] NOT NULL\n"
            "[Name] [nvarchar] (80) NOT NULL\n"
            "[CategoryId] [smallint] NOT NULL\n"
            "[SupplierId] [int] NULL\n"
            "[OriginCountry] [char] (2) NULL\n"
            "[NetWeight] [Weight] NOT NULL\n"
            "[ListPrice] [money] NOT NULL\n"
            "[VatCode] [char] (1) NOT NULL CONSTRAINT [DF_Product_VatCode] DEFAULT ('R')\n"
            "[ReorderLevel] [int] NOT NULL CONSTRAINT [DF_Product_ReorderLevel] DEFAULT ((10))\n"
            "[IsOrganic] [bit] NOT NULL CONSTRAINT [DF_Product_IsOrganic] DEFAULT ((0))\n"
            "[Discontinued] [bit] NOT NULL CONSTRAINT [DF_Product_Discontinued] DEFAULT ((0))\n"
            "[LabelImage] [varbinary] (-1) NULL\n"
            "[Notes] [nvarchar] (-1) NULL\n"
            "[PricePerKilo] [money] NULL\n"
            "[CreatedAt] [datetime2] NOT NULL CONSTRAINT [DF_Product_CreatedAt] DEFAULT "
            "(sysutcdatetime())\n"
            "\n"
            "CONSTRAINT [PK_Product] PRIMARY KEY CLUSTERED ([ProductId])\n"
            "INDEX [UQ_Product_Sku] ([Sku])\n"
            "INDEX [IX_Product_Category] ([CategoryId], [Name])\n"
            "INDEX [IX_Product_Supplier] ([SupplierId])"));
    EXPECT_EQ(
        text("table", "OrderLine"),
        QStringLiteral(
            "[OrderNo] [int] NOT NULL\n"
            "[LineNo] [smallint] NOT NULL\n"
            "[ProductId] [int] NOT NULL\n"
            "[Quantity] [int] NOT NULL CONSTRAINT [DF_OrderLine_Quantity] DEFAULT ((1))\n"
            "[UnitPrice] [money] NOT NULL\n"
            "[DiscountPct] [decimal](5,2) NOT NULL CONSTRAINT [DF_OrderLine_DiscountPct] DEFAULT "
            "((0.0))\n"
            "[LineTotal] [money] NOT NULL\n"
            "\n"
            "CONSTRAINT [PK_OrderLine] PRIMARY KEY CLUSTERED ([OrderNo], [LineNo])\n"
            "INDEX [IX_OrderLine_Product] ([ProductId])"));
    EXPECT_EQ(text("table", "Price List"),
              QStringLiteral(
                  "[ProductId] [int] NOT NULL\n"
                  "[ValidFrom] [date] NOT NULL\n"
                  "[ValidTo] [date] NULL\n"
                  "[Net Price] [money] NOT NULL\n"
                  "[Currency] [char] (3) NOT NULL CONSTRAINT [DF_Price List_Currency] DEFAULT "
                  "('EUR')\n"
                  "\n"
                  "CONSTRAINT [PK_Price List] PRIMARY KEY CLUSTERED ([ProductId], [ValidFrom])"));
    // ident_seed gets the name with its schema: the bare one names nothing in the user's own.
    EXPECT_EQ(text("table", "SalesOrder").section(u'\n', 0, 0),
              "[OrderNo] [int] IDENTITY(5001,1) NOT NULL");
    EXPECT_EQ(text("table", "Supplier").section(u'\n', 0, 0),
              "[SupplierId] [int] IDENTITY(100,10) NOT NULL");
    // A clustered index made after a key that isn't clustered still comes first.
    EXPECT_EQ(text("table", "Subscription").section(u'\n', -2),
              "CLUSTERED INDEX [CIX_Subscription] ([CustomerNo], [StartedOn])\n"
              "INDEX [PK_Subscription] ([SubscriptionId])");
    EXPECT_EQ(text("table", "sales.ChangeLog").section(u'\n', 1, 2),
              "[LoggedBy] [sysname] NOT NULL CONSTRAINT [DF_sales_ChangeLog_LoggedBy] DEFAULT "
              "(suser_sname())\n[OrderNo] [int] NOT NULL");
    EXPECT_EQ(text("table", "stock.ChangeLog").section(u'\n', 1, 1),
              "[LotNo] [varchar] (16) NOT NULL");
    EXPECT_TRUE(
        text("table", "Customer")
            .contains("[CustomerSince] [date] NOT NULL CONSTRAINT [DF_Customer_CustomerSince] "
                      "DEFAULT (CONVERT([date],getdate()))\n"));
}

TEST_F(Samples, SourcesAreWholeBatches) {
    // Comments in front belong to the text; a comment that stands in a batch of its own doesn't.
    EXPECT_TRUE(
        text("view", "vLotTrace").startsWith("-- From the tin on the shelf back to the garden.\n"));
    EXPECT_TRUE(text("view", "vProductCatalog").startsWith("CREATE VIEW dbo.vProductCatalog AS\n"));
    const QString report = text("procedure", "MonthlyReport");
    EXPECT_GT(report.size(), 4000);
    EXPECT_TRUE(report.startsWith("/* ---"));
    EXPECT_TRUE(report.endsWith("    RETURN 0;\nEND"));
    EXPECT_EQ(text("relationship", "FK_Lot_PurchaseLine"),
              "TABLE Lot\nCONSTRAINT [FK_Lot_PurchaseLine]\nFOREIGN KEY [PurchaseNo]\n"
              "REFERENCES [PurchaseLine] [PurchaseNo]");
    EXPECT_EQ(text("constraint", "PK_Price List"),
              "CONSTRAINT [PK_Price List] \nPRIMARY KEY CLUSTERED \nON COLUMN [ProductId]\n"
              "ON TABLE [Price List]");
}

TEST_F(Samples, RowsReadBack) {
    const auto value = [](const QString& sql, const QString& database = Before) {
        return home_->value(Server, database, sql);
    };
    EXPECT_EQ(value("SELECT Name FROM dbo.Product WHERE Sku = 'GT-GYO-050'"),
              QStringLiteral("Gyokuro 玉露, 50 g"));
    EXPECT_EQ(value("SELECT ListPrice FROM dbo.Product WHERE Sku = 'GT-GYO-050'"), "18.5");
    EXPECT_EQ(value("SELECT NetWeight FROM dbo.Product WHERE Sku = 'SP-SAF-001'"), "0.001");
    EXPECT_EQ(value("SELECT Name FROM sales.Customer WHERE CustomerNo = 1035"),
              "O'Malley's Fine Foods");
    EXPECT_EQ(value("SELECT COUNT(*) AS n FROM sales.OrderLine"), "273");
    EXPECT_EQ(value("SELECT COUNT(*) AS n FROM sales.OrderLine", After), "288");
    EXPECT_EQ(value("SELECT COUNT(*) AS n FROM sales.[Price List]"), "68");
    EXPECT_EQ(value("SELECT LoggedAt FROM sales.ChangeLog WHERE OrderNo = 5040"),
              "2023-06-11 08:00:00");
}

TEST_F(Samples, ADatabaseIsIdenticalWithItself) {
    const CliResult result = home_->run({"compare", "--source", Server, "--source-db", After,
                                         "--target", Server, "--target-db", After, "--details"});
    EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
    EXPECT_FALSE(result.out.contains("differ")) << ::testing::PrintToString(result);
}

TEST_F(Samples, TheReportNamesEveryChangeOnce) {
    const CliResult result = compare();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, QString());
    EXPECT_EQ(withoutTime(result.out.trimmed()), QStringLiteral(R"(Comparison of databases

Source database local:samples.ShopBefore
Target database local:samples.ShopAfter


Comparison of tables
There are 19 tables in Source database.
There are 21 tables in Target database.
List of tables which differ:
	Category
	stock.ChangeLog
	Customer
	Payment
	Product
	PurchaseOrder
	Setting
	Subscription
	Supplier
	(9 tables)
List of tables which exist in Source database but not in Target database:
	FaxQueue
	(1 table)
List of tables which exist in Target database but not in Source database:
	Allergen
	LoyaltyTier
	ProductAllergen
	(3 tables)
All 9 remaining tables have identical structures:
	sales.ChangeLog
	Country
	Lot
	OrderLine
	Price List
	PurchaseLine
	SalesOrder
	StockMove
	Warehouse

Comparison of procedures
There are 8 procedures in Source database.
There are 8 procedures in Target database.
List of procedures which differ:
	MonthlyReport
	PlaceOrder
	SearchProducts
	(3 procedures)
List of procedures which exist in Source database but not in Target database:
	PurgeFaxQueue
	(1 procedure)
List of procedures which exist in Target database but not in Source database:
	AwardLoyalty
	(1 procedure)
All 4 remaining procedures are identical:
	ReceiveLot
	RenewSubscriptions
	ShipOrder
	TransferLot

Comparison of functions
There are 5 functions in Source database.
There are 5 functions in Target database.
List of functions which differ:
	fnVatRate
	(1 function)
List of functions which exist in Source database but not in Target database:
	fnLegacyCode
	(1 function)
List of functions which exist in Target database but not in Source database:
	fnLoyaltyDiscount
	(1 function)
All 3 remaining functions are identical:
	fnFormatWeight
	fnOpenOrdersOf
	fnStockCard

Comparison of views
There are 6 views in Source database.
There are 6 views in Target database.
List of views which differ:
	vOpenOrders
	(1 view)
List of views which exist in Source database but not in Target database:
	vFaxJournal
	(1 view)
List of views which exist in Target database but not in Source database:
	vLoyaltyStanding
	(1 view)
All 4 remaining views are identical:
	vCustomerTurnover
	vLotTrace
	vProductCatalog
	vStockOnHand

Comparison of triggers
There are 4 triggers in Source database.
There are 4 triggers in Target database.
List of triggers which differ:
	trSalesOrder_Log
	(1 trigger)
List of triggers which exist in Source database but not in Target database:
	trPayment_CloseOrder
	(1 trigger)
List of triggers which exist in Target database but not in Source database:
	trLot_Log
	(1 trigger)
All 2 remaining triggers are identical:
	trProduct_Price
	trStockMove_NoDelete

Comparison of relationships
There are 20 relationships in Source database.
There are 22 relationships in Target database.
List of relationships which differ:
	FK_Customer_Country
	(1 relationship)
List of relationships which exist in Source database but not in Target database:
	FK_FaxQueue_Customer
	(1 relationship)
List of relationships which exist in Target database but not in Source database:
	FK_Customer_LoyaltyTier
	FK_ProductAllergen_Allergen
	FK_ProductAllergen_Product
	(3 relationships)
All 18 remaining relationships are identical:
	FK_Lot_PurchaseLine
	FK_OrderLine_Product
	FK_OrderLine_SalesOrder
	FK_Payment_SalesOrder
	FK_Price List_Product
	FK_Product_Category
	FK_Product_Country
	FK_Product_Supplier
	FK_PurchaseLine_Product
	FK_PurchaseLine_PurchaseOrder
	FK_PurchaseOrder_Supplier
	FK_SalesOrder_Customer
	FK_StockMove_Lot
	FK_StockMove_SalesOrder
	FK_StockMove_Warehouse
	FK_Subscription_Customer
	FK_Subscription_Product
	FK_Supplier_Country

Time Elapsed: *)"));
}

TEST_F(Samples, DetailsWalkLineByLine) {
    const QString report = compare({"--details"}).out;
    EXPECT_TRUE(
        report.contains("Detailed list of differences between compared triggers\n"
                        "\n"
                        "1. trSalesOrder_Log\n"
                        "\n"
                        "Differences in Source:\n"
                        " WHERE i.Status <> d.Status;\n"
                        " END\n"
                        "\n"
                        "Differences in Target:\n"
                        " WHERE i.Status <> d.Status\n"
                        " OR i.Freight <> d.Freight;\n"
                        "END\n"
                        "\n"));
    EXPECT_TRUE(
        report.contains("Detailed list of differences between compared relationships\n"
                        "\n"
                        "1. FK_Customer_Country\n"
                        "\n"
                        "Differences in Source:\n"
                        " FOREIGN KEY [CountryCode]\n"
                        "\n"
                        "Differences in Target:\n"
                        " FOREIGN KEY [BillingCountry]\n"));
    EXPECT_TRUE(
        report.contains("Differences in Source:\n"
                        " [Name] [nvarchar] (60) NOT NULL\n"
                        "\n"
                        "Differences in Target:\n"
                        " [Name] [nvarchar] (100) NOT NULL\n"));
}

TEST_F(Samples, OptionsActAsTheSamplesPageTells) {
    const auto differing = [](const QString& report) {
        QStringList names;
        bool inList = false;
        for (const QString& line : report.split(u'\n')) {
            if (line.endsWith(" which differ:"))
                inList = true;
            else if (!line.startsWith(u'\t') || line.startsWith("\t("))
                inList = false;
            else if (inList)
                names.append(line.mid(1));
        }
        return names;
    };
    const QStringList usual = differing(compare().out);
    ASSERT_EQ(usual.size(), 16);

    struct Row {
        QStringList settings, more, fewer;
    };
    const Row rows[] = {
        {{"IgnoreColSeq=0"}, {"Price List"}, {}},
        {{"CaseSensitive=0"}, {}, {"Subscription", "SearchProducts"}},
        {{"CaseSensitive=0", "IgnoreWhitespace=0"}, {"ShipOrder", "fnOpenOrdersOf"}, {}},
        {{"IgnoreIndexes=1"}, {}, {"Category", "Payment"}},
        {{"IgnoreComments=0"}, {"ShipOrder", "vLotTrace"}, {}},
        {{"IgnoreWhitespace=0"}, {"ShipOrder", "fnOpenOrdersOf"}, {}},
        {{"AnalyzeConstraints=1"}, {"PK_Setting"}, {}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.settings.join(u' ').toStdString());
        QStringList options;
        for (const QString& setting : row.settings) options += {"--set", setting};
        QStringList expected = usual + row.more;
        for (const QString& name : row.fewer) expected.removeOne(name);
        QStringList found = differing(compare(options).out);
        expected.sort();
        found.sort();
        EXPECT_EQ(found, expected);
    }
}

TEST_F(Samples, ColumnsThatTheUserIgnoresAreLeftOut) {
    const QStringList options{"-t", "tables", "--select", "Supplier"};
    const QByteArray broken =
        "no section\r\n[broken\r\n=nothing\r\n[local:samples.ShopBefore.Supplier]\r\n"
        "; widened in release 5\r\nstray line\r\n0=NAME\r\n";
    home_->write("home/documents/zov_ignored_cols_struct.ini", broken);
    const CliResult oneSide = compare(options);
    EXPECT_EQ(oneSide.status, 1);
    EXPECT_TRUE(oneSide.out.contains(
        "List of tables which differ:\n\tSupplier (some columns ignored during comparison)\n"))
        << ::testing::PrintToString(oneSide);

    home_->write("home/documents/zov_ignored_cols_struct.ini",
                 broken + "[local:samples.ShopAfter.Supplier]\r\n0=Name\r\n");
    const CliResult bothSides = compare(options);
    EXPECT_EQ(bothSides.status, 0);
    EXPECT_TRUE(
        bothSides.out.contains("The structure of all selected tables in both databases is "
                               "identical. (Some columns were ignored during comparison.)\n"))
        << ::testing::PrintToString(bothSides);
    // A pane, and so the text of one object, shows all columns.
    EXPECT_TRUE(text("table", "Supplier").contains("[Name] [nvarchar] (60) NOT NULL"));
    QFile::remove(home_->home() + "/documents/zov_ignored_cols_struct.ini");
}

}  // namespace
}  // namespace zov::acceptance
