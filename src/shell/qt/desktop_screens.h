// The main window's screens in the desktop: logic classes run through the shell.
#pragma once

#include "core/main/main_screens.h"
#include "reports/frmReport.h"
#include "tools/frmListObjects.h"

#include <QWidget>

namespace zov {
class frmMain;
}

namespace zov::qt {

class MainWindow;

class DesktopScreens : public MainScreens, public ReportScreen, public ReportPrinter {
 public:
    void setWindow(MainWindow* window) { window_ = window; }

    // MainScreens.
    bool showOptions() override;
    QString searchForObject(int Panel, ObjectType Type) override;
    bool ignoreColumns(int Panel, const QString& Db, const QString& Table,
                       qint32 ObjectId) override;
    void viewIgnoredColumns(int Mode) override;
    void showColorSchema() override;
    void visualizeDifferences(const QString& sourceName, const QString& sourceText,
                              const QString& targetName, const QString& targetText) override;
    void showTip() override;
    void showGenericReport(const QString& Caption) override;
    ReportScreen& reportScreen() override { return *this; }
    ObjectChooser& listObjects() override { return chooser_; }
    void copyToFile(const QString& text, const QString& defaultName) override;
    void compareAll(Panels& panels, int kindIndex, bool selective, bool details) override;
    void compareAndPrint() override;

    // ReportScreen, ReportPrinter.
    void ShowUp(const ComparisonReport& report) override;
    void printReport(const QString& documentName, const QString& text) override;

 private:
    MainWindow* window_ = nullptr;
    frmListObjects chooser_;
};

}  // namespace zov::qt
