// A developer's screen: calls two sample procedures through a connection of its
// own, which is opened when the screen comes up.
#pragma once

#include "core/server_info.h"
#include "data/connection.h"
#include "shell/screen.h"

namespace zov {

class frmExecSp : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmExecSp"); }
    QString caption() const override { return QStringLiteral("Execute Stored Procedure"); }

    /// The sample server of a developer's own machine; its database is Northwind.
    static ServerInfo sampleServer();

    /// Modal. Without a connection, which is reported, the screen comes up all the same.
    void ShowUp(const ServerInfo& Server = sampleServer());

    QString txt_empid, txt_firstname, txt_title, txt_address;

    /// "empdetails": its first row fills the fields.
    void cmd_get_Click();
    /// "update_empdetails" with what the fields hold.
    void cmd_update_Click();

 private:
    std::shared_ptr<Connection> connection_;
};

}  // namespace zov
