#include "data/local/server_store.h"

#include "data/local/catalog_tables.h"
#include "data/local/functions.h"
#include "data/local/query_engine.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>
#include <mutex>

namespace zov::local {
namespace {

constexpr int BusyTimeoutMs = 10'000;
constexpr int ApplicationId = 0x5A4F5644;
const QString DefaultVersion = QStringLiteral("16.0.4085.2");
const QString DefaultCollation = QStringLiteral("SQL_Latin1_General_CP1_CI_AS");
const QString Scheme = QStringLiteral("local:");

QString fold(const QString& name) { return name.toCaseFolded(); }

DbError nativeError(qint32 native, const QString& text, qint32 number = ado_error::SyntaxError) {
    return DbError(number, text, QStringLiteral("42000"), native);
}

int systemId(const QString& folded) {
    static const char* const names[] = {"master", "tempdb", "model", "msdb"};
    for (int i = 0; i < 4; ++i)
        if (folded == QLatin1String(names[i])) return i + 1;
    return 0;
}

// File names: letters, digits, "-" and "_" as they are, everything else as %XX of UTF-8. A name that
// is reserved on Windows or too long for a file system gets a form that can't clash with another.
QString fileNameOf(const QString& name) {
    QString encoded = QString::fromLatin1(QUrl::toPercentEncoding(name, QByteArray(), "."));
    encoded.replace(u'.', QLatin1String("%2E")).replace(u'~', QLatin1String("%7E"));
    static const QStringList reserved = {
        QStringLiteral("con"),  QStringLiteral("prn"),  QStringLiteral("aux"),
        QStringLiteral("nul"),  QStringLiteral("com1"), QStringLiteral("com2"),
        QStringLiteral("com3"), QStringLiteral("com4"), QStringLiteral("lpt1"),
        QStringLiteral("lpt2"), QStringLiteral("lpt3")};
    if (reserved.contains(encoded, Qt::CaseInsensitive))
        encoded = QStringLiteral("%") +
                  QString::number(encoded[0].unicode(), 16).toUpper() + encoded.mid(1);
    if (encoded.size() > 180) {
        const QByteArray hash =
            QCryptographicHash::hash(fold(name).toUtf8(), QCryptographicHash::Sha1).toHex();
        encoded = encoded.left(100).section(u'%', 0, -2) + u'~' + QString::fromLatin1(hash);
    }
    return encoded + QStringLiteral(".db");
}

class Statement {
 public:
    Statement(sqlite3* handle, const char* sql) {
        checkSqlite(handle, sqlite3_prepare_v2(handle, sql, -1, &statement_, nullptr));
    }
    ~Statement() { sqlite3_finalize(statement_); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    bool step() { return sqlite3_step(statement_) == SQLITE_ROW; }
    sqlite3_stmt* get() const { return statement_; }
    QString text(int column) const {
        return QString::fromUtf8(
            reinterpret_cast<const char*>(sqlite3_column_text(statement_, column)));
    }

 private:
    sqlite3_stmt* statement_ = nullptr;
};

sqlite3* openFile(const QString& file, int flags, const QString& uriTail = {}) {
    sqlite3* handle = nullptr;
    QByteArray path = QDir::toNativeSeparators(file).toUtf8();
    if (!uriTail.isEmpty()) {
        path = QUrl::fromLocalFile(file).toEncoded() + uriTail.toUtf8();
        flags |= SQLITE_OPEN_URI;
    }
    const int code = sqlite3_open_v2(path.constData(), &handle, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    if (code != SQLITE_OK) {
        try {
            checkSqlite(handle, code);
        } catch (...) {
            sqlite3_close_v2(handle);
            throw;
        }
    }
    sqlite3_extended_result_codes(handle, 1);
    sqlite3_busy_timeout(handle, BusyTimeoutMs);
    // Without these SQLite would take an unknown "column" for a text.
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    return handle;
}

// Null when the file isn't one of ours or can't be read.
bool readFacts(sqlite3* handle, DatabaseFacts& facts) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(handle, "SELECT name, value FROM \"zov$facts\"", -1, &statement, nullptr) !=
        SQLITE_OK)
        return false;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        const QByteArray key(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)));
        const QString value =
            QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, 1)));
        if (key == "dbid") facts.dbid = value.toInt();
        if (key == "name") facts.name = value;
        if (key == "created") facts.created = value;
        if (key == "collation") facts.collation = value;
        if (key == "compatibility") facts.compatibility = value.toInt();
    }
    sqlite3_finalize(statement);
    return true;
}

bool readFileFacts(const QString& file, DatabaseFacts& facts) {
    sqlite3* handle = nullptr;
    try {
        handle = openFile(file, SQLITE_OPEN_READWRITE);
    } catch (const DbError&) {
        return false;
    }
    const bool found = readFacts(handle, facts);
    sqlite3_close_v2(handle);
    return found;
}

// The name that a file stands for; empty when it is no database of ours.
QString nameOfFile(const QFileInfo& file) {
    const QString encoded = file.completeBaseName();
    if (!encoded.contains(u'~')) return QUrl::fromPercentEncoding(encoded.toUtf8());
    DatabaseFacts facts;
    return readFileFacts(file.filePath(), facts) ? facts.name : QString();
}

void removeDatabaseFiles(const QString& file) {
    for (const char* tail : {"", "-wal", "-shm", "-journal"})
        QFile::remove(file + QLatin1String(tail));
}

int compatibilityOf(const QString& version) {
    const int major = version.section(u'.', 0, 0).toInt();
    return major > 0 ? major * 10 : 160;
}

}  // namespace

void checkSqlite(sqlite3* handle, int code) {
    switch (code & 0xff) {
        case SQLITE_OK:
        case SQLITE_ROW:
        case SQLITE_DONE: return;
        case SQLITE_FULL:
            throw nativeError(1101, QStringLiteral("The disk is full; the database's file could not "
                                                   "grow. Free some space and try again."),
                              ado_error::Unspecified);
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            throw nativeError(1222, QStringLiteral("Lock request time out period exceeded. Another "
                                                   "session is changing this database."),
                              ado_error::Timeout);
        case SQLITE_READONLY:
            throw nativeError(3906, QStringLiteral("Failed to update the database because it is "
                                                   "read-only: its file or its folder can't be "
                                                   "written to."));
        case SQLITE_INTERRUPT:
            throw DbError(ado_error::Cancelled, QStringLiteral("Operation canceled."),
                          QStringLiteral("HY008"));
        case SQLITE_NOTADB:
        case SQLITE_CORRUPT:
            throw nativeError(824, QStringLiteral("The database's file is damaged or is no database "
                                                  "file (%1).")
                                       .arg(QString::fromUtf8(sqlite3_errmsg(handle))),
                              ado_error::Unspecified);
        case SQLITE_CANTOPEN:
            throw nativeError(5120, QStringLiteral("Unable to open the database's file: check that "
                                                   "its folder can be written to."),
                              ado_error::Unspecified);
        case SQLITE_IOERR:
            throw nativeError(823, QStringLiteral("The operating system reported an error while the "
                                                  "database's file was read or written (%1).")
                                       .arg(QString::fromUtf8(sqlite3_errmsg(handle))),
                              ado_error::Unspecified);
        default:
            throw nativeError(0, QString::fromUtf8(handle ? sqlite3_errmsg(handle)
                                                          : sqlite3_errstr(code)));
    }
}

void execSql(sqlite3* handle, const char* sql) {
    checkSqlite(handle, sqlite3_exec(handle, sql, nullptr, nullptr, nullptr));
}
void execSql(sqlite3* handle, const QString& sql) { execSql(handle, sql.toUtf8().constData()); }

struct ServerStore::Entry {
    Database database;
    QString file;
    bool staged = false;       // a new file that nobody else sees yet
    bool readOnly = false;
    bool begun = false;        // BEGIN was sent
    bool marked = false;       // SAVEPOINT of the session's transaction was sent
    bool inStatement = false;  // SAVEPOINT (or BEGIN) of the running statement was sent
    qint64 seenVersion = -1;
    sqlite3_stmt* savepoint = nullptr;
    sqlite3_stmt* release = nullptr;
    sqlite3_stmt* version = nullptr;

    ~Entry() { close(); }

    void prepare() {
        sqlite3* handle = database.handle;
        sqlite3_prepare_v3(handle, "SAVEPOINT zov_statement", -1, SQLITE_PREPARE_PERSISTENT, &savepoint,
                           nullptr);
        sqlite3_prepare_v3(handle, "RELEASE zov_statement", -1, SQLITE_PREPARE_PERSISTENT, &release,
                           nullptr);
        sqlite3_prepare_v3(handle, "PRAGMA data_version", -1, SQLITE_PREPARE_PERSISTENT, &version,
                           nullptr);
    }
    void run(sqlite3_stmt* statement) {
        const int code = sqlite3_step(statement);
        sqlite3_reset(statement);
        checkSqlite(database.handle, code);
    }
    qint64 currentVersion() {
        const qint64 value =
            sqlite3_step(version) == SQLITE_ROW ? sqlite3_column_int64(version, 0) : -1;
        sqlite3_reset(version);
        return value;
    }
    void close() {
        if (!database.handle) return;
        releaseQueries(database);
        database.queries.reset();
        for (sqlite3_stmt* statement : {savepoint, release, version}) sqlite3_finalize(statement);
        savepoint = release = version = nullptr;
        sqlite3_close_v2(database.handle);
        database.handle = nullptr;
    }
    /// Statements that read several files hold the others attached.
    void detachOthers() {
        if (!database.handle || !sqlite3_db_name(database.handle, 2)) return;
        releaseQueries(database);
    }
    bool idle() const {
        if (!database.handle || staged || readOnly || !sqlite3_get_autocommit(database.handle))
            return false;
        for (sqlite3_stmt* statement = sqlite3_next_stmt(database.handle, nullptr); statement;
             statement = sqlite3_next_stmt(database.handle, statement))
            if (sqlite3_stmt_busy(statement)) return false;
        return true;
    }
};

/// Handles that no session uses now, newest last.
struct ServerStore::Pool {
    static constexpr size_t Capacity = 16;
    std::mutex mutex;
    std::vector<std::unique_ptr<Entry>> idle;

    std::unique_ptr<Entry> take(const QString& file) {
        std::unique_ptr<Entry> found;
        {
            const std::lock_guard lock(mutex);
            for (auto at = idle.rbegin(); at != idle.rend(); ++at) {
                if ((*at)->file != file) continue;
                found = std::move(*at);
                idle.erase(std::next(at).base());
                break;
            }
        }
        if (!found) return {};
        int moved = 0;
        sqlite3_file_control(found->database.handle, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
        if (moved) return {};   // another file has that name now
        return found;
    }
    void give(std::unique_ptr<Entry> entry) {
        std::unique_ptr<Entry> evicted;
        const std::lock_guard lock(mutex);
        idle.push_back(std::move(entry));
        if (idle.size() > Capacity) {
            evicted = std::move(idle.front());
            idle.erase(idle.begin());
        }
    }
    void purge(const QString& file) {
        const std::lock_guard lock(mutex);
        std::erase_if(idle, [&](const auto& entry) { return entry->file == file; });
    }
    void purgeFolder(const QString& folder) {
        const std::lock_guard lock(mutex);
        std::erase_if(idle, [&](const auto& entry) { return entry->file.startsWith(folder + u'/'); });
    }
};

ServerStore::Pool& ServerStore::pool() {
    static Pool instance;
    return instance;
}

bool ServerStore::isLocalDataSource(const QString& dataSource) {
    return dataSource.startsWith(Scheme, Qt::CaseInsensitive);
}

QString ServerStore::folderOf(const QString& dataSource) {
    QString name = isLocalDataSource(dataSource) ? dataSource.mid(Scheme.size()) : dataSource;
    const qsizetype query = name.indexOf(u"?version=");
    if (query >= 0) name.truncate(query);
    name = name.trimmed();
    if (QDir::isAbsolutePath(name)) return QDir::cleanPath(name);
    QString home = qEnvironmentVariable("ZOVRAND_HOME");
    if (home.isEmpty())
        home = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
               QStringLiteral("/zovrand");
    // A relative path must not lead out of the servers' folder.
    const QString encoded = QString::fromLatin1(QUrl::toPercentEncoding(name, " ", QByteArray()));
    const bool dots = name == QLatin1String(".") || name == QLatin1String("..");
    return QDir::cleanPath(home + QStringLiteral("/servers/") +
                           (dots ? QString(encoded).replace(u'.', QLatin1String("%2E")) : encoded));
}

std::unique_ptr<ServerStore> ServerStore::open(const QString& dataSource, bool createServer) {
    const QString folder = folderOf(dataSource);
    const qsizetype query = dataSource.indexOf(u"?version=");
    QString version = query >= 0 ? dataSource.mid(query + 9).trimmed() : DefaultVersion;
    if (version.section(u'.', 0, 0).toInt() < 1)
        throw DbError(ado_error::Unspecified,
                      QStringLiteral("'%1' is no product version; \"8.00.2039\" is one.").arg(version),
                      QStringLiteral("08001"), 17);
    QString bare = dataSource;
    if (query >= 0) bare.truncate(query);
    const QString name = isLocalDataSource(bare) ? bare.mid(Scheme.size()).trimmed() : bare;
    if (name.isEmpty())
        throw DbError(ado_error::Unspecified,
                      QStringLiteral("SQL Server does not exist or access denied. \"local:\" needs a "
                                     "name behind it, as in \"local:samples\"."),
                      QStringLiteral("08001"), 17);

    const QString facts = folder + QStringLiteral("/server.json");
    bool made = false;
    if (!QFileInfo(folder).isDir()) {
        if (!createServer)
            throw DbError(
                ado_error::Unspecified,
                QStringLiteral("SQL Server does not exist or access denied. There is no folder %1; "
                               "zovrand-cli load -S %2 -d DATABASE FILE.sql makes one.")
                    .arg(QDir::toNativeSeparators(folder),
                         isLocalDataSource(bare) ? bare : Scheme + bare),
                QStringLiteral("08001"), 17);
        if (!QDir().mkpath(folder))
            throw DbError(ado_error::Unspecified,
                          QStringLiteral("The folder %1 of the embedded server could not be made.")
                              .arg(QDir::toNativeSeparators(folder)),
                          QStringLiteral("08001"), 17);
        QSaveFile file(facts);
        const QJsonObject object{{QStringLiteral("version"), version}};
        if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(object).toJson()) < 0 ||
            !file.commit())
            throw DbError(ado_error::Unspecified,
                          QStringLiteral("The file %1 could not be written: %2")
                              .arg(QDir::toNativeSeparators(facts), file.errorString()),
                          QStringLiteral("08001"), 17);
        made = true;
    } else {
        version = DefaultVersion;
        QFile file(facts);
        if (file.open(QIODevice::ReadOnly)) {
            const QString kept = QJsonDocument::fromJson(file.readAll())
                                     .object()
                                     .value(QStringLiteral("version"))
                                     .toString();
            if (kept.section(u'.', 0, 0).toInt() > 0) version = kept;
        }
    }
    std::unique_ptr<ServerStore> store(new ServerStore(folder, version));
    store->folderMade_ = made;
    return store;
}

ServerStore::ServerStore(QString folder, QString version)
    : folder_(std::move(folder)), productVersion_(std::move(version)) {
    serverName_ = QUrl::fromPercentEncoding(QFileInfo(folder_).fileName().toUtf8());
}

ServerStore::~ServerStore() {
    try {
        if (inLoad_) rollbackLoad();
        while (transactionCount_ > 0) rollbackTransaction();
    } catch (const DbError&) {
        // Closing the handles undoes what is open.
    }
    for (auto& [key, entry] : open_) {
        entry->detachOthers();
        if (!entry->idle()) continue;
        entry->seenVersion = entry->currentVersion();
        entry->database.store = nullptr;
        pool().give(std::move(entry));
    }
}

int ServerStore::majorVersion() const { return productVersion_.section(u'.', 0, 0).toInt(); }

ServerStore::Entry* ServerStore::entryOf(const Database& database) {
    for (auto& [key, entry] : open_)
        if (&entry->database == &database) return entry.get();
    return nullptr;
}

bool ServerStore::find(const QString& name, QString& trueName, QString& file) const {
    const QString key = fold(name);
    if (dropped_.contains(key)) return false;
    const QString direct = folder_ + u'/' + fileNameOf(name);
    if (QFileInfo::exists(direct)) {
        file = direct;
        trueName = name;
        return true;
    }
    const QFileInfoList files = QDir(folder_).entryInfoList({QStringLiteral("*.db")}, QDir::Files);
    for (const QFileInfo& info : files) {
        const QString candidate = nameOfFile(info);
        if (candidate.isEmpty() || fold(candidate) != key) continue;
        file = folder_ + u'/' + info.fileName();
        trueName = candidate;
        return true;
    }
    return false;
}

std::vector<DatabaseFacts> ServerStore::databases() {
    std::vector<DatabaseFacts> all;
    std::set<QString> seen;
    const auto defaults = [&](const QString& name, const QString& file) {
        DatabaseFacts facts;
        facts.name = name;
        facts.file = file;
        facts.collation = DefaultCollation;
        facts.compatibility = compatibilityOf(productVersion_);
        facts.created = QStringLiteral("2003-04-08 09:13:36.390");
        return facts;
    };
    const auto take = [&](DatabaseFacts facts, sqlite3* handle) {
        const QString name = facts.name;
        if (handle) readFacts(handle, facts);
        else if (!facts.file.isEmpty()) readFileFacts(facts.file, facts);
        facts.name = name;   // a copied file keeps the facts of the one it was copied from
        const int fixed = systemId(fold(name));
        facts.isSystem = fixed > 0;
        if (fixed) facts.dbid = fixed;
        else if (facts.dbid <= 4) facts.dbid = 0;
        seen.insert(fold(name));
        all.push_back(std::move(facts));
    };
    for (auto& [key, entry] : open_)
        take(defaults(entry->database.name, entry->file), entry->database.handle);
    const QFileInfoList files = QDir(folder_).entryInfoList({QStringLiteral("*.db")}, QDir::Files);
    for (const QFileInfo& info : files) {
        const QString name = nameOfFile(info);
        if (name.isEmpty() || seen.contains(fold(name)) || dropped_.contains(fold(name))) continue;
        take(defaults(name, folder_ + u'/' + info.fileName()), nullptr);
    }
    for (const char* name : {"master", "tempdb", "model", "msdb"})
        if (!seen.contains(QLatin1String(name))) take(defaults(QLatin1String(name), {}), nullptr);

    // A file that was copied into the folder may carry an id that is taken.
    std::sort(all.begin(), all.end(), [](const DatabaseFacts& a, const DatabaseFacts& b) {
        return a.dbid != b.dbid ? a.dbid < b.dbid : fold(a.name) < fold(b.name);
    });
    std::set<int> used;
    for (DatabaseFacts& facts : all)
        if (facts.dbid == 0 || !used.insert(facts.dbid).second) facts.dbid = 0;
    for (DatabaseFacts& facts : all) {
        if (facts.dbid) continue;
        int id = 5;
        while (!used.insert(id).second) ++id;
        facts.dbid = id;
    }
    std::sort(all.begin(), all.end(),
              [](const DatabaseFacts& a, const DatabaseFacts& b) { return a.dbid < b.dbid; });
    return all;
}

bool ServerStore::hasDatabase(const QString& name) {
    const QString key = fold(name);
    QString trueName, file;
    return open_.contains(key) || systemId(key) || find(name, trueName, file);
}

int ServerStore::nextDatabaseId() {
    std::set<int> used;
    for (const DatabaseFacts& facts : databases()) used.insert(facts.dbid);
    int id = 5;
    while (used.contains(id)) ++id;
    return id;
}

ServerStore::Entry& ServerStore::openEntry(const QString& name, const QString& file, bool staged) {
    const QString key = fold(name);
    std::unique_ptr<Entry> entry = staged ? nullptr : pool().take(file);
    if (!entry) {
        entry = std::make_unique<Entry>();
        entry->file = file;
        entry->staged = staged;
        const bool writable = QFileInfo(file).isWritable() && QFileInfo(folder_).isWritable();
        if (writable) {
            entry->database.handle = openFile(file, SQLITE_OPEN_READWRITE);
        } else {
            // Where no log can be written beside the file it is read as it stands.
            entry->readOnly = true;
            entry->database.handle = openFile(
                file, SQLITE_OPEN_READONLY,
                QFileInfo::exists(file + QStringLiteral("-wal")) ? QString() : QStringLiteral("?immutable=1"));
        }
        sqlite3* handle = entry->database.handle;
        entry->database.store = this;
        entry->database.name = name;
        execSql(handle, staged ? "PRAGMA synchronous=OFF; PRAGMA journal_mode=MEMORY; PRAGMA temp_store=MEMORY"
                               : "PRAGMA synchronous=NORMAL; PRAGMA temp_store=MEMORY");
        installFunctions(handle, entry->database, *this);
        Statement id(handle, "SELECT value FROM \"zov$facts\" WHERE name='dbid'");
        if (id.step()) entry->database.dbid = sqlite3_column_int(id.get(), 0);
        entry->prepare();
        entry->seenVersion = entry->currentVersion();
    } else if (const qint64 version = entry->currentVersion(); version != entry->seenVersion) {
        entry->seenVersion = version;
        catalogChanged(entry->database);
    }
    entry->database.store = this;
    entry->database.name = name;
    return *(open_[key] = std::move(entry));
}

ServerStore::Entry& ServerStore::stageNew(const QString& name, int dbid) {
    static std::atomic<int> counter = 0;
    const QString file = folder_ + u'/' + fileNameOf(name) +
                         QStringLiteral(".new-%1-%2")
                             .arg(QDateTime::currentMSecsSinceEpoch(), 0, 36)
                             .arg(++counter);
    sqlite3* handle = nullptr;
    try {
        handle = openFile(file, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
        execSql(handle, "PRAGMA synchronous=OFF; PRAGMA journal_mode=MEMORY; BEGIN");
        execSql(handle, catalogTablesSql());
        const QString now =
            QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
        Statement insert(handle, "INSERT INTO \"zov$facts\"(name, value) VALUES(?1, ?2)");
        const auto fact = [&](const char* key, const QString& value) {
            const QByteArray utf8 = value.toUtf8();
            sqlite3_bind_text(insert.get(), 1, key, -1, SQLITE_STATIC);
            sqlite3_bind_text(insert.get(), 2, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
            insert.step();
            checkSqlite(handle, sqlite3_reset(insert.get()));
        };
        fact("name", name);
        fact("version", productVersion_);
        fact("compatibility", QString::number(compatibilityOf(productVersion_)));
        fact("collation", DefaultCollation);
        fact("created", now);
        fact("next_object_id", QString::number(FirstObjectId));
        fact("dbid", QString::number(dbid));
        execSql(handle, QStringLiteral("PRAGMA application_id=%1; COMMIT").arg(ApplicationId));
    } catch (...) {
        sqlite3_close_v2(handle);
        removeDatabaseFiles(file);
        throw;
    }
    sqlite3_close_v2(handle);
    try {
        return openEntry(name, file, true);
    } catch (...) {
        removeDatabaseFiles(file);
        throw;
    }
}

void ServerStore::publish(Entry& entry) {
    const QString staging = entry.file;
    const QString target = folder_ + u'/' + fileNameOf(entry.database.name);
    if (!sqlite3_get_autocommit(entry.database.handle)) execSql(entry.database.handle, "COMMIT");
    entry.begun = entry.marked = entry.inStatement = false;
    // The log mode is written into the file while nobody else sees it.
    execSql(entry.database.handle, "PRAGMA synchronous=FULL; PRAGMA journal_mode=WAL");
    entry.close();
    pool().purge(target);
    removeDatabaseFiles(target);
    if (!QFile::rename(staging, target))
        throw DbError(ado_error::Unspecified,
                      QStringLiteral("The database's file %1 could not be put in place.")
                          .arg(QDir::toNativeSeparators(target)),
                      QStringLiteral("42000"), 5120);
    entry.file = target;
    entry.staged = false;
    entry.database.handle = openFile(target, SQLITE_OPEN_READWRITE);
    execSql(entry.database.handle, "PRAGMA synchronous=NORMAL; PRAGMA temp_store=MEMORY");
    installFunctions(entry.database.handle, entry.database, *this);
    entry.prepare();
    entry.seenVersion = entry.currentVersion();
}

Database& ServerStore::database(const QString& name) {
    const QString key = fold(name);
    if (const auto at = open_.find(key); at != open_.end()) return at->second->database;
    QString trueName, file;
    if (find(name, trueName, file)) return openEntry(trueName, file, false).database;
    if (const int id = systemId(key)) {
        if (!QFileInfo(folder_).isDir())
            throw DbError(ado_error::Unspecified,
                          QStringLiteral("The folder %1 of the embedded server is gone.")
                              .arg(QDir::toNativeSeparators(folder_)),
                          QStringLiteral("08S01"), 17);
        Entry& entry = stageNew(key, id);
        publish(entry);   // not a part of any load
        return entry.database;
    }
    throw nativeError(911, QStringLiteral("Database '%1' does not exist. Make sure that the name is "
                                          "entered correctly.")
                               .arg(name));
}

Database& ServerStore::openOrCreate(const QString& name) {
    if (hasDatabase(name)) return database(name);
    createDatabase(name);
    createdAtOpen_.insert(fold(name));
    return database(name);
}

void ServerStore::createDatabase(const QString& name) {
    if (name.isEmpty() || name.size() > 128)
        throw nativeError(103, QStringLiteral("A database's name has 1 to 128 characters."));
    if (transactionCount_ > 0)
        throw nativeError(226, QStringLiteral("CREATE DATABASE statement not allowed within "
                                              "multi-statement transaction."));
    if (hasDatabase(name))
        throw nativeError(1801, QStringLiteral("Database '%1' already exists. Choose a different "
                                               "database name.")
                                    .arg(name));
    Entry& entry = stageNew(name, nextDatabaseId());
    if (!inLoad_) publish(entry);
}

void ServerStore::requireUnused(const QString& name, const QString& file) {
    pool().purge(file);
    for (auto& [key, entry] : open_) entry->detachOthers();
    // Leaving the log mode works only for the single connection of a file: a test for other users
    // of it, in this process or another.
    sqlite3* handle = openFile(file, SQLITE_OPEN_READWRITE);
    sqlite3_busy_timeout(handle, 1'000);
    sqlite3_stmt* statement = nullptr;
    bool alone = false;
    int code = sqlite3_prepare_v2(handle, "PRAGMA journal_mode=DELETE", -1, &statement, nullptr);
    if (code == SQLITE_OK && (code = sqlite3_step(statement)) == SQLITE_ROW)
        alone = qstrcmp(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)), "delete") == 0;
    sqlite3_finalize(statement);
    // A damaged file can be dropped too.
    const int primary = code & 0xff;
    if (primary == SQLITE_NOTADB || primary == SQLITE_CORRUPT) alone = true;
    else if (alone && inLoad_) sqlite3_exec(handle, "PRAGMA journal_mode=WAL", nullptr, nullptr, nullptr);
    sqlite3_close_v2(handle);
    if (!alone)
        throw nativeError(3702, QStringLiteral("Cannot drop database \"%1\" because it is currently in "
                                               "use.")
                                    .arg(name));
}

void ServerStore::forget(const QString& key) {
    const auto at = open_.find(key);
    if (at == open_.end()) return;
    at->second->close();
    gone_.push_back(std::move(at->second));
    open_.erase(at);
}

void ServerStore::dropDatabase(const QString& name) {
    const QString key = fold(name);
    if (systemId(key))
        throw nativeError(3708, QStringLiteral("Cannot drop the database '%1' because it is a system "
                                               "database.")
                                    .arg(name));
    if (transactionCount_ > 0)
        throw nativeError(226, QStringLiteral("DROP DATABASE statement not allowed within "
                                              "multi-statement transaction."));
    const auto open = open_.find(key);
    if (open != open_.end() && open->second->staged) {
        const QString file = open->second->file;
        forget(key);
        removeDatabaseFiles(file);
        return;
    }
    QString trueName, file;
    if (!find(name, trueName, file))
        throw nativeError(3701, QStringLiteral("Cannot drop the database '%1', because it does not "
                                               "exist or you do not have permission.")
                                    .arg(name));
    forget(key);
    requireUnused(trueName, file);
    if (inLoad_) dropped_[key] = file;
    else removeDatabaseFiles(file);
}

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
        if (entry->begun) checkSqlite(entry->database.handle, sqlite3_db_cacheflush(entry->database.handle));
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
        const QStringList left =
            QDir(folder_).entryList({QStringLiteral("*.db")}, QDir::Files);
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
        throw nativeError(3902, QStringLiteral("The COMMIT TRANSACTION request has no corresponding "
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
        throw nativeError(3903, QStringLiteral("The ROLLBACK TRANSACTION request has no corresponding "
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

void ServerStore::beginStatement() { inStatement_ = true; }

void ServerStore::willWrite(Database& database) {
    Entry* entry = entryOf(database);
    Q_ASSERT(entry);
    if (entry->inStatement) return;
    if (entry->readOnly)
        throw nativeError(3906, QStringLiteral("Failed to update database \"%1\" because the database "
                                               "is read-only.")
                                    .arg(database.name));
    if (!entry->begun) {
        execSql(database.handle, "BEGIN IMMEDIATE");
        entry->begun = true;
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
