// The options of the Debug menu: offline databases and the page of the text panes.
#pragma once

#include "shell/screen.h"

namespace zov {

class frmOptionsDebug : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmOptionsDebug"); }
    QString caption() const override { return QStringLiteral("Options (Debug)"); }

    /// Modal; true when the settings were saved.
    bool ShowUp();

    bool chkFilterOfflineDbs = false;
    /// In twips. A page that is narrower than the least would wrap long lines.
    qint32 txtPageWidth = 0;
    qint32 txtPageHeight = 0;
    static constexpr qint32 LeastPageWidth = 20000;
    static constexpr qint32 LeastPageHeight = 15840;

    /// Numbers below the least are raised to it.
    void cmdSave();
    void cmdCancel() { close(); }

 private:
    bool saved_ = false;
};

}  // namespace zov
