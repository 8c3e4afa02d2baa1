#include "shell/qt/desktop_screens.h"

#include "shell/qt/pane_printer.h"

namespace zov::qt {

void DesktopScreens::printReport(const QString& documentName, const QString& text) {
    printText(text, documentName, window_);
}

}  // namespace zov::qt
