// The main window: two mirror-image panels, menus and tool bar made from the
// command table, status bar. Shows what the controller says and forwards clicks.
#pragma once

#include "core/main/frmMain.h"
#include "core/main/main_screens.h"

#include <QMainWindow>

#include <map>
#include <memory>

class QLabel;
class QLineEdit;
class QSplitter;
class QToolButton;

namespace zov::qt {

class ChoiceCombo;
class ObjectListView;
class TextPaneWidget;

class MainWindow : public QMainWindow, public MainWindowView {
    Q_OBJECT
 public:
    explicit MainWindow(MainScreens& screens, QWidget* parent = nullptr);
    ~MainWindow() override;

    frmMain& controller() { return controller_; }
    TextPaneWidget* pane(int Index) { return sides_[Index].text; }

    // MainWindowView.
    Panels& panels() override { return *panels_; }
    void setConnectPicture(int picture) override;
    void setCompareToolTip(const QString& text) override;
    void setListToolTips(const QString& text) override;
    void setFilterText(int Index, const QString& text) override;
    void setFilterMark(int Index, bool visible, const QString& toolTip) override;
    void setOwnerControlsVisible(bool visible) override;
    void setStatusText(const QString& text) override;
    void focusTypeBox() override;
    bool printPane(int Index, const QString& title, const QString& header) override;
    void showHelp(int topic) override;
    void showAbout() override;
    void closeWindow() override { close(); }

    QAction* action(int commandId) const;

 protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

 private:
    struct Side {
        ChoiceCombo* server = nullptr;
        ChoiceCombo* database = nullptr;
        ChoiceCombo* owners = nullptr;
        QWidget* ownersRow = nullptr;
        ObjectListView* objects = nullptr;
        TextPaneWidget* text = nullptr;
        QLabel* header = nullptr;
        QToolButton* filterMark = nullptr;
        QWidget* findBar = nullptr;
        QLineEdit* findText = nullptr;
    };

    QWidget* makeTopPanel(int Index);
    QWidget* makeTextPanel(int Index);
    QWidget* makeFindBar(int Index);
    void makeMenus();
    void makeToolBar();
    void connectSide(int Index);
    void showPaneMenu(int Index, const QPoint& at);
    void goToDifference(bool forward);
    void openFindBar();
    void findInPane(int Index, bool forward);
    void scrollTogether(int from);
    void restoreLayout();
    void saveLayout();

    Side sides_[2];
    ChoiceCombo* type_ = nullptr;
    QSplitter* splitter_ = nullptr;
    QLabel* status_ = nullptr;
    std::map<int, QAction*> actions_;
    std::unique_ptr<Panel> panel_[2];
    std::unique_ptr<Panels> panels_;
    frmMain controller_;
    bool scrolling_ = false;
    bool shownOnce_ = false;
};

}  // namespace zov::qt
