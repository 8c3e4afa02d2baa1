// Comparing the rows of two tables: from the settings over counting and walking to
// what the user is told. Enter at PerformDataComparison with the stored or asked
// settings, at ExecuteDataComparison with complete ones; the walk itself is in
// compare_records.h.
#pragma once

#include "datacompare/data_comparison.h"

#include <QStringList>

namespace zov {

/// Finds the settings (the options screen, or the tables' stored ones) and compares. `ShowOptions`
/// asks for the options screen this once, whatever the setting says; it is false on return.
/// `Quiet`: never an options screen.
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

}  // namespace zov
