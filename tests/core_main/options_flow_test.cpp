// What is done anew after the options were saved.
#include "core/settings.h"
#include "main_window_fixture.h"
#include "options/frmOptions.h"

#include <QFile>

namespace zov {
namespace {

const QString Script =
    QStringLiteral("CREATE TABLE dbo.A (Id int)\nGO\nCREATE TABLE dbo.B (Id int)\nGO\n");

class OptionsFlow : public test::MainWindow {
 protected:
    void SetUp() override {
        MainWindow::SetUp();
        loadDatabases(Script, Script);
        connect();
    }
    /// Opens the options, lets the user change them, saves.
    void change(const std::function<void(frmOptions::Values&)>& user, bool save = true) {
        shell.onScreen = [&](Screen& screen) {
            auto& options = dynamic_cast<frmOptions&>(screen);
            user(options.values);
            if (save)
                options.cmdSave();
            else
                options.cmdCancel();
        };
        shell.takeLines();
        view.takeLines();
        window.ExecuteAction(command::Options);
        ASSERT_FALSE(shell.lines.isEmpty());
        EXPECT_EQ(shell.lines.takeFirst().toStdString(), "screen frmOptions");
    }
    void changeQuietly(const std::function<void(frmOptions::Values&)>& user) {
        change(user);
        EXPECT_EQ(told() + seen(), "");
    }
};

const char* const Reloaded = "picture 5\npicture 4\npicture 3";

TEST_F(OptionsFlow, OwnersAreShownAndLoaded) {
    changeQuietly([](auto& values) { values.chkShowOwners = true; });
    EXPECT_TRUE(view.ownersVisible);
    EXPECT_EQ(view.sides[1].cmbOwners.itemText(0).toStdString(), "All Owners");
    EXPECT_TRUE(readBooleanSetting(QStringLiteral("ShowOwners")));
    changeQuietly([](auto& values) { values.chkShowOwners = false; });
    EXPECT_FALSE(view.ownersVisible);
    ClearPanel(view.sides[0].panel);
    ClearPanel(view.sides[1].panel);
    change([](auto& values) { values.chkShowOwners = true; });
    EXPECT_EQ(seen(), Reloaded);
}

TEST_F(OptionsFlow, ANewCursorLocationLoadsThePanelsAgain) {
    change([](auto& values) { values.chkShowOwners = true; });
    chooseType(ObjectType::View);
    for (int item = 0; item < view.sides[1].cmbOwners.count(); ++item)
        if (view.sides[1].cmbOwners.itemText(item) == u"dbo")
            view.sides[1].cmbOwners.selectIndex(item);
    shell.onScreen = [](Screen& screen) {
        auto& options = dynamic_cast<frmOptions&>(screen);
        options.values.serverSide = false;
        options.cmdSave();
    };
    window.ExecuteAction(command::Options);
    EXPECT_EQ(
        told(),
        "screen frmOptions\n"
        "information: Cursor location setting was changed.\\n\\nPlease click OK and wait while "
        "the connections are refreshed.");
    EXPECT_EQ(seen(), Reloaded);
    EXPECT_EQ(globals().glngCursorLocation, adUseClient);
    // The type is kept; databases and owners are chosen anew.
    EXPECT_EQ(window.selectedType(), ObjectType::View);
    EXPECT_EQ(view.sides[1].pvlDb.text().toStdString(), "master");
    EXPECT_EQ(view.sides[1].cmbOwners.text().toStdString(), "All Owners");
}

TEST_F(OptionsFlow, ACacheSizeMattersOnTheServersSideOnly) {
    changeQuietly([](auto& values) { values.txtCacheSize = 50; });
    shell.onScreen = [](Screen& screen) {
        auto& options = dynamic_cast<frmOptions&>(screen);
        options.values.serverSide = false;
        options.values.txtCacheSize = 60;
        options.values.chkAnalyzeConstraints = true;
        options.cmdSave();
    };
    chooseType(ObjectType::View);
    window.ExecuteAction(command::Options);
    EXPECT_EQ(
        told(),
        "screen frmOptions\n"
        "information: Cursor location setting was changed.\\n\\nPlease click OK and wait while "
        "the connections are refreshed.\n"
        "information: Cache Size setting was changed.\\n\\nPlease note that this setting has "
        "meaning only when Cursor Location is set to server-side.\n"
        "information: Setting 'Treat Constraints as a separate object type' changed.\\n\\n"
        "Please click OK and wait while the display is refreshed.");
    EXPECT_EQ(
        seen(),
        QString::fromLatin1(Reloaded).append(u'\n').append(QLatin1String(Reloaded)).toStdString());
    EXPECT_EQ(view.cmbType.itemText(view.cmbType.count() - 1).toStdString(), "Constraints");
    EXPECT_EQ(window.selectedType(), ObjectType::Table);
    EXPECT_EQ(view.sides[1].pvlDb.count(), 6) << "the four of the system, too";
}

TEST_F(OptionsFlow, NothingHappensWhenNothingWasSaved) {
    change([](auto& values) { values.serverSide = false; }, false);
    EXPECT_EQ(seen(), "");
    EXPECT_EQ(globals().glngCursorLocation, adUseServer);
}

TEST_F(OptionsFlow, SettingsThatCannotBeStoredAreTold) {
    // A folder in the place of the store's file can't be written, whoever the user is.
    QFile::remove(home.registryPath());
    ASSERT_TRUE(QDir().mkpath(home.registryPath()));
    for (int times = 0; times < 2; ++times) {
        shell.onScreen = [&](Screen& screen) {
            auto& options = dynamic_cast<frmOptions&>(screen);
            options.values.txtTimeout = 40 + times;
            options.cmdSave();
        };
        window.ExecuteAction(command::Options);
        const QStringList said = shell.takeLines();
        ASSERT_EQ(said.size(), 2) << said.join(u'\n').toStdString();
        EXPECT_TRUE(said[1].startsWith(QStringLiteral("exclamation [Settings Not Stored]: ")));
        EXPECT_EQ(globals().glngTimeout, 40 + times);
    }
}

}  // namespace
}  // namespace zov
