// What the user does in the window of differences.
#include "core/globals.h"
#include "datacompare/frmCompareData.h"
#include "datacompare/grid_navigation.h"
#include "reports/frmExport.h"
#include "reports/process_recorder.h"

namespace zov {

ExportSource ExportSourceOf(const frmCompareData& form) {
    ExportSource source;
    source.mode = ExportMode::DataDifferences;
    source.grid = &form.VSFlexGrid1;
    source.caption = form.Caption;
    for (int side = 0; side < 2; ++side) source.lblTableName[side] = form.lblTableName[side];
    for (int i = 0; i < 6; ++i) source.lblStats[i] = form.lblStats[i];
    // What the file doesn't show: rows beyond the grid's limit, ignored columns.
    QStringList notes;
    if (form.lblMaxRowsVisible)
        notes += form.lblMaxRows;
    else if (form.RowsLeftOut)
        notes += frmCompareData::RowsLeftOutNote;
    if (form.IgnoredCount > 0) notes += form.IgnoredText;
    source.heldBackCount = qint32(notes.size());
    source.heldBackNote = notes.join(u'\n');
    return source;
}

const QString frmCompareData::RowsLeftOutNote =
    QStringLiteral("Not all different records are shown");

const QString frmCompareData::lblColorDesc[5] = {
    QStringLiteral("Data in Source Table"), QStringLiteral("Data in Target Table"),
    QStringLiteral("Records present in Source Table but not in Target Table"),
    QStringLiteral("Records present in Target Table but not in Source Table"),
    QStringLiteral("Fields for which data differs are printed in red.")};

void frmCompareData::Form_Activate() {
    if (activated_) return;
    activated_ = true;
    if (ExportType != ::zov::ExportType::Ask && !ExportFilePath.isEmpty()) {
        frmExport::Request request;
        request.Path = ExportFilePath;
        request.ExportType = ExportType;
        request.Replay = IsReplay;
        request.Wrap = CSVWrapInQuot;
        request.AutoClose = globals().gblnAutoClose;
        Saved = false;
        frmExport().ShowUp(ExportSourceOf(*this), request);
    }
    if (IsReplay && globals().gblnAutoClose) close();
}

void frmCompareData::cmdExport_Click() {
    frmExport::Request request;
    request.Replay = false;
    request.Wrap = CSVWrapInQuot;
    const frmExport::Result result = frmExport().ShowUp(ExportSourceOf(*this), request);
    CSVWrapInQuot = result.Wrap;
    if (!result.Success || !Saved || ProcessName.isEmpty() || !processRecorder()) return;
    processRecorder()->recordExport(ProcessName, result.Path, result.Type, result.Wrap,
                                    comparison_code::Data);
    Saved = false;
}

ComparisonReport reportOf(const CompareDataPair& Tables, qint32 Method) {
    ComparisonReport run;
    run.ServerName1 = Tables[0].Server.Name;
    run.ServerName2 = Tables[1].Server.Name;
    run.DbName1 = Tables[0].Db;
    run.DbName2 = Tables[1].Db;
    run.TableName1 = Tables[0].Table;
    run.TableName2 = Tables[1].Table;
    run.CompType = comparison_code::Data;
    run.CompSubType = comparison_code::SingleTable;
    run.CompMethod = Method;
    run.ObjId1 = QString::number(Tables[0].ObjectId);
    run.ObjId2 = QString::number(Tables[1].ObjectId);
    return run;
}

void frmCompareData::cmdSave_Click() {
    if (processRecorder())
        Saved = processRecorder()->saveRun(reportOf(Tables, Method), CSVWrapInQuot, ProcessName);
}

void frmCompareData::cmdExit_Click() {
    close();
}

void frmCompareData::mnuPopUpSortColumns_Click() {
    VSFlexGrid1.setColumnOrder(columnsByName(VSFlexGrid1));
    refresh();
}

}  // namespace zov
