// The dialogs that add a server to the stored list and remove one from it.
#pragma once

#include "data/frmAddServer.h"
#include "data/frmDeleteServer.h"
#include "shell/qt/screen_dialog.h"

class QLineEdit;
class QListWidget;
class QRadioButton;

namespace zov::qt {

class AddServerDialog : public ScreenDialog {
    Q_OBJECT
 public:
    AddServerDialog(frmAddServer& screen, QWidget* parent);
    void refreshFields() override;

 protected:
    bool leave() override;

 private:
    void takeFields();

    frmAddServer& screen_;
    QLineEdit* server_;
    QLineEdit* database_;
    QRadioButton* windows_;
    QRadioButton* sqlServer_;
    QWidget* loginFrame_;
    QLineEdit* login_;
    QLineEdit* password_;
};

class DeleteServerDialog : public ScreenDialog {
    Q_OBJECT
 public:
    DeleteServerDialog(frmDeleteServer& screen, QWidget* parent);
    void refreshFields() override;

 protected:
    bool leave() override;

 private:
    frmDeleteServer& screen_;
    QListWidget* servers_;
};

}  // namespace zov::qt
