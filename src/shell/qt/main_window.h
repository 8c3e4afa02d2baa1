// The main window: two mirror-image panels, menus and tool bar made from the
// command table, status bar. Shows what the controller says and forwards clicks.
#pragma once

#include "core/main/frmMain.h"
#include "core/main/main_screens.h"
#include "shell/qt/pane_alignment.h"
#include "shell/qt/start_options.h"

#include <QMainWindow>

#include <map>
#include <memory>

class QLabel;
class QLineEdit;
class QSplitter;
class QToolBar;
class QToolButton;

namespace zov::qt {

class ChoiceCombo;
class FindBar;
class ObjectListView;
class TextPaneWidget;

class MainWindow : public QMainWindow, public MainWindowView {
    Q_OBJECT
 public:
    explicit MainWindow(MainScreens& screens, QWidget* parent = nullptr);
    ~MainWindow() override;

    frmMain& controller() { return controller_; }
    TextPaneWidget* pane(int Index) { return sides_[Index].text; }
    ObjectListView* list(int Index) { return sides_[Index].objects; }
    /// Runs a command as its menu entry does; `Index` is the pane of a pop-up command.
    void runCommand(int id, int Index = SourcePanel);
    /// The first activation is over.
    bool isStarted() const { return started_; }
    /// What the first activation opens the panels with.
    void openAtStart(const StartOptions& options) { start_ = options; }

    // MainWindowView.
    Panels& panels() override { return *panels_; }
    std::vector<int> selectedRows(int Index) const override;
    void setConnectPicture(int picture) override;
    void setCompareToolTip(const QString& text) override;
    void setListToolTips(const QString& text) override;
    void setFilterText(int Index, const QString& text) override;
    void setFilterMark(int Index, bool visible, const QString& toolTip) override;
    void setOwnerControlsVisible(bool visible) override;
    void setStatusText(const QString& text) override;
    void focusTypeBox() override;
    bool printPane(int Index, const QString& title, const QString& header, bool silent) override;
    void showHelp(int topic) override;
    void showAbout() override;
    void closeWindow() override { close(); }

    QAction* action(int commandId) const;
    /// The last message, without the prefix of debug mode.
    QString statusText() const { return statusText_; }
    /// Goes to the next or previous difference of the compared texts; says so when there is none.
    void goToDifference(bool forward);
    /// The size of both texts in points from the usual one; kept for the next start.
    int textZoom() const { return textZoom_; }
    void setTextZoom(int steps);

 protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

 private:
    struct Side {
        ChoiceCombo* server = nullptr;
        ChoiceCombo* database = nullptr;
        ChoiceCombo* owners = nullptr;
        QLabel* ownersLabel = nullptr;
        ObjectListView* objects = nullptr;
        TextPaneWidget* text = nullptr;
        QLabel* filterText = nullptr;
        QLabel* objectName = nullptr;
        QToolButton* filterMark = nullptr;
        FindBar* findBar = nullptr;
        QLabel* count = nullptr;
    };

    QWidget* makeTopPanel(int Index);
    QWidget* makeTextPanel(int Index);
    void makeMenus();
    void makeToolBar();
    void makeStatusBar();
    void makeShortcuts();
    void connectSide(int Index);
    void setTabOrders();
    void showPaneMenu(int Index, const QPoint& at);
    void showCounts();
    void showObjectName(int Index);
    /// The pane that keys mean: the one with the focus, or that of the panel with the focus.
    int activePane() const;
    void openFindBar();
    /// The lines that stand for each other, as long as both panes show compared texts.
    const PaneAlignment& alignment();
    void scrollTogether(int from);
    /// The status bar's word about the compared texts; an empty one takes the last one back.
    void tellOfDifferences(const QString& text);
    bool oneTextIsEmpty() const;
    void restoreLayout();
    void layOutForSmallDisplay();
    void saveLayout();

    Side sides_[2];
    ChoiceCombo* type_ = nullptr;
    QSplitter* splitter_ = nullptr;
    QSplitter* tops_ = nullptr;
    QSplitter* texts_ = nullptr;
    QLabel* status_ = nullptr;
    std::map<int, QAction*> actions_;
    std::unique_ptr<Panel> panel_[2];
    std::unique_ptr<Panels> panels_;
    frmMain controller_;
    StartOptions start_;
    PaneAlignment alignment_;
    bool alignmentIsOld_ = true;
    PairVerdict verdict_;  ///< on the texts that are shown; not given when one was replaced
    QString statusText_;
    QString toldOfDifferences_;
    int textZoom_ = 0;
    int atStop_ = -1;  ///< the difference that was gone to, of alignment_.stops()
    bool scrolling_ = false;
    bool shownOnce_ = false;
    bool started_ = false;
};

}  // namespace zov::qt
