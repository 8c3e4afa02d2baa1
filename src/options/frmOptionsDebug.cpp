#include "options/frmOptionsDebug.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "core/registry.h"
#include "core/settings.h"
#include "shell/shell.h"

#include <algorithm>

namespace zov {
namespace {

const QString FilterOffline = QStringLiteral("FilterOfflineDbs");
const QString PageWidth = QStringLiteral("PageWidth");
const QString PageHeight = QStringLiteral("PageHeight");

}  // namespace

bool frmOptionsDebug::ShowUp() {
    chkFilterOfflineDbs = globals().gblnFilterOfflineDbs;
    txtPageWidth = std::max(readSetting(PageWidth), LeastPageWidth);
    txtPageHeight = std::max(readSetting(PageHeight), LeastPageHeight);
    saved_ = false;
    reopen();
    shell().showModal(*this);
    return saved_;
}

void frmOptionsDebug::cmdSave() {
    guardedRun("frmOptionsDebug", "cmdSave_Click", [this] {
        const RegistryBatch together;
        globals().gblnFilterOfflineDbs = chkFilterOfflineDbs;
        writeBooleanSetting(FilterOffline, chkFilterOfflineDbs);
        writeSetting(PageWidth, std::max(txtPageWidth, LeastPageWidth));
        writeSetting(PageHeight, std::max(txtPageHeight, LeastPageHeight));
        saved_ = true;
    });
    close();
}

}  // namespace zov
