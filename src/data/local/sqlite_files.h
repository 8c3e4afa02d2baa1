// SQLite files as databases: opening one, the names of files, the facts that a file tells of
// itself, and SQLite's errors in plain words.
#pragma once

#include "data/local/server_store.h"

#include <QFileInfo>

#include <functional>
#include <memory>

namespace zov::local {

/// Names of databases are compared in this form.
QString fold(const QString& name);
DbError nativeError(qint32 native, const QString& text, qint32 number = ado_error::SyntaxError);
/// The id of master, tempdb, model and msdb; 0 for any other (folded) name.
int systemId(const QString& folded);
/// The file of a database, without its folder.
QString fileNameOf(const QString& name);
/// The name that a file stands for; empty when it is no database of ours.
QString nameOfFile(const QFileInfo& file);
/// The names of a folder's files that `wanted` takes, in no order: without asking each file for
/// what it is and without patterns, since every session looks. Throws when the folder can't be
/// read; one that isn't there has none.
QStringList filesIn(const QString& folder, const std::function<bool(const QString&)>& wanted);
/// The files of databases, sorted.
QStringList databaseFilesIn(const QString& folder);
/// With the logs beside it.
void removeDatabaseFiles(const QString& file);
void removeLogs(const QString& file);
/// 80 of "8.00.2039".
int compatibilityOf(const QString& version);

/// `flags` as sqlite3_open_v2 takes them; `uriTail` ("?immutable=1") goes behind the file's
/// address.
sqlite3* openFile(const QString& file, int flags, const QString& uriTail = {});
/// A database that lives in memory alone and is shared by all handles of this process that open it
/// by this name; it goes with the last of them. Made when it isn't there.
sqlite3* openMemory(const QString& name);
/// Closes the handle with its scope.
struct SqliteCloser {
    void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
};
using SqliteHandle = std::unique_ptr<sqlite3, SqliteCloser>;
/// How long a session waits for others before it gives up.
inline constexpr int LockPatienceMs = 10'000;
/// Makes one database's file a copy of another's, in one transaction.
void copyDatabase(const QString& from, const QString& to);
/// For a session: `readOnly` when the file or its folder can't be written to.
sqlite3* openDatabaseFile(const QString& file, bool& readOnly);
/// False when the file is damaged or isn't one of ours; what else keeps it from being read throws.
bool readFacts(sqlite3* handle, DatabaseFacts& facts);
bool readFileFacts(const QString& file, DatabaseFacts& facts);

}  // namespace zov::local
