// The screen that lists the saved processes: one is chosen to be run, others are
// looked at or deleted. Enter at ShowUp; the caller runs what was chosen.
#pragma once

#include "shell/screen.h"

#include <QStringList>

#include <vector>

namespace zov {

class frmSaveCompRun : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmSaveCompRun"); }
    QString caption() const override { return QStringLiteral("Run Saved Comparison Process"); }

    /// Modal; the name of the chosen process, empty when none was chosen.
    QString ShowUp();

    QString lblInfo =
        QStringLiteral("Please select comparison processes to be run and click 'Run'.");
    QString lblProperties =
        QStringLiteral("Please right-click selected process to see its properties.");
    /// Name and number of each process, in the file's order.
    std::vector<std::pair<QString, qint32>> lstComps;
    /// The names that the user has selected, in the order of the list as it is shown.
    QStringList selected;

    /// Also a double click and Enter.
    void cmdOK();
    /// Also Del. Several at once with one question.
    void cmdDelete();
    /// The right button and Alt+Enter: properties of the first that is selected.
    void showProperties();
    /// Also Esc.
    void cmdCancel();

 private:
    QString chosen_;
    bool busy_ = false;
};

}  // namespace zov
