// The help viewer: the pages of the help folder, offline, in a window beside the
// program's own.
#pragma once

#include <QString>

class QWidget;

namespace zov::qt {

/// Opens a page by its name ("frmaddserver", "index"); a page that isn't there shows the index.
void showHelpPage(const QString& page, QWidget* parent);

/// Closes the viewer, which would keep a program without any other window alive.
void closeHelp();

/// The folder of the help pages: beside the program, installed, or in the source tree.
QString helpFolder();

}  // namespace zov::qt
