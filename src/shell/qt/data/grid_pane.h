// A grid of data on a screen: the table, a bar to find texts below it, a menu and
// keys to copy, to find, and to go from difference to difference.
#pragma once

#include "datacompare/grid_navigation.h"
#include "shell/qt/data/grid_model.h"
#include "shell/qt/text_find.h"

#include <QWidget>

class QAction;
class QLabel;
class QTableView;

namespace zov::qt {

class GridPane : public QWidget {
    Q_OBJECT
 public:
    /// `grid` outlives the pane. With `withDifferences` F8 and Shift+F8 go from one to the next.
    GridPane(const GridCells& grid, bool withDifferences, QWidget* parent);

    /// The grid has changed.
    void readAnew();
    /// The grid row that is shown uppermost.
    void scrollToRow(int row);
    /// The selected cell in grid terms; no row when there is none.
    GridPosition currentCell() const;
    void goTo(GridPosition cell);

    void copySelection();
    void openFind();
    void findNext(bool forward);
    void goToDifference(bool forward);
    /// Esc in the find bar closes it first; true when it did.
    bool closeFind();
    bool isLoading = false;  ///< rows are coming: the selection stays where it is

    QTableView* view() const { return view_; }
    /// For the pop-up menu, behind copying and finding.
    void addMenuAction(QAction* action);
    QAction* nextDifferenceAction() const { return nextDifference_; }
    QAction* previousDifferenceAction() const { return previousDifference_; }

 protected:
    void changeEvent(QEvent* event) override;

 private:
    QAction* makeAction(const char* icon, const QString& text, const QKeySequence& keys);
    void setColumnWidths();
    void tell(const QString& note);

    const GridCells& grid_;
    GridModel* model_;
    QTableView* view_;
    QWidget* findBar_;
    FindField* findText_;
    QLabel* findNote_;
    QAction* nextDifference_ = nullptr;
    QAction* previousDifference_ = nullptr;
    int shownColumns_ = 0;
    int shownRows_ = 0;
};

}  // namespace zov::qt
