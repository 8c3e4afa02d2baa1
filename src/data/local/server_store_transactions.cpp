// Loads, transactions and statements of a store: what is undone together.
#include "data/local/server_store_publish.h"

#include <QElapsedTimer>
#include <QThread>

namespace zov::local {

void ServerStore::beginLoad() {
    Q_ASSERT(!inLoad_ && transactionCount_ == 0);
    inLoad_ = true;
}

void ServerStore::requireWhole() const {
    if (!lost_) return;
    throw DbError(ado_error::Unspecified,
                  QStringLiteral("An error of the disk made the server undo what the load had done "
                                 "so far. Nothing of it can be kept: see to the disk, and load "
                                 "again."),
                  QStringLiteral("40000"), 3998);
}

void ServerStore::commitLoad() {
    requireWhole();
    Publication publication;
    std::set<QString> replaced;
    for (auto& [key, entry] : open_) {
        entry->detachOthers();
        if (entry->staged) {
            PublicationStep& step = publication.place(key, *entry, folder_);
            const auto old = dropped_.find(key);
            step.replaces = old != dropped_.end() && old->second == step.file;
            if (step.replaces) replaced.insert(key);
        } else if (entry->begun) {
            publication.commit(key, *entry);
        }
    }
    for (const auto& [key, file] : dropped_)
        if (!replaced.contains(key)) publication.remove(key, file);
    publish(publication);
    dropped_.clear();
    unclaimed_.clear();
    folderMade_ = false;
    inLoad_ = false;
    transactionCount_ = 0;
}

void ServerStore::rollbackLoad() {
    if (!inLoad_) return;
    inLoad_ = inStatement_ = lost_ = false;
    transactionCount_ = 0;
    dropped_.clear();
    unclaimed_.clear();
    std::vector<QString> leaving;
    for (auto& [key, entry] : open_) {
        entry->detachOthers();
        if (entry->staged)
            leaving.push_back(key);
        else if (entry->begun)
            entry->rollBack();
    }
    for (const QString& key : leaving) discard(key);
    if (folderMade_) removeMadeFolder();
}

void ServerStore::offerToMake(const Database& database) {
    const Entry* entry = entryOf(database);
    if (entry && entry->staged && !entry->begun) unclaimed_.insert(fold(database.name));
}

QStringList ServerStore::changedDatabases() const {
    QStringList names;
    for (const auto& [key, entry] : open_)
        if (entry->begun) names.push_back(entry->database.name);
    return names;
}

void ServerStore::beginTransaction() {
    if (transactionCount_++ > 0) return;
    for (auto& [key, entry] : open_) {
        if (!entry->begun) continue;
        execSql(entry->database.handle, "SAVEPOINT zov_transaction");
        entry->marked = true;
    }
}

void ServerStore::commitTransaction() {
    if (transactionCount_ == 0)
        throw nativeError(3902,
                          QStringLiteral("The COMMIT TRANSACTION request has no corresponding "
                                         "BEGIN TRANSACTION."));
    if (--transactionCount_ > 0) return;
    if (!inLoad_) return commitBegun();
    for (auto& [key, entry] : open_) {
        if (entry->begun && entry->marked)
            execSql(entry->database.handle, "RELEASE zov_transaction");
        entry->marked = false;
    }
}

// All databases that a transaction or a statement has changed, or none.
void ServerStore::commitBegun() {
    Publication publication;
    for (auto& [key, entry] : open_)
        if (entry->begun) publication.commit(key, *entry);
    publish(publication);
}

void ServerStore::rollbackTransaction() {
    if (transactionCount_ == 0)
        throw nativeError(3903,
                          QStringLiteral("The ROLLBACK TRANSACTION request has no corresponding "
                                         "BEGIN TRANSACTION."));
    transactionCount_ = 0;
    for (auto& [key, entry] : open_) {
        if (!entry->begun || (inLoad_ && !entry->marked)) continue;
        sqlite3* handle = entry->database.handle;
        if (inLoad_) {
            execSql(handle, "ROLLBACK TO zov_transaction; RELEASE zov_transaction");
        } else {
            if (!sqlite3_get_autocommit(handle)) execSql(handle, "ROLLBACK");
            entry->begun = false;
        }
        entry->marked = false;
        catalogChanged(entry->database);
    }
}

void ServerStore::beginStatement() {
    inStatement_ = true;
}

void ServerStore::willWrite(Database& database) {
    Entry* entry = entryOf(database);
    Q_ASSERT(entry);
    if (entry->inStatement) return;
    if (entry->readOnly)
        throw nativeError(3906,
                          QStringLiteral("Failed to update database \"%1\" because the database "
                                         "is read-only.")
                              .arg(database.name));
    requireWhole();
    if (!entry->begun) {
        begin(*entry);
        unclaimed_.erase(fold(database.name));
    }
    if (transactionCount_ > 0 && !entry->marked) {
        execSql(database.handle, "SAVEPOINT zov_transaction");
        entry->marked = true;
    }
    if (inStatement_ && (inLoad_ || transactionCount_ > 0)) entry->run(entry->savepoint);
    entry->inStatement = true;
}

// A database that is free to be written to isn't waited for with the hold in hand: who has it may
// be waiting to have the folder alone.
void ServerStore::begin(Entry& entry) {
    sqlite3* handle = entry.database.handle;
    QElapsedTimer waited;
    waited.start();
    for (;;) {
        int code = SQLITE_OK;
        {
            const Hold hold(*this);
            sqlite3_busy_timeout(handle, 0);
            code = sqlite3_exec(handle, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
            sqlite3_busy_timeout(handle, LockPatienceMs);
        }
        if ((code & 0xff) != SQLITE_BUSY || waited.elapsed() > LockPatienceMs) {
            checkSqlite(handle, code);
            entry.begun = true;
            return;
        }
        QThread::msleep(5);
    }
}

void ServerStore::endStatement(bool succeeded) {
    inStatement_ = false;
    if (!inLoad_ && transactionCount_ == 0) {
        if (succeeded) return commitBegun();
        for (auto& [key, entry] : open_)
            if (entry->begun) entry->rollBack();
        return;
    }
    std::optional<DbError> failure;
    bool undone = false;
    for (auto& [key, entry] : open_) {
        if (!entry->inStatement) continue;
        entry->inStatement = false;
        try {
            // A full disk makes SQLite undo the whole transaction by itself.
            undone = undone || sqlite3_get_autocommit(entry->database.handle);
            if (undone) break;
            if (!succeeded) execSql(entry->database.handle, "ROLLBACK TO zov_statement");
            entry->run(entry->release);
        } catch (const DbError& error) {
            failure = error;
        }
        if (!succeeded) catalogChanged(entry->database);
    }
    if (!undone && !failure) return;
    for (auto& [key, entry] : open_)
        if (entry->begun && !entry->staged) entry->rollBack();
    if (inLoad_)
        lost_ = true;
    else
        transactionCount_ = 0;
    if (failure) throw *failure;
}

void ServerStore::settle() {
    if (!inLoad_) publishStaged();
}

void ServerStore::noticeForeignChanges() {
    settle();
    if (QFileInfo::exists(journalFile())) const Hold hold(*this);
    for (auto& [key, entry] : open_) {
        if (entry->begun || entry->staged || entry->readOnly) continue;
        const qint64 version = entry->currentVersion();
        if (version == entry->seenVersion) continue;
        entry->seenVersion = version;
        catalogChanged(entry->database);
    }
}

}  // namespace zov::local
