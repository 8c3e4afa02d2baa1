#include "shell/qt/desktop_screens.h"

#include "shell/qt/pane_printer.h"

#include <QApplication>

namespace zov::qt {

void DesktopScreens::printReport(const QString& documentName, const QString& text) {
    // Over the report that is being printed, not over the window behind it.
    QWidget* report = QApplication::activeModalWidget();
    printText(text, documentName, report ? report : window_);
}

}  // namespace zov::qt
