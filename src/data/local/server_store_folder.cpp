// The folder of a store: its locks, how it is made and goes, and what processes that were killed
// have left in it.
//   server.lock           held for moments: shared to open a database's file or to begin to write
//                         it, alone to put files into the place of others
//   server.journal        how to undo what is being published now (server_store_publish.cpp)
//   X.db.new-OWNER-n      a database that nobody else sees yet
//   X.db.before-OWNER     what a database was before a load; X.db.old-OWNER: one that was replaced
//   staging-OWNER.lock    locked as long as the owner of such files lives
#include "data/local/server_store_entry.h"
#include "util/atomic_file.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace zov::local {
namespace {

QString ownerLockFile(const QString& folder, const QString& owner) {
    return folder + QStringLiteral("/staging-") + owner + QStringLiteral(".lock");
}

[[noreturn]] void folderFailed(const QString& folder, const QString& why) {
    throw DbError(ado_error::Unspecified,
                  QStringLiteral("The folder %1 of the embedded server can't be used: %2. Check "
                                 "that it can be written to.")
                      .arg(QDir::toNativeSeparators(folder), why),
                  QStringLiteral("42000"), 5120);
}

}  // namespace

ServerStore::Hold::Hold(ServerStore& store, bool alone) : store_(store) {
    if (store_.holds_ == 0) {
        store_.lockFolder(alone);
        store_.alone_ = alone;
    }
    Q_ASSERT(store_.alone_ || !alone);
    ++store_.holds_;
}

ServerStore::Hold::~Hold() {
    if (--store_.holds_ > 0) return;
    store_.alone_ = false;
    store_.folderLock_.release();
}

QString ServerStore::journalFile() const {
    return folder_ + QStringLiteral("/server.journal");
}
QString ServerStore::lockFile() const {
    return folder_ + QStringLiteral("/server.lock");
}

void ServerStore::lockFolder(bool alone) {
    if (inMemory_) return;
    const auto acquire = [&](FileLock::Mode mode) {
        switch (folderLock_.acquire(lockFile(), mode, LockPatienceMs)) {
            case FileLock::Outcome::Locked:
                return;
            case FileLock::Outcome::Busy:
                throw nativeError(1222,
                                  QStringLiteral("Lock request time out period exceeded. Another "
                                                 "session is putting databases in place."),
                                  ado_error::Timeout);
            case FileLock::Outcome::Failed:
                break;
        }
        // Where nothing can be written nobody puts anything in place, and a folder that is gone is
        // told by who looks for a database in it.
        const QFileInfo folder(folder_);
        const bool harmless = !folder.isDir() || !folder.isWritable();
        if (mode == FileLock::Mode::Exclusive || !harmless)
            folderFailed(folder_, folderLock_.reason());
    };
    acquire(alone ? FileLock::Mode::Exclusive : FileLock::Mode::Shared);
    while (QFileInfo::exists(journalFile())) {
        // Whoever wrote it held the lock until it was done, so it never will be.
        if (!alone) acquire(FileLock::Mode::Exclusive);
        if (QFileInfo::exists(journalFile())) undoPublication();
        if (!alone) acquire(FileLock::Mode::Shared);
    }
}

const QString& ServerStore::owner() {
    if (!owner_.isEmpty()) return owner_;
    static std::atomic<int> counter = 0;
    const QString name = QString::number(QDateTime::currentMSecsSinceEpoch(), 36) + u'p' +
                         QString::number(QCoreApplication::applicationPid(), 36) + u'n' +
                         QString::number(++counter, 36);
    makeFolder({});
    if (ownerLock_.acquire(ownerLockFile(folder_, name), FileLock::Mode::Exclusive, 1'000) !=
        FileLock::Outcome::Locked)
        folderFailed(folder_, ownerLock_.reason());
    return owner_ = name;
}

void ServerStore::releaseOwner() {
    if (owner_.isEmpty()) return;
    QFile::remove(ownerLockFile(folder_, owner_));
    ownerLock_.release();
    owner_.clear();
}

// With `facts`, the file of that name is written unless another session has done it.
void ServerStore::makeFolder(const QString& facts) {
    if (!QFileInfo(folder_).isDir() && !QDir().mkpath(folder_))
        throw DbError(ado_error::Unspecified,
                      QStringLiteral("The folder %1 of the embedded server could not be made.")
                          .arg(QDir::toNativeSeparators(folder_)),
                      QStringLiteral("08001"), 17);
    if (facts.isEmpty()) return;
    const Hold hold(*this, true);
    if (QFileInfo::exists(facts)) {
        folderMade_ = false;
        return;
    }
    const QJsonObject object{{QStringLiteral("version"), productVersion_}};
    const QString trouble = writeFileAtomically(facts, QJsonDocument(object).toJson());
    if (!trouble.isEmpty())
        throw DbError(ado_error::Unspecified, trouble, QStringLiteral("08001"), 17);
}

// The folder that came with a load goes with it, unless others have put something there meanwhile.
void ServerStore::removeMadeFolder() {
    folderMade_ = false;
    if (!QFileInfo(folder_).isDir()) return;
    const Hold hold(*this, true);
    for (const char* name : {"master", "tempdb", "model", "msdb"}) {
        forget(QLatin1String(name));
        pool().purge(folder_ + u'/' + fileNameOf(QLatin1String(name)));
    }
    const QString own = owner_.isEmpty() ? QString() : ownerLockFile(folder_, owner_);
    QStringList going;
    for (const QFileInfo& file : QDir(folder_).entryInfoList(QDir::Files)) {
        const bool system =
            file.suffix() == QLatin1String("db") && systemId(file.completeBaseName()) > 0;
        const bool known = file.fileName() == QLatin1String("server.json") ||
                           file.filePath() == lockFile() || file.filePath() == own;
        if (!system && !known) return;
        going.append(file.filePath());
    }
    for (const QString& file : going) removeDatabaseFiles(file);
    owner_.clear();
    ownerLock_.release();
    QDir().rmdir(folder_);
}

// What processes that are dead have left. It can wait when somebody is busy with the folder.
void ServerStore::sweep() {
    const QDir folder(folder_);
    QStringList left;
    try {
        left = filesIn(folder_, [](const QString& name) {
            return name.contains(QLatin1String(".db.new-")) ||
                   name.contains(QLatin1String(".db.before-")) ||
                   name.contains(QLatin1String(".db.old-")) ||
                   name.startsWith(QLatin1String("staging-"));
        });
    } catch (const DbError&) {
        return;  // what needs the folder will tell
    }
    if (left.isEmpty()) return;
    if (QFileInfo::exists(journalFile())) const Hold hold(*this);  // undoes what it tells
    FileLock alone;
    if (alone.acquire(lockFile(), FileLock::Mode::Exclusive, 0) != FileLock::Outcome::Locked ||
        QFileInfo::exists(journalFile()))
        return;
    static const QRegularExpression form(QStringLiteral(
        R"(^(?:.*\.db\.(?:new|before|old)-([0-9a-z]+)(?:-.*)?|staging-([0-9a-z]+)\.lock)$)"));
    std::map<QString, QStringList> byOwner;
    for (const QString& file : left) {
        const QRegularExpressionMatch match = form.match(file);
        if (match.hasMatch()) byOwner[match.captured(1) + match.captured(2)].append(file);
    }
    for (const auto& [owner, files] : byOwner) {
        const QString lock = ownerLockFile(folder_, owner);
        FileLock dead;
        if (QFileInfo::exists(lock) &&
            dead.acquire(lock, FileLock::Mode::Exclusive, 0) != FileLock::Outcome::Locked)
            continue;
        for (const QString& file : files)
            if (folder.filePath(file) != lock) QFile::remove(folder.filePath(file));
        QFile::remove(lock);
    }
}

}  // namespace zov::local
