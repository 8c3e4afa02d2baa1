// The report screen: shows a finished text report, copies, saves and prints it.
// The text is globals().gstrReport, read at load; the caller clears it afterwards.
#pragma once

#include "shell/screen.h"
#include "structcompare/compare_all_screens.h"

namespace zov {

/// Another form of a report's text, which a check box shows in its place.
struct ReportAlternative {
    QString caption;  ///< of the box; empty: there is none
    QString text;
};

class frmReport : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmReport"); }
    QString caption() const override { return fields.Caption; }
    QString plainText() const override { return txtReport; }

    /// Modal, with everything that a saved process would need.
    void ShowUp(const ComparisonReport& report);
    /// Modal, for texts that can't become a process.
    void ShowUp_Generic(const QString& Caption, const ReportAlternative& Alternative = {});

    /// Leftovers of print drivers are deleted from the current folder when the screen closes; not
    /// by a program whose current folder is its user's.
    static inline bool tidiesCurrentFolder = true;

    ComparisonReport fields;
    QString txtReport;
    ReportAlternative alternative;
    bool chkAlternative = false;
    bool cmdSaveVisible = true;
    /// There is a store of processes to save the run in.
    bool cmdSaveEnabled = false;
    /// The run was saved and nothing was added to the process yet; the first export or print is.
    bool Saved = false;
    QString SavedName;

    /// The screen is shown for the first time: a replay exports, prints and, when the program is to
    /// close behind it, goes.
    void Form_Activate();
    void cmdCopyClip();
    /// Shows the other form of the text, or the first again: what is copied, saved and printed.
    void chkAlternative_Click(bool on);
    /// A replay's path takes the place of the user's choice.
    void cmdCopyToFile();
    /// Asks the saved runs' screen for a name.
    void cmdSave();
    void cmdPrint();
    void cmdExit();

 private:
    void show();
    void Form_Unload();
    void PrintReport();

    bool busy_ = false;
    bool activated_ = false;
};

/// Prints a report on the default printer; set by the desktop.
class ReportPrinter {
 public:
    virtual ~ReportPrinter() = default;
    /// `silent`: at once, nothing is asked. False when it was given up or can't be printed, which
    /// is told.
    virtual bool printReport(const QString& documentName, const QString& text, bool silent) = 0;
};
void installReportPrinter(ReportPrinter* printer);

}  // namespace zov
