// Loading T-SQL scripts into a database, batch by batch; scripts with commands for the server's own
// command line too (sqlcmd_script.h). On the embedded server a
// load is all or nothing; a SQL Server runs each batch by itself.
#pragma once

#include "core/server_info.h"
#include "data/base/provider.h"
#include "data/load_problem.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <utility>
#include <vector>

namespace zov {

using ScriptVariables = std::vector<std::pair<QString, QString>>;

struct LoadOptions {
    /// Go on behind what failed (a statement; a batch where the provider knows no statements) and
    /// keep what could be loaded. Behind a USE that failed, what follows up to the next USE is left
    /// out.
    bool keepGoing = false;
    /// Drop the database first when it is there: only where a load can be undone.
    bool replace = false;
    /// The database for scripts that name none, when LoadScripts is given none either.
    QString otherwise;
    /// Values for "$(name)" that :setvar may change (`variables`) and that it may not (`defined`).
    ScriptVariables variables, defined;
    /// Take every script for one with commands and variables. Off: one that has a command at the
    /// beginning of a line, and every script when `variables` or `defined` hold some.
    bool sqlcmd = false;
    /// Told before each batch: its file and how much of all files' batches is done.
    std::function<void(const QString& file, int batch, int batches)> progress;
    /// PRINT and RAISERROR texts as they come.
    std::function<void(const ServerMessage&)> message;
    /// Asked before each batch; true ends the load as a failure would.
    std::function<bool()> stopRequested;
};

struct LoadOutcome {
    std::vector<LoadProblem> problems;
    int batches = 0;       ///< that ran to their end
    int leftOut = 0;       ///< batches behind a USE that failed
    QString database;      ///< that was loaded: the given one, or the scripts' own
    bool unnamed = false;  ///< nothing ran: no database was given, and the scripts don't make one
    /// All that were written to, in no order; empty where the provider can't tell.
    QStringList changedDatabases;
    bool begun = false;  ///< all scripts were read, and a session was there to run them in
    QStringList notes;   ///< on what the scripts' commands did
    bool stopped = false;
    /// The database holds what was loaded. False: it is as it was before.
    bool kept = false;
    /// The provider can't undo: batches before the failing one stay done.
    bool undone = true;
};

/// Reads all files first (an unreadable one is a problem and nothing runs), then runs their batches
/// in order in one session, starting in `database`, which is made when it is missing. An empty one
/// stands for the one database that the scripts make and use, and the session starts in master. A
/// failed connection throws DbError.
LoadOutcome LoadScripts(const ServerInfo& server, const QString& database, const QStringList& files,
                        const LoadOptions& options = {});

}  // namespace zov
