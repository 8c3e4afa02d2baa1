// The walk over two tables' rows, by either method, and the reading before it.
#pragma once

#include "data/recordset.h"
#include "datacompare/modCompareData.h"

namespace zov {

class frmCompareData;
class frmCompareStatus;

/// Reads both tables, walks them, counts what differs into `Result.Differences` and puts it into the
/// grid. `QualifiedTable`: the tables as statements name them. Result.Records1 and Records2 are
/// given. A failure was told when this comes back, and gives DataOutcome::Failed.
void CompareRecords(frmCompareStatus& Status, frmCompareData& Grid, const DataComparisonRun& Run,
                    const QString (&QualifiedTable)[2], DataComparisonResult& Result);

/// Place from 0 of the field of this very name (letter case counts); 0 when there is none.
int GetFieldOrdinal(const Recordset& Rs, const QString& Name);

/// The table as statements name it. Its own schema, where lists show that in front of the name, is
/// taken as such.
QString QualifiedTableName(const CompareDataTable& Table);
/// A table's columns in their order, without those ignored in data comparisons; empty when the
/// catalogue can't tell.
QStringList ComparedColumns(const CompareDataTable& Table);
/// "[A],[B]"
QString ColTypeArrayToString(const QStringList& Columns);
/// The statement that reads a table's columns but the ignored ones; `Prefix` is the part before the
/// table's name. All columns when the catalogue can't tell them.
QString BuildSqlSelectStringWithColumns(const CompareDataTable& Table, const QString& QualifiedTable,
                                        QString& Prefix);

}  // namespace zov
