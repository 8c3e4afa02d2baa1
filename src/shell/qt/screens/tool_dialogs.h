// Attaching a database's files, and the developer's screen that calls two sample
// procedures.
#pragma once

#include "shell/qt/screen_dialog.h"
#include "tools/frmAttachDb.h"
#include "tools/frmExecSp.h"

class QCheckBox;
class QLineEdit;

namespace zov::qt {

class AttachDialog : public ScreenDialog {
    Q_OBJECT
 public:
    AttachDialog(frmAttachDb& screen, QWidget* parent);
    void refreshFields() override;

 private:
    void takeFields();

    frmAttachDb& screen_;
    QLineEdit* paths_[3];
    QCheckBox* singleFile_;
    QWidget* logRow_;
};

class ExecSpDialog : public ScreenDialog {
    Q_OBJECT
 public:
    ExecSpDialog(frmExecSp& screen, QWidget* parent);
    void refreshFields() override;

 private:
    void takeFields();

    frmExecSp& screen_;
    QLineEdit* fields_[4];
};

}  // namespace zov::qt
