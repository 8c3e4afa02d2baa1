// Loads, transactions and statements of a store: what is undone together.
#include "data/local/server_store_entry.h"

#include <QDir>

#include <algorithm>

namespace zov::local {

void ServerStore::beginLoad() {
    Q_ASSERT(!inLoad_ && transactionCount_ == 0);
    inLoad_ = true;
}

void ServerStore::commitLoad() {
    // Everything that can still fail comes before the first commit: files in use, and pages that
    // have to go to disk.
    for (auto& [key, entry] : open_) entry->detachOthers();
    for (const auto& [key, file] : dropped_) requireUnused(key, file);
    for (auto& [key, entry] : open_)
        if (entry->begun)
            checkSqlite(entry->database.handle, sqlite3_db_cacheflush(entry->database.handle));
    for (auto& [key, entry] : open_) {
        if (!entry->begun || entry->staged) continue;
        execSql(entry->database.handle, "COMMIT");
        entry->begun = entry->marked = entry->inStatement = false;
    }
    for (auto& [key, entry] : open_) {
        if (!entry->staged) continue;
        publish(*entry);
        dropped_.erase(key);
    }
    for (const auto& [key, file] : dropped_) {
        pool().purge(file);
        removeDatabaseFiles(file);
    }
    dropped_.clear();
    createdAtOpen_.clear();
    unclaimed_.clear();
    folderMade_ = false;
    inLoad_ = false;
    transactionCount_ = 0;
}

void ServerStore::rollbackLoad() {
    if (!inLoad_) return;
    inLoad_ = false;
    inStatement_ = false;
    transactionCount_ = 0;
    dropped_.clear();
    unclaimed_.clear();
    for (auto& [key, entry] : open_) entry->detachOthers();
    std::vector<QString> leaving;
    for (auto& [key, entry] : open_) {
        if (entry->staged || createdAtOpen_.contains(key)) {
            leaving.push_back(key);
        } else if (entry->begun) {
            entry->begun = entry->marked = entry->inStatement = false;
            if (!sqlite3_get_autocommit(entry->database.handle))
                sqlite3_exec(entry->database.handle, "ROLLBACK", nullptr, nullptr, nullptr);
            catalogChanged(entry->database);
        }
    }
    for (const QString& key : leaving) {
        const QString file = open_[key]->file;
        forget(key);
        removeDatabaseFiles(file);
    }
    for (const QString& key : createdAtOpen_) {
        QString trueName, file;
        if (!find(key, trueName, file)) continue;
        pool().purge(file);
        removeDatabaseFiles(file);
    }
    if (!createdAtOpen_.empty() && folderMade_) {
        // The folder came with the load as well; what others put there meanwhile keeps it.
        for (const char* name : {"master", "tempdb", "model", "msdb"}) {
            const QString key = QLatin1String(name);
            forget(key);
            const QString file = folder_ + u'/' + fileNameOf(key);
            pool().purge(file);
        }
        const QStringList left = QDir(folder_).entryList({QStringLiteral("*.db")}, QDir::Files);
        const bool onlySystem = std::all_of(left.begin(), left.end(), [](const QString& file) {
            return systemId(QFileInfo(file).completeBaseName()) > 0;
        });
        if (onlySystem) {
            for (const QString& file : left) removeDatabaseFiles(folder_ + u'/' + file);
            QFile::remove(folder_ + QStringLiteral("/server.json"));
            QDir().rmdir(folder_);
        }
    }
    createdAtOpen_.clear();
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
    for (auto& [key, entry] : open_) {
        if (!entry->begun) continue;
        if (inLoad_) {
            if (entry->marked) execSql(entry->database.handle, "RELEASE zov_transaction");
            entry->marked = false;
        } else {
            execSql(entry->database.handle, "COMMIT");
            entry->begun = entry->marked = false;
        }
    }
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
    if (!entry->begun) {
        execSql(database.handle, "BEGIN IMMEDIATE");
        entry->begun = true;
        unclaimed_.erase(fold(database.name));
    }
    if (transactionCount_ > 0 && !entry->marked) {
        execSql(database.handle, "SAVEPOINT zov_transaction");
        entry->marked = true;
    }
    if (inStatement_ && (inLoad_ || transactionCount_ > 0)) entry->run(entry->savepoint);
    entry->inStatement = true;
}

void ServerStore::endStatement(bool succeeded) {
    inStatement_ = false;
    const bool nested = inLoad_ || transactionCount_ > 0;
    for (auto& [key, entry] : open_) {
        if (!entry->inStatement) continue;
        entry->inStatement = false;
        sqlite3* handle = entry->database.handle;
        if (nested) {
            // A full disk makes SQLite undo the whole transaction by itself.
            if (sqlite3_get_autocommit(handle)) {
                entry->begun = entry->marked = false;
                catalogChanged(entry->database);
                continue;
            }
            if (!succeeded) execSql(handle, "ROLLBACK TO zov_statement");
            entry->run(entry->release);
        } else {
            entry->begun = entry->marked = false;
            if (succeeded) {
                const int code = sqlite3_exec(handle, "COMMIT", nullptr, nullptr, nullptr);
                if (code != SQLITE_OK) {
                    const QString text = QString::fromUtf8(sqlite3_errmsg(handle));
                    sqlite3_exec(handle, "ROLLBACK", nullptr, nullptr, nullptr);
                    catalogChanged(entry->database);
                    checkSqlite(handle, code);
                }
                // A database that has been written to is no longer a load's to take back.
                createdAtOpen_.clear();
                folderMade_ = false;
            } else if (!sqlite3_get_autocommit(handle)) {
                sqlite3_exec(handle, "ROLLBACK", nullptr, nullptr, nullptr);
            }
        }
        if (!succeeded) catalogChanged(entry->database);
    }
}

void ServerStore::noticeForeignChanges() {
    for (auto& [key, entry] : open_) {
        if (entry->begun || entry->staged || entry->readOnly) continue;
        const qint64 version = entry->currentVersion();
        if (version == entry->seenVersion) continue;
        entry->seenVersion = version;
        catalogChanged(entry->database);
    }
}

}  // namespace zov::local
