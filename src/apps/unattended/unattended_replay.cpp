#include "apps/unattended/unattended_replay.h"

#include "core/globals.h"
#include "core/main/frmMain.h"
#include "core/main/main_screens.h"
#include "core/registry.h"
#include "core/settings.h"
#include "reports/frmExport.h"
#include "scripting/modNew.h"
#include "shell/console/interrupt.h"
#include "shell/memory_controls.h"

#include <QFileInfo>

namespace zov::unattended {
namespace {

struct MemoryPanel {
    MemoryChoiceList cmbServer, pvlDb, cmbOwners;
    MemoryObjectList pvlSqlObj;
    MemoryTextPane txtTXProc;
    Panel panel{cmbServer, pvlDb, pvlSqlObj, txtTXProc, cmbOwners};
};

/// A main window that nobody looks at.
class MemoryWindow : public MainWindowView {
 public:
    Panels& panels() override { return panels_; }
    std::vector<int> selectedRows(int) const override { return {}; }
    void setConnectPicture(int) override {}
    void setCompareToolTip(const QString&) override {}
    void setListToolTips(const QString&) override {}
    void setFilterText(int, const QString&) override {}
    void setFilterMark(int, bool, const QString&) override {}
    void setOwnerControlsVisible(bool) override {}
    void setStatusText(const QString&) override {}
    void focusTypeBox() override {}
    bool printPane(int, const QString&, const QString&, bool) override { return false; }
    void showHelp(int) override {}
    void showAbout() override {}
    void closeWindow() override {}

 private:
    MemoryPanel sides_[2];
    MemoryChoiceList cmbType_;
    Panels panels_{sides_[0].panel, sides_[1].panel, cmbType_, objectTexts()};
};

/// What a replay that found nothing leaves of an earlier run.
void tellOldExport(UnattendedShell& shell, const SavedProcess& process) {
    const QString& path = process.ExportFilePath;
    if (process.CompType != comparison_code::Data ||
        process.CompSubType != comparison_code::SingleTable || path.isEmpty() ||
        process.ExportType == ExportType::Ask)
        return;
    shell.showNote(QStringLiteral("Nothing differs: %1 was not written").arg(path) +
                   (QFileInfo::exists(path) ? QStringLiteral("; that file is from an earlier run.")
                                            : QStringLiteral(".")));
}

int statusOf(RunVerdict verdict) {
    switch (verdict) {
        case RunVerdict::Identical:
            return Identical;
        case RunVerdict::Different:
            return Different;
        default:
            return Trouble;
    }
}

}  // namespace

Outcome replay(UnattendedShell& shell, const std::function<void(frmMain&)>& run,
               const std::function<void(SavedProcess&)>& adjust) {
    // The process says which servers are loaded, and nobody reads tips.
    overrideSettingForThisRun(QStringLiteral("AutoConnect"), QStringLiteral("0"));
    overrideSettingForThisRun(QStringLiteral("ShowTipOfDay"), QStringLiteral("0"));
    const ScopedValue<bool> usersFolder(frmReport::tidiesCurrentFolder, false);
    globals().gblnAutoClose = globals().gblnStop = false;
    shell.report.clear();
    shell.resultShown = false;
    const int before = shell.errorCount();

    Outcome outcome;
    MemoryWindow view;
    MainScreens screens;
    frmMain window(view, screens);
    window.leavesNoTrace = true;
    window.adjustProcess = [&](SavedProcess& process) {
        if (adjust) adjust(process);
        outcome.process = process;
    };
    window.Form_Load();
    run(window);
    shell.clearProgress();

    const frmMain::ReplayResult& result = window.lastReplay();
    outcome.report = shell.report.isEmpty() ? result.report : shell.report;
    outcome.status = statusOf(result.verdict);
    if (outcome.status == Identical && shell.errorCount() == before)
        tellOldExport(shell, outcome.process);
    if (interruptRequested() && outcome.status != Trouble)
        shell.showError(QStringLiteral("Stopped."));
    if (shell.errorCount() != before) outcome.status = Trouble;
    return outcome;
}

Outcome replayOfCommandLine(UnattendedShell& shell) {
    const qint32 id = globals().glngSavedProcessId;
    if (id < 1) {
        shell.showError(
            QStringLiteral("No saved process is named.\nName one by its number: /RunSavedComp ID; "
                           "they are shown by: zovrand-cli process list."));
        return {};
    }
    Outcome outcome = replay(shell, [](frmMain& window) { window.Form_Activate(); });
    if (outcome.process.Name.isEmpty() && outcome.status == Trouble)
        shell.showNote(QStringLiteral("No comparison was run: process number %1.").arg(id));
    return outcome;
}

}  // namespace zov::unattended
