// zovrand-cli data: one table by record and by key, exports, all tables, and what is said when
// something is wrong. Counts are held against plain SQL on the same rows.
#include "cli_runner.h"

namespace zov::acceptance {
namespace {

const QString Server = QStringLiteral("local:data");

class Data : public ::testing::Test {
 protected:
    static void SetUpTestSuite() {
        home_ = new CliHome;
        home_->load(Server, "Before", {samplesFolder() + "shop_before.sql"});
        home_->load(Server, "After", {samplesFolder() + "shop_after.sql"});
        // Both states of a table side by side, for counting with plain SQL.
        QByteArray rows =
            "CREATE TABLE One (Id int NOT NULL, City nvarchar(20), Price decimal(9,2))\nGO\n";
        QByteArray both = rows + QByteArray(rows).replace("One", "Two");
        QByteArray one = rows, two = rows;
        for (int i = 1; i <= 300; ++i) {
            const auto row = [&](const char* city, int price) {
                return "VALUES (" + QByteArray::number(i) + ", N'" + city + "', " +
                       QByteArray::number(price) + ".50)\n";
            };
            if (i % 60 != 0) {
                one += "INSERT INTO One " + row("Oslo", i);
                both += "INSERT INTO One " + row("Oslo", i);
            }
            if (i % 75 != 0) {
                const QByteArray changed =
                    row(i % 10 == 3 ? "Bergen" : "Oslo", i % 7 == 0 ? i + 1 : i);
                two += "INSERT INTO One " + changed;
                both += "INSERT INTO Two " + changed;
            }
        }
        home_->loadText(Server, "RowsOne", one + "GO\n");
        home_->loadText(Server, "RowsTwo", two + "GO\n");
        home_->loadText(Server, "RowsBoth", both + "GO\n");
    }
    static void TearDownTestSuite() {
        delete home_;
        home_ = nullptr;
    }
    static CliResult data(const QString& source, const QString& target,
                          const QStringList& options) {
        return home_->run(QStringList{"data", "--source", Server, "--source-db", source, "--target",
                                      Server, "--target-db", target} +
                          options);
    }
    static int count(const QString& sql) { return home_->value(Server, "RowsBoth", sql).toInt(); }
    static QString fileText(const QString& name) {
        QFile file(home_->path(name));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    static CliHome* home_;
};
CliHome* Data::home_ = nullptr;

// Rows of both that differ, and rows of Source alone, are counted one by one; what the numbers of
// rows differ by is added.
TEST_F(Data, CountsByKeyAgreeWithPlainSql) {
    const int changed = count(
        "SELECT COUNT(*) FROM One a INNER JOIN Two b ON a.Id = b.Id "
        "WHERE a.City <> b.City OR a.Price <> b.Price");
    const int onlyOne = count(
        "SELECT COUNT(*) FROM One WHERE NOT EXISTS (SELECT * FROM Two WHERE Two.Id = One.Id)");
    const int one = count("SELECT COUNT(*) FROM One"), two = count("SELECT COUNT(*) FROM Two");
    EXPECT_GT(changed, 50);
    EXPECT_EQ(onlyOne, 3);
    const CliResult result = data(
        "RowsOne", "RowsTwo",
        {"--table", "One", "--key", "id", "--limit", "1000", "--export", home_->path("key.csv")});
    EXPECT_EQ(result.status, 1) << ::testing::PrintToString(result);
    EXPECT_EQ(
        result.outLines(),
        (QStringList{
            QStringLiteral("Number of records in first table: %1").arg(one),
            QStringLiteral("Number of records in second table: %1").arg(two),
            QStringLiteral("Number of different records: %1").arg(changed + onlyOne + two - one)}));
    const QString csv = fileText("key.csv");
    EXPECT_TRUE(csv.contains("Bergen")) << csv.left(400).toStdString();
    // With the changed column left out only the prices count.
    const int prices = count(
        "SELECT COUNT(*) FROM One a INNER JOIN Two b ON a.Id = b.Id WHERE a.Price <> b.Price");
    const CliResult ignoring =
        data("RowsOne", "RowsTwo", {"--table", "One", "--key", "Id", "--ignore", "City"});
    EXPECT_EQ(ignoring.outLines().value(2),
              QStringLiteral("Number of different records: %1").arg(prices + onlyOne + two - one));
    EXPECT_EQ(ignoring.outLines().value(3).toStdString(),
              "Columns ignored during comparison: Source - City Target - City");
    EXPECT_EQ(data("RowsOne", "RowsOne", {"--table", "One", "--key", "Id,City,Price"}).status, 0);
}

TEST_F(Data, RecordsAreComparedInTheirOrder) {
    const CliResult whole =
        data("RowsOne", "RowsTwo",
             {"--table", "One", "--sort", "Id", "--set", "CursorConnectionUseServer=1"});
    EXPECT_EQ(whole.status, 1) << ::testing::PrintToString(whole);
    const CliResult client =
        data("RowsOne", "RowsTwo",
             {"--table", "One", "--sort", "Id", "--set", "CursorConnectionUseServer=0"});
    EXPECT_EQ(whole.out, client.out);
    const CliResult late = data("RowsOne", "RowsTwo",
                                {"--table", "One", "--sort", "Id", "--offset", "285",
                                 "--target-offset", "285", "--export", home_->path("late.htm")});
    EXPECT_EQ(late.outLines().value(0).toStdString(), "Number of records in first table: 295");
    EXPECT_TRUE(fileText("late.htm").contains("<TABLE")) << ::testing::PrintToString(late);
}

TEST_F(Data, AllTablesGiveOneReport) {
    const CliResult all = data("Before", "After", {"-o", home_->path("report.txt")});
    EXPECT_EQ(all.status, 1) << ::testing::PrintToString(all);
    EXPECT_EQ(all.out, QString());
    const QString report = fileText("report.txt");
    EXPECT_TRUE(
        report.startsWith("Comparison of databases\r\n\r\nSource database local:data.Before\r\n"));
    EXPECT_TRUE(report.contains("\tsales.ChangeLog - 1 different record(s)\r\n"));
    EXPECT_TRUE(report.contains(
        "which exist in Source database but not in Target database:\r\n\tFaxQueue\r\n\t(1 table)"));
    EXPECT_EQ(data("Before", "Before", {}).status, 0);
    const CliResult chosen = data("Before", "After", {"--select", "stock.ChangeLog,Category"});
    EXPECT_EQ(chosen.status, 1);
    EXPECT_TRUE(chosen.out.contains("\tCategory - 2 different record(s)"))
        << chosen.out.toStdString();
}

TEST_F(Data, TroubleIsToldPlainly) {
    const struct {
        QStringList options;
        const char* said;
    } table[] = {
        {{"--table", "Nowhere"},
         "zovrand-cli: The source database RowsOne has no table \"Nowhere\""},
        {{"--table", "One", "--key", "Nope"},
         "zovrand-cli: --key: the table One of RowsOne has no column \"Nope\"."},
        {{"--table", "One", "--key", "Id", "--target-key", "Nope"},
         "zovrand-cli: --target-key: the table One of RowsTwo has no column \"Nope\"."},
        {{"--table", "One", "--key", "Id", "--offset", "5"},
         "zovrand-cli: --offset belongs to --method record."},
        {{"--table", "One", "--ignore", "Nope"},
         "zovrand-cli: --ignore: neither table has a column \"Nope\"."},
        {{"--table", "One", "--ignore", "City", "--target-ignore", "City,Price"},
         "zovrand-cli: --ignore leaves 2 columns of the source table and 1 of the target table"},
        {{"--table", "One", "--key", "Id", "--set", "MaxRowsInDiffTable=-5"},
         "zovrand-cli: MaxRowsInDiffTable is -5; it must be at least 1."},
        {{"--table", "One", "--key", "Id,Id"}, "zovrand-cli: --key names the column \"Id\" twice."},
        {{"--table", "One", "--method", "key"}, "zovrand-cli: No key is stored for One."},
        {{"--table", "One", "--method", "record", "--key", "Id"},
         "zovrand-cli: --key belongs to --method key."},
        {{"--table", "One", "--ignore", "Id,City,Price"},
         "zovrand-cli: --ignore leaves no column of One"},
        {{"--table", "One", "--export", "x.pdf"},
         "zovrand-cli: --export writes .htm, .html or .csv"},
        {{"--table", "One", "--export", "/nowhere/at/all.csv"},
         "zovrand-cli: --export: there is no folder"},
        {{"--key", "Id"}, "zovrand-cli: --key requires --table"},
        {{"--table", "One", "--select", "One"}, "zovrand-cli: "},
        // An empty variable of a script must not make it another comparison, or one without its
        // file.
        {{"--table", ""}, "zovrand-cli: --table: the value is missing"},
        {{"--table", "One", "--key", "Id", "--export", ""},
         "zovrand-cli: --export: the value is missing"},
        {{"--table", "One", "--key", "Id", "--ignore", "City,id"},
         "zovrand-cli: --key and --ignore both name the column \"Id\"."},
        {{"--table", "One", "--sort", "City", "--ignore", "City"},
         "zovrand-cli: --sort and --ignore both name the column \"City\"."},
    };
    for (const auto& row : table) {
        const CliResult result = data("RowsOne", "RowsTwo", row.options);
        EXPECT_EQ(result.status, 2) << row.options.join(u' ').toStdString();
        EXPECT_EQ(result.out, QString());
        EXPECT_TRUE(result.err.startsWith(row.said)) << row.said << '\n'
                                                     << result.err.toStdString();
    }
    // The counts stand, though the file could not be written.
    const CliResult full =
        data("RowsOne", "RowsTwo", {"--table", "One", "--key", "Id", "--export", "/proc/rows.csv"});
    EXPECT_EQ(full.status, 2) << ::testing::PrintToString(full);
    EXPECT_EQ(full.errLines().value(1).trimmed().toStdString(),
              "Nothing was exported. An older file of this name is as it was.");
}

// What one side alone has can be left out of that one.
TEST_F(Data, AColumnOfOneSideIsLeftOutThere) {
    home_->loadText(
        Server, "Wide",
        "CREATE TABLE D (Id int, Note text, A int)\nGO\nINSERT INTO D VALUES (1, 'x', 2)\nGO\n");
    home_->loadText(Server, "Narrow",
                    "CREATE TABLE D (Id int, A int)\nGO\nINSERT INTO D VALUES (1, 2)\nGO\n");
    const CliResult wider = data("Wide", "Narrow", {"--table", "D"});
    EXPECT_EQ(wider.status, 1);
    EXPECT_TRUE(wider.err.startsWith("zovrand-cli: The target table lacks Note: "))
        << wider.err.toStdString();
    const CliResult narrower = data("Narrow", "Wide", {"--table", "D"});
    EXPECT_EQ(narrower.status, 0);
    EXPECT_EQ(narrower.err.trimmed().toStdString(),
              "zovrand-cli: Not compared, since only the target table has it: Note.");
    const CliResult result = data("Wide", "Narrow", {"--table", "D", "--ignore", "note"});
    EXPECT_EQ(result.status, 0) << ::testing::PrintToString(result);
    EXPECT_TRUE(result.out.contains("Column ignored during comparison: Source - Note"));
    const CliResult sorted = data("Wide", "Wide", {"--table", "D", "--sort", "Note"});
    EXPECT_EQ(sorted.err.trimmed().toStdString(),
              "zovrand-cli: --sort Note: The text, ntext, and image data types cannot be compared "
              "or sorted.");
}

// Half a result doesn't take the place of an older file, and says why there is no more.
TEST_F(Data, ARunThatBreaksOffExportsNothing) {
    const QString file = home_->write("kept.csv", "older");
    const CliResult late =
        data("RowsOne", "RowsTwo",
             {"--table", "One", "--method", "record", "--offset", "1000", "--export", file});
    EXPECT_EQ(late.status, 2);
    EXPECT_EQ(late.out, QString());
    EXPECT_TRUE(late.err.contains(
        "The source was to be compared from record 1,000 on; its table One has 295."))
        << late.err.toStdString();
    EXPECT_TRUE(late.err.contains("kept.csv was not written.")) << late.err.toStdString();
    EXPECT_EQ(fileText("kept.csv").toStdString(), "older");
}

// A stored key whose column is gone still compares as it always has; the user is told by what.
TEST_F(Data, AStoredKeyThatIsGoneIsMentioned) {
    const struct {
        const char* source;
        const char* target;
        int status;
        const char* said;
    } table[] = {
        {"CompKey=Gone", "CompKey=Id", 1,
         "The key \"Gone\" is not among the compared columns of One: its first column, \"Id\", is "
         "taken."},
        {"CompKey=Id", "CompKey=Gone", 2,
         "The key \"Gone\" is not among the compared columns of the Target table. Choose another "
         "key."},
        {"CompKey=Id\nSecondaryCompKey=City", "CompKey=Id\nSecondaryCompKey=Gone", 1,
         "The key \"Gone\" is not among the compared columns of One: every record is paired with "
         "the first that is left."},
        {"CompKey=Id\nSecondaryCompKey=City", "CompKey=Id\nSecondaryCompKey=City", 1,
         "zovrand-cli: As stored for One: the key Id, City."},
    };
    for (const auto& row : table) {
        home_->write("home/documents/zov_tables_comps.ini",
                     QByteArray("[local:data.RowsOne.One]\nCompMethod=1\n") + row.source +
                         "\n[local:data.RowsTwo.One]\nCompMethod=1\n" + row.target + "\n");
        const CliResult result = data("RowsOne", "RowsTwo", {"--table", "One"});
        EXPECT_EQ(result.status, row.status) << ::testing::PrintToString(result);
        EXPECT_TRUE(result.err.contains(row.said)) << row.said << '\n' << result.err.toStdString();
    }
    // A key of this run's own leaves what is stored aside.
    EXPECT_EQ(data("RowsOne", "RowsTwo", {"--table", "One", "--key", "Id"}).err, QString());
    home_->write("home/documents/zov_ignored_cols_data.ini", "[local:data.RowsOne.One]\n0=Id\n");
    const CliResult ignored = data("RowsOne", "RowsTwo", {"--table", "One", "--key", "Id"});
    EXPECT_EQ(ignored.status, 2);
    EXPECT_TRUE(ignored.err.startsWith(
        "zovrand-cli: --key: the column \"Id\" of One is ignored, as stored."))
        << ignored.err.toStdString();
    EXPECT_TRUE(QFile::remove(home_->home() + "/documents/zov_ignored_cols_data.ini"));
    EXPECT_TRUE(QFile::remove(home_->home() + "/documents/zov_tables_comps.ini"));
}

}  // namespace
}  // namespace zov::acceptance
