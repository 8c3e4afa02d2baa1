#include "core/frmErrorReport.h"

#include "core/product.h"
#include "shell/shell.h"
#include "util/text.h"

namespace zov {
namespace {

QString blanksAsPlus(QString text) {
    return text.replace(u' ', u'+');
}

}  // namespace

QString frmErrorReport::caption() const {
    return QStringLiteral("An error occurred in Zovrand");
}

QString frmErrorReport::plainText() const {
    QString line = ErrDesc.simplified();
    line += QStringLiteral(" (error %1 in %2:%3").arg(ErrNum).arg(ModuleName, ProcName);
    const QString extra = ExtraDesc.trimmed();
    if (!extra.isEmpty()) line += QStringLiteral("; ") + extra;
    return line + u')';
}

void frmErrorReport::ShowUp(qint32 ErrNum, const QString& ErrDesc, const QString& ProgVer,
                            qint32 BuildNum, const QString& ModuleName, const QString& ProcName,
                            const QString& ExtraDesc) {
    this->ErrNum = ErrNum;
    this->ErrDesc = ErrDesc;
    this->ProgVer = ProgVer;
    this->BuildNum = BuildNum;
    this->ModuleName = ModuleName;
    this->ProcName = ProcName;
    this->ExtraDesc = ExtraDesc;

    lblTitle = QStringLiteral("Voluntary Feedback - Please Help Us");
    lblIntro = QStringLiteral(
        "Regrettably, a problem has occurred in Zovrand.\r\n"
        "\r\n"
        "Zovrand may continue to function after this, but if you have further problems you should "
        "restart the program.\r\n"
        "\r\n"
        "We'd like to fix this problem quickly, but we need your help.  Can Zovrand submit a bug "
        "report on your behalf to Brindlewick Software?  And, can you please take just a moment to "
        "jot down what steps we should take to reproduce the problem?\r\n"
        "\r\n"
        "Your report is confidential, and only the information you see below is included in the "
        "report.");
    txtErrDesc = QStringLiteral("%1 %2 Error %3 (").arg(ProgVer).arg(BuildNum).arg(ErrNum) +
                 ModuleName + u':' + ProcName + u')' + CRLF + CRLF + ErrDesc;
    if (!ExtraDesc.isEmpty()) txtErrDesc += CRLF + CRLF + ExtraDesc;

    shell().showModal(*this);
}

QString frmErrorReport::reportUrl() const {
    return product::WebEndpoint + u'/' + QStringLiteral("error.php") + QStringLiteral("?ErrNum=") +
           QString::number(ErrNum) + QStringLiteral("&ErrDesc=") + blanksAsPlus(ErrDesc) +
           QStringLiteral("&ProgVer=") + ProgVer + QStringLiteral("&BuildNum=") +
           QString::number(BuildNum) + QStringLiteral("&ModuleName=") + ModuleName +
           QStringLiteral("&ProcName=") + ProcName + QStringLiteral("&Comments=") +
           blanksAsPlus(txtComments) + QStringLiteral("&Email=") + blanksAsPlus(txtEmail) +
           QStringLiteral("&ExtraDesc=") + ExtraDesc;
}

void frmErrorReport::cmdSend() {
    if (sent_) return;
    sent_ = true;
    shell().openWithDesktop(reportUrl());
    close();
}

void frmErrorReport::cmdCancel() {
    close();
}

}  // namespace zov
