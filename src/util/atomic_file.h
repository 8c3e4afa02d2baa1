// Files that are replaced whole or not at all: temporary file in the same
// folder, flushed to the disk, renamed over the old one. And the read-change-
// write of a small file that another process may be changing too.
#pragma once

#include "util/text_decode.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>

class QFileDevice;

namespace zov {

enum class FileAccess {
    Default,    ///< an existing file keeps its permissions
    OwnerOnly,  ///< nobody else may read or write it, from its first byte on
};

enum class MissingFolder {
    Make,
    Refuse,  ///< for a path that somebody typed: a slip of the pen makes no folders
};

/// Replaces (or makes) the file; its folder is made when missing. A symbolic link stays one and its
/// target is replaced; what is no file, a device or a pipe, is written to. On failure the old file
/// stands as it was, and the result is one sentence that names the path and the reason; empty on
/// success.
QString writeFileAtomically(const QString& path, const QByteArray& bytes,
                            FileAccess access = FileAccess::Default);

/// The same for what is too long to be held at once: pieces go to the temporary file, and commit()
/// puts it in the place of the old one. An object that goes without it leaves the old file alone.
class AtomicFile {
 public:
    explicit AtomicFile(const QString& path, FileAccess access = FileAccess::Default,
                        MissingFolder folder = MissingFolder::Make);
    ~AtomicFile();

    /// False when this piece or an earlier one could not be written.
    bool write(const QByteArray& bytes);
    /// Why the file can't be written, as above; empty while all is well.
    const QString& failure() const { return failure_; }
    /// failure() at the end of all.
    QString commit();

 private:
    QString path_;
    QString failure_;
    std::unique_ptr<QFileDevice> file_;
};

/// Reads a whole file. A missing file is empty and no failure; `exists` tells. The result is a
/// sentence as above, empty on success.
QString readWholeFile(const QString& path, QByteArray& bytes, bool* exists = nullptr);

/// How long to wait for a lock that another process holds.
enum class LockWait {
    Patient,
    None,  ///< for what may as well be written the next time
};

/// Reads the file anew under a lock (`path` & ".lock"), lets `change` edit its text, and writes it
/// back in the encoding it had, unless nothing was changed. A new file is UTF-8. The result is a
/// sentence as above, empty on success, and with LockWait::None also when the lock wasn't free.
QString updateTextFile(const QString& path, FileAccess access,
                       const std::function<void(QString& text)>& change,
                       LockWait wait = LockWait::Patient);

}  // namespace zov
