// What the desktop adds to the program's screens: reports printed on the desktop's
// printer.
#pragma once

#include "core/main/main_screens.h"
#include "reports/frmReport.h"

#include <QWidget>

namespace zov::qt {

class DesktopScreens : public MainScreens, public ReportPrinter {
 public:
    /// The window that print dialogs belong to.
    void setWindow(QWidget* window) { window_ = window; }

    bool printReport(const QString& documentName, const QString& text, bool silent) override;

 private:
    QWidget* window_ = nullptr;
};

}  // namespace zov::qt
