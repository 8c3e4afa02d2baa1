// What values the columns of one table hold: column by column the number of
// distinct values and the most or least frequent ones, as records of a report.
// No screen: who watches is handed in. Enter at AnalyzeTable.
#pragma once

#include "analysis/distinct_values.h"
#include "core/server_info.h"
#include "scripting/mdlQueryCode.h"
#include "shell/modGridReport.h"

namespace zov {

/// The table, as the statements and the lists of ignored columns name it.
struct AnalyzedTable {
    ServerInfo Server;
    QString Db;
    QString Table;           ///< the bare name
    QString QualifiedTable;  ///< for a statement
    qint32 ObjectId = 0;
    qint32 RecordsCount = 0;
    QString StoredName = {};  ///< in the key of the ignored columns (ObjectRef::storedName)
};

struct AnalysisRequest {
    qint32 RecordsToAnalyze = 0;  ///< from 1 to RecordsCount
    bool MostFrequent = true;
    /// Columns of more than 32,767 distinct values are ranked too, and every order is exact: by
    /// count, then by first appearance. Off: the order is that of ShellSortArray_TwoStr_ByLongEl.
    bool AnySize = false;
    /// Columns left out beside those of the stored list.
    QStringList Ignored = {};
};

/// Who watches an analysis, and may stop it.
class AnalysisWatcher {
 public:
    virtual ~AnalysisWatcher() = default;
    /// A column is begun: `Index` of `LastIndex`, from 0. False stops.
    virtual bool columnBegun(const QString& Column, int Index, int LastIndex) = 0;
    /// `Record` rows of `Walk` are counted; also called while a server is slow. False stops.
    virtual bool recordsCounted(qint32 Record, qint32 Walk) = 0;
    /// The report has got another record. False stops.
    virtual bool columnDone() = 0;
};

enum class AnalysisEnd {
    Finished,
    Stopped,  ///< the report holds the columns so far
    Failed,   ///< told in a report; the report holds the columns so far
};

/// How many distinct values a column of the report shows at most, each with its count.
inline constexpr qint32 ShownValues = 10;
/// The most distinct values that are ranked unless a request says any size.
inline constexpr qint32 MostRankedValues = 32767;

/// Fills `Report` (its columns must stand) with a record for each column of the table that the list
/// of ignored columns doesn't hold. Every failure is told.
AnalysisEnd AnalyzeTable(const AnalyzedTable& Table, const AnalysisRequest& Request,
                         AnalysisWatcher& Watcher, GridReport& Report);

/// Counts one column's values. `LastIndex` is that of `Values`, -1 when there are none. `Ok` is
/// false after a failure, which was told; a stop leaves it true.
void AnalyzeColumn(const AnalyzedTable& Table, const ColumnRecord& Column, qint32 RecordsToAnalyze,
                   AnalysisWatcher& Watcher, std::vector<TwoStr>& Values, qint32& LastIndex,
                   bool& Ok);

/// Adds the column's record: name, type, number of distinct values, and the first ten with counts.
void LoadColumnDataToGrid(GridReport& Report, const ColumnRecord& Column,
                          const std::vector<TwoStr>& Values, qint32 LastIndex);

/// The report as plain text, a paragraph for each column below the title; line breaks are LF, those
/// within values become blanks.
QString AnalysisText(const QString& Title, const GridReport& Report);

/// The number that the text asks for, from 1 to below `RecordsCount`; `RecordsCount` for all else.
qint32 RecordsToAnalyzeFrom(const QString& Text, qint32 RecordsCount);

}  // namespace zov
