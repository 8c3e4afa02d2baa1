// What the logic asks of the desktop: boxes, pointer, pump, clipboard, files,
// printing. Realised by the Qt desktop, by the console and, for tests, by a
// recorder. The running program has one, installed at start.
#pragma once

#include <QString>

#include <functional>

namespace zov {

enum class BoxIcon { None, Information, Exclamation, Critical, Question };
enum class BoxAnswer { Ok, Yes, No, Cancel };

class Screen;

class Shell {
 public:
    virtual ~Shell() = default;

    /// Shows a screen modally: returns when the screen has closed itself or its user has left it.
    virtual void showModal(Screen& screen) = 0;

    /// A box with an OK button. An empty title is the program's name.
    virtual void messageBox(const QString& text, const QString& title = {},
                            BoxIcon icon = BoxIcon::Information) = 0;
    /// A question with Yes and No.
    virtual bool askYesNo(const QString& text, const QString& title = {}) = 0;
    /// The same; Enter says No.
    virtual bool askYesNoDefaultNo(const QString& text, const QString& title = {}) {
        return askYesNo(text, title);
    }
    /// A question with Yes, No and Cancel.
    virtual BoxAnswer askYesNoCancel(const QString& text, const QString& title = {}) = 0;

    /// Serves waiting events; cheap enough to be called once per record or object.
    virtual void pumpEvents() = 0;

    /// Runs work that may wait long for a server, and comes back when it is done; what it throws
    /// comes out here. A desktop runs it in another thread and stays alive meanwhile: when the user
    /// wants no more it calls `cancel` (in the caller's thread, while the work runs), and if that
    /// doesn't end the work soon it leaves it behind and gives false. So the work must own, by
    /// shared pointers, all that it touches. Without a desktop the work simply runs.
    /// Who gave up waiting gave up all that the same operation would still wait for: further calls
    /// give false at once, until beginOperation() or the user's next click or key. `server` is who
    /// is waited for, for the user to see.
    virtual bool runBlocking(const std::function<void()>& work, const std::function<void()>& cancel,
                             const QString& server = {}) {
        (void)cancel, (void)server;
        work();
        return true;
    }
    /// The user asked for something new: what was given up before doesn't count for it.
    virtual void beginOperation() {}

    virtual void setClipboardText(const QString& text) = 0;
    /// Opens a file or an address with the desktop's own program for it.
    virtual void openWithDesktop(const QString& fileOrUrl) = 0;
    /// A save dialog that asks before it overwrites; empty when cancelled.
    virtual QString askSavePath(const QString& title, const QString& filter,
                                const QString& initialPath) = 0;
    /// A dialog for a file that is there; empty when cancelled. The filter as above.
    virtual QString askOpenPath(const QString& title, const QString& filter,
                                const QString& initialPath) = 0;

    /// The wait pointer nests: each true is undone by one false.
    virtual void setWaitPointer(bool on) = 0;
};

/// The program's shell. Never null: until one is installed, a silent one that answers No.
Shell& shell();
/// Installs a shell for the program's life; null puts the silent one back. Not owned.
void installShell(Shell* shell);

/// The wait pointer for the length of a scope.
class WaitPointer {
 public:
    WaitPointer() { shell().setWaitPointer(true); }
    ~WaitPointer() { shell().setWaitPointer(false); }
    WaitPointer(const WaitPointer&) = delete;
    WaitPointer& operator=(const WaitPointer&) = delete;
};

}  // namespace zov
