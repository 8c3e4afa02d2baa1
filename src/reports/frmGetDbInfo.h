// The screen that makes a database's inventory; the text goes to the report
// screen. Enter at ShowUp.
#pragma once

#include "reports/database_info.h"
#include "shell/screen.h"

#include <QElapsedTimer>

namespace zov {

class frmGetDbInfo : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmGetDbInfo"); }
    QString caption() const override { return QStringLiteral("Analyzing Database"); }
    QString plainText() const override { return lblComparing; }

    /// Modal. `Index` is the panel whose server and filter count. False when it was cancelled or
    /// failed, which was told; `txtTXProc` holds the text otherwise.
    bool ShowUp(const QString& DbName, int Index);

    QString lblInfo;
    QString lblComparing;
    QString lblCurName;
    QString lblTime;
    bool cmdOKEnabled = false;
    QString txtTXProc;

    /// The screen is shown for the first time: makes the inventory and closes itself.
    void Form_Activate();
    /// Also Esc and the window's own way out.
    void cmdCancel_Click();

 private:
    void GetDbInfo();
    void tick();

    QString dbName_;
    int index_ = 0;
    QElapsedTimer elapsed_;
    bool activated_ = false;
    bool running_ = false;
    bool cancelled_ = false;
    bool done_ = false;
};

}  // namespace zov
