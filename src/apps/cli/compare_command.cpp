// zovrand-cli compare
#include "apps/cli/cli_support.h"
#include "core/globals.h"
#include "scripting/modNew.h"
#include "shell/console/console_shell.h"
#include "shell/memory_controls.h"
#include "structcompare/modCompareAll.h"
#include "util/text.h"

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

bool holdsAnyObject(const ObjectKindBoxes& kinds, const ComparedServers& servers) {
    for (int box = 0; box < comparedKindCount(); ++box) {
        if (!kinds[size_t(box)]) continue;
        const ObjectType type = ObjectTypeOfBox(box);
        if (!listedObjects(type, SourcePanel, servers.sourceDb).empty() ||
            !listedObjects(type, TargetPanel, servers.targetDb).empty())
            return true;
    }
    return false;
}

}  // namespace

int runCompare(const Options& options, ConsoleShell& console) {
    const ComparedServers servers = chooseServers(options);
    StructureRunRequest request;
    request.sourceDb = servers.sourceDb;
    request.targetDb = servers.targetDb;
    request.kinds = chooseKinds(options.types);
    request.details = options.details;
    reachServers(servers);
    const int before = console.errorCount();
    request.selective = chooseObjects(options, request.kinds, servers, request.sourceObjects,
                                      request.targetObjects);

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
    if (!run.somethingDiffers && !holdsAnyObject(request.kinds, servers))
        console.showNote(
            QStringLiteral("There is nothing to compare: neither %1 nor %2 holds an object of "
                           "the compared kinds.")
                .arg(servers.sourceDb, servers.targetDb));
    writeReport(options, globals().gstrReport);
    return run.somethingDiffers ? Different : Identical;
}

}  // namespace zov::cli
