// Attaching: a database file of an embedded server, this one's or another's,
// becomes a new database. The file is copied and stays as it is.
#include "data/local/server_store_entry.h"
#include "data/local/sqlite_files.h"

#include <QDir>
#include <QFileInfo>

namespace zov::local {
namespace {

qint32 majorOf(const QString& version) {
    return version.section(u'.', 0, 0).toInt();
}

/// The one text that a query gives; empty when it gives none.
QString textOf(sqlite3* handle, const char* sql) {
    StoreStatement statement(handle, sql);
    return statement.step() ? statement.text(0) : QString();
}

/// Throws for a file that isn't there, holds no database of ours, or one of a newer server.
void requireOurs(const QString& file, const QString& productVersion) {
    const QString shown = QDir::toNativeSeparators(file);
    if (!QFileInfo(file).isFile())
        throw nativeError(5120, QStringLiteral("Unable to open the physical file \"%1\": there is "
                                               "no such file.")
                                    .arg(shown));
    QString version;
    bool ours = false;
    try {
        bool readOnly = false;
        const SqliteHandle handle(openDatabaseFile(file, readOnly));
        ours = textOf(handle.get(), "PRAGMA application_id") == QString::number(ApplicationId);
        if (ours)
            version = textOf(handle.get(), "SELECT value FROM \"zov$facts\" WHERE name='version'");
    } catch (const DbError&) {
        ours = false;
    }
    if (!ours)
        throw nativeError(
            5171,
            QStringLiteral("%1 is not a primary database file of an embedded server.").arg(shown));
    if (majorOf(version) > majorOf(productVersion))
        throw nativeError(948, QStringLiteral("The database in %1 cannot be opened because it is "
                                              "version %2. This server supports version %3 and "
                                              "earlier. A downgrade path is not supported.")
                                   .arg(shown, version, productVersion));
}

}  // namespace

void ServerStore::attachDatabase(const QString& name, const QString& file) {
    if (transactionCount_ > 0)
        throw nativeError(226, QStringLiteral("Attaching a database is not allowed within "
                                              "multi-statement transaction."));
    if (hasDatabase(name))
        throw nativeError(1801, QStringLiteral("Database '%1' already exists. Choose a different "
                                               "database name.")
                                    .arg(name));
    requireOurs(file, productVersion_);
    const QFileInfo source(file);
    if (source.canonicalPath() == QFileInfo(folder_).canonicalFilePath())
        throw nativeError(1813, QStringLiteral("Could not open new database '%1'. The file %2 is a "
                                               "database of this server already.")
                                    .arg(name, QDir::toNativeSeparators(file)));
    newDatabase(name, source.canonicalFilePath());
    if (!inLoad_) publishStaged();
}

void ServerStore::fillStagedFrom(const QString& from, const QString& to, const QString& name,
                                 int dbid) {
    copyDatabase(from, to);
    const SqliteHandle handle(openFile(to, SQLITE_OPEN_READWRITE));
    const QString state = textOf(handle.get(), "PRAGMA quick_check(1)");
    if (state != u"ok")
        throw nativeError(824,
                          QStringLiteral("The file %1 is damaged (%2). Attach a copy of it from "
                                         "before.")
                              .arg(QDir::toNativeSeparators(from), state.simplified()));
    storeFact(handle.get(), "name", name);
    storeFact(handle.get(), "dbid", QString::number(dbid));
    storeFact(handle.get(), "version", productVersion_);
}

}  // namespace zov::local
