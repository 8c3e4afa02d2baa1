// zovrand-cli analyze, info and attach, here and through a real driver.
#include "wired_server.h"

#include <QDate>
#include <QLocale>

namespace zov::acceptance {
namespace {

const QByteArray Script =
    "CREATE SCHEMA hr\nGO\n"
    "CREATE TABLE dbo.[Or'der] (Id int NOT NULL, City nvarchar(20), Note ntext, Bits "
    "varbinary(8))\nGO\n"
    "INSERT INTO [Or'der] VALUES (1, N'Oslo', N'a', 0x01)\n"
    "INSERT INTO [Or'der] VALUES (2, N'Oslo', N'b', 0x02)\n"
    "INSERT INTO [Or'der] VALUES (3, N'Bergen', NULL, NULL)\nGO\n"
    "CREATE TABLE dbo.Twin (Id int)\nGO\nCREATE TABLE hr.Twin (Id int)\nGO\n"
    "CREATE PROCEDURE dbo.P AS SELECT 1\nGO\n";

class ToolCommands : public ::testing::Test {
 protected:
    static void SetUpTestSuite() {
        home_ = new CliHome;
        server_ = "local:" + home_->path("tools");
        home_->loadText(server_, "D", Script);
        endpoint_ = new TdsEndpoint;
        serve(*endpoint_, server_, *home_);
    }
    static void TearDownTestSuite() {
        delete endpoint_;
        delete home_;
    }
    /// The command on the embedded server; through the driver it says the same.
    static CliResult run(const QStringList& arguments) {
        const CliResult here = home_->run(QStringList(arguments) << "-S" << server_);
        CliResult there =
            home_->run(QStringList(arguments) << "-S" << endpoint_->dataSource() << "--login"
                                              << "sa");
        EXPECT_EQ(there.status, here.status) << ::testing::PrintToString(there);
        EXPECT_EQ(there.out.replace(endpoint_->dataSource(), server_), here.out);
        return here;
    }

    static CliHome* home_;
    static TdsEndpoint* endpoint_;
    static QString server_;
};
CliHome* ToolCommands::home_ = nullptr;
TdsEndpoint* ToolCommands::endpoint_ = nullptr;
QString ToolCommands::server_;

TEST_F(ToolCommands, AnalyzeCountsTheValuesOfATable) {
    const QString title = "Table: ";
    CliResult result = run({"analyze", "-d", "D", "--table", "Or'der"});
    EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
    EXPECT_TRUE(result.out.startsWith(title)) << result.out.toStdString();
    EXPECT_TRUE(
        result.out.contains("\nCity (nvarchar): 2 unique values\n"
                            "           2  Oslo\n           1  Bergen\n"))
        << result.out.toStdString();
    EXPECT_TRUE(result.out.contains("\nNote (ntext): 3 unique values\n"))
        << result.out.toStdString();
    result = run({"analyze", "-d", "D", "--table", "[dbo].[Or'der]", "--least", "--rows", "3",
                  "--ignore", "note,Bits"});
    EXPECT_TRUE(result.out.contains("           1  Bergen\n           2  Oslo\n"));
    EXPECT_FALSE(result.out.contains("Note"));

    const QString file = home_->path("counts.csv");
    result = home_->run({"analyze", "-S", server_, "-d", "D", "--table", "Or'der", "--export", file,
                         "-o", home_->path("counts.txt")});
    EXPECT_EQ(result.out, "");
    QFile csv(file), text(home_->path("counts.txt"));
    ASSERT_TRUE(csv.open(QIODevice::ReadOnly) && text.open(QIODevice::ReadOnly));
    EXPECT_TRUE(csv.readAll().contains("\"Oslo\""));
    EXPECT_TRUE(text.readAll().contains("Oslo"));

    const struct {
        QStringList options;
        int status;
        const char* told;
    } rows[] = {
        {{"--table", "hr.Twin"}, 0, "Table hr.Twin doesn't contain any data."},
        {{"--table", "Twin"}, 2, "Several tables have this name"},
        {{"--table", "Gone"}, 2, "The database D has no table \"Gone\""},
        {{"--table", "Or'der", "--ignore", "x"},
         2,
         "--ignore: the table Or'der of D has no column"},
        {{"--table", "Or'der", "--export", "x.doc"}, 2, "--export writes .htm, .html or .csv"},
    };
    for (const auto& row : rows) {
        result = run(QStringList{"analyze", "-d", "D"} + row.options);
        EXPECT_EQ(result.status, row.status) << row.told;
        EXPECT_TRUE(result.err.contains(QLatin1String(row.told))) << result.err.toStdString();
    }
}

TEST_F(ToolCommands, AColumnOfManyValuesIsRankedWhenAsked) {
    QByteArray many = "CREATE TABLE Many (Id int)\nGO\n";
    for (int block = 0; block < 33; ++block) {
        many += "INSERT INTO Many VALUES (0)";
        for (int i = 0; i < 1000; ++i) many += ", (" + QByteArray::number(block * 1000 + i) + ")";
        many += "\n";
    }
    home_->loadText(server_, "Many", many + "GO\n");
    const QStringList analyze{"analyze", "-S", server_, "-d", "Many", "--table", "Many"};
    CliResult result = home_->run(analyze);
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(result.err.contains("--any-size")) << result.err.toStdString();
    result = home_->run(analyze + QStringList{"--any-size"});
    EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
    EXPECT_TRUE(result.out.contains("33,000 unique values\n          34  0\n           1  1\n"))
        << result.out.toStdString();
}

TEST_F(ToolCommands, InfoListsOneDatabaseOrBoth) {
    const QString today = QLocale::c().toString(QDate::currentDate(), "MMM dd, yyyy");
    CliResult result = run({"info", "-d", "D"});
    EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
    EXPECT_EQ(
        result.out.replace(today, "TODAY"),
        "TODAY\n\nDatabase: D\n\nList of tables\n[dbo].[Or'der] (3 records)\n[dbo].[Twin] (0 "
        "records)\n[hr].[Twin] (0 records)\n\nList of procedures\nP\n\nThere are no functions "
        "in this database.\n\nThere are no views in this database.\n\nThere are no triggers "
        "in this database.\n\nThere are no relationships in this database.\n\n");
    result = home_->run(
        {"info", "--source", server_, "--source-db", "D", "--target", server_, "--target-db", "D"});
    EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
    EXPECT_TRUE(
        result.out.startsWith("There are 3 tables in Source database.\nThere are 3 tables in "
                              "Target database.\nThere is 1 procedure in Source database.\n"))
        << result.out.toStdString();
    EXPECT_EQ(result.out.count("Database: D\n"), 2);
    EXPECT_EQ(home_->run({"info", "-S", server_, "-d", "None"}).status, 2);
}

TEST_F(ToolCommands, AttachTakesACopyOfADatabaseFile) {
    const QString other = "local:" + home_->path("old");
    home_->loadText(other, "Old", "CREATE TABLE T (Id int)\nGO\nINSERT INTO T VALUES (7)\nGO\n");
    const QString file = home_->path("old/Old.db");
    const auto attach = [&](const QString& name, const QStringList& rest) {
        return home_->run(QStringList{"attach", "-S", server_, "-d", name} + rest);
    };
    EXPECT_EQ(attach("New", {file}).status, 0);
    EXPECT_EQ(home_->value(server_, "New", "SELECT Id FROM T"), "7");
    EXPECT_EQ(home_->value(server_, "New", "SELECT DB_NAME()"), "New");
    EXPECT_TRUE(QFile::exists(file));
    // Through the driver, by the procedures of a real server.
    EXPECT_EQ(home_
                  ->run({"attach", "-S", endpoint_->dataSource(), "--login", "sa", "-d", "Wired",
                         file, file})
                  .status,
              0);
    EXPECT_EQ(home_->value(server_, "Wired", "SELECT Id FROM T"), "7");

    QFile damaged(file);
    ASSERT_TRUE(damaged.copy(home_->path("damaged.db")));
    QFile copy(home_->path("damaged.db"));
    ASSERT_TRUE(copy.open(QIODevice::ReadWrite) && copy.seek(4096 * 3));
    copy.write(QByteArray(4096 * 4, '\xee'));
    copy.close();
    const struct {
        const char* name;
        QStringList files;
        const char* told;
    } rows[] = {
        {"New", {file}, "Database 'New' already exists."},
        {"X", {home_->path("none.mdf")}, "doesn't exist."},
        {"X", {file, home_->path("none.ldf")}, "doesn't exist."},
        {"X", {home_->write("text.db", "no database")}, "is not a primary database file"},
        {"X", {home_->path("tools/New.db")}, "is a database of this server already."},
        {"X", {home_->path("damaged.db")}, "damaged"},
    };
    for (const auto& row : rows) {
        const CliResult result = attach(row.name, row.files);
        EXPECT_EQ(result.status, 2) << row.told;
        EXPECT_TRUE(result.err.contains(QLatin1String(row.told))) << result.err.toStdString();
    }
    EXPECT_EQ(home_->run({"list", "-S", server_, "-d", "X", "-t", "tables"}).status, 2)
        << "nothing stays of what failed";
}

}  // namespace
}  // namespace zov::acceptance
