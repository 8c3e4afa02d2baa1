// Work that may wait long for a server, done in another thread while the desktop
// stays alive: the window paints, nothing but the way out takes clicks and keys.
#pragma once

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
    /// longer than a moment, a note with a Cancel button appears over `window`; Cancel or Esc calls
    /// `cancel`, again and again, and leaves work that doesn't end within a tenth of a second
    /// behind: false then.
    bool run(const std::function<void()>& work, const std::function<void()>& cancel,
             QWidget* window);

    /// Work that was left behind and hasn't ended yet.
    bool hasAbandonedWork() const;

 private:
    std::shared_ptr<WorkerThread> worker_;
    std::vector<std::shared_ptr<WorkerThread>> abandoned_;
    bool running_ = false;
};

}  // namespace zov::qt
