// What of a table is read for a comparison: its name in statements, its columns, its number of
// rows.
#pragma once

#include "data/recordset.h"
#include "datacompare/compare_tables.h"
#include "scripting/mdlQueryCode.h"

namespace zov {

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
QString BuildSqlSelectStringWithColumns(const CompareDataTable& Table,
                                        const QString& QualifiedTable, QString& Prefix);

/// Rows of a table; 0 for an empty name, -1 when they can't be counted or are more than 32 bits
/// hold, which is told. `Table` is quoted as statements name it, or a bare name; where that needs
/// its schema, it is put in front of `Table`.
qint32 GetNumberOfRecordsInTable(const ServerInfo& Server, QString& Table, const QString& Db);

}  // namespace zov
