// zovrand-cli snapshot
#include "apps/cli/cli_support.h"
#include "core/globals.h"
#include "data/snapshots.h"
#include "shell/console/console_shell.h"

namespace zov::cli {

int runSnapshot(const Options& options, ConsoleShell& console) {
    ServerInfo server = chooseServer(options, options.server);
    const QString database = chooseDatabase(options.server, server, "-d");
    if (isSnapshot(server))
        throw Failure(QStringLiteral("%1 is a snapshot already; copy the file.").arg(server.Name));
    reachServer(server, database, SourcePanel);
    const SnapshotMade made =
        SaveSnapshot(server, database, options.snapshotFile,
                     [&](const QString& doing) { console.showProgress(doing); });
    console.clearProgress();
    if (!made.trouble.isEmpty()) throw Failure(made.trouble);
    if (!made.note.isEmpty()) console.showNote(made.note);
    return Identical;
}

}  // namespace zov::cli
