#include "reports/frmReport.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "reports/copy_to_file.h"
#include "shell/shell.h"

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
    Form_Unload();
}

// Print drivers of old leave their files in the current folder, which is the program's own.
void frmReport::Form_Unload() {
    const QDir folder = QDir::current();
    for (const QString& name : folder.entryList({QStringLiteral("*.tmp")}, QDir::Files))
        QFile::remove(folder.filePath(name));
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
        QString path;
        CopyToFile(txtReport, QStringLiteral("Report"), path,
                   fields.Replay ? fields.ExportPath : QString());
    });
}

void frmReport::cmdPrint() {
    if (busy_) return;
    const ScopedValue<bool> busy(busy_, true);
    PrintReport();
}

void frmReport::PrintReport() {
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
