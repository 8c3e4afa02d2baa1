// The feedback screen of a failure: shows what the report would hold, and sends
// it with the desktop's browser when its user says so.
#pragma once

#include "shell/screen.h"

#include <QString>

namespace zov {

class frmErrorReport : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmErrorReport"); }
    QString caption() const override;
    /// The failure in one line: description, number, place and extra text.
    QString plainText() const override;

    /// Fills the fields and shows the screen modally.
    void ShowUp(qint32 ErrNum, const QString& ErrDesc, const QString& ProgVer, qint32 BuildNum,
                const QString& ModuleName, const QString& ProcName, const QString& ExtraDesc);

    // Facts of the report.
    qint32 ErrNum = 0;
    QString ErrDesc;
    QString ProgVer;
    qint32 BuildNum = 0;
    QString ModuleName;
    QString ProcName;
    QString ExtraDesc;

    // Fields of the screen.
    QString lblTitle;
    QString lblIntro;
    QString txtErrDesc;
    QString txtComments;  ///< typed by the user
    QString txtEmail;     ///< typed by the user

    /// Hands the report's address to the desktop and closes. A second click does nothing.
    void cmdSend();
    /// Closes without sending.
    void cmdCancel();

    /// The report as an address. Blanks of the description, the comments and the mail address
    /// become "+"; nothing else is escaped, so "&" and "#" in them break the query at that place.
    QString reportUrl() const;

 private:
    bool sent_ = false;
};

}  // namespace zov
