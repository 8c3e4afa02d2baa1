// Locks between processes, and the steps with files that have to be whole or not at all. A lock is
// an advisory one on a file of its own: the system lets go of it when its process ends, however
// that happens, so that what nobody holds was left behind.
#pragma once

#include <QString>

namespace zov {

class FileLock {
 public:
    enum class Mode { Shared, Exclusive };
    enum class Outcome {
        Locked,
        Busy,    ///< somebody else holds it, all the time that was given
        Failed,  ///< the file can't be made or opened
    };

    FileLock() = default;
    ~FileLock() { release(); }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// Makes the file when it is missing, and waits up to `patienceMs`. Two locks of one process
    /// exclude each other as those of two processes do. What was held before is let go first.
    Outcome acquire(const QString& path, Mode mode, int patienceMs);
    void release();
    bool held() const { return held_; }
    /// Why acquire() failed, for a sentence.
    const QString& reason() const { return reason_; }

 private:
    Outcome tryOnce(const QString& path, Mode mode);

    bool held_ = false;
    qintptr file_ = -1;
    QString reason_;
};

/// Puts a file in the place of another one, or where none is, in one step. The result is why it
/// could not be done, empty on success.
QString replaceFile(const QString& from, const QString& to);
/// Waits until a file, or what a folder lists, is on the disk; the result as above.
QString syncFile(const QString& path);
QString syncFolder(const QString& path);

}  // namespace zov
