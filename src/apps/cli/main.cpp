// zovrand-cli: the comparison unattended, for scripts and CI. Reads the command
// line, starts up as the desktop does, runs one command.
#include "apps/cli/cli_options.h"
#include "apps/cli/cli_support.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "core/mdlMain.h"
#include "core/registry.h"
#include "core/settings.h"
#include "data/server_list.h"
#include "shell/console/console_shell.h"
#include "shell/console/interrupt.h"
#include "util/paths.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace zov::cli {
namespace {

int run(const Options& options, ConsoleShell& console) {
    switch (options.command) {
        case Command::ServerAdd:
            return runServerAdd(options, console);
        case Command::ServerList:
            return runServerList();
        case Command::ServerRemove:
            return runServerRemove(options);
        case Command::Load:
            return runLoad(options, console);
        case Command::Query:
            return runQuery(options, console);
        case Command::List:
            return runList(options, console);
        case Command::Text:
            return runText(options, console);
        case Command::Compare:
            return runCompare(options, console);
        case Command::Data:
            return runData(options, console);
    }
    return Trouble;
}

void overrideSettings(const QStringList& settings) {
    for (const QString& setting : settings) {
        const qsizetype equals = setting.indexOf(u'=');
        if (equals < 1) {
            throw Failure(QStringLiteral("--set takes KEY=VALUE, not \"%1\".\nAs in: --set "
                                         "IgnoreComments=0.")
                              .arg(setting));
        }
        const QString trouble =
            overrideSettingForThisRun(setting.left(equals), setting.mid(equals + 1));
        if (!trouble.isEmpty()) throw Failure(trouble);
    }
}

int startAndRun(const Options& options, ConsoleShell& console) {
    overrideSettings(options.settings);
    RunStartUp(QString(), LoadServersFromRegistry);
    // Noting the version and the program's folder may fail in a home that can't be written; that
    // matters only to the commands that save something.
    takeSettingsFailure();
    if (const int broken = brokenSettingsLines(); broken > 0) {
        console.showNote(
            QStringLiteral("%1 holds %2 that can't be read; the others are used, and "
                           "nothing is lost when settings are saved.")
                .arg(settingsFilePath(), broken == 1 ? QStringLiteral("a line")
                                                     : QStringLiteral("%1 lines").arg(broken)));
    }
    return run(options, console);
}

// Memory that runs out where nothing can be caught ends the program as trouble does. Nothing more
// is asked of it here: what was begun is undone by the next start.
[[noreturn]] void endForWantOfMemory() {
    static const char text[] = "zovrand-cli: Out of memory. Close other programs and try again.\n";
    std::fwrite(text, 1, sizeof text - 1, stderr);
    std::_Exit(Trouble);
}

// Before the program's own globals are made, which take memory as well.
[[gnu::constructor(101)]] void beReadyForWantOfMemory() {
    std::set_terminate(endForWantOfMemory);
}

}  // namespace
}  // namespace zov::cli

int main(int argc, char** argv) {
    using namespace zov;
    QCoreApplication application(argc, argv);
    int status = cli::Trouble;
    const std::optional<cli::Options> options = cli::parseCommandLine(argc, argv, status);
    if (!options) return status;
    ConsoleShell console(QStringLiteral("zovrand-cli"));
    console.onInterrupt = [] { globals().gblnStop = true; };
    installShell(&console);
    catchInterrupts();
    try {
        status = cli::startAndRun(*options, console);
    } catch (const cli::Failure& failure) {
        console.showError(failure.text);
        status = cli::Trouble;
    } catch (...) {
        console.showError(caughtError().description);
        status = cli::Trouble;
    }
    installShell(nullptr);
    return status;
}
