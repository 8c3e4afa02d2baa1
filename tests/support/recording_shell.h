// A shell for tests: writes down what was asked of it and answers from a script.
// Installs itself for its lifetime.
#pragma once

#include "shell/screen.h"
#include "shell/shell.h"

#include <QStringList>

#include <deque>
#include <functional>

namespace zov::test {

class RecordingShell : public Shell, public ScreenView {
 public:
    RecordingShell();
    ~RecordingShell() override;

    /// Everything in order, one line each: "information: TEXT", "exclamation [TITLE]: TEXT",
    /// "yes/no [TITLE]: TEXT -> yes", "screen frmX", "focus txtX, text selected", "open URL" ...
    /// Line breaks within a text are shown as "\n", whichever they were, unless they are not CR LF:
    /// a bare LF shows as "\LF".
    QStringList lines;

    /// Answers in order; when they run out: No, Cancel, no path.
    std::deque<bool> yesNoAnswers;
    std::deque<BoxAnswer> yesNoCancelAnswers;
    std::deque<QString> savePaths;
    std::deque<QString> openPaths;
    /// Plays the user of a modal screen.
    std::function<void(Screen&)> onScreen;
    /// Called at each pump.
    std::function<void()> onPump;

    /// The user gives up waiting for this query of an operation (from 1), and with it for all that
    /// the operation would still ask; 0: never.
    int giveUpAt = 0;
    int queries = 0;  ///< that the operation has asked

    int pumps = 0;
    int waitDepth = 0;  ///< wait pointers that are on now
    QString clipboard;

    /// `lines` so far, which are forgotten.
    QStringList takeLines();

    void showModal(Screen& screen) override;
    void messageBox(const QString& text, const QString& title, BoxIcon icon) override;
    bool askYesNo(const QString& text, const QString& title) override;
    BoxAnswer askYesNoCancel(const QString& text, const QString& title) override;
    void pumpEvents() override;
    bool runBlocking(const std::function<void()>& work, const std::function<void()>& cancel,
                     const QString& server) override;
    void beginOperation() override { queries = 0; }
    void setClipboardText(const QString& text) override;
    void openWithDesktop(const QString& fileOrUrl) override;
    QString askSavePath(const QString& title, const QString& filter,
                        const QString& initialPath) override;
    QString askOpenPath(const QString& title, const QString& filter,
                        const QString& initialPath) override;
    void setWaitPointer(bool on) override;

    void focusControl(const QString& control, bool selectText) override;
    void refreshFields() override {}
    void closeView() override {}
};

}  // namespace zov::test
