// The data analyzer's window: the report as a table whose counts carry a bar for
// their share; sorted by a click on a heading, copied with Ctrl+C.
#pragma once

#include "analysis/frmDataAnalyze.h"
#include "shell/qt/screen_dialog.h"

#include <QElapsedTimer>

class QCheckBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QSortFilterProxyModel;
class QStandardItemModel;
class QTableView;

namespace zov::qt {

class AnalyzerDialog : public ScreenDialog {
    Q_OBJECT
 public:
    AnalyzerDialog(frmDataAnalyze& screen, QWidget* parent);

    void refreshFields() override;
    /// The selected cells as lines of texts parted by tabs.
    QString selectionAsText() const;

 protected:
    bool leave() override;
    void reject() override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

 private:
    QWidget* makeHead();
    QWidget* makeProgress();
    QWidget* makeTable();
    QWidget* makeButtons();
    void fillTable();
    void print();

    frmDataAnalyze& screen_;
    QLabel* columns_ = nullptr;
    QLabel* ignored_ = nullptr;
    QLineEdit* records_ = nullptr;
    QRadioButton* frequency_[2] = {};
    QCheckBox* anySize_ = nullptr;
    QPushButton* ignore_ = nullptr;
    QWidget* progress_ = nullptr;
    QProgressBar* columnsBar_ = nullptr;
    QProgressBar* rowsBar_ = nullptr;
    QLabel* currentColumn_ = nullptr;
    QLabel* currentRecord_ = nullptr;
    QLabel* time_ = nullptr;
    QTableView* table_ = nullptr;
    QStandardItemModel* model_ = nullptr;
    QPushButton* start_ = nullptr;
    QPushButton* stop_ = nullptr;
    QElapsedTimer sincePaint_;
    size_t shownRecords_ = 0;
};

}  // namespace zov::qt
