// zovrand-cli server add | list | remove
#include "apps/cli/cli_support.h"
#include "core/globals.h"
#include "core/registry.h"
#include "data/server_list.h"
#include "shell/console/console_shell.h"
#include "shell/console/interrupt.h"
#include "shell/console/visible_text.h"
#include "util/text.h"

namespace zov::cli {
namespace {

/// A write that was lost is no success.
void throwIfNotSaved() {
    const QString failure = takeSettingsFailure();
    if (failure.isEmpty()) return;
    throw Failure(failure +
                  QStringLiteral("\nThe list of servers is as it was. ZOVRAND_HOME can name "
                                 "another folder to keep it in."));
}

[[noreturn]] void throwNotSaved(const ServerInfo& server, ServerSaved saved) {
    QString text = serverNotSavedText(saved);
    if (saved == ServerSaved::AlreadyThere)
        text += QStringLiteral(
                    "\nTo store it with another login, first: zovrand-cli server remove \"%1\".")
                    .arg(server.Name);
    throw Failure(text);
}

}  // namespace

int runServerAdd(const Options& options, ConsoleShell& console) {
    ServerInfo server;
    server.Name = Trim(options.name);
    if (server.Name.isEmpty()) throw Failure(QStringLiteral("Please enter server name."));
    server.MRUDb = Trim(options.server.database);
    if (server.MRUDb.isEmpty()) server.MRUDb = QStringLiteral("master");
    if (IsServerInList(server.Name)) throwNotSaved(server, ServerSaved::AlreadyThere);
    server.LoginName = Trim(options.sqlLogin);
    server.SQLAuth = !server.LoginName.isEmpty();
    if (server.SQLAuth) server.Password = passwordFor(options, server.LoginName);
    if (!options.skipCheck && !TestServerConnection(server)) {
        // The test tells only yes or no; the connection itself says why.
        reachServer(server, QString(), SourcePanel);
        throw Failure(QStringLiteral("Cannot connect to the server."));
    }
    if (interruptRequested()) throw Failure(QStringLiteral("Stopped: nothing was stored."));
    takeSettingsFailure();
    const ServerSaved saved = SaveServerToRegistry(server);
    throwIfNotSaved();
    if (saved != ServerSaved::Yes) throwNotSaved(server, saved);
    LoadServersFromRegistry();
    console.showNote(QStringLiteral("Added %1.").arg(server.Name));
    return Identical;
}

int runServerList() {
    for (const ServerInfo& server : globals().gtServers) {
        const QString login = server.SQLAuth ? server.LoginName : QStringLiteral("(Windows)");
        writeOut(visibleText(server.Name) + u'\t' + visibleText(login) + u'\t' +
                 visibleText(server.MRUDb) + u'\n');
    }
    flushOut();
    return Identical;
}

int runServerRemove(const Options& options) {
    takeSettingsFailure();
    if (RemoveServer(options.name)) return Identical;
    throwIfNotSaved();
    throw Failure(QStringLiteral("There is no stored server \"%1\".\n"
                                 "The list is shown by: zovrand-cli server list.")
                      .arg(options.name));
}

}  // namespace zov::cli
