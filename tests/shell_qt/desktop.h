// The desktop program for a test: a home of its own, an embedded server with two
// small databases, the window with both panels open, and a user for what is modal.
#pragma once

#include "shell/qt/desktop_screens.h"
#include "shell/qt/main_window.h"
#include "shell/qt/qt_shell.h"
#include "support/temp_home.h"

#include <QPointer>
#include <QTimer>

#include <deque>
#include <functional>
#include <memory>
#include <vector>

namespace zov::test {

/// Does what was planned with each modal window as it comes up, in order; one that nothing was
/// planned for is noted and sent away. Message boxes need no plan: they are noted and confirmed.
class ModalUser : public QObject {
 public:
    ModalUser();

    /// The next modal window that is no message box gets this; it must end up closed.
    void plan(std::function<void(QWidget*)> action) { actions_.push_back(std::move(action)); }
    /// The next question is answered so; the default is the box's default button.
    void answer(int standardButton) { answers_.push_back(standardButton); }
    bool isDone() const { return actions_.empty(); }

    /// Texts of message boxes, and "unexpected NAME" for windows without a plan. Line breaks as
    /// "|".
    QStringList seen;
    QStringList takeSeen() { return std::exchange(seen, {}); }

 private:
    void look();

    QTimer timer_;
    std::deque<std::function<void(QWidget*)>> actions_;
    std::deque<int> answers_;
    QWidget* handled_ = nullptr;
    std::vector<QPointer<QWidget>> acting_;  // windows whose actions are under way
};

/// A stored embedded server with two databases.
struct DesktopDatabases {
    QString server, source, sourceScript, target, targetScript;
};
/// "local:shop" with "before" and "after", which differ in every way that the marks tell apart.
DesktopDatabases smallShop();

class Desktop {
 public:
    explicit Desktop(const DesktopDatabases& databases = smallShop());
    ~Desktop();

    /// Shows the window; both panels are open when `open`.
    qt::MainWindow& show(bool open = true);
    /// Ends the window and starts another one, as the next start of the program would.
    qt::MainWindow& restart();
    qt::MainWindow& window() { return *window_; }
    frmMain& controller() { return window_->controller(); }

    template <typename Widget>
    Widget* find(const char* name) {
        return window_->findChild<Widget*>(QLatin1String(name));
    }
    /// Selects objects by their names.
    void select(const QString& source, const QString& target);
    /// Runs F7 and closes the report; its text.
    QString compare();

    TempHome home;
    qt::QtShell shell;
    qt::DesktopScreens screens;
    ModalUser user;

 private:
    DesktopDatabases databases_;
    std::unique_ptr<qt::MainWindow> window_;
};

/// Makes a window the active one, as a desktop does when the dialog in front of it closes; whether
/// it is.
bool activate(QWidget& window);

/// Serves events until `done` or for two seconds; whether it was done.
bool waitUntil(const std::function<bool()>& done);

}  // namespace zov::test
