#include "reports/frmReport.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "reports/copy_to_file.h"
#include "shell/shell.h"

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

void frmReport::ShowUp_Generic(const QString& Caption) {
    fields = {};
    fields.Caption = Caption;
    cmdSaveVisible = false;
    show();
}

void frmReport::show() {
    txtReport = globals().gstrReport;
    reopen();
    shell().showModal(*this);
}

void frmReport::cmdCopyClip() {
    shell().setClipboardText(txtReport);
}

void frmReport::cmdCopyToFile() {
    if (busy_) return;
    const ScopedValue<bool> busy(busy_, true);
    guardedRun(Module, "cmdCopyToFile_Click", [&] {
        QString path;
        CopyToFile(txtReport, QStringLiteral("Report"), path, fields.ExportPath);
    });
}

void frmReport::cmdPrint() {
    if (busy_) return;
    const ScopedValue<bool> busy(busy_, true);
    guardedRun(Module, "PrintReport", [&] {
        if (installedPrinter)
            installedPrinter->printReport(QStringLiteral("Zovrand Report"), txtReport);
        else
            shell().messageBox(
                QStringLiteral("There is no printer here. Save the report to a file instead."));
    });
}

void frmReport::cmdExit() {
    close();
}

}  // namespace zov
