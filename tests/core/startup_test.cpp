// Start-up: paths, settings with their defaults, the upgrade of older stores.
#include "core/mdlMain.h"

#include "core/globals.h"
#include "core/registry.h"
#include "core/settings.h"
#include "support/recording_shell.h"
#include "support/temp_home.h"
#include "util/file_lock.h"
#include "util/paths.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

namespace zov {
namespace {

class StartUp : public ::testing::Test {
 protected:
    test::TempHome home;
    test::RecordingShell recorder;
    void store(const QByteArray& values) {
        home.write(QStringLiteral("registry.reg"),
                   "Windows Registry Editor Version 5.00\n\n[HKEY_CURRENT_USER\\Software\\ZOV]\n" +
                       values);
    }
    QString version() const {
        return RegGetStringValue(RegRoot::CurrentUser, settings_key::Root, QStringLiteral("VerNum"),
                                 {});
    }
    qint32 serverCount() const {
        return RegGetDWordValue(RegRoot::CurrentUser, settings_key::Servers,
                                QStringLiteral("Count"), -1);
    }
};

TEST_F(StartUp, FormsThePathsBelowTheHome) {
    InitPaths();
    const Globals& g = globals();
    const QString documents = home.path() + QStringLiteral("/documents/");
    EXPECT_EQ(g.gstrUserDataFolder, documents);
    EXPECT_EQ(g.gstrDataAnalysisFolder, documents);
    EXPECT_EQ(g.gstrCompsIni, documents + QStringLiteral("zov_comps.ini"));
    EXPECT_EQ(g.gstrTablesCompsIni, documents + QStringLiteral("zov_tables_comps.ini"));
    EXPECT_EQ(g.gstrIgnoredColsDataIni, documents + QStringLiteral("zov_ignored_cols_data.ini"));
    EXPECT_EQ(g.gstrIgnoredColsStructIni,
              documents + QStringLiteral("zov_ignored_cols_struct.ini"));
    EXPECT_EQ(g.gstrIgnoredColsDataAnalysisIni,
              documents + QStringLiteral("zov_ignored_cols_dataanalysis.ini"));
    EXPECT_TRUE(g.gstrAppPath.endsWith(u'/'));
    EXPECT_EQ(g.gstrDebugFile, g.gstrAppPath + QStringLiteral("debug.txt"));
    EXPECT_EQ(serversFolder(), home.path() + QStringLiteral("/servers/"));
}

TEST_F(StartUp, WithoutAStoreEverySettingHasItsDefault) {
    RunStartUp(QString(), nullptr);
    const Globals& g = globals();
    EXPECT_TRUE(g.gblnExtendedNames);
    EXPECT_FALSE(g.gblnRunFlag);
    EXPECT_EQ(g.glngTimeout, 30);
    EXPECT_EQ(g.glngMaxRowsInDiffTable, 500);
    EXPECT_EQ(g.glngCacheSize, 5);
    EXPECT_EQ(g.glngCursorLocation, adUseServer);
    EXPECT_FALSE(g.gblnShowOwners || g.gblnFilterOfflineDbs || g.gblnIgnoreIndexes ||
                 g.gblnAutoSelTargetObj || g.gblnAnalyzeConstraints || g.gblnAutoSaveSchemas);
    EXPECT_TRUE(g.gblnCaseSensitive && g.gblnDataCaseSensitive && g.gblnIgnoreWhitespace &&
                g.gblnIgnoreComments && g.gblnIgnoreColSeq && g.gblnIgnoreSysObjects);
    EXPECT_TRUE(GetPreserveDbSel() && GetShowDataCompOpt() && GetPromptToSave());
    EXPECT_FALSE(GetAutoConnect());
    EXPECT_EQ(version(), u"1.1");
    EXPECT_EQ(serverCount(), 0);
    EXPECT_EQ(
        RegGetStringValue(RegRoot::CurrentUser, settings_key::Root, QStringLiteral("Location"), {}),
        g.gstrAppPath);
    EXPECT_EQ(recorder.lines, QStringList());
    EXPECT_EQ(recorder.waitDepth, 0);
}

TEST_F(StartUp, ReadsWhatIsStoredAndOnlyOneIsTrue) {
    store(
        "\"VerNum\"=\"1.1\"\n\"Timeout\"=\"60\"\n\"CacheSize\"=dword:32\n\"AnalyzeConstraints\"="
        "dword:1\n"
        "\"AutoSelTargetObj\"=dword:2\n\"Run\"=dword:1\n"
        "[HKEY_CURRENT_USER\\Software\\ZOV\\Servers]\n\"CursorConnectionUseServer\"=dword:0\n"
        "\"ShowOwners\"=dword:ffffffff\n"
        "[HKEY_CURRENT_USER\\Software\\ZOV\\Comparisons]\n\"IgnoreIndexes\"=dword:1\n"
        "\"IgnoreComments\"=dword:2\n");
    bool serversLoaded = false;
    RunStartUp(QStringLiteral("/RunSavedComp 7"), [&] {
        serversLoaded = true;
        EXPECT_EQ(globals().glngCacheSize, 5);  // read behind the server list
    });
    const Globals& g = globals();
    EXPECT_TRUE(serversLoaded);
    EXPECT_EQ(g.glngTimeout, 30);
    EXPECT_EQ(g.glngCacheSize, 50);
    EXPECT_TRUE(g.gblnAnalyzeConstraints && g.gblnIgnoreIndexes && g.gblnRunFlag);
    EXPECT_FALSE(g.gblnAutoSelTargetObj || g.gblnShowOwners || g.gblnIgnoreComments);
    EXPECT_EQ(g.glngCursorLocation, adUseClient);
    EXPECT_EQ(g.glngSavedProcessId, 7);
}

const char* const TwoServers =
    "[HKEY_CURRENT_USER\\Software\\ZOV\\Servers]\n\"Count\"=dword:7\n\"ShowOwners\"=dword:1\n"
    "[HKEY_CURRENT_USER\\Software\\ZOV\\Servers\\Server1]\n\"Name\"=\"A\"\n"
    "[HKEY_CURRENT_USER\\Software\\ZOV\\Servers\\Server7]\n\"Name\"=\"G\"\n";

TEST_F(StartUp, AStoreWithoutVersionLosesItsServers) {
    store(TwoServers);
    RunStartUp(QString(), nullptr);
    EXPECT_EQ(serverCount(), 0);
    EXPECT_EQ(version(), u"1.1");
    EXPECT_FALSE(home.read(QStringLiteral("registry.reg")).contains("Server7"));
    EXPECT_TRUE(GetShowOwners());  // the key's other values stay
}

TEST_F(StartUp, AStoreOfAnotherVersionKeepsThem) {
    store(QByteArray("\"VerNum\"=\"1.0\"\n") + TwoServers);
    RunStartUp(QString(), nullptr);
    EXPECT_EQ(serverCount(), 7);
    EXPECT_EQ(version(), u"1.1");
}

TEST_F(StartUp, ADamagedStoreIsLeftAloneUntilSomethingIsSaved) {
    store(QByteArray("\"VerNum\"=\"1.1\n") + TwoServers);
    const QByteArray before = home.read(QStringLiteral("registry.reg"));
    RunStartUp(QString(), nullptr);
    EXPECT_EQ(home.read(QStringLiteral("registry.reg")), before);
    EXPECT_EQ(serverCount(), 7);
}

TEST_F(StartUp, WhatIsDamagedIsToldInASentence) {
    EXPECT_EQ(damagedSettingsNote(), QString());
    store("noise\n");
    EXPECT_EQ(damagedSettingsNote(),
              home.registryPath() +
                  QStringLiteral(" holds a line that can't be read; the others are used, and "
                                 "nothing is lost when settings are saved."));
    store("noise\n\"Timeout\"=dword:x\n");
    EXPECT_TRUE(damagedSettingsNote().contains(QStringLiteral(" holds 2 lines that ")));
}

TEST_F(StartUp, AStoreThatCantBeReadIsNotTakenForAnOldOne) {
    QDir().mkpath(home.registryPath());
    RunStartUp(QString(), nullptr);
    EXPECT_EQ(settingsReadFailure(),
              QStringLiteral("Cannot read %1: it is a folder.").arg(home.registryPath()));
    EXPECT_EQ(globals().glngTimeout, 30);
}

TEST_F(StartUp, AStartDoesNotWaitForAnotherProcessesWriting) {
    store(TwoServers);
    const QByteArray before = home.read(QStringLiteral("registry.reg"));
    FileLock other;
    ASSERT_EQ(
        other.acquire(home.registryPath() + QStringLiteral(".lock"), FileLock::Mode::Exclusive, 0),
        FileLock::Outcome::Locked);
    QElapsedTimer time;
    time.start();
    RunStartUp(QString(), nullptr);
    EXPECT_LT(time.elapsed(), 2000);
    EXPECT_EQ(home.read(QStringLiteral("registry.reg")), before);
    EXPECT_EQ(takeSettingsFailure(), QString());
    other.release();
    RunStartUp(QString(), nullptr);
    EXPECT_EQ(serverCount(), 0);
}

TEST_F(StartUp, AnAbsurdServerCountEndsSoon) {
    store("[HKEY_CURRENT_USER\\Software\\ZOV\\Servers]\n\"Count\"=dword:7fffffff\n");
    RunStartUp(QString(), nullptr);
    EXPECT_EQ(serverCount(), 0);
}

TEST_F(StartUp, AFailingStepIsReportedAndTheNextOnesRun) {
    recorder.onScreen = [](Screen&) {};
    RunStartUp(QStringLiteral("/RunSavedComp 3"), [] { throw std::runtime_error("no list"); });
    EXPECT_EQ(recorder.lines, QStringList{QStringLiteral("screen frmErrorReport")});
    EXPECT_EQ(globals().glngSavedProcessId, 3);
}

TEST(Display, IsSmallOnlyAtExactly640By480) {
    EXPECT_TRUE(IsDisplay640x480(9600, 7200));
    EXPECT_FALSE(IsDisplay640x480(9600, 7215));
    EXPECT_FALSE(IsDisplay640x480(640, 480));
}

}  // namespace
}  // namespace zov
