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

/// The comparison codes as saved processes keep them.
ComparisonReport reportOf(const StructureRunRequest& request, bool wholeDatabases,
                          const QString& objectTypes, const SavedRun* saved) {
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
        report.CompSubSubType = request.selective ? 40 : 20;
    else
        report.CompSubSubType = request.selective ? 30 : 10;
    report.EncObjTypes = objectTypes;
    report.SourceNames = request.sourceObjects;
    report.TargetNames = request.targetObjects;
    report.Replay = saved != nullptr;
    if (saved) {
        report.ExportPath = saved->ExportPath;
        report.Print = saved->Print;
    }
    return report;
}

/// Shows the form, runs, opens the report.
void runWithForm(CompareAllWindow& window, frmCompareAllTables::Request& screen,
                 StructureRunRequest& request, bool wholeDatabases, const SavedRun* saved) {
    QString objectTypes;
    screen.run = [&](frmCompareAllTables& form) {
        request.kinds = form.chkObjType;
        const StructureRun run = CompareAll_Structure(form, request, window.panels);
        objectTypes = run.objectTypesChosen;
        return run.finished;
    };
    frmCompareAllTables form;
    if (form.ShowUp(screen) && !globals().gstrReport.isEmpty())
        window.report.ShowUp(reportOf(request, wholeDatabases, objectTypes, saved));
    globals().gstrReport.clear();
}

}  // namespace

void CompStruct_BulkSel_SimpleDet_All(CompareAllWindow& window, int index, bool selective,
                                      bool details) {
    MenuCompareAll_Click(window, index, window.pvlDbSource.text(), window.pvlDbTarget.text(),
                         selective, details);
}

void MenuCompareAll_Click(CompareAllWindow& window, int index, const QString& sourceDb,
                          const QString& targetDb, bool selective, bool details,
                          const SavedRun* saved) {
    if (!databasesChosen(sourceDb, targetDb)) return;
    globals().gstrReport.clear();
    const ObjectType type = typeOfMenuIndex(index);
    if (type == ObjectType{}) {
        shell().messageBox(
            QStringLiteral("Wrong index value in Sub mnuComparisonAllObjects_Click, Index = %1")
                .arg(index));
        return;
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
            return;
        screen.Caption = QStringLiteral("Compare Selected Objects");
    }
    runWithForm(window, screen, request, false, saved);
}

void CompareAllObjects(CompareAllWindow& window) {
    const QString sourceDb = window.pvlDbSource.text(), targetDb = window.pvlDbTarget.text();
    if (!databasesChosen(sourceDb, targetDb)) return;
    globals().gstrReport.clear();
    StructureRunRequest request{sourceDb, targetDb, {}, false, false, {}, {}};
    frmCompareAllTables::Request screen;
    ObjectKindBoxes all{};
    std::fill_n(all.begin(), comparedKindCount(), true);
    screen.EncObjTypes = EncodeObjTypes(all);
    runWithForm(window, screen, request, true, nullptr);
}

}  // namespace zov
