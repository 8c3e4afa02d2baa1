// One table's comparison as a command line asks for it: which tables, by which method, keys and
// order, and what is left out. Throws Failure for what can't be.
#pragma once

#include "apps/cli/cli_support.h"
#include "core/globals.h"
#include "datacompare/modCompareData.h"

#include <QTemporaryDir>

namespace zov::cli {

/// Whether a sentence about a table says which side's it is.
enum class TableOfSide { Named, Only };
/// The table that a command line names; throws Failure for one that isn't there, and for a name
/// that several have.
CompareDataTable findTable(int panel, const QString& database, const QString& name,
                           TableOfSide side = TableOfSide::Named);
/// Those of the table's columns that an option names, joined by commas, as the table writes them;
/// throws Failure for one that it hasn't got.
QStringList columnsNamed(const CompareDataTable& table, const QString& names,
                         const QString& option);

/// The stored ignored columns, or a copy of them with this run's in place of the two tables'. What
/// can't be read or written is a Failure: the run would compare other columns.
class IgnoredForThisRun {
 public:
    IgnoredForThisRun(const Options& options, const CompareDataPair& tables);

 private:
    QTemporaryDir folder_;
    ScopedValue<QString> restore_;
};

/// The columns that --ignore names, of each side.
void ignoredColumnsOf(const Options& options, const CompareDataPair& tables,
                      QStringList (&columns)[2]);

/// The stored settings, with those of the command line in their place.
DataComparisonRun runOf(const Options& options, const CompareDataPair& tables);
/// A column that the comparison goes by and leaves out: refused where it is asked for.
void checkAgainstIgnored(const Options& options, const CompareDataPair& tables);
/// A key that is given for this run must be among what is compared.
void checkGivenKey(const Options& options, const DataComparisonRun& run);
void checkExportFile(const Options& options);

}  // namespace zov::cli
