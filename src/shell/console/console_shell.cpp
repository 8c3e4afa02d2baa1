#include "shell/console/console_shell.h"

#include "shell/console/interrupt.h"
#include "shell/console/terminal.h"
#include "shell/console/visible_text.h"
#include "shell/screen.h"

#include <QStringList>

#include <cstdio>

namespace zov {
namespace {

constexpr int LineWidth = 79;
constexpr qint64 ProgressIntervalMs = 50;

void writeToStandardError(const QString& text) {
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
    std::fflush(stderr);
}

QString withTitle(const QString& title, const QString& text) {
    return title.isEmpty() ? text : title + QStringLiteral(": ") + text;
}

}  // namespace

ConsoleShell::ConsoleShell(const QString& programName, std::function<void(const QString&)> write,
                           bool terminal)
    : programName_(programName), write_(std::move(write)), terminal_(terminal) {}

ConsoleShell::ConsoleShell(const QString& programName)
    : ConsoleShell(programName, writeToStandardError, standardErrorIsTerminal()) {}

ConsoleShell::~ConsoleShell() {
    clearProgress();
}

void ConsoleShell::writeLines(const QString& text) {
    clearProgress();
    QString lines;
    QString start = programName_ + QStringLiteral(": ");
    QString plain = text;
    plain.replace(u'\r', u'\n');
    for (const QString& line : plain.split(u'\n', Qt::SkipEmptyParts)) {
        if (line.trimmed().isEmpty()) continue;
        lines += start + visibleText(line.trimmed()) + u'\n';
        start = QStringLiteral("  ");
    }
    write_(lines);
}

void ConsoleShell::showError(const QString& text) {
    ++errors_;
    // A run that fails the same way again and again says so once.
    if (text == lastError_) return;
    lastError_ = text;
    writeLines(text);
}

void ConsoleShell::showNote(const QString& text) {
    writeLines(text);
}

void ConsoleShell::showProgress(const QString& text) {
    if (!terminal_) return;
    if (sinceProgress_.isValid() && sinceProgress_.elapsed() < ProgressIntervalMs) return;
    sinceProgress_.start();
    const QString line = visibleText(text).left(LineWidth);
    write_(u'\r' + line + QString(qMax(0, progressLength_ - int(line.size())), u' '));
    progressLength_ = int(line.size());
}

void ConsoleShell::clearProgress() {
    if (progressLength_ == 0) return;
    write_(u'\r' + QString(progressLength_, u' ') + u'\r');
    progressLength_ = 0;
    sinceProgress_.invalidate();
}

void ConsoleShell::showModal(Screen& screen) {
    const QString text = screen.plainText();
    if (!text.isEmpty()) showError(text);
}

void ConsoleShell::messageBox(const QString& text, const QString& title, BoxIcon icon) {
    if (icon == BoxIcon::Exclamation || icon == BoxIcon::Critical) ++errors_;
    writeLines(withTitle(title, text));
}

bool ConsoleShell::askYesNo(const QString& text, const QString& title) {
    writeLines(withTitle(title, text) + QStringLiteral(" - answered No"));
    return false;
}

BoxAnswer ConsoleShell::askYesNoCancel(const QString& text, const QString& title) {
    writeLines(withTitle(title, text) + QStringLiteral(" - answered No"));
    return BoxAnswer::No;
}

void ConsoleShell::pumpEvents() {
    if (interruptRequested() && onInterrupt) onInterrupt();
}

bool ConsoleShell::runBlocking(const std::function<void()>& work,
                               const std::function<void()>& cancel, const QString&) {
    // Nobody waits for an answer any more.
    if (interruptRequested()) {
        if (onInterrupt) onInterrupt();
        return false;
    }
    const BreakOff atInterrupt(cancel);
    work();
    return true;
}

void ConsoleShell::openWithDesktop(const QString& fileOrUrl) {
    showNote(fileOrUrl);
}

}  // namespace zov
