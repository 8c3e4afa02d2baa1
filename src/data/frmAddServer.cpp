#include "data/frmAddServer.h"

#include "core/globals.h"
#include "data/server_list.h"
#include "shell/shell.h"
#include "util/text.h"

namespace zov {

bool frmAddServer::ShowUp() {
    added_ = false;
    reopen();
    shell().showModal(*this);
    return added_;
}

QString frmAddServer::optGenCaption(Authentication choice) {
    return choice == WindowsAuthentication ? QStringLiteral("Windows authentication")
                                           : QStringLiteral("SQL Server authentication");
}

void frmAddServer::optGen_Click(Authentication choice) {
    optGen = choice;
    fraLoginEnabled = choice == SqlServerAuthentication;
    if (!fraLoginEnabled) {
        txtLogin.clear();
        txtPassword.clear();
    }
    refresh();
}

void frmAddServer::refuse(const QString& text, const QString& control) {
    shell().messageBox(text, {}, BoxIcon::Information);
    focus(control, true);
}

void frmAddServer::cmdOK() {
    const QString serverControl = QStringLiteral("txtServer");
    ServerInfo server;
    server.Name = Trim(txtServer);
    if (server.Name.isEmpty()) {
        refuse(QStringLiteral("Please enter server name."), serverControl);
        return;
    }
    server.MRUDb = Trim(txtDatabase);
    if (server.MRUDb.isEmpty()) {
        refuse(QStringLiteral("Please enter database name."), QStringLiteral("txtDatabase"));
        return;
    }
    server.SQLAuth = optGen == SqlServerAuthentication;
    if (server.SQLAuth) {
        server.LoginName = Trim(txtLogin);
        if (server.LoginName.isEmpty()) {
            refuse(QStringLiteral("Please enter Login name."), QStringLiteral("txtLogin"));
            return;
        }
        server.Password = Trim(txtPassword);
    }
    if (IsServerInList(server.Name)) {
        refuse(serverNotSavedText(ServerSaved::AlreadyThere), serverControl);
        return;
    }
    shell().beginOperation();
    if (!TestServerConnection(server)) {
        // Who gave up waiting knows why there is no server.
        if (globals().gblnStop) return focus(serverControl);
        shell().messageBox(
            QStringLiteral(
                "Please enter correct server data.\r\n\r\nCannot connect to the server - "
                "server does not exist or access denied."),
            QStringLiteral("Cannot Connect To The Server"), BoxIcon::Exclamation);
        focus(serverControl);
        return;
    }
    const ServerSaved saved = SaveServerToRegistry(server);
    LoadServersFromRegistry();
    if (saved == ServerSaved::AlreadyThere || saved == ServerSaved::ListIsFull) {
        refuse(serverNotSavedText(saved), serverControl);
        return;
    }
    SetInitialServers();
    added_ = true;
    close();
}

void frmAddServer::cmdCancel() {
    close();
}

}  // namespace zov
