#include "shell/modGridReport.h"

namespace zov {
namespace {

const GridReportItem* itemAt(const GridReport& report, int row, int col) {
    if (row < 0 || size_t(row) >= report.records.size()) return nullptr;
    const std::vector<GridReportItem>& record = report.records[size_t(row)];
    return col < 0 || size_t(col) >= record.size() ? nullptr : &record[size_t(col)];
}

GridReportItem* itemAt(GridReport& report, int row, int col) {
    return const_cast<GridReportItem*>(itemAt(std::as_const(report), row, col));
}

bool matches(const GridReport& report, int row, int col, qint32 value) {
    const GridReportItem* item = itemAt(report, row, col);
    return item && item->longValue == value;
}

void addColumn(GridReportDefinition& definition, const QString& caption, qint32 width) {
    definition.ColCaptions.push_back(caption);
    definition.ColWidths.push_back(width);
    definition.ColResizable.push_back(true);
    definition.ColAlignments.push_back(0);
    definition.ColSubItems.push_back(0);
}

}  // namespace

GridReportDefinition DataAnalysisGridDefinition() {
    GridReportDefinition definition;
    addColumn(definition, QStringLiteral("Column Name"), 120);
    addColumn(definition, QStringLiteral("Data Type"), 100);
    addColumn(definition, QStringLiteral("Unique Values"), 90);
    for (int i = 1; i <= 10; ++i) {
        addColumn(definition, QStringLiteral("Value %1").arg(i), 120);
        addColumn(definition, QStringLiteral("Count"), 40);
    }
    return definition;
}

GridReportDefinition SchemaFilterGridDefinition() {
    GridReportDefinition definition;
    addColumn(definition, QStringLiteral("Id"), 40);
    addColumn(definition, QStringLiteral("Code"), 60);
    addColumn(definition, QStringLiteral("Name"), 200);
    addColumn(definition, QStringLiteral("Created By"), 80);
    addColumn(definition, QStringLiteral("Creation Date"), 80);
    addColumn(definition, QStringLiteral("Creation Time"), 80);
    return definition;
}

void GridRepLoadEntities(GridReport& Report, const GridReportDefinition& definition,
                         qint32 FontSize) {
    Report = {};
    Report.fontName = QStringLiteral("Tahoma");
    Report.fontSize = FontSize;
    for (qsizetype i = 0; i < definition.ColCaptions.size(); ++i) {
        GridReportColumn& column = Report.columns.emplace_back();
        column.caption = definition.ColCaptions[i];
        column.width = definition.ColWidths[size_t(i)];
        column.resizable = definition.ColResizable[size_t(i)];
        column.alignment = definition.ColAlignments[size_t(i)];
        column.subItems = definition.ColSubItems[size_t(i)];
    }
}

QString GridRep_GetCellText(const GridReport& Report, int Row, int Col) {
    const GridReportItem* item = itemAt(Report, Row, Col);
    return item ? item->text().trimmed() : QString();
}

qint32 GridRep_CountRowsMatchingLongVal(const GridReport& Report, int Col, qint32 Value) {
    qint32 count = 0;
    for (int row = 0; row < int(Report.records.size()); ++row)
        if (matches(Report, row, Col, Value)) ++count;
    return count;
}

qint64 GridRep_GetTotalForCol_MatchingLongVal(const GridReport& Report, int TotalCol, int Col,
                                              qint32 Value) {
    qint64 total = 0;
    for (int row = 0; row < int(Report.records.size()); ++row) {
        const GridReportItem* item = itemAt(Report, row, TotalCol);
        if (item && matches(Report, row, Col, Value)) total += item->longValue;
    }
    return total;
}

void GridRep_CleanCells_MatchingLongVal(GridReport& Report, int CleanCol, int Col, qint32 Value) {
    for (int row = 0; row < int(Report.records.size()); ++row) {
        GridReportItem* item = itemAt(Report, row, CleanCol);
        if (!item || !matches(Report, row, Col, Value)) continue;
        item->value.clear();
        item->caption.clear();
        item->longValue = 0;
    }
}

void GridRep_PaintRow(GridReport& Report, int Row, quint32 BackColor) {
    if (Row < 0 || size_t(Row) >= Report.records.size()) return;
    for (GridReportItem& item : Report.records[size_t(Row)]) item.backColor = BackColor;
}

void ScreenWriteAllEntities_GridRep(GridReport& Report, const QStringList& Entities) {
    Report.records.clear();
    const auto addRecord = [&](qint32 id, const QString& name) {
        std::vector<GridReportItem>& record = Report.records.emplace_back(Report.columns.size());
        if (record.size() <= size_t(SchemaNameColumn)) record.resize(SchemaNameColumn + 1);
        record[0].longValue = id;
        if (id > 0) record[0].value = QString::number(id);
        record[SchemaNameColumn].value = name;
        record[SchemaNameColumn].hasCheckBox = true;
    };
    addRecord(0, QStringLiteral("(Select All)"));
    for (qsizetype i = 0; i < Entities.size(); ++i) addRecord(qint32(i + 1), Entities[i]);
}

}  // namespace zov
