// The folder of an embedded server: one SQLite file per database. A store is one session's view of
// the folder: it opens databases, makes and drops them, and keeps the session's transactions. Open
// handles go back to a pool of the process when the store dies, so that the next session starts at
// once. Enter at ServerStore::open. Nothing is known here of T-SQL.
//
// Writing: whoever changes a database calls willWrite() first, between beginStatement() and
// endStatement(), which the statement runner calls around every statement.
//
// What takes more than one file is done wholly or not at all (server_store_publish.cpp); a session
// that opens a file or begins to write one keeps out of the way of that with a Hold.
#pragma once

#include "data/local/local_session.h"

#include "util/file_lock.h"

#include <QDateTime>

#include <map>
#include <memory>
#include <set>
#include <vector>

namespace zov::local {

/// What the server-wide catalogue tells of a database.
struct DatabaseFacts {
    int dbid = 0;  ///< master 1, tempdb 2, model 3, msdb 4, users' from 5
    QString name;
    QString file;             ///< full path; empty for a system database that has no file yet
    QString created;          ///< "yyyy-MM-dd HH:mm:ss.fff"
    int compatibility = 160;  ///< 80 on a version 8 server
    QString collation;
    bool isSystem = false;
};

/// A database in memory and what its server is called.
struct MemoryPlace {
    QString memory;  ///< the name that SQLite knows it by, one a process
    QString serverName;
    QString version;
    QString database;
};

class ServerStore {
 public:
    /// `dataSource` is "local:NAME" or "local:/a/path", with "?version=8.00.2039" behind it for a
    /// server of another version than the default one; the version counts when the folder is made.
    /// A folder that doesn't exist is made when `createServer` is set, else throws DbError
    /// 0x80004005.
    static std::unique_ptr<ServerStore> open(const QString& dataSource, bool createServer);
    /// A server of one database, which lives in memory (MemoryDatabase) and is there already.
    static std::unique_ptr<ServerStore> ofMemory(const MemoryPlace& place);
    /// The same, made first; `collation` is its own.
    static std::unique_ptr<ServerStore> makeMemory(const MemoryPlace& place,
                                                   const QString& collation);
    /// Idle handles on a database in memory keep it alive: they are closed.
    static void closeIdle(const MemoryPlace& place);
    ~ServerStore();
    ServerStore(const ServerStore&) = delete;
    ServerStore& operator=(const ServerStore&) = delete;

    /// The folder that a data source stands for, whether or not it exists.
    static QString folderOf(const QString& dataSource);
    static bool isLocalDataSource(const QString& dataSource);

    const QString& folder() const { return folder_; }
    /// @@SERVERNAME: the last part of the folder's name.
    const QString& serverName() const { return serverName_; }
    /// "16.0.4085.2" unless the folder was made as another version.
    const QString& productVersion() const { return productVersion_; }
    int majorVersion() const;

    /// All databases as this session sees them (staged ones included, dropped ones not), by dbid.
    std::vector<DatabaseFacts> databases();
    bool hasDatabase(const QString& name);

    /// The open database of this session; opened at first use, in any case of letters. Throws
    /// DbError 911 for an unknown name. The reference stays good until the database is dropped, the
    /// load that made it is rolled back (its handle is null then), or the store dies.
    Database& database(const QString& name);
    /// The same, made first when it isn't there. Others see it with the first batch, or, when a
    /// load follows, when that is done; when that is rolled back, a folder that was made for it
    /// goes too.
    Database& openOrCreate(const QString& name);

    /// CREATE DATABASE and DROP DATABASE; within a load they take effect at commitLoad. Throw
    /// DbError 1801 (name taken), 3701 (no such database), 3702 (in use), 3708 (system database).
    void createDatabase(const QString& name);
    void dropDatabase(const QString& name);
    /// Makes a new database from a copy of a database's file, which stays as it is. Throws DbError
    /// 1801 (name taken), 5120 (no such file), 5171 (no database file of ours), 948 (of a newer
    /// server), 1813 (a database of this server), 824 (damaged).
    void attachDatabase(const QString& name, const QString& file);

    /// While one lives, the databases' files stay where they are: nobody else puts one in the place
    /// of another. `alone`: nobody else opens one or begins to write to it either. Throws DbError
    /// 1222 when that can't be had in time, 5120 when the folder doesn't allow it. What a process
    /// that was killed left half done is undone first.
    class Hold {
     public:
        explicit Hold(ServerStore& store, bool alone = false);
        ~Hold();
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

     private:
        ServerStore& store_;
    };

    // A load: all or nothing over every database that it touches.
    void beginLoad();
    void commitLoad();
    void rollbackLoad();
    bool inLoad() const { return inLoad_; }
    /// A database that is new and empty may be made once more: whoever does so finds it as he wants
    /// it.
    void offerToMake(const Database& database);
    /// Those that the running load has written to; one that was only made is none of them.
    QStringList changedDatabases() const;

    // Transactions of the session (BEGIN TRAN ...). Within a load they nest into it.
    void beginTransaction();
    void commitTransaction();    ///< throws 3902 without a transaction; all databases or none
    void rollbackTransaction();  ///< throws 3903 without a transaction
    int transactionCount() const { return transactionCount_; }  ///< @@TRANCOUNT

    // One statement: what it changed is undone when it fails.
    void beginStatement();
    void endStatement(bool succeeded);
    /// To be called before `database` is changed, within a statement.
    void willWrite(Database& database);

    /// To be called before a batch: a change that another session made to a database makes the
    /// query side forget what it knew of it.
    void noticeForeignChanges();
    /// No load follows: a database that openOrCreate() has made becomes one for all.
    void settle();

    struct Publication;
    struct PublicationStep;

 private:
    struct Entry;
    struct Pool;
    ServerStore(QString folder, QString version);

    static Pool& pool();
    Entry* entryOf(const Database& database);
    /// The true name and file of a database in any case of letters; false when there is none.
    bool find(const QString& name, QString& trueName, QString& file);
    Entry& openEntry(const QString& name, const QString& file, bool staged);
    void openHandle(Entry& entry);
    Database& systemDatabase(const QString& name, int id);
    /// `from`: the file of a database that the new one is a copy of; empty for an empty database.
    Database& newDatabase(const QString& name, const QString& from = {});
    Entry& stageNew(const QString& name, int dbid, const QString& from = {});
    void fillStaged(const QString& file, const QString& name, int dbid);
    void fillEmpty(sqlite3* handle, const QString& name, int dbid);
    void fillStagedFrom(const QString& from, const QString& file, const QString& name, int dbid);
    /// For a file whose indexes rest on another order of texts; the handle to go on with.
    sqlite3* renewIndexes(Entry& entry);
    void forget(const QString& key);   ///< closes it
    void discard(const QString& key);  ///< and removes its file
    void requireUnused(const QString& name, const QString& file, bool forGood);
    void begin(Entry& entry);
    int nextDatabaseId();
    void requireWhole() const;
    void commitBegun();

    // server_store_folder.cpp
    QString journalFile() const;
    QString lockFile() const;
    void lockFolder(bool alone);
    void makeFolder(const QString& facts);
    void removeMadeFolder();
    void sweep();
    const QString& owner();
    void releaseOwner();

    // server_store_publish.cpp
    void publish(Publication& publication);
    void publishStaged();
    void prepareStep(PublicationStep& step, std::vector<QString>& withoutLog);
    void undoPublication();
    void finishStaged(Entry& entry);
    void reopenPublished(const QString& key, const QString& file);
    [[noreturn]] static void notInPlace(const QString& file, const QString& why);

    QString folder_;
    QString serverName_;
    QString productVersion_;
    std::map<QString, std::unique_ptr<Entry>> open_;  // by folded name
    std::vector<std::unique_ptr<Entry>> gone_;        // closed; sessions may still point at them
    std::map<QString, QString> dropped_;              // in this load: folded name -> file
    std::set<QString>
        unclaimed_;  // made at open, and nothing said of them yet: CREATE DATABASE may
    FileLock folderLock_;
    int holds_ = 0;
    bool alone_ = false;
    FileLock ownerLock_;  // says that this session's staging files belong to somebody who lives
    QString owner_;
    bool folderMade_ = false;
    bool inMemory_ = false;  // there is no folder
    bool inLoad_ = false;
    bool lost_ = false;  // SQLite undid a load's part by itself: the rest must not be kept
    bool inStatement_ = false;
    int transactionCount_ = 0;
};

/// Throws DbError with SQLite's own text unless `code` is a success; a full disk, a read-only
/// folder, a locked file, a failed read and a damaged page are told in plain words.
void checkSqlite(sqlite3* handle, int code);
/// Runs statements without rows; throws DbError.
void execSql(sqlite3* handle, const QString& sql);
void execSql(sqlite3* handle, const char* sql);

}  // namespace zov::local
