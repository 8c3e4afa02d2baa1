// The walk over two tables' rows, by either method, and the reading before it.
#pragma once

#include "datacompare/data_comparison.h"

namespace zov {

class frmCompareData;

/// Reads both tables, walks them, counts what differs into `Result.Differences` and puts it into
/// the grid. `QualifiedTable`: the tables as statements name them. Result.Records1 and Records2 are
/// given. A failure was told when this comes back, and gives DataOutcome::Failed.
void CompareRecords(ComparisonProgress& Status, frmCompareData& Grid, const DataComparisonRun& Run,
                    const QString (&QualifiedTable)[2], DataComparisonResult& Result);

}  // namespace zov
