#include "reports/frmReport.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "reports/copy_to_file.h"
#include "reports/process_recorder.h"
#include "shell/shell.h"
#include "util/text.h"

#include <QDir>
#include <QFile>

namespace zov {
namespace {

constexpr const char* Module = "frmReport";
ReportPrinter* installedPrinter = nullptr;

}  // namespace

void installReportPrinter(ReportPrinter* printer) {
    installedPrinter = printer;
}

void frmReport::ShowUp(const ComparisonReport& report) {
    fields = report;
    show();
}

void frmReport::ShowUp_Generic(const QString& Caption, const ReportAlternative& Alternative) {
    fields = {};
    alternative = Alternative;
    fields.Caption = Caption;
    cmdSaveVisible = false;
    show();
}

void frmReport::show() {
    txtReport = globals().gstrReport;
    cmdSaveEnabled = cmdSaveVisible && processRecorder() != nullptr;
    Saved = activated_ = chkAlternative = false;
    reopen();
    shell().showModal(*this);
    Form_Unload();
}

// Print drivers of old leave their files in the current folder, which is the program's own.
void frmReport::Form_Unload() {
    if (!tidiesCurrentFolder) return;
    const QDir folder = QDir::current();
    for (const QString& name : folder.entryList({QStringLiteral("*.tmp")}, QDir::Files))
        QFile::remove(folder.filePath(name));
}

void frmReport::Form_Activate() {
    if (activated_) return;
    activated_ = true;
    if (!fields.Replay) return;
    if (!fields.ExportPath.isEmpty()) cmdCopyToFile();
    if (fields.Print) cmdPrint();
    fields.Replay = false;
    if (globals().gblnAutoClose) close();
}

void frmReport::chkAlternative_Click(bool on) {
    if (busy_ || on == chkAlternative || alternative.caption.isEmpty()) return;
    chkAlternative = on;
    std::swap(txtReport, alternative.text);
    refresh();
}

void frmReport::cmdCopyClip() {
    if (busy_) return;
    const ScopedValue<bool> busy(busy_, true);
    shell().setClipboardText(txtReport);
}

void frmReport::cmdCopyToFile() {
    if (busy_) return;
    const ScopedValue<bool> busy(busy_, true);
    guardedRun(Module, "cmdCopyToFile_Click", [&] {
        if (fields.Replay) Saved = false;
        QString path;
        const bool written = CopyToFile(txtReport, QStringLiteral("Report"), path,
                                        fields.Replay ? fields.ExportPath : QString());
        if (!written || !Saved || SavedName.isEmpty() || !processRecorder()) return;
        processRecorder()->recordExport(SavedName, path, 0, false, fields.CompType);
        Saved = false;
    });
}

void frmReport::cmdSave() {
    if (busy_ || !cmdSaveEnabled) return;
    const ScopedValue<bool> busy(busy_, true);
    guardedRun(Module, "cmdSave_Click",
               [&] { Saved = processRecorder()->saveRun(fields, false, SavedName); });
}

void frmReport::cmdPrint() {
    if (busy_) return;
    const ScopedValue<bool> busy(busy_, true);
    PrintReport();
}

void frmReport::PrintReport() {
    guardedRun(Module, "PrintReport", [&] {
        if (!installedPrinter) {
            shell().messageBox(
                QStringLiteral("There is no printer here. Save the report to a file instead."), {},
                fields.Replay ? BoxIcon::Exclamation : BoxIcon::Information);
            return;
        }
        if (fields.Replay) Saved = false;
        const bool printed = installedPrinter->printReport(QStringLiteral("Zovrand Report"),
                                                           txtReport, fields.Replay);
        if (!printed || !Saved || SavedName.isEmpty() || !processRecorder()) return;
        if (processRecorder()->recordPrint(SavedName))
            shell().messageBox(
                QStringLiteral("Printing info was added to the saved comparison process:") + CRLF +
                    CRLF + QStringLiteral("\t- process name:\t'") + SavedName + u'\'' + CRLF +
                    CRLF +
                    QStringLiteral("Next time when this process is run, the program will "
                                   "automatically print final report on the default printer."),
                {}, BoxIcon::Information);
        Saved = false;
    });
}

void frmReport::cmdExit() {
    close();
}

}  // namespace zov
