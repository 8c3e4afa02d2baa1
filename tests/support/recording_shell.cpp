#include "support/recording_shell.h"

namespace zov::test {
namespace {

QString shown(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\\n"));
    return text.replace(QStringLiteral("\n"), QStringLiteral("\\LF"));
}

QString titled(const QString& kind, const QString& title, const QString& text) {
    return title.isEmpty()
               ? kind + QStringLiteral(": ") + shown(text)
               : kind + QStringLiteral(" [") + shown(title) + QStringLiteral("]: ") + shown(text);
}

template <typename Answer>
Answer next(std::deque<Answer>& answers, Answer whenEmpty) {
    if (answers.empty()) return whenEmpty;
    Answer answer = answers.front();
    answers.pop_front();
    return answer;
}

}  // namespace

RecordingShell::RecordingShell() {
    installShell(this);
}

RecordingShell::~RecordingShell() {
    installShell(nullptr);
}

QStringList RecordingShell::takeLines() {
    QStringList taken;
    taken.swap(lines);
    return taken;
}

void RecordingShell::showModal(Screen& screen) {
    lines += QStringLiteral("screen ") + screen.screenName();
    ScreenView* const before = screen.view;
    screen.view = this;
    if (onScreen) onScreen(screen);
    screen.view = before;
}

void RecordingShell::messageBox(const QString& text, const QString& title, BoxIcon icon) {
    QString kind;
    switch (icon) {
        case BoxIcon::None:
            kind = QStringLiteral("box");
            break;
        case BoxIcon::Information:
            kind = QStringLiteral("information");
            break;
        case BoxIcon::Exclamation:
            kind = QStringLiteral("exclamation");
            break;
        case BoxIcon::Critical:
            kind = QStringLiteral("critical");
            break;
        case BoxIcon::Question:
            kind = QStringLiteral("question");
            break;
    }
    lines += titled(kind, title, text);
}

bool RecordingShell::askYesNo(const QString& text, const QString& title) {
    const bool yes = next(yesNoAnswers, false);
    lines += titled(QStringLiteral("yes/no"), title, text) +
             (yes ? QStringLiteral(" -> yes") : QStringLiteral(" -> no"));
    return yes;
}

BoxAnswer RecordingShell::askYesNoCancel(const QString& text, const QString& title) {
    const BoxAnswer answer = next(yesNoCancelAnswers, BoxAnswer::Cancel);
    lines += titled(QStringLiteral("yes/no/cancel"), title, text) +
             (answer == BoxAnswer::Yes  ? QStringLiteral(" -> yes")
              : answer == BoxAnswer::No ? QStringLiteral(" -> no")
                                        : QStringLiteral(" -> cancel"));
    return answer;
}

bool RecordingShell::runBlocking(const std::function<void()>& work, const std::function<void()>&,
                                 const QString&) {
    ++queries;
    if (giveUpAt > 0 && queries >= giveUpAt) return false;
    work();
    return true;
}

void RecordingShell::pumpEvents() {
    ++pumps;
    if (onPump) onPump();
}

void RecordingShell::setClipboardText(const QString& text) {
    clipboard = text;
    lines += QStringLiteral("clipboard: ") + shown(text);
}

void RecordingShell::openWithDesktop(const QString& fileOrUrl) {
    lines += QStringLiteral("open ") + fileOrUrl;
}

QString RecordingShell::askSavePath(const QString& title, const QString& filter,
                                    const QString& initialPath) {
    const QString path = next(savePaths, QString());
    lines += QStringLiteral("save [") + title + QStringLiteral("] ") + filter +
             QStringLiteral(" | ") + initialPath + QStringLiteral(" -> ") + path;
    return path;
}

QString RecordingShell::askOpenPath(const QString& title, const QString& filter,
                                    const QString& initialPath) {
    const QString path = next(openPaths, QString());
    lines += QStringLiteral("open [") + title + QStringLiteral("] ") + filter +
             QStringLiteral(" | ") + initialPath + QStringLiteral(" -> ") + path;
    return path;
}

void RecordingShell::setWaitPointer(bool on) {
    waitDepth += on ? 1 : -1;
}

void RecordingShell::focusControl(const QString& control, bool selectText) {
    lines += QStringLiteral("focus ") + control +
             (selectText ? QStringLiteral(", text selected") : QString());
}

}  // namespace zov::test
