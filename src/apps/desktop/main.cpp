// The desktop program, and its run without a window.
#include "apps/memory/memory_reserve.h"
#include "apps/unattended/unattended_replay.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "core/mdlMain.h"
#include "core/product.h"
#include "core/registry.h"
#include "data/odbc/driver_crash.h"
#include "data/server_list.h"
#include "shell/console/interrupt.h"
#include "shell/qt/appearance.h"
#include "shell/qt/desktop_screens.h"
#include "shell/qt/main_window.h"
#include "shell/qt/pane_printer.h"
#include "shell/qt/qt_shell.h"
#include "shell/qt/start_options.h"

#include <QApplication>
#include <QDir>
#include <QLoggingCategory>

#include <cstdio>
#include <cstdlib>

namespace {

/// Prints on the default printer, at once.
class SilentPrinter : public zov::ReportPrinter {
 public:
    SilentPrinter() { zov::installReportPrinter(this); }
    ~SilentPrinter() override { zov::installReportPrinter(nullptr); }
    bool printReport(const QString& documentName, const QString& text, bool) override {
        return zov::qt::printText(text, documentName, true, nullptr);
    }
};

/// The saved process of the command line, with nobody there; its exit status.
int runUnattended(const QString& commandLine) {
    zov::UnattendedShell shell(QStringLiteral("zovrand"));
    shell.onInterrupt = [] { zov::globals().gblnStop = true; };
    zov::installShell(&shell);
    zov::catchInterrupts();
    int status = zov::unattended::Trouble;
    try {
        zov::RunStartUp(commandLine, [] { zov::LoadServersFromRegistry(); });
        zov::takeSettingsFailure();
        const SilentPrinter printer;
        status = zov::unattended::replayOfCommandLine(shell).status;
    } catch (...) {
        shell.showError(zov::caughtError().description);
        status = zov::unattended::Trouble;
    }
    zov::installShell(nullptr);
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    zov::holdMemoryBack();
    // Help and mistakes are told before a display is needed.
    QStringList given;
    for (int i = 1; i < argc; ++i) given += QString::fromLocal8Bit(argv[i]);
    const bool platformGiven = given.join(u' ').contains(u"-platform");
    const zov::qt::StartOptions early = zov::qt::parseStartOptions(given);
    if (!early.message.isEmpty() && !platformGiven) {
        std::fputs(early.message.toLocal8Bit().constData(), early.exitStatus ? stderr : stdout);
        return early.exitStatus;
    }
    // Nothing is shown; printing and its fonts work all the same.
    if (early.unattended && !platformGiven) qputenv("QT_QPA_PLATFORM", "offscreen");
    // What stands on standard error is the replay's: no word of a toolkit on a missing desktop.
    if (early.unattended) QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));

    QApplication application(argc, argv);
    QApplication::setApplicationName(zov::product::Name);
    QApplication::setApplicationVersion(zov::ProgramVersionText());
    QApplication::setDesktopFileName(QStringLiteral("zovrand"));
    zov::qt::initDesktopResources();

    const zov::qt::StartOptions options =
        zov::qt::parseStartOptions(QApplication::arguments().mid(1));
    if (!options.message.isEmpty()) {
        std::fputs(options.message.toLocal8Bit().constData(), options.exitStatus ? stderr : stdout);
        return options.exitStatus;
    }

    zov::odbc::tellDriverCrashes("zovrand", 2);
    if (options.unattended) return runUnattended(options.rest);

    zov::qt::QtShell shell;
    zov::installShell(&shell);
    zov::RunStartUp(options.rest, [] { zov::LoadServersFromRegistry(); });
    // Leftovers of reports are looked for in the current folder: the program's own, not the user's.
    QDir::setCurrent(zov::globals().gstrAppPath);
    if (!options.palette.isEmpty())
        zov::qt::storeAppearance(zov::qt::appearanceFromText(options.palette));
    zov::qt::applyAppearance(zov::qt::storedAppearance());
    zov::qt::storeEmbeddedServers(options);

    int status = 0;
    {
        zov::qt::DesktopScreens screens;
        zov::qt::MainWindow window(screens);
        screens.setWindow(&window);
        zov::installReportPrinter(&screens);
        shell.setMainWindow(&window);
        window.openAtStart(options);
        window.show();
        status = QApplication::exec();
        zov::installReportPrinter(nullptr);
    }
    zov::installShell(nullptr);
    // A connection that was given up may still wait for its server in a thread of its own.
    if (shell.hasAbandonedWork()) std::_Exit(status);
    return status;
}
