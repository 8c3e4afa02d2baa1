// The screen "Add SQL Server": asks for a server and its login, tests the
// connection and adds the server to the stored list.
#pragma once

#include "core/server_info.h"
#include "shell/screen.h"

namespace zov {

class frmAddServer : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmAddServer"); }
    QString caption() const override { return QStringLiteral("Add SQL Server"); }

    /// Modal; true when a server was added.
    bool ShowUp();

    enum Authentication { WindowsAuthentication = 0, SqlServerAuthentication = 1 };
    static QString optGenCaption(Authentication choice);

    QString txtServer;
    QString txtDatabase = QStringLiteral("master");
    Authentication optGen = WindowsAuthentication;
    QString txtLogin;
    QString txtPassword;
    /// The login frame with its labels and texts.
    bool fraLoginEnabled = false;

    /// Windows authentication empties and disables the login's texts.
    void optGen_Click(Authentication choice);
    void cmdOK();
    void cmdCancel();

 private:
    /// Tells what is missing and puts the focus on the control to mend.
    void refuse(const QString& text, const QString& control);

    bool added_ = false;
};

}  // namespace zov
