#include "shell/qt/background_work.h"

#include "util/text.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace zov::qt {

using namespace std::chrono_literals;

/// A thread that takes one piece of work after the other.
class WorkerThread : public std::enable_shared_from_this<WorkerThread> {
 public:
    static std::shared_ptr<WorkerThread> start() {
        auto worker = std::make_shared<WorkerThread>();
        // Detached: it keeps itself alive until it is told to end, however long a server keeps it.
        std::thread([worker] { worker->loop(); }).detach();
        return worker;
    }

    void give(const std::function<void()>& work) {
        const std::lock_guard lock(guard_);
        work_ = work;
        failure_ = nullptr;
        busy_ = true;
        wake_.notify_all();
    }

    /// True when the work is done.
    bool waitFor(std::chrono::milliseconds time) {
        std::unique_lock lock(guard_);
        return wake_.wait_for(lock, time, [this] { return !busy_; });
    }

    bool isBusy() const {
        const std::lock_guard lock(guard_);
        return busy_;
    }

    std::exception_ptr takeFailure() {
        const std::lock_guard lock(guard_);
        return std::exchange(failure_, nullptr);
    }

    void end() {
        const std::lock_guard lock(guard_);
        ended_ = true;
        wake_.notify_all();
    }

 private:
    void loop() {
        std::unique_lock lock(guard_);
        for (;;) {
            wake_.wait(lock, [this] { return busy_ || ended_; });
            if (!busy_) return;
            std::function<void()> work = std::move(work_);
            work_ = nullptr;
            lock.unlock();
            std::exception_ptr failure;
            try {
                work();
            } catch (...) {
                failure = std::current_exception();
            }
            work = nullptr;
            lock.lock();
            failure_ = failure;
            busy_ = false;
            wake_.notify_all();
            if (ended_) return;
        }
    }

    mutable std::mutex guard_;
    std::condition_variable wake_;
    std::function<void()> work_;
    std::exception_ptr failure_;
    bool busy_ = false;
    bool ended_ = false;
};

namespace {

// Most work is done before anybody could notice: no event is served then.
constexpr auto Moment = 40ms;
constexpr int NoteAfter = 400;         // milliseconds
constexpr int LeaveBehindAfter = 100;  // milliseconds after Cancel

/// A screen's own way out means the same as the note's.
bool isWayOut(const QObject* object) {
    return object->objectName() == u"cmdCancel" || object->objectName() == u"cmdStop";
}

/// Esc, a button of a screen that has the focus, or its letter.
bool asksForWayOut(const QKeyEvent& key, const QObject* receiver) {
    if (key.key() == Qt::Key_Escape) return true;
    // Keys come to the window first, which would hand them to the widget with the focus.
    const auto* focus = qobject_cast<const QWidget*>(receiver);
    if (!focus) focus = QApplication::focusWidget();
    if (focus && isWayOut(focus) &&
        (key.key() == Qt::Key_Space || key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter))
        return true;
    const QWidget* window = focus ? focus->window() : QApplication::activeWindow();
    if (!window || key.modifiers() != Qt::AltModifier) return false;
    for (const QPushButton* button : window->findChildren<QPushButton*>())
        if (isWayOut(button) && button->isVisible() &&
            button->shortcut() == QKeySequence(key.modifiers() | Qt::Key(key.key())))
            return true;
    return false;
}

/// Lets the window paint and keeps clicks and keys from everything but the note.
class WaitingNote : public QObject {
 public:
    WaitingNote(QWidget* window, const QString& server) : window_(window), server_(server) {
        since_.start();
        qApp->installEventFilter(this);
        QTimer::singleShot(NoteAfter, this, [this] { showNote(); });
        connect(&clock_, &QTimer::timeout, this, [this] { showTime(); });
    }
    ~WaitingNote() override {
        qApp->removeEventFilter(this);
        delete note_.data();
    }
    bool isCancelled() const { return cancelled_; }

 protected:
    bool eventFilter(QObject* receiver, QEvent* event) override {
        switch (event->type()) {
            case QEvent::KeyPress:
            case QEvent::ShortcutOverride:
                if (asksForWayOut(*static_cast<QKeyEvent*>(event), receiver)) cancelled_ = true;
                return true;
            case QEvent::Close:
                // The window goes with the next try, when nothing runs in it.
                cancelled_ = true;
                event->ignore();
                return true;
            case QEvent::KeyRelease:
            case QEvent::Shortcut:
            case QEvent::Wheel:
            case QEvent::ContextMenu:
            case QEvent::Drop:
            case QEvent::MouseButtonPress:
            case QEvent::MouseButtonRelease:
            case QEvent::MouseButtonDblClick:
            case QEvent::TouchBegin:
            case QEvent::TouchEnd: {
                if (receiver->isWindowType()) return false;  // on its way to a widget
                auto* widget = qobject_cast<QWidget*>(receiver);
                if (widget && note_ && (widget == note_ || note_->isAncestorOf(widget)))
                    return false;
                if (event->type() == QEvent::MouseButtonPress && widget && isWayOut(widget))
                    cancelled_ = true;
                return true;
            }
            default:
                return false;
        }
    }

 private:
    void showNote() {
        if (!window_ || !window_->isVisible()) return;
        note_ = new QFrame(window_);
        note_->setObjectName(QStringLiteral("waitingNote"));
        note_->setFrameShape(QFrame::StyledPanel);
        note_->setAutoFillBackground(true);
        note_->setCursor(Qt::ArrowCursor);
        auto* bar = new QProgressBar;
        bar->setRange(0, 0);
        bar->setTextVisible(false);
        bar->setFixedWidth(90);
        auto* cancel = new QPushButton(QStringLiteral("Cancel"));
        cancel->setFocusPolicy(Qt::NoFocus);
        connect(cancel, &QPushButton::pressed, this, [this] { cancelled_ = true; });
        auto* text = new QLabel;
        text->setTextFormat(Qt::PlainText);
        text->setObjectName(QStringLiteral("waitingFor"));
        time_ = new QLabel(QStringLiteral("00:00:00"));
        time_->setObjectName(QStringLiteral("waitingTime"));
        time_->setMinimumWidth(time_->sizeHint().width());
        auto* layout = new QHBoxLayout(note_);
        layout->addWidget(text);
        layout->addWidget(time_);
        layout->addWidget(bar);
        layout->addWidget(cancel);
        const QString waiting = QStringLiteral("Waiting for the server %1...");
        text->setText(waiting.arg(server_).replace(QStringLiteral(" ..."), QStringLiteral("...")));
        // The name gives way where the window is narrow; the button doesn't.
        if (const int excess = note_->sizeHint().width() - window_->width(); excess > 0) {
            const QFontMetrics metrics = text->fontMetrics();
            text->setText(waiting.arg(
                metrics.elidedText(server_, Qt::ElideMiddle,
                                   std::max(metrics.horizontalAdvance(server_) - excess - 8, 40))));
        }
        text->setToolTip(server_);
        showTime();
        clock_.start(500);
        note_->adjustSize();
        note_->move((window_->width() - note_->width()) / 2,
                    (window_->height() - note_->height()) / 2);
        note_->show();
        note_->raise();
    }

    void showTime() { time_->setText(formatElapsed(since_.elapsed())); }

    QPointer<QWidget> window_;
    QString server_;
    QElapsedTimer since_;
    QTimer clock_;
    QPointer<QFrame> note_;
    QLabel* time_ = nullptr;  ///< of the note
    bool cancelled_ = false;
};

}  // namespace

BackgroundWork::BackgroundWork() = default;

BackgroundWork::~BackgroundWork() {
    if (worker_) worker_->end();
}

bool BackgroundWork::hasAbandonedWork() const {
    for (const std::shared_ptr<WorkerThread>& worker : abandoned_)
        if (worker->isBusy()) return true;
    return false;
}

bool BackgroundWork::run(const std::function<void()>& work, const std::function<void()>& cancel,
                         QWidget* window, const QString& server) {
    if (gaveUp_) return false;
    // Work that is asked for while other work is waited for comes from a timer: it is done at once.
    if (running_) {
        work();
        return true;
    }
    running_ = true;
    const auto ended = std::shared_ptr<void>(nullptr, [this](void*) { running_ = false; });
    if (!worker_) worker_ = WorkerThread::start();
    worker_->give(work);
    if (!worker_->waitFor(Moment)) {
        WaitingNote note(window, server);
        QElapsedTimer sinceCancel;
        for (;;) {
            QApplication::processEvents(QEventLoop::AllEvents, 10);
            gaveUp_ = note.isCancelled();
            if (worker_->waitFor(10ms)) break;
            if (!gaveUp_) continue;
            if (!sinceCancel.isValid()) sinceCancel.start();
            // Again and again: the work may not have come to what can be cancelled.
            cancel();
            if (sinceCancel.elapsed() < LeaveBehindAfter) continue;
            worker_->end();
            abandoned_.push_back(std::exchange(worker_, nullptr));
            return false;
        }
    }
    if (const std::exception_ptr failure = worker_->takeFailure()) std::rethrow_exception(failure);
    return !gaveUp_;
}

}  // namespace zov::qt
