// The desktop's services: boxes, modal screens, the event pump, clipboard, file
// dialogs, the wait pointer.
#pragma once

#include "shell/shell.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QWidget>

namespace zov::qt {

class QtShell : public Shell {
 public:
    QtShell();

    /// Parent of boxes and dialogs that no other window is open for.
    void setMainWindow(QWidget* window) { mainWindow_ = window; }

    void showModal(Screen& screen) override;
    void messageBox(const QString& text, const QString& title, BoxIcon icon) override;
    bool askYesNo(const QString& text, const QString& title) override;
    BoxAnswer askYesNoCancel(const QString& text, const QString& title) override;
    void pumpEvents() override;
    void setClipboardText(const QString& text) override;
    void openWithDesktop(const QString& fileOrUrl) override;
    QString askSavePath(const QString& title, const QString& filter,
                        const QString& initialPath) override;
    void setWaitPointer(bool on) override;

 private:
    QWidget* parentForDialogs() const;

    QPointer<QWidget> mainWindow_;
    QElapsedTimer sincePump_;
};

}  // namespace zov::qt
