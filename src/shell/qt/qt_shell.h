// The desktop's services: boxes, modal screens, the event pump, clipboard, file
// dialogs, the wait pointer.
#pragma once

#include "shell/qt/background_work.h"
#include "shell/shell.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QWidget>

namespace zov::qt {

/// Makes the icons of the program's resources known; before the first window.
void initDesktopResources();

class QtShell : public Shell {
 public:
    QtShell();

    /// Parent of boxes and dialogs that no other window is open for.
    void setMainWindow(QWidget* window) { mainWindow_ = window; }
    /// Work that its user gave up still waits for a server.
    bool hasAbandonedWork() const { return background_.hasAbandonedWork(); }

    void showModal(Screen& screen) override;
    void messageBox(const QString& text, const QString& title, BoxIcon icon) override;
    bool askYesNo(const QString& text, const QString& title) override;
    bool askYesNoDefaultNo(const QString& text, const QString& title) override;
    BoxAnswer askYesNoCancel(const QString& text, const QString& title) override;
    void pumpEvents() override;
    bool runBlocking(const std::function<void()>& work, const std::function<void()>& cancel,
                     const QString& server = {}) override;
    void beginOperation() override { background_.forgetGivingUp(); }
    void setClipboardText(const QString& text) override;
    void openWithDesktop(const QString& fileOrUrl) override;
    QString askSavePath(const QString& title, const QString& filter,
                        const QString& initialPath) override;
    QString askOpenPath(const QString& title, const QString& filter,
                        const QString& initialPath) override;
    void setWaitPointer(bool on) override;

 private:
    QWidget* parentForDialogs() const;

    QPointer<QWidget> mainWindow_;
    QElapsedTimer sincePump_;
    BackgroundWork background_;
    std::unique_ptr<QObject> newWishes_;
};

}  // namespace zov::qt
