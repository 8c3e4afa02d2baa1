// A test screen of the Debug menu: what stripping comments makes of a text.
#pragma once

#include "shell/screen.h"

namespace zov {

class frmSpare : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmSpare"); }
    QString caption() const override { return QStringLiteral("Strip Comments"); }
    QString plainText() const override { return txtResult; }

    /// Modal; starts with this text.
    void ShowUp(const QString& Text);

    QString txtSource;
    QString txtResult;

    void cmdStrip_Click();
    void cmdExit() { close(); }
};

}  // namespace zov
