// zovrand-cli update-script
#include "apps/cli/data_run.h"
#include "shell/console/console_shell.h"
#include "structcompare/runnable_update.h"
#include "util/atomic_file.h"
#include "util/text.h"

#include <QFileInfo>

namespace zov::cli {
namespace {

UpdateSide sideOf(int panel, const QString& database, const QString& name) {
    const CompareDataTable table = findTable(panel, database, name);
    return {table.Server, database, table.object()};
}

/// As it is: line breaks within a default or a trigger are its own.
void writeScript(const Options& options, const QString& script) {
    if (options.outputFile.isEmpty()) {
        writeOut(script);
        return flushOut();
    }
    const QString folder = QFileInfo(options.outputFile).absolutePath();
    const QString trouble =
        QFileInfo(folder).isDir()
            ? writeFileAtomically(options.outputFile, script.toUtf8())
            : QStringLiteral("The script can't be written: there is no folder %1.").arg(folder);
    if (!trouble.isEmpty()) throw Failure(trouble + QStringLiteral("\nName another file with -o."));
}

}  // namespace

int runUpdateScript(const Options& options, ConsoleShell& console) {
    const ComparedServers servers = chooseServers(options);
    reachServers(servers);
    const UpdateSide source = sideOf(SourcePanel, servers.sourceDb, options.table);
    const UpdateSide target =
        sideOf(TargetPanel, servers.targetDb,
               options.targetTable.isEmpty() ? options.table : options.targetTable);
    const QString lineBreak = options.outputFile.isEmpty() ? QStringLiteral("\n") : CRLF;
    TableUpdate update;
    RunAccount account;
    bool made = false;
    {
        const KeepAccount keep(account);
        made = makeTableUpdate(source, target, lineBreak, update);
    }
    if (tellTrouble(console, account) || !made) return Trouble;
    const QString listed = options.outputFile.isEmpty() ? withLf(update.listed) : update.listed;
    writeScript(options, options.runnable ? update.runnable : listed);
    if (!update.differs) {
        console.showNote(QStringLiteral("Nothing is to be changed. ") + update.note);
        return Identical;
    }
    if (!options.runnable && !update.note.isEmpty()) console.showNote(update.note);
    if (options.runnable)
        for (const QString& sentence : update.missing) console.showError(sentence);
    return options.runnable && !update.missing.isEmpty() ? Trouble : Different;
}

}  // namespace zov::cli
