// CREATE, ALTER and DROP DATABASE.
#include "data/local/ddl.h"
#include "data/local/query_cache.h"
#include "data/local/query_collating.h"
#include "data/local/server_store.h"
#include "data/local/sorting.h"

#include <QSet>

namespace zov::local {
namespace {

bool same(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

void readFileSpecs(TokenCursor& cursor) {
    do {
        cursor.accept("PRIMARY");
        if (cursor.accept("FILEGROUP")) {
            cursor.name();
            cursor.accept({"CONTAINS", "FILESTREAM"});
            cursor.accept("DEFAULT");
        }
        cursor.parenthesised();
    } while (cursor.accept(","));
}

const QSet<QString>& databaseOptions() {
    static const QSet<QString> names = [] {
        QSet<QString> set;
        for (const char* name : {"ALLOW_SNAPSHOT_ISOLATION",
                                 "ANSI_NULLS",
                                 "ANSI_NULL_DEFAULT",
                                 "ANSI_PADDING",
                                 "ANSI_WARNINGS",
                                 "ARITHABORT",
                                 "AUTO_CLOSE",
                                 "AUTO_CREATE_STATISTICS",
                                 "AUTO_SHRINK",
                                 "AUTO_UPDATE_STATISTICS",
                                 "AUTO_UPDATE_STATISTICS_ASYNC",
                                 "CHANGE_TRACKING",
                                 "CONCAT_NULL_YIELDS_NULL",
                                 "CONTAINMENT",
                                 "CURSOR_CLOSE_ON_COMMIT",
                                 "CURSOR_DEFAULT",
                                 "DATE_CORRELATION_OPTIMIZATION",
                                 "DB_CHAINING",
                                 "DELAYED_DURABILITY",
                                 "DISABLE_BROKER",
                                 "EMERGENCY",
                                 "ENABLE_BROKER",
                                 "ENCRYPTION",
                                 "ERROR_BROKER_CONVERSATIONS",
                                 "FILESTREAM",
                                 "HONOR_BROKER_PRIORITY",
                                 "MULTI_USER",
                                 "NEW_BROKER",
                                 "NUMERIC_ROUNDABORT",
                                 "OFFLINE",
                                 "ONLINE",
                                 "PAGE_VERIFY",
                                 "PARAMETERIZATION",
                                 "QUERY_STORE",
                                 "QUOTED_IDENTIFIER",
                                 "READ_COMMITTED_SNAPSHOT",
                                 "READ_ONLY",
                                 "READ_WRITE",
                                 "RECOVERY",
                                 "RECURSIVE_TRIGGERS",
                                 "RESTRICTED_USER",
                                 "SINGLE_USER",
                                 "TARGET_RECOVERY_TIME",
                                 "TORN_PAGE_DETECTION",
                                 "TRUSTWORTHY",
                                 "ACCELERATED_DATABASE_RECOVERY",
                                 "MIXED_PAGE_ALLOCATION",
                                 "AUTOMATIC_TUNING",
                                 "DATA_RETENTION",
                                 "DEFAULT_FULLTEXT_LANGUAGE",
                                 "DEFAULT_LANGUAGE",
                                 "HADR",
                                 "NESTED_TRIGGERS",
                                 "OPTIMIZED_LOCKING",
                                 "PARTNER",
                                 "SUPPLEMENTAL_LOGGING",
                                 "TEMPORAL_HISTORY_RETENTION",
                                 "TRANSFORM_NOISE_WORDS",
                                 "TWO_DIGIT_YEAR_CUTOFF",
                                 "VARDECIMAL_STORAGE_FORMAT",
                                 "WITNESS"})
            set.insert(QLatin1String(name));
        return set;
    }();
    return names;
}

QString readCollation(SessionState& session, TokenCursor& cursor) {
    const Collation* collation = Collation::named(cursor.name());
    tellUnknown(session, *collation);
    return collation->name();
}

void setCollation(SessionState& session, Database& database, const QString& name) {
    Catalog catalog(session, database);
    setNameCollation(database.handle, *Collation::named(name), database.name);
    catalog.setFact("collation", name);
    catalogChanged(database);
}

}  // namespace

void createDatabase(SessionState& session, TokenCursor& cursor) {
    const int line = cursor.peek().line;
    const QString name = cursor.name();
    QString collation;
    while (!cursor.atEnd()) {
        if (cursor.accept("CONTAINMENT")) {
            cursor.expect("=");
            cursor.next();
        } else if (cursor.accept({"LOG", "ON"}) || cursor.accept("ON")) {
            readFileSpecs(cursor);
        } else if (cursor.accept("COLLATE")) {
            collation = readCollation(session, cursor);
        } else if (cursor.is("FOR") || cursor.is("AS")) {
            fail(40000,
                 QStringLiteral(
                     "The embedded server makes empty databases only: CREATE DATABASE ... %1 needs "
                     "a real server.")
                     .arg(cursor.is("FOR") ? QStringLiteral("FOR ATTACH")
                                           : QStringLiteral("AS SNAPSHOT")),
                 line);
        } else if (cursor.accept("WITH")) {
            do {
                cursor.name();
                if (cursor.accept("="))
                    cursor.next();
                else if (!cursor.is(",") && !cursor.atEnd())
                    cursor.next();
            } while (cursor.accept(","));
        } else {
            cursor.failHere();
        }
    }
    session.store->createDatabase(name);
    if (!collation.isEmpty()) {
        Database& database = session.store->database(name);
        session.store->willWrite(database);
        setCollation(session, database, collation);
    }
}

namespace {

// ALTER DATABASE SCOPED CONFIGURATION: how queries are run is nothing that is kept here.
void alterScopedConfiguration(TokenCursor& cursor) {
    cursor.accept({"FOR", "SECONDARY"});
    if (cursor.accept("CLEAR")) {
        cursor.expect("PROCEDURE_CACHE");
        if (!cursor.atEnd()) cursor.next();
    } else {
        cursor.expect("SET");
        cursor.name();
        cursor.expect("=");
        if (!cursor.accept("-")) cursor.accept("+");
        cursor.next();
    }
    cursor.expectEnd();
}

}  // namespace

void alterDatabase(SessionState& session, TokenCursor& cursor) {
    if (cursor.accept({"SCOPED", "CONFIGURATION"})) return alterScopedConfiguration(cursor);
    const int line = cursor.peek().line;
    QString name = cursor.name();
    if (same(name, QStringLiteral("CURRENT"))) name = session.current->name;
    Database& database = session.store->database(name);
    if (cursor.accept("COLLATE")) {
        const QString collation = readCollation(session, cursor);
        cursor.expectEnd();
        session.store->willWrite(database);
        setCollation(session, database, collation);
        return;
    }
    if (cursor.accept("SET")) {
        do {
            const int optionLine = cursor.peek().line;
            const QString option = cursor.name().toUpper();
            if (option == QLatin1String("COMPATIBILITY_LEVEL")) {
                cursor.expect("=");
                const QString level = cursor.wholeNumber();
                session.store->willWrite(database);
                Catalog(session, database).setFact("compatibility", level);
                continue;
            }
            if (!databaseOptions().contains(option))
                fail(102,
                     QStringLiteral("Incorrect syntax near '%1': there is no such database option.")
                         .arg(option),
                     optionLine);
            // How a file is logged and shared is decided by the file system here.
            while (!cursor.atEnd() && !cursor.is(",") && !cursor.is("WITH")) {
                if (cursor.is("("))
                    cursor.parenthesised();
                else
                    cursor.next();
            }
        } while (cursor.accept(","));
        if (cursor.accept("WITH")) {
            if (cursor.accept("NO_WAIT")) {
            } else if (cursor.accept("ROLLBACK")) {
                if (!cursor.accept("IMMEDIATE")) {
                    cursor.expect("AFTER");
                    cursor.wholeNumber();
                    cursor.accept("SECONDS");
                }
            } else {
                cursor.failHere();
            }
        }
        cursor.expectEnd();
        return;
    }
    if (cursor.is("MODIFY") && cursor.peek(1).is("NAME"))
        fail(40000,
             QStringLiteral(
                 "The embedded server can't rename a database ('%1'): rename its file while nobody "
                 "uses it.")
                 .arg(name),
             line);
    // Files and file groups have no place in a database that is one file.
    if (cursor.is("ADD") || cursor.is("REMOVE") || cursor.is("MODIFY")) {
        cursor.next();
        cursor.accept("LOG");
        if (!cursor.accept("FILE") && !cursor.accept("FILEGROUP")) cursor.failHere();
        while (!cursor.atEnd()) cursor.next();
        return;
    }
    cursor.failHere();
}

void dropDatabases(SessionState& session, TokenCursor& cursor) {
    const bool ifExists = cursor.accept({"IF", "EXISTS"});
    do {
        const int line = cursor.peek().line;
        const QString name = cursor.name();
        // A load that was sent to a database may replace it: the session then waits in master,
        // where scripts that make their database expect to begin.
        if (same(name, session.current->name) && session.store->inLoad() && !session.databaseChosen)
            session.current = &session.store->database(QStringLiteral("master"));
        if (same(name, session.current->name))
            fail(3702,
                 QStringLiteral("Cannot drop database \"%1\" because it is currently in use.")
                     .arg(name),
                 line);
        if (ifExists && !session.store->hasDatabase(name)) continue;
        session.store->dropDatabase(name);
    } while (cursor.accept(","));
    cursor.expectEnd();
}

}  // namespace zov::local
