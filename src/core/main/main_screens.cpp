#include "core/main/main_screens.h"

#include "analysis/frmDataAnalyze.h"
#include "core/frmTip.h"
#include "core/globals.h"
#include "datacompare/frmDataView.h"
#include "datacompare/frmIgnoreColumns.h"
#include "options/frmOptions.h"
#include "options/frmOptionsDebug.h"
#include "reports/frmGetDbInfo.h"
#include "saved/frmSaveCompRun.h"
#include "structcompare/frmCompareText.h"
#include "structcompare/frmSpare.h"
#include "tools/frmAttachDb.h"
#include "tools/frmExecSp.h"
#include "tools/frmSearchForObject_Gen.h"

namespace zov {

bool MainScreens::showOptions() {
    return frmOptions().ShowUp();
}

QString MainScreens::searchForObject(int Panel, ObjectType Type, const QString& Db) {
    return frmSearchForObject_Gen().ShowUp(Panel, Type, GetObjectTypeName(Type, false), Db);
}

bool MainScreens::ignoreColumns(int Panel, const QString& Db, const ObjectRef& Table) {
    qint32 count = 0;
    return frmIgnoreColumnsAdd().ShowUp(IgnoreMode::StructureComparison,
                                        globals().gtCurrentServers[Panel], Db, Table.shownName,
                                        Table.id, count, Table.storedName());
}

void MainScreens::viewIgnoredColumns(qint32 Mode) {
    frmIgnoreColumnsView().ShowUp(Mode);
}

void MainScreens::viewData(int Panel, const QString& Db, const QString& Table,
                           const QString& QualifiedTable, qint32 ObjectId) {
    frmDataView().ShowUp(QualifiedTable, Table, Db, Panel, ObjectId);
}

void MainScreens::analyzeData(int Panel, const QString& Db, const ObjectRef& Table,
                              const QString& QualifiedTable) {
    frmDataAnalyze().ShowUp(QualifiedTable, Table.name, Db, Panel, Table.id, Table.storedName());
}

bool MainScreens::attachDatabase(const ServerInfo& Server) {
    return frmAttachDb().ShowUp(Server);
}

void MainScreens::executeProcedure() {
    frmExecSp().ShowUp();
}

bool MainScreens::databaseInfo(int Panel, const QString& Db) {
    frmGetDbInfo screen;
    if (!screen.ShowUp(Db, Panel)) return false;
    globals().gstrReport = screen.txtTXProc;
    return true;
}

void MainScreens::showColorSchema() {
    frmColorSchema().ShowUp();
}

void MainScreens::stripComments(const QString& text) {
    frmSpare().ShowUp(text);
}

void MainScreens::showDebugOptions() {
    frmOptionsDebug().ShowUp();
}

void MainScreens::visualizeDifferences(const QString& sourceName, const QString& sourceText,
                                       const QString& targetName, const QString& targetText) {
    frmCompareText().ShowUp(sourceName, sourceText, targetName, targetText);
}

void MainScreens::showTip() {
    frmTip().ShowUp();
}

QString MainScreens::chooseSavedProcess() {
    return frmSaveCompRun().ShowUp();
}

void MainScreens::showGenericReport(const QString& Caption, const ReportAlternative& Alternative) {
    frmReport().ShowUp_Generic(Caption, Alternative);
}

void MainScreens::compareAndPrint(CompareAndPrintWindow& window) {
    frmCompareAndPrint().ShowUp(window);
}

void MainScreens::ShowUp(const ComparisonReport& report) {
    frmReport().ShowUp(report);
}

}  // namespace zov
