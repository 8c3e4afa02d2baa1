// What a load has made becomes the databases that all see. One step (a commit, a file put in the
// place of another) is whole by itself. More than one go under a journal: it tells how to undo
// each, it is written before the first, and taking it away is the moment at which all of them hold.
// Whoever finds one whose writer has gone undoes what it tells (Hold).
#include "data/local/server_store_publish.h"

#include "data/local/server_store_entry.h"
#include "util/atomic_file.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace zov::local {
namespace {

using Step = ServerStore::PublicationStep;

QString bare(const QString& file) {
    return QFileInfo(file).fileName();
}

/// The line of the journal that undoes a step.
QJsonObject undoOf(const Step& step) {
    const bool file = step.kind != Step::Kind::Commit;
    const char* undo = !file ? "restore" : step.aside.isEmpty() ? "remove" : "return";
    return {{QStringLiteral("undo"), QLatin1String(undo)},
            {QStringLiteral("file"), bare(step.file)},
            {QStringLiteral("from"), bare(step.aside)}};
}

bool isFileName(const QJsonValue& value) {
    const QString name = bare(value.toString());
    return !name.isEmpty() && name != u"." && name != u"..";
}

/// Whether a line of the journal is one that undoOf has made.
bool tellsUndo(const QJsonValue& line) {
    const QJsonObject step = line.toObject();
    const QString undo = step.value(QStringLiteral("undo")).toString();
    const bool needsFrom = undo == QLatin1String("restore") || undo == QLatin1String("return");
    return (needsFrom || undo == QLatin1String("remove")) &&
           isFileName(step.value(QStringLiteral("file"))) &&
           (!needsFrom || isFileName(step.value(QStringLiteral("from"))));
}

void must(const QString& trouble, const QString& file) {
    if (trouble.isEmpty()) return;
    throw DbError(ado_error::Unspecified,
                  QStringLiteral("The database's file %1 could not be put in place: %2.")
                      .arg(QDir::toNativeSeparators(file), trouble),
                  QStringLiteral("42000"), 5120);
}

/// A file that was to go, and stays, gets its log back.
void keepLog(const QString& file) {
    if (!QFileInfo::exists(file)) return;
    try {
        sqlite3* handle = openFile(file, SQLITE_OPEN_READWRITE);
        sqlite3_exec(handle, "PRAGMA journal_mode=WAL", nullptr, nullptr, nullptr);
        sqlite3_close_v2(handle);
    } catch (const DbError&) {
        // It works without as well.
    }
}

}  // namespace

void ServerStore::notInPlace(const QString& file, const QString& why) {
    must(why, file);
    Q_UNREACHABLE();
}

// After this the staging file is whole on the disk, and closed.
void ServerStore::finishStaged(Entry& entry) {
    sqlite3* handle = entry.database.handle;
    if (!sqlite3_get_autocommit(handle)) execSql(handle, "COMMIT");
    entry.settled();
    // The log mode is written into the file while nobody else sees it.
    execSql(handle, "PRAGMA synchronous=FULL; PRAGMA journal_mode=WAL");
    entry.close();
    if (QFileInfo(entry.file + QStringLiteral("-wal")).size() > 0)
        must(QStringLiteral("its log could not be emptied"), entry.file);
    removeLogs(entry.file);
    must(syncFile(entry.file), entry.file);
}

void ServerStore::reopenPublished(const QString& key, const QString& file) {
    Entry& entry = *open_[key];
    entry.file = file;
    entry.staged = false;
    try {
        openHandle(entry);
    } catch (...) {
        forget(key);  // opened anew when it is wanted
    }
}

void ServerStore::publishStaged() {
    Publication publication;
    for (const auto& [key, entry] : open_)
        if (entry->staged) publication.place(key, *entry, folder_);
    try {
        publish(publication);
    } catch (...) {
        for (const Step& step : publication.steps)
            if (open_.contains(step.key)) discard(step.key);
        throw;
    }
    if (!publication.steps.empty()) folderMade_ = false;
}

namespace {

void perform(const Step& step, bool journalled) {
    switch (step.kind) {
        case Step::Kind::Commit:
            execSql(step.database->handle, "COMMIT");
            // What the journal promises to undo must not reach the disk later than its end.
            if (journalled) must(syncFile(step.file + QStringLiteral("-wal")), step.file);
            return;
        case Step::Kind::Place:
            if (!step.aside.isEmpty()) must(replaceFile(step.file, step.aside), step.file);
            must(replaceFile(step.from, step.file), step.file);
            return;
        case Step::Kind::Remove:
            if (!step.aside.isEmpty())
                must(replaceFile(step.file, step.aside), step.file);
            else if (!QFile::remove(step.file))
                must(QStringLiteral("it can't be removed"), step.file);
            return;
    }
}

}  // namespace

namespace {

/// Does what comes behind the moment from which on the steps hold. Whatever fails there, want of
/// memory too, must not make the load one that failed.
template <typename Work>
void regardless(const Work& work) noexcept {
    try {
        work();
    } catch (...) {
    }
}

}  // namespace

void ServerStore::publish(Publication& publication) {
    std::vector<Step>& steps = publication.steps;
    if (steps.empty()) return;
    if (steps.size() == 1 && steps[0].kind == Step::Kind::Commit) {
        try {
            perform(steps[0], false);
        } catch (...) {
            steps[0].entry->rollBack();
            throw;
        }
        return steps[0].entry->settled();
    }
    const bool journalled = steps.size() > 1;
    std::vector<QString> withoutLog;
    const auto clearAsides = [&] {
        for (const Step& step : steps)
            if (!step.aside.isEmpty()) removeDatabaseFiles(step.aside);
    };
    // Within a catch block: what had been done goes again, at once or with the next Hold.
    const auto takeBack = [&] {
        if (!QFileInfo::exists(journalFile())) return;
        QString second;
        try {
            return undoPublication();
        } catch (const DbError& error) {
            second = error.description;
        }
        try {
            throw;
        } catch (DbError& error) {
            error.description += QStringLiteral(
                                     " What was done of it already is undone when the "
                                     "server is next opened (%1)")
                                     .arg(second);
            throw;
        }
    };
    {
        const Hold hold(*this, true);
        try {
            for (Step& step : steps) {
                if (journalled && step.leavesAside())
                    step.aside =
                        step.file +
                        QLatin1String(step.kind == Step::Kind::Commit ? ".before-" : ".old-") +
                        owner();
                prepareStep(step, withoutLog);
            }
            if (journalled) {
                QJsonArray undo;
                for (const Step& step : steps) undo.append(undoOf(step));
                const QByteArray text = QJsonDocument(undo).toJson();
                must(syncFolder(folder_), folder_);
                const QString trouble = writeFileAtomically(journalFile(), text);
                if (!trouble.isEmpty()) throw nativeError(5120, trouble, ado_error::Unspecified);
                must(syncFolder(folder_), journalFile());
            }
            for (const Step& step : steps) perform(step, journalled);
            if (journalled) {
                must(syncFolder(folder_), folder_);
                if (!QFile::remove(journalFile()))
                    must(QStringLiteral("it can't be removed"), journalFile());
            }
        } catch (...) {
            for (const Step& step : steps)
                if (step.kind == Step::Kind::Commit) step.entry->rollBack();
            takeBack();
            clearAsides();
            for (const QString& file : withoutLog) keepLog(file);
            throw;
        }
        regardless([&] { syncFolder(folder_); });
        for (const Step& step : steps) {
            if (step.kind == Step::Kind::Commit) step.entry->settled();
            if (step.kind == Step::Kind::Place)
                regardless([&] { reopenPublished(step.key, step.file); });
        }
    }
    regardless(clearAsides);
}

// Everything that can fail comes before the first step: files in use, names that were taken
// meanwhile, pages that have to go to disk.
void ServerStore::prepareStep(Step& step, std::vector<QString>& withoutLog) {
    if (step.replaces || step.kind == Step::Kind::Remove) {
        requireUnused(step.name, step.file, true);
        withoutLog.push_back(step.file);
    }
    switch (step.kind) {
        case Step::Kind::Commit:
            checkSqlite(step.database->handle, sqlite3_db_cacheflush(step.database->handle));
            if (!step.aside.isEmpty()) copyDatabase(step.file, step.aside);
            return;
        case Step::Kind::Place: {
            QString name, file;
            if (!step.replaces && find(step.name, name, file))
                throw nativeError(
                    1801, QStringLiteral("Database '%1' already exists: another session has made "
                                         "it meanwhile. Choose a different database name, or load "
                                         "into the one that is there now.")
                              .arg(name));
            finishStaged(*step.entry);
            return;
        }
        case Step::Kind::Remove:
            return;
    }
}

void ServerStore::undoPublication() {
    QByteArray bytes;
    const QString trouble = readWholeFile(journalFile(), bytes);
    if (!trouble.isEmpty()) throw nativeError(5120, trouble, ado_error::Unspecified);
    const QJsonDocument journal = QJsonDocument::fromJson(bytes);
    const QJsonArray steps = journal.array();
    // All of it is looked at before anything is undone by it.
    if (!journal.isArray() || !std::all_of(steps.begin(), steps.end(), tellsUndo))
        throw nativeError(
            824,
            QStringLiteral("The file %1 tells how to undo a load that was cut off, and is damaged. "
                           "Restore the server's folder from a copy; without the file its "
                           "databases are taken as they are.")
                .arg(QDir::toNativeSeparators(journalFile())),
            ado_error::Unspecified);
    QStringList asides;
    for (const QJsonValue& value : steps) {
        const QJsonObject step = value.toObject();
        const QString undo = step.value(QStringLiteral("undo")).toString();
        const QString file = folder_ + u'/' + bare(step.value(QStringLiteral("file")).toString());
        const QString from = folder_ + u'/' + bare(step.value(QStringLiteral("from")).toString());
        pool().purge(file);
        if (undo == QLatin1String("restore")) {
            if (QFileInfo::exists(from)) copyDatabase(from, file);
            asides.append(from);
        } else if (undo == QLatin1String("remove")) {
            removeDatabaseFiles(file);
        } else if (undo == QLatin1String("return") && QFileInfo::exists(from)) {
            removeLogs(file);
            must(replaceFile(from, file), file);
            keepLog(file);
        }
    }
    must(syncFolder(folder_), folder_);
    if (!QFile::remove(journalFile())) must(QStringLiteral("it can't be removed"), journalFile());
    for (const QString& aside : asides) removeDatabaseFiles(aside);
}

}  // namespace zov::local
