// What a command line of zovrand-cli asks for. Filled by parseCommandLine, read
// by the commands.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace zov::cli {

/// Exit statuses.
inline constexpr int Identical = 0;  ///< or done
inline constexpr int Different = 1;
inline constexpr int Trouble = 2;

enum class Command {
    ServerAdd,
    ServerList,
    ServerRemove,
    Load,
    Query,
    List,
    Text,
    References,
    Create,
    UpdateScript,
    Compare,
    Data,
    Analyze,
    Info,
    Attach,
    Snapshot,
    ProcessList,
    ProcessShow,
    ProcessDelete,
    Run,
};

/// How one server is named on the command line.
struct ServerArguments {
    QString server;
    QString database;
    QString login;  ///< of a server that isn't stored; empty: none given
};

struct Options {
    Command command = Command::ServerList;
    QStringList settings;  ///< KEY=VALUE, for this run
    bool passwordFromStdin = false;

    ServerArguments server;  ///< -S, -d, --login; the source of a comparison
    ServerArguments target;

    // server add, server remove
    QString name;
    QString sqlLogin;
    bool skipCheck = false;

    // load
    QStringList files;
    bool keepGoing = false;
    bool replace = false;
    bool sqlcmd = false;
    QStringList variables, defined;  ///< NAME=VALUE

    QString sql;              // query
    QString type;             // list, text
    bool nulBetween = false;  // list
    QString objectName;       // text

    // references
    QStringList objectNames;  ///< empty: all of the kind
    bool words = false;       ///< the word filter's list instead
    // create
    QStringList objects;  ///< names; none: all of the kind, or of the database
    bool asShown = false;
    bool dropHeader = false;

    bool runnable = false;  // update-script

    // compare
    QString types;       ///< joined by commas; empty: all of a full run
    QStringList select;  ///< as given, each may hold several names
    bool details = false;
    bool allowUnreadable = false;  ///< what can't be read doesn't count for the exit status
    QString outputFile;

    // data; what is empty (or -1) is left to the tables' stored settings
    QString table;        ///< empty: all tables, or those of `select`
    QString targetTable;  ///< empty: the same name
    QString method;       ///< "record" or "key"
    QString key, targetKey;
    QString sort, targetSort;
    QString ignore, targetIgnore;
    int offset = -1, targetOffset = -1;
    int limit = -1;
    QString exportFile;
    bool csvSafe = false;

    // analyze
    bool least = false;    ///< the least frequent values instead of the most frequent ones
    bool anySize = false;  ///< columns of more distinct values than are ranked by default
    int rows = 0;          ///< 0: all

    // attach
    QString databaseFile, logFile;
    bool fileOnServer = false;  ///< the file is the server's machine's: nothing is looked for here

    QString snapshotFile;  // snapshot

    // compare, data
    QString save;  ///< the saved process that the run becomes; empty: none
    bool overwrite = false;

    // process, run
    QStringList processes;  ///< names or numbers, as given
    bool byName = false;    ///< they are names, whatever they look like
    bool allProcesses = false;
};

/// Reads the command line. No result: `status` is what the program ends with (help was printed, or
/// one line on what is wrong).
std::optional<Options> parseCommandLine(int argc, char** argv, int& status);

}  // namespace zov::cli
