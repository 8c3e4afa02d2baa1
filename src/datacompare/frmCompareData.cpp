#include "datacompare/frmCompareData.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "core/run_account.h"
#include "data/base/field_text.h"
#include "datacompare/table_reading.h"
#include "reports/process_recorder.h"
#include "shell/shell.h"
#include "util/text.h"

namespace zov {
namespace {

/// The number in column 0 and the texts of a record's first `fields` fields behind it.
void readRow(RowTexts& texts, qint32 number, const RowView& record, int fields) {
    texts.clear();
    texts.addCell(QString::number(number));
    for (int field = 0; field < fields; ++field) {
        appendFieldText(record.rows->cell(record.row, field), texts.open());
        texts.endCell();
    }
}

void tellError(const QString& routine) {
    const CaughtError error = caughtError();
    shell().messageBox(QStringLiteral("Error in ") + routine +
                           QStringLiteral(", error nr %1 (").arg(error.number) + error.description +
                           QStringLiteral(")."),
                       {}, BoxIcon::Exclamation);
}

}  // namespace

QString joinedKeys(const CompKeys& Keys) {
    QString joined = Keys.CompKey;
    if (!isKeyField(Keys.SecondaryCompKey)) return joined;
    joined += QStringLiteral(", ") + Keys.SecondaryCompKey;
    if (isKeyField(Keys.TertiaryCompKey)) joined += QStringLiteral(", ") + Keys.TertiaryCompKey;
    return joined;
}

QString frmCompareData::plainText() const {
    QString text = Caption;
    for (int i = 0; i < 3; ++i) text += CRLF + lblStats[i] + u' ' + lblStats[i + 3];
    if (lblMaxRowsVisible) text += CRLF + lblMaxRows;
    return text;
}

void frmCompareData::InitDifferencesGrid(const CompareDataPair& Tables, const Recordset& SourceRows,
                                         const Recordset& TargetRows) {
    for (size_t side = 0; side < 2; ++side) {
        const CompareDataTable& table = Tables[side];
        lblTableName[side] =
            (side == 0 ? QStringLiteral("Source Table: ") : QStringLiteral("Target Table: ")) +
            GetObjectDisplayName(table.Server.Name, table.Db, table.Table);
    }
    Caption = QStringLiteral("Differences between data in tables '") + Tables[0].Table +
              QStringLiteral("' and '") + Tables[1].Table + u'\'';

    QStringList columns = ComparedColumns(Tables[0]);
    if (columns.isEmpty())
        for (int field = 0; field < SourceRows.fieldCount(); ++field)
            columns += SourceRows.field(field).Name();
    VSFlexGrid1.setRows(1);
    VSFlexGrid1.setCols(int(columns.size()) + 1);
    VSFlexGrid1.setTextMatrix(0, 0, u"Row");
    VSFlexGrid1.setColWidth(0, ResultGrid::NumberColumnWidth);
    for (int i = 0; i < int(columns.size()); ++i) {
        VSFlexGrid1.setTextMatrix(0, i + 1, columns[i]);
        VSFlexGrid1.setColWidth(i + 1, ResultGrid::DataColumnWidth);
        const auto isNumber = [i](const Recordset& rows) {
            return i >= rows.fieldCount() || isNumericType(rows.field(i).info().type);
        };
        VSFlexGrid1.setNumberColumn(i + 1, isNumber(SourceRows) && isNumber(TargetRows));
    }
}

void frmCompareData::AddRecordToGrid(const RowView& Record, quint32 Colour, qint32 RowNumber) {
    const int fields = Record.fieldCount();
    if (RowNumber < VSFlexGrid1.Rows()) RowsLeftOut = true;
    VSFlexGrid1.setRows(RowNumber + 1);
    readRow(rowTexts_[0], RowNumber, Record, fields);
    VSFlexGrid1.setRowTexts(RowNumber, rowTexts_[0]);
    VSFlexGrid1.setBackColor(RowNumber, 0, RowNumber, fields, Colour);
    // The row may have been half of a pair.
    VSFlexGrid1.setForeColor(RowNumber, 0, RowNumber, fields, GridCells::DefaultForeColor);
}

void frmCompareData::AddRecordToGrid_MarkDiff(const RowView& Record1, const RowView& Record2,
                                              quint32 Colour1, quint32 Colour2, qint32 Number) {
    try {
        const int row = VSFlexGrid1.Rows();
        VSFlexGrid1.setRows(row + 2);
        const int fields = Record1.fieldCount();
        readRow(rowTexts_[0], Number, Record1, fields);
        readRow(rowTexts_[1], Number, Record2, std::min(fields, Record2.fieldCount()));
        foreColors_.assign(size_t(fields), GridCells::DefaultForeColor);
        for (int cell = 1; cell <= fields; ++cell) {
            if (cell >= rowTexts_[1].count()) rowTexts_[1].addCell({});
            if (rowTexts_[0].cell(cell) != rowTexts_[1].cell(cell))
                foreColors_[size_t(cell) - 1] = difference_color::DifferingText;
        }
        VSFlexGrid1.setRowTexts(row, rowTexts_[0]);
        VSFlexGrid1.setRowTexts(row + 1, rowTexts_[1]);
        VSFlexGrid1.setForeColors(row, 1, foreColors_);
        VSFlexGrid1.setForeColors(row + 1, 1, foreColors_);
        VSFlexGrid1.setBackColor(row, 0, row, fields, Colour1);
        VSFlexGrid1.setBackColor(row + 1, 0, row + 1, fields, Colour2);
    } catch (...) {
        tellError(QStringLiteral("Function AddRecordToGrid_MarkDiff"));
        addCaughtErrorToAccount({}, QStringLiteral("showing a pair"), true);
    }
}

void frmCompareData::AddMultipleRecordsToGrid(ComparisonProgress& Status, RowCursor& Rs,
                                              quint32 Colour, qint32 StartRec, qint32 EndRec) {
    try {
        const qint32 first = VSFlexGrid1.Rows();
        qint64 wanted = qint64(first) + EndRec - StartRec + 1;
        if (wanted > globals().glngMaxRowsInDiffTable) {
            // As many rows as there are different records fill the grid to the last one.
            RowsLeftOut = RowsLeftOut || wanted > qint64(globals().glngMaxRowsInDiffTable) + 1;
            wanted = qint64(globals().glngMaxRowsInDiffTable) + 1;
        }
        VSFlexGrid1.setRows(int(wanted));
        const qint32 steps = std::max(EndRec - StartRec, 1);
        int fields = 0;
        qint32 last = first - 1;
        for (qint32 record = StartRec; record <= EndRec; ++record) {
            if (!Status.UpdateDisplay(record, steps)) return;
            if (record == 1)
                Rs.MoveFirst();
            else
                Rs.MoveNext();
            if (Rs.isEof()) break;
            if (last + 1 >= wanted) break;
            ++last;
            const RowView row = Rs.row();
            fields = std::min(row.fieldCount(), VSFlexGrid1.Cols() - 1);
            readRow(rowTexts_[0], record, row, fields);
            VSFlexGrid1.setRowTexts(last, rowTexts_[0]);
        }
        if (last >= first) VSFlexGrid1.setBackColor(first, 0, last, fields, Colour);
    } catch (...) {
        tellError(QStringLiteral("Sub AddMultipleRecordsToGrid"));
        // The comparison has not seen all rows.
        addCaughtErrorToAccount({}, QStringLiteral("showing records"), true);
    }
}

void frmCompareData::TrimEmptyGridRows() {
    int rows = VSFlexGrid1.Rows();
    while (rows > 1 && Val(VSFlexGrid1.textView(rows - 1, 0)) == 0) --rows;
    VSFlexGrid1.setRows(rows);
}

void frmCompareData::fillLabels() {
    lblGen11 = QStringLiteral("Comparison method: ") + CompMethodToText(Method);
    if (Method == CompMethod::PrimaryKey)
        lblGen11 += u' ' + CRLF + QStringLiteral("Source PK: ") + joinedKeys(Keys[0]) + CRLF +
                    QStringLiteral("Target PK: ") + joinedKeys(Keys[1]);

    lblGen0.clear();
    QStringList ignored;
    for (const CompareDataTable& table : Tables) {
        QStringList columns;
        GetIgnoredColumnsList(IgnoreMode::DataComparison, table.key(), columns);
        ignored += columns;
    }
    if (ignored.size() == 1)
        lblGen0 = QStringLiteral("Ignored Column: ") + ignored.first();
    else if (!ignored.isEmpty())
        lblGen0 = QStringLiteral("NOTE: %1 columns were ignored.").arg(ignored.size());
}

void frmCompareData::ShowUp(const DataComparisonRun& Run, qint32 Ignored,
                            const QString& IgnoredNote, DataComparisonScreens& Screens) {
    Tables = Run.Tables;
    Method = Run.Method;
    for (int side = 0; side < 2; ++side) Keys[side] = Run.Keys[side];
    ExportFilePath = Run.ExportFilePath;
    ExportType = Run.ExportType;
    CSVWrapInQuot = Run.CSVWrapInQuot;
    IsReplay = Run.IsReplay;
    IgnoredCount = Ignored;
    IgnoredText = IgnoredNote;
    cmdSaveEnabled = processRecorder() != nullptr;
    fillLabels();
    Screens.showDifferences(*this);
}

}  // namespace zov
