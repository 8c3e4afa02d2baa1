// Compares every table of Source with its namesake in Target and prints both
// texts with their marks: an unattended run with a clock and a Cancel button.
// Enter at ShowUp; the panels it works on are handed in.
#pragma once

#include "shell/controls.h"
#include "shell/screen.h"

#include <QElapsedTimer>

namespace zov {

/// The main window as the run needs it.
class CompareAndPrintWindow {
 public:
    virtual ~CompareAndPrintWindow() = default;
    virtual const ObjectList& objects(int Index) = 0;
    /// Selects a row of a panel's list and shows its text.
    virtual void showObject(int Index, int row) = 0;
    /// Compares what the panes show, and prints both. False when nothing could be printed.
    virtual bool compareAndPrintPair() = 0;
};

class frmCompareAndPrint : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmCompareAndPrint"); }
    QString caption() const override { return QStringLiteral("Compare and Print All Tables"); }

    /// Modal; the run starts with the first activation, and the screen goes with its end.
    void ShowUp(CompareAndPrintWindow& window);

    /// The screen is shown for the first time.
    void Form_Activate();
    /// Also Esc: stops the run before its next table, closes the screen when none runs.
    void cmdCancel_Click();
    void tmrStatus_Timer();

    QString lblCurProcName;
    QString lblTime;
    bool tmrStatusEnabled = false;

 private:
    void CompareAndPrint();

    CompareAndPrintWindow* window_ = nullptr;
    QElapsedTimer elapsed_;
    bool activated_ = false;
    bool running_ = false;
};

}  // namespace zov
