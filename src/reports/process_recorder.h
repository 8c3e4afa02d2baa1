// Where result screens write down the run that they show. The store of saved
// processes stands above them; the program installs it here.
#pragma once

#include "structcompare/compare_all_screens.h"

namespace zov {

class ProcessRecorder {
 public:
    virtual ~ProcessRecorder() = default;
    /// Asks for a name and stores the run. True when it was stored; `Name` is its name then.
    virtual bool saveRun(const ComparisonReport& Run, bool CSVWrapInQuot, QString& Name) = 0;
    /// Adds the file to the process, and says so.
    virtual void recordExport(const QString& Name, const QString& Path, qint32 ExportType,
                              bool CSVWrapInQuot, qint32 CompType) = 0;
    /// Notes that the report is printed. False when that failed, which was told.
    virtual bool recordPrint(const QString& Name) = 0;
};

/// Null takes it away: results can't be saved then. Not owned.
void installProcessRecorder(ProcessRecorder* recorder);
ProcessRecorder* processRecorder();

}  // namespace zov
