// The common frame of every screen's widget: shows the screen's caption, maps
// control names to widgets, closes when the screen does, opens help with F1.
#pragma once

#include "shell/screen.h"

#include <QDialog>
#include <QHash>

#include <memory>

namespace zov::qt {

class ScreenDialog : public QDialog, public ScreenView {
    Q_OBJECT
 public:
    ScreenDialog(Screen& screen, QWidget* parent);
    ~ScreenDialog() override;

    // ScreenView.
    void focusControl(const QString& control, bool selectText) override;
    void refreshFields() override = 0;
    void closeView() override;

    /// The help page of the screen: its name in lower case.
    QString helpPage() const;

 protected:
    /// Makes a widget known under the name that the screen uses for it; also its object name.
    void name(const QString& control, QWidget* widget);
    QWidget* named(const QString& control) const { return controls_.value(control); }
    /// The user wants out (Esc, the window's close button). The default leaves the screen as its
    /// Cancel or Exit button does; false keeps the dialog open.
    virtual bool leave() { return true; }

    void reject() override;
    void closeEvent(QCloseEvent* event) override;
    /// Before it is seen first, the dialog is made to fit its screen.
    void setVisible(bool visible) override;

 private:
    Screen& screen_;
    QHash<QString, QWidget*> controls_;
    bool fitted_ = false;
};

/// The widget for a screen; null when there is none.
std::unique_ptr<ScreenDialog> makeScreenDialog(Screen& screen, QWidget* parent);

}  // namespace zov::qt
