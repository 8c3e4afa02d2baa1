#include "datacompare/compare_all_data.h"

#include "catalog/modSchema.h"
#include "catalog/run_checks.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "scripting/modNew.h"
#include "shell/shell.h"
#include "structcompare/enc_obj_types.h"
#include "structcompare/kind_report.h"
#include "structcompare/object_pairing.h"
#include "util/text.h"

#include <QElapsedTimer>
#include <QSet>

namespace zov {
namespace {

/// As many as a box holds on a small display.
constexpr qsizetype MostNotes = 12;

/// One side of a run.
struct RunSide {
    RunSide(int panel, const QString& name, const QString& database, ComparePanel& scratch)
        : server(globals().gtCurrentServers[panel]),
          database(database),
          panel(panel),
          name(name),
          list(scratch.pvlSqlObj),
          pane(scratch.txtTXProc) {}

    ServerInfo server;
    QString database;
    int panel;
    QString name;  ///< "Source", "Target"
    ObjectList& list;
    TextPane& pane;
    ObjectDirectory directory;
    bool seesEverything = true;
    std::vector<ObjectRef> tables;

    QString place() const { return server.Name + u'.' + database; }
};

class DataComparisonOfAll {
 public:
    DataComparisonOfAll(CompareAllForm& form, const DataRunRequest& request, ComparePanels& panels,
                        DataComparisonScreens* screens, DataRun& result)
        : form_(form),
          request_(request),
          screens_(screens),
          result_(result),
          source_(SourcePanel, QStringLiteral("Source"), request.sourceDb, panels.source),
          target_(TargetPanel, QStringLiteral("Target"), request.targetDb, panels.target) {}

    /// False when it was stopped, or couldn't begin.
    bool run();

 private:
    bool mayGoOn();
    /// What must be known of a side before anything is compared.
    bool prepare(RunSide& side);
    void addHeading();
    bool loadList(RunSide& side);
    bool isChosen(const ObjectRef& table) const;
    bool compareLists();
    bool comparePair(const ObjectRef& source, const ObjectRef& target);
    void addClosing(bool bothEmpty);

    CompareAllForm& form_;
    const DataRunRequest& request_;
    DataComparisonScreens* screens_;
    DataRun& result_;
    RunSide source_;
    RunSide target_;
    QElapsedTimer clock_;
    QString report_;
    KindReport tables_{ObjectType::Table};
};

bool DataComparisonOfAll::mayGoOn() {
    form_.setTime(formatElapsed(clock_.elapsed()));
    shell().pumpEvents();
    return !globals().gblnStop;
}

bool DataComparisonOfAll::prepare(RunSide& side) {
    if (!knowVersion(side.server)) return false;
    globals().gtCurrentServers[side.panel].Version = side.server.Version;
    globals().gtCurrentServers[side.panel].NumVersion = side.server.NumVersion;
    QString sentence;
    side.seesEverything = seesWholeCatalogue(side.server, side.database, sentence);
    if (!side.seesEverything) result_.blindness += sentence;
    side.directory = ObjectDirectory::read(side.server, side.database);
    tables_.mayLackObjects =
        tables_.mayLackObjects || !side.seesEverything || !side.directory.isRead();
    return mayGoOn();
}

bool DataComparisonOfAll::run() {
    const WaitPointer wait;
    form_.showRunning();
    clock_.start();
    form_.runStatusTimer(true);
    const QString comparing =
        QStringLiteral("Comparing data in ") + tables_.plural + QStringLiteral("...");
    form_.setComparing(0, comparing);
    if (!prepare(source_) || !prepare(target_)) return false;
    addHeading();
    const bool loaded[] = {loadList(source_), loadList(target_)};
    if (!mayGoOn()) return false;
    if (loaded[0] && loaded[1]) {
        if (!request_.selective) {
            report_ += tables_.countLine(int(source_.tables.size()), source_.name);
            report_ += tables_.countLine(int(target_.tables.size()), target_.name);
        }
        const bool bothEmpty = source_.tables.empty() && target_.tables.empty();
        if (bothEmpty && tables_.isComplete())
            result_.notes +=
                QStringLiteral("There is nothing to compare: neither %1 nor %2 holds a table.")
                    .arg(source_.database, target_.database);
        if (!bothEmpty && !compareLists()) return false;
        addClosing(bothEmpty);
    }
    result_.somethingDiffers = tables_.somethingDiffers();
    form_.setComparing(0, comparing + QStringLiteral(" Finished"));
    globals().gstrReport = report_;
    return true;
}

void DataComparisonOfAll::addHeading() {
    report_ = QStringLiteral("Comparison of databases") + CRLF + CRLF;
    report_ += QStringLiteral("Source database ") + source_.place() + CRLF;
    report_ += QStringLiteral("Target database ") + target_.place() + CRLF;
    const QString filter = BuildSchemaFilteringString();
    if (!filter.isEmpty()) report_ += filter + CRLF;
    for (const QString& sentence : result_.blindness) report_ += sentence + CRLF;
    if (!request_.selective) {
        report_ += QStringLiteral("Comparison of data in ") + tables_.plural + CRLF;
        return;
    }
    report_ += QStringLiteral("Selective comparison of ") + tables_.plural + CRLF + CRLF;
    report_ += QString::number(request_.sourceTables.size()) +
               QStringLiteral(" objects selected in Source database") + CRLF;
    report_ += QString::number(request_.targetTables.size()) +
               QStringLiteral(" objects selected in Target database") + CRLF + CRLF;
}

/// An empty list that isn't read must not look like a database without tables.
bool DataComparisonOfAll::loadList(RunSide& side) {
    RunAccount account;
    {
        const KeepAccount keep(account);
        LoadObjects(side.server, side.list, side.pane, ObjectType::Table, side.database, false,
                    QString(), side.panel, &objectTexts(), nullptr, &side.directory);
    }
    if (account.isWhole()) {
        side.tables = objectsOf(side.list, ObjectType::Table);
        return true;
    }
    for (const AccountEntry& entry : account.entries()) addToAccount(entry);
    report_ +=
        QStringLiteral("The list of %1 in %2 database can't be read: their data isn't compared.")
            .arg(tables_.plural, side.name) +
        CRLF;
    return false;
}

/// Whether a run takes this table: in a selective run one that either side's choice names, with its
/// schema or without.
bool DataComparisonOfAll::isChosen(const ObjectRef& table) const {
    const auto takes = [&](const QString& name) {
        return ProceedWithThisObject(name, request_.selective, request_.sourceTables,
                                     request_.targetTables);
    };
    return takes(table.name) || (!table.schema.isEmpty() && takes(table.fullName()));
}

/// False after Stop.
bool DataComparisonOfAll::compareLists() {
    PairingRules rules;
    rules.schemaMayDiffer = knowsSchemas(source_.server) != knowsSchemas(target_.server) ||
                            !source_.directory.isRead() || !target_.directory.isRead();
    rules.sameName = [&](const ObjectRef& source, const ObjectRef& target) {
        return serverTakesForSame(target_.server, target_.database, source, target);
    };
    const std::vector<int> partners = pairObjects(source_.tables, target_.tables, rules);
    for (size_t i = 0; i < source_.tables.size(); ++i) {
        if (!mayGoOn()) return false;
        const ObjectRef& table = source_.tables[i];
        if (!isChosen(table)) continue;
        form_.setCurrentName(table.shownName);
        if (partners[i] < 0)
            tables_.addOnlyInSource(table.shownName);
        else if (!comparePair(table, target_.tables[size_t(partners[i])]))
            return false;
    }
    form_.setCurrentName({});
    const QSet<int> found(partners.begin(), partners.end());
    for (size_t i = 0; i < target_.tables.size(); ++i) {
        if (!mayGoOn()) return false;
        if (isChosen(target_.tables[i]) && !found.contains(int(i)))
            tables_.addOnlyInTarget(target_.tables[i].shownName);
    }
    return true;
}

/// False after Stop.
bool DataComparisonOfAll::comparePair(const ObjectRef& source, const ObjectRef& target) {
    const CompareDataPair pair{TableOf(source_.server, source_.database, source),
                               TableOf(target_.server, target_.database, target)};
    const QString& name = pair[0].Table;
    bool showOptions = false;
    const DataComparisonResult result =
        PerformDataComparison(pair, showOptions, true, false, screens_);
    const bool compared =
        result.Outcome == DataOutcome::Identical || result.Outcome == DataOutcome::Different;
    if (compared && !result.LeftOut.isEmpty())
        result_.notes += QStringLiteral("Table %1: %2.").arg(source.storedName(), result.LeftOut);
    switch (result.Outcome) {
        case DataOutcome::Identical:
            tables_.addIdentical(name, result.Note);
            return true;
        case DataOutcome::Different:
            tables_.addDiffering(
                name + QStringLiteral(" - %1 different record(s)").arg(result.Differences));
            return true;
        case DataOutcome::Failed:
            tables_.addUnreadable(name);
            if (result.Refused)
                result_.unreadable += name;
            else
                addToAccount({source_.place(), name, result.Report, 0, false, true});
            return !globals().gblnStop;
        default:
            return false;
    }
}

void DataComparisonOfAll::addClosing(bool bothEmpty) {
    const auto part = [&](const NameList& list) {
        if (list.count > 0) report_ += tables_.withCount(list) + CRLF;
    };
    part(tables_.differing);
    part(tables_.onlyInSource);
    part(tables_.onlyInTarget);
    if (!tables_.somethingDiffers() && tables_.isComplete()) {
        report_ += bothEmpty
                       ? tables_.plural
                       : QStringLiteral("Data in all ") +
                             (request_.selective ? QStringLiteral("selected ") : QString()) +
                             tables_.plural + QStringLiteral(" in both databases is identical.");
    } else if (tables_.identicalCount == 0) {
        report_ += QStringLiteral("There are no ") + tables_.plural +
                   QStringLiteral(" which have identical data in both databases.");
    } else if (tables_.identicalCount == 1) {
        report_ += QStringLiteral("One ") + tables_.singular + QStringLiteral(" [") +
                   tables_.lastIdentical +
                   QStringLiteral("] has identical data in both databases.");
    } else {
        report_ += QStringLiteral("All %1 remaining ").arg(tables_.identicalCount) +
                   tables_.plural + QStringLiteral(" have identical data:") + CRLF +
                   tables_.identical.chopped(2);
    }
    report_ += tables_.unreadableList();
}

bool databasesChosen(const QString& sourceDb, const QString& targetDb) {
    if (!sourceDb.isEmpty() && !targetDb.isEmpty()) return true;
    shell().messageBox(QStringLiteral("Cannot compare - the list of databases is empty."),
                       QStringLiteral("Cannot Compare"));
    return false;
}

void tellNotes(const QStringList& notes) {
    if (notes.isEmpty()) return;
    QStringList shown = notes.mid(0, MostNotes);
    if (notes.size() > MostNotes)
        shown += QStringLiteral("And %1 more.").arg(notes.size() - MostNotes);
    shell().messageBox(shown.join(CRLF), QStringLiteral("Note"), BoxIcon::Information);
}

/// Shows the form, runs, opens the report.
RunVerdict runWithForm(CompareAllWindow& window, const DataRunRequest& request,
                       const SavedRun* saved) {
    RunVerdict verdict = RunVerdict::None;
    QStringList notes;
    frmCompareAllTables::Request screen;
    screen.Type = ObjectType::Table;
    screen.offeredBoxes = 1;
    screen.startAtOnce = saved != nullptr;
    if (request.selective && !saved) screen.Caption = QStringLiteral("Compare Selected Objects");
    screen.run = [&](frmCompareAllTables& form) {
        const DataRun run = CompareAll_Data(form, request, window.panels);
        notes = run.notes;
        if (run.finished)
            verdict = !run.isWhole()         ? RunVerdict::Trouble
                      : run.somethingDiffers ? RunVerdict::Different
                                             : RunVerdict::Identical;
        return run.finished;
    };
    frmCompareAllTables form;
    if (form.ShowUp(screen) && !globals().gstrReport.isEmpty()) {
        tellNotes(notes);
        ComparisonReport report = reportOf(request);
        if (saved) handOn(*saved, report);
        window.report.ShowUp(report);
    }
    globals().gstrReport.clear();
    return verdict;
}

}  // namespace

ComparisonReport reportOf(const DataRunRequest& request) {
    ComparisonReport report;
    report.Caption = QStringLiteral("Comparison Report");
    report.ServerName1 = globals().gtCurrentServers[SourcePanel].Name;
    report.ServerName2 = globals().gtCurrentServers[TargetPanel].Name;
    report.DbName1 = request.sourceDb;
    report.DbName2 = request.targetDb;
    report.CompType = comparison_code::Data;
    report.CompSubType =
        request.selective ? comparison_code::SelectedTables : comparison_code::AllTables;
    if (request.selective) report.EncObjTypes = ObjectTypeToEncObjTypes(ObjectType::Table);
    report.SourceNames = request.sourceTables;
    report.TargetNames = request.targetTables;
    return report;
}

DataRun CompareAll_Data(CompareAllForm& form, const DataRunRequest& request, ComparePanels& panels,
                        DataComparisonScreens* screens) {
    DataRun result;
    globals().gstrReport.clear();
    globals().gblnStop = false;
    guardedRun("modCompareAll", "CompareAll_Data", [&] {
        const KeepAccount keep(result.account);
        result.finished = DataComparisonOfAll(form, request, panels, screens, result).run();
    });
    form.runStatusTimer(false);
    return result;
}

RunVerdict DataCompareAll(CompareAllWindow& window, const SavedRun* saved) {
    const DataRunRequest request{
        window.pvlDbSource.text(), window.pvlDbTarget.text(), false, {}, {}};
    return databasesChosen(request.sourceDb, request.targetDb) ? runWithForm(window, request, saved)
                                                               : RunVerdict::None;
}

RunVerdict MenuDataCompSelective(CompareAllWindow& window) {
    return DataCompareSelective(window, 0, window.pvlDbSource.text(), window.pvlDbTarget.text());
}

RunVerdict DataCompareSelective(CompareAllWindow& window, int Index, const QString& sourceDb,
                                const QString& targetDb, const SavedRun* saved) {
    if (Index < 0 || Index > 5) {
        shell().messageBox(
            QStringLiteral("Wrong index value in Sub DataCompareSelective, Index = %1").arg(Index));
        return RunVerdict::None;
    }
    if (!databasesChosen(sourceDb, targetDb)) return RunVerdict::None;
    DataRunRequest request{sourceDb, targetDb, true, {}, {}};
    if (saved) {
        request.sourceTables = saved->sourceObjects;
        request.targetTables = saved->targetObjects;
    } else if (!window.listObjects.ShowUp(sourceDb, targetDb, ObjectTypeOfBox(Index),
                                          request.sourceTables, request.targetTables)) {
        return RunVerdict::None;
    }
    return runWithForm(window, request, saved);
}

}  // namespace zov
