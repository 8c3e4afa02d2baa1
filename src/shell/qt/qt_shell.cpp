#include "shell/qt/qt_shell.h"

#include "core/globals.h"
#include "core/product.h"
#include "shell/qt/screen_dialog.h"
#include "shell/qt/window_fit.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QUrl>

// The macro stands outside of namespaces: it declares a function of the global one.
static void initIcons() {
    Q_INIT_RESOURCE(icons);
}

namespace zov::qt {

void initDesktopResources() {
    initIcons();
}

namespace {

// Sixty times a second is as often as anybody can see.
constexpr qint64 PumpMilliseconds = 16;
// What Windows answers when no program is registered for a file; elsewhere no number says why.
constexpr int NoProgramForFile = 31;

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

/// Sees the clicks and keys of the whole program. One that comes while nothing is under way asks
/// for something new.
class NewWishes : public QObject {
 public:
    explicit NewWishes(Shell& shell) : shell_(shell) { qApp->installEventFilter(this); }

 protected:
    bool eventFilter(QObject*, QEvent* event) override {
        const bool isInput =
            event->type() == QEvent::MouseButtonPress || event->type() == QEvent::KeyPress;
        const QCursor* pointer = QApplication::overrideCursor();
        if (isInput && (!pointer || pointer->shape() != Qt::WaitCursor)) shell_.beginOperation();
        return false;
    }

 private:
    Shell& shell_;
};

}  // namespace

QtShell::QtShell() : newWishes_(std::make_unique<NewWishes>(*this)) {
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
    fitBox(box);
    box.exec();
}

namespace {

bool askWithDefault(QMessageBox::StandardButton button, const QString& text, const QString& title,
                    QWidget* parent) {
    const ArrowPointer arrow;
    QMessageBox box(QMessageBox::Question, title.isEmpty() ? product::Name : title, text,
                    QMessageBox::Yes | QMessageBox::No, parent);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(button);
    fitBox(box);
    return box.exec() == QMessageBox::Yes;
}

}  // namespace

bool QtShell::askYesNo(const QString& text, const QString& title) {
    return askWithDefault(QMessageBox::Yes, text, title, parentForDialogs());
}

bool QtShell::askYesNoDefaultNo(const QString& text, const QString& title) {
    return askWithDefault(QMessageBox::No, text, title, parentForDialogs());
}

BoxAnswer QtShell::askYesNoCancel(const QString& text, const QString& title) {
    const ArrowPointer arrow;
    QMessageBox box(QMessageBox::Question, title.isEmpty() ? product::Name : title, text,
                    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, parentForDialogs());
    box.setTextFormat(Qt::PlainText);
    fitBox(box);
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

bool QtShell::runBlocking(const std::function<void()>& work, const std::function<void()>& cancel,
                          const QString& server) {
    return background_.run(work, cancel, parentForDialogs(), server);
}

void QtShell::setClipboardText(const QString& text) {
    QApplication::clipboard()->setText(text);
}

void QtShell::openWithDesktop(const QString& fileOrUrl) {
    const bool isFile = QFileInfo::exists(fileOrUrl);
    if (QDesktopServices::openUrl(isFile ? QUrl::fromLocalFile(fileOrUrl)
                                         : QUrl(fileOrUrl, QUrl::TolerantMode)))
        return;
    messageBox(QStringLiteral("Error on LaunchProgram: %1").arg(NoProgramForFile), {},
               BoxIcon::Exclamation);
}

namespace {

// A dialog begins in the current folder, the program's own, when the one it is given doesn't exist.
QString inDocuments(const QString& path) {
    const QFileInfo wanted(path);
    if (wanted.isAbsolute() && wanted.dir().exists()) return path;
    const QString documents = globals().gstrUserDataFolder;
    const bool exists = !documents.isEmpty() && QDir().mkpath(documents);
    return (exists ? documents : QDir::homePath() + u'/') + wanted.fileName();
}

QString dialogFilter(const QString& filter) {
    // Names without a dot are names too.
    QString shown = filter == u"*.*" ? QStringLiteral("All files (*)") : filter;
    // "Export Files (*.htm)|*.htm": the name says its patterns as this dialog wants them.
    if (const qsizetype bar = shown.indexOf(u'|'); bar > 0) shown.truncate(bar);
    return shown;
}

}  // namespace

QString QtShell::askSavePath(const QString& title, const QString& filter,
                             const QString& initialPath) {
    const ArrowPointer arrow;
    return QFileDialog::getSaveFileName(parentForDialogs(), title, inDocuments(initialPath),
                                        dialogFilter(filter));
}

QString QtShell::askOpenPath(const QString& title, const QString& filter,
                             const QString& initialPath) {
    const ArrowPointer arrow;
    return QFileDialog::getOpenFileName(parentForDialogs(), title, inDocuments(initialPath),
                                        dialogFilter(filter));
}

void QtShell::setWaitPointer(bool on) {
    if (on)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

}  // namespace zov::qt
