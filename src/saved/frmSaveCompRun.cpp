#include "saved/frmSaveCompRun.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "saved/modSavedProcess.h"
#include "saved/process_texts.h"
#include "shell/shell.h"
#include "util/text.h"

namespace zov {
namespace {

constexpr const char* Module = "frmSaveCompRun";
constexpr int MostNamesInQuestion = 10;

QString deletionQuestion(const QStringList& names) {
    if (names.size() == 1)
        return QStringLiteral("Are you sure you want to remove comparison process '") +
               names.first() + QStringLiteral("' ?");
    QString question =
        QStringLiteral("Are you sure you want to remove these %1 comparison processes?\r\n")
            .arg(names.size());
    for (qsizetype n = 0; n < names.size() && n < MostNamesInQuestion; ++n)
        question += CRLF + u'\'' + names[n] + u'\'';
    if (names.size() > MostNamesInQuestion)
        question += CRLF + QStringLiteral("and %1 more").arg(names.size() - MostNamesInQuestion);
    return question;
}

}  // namespace

QString frmSaveCompRun::ShowUp() {
    chosen_.clear();
    selected.clear();
    ListSavedProcesses(lstComps);
    reopen();
    shell().showModal(*this);
    return chosen_;
}

void frmSaveCompRun::cmdOK() {
    if (busy_) return;
    const ScopedValue<bool> busy(busy_, true);
    if (selected.isEmpty()) {
        shell().messageBox(QStringLiteral("Please select the comparison process to be run"));
        return;
    }
    chosen_ = selected.first();
    close();
}

void frmSaveCompRun::cmdDelete() {
    if (busy_) return;
    const ScopedValue<bool> busy(busy_, true);
    guardedRun(Module, "cmdDelete_Click", [&] {
        const QStringList names = selected;
        if (names.isEmpty()) {
            shell().messageBox(
                QStringLiteral("Please select the comparison process to be deleted"));
            return;
        }
        if (!shell().askYesNo(deletionQuestion(names), QStringLiteral("Confirm Process Deletion")))
            return;
        const WaitPointer wait;
        if (!DeleteSavedProcesses(names)) return;
        selected.clear();
        ListSavedProcesses(lstComps);
        refresh();
    });
}

void frmSaveCompRun::showProperties() {
    if (busy_ || selected.isEmpty()) return;
    const ScopedValue<bool> busy(busy_, true);
    guardedRun(Module, "lstComps_MouseUp", [&] { ShowProcessProperties(selected.first()); });
}

void frmSaveCompRun::cmdCancel() {
    if (!busy_) close();
}

}  // namespace zov
