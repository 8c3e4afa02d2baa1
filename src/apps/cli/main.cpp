// zovrand-cli: the comparison unattended, for scripts and CI. Reads the command
// line, starts up as the desktop does, runs one command.
#include "apps/cli/cli_options.h"
#include "apps/cli/cli_support.h"
#include "apps/memory/memory_reserve.h"
#include "apps/unattended/unattended_shell.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "core/mdlMain.h"
#include "core/registry.h"
#include "core/settings.h"
#include "data/odbc/driver_crash.h"
#include "data/server_list.h"
#include "shell/console/hidden_typing.h"
#include "shell/console/interrupt.h"
#include "shell/console/terminal.h"

#include <QCoreApplication>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

namespace zov::cli {
namespace {

/// The status, and a line when the run was to be kept and wasn't.
int toldUnlessKept(int status, const Options& options, ConsoleShell& console) {
    if (status == Trouble && !options.save.isNull())
        console.showNote(
            QStringLiteral("Nothing was saved: a run is kept when it reached its end "
                           "without trouble."));
    return status;
}

int run(const Options& options, UnattendedShell& console) {
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
        case Command::References:
            return runReferences(options, console);
        case Command::Create:
            return runCreate(options, console);
        case Command::UpdateScript:
            return runUpdateScript(options, console);
        case Command::Compare:
            return toldUnlessKept(runCompare(options, console), options, console);
        case Command::Data:
            return toldUnlessKept(runData(options, console), options, console);
        case Command::Analyze:
            return runAnalyze(options, console);
        case Command::Info:
            return runInfo(options, console);
        case Command::Attach:
            return runAttach(options, console);
        case Command::Snapshot:
            return runSnapshot(options, console);
        case Command::ProcessList:
            return runProcessList();
        case Command::ProcessShow:
            return runProcessShow(options);
        case Command::ProcessDelete:
            return runProcessDelete(options);
        case Command::Run:
            return runReplay(options, console);
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

/// Settings say what counts as a difference, and which servers there are: without them no result is
/// worth anything.
void throwIfSettingsUnread() {
    const QString failure = settingsReadFailure();
    if (failure.isEmpty()) return;
    throw Failure(failure +
                  QStringLiteral("\nThe stored settings are needed to go on. Make the file "
                                 "readable, or name another folder in ZOVRAND_HOME."));
}

bool onlyReads(Command command) {
    switch (command) {
        case Command::ServerAdd:
        case Command::ServerRemove:
        case Command::Load:
        case Command::Attach:
            return false;
        default:
            return true;
    }
}

int startAndRun(const Options& options, UnattendedShell& console) {
    overrideSettings(options.settings);
    RunStartUp(QString(), LoadServersFromRegistry);
    if (const QString damage = damagedSettingsNote(); !damage.isEmpty()) console.showNote(damage);
    throwIfSettingsUnread();
    // Noting the version and the program's folder may fail in a home that can't be written; that
    // matters only to the commands that save something.
    takeSettingsFailure();
    const int status = run(options, console);
    throwIfSettingsUnread();
    // A load has told what stands and what doesn't; all others have no result when they were
    // stopped.
    if (interruptRequested() && onlyReads(options.command))
        throw Failure(QStringLiteral("Stopped."));
    return status;
}

/// What nobody caught, most likely since there was no memory to catch it with.
[[noreturn]] void endUncaught() {
    const char* words = "zovrand-cli: The program failed inside and can't go on.\n";
    try {
        if (const std::exception_ptr failure = std::current_exception())
            std::rethrow_exception(failure);
    } catch (const std::bad_alloc&) {
        words = "zovrand-cli: Out of memory. Close other programs and try again.\n";
    } catch (...) {
    }
    restoreTerminal();
    std::fputs(words, stderr);
    std::_Exit(Trouble);
}

// Before the program's own globals are made, which take memory as well.
[[gnu::constructor(101)]] void beReadyForWantOfMemory() {
    std::set_terminate(endUncaught);
}

/// How long a run that was interrupted may take to end by itself.
constexpr auto PatienceWhenStopped = std::chrono::milliseconds(700);
/// A load first undoes what it did, however long that takes.
constexpr auto PatienceOfALoad = std::chrono::hours(24);

}  // namespace
}  // namespace zov::cli

int main(int argc, char** argv) {
    using namespace zov;
    holdMemoryBack();
    beforeMemoryEnds(restoreTerminal);
    QCoreApplication application(argc, argv);
    int status = cli::Trouble;
    const std::optional<cli::Options> options = cli::parseCommandLine(argc, argv, status);
    if (!options) return status;
    UnattendedShell console(QStringLiteral("zovrand-cli"));
    console.onInterrupt = [] { globals().gblnStop = true; };
    installShell(&console);
    catchInterrupts();
    odbc::tellDriverCrashes("zovrand-cli", cli::Trouble);
    try {
        const InterruptWatch watch(options->command == cli::Command::Load
                                       ? cli::PatienceOfALoad
                                       : cli::PatienceWhenStopped,
                                   "zovrand-cli: Stopped.\n");
        status = cli::startAndRun(*options, console);
    } catch (const cli::Failure& failure) {
        console.showError(failure.text);
        status = cli::Trouble;
    } catch (const std::bad_alloc&) {
        console.showError(QStringLiteral(
            "Out of memory.\nCompare or read less at once, or let rows be streamed with --set "
            "CursorConnectionUseServer=1."));
        status = cli::Trouble;
    } catch (...) {
        console.showError(caughtError().description);
        status = cli::Trouble;
    }
    installShell(nullptr);
    return status;
}
