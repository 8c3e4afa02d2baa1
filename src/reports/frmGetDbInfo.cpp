#include "reports/frmGetDbInfo.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "shell/shell.h"
#include "util/text.h"

namespace zov {

bool frmGetDbInfo::ShowUp(const QString& DbName, int Index) {
    dbName_ = DbName;
    index_ = Index;
    lblInfo = QStringLiteral("Database: ") + DbName;
    lblComparing = lblCurName = lblTime = txtTXProc = QString();
    activated_ = running_ = cancelled_ = done_ = cmdOKEnabled = false;
    reopen();
    shell().showModal(*this);
    return done_;
}

void frmGetDbInfo::Form_Activate() {
    if (activated_) return;
    activated_ = running_ = true;
    try {
        const ScopedValue<bool> ownStop(globals().gblnStop, false);
        const WaitPointer wait;
        GetDbInfo();
    } catch (...) {
        const CaughtError error = caughtError();
        shell().messageBox(
            QStringLiteral("Error in Sub GetDbInfo, error nr %1 (").arg(error.number) +
            error.description + QStringLiteral(")."));
    }
    running_ = false;
    close();
}

void frmGetDbInfo::tick() {
    lblTime = formatElapsed(elapsed_.elapsed());
    refresh();
    shell().pumpEvents();
}

void frmGetDbInfo::GetDbInfo() {
    elapsed_.start();
    DatabaseInfoProgress progress;
    progress.showStage = [this](const QString& text) {
        lblComparing = text;
        lblCurName.clear();
        tick();
    };
    progress.showName = [this](const QString& name) {
        lblCurName = name;
        tick();
    };
    progress.cancelled = [this] { return cancelled_ || globals().gblnStop; };
    const DatabaseInfo info =
        GetDatabaseInfo(globals().gtCurrentServers[index_], dbName_, index_, progress);
    if (info.stopped) return;
    txtTXProc = info.text;
    lblComparing = formatElapsed(elapsed_.elapsed()) + QStringLiteral(" Finished");
    done_ = true;
    refresh();
}

void frmGetDbInfo::cmdCancel_Click() {
    if (running_)
        cancelled_ = true;
    else
        close();
}

}  // namespace zov
