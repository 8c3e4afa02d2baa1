#include "data/local/sqlite_files.h"

#include <QCryptographicHash>
#include <QDir>
#include <QUrl>

#include <filesystem>
#include <memory>
#include <system_error>

namespace zov::local {
namespace {

QString fileOf(sqlite3* handle) {
    const char* name = handle ? sqlite3_db_filename(handle, "main") : nullptr;
    return name && *name ? QDir::toNativeSeparators(QString::fromUtf8(name))
                         : QStringLiteral("of the database");
}

}  // namespace

QString fold(const QString& name) {
    return name.toCaseFolded();
}

DbError nativeError(qint32 native, const QString& text, qint32 number) {
    return DbError(number, text, QStringLiteral("42000"), native);
}

int systemId(const QString& folded) {
    static const char* const names[] = {"master", "tempdb", "model", "msdb"};
    for (int i = 0; i < 4; ++i)
        if (folded == QLatin1String(names[i])) return i + 1;
    return 0;
}

// File names: letters, digits, "-" and "_" as they are, everything else as %XX of UTF-8. A name
// that is reserved on Windows or too long for a file system gets a form that can't clash with
// another.
QString fileNameOf(const QString& name) {
    QString encoded = QString::fromLatin1(QUrl::toPercentEncoding(name, QByteArray(), "."));
    encoded.replace(u'.', QLatin1String("%2E")).replace(u'~', QLatin1String("%7E"));
    static const QStringList reserved = {
        QStringLiteral("con"),  QStringLiteral("prn"),  QStringLiteral("aux"),
        QStringLiteral("nul"),  QStringLiteral("com1"), QStringLiteral("com2"),
        QStringLiteral("com3"), QStringLiteral("com4"), QStringLiteral("lpt1"),
        QStringLiteral("lpt2"), QStringLiteral("lpt3")};
    if (reserved.contains(encoded, Qt::CaseInsensitive))
        encoded = QStringLiteral("%") + QString::number(encoded[0].unicode(), 16).toUpper() +
                  encoded.mid(1);
    if (encoded.size() > 180) {
        const QByteArray hash =
            QCryptographicHash::hash(fold(name).toUtf8(), QCryptographicHash::Sha1).toHex();
        encoded = encoded.left(100).section(u'%', 0, -2) + u'~' + QString::fromLatin1(hash);
    }
    return encoded + QStringLiteral(".db");
}

QStringList filesIn(const QString& folder, const std::function<bool(const QString&)>& wanted) {
    QStringList names;
    std::error_code failure;
    std::filesystem::directory_iterator files(QFileInfo(folder).filesystemFilePath(), failure);
    for (; !failure && files != std::filesystem::directory_iterator(); files.increment(failure)) {
#ifdef Q_OS_WIN
        const QString name = QString::fromStdWString(files->path().filename().wstring());
#else
        const QString name = QFile::decodeName(files->path().filename().c_str());
#endif
        std::error_code gone;  // between the two questions
        if (wanted(name) && files->is_regular_file(gone)) names.append(name);
    }
    if (failure && failure != std::errc::no_such_file_or_directory)
        throw nativeError(823, QStringLiteral("The folder %1 could not be read: %2.")
                                   .arg(QDir::toNativeSeparators(folder),
                                        QString::fromStdString(failure.message())));
    return names;
}

QStringList databaseFilesIn(const QString& folder) {
    QStringList files = filesIn(folder, [](const QString& name) {
        return name.endsWith(QLatin1String(".db"), Qt::CaseInsensitive);
    });
    files.sort();
    return files;
}

namespace {

sqlite3* openAddress(const QByteArray& path, int flags) {
    sqlite3* handle = nullptr;
    const int code =
        sqlite3_open_v2(path.constData(), &handle, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    if (code != SQLITE_OK) {
        try {
            checkSqlite(handle, code);
        } catch (...) {
            sqlite3_close_v2(handle);
            throw;
        }
    }
    sqlite3_extended_result_codes(handle, 1);
    sqlite3_busy_timeout(handle, LockPatienceMs);
    // Without these SQLite would take an unknown "column" for a text.
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    return handle;
}

}  // namespace

sqlite3* openFile(const QString& file, int flags, const QString& uriTail) {
    if (uriTail.isEmpty()) return openAddress(QDir::toNativeSeparators(file).toUtf8(), flags);
    return openAddress(QUrl::fromLocalFile(file).toEncoded() + uriTail.toUtf8(),
                       flags | SQLITE_OPEN_URI);
}

sqlite3* openMemory(const QString& name) {
    // The slash is what makes SQLite share it.
    return openAddress("file:/" + QUrl::toPercentEncoding(name) + "?vfs=memdb",
                       SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI);
}

void copyDatabase(const QString& from, const QString& to) {
    sqlite3* source = openFile(from, SQLITE_OPEN_READWRITE);
    sqlite3* target = nullptr;
    int code = SQLITE_OK;
    try {
        target = openFile(to, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
        sqlite3_backup* copy = sqlite3_backup_init(target, "main", source, "main");
        if (copy) {
            sqlite3_backup_step(copy, -1);
            code = sqlite3_backup_finish(copy);
        } else {
            code = sqlite3_errcode(target);
        }
        checkSqlite(target, code);
    } catch (...) {
        sqlite3_close_v2(target);
        sqlite3_close_v2(source);
        throw;
    }
    sqlite3_close_v2(target);
    sqlite3_close_v2(source);
}

sqlite3* openDatabaseFile(const QString& file, bool& readOnly) {
    const QFileInfo info(file);
    readOnly = !info.isWritable() || !QFileInfo(info.absolutePath()).isWritable();
    if (!readOnly) return openFile(file, SQLITE_OPEN_READWRITE);
    // Where no log can be written beside the file it is read as it stands.
    return openFile(file, SQLITE_OPEN_READONLY,
                    QFileInfo::exists(file + QStringLiteral("-wal"))
                        ? QString()
                        : QStringLiteral("?immutable=1"));
}

bool readFacts(sqlite3* handle, DatabaseFacts& facts) {
    sqlite3_stmt* statement = nullptr;
    int code = sqlite3_prepare_v2(handle, "SELECT name, value FROM \"zov$facts\"", -1, &statement,
                                  nullptr);
    while (code == SQLITE_OK || code == SQLITE_ROW) {
        code = sqlite3_step(statement);
        if (code != SQLITE_ROW) break;
        const auto text = [&](int column) {
            return reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
        };
        const QByteArray key(text(0));
        const QString value = QString::fromUtf8(text(1));
        if (key == "dbid") facts.dbid = value.toInt();
        if (key == "name") facts.name = value;
        if (key == "created") facts.created = value;
        if (key == "collation") facts.collation = value;
        if (key == "compatibility") facts.compatibility = value.toInt();
    }
    sqlite3_finalize(statement);
    if (code == SQLITE_DONE) return true;
    const int primary = code & 0xff;
    const bool foreign =
        primary == SQLITE_NOTADB || primary == SQLITE_CORRUPT || primary == SQLITE_ERROR;
    if (!foreign) checkSqlite(handle, code);
    return false;
}

bool readFileFacts(const QString& file, DatabaseFacts& facts) {
    bool readOnly = false;
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close_v2)> handle(
        openDatabaseFile(file, readOnly), sqlite3_close_v2);
    return readFacts(handle.get(), facts);
}

QString nameOfFile(const QFileInfo& file) {
    const QString encoded = file.completeBaseName();
    if (!encoded.contains(u'~')) return QUrl::fromPercentEncoding(encoded.toUtf8());
    DatabaseFacts facts;
    // A damaged one is at least seen.
    return readFileFacts(file.filePath(), facts) ? facts.name : encoded;
}

void removeDatabaseFiles(const QString& file) {
    QFile::remove(file);
    removeLogs(file);
}

void removeLogs(const QString& file) {
    for (const char* tail : {"-wal", "-shm", "-journal"}) QFile::remove(file + QLatin1String(tail));
}

int compatibilityOf(const QString& version) {
    const int major = version.section(u'.', 0, 0).toInt();
    return major > 0 ? major * 10 : 160;
}

void checkSqlite(sqlite3* handle, int code) {
    switch (code & 0xff) {
        case SQLITE_OK:
        case SQLITE_ROW:
        case SQLITE_DONE:
            return;
        case SQLITE_FULL:
            throw nativeError(1101,
                              QStringLiteral("The disk is full; the database's file could not "
                                             "grow. Free some space and try again."),
                              ado_error::Unspecified);
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            throw nativeError(1222,
                              QStringLiteral("Lock request time out period exceeded. Another "
                                             "session is changing this database."),
                              ado_error::Timeout);
        case SQLITE_READONLY:
            throw nativeError(3906, QStringLiteral("Failed to update the database because it is "
                                                   "read-only: its file or its folder can't be "
                                                   "written to."));
        case SQLITE_INTERRUPT:
            throw DbError(ado_error::Cancelled, QStringLiteral("Operation was canceled."),
                          QStringLiteral("HY008"));
        case SQLITE_NOTADB:
        case SQLITE_CORRUPT:
            throw nativeError(824,
                              QStringLiteral("The file %1 is damaged or is no database file (%2). "
                                             "PRAGMA integrity_check in SQLite's shell tells what "
                                             "of it is whole; else restore it from a copy, or "
                                             "load the database anew.")
                                  .arg(fileOf(handle), QString::fromUtf8(sqlite3_errmsg(handle))),
                              ado_error::Unspecified);
        case SQLITE_CANTOPEN:
            throw nativeError(5120,
                              QStringLiteral("Unable to open the database's file: check that "
                                             "its folder can be written to."),
                              ado_error::Unspecified);
        case SQLITE_IOERR:
            throw nativeError(823,
                              QStringLiteral("The operating system reported an error while the "
                                             "file %1 was read or written (%2). See to the disk, "
                                             "then let PRAGMA integrity_check in SQLite's shell "
                                             "tell whether the file is whole.")
                                  .arg(fileOf(handle), QString::fromUtf8(sqlite3_errmsg(handle))),
                              ado_error::Unspecified);
        case SQLITE_NOMEM:
            throw nativeError(701,
                              QStringLiteral("There is insufficient system memory to run this "
                                             "query."),
                              ado_error::Unspecified);
        default:
            throw nativeError(
                0, QString::fromUtf8(handle ? sqlite3_errmsg(handle) : sqlite3_errstr(code)));
    }
}

void execSql(sqlite3* handle, const char* sql) {
    checkSqlite(handle, sqlite3_exec(handle, sql, nullptr, nullptr, nullptr));
}
void execSql(sqlite3* handle, const QString& sql) {
    execSql(handle, sql.toUtf8().constData());
}

}  // namespace zov::local
