// --save of the commands that compare: the run is kept as a saved process, as the
// window's Save button would keep it.
#pragma once

#include "apps/cli/cli_support.h"
#include "datacompare/modCompareData.h"
#include "structcompare/compare_all_screens.h"

namespace zov::cli {

class RunToSave {
 public:
    /// Throws Failure, before anything is run, when the run can't be kept: its options wouldn't
    /// come back with the process, its servers aren't stored, its name is no good or taken. Without
    /// --save it does nothing, here and below.
    RunToSave(const Options& options, const ComparedServers& servers);

    /// `path`: the results' file, empty for none; kept as an absolute path. Call it when the run is
    /// done and its files are written. Throws Failure.
    void save(ComparisonReport run, const QString& path, qint32 exportType, bool wrap,
              ConsoleShell& console) const;
    /// Stores how the two tables were compared, as their options screen does; `ignoring`: the
    /// columns that this run left out, too.
    void saveTableSettings(const DataComparisonRun& run, bool ignoring,
                           const QStringList (&ignored)[2]) const;

 private:
    const Options& options_;
    const ComparedServers& servers_;
};

}  // namespace zov::cli
