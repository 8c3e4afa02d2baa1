#include "shell/qt/desktop_screens.h"

#include "shell/qt/pane_printer.h"

#include <QApplication>

namespace zov::qt {

bool DesktopScreens::printReport(const QString& documentName, const QString& text, bool silent) {
    // Over the report that is being printed, not over the window behind it.
    QWidget* report = QApplication::activeModalWidget();
    return printText(text, documentName, silent, report ? report : window_);
}

}  // namespace zov::qt
