// The screens that show how far a run is: comparing, validating keys, exporting.
#pragma once

#include "datacompare/frmCompareDataValidation.h"
#include "datacompare/frmCompareStatus.h"
#include "reports/frmExport.h"
#include "shell/qt/screen_dialog.h"

class QCheckBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QStackedWidget;

namespace zov::qt {

class ValidationDialog : public ScreenDialog {
    Q_OBJECT
 public:
    ValidationDialog(frmCompareDataValidation& screen, QWidget* parent);
    void refreshFields() override;

 protected:
    bool leave() override;
    void showEvent(QShowEvent* event) override;

 private:
    frmCompareDataValidation& screen_;
    QLabel* info_[2];
    QLabel* current_;
    QLabel* time_;
    QProgressBar* bar_;
    QPushButton* ok_;
};

class CompareStatusDialog : public ScreenDialog {
    Q_OBJECT
 public:
    CompareStatusDialog(frmCompareStatus& screen, QWidget* parent);
    void refreshFields() override;

 protected:
    bool leave() override;
    void showEvent(QShowEvent* event) override;

 private:
    frmCompareStatus& screen_;
    QLabel* counts_[2];
    QLabel* current_;
    QLabel* status_;
    QLabel* time_;
    QLabel* timeCaption_;
    QProgressBar* bar_;
};

class ExportDialog : public ScreenDialog {
    Q_OBJECT
 public:
    ExportDialog(frmExport& screen, QWidget* parent);
    void refreshFields() override;

 protected:
    bool leave() override;
    void showEvent(QShowEvent* event) override;

 private:
    frmExport& screen_;
    QStackedWidget* stack_;
    QRadioButton* kinds_[2];
    QCheckBox* csvSafe_;
    QLabel* progress_;
    QProgressBar* bar_;
    QPushButton* ok_;
};

}  // namespace zov::qt
