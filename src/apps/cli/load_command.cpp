// zovrand-cli load
#include "apps/cli/cli_support.h"
#include "data/script_loading.h"
#include "shell/console/console_shell.h"
#include "shell/console/interrupt.h"

namespace zov::cli {

int runLoad(const Options& options, ConsoleShell& console) {
    const ServerInfo server = chooseServer(options, options.server);
    const QString database = chooseDatabase(options.server, server, "-d");
    LoadOptions load;
    load.keepGoing = options.keepGoing;
    load.replace = options.replace;
    load.stopRequested = interruptRequested;
    bool batchesBegun = false;
    load.progress = [&](const QString& file, int batch, int batches) {
        batchesBegun = true;
        console.showProgress(QStringLiteral("%1: %2 of %3").arg(file).arg(batch).arg(batches));
    };
    load.message = [&](const ServerMessage& message) { console.showNote(message.text); };

    LoadOutcome outcome;
    try {
        outcome = LoadScripts(server, database, options.files, load);
    } catch (const DbError& error) {
        throw Failure(explainDbError(error, server, database, batchesBegun));
    }
    console.clearProgress();
    for (const LoadProblem& problem : outcome.problems) console.showError(problem.toString());
    if (outcome.kept) {
        if (!outcome.problems.empty()) {
            console.showNote(
                QStringLiteral("%1 of the scripts' batches could not be run; the others are "
                               "loaded.")
                    .arg(outcome.problems.size()));
        }
        return Identical;
    }
    if (outcome.stopped) console.showError(QStringLiteral("Stopped."));
    // A file that can't be read is no matter of its statements.
    const bool mendable =
        !outcome.stopped && !outcome.problems.empty() && outcome.problems.front().line > 0;
    console.showNote(
        outcome.undone
            ? QStringLiteral("Nothing was loaded: %1 is as it was before.").arg(database) +
                  (mendable
                       ? QStringLiteral(" Mend the script, or go on behind such statements with "
                                        "--keep-going.")
                       : QString())
            : QStringLiteral("The batches before it have been run in %1 and stay done.")
                  .arg(database));
    return Trouble;
}

}  // namespace zov::cli
