#include "shell/qt/screen_dialog.h"

#include "shell/qt/help_window.h"
#include "shell/qt/window_fit.h"

#include <QCloseEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QShortcut>

namespace zov::qt {

ScreenDialog::ScreenDialog(Screen& screen, QWidget* parent) : QDialog(parent), screen_(screen) {
    setWindowTitle(screen.caption());
    setObjectName(screen.screenName());
    screen.view = this;
    const auto* help = new QShortcut(QKeySequence::HelpContents, this);
    connect(help, &QShortcut::activated, this, [this] { showHelpPage(helpPage(), this); });
}

ScreenDialog::~ScreenDialog() {
    if (screen_.view == this) screen_.view = nullptr;
}

QString ScreenDialog::helpPage() const {
    return screen_.screenName().toLower();
}

void ScreenDialog::name(const QString& control, QWidget* widget) {
    widget->setObjectName(control);
    controls_.insert(control, widget);
}

void ScreenDialog::focusControl(const QString& control, bool selectText) {
    QWidget* widget = controls_.value(control);
    if (!widget) return;
    widget->setFocus();
    if (!selectText) return;
    if (auto* line = qobject_cast<QLineEdit*>(widget)) line->selectAll();
    if (auto* text = qobject_cast<QPlainTextEdit*>(widget)) text->selectAll();
}

void ScreenDialog::closeView() {
    QDialog::accept();
}

void ScreenDialog::reject() {
    if (screen_.isClosed() || leave()) QDialog::reject();
}

void ScreenDialog::setVisible(bool visible) {
    if (visible && !fitted_) {
        fitted_ = true;
        showNamesPlainly(*this);
        fitDialog(*this);
    }
    QDialog::setVisible(visible);
}

void ScreenDialog::closeEvent(QCloseEvent* event) {
    if (screen_.isClosed() || leave()) {
        QDialog::reject();
        event->accept();
    } else {
        event->ignore();
    }
}

}  // namespace zov::qt
