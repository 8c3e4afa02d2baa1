#include "structcompare/txtext_control.h"

#include "core/settings.h"

#include <algorithm>

namespace zov {

void InitializeTXTextControl(TextPane& pane) {
    pane.setText({});
    pane.setPageSize(std::max(readSetting(QStringLiteral("PageWidth")), LeastPaneWidth),
                     std::max(readSetting(QStringLiteral("PageHeight")), LeastPaneHeight));
}

}  // namespace zov
