// The same databases through a real driver: what is listed, read and reported may differ from the
// embedded server's in the server's name alone.
#include "wired_server.h"

namespace zov::acceptance {
namespace {

class OverTheWire : public ::testing::Test {
 protected:
    static void SetUpTestSuite() {
        home_ = new CliHome;
        folder_ = "local:" + home_->path("wire");
        home_->load(folder_, "ShopBefore", {samplesFolder() + "shop_before.sql"});
        home_->load(folder_, "ShopAfter", {samplesFolder() + "shop_after.sql"});
        endpoint_ = new TdsEndpoint;
        serve(*endpoint_, folder_, *home_);
    }
    static void TearDownTestSuite() {
        delete endpoint_;
        delete home_;
    }

    /// Runs the command here and there; the outputs, with the server's name made the same.
    static void expectSame(const QStringList& command, const QStringList& serverOptions,
                           const QStringList& rest) {
        const auto run = [&](const QString& server, const QStringList& more) {
            QStringList arguments = command;
            for (const QString& option : serverOptions) arguments += {option, server};
            const CliResult result = home_->run(arguments + rest + more);
            EXPECT_EQ(result.err, QString());
            return QString::number(result.status) + u'\n' +
                   withoutTime(QString(result.out).replace(server, "SERVER"));
        };
        SCOPED_TRACE((command + rest).join(u' ').toStdString());
        const QString expected = run(folder_, {});
        EXPECT_FALSE(expected.startsWith("2"));
        for (const char* cursors : {"CursorConnectionUseServer=1", "CursorConnectionUseServer=0"})
            EXPECT_EQ(run(endpoint_->dataSource(), {"--login", "sa", "--set", cursors}), expected)
                << cursors;
    }

    static CliHome* home_;
    static TdsEndpoint* endpoint_;
    static QString folder_;
};
CliHome* OverTheWire::home_ = nullptr;
TdsEndpoint* OverTheWire::endpoint_ = nullptr;
QString OverTheWire::folder_;

TEST_F(OverTheWire, ReportsAreTheSame) {
    const QStringList databases{"--source-db", "ShopBefore", "--target-db", "ShopAfter"};
    for (const QStringList& options :
         {QStringList{}, QStringList{"--details"},
          QStringList{"--details", "--set", "AnalyzeConstraints=1"},
          QStringList{"--details", "--set", "IgnoreComments=0", "--set", "IgnoreWhitespace=0"},
          QStringList{"-t", "tables,views", "--select", "Customer,vOpenOrders,Lot"}})
        expectSame({"compare"}, {"--source", "--target"}, databases + options);
}

TEST_F(OverTheWire, ListsAndTextsAreTheSame) {
    for (const char* type : {"tables", "procedures", "functions", "views", "triggers",
                             "relationships", "constraints", "permissions"})
        expectSame({"list"}, {"-S"}, {"-d", "ShopAfter", "-t", type});
    const QStringList objects[] = {
        {"table", "Product"},        {"table", "stock.ChangeLog"},
        {"table", "Subscription"},   {"table", "Country"},
        {"table", "Price List"},     {"procedure", "MonthlyReport"},
        {"view", "vLotTrace"},       {"trigger", "trLot_Log"},
        {"function", "fnStockCard"}, {"relationship", "FK_Lot_PurchaseLine"},
        {"constraint", "PK_Setting"}};
    for (const QStringList& object : objects)
        expectSame({"text"}, {"-S"}, {"-d", "ShopAfter", "-t", object[0], object[1]});
}

TEST_F(OverTheWire, RowsAreTheSame) {
    for (const char* table :
         {"dbo.Country", "dbo.Category", "dbo.Supplier", "dbo.Product", "dbo.Setting",
          "sales.Customer", "sales.SalesOrder", "sales.OrderLine", "sales.[Price List]",
          "sales.Subscription", "sales.Payment", "sales.ChangeLog", "stock.Warehouse",
          "stock.PurchaseOrder", "stock.PurchaseLine", "stock.Lot", "stock.StockMove",
          "stock.ChangeLog"})
        expectSame({"query"}, {"-S"},
                   {"-d", "ShopAfter", QStringLiteral("SELECT * FROM ") + table});
    // Each result of a batch.
    const QString batch =
        QStringLiteral("SELECT 1 AS a DECLARE @b int SELECT 'x\ty' AS b, @b AS c");
    expectSame({"query"}, {"-S"}, {"-d", "ShopAfter", batch});
    EXPECT_EQ(home_->run({"query", "-S", folder_, "-d", "ShopAfter", batch}).out,
              "a\n1\n\nb\tc\nx\\ty\tNull\n");
}

TEST_F(OverTheWire, SourceAndTargetMayLieOnDifferentServers) {
    const CliResult result =
        home_->run({"compare", "--source", folder_, "--source-db", "ShopBefore", "--target",
                    endpoint_->dataSource(), "--target-db", "ShopBefore", "--login", "sa"});
    EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
}

TEST_F(OverTheWire, AStoredServerBringsItsLogin) {
    EXPECT_EQ(home_
                  ->run({"server", "add", endpoint_->dataSource(), "--sql-login", "sa",
                         "--password-stdin", "--database", "ShopAfter"},
                        "secret\n")
                  .status,
              0);
    home_->setEnvironment("ZOVRAND_PASSWORD", "");
    const CliResult listed = home_->run({"server", "list"});
    EXPECT_TRUE(listed.out.contains(endpoint_->dataSource())) << ::testing::PrintToString(listed);
    EXPECT_FALSE(listed.out.contains("secret"));
    // The store holds the password as it is, so nobody else may read it.
    const QFile::Permissions others =
        QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther;
    EXPECT_EQ(QFile::permissions(home_->home() + "/registry.reg") & others, 0);
    // With its last database, too.
    EXPECT_EQ(
        home_->run({"list", "-S", endpoint_->dataSource(), "-t", "triggers"}).outLines().size(), 4);
    EXPECT_EQ(home_->run({"server", "remove", endpoint_->dataSource()}).status, 0);
    EXPECT_EQ(home_->run({"server", "list"}).out, QString());
    home_->setEnvironment("ZOVRAND_PASSWORD", "secret");
}

}  // namespace
}  // namespace zov::acceptance
