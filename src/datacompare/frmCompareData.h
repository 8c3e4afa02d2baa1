// The result of a data comparison: the grid of differences, which is the only
// place where they are kept, and what stands around it. The comparison writes
// through the routines below while the window is not yet shown; ShowUp shows it.
// The window's commands are in frmCompareData_commands.cpp.
#pragma once

#include "data/recordset.h"
#include "datacompare/data_comparison.h"
#include "datacompare/keyed_rows.h"
#include "datacompare/result_grid.h"
#include "shell/screen.h"
#include "structcompare/compare_all_screens.h"

namespace zov {

struct ExportSource;

/// Background of the rows, 0xBBGGRR.
namespace difference_color {
inline constexpr quint32 SourceHalf = 0xFFFF00;  ///< of a pair
inline constexpr quint32 TargetHalf = 0x80FFFF;
inline constexpr quint32 SourceOnly = 0xC0FFC0;
inline constexpr quint32 TargetOnly = 0xC0E0FF;
/// Text of fields that differ.
inline constexpr quint32 DifferingText = 0x0000FF;
}  // namespace difference_color

class frmCompareData : public Screen {
 public:
    QString screenName() const override { return QStringLiteral("frmCompareData"); }
    QString caption() const override { return Caption; }
    QString plainText() const override;

    // Filling, in the order of a run.

    /// Labels, caption and the grid's headers, which are the Source table's columns without the
    /// ignored ones, or the names in its rows where the catalogue knows none. The grid has no data
    /// rows then.
    void InitDifferencesGrid(const CompareDataPair& Tables, const Recordset& SourceRows,
                             const Recordset& TargetRows);
    /// Cuts or extends the grid to `RowNumber` data rows and writes the record into the last
    /// of them. What the grid held there is written over, and behind it cut off: the number of
    /// differences is taken for a row, though each pair has taken two.
    void AddRecordToGrid(const RowView& Record, quint32 Colour, qint32 RowNumber);
    /// Adds two rows, a record of each side. Cells are red in both where their texts are
    /// not the same to the letter, whatever the comparison overlooks.
    void AddRecordToGrid_MarkDiff(const RowView& Record1, const RowView& Record2, quint32 Colour1,
                                  quint32 Colour2, qint32 Number);
    /// Adds the records `StartRec` to `EndRec` of a cursor that stands on the one before, or
    /// anywhere when `StartRec` is 1. Rows beyond the setting's limit are left out in silence.
    void AddMultipleRecordsToGrid(ComparisonProgress& Status, RowCursor& Rs, quint32 Colour,
                                  qint32 StartRec, qint32 EndRec);
    /// Drops rows at the end that were never written.
    void TrimEmptyGridRows();

    /// Fills the labels from the run and shows the window, modally.
    void ShowUp(const DataComparisonRun& Run, qint32 IgnoredCount, const QString& IgnoredText,
                DataComparisonScreens& Screens);

    // Fields. 0 is Source, 1 Target.
    ResultGrid VSFlexGrid1;
    QString Caption = QStringLiteral("Data Differences");
    QString lblTableName[2];  ///< "Source Table: T (Database: D, Server: S)"
    QString lblGen11;         ///< the method and its keys, up to three lines parted by CRLF
    QString lblGen0;          ///< on ignored columns; empty: hidden
    /// Three captions, then the numbers that belong to them.
    QString lblStats[6] = {QStringLiteral("Number of records in  in Source Table:"),
                           QStringLiteral("Number of records in  in Target Table:"),
                           QStringLiteral("Number of different records:")};
    QString lblMaxRows;
    bool lblMaxRowsVisible = false;
    /// Some of the different records stand in no row of the grid, whatever lblMaxRows says.
    bool RowsLeftOut = false;
    static const QString RowsLeftOutNote;
    bool BrokenOff = false;                ///< by an error: there may be more differences
    static const QString lblColorDesc[5];  ///< the legend
    bool cmdSaveEnabled = false;           ///< there is a store of processes

    // What export and save use.
    qint32 Method = CompMethod::RecordByRecord;
    CompKeys Keys[2];
    QString ExportFilePath;
    qint32 ExportType = 0;
    bool CSVWrapInQuot = false;
    bool IsReplay = false;
    qint32 IgnoredCount = 0;
    QString IgnoredText;
    CompareDataPair Tables;
    /// The run was saved and nothing was added to the process yet; the first export is.
    bool Saved = false;
    QString ProcessName;

    // Commands.
    /// The window is shown for the first time: a replay exports and, when the program is to close
    /// behind it, goes.
    void Form_Activate();
    void cmdExport_Click();
    void cmdSave_Click();
    void cmdExit_Click();
    void mnuPopUpSortColumns_Click();

 private:
    void fillLabels();
    bool activated_ = false;
    RowTexts rowTexts_[2];
    std::vector<quint32> foreColors_;
};

/// What an export of the window is made of; the window must stay as it is meanwhile.
ExportSource ExportSourceOf(const frmCompareData& form);

/// A comparison of two tables' rows as a saved process keeps it.
ComparisonReport reportOf(const CompareDataPair& Tables, qint32 Method);

/// "A, B, C": the second when it is a key, the third only behind a second.
QString joinedKeys(const CompKeys& Keys);

}  // namespace zov
