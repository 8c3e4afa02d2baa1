// Every screen of the desktop, opened once as its user opens it.
#pragma once

#include "shell_qt/desktop.h"

namespace zov::test {

struct TourStop {
    QString name;                ///< of the screen, as its window is named
    std::function<void()> open;  ///< returns when the screen is closed
};

/// Works on a window with both panels open.
std::vector<TourStop> screenTour(Desktop& desktop);

/// Makes the round; `look` gets each screen while it is shown.
void makeTour(Desktop& desktop,
              const std::function<void(const QString& name, QWidget& screen)>& look);

}  // namespace zov::test
