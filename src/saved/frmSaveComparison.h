// The screen that gives a finished run a name and stores it. Enter at ShowUp;
// the other half, picking a process and running it, is frmSaveCompRun.
#pragma once

#include "reports/process_recorder.h"
#include "saved/modSavedProcess.h"
#include "shell/screen.h"

namespace zov {

class frmSaveComparison : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmSaveComparison"); }
    QString caption() const override { return QStringLiteral("Save Comparison Process"); }

    /// Modal. `run` has all but the name, the number and the two check boxes. True when it was
    /// stored; `Name` is then its name.
    bool ShowUp(const SavedProcess& run, QString& Name);

    QString lblInfo =
        QStringLiteral("You can save comparison's process parameters so it can be re-run later.");
    QString lblName = QStringLiteral("Please enter the name for the process:");
    QString lblList = QStringLiteral("Previously saved comparison processes:");
    QString lblNote;
    QString txtProcessName;
    QStringList lstServers;  ///< the names of the processes that there are
    bool optPrint = false;
    bool chkAutoClose = false;

    /// The screen is shown for the first time.
    void Form_Activate();
    /// Also Enter.
    void cmdOK();
    /// Also Esc.
    void cmdCancel();

 private:
    bool nameIsGood(bool& mayReplace);
    bool askToReplace();
    void store(bool mayReplace);

    SavedProcess process_;
    bool activated_ = false;
    bool busy_ = false;
    bool saved_ = false;
};

/// What result screens save their runs with: this screen and the store.
class SavedProcessRecorder : public ProcessRecorder {
 public:
    bool saveRun(const ComparisonReport& Run, bool CSVWrapInQuot, QString& Name) override;
    void recordExport(const QString& Name, const QString& Path, qint32 ExportType,
                      bool CSVWrapInQuot, qint32 CompType) override;
    bool recordPrint(const QString& Name) override;
};

}  // namespace zov
