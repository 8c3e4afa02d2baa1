// The feedback screen of a failure.
#pragma once

#include "core/frmErrorReport.h"
#include "shell/qt/screen_dialog.h"

class QLabel;
class QLineEdit;
class QPlainTextEdit;

namespace zov::qt {

class ErrorReportDialog : public ScreenDialog {
    Q_OBJECT
 public:
    ErrorReportDialog(frmErrorReport& screen, QWidget* parent);
    void refreshFields() override;

 protected:
    bool leave() override;

 private:
    frmErrorReport& screen_;
    QLabel* title_;
    QLabel* intro_;
    QPlainTextEdit* contents_;
    QPlainTextEdit* comments_;
    QLineEdit* email_;
};

}  // namespace zov::qt
