// Finding an object by its first letters, and ticking those of a selective run.
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"
#include "tools/frmListObjects.h"
#include "tools/frmSearchForObject_Gen.h"

namespace zov {
namespace {

using test::Road;

class ObjectChoice : public ::testing::TestWithParam<Road> {
 protected:
    void SetUp() override {
        served.load(QStringLiteral("Src"),
                    QStringLiteral("CREATE SCHEMA hr\nGO\nCREATE TABLE dbo.Orders (Id int)\nGO\n"
                                   "CREATE TABLE hr.Orders (Id int)\nGO\n"
                                   "CREATE TABLE dbo.Parts (Id int)\nGO\n"
                                   "CREATE VIEW dbo.OrderView AS SELECT 1 AS a\nGO\n"));
        served.load(QStringLiteral("Tgt"), QStringLiteral("CREATE TABLE dbo.Fresh (Id int)\n"));
        globals().gtCurrentServers[SourcePanel] = served.server();
        globals().gtCurrentServers[TargetPanel] = served.server();
        shell.takeLines();
    }
    /// Opens the search on tables of Src and plays the user.
    QString search(const std::function<void(frmSearchForObject_Gen&)>& user) {
        shell.onScreen = [&](Screen& screen) {
            if (auto* form = dynamic_cast<frmSearchForObject_Gen*>(&screen)) user(*form);
        };
        const QString chosen = frmSearchForObject_Gen().ShowUp(
            SourcePanel, ObjectType::Table, QStringLiteral("Table"), QStringLiteral("Src"));
        shell.onScreen = nullptr;
        return chosen;
    }
    std::string told() {
        QStringList lines = shell.takeLines();
        if (!lines.isEmpty()) lines.removeFirst();  // the screen itself
        return lines.join(u'\n').toStdString();
    }

    test::TempHome home;
    test::RecordingShell shell;
    test::ServedDatabases served{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Roads, ObjectChoice, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

TEST_P(ObjectChoice, ASearchListsWhatBeginsWithTheLetters) {
    const struct {
        const char* text;
        const char* found;
    } rows[] = {
        {"Or", "dbo.Orders|hr.Orders"},
        {"par", "Parts"},
        {"P%s", "Parts"},
        {"x", ""},
        {"arts", ""},
        {"Fresh", ""},
    };
    search([&](frmSearchForObject_Gen& form) {
        EXPECT_EQ(form.caption(), u"Find Table");
        EXPECT_EQ(
            form.lblInfo.toStdString(),
            "Type the first letters of the name of the Table you want to search for and click "
            "button 'Search' (or press Enter).");
        for (const auto& row : rows) {
            form.txtFind = QString::fromLatin1(row.text);
            form.cmdFind_Click();
            EXPECT_EQ(form.lstFound.join(u'|').toStdString(), row.found) << row.text;
        }
        // Nothing to look for leaves the list as it is.
        form.lstFound = QStringList{QStringLiteral("kept")};
        form.txtFind.clear();
        form.cmdFind_Click();
        EXPECT_EQ(form.lstFound.size(), 1);
    });
    EXPECT_EQ(told(), "");
}

TEST_P(ObjectChoice, TheFilterOfThePanelHolds) {
    globals().gblnFilterActive[SourcePanel] = true;
    globals().gstrFilterList[SourcePanel] = QStringLiteral("hr");
    search([](frmSearchForObject_Gen& form) {
        // The filter goes by names: a namesake in another schema passes with the one in the list.
        form.txtFind = QStringLiteral("O");
        form.cmdFind_Click();
        EXPECT_EQ(form.lstFound.join(u'|').toStdString(), "dbo.Orders|hr.Orders");
        form.txtFind = QStringLiteral("P");
        form.cmdFind_Click();
        EXPECT_TRUE(form.lstFound.isEmpty());
    });
}

TEST_P(ObjectChoice, AQuoteInTheTextBreaksTheQueryWhichIsTold) {
    const QString chosen = search([&](frmSearchForObject_Gen& form) {
        form.txtFind = QStringLiteral("O'Brien");
        form.cmdFind_Click();
        EXPECT_EQ(told(), "screen frmErrorReport");
        EXPECT_TRUE(form.lstFound.isEmpty());
        EXPECT_FALSE(form.isClosed());
        form.txtFind = QStringLiteral("Par");
        form.cmdFind_Click();
        form.cmdOK_Click();
    });
    EXPECT_EQ(chosen.toStdString(), "Parts");
}

TEST_P(ObjectChoice, OkWantsASelection) {
    const QString chosen = search([&](frmSearchForObject_Gen& form) {
        const char* const wanted =
            "information [Cannot View]: Please select the Table you want to view.";
        form.cmdOK_Click();
        EXPECT_EQ(told(), wanted);
        form.txtFind = QStringLiteral("Or");
        form.cmdFind_Click();
        form.selectedRow = 2;
        shell.lines = QStringList{QString()};
        form.cmdOK_Click();
        EXPECT_EQ(told(), wanted);
        form.selectedRow = 1;
        form.cmdOK_Click();
        EXPECT_TRUE(form.isClosed());
    });
    EXPECT_EQ(chosen.toStdString(), "hr.Orders");
    EXPECT_EQ(search([](frmSearchForObject_Gen& form) { form.cmdCancel_Click(); }), QString());
    EXPECT_EQ(frmSearchForObject_Gen().ShowUp(SourcePanel, ObjectType::Table, {}, {}), QString());
}

TEST_P(ObjectChoice, ObjectsAreTickedOnBothSides) {
    QStringList source, target;
    shell.onScreen = [&](Screen& screen) {
        auto& form = dynamic_cast<frmListObjects&>(screen);
        EXPECT_EQ(form.caption(), u"List Objects");
        EXPECT_EQ(form.lblServer1, served.server().Name);
        EXPECT_EQ((form.lblDb1 + u' ' + form.lblDb2 + u' ' + form.lblObjectType).toStdString(),
                  "Src Tgt tables");
        QStringList names;
        for (const auto& row : form.pvlSqlObj[0]) {
            names += row.name;
            EXPECT_FALSE(row.ticked);
        }
        EXPECT_EQ(names.size(), 3) << names.join(u'|').toStdString();

        form.cmdOK();
        EXPECT_EQ(told(),
                  "information: Please select at least one object in Source database or click "
                  "Cancel button.\nfocus pvlSqlObj_0");
        form.cmdSelectAll();
        form.pvlSqlObj[1][0].ticked = false;
        shell.lines = QStringList{QString()};
        form.cmdOK();
        EXPECT_EQ(told(),
                  "information: Please select at least one object in Target database or click "
                  "Cancel button.\nfocus pvlSqlObj_1");
        EXPECT_FALSE(form.isClosed());
        form.cmdDeselectAll();
        for (const auto& rows : form.pvlSqlObj)
            for (const auto& row : rows) EXPECT_FALSE(row.ticked);
        form.pvlSqlObj[0][2].ticked = form.pvlSqlObj[1][0].ticked = true;
        form.cmdOK();
        EXPECT_TRUE(form.isClosed());
    };
    EXPECT_TRUE(frmListObjects().ShowUp(QStringLiteral("Src"), QStringLiteral("Tgt"),
                                        ObjectType::Table, source, target));
    EXPECT_EQ(source.join(u'|').toStdString(), "Parts");
    EXPECT_EQ(target.join(u'|').toStdString(), "Fresh");
}

TEST_P(ObjectChoice, ACancelledOrUnreadableListGivesNothing) {
    QStringList source, target;
    shell.onScreen = [&](Screen& screen) {
        auto& form = dynamic_cast<frmListObjects&>(screen);
        form.cmdSelectAll();
        form.cmdCancel();
    };
    frmListObjects form;
    EXPECT_FALSE(form.ShowUp(QStringLiteral("Src"), QStringLiteral("Tgt"), ObjectType::Table,
                             source, target));
    EXPECT_TRUE(source.isEmpty() && target.isEmpty());
    shell.takeLines();
    shell.onScreen = nullptr;
    EXPECT_FALSE(form.ShowUp(QStringLiteral("Src"), QStringLiteral("NoSuch"), ObjectType::View,
                             source, target));
    EXPECT_EQ(shell.takeLines().join(u'\n').toStdString(),
              "screen frmErrorReport\n"
              "exclamation: Couldn't retrieve list of all views");
}

}  // namespace
}  // namespace zov
