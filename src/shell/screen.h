// The logic side of a screen: what every screen offers to the shell that shows
// it, and what it asks of its view. A shell runs a screen modally with
// Shell::showModal; the screen's fields and commands are those of its class.
#pragma once

#include <QString>

namespace zov {

/// What a screen asks of the widget (or recorder) that shows it.
class ScreenView {
 public:
    virtual ~ScreenView() = default;
    /// Puts the focus on a control, named as the screen names it; `selectText`: with its text
    /// selected.
    virtual void focusControl(const QString& control, bool selectText) = 0;
    /// The screen's fields have changed: show them again.
    virtual void refreshFields() = 0;
    /// The screen has closed itself; showModal returns to its caller.
    virtual void closeView() = 0;
};

class Screen {
 public:
    Screen() = default;
    virtual ~Screen() = default;
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    /// "frmAddServer"
    virtual QString screenName() const = 0;
    virtual QString caption() const = 0;
    /// What the screen tells, as text, for a shell that has no windows. Empty: nothing to tell.
    virtual QString plainText() const { return {}; }

    /// Set by the shell while the screen is shown.
    ScreenView* view = nullptr;
    bool isClosed() const { return closed_; }

 protected:
    void focus(const QString& control, bool selectText = false) {
        if (view) view->focusControl(control, selectText);
    }
    void refresh() {
        if (view) view->refreshFields();
    }
    void close() {
        closed_ = true;
        if (view) view->closeView();
    }
    /// For a screen that is shown again.
    void reopen() { closed_ = false; }

 private:
    bool closed_ = false;
};

}  // namespace zov
