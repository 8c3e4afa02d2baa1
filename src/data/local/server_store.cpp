#include "data/local/server_store.h"

#include "data/local/catalog_tables.h"
#include "data/local/functions.h"
#include "data/local/server_store_entry.h"
#include "data/local/sorting.h"
#include "util/atomic_file.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>

namespace zov::local {
namespace {

const QString DefaultVersion = QStringLiteral("16.0.4085.2");
const QString Scheme = QStringLiteral("local:");

// A file that an earlier version of the program made gets the tables that it lacks; one that can't
// be written reads as if they were there and empty.
void addLaterTables(sqlite3* handle, bool readOnly) {
    sqlite3_stmt* statement = nullptr;
    checkSqlite(handle,
                sqlite3_prepare_v2(handle, "SELECT 1 FROM sqlite_master WHERE name='zov$logins'",
                                   -1, &statement, nullptr));
    const int code = sqlite3_step(statement);
    sqlite3_finalize(statement);
    checkSqlite(handle, code);
    if (code == SQLITE_ROW) return;
    QByteArray sql = laterCatalogTablesSql();
    if (readOnly) sql.replace("CREATE TABLE", "CREATE TEMP TABLE");
    execSql(handle, ("BEGIN; " + sql + "; COMMIT").constData());
}

QString factsFile(const QString& folder) {
    return folder + QStringLiteral("/server.json");
}

bool isVersion(const QString& text) {
    return text.section(u'.', 0, 0).toInt() > 0;
}

/// The version that a folder was made as; `fallback` where nothing tells it.
QString versionOfFolder(const QString& folder, const QString& fallback) {
    const QString path = factsFile(folder);
    QByteArray bytes;
    bool exists = false;
    QString trouble = readWholeFile(path, bytes, &exists);
    if (trouble.isEmpty() && !exists) return fallback;
    const QString version =
        QJsonDocument::fromJson(bytes).object().value(QStringLiteral("version")).toString();
    if (trouble.isEmpty() && isVersion(version)) return version;
    if (trouble.isEmpty())
        trouble = QStringLiteral(
                      "The file %1, which tells the embedded server's version, is "
                      "damaged. Restore it from a copy, or write {\"version\": \"%2\"} "
                      "into it with the version that the server was made as.")
                      .arg(QDir::toNativeSeparators(path), DefaultVersion);
    throw DbError(ado_error::Unspecified, trouble, QStringLiteral("08001"), 17);
}

}  // namespace

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
    if (!isVersion(version))
        throw DbError(
            ado_error::Unspecified,
            QStringLiteral("'%1' is no product version; \"8.00.2039\" is one.").arg(version),
            QStringLiteral("08001"), 17);
    QString bare = dataSource;
    if (query >= 0) bare.truncate(query);
    const QString name = isLocalDataSource(bare) ? bare.mid(Scheme.size()).trimmed() : bare;
    if (name.isEmpty())
        throw DbError(
            ado_error::Unspecified,
            QStringLiteral("SQL Server does not exist or access denied. \"local:\" needs a "
                           "name behind it, as in \"local:samples\"."),
            QStringLiteral("08001"), 17);

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
        made = true;
    } else {
        // A folder that its maker could not finish is as good as none.
        made = createServer && !QFileInfo::exists(factsFile(folder)) &&
               databaseFilesIn(folder).isEmpty();
        if (!made) version = versionOfFolder(folder, DefaultVersion);
    }
    std::unique_ptr<ServerStore> store(new ServerStore(folder, version));
    store->folderMade_ = made;
    if (made) {
        store->makeFolder(factsFile(folder));
        store->productVersion_ = versionOfFolder(folder, version);  // another session may be first
    }
    store->sweep();
    return store;
}

std::unique_ptr<ServerStore> ServerStore::ofMemory(const MemoryPlace& place) {
    std::unique_ptr<ServerStore> store(new ServerStore(place.memory, place.version));
    store->serverName_ = place.serverName;
    store->inMemory_ = true;
    store->openEntry(place.database, place.memory, false);
    return store;
}

std::unique_ptr<ServerStore> ServerStore::makeMemory(const MemoryPlace& place,
                                                     const QString& collation) {
    // It lives until the store has a handle of its own.
    const SqliteHandle first(openMemory(place.memory));
    ServerStore maker(place.memory, place.version);
    maker.inMemory_ = true;
    constexpr int firstUserDatabase = 5;
    maker.fillEmpty(first.get(), place.database, firstUserDatabase);
    std::unique_ptr<ServerStore> store = ofMemory(place);
    const Database& database = store->database(place.database);
    execSql(database.handle, "BEGIN");
    setNameCollation(database.handle, *Collation::named(collation), place.database);
    storeFact(database.handle, "collation", Collation::named(collation)->name());
    execSql(database.handle, "COMMIT");
    return store;
}

void ServerStore::closeIdle(const MemoryPlace& place) {
    pool().purge(place.memory);
}

ServerStore::ServerStore(QString folder, QString version)
    : folder_(std::move(folder)), productVersion_(std::move(version)) {
    serverName_ = QUrl::fromPercentEncoding(QFileInfo(folder_).fileName().toUtf8());
}

ServerStore::~ServerStore() {
    // Whatever fails here is undone by closing the handles, and swept by the next session.
    const auto quietly = [](const auto& step) {
        try {
            step();
        } catch (...) {
        }
    };
    quietly([&] {
        if (inLoad_) rollbackLoad();
        if (transactionCount_ > 0) rollbackTransaction();
    });
    for (auto& item : open_)
        quietly([&] {
            std::unique_ptr<Entry>& entry = item.second;
            if (entry->staged) {  // never published
                entry->close();
                removeDatabaseFiles(entry->file);
                return;
            }
            entry->detachOthers();
            if (!entry->idle()) return;
            entry->seenVersion = entry->currentVersion();
            entry->database.store = nullptr;
            pool().give(std::move(entry));
        });
    quietly([&] {
        if (folderMade_) removeMadeFolder();
    });
    quietly([&] { releaseOwner(); });
}

int ServerStore::majorVersion() const {
    return productVersion_.section(u'.', 0, 0).toInt();
}

ServerStore::Entry* ServerStore::entryOf(const Database& database) {
    for (auto& [key, entry] : open_)
        if (&entry->database == &database) return entry.get();
    return nullptr;
}

bool ServerStore::find(const QString& name, QString& trueName, QString& file) {
    const QString key = fold(name);
    if (inMemory_ || dropped_.contains(key)) return false;
    const Hold hold(*this);
    const QString direct = folder_ + u'/' + fileNameOf(name);
    if (QFileInfo::exists(direct)) {
        file = direct;
        trueName = name;
        return true;
    }
    for (const QString& name : databaseFilesIn(folder_)) {
        const QString candidate = nameOfFile(QFileInfo(folder_ + u'/' + name));
        if (candidate.isEmpty() || fold(candidate) != key) continue;
        file = folder_ + u'/' + name;
        trueName = candidate;
        return true;
    }
    return false;
}

std::vector<DatabaseFacts> ServerStore::databases() {
    const Hold hold(*this);
    std::vector<DatabaseFacts> all;
    std::set<QString> seen;
    const auto defaults = [&](const QString& name, const QString& file) {
        DatabaseFacts facts;
        facts.name = name;
        facts.file = file;
        facts.collation = QLatin1String(DefaultCollation);
        facts.compatibility = compatibilityOf(productVersion_);
        facts.created = QStringLiteral("2003-04-08 09:13:36.390");
        return facts;
    };
    const auto take = [&](DatabaseFacts facts, sqlite3* handle) {
        const QString name = facts.name;
        if (handle)
            readFacts(handle, facts);
        else if (!facts.file.isEmpty())
            readFileFacts(facts.file, facts);
        facts.name = name;  // a copied file keeps the facts of the one it was copied from
        const int fixed = systemId(fold(name));
        facts.isSystem = fixed > 0;
        if (fixed)
            facts.dbid = fixed;
        else if (facts.dbid <= 4)
            facts.dbid = 0;
        seen.insert(fold(name));
        all.push_back(std::move(facts));
    };
    for (auto& [key, entry] : open_)
        take(defaults(entry->database.name, entry->file), entry->database.handle);
    for (const QString& file : databaseFilesIn(folder_)) {
        const QString name = nameOfFile(QFileInfo(folder_ + u'/' + file));
        if (name.isEmpty() || seen.contains(fold(name)) || dropped_.contains(fold(name))) continue;
        take(defaults(name, folder_ + u'/' + file), nullptr);
    }
    for (const char* name : {"master", "tempdb", "model", "msdb"})
        if (!inMemory_ && !seen.contains(QLatin1String(name)))
            take(defaults(QLatin1String(name), {}), nullptr);

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
    const Hold hold(*this);
    std::unique_ptr<Entry> entry = staged ? nullptr : pool().take(file);
    if (!entry) {
        entry = std::make_unique<Entry>();
        entry->file = file;
        entry->staged = staged;
        entry->database.name = name;
        openHandle(*entry);
    } else if (const qint64 version = entry->currentVersion(); version != entry->seenVersion) {
        entry->seenVersion = version;
        catalogChanged(entry->database);
    }
    entry->database.store = this;
    entry->database.name = name;
    return *(open_[key] = std::move(entry));
}

sqlite3* ServerStore::renewIndexes(Entry& entry) {
    Database& database = entry.database;
    if (entry.readOnly) {
        sqlite3* copy = privateCopy(database.handle);
        sqlite3_close_v2(database.handle);
        database.handle = copy;
        database.isCopy = true;
        addLaterTables(copy, false);
        installFunctions(copy, database, *this);
    }
    renewSorting(database.handle);
    return database.handle;
}

void ServerStore::openHandle(Entry& entry) {
    entry.database.handle =
        inMemory_ ? openMemory(entry.file) : openDatabaseFile(entry.file, entry.readOnly);
    sqlite3* handle = entry.database.handle;
    entry.database.store = this;
    execSql(handle,
            entry.staged || inMemory_
                ? "PRAGMA synchronous=OFF; PRAGMA journal_mode=MEMORY; PRAGMA temp_store=MEMORY"
                : "PRAGMA synchronous=NORMAL; PRAGMA temp_store=MEMORY");
    addLaterTables(handle, entry.readOnly);
    installFunctions(handle, entry.database, *this);
    if (!sortingIsCurrent(handle)) handle = renewIndexes(entry);
    StoreStatement id(handle, "SELECT value FROM \"zov$facts\" WHERE name='dbid'");
    if (id.step()) entry.database.dbid = sqlite3_column_int(id.get(), 0);
    entry.prepare();
    entry.seenVersion = entry.currentVersion();
}

ServerStore::Entry& ServerStore::stageNew(const QString& name, int dbid, const QString& from) {
    static std::atomic<int> counter = 0;
    const QString file = folder_ + u'/' + fileNameOf(name) +
                         QStringLiteral(".new-%1-%2").arg(owner()).arg(++counter);
    try {
        if (from.isEmpty())
            fillStaged(file, name, dbid);
        else
            fillStagedFrom(from, file, name, dbid);
        return openEntry(name, file, true);
    } catch (...) {
        removeDatabaseFiles(file);
        throw;
    }
}

void ServerStore::fillStaged(const QString& file, const QString& name, int dbid) {
    const SqliteHandle owner(openFile(file, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE));
    fillEmpty(owner.get(), name, dbid);
}

void ServerStore::fillEmpty(sqlite3* handle, const QString& name, int dbid) {
    execSql(handle, "PRAGMA synchronous=OFF; PRAGMA journal_mode=MEMORY; BEGIN");
    execSql(handle, catalogTablesSql());
    const std::pair<const char*, QString> facts[] = {
        {"name", name},
        {"version", productVersion_},
        {"compatibility", QString::number(compatibilityOf(productVersion_))},
        {"collation", QLatin1String(DefaultCollation)},
        {"sorting", Collation::sortingVersion()},
        {"created",
         QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"))},
        {"next_object_id", QString::number(FirstObjectId)},
        {"dbid", QString::number(dbid)}};
    for (const auto& [fact, value] : facts) storeFact(handle, fact, value);
    execSql(handle, QStringLiteral("PRAGMA application_id=%1; COMMIT").arg(ApplicationId));
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
        return systemDatabase(key, id);
    }
    throw nativeError(911,
                      QStringLiteral("Database '%1' does not exist. Make sure that the name is "
                                     "entered correctly.")
                          .arg(name));
}

Database& ServerStore::systemDatabase(const QString& name, int id) {
    const Hold hold(*this, true);
    QString trueName, file;
    if (!find(name, trueName, file)) {  // another session may have been first
        Entry& entry = stageNew(name, id);
        const QString target = folder_ + u'/' + fileNameOf(name);
        QString trouble;
        try {
            finishStaged(entry);
            trouble = replaceFile(entry.file, target);
        } catch (...) {
            discard(name);
            throw;
        }
        if (!trouble.isEmpty()) {
            discard(name);
            notInPlace(target, trouble);
        }
        forget(name);
        file = target;
    }
    return openEntry(name, file, false).database;
}

Database& ServerStore::newDatabase(const QString& name, const QString& from) {
    if (name.isEmpty() || name.size() > 128)
        throw nativeError(103, QStringLiteral("A database's name has 1 to 128 characters."));
    return stageNew(name, nextDatabaseId(), from).database;
}

Database& ServerStore::openOrCreate(const QString& name) {
    if (hasDatabase(name)) return database(name);
    Database& made = newDatabase(name);
    unclaimed_.insert(fold(name));
    return made;
}

void ServerStore::createDatabase(const QString& name) {
    if (transactionCount_ > 0)
        throw nativeError(226, QStringLiteral("CREATE DATABASE statement not allowed within "
                                              "multi-statement transaction."));
    // A script that makes the database which was made for it finds it as it wants it: new and
    // empty.
    if (inLoad_ && unclaimed_.erase(fold(name)) && hasDatabase(name)) return;
    if (hasDatabase(name))
        throw nativeError(1801, QStringLiteral("Database '%1' already exists. Choose a different "
                                               "database name.")
                                    .arg(name));
    newDatabase(name);
    if (!inLoad_) publishStaged();
}

void ServerStore::requireUnused(const QString& name, const QString& file, bool forGood) {
    pool().purge(file);
    for (auto& [key, entry] : open_) entry->detachOthers();
    // Leaving the log mode works only for the single connection of a file: a test for other
    // users of it, in this process or another. Without the log, the file is all that there is
    // of it.
    sqlite3* handle = openFile(file, SQLITE_OPEN_READWRITE);
    sqlite3_busy_timeout(handle, 1'000);
    sqlite3_stmt* statement = nullptr;
    bool alone = false;
    int code = sqlite3_prepare_v2(handle, "PRAGMA journal_mode=DELETE", -1, &statement, nullptr);
    if (code == SQLITE_OK && (code = sqlite3_step(statement)) == SQLITE_ROW)
        alone = qstrcmp(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)),
                        "delete") == 0;
    sqlite3_finalize(statement);
    // A damaged file can be dropped too.
    const int primary = code & 0xff;
    if (primary == SQLITE_NOTADB || primary == SQLITE_CORRUPT)
        alone = true;
    else if (alone && !forGood)
        sqlite3_exec(handle, "PRAGMA journal_mode=WAL", nullptr, nullptr, nullptr);
    sqlite3_close_v2(handle);
    if (!alone)
        throw nativeError(3702,
                          QStringLiteral("Cannot drop database \"%1\" because it is currently in "
                                         "use.")
                              .arg(name));
}

void ServerStore::discard(const QString& key) {
    const QString file = open_[key]->file;
    forget(key);
    removeDatabaseFiles(file);
}

void ServerStore::forget(const QString& key) {
    const auto at = open_.find(key);
    if (at == open_.end()) return;
    // One that went to the pool has left its place empty.
    if (at->second) {
        at->second->close();
        gone_.push_back(std::move(at->second));
    }
    open_.erase(at);
}

void ServerStore::dropDatabase(const QString& name) {
    const QString key = fold(name);
    if (systemId(key))
        throw nativeError(3708,
                          QStringLiteral("Cannot drop the database '%1' because it is a system "
                                         "database.")
                              .arg(name));
    if (transactionCount_ > 0)
        throw nativeError(226, QStringLiteral("DROP DATABASE statement not allowed within "
                                              "multi-statement transaction."));
    const auto open = open_.find(key);
    if (open != open_.end() && open->second->staged) return discard(key);
    const Hold hold(*this, true);
    QString trueName, file;
    if (!find(name, trueName, file))
        throw nativeError(3701, QStringLiteral("Cannot drop the database '%1', because it does not "
                                               "exist or you do not have permission.")
                                    .arg(name));
    forget(key);
    requireUnused(trueName, file, !inLoad_);
    if (inLoad_)
        dropped_[key] = file;
    else
        removeDatabaseFiles(file);
}

}  // namespace zov::local
