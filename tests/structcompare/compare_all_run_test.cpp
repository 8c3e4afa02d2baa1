// What a bulk run does beside its report: the status display, stopping, failed
// connections, and which objects it takes.
#include "compare_all_fixture.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

class CompareAllRun : public ::testing::Test {
 protected:
    void SetUp() override {
        databases_.load(QStringLiteral("Src"),
                        QStringLiteral("CREATE TABLE A (x int)\nGO\nCREATE TABLE B (x int)\nGO\n"
                                       "CREATE PROCEDURE P AS PRINT 1\nGO\n"));
        databases_.load(QStringLiteral("Tgt"),
                        QStringLiteral("CREATE TABLE A (x int)\nGO\nCREATE TABLE C (x int)\nGO\n"
                                       "CREATE PROCEDURE P AS PRINT 1\nGO\n"));
        globals().gtCurrentServers[SourcePanel] = databases_.server();
        globals().gtCurrentServers[TargetPanel] = databases_.server();
        request_.sourceDb = QStringLiteral("Src");
        request_.targetDb = QStringLiteral("Tgt");
        request_.kinds = test::boxesOf({QStringLiteral("tables"), QStringLiteral("procedures")});
    }
    StructureRun run() { return CompareAll_Structure(form_, request_, scratch_.panels); }

    test::TempHome home_;
    test::RecordingShell shell_;
    test::ServedDatabases databases_;
    StructureRunRequest request_;
    test::RecordingForm form_;
    test::ScratchPanels scratch_;
};

TEST_F(CompareAllRun, TheDisplayFollowsTheRun) {
    const StructureRun result = run();
    EXPECT_TRUE(result.finished);
    EXPECT_TRUE(result.somethingDiffers);
    EXPECT_EQ(result.objectTypesChosen.toStdString(), "1,1,0,0,0,0,0,0");
    EXPECT_EQ(form_.lines.join(u'\n').toStdString(),
              "running\n"
              "timer on\n"
              "0: Comparing tables...\n"
              "0: Comparing tables... Finished\n"
              "1: Comparing procedures...\n"
              "1: Comparing procedures... Finished\n"
              "timer off");
    EXPECT_EQ(form_.names.join(u' ').toStdString(), "A B A C P P");
    EXPECT_EQ(form_.time.toStdString(), "00:00:00");
    EXPECT_GE(shell_.pumps, 6);
    EXPECT_EQ(shell_.waitDepth, 0);
}

TEST_F(CompareAllRun, StoppingDropsTheReport) {
    globals().gblnStop = true;  // of an earlier run: cleared at the start
    for (const char* stopAt : {"A", "C", "P"}) {
        form_.onName = [&](const QString& name) {
            if (name == QString::fromLatin1(stopAt)) globals().gblnStop = true;
        };
        globals().gstrReport = QStringLiteral("left over");
        form_.lines.clear();
        const StructureRun result = run();
        EXPECT_FALSE(result.finished) << stopAt;
        EXPECT_TRUE(globals().gstrReport.isEmpty()) << stopAt;
        EXPECT_EQ(form_.lines.last().toStdString(), "timer off") << stopAt;
        EXPECT_TRUE(shell_.takeLines().isEmpty()) << stopAt;
    }
    form_.onName = nullptr;
    EXPECT_TRUE(run().finished);
}

TEST_F(CompareAllRun, ADatabaseThatIsMissingEndsTheRun) {
    request_.targetDb = QStringLiteral("Gone");
    EXPECT_FALSE(run().finished);
    EXPECT_TRUE(globals().gstrReport.isEmpty());
    ASSERT_FALSE(shell_.lines.isEmpty());
    EXPECT_EQ(shell_.takeLines().last().toStdString(),
              "exclamation: Cannot connect to Target database - aborting.");
    request_.sourceDb = QStringLiteral("Gone");
    EXPECT_FALSE(run().finished);
    ASSERT_FALSE(shell_.lines.isEmpty());
    EXPECT_EQ(shell_.takeLines().last().toStdString(),
              "exclamation: Cannot connect to Source database - aborting.");
    EXPECT_EQ(form_.lines.join(u' ').toStdString(), "timer off timer off");
}

TEST_F(CompareAllRun, ConstraintsAndPermissionsNeedTheirSettings) {
    request_.kinds = {false, false, false, false, false, false, true, true};
    StructureRun result = run();
    EXPECT_TRUE(result.finished);
    EXPECT_FALSE(result.somethingDiffers);
    EXPECT_EQ(result.objectTypesChosen.toStdString(), "0,0,0,0,0,0,1,1");
    EXPECT_EQ(form_.lines.join(u'\n').toStdString(), "running\ntimer on\ntimer off");
    globals().gblnAnalyzeConstraints = true;
    result = run();
    EXPECT_TRUE(globals().gstrReport.contains(QStringLiteral("Comparison of constraints")));
    EXPECT_FALSE(globals().gstrReport.contains(QStringLiteral("permissions")));
}

/// The same over the wire, where statements can be counted and made to fail.
class CompareAllOverTheWire : public ::testing::Test {
 protected:
    CompareAllOverTheWire() : databases_(test::Road::Odbc) {
        QString script;
        for (int i = 0; i < procedures; ++i)
            script += QStringLiteral("CREATE PROCEDURE P%1 AS PRINT %1\nGO\n").arg(i);
        databases_.load(QStringLiteral("Src"), script);
        databases_.load(QStringLiteral("Tgt"), script);
        globals().gtCurrentServers[SourcePanel] = databases_.server();
        globals().gtCurrentServers[TargetPanel] = databases_.server();
        request_.sourceDb = QStringLiteral("Src");
        request_.targetDb = QStringLiteral("Tgt");
        request_.kinds = test::boxesOf({QStringLiteral("procedures")});
    }
    static constexpr int procedures = 3;
    test::TempHome home_;
    test::RecordingShell shell_;
    test::ServedDatabases databases_;
    StructureRunRequest request_;
    test::RecordingForm form_;
    test::ScratchPanels scratch_;
};

TEST_F(CompareAllOverTheWire, EachTextIsReadOnce) {
    databases_.takeStatements();
    EXPECT_TRUE(CompareAll_Structure(form_, request_, scratch_.panels).finished);
    const QStringList statements = databases_.takeStatements();
    EXPECT_EQ(statements.filter(QStringLiteral("IsProcedure")).size(), 2);
    EXPECT_EQ(statements.filter(QStringLiteral("HAS_PERMS_BY_NAME")).size(), 2);
    EXPECT_EQ(statements.filter(QStringLiteral("syscomments")).size(), 2 * procedures);
}

// It is neither missing nor different: nobody knows.
TEST_F(CompareAllOverTheWire, AnObjectThatCannotBeReadStandsInAListOfItsOwn) {
    const auto expectOthersIdentical = [] {
        EXPECT_TRUE(globals().gstrReport.contains(
            QStringLiteral("There are 3 procedures in Target database.\r\n"
                           "All 2 remaining procedures are identical:\r\n\tP0\r\n\tP2\r\n"
                           "List of procedures which can't be read:\r\n\tP1\r\n"
                           "\t(1 procedure)\r\n\r\nTime Elapsed: ")))
            << globals().gstrReport.toStdString();
    };
    TdsFaults faults;
    faults.onlyStatementsWith = QStringLiteral("'P1'");
    faults.errorAfterRows = 0;
    faults.errorNumber = 229;
    faults.errorText = QStringLiteral("The SELECT permission was denied.");
    databases_.endpoint().setFaults(faults);
    StructureRun run = CompareAll_Structure(form_, request_, scratch_.panels);
    EXPECT_TRUE(run.isReliable());
    EXPECT_FALSE(run.isWhole());
    EXPECT_FALSE(run.somethingDiffers);
    ASSERT_EQ(run.unreadable.size(), 2);  // both sides
    EXPECT_EQ(run.unreadable[0].object.name, u"P1");
    EXPECT_TRUE(run.unreadable[0].reason.message.contains(QStringLiteral("permission was denied")));
    expectOthersIdentical();

    // A connection that breaks may keep anything back: that is more than this object's trouble.
    faults.errorAfterRows = -1;
    faults.dropAfterRows = 0;
    databases_.endpoint().setFaults(faults);
    run = CompareAll_Structure(form_, request_, scratch_.panels);
    EXPECT_FALSE(run.isReliable());
}

TEST_F(CompareAllOverTheWire, AListThatCannotBeReadIsntAnEmptyOne) {
    TdsFaults faults;
    faults.onlyStatementsWith = QStringLiteral("IsProcedure");
    for (const qint64 rows : {0, 1}) {
        faults.errorAfterRows = rows;
        databases_.endpoint().setFaults(faults);
        const StructureRun run = CompareAll_Structure(form_, request_, scratch_.panels);
        EXPECT_TRUE(run.finished);
        EXPECT_FALSE(run.isReliable());
        const QString report = globals().gstrReport;
        EXPECT_TRUE(report.contains(QStringLiteral(
            "Comparison of procedures\r\n"
            "The list of procedures in Source database can't be read: the procedures aren't "
            "compared.\r\nThe list of procedures in Target database can't be read: the procedures "
            "aren't compared.\r\n")))
            << report.toStdString();
        EXPECT_FALSE(report.contains(QStringLiteral("identical")));
    }
}

TEST_F(CompareAllOverTheWire, WithoutAVersionThereIsNoRun) {
    TdsFaults faults;
    faults.onlyStatementsWith = QStringLiteral("ProductVersion");
    faults.errorAfterRows = 0;
    databases_.endpoint().setFaults(faults);
    shell_.takeLines();
    const StructureRun run = CompareAll_Structure(form_, request_, scratch_.panels);
    EXPECT_FALSE(run.finished);
    EXPECT_FALSE(run.account.isWhole());
    EXPECT_TRUE(globals().gstrReport.isEmpty());
    EXPECT_EQ(shell_.takeLines().join(u'\n').toStdString(),
              "exclamation [Cannot Compare]: Cannot compare - the version of server " +
                  databases_.server().Name.toStdString() +
                  " can't be read.\\n\\nTry again when the server answers.");
}

TEST_F(CompareAllOverTheWire, WhoCantBeToldWhatItSeesDoesntSeeAll) {
    TdsFaults faults;
    faults.onlyStatementsWith = QStringLiteral("HAS_PERMS_BY_NAME");
    faults.errorAfterRows = 0;
    databases_.endpoint().setFaults(faults);
    const StructureRun run = CompareAll_Structure(form_, request_, scratch_.panels);
    EXPECT_FALSE(run.isReliable());
    EXPECT_EQ(run.blindness.size(), 2);
    EXPECT_TRUE(globals().gstrReport.contains(
        QStringLiteral("The login sa may not see all objects of Src; what it can't see isn't "
                       "compared.\r\n")));
    EXPECT_FALSE(globals().gstrReport.contains(QStringLiteral("All procedures in both")));
}

TEST(CompareAllObjects, ASelectiveRunTakesChosenNamesToTheLetter) {
    const QStringList a{QStringLiteral("A"), QStringLiteral("B")};
    const QStringList c{QStringLiteral("C")};
    struct Row {
        const char* name;
        bool selective;
        QStringList source, target;
        bool taken;
    };
    const Row rows[] = {
        {"", false, {}, {}, false}, {"X", false, {}, {}, true}, {"A", true, a, c, true},
        {"C", true, a, c, true},    {"c", true, a, c, false},   {"D", true, a, c, false},
        {"A", true, a, {}, false},  {"C", true, {}, c, false},  {"", true, a, c, false},
    };
    for (const Row& row : rows)
        EXPECT_EQ(ProceedWithThisObject(QString::fromLatin1(row.name), row.selective, row.source,
                                        row.target),
                  row.taken)
            << row.name;
}

TEST(CompareAllObjects, BoxesHaveTypes) {
    test::RecordingShell shell;
    EXPECT_EQ(ObjectTypeOfBox(0), ObjectType::Table);
    EXPECT_EQ(ObjectTypeOfBox(5), ObjectType::Relationship);
    EXPECT_EQ(ObjectTypeOfBox(6), ObjectType::Constraint);
    EXPECT_TRUE(shell.lines.isEmpty());
    EXPECT_EQ(qint32(ObjectTypeOfBox(8)), 0);
    EXPECT_EQ(shell.lines.join(u'\n').toStdString(),
              "information: Wrong index value in Sub CompareAll, llngIndex = 8");
}

}  // namespace
}  // namespace zov
