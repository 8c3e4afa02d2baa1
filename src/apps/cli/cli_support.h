// What the commands share: choosing and reaching a server, the kinds of objects
// by name, output.
#pragma once

#include "apps/cli/cli_options.h"
#include "catalog/mdlObjects.h"
#include "core/run_account.h"
#include "core/server_info.h"
#include "structcompare/compare_all_screens.h"

#include <QString>

#include <stdexcept>

namespace zov {
class ConsoleShell;
class UnattendedShell;
struct DataComparisonRun;
}  // namespace zov

namespace zov::cli {

/// Ends a command with one line of trouble (and a next step behind it), exit status 2.
struct Failure : std::exception {
    explicit Failure(const QString& text) : text(text) {}
    QString text;
};

/// The password for a login given on the command line: standard input's first line when asked for,
/// else ZOVRAND_PASSWORD (or `variable` when that is set), else typed at the terminal, else empty.
QString passwordFor(const Options& options, const QString& login,
                    const char* variable = "ZOVRAND_PASSWORD");

/// Stored, or of the embedded kind: no login needs to be named.
bool isKnownServer(const QString& name);
/// The server that a command line names. Throws Failure for one that can't be told.
ServerInfo chooseServer(const Options& options, const ServerArguments& arguments,
                        const char* passwordVariable = "ZOVRAND_PASSWORD");
/// The database given, else the stored server's own.
QString chooseDatabase(const ServerArguments& arguments, const ServerInfo& server,
                       const char* option);

/// Connects once, so that trouble is told here and clearly; notes the server's version and makes it
/// the panel's current server. Throws Failure.
void reachServer(ServerInfo& server, const QString& database, int panel);
/// Trouble with a server, with a next step that fits it where the server's own text has none.
/// `connected`: it came behind the connection.
QString explainDbError(const DbError& error, const ServerInfo& server, const QString& database,
                       bool connected);

/// The two sides of a comparison.
struct ComparedServers {
    ServerInfo source, target;
    QString sourceDb, targetDb;
};
/// The servers that a command line compares; throws Failure.
ComparedServers chooseServers(const Options& options);
/// reachServer for both.
void reachServers(const ComparedServers& servers);
/// What a panel would list; failures are told, and give an empty list.
std::vector<ObjectListRow> listedObjects(ObjectType type, int panel, const QString& database);
/// The objects that --select names, as both sides have them, with their schemas. False when all are
/// compared; throws Failure for a name that neither side has.
bool chooseObjects(const Options& options, const ObjectKindBoxes& kinds,
                   const ComparedServers& servers, QStringList& sourceObjects,
                   QStringList& targetObjects);
/// To standard output, or to the file of -o; throws Failure.
void writeReport(const Options& options, const QString& report);

/// "tables", "table", in any case; throws Failure.
ObjectType objectTypeFromName(const QString& name);
/// "a,[b,c],d" to its names; a name in brackets has its brackets taken off, "]]" within is one.
QStringList splitNames(const QString& list);
/// Whether the user's `name` means the object of a list's row: its name, its schema and name joined
/// by a point, or either in brackets, "[schema].[na]]me]".
bool meansObject(const QString& name, const ObjectListRow& row,
                 Qt::CaseSensitivity cs = Qt::CaseSensitive);
/// Those of the rows, by their indexes, that the name means: to the letter first, then whatever the
/// case.
std::vector<int> rowsMeant(const std::vector<ObjectListRow>& rows, const QString& name);
/// The objects that a name means, for a sentence that asks for one of them: "hr.V, dbo.V".
QString fullNames(const std::vector<ObjectListRow>& rows);

/// Tells what failed in a run and wasn't told when it did. True when there was anything.
bool tellTrouble(ConsoleShell& console, const RunAccount& account);

/// Writes to standard output with plain line feeds; throws Failure when that is impossible, or when
/// the run was interrupted. On a terminal, signs that it would act on are shown as signs.
void writeOut(const QString& text);
void flushOut();

int runServerAdd(const Options& options, ConsoleShell& console);
int runServerList();
int runServerRemove(const Options& options);
int runLoad(const Options& options, ConsoleShell& console);
int runQuery(const Options& options, ConsoleShell& console);
int runList(const Options& options, ConsoleShell& console);
int runText(const Options& options, ConsoleShell& console);
int runReferences(const Options& options, ConsoleShell& console);
int runCreate(const Options& options, ConsoleShell& console);
int runUpdateScript(const Options& options, ConsoleShell& console);
int runCompare(const Options& options, ConsoleShell& console);
int runData(const Options& options, ConsoleShell& console);
int runAnalyze(const Options& options, ConsoleShell& console);
int runInfo(const Options& options, ConsoleShell& console);
int runSnapshot(const Options& options, ConsoleShell& console);
int runAttach(const Options& options, ConsoleShell& console);
int runProcessList();
int runProcessShow(const Options& options);
int runProcessDelete(const Options& options);
int runReplay(const Options& options, UnattendedShell& console);

}  // namespace zov::cli
