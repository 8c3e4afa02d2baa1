// Bulk runs over names that stand for several objects, or that look like more than a name: each
// object is compared with the one of its own schema and name, by its own text.
#include "compare_all_fixture.h"
#include "core/modIgnoreColumns.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

using test::Road;

class NamesakesRun : public ::testing::TestWithParam<Road> {
 protected:
    void SetUp() override {
        globals().gblnIgnoreWhitespace = false;
        globals().gblnIgnoreComments = false;
        globals().gblnIgnoreColSeq = false;
        request_.sourceDb = QStringLiteral("Src");
        request_.targetDb = QStringLiteral("Tgt");
    }
    /// The report from the first kind's heading on.
    std::string report(const QString& source, const QString& target, const QStringList& kinds) {
        databases_.load(request_.sourceDb, source);
        databases_.load(request_.targetDb, target);
        for (ServerInfo& server : globals().gtCurrentServers) server = databases_.server();
        request_.kinds = test::boxesOf(kinds);
        run_ = CompareAll_Structure(form_, request_, scratch_.panels);
        EXPECT_TRUE(run_.isReliable());
        EXPECT_EQ(shell_.takeLines().join(u'\n').toStdString(), "");
        const QString text = test::shownReport(globals().gstrReport, databases_.server().Name);
        return text.mid(text.indexOf(QStringLiteral("omparison of "), 30) - 1)
            .section(QStringLiteral("\n\nTime"), 0, 0)
            .toStdString();
    }

    test::TempHome home_;
    test::RecordingShell shell_;
    test::ServedDatabases databases_{GetParam()};
    StructureRunRequest request_;
    StructureRun run_;
    test::RecordingForm form_;
    test::ScratchPanels scratch_;
};
INSTANTIATE_TEST_SUITE_P(Roads, NamesakesRun, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

TEST_P(NamesakesRun, EachIsComparedWithItsOwnText) {
    const QString common = QStringLiteral(
        "CREATE SCHEMA hr\nGO\n"
        "CREATE VIEW dbo.V AS SELECT 1 AS a\nGO\n"
        "CREATE PROCEDURE dbo.[p.q] AS SELECT 1\nGO\n"
        "CREATE PROCEDURE dbo.Shared AS SELECT 1\nGO\n"
        "CREATE TABLE dbo.T (a int CONSTRAINT pk_T PRIMARY KEY)\nGO\n");
    EXPECT_EQ(
        report(common + QStringLiteral("CREATE VIEW hr.V AS SELECT 2 AS a\nGO\n"
                                       "CREATE VIEW hr.Shared AS SELECT 1 AS a\nGO\n"
                                       "CREATE PROCEDURE dbo.[r.q] AS SELECT 1\nGO\n"
                                       "CREATE TABLE hr.T (a int IDENTITY(1,1) CONSTRAINT "
                                       "pk_T2 PRIMARY KEY)\nGO\n"),
               common + QStringLiteral("CREATE VIEW hr.V AS SELECT 3 AS a\nGO\n"
                                       "CREATE VIEW hr.Shared AS SELECT 2 AS a\nGO\n"
                                       "CREATE PROCEDURE dbo.[r.q] AS SELECT 2\nGO\n"
                                       "CREATE TABLE hr.T (a int IDENTITY(5,1) CONSTRAINT "
                                       "pk_T2 PRIMARY KEY)\nGO\n"),
               {QStringLiteral("tables"), QStringLiteral("procedures"), QStringLiteral("views")}),
        "Comparison of tables\n"
        "There are 2 tables in Source database.\n"
        "There are 2 tables in Target database.\n"
        "List of tables which differ:\n\thr.T\n\t(1 table)\n"
        "One table [dbo.T] has identical structure in both databases.\n\n"
        "Comparison of procedures\n"
        "There are 3 procedures in Source database.\n"
        "There are 3 procedures in Target database.\n"
        "List of procedures which differ:\n\tr.q\n\t(1 procedure)\n"
        "All 2 remaining procedures are identical:\n\tp.q\n\tShared\n\n"
        "Comparison of views\n"
        "There are 3 views in Source database.\n"
        "There are 3 views in Target database.\n"
        "List of views which differ:\n\tShared\n\thr.V\n\t(2 views)\n"
        "One view [dbo.V] has identical structure in both databases.");
}

TEST_P(NamesakesRun, AnObjectOfAnotherSchemaIsAnother) {
    const QString schema = QStringLiteral("CREATE SCHEMA hr\nGO\n");
    EXPECT_EQ(report(schema + QStringLiteral("CREATE VIEW dbo.V AS SELECT 1 AS a\nGO\n"
                                             "CREATE VIEW dbo.W AS SELECT 1 AS a\nGO\n"),
                     schema + QStringLiteral("CREATE VIEW hr.V AS SELECT 1 AS a\nGO\n"
                                             "CREATE VIEW dbo.W AS SELECT 1 AS a\nGO\n"),
                     {QStringLiteral("views")}),
              "Comparison of views\n"
              "There are 2 views in Source database.\n"
              "There are 2 views in Target database.\n"
              "List of views which exist in Source database but not in Target database:\n\tV\n"
              "\t(1 view)\n"
              "List of views which exist in Target database but not in Source database:\n\tV\n"
              "\t(1 view)\n"
              "One view [W] has identical structure in both databases.");
}

TEST_P(NamesakesRun, IgnoredColumnsOfANamesakeHold) {
    const QString schema = QStringLiteral("CREATE SCHEMA hr\nGO\nCREATE TABLE dbo.T (a int)\nGO\n");
    const QString hr = QStringLiteral("CREATE TABLE hr.T (a int, b %1)\nGO\n");
    databases_.load(QStringLiteral("Src"), QStringLiteral("SELECT 1"));
    for (const char* db : {"Src", "Tgt"})
        SaveIgnoredColumnsList(
            IgnoreMode::StructureComparison,
            GetObjectKeyName(databases_.server().Name, QLatin1String(db), QStringLiteral("hr.T")),
            {QStringLiteral("b")});
    EXPECT_EQ(report(schema + hr.arg(QStringLiteral("int")),
                     schema + hr.arg(QStringLiteral("date")), {QStringLiteral("tables")}),
              "Comparison of tables\n"
              "There are 2 tables in Source database.\n"
              "There are 2 tables in Target database.\n"
              "The structure of all tables in both databases is identical. (Some columns were "
              "ignored during comparison.)");
}

// A bound default is no constraint, so it has no constraint's name: that is no trouble.
TEST_P(NamesakesRun, BoundDefaultsAreCompared) {
    const auto script = [](int ofType, int ofColumn) {
        return QStringLiteral(
                   "CREATE DEFAULT d AS %1\nGO\nCREATE DEFAULT e AS %2\nGO\n"
                   "CREATE TYPE code FROM int\nGO\nEXEC sp_bindefault 'd', 'code'\nGO\n"
                   "CREATE TABLE A (a code)\nCREATE TABLE B (b int)\nGO\n"
                   "EXEC sp_bindefault 'e', 'B.b'\nGO\n")
            .arg(ofType)
            .arg(ofColumn);
    };
    int pair = 0;
    const auto reportOf = [&](const QString& source, const QString& target) {
        ++pair;
        request_.sourceDb = QStringLiteral("Src%1").arg(pair);
        request_.targetDb = QStringLiteral("Tgt%1").arg(pair);
        return report(source, target, {QStringLiteral("tables")});
    };
    const std::string counts =
        "Comparison of tables\n"
        "There are 2 tables in Source database.\n"
        "There are 2 tables in Target database.\n";
    EXPECT_EQ(reportOf(script(42, 7), script(42, 7)),
              counts + "The structure of all tables in both databases is identical.");
    EXPECT_EQ(reportOf(script(42, 7), script(43, 7)),
              counts +
                  "List of tables which differ:\n\tA\n\t(1 table)\n"
                  "One table [B] has identical structure in both databases.");
    EXPECT_EQ(reportOf(script(42, 7), script(42, 8)),
              counts +
                  "List of tables which differ:\n\tB\n\t(1 table)\n"
                  "One table [A] has identical structure in both databases.");
}

TEST_P(NamesakesRun, AnEncryptedTextIsNeitherEqualNorMissing) {
    const QString secret = QStringLiteral(
        "CREATE PROCEDURE dbo.P WITH ENCRYPTION AS SELECT %1\nGO\n"
        "CREATE PROCEDURE dbo.Q AS SELECT 1\nGO\n");
    EXPECT_EQ(report(secret.arg(1), secret.arg(2), {QStringLiteral("procedures")}),
              "Comparison of procedures\n"
              "There are 2 procedures in Source database.\n"
              "There are 2 procedures in Target database.\n"
              "One procedure [Q] has identical structure in both databases.\n"
              "List of procedures which can't be read:\n\tP\n\t(1 procedure)");
    EXPECT_FALSE(run_.somethingDiffers);
    EXPECT_FALSE(run_.isWhole());
}

TEST_P(NamesakesRun, ASelectionMayNameOneOfThem) {
    const QString common = QStringLiteral(
        "CREATE SCHEMA hr\nGO\nCREATE VIEW hr.V AS SELECT 1 AS a\nGO\n"
        "CREATE TABLE dbo.T (a int)\nGO\n");
    request_.selective = true;
    request_.sourceObjects = request_.targetObjects = QStringList{QStringLiteral("hr.V")};
    const std::string text =
        report(common + QStringLiteral("CREATE VIEW dbo.V AS SELECT 1 AS a\nGO\n"
                                       "CREATE PROCEDURE dbo.P AS SELECT 1\nGO\n"),
               common + QStringLiteral("CREATE VIEW dbo.V AS SELECT 2 AS a\nGO\n"),
               {QStringLiteral("views"), QStringLiteral("procedures")});
    EXPECT_NE(text.find("All selected views in both databases are identical."), std::string::npos)
        << text;
    // A kind that one side lacks, of which nothing was chosen, is no difference.
    EXPECT_FALSE(run_.somethingDiffers);
    EXPECT_TRUE(run_.isWhole());
    request_.sourceObjects = request_.targetObjects = QStringList{QStringLiteral("V")};
    EXPECT_TRUE(CompareAll_Structure(form_, request_, scratch_.panels).somethingDiffers);
}

}  // namespace
}  // namespace zov
