#include "apps/cli/save_run.h"

#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "data/mdlData.h"
#include "saved/modSavedProcess.h"
#include "shell/console/console_shell.h"
#include "structcompare/modCompareAll.h"
#include "util/text.h"

#include <QFileInfo>

namespace zov::cli {
namespace {

[[noreturn]] void refuse(const QString& reason) {
    throw Failure(QStringLiteral("--save: ") + reason);
}

void checkOptions(const Options& options) {
    if (!options.settings.isEmpty())
        refuse(
            QStringLiteral("a saved process keeps no options, so that --set would be lost.\nLeave "
                           "it out, or store the option in the program's settings."));
    if (options.limit > 0)
        refuse(QStringLiteral(
            "a saved process keeps no options, so that --limit would be lost.\nLeave "
            "it out, or store MaxRowsInDiffTable in the program's settings."));
    for (const auto& [given, name] : {std::pair{options.allowUnreadable, "--allow-unreadable"},
                                      std::pair{options.csvSafe, "--csv-safe"}})
        if (given)
            refuse(
                QStringLiteral("a saved process keeps no options, so that %1 would be lost.\nLeave "
                               "it out.")
                    .arg(QLatin1String(name)));
    if (options.command != Command::Compare) return;
    const bool oneKind = options.types.split(u',', Qt::SkipEmptyParts).size() == 1;
    for (const auto& [given, name] : {std::pair{options.details, "--details"},
                                      std::pair{!options.select.isEmpty(), "--select"}})
        if (given && !oneKind)
            refuse(
                QStringLiteral("%1 can be kept for one kind of objects alone.\nName the kind with "
                               "-t.")
                    .arg(QLatin1String(name)));
}

void checkName(const Options& options, const QString& name) {
    if (const QString trouble = ProcessNameTrouble(name); !trouble.isEmpty())
        refuse(withLf(trouble).replace(QStringLiteral("\n\n"), QStringLiteral("\n")));
    std::vector<std::pair<QString, qint32>> processes;
    if (!ListSavedProcesses(processes))
        refuse(QStringLiteral("the saved processes can't be read."));
    for (const auto& [known, id] : processes)
        if (known == name && !options.overwrite)
            refuse(QStringLiteral("there is a saved process \"%1\" already.\nReplace it with "
                                  "--overwrite, or give another name.")
                       .arg(name));
}

/// The name as the server's list has it: a replay looks for it to the letter.
QString listedDatabase(const ServerInfo& server, const QString& name) {
    std::unique_ptr<Recordset> rs;
    QString sameButForCase;
    if (GetAdoRS(server, adCmdText, QStringLiteral("SELECT name FROM sysdatabases ORDER BY name"),
                 rs, QStringLiteral("master")) != -1 &&
        rs && rs->isOpen())
        for (; !rs->isEof(); rs->MoveNext()) {
            const QString listed = rs->field(0).text();
            if (listed == name) return name;
            if (listed.compare(name, Qt::CaseInsensitive) == 0) sameButForCase = listed;
        }
    if (sameButForCase.isEmpty())
        refuse(QStringLiteral("%1 doesn't list the database %2, where a replay looks for it.")
                   .arg(server.Name, name));
    return sameButForCase;
}

/// The chosen objects as the window's lists show them, which is how processes hold them.
QStringList asListed(const QStringList& objects, const QString& encodedKinds, int panel,
                     const QString& database) {
    QStringList listed;
    if (objects.isEmpty()) return listed;
    const QStringList flags = encodedKinds.split(u',');
    for (int box = 0; box < comparedKindCount(); ++box) {
        if (flags.value(box) != u"1") continue;
        const ObjectType kind = ObjectTypeOfBox(box);
        for (const ObjectListRow& row : listedObjects(kind, panel, database))
            if (objects.contains(objectOf(row, kind).fullName())) listed += row.name;
    }
    return listed;
}

}  // namespace

RunToSave::RunToSave(const Options& options, const ComparedServers& servers)
    : options_(options), servers_(servers) {
    if (options.save.isNull()) return;
    checkOptions(options);
    checkName(options, TrimmedProcessName(options.save));
    for (const ServerInfo* server : {&servers.source, &servers.target})
        if (server->RegIndex < 1)
            refuse(
                QStringLiteral("the server %1 isn't stored, and a replay finds its servers in the "
                               "stored list.\nStore it with: zovrand-cli server add %1.")
                    .arg(server->Name));
}

void RunToSave::save(ComparisonReport run, const QString& path, qint32 exportType, bool wrap,
                     ConsoleShell& console) const {
    if (options_.save.isNull()) return;
    run.DbName1 = listedDatabase(servers_.source, run.DbName1);
    run.DbName2 = listedDatabase(servers_.target, run.DbName2);
    run.SourceNames = asListed(run.SourceNames, run.EncObjTypes, SourcePanel, run.DbName1);
    run.TargetNames = asListed(run.TargetNames, run.EncObjTypes, TargetPanel, run.DbName2);
    SavedProcess process = SavedProcessOf(run, wrap);
    process.Name = TrimmedProcessName(options_.save);
    if (!path.isEmpty()) {
        process.ExportFilePath = QFileInfo(path).absoluteFilePath();
        process.ExportType = exportType;
    }
    bool exists = false;
    qint32 id = 0;
    if (SaveComparisonProcess(process, options_.overwrite, &exists, &id)) {
        console.showNote(QStringLiteral("Saved as process %1, \"%2\".").arg(id).arg(process.Name));
        return;
    }
    if (exists) checkName(options_, process.Name);
    refuse(QStringLiteral("the run is done, but it was not saved."));
}

void RunToSave::saveTableSettings(const DataComparisonRun& run, bool ignoring,
                                  const QStringList (&ignored)[2]) const {
    if (options_.save.isNull()) return;
    const auto keyOf = [](const QString& key) { return key.isEmpty() ? NoField : key; };
    for (size_t side = 0; side < 2; ++side) {
        const CompareDataTable& table = run.Tables[side];
        if (ignoring)
            SaveIgnoredColumnsList(IgnoreMode::DataComparison, table.key(), ignored[side]);
        TableCompSettings settings;
        const QStringList sort = splitNames(run.OrderBy[side].mid(int(qstrlen(" ORDER BY "))));
        settings.PrimarySortKey = sort.value(0);
        settings.SecondarySortKey = sort.value(1);
        settings.TertiarySortKey = sort.value(2);
        settings.Offset = run.Offset[side];
        settings.Method = run.Method;
        settings.CompKey = keyOf(run.Keys[side].CompKey);
        settings.SecondaryCompKey = keyOf(run.Keys[side].SecondaryCompKey);
        settings.TertiaryCompKey = keyOf(run.Keys[side].TertiaryCompKey);
        const QString trouble =
            SaveTableCompSettings(side == 0, table.Db, table.storedName(), settings);
        if (!trouble.isEmpty())
            refuse(QStringLiteral("the tables' settings can't be kept: ") + trouble);
    }
}

}  // namespace zov::cli
