#include "datacompare/frmDataView.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "data/mdlData.h"
#include "datacompare/table_reading.h"
#include "reports/frmExport.h"
#include "scripting/mdlQueryCode.h"
#include "shell/shell.h"
#include "util/text.h"

#include <stdexcept>

namespace zov {
namespace {

constexpr quint32 AlternateRowColor = 0xFFFF00;
constexpr qint32 RowsBetweenRefreshes = 40;

}  // namespace

void frmDataView::ShowUp(const QString& QualifiedTable, const QString& Table, const QString& Db,
                         int ServerIndex, qint32 ObjectId) {
    if (ServerIndex != SourcePanel && ServerIndex != TargetPanel)
        throw std::out_of_range("frmDataView: no such panel");
    server_ = globals().gtCurrentServers[ServerIndex];
    qualifiedTable_ = QualifiedTable;
    table_ = Table;
    db_ = Db;
    objectId_ = ObjectId;
    lblTableName = QStringLiteral("Table: ") + GetObjectDisplayName(server_.Name, Db, Table);
    qint32 count = 0;
    {
        const WaitPointer wait;
        const ScopedValue<bool> ownStop(globals().gblnStop, false);
        count = GetNumberOfRecordsInTable(server_, qualifiedTable_, Db);
        if (globals().gblnStop) return;
    }
    const QString title = QStringLiteral("View Data");
    if (count < 0) {
        shell().messageBox(QStringLiteral("Error while reading data from table ") + Table + u'.',
                           title, BoxIcon::Exclamation);
        return;
    }
    if (count == 0) {
        shell().messageBox(
            QStringLiteral("Table ") + Table + QStringLiteral(" doesn't contain any data."), title,
            BoxIcon::Information);
        return;
    }
    lblStats = QStringLiteral("Number of records: ") + formatCount(count);
    activated_ = loading_ = stopped_ = unloadWanted_ = false;
    reopen();
    shell().showModal(*this);
}

QString frmDataView::plainText() const {
    return lblTableName + CRLF + lblStats;
}

void frmDataView::Form_Activate() {
    if (activated_) return;
    activated_ = true;
    LoadData();
}

void frmDataView::ShowHideLoadControls(int Mode) {
    cmdStopEnabled = loadControlsVisible = Mode == 1;
    cmdExportEnabled = Mode == 2;
    refresh();
}

void frmDataView::UpdateTimeElapsed() {
    lblTime = formatElapsed(elapsed_.elapsed());
}

void frmDataView::LoadData() {
    loading_ = true;
    // Cancelling the note over a slow query is this window's Stop.
    const ScopedValue<bool> ownStop(globals().gblnStop, false);
    elapsed_.start();
    UpdateTimeElapsed();
    ShowHideLoadControls(1);
    try {
        const WaitPointer wait;
        readRows();
    } catch (...) {
        const CaughtError error = caughtError();
        shell().messageBox(
            QStringLiteral("Error in Sub frmDataView.LoadData, error nr %1 (").arg(error.number) +
            error.description + QStringLiteral(")."));
    }
    loading_ = false;
    ShowHideLoadControls(2);
    if (unloadWanted_) close();
}

void frmDataView::readRows() {
    TableStructure structure;
    GetTableStructure(server_, db_, table_, DoubleSingleQuotes(table_), structure, false,
                      IgnoreMode::DataComparison, objectId_, {});
    QStringList columns;
    for (const ColumnRecord& column : structure.columns) columns += column.strName;
    VSFlexGrid1.reset(columns, AlternateRowColor);
    refresh();

    std::unique_ptr<Recordset> rs;
    {
        // All rows stay here anyway, and the connection needn't.
        const ScopedValue<qint32> client(globals().glngCursorLocation, adUseClient);
        GetAdoRS(server_, adCmdText, QStringLiteral("SELECT * FROM ") + qualifiedTable_, rs, db_);
    }
    shell().pumpEvents();
    if (!rs || stopped_ || unloadWanted_ || (rs->isBof() && rs->isEof())) return;
    // The catalogue's columns name the grid's; where they aren't those of the rows, the rows know.
    if (columns.size() != rs->fieldCount()) {
        columns.clear();
        for (int i = 0; i < rs->fieldCount(); ++i) columns += rs->field(i).Name();
        VSFlexGrid1.reset(columns, AlternateRowColor);
    }
    VSFlexGrid1.setRows(std::move(rs));
    const qint32 count = VSFlexGrid1.count();
    for (qint32 i = 1; i <= count; ++i) {
        VSFlexGrid1.setLoaded(i);
        if (i % RowsBetweenRefreshes == 0 || i == count) {
            lblCurRec = formatCount(i);
            ProgressBar = int(qint64(i) * 100 / count);
            UpdateTimeElapsed();
            if (i > RowsBetweenRefreshes) topRow = i - RowsBetweenRefreshes;
            refresh();
        }
        shell().pumpEvents();
        if (stopped_ || unloadWanted_ || globals().gblnStop) return;
    }
    topRow = 1;
}

void frmDataView::cmdStop_Click() {
    if (loading_) stopped_ = true;
}

void frmDataView::cmdExit_Click() {
    if (loading_)
        unloadWanted_ = true;
    else
        close();
}

void frmDataView::cmdExport_Click() {
    if (loading_) return;
    ExportSource source;
    source.mode = ExportMode::TableData;
    source.grid = &VSFlexGrid1;
    source.caption = caption();
    source.lblTableName[0] = lblTableName;
    source.lblStats[0] = lblStats;
    source.lblCurRec = lblCurRec;
    source.lblCurRecVisible = loadControlsVisible;
    frmExport().ShowUp(source, {});
}

}  // namespace zov
