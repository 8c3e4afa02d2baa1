#include "structcompare/compare_all_menu.h"

#include "core/globals.h"
#include "shell/shell.h"

#include <algorithm>

namespace zov {
namespace {

/// 0 for an index that no menu entry has.
ObjectType typeOfMenuIndex(int index) {
    return index >= 0 && index <= 6 ? ObjectTypeOfBox(index) : ObjectType{};
}

bool databasesChosen(const QString& sourceDb, const QString& targetDb) {
    if (!sourceDb.isEmpty() && !targetDb.isEmpty()) return true;
    shell().messageBox(QStringLiteral("Cannot compare - the list of databases is empty."),
                       QStringLiteral("Cannot Compare"));
    return false;
}

/// Shows the form, runs, opens the report.
RunVerdict runWithForm(CompareAllWindow& window, frmCompareAllTables::Request& screen,
                       StructureRunRequest& request, bool wholeDatabases, const SavedRun* saved) {
    QString objectTypes;
    RunVerdict verdict = RunVerdict::None;
    screen.run = [&](frmCompareAllTables& form) {
        request.kinds = form.chkObjType;
        const StructureRun run = CompareAll_Structure(form, request, window.panels);
        objectTypes = run.objectTypesChosen;
        if (window.note && !run.notes.isEmpty()) window.note(run.notes.join(u' '));
        if (run.finished)
            verdict = !run.isWhole()         ? RunVerdict::Trouble
                      : run.somethingDiffers ? RunVerdict::Different
                                             : RunVerdict::Identical;
        return run.finished;
    };
    frmCompareAllTables form;
    if (form.ShowUp(screen) && !globals().gstrReport.isEmpty()) {
        ComparisonReport report = reportOf(request, wholeDatabases, objectTypes);
        if (saved) handOn(*saved, report);
        window.report.ShowUp(report);
    }
    globals().gstrReport.clear();
    return verdict;
}

}  // namespace

void handOn(const SavedRun& saved, ComparisonReport& report) {
    report.Replay = true;
    report.ExportPath = saved.ExportPath;
    report.Print = saved.Print;
}

ComparisonReport reportOf(const StructureRunRequest& request, bool wholeDatabases,
                          const QString& objectTypes) {
    ComparisonReport report;
    report.Caption = QStringLiteral("Comparison Report");
    report.ServerName1 = globals().gtCurrentServers[SourcePanel].Name;
    report.ServerName2 = globals().gtCurrentServers[TargetPanel].Name;
    report.DbName1 = request.sourceDb;
    report.DbName2 = request.targetDb;
    report.CompType = comparison_code::MetaData;
    report.CompSubType = wholeDatabases      ? comparison_code::AllObjects
                         : request.selective ? comparison_code::Selective
                                             : comparison_code::Bulk;
    if (wholeDatabases)
        report.CompSubSubType = 0;
    else if (request.details)
        report.CompSubSubType =
            request.selective ? comparison_code::SelectiveDetails : comparison_code::BulkDetails;
    else
        report.CompSubSubType =
            request.selective ? comparison_code::SelectiveSimple : comparison_code::BulkSimple;
    report.EncObjTypes = objectTypes;
    report.SourceNames = request.sourceObjects;
    report.TargetNames = request.targetObjects;
    return report;
}

void CompStruct_BulkSel_SimpleDet_All(CompareAllWindow& window, int index, bool selective,
                                      bool details) {
    MenuCompareAll_Click(window, index, window.pvlDbSource.text(), window.pvlDbTarget.text(),
                         selective, details);
}

RunVerdict MenuCompareAll_Click(CompareAllWindow& window, int index, const QString& sourceDb,
                                const QString& targetDb, bool selective, bool details,
                                const SavedRun* saved) {
    if (!databasesChosen(sourceDb, targetDb)) return RunVerdict::None;
    globals().gstrReport.clear();
    const ObjectType type = typeOfMenuIndex(index);
    if (type == ObjectType{}) {
        shell().messageBox(
            QStringLiteral("Wrong index value in Sub mnuComparisonAllObjects_Click, Index = %1")
                .arg(index));
        return RunVerdict::None;
    }

    StructureRunRequest request{sourceDb, targetDb, {}, selective, details, {}, {}};
    frmCompareAllTables::Request screen;
    screen.Type = type;
    screen.startAtOnce = saved != nullptr;
    if (selective && saved) {
        request.sourceObjects = saved->sourceObjects;
        request.targetObjects = saved->targetObjects;
    } else if (selective) {
        if (!window.listObjects.ShowUp(sourceDb, targetDb, type, request.sourceObjects,
                                       request.targetObjects))
            return RunVerdict::None;
        screen.Caption = QStringLiteral("Compare Selected Objects");
    }
    return runWithForm(window, screen, request, false, saved);
}

RunVerdict CompareAllObjects(CompareAllWindow& window, const SavedRun* saved) {
    const QString sourceDb = window.pvlDbSource.text(), targetDb = window.pvlDbTarget.text();
    if (!databasesChosen(sourceDb, targetDb)) return RunVerdict::None;
    globals().gstrReport.clear();
    StructureRunRequest request{sourceDb, targetDb, {}, false, false, {}, {}};
    frmCompareAllTables::Request screen;
    screen.startAtOnce = saved != nullptr;
    ObjectKindBoxes all{};
    std::fill_n(all.begin(), comparedKindCount(), true);
    screen.EncObjTypes = saved ? saved->EncObjTypes : EncodeObjTypes(all);
    return runWithForm(window, screen, request, true, saved);
}

}  // namespace zov
