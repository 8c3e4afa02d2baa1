// A report as a grid: columns, records of items, and the few operations that
// screens and exports need. Plain data; a table widget shows it.
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace zov {

struct GridReportItem {
    QString value;
    QString caption;               ///< shown instead of the value when not empty
    qint32 longValue = 0;          ///< what the ...MatchingLongVal helpers look at
    quint32 backColor = 0xFFFFFF;  ///< 0xBBGGRR
    bool hasCheckBox = false;
    bool checked = false;

    const QString& text() const { return caption.isEmpty() ? value : caption; }
};

struct GridReportColumn {
    QString caption;
    qint32 width = 0;
    bool resizable = true;
    qint32 alignment = 0;  ///< 0 none, 1 left, 2 centre
    qint32 subItems = 0;   ///< not 0: the column has a group of sub-settings
    bool sortable = false;
    bool groupable = false;
};

struct GridReport {
    std::vector<GridReportColumn> columns;
    std::vector<std::vector<GridReportItem>> records;
    QString fontName;
    qint32 fontSize = 0;
};

/// The definition of a report's columns: arrays side by side, from 0.
struct GridReportDefinition {
    QStringList ColCaptions;
    std::vector<qint32> ColWidths;
    std::vector<bool> ColResizable;
    std::vector<qint32> ColAlignments;
    std::vector<qint32> ColSubItems;
};

/// Column name, type, number of distinct values, then ten pairs of a value and its count.
GridReportDefinition DataAnalysisGridDefinition();
GridReportDefinition SchemaFilterGridDefinition();

/// Sets the report up anew: columns by the definition, in "Tahoma" at `FontSize`; no records.
void GridRepLoadEntities(GridReport& Report, const GridReportDefinition& definition,
                         qint32 FontSize);

/// The trimmed text of a cell; empty when there is no such cell.
QString GridRep_GetCellText(const GridReport& Report, int Row, int Col);

/// Records whose item in `Col` has the value.
qint32 GridRep_CountRowsMatchingLongVal(const GridReport& Report, int Col, qint32 Value);
/// The sum of `TotalCol` over the records whose item in `Col` has the value.
qint64 GridRep_GetTotalForCol_MatchingLongVal(const GridReport& Report, int TotalCol, int Col,
                                              qint32 Value);
/// Empties `CleanCol` of the records whose item in `Col` has the value.
void GridRep_CleanCells_MatchingLongVal(GridReport& Report, int CleanCol, int Col, qint32 Value);
void GridRep_PaintRow(GridReport& Report, int Row, quint32 BackColor);

/// The column that ScreenWriteAllEntities_GridRep writes names and check boxes to.
inline constexpr int SchemaNameColumn = 2;
/// Fills the schema filter's report: a first line "(Select All)", then a line for each name.
void ScreenWriteAllEntities_GridRep(GridReport& Report, const QStringList& Entities);

}  // namespace zov
