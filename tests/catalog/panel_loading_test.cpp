// Filling the panels: version, databases, owners, objects, and what is stored.
#include "catalog/panel_loading.h"
#include "catalog/modOwner.h"
#include "catalog/modSchema.h"
#include "core/settings.h"
#include "data/server_list.h"
#include "shell/memory_controls.h"
#include "support/recording_shell.h"
#include "support/served_database.h"
#include "support/temp_home.h"

namespace zov {
namespace {

using test::Road;
using test::ServedDatabases;

struct MemoryPanel {
    MemoryChoiceList cmbServer, pvlDb, cmbOwners;
    MemoryObjectList pvlSqlObj;
    MemoryTextPane txtTXProc;
    Panel panel{cmbServer, pvlDb, pvlSqlObj, txtTXProc, cmbOwners};
};

QString itemsOf(const ChoiceList& list) {
    QStringList items;
    for (int i = 0; i < list.count(); ++i) items << list.itemText(i);
    return items.join(u'|');
}
QString rowsOf(const ObjectList& list) {
    QStringList rows;
    for (int i = 0; i < list.rowCount(); ++i) rows << list.row(i).name;
    return rows.join(u'|');
}

// Shows an object by its name.
class NamesAsTexts : public ObjectTexts {
 public:
    void showSelectedObject(const ServerInfo&, TextPane& pane, ObjectList& list, ObjectType,
                            const QString&, int) override {
        if (list.selectedCount() == 0 && list.rowCount() > 0) list.selectRow(0);
        pane.setText(list.selectedIndex() < 0 ? QStringLiteral("nothing")
                                              : list.row(list.selectedIndex()).name);
    }
    std::vector<ObjectListEntry> keepPermissions(Recordset&, int) override { return {}; }
};

class Window : public PanelWindow {
 public:
    void setConnectPicture(int picture) override { pictures << QString::number(picture); }
    bool addServer() override {
        ++addServerShown;
        return false;
    }
    bool dataAccessUsable() override { return usable; }

    QStringList pictures;
    int addServerShown = 0;
    bool usable = true;
};

class PanelLoading : public ::testing::TestWithParam<Road> {
 protected:
    void SetUp() override {
        served.load(QStringLiteral("Alpha"), QStringLiteral("CREATE TABLE dbo.A (ID int)\n"
                                                            "CREATE TABLE dbo.B (ID int)"));
        served.load(QStringLiteral("Beta"), QStringLiteral("CREATE SCHEMA hr\nGO\n"
                                                           "CREATE TABLE dbo.C (ID int)\n"
                                                           "CREATE TABLE hr.D (ID int)"));
        LoadObjectTypesCombo(cmbType);
        if (!HasFailure()) server = served.server();
        shell.takeLines();
    }
    bool load(bool mru, int index = SourcePanel) {
        return LoadServer(server, panels[index].panel, cmbType, mru, index, texts);
    }

    /// Puts a server at the stored list's end.
    static void store(ServerInfo& info) {
        SaveServerToRegistry(info);
        LoadServersFromRegistry();
        info.RegIndex = globals().gtServers.back().RegIndex;
    }

    test::TempHome home;
    test::RecordingShell shell;
    ServedDatabases served{GetParam()};
    ServerInfo server;
    MemoryChoiceList cmbType;
    MemoryPanel panels[2];
    NamesAsTexts texts;
    Window window;
    Panels both{panels[0].panel, panels[1].panel, cmbType, texts};
};
INSTANTIATE_TEST_SUITE_P(Roads, PanelLoading, ::testing::Values(Road::Embedded, Road::Odbc),
                         test::roadName);

TEST_P(PanelLoading, ListsDatabasesAndShowsTheFirstOnesObjects) {
    for (int cursor : {adUseServer, adUseClient}) {
        globals().glngCursorLocation = cursor;
        ASSERT_TRUE(load(false));
        const MemoryPanel& panel = panels[0];
        EXPECT_EQ(itemsOf(panel.pvlDb), QStringLiteral("Alpha|Beta|master|model|msdb|tempdb"));
        EXPECT_EQ(panel.pvlDb.text(), QStringLiteral("Alpha"));
        EXPECT_EQ(panel.pvlDb.Tag, QString());
        EXPECT_EQ(rowsOf(panel.pvlSqlObj), QStringLiteral("A|B"));
        EXPECT_EQ(panel.txtTXProc.text(), QStringLiteral("A"));
        EXPECT_EQ(panel.cmbOwners.count(), 0);  // owners aren't shown
    }
    EXPECT_EQ(shell.lines.join(u'\n'), QString());
    EXPECT_EQ(shell.waitDepth, 0);
}

TEST_P(PanelLoading, TheLastDatabaseIsSelectedAgainWhenThatIsSet) {
    server.MRUDb = QStringLiteral("Beta");
    ASSERT_TRUE(load(true));
    EXPECT_EQ(panels[0].pvlDb.text(), QStringLiteral("Beta"));
    EXPECT_EQ(rowsOf(panels[0].pvlSqlObj), QStringLiteral("C|D"));

    ASSERT_TRUE(load(false));
    EXPECT_EQ(panels[0].pvlDb.text(), QStringLiteral("Alpha"));
    server.MRUDb = QStringLiteral("dropped");
    ASSERT_TRUE(load(true));
    EXPECT_EQ(panels[0].pvlDb.text(), QStringLiteral("Alpha"));
    server.MRUDb = QStringLiteral("Beta");
    writeBooleanSetting(QStringLiteral("PreserveDbSel"), false);
    ASSERT_TRUE(load(true));
    EXPECT_EQ(panels[0].pvlDb.text(), QStringLiteral("Alpha"));
}

TEST_P(PanelLoading, OwnersNarrowTheList) {
    globals().gblnShowOwners = true;
    server.MRUDb = QStringLiteral("Beta");
    ASSERT_TRUE(load(true));
    MemoryPanel& panel = panels[0];
    EXPECT_EQ(panel.cmbOwners.text(), QStringLiteral("All Owners"));
    ASSERT_GE(panel.cmbOwners.count(), 2);

    panel.cmbOwners.addItem(QStringLiteral("nobody"));
    panel.cmbOwners.setText(QStringLiteral("nobody"));
    cmbOwners_Click(server, panel.panel, cmbType, SourcePanel, texts);
    EXPECT_EQ(rowsOf(panel.pvlSqlObj), QString());
    EXPECT_EQ(panel.txtTXProc.text(), QStringLiteral("nothing"));
    EXPECT_EQ(panel.pvlSqlObj.Tag, QString());

    panel.cmbOwners.setText(QStringLiteral("dbo"));
    cmbOwners_Click(server, panel.panel, cmbType, SourcePanel, texts);
    EXPECT_TRUE(rowsOf(panel.pvlSqlObj).startsWith(u'C'));
    EXPECT_EQ(panel.txtTXProc.text(), QStringLiteral("C"));

    panel.cmbOwners.setText(QStringLiteral("All Owners"));
    cmbOwners_Click(server, panel.panel, cmbType, SourcePanel, texts);
    EXPECT_EQ(rowsOf(panel.pvlSqlObj), QStringLiteral("C|D"));

    panel.cmbOwners.Tag = QStringLiteral("OFF");
    panel.cmbOwners.setText(QStringLiteral("nobody"));
    cmbOwners_Click(server, panel.panel, cmbType, SourcePanel, texts);
    EXPECT_EQ(rowsOf(panel.pvlSqlObj), QStringLiteral("C|D"));
}

TEST_P(PanelLoading, ANewDatabaseDropsTheFilterAndIsRemembered) {
    store(server);
    ASSERT_TRUE(load(false));
    globals().gblnFilterActive[SourcePanel] = true;
    globals().gstrFilterList[SourcePanel] = QStringLiteral("hr");
    DatabaseChanged(server, QStringLiteral("Beta"), panels[0].panel, cmbType, SourcePanel, texts);
    EXPECT_FALSE(globals().gblnFilterActive[SourcePanel]);
    EXPECT_EQ(rowsOf(panels[0].pvlSqlObj), QStringLiteral("C|D"));
    EXPECT_EQ(server.MRUDb, QStringLiteral("Beta"));
    EXPECT_EQ(globals().gtServers[0].MRUDb, QStringLiteral("Beta"));
    EXPECT_EQ(RegGetStringValue(RegRoot::CurrentUser, settings_key::server(1),
                                QStringLiteral("MRUDb"), {}),
              QStringLiteral("Beta"));
}

TEST_P(PanelLoading, TheVersionIsAskedOnceAndStored) {
    const QString version = server.Version;
    server.Version.clear();
    ServerInfo first;
    first.Name = QStringLiteral("first");
    store(first);
    store(server);
    CheckSQLServerVersion(server);
    EXPECT_EQ(server.Version, version);
    EXPECT_EQ(RegGetStringValue(RegRoot::CurrentUser, settings_key::server(2),
                                QStringLiteral("Version"), {}),
              version);
    // The stored text comes before the server's answer, and the record's before both.
    RegSetStringValue(RegRoot::CurrentUser, settings_key::server(2), QStringLiteral("Version"),
                      QStringLiteral("9.00.1399.06"));
    server.Version.clear();
    CheckSQLServerVersion(server);
    EXPECT_EQ(server.Version, QStringLiteral("9.00.1399.06"));
    server.Version = QStringLiteral("8.00");
    CheckSQLServerVersion(server);
    EXPECT_EQ(server.Version, QStringLiteral("8.00"));
}

TEST_P(PanelLoading, OneUnreachableServerLeavesTheOtherPanelLoaded) {
    globals().gtCurrentServers[SourcePanel] = server;
    globals().gtCurrentServers[TargetPanel].Name = QStringLiteral("local:/nowhere/at/all");
    globals().gtCurrentServers[TargetPanel].Version = QStringLiteral("16.0.4085.2");
    InitializeDisplay(true, both, window);
    EXPECT_EQ(window.pictures.join(u' '), QStringLiteral("5 4 3"));
    EXPECT_EQ(rowsOf(panels[0].pvlSqlObj), QStringLiteral("A|B"));
    EXPECT_EQ(panels[1].pvlDb.count(), 0);
    EXPECT_EQ(panels[1].pvlSqlObj.rowCount(), 0);
    EXPECT_EQ(shell.lines.filter(QStringLiteral("frmErrorReport")).size(), 1)
        << shell.lines.join(u'\n').toStdString();

    globals().gtCurrentServers[SourcePanel] = globals().gtCurrentServers[TargetPanel];
    window.pictures.clear();
    InitializeDisplay(true, both, window);
    EXPECT_EQ(window.pictures.join(u' '), QStringLiteral("5 4 5"));
    EXPECT_EQ(panels[0].pvlDb.count(), 0);
}

/// Counts what waits for a server, and gives up the wait from the `patience`-th on.
class ImpatientShell : public test::RecordingShell {
 public:
    int patience = 1000;
    QStringList waits;

    bool runBlocking(const std::function<void()>& work, const std::function<void()>& cancel,
                     const QString& server) override {
        waits += server;
        if (waits.size() >= patience) return false;
        return RecordingShell::runBlocking(work, cancel, server);
    }
};

TEST_P(PanelLoading, AServerThatDoesNotAnswerIsAskedOnce) {
    ImpatientShell impatient;
    ServerInfo dead = server;
    // Nobody listens at port 1. The embedded server has no such way to be out of reach.
    if (GetParam() == Road::Odbc) {
        dead.Name = QStringLiteral("127.0.0.1,1");
        dead.Version.clear();
        for (ServerInfo& each : globals().gtCurrentServers) each = dead;
        InitializeDisplay(true, both, window);
        EXPECT_EQ(impatient.waits, QStringList(dead.Name)) << "for both panels together";
        EXPECT_EQ(impatient.lines.filter(QStringLiteral("frmErrorReport")).size(), 1)
            << impatient.lines.join(u'\n').toStdString();
        impatient.waits.clear();
        dead.MRUDb = QStringLiteral("Sales");
        EXPECT_FALSE(TestServerConnection(dead));
        EXPECT_EQ(impatient.waits.size(), 1) << "in Add Server";
    }
    // A server that answers, but can't open the database, is asked whether it takes the login.
    impatient.waits.clear();
    ServerInfo missing = server;
    missing.MRUDb = QStringLiteral("NoSuchDatabase");
    TestServerConnection(missing);
    EXPECT_EQ(impatient.waits.size(), 2);
}

TEST_P(PanelLoading, WhoGivesUpOnceHasGivenUpTheLoad) {
    for (const int patience : {1, 2, 3}) {
        ImpatientShell impatient;
        impatient.patience = patience;
        for (ServerInfo& each : globals().gtCurrentServers) {
            each = server;
            each.Version.clear();
            each.RegIndex = 0;
        }
        InitializeDisplay(true, both, window);
        EXPECT_EQ(impatient.waits.size(), patience);
        EXPECT_EQ(impatient.lines.join(u'\n').toStdString(), "") << "it is no error";
        ServerInfo added = server;
        added.MRUDb = QStringLiteral("Alpha");
        impatient.patience = 1;
        impatient.waits.clear();
        EXPECT_FALSE(TestServerConnection(added));
        EXPECT_EQ(impatient.waits, QStringList(server.Name));
        EXPECT_TRUE(globals().gblnStop);
    }
}

TEST_P(PanelLoading, AQueryOnACallersConnectionCanBeGivenUp) {
    ImpatientShell impatient;
    std::shared_ptr<Connection> connection;
    ASSERT_TRUE(ADO_Connection_Open(connection, server, QStringLiteral("Alpha")));
    std::unique_ptr<Recordset> rs;
    const QString text = QStringLiteral("SELECT name FROM sysobjects WHERE xtype = 'U'");
    ASSERT_EQ(GetAdoRS_OnConnection(connection, adCmdText, text, rs), 0);
    EXPECT_EQ(rs->RecordCount(), 2);
    EXPECT_EQ(impatient.waits, QStringList({server.Name, server.Name}));
    // A failed query leaves the connection as it was.
    EXPECT_EQ(
        GetAdoRS_OnConnection(connection, adCmdText, QStringLiteral("SELECT x FROM none"), rs), -1);
    EXPECT_EQ(impatient.takeLines().size(), 1);
    ASSERT_EQ(GetAdoRS_OnConnection(connection, adCmdText, text, rs), 0);
    // Given up: silent, and what would follow on the connection isn't asked.
    impatient.patience = impatient.waits.size() + 1;
    EXPECT_EQ(GetAdoRS_OnConnection(connection, adCmdText, text, rs), -1);
    EXPECT_EQ(rs, nullptr);
    EXPECT_TRUE(globals().gblnStop);
    const qsizetype asked = impatient.waits.size();
    EXPECT_EQ(GetAdoRS_OnConnection(connection, adCmdText, text, rs), -1);
    EXPECT_EQ(impatient.waits.size(), asked);
    EXPECT_EQ(impatient.lines.join(u'\n').toStdString(), "");
    connection->Close();
}

TEST_P(PanelLoading, WithoutAServerTheAddScreenIsOffered) {
    InitializeDisplay(false, both, window);
    EXPECT_EQ(window.pictures.join(u' '), QStringLiteral("5"));
    EXPECT_EQ(window.addServerShown, 1);
    EXPECT_EQ(
        shell.lines.join(u'\n'),
        QStringLiteral(
            "information [No SQL Server]: There is no SQL server to connect to.\\n\\nPlease add "
            "server by filling in following form or by clicking menu item 'Tools' -> 'Add "
            "Server' and specifying info for the server."));
    window.usable = false;
    EXPECT_FALSE(ServerInfoSet(both, window));
    EXPECT_EQ(window.addServerShown, 1);
}

}  // namespace
}  // namespace zov
