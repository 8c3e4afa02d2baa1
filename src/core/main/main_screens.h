// The screens that the main window's commands open, in one place: the controller
// decides when, the shell shows them. They stand in folders of their own.
#pragma once

#include "reports/frmCompareAndPrint.h"
#include "reports/frmReport.h"
#include "saved/frmSaveComparison.h"
#include "tools/frmListObjects.h"

namespace zov {

class MainScreens : public ReportScreen {
 public:
    /// Result screens save their runs from now on.
    MainScreens() { installProcessRecorder(&recorder_); }
    ~MainScreens() override { installProcessRecorder(nullptr); }

    /// True when the options were saved.
    bool showOptions();
    /// The chosen name, empty when nothing was chosen.
    QString searchForObject(int Panel, ObjectType Type, const QString& Db);
    /// The table's columns that structure comparisons leave out. True when their list was changed.
    bool ignoreColumns(int Panel, const QString& Db, const ObjectRef& Table);
    /// `Mode` as in IgnoreMode: data or structure comparisons.
    void viewIgnoredColumns(qint32 Mode);
    /// The rows of a table; `QualifiedTable` is its name in statements.
    void viewData(int Panel, const QString& Db, const QString& Table, const QString& QualifiedTable,
                  qint32 ObjectId);
    /// The analyzer on that table.
    void analyzeData(int Panel, const QString& Db, const ObjectRef& Table,
                     const QString& QualifiedTable);
    /// Files that become a database of the server; true when one was attached.
    bool attachDatabase(const ServerInfo& Server);
    /// The developer's screen that calls sample procedures.
    void executeProcedure();
    /// The inventory of the panel's database, into globals().gstrReport. False when it was
    /// cancelled.
    bool databaseInfo(int Panel, const QString& Db);
    void showColorSchema();
    /// The test screens of the Debug menu.
    void stripComments(const QString& text);
    void showDebugOptions();
    void visualizeDifferences(const QString& sourceName, const QString& sourceText,
                              const QString& targetName, const QString& targetText);
    void showTip();
    /// The name of the saved process to be run, empty when none was chosen.
    QString chooseSavedProcess();
    /// The report screen on globals().gstrReport, without a Save button.
    void showGenericReport(const QString& Caption, const ReportAlternative& Alternative = {});
    void compareAndPrint(CompareAndPrintWindow& window);
    ObjectChooser& listObjects() { return chooser_; }

    /// The report of a comparison, on globals().gstrReport.
    void ShowUp(const ComparisonReport& report) override;

 private:
    frmListObjects chooser_;
    SavedProcessRecorder recorder_;
};

}  // namespace zov
