// The two sides of a comparison on the command line: their servers, the objects
// chosen on them, and where the report goes.
#include "apps/cli/cli_support.h"
#include "core/globals.h"
#include "scripting/modNew.h"
#include "shell/memory_controls.h"
#include "structcompare/modCompareAll.h"
#include "util/atomic_file.h"
#include "util/text.h"

#include <QFileInfo>
#include <QSet>

namespace zov::cli {

ComparedServers chooseServers(const Options& options) {
    // --login speaks of the servers that nothing is known of; --target-login of the target alone.
    ServerArguments sourceArguments = options.server;
    ServerArguments targetArguments = options.target;
    if (targetArguments.login.isEmpty() && !isKnownServer(targetArguments.server)) {
        targetArguments.login = sourceArguments.login;
    }
    if (isKnownServer(sourceArguments.server)) sourceArguments.login.clear();
    ComparedServers servers;
    servers.source = chooseServer(options, sourceArguments);
    servers.target = chooseServer(options, targetArguments, "ZOVRAND_TARGET_PASSWORD");
    servers.sourceDb = chooseDatabase(sourceArguments, servers.source, "--source-db");
    servers.targetDb = chooseDatabase(targetArguments, servers.target, "--target-db");
    return servers;
}

void reachServers(const ComparedServers& servers) {
    ServerInfo source = servers.source, target = servers.target;
    reachServer(source, servers.sourceDb, SourcePanel);
    reachServer(target, servers.targetDb, TargetPanel);
}

std::vector<ObjectListRow> listedObjects(ObjectType type, int panel, const QString& database) {
    MemoryObjectList list;
    MemoryTextPane pane;
    LoadObjects(globals().gtCurrentServers[panel], list, pane, type, database, false, {}, panel,
                &objectTexts());
    std::vector<ObjectListRow> rows;
    for (int row = 0; row < list.rowCount(); ++row) rows.push_back(list.row(row));
    return rows;
}

namespace {

/// The chosen objects as one side has them. `meant` gets the names that mean one of them.
QStringList namesOnSide(const QStringList& chosen, const ObjectKindBoxes& kinds, int panel,
                        const QString& database, QSet<QString>& meant) {
    QStringList present;
    for (int box = 0; box < comparedKindCount(); ++box) {
        if (!kinds[size_t(box)]) continue;
        const ObjectType kind = ObjectTypeOfBox(box);
        for (const ObjectListRow& row : listedObjects(kind, panel, database)) {
            const QString object = objectOf(row, kind).fullName();
            for (const QString& name : chosen) {
                if (!meansObject(name, row)) continue;
                meant.insert(name);
                if (!present.contains(object)) present += object;
            }
        }
    }
    return present;
}

}  // namespace

bool chooseObjects(const Options& options, const ObjectKindBoxes& kinds,
                   const ComparedServers& servers, QStringList& sourceObjects,
                   QStringList& targetObjects) {
    QStringList chosen;
    for (const QString& names : options.select) chosen += splitNames(names);
    if (options.select.isEmpty()) return false;
    if (chosen.isEmpty()) {
        throw Failure(
            QStringLiteral("--select names no object.\nGive one name, or several with commas "
                           "between them."));
    }
    QSet<QString> meant;
    sourceObjects = namesOnSide(chosen, kinds, SourcePanel, servers.sourceDb, meant);
    targetObjects = namesOnSide(chosen, kinds, TargetPanel, servers.targetDb, meant);
    // A run refuses everything while one side's list is empty: names that only one side has are
    // asked for on both.
    if (sourceObjects.isEmpty()) sourceObjects = targetObjects;
    if (targetObjects.isEmpty()) targetObjects = sourceObjects;
    for (const QString& name : chosen) {
        if (!meant.contains(name)) {
            throw Failure(
                QStringLiteral("Neither database has an object \"%1\" of the compared kinds "
                               "(letter case counts).\nNames are shown by: zovrand-cli list.")
                    .arg(name));
        }
    }
    return true;
}

void writeReport(const Options& options, const QString& report) {
    if (options.outputFile.isEmpty()) {
        QString text = withLf(report);
        if (!text.endsWith(u'\n')) text += u'\n';
        writeOut(text);
        flushOut();
        return;
    }
    const QString folder = QFileInfo(options.outputFile).absolutePath();
    if (!QFileInfo(folder).isDir())
        throw Failure(
            QStringLiteral("The report can't be written: there is no folder %1. Make it, or choose "
                           "another place.")
                .arg(folder));
    const QString trouble = writeFileAtomically(options.outputFile, withCrLf(report).toUtf8());
    if (!trouble.isEmpty()) {
        throw Failure(trouble +
                      QStringLiteral("\nName another file with -o, or leave -o out to print the "
                                     "report."));
    }
}

}  // namespace zov::cli
