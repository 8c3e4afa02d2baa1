// What the user does in the window of differences.
#include "datacompare/frmCompareData.h"
#include "datacompare/grid_navigation.h"
#include "reports/frmExport.h"

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
    if (ExportType == ::zov::ExportType::Ask || ExportFilePath.isEmpty()) return;
    frmExport::Request request;
    request.Path = ExportFilePath;
    request.ExportType = ExportType;
    request.Replay = IsReplay;
    request.Wrap = CSVWrapInQuot;
    frmExport().ShowUp(ExportSourceOf(*this), request);
}

void frmCompareData::cmdExport_Click() {
    frmExport::Request request;
    request.Replay = IsReplay;
    request.Wrap = CSVWrapInQuot;
    CSVWrapInQuot = frmExport().ShowUp(ExportSourceOf(*this), request).Wrap;
}

// The button is disabled until comparisons can be saved as processes.
void frmCompareData::cmdSave_Click() {}

void frmCompareData::cmdExit_Click() {
    close();
}

void frmCompareData::mnuPopUpSortColumns_Click() {
    VSFlexGrid1.setColumnOrder(columnsByName(VSFlexGrid1));
    refresh();
}

}  // namespace zov
