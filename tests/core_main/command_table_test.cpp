// The commands as menus show them, and where each leads.
#include "main_window_fixture.h"

#include <QSet>

namespace zov {
namespace {

class Commands : public test::MainWindow {};

TEST(CommandTable, HoldsEveryCommandUnderItsIdAndCaption) {
    const char* const kinds[] = {"&Tables",   "&Procedures",    "&Functions",  "&Views",
                                 "T&riggers", "R&elationships", "&Constraints"};
    QHash<int, QString> expected = {
        {101, QStringLiteral("&Connect to the Server")},
        {102, QStringLiteral("Refresh - &Source")},
        {103, QStringLiteral("Refresh - &Target")},
        {104, QStringLiteral("&Run Saved Comparison Process")},
        {105, QStringLiteral("E&xit")},
        {201, QStringLiteral("Compare &Selected Objects")},
        {202, QStringLiteral("Compare &All Objects")},
        {203, QStringLiteral("&Bulk Comparisons")},
        {204, QStringLiteral("&Simple")},
        {220, QStringLiteral("&Details")},
        {230, QStringLiteral("&Selective Comparisons")},
        {240, QStringLiteral("&Details")},
        {250, QStringLiteral("Compare and Print All Tables")},
        {310, QStringLiteral("Compare &Data in Single Pair of Tables")},
        {320, QStringLiteral("Compare Data in &Selected Tables")},
        {330, QStringLiteral("Compare Data in &All Tables")},
        {410, QStringLiteral("Build SQL CREATE Statement - &Source")},
        {420, QStringLiteral("Build SQL CREATE Statement - &Target")},
        {430, QStringLiteral("&Runnable Script - Source")},
        {440, QStringLiteral("Ru&nnable Script - Target")},
        {501, QStringLiteral("&Add Server")},
        {502, QStringLiteral("&Remove Server")},
        {503, QStringLiteral("Data Analyzer")},
        {504, QStringLiteral("Analyze Data in Source Table")},
        {505, QStringLiteral("Analyze Data in Target Table")},
        {506, QStringLiteral("&Find Object")},
        {507, QStringLiteral("In &Source Database")},
        {508, QStringLiteral("In &Target Database")},
        {509, QStringLiteral("Atta&ch Database")},
        {510, QStringLiteral("List All Ignored Columns - &Data Comparisons")},
        {511, QStringLiteral("List All Ignored Columns - &Structure Comparisons")},
        {513, QStringLiteral("&Options...")},
        {514, QStringLiteral("&Generate Update Script")},
        {520, QStringLiteral("Find &Missing References")},
        {521, QStringLiteral("In &Source Database")},
        {522, QStringLiteral("In &Target Database")},
        {523, QStringLiteral("In Listed Objects of S&ource")},
        {524, QStringLiteral("In Listed Objects of T&arget")},
        {610, QStringLiteral("&Index...")},
        {620, QStringLiteral("&Tip of the Day...")},
        {630, QStringLiteral("Technical &Support")},
        {660, QStringLiteral("&About...")},
        {700, QStringLiteral("Refresh")},
        {710, QStringLiteral("Show Color Schema")},
        {720, QStringLiteral("Visualize Differences")},
        {730, QStringLiteral("Ignore Columns")},
        {740, QStringLiteral("Compare Highlighted Sections")},
        {750, QStringLiteral("Build SQL CREATE Statement")},
        {760, QStringLiteral("Find references to non-existent objects")},
        {765, QStringLiteral("Only names that can't be found")},
        {770, QStringLiteral("Print")},
        {780, QStringLiteral("Print Source And Target")},
        {801, QStringLiteral("Create Objects")},
        {802, QStringLiteral("Db_GetObjSchemaById")},
        {803, QStringLiteral("Temp")},
        {804, QStringLiteral("Generate Update Script")},
        {805, QStringLiteral("Execute Stored Procedure")},
        {806, QStringLiteral("&Attach Database")},
        {807, QStringLiteral("&Compare Tables")},
        {808, QStringLiteral("&Show List of Objects")},
        {809, QStringLiteral("Strip Comments")},
        {810, QStringLiteral("Get Table Constrains")},
        {811, QStringLiteral("Get Table Indexes")},
        {812, QStringLiteral("Create Stored Procedures")},
        {813, QStringLiteral("&Options")},
        {814, QStringLiteral("&Data Comparison Options")},
        {815, QStringLiteral("&Get Server Version")},
        {816, QStringLiteral("Options &New")},
        {817, QStringLiteral("Error &Report")},
    };
    for (int kind = 0; kind < 7; ++kind) {
        const QString name = QString::fromLatin1(kinds[kind]);
        const QString all = QStringLiteral("Compare All ") + name;
        const QString chosen = QStringLiteral("Compare Selected ") + name;
        expected.insert(205 + kind, all);
        expected.insert(221 + kind, all + QStringLiteral(" - Details"));
        expected.insert(231 + kind, chosen);
        expected.insert(241 + kind, chosen + QStringLiteral(" - Details"));
    }
    for (const int first : {431, 441}) {
        expected.insert(first, QStringLiteral("&Selected Objects"));
        expected.insert(first + 1, QStringLiteral("All Objects of This &Type"));
        expected.insert(first + 2, QStringLiteral("Whole &Database"));
    }
    for (const CommandEntry& entry : commandTable()) {
        EXPECT_EQ(expected.take(entry.id).toStdString(), entry.caption) << entry.id;
    }
    EXPECT_TRUE(expected.isEmpty()) << "missing: " << expected.begin().key();
    EXPECT_EQ(findCommand(512), nullptr);
}

TEST(CommandTable, MenusHaveNoDoubleKeysAndNoOrphans) {
    QSet<QString> keys;
    QSet<QString> mnemonics;
    for (const CommandEntry& entry : commandTable()) {
        const QString key = QString::fromLatin1(entry.key);
        EXPECT_FALSE(!key.isEmpty() && keys.contains(key)) << entry.caption;
        keys.insert(key);
        if (entry.parent) {
            const CommandEntry* parent = findCommand(entry.parent);
            ASSERT_TRUE(parent) << entry.caption;
            EXPECT_TRUE(parent->isSubmenu && parent->menu == entry.menu) << entry.caption;
            // A submenu is made before what stands in it.
            EXPECT_LT(parent, &entry);
        }
        const QString caption = QString::fromLatin1(entry.caption);
        const qsizetype at = caption.indexOf(u'&');
        if (at < 0) continue;
        const QString place = QStringLiteral("%1/%2/%3")
                                  .arg(int(entry.menu))
                                  .arg(entry.parent)
                                  .arg(caption[at + 1].toUpper());
        // "Compare &Selected Objects" has the same letter: its users know both captions so.
        if (entry.id == 230) continue;
        EXPECT_FALSE(mnemonics.contains(place)) << entry.caption;
        mnemonics.insert(place);
    }
}

TEST_F(Commands, LeadToTheirScreens) {
    loadDatabases(QStringLiteral("CREATE TABLE A (x int)"),
                  QStringLiteral("CREATE TABLE A (x int)"));
    connect();
    const struct {
        int id;
        const char* told;
        const char* seen;
    } rows[] = {
        {105, "", "close"},
        {202, "screen frmCompareAllTables", ""},
        {205, "screen frmCompareAllTables", ""},
        {221, "screen frmCompareAllTables", ""},
        {231, "screen frmListObjects", ""},
        {241, "screen frmListObjects", ""},
        {410, "screen frmReport", ""},
        {420, "screen frmReport", ""},
        {431, "screen frmReport", ""},
        {442, "screen frmReport", ""},
        {443, "screen frmReport", ""},
        {501, "screen frmAddServer", ""},
        {502, "screen frmDeleteServer", ""},
        {507, "screen frmSearchForObject_Gen", ""},
        {508, "screen frmSearchForObject_Gen", ""},
        {510, "screen frmIgnoreColumnsView", ""},
        {511, "screen frmIgnoreColumnsView", ""},
        {513, "screen frmOptions", ""},
        {514, "information [Generate Update Script]: The selected tables are identical.", ""},
        {521, "screen frmReport", ""},
        {522, "screen frmReport", ""},
        {523,
         "information [Cannot Search]: Cannot search - choose procedures, functions, views or "
         "triggers as Objects Type first: other objects have no statements.",
         ""},
        {610, "", "help 0"},
        {620, "screen frmTip", ""},
        {630, "", "help 230"},
        {660, "", "about"},
        {700, "", ""},
        {710, "screen frmColorSchema", ""},
        {720, "screen frmCompareText", ""},
        {730, "screen frmIgnoreColumnsAdd", ""},
        {750, "screen frmReport", ""},
        {770, "", "print 0 Source: SERVER.Src.A"},
        {780, "", "print 0 Source: SERVER.Src.A\nprint 1 Target: SERVER.Tgt.A"},
        {808, "screen frmListObjects", ""},
        {809, "screen frmSpare", ""},
        {813, "screen frmOptionsDebug", ""},
        {814, "screen frmCompareDataOptions", ""},
        {815, "", ""},
        {816, "screen frmOptions", ""},
        {817, "screen frmErrorReport", ""},
        // Submenus, what isn't there, and tests without an action.
        {203, "", ""},
        {230, "", ""},
        {506, "", ""},
        {0, "", ""},
        {512, "", ""},
        {803, "", ""},
        {807, "", ""},
    };
    for (const auto& row : rows) {
        window.ExecuteAction(row.id);
        if (row.id == 815)
            EXPECT_EQ(told(), "information: " + served.server().Version.toStdString());
        else
            EXPECT_EQ(told(), row.told) << row.id;
        EXPECT_EQ(seen(), row.seen) << row.id;
        EXPECT_FALSE(window.Busy()) << row.id;
        EXPECT_EQ(shell.waitDepth, 0) << row.id;
    }
}

TEST(CommandTable, EveryCommandIsBuilt) {
    for (const CommandEntry& entry : commandTable()) EXPECT_TRUE(entry.isBuilt) << entry.caption;
}

TEST_F(Commands, ABusyWindowTakesHelpAndTheWayOutAlone) {
    loadDatabases(QStringLiteral("CREATE TABLE A (x int)"),
                  QStringLiteral("CREATE TABLE A (x int)"));
    connect();
    window.Busy() = true;
    for (const CommandEntry& entry : commandTable()) {
        if (entry.id == command::Exit || entry.menu == CommandMenu::Help) continue;
        window.ExecuteAction(entry.id);
        EXPECT_EQ(told() + seen(), "") << entry.caption;
    }
    window.ExecuteAction(command::HelpIndex);
    window.ExecuteAction(command::Exit);
    EXPECT_EQ(seen(), "help 0\nclose");
}

TEST_F(Commands, APanesMenuFollowsTypeAndTexts) {
    loadDatabases(QStringLiteral("CREATE TABLE A (x int)\nGO\nCREATE PROCEDURE P AS SELECT 1"),
                  QStringLiteral("CREATE TABLE A (x int)"));
    const auto menu = [this] {
        QStringList ids;
        for (const CommandEntry& entry : commandTable())
            if (window.isInPaneMenu(entry.id))
                ids += QString::number(entry.id) +
                       (window.isOffered(entry.id) ? QString() : QStringLiteral("-"));
        return ids.join(u' ').toStdString();
    };
    storeServer();
    window.Form_Load();
    EXPECT_EQ(menu(), "700- 710- 720- 730- 740- 750- 770- 780-");
    window.cmdConnect_Click();
    choose(view.sides[0].pvlDb, QStringLiteral("Src"));
    window.pvlDb_Click(SourcePanel);
    EXPECT_EQ(menu(), "700 710 720 730 740 750 770 780");
    view.sides[1].txtTXProc.setText({});
    EXPECT_EQ(menu(), "700 710 720 730 740- 750 770 780");
    chooseType(ObjectType::Procedure);
    EXPECT_EQ(menu(), "700 710 720 740 750 760 765 770 780");
    chooseType(ObjectType::Trigger);
    EXPECT_EQ(menu(), "700 710 720 740 750 765 770 780");
}

TEST_F(Commands, DebugToolsWantAConnectionFirst) {
    loadDatabases(QStringLiteral("CREATE TABLE A (x int)"), {});
    storeServer();
    window.Form_Load();
    for (const int id : {802, 804, 808, 810, 811, 814, 815}) {
        window.ExecuteAction(id);
        EXPECT_EQ(told(), "information: Please connect to the server first.") << id;
    }
    shell.onScreen = [](Screen& screen) {
        EXPECT_EQ(screen.plainText(),
                  u"Test Error (error 123456 in frmMain:ID_DEBUG_ERROR_REPORT)");
    };
    window.ExecuteAction(817);
    EXPECT_EQ(told(), "screen frmErrorReport");
}

}  // namespace
}  // namespace zov
