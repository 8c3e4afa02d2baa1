// The walk over two tables' rows, by either method, and the reading before it.
#pragma once

#include "data/recordset.h"
#include "datacompare/modCompareData.h"
#include "scripting/mdlQueryCode.h"

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

/// The table as statements name it: its schema and name, each quoted. A schema that isn't known is
/// asked for by the table's id, else by its name.
QString QualifiedTableName(const CompareDataTable& Table);
/// A table's columns in their order; empty when the catalogue can't tell, which goes into the
/// account of the run.
std::vector<ColumnRecord> ColumnsOfTable(const CompareDataTable& Table, bool WithoutIgnored);
/// The names of those that are left without the ones ignored in data comparisons.
QStringList ComparedColumns(const CompareDataTable& Table);
/// "[A],[B]"
QString ColTypeArrayToString(const QStringList& Columns);
/// The statement that reads a table's columns but the ignored ones; `Prefix` is the part before the
/// table's name. All columns when the catalogue can't tell them.
QString BuildSqlSelectStringWithColumns(const CompareDataTable& Table, const QString& QualifiedTable,
                                        QString& Prefix);

}  // namespace zov
