// Comparing the rows of all tables of two databases, or of chosen ones, into one
// report. Each table is compared by its stored settings; no screen asks. Enter at
// CompareAll_Data for a run, at DataCompareAll and MenuDataCompSelective for the
// run with its screens. The servers are the two panels' (gtCurrentServers).
#pragma once

#include "core/run_account.h"
#include "datacompare/modCompareData.h"
#include "structcompare/compare_all_menu.h"

namespace zov {

struct DataRunRequest {
    QString sourceDb;
    QString targetDb;
    bool selective = false;
    /// The chosen tables of a selective run: names, or "schema.name" where a name isn't enough.
    QStringList sourceTables;
    QStringList targetTables;
};

struct DataRun {
    /// The end was reached and gstrReport holds the report. False: stopped, or failed in a way that
    /// was told in a box; gstrReport is empty then.
    bool finished = false;
    bool somethingDiffers = false;  ///< a table differs or is missing on one side
    /// What failed and is no single table's trouble: lists, connections, time-outs.
    RunAccount account;
    QStringList unreadable;  ///< tables, as listed, that a server refused to read
    /// A sentence for each side whose login may not see all tables.
    QStringList blindness;
    /// What the report doesn't say of a run that it calls identical: a sentence for each table that
    /// stored settings kept from being compared whole, and one for databases without tables.
    QStringList notes;

    /// Everything that a verdict rests on came, but for tables that can't be read.
    bool isReliable() const { return finished && account.isWhole(); }
    /// Reliable, and nothing was left out.
    bool isWhole() const { return isReliable() && unreadable.isEmpty() && blindness.isEmpty(); }
};

/// Lists and panes of both sides are overwritten. The stop flag is cleared at the start and looked
/// at before each table; stopping one table's comparison stops the run.
DataRun CompareAll_Data(CompareAllForm& form, const DataRunRequest& request, ComparePanels& panels,
                        DataComparisonScreens* screens = nullptr);

/// A run over the panels' servers with its comparison codes.
ComparisonReport reportOf(const DataRunRequest& request);

/// All tables, from frmCompareAllTables to the report. `saved` is null when a user started the run.
RunVerdict DataCompareAll(CompareAllWindow& window, const SavedRun* saved = nullptr);
/// Chosen tables of the selected databases.
RunVerdict MenuDataCompSelective(CompareAllWindow& window);
/// `Index` 0 tables, 1 procedures, 2 functions, 3 views, 4 triggers, 5 relationships: what the user
/// chooses from. With `saved` nobody is asked.
RunVerdict DataCompareSelective(CompareAllWindow& window, int Index, const QString& sourceDb,
                                const QString& targetDb, const SavedRun* saved = nullptr);

}  // namespace zov
