// The dialogs that save a run as a process and pick one that was saved.
#pragma once

#include "saved/frmSaveCompRun.h"
#include "saved/frmSaveComparison.h"
#include "shell/qt/screen_dialog.h"

class QCheckBox;
class QLineEdit;
class QListWidget;
class QTreeWidget;

namespace zov::qt {

class SaveComparisonDialog : public ScreenDialog {
    Q_OBJECT
 public:
    SaveComparisonDialog(frmSaveComparison& screen, QWidget* parent);
    void refreshFields() override;

 protected:
    void showEvent(QShowEvent* event) override;

 private:
    frmSaveComparison& screen_;
    QLineEdit* name_;
    QListWidget* names_;
    QCheckBox* print_;
    QCheckBox* autoClose_;
};

/// Names and numbers; a click on a heading sorts, typing in the field above shows the names that
/// hold the text.
class SaveCompRunDialog : public ScreenDialog {
    Q_OBJECT
 public:
    SaveCompRunDialog(frmSaveCompRun& screen, QWidget* parent);
    void refreshFields() override;

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void takeSelection();
    void filter(const QString& text);

    frmSaveCompRun& screen_;
    QLineEdit* search_;
    QTreeWidget* list_;
};

}  // namespace zov::qt
