// Loading T-SQL scripts into a database, batch by batch. On the embedded server a
// load is all or nothing; a SQL Server runs each batch by itself.
#pragma once

#include "core/server_info.h"
#include "data/base/provider.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace zov {

/// Something that a load could not do.
struct LoadProblem {
    QString file;
    int line = 0;        ///< in the file, from 1; 0 for the file as a whole
    QString firstWords;  ///< of the statement at fault
    QString message;

    /// "file:line: message (at: first words)".
    QString toString() const;
};

struct LoadOptions {
    /// Go on behind what failed (a statement; a batch where the provider knows no statements) and keep
    /// what could be loaded. Behind a USE that failed, what follows up to the next USE is left out.
    bool keepGoing = false;
    /// Drop the database first when it is there: only where a load can be undone.
    bool replace = false;
    /// The database for scripts that name none, when LoadScripts is given none either.
    QString otherwise;
    /// Told before each batch: its file and how much of all files' batches is done.
    std::function<void(const QString& file, int batch, int batches)> progress;
    /// PRINT and RAISERROR texts as they come.
    std::function<void(const ServerMessage&)> message;
    /// Asked before each batch; true ends the load as a failure would.
    std::function<bool()> stopRequested;
};

struct LoadOutcome {
    std::vector<LoadProblem> problems;
    int batches = 0;          ///< that ran to their end
    int leftOut = 0;          ///< batches behind a USE that failed
    QString database;         ///< that was loaded: the given one, or the scripts' own
    bool unnamed = false;     ///< nothing ran: no database was given, and the scripts don't make one
    /// All that were written to, in no order; empty where the provider can't tell.
    QStringList changedDatabases;
    bool stopped = false;
    /// The database holds what was loaded. False: it is as it was before.
    bool kept = false;
    /// The provider can't undo: batches before the failing one stay done.
    bool undone = true;
};

/// Reads all files first (an unreadable one is a problem and nothing runs), then runs their batches in
/// order in one session, starting in `database`, which is made when it is missing. An empty one stands
/// for the one database that the scripts make and use, and the session starts in master. A failed
/// connection throws DbError.
LoadOutcome LoadScripts(const ServerInfo& server, const QString& database, const QStringList& files,
                        const LoadOptions& options = {});

}  // namespace zov
