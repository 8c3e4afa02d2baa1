// The screen that removes a server from the stored list.
#pragma once

#include "shell/screen.h"

#include <QStringList>

#include <set>

namespace zov {

class frmDeleteServer : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmDeleteServer"); }
    QString caption() const override { return QStringLiteral("Remove SQL Server"); }

    /// Modal; true when a server was removed.
    bool ShowUp();

    QStringList lstServers;
    std::set<int> selectedRows;  ///< from 0; set by the user

    /// Asks, and removes the first selected server.
    void cmdRemove();
    void cmdExit();

 private:
    bool removed_ = false;
};

}  // namespace zov
