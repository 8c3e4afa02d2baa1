// The shell of the command line: boxes become lines on standard error, questions
// are answered No, progress is one line that is written over while standard
// error is a terminal, and Ctrl-C is the Stop button. What messages hold of signs
// that a terminal would act on is shown as signs.
#pragma once

#include "shell/shell.h"

#include <QElapsedTimer>

namespace zov {

class ConsoleShell : public Shell {
 public:
    /// `programName` stands before each message. `write` gets what standard error gets; `terminal`:
    /// there is somebody to show progress to.
    ConsoleShell(const QString& programName, std::function<void(const QString&)> write,
                 bool terminal);
    /// On the process's standard error.
    explicit ConsoleShell(const QString& programName);
    ~ConsoleShell() override;

    /// Called from the pump once Ctrl-C was pressed, each time: sets the stop flag.
    std::function<void()> onInterrupt;

    /// One line of trouble, and the lines behind it indented.
    void showError(const QString& text);
    /// A line that is no trouble.
    void showNote(const QString& text);
    /// Shows how far a run is; nothing when standard error is no terminal. At most 20 times a
    /// second.
    void showProgress(const QString& text);
    void clearProgress();

    /// How many errors were shown: exclamation and critical boxes, error reports, showError.
    int errorCount() const { return errors_; }

    void showModal(Screen& screen) override;
    void messageBox(const QString& text, const QString& title, BoxIcon icon) override;
    bool askYesNo(const QString& text, const QString& title) override;
    BoxAnswer askYesNoCancel(const QString& text, const QString& title) override;
    void pumpEvents() override;
    bool runBlocking(const std::function<void()>& work, const std::function<void()>& cancel,
                     const QString& server = {}) override;
    void setClipboardText(const QString&) override {}
    void openWithDesktop(const QString& fileOrUrl) override;
    QString askSavePath(const QString&, const QString&, const QString&) override { return {}; }
    QString askOpenPath(const QString&, const QString&, const QString&) override { return {}; }
    void setWaitPointer(bool) override {}

 private:
    void writeLines(const QString& text);

    QString programName_;
    std::function<void(const QString&)> write_;
    bool terminal_;
    QString lastError_;
    int progressLength_ = 0;
    QElapsedTimer sinceProgress_;
    int errors_ = 0;
};

}  // namespace zov
