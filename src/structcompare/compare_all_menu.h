// The bulk structure comparison as the menus and saved processes start it: asks
// for what it needs, runs, and opens the report. Enter at
// CompStruct_BulkSel_SimpleDet_All or MenuCompareAll_Click.
#pragma once

#include "structcompare/frmCompareAllTables.h"
#include "structcompare/modCompareAll.h"

namespace zov {

/// The main window around the comparison.
struct CompareAllWindow {
    ChoiceList& pvlDbSource;
    ChoiceList& pvlDbTarget;
    ComparePanels& panels;
    ObjectChooser& listObjects;
    ReportScreen& report;
};

/// What a saved process hands in where a user would be asked.
struct SavedRun {
    QStringList sourceObjects;
    QStringList targetObjects;
    QString ExportPath;
    bool Print = false;
};

/// `index` is the box of the kind that is ticked at first.
void CompStruct_BulkSel_SimpleDet_All(CompareAllWindow& window, int index, bool selective,
                                      bool details);

/// "Compare All Objects": every kind is ticked at first, for a report on the whole databases.
void CompareAllObjects(CompareAllWindow& window);

/// `saved` is null when a user started the run.
void MenuCompareAll_Click(CompareAllWindow& window, int index, const QString& sourceDb,
                          const QString& targetDb, bool selective, bool details,
                          const SavedRun* saved = nullptr);

}  // namespace zov
