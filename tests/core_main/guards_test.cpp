// What must be selected before an operation can run, and what is said otherwise.
#include "main_window_fixture.h"

namespace zov {
namespace {

const QString TwoTables = QStringLiteral(
    "CREATE SCHEMA hr\nGO\nCREATE TABLE dbo.Orders (Id int)\nGO\nCREATE TABLE hr.People (Id int)\n"
    "GO\nCREATE TABLE dbo.People (Id int)\nGO\n");

class Guards : public test::MainWindow {
 protected:
    std::string filter(int type) {
        const bool can = window.CanFilter(SourcePanel, FilterType(type));
        const std::string said = told();
        EXPECT_EQ(can, said.empty());
        return said;
    }
    std::string search() {
        const bool can = window.CanSearchForObject(SourcePanel);
        const std::string said = told();
        EXPECT_EQ(can, said.empty());
        return said;
    }
    std::string view_(int action) {
        choice = {};
        const bool can = window.CanViewAnalyzeData(action, SourcePanel, choice);
        const std::string said = told();
        EXPECT_EQ(can, said.empty());
        return said;
    }
    frmMain::TableChoice choice;
};

const char* const TablesWanted =
    "information: This functionality is enabled only when Tables are selected as active "
    "objects.\\n\\nTo set Tables as active objects set focus to Objects Type combo box (using "
    "mouse "
    "or by pressing key F6) and select first item from the list.";
const char* const CodeWanted =
    "information: This functionality is enabled only when procedures, functions or views are "
    "selected as active objects.\\n\\nTo set active objects, set focus to Objects Type combo box "
    "(using mouse or by pressing key F6) and select the desired item from the list.";

TEST_F(Guards, NameTheEmptyListOfDatabases) {
    loadDatabases(TwoTables, TwoTables);
    storeServer();
    window.Form_Load();
    EXPECT_EQ(filter(1),
              "information [Cannot Filter]: Cannot filter by schema - the list of databases is "
              "empty.");
    EXPECT_EQ(filter(2),
              "information [Cannot Filter]: Cannot filter by owner - the list of databases is "
              "empty.");
    EXPECT_EQ(search(),
              "information [Cannot Search]: Cannot search for object - the list of databases is "
              "empty.");
    EXPECT_EQ(view_(0), "information [View]: Cannot view - the list of databases is empty.");
    EXPECT_EQ(view_(1), "information [Analyze]: Cannot analyze - the list of databases is empty.");
    SelectedPair pair;
    EXPECT_FALSE(window.CanCompareData(pair));
    EXPECT_FALSE(window.CanDisplayDbInfo(TargetPanel));
    EXPECT_EQ(told(),
              "information [Cannot Compare]: Cannot compare - the list of databases is empty.\n"
              "information [Cannot Display Info]: Cannot display database info - the list of "
              "databases is empty.");
    for (const int id : {201, 202, 205, 231, 246, 250}) {
        window.ExecuteAction(id);
        EXPECT_EQ(told(),
                  "information [Cannot Compare]: Cannot compare - the list of databases is empty.")
            << id;
    }
}

TEST_F(Guards, NameTheEmptyListOfObjects) {
    loadDatabases(TwoTables, {});
    connect();
    chooseType(ObjectType::View);
    EXPECT_EQ(filter(2),
              "information [Cannot Filter]: Cannot filter by owner - the list of views is empty.");
    EXPECT_EQ(search(),
              "information [Cannot Search]: Cannot search for object - the list of views is "
              "empty.");
    EXPECT_EQ(view_(0), TablesWanted);
    window.ExecuteAction(command::CompareSelected);
    EXPECT_EQ(told(),
              "information [Cannot Compare]: Cannot compare - the list of objects is empty.");

    choose(view.sides[0].pvlDb, QStringLiteral("Tgt"));
    window.pvlDb_Click(SourcePanel);
    chooseType(ObjectType::Table);
    EXPECT_EQ(view_(1), "information [Analyze]: Cannot analyze - the list of tables is empty.");
}

TEST_F(Guards, TellTheWrongParameter) {
    loadDatabases(TwoTables, TwoTables);
    connect();
    EXPECT_EQ(filter(3),
              "information: Function CanFilter - wrong parameter passed (penmFilterType = 3).");
    EXPECT_EQ(view_(2), "information: Function CanViewAnalyzeData - wrong parameter passed.");
}

TEST_F(Guards, KnowThatOldServersHaveNoSchemas) {
    loadDatabases(TwoTables, TwoTables);
    connect();
    EXPECT_EQ(filter(1), "");
    for (const char* version : {"8.00.2039", "7.00", ""}) {
        globals().gtCurrentServers[SourcePanel].Version = QString::fromLatin1(version);
        EXPECT_EQ(filter(1),
                  "information [Cannot Filter]: Cannot filter by schema - schemas were introduced "
                  "in SQL Server 2005.");
        EXPECT_EQ(filter(2), "");
    }
    globals().gtCurrentServers[SourcePanel].Version = QStringLiteral("9.00.1399.06");
    EXPECT_EQ(filter(1), "");
}

TEST_F(Guards, GiveTheTableThatIsMeant) {
    loadDatabases(TwoTables, TwoTables);
    connect();
    EXPECT_EQ(test::rowsOf(view.sides[0].pvlSqlObj).toStdString(), "Orders|hr.People|dbo.People");
    select(0, QStringLiteral("hr.People"));
    EXPECT_EQ(view_(0), "");
    EXPECT_EQ(choice.database.toStdString(), "Src");
    EXPECT_EQ(choice.schema.toStdString(), "hr");
    EXPECT_EQ(choice.table.toStdString(), "People");
    EXPECT_EQ(choice.extendedName.toStdString(), "[hr].[People]");
    EXPECT_GT(choice.id, 0);
    select(0, QStringLiteral("Orders"));
    EXPECT_EQ(view_(1), "");
    EXPECT_EQ(choice.schema.toStdString() + "|" + choice.table.toStdString(), "dbo|Orders");
    view.sides[0].pvlSqlObj.MemoryObjectList::selectRow(-1);
    EXPECT_EQ(view_(0), "information [View]: Cannot view - the list of tables is empty.");
}

TEST_F(Guards, ActiveObjectsAreOfTheRightType) {
    loadDatabases(TwoTables, TwoTables);
    globals().gblnAnalyzeConstraints = true;
    connect();
    const struct {
        ObjectType type;
        bool table, code;
    } rows[] = {
        {ObjectType::Table, true, false},       {ObjectType::Procedure, false, true},
        {ObjectType::Function, false, true},    {ObjectType::View, false, true},
        {ObjectType::Trigger, false, false},    {ObjectType::Relationship, false, false},
        {ObjectType::Constraint, false, false},
    };
    for (const auto& row : rows) {
        chooseType(row.type);
        EXPECT_EQ(window.TablesAreActive(), row.table) << int(row.type);
        EXPECT_EQ(told(), row.table ? "" : TablesWanted);
        EXPECT_EQ(window.ProgrammableObjectsAreActive(), row.code) << int(row.type);
        EXPECT_EQ(told(), row.code ? "" : CodeWanted);
    }
    window.ExecuteAction(command::IgnoreColumns);
    EXPECT_EQ(told(), TablesWanted);
}

TEST_F(Guards, ADataComparisonAsksAboutDifferentStructures) {
    loadDatabases(TwoTables + QStringLiteral("CREATE TABLE dbo.T (A int, B int)\nGO\n"),
                  TwoTables + QStringLiteral("CREATE TABLE dbo.T (B int, A int)\nGO\n"));
    connect();
    SelectedPair pair;
    EXPECT_TRUE(window.CanCompareData(pair));
    EXPECT_EQ(pair.sourceObject.toStdString(), "Orders");
    select(0, QStringLiteral("T"));
    const std::string question =
        "yes/no [Different Structures]: Compared tables have different structures.\\n\\nDo you "
        "still want to compare them? -> ";
    for (const bool yes : {false, true}) {
        shell.yesNoAnswers = {yes};
        EXPECT_EQ(window.CanCompareData(pair), yes);
        EXPECT_EQ(told(), question + (yes ? "yes" : "no"));
    }
    // The order of columns is no difference while that is set.
    select(1, QStringLiteral("T"));
    EXPECT_TRUE(window.CanCompareData(pair));
    globals().gblnIgnoreColSeq = false;
    EXPECT_FALSE(window.CanCompareData(pair));
    EXPECT_EQ(told(), question + "no");
    view.sides[1].pvlSqlObj.addToSelection(0);
    EXPECT_FALSE(window.CanCompareData(pair));
    EXPECT_EQ(told(),
              "information [Cannot Compare]: Cannot compare - the list of objects is empty.");
    chooseType(ObjectType::Trigger);
    EXPECT_FALSE(window.CanCompareData(pair));
    EXPECT_EQ(told(),
              "information [Cannot Compare]: Cannot compare - the list of objects is empty.");
    EXPECT_TRUE(window.CanDisplayDbInfo(TargetPanel));
}

TEST_F(Guards, ThePrintJobAsksForTwoDatabasesWithTables) {
    loadDatabases(TwoTables, {});
    window.Form_Load();
    // Without a server the Add Server screen comes first.
    window.ExecuteAction(command::CompareAndPrint);
    EXPECT_EQ(told().substr(0, 28), "information [No SQL Server]:");
    connect();
    const auto said = [this] {
        window.ExecuteAction(command::CompareAndPrint);
        return told();
    };
    EXPECT_EQ(said(),
              "information [Cannot Compare]: Cannot compare - there are no tables in Target "
              "database.");
    choose(view.sides[1].pvlDb, QStringLiteral("Src"));
    window.pvlDb_Click(TargetPanel);
    EXPECT_EQ(said(),
              "information [Cannot Compare]: Cannot compare - Source and Target database are the "
              "same.");
    choose(view.sides[0].pvlDb, QStringLiteral("Tgt"));
    window.pvlDb_Click(SourcePanel);
    EXPECT_EQ(said(),
              "information [Cannot Compare]: Cannot compare - there are no tables in Source "
              "database.");
    chooseType(ObjectType::View);
    EXPECT_EQ(said(), TablesWanted);
    globals().gtCurrentServers[TargetPanel].Name.clear();
    EXPECT_EQ(said(), "information [Cannot Compare]: Please select Target server first.");
}

}  // namespace
}  // namespace zov
