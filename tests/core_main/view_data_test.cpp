// "View Data": the rows of the table that a panel has selected.
#include "core_main/main_window_fixture.h"
#include "datacompare/frmDataView.h"

namespace zov {
namespace {

class ViewData : public test::MainWindow {
 protected:
    std::string shown(int Index) {
        std::string seen;
        shell.onScreen = [&](Screen& screen) {
            auto& form = dynamic_cast<frmDataView&>(screen);
            form.Form_Activate();
            seen = form.lblTableName.section(QStringLiteral(", Server"), 0, 0).toStdString() + " " +
                   form.VSFlexGrid1.text(1, 1).toStdString();
        };
        window.cmdViewData_Click(Index);
        EXPECT_EQ(shell.waitDepth, 0);
        return seen;
    }
};

TEST_F(ViewData, ShowsTheSelectedTableOfEitherPanel) {
    const QString script = QStringLiteral(
        "CREATE SCHEMA hr\nGO\nCREATE TABLE dbo.People (Id int)\nGO\nCREATE TABLE "
        "hr.People (Id int)\nGO\nINSERT INTO hr.People VALUES (%1)\nGO\n");
    loadDatabases(script.arg(7), script.arg(8));
    connect();
    select(0, QStringLiteral("hr.People"));
    select(1, QStringLiteral("hr.People"));
    EXPECT_EQ(shown(SourcePanel), "Table: People (Database: Src 7");
    EXPECT_EQ(shown(TargetPanel), "Table: People (Database: Tgt 8");
    shell.takeLines();
    select(0, QStringLiteral("dbo.People"));
    EXPECT_EQ(shown(SourcePanel), "");
    EXPECT_EQ(told(), "information [View Data]: Table People doesn't contain any data.");
    view.sides[0].pvlSqlObj.MemoryObjectList::selectRow(-1);
    EXPECT_EQ(shown(SourcePanel), "");
    EXPECT_EQ(told(), "information [View]: Cannot view - the list of tables is empty.");
    const ScopedValue<bool> busy(window.Busy(), true);
    EXPECT_EQ(shown(TargetPanel), "") << "not while something else is at work";
}

}  // namespace
}  // namespace zov
