// One pair of objects: the sentence, the notes and the marks for each type and
// setting, on texts that come from real databases.
#include "structcompare/pair_comparison.h"
#include "core/modIgnoreColumns.h"
#include "scripting/modNew.h"
#include "shell/memory_controls.h"
#include "structcompare/modMarkDifferences.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

namespace zov {
namespace {

using test::Road;

class PairWindow : public PairComparisonWindow {
 public:
    SelectedPair pair;
    bool busy = false;
    bool printing = false;
    int printed = 0;
    QStringList reports;
    bool busyInReport = false;

    SelectedPair GetNamesOfSelected() override { return pair; }
    bool& Busy() override { return busy; }
    void showComparisonReport(const SelectedPair&) override {
        reports += globals().gstrReport;
        busyInReport = busy;
    }
    bool isPrintJob() const override { return printing; }
    void printBothPanes() override { ++printed; }
};

const QString Source = QStringLiteral(
    "CREATE SCHEMA hr\nGO\n"
    "CREATE TABLE dbo.Same (A int, B int)\nGO\n"
    "CREATE TABLE dbo.Moved (A int, B int)\nGO\n"
    "CREATE TABLE dbo.Stamped (A int, Stamp datetime)\nGO\n"
    "CREATE TABLE dbo.Type (A int NOT NULL, B int)\nGO\n"
    "CREATE TABLE dbo.Twice (A int, X int)\nGO\nCREATE TABLE hr.Twice (A int, Y int)\nGO\n"
    "CREATE TABLE dbo.Parent (Id int NOT NULL CONSTRAINT pk_Parent PRIMARY KEY, Id2 int)\nGO\n"
    "CREATE TABLE dbo.Child (Id int, P int CONSTRAINT fk_Child REFERENCES dbo.Parent (Id))\nGO\n"
    "CREATE PROCEDURE dbo.Owned AS SELECT * FROM dbo.Same\nGO\n"
    "CREATE PROCEDURE dbo.Spaced AS   SELECT 1\nGO\n"
    "CREATE PROCEDURE dbo.Cased AS SELECT 1\nGO\n"
    "CREATE PROCEDURE dbo.Order1 AS\nSELECT 1\nSELECT 2\nGO\n"
    "CREATE PROCEDURE dbo.Other AS SELECT 1\nGO\n"
    "CREATE FUNCTION dbo.F (@a int) RETURNS int AS BEGIN RETURN @a END\nGO\n"
    "CREATE FUNCTION dbo.CasedF () RETURNS int AS BEGIN RETURN 1 END\nGO\n"
    "CREATE VIEW dbo.V AS SELECT A FROM dbo.Same\nGO\n"
    "CREATE TRIGGER dbo.Tr ON dbo.Same FOR INSERT AS SELECT 1\nGO\n");
const QString Target = QStringLiteral(
    "CREATE SCHEMA hr\nGO\n"
    "CREATE TABLE dbo.Same (A int, B int)\nGO\n"
    "CREATE TABLE dbo.Moved (B int, A int)\nGO\n"
    "CREATE TABLE dbo.Stamped (A int, Stamp date)\nGO\n"
    "CREATE TABLE dbo.Type (A bigint NOT NULL, B int, C int)\nGO\n"
    "CREATE TABLE dbo.Twice (A int, Z int)\nGO\nCREATE TABLE hr.Twice (A int, Y int)\nGO\n"
    "CREATE TABLE dbo.Parent (Id int, Id2 int NOT NULL CONSTRAINT pk_Parent PRIMARY KEY)\nGO\n"
    "CREATE TABLE dbo.Child (Id int, P int CONSTRAINT fk_Child REFERENCES dbo.Parent (Id2))\nGO\n"
    "CREATE PROCEDURE Owned AS SELECT * FROM Same\nGO\n"
    "CREATE PROCEDURE dbo.Spaced AS SELECT\t1\nGO\n"
    "CREATE PROCEDURE dbo.Cased AS select 1\nGO\n"
    "CREATE PROCEDURE dbo.Order1 AS\nSELECT 2\nSELECT 1\nGO\n"
    "CREATE PROCEDURE dbo.Other AS SELECT 2\nGO\n"
    "CREATE FUNCTION dbo.F (@a int) RETURNS int AS BEGIN RETURN @a + 1 END\nGO\n"
    "CREATE FUNCTION dbo.CasedF () RETURNS int AS BEGIN return 1 END\nGO\n"
    "CREATE VIEW [V] AS SELECT A FROM dbo.Same\nGO\n"
    "CREATE TRIGGER dbo.Tr ON dbo.Same FOR INSERT AS SELECT 1\nGO\n");

class PairComparison : public ::testing::TestWithParam<Road> {
 protected:
    void SetUp() override {
        served.load(QStringLiteral("Src"), Source);
        served.load(QStringLiteral("Tgt"), Target);
        server = served.server();
        shell.takeLines();
    }
    /// Selects an object of this list name on both sides, shows its texts, compares.
    bool compare(ObjectType type, const QString& name) {
        window.pair = {};
        window.pair.objectType = type;
        window.pair.sourceServer = window.pair.targetServer = server;
        window.pair.sourceDb = QStringLiteral("Src");
        window.pair.targetDb = QStringLiteral("Tgt");
        window.pair.sourceObject = window.pair.targetObject = name;
        for (const int side : {0, 1}) {
            MemoryObjectList list;
            MemoryTextPane unused;
            const QString db = side == 0 ? window.pair.sourceDb : window.pair.targetDb;
            LoadObjects(server, list, unused, type, db, false, {}, side, nullptr);
            qint32 id = 0;
            for (int row = 0; row < list.rowCount(); ++row) {
                if (list.row(row).name != name) continue;
                id = list.row(row).id;
                list.selectRow(row);
                (side == 0 ? window.pair.sourceRow : window.pair.targetRow) =
                    objectOf(list.row(row), type);
            }
            EXPECT_NE(id, 0) << name.toStdString();
            (side == 0 ? window.pair.sourceId : window.pair.targetId) = id;
            UpdateProcedureTextBox(server, panes[side], list, type, db, {}, 0, side);
        }
        return CompareSelProcs(window, panes[0], panes[1]);
    }
    /// The report behind the two lines of names and the empty one.
    std::string verdict() {
        EXPECT_EQ(window.reports.size(), 1);
        const QString report = window.reports.value(0);
        window.reports.clear();
        const QString head = QStringLiteral("Source: ") + server.Name + QStringLiteral(".Src.") +
                             window.pair.sourceObject + QStringLiteral("\r\nTarget: ") +
                             server.Name + QStringLiteral(".Tgt.") + window.pair.targetObject +
                             QStringLiteral("\r\n\r\n");
        EXPECT_TRUE(report.startsWith(head)) << report.toStdString();
        return report.mid(head.size())
            .replace(QStringLiteral("\r\n"), QStringLiteral("|"))
            .toStdString();
    }
    std::string marks() {
        QStringList sides;
        for (const MemoryTextPane& pane : panes) {
            QStringList marks;
            for (const MemoryTextPane::Paint& paint : pane.paints())
                for (const qint32 mark : {0, 10, 20, 30, 40})
                    if (colorOfMark(mark) == paint.color) marks += QString::number(mark);
            sides += marks.join(u' ');
        }
        return sides.join(u'/').toStdString();
    }

    test::TempHome home;
    test::RecordingShell shell;
    test::ServedDatabases served{GetParam()};
    ServerInfo server;
    PairWindow window;
    MemoryTextPane panes[2];
};
INSTANTIATE_TEST_SUITE_P(Roads, PairComparison, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

const char* const OrderNote = "||Please note that option 'Ignore Columns Order' is set ON.";
const char* const ColumnsNote = "||Please note that some columns were ignored during comparison.";

TEST_P(PairComparison, TellsTheVerdictForEachTypeAndSetting) {
    enum Setting { Defaults, OrderCounts, WhiteSpaceCounts, CaseIgnored, BlanksAndCase };
    const struct {
        ObjectType type;
        const char* name;
        Setting setting;
        const char* plural;
        bool identical;
        const char* marks;
    } rows[] = {
        {ObjectType::Table, "Same", Defaults, "tables", true, "/"},
        {ObjectType::Table, "Moved", Defaults, "tables", true, "/"},
        {ObjectType::Table, "Moved", OrderCounts, "tables", false, "10 10/10 10"},
        {ObjectType::Table, "Type", Defaults, "tables", false, "20 10/20 10 30"},
        {ObjectType::Procedure, "Owned", Defaults, "procedures", true, "/"},
        {ObjectType::Procedure, "Owned", OrderCounts, "procedures", true, "/"},
        {ObjectType::Procedure, "Spaced", Defaults, "procedures", true, "/"},
        {ObjectType::Procedure, "Spaced", WhiteSpaceCounts, "procedures", false, "20/20"},
        {ObjectType::Procedure, "Cased", Defaults, "procedures", false, "20/20"},
        {ObjectType::Procedure, "Cased", CaseIgnored, "procedures", true, "/"},
        // Without the white space test only the owner test, which procedures alone have, folds
        // case.
        {ObjectType::Procedure, "Cased", BlanksAndCase, "procedures", true, "/"},
        {ObjectType::Function, "CasedF", BlanksAndCase, "functions", false, "20/20"},
        {ObjectType::Function, "CasedF", CaseIgnored, "functions", true, "/"},
        {ObjectType::Procedure, "Order1", Defaults, "procedures", true, "/"},
        {ObjectType::Procedure, "Order1", OrderCounts, "procedures", false, "10 10 40/10 30 10"},
        {ObjectType::Procedure, "Other", Defaults, "procedures", false, "20/20"},
        {ObjectType::Function, "F", Defaults, "functions", false, "20/20"},
        {ObjectType::View, "V", Defaults, "views", true, "/"},
        {ObjectType::Trigger, "Tr", Defaults, "triggers", true, "/"},
        {ObjectType::Relationship, "fk_Child", Defaults, "relationships", false,
         "10 10 10 20/10 10 10 20"},
        {ObjectType::Constraint, "pk_Parent", Defaults, "constraints", false,
         "10 10 20 10/10 10 20 10"},
    };
    for (const auto& row : rows) {
        Globals& g = globals();
        g.gblnIgnoreColSeq = row.setting != OrderCounts && row.setting != WhiteSpaceCounts &&
                             row.setting != BlanksAndCase;
        g.gblnIgnoreWhitespace = row.setting != WhiteSpaceCounts && row.setting != BlanksAndCase;
        g.gblnCaseSensitive = row.setting != CaseIgnored && row.setting != BlanksAndCase;
        EXPECT_EQ(compare(row.type, QString::fromLatin1(row.name)), row.identical) << row.name;
        std::string expected = std::string("The selected ") + row.plural + " are " +
                               (row.identical ? "identical." : "different.");
        if (row.identical && g.gblnIgnoreColSeq) expected += OrderNote;
        EXPECT_EQ(verdict(), expected) << row.name << ", setting " << row.setting;
        EXPECT_EQ(marks(), row.marks) << row.name << ", setting " << row.setting;
        EXPECT_TRUE(window.busyInReport);
        EXPECT_FALSE(window.busy);
    }
    EXPECT_EQ(shell.takeLines().join(u'\n').toStdString(), "");
    EXPECT_EQ(shell.waitDepth, 0);
}

TEST_P(PairComparison, IgnoredColumnsDontCountButStandInThePanes) {
    const auto ignore = [&](const char* db, const char* table, const QStringList& columns) {
        SaveIgnoredColumnsList(
            IgnoreMode::StructureComparison,
            GetObjectKeyName(server.Name, QString::fromLatin1(db), QString::fromLatin1(table)),
            columns);
    };
    const QString stamped = QStringLiteral("Stamped");
    EXPECT_FALSE(compare(ObjectType::Table, stamped));
    EXPECT_EQ(verdict(), "The selected tables are different.");
    // On one side only, the other one's column is missing there.
    ignore("Src", "Stamped", {QStringLiteral("Stamp")});
    EXPECT_FALSE(compare(ObjectType::Table, stamped));
    EXPECT_EQ(verdict(), "The selected tables are different.");
    ignore("Tgt", "Stamped", {QStringLiteral("Stamp")});
    EXPECT_TRUE(compare(ObjectType::Table, stamped));
    EXPECT_EQ(verdict(),
              std::string("The selected tables are identical.") + ColumnsNote + OrderNote);
    EXPECT_EQ(marks(), "/");
    EXPECT_TRUE(panes[0].text().contains(QStringLiteral("[Stamp]")));
    globals().gblnIgnoreColSeq = false;
    EXPECT_TRUE(compare(ObjectType::Table, stamped));
    EXPECT_EQ(verdict(), std::string("The selected tables are identical.") + ColumnsNote);

    // Another purpose's marks don't matter, and a name in two schemas has marks of its own.
    ignore("Src", "dbo.Twice", {QStringLiteral("X")});
    ignore("Tgt", "dbo.Twice", {QStringLiteral("Z")});
    EXPECT_TRUE(compare(ObjectType::Table, QStringLiteral("dbo.Twice")));
    EXPECT_EQ(verdict(), std::string("The selected tables are identical.") + ColumnsNote);
    EXPECT_TRUE(compare(ObjectType::Table, QStringLiteral("hr.Twice")));
    EXPECT_EQ(verdict(), "The selected tables are identical.");
    SaveIgnoredColumnsList(
        IgnoreMode::DataComparison,
        GetObjectKeyName(server.Name, QStringLiteral("Src"), QStringLiteral("Type")),
        {QStringLiteral("A")});
    EXPECT_FALSE(compare(ObjectType::Table, QStringLiteral("Type")));
}

TEST_P(PairComparison, SectionsAreComparedUntrimmedAndThePanesStillCount) {
    globals().gblnIgnoreColSeq = false;
    globals().gblnIgnoreWhitespace = false;
    compare(ObjectType::Procedure, QStringLiteral("Other"));
    window.reports.clear();
    const auto sections = [&](const char* source, const char* target) {
        return CompareSelProcs(window, panes[0], panes[1], true, QString::fromLatin1(source),
                               QString::fromLatin1(target));
    };
    EXPECT_TRUE(sections("SELECT", "SELECT"));
    EXPECT_EQ(verdict(), "The selected procedures are identical.");
    EXPECT_FALSE(sections("SELECT ", "SELECT"));
    verdict();
    // The whole panes are equal but for the owner: so are any two sections.
    compare(ObjectType::Procedure, QStringLiteral("Owned"));
    window.reports.clear();
    EXPECT_TRUE(sections("this", "that"));
    verdict();
    // A table with ignored columns is taken as a whole.
    SaveIgnoredColumnsList(
        IgnoreMode::StructureComparison,
        GetObjectKeyName(server.Name, QStringLiteral("Src"), QStringLiteral("Same")),
        {QStringLiteral("B")});
    compare(ObjectType::Table, QStringLiteral("Same"));
    window.reports.clear();
    EXPECT_TRUE(sections("nothing like it", "[A] [int] NULL"));
    verdict();
}

TEST_P(PairComparison, OneEmptyPaneIsDifferentWithoutPaint) {
    compare(ObjectType::Procedure, QStringLiteral("Other"));
    window.reports.clear();
    panes[1].setText({});
    panes[0].setText(panes[0].text());
    EXPECT_FALSE(CompareSelProcs(window, panes[0], panes[1]));
    EXPECT_EQ(verdict(), "The selected procedures are different.");
    EXPECT_EQ(marks(), "/");
    panes[0].setText(QStringLiteral("   "));
    EXPECT_FALSE(CompareSelProcs(window, panes[0], panes[1]));
    EXPECT_EQ(shell.takeLines().join(u'\n').toStdString(),
              "information [Cannot Compare]: Cannot compare - the list of objects is empty.");
    EXPECT_TRUE(window.reports.isEmpty());
    EXPECT_FALSE(window.busy);
    EXPECT_EQ(shell.waitDepth, 0);
}

TEST_P(PairComparison, EarlierMarksStayWithAnIdenticalPair) {
    globals().gblnIgnoreColSeq = false;
    compare(ObjectType::Procedure, QStringLiteral("Order1"));
    const std::string before = marks();
    EXPECT_EQ(before, "10 10 40/10 30 10");
    window.reports.clear();
    globals().gblnIgnoreColSeq = true;
    EXPECT_TRUE(CompareSelProcs(window, panes[0], panes[1]));
    EXPECT_EQ(marks(), before);
}

TEST_P(PairComparison, APrintJobPrintsAndShowsNothing) {
    window.printing = true;
    compare(ObjectType::Procedure, QStringLiteral("Other"));
    compare(ObjectType::Procedure, QStringLiteral("Spaced"));
    EXPECT_EQ(window.printed, 2);
    EXPECT_TRUE(window.reports.isEmpty());
    EXPECT_EQ(globals().gstrReport, QString());
}

TEST(SelectedPairs, FullNamesLeaveOutWhatIsNotSelected) {
    SelectedPair pair;
    pair.sourceServer.Name = QStringLiteral("S");
    pair.sourceDb = QStringLiteral("D");
    EXPECT_EQ(pair.sourceFullName().toStdString(), "S.D");
    pair.sourceObject = QStringLiteral("dbo.T");
    EXPECT_EQ(pair.sourceFullName().toStdString(), "S.D.dbo.T");
}

}  // namespace
}  // namespace zov
