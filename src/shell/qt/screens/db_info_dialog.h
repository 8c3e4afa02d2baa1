// The screen that shows how far a database's inventory has come.
#pragma once

#include "reports/frmGetDbInfo.h"
#include "shell/qt/screen_dialog.h"

class QLabel;

namespace zov::qt {

class DbInfoDialog : public ScreenDialog {
    Q_OBJECT
 public:
    DbInfoDialog(frmGetDbInfo& screen, QWidget* parent);

    void refreshFields() override;

 protected:
    bool leave() override;
    void showEvent(QShowEvent* event) override;

 private:
    frmGetDbInfo& screen_;
    QLabel* stage_;
    QLabel* name_;
    QLabel* time_;
};

}  // namespace zov::qt
