// The status of the run that compares and prints all tables.
#pragma once

#include "reports/frmCompareAndPrint.h"
#include "shell/qt/screen_dialog.h"

class QLabel;
class QTimer;

namespace zov::qt {

class CompareAndPrintDialog : public ScreenDialog {
    Q_OBJECT
 public:
    CompareAndPrintDialog(frmCompareAndPrint& screen, QWidget* parent);
    void refreshFields() override;

 protected:
    bool leave() override;
    void showEvent(QShowEvent* event) override;

 private:
    frmCompareAndPrint& screen_;
    QLabel* name_;
    QLabel* time_;
    QTimer* clock_;
};

}  // namespace zov::qt
