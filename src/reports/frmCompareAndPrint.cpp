#include "reports/frmCompareAndPrint.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "shell/shell.h"
#include "util/text.h"

namespace zov {
namespace {

// By schema and name; where there is none of that schema, the first of that name.
int rowOfNamesake(const ObjectList& list, const ObjectListRow& wanted) {
    int found = -1;
    for (int row = 0; row < list.rowCount(); ++row) {
        const ObjectListRow& other = list.row(row);
        if (other.bareName() != wanted.bareName()) continue;
        if (other.schema == wanted.schema) return row;
        if (found < 0) found = row;
    }
    return found;
}

}  // namespace

void frmCompareAndPrint::ShowUp(CompareAndPrintWindow& window) {
    window_ = &window;
    reopen();
    shell().showModal(*this);
}

void frmCompareAndPrint::Form_Activate() {
    if (activated_) return;
    activated_ = true;
    const WaitPointer wait;
    globals().gblnStop = false;
    elapsed_.start();
    running_ = tmrStatusEnabled = true;
    tmrStatus_Timer();
    guardedRun("frmCompareAndPrint", "CompareAndPrint", [this] { CompareAndPrint(); });
    running_ = tmrStatusEnabled = false;
    close();
}

void frmCompareAndPrint::CompareAndPrint() {
    const ObjectList& source = window_->objects(SourcePanel);
    const ObjectList& target = window_->objects(TargetPanel);
    for (int row = 0; row < source.rowCount(); ++row) {
        lblCurProcName = source.row(row).name;
        tmrStatus_Timer();
        shell().pumpEvents();
        if (globals().gblnStop) return;
        const int partner = rowOfNamesake(target, source.row(row));
        if (partner < 0) continue;
        window_->showObject(SourcePanel, row);
        window_->showObject(TargetPanel, partner);
        // Without a printer the next table would fail in the same way.
        if (!window_->compareAndPrintPair()) return;
    }
}

void frmCompareAndPrint::tmrStatus_Timer() {
    lblTime = formatElapsed(elapsed_.elapsed());
    refresh();
}

void frmCompareAndPrint::cmdCancel_Click() {
    if (running_)
        globals().gblnStop = true;
    else
        close();
}

}  // namespace zov
