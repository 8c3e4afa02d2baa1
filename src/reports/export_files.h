// What a result screen shows, written as an HTML table or as comma-separated
// text. No dialog, no question: frmExport asks, the command line doesn't. Files
// are replaced whole: what can't be written leaves an older file standing.
#pragma once

#include "shell/grid_cells.h"
#include "shell/modGridReport.h"

#include <QStringList>

#include <functional>

namespace zov {

/// The screens that export, by their numbers.
namespace ExportMode {
inline constexpr qint32 DataDifferences = 1;
inline constexpr qint32 TableData = 2;
inline constexpr qint32 DataAnalysis = 3;
}  // namespace ExportMode

/// What the file is made of. `grid` in modes 1 and 2, `report` in mode 3; they must stay as they
/// are until the file is written.
struct ExportSource {
    qint32 mode = ExportMode::DataDifferences;
    const GridCells* grid = nullptr;
    const GridReport* report = nullptr;
    QString caption;  ///< of the screen
    QString lblTableName[2];
    /// Mode 1: three captions, then the three numbers that belong to them. Mode 2: the first alone.
    QString lblStats[6];
    QString lblCurRec;  ///< mode 2
    bool lblCurRecVisible = false;
    qint32 heldBackCount = 0;  ///< above 0: the grid shows fewer rows than were found ...
    QString heldBackNote;      ///< ... and this says so; lines parted by LF
};

/// How one writing of a file went.
struct ExportRun {
    /// Called before each row with its number from 1 and the number of rows; false stops.
    std::function<bool(int row, int rows)> onRow;
    /// In wrapped CSV cells: each quotation mark is written twice, as CSV readers take it.
    bool doubleQuotationMarks = false;
    /// CSV that a spreadsheet runs nothing of: texts that it would take for a formula get an
    /// apostrophe in front, and all cells are wrapped with their quotation marks written twice.
    /// Numbers stay numbers.
    bool safeForSpreadsheets = false;
    int row = 0;      ///< reached
    QString failure;  ///< a sentence that names the file and the reason
};

enum class ExportEnd {
    Written,
    Stopped,  ///< the file holds the rows so far
    Failed,   ///< nothing was written; see ExportRun::failure
};

/// The colour's red, green and blue as six upper-case hexadecimal digits, from 0xBBGGRR.
QString RgbToHtml(quint32 Color);

/// Cells that could be taken for tags are written as entities, letters beyond ASCII too: the page
/// is right in every browser without naming an encoding.
ExportEnd writeGridHtml(const ExportSource& source, const QString& path, ExportRun& run);
ExportEnd writeReportHtml(const ExportSource& source, const QString& path, ExportRun& run);

/// UTF-8, with a byte order mark when the cells hold letters beyond ASCII: spreadsheets need it.
/// `wrap` puts cells in quotation marks; nothing is escaped unless the run says so.
ExportEnd writeGridCsv(const ExportSource& source, const QString& path, bool wrap, ExportRun& run);
ExportEnd writeReportCsv(const ExportSource& source, const QString& path, bool wrap,
                         ExportRun& run);

}  // namespace zov
