// The screens that the main window's commands open and that stand in folders of
// their own: handed in at start-up, so that the controller stays testable.
#pragma once

#include "catalog/panel_loading.h"
#include "structcompare/compare_all_screens.h"

namespace zov {

class MainScreens {
 public:
    virtual ~MainScreens() = default;
    /// True when the options were saved.
    virtual bool showOptions() = 0;
    /// The chosen name, empty when nothing was chosen.
    virtual QString searchForObject(int Panel, ObjectType Type) = 0;
    /// True when the table's list of ignored columns was changed.
    virtual bool ignoreColumns(int Panel, const QString& Db, const QString& Table,
                               qint32 ObjectId) = 0;
    /// `Mode` 1 data comparisons, 2 structure comparisons.
    virtual void viewIgnoredColumns(int Mode) = 0;
    virtual void showColorSchema() = 0;
    virtual void visualizeDifferences(const QString& sourceName, const QString& sourceText,
                                      const QString& targetName, const QString& targetText) = 0;
    virtual void showTip() = 0;
    /// The report screen on globals().gstrReport, without a Save button.
    virtual void showGenericReport(const QString& Caption) = 0;
    virtual ReportScreen& reportScreen() = 0;
    virtual ObjectChooser& listObjects() = 0;
    virtual void copyToFile(const QString& text, const QString& defaultName) = 0;
    /// The bulk structure comparison with its screens, on the panels' lists and panes.
    virtual void compareAll(Panels& panels, int kindIndex, bool selective, bool details) = 0;
    virtual void compareAndPrint() = 0;
};

}  // namespace zov
