// The report screen: shows a finished text report, copies, saves and prints it.
// The text is globals().gstrReport, read at load; the caller clears it afterwards.
#pragma once

#include "shell/screen.h"
#include "structcompare/compare_all_screens.h"

namespace zov {

class frmReport : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmReport"); }
    QString caption() const override { return fields.Caption; }
    QString plainText() const override { return txtReport; }

    /// Modal, with everything that a saved process would need.
    void ShowUp(const ComparisonReport& report);
    /// Modal, for texts that can't become a process.
    void ShowUp_Generic(const QString& Caption);

    ComparisonReport fields;
    QString txtReport;
    bool cmdSaveVisible = true;
    /// Saving a run as a process comes with the store of processes.
    bool cmdSaveEnabled = false;

    void cmdCopyClip();
    void cmdCopyToFile();
    void cmdPrint();
    void cmdExit();

 private:
    void show();
    void Form_Unload();
    void PrintReport();

    bool busy_ = false;
};

/// Prints a report on the default printer; set by the desktop.
class ReportPrinter {
 public:
    virtual ~ReportPrinter() = default;
    virtual void printReport(const QString& documentName, const QString& text) = 0;
};
void installReportPrinter(ReportPrinter* printer);

}  // namespace zov
