#include "util/atomic_file.h"

#include "util/file_lock.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <filesystem>

namespace zov {
namespace {

constexpr int LockPatienceMs = 10'000;

QString cannotWrite(const QString& path, const QString& reason) {
    return QStringLiteral("Cannot write %1: %2.").arg(QDir::toNativeSeparators(path), reason);
}

/// Empty when the file's folder is there, or was made, else the sentence.
QString ensureFolder(const QString& path, MissingFolder missing = MissingFolder::Make) {
    if (path.isEmpty()) return QStringLiteral("Cannot write a file without a name.");
    const QString folder = QFileInfo(path).absolutePath();
    if (QFileInfo(folder).isDir()) return {};
    if (missing == MissingFolder::Refuse)
        return cannotWrite(
            path, QStringLiteral("there is no folder %1").arg(QDir::toNativeSeparators(folder)));
    if (QDir().mkpath(folder)) return {};
    return cannotWrite(
        path, QStringLiteral("the folder %1 cannot be made").arg(QDir::toNativeSeparators(folder)));
}

std::filesystem::path nativePath(const QString& path) {
#ifdef Q_OS_WIN
    return path.toStdWString();
#else
    return QFile::encodeName(path).toStdString();
#endif
}

}  // namespace

AtomicFile::AtomicFile(const QString& path, FileAccess access, MissingFolder folder)
    : path_(path), failure_(ensureFolder(path, folder)) {
    if (!failure_.isEmpty()) return;
    // A device or a pipe is written to; a file in its place would be no use to who reads it.
    const QFileInfo info(path);
    if (info.exists() && !info.isFile() && !info.isDir())
        file_ = std::make_unique<QFile>(path);
    else
        file_ = std::make_unique<QSaveFile>(path);
    // Unbuffered: with a buffer a disk that fills is noticed when the file is closed for renaming,
    // and the cut file takes the place of the old one all the same (Qt 6.4).
    if (!file_->open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        failure_ = cannotWrite(path, file_->errorString());
    } else if (access == FileAccess::OwnerOnly) {
        file_->setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    }
}

AtomicFile::~AtomicFile() = default;

bool AtomicFile::write(const QByteArray& bytes) {
    for (qsizetype done = 0; failure_.isEmpty() && done < bytes.size();) {
        const qint64 written = file_->write(bytes.constData() + done, bytes.size() - done);
        if (written <= 0) {
            failure_ = cannotWrite(path_, file_->errorString());
            if (auto* replacing = qobject_cast<QSaveFile*>(file_.get())) {
                replacing->cancelWriting();
                replacing->commit();
            }
            break;
        }
        done += qsizetype(written);
    }
    return failure_.isEmpty();
}

QString AtomicFile::commit() {
    auto* const replacing = qobject_cast<QSaveFile*>(file_.get());
    if (failure_.isEmpty() && replacing && !replacing->commit())
        failure_ = cannotWrite(path_, file_->errorString());
    return failure_;
}

QString writeFileAtomically(const QString& path, const QByteArray& bytes, FileAccess access) {
    AtomicFile file(path, access);
    file.write(bytes);
    return file.commit();
}

QString readWholeFile(const QString& path, QByteArray& bytes, bool* exists) {
    bytes.clear();
    const auto cannotRead = [&](const QString& reason) {
        return QStringLiteral("Cannot read %1: %2.").arg(QDir::toNativeSeparators(path), reason);
    };
    // A file that can't be looked for, in a folder that is closed to us, is not a missing one.
    std::error_code failure;
    const auto kind = std::filesystem::status(nativePath(path), failure).type();
    if (exists) *exists = kind != std::filesystem::file_type::not_found;
    if (kind == std::filesystem::file_type::not_found) return {};
    if (kind == std::filesystem::file_type::none)
        return cannotRead(QString::fromLocal8Bit(failure.message().c_str()));
    if (kind == std::filesystem::file_type::directory)
        return cannotRead(QStringLiteral("it is a folder"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return cannotRead(file.errorString());
    bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        bytes.clear();
        return cannotRead(file.errorString());
    }
    return {};
}

QString updateTextFile(const QString& path, FileAccess access,
                       const std::function<void(QString& text)>& change, LockWait wait) {
    if (const QString trouble = ensureFolder(path); !trouble.isEmpty()) return trouble;
    // The system's own lock: a program that is killed lets go of it, at whatever moment.
    FileLock lock;
    switch (lock.acquire(path + QStringLiteral(".lock"), FileLock::Mode::Exclusive,
                         wait == LockWait::None ? 0 : LockPatienceMs)) {
        case FileLock::Outcome::Locked:
            break;
        case FileLock::Outcome::Busy:
            if (wait == LockWait::None) return {};
            return cannotWrite(path, QStringLiteral("another program holds its lock file"));
        case FileLock::Outcome::Failed:
            return cannotWrite(path,
                               QStringLiteral("its lock file cannot be made: ") + lock.reason());
    }
    QByteArray bytes;
    bool exists = false;
    if (const QString trouble = readWholeFile(path, bytes, &exists); !trouble.isEmpty()) {
        return trouble;
    }
    const DecodedText decoded = decodeText(bytes);
    QString text = decoded.text;
    change(text);
    if (text == decoded.text) return {};
    return writeFileAtomically(path, encodeText(text, decoded.encoding), access);
}

}  // namespace zov
