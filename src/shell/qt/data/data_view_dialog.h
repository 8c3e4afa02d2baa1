// One table's rows.
#pragma once

#include "datacompare/frmDataView.h"
#include "shell/qt/screen_dialog.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace zov::qt {

class GridPane;

class DataViewDialog : public ScreenDialog {
    Q_OBJECT
 public:
    DataViewDialog(frmDataView& screen, QWidget* parent);
    void refreshFields() override;

 protected:
    bool leave() override;
    /// Esc: closes the find bar, stops loading, or leaves, in this order.
    void reject() override;
    void showEvent(QShowEvent* event) override;

 private:
    frmDataView& screen_;
    GridPane* grid_;
    QWidget* loading_;
    QProgressBar* bar_;
    QLabel* current_;
    QLabel* time_;
    QPushButton* stop_;
    QPushButton* export_;
    QElapsedTimer sincePaint_;
};

}  // namespace zov::qt
