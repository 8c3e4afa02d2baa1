// The check list that narrows a panel to some schemas or owners.
#pragma once

#include "catalog/frmFilterBySchema.h"
#include "shell/qt/screen_dialog.h"

class QLabel;
class QListWidget;

namespace zov::qt {

class FilterDialog : public ScreenDialog {
    Q_OBJECT
 public:
    FilterDialog(frmFilterBySchema& screen, QWidget* parent);
    void refreshFields() override;

 protected:
    bool leave() override;

 private:
    frmFilterBySchema& screen_;
    QLabel* info_;
    QListWidget* list_;
    bool filling_ = false;
};

}  // namespace zov::qt
