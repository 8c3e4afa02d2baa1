#include "structcompare/frmSpare.h"

#include "core/error_report.h"
#include "shell/shell.h"
#include "structcompare/modCompareObjects.h"

namespace zov {

void frmSpare::ShowUp(const QString& Text) {
    txtSource = Text;
    txtResult.clear();
    reopen();
    shell().showModal(*this);
}

void frmSpare::cmdStrip_Click() {
    guardedRun("frmSpare", "cmdStrip_Click",
               [this] { txtResult = StripCommentsFromProc(txtSource); });
    refresh();
}

}  // namespace zov
