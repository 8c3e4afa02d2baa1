// The tip of the day: one tip at each start while the user wants it, the next one
// each time.
#pragma once

#include "shell/screen.h"

#include <QStringList>

namespace zov {

class frmTip : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmTip"); }
    QString caption() const override { return QStringLiteral("Tip of the Day"); }
    QString plainText() const override { return lblTip; }

    void ShowUp();

    static const QStringList& tips();

    QString lblTip;
    bool chkShowAtStartup = false;

    void cmdNextTip();
    void chkShowAtStartup_Click(bool show);
    void cmdClose() { close(); }

 private:
    void showNext();
};

}  // namespace zov
