// Work that may wait long for a server, done in another thread while the desktop
// stays alive: the window paints, nothing but the way out takes clicks and keys.
#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <vector>

class QWidget;

namespace zov::qt {

class WorkerThread;

class BackgroundWork {
 public:
    BackgroundWork();
    ~BackgroundWork();

    /// Runs `work` and gives true when it is done; what it throws comes out here. When it takes
    /// longer than a moment, a note with a Cancel button appears over `window`, which names
    /// `server` and the time; Cancel, Esc or the Stop button of a screen calls `cancel`, again and
    /// again, and leaves work that doesn't end within a tenth of a second behind. False when the
    /// user gave up, even if the work ended by itself at that moment; from then on nothing is run
    /// and all calls give false, until forgetGivingUp().
    bool run(const std::function<void()>& work, const std::function<void()>& cancel,
             QWidget* window, const QString& server = {});
    void forgetGivingUp() { gaveUp_ = false; }

    /// Work that was left behind and hasn't ended yet.
    bool hasAbandonedWork() const;

 private:
    std::shared_ptr<WorkerThread> worker_;
    std::vector<std::shared_ptr<WorkerThread>> abandoned_;
    bool running_ = false;
    bool gaveUp_ = false;
};

}  // namespace zov::qt
