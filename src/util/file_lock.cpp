#include "util/file_lock.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <algorithm>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace zov {
namespace {

constexpr int LongestNapMs = 20;

#ifndef Q_OS_WIN
QString lastReason() {
    return qt_error_string(errno);
}

QString sync(const QString& path, int flags) {
    const int file = ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
    if (file < 0) return lastReason();
    const QString reason = ::fsync(file) == 0 ? QString() : lastReason();
    ::close(file);
    return reason;
}
#endif

}  // namespace

FileLock::Outcome FileLock::acquire(const QString& path, Mode mode, int patienceMs) {
    release();
    QElapsedTimer waited;
    waited.start();
    for (int nap = 1;; nap = std::min(nap * 2, LongestNapMs)) {
        const Outcome outcome = tryOnce(path, mode);
        if (outcome != Outcome::Busy || waited.elapsed() >= patienceMs) return outcome;
        QThread::msleep(nap);
    }
}

#ifdef Q_OS_WIN

FileLock::Outcome FileLock::tryOnce(const QString& path, Mode mode) {
    const std::wstring name = QDir::toNativeSeparators(path).toStdWString();
    const HANDLE file = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        reason_ = qt_error_string();
        return Outcome::Failed;
    }
    OVERLAPPED place = {};
    const DWORD flags =
        LOCKFILE_FAIL_IMMEDIATELY | (mode == Mode::Exclusive ? LOCKFILE_EXCLUSIVE_LOCK : 0);
    if (!LockFileEx(file, flags, 0, 1, 0, &place)) {
        CloseHandle(file);
        return Outcome::Busy;
    }
    file_ = qintptr(file);
    held_ = true;
    return Outcome::Locked;
}

void FileLock::release() {
    if (held_) CloseHandle(HANDLE(file_));
    held_ = false;
}

QString replaceFile(const QString& from, const QString& to) {
    const std::wstring source = QDir::toNativeSeparators(from).toStdWString();
    const std::wstring target = QDir::toNativeSeparators(to).toStdWString();
    const DWORD flags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    return MoveFileExW(source.c_str(), target.c_str(), flags) ? QString() : qt_error_string();
}

QString syncFile(const QString&) {
    return {};  // moving a file writes it through
}
QString syncFolder(const QString&) {
    return {};
}

#else

FileLock::Outcome FileLock::tryOnce(const QString& path, Mode mode) {
    const QByteArray name = QFile::encodeName(path);
    int file = ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    // A folder that can only be read may hold another user's lock.
    if (file < 0 && (errno == EACCES || errno == EROFS))
        file = ::open(name.constData(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        reason_ = lastReason();
        return Outcome::Failed;
    }
    if (::flock(file, (mode == Mode::Exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB) != 0) {
        const bool busy = errno == EWOULDBLOCK || errno == EINTR;
        reason_ = lastReason();
        ::close(file);
        return busy ? Outcome::Busy : Outcome::Failed;
    }
    // Who held it before may have taken the file away in the meantime: then it locks nothing.
    struct stat mine = {}, there = {};
    if (::fstat(file, &mine) != 0 || ::stat(name.constData(), &there) != 0 ||
        mine.st_ino != there.st_ino || mine.st_dev != there.st_dev) {
        ::close(file);
        return Outcome::Busy;
    }
    file_ = file;
    held_ = true;
    return Outcome::Locked;
}

void FileLock::release() {
    if (held_) ::close(int(file_));
    held_ = false;
}

QString replaceFile(const QString& from, const QString& to) {
    return ::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0
               ? QString()
               : lastReason();
}

QString syncFile(const QString& path) {
    return sync(path, O_RDWR);
}
QString syncFolder(const QString& path) {
    return sync(path, O_RDONLY | O_DIRECTORY);
}

#endif

}  // namespace zov
