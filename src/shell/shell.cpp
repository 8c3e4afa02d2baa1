#include "shell/shell.h"

namespace zov {
namespace {

class SilentShell : public Shell {
    void showModal(Screen&) override {}
    void messageBox(const QString&, const QString&, BoxIcon) override {}
    bool askYesNo(const QString&, const QString&) override { return false; }
    BoxAnswer askYesNoCancel(const QString&, const QString&) override { return BoxAnswer::Cancel; }
    void pumpEvents() override {}
    void setClipboardText(const QString&) override {}
    void openWithDesktop(const QString&) override {}
    QString askSavePath(const QString&, const QString&, const QString&) override { return {}; }
    QString askOpenPath(const QString&, const QString&, const QString&) override { return {}; }
    void setWaitPointer(bool) override {}
};

Shell* installed = nullptr;

}  // namespace

Shell& shell() {
    static SilentShell silent;
    return installed ? *installed : silent;
}

void installShell(Shell* shell) {
    installed = shell;
}

}  // namespace zov
