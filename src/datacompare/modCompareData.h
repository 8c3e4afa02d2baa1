// Comparing the rows of two tables: from the settings over counting and walking to
// what the user is told. Enter at PerformDataComparison with the stored or asked
// settings, at ExecuteDataComparison with complete ones; the walk itself is in
// compare_records.h.
#pragma once

#include "datacompare/frmCompareDataOptions.h"

#include <QStringList>

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
    QString Note;    ///< beside an "identical" in a list: " (compared from record ...)", or empty
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
    QString OrderBy[2];  ///< " ORDER BY [A], [B] " or empty
    qint32 Offset[2] = {0, 0};  ///< first record to be compared, from 1; 0 is the first, too
    qint32 Method = CompMethod::RecordByRecord;
    CompKeys Keys[2];
    bool Quiet = false;            ///< no boxes; the result text goes to the report
    bool ShowDifferences = true;   ///< opens frmCompareData on differences
    // What a saved process hands on to frmCompareData.
    QString ExportFilePath;
    qint32 ExportType = 0;
    bool CSVWrapInQuot = false;
    bool IsReplay = false;
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

/// Finds the settings (the options screen, or the tables' stored ones) and compares. `ShowOptions`
/// asks for the options screen this once, whatever the setting says; it is false on return. `Quiet`:
/// never an options screen.
DataComparisonResult PerformDataComparison(const CompareDataPair& Tables, bool& ShowOptions,
                                           bool Quiet, bool ShowDifferences,
                                           DataComparisonScreens* Screens = nullptr);

/// Counts, compares, tells. The stop flag (gblnStop) is the Stop button; it is cleared once the
/// cancel was told.
DataComparisonResult ExecuteDataComparison(const DataComparisonRun& Run,
                                           DataComparisonScreens* Screens = nullptr);

/// The run that stored or chosen settings make of two tables.
DataComparisonRun DataComparisonRunOf(const CompareDataPair& Tables,
                                      const DataCompSettings& Settings);

/// " ORDER BY [Key1], [Key2], [Key3] ", as far as there are keys; a third without a second is
/// dropped, and without a first the result is empty.
QString BuildOrderByClause(const QString& Key1, const QString& Key2, const QString& Key3);
/// "Source - A,B Target - C"; a side without ignored columns is left out.
QString IgnoredColumns_PutToString(const QStringList& Ignored1, const QStringList& Ignored2);
/// "Compared from record 2 in Source on." where an offset leaves records out of a comparison by
/// record; else empty.
QString OffsetsNote(const DataComparisonRun& Run);
/// "Number of records in first table: ..." and so on, in three lines parted by CRLF.
QString DifferenceCountsText(const DataComparisonResult& Result);

/// Rows of a table; 0 for an empty name, -1 when they can't be counted or are more than 32 bits
/// hold, which is told. `Table` is quoted as statements name it, or a bare name; where that needs
/// its schema, it is put in front of `Table`.
qint32 GetNumberOfRecordsInTable(const ServerInfo& Server, QString& Table, const QString& Db);

}  // namespace zov
