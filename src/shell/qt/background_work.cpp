#include "shell/qt/background_work.h"

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

/// Lets the window paint and keeps clicks and keys from everything but the note.
class WaitingNote : public QObject {
 public:
    explicit WaitingNote(QWidget* window) : window_(window) {
        qApp->installEventFilter(this);
        QTimer::singleShot(NoteAfter, this, [this] { showNote(); });
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
                if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) cancelled_ = true;
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
                // A screen's own Cancel means the same.
                if (event->type() == QEvent::MouseButtonPress && widget &&
                    widget->objectName() == u"cmdCancel")
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
        bar->setFixedWidth(140);
        auto* cancel = new QPushButton(QStringLiteral("Cancel"));
        cancel->setFocusPolicy(Qt::NoFocus);
        connect(cancel, &QPushButton::pressed, this, [this] { cancelled_ = true; });
        auto* layout = new QHBoxLayout(note_);
        layout->addWidget(new QLabel(QStringLiteral("Waiting for the server...")));
        layout->addWidget(bar);
        layout->addWidget(cancel);
        note_->adjustSize();
        note_->move((window_->width() - note_->width()) / 2,
                    (window_->height() - note_->height()) / 2);
        note_->show();
        note_->raise();
    }

    QPointer<QWidget> window_;
    QPointer<QFrame> note_;
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
                         QWidget* window) {
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
        WaitingNote note(window);
        QElapsedTimer sinceCancel;
        for (;;) {
            QApplication::processEvents(QEventLoop::AllEvents, 10);
            if (worker_->waitFor(10ms)) break;
            if (!note.isCancelled()) continue;
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
    return true;
}

}  // namespace zov::qt
