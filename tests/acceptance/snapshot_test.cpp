// zovrand-cli snapshot, and what its files are good for; and comparisons that read each catalogue
// at once against those that ask object by object, of published databases.
#include "wired_server.h"

namespace zov::acceptance {
namespace {

const QString Server = QStringLiteral("local:try");

class SnapshotCommand : public ::testing::Test {
 protected:
    SnapshotCommand() {
        home.load(Server, "Before", {samplesFolder() + QStringLiteral("shop_before.sql")});
        home.load(Server, "After", {samplesFolder() + QStringLiteral("shop_after.sql")});
    }
    void keep() {
        const CliResult made = home.run({"snapshot", "-S", Server, "-d", "Before", file});
        EXPECT_EQ(made.status, 0) << ::testing::PrintToString(made);
        EXPECT_EQ(made.out + made.err, QString());
    }
    CliHome home;
    const QString file = home.path(QStringLiteral("shop.zovsnap"));
    const QString snapshot = QStringLiteral("snapshot:") + file;
};

TEST_F(SnapshotCommand, TheFileIsComparedAsTheDatabaseItIsOf) {
    keep();
    const auto compare = [&](const QString& source) {
        const CliResult result =
            home.run({"compare", "--details", "--source", source, "--source-db", "Before",
                      "--target", Server, "--target-db", "After"});
        EXPECT_EQ(result.status, 1) << result.err.toStdString();
        EXPECT_EQ(result.err, QString());
        const QString report = withoutTime(result.out);
        return report.mid(report.indexOf(QStringLiteral("\nComparison of tables")));
    };
    EXPECT_EQ(compare(snapshot), compare(Server));
    for (const char* type : {"tables", "procedures", "relationships", "constraints"})
        EXPECT_EQ(home.list(snapshot, "Before", type), home.list(Server, "Before", type)) << type;
}

TEST_F(SnapshotCommand, WhatNeedsRowsIsRefused) {
    keep();
    const QString refusal = QStringLiteral("zovrand-cli: ") + file +
                            QStringLiteral(" holds no rows; name its server instead.\n");
    const QStringList commands[] = {
        {"data", "--source", snapshot, "--source-db", "Before", "--target", Server, "--target-db",
         "After"},
        {"data", "--source", Server, "--source-db", "After", "--target", snapshot, "--target-db",
         "Before", "--table", "Country"},
        {"analyze", "-S", snapshot, "-d", "Before", "--table", "Country"},
        {"query", "-S", snapshot, "-d", "Before", "SELECT * FROM Country"},
    };
    for (const QStringList& command : commands) {
        const CliResult result = home.run(command);
        EXPECT_EQ(result.status, 2) << command.join(u' ').toStdString();
        EXPECT_EQ(result.out, QString());
        EXPECT_EQ(result.err, refusal);
    }
    const CliResult info = home.run({"info", "-S", snapshot, "-d", "Before"});
    EXPECT_EQ(info.status, 0) << info.err.toStdString();
    EXPECT_TRUE(info.out.contains(QStringLiteral("[Country] (rows not known)")))
        << info.out.toStdString();
    EXPECT_FALSE(info.out.contains(QStringLiteral(" record")));
}

TEST_F(SnapshotCommand, NothingIsWrittenWhereNothingCanBe) {
    const CliResult nowhere = home.run(
        {"snapshot", "-S", Server, "-d", "Before", home.path(QStringLiteral("no/such/a.zovsnap"))});
    EXPECT_EQ(nowhere.status, 2);
    EXPECT_FALSE(QFile::exists(home.path(QStringLiteral("no"))));
    keep();
    const CliResult again = home.run({"snapshot", "-S", snapshot, "-d", "Before", file});
    EXPECT_EQ(again.status, 2);
    EXPECT_EQ(again.err, QStringLiteral("zovrand-cli: ") + snapshot +
                             QStringLiteral(" is a snapshot already; copy the file.\n"));
    EXPECT_EQ(home.run({"load", "-S", snapshot, "-d", "Before",
                        samplesFolder() + QStringLiteral("shop_after.sql")})
                  .status,
              2);
}

TEST(ReadingAtOnce, PublishedDatabasesGiveTheSameReportEitherWay) {
    const QString folder = publishedScriptsFolder();
    if (folder.isEmpty()) GTEST_SKIP() << NoPublishedScripts;
    CliHome home;
    for (const char* name : {"Northwind", "pubs"})
        home.load(Server, QLatin1StringView(name),
                  {folder + QString::fromLatin1(name).toLower() + QStringLiteral(".sql")});
    TdsEndpoint endpoint;
    serve(endpoint, QStringLiteral("local:") + home.home() + QStringLiteral("/servers/try"), home);
    for (const QString& server : {Server, endpoint.dataSource()}) {
        const auto compare = [&](const char* image) {
            CliResult result = home.run(
                {"compare", "--details", "--source", server, "--source-db", "Northwind", "--target",
                 server, "--target-db", "pubs", "--set", "AnalyzeConstraints=1", "--set",
                 QStringLiteral("UseCatalogImage=") + QLatin1StringView(image), "--login", "sa"});
            EXPECT_EQ(result.status, 1) << result.err.toStdString();
            EXPECT_EQ(result.err, QString());
            return withoutTime(result.out);
        };
        const QString report = compare("1");
        EXPECT_GT(report.size(), 1000);
        EXPECT_EQ(report, compare("0"));
    }
}

}  // namespace
}  // namespace zov::acceptance
