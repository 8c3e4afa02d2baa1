// One statement of a run fails, the first, the second and so on, until none is left: a comparison
// of data ends as the undisturbed one does, or says that it could not be done.
#include "comparison_fixture.h"

#include "datacompare/compare_all_data.h"
#include "datacompare/table_reading.h"
#include "shell/memory_controls.h"
#include "support/tds_endpoint/scripted_provider.h"

namespace zov {
namespace {

using test::Road;

/// The sides that are reached over the wire, where statements fail.
enum class WireSides { Both, Source, Target };

class DataFaults : public ::testing::TestWithParam<WireSides>,
                   public DataComparisonScreens,
                   public CompareAllForm {
 protected:
    void SetUp() override {
        const QString tables = QStringLiteral(
            "CREATE TABLE dbo.T (Id int NOT NULL, V nvarchar(20) NULL DEFAULT 'x')\nGO\n"
            "INSERT INTO T VALUES (1, N'a')\nINSERT INTO T VALUES (2, N'%1')\n"
            "INSERT INTO T VALUES (3, N'c')\nGO\n"
            "CREATE TABLE dbo.Same (Id int NOT NULL)\nGO\nINSERT INTO Same VALUES (1)\nGO\n"
            "CREATE TABLE dbo.Other (Id int NOT NULL, %2 int NULL)\nGO\n"
            "INSERT INTO Other VALUES (1, 5)\nGO\n"
            "CREATE SCHEMA hr\nGO\nCREATE TABLE hr.T (Id int NOT NULL)\nGO\n"
            "INSERT INTO hr.T VALUES (%3)\nGO\n");
        for (test::ServedDatabases* served : {&wire, &plain}) {
            served->load(QStringLiteral("Src"),
                         tables.arg(QStringLiteral("b"), QStringLiteral("P"), QStringLiteral("1")));
            served->load(
                QStringLiteral("Tgt"),
                tables.arg(QStringLiteral("B2"), QStringLiteral("Q"), QStringLiteral("2")));
        }
        globals().gtCurrentServers[0] =
            GetParam() == WireSides::Target ? plain.server() : wire.server();
        globals().gtCurrentServers[1] =
            GetParam() == WireSides::Source ? plain.server() : wire.server();
        shell.takeLines();
    }

    /// A run of one table, as lines: the outcome with its counts.
    QString table(const QString& name, const QString& schema, qint32 method) {
        DataComparisonRun run;
        for (size_t side = 0; side < 2; ++side)
            run.Tables[side] = {globals().gtCurrentServers[side],
                                side ? QStringLiteral("Tgt") : QStringLiteral("Src"),
                                name,
                                0,
                                schema,
                                name};
        run.Method = method;
        run.Keys[0] = run.Keys[1] = {QStringLiteral("Id"), {}, {}};
        run.Quiet = true;
        trouble_.clear();
        const DataComparisonResult result = ExecuteDataComparison(run, this);
        failed_ = result.Outcome == DataOutcome::Failed;
        cancelled_ = result.Outcome == DataOutcome::Cancelled;
        return QString::number(int(result.Outcome)) + u' ' + result.Report;
    }
    QString all() {
        MemoryObjectList lists[2];
        MemoryTextPane panes[2];
        ComparePanels panels{{lists[0], panes[0]}, {lists[1], panes[1]}};
        const DataRun data = CompareAll_Data(
            *this, {QStringLiteral("Src"), QStringLiteral("Tgt"), false, {}, {}}, panels, this);
        failed_ = !data.isWhole();
        cancelled_ = !data.finished;
        trouble_ = data.blindness;
        for (const AccountEntry& entry : data.account.entries()) trouble_ += entry.sentence();
        return globals().gstrReport;
    }

    /// Lets statement after statement of the run fail.
    void failEach(const std::function<QString()>& run, const TdsFaults& wanted) {
        wire.endpoint().setFaults({});
        const QString undisturbed = run();
        ASSERT_FALSE(failed_) << undisturbed.toStdString() << trouble_.join(u'\n').toStdString();
        shell.takeLines();
        int met = wire.endpoint().counters().failedStatements;
        for (int statement = 1; statement < 500; ++statement) {
            TdsFaults faults = wanted;
            faults.failStatement = statement;
            wire.endpoint().setFaults(faults);
            const QString result = run();
            const QString told = shell.takeLines().join(u'\n');
            const bool fired = wire.endpoint().counters().failedStatements > met;
            met = wire.endpoint().counters().failedStatements;
            if (!failed_) {
                EXPECT_EQ(result.toStdString(), undisturbed.toStdString())
                    << "statement " << statement << ", error " << wanted.errorNumber;
            } else {
                EXPECT_FALSE(told.isEmpty() && trouble_.isEmpty())
                    << "nothing told: statement " << statement << ", error " << wanted.errorNumber
                    << '\n'
                    << result.toStdString();
                // What can be said is said of what was read.
                EXPECT_FALSE(result.contains(QStringLiteral("Data in all ")))
                    << result.toStdString();
            }
            if (!fired) {
                EXPECT_GT(statement, 2) << "the run asks nothing";
                EXPECT_EQ(result.toStdString(), undisturbed.toStdString());
                break;
            }
        }
        wire.endpoint().setFaults({});
    }
    /// All of the errors where both sides may fail, one of them for one side.
    std::vector<TdsFaults> faults() const {
        std::vector<TdsFaults> list;
        const struct {
            qint32 number;
            const char* text;
        } errors[] = {{1205, "Transaction was deadlocked and has been chosen as the victim."},
                      {229, "The SELECT permission was denied on the object."},
                      {208, "Invalid object name 'T'."},
                      {1222, "Lock request time out period exceeded."},
                      {8115, "Arithmetic overflow error converting expression to data type int."}};
        for (const auto& error : errors) {
            TdsFaults faults;
            faults.errorNumber = error.number;
            faults.errorText = QString::fromLatin1(error.text);
            list.push_back(faults);
            if (GetParam() != WireSides::Both) return list;
        }
        TdsFaults drop;
        drop.dropInstead = true;
        list.push_back(drop);
        return list;
    }

    void showStatus(frmCompareStatus& screen) override { screen.Form_Activate(); }
    void showDifferences(frmCompareData&) override {}
    void showRunning() override {}
    void setComparing(int, const QString&) override {}
    void setCurrentName(const QString&) override {}
    void setTime(const QString&) override {}
    void runStatusTimer(bool) override {}

    test::TempHome home;
    test::RecordingShell shell;
    test::ServedDatabases wire{Road::Odbc};
    test::ServedDatabases plain{Road::Embedded};
    bool failed_ = false;
    bool cancelled_ = false;
    QStringList trouble_;
};
std::string sidesName(const ::testing::TestParamInfo<WireSides>& info) {
    return info.param == WireSides::Both     ? "Both"
           : info.param == WireSides::Source ? "Source"
                                             : "Target";
}
INSTANTIATE_TEST_SUITE_P(Sides, DataFaults,
                         ::testing::Values(WireSides::Both, WireSides::Source, WireSides::Target),
                         sidesName);

TEST_P(DataFaults, OfOneTableNeverMakeAVerdict) {
    const QString dbo = QStringLiteral("dbo");
    const struct {
        const char* name;
        const char* table;
        qint32 method;
    } rows[] = {{"by record", "T", CompMethod::RecordByRecord},
                {"by key", "T", CompMethod::PrimaryKey},
                {"identical by record", "Same", CompMethod::RecordByRecord},
                {"identical by key", "Same", CompMethod::PrimaryKey},
                {"by the target's own columns", "Other", CompMethod::RecordByRecord}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        for (const TdsFaults& faults : faults())
            failEach([&] { return table(QString::fromLatin1(row.table), dbo, row.method); },
                     faults);
    }
}

TEST_P(DataFaults, OfAllTablesNeverMakeAVerdict) {
    // The statements of one table have met every error above.
    for (const TdsFaults& faults : faults())
        if (faults.errorNumber == 1205) failEach([&] { return all(); }, faults);
}

// Whichever query the user doesn't wait for any more, the run ends without a verdict, and the next
// one isn't held back.
TEST_P(DataFaults, GivingUpWithinARunMakesNoVerdict) {
    const std::function<QString()> runs[] = {
        [&] {
            return table(QStringLiteral("Same"), QStringLiteral("dbo"), CompMethod::PrimaryKey);
        },
        [&] {
            return table(QStringLiteral("Other"), QStringLiteral("dbo"),
                         CompMethod::RecordByRecord);
        },
        [&] { return all(); }};
    for (const auto& run : runs) {
        shell.giveUpAt = shell.queries = 0;
        const QString undisturbed = run();
        const int queries = shell.queries;
        ASSERT_GT(queries, 2);
        ASSERT_FALSE(failed_ || cancelled_) << undisturbed.toStdString();
        for (int query = 1; query <= queries; ++query) {
            shell.giveUpAt = query;
            shell.queries = 0;
            globals().gstrReport.clear();
            EXPECT_FALSE(run().contains(QStringLiteral("identical"))) << query << " of " << queries;
            EXPECT_TRUE(cancelled_) << query << " of " << queries;
            EXPECT_LE(shell.queries, query + 3) << "it ends soon";
            globals().gblnStop = false;  // as the next command does
        }
        shell.giveUpAt = 0;
        EXPECT_EQ(run().toStdString(), undisturbed.toStdString());
    }
}

// Answers that are none: a count that no 32 bits hold, a null, no row.
TEST(DataCounts, AreRefusedWhereTheyAreNoCounts) {
    test::TempHome home;
    test::RecordingShell shell;
    ScriptedProvider provider;
    TdsEndpoint endpoint;
    TdsEndpointOptions options;
    options.provider = &provider;
    options.dataSource = QStringLiteral("scripted");
    options.password = QStringLiteral("secret");
    endpoint.start(options);
    provider.answer(QStringLiteral("USE [Db]"), {});
    ServerInfo server;
    server.Name = endpoint.dataSource();
    server.Version = QStringLiteral("15.00.2000");
    server.SQLAuth = true;
    server.LoginName = options.user;
    server.Password = options.password;
    const struct {
        const char* name;
        std::function<void(RowStore&)> fill;
        qint32 count;
        const char* told;
    } rows[] = {
        {"most", [](RowStore& row) { row.column(0).appendInteger(2147483647); }, 2147483647, ""},
        {"too many", [](RowStore& row) { row.column(0).appendInteger(2147483648LL); }, -1,
         "exclamation: Table [T] holds 2,147,483,648 records; at most 2,147,483,647 can be "
         "counted."},
        {"null", [](RowStore& row) { row.column(0).appendNull(); }, -1,
         "exclamation: Error while attempting to count records in table: [T]"},
        {"no row", nullptr, -1,
         "exclamation: Error while attempting to count records in table: [T]"},
    };
    for (const auto& row : rows) {
        ScriptedResult result;
        result.columns.resize(1);
        result.columns[0].name = QStringLiteral("RecsCount");
        result.columns[0].type = SqlType::BigInt;
        result.rowCount = row.fill ? 1 : 0;
        if (row.fill) result.fill = [&row](RowStore& store, qint64) { row.fill(store); };
        provider.answer(QStringLiteral("SELECT COUNT(*) AS RecsCount FROM [T]"),
                        {{result}, {}, false, 0, {}});
        QString table = QStringLiteral("[T]");
        EXPECT_EQ(GetNumberOfRecordsInTable(server, table, QStringLiteral("Db")), row.count)
            << row.name;
        EXPECT_EQ(shell.takeLines().join(u'\n').toStdString(), row.told) << row.name;
    }
}

}  // namespace
}  // namespace zov
