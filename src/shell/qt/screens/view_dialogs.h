// Screens that only show: the colours, two texts side by side, the tip of the day.
#pragma once

#include "core/frmTip.h"
#include "shell/qt/screen_dialog.h"
#include "structcompare/frmCompareText.h"

class QCheckBox;
class QLabel;

namespace zov::qt {

class ColorSchemaDialog : public ScreenDialog {
    Q_OBJECT
 public:
    ColorSchemaDialog(frmColorSchema& screen, QWidget* parent);
    void refreshFields() override {}
};

class CompareTextDialog : public ScreenDialog {
    Q_OBJECT
 public:
    CompareTextDialog(frmCompareText& screen, QWidget* parent);
    void refreshFields() override {}

 private:
    void goToDifference(bool forward);

    frmCompareText& screen_;
    class SideBySideView* view_;
    QLabel* count_;
};

class TipDialog : public ScreenDialog {
    Q_OBJECT
 public:
    TipDialog(frmTip& screen, QWidget* parent);
    void refreshFields() override;

 private:
    frmTip& screen_;
    QLabel* tip_;
    QCheckBox* atStart_;
};

}  // namespace zov::qt
