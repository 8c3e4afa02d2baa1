// zovrand-cli compare
#include "apps/cli/cli_support.h"
#include "core/globals.h"
#include "scripting/modNew.h"
#include "shell/console/console_shell.h"
#include "shell/memory_controls.h"
#include "structcompare/modCompareAll.h"
#include "util/atomic_file.h"
#include "util/text.h"

#include <QFileInfo>

namespace zov::cli {
namespace {

/// The status of the run as one progress line.
class ConsoleStatus : public CompareAllForm {
 public:
    explicit ConsoleStatus(ConsoleShell& console) : console_(console) {}
    void showRunning() override {}
    void setComparing(int, const QString& text) override {
        comparing_ = text;
        name_.clear();
        show();
    }
    void setCurrentName(const QString& name) override {
        name_ = name;
        show();
    }
    void setTime(const QString& elapsed) override { elapsed_ = elapsed; }
    void runStatusTimer(bool) override {}

 private:
    void show() { console_.showProgress(elapsed_ + u' ' + comparing_ + u' ' + name_); }

    ConsoleShell& console_;
    QString comparing_;
    QString name_;
    QString elapsed_;
};

ObjectKindBoxes chooseKinds(const QString& types) {
    ObjectKindBoxes kinds{};
    const int boxes = comparedKindCount();
    if (types.isEmpty()) {
        for (int box = 0; box < boxes; ++box) kinds[size_t(box)] = true;
        return kinds;
    }
    for (const QString& name : types.split(u',', Qt::SkipEmptyParts)) {
        const ObjectType type = objectTypeFromName(Trim(name));
        if (type == ObjectType::Permission) {
            throw Failure(
                QStringLiteral("Permissions are listed but not compared.\n"
                               "They are shown by: zovrand-cli list -t permissions."));
        }
        bool found = false;
        for (int box = 0; box < boxes; ++box) {
            if (ObjectTypeOfBox(box) != type) continue;
            kinds[size_t(box)] = true;
            found = true;
        }
        if (!found) {
            throw Failure(
                QStringLiteral("Constraints are compared within their tables.\n"
                               "To compare them as a kind of their own add: --set "
                               "AnalyzeConstraints=1."));
        }
    }
    return kinds;
}

/// The chosen names as one side has them, without schema.
QStringList namesOnSide(const QStringList& chosen, const ObjectKindBoxes& kinds, int panel,
                        const QString& database) {
    QStringList present;
    for (int box = 0; box < comparedKindCount(); ++box) {
        if (!kinds[size_t(box)]) continue;
        MemoryObjectList list;
        MemoryTextPane pane;
        LoadObjects(globals().gtCurrentServers[panel], list, pane, ObjectTypeOfBox(box), database,
                    false, {}, panel, &objectTexts());
        for (int row = 0; row < list.rowCount(); ++row) {
            for (const QString& name : chosen) {
                const QString shortName = partBehindLastDot(list.row(row).name);
                if (meansObject(name, list.row(row).name) && !present.contains(shortName)) {
                    present += shortName;
                }
            }
        }
    }
    return present;
}

void chooseObjects(const Options& options, StructureRunRequest& request) {
    QStringList chosen;
    for (const QString& names : options.select) chosen += splitNames(names);
    if (options.select.isEmpty()) return;
    if (chosen.isEmpty()) {
        throw Failure(
            QStringLiteral("--select names no object.\nGive one name, or several with commas "
                           "between them."));
    }
    request.selective = true;
    request.sourceObjects = namesOnSide(chosen, request.kinds, SourcePanel, request.sourceDb);
    request.targetObjects = namesOnSide(chosen, request.kinds, TargetPanel, request.targetDb);
    // A run refuses everything while one side's list is empty: names that only one side has are
    // asked for on both.
    if (request.sourceObjects.isEmpty()) request.sourceObjects = request.targetObjects;
    if (request.targetObjects.isEmpty()) request.targetObjects = request.sourceObjects;
    for (const QString& name : chosen) {
        const auto isThere = [&](const QStringList& names) {
            for (const QString& present : names) {
                if (meansObject(name, present)) return true;
            }
            return names.contains(partBehindLastDot(name));
        };
        if (!isThere(request.sourceObjects) && !isThere(request.targetObjects)) {
            throw Failure(
                QStringLiteral("Neither database has an object \"%1\" of the compared kinds "
                               "(letter case counts).\nNames are shown by: zovrand-cli list.")
                    .arg(name));
        }
    }
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

}  // namespace

int runCompare(const Options& options, ConsoleShell& console) {
    // --login speaks of the servers that nothing is known of; --target-login of the target alone.
    ServerArguments sourceArguments = options.server;
    ServerArguments targetArguments = options.target;
    if (targetArguments.login.isEmpty() && !isKnownServer(targetArguments.server)) {
        targetArguments.login = sourceArguments.login;
    }
    if (isKnownServer(sourceArguments.server)) sourceArguments.login.clear();
    ServerInfo source = chooseServer(options, sourceArguments);
    ServerInfo target = chooseServer(options, targetArguments, "ZOVRAND_TARGET_PASSWORD");
    StructureRunRequest request;
    request.sourceDb = chooseDatabase(sourceArguments, source, "--source-db");
    request.targetDb = chooseDatabase(targetArguments, target, "--target-db");
    request.kinds = chooseKinds(options.types);
    request.details = options.details;
    reachServer(source, request.sourceDb, SourcePanel);
    reachServer(target, request.targetDb, TargetPanel);
    const int before = console.errorCount();
    chooseObjects(options, request);

    ConsoleStatus status(console);
    MemoryObjectList sourceList, targetList;
    MemoryTextPane sourcePane, targetPane;
    ComparePanels panels{{sourceList, sourcePane}, {targetList, targetPane}};
    const StructureRun run = CompareAll_Structure(status, request, panels);
    console.clearProgress();
    const bool troubled = console.errorCount() != before;
    if (!run.finished) {
        // What went wrong was told when it did.
        if (!troubled) console.showError(QStringLiteral("Stopped: there is no report."));
        return Trouble;
    }
    // A list that could not be read was told, too; a report without it must not pass for a result.
    if (troubled) return Trouble;
    writeReport(options, globals().gstrReport);
    return run.somethingDiffers ? Different : Identical;
}

}  // namespace zov::cli
