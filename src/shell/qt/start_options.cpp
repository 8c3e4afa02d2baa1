#include "shell/qt/start_options.h"

#include "core/globals.h"
#include "core/main/frmMain.h"
#include "core/product.h"
#include "data/frmAddServer.h"
#include "data/server_list.h"
#include "shell/qt/appearance.h"
#include "shell/shell.h"

#include <algorithm>
#include <iterator>

namespace zov::qt {
namespace {

const char* const Usage =
    "Usage: zovrand [--source SERVER [--source-db DB]] [--target SERVER [--target-db DB]]\n"
    "               [--palette system|light|dark]\n"
    "       zovrand [--unattended] /RunSavedComp ID\n"
    "\n"
    "  --source, --target         open the panel with this server: a stored one's name, or\n"
    "                             local:NAME for an embedded server\n"
    "  --source-db, --target-db   and with this database of it\n"
    "  --palette                  colours of the window; kept for the next start\n"
    "  /RunSavedComp              run the saved process with this number at once\n"
    "  --unattended               without a window: boxes are lines on standard error, questions\n"
    "                             are answered No, and the program ends with 0 (identical),\n"
    "                             1 (differences) or 2 (trouble)\n"
    "  --help, --version\n";

int indexOfItem(const ChoiceList& list, const QString& text, Qt::CaseSensitivity cs) {
    for (int i = 0; i < list.count(); ++i)
        if (list.itemText(i).compare(text, cs) == 0) return i;
    return -1;
}

int indexOfItem(const ChoiceList& list, const QString& text) {
    const int exact = indexOfItem(list, text, Qt::CaseSensitive);
    return exact >= 0 ? exact : indexOfItem(list, text, Qt::CaseInsensitive);
}

void openSide(int Index, const StartOptions::Side& side, frmMain& controller, Panels& panels) {
    Panel& panel = panels[Index];
    const int server = indexOfItem(panel.cmbServer, side.server);
    if (server < 0) return;
    panel.cmbServer.selectIndex(server);
    controller.cmbServer_Click(Index);
    if (globals().gblnStop || side.database.isEmpty() || panel.pvlDb.count() == 0) return;
    const int database = indexOfItem(panel.pvlDb, side.database);
    if (database < 0) {
        shell().messageBox(QStringLiteral("There is no database '%1' on the server '%2'.\r\n\r\n"
                                          "Please choose one from the list.")
                               .arg(side.database, side.server),
                           {}, BoxIcon::Exclamation);
        return;
    }
    if (database == panel.pvlDb.selectedIndex()) return;
    panel.pvlDb.selectIndex(database);
    controller.pvlDb_Click(Index);
}

}  // namespace

StartOptions parseStartOptions(const QStringList& arguments) {
    StartOptions options;
    const auto fail = [&](const QString& text) {
        options.message = text + QStringLiteral("\n\n") + QString::fromLatin1(Usage);
        options.exitStatus = 2;
        return options;
    };
    const struct {
        QString name;
        QString* value;
    } known[] = {
        {QStringLiteral("--source"), &options.sides[0].server},
        {QStringLiteral("--source-db"), &options.sides[0].database},
        {QStringLiteral("--target"), &options.sides[1].server},
        {QStringLiteral("--target-db"), &options.sides[1].database},
        {QStringLiteral("--palette"), &options.palette},
    };
    QStringList rest;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == u"--help" || argument == u"-h") {
            options.message = QString::fromLatin1(Usage);
            return options;
        }
        if (argument == u"--version") {
            options.message = QStringLiteral("%1 %2 (build %3)\n")
                                  .arg(product::Name, ProgramVersionText())
                                  .arg(ProgramBuildNumber);
            return options;
        }
        if (argument == u"--unattended") {
            options.unattended = true;
            continue;
        }
        const QString name = argument.section(u'=', 0, 0);
        const auto* option = std::find_if(std::begin(known), std::end(known),
                                          [&](const auto& each) { return each.name == name; });
        if (option == std::end(known)) {
            if (argument.startsWith(u"--"))
                return fail(QStringLiteral("There is no option %1.").arg(name));
            rest += argument;
            continue;
        }
        if (name.size() < argument.size()) {
            *option->value = argument.mid(name.size() + 1);
        } else if (i + 1 < arguments.size() && !arguments[i + 1].startsWith(u"--")) {
            *option->value = arguments[++i];
        }
        if (option->value->isEmpty()) return fail(QStringLiteral("%1 needs a value.").arg(name));
    }
    for (int Index = 0; Index < 2; ++Index) {
        const StartOptions::Side& side = options.sides[Index];
        if (side.server.isEmpty() && !side.database.isEmpty())
            return fail(
                QStringLiteral("%1-db needs %1 beside it.")
                    .arg(Index == 0 ? QStringLiteral("--source") : QStringLiteral("--target")));
    }
    bool paletteKnown = true;
    appearanceFromText(options.palette, &paletteKnown);
    if (!options.palette.isEmpty() && !paletteKnown)
        return fail(QStringLiteral("There is no palette \"%1\".").arg(options.palette));
    if (options.unattended && (options.opensPanels() || !options.palette.isEmpty()))
        return fail(QStringLiteral("--unattended goes with /RunSavedComp ID alone."));
    options.rest = rest.join(u' ');
    return options;
}

void storeEmbeddedServers(const StartOptions& options) {
    bool added = false;
    for (const StartOptions::Side& side : options.sides) {
        // The form of name that needs no login.
        const bool embedded = side.server.startsWith(u"local:", Qt::CaseInsensitive);
        if (!embedded || IsServerInList(side.server)) continue;
        ServerInfo server;
        server.Name = side.server;
        server.MRUDb = side.database.isEmpty() ? QStringLiteral("master") : side.database;
        // A slip of the pen doesn't get into the list: it is asked for like any other server.
        if (!TestServerConnection(server)) continue;
        SaveServerToRegistry(server);
        LoadServersFromRegistry();
        added = true;
    }
    if (added) SetInitialServers();
}

void openStartPanels(const StartOptions& options, frmMain& controller, Panels& panels) {
    // All additions come first: each one sets both panels back to the first stored server.
    for (const StartOptions::Side& side : options.sides) {
        if (side.server.isEmpty() || IsServerInList(side.server)) continue;
        frmAddServer screen;
        screen.txtServer = side.server;
        if (!side.database.isEmpty()) screen.txtDatabase = side.database;
        if (screen.ShowUp()) controller.refillServerBoxes();
    }
    globals().gblnStop = false;
    // Who gave up waiting for the first panel doesn't want to wait for the second.
    for (int Index = SourcePanel; Index <= TargetPanel && !globals().gblnStop; ++Index)
        if (!options.sides[Index].server.isEmpty())
            openSide(Index, options.sides[Index], controller, panels);
}

}  // namespace zov::qt
