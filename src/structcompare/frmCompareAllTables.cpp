#include "structcompare/frmCompareAllTables.h"

#include "core/globals.h"
#include "shell/shell.h"
#include "structcompare/enc_obj_types.h"
#include "structcompare/modCompareAll.h"

#include <algorithm>

namespace zov {

bool frmCompareAllTables::ShowUp(const Request& request) {
    request_ = request;
    Caption = request.Caption;
    visibleBoxes = request.offeredBoxes < 0 ? comparedKindCount() : request.offeredBoxes;
    for (int box = 0; box < visibleBoxes; ++box)
        chkObjType[size_t(box)] = ObjectTypeOfBox(box) == request.Type;
    ApplyObjTypeChecks(chkObjType, request.EncObjTypes);
    shell().showModal(*this);
    return success_;
}

void frmCompareAllTables::Form_Activate() {
    if (activated_) return;
    activated_ = true;
    if (request_.startAtOnce) cmdCompare_Click();
}

void frmCompareAllTables::cmdCompare_Click() {
    if (running_) return;
    const auto end = chkObjType.begin() + visibleBoxes;
    if (std::find(chkObjType.begin(), end, true) == end) {
        shell().messageBox(
            QStringLiteral("Please select at least one object type to be compared."));
        return;
    }
    WaitPointer wait;
    running_ = true;
    cmdCompareEnabled = false;
    refresh();
    success_ = request_.run(*this);
    running_ = false;
    close();
}

void frmCompareAllTables::cmdCancel_Click() {
    if (running_)
        globals().gblnStop = true;
    else
        close();
}

void frmCompareAllTables::tmrStatus_Timer() {
    if (comparing_ < 0) return;
    QString& text = lblComparing[size_t(comparing_)];
    if (!text.endsWith(u'.')) return;
    while (text.endsWith(u'.')) text.chop(1);
    dots_ = dots_ % 3 + 1;
    text += QString(dots_, u'.');
    refresh();
}

void frmCompareAllTables::showRunning() {
    lblInfoVisible = false;
    fraContainerVisible = true;
    lblCurProcName.clear();
    lblCurProcNameVisible = true;
    refresh();
}

void frmCompareAllTables::setComparing(int index, const QString& text) {
    lblComparing[size_t(index)] = text;
    comparing_ = index;
    dots_ = 3;
    refresh();
}

void frmCompareAllTables::setCurrentName(const QString& name) {
    lblCurProcName = name;
    refresh();
}

void frmCompareAllTables::setTime(const QString& elapsed) {
    if (lblTime == elapsed) return;
    lblTime = elapsed;
    refresh();
}

void frmCompareAllTables::runStatusTimer(bool on) {
    tmrStatusEnabled = on;
    refresh();
}

}  // namespace zov
