#include "apps/unattended/unattended_shell.h"

#include "datacompare/frmCompareData.h"
#include "datacompare/frmCompareStatus.h"
#include "reports/frmExport.h"
#include "reports/frmReport.h"
#include "structcompare/frmCompareAllTables.h"

namespace zov {
namespace {

/// Shows how far a screen's run is as one line.
template <typename RunScreen>
class ProgressView : public ScreenView {
 public:
    ProgressView(ConsoleShell& console, RunScreen& screen) : console_(console), screen_(screen) {
        screen_.view = this;
    }
    ~ProgressView() override {
        screen_.view = nullptr;
        console_.clearProgress();
    }
    void focusControl(const QString&, bool) override {}
    void closeView() override {}
    void refreshFields() override { console_.showProgress(lineOf(screen_)); }

 private:
    static QString lineOf(const frmCompareStatus& run) {
        return run.lblTable1 + u' ' +
               (run.lblStatusVisible
                    ? run.lblStatus
                    : QStringLiteral("%1 %2 % ").arg(run.lblTime).arg(run.ProgressBar) +
                          run.lblCurRec);
    }
    static QString lineOf(const frmCompareAllTables& run) {
        return run.lblTime + u' ' + run.lblCurProcName;
    }
    static QString lineOf(const frmExport& run) {
        return QStringLiteral("Exporting row ") + run.lblProgress();
    }

    ConsoleShell& console_;
    RunScreen& screen_;
};

/// Plays a screen that runs by itself once it is shown; false when it is none of this kind.
template <typename RunScreen>
bool play(ConsoleShell& console, Screen& screen) {
    auto* run = dynamic_cast<RunScreen*>(&screen);
    if (!run) return false;
    const ProgressView<RunScreen> view(console, *run);
    run->Form_Activate();
    return true;
}

}  // namespace

void UnattendedShell::showModal(Screen& screen) {
    if (auto* shown = dynamic_cast<frmReport*>(&screen)) {
        report = shown->txtReport;
        resultShown = true;
        shown->Form_Activate();
        if (!shown->isClosed()) shown->cmdExit();
    } else if (auto* differences = dynamic_cast<frmCompareData*>(&screen)) {
        resultShown = true;
        differences->Form_Activate();
        if (!differences->isClosed()) differences->cmdExit_Click();
    } else if (!play<frmCompareAllTables>(*this, screen) &&
               !play<frmCompareStatus>(*this, screen) && !play<frmExport>(*this, screen)) {
        ConsoleShell::showModal(screen);
    }
}

}  // namespace zov
