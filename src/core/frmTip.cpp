#include "core/frmTip.h"

#include "core/settings.h"
#include "shell/shell.h"

namespace zov {
namespace {

const QString showTip = QStringLiteral("ShowTipOfDay");
const QString lastTip = QStringLiteral("DisplayedTipNum");

}  // namespace

const QStringList& frmTip::tips() {
    static const QStringList all = {
        QStringLiteral("Press F7 to compare the two objects that are shown, then F8 and Shift+F8 "
                       "to walk through their "
                       "differences."),
        QStringLiteral("A server named local:NAME needs no SQL Server: load script files into it "
                       "with zovrand-cli load "
                       "and compare them here."),
        QStringLiteral("Right click in a text to ignore columns of a table: creation dates and row "
                       "versions need not "
                       "count as differences."),
        QStringLiteral("Highlight a section in both texts and choose 'Compare Highlighted "
                       "Sections' to compare just "
                       "these."),
        QStringLiteral("The filter buttons narrow a panel to some schemas or owners; lists and "
                       "bulk comparisons follow."),
        QStringLiteral("'Visualize Differences' shows both texts side by side, with the changed "
                       "words marked."),
        QStringLiteral("Every comparison of the window can be run from scripts too: zovrand-cli "
                       "compare --help."),
    };
    return all;
}

void frmTip::ShowUp() {
    chkShowAtStartup = readBooleanSetting(showTip);
    showNext();
    reopen();
    shell().showModal(*this);
}

void frmTip::showNext() {
    const qint32 count = qint32(tips().size());
    const qint32 last = readSetting(lastTip);
    const qint32 next = last < 0 || last >= count ? 1 : last + 1;
    lblTip = tips()[next - 1];
    writeSetting(lastTip, next);
}

void frmTip::cmdNextTip() {
    showNext();
    refresh();
}

void frmTip::chkShowAtStartup_Click(bool show) {
    chkShowAtStartup = show;
    writeBooleanSetting(showTip, show);
}

}  // namespace zov
