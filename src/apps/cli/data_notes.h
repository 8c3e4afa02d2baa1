// What a user of one table's comparison is told beside its verdict.
#pragma once

#include "apps/cli/data_run.h"

namespace zov {
class ConsoleShell;
}

namespace zov::cli {

/// Which stored settings take part, so that nobody wonders at the result.
void noteStoredSettings(const Options& options, const DataComparisonRun& run,
                        ConsoleShell& console);
/// One name may mean tables of two schemas.
void noteSchemas(const DataComparisonRun& run, ConsoleShell& console);
/// Tables may have different columns; what that comes to nobody sees in the counts.
void noteDifferentColumns(const DataComparisonRun& run, ConsoleShell& console);
/// What a stored key comes to whose column is gone or left out, or can't be sought.
void noteUnfitKeys(const DataComparisonRun& run, ConsoleShell& console);
/// Where the offsets are the reason that there was nothing to compare.
void noteOffsetsBehindEnd(const DataComparisonRun& run, const DataComparisonResult& result,
                          ConsoleShell& console);

}  // namespace zov::cli
