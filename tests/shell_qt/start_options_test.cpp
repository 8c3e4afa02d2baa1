// The desktop's command line.
#include "shell/qt/start_options.h"

#include "core/CCommandArgs.h"
#include "data/script_loading.h"
#include "data/server_list.h"
#include "shell/qt/appearance.h"
#include "shell_qt/desktop.h"

#include <QDialog>
#include <QLineEdit>

#include <gtest/gtest.h>

namespace zov {
namespace {

using qt::parseStartOptions;
using qt::StartOptions;
using test::Desktop;

QStringList words(const char* line) {
    return QString::fromLatin1(line).split(u' ', Qt::SkipEmptyParts);
}

TEST(StartOptions, NamesServersAndDatabases) {
    const struct {
        const char* line;
        const char* read;  ///< source|db|target|db|palette|rest
    } rows[] = {
        {"", "|||||"},
        {"--source a --source-db b --target c --target-db d", "a|b|c|d||"},
        {"--source=local:x --target=h,1433", "local:x||h,1433|||"},
        {"--palette dark", "||||dark|"},
        {"/RunSavedComp 12", "|||||/RunSavedComp 12"},
        {"/RunSavedComp 12 --source a", "a|||||/RunSavedComp 12"},
        {"--unattended /RunSavedComp 12", "|||||/RunSavedComp 12"},
        // A path in a server's name is no switch of the saved processes.
        {"--source local:/tmp/RunSavedComp /RunSavedComp 3",
         "local:/tmp/RunSavedComp|||||/RunSavedComp 3"},
    };
    for (const auto& row : rows) {
        const StartOptions options = parseStartOptions(words(row.line));
        EXPECT_EQ(options.message, QString()) << row.line;
        EXPECT_EQ(options.unattended, QByteArray(row.line).contains("--unattended"));
        EXPECT_EQ(QStringList({options.sides[0].server, options.sides[0].database,
                               options.sides[1].server, options.sides[1].database, options.palette,
                               options.rest})
                      .join(u'|')
                      .toStdString(),
                  row.read);
    }
}

TEST(StartOptions, MistakesAreToldWithTheUsage) {
    const struct {
        const char* line;
        const char* first;
        int status;
    } rows[] = {
        {"--sorce a", "There is no option --sorce.", 2},
        {"--source", "--source needs a value.", 2},
        {"--source --target b", "--source needs a value.", 2},
        {"--target=", "--target needs a value.", 2},
        {"--source-db b", "--source-db needs --source beside it.", 2},
        {"--target-db b --source a", "--target-db needs --target beside it.", 2},
        {"--palette pink", "There is no palette \"pink\".", 2},
        {"--unattended /RunSavedComp 1 --source a",
         "--unattended goes with /RunSavedComp ID alone.", 2},
        {"--help", "Usage: zovrand [--source SERVER [--source-db DB]]", 0},
        {"--source a -h", "Usage: zovrand [--source SERVER [--source-db DB]]", 0},
        {"--version", "Zovrand 1.1 (build 187)", 0},
    };
    for (const auto& row : rows) {
        const StartOptions options = parseStartOptions(words(row.line));
        const QString first = options.message.section(u'\n', 0, 0);
        EXPECT_TRUE(first.startsWith(QLatin1String(row.first)))
            << row.line << ": " << first.toStdString();
        EXPECT_EQ(options.exitStatus, row.status) << row.line;
    }
}

TEST(StartOptions, EmbeddedServersAreStoredOnce) {
    Desktop desktop;
    const StartOptions options =
        parseStartOptions(words("--source local:fresh --target LOCAL:FRESH --source-db some"));
    qt::storeEmbeddedServers(options);
    EXPECT_EQ(GetServerCount(), 1) << "there is no such server yet";
    ServerInfo fresh;
    fresh.Name = QStringLiteral("local:fresh");
    LoadScripts(fresh, QStringLiteral("some"),
                {desktop.home.write(QStringLiteral("fresh.sql"), "CREATE TABLE T (a int)\n")});
    qt::storeEmbeddedServers(options);
    qt::storeEmbeddedServers(options);
    qt::storeEmbeddedServers(parseStartOptions(words("--source host,1433")));
    QStringList names;
    for (const ServerInfo& server : globals().gtServers) names += server.Name;
    EXPECT_EQ(names.join(u' '), QStringLiteral("local:shop local:fresh"));
    EXPECT_EQ(globals().gtServers.back().MRUDb, QStringLiteral("some"));
}

TEST(StartOptions, ADatabaseThatIsNotThereIsToldAndThePanelStaysOpen) {
    Desktop desktop;
    desktop.show();
    StartOptions options;
    options.sides[1] = {QStringLiteral("local:shop"), QStringLiteral("gone")};
    qt::openStartPanels(options, desktop.controller(), desktop.window().panels());
    EXPECT_EQ(
        desktop.user.takeSeen().value(0),
        QStringLiteral("There is no database 'gone' on the server 'local:shop'.||Please choose "
                       "one from the list."));
    EXPECT_GT(desktop.controller().objects(TargetPanel).rowCount(), 0);
}

TEST(StartOptions, AServerThatIsNotStoredIsAskedFor) {
    Desktop desktop;
    desktop.show();
    StartOptions options;
    options.sides[0] = {QStringLiteral("db.example"), QStringLiteral("Sales")};
    desktop.user.plan([](QWidget* screen) {
        EXPECT_EQ(screen->objectName(), QStringLiteral("frmAddServer"));
        EXPECT_EQ(screen->findChild<QLineEdit*>(QStringLiteral("txtServer"))->text(),
                  QStringLiteral("db.example"));
        EXPECT_EQ(screen->findChild<QLineEdit*>(QStringLiteral("txtDatabase"))->text(),
                  QStringLiteral("Sales"));
        static_cast<QDialog*>(screen)->reject();
    });
    qt::openStartPanels(options, desktop.controller(), desktop.window().panels());
    EXPECT_TRUE(desktop.user.isDone());
    EXPECT_EQ(desktop.controller().database(SourcePanel), QStringLiteral("before"))
        << "cancelled: the panel stays as it was";
}

TEST(StartOptions, ThePaletteIsKeptForTheNextStart) {
    Desktop desktop;
    EXPECT_EQ(qt::storedAppearance(), qt::Appearance::System);
    for (const qt::Appearance appearance :
         {qt::Appearance::Dark, qt::Appearance::Light, qt::Appearance::System}) {
        qt::storeAppearance(appearance);
        EXPECT_EQ(qt::storedAppearance(), appearance);
    }
}

}  // namespace
}  // namespace zov
