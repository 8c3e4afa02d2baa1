// The bulk structure comparison as the menus and saved processes start it: asks
// for what it needs, runs, and opens the report. Enter at
// CompStruct_BulkSel_SimpleDet_All or MenuCompareAll_Click.
#pragma once

#include "structcompare/frmCompareAllTables.h"
#include "structcompare/modCompareAll.h"

#include <functional>

namespace zov {

/// The main window around the comparison.
struct CompareAllWindow {
    ChoiceList& pvlDbSource;
    ChoiceList& pvlDbTarget;
    ComparePanels& panels;
    ObjectChooser& listObjects;
    ReportScreen& report;
    /// Shows a sentence that is no trouble, in the status bar; may be empty.
    std::function<void(const QString& sentence)> note = {};
};

/// What a saved process hands in where a user would be asked.
struct SavedRun {
    QStringList sourceObjects;
    QStringList targetObjects;
    QString ExportPath;
    bool Print = false;
    QString EncObjTypes = {};  ///< of a run over all objects
};

/// What the report screen gets to know of a replay.
void handOn(const SavedRun& saved, ComparisonReport& report);
/// A run over the panels' servers with its comparison codes. `wholeDatabases`: it was one over all
/// objects, of which `objectTypes` says the kinds.
ComparisonReport reportOf(const StructureRunRequest& request, bool wholeDatabases,
                          const QString& objectTypes);

/// `index` is the box of the kind that is ticked at first.
void CompStruct_BulkSel_SimpleDet_All(CompareAllWindow& window, int index, bool selective,
                                      bool details);

// The verdict of these is None when nothing was compared. `saved` is null when a user started the
// run.

/// "Compare All Objects": every kind is ticked at first, for a report on the whole databases.
RunVerdict CompareAllObjects(CompareAllWindow& window, const SavedRun* saved = nullptr);

RunVerdict MenuCompareAll_Click(CompareAllWindow& window, int index, const QString& sourceDb,
                                const QString& targetDb, bool selective, bool details,
                                const SavedRun* saved = nullptr);

}  // namespace zov
