// zovrand-cli compare
#include "apps/cli/save_run.h"
#include "core/globals.h"
#include "scripting/modNew.h"
#include "shell/console/console_shell.h"
#include "shell/memory_controls.h"
#include "structcompare/compare_all_menu.h"
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

/// What the verdict leaves out. True when it stands in its way.
bool tellWhatIsLeftOut(const StructureRun& run, bool allowed, ConsoleShell& console) {
    QStringList sentences = run.blindness;
    for (const UnreadableObject& one : run.unreadable)
        sentences += QStringLiteral("The %1 %2 can't be read: %3")
                         .arg(GetObjectTypeName(one.object.kind, false).toLower(),
                              one.object.shownName, one.reason.sentence());
    for (const QString& sentence : sentences) {
        if (allowed)
            console.showNote(sentence);
        else
            console.showError(sentence);
    }
    return !sentences.isEmpty() && !allowed;
}

}  // namespace

int runCompare(const Options& options, ConsoleShell& console) {
    const ComparedServers servers = chooseServers(options);
    const RunToSave toSave(options, servers);
    StructureRunRequest request;
    request.sourceDb = servers.sourceDb;
    request.targetDb = servers.targetDb;
    request.kinds = chooseKinds(options.types);
    request.details = options.details;
    reachServers(servers);
    RunAccount choosing;
    {
        const KeepAccount keep(choosing);
        request.selective = chooseObjects(options, request.kinds, servers, request.sourceObjects,
                                          request.targetObjects);
    }
    if (tellTrouble(console, choosing)) return Trouble;

    ConsoleStatus status(console);
    MemoryObjectList sourceList, targetList;
    MemoryTextPane sourcePane, targetPane;
    ComparePanels panels{{sourceList, sourcePane}, {targetList, targetPane}};
    const int before = console.errorCount();
    const StructureRun run = CompareAll_Structure(status, request, panels);
    console.clearProgress();
    for (const QString& note : run.notes) console.showNote(note);
    const bool told = console.errorCount() != before;
    // A report without what could not be read must not pass for a result.
    if (tellTrouble(console, run.account)) return Trouble;
    if (!run.finished) {
        if (!told) console.showError(QStringLiteral("Stopped: there is no report."));
        return Trouble;
    }
    if (told && run.isWhole()) return Trouble;
    writeReport(options, globals().gstrReport);
    if (run.objectCount == 0)
        console.showNote(
            QStringLiteral("There is nothing to compare: neither %1 nor %2 holds an object of "
                           "the compared kinds.")
                .arg(servers.sourceDb, servers.targetDb));
    if (tellWhatIsLeftOut(run, options.allowUnreadable, console)) return Trouble;
    const bool oneKind = std::count(request.kinds.begin(), request.kinds.end(), true) == 1;
    toSave.save(reportOf(request, !oneKind, run.objectTypesChosen), options.outputFile, 0, false,
                console);
    return run.somethingDiffers ? Different : Identical;
}

}  // namespace zov::cli
