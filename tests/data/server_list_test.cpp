// The stored list of servers and the two screens that change it.
#include "data/server_list.h"

#include "core/globals.h"
#include "core/mdlMain.h"
#include "core/registry.h"
#include "core/settings.h"
#include "data/data_access_check.h"
#include "data/frmAddServer.h"
#include "data/frmDeleteServer.h"
#include "data/mdlData.h"
#include "shell/memory_controls.h"
#include "support/full_disk.h"
#include "support/recording_shell.h"
#include "support/temp_home.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

class ServerList : public ::testing::Test {
 protected:
    test::TempHome home;
    test::RecordingShell recorder;

    static ServerInfo server(const char* name, const char* login = "", const char* password = "") {
        ServerInfo info;
        info.Name = QString::fromUtf8(name);
        info.SQLAuth = *login != 0;
        info.LoginName = QString::fromUtf8(login);
        info.Password = QString::fromUtf8(password);
        info.MRUDb = QStringLiteral("db of ") + info.Name;
        info.Version = QStringLiteral("9.00.1399.06");
        return info;
    }
    static void add(const ServerInfo& info) {
        SaveServerToRegistry(info);
        LoadServersFromRegistry();
    }
    static QString namesLoaded() {
        LoadServersFromRegistry();
        QStringList names;
        for (const ServerInfo& info : globals().gtServers) {
            names += QString::number(info.RegIndex) + info.Name;
        }
        return names.join(u'|');
    }
    /// Makes local:NAME a reachable server.
    static void makeLocalServer(const QString& name) {
        Connection connection;
        connection.ConnectionString =
            QStringLiteral("Data Source=%1;Initial Catalog=made").arg(name);
        connection.createDatabase = true;
        connection.Open();
        connection.Close();
    }
};

TEST_F(ServerList, RoundTripsThroughTheStore) {
    add(server("A", "sa", "p;w\"d\\ "));
    add(server("Größe\\inst,1433"));
    ASSERT_EQ(GetServerCount(), 2);
    const ServerInfo& first = globals().gtServers[0];
    EXPECT_TRUE(first.SQLAuth);
    EXPECT_EQ(first.LoginName, u"sa");
    EXPECT_EQ(first.Password, u"p;w\"d\\ ");
    EXPECT_EQ(first.MRUDb, u"db of A");
    EXPECT_EQ(first.Version, u"9.00.1399.06");
    EXPECT_EQ(first.NumVersion, 0);
    EXPECT_EQ(first.RegIndex, 1);
    EXPECT_EQ(globals().gtServers[1].Name, QStringLiteral("Größe\\inst,1433"));
    EXPECT_FALSE(globals().gtServers[1].SQLAuth);
    EXPECT_TRUE(globals().gblnServersLoaded);
}

TEST_F(ServerList, IsEmptyWithoutAStore) {
    globals().gtServers.push_back(server("left over"));
    globals().gblnServersLoaded = true;
    LoadServersFromRegistry();
    EXPECT_EQ(GetServerCount(), 0);
    EXPECT_FALSE(globals().gblnServersLoaded);
}

TEST_F(ServerList, MissingPiecesReadAsEmptyAndOnlyOneIsTrue) {
    home.write(QStringLiteral("registry.reg"),
               "[HKEY_CURRENT_USER\\Software\\ZOV\\Servers]\n\"Count\"=dword:2\n"
               "[HKEY_CURRENT_USER\\Software\\ZOV\\Servers\\Server1]\n\"Name\"=\"A\"\n\"SQLAuth\"="
               "dword:2\n"
               "\"LoginName\"=dword:1\n");
    EXPECT_EQ(namesLoaded(), u"1A|2");
    EXPECT_FALSE(globals().gtServers[0].SQLAuth);
    EXPECT_EQ(globals().gtServers[0].LoginName, u"");
}

TEST_F(ServerList, ANegativeCountIsNone) {
    RegSetDWordValue(RegRoot::CurrentUser, settings_key::Servers, QStringLiteral("Count"), -1);
    EXPECT_EQ(namesLoaded(), u"");
}

TEST_F(ServerList, AServerIsFoundByItsExactName) {
    add(server("One"));
    add(server("Two", "u", "p"));
    globals().gtServers.clear();  // the store is asked, not the copy
    ServerInfo found;
    found.Name = QStringLiteral("Two");
    EXPECT_TRUE(GetServerInfoByName(found));
    EXPECT_EQ(found.RegIndex, 2);
    EXPECT_EQ(found.LoginName, u"u");
    EXPECT_EQ(recorder.takeLines(), QStringList());

    found.Name = QStringLiteral("two");
    EXPECT_FALSE(GetServerInfoByName(found));
    EXPECT_EQ(found.Name, u"two");
    EXPECT_EQ(found.RegIndex, 0);
    EXPECT_EQ(found.LoginName, u"");
    EXPECT_EQ(recorder.lines, QStringList{QStringLiteral("exclamation: Server 'two' not found.")});
}

TEST_F(ServerList, BothPanelsStartWithTheFirstServer) {
    add(server("A"));
    add(server("B"));
    globals().gtCurrentServers[TargetPanel] = server("other");
    SetInitialServers();
    for (const ServerInfo& current : globals().gtCurrentServers) {
        EXPECT_EQ(current.Name, u"A");
        EXPECT_EQ(current.NumVersion, 9);
        EXPECT_EQ(current.RegIndex, 1);
    }
    RemoveServer(QStringLiteral("A"));
    RemoveServer(QStringLiteral("B"));
    LoadServersFromRegistry();
    SetInitialServers();
    EXPECT_EQ(globals().gtCurrentServers[SourcePanel].Name, u"");
    EXPECT_EQ(globals().gtCurrentServers[SourcePanel].NumVersion, 0);
}

TEST_F(ServerList, RemovalNumbersTheOthersAnew) {
    for (const char* name : {"A", "B", "x", "C"}) add(server(name, "u", "secret"));
    // Only a file that somebody edited holds a name in two cases.
    home.write(
        QStringLiteral("registry.reg"),
        home.read(QStringLiteral("registry.reg")).replace("\"Name\"=\"x\"", "\"Name\"=\"b\""));
    EXPECT_TRUE(RemoveServer(QStringLiteral("B")));
    EXPECT_EQ(namesLoaded(), u"1A|2b|3C");
    EXPECT_FALSE(home.read(QStringLiteral("registry.reg")).contains("Server4"));
    EXPECT_FALSE(home.read(QStringLiteral("registry.reg")).contains("db of B"));
    EXPECT_FALSE(RemoveServer(QStringLiteral("not there")));
    EXPECT_EQ(namesLoaded(), u"1A|2b|3C");
    RemoveServer(QStringLiteral("A"));
    RemoveServer(QStringLiteral("b"));
    RemoveServer(QStringLiteral("C"));
    EXPECT_EQ(namesLoaded(), u"");
    EXPECT_EQ(
        RegGetDWordValue(RegRoot::CurrentUser, settings_key::Servers, QStringLiteral("Count"), -1),
        0);
}

TEST_F(ServerList, AServerThatAnotherProcessAddedStays) {
    add(server("A"));
    home.write(
        QStringLiteral("registry.reg"),
        home.read(QStringLiteral("registry.reg"))
                .replace("\"Count\"=dword:00000001", "\"Count\"=dword:00000002") +
            "\r\n[HKEY_CURRENT_USER\\Software\\ZOV\\Servers\\Server2]\r\n\"Name\"=\"theirs\"\r\n");
    SaveServerToRegistry(server("mine"));
    EXPECT_EQ(namesLoaded(), u"1A|2theirs|3mine");
}

TEST_F(ServerList, WhatAnotherProcessRemovedLeavesNoGap) {
    for (const char* name : {"A", "B", "C"}) add(server(name));
    // gtServers still holds three.
    EXPECT_TRUE(RemoveServer(QStringLiteral("A")));
    EXPECT_EQ(SaveServerToRegistry(server("mine")), ServerSaved::Yes);
    EXPECT_EQ(namesLoaded(), u"1B|2C|3mine");
}

TEST_F(ServerList, ANameThatAnotherProcessAddedIsNotAddedTwice) {
    add(server("A"));
    globals().gtServers.clear();  // as it was before the other one came
    ServerInfo again = server("a", "their login", "p");
    EXPECT_EQ(SaveServerToRegistry(again), ServerSaved::AlreadyThere);
    EXPECT_EQ(namesLoaded(), u"1A");
    EXPECT_FALSE(home.read(QStringLiteral("registry.reg")).contains("their login"));
    EXPECT_EQ(serverNotSavedText(ServerSaved::AlreadyThere),
              u"This server is already added to the list.");
}

TEST_F(ServerList, AFullListTakesNoMore) {
    add(server("A"));
    RegSetDWordValue(RegRoot::CurrentUser, settings_key::Servers, QStringLiteral("Count"),
                     MaxStoredServers);
    EXPECT_EQ(SaveServerToRegistry(server("B")), ServerSaved::ListIsFull);
    EXPECT_FALSE(home.read(QStringLiteral("registry.reg")).contains("\"B\""));
    EXPECT_EQ(serverNotSavedText(ServerSaved::ListIsFull),
              u"The list holds 1000 servers, which is as many as it can. Remove one first.");
}

TEST_F(ServerList, WhatIsNotedOfAServerGoesToItAndNotToItsOldNumber) {
    for (const char* name : {"A", "B", "C"}) add(server(name));
    const ServerInfo b = globals().gtServers[1];
    const ServerInfo c = globals().gtServers[2];
    ASSERT_TRUE(RemoveServer(QStringLiteral("B")));  // by another instance: C is number 2 now
    StoreServerDatabase(c, QStringLiteral("C2"));
    StoreServerVersion(c, QStringLiteral("16.0"));
    StoreServerDatabase(b, QStringLiteral("B2"));
    StoreServerVersion(b, QStringLiteral("17.0"));
    EXPECT_EQ(StoredServerVersion(c), u"16.0");
    EXPECT_EQ(StoredServerVersion(b), u"");
    EXPECT_EQ(globals().gtServers[2].MRUDb, u"C2");
    EXPECT_EQ(namesLoaded(), u"1A|2C");
    EXPECT_EQ(globals().gtServers[0].MRUDb, u"db of A");
    EXPECT_EQ(globals().gtServers[0].Version, u"9.00.1399.06");
    EXPECT_EQ(globals().gtServers[1].MRUDb, u"C2");
    EXPECT_FALSE(home.read(QStringLiteral("registry.reg")).contains("B2"));
}

TEST_F(ServerList, AFullDiskLeavesTheListAsItWas) {
    add(server("A"));
    const QByteArray before = home.read(QStringLiteral("registry.reg"));
    {
        const test::FullDisk full(200);
        SaveServerToRegistry(server("B"));
    }
    EXPECT_EQ(takeSettingsFailure(),
              QStringLiteral("Cannot write %1: File too large.").arg(home.registryPath()));
    EXPECT_EQ(home.read(QStringLiteral("registry.reg")), before);
}

TEST_F(ServerList, NamesAreTakenInAnyCase) {
    add(server("Srv"));
    EXPECT_TRUE(IsServerInList(QStringLiteral("SRV")));
    EXPECT_FALSE(IsServerInList(QStringLiteral("Srv2")));
}

TEST_F(ServerList, AnEmptyListCleansItsKeyUp) {
    RegSetDWordValue(RegRoot::CurrentUser, settings_key::Servers, QStringLiteral("ShowOwners"), 1);
    EXPECT_FALSE(IsServerInList(QStringLiteral("x")));
    EXPECT_FALSE(home.read(QStringLiteral("registry.reg")).contains("\\Servers"));
}

TEST_F(ServerList, FillsAServerBox) {
    MemoryChoiceList combo;
    FillServerCombo(combo, 0);
    EXPECT_EQ(combo.count(), 1);
    EXPECT_EQ(combo.text(), u"");

    add(server("A"));
    add(server("B"));
    add(server("C"));
    FillServerCombo(combo, 1);
    EXPECT_EQ(combo.count(), 3);
    EXPECT_EQ(combo.text(), u"B");
    combo.setText(QStringLiteral("C"));
    FillServerCombo(combo, 0);
    EXPECT_EQ(combo.text(), u"C");  // the remembered text wins
    RemoveServer(QStringLiteral("C"));
    LoadServersFromRegistry();
    FillServerCombo(combo, 0);
    EXPECT_EQ(combo.text(), u"A");
    FillServerCombo(combo, 9);
    EXPECT_EQ(combo.Tag, u"");
}

// The Add Server screen.

void playAdd(test::RecordingShell& recorder, const std::function<void(frmAddServer&)>& user) {
    recorder.onScreen = [user](Screen& screen) { user(dynamic_cast<frmAddServer&>(screen)); };
}

TEST_F(ServerList, AddServerTellsWhatIsMissingAndGoesThere) {
    add(server("Stored"));
    struct Row {
        const char* name;
        frmAddServer::Authentication authentication;
        const char *server, *database, *login;
        const char* box;
        const char* focus;
    };
    using enum frmAddServer::Authentication;
    const Row rows[] = {
        {"no server", WindowsAuthentication, "  ", "master", "", "Please enter server name.",
         "txtServer"},
        {"no database", WindowsAuthentication, "S", " ", "", "Please enter database name.",
         "txtDatabase"},
        {"no login", SqlServerAuthentication, "S", "master", " ", "Please enter Login name.",
         "txtLogin"},
        {"no login needed", WindowsAuthentication, " sTORED ", "master", "",
         "This server is already added to the list.", "txtServer"},
        {"server before login", SqlServerAuthentication, "", "", "", "Please enter server name.",
         "txtServer"},
    };
    for (const Row& row : rows) {
        playAdd(recorder, [&](frmAddServer& screen) {
            screen.optGen_Click(row.authentication);
            screen.txtServer = QString::fromLatin1(row.server);
            screen.txtDatabase = QString::fromLatin1(row.database);
            screen.txtLogin = QString::fromLatin1(row.login);
            screen.cmdOK();
            EXPECT_FALSE(screen.isClosed()) << row.name;
            screen.cmdCancel();
            EXPECT_TRUE(screen.isClosed()) << row.name;
        });
        frmAddServer screen;
        EXPECT_FALSE(screen.ShowUp()) << row.name;
        EXPECT_EQ(
            recorder.takeLines(),
            (QStringList{
                QStringLiteral("screen frmAddServer"),
                QStringLiteral("information: ") + QString::fromLatin1(row.box),
                QStringLiteral("focus %1, text selected").arg(QString::fromLatin1(row.focus))}))
            << row.name;
    }
    EXPECT_EQ(namesLoaded(), u"1Stored");
}

TEST_F(ServerList, WindowsAuthenticationEmptiesTheLogin) {
    frmAddServer screen;
    EXPECT_EQ(screen.caption(), u"Add SQL Server");
    EXPECT_EQ(screen.txtDatabase, u"master");
    EXPECT_FALSE(screen.fraLoginEnabled);
    screen.optGen_Click(frmAddServer::SqlServerAuthentication);
    EXPECT_TRUE(screen.fraLoginEnabled);
    screen.txtLogin = screen.txtPassword = QStringLiteral("x");
    screen.optGen_Click(frmAddServer::WindowsAuthentication);
    EXPECT_FALSE(screen.fraLoginEnabled);
    EXPECT_EQ(screen.txtLogin + screen.txtPassword, u"");
}

TEST_F(ServerList, AServerThatCannotBeReachedIsNotAdded) {
    playAdd(recorder, [](frmAddServer& screen) {
        screen.txtServer = QStringLiteral("local:nowhere");
        screen.cmdOK();
        EXPECT_FALSE(screen.isClosed());
    });
    frmAddServer screen;
    EXPECT_FALSE(screen.ShowUp());
    EXPECT_EQ(recorder.lines,
              (QStringList{
                  QStringLiteral("screen frmAddServer"),
                  QStringLiteral("exclamation [Cannot Connect To The Server]: Please enter correct "
                                 "server data.\\n\\nCannot connect to the server - server does not "
                                 "exist or access denied."),
                  QStringLiteral("focus txtServer")}));
    EXPECT_EQ(namesLoaded(), u"");
    EXPECT_FALSE(globals().gblnSuppressConnErrors);
    EXPECT_EQ(recorder.waitDepth, 0);
}

TEST_F(ServerList, AReachableServerIsAddedAndBecomesThePanels) {
    makeLocalServer(QStringLiteral("local:here"));
    playAdd(recorder, [](frmAddServer& screen) {
        screen.txtServer = QStringLiteral(" local:here ");
        screen.cmdOK();
        EXPECT_TRUE(screen.isClosed());
    });
    frmAddServer screen;
    EXPECT_TRUE(screen.ShowUp());
    EXPECT_EQ(recorder.lines, QStringList{QStringLiteral("screen frmAddServer")});
    EXPECT_EQ(namesLoaded(), u"1local:here");
    EXPECT_EQ(globals().gtServers[0].MRUDb, u"master");
    EXPECT_EQ(globals().gtServers[0].Version, u"");
    EXPECT_EQ(globals().gtCurrentServers[TargetPanel].Name, u"local:here");
}

TEST_F(ServerList, AServerAddedElsewhereMeanwhileIsRefusedAtTheLastStep) {
    makeLocalServer(QStringLiteral("local:here"));
    playAdd(recorder, [&](frmAddServer& screen) {
        SaveServerToRegistry(server("LOCAL:HERE"));  // gtServers doesn't know
        screen.txtServer = QStringLiteral("local:here");
        screen.cmdOK();
        EXPECT_FALSE(screen.isClosed());
    });
    frmAddServer screen;
    EXPECT_FALSE(screen.ShowUp());
    EXPECT_EQ(recorder.lines,
              (QStringList{QStringLiteral("screen frmAddServer"),
                           QStringLiteral("information: This server is already added to the list."),
                           QStringLiteral("focus txtServer, text selected")}));
    EXPECT_EQ(namesLoaded(), u"1LOCAL:HERE");
}

TEST_F(ServerList, TheTestFallsBackToTheLoginAlone) {
    makeLocalServer(QStringLiteral("local:here"));
    ServerInfo info;
    info.Name = QStringLiteral("local:here");
    QString why = QStringLiteral("unset");
    for (const char* database : {"", "master", "MASTER", "made", "no such database"}) {
        info.MRUDb = QString::fromLatin1(database);
        EXPECT_TRUE(TestServerConnection(info, &why)) << database;
    }
    EXPECT_EQ(why, u"unset");
    info.Name = QStringLiteral("local:nowhere");
    EXPECT_FALSE(TestServerConnection(info, &why));
    EXPECT_EQ(why, u"SQL Server does not exist or access denied.");
    EXPECT_EQ(recorder.lines, QStringList());
}

// The Remove Server screen.

TEST_F(ServerList, RemoveServerWantsASelectionAndAYes) {
    add(server("A"));
    add(server("B"));
    recorder.onScreen = [&](Screen& shown) {
        auto& screen = dynamic_cast<frmDeleteServer&>(shown);
        EXPECT_EQ(screen.lstServers.join(u'|'), u"A|B");
        screen.cmdRemove();
        screen.selectedRows = {1};
        screen.cmdRemove();
        EXPECT_FALSE(screen.isClosed());
        recorder.yesNoAnswers = {true};
        screen.cmdRemove();
        EXPECT_TRUE(screen.isClosed());
    };
    frmDeleteServer screen;
    EXPECT_TRUE(screen.ShowUp());
    const QString question = QStringLiteral(
        "yes/no [Confirm Removing Server]: Are you sure that you want to remove\\n\\nB\\n\\nfrom "
        "the list of "
        "servers? -> ");
    EXPECT_EQ(
        recorder.lines,
        (QStringList{
            QStringLiteral("screen frmDeleteServer"),
            QStringLiteral("information: Please select the server to be removed from the list."),
            QStringLiteral("focus lstServers"), question + QStringLiteral("no"),
            question + QStringLiteral("yes")}));
    EXPECT_EQ(namesLoaded(), u"1A");
    EXPECT_EQ(globals().gtCurrentServers[SourcePanel].Name, u"A");

    recorder.onScreen = [](Screen& shown) { dynamic_cast<frmDeleteServer&>(shown).cmdExit(); };
    EXPECT_FALSE(screen.ShowUp());
}

TEST_F(ServerList, DataAccessBelow2Point5CannotGoOn) {
    EXPECT_TRUE(CheckMDACVersion());
    EXPECT_TRUE(CheckMDACVersion(2.5));
    EXPECT_EQ(recorder.lines, QStringList());
    EXPECT_FALSE(CheckMDACVersion(2.49));
    EXPECT_EQ(recorder.lines,
              QStringList{QStringLiteral("critical [Cannot Continue - MDAC Missing Or Out Of "
                                         "Date]: The program detected that this "
                                         "computer has no MDAC installed, or the installed version "
                                         "of MDAC is lower than 2.5.\\n\\n"
                                         "To connect to the server this program requires MDAC 2.5 "
                                         "or higher to be installed.\\n\\n"
                                         "MDAC means: Microsoft Data Access Components.\\n\\nFor "
                                         "more information about installing "
                                         "Microsoft Data Access Components please visit "
                                         "https://zovrand.example/data-access\\n\\n"
                                         "or contact\\n\\nsupport@zovrand.example.")});
}

}  // namespace
}  // namespace zov
