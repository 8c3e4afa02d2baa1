// The report screen: the text in a monospaced pane with search, copy, save, print.
#pragma once

#include "reports/frmReport.h"
#include "shell/qt/screen_dialog.h"
#include "shell/qt/text_find.h"

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace zov::qt {

class ReportDialog : public ScreenDialog {
    Q_OBJECT
 public:
    ReportDialog(frmReport& screen, QWidget* parent);
    void refreshFields() override;

 protected:
    void showEvent(QShowEvent* event) override;

 private:
    void find(bool forward);

    frmReport& screen_;
    QPlainTextEdit* text_;
    QCheckBox* alternative_;
    std::unique_ptr<TextFind> finder_;
    FindField* findText_;
    QLabel* findNote_;
    QPushButton* save_;
};

}  // namespace zov::qt
