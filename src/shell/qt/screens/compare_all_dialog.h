// The bulk comparison's dialog: first the kinds, then the status of the run.
#pragma once

#include "shell/qt/screen_dialog.h"
#include "structcompare/frmCompareAllTables.h"

class QCheckBox;
class QLabel;
class QPushButton;
class QStackedWidget;
class QTimer;

namespace zov::qt {

class CompareAllDialog : public ScreenDialog {
    Q_OBJECT
 public:
    CompareAllDialog(frmCompareAllTables& form, QWidget* parent);
    void refreshFields() override;

 protected:
    /// A run is asked to stop and closes the screen itself; before that the screen just goes.
    bool leave() override;
    void showEvent(QShowEvent* event) override;

 private:
    frmCompareAllTables& form_;
    QStackedWidget* stack_;
    std::array<QCheckBox*, 8> boxes_{};
    std::array<QLabel*, 8> comparing_{};
    QLabel* current_;
    QLabel* time_;
    QPushButton* compare_;
    QTimer* dots_;
};

}  // namespace zov::qt
