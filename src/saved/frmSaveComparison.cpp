#include "saved/frmSaveComparison.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "saved/process_texts.h"
#include "shell/shell.h"
#include "util/text.h"

#include <QDate>
#include <QLocale>

namespace zov {
namespace {

const QString NameBox = QStringLiteral("txtProcessName");

}  // namespace

bool frmSaveComparison::ShowUp(const SavedProcess& run, QString& Name) {
    process_ = run;
    activated_ = busy_ = saved_ = false;
    optPrint = chkAutoClose = false;
    lstServers = FillProcessList();
    txtProcessName = QLocale::c().toString(QDate::currentDate(), QStringLiteral("MMM dd, yyyy")) +
                     QStringLiteral(" - ") + run.TableName1;
    lblNote = QStringLiteral(
                  "If you want to include automatic exporting in your saved comparison process, "
                  "please save the process first and then export data to file. The program will "
                  "add exporting info to saved comparison process.") +
              CRLF + WhatIsNotKept();
    reopen();
    shell().showModal(*this);
    if (saved_) Name = process_.Name;
    return saved_;
}

void frmSaveComparison::Form_Activate() {
    if (activated_) return;
    activated_ = true;
    focus(NameBox, true);
}

void frmSaveComparison::cmdOK() {
    if (busy_) return;
    const ScopedValue<bool> busy(busy_, true);
    guardedRun("frmSaveComparison", "cmdOK_Click", [&] {
        process_.Name = TrimmedProcessName(txtProcessName);
        bool mayReplace = false;
        if (!nameIsGood(mayReplace)) return;
        process_.Print = optPrint;
        process_.AutoClose = chkAutoClose;
        store(mayReplace);
    });
}

bool frmSaveComparison::nameIsGood(bool& mayReplace) {
    if (const QString trouble = ProcessNameTrouble(process_.Name); !trouble.isEmpty()) {
        shell().messageBox(trouble);
        focus(NameBox);
        return false;
    }
    if (!FillProcessList().contains(process_.Name, Qt::CaseSensitive)) return true;
    mayReplace = askToReplace();
    return mayReplace;
}

bool frmSaveComparison::askToReplace() {
    if (shell().askYesNo(QStringLiteral("Comparison process with name ") + process_.Name +
                             QStringLiteral(" already exists.") + CRLF + CRLF +
                             QStringLiteral("Do you want to overwrite it?"),
                         QStringLiteral("Overwrite Comparison Process")))
        return true;
    focus(NameBox);
    return false;
}

void frmSaveComparison::store(bool mayReplace) {
    bool exists = false;
    saved_ = SaveComparisonProcess(process_, mayReplace, &exists);
    if (exists) {
        // Another program took the name between the check and now.
        if (!askToReplace()) return;
        saved_ = SaveComparisonProcess(process_);
    }
    shell().messageBox(
        saved_ ? QStringLiteral("Comparison process saved successfully.") + CRLF + CRLF +
                     QStringLiteral(
                         "If you want to include automatic exporting in your saved comparison "
                         "process, please export the results now. The program will add exporting "
                         "info to saved comparison process.")
               : QStringLiteral("Comparison process not saved."));
    close();
}

void frmSaveComparison::cmdCancel() {
    if (!busy_) close();
}

bool SavedProcessRecorder::saveRun(const ComparisonReport& Run, bool CSVWrapInQuot, QString& Name) {
    return frmSaveComparison().ShowUp(SavedProcessOf(Run, CSVWrapInQuot), Name);
}

void SavedProcessRecorder::recordExport(const QString& Name, const QString& Path, qint32 ExportType,
                                        bool CSVWrapInQuot, qint32 CompType) {
    RecordExportingResultsToTxtFile(Name, Path, ExportType, CSVWrapInQuot, CompType);
}

bool SavedProcessRecorder::recordPrint(const QString& Name) {
    return AddPrintInfoToSavedProcess(Name, true);
}

}  // namespace zov
