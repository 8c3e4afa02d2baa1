// The differences between two tables' data: labels, the grid, its legend, counts.
#pragma once

#include "datacompare/frmCompareData.h"
#include "shell/qt/screen_dialog.h"

class QLabel;
class QPushButton;

namespace zov::qt {

class GridPane;

class CompareDataDialog : public ScreenDialog {
    Q_OBJECT
 public:
    CompareDataDialog(frmCompareData& screen, QWidget* parent);
    void refreshFields() override;

 protected:
    bool leave() override;
    /// Esc: closes the find bar first.
    void reject() override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

 private:
    QLayout* labels();
    QLayout* legend();
    QLayout* buttons();
    void paintLegend();

    frmCompareData& screen_;
    GridPane* grid_;
    QLabel* tables_[2];
    QLabel* method_;
    QLabel* ignored_;
    QLabel* stats_[6];
    QLabel* maxRows_;
    QLabel* swatches_[5] = {};
    QPushButton* save_;
};

}  // namespace zov::qt
