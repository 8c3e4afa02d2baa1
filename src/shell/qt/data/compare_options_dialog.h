// How two tables' data is compared: four pages for method, sort order, offset and
// ignored columns.
#pragma once

#include "datacompare/frmCompareDataOptions.h"
#include "shell/qt/screen_dialog.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTabWidget;
class QTreeWidget;

namespace zov::qt {

class CompareOptionsDialog : public ScreenDialog {
    Q_OBJECT
 public:
    CompareOptionsDialog(frmCompareDataOptions& screen, QWidget* parent);
    void refreshFields() override;

 private:
    QWidget* methodPage();
    QWidget* sortingPage();
    QWidget* offsetPage();
    QWidget* columnsPage();
    void addKeyBoxes(QGroupBox* box, int side);
    void addSortBoxes(QGroupBox* box, int side);

    frmCompareDataOptions& screen_;
    QTabWidget* pages_;
    QRadioButton* methods_[2];
    QGroupBox* keyFrames_[2];
    QLabel* keyLabels_[6];
    QComboBox* keys_[6];
    QPushButton* validate_[2];
    QComboBox* sortKeys_[6];
    QLineEdit* offsets_[2];
    QTreeWidget* columns_[2];
    QCheckBox* doNotShow_;
    bool filling_ = false;
};

}  // namespace zov::qt
