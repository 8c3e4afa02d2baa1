#include "shell/qt/qt_shell.h"

#include "core/product.h"
#include "shell/qt/screen_dialog.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QUrl>

namespace zov::qt {
namespace {

// Sixty times a second is as often as anybody can see.
constexpr qint64 PumpMilliseconds = 16;

QMessageBox::Icon iconOf(BoxIcon icon) {
    switch (icon) {
        case BoxIcon::None:
            return QMessageBox::NoIcon;
        case BoxIcon::Information:
            return QMessageBox::Information;
        case BoxIcon::Exclamation:
            return QMessageBox::Warning;
        case BoxIcon::Critical:
            return QMessageBox::Critical;
        case BoxIcon::Question:
            return QMessageBox::Question;
    }
    return QMessageBox::NoIcon;
}

// A box is no place to wait: the pointer is an arrow while it stands.
class ArrowPointer {
 public:
    ArrowPointer() { QApplication::setOverrideCursor(Qt::ArrowCursor); }
    ~ArrowPointer() { QApplication::restoreOverrideCursor(); }
    ArrowPointer(const ArrowPointer&) = delete;
    ArrowPointer& operator=(const ArrowPointer&) = delete;
};

}  // namespace

QtShell::QtShell() {
    sincePump_.start();
}

QWidget* QtShell::parentForDialogs() const {
    QWidget* active = QApplication::activeModalWidget();
    return active ? active : mainWindow_.data();
}

void QtShell::showModal(Screen& screen) {
    const ArrowPointer arrow;
    const std::unique_ptr<ScreenDialog> dialog = makeScreenDialog(screen, parentForDialogs());
    if (!dialog) {
        messageBox(screen.plainText(), screen.caption(), BoxIcon::Information);
        return;
    }
    dialog->refreshFields();
    dialog->exec();
}

void QtShell::messageBox(const QString& text, const QString& title, BoxIcon icon) {
    const ArrowPointer arrow;
    QMessageBox box(iconOf(icon), title.isEmpty() ? product::Name : title, text, QMessageBox::Ok,
                    parentForDialogs());
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    box.exec();
}

bool QtShell::askYesNo(const QString& text, const QString& title) {
    const ArrowPointer arrow;
    QMessageBox box(QMessageBox::Question, title.isEmpty() ? product::Name : title, text,
                    QMessageBox::Yes | QMessageBox::No, parentForDialogs());
    box.setTextFormat(Qt::PlainText);
    return box.exec() == QMessageBox::Yes;
}

BoxAnswer QtShell::askYesNoCancel(const QString& text, const QString& title) {
    const ArrowPointer arrow;
    QMessageBox box(QMessageBox::Question, title.isEmpty() ? product::Name : title, text,
                    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, parentForDialogs());
    box.setTextFormat(Qt::PlainText);
    switch (box.exec()) {
        case QMessageBox::Yes:
            return BoxAnswer::Yes;
        case QMessageBox::No:
            return BoxAnswer::No;
        default:
            return BoxAnswer::Cancel;
    }
}

void QtShell::pumpEvents() {
    if (sincePump_.elapsed() < PumpMilliseconds) return;
    QApplication::processEvents();
    sincePump_.restart();
}

void QtShell::setClipboardText(const QString& text) {
    QApplication::clipboard()->setText(text);
}

void QtShell::openWithDesktop(const QString& fileOrUrl) {
    const bool isFile = QFileInfo::exists(fileOrUrl);
    QDesktopServices::openUrl(isFile ? QUrl::fromLocalFile(fileOrUrl)
                                     : QUrl(fileOrUrl, QUrl::TolerantMode));
}

QString QtShell::askSavePath(const QString& title, const QString& filter,
                             const QString& initialPath) {
    const ArrowPointer arrow;
    return QFileDialog::getSaveFileName(parentForDialogs(), title, initialPath, filter);
}

void QtShell::setWaitPointer(bool on) {
    if (on)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

}  // namespace zov::qt
