// zovrand-cli load
#include "apps/cli/cli_support.h"
#include "data/script_loading.h"
#include "shell/console/console_shell.h"
#include "shell/console/interrupt.h"

#include <cstdio>
#include <new>

namespace zov::cli {
namespace {

void noteWhatWasLoaded(const LoadOutcome& outcome, ConsoleShell& console) {
    for (const QString& note : outcome.notes) console.showNote(note);
    if (!outcome.problems.empty())
        console.showNote(
            QStringLiteral("%1 of the scripts' statements could not be run; the others "
                           "are loaded.")
                .arg(outcome.problems.size()));
    if (outcome.leftOut > 0)
        console.showNote(
            QStringLiteral("%1 of the scripts' batches were left out behind a USE that "
                           "failed.")
                .arg(outcome.leftOut));
    QStringList others;
    bool own = false;
    for (const QString& name : outcome.changedDatabases) {
        if (name.compare(outcome.database, Qt::CaseInsensitive) == 0)
            own = true;
        else
            others.push_back(name);
    }
    if (others.isEmpty()) return;
    others.sort(Qt::CaseInsensitive);
    const QString names = others.join(QStringLiteral(", "));
    console.showNote(
        own ? QStringLiteral("Some of the scripts' statements went to %1, not to %2.")
                  .arg(names, outcome.database)
            : QStringLiteral("The scripts' statements went to %1; nothing was loaded into "
                             "%2.")
                  .arg(names, outcome.database));
}

/// The databases hold what was loaded: want of memory for the words doesn't change that.
void tellWhatIsKept(const LoadOutcome& outcome, ConsoleShell& console) {
    try {
        console.clearProgress();
        for (const LoadProblem& problem : outcome.problems) console.showError(problem.toString());
        noteWhatWasLoaded(outcome, console);
    } catch (const std::bad_alloc&) {
        std::fputs("zovrand-cli: Loaded; there is no memory left to tell more.\n", stderr);
    }
}

/// Throws Failure for one that isn't NAME=VALUE.
ScriptVariables variablesOf(const QStringList& given, const QString& option) {
    ScriptVariables variables;
    for (const QString& one : given) {
        const qsizetype sign = one.indexOf(u'=');
        if (sign < 1)
            throw Failure(QStringLiteral("%1 takes NAME=VALUE, not \"%2\".").arg(option, one));
        variables.emplace_back(one.left(sign), one.mid(sign + 1));
    }
    return variables;
}

}  // namespace

int runLoad(const Options& options, ConsoleShell& console) {
    const ServerInfo server = chooseServer(options, options.server);
    LoadOptions load;
    load.otherwise = server.MRUDb;
    load.keepGoing = options.keepGoing;
    load.replace = options.replace;
    load.sqlcmd = options.sqlcmd;
    load.variables = variablesOf(options.variables, QStringLiteral("-v"));
    load.defined = variablesOf(options.defined, QStringLiteral("--define"));
    load.stopRequested = interruptRequested;
    bool batchesBegun = false;
    load.progress = [&](const QString& file, int batch, int batches) {
        batchesBegun = true;
        console.showProgress(QStringLiteral("%1: %2 of %3").arg(file).arg(batch).arg(batches));
    };
    load.message = [&](const ServerMessage& message) { console.showNote(message.text); };

    LoadOutcome outcome;
    try {
        outcome = LoadScripts(server, options.server.database, options.files, load);
    } catch (const DbError& error) {
        throw Failure(explainDbError(error, server, options.server.database, batchesBegun));
    }
    if (outcome.kept) {
        tellWhatIsKept(outcome, console);
        return Identical;
    }
    const QString& database = outcome.database;
    console.clearProgress();
    for (const LoadProblem& problem : outcome.problems) console.showError(problem.toString());
    for (const QString& note : outcome.notes) console.showNote(note);
    if (outcome.unnamed)
        throw Failure(
            QStringLiteral("No database is given, and the scripts don't make and use exactly "
                           "one.\nName one with -d DB."));
    if (outcome.stopped) console.showError(QStringLiteral("Stopped."));
    if (!outcome.begun) {
        console.showNote(QStringLiteral("Nothing was loaded."));
        return Trouble;
    }
    const bool mendable = !outcome.stopped && !outcome.problems.empty();
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
