// The options: a tree of pages beside the page that is chosen.
#pragma once

#include "options/frmOptions.h"
#include "shell/qt/screen_dialog.h"

#include <QHash>

class QCheckBox;
class QRadioButton;
class QSpinBox;
class QStackedWidget;
class QTreeWidget;

namespace zov::qt {

class OptionsDialog : public ScreenDialog {
    Q_OBJECT
 public:
    OptionsDialog(frmOptions& screen, QWidget* parent);
    void refreshFields() override;

 protected:
    bool leave() override;

 private:
    QWidget* makePage(const OptionsPage& page);
    void takeFields();

    frmOptions& screen_;
    QTreeWidget* tree_;
    QStackedWidget* stack_;
    QHash<QString, QCheckBox*> checks_;
    QSpinBox* timeout_ = nullptr;
    QSpinBox* maxRows_ = nullptr;
    QSpinBox* cacheSize_ = nullptr;
    QRadioButton* clientSide_ = nullptr;
    QRadioButton* serverSide_ = nullptr;
};

}  // namespace zov::qt
