// The test screens of the Debug menu.
#pragma once

#include "options/frmOptionsDebug.h"
#include "shell/qt/screen_dialog.h"
#include "structcompare/frmSpare.h"

class QCheckBox;
class QPlainTextEdit;
class QSpinBox;

namespace zov::qt {

class SpareDialog : public ScreenDialog {
    Q_OBJECT
 public:
    SpareDialog(frmSpare& screen, QWidget* parent);
    void refreshFields() override;

 private:
    frmSpare& screen_;
    QPlainTextEdit* source_;
    QPlainTextEdit* result_;
};

class OptionsDebugDialog : public ScreenDialog {
    Q_OBJECT
 public:
    OptionsDebugDialog(frmOptionsDebug& screen, QWidget* parent);
    void refreshFields() override;

 private:
    frmOptionsDebug& screen_;
    QCheckBox* offline_;
    QSpinBox* width_;
    QSpinBox* height_;
};

}  // namespace zov::qt
