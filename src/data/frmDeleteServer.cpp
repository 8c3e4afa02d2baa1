#include "data/frmDeleteServer.h"

#include "core/globals.h"
#include "data/server_list.h"
#include "shell/shell.h"
#include "util/text.h"

namespace zov {

bool frmDeleteServer::ShowUp() {
    removed_ = false;
    lstServers.clear();
    selectedRows.clear();
    for (const ServerInfo& server : globals().gtServers) lstServers += server.Name;
    reopen();
    shell().showModal(*this);
    return removed_;
}

void frmDeleteServer::cmdRemove() {
    if (selectedRows.empty()) {
        shell().messageBox(QStringLiteral("Please select the server to be removed from the list."),
                           {}, BoxIcon::Information);
        focus(QStringLiteral("lstServers"));
        return;
    }
    const QString name = lstServers.value(*selectedRows.begin());
    const bool yes =
        shell().askYesNo(QStringLiteral("Are you sure that you want to remove") + CRLF + CRLF +
                             name + CRLF + CRLF + QStringLiteral("from the list of servers?"),
                         QStringLiteral("Confirm Removing Server"));
    if (!yes) return;
    RemoveServer(name);
    LoadServersFromRegistry();
    SetInitialServers();
    removed_ = true;
    close();
}

void frmDeleteServer::cmdExit() {
    close();
}

}  // namespace zov
