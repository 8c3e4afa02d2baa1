// The two ways of walking over two tables: what is found, counted and listed.
#include "comparison_fixture.h"

#include "datacompare/table_reading.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <random>

namespace zov {
namespace {

using test::Road;

class CompareRecordsTest : public test::DataComparison {
 protected:
    /// Tables of a key and a text; rows as "1 a".
    void loadRows(const QStringList& source, const QStringList& target) {
        load(script(source), script(target));
    }
    static QString script(const QStringList& rows) {
        QString sql = QStringLiteral(
            "IF EXISTS (SELECT * FROM sysobjects WHERE name = 'T') DROP TABLE dbo.T\nGO\n"
            "CREATE TABLE dbo.T (Id int, V nvarchar(20))\nGO\n");
        for (const QString& row : rows)
            sql += QStringLiteral("INSERT INTO T VALUES (%1, N'%2')\n")
                       .arg(row.section(u' ', 0, 0), row.section(u' ', 1));
        return sql + QStringLiteral("GO\n");
    }
};
INSTANTIATE_TEST_SUITE_P(Roads, CompareRecordsTest, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

QStringList rows(int first, int last) {
    QStringList list;
    for (int i = first; i <= last; ++i) list += QStringLiteral("%1 v%1").arg(i);
    return list;
}
QStringList operator-(QStringList list, const QStringList& without) {
    for (const QString& row : without) list.removeAll(row);
    return list;
}

TEST_P(CompareRecordsTest, RowsArePairedByTheirPlaces) {
    loadRows({"1 a", "2 b", "3 c"}, {"1 a", "2 x", "4 c", "5 d"});
    EXPECT_EQ(compared(),
              "different 3/4/3\n"
              "S 1|2|*b\nT 1|2|*x\n"
              "S 2|*3|c\nT 2|*4|c\n"
              "- 4|5|d");
    run.Method = CompMethod::RecordByRecord;
    std::swap(run.Tables[0], run.Tables[1]);
    EXPECT_EQ(compared(),
              "different 4/3/3\n"
              "S 1|2|*x\nT 1|2|*b\n"
              "S 2|*4|c\nT 2|*3|c\n"
              "+ 4|5|d");
    EXPECT_EQ(told(), "");
}

TEST_P(CompareRecordsTest, EmptyTablesTakeNoWalk) {
    loadRows({}, {});
    EXPECT_EQ(compared(), "identical 0/0/0");
    EXPECT_EQ(told(), "information: Data stored in both tables is identical.");
    loadRows(rows(1, 2), {});
    for (const bool key : {false, true}) {
        if (key) byKey(QStringLiteral("Id"));
        EXPECT_EQ(compared(), "different 2/0/2\n+ 1|1|v1\n+ 2|2|v2");
        std::swap(run.Tables[0], run.Tables[1]);
        EXPECT_EQ(compared(), "different 0/2/2\n- 1|1|v1\n- 2|2|v2");
        std::swap(run.Tables[0], run.Tables[1]);
    }
}

TEST_P(CompareRecordsTest, KeysFindTheirRowsInAnyOrder) {
    loadRows({"1 a", "2 b", "3 c", "4 d"}, {"4 d", "3 x", "1 a", "2 b"});
    byKey(QStringLiteral("Id"));
    EXPECT_EQ(compared(), "different 4/4/1\nS 1|3|*c\nT 1|3|*x");
    // Of several rows of one key each is matched once, in their order.
    loadRows({"1 a", "1 b", "1 c", "2 d"}, {"2 d", "1 a", "1 c", "1 b"});
    EXPECT_EQ(compared(), "different 4/4/2\nS 1|1|*b\nT 1|1|*c\nS 2|1|*c\nT 2|1|*b");
}

TEST_P(CompareRecordsTest, ARowMissingOnEachSideIsCountedOnce) {
    loadRows(rows(1, 4), rows(1, 5) - QStringList{"2 v2"});
    byKey(QStringLiteral("Id"));
    EXPECT_EQ(compared(), "different 4/4/1\n+ 1|2|v2\n- 1|5|v5");
}

// The limit of the smaller table is overrun by unmatched rows, and looked at after a match.
TEST_P(CompareRecordsTest, UnmatchedRowsOverrunTheLimit) {
    loadRows(rows(1, 12), rows(3, 12));
    byKey(QStringLiteral("Id"));
    EXPECT_EQ(compared(),
              "different 12/10/4\n"
              "+ 1|1|v1\n+ 2|2|v2\n"
              "- 1|11|v11\n- 2|12|v12");
}

// The number of differences is taken for a row of the grid, where each pair has taken two.
TEST_P(CompareRecordsTest, ARowOfSourceAloneOverwritesPairs) {
    loadRows({"1 a", "2 b", "3 c"}, {"1 x", "2 y", "4 c"});
    byKey(QStringLiteral("Id"));
    EXPECT_EQ(compared(),
              "different 3/3/3\n"
              "S 1|1|*a\nT 1|1|*x\n"
              "+ 3|3|c\n"
              "- 1|4|c");
}

TEST_P(CompareRecordsTest, TheGridStopsAtItsLimitAndTheCountRunsOn) {
    globals().glngMaxRowsInDiffTable = 3;
    QStringList changed;
    for (int i = 1; i <= 5; ++i) changed += QStringLiteral("%1 w").arg(i);
    loadRows(rows(1, 5), changed);
    QString note;
    onDifferences = [&](frmCompareData& screen) {
        note = screen.lblMaxRowsVisible ? screen.lblMaxRows : QString();
    };
    EXPECT_EQ(compared(),
              "different 5/5/5\n"
              "S 1|1|*v1\nT 1|1|*w\nS 2|2|*v2\nT 2|2|*w");
    EXPECT_EQ(note.toStdString(), "Only first 3 different records are shown");
    EXPECT_EQ(
        told(),
        "information [Note]: Not all records will be shown in the table displaying differences "
        "between two selected tables.\\n\\nThere are 5 differences found by the program.\\n\\n"
        "Please note that program's setting for maximum number of records displayed in "
        "differences table is currently set to 3.\\n\\nSince there is more different records "
        "than it is currently allowed to be shown in the table, only first 3 records will be "
        "shown.\\n\\nIf you wish to increase the number of records shown in differences table, "
        "please click menu item Tools -> Options, click tab 'Rows to Display', change the "
        "maximum number of rows and click button 'OK'.");
}

TEST_P(CompareRecordsTest, LeftOverRowsAreCutAtTheLimitInSilence) {
    globals().glngMaxRowsInDiffTable = 4;
    loadRows({"1 a"}, {"1 x", "2 b", "3 c", "4 d"});
    EXPECT_EQ(compared(), "different 1/4/4\nS 1|1|*a\nT 1|1|*x\n- 2|2|b\n- 3|3|c");
    EXPECT_EQ(told(), "");
    // Rows of Source alone aren't held back.
    globals().glngMaxRowsInDiffTable = 1;
    loadRows({"1 x", "2 b", "3 c", "4 d"}, {"1 a"});
    byKey(QStringLiteral("V"));
    EXPECT_EQ(compared(), "different 4/1/7\n+ 1|1|x");
    loadRows({"1 x", "2 b", "3 c", "4 d"}, {"4 d"});
    EXPECT_EQ(compared(), "different 4/1/6\n+ 1|1|x");
}

TEST_P(CompareRecordsTest, OffsetsStartLaterOnEachSide) {
    loadRows(rows(1, 4), QStringList{"9 extra"} + rows(1, 4));
    run.Offset[1] = 2;
    for (const bool shown : {true, false}) {
        run.ShowDifferences = shown;
        EXPECT_EQ(compared(), "identical 4/5/0");
        EXPECT_EQ(
            told(),
            "information: Data stored in both tables is identical.\\nCompared from record 2 in "
            "Target on.");
    }
    run.ShowDifferences = true;
    run.Offset[0] = 2;
    EXPECT_EQ(compared(),
              "different 4/5/4\n"
              "S 1|*2|*v2\nT 1|*1|*v1\nS 2|*3|*v3\nT 2|*2|*v2\nS 3|*4|*v4\nT 3|*3|*v3");
    told();
    // By key no record is left out, whatever offset is stored.
    run.Offset[0] = 0;
    byKey(QStringLiteral("Id"));
    for (const bool shown : {true, false}) {
        run.ShowDifferences = shown;
        EXPECT_TRUE(compared().starts_with("different 4/5/0"));
    }
    run.Method = CompMethod::RecordByRecord;
    run.ShowDifferences = true;
    told();
    run.Offset[0] = 9;
    EXPECT_EQ(compared(), "failed 4/5/0");
    EXPECT_EQ(
        told(),
        "exclamation: Error occured while comparing records.\\n\\nError 3021 (Either BOF or EOF "
        "is True, or the current record has been deleted. Requested operation requires a "
        "current record.); line 0.\\n\n"
        "information: The comparison was broken off by an error.");
}

TEST_P(CompareRecordsTest, SortKeysOrderBothTables) {
    loadRows({"2 b", "1 a", "3 c"}, {"3 c", "2 b", "1 a"});
    EXPECT_EQ(compared().substr(0, 15), "different 3/3/3");
    orderBy(QStringLiteral("Id"));
    EXPECT_EQ(compared(), "identical 3/3/0");
}

// Streams give the same as rows in memory, and both stay with the two halves of what they read.
TEST_P(CompareRecordsTest, ServerSideCursorsGiveTheSame) {
    QStringList source = rows(1, 3000), target = rows(1, 3010);
    target[2500] = QStringLiteral("2501 other");
    loadRows(source, target);
    const std::string wanted =
        "different 3000/3010/11\nS 1|2501|*v2501\nT 1|2501|*other\n- 3001|3001|v3001\n";
    for (const qint32 location : {adUseServer, adUseClient}) {
        globals().glngCursorLocation = location;
        EXPECT_EQ(compared().substr(0, wanted.size()), wanted) << location;
        EXPECT_EQ(globals().glngCursorLocation, location);
    }
    globals().glngCursorLocation = adUseServer;
    byKey(QStringLiteral("Id"));
    const std::string byKeyWanted =
        "different 3000/3010/11\nS 1|2501|*v2501\nT 1|2501|*other\n- 1|3001|";
    EXPECT_EQ(compared().substr(0, byKeyWanted.size()), byKeyWanted);
    EXPECT_EQ(globals().glngCursorLocation, adUseServer);
}

TEST_P(CompareRecordsTest, StopEndsTheRunAndIsForgotten) {
    loadRows(rows(1, 50), rows(1, 40));
    for (const int method : {CompMethod::RecordByRecord, CompMethod::PrimaryKey}) {
        run.Method = method;
        run.Keys[0] = run.Keys[1] = {QStringLiteral("Id"), {}, {}};
        onStatus = [&](frmCompareStatus& screen) {
            shell.onPump = [&, left = 12]() mutable {
                if (--left == 0) screen.cmdStop_Click();
            };
        };
        EXPECT_EQ(compared(), "cancelled 50/40/0");
        EXPECT_EQ(told(), "information: Operation cancelled by the user.");
        EXPECT_FALSE(globals().gblnStop);
        onStatus = nullptr;
        shell.onPump = nullptr;
        EXPECT_EQ(compared().substr(0, 18), "different 50/40/10");
    }
}

TEST_P(CompareRecordsTest, ATableThatGoesAwayIsTold) {
    loadRows(rows(1, 2), rows(1, 2));
    onStatus = [&](frmCompareStatus& screen) {
        shell.onPump = [&, gone = false]() mutable {
            if (gone || screen.lblRecsCount2 != u"2") return;
            gone = true;
            served.load(QStringLiteral("Tgt"), QStringLiteral("DROP TABLE dbo.T\nGO\n"));
        };
    };
    EXPECT_EQ(compared(), "failed 2/2/0");
    const std::string text = told();
    EXPECT_NE(text.find("screen frmErrorReport"), std::string::npos) << text;
    EXPECT_NE(text.find("information: The comparison was broken off by an error."),
              std::string::npos)
        << text;
    // And one that was never there, before anything is read.
    shell.onPump = nullptr;
    onStatus = nullptr;
    EXPECT_EQ(compared(), "failed 2/0/0");
    EXPECT_NE(told().find("exclamation: Error while attempting to count records in table: "),
              std::string::npos);
}

// Nothing is compared where the offsets lie behind the end of both tables.
TEST_P(CompareRecordsTest, OffsetsBehindTheEndAreNoVerdict) {
    loadRows({}, rows(1, 3));
    run.Offset[1] = 4;
    EXPECT_TRUE(compared().starts_with("failed 0/3/0"));
    EXPECT_NE(told().find("No record was compared: the offsets lie behind the end of the tables."),
              std::string::npos);
}

// A table that changes between counting and reading gives no verdict on what was not counted.
TEST_P(CompareRecordsTest, RowsThatWereNotCountedAreTold) {
    for (const bool key : {false, true}) {
        loadRows(rows(1, 3), rows(1, 3));
        if (key) byKey(QStringLiteral("Id"));
        onStatus = [&](frmCompareStatus& screen) {
            shell.onPump = [&, added = false]() mutable {
                if (added || screen.lblRecsCount2 != u"3") return;
                added = true;
                for (const char* database : {"Src", "Tgt"})
                    served.load(QString::fromLatin1(database),
                                QStringLiteral("INSERT INTO dbo.T VALUES (4, N'%1')\nGO\n")
                                    .arg(QString::fromLatin1(database)));
            };
        };
        EXPECT_EQ(compared(), "failed 3/3/0");
        EXPECT_NE(told().find("has more records than were counted"), std::string::npos);
        onStatus = nullptr;
        shell.onPump = nullptr;
    }
}

// Names come out of a catalogue, and stay names.
TEST_P(CompareRecordsTest, NamesNeverRunAsStatements) {
    const QString name = QStringLiteral("victim]; DELETE FROM [victim");
    const QString script = QStringLiteral(
        "IF NOT EXISTS (SELECT * FROM sysobjects WHERE name = 'victim') CREATE TABLE dbo.victim "
        "(Id int)\nGO\n"
        "INSERT INTO victim VALUES (1)\nGO\n"
        "CREATE TABLE dbo.[victim]]; DELETE FROM [victim] ([Id]] FROM victim; DELETE FROM victim "
        "--] int, "
        "[it's] int)\nGO\n"
        "INSERT INTO [victim]]; DELETE FROM [victim] VALUES (1, 2)\nGO\n");
    load(script, script);
    const QString column = QStringLiteral("Id] FROM victim; DELETE FROM victim --");
    for (const QString& schema : {QString(), QStringLiteral("dbo")}) {
        useTable(name);
        for (CompareDataTable& table : run.Tables) table.Schema = schema;
        run.Method = CompMethod::RecordByRecord;
        EXPECT_EQ(compared(), "identical 1/1/0");
        orderBy(column);
        EXPECT_EQ(compared(), "identical 1/1/0");
        byKey(column);
        compared();
        QString victim = QStringLiteral("[victim]");
        for (const char* database : {"Src", "Tgt"})
            EXPECT_EQ(
                GetNumberOfRecordsInTable(served.server(), victim, QString::fromLatin1(database)),
                1);
        QString raw = name;
        EXPECT_EQ(GetNumberOfRecordsInTable(served.server(), raw, QStringLiteral("Src")), 1);
    }
}

// The account of the run decides, whoever kept silent: the column list, the ignored columns, the
// stored settings.
TEST_P(CompareRecordsTest, WhatCannotBeReadTakesTheVerdictAway) {
    loadRows(rows(1, 2), rows(1, 2));
    if (GetParam() == Road::Odbc) {
        TdsFaults faults;
        faults.onlyStatementsWith = QStringLiteral("syscolumns");
        faults.failStatement = 1;
        served.endpoint().setFaults(faults);
        EXPECT_EQ(compared(), "failed 2/2/0");
        EXPECT_NE(told().find("Not everything that the comparison rests on could be read:"),
                  std::string::npos);
        served.endpoint().setFaults({});
        // A refusal is no missing column.
        faults.onlyStatementsWith = QStringLiteral("SELECT [Id],[V] FROM");
        faults.errorNumber = 229;
        faults.failStatement = 2;
        served.endpoint().setFaults(faults);
        EXPECT_EQ(compared(), "failed 2/2/0");
        EXPECT_NE(told().find("screen frmErrorReport"), std::string::npos);
        served.endpoint().setFaults({});
    }
    const QString path = home.path(QStringLiteral("documents/zov_ignored_cols_data.ini"));
    QFile::remove(path);
    ASSERT_TRUE(QDir().mkpath(path));  // a folder stands where the file should
    EXPECT_EQ(compared(), "failed 2/2/0");
    EXPECT_NE(told().find("zov_ignored_cols_data.ini"), std::string::npos);
    QDir().rmdir(path);
    EXPECT_EQ(compared(), "identical 2/2/0");
}

// What came before the loss is shown as what it is; the error says why there isn't more.
TEST_P(CompareRecordsTest, AConnectionLostInTheMiddleIsTold) {
    if (GetParam() != Road::Odbc) GTEST_SKIP() << "the embedded server has no connection to lose";
    QStringList source = rows(1, 9000), target = source;
    target[1] = QStringLiteral("2 other");
    loadRows(source, target);
    TdsFaults faults;
    faults.onlyStatementsWith = QStringLiteral("[Id],[V]");
    faults.dropAfterRows = 6000;
    for (const int method : {CompMethod::RecordByRecord, CompMethod::PrimaryKey}) {
        served.endpoint().setFaults(faults);
        run.Method = method;
        run.Keys[0] = run.Keys[1] = {QStringLiteral("Id"), {}, {}};
        QString note;
        onDifferences = [&](frmCompareData& screen) {
            EXPECT_TRUE(screen.lblMaxRowsVisible);
            note = screen.lblMaxRows;
        };
        EXPECT_EQ(compared(), "failed 9000/9000/1\nS 1|2|*v2\nT 1|2|*other");
        EXPECT_EQ(note.toStdString(),
                  "The comparison was broken off by an error: differences up to there are shown");
        const std::string text = told();
        EXPECT_EQ(text.find("exclamation: Error occured while comparing records.\\n\\nError "), 0U)
            << text;
        // The next run has a connection of its own.
        served.endpoint().setFaults({});
        onDifferences = nullptr;
        EXPECT_EQ(compared(), "different 9000/9000/1\nS 1|2|*v2\nT 1|2|*other");
        told();
    }
}

// A server that stops answering in the middle of its rows: the screen lives, Stop ends the run at
// once, and the rows that never come hold nothing up.
TEST_P(CompareRecordsTest, StopEndsTheWaitForRows) {
    if (GetParam() != Road::Odbc) GTEST_SKIP() << "the embedded server doesn't stall";
    loadRows(rows(1, 9000), rows(1, 9000));
    TdsFaults faults;
    faults.onlyStatementsWith = QStringLiteral("[Id],[V]");
    faults.stallAfterRows = 6000;
    faults.stallMilliseconds = 60'000;
    for (const bool deaf : {false, true}) {
        faults.deafWhileStalled = deaf;
        for (const int method : {CompMethod::RecordByRecord, CompMethod::PrimaryKey}) {
            served.endpoint().setFaults(faults);
            run.Method = method;
            run.Keys[0] = run.Keys[1] = {QStringLiteral("Id"), {}, {}};
            QElapsedTimer clock;
            QString lastTime;
            onStatus = [&](frmCompareStatus& screen) {
                clock.start();
                shell.onPump = [&] {
                    lastTime = screen.lblTime;
                    if (clock.elapsed() > 1200) screen.cmdStop_Click();
                };
            };
            EXPECT_EQ(compared(), "cancelled 9000/9000/0");
            EXPECT_LT(clock.elapsed(), 20'000);
            EXPECT_NE(lastTime, QStringLiteral("00:00:00"));
            EXPECT_EQ(told(), "information: Operation cancelled by the user.");
            onStatus = nullptr;
            shell.onPump = nullptr;
            served.endpoint().setFaults({});
            EXPECT_EQ(compared(), "identical 9000/9000/0");
            told();
        }
    }
}

// Behind more rows than are read at once comes another row of an early key. Each takes the first of
// its key that is left, however far away it lies.
TEST_P(CompareRecordsTest, ALateNamesakeOfAKeyIsMatchedInItsTurn) {
    const QStringList many = rows(1, 12000);
    const QString late = QStringLiteral("5 late"), early = QStringLiteral("5 v5");
    const struct {
        const char* name;
        QStringList source, target;
        const char* expected;
    } table[] = {
        {"on both sides", many + QStringList{late}, many + QStringList{late},
         "identical 12001/12001/0"},
        {"the other one first", many + QStringList{late},
         QStringList{late} + (many - QStringList{early}) + QStringList{early},
         "different 12001/12001/2\nS 1|5|*v5\nT 1|5|*late\nS 2|5|*late\nT 2|5|*v5"},
        {"in Source alone", many + QStringList{late}, many + QStringList{"12001 v12001"},
         "different 12001/12001/1\n+ 1|5|late\n- 1|12001|v12001"},
        {"in Target alone", many + QStringList{"12001 v12001"}, many + QStringList{late},
         "different 12001/12001/1\n+ 1|12001|v12001\n- 1|5|late"},
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row.name);
        loadRows(row.source, row.target);
        byKey(QStringLiteral("Id"));
        EXPECT_EQ(compared(), row.expected);
    }
}

TEST_P(CompareRecordsTest, TextsOfMegabytesAreComparedAndShown) {
    const QString large(3'000'000, u'x');
    const QString table = QStringLiteral("CREATE TABLE dbo.T (Id int, V nvarchar(max))\nGO\n");
    const auto rowsOf = [&](const QString& last) {
        QString sql = table;
        for (int i = 1; i <= 4; ++i)
            sql += QStringLiteral("INSERT INTO T VALUES (%1, N'%2')\nGO\n")
                       .arg(i)
                       .arg(i == 3 ? large + last : large);
        return sql;
    };
    load(rowsOf(QStringLiteral("a")), rowsOf(QStringLiteral("b")));
    for (const bool key : {false, true}) {
        if (key) byKey(QStringLiteral("Id"));
        EXPECT_EQ(compared().substr(0, 15), "different 4/4/1");
        EXPECT_EQ(grid.size(), 2 * (large.size() + 8) + 1);
        EXPECT_TRUE(grid.endsWith(QStringLiteral("xb")));
    }
}

/// The comparison by key told once more, in the plainest way: search from the first row on, each
/// time.
struct PlainWalk {
    using Row = std::pair<int, QString>;
    int differences = 0;
    QStringList grid;  // without row 0

    PlainWalk(const std::vector<Row>& source, std::vector<Row> target, int limit) {
        const int least = int(std::min(source.size(), target.size()));
        const int count2 = int(target.size());
        int matched = 0, record = 1;
        size_t next = 0;
        for (; next < source.size() && !target.empty(); ++next) {
            const Row& row = source[next];
            const auto found = std::find_if(target.begin(), target.end(), [&](const Row& other) {
                return other.first == row.first;
            });
            if (found == target.end()) {
                ++differences;
                grid.resize(differences);
                grid[differences - 1] = line("+", differences, row, false);
                ++record;
                continue;
            }
            ++matched;
            if (found->second != row.second && ++differences < limit)
                grid += {line("S", differences, row, true), line("T", differences, *found, true)};
            target.erase(found);
            if (++record > least) break;
        }
        ++next;
        differences += std::abs(int(source.size()) - count2);
        const auto addRest = [&](const std::vector<Row>& rows, size_t at, int from, int to,
                                 const char* mark) {
            const int first = int(grid.size()) + 1;
            const int wanted = std::min(first + to - from + 1, limit + 1);
            grid.resize(wanted - 1);
            for (int i = from, last = first; i <= to && at < rows.size() && last < wanted;
                 ++i, ++at, ++last)
                grid[last - 1] = line(mark, i, rows[at], false);
        };
        if (count2 > matched)
            addRest(target, 0, 1, count2 - matched, "-");
        else if (int(source.size()) > count2)
            addRest(source, next, least + 1, int(source.size()), "+");
    }
    static QString line(const char* mark, int number, const Row& row, bool red) {
        return QStringLiteral("%1 %2|%3|%4%5")
            .arg(QLatin1String(mark))
            .arg(number)
            .arg(row.first)
            .arg(red ? QStringLiteral("*") : QString(), row.second);
    }
};

// Large enough that the Target isn't read at once, in the same order, in another, in none and
// backwards (when most of its rows are kept packed), with keys that come several times and rows
// that either side lacks.
TEST_P(CompareRecordsTest, WhatAnIndexFindsIsWhatASearchFinds) {
    std::mt19937 random(11);
    constexpr int Backwards = 1000;
    for (const int disorder : {0, 1, 50, 100, Backwards}) {
        for (const int repeated : {0, 3}) {
            const int count = disorder == 100 ? 3000 : 14000;
            std::vector<PlainWalk::Row> tables[2];
            for (int i = 1; i <= count; ++i) {
                const int key = repeated && random() % 200 == 0 ? int(random() % 30) : i;
                const QString value = QStringLiteral("v%1").arg(i % 17);
                if (random() % 300 != 0) tables[0].emplace_back(key, value);
                if (random() % 300 != 0)
                    tables[1].emplace_back(key,
                                           random() % 100 == 0 ? QStringLiteral("other") : value);
            }
            // Some rows far from their places, or all anywhere.
            if (disorder == Backwards) std::reverse(tables[1].begin(), tables[1].end());
            const bool isMixed = disorder > 0 && disorder < Backwards;
            for (size_t i = 0; isMixed && i < tables[1].size(); ++i)
                if (disorder == 100 || random() % 2000 < unsigned(disorder))
                    std::swap(tables[1][i], tables[1][random() % tables[1].size()]);
            QStringList rows[2];
            for (int side = 0; side < 2; ++side)
                for (const auto& [key, value] : tables[side])
                    rows[side] += QString::number(key) + u' ' + value;
            loadRows(rows[0], rows[1]);
            byKey(QStringLiteral("Id"));
            for (const int limit : {40, 100000}) {
                globals().glngMaxRowsInDiffTable = limit;
                const PlainWalk plain(tables[0], tables[1], limit);
                const std::string shown = compared();
                EXPECT_EQ(result.Differences, plain.differences) << disorder << ' ' << repeated;
                const QStringList lines = grid.split(u'\n');
                ASSERT_EQ(lines.size(), plain.grid.size())
                    << disorder << ' ' << repeated << ' ' << limit;
                for (qsizetype i = 0; i < lines.size(); ++i) {
                    // The red of a pair that was written over stays; it is looked at elsewhere.
                    const auto plainLine = [](QString text) {
                        return text.remove(u'*').toStdString();
                    };
                    ASSERT_EQ(plainLine(lines[i]), plainLine(plain.grid[i]))
                        << i << ' ' << disorder;
                }
            }
        }
    }
}

}  // namespace
}  // namespace zov
