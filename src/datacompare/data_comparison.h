// One comparison of two tables' rows: what it is to do, how it ended, and who hears of its
// progress.
#pragma once

#include "datacompare/compare_tables.h"
#include "datacompare/data_comp_settings.h"

namespace zov {

class frmCompareData;
class frmCompareStatus;

/// How a comparison ended.
enum class DataOutcome {
    NotRun,     ///< given up on the options screen
    Cancelled,  ///< by Stop
    Identical,
    Different,
    /// An error, which was told, kept it from its end, or something that it rests on could not be
    /// read; the counts are those up to there.
    Failed,
};

struct DataComparisonResult {
    DataOutcome Outcome = DataOutcome::NotRun;
    qint32 Records1 = 0, Records2 = 0, Differences = 0;
    /// Failed, since a server refused what was asked for these tables: others may be read.
    bool Refused = false;
    QString Note;  ///< beside an "identical" in a list: " (compared from record ...)", or empty
    /// What stored settings kept from being compared: "compared from record ...; column ignored
    /// ...", or empty.
    QString LeftOut;
    QString Report;  ///< what a quiet run says, one to four lines parted by CRLF
    bool Identical() const { return Outcome == DataOutcome::Identical; }
};

/// The key columns of one side; the "Primary Key" method uses them up to the first that is no
/// column. See isKeyField.
struct CompKeys {
    QString CompKey;
    QString SecondaryCompKey;
    QString TertiaryCompKey;
};

/// One comparison, with all that must be known to run it. 0 is Source, 1 Target.
struct DataComparisonRun {
    CompareDataPair Tables;
    QString OrderBy[2];         ///< " ORDER BY [A], [B] " or empty
    qint32 Offset[2] = {0, 0};  ///< first record to be compared, from 1; 0 is the first, too
    qint32 Method = CompMethod::RecordByRecord;
    CompKeys Keys[2];
    bool Quiet = false;           ///< no boxes; the result text goes to the report
    bool ShowDifferences = true;  ///< opens frmCompareData on differences
    // What a saved process hands on to frmCompareData.
    QString ExportFilePath;
    qint32 ExportType = 0;
    bool CSVWrapInQuot = false;
    bool IsReplay = false;
};

/// The progress of a comparison, and its stop.
class ComparisonProgress {
 public:
    virtual ~ComparisonProgress() = default;
    /// 1 counting first, 2 counting second, 3 reading first, 4 reading second, 5 walking.
    virtual void ShowHideControls(int Mode) = 0;
    /// The run has come to a record of `Steps`. False once it is to stop.
    virtual bool UpdateDisplay(qint32 Record, qint32 Steps) = 0;
    /// The run waits for rows. False once it is to stop.
    virtual bool KeepWaiting() = 0;
};

/// Who shows the two screens of a run. The default is the shell, modally; the command line realises
/// it without windows.
class DataComparisonScreens {
 public:
    virtual ~DataComparisonScreens() = default;
    /// Runs the comparison: calls Form_Activate and comes back when the screen has closed itself.
    virtual void showStatus(frmCompareStatus& screen);
    virtual void showDifferences(frmCompareData& screen);
};

}  // namespace zov
