#include "shell/qt/main_window.h"

#include "core/product.h"
#include "scripting/modNew.h"
#include "shell/qt/about_dialog.h"
#include "shell/qt/appearance.h"
#include "shell/qt/choice_combo.h"
#include "shell/qt/find_bar.h"
#include "shell/qt/help_window.h"
#include "shell/qt/object_list_view.h"
#include "shell/qt/pane_printer.h"
#include "shell/qt/text_pane_widget.h"
#include "shell/qt/window_fit.h"

#include <QAction>
#include <QGridLayout>
#include <QLabel>
#include <QMenuBar>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace zov::qt {
namespace {

namespace cmd = command;

QIcon icon(const char* name) {
    return QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
}

QString sideName(int Index) {
    return Index == SourcePanel ? QStringLiteral("Source") : QStringLiteral("Target");
}

QToolButton* smallButton(const char* iconName, const QString& toolTip) {
    auto* button = new QToolButton;
    button->setIcon(icon(iconName));
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

QLabel* labelFor(const QString& text, QWidget* buddy, bool bold = false) {
    auto* label = new QLabel(text);
    label->setBuddy(buddy);
    if (bold) {
        QFont font = label->font();
        font.setBold(true);
        label->setFont(font);
    }
    return label;
}

}  // namespace

MainWindow::MainWindow(MainScreens& screens, QWidget* parent)
    : QMainWindow(parent), controller_(*this, screens) {
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(product::Name);
    setWindowIcon(icon("zovrand"));

    tops_ = new QSplitter(Qt::Horizontal);
    texts_ = new QSplitter(Qt::Horizontal);
    type_ = new ChoiceCombo;
    type_->setObjectName(QStringLiteral("cmbType"));
    type_->setAccessibleName(QStringLiteral("Objects type"));
    type_->setToolTip(QStringLiteral("Type of the objects that are listed (F6)"));
    type_->setMinimumContentsLength(14);
    for (const int Index : {SourcePanel, TargetPanel}) tops_->addWidget(makeTopPanel(Index));
    for (const int Index : {SourcePanel, TargetPanel}) texts_->addWidget(makeTextPanel(Index));
    splitter_ = new QSplitter(Qt::Vertical);
    splitter_->addWidget(tops_);
    splitter_->addWidget(texts_);
    splitter_->setStretchFactor(0, 2);
    splitter_->setStretchFactor(1, 3);
    for (QSplitter* splitter : {tops_, texts_, splitter_}) splitter->setChildrenCollapsible(false);
    setCentralWidget(splitter_);
    // Both rows of panels share one vertical border.
    connect(tops_, &QSplitter::splitterMoved, this, [this] { texts_->setSizes(tops_->sizes()); });
    connect(texts_, &QSplitter::splitterMoved, this, [this] { tops_->setSizes(texts_->sizes()); });

    for (const int Index : {SourcePanel, TargetPanel}) {
        Side& side = sides_[Index];
        panel_[Index] = std::make_unique<Panel>(
            Panel{*side.server, *side.database, *side.objects, *side.text, *side.owners});
    }
    panels_ = std::make_unique<Panels>(Panels{*panel_[0], *panel_[1], *type_, objectTexts()});

    makeStatusBar();
    makeMenus();
    makeToolBar();
    makeShortcuts();
    for (const int Index : {SourcePanel, TargetPanel}) connectSide(Index);
    connect(type_, &QComboBox::activated, this, [this] { controller_.cmbType_Click(); });
    for (ChoiceCombo* box : findChildren<ChoiceCombo*>())
        box->isLocked = [this] { return controller_.Busy(); };
    setTabOrders();
    setOwnerControlsVisible(globals().gblnShowOwners);
    showNamesPlainly(*this);
    restoreLayout();
}

MainWindow::~MainWindow() = default;

QWidget* MainWindow::makeTopPanel(int Index) {
    Side& side = sides_[Index];
    const bool isSource = Index == SourcePanel;
    auto* box = new QWidget;
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(8, 6, 8, 4);
    layout->setSpacing(6);
    const auto named = [&](const char* name, QWidget* widget, const QString& accessible) {
        widget->setObjectName(QStringLiteral("%1_%2").arg(QLatin1String(name)).arg(Index));
        widget->setAccessibleName(sideName(Index) + u' ' + accessible);
    };

    side.server = new ChoiceCombo;
    side.database = new ChoiceCombo;
    side.owners = new ChoiceCombo;
    side.objects = new ObjectListView;
    side.objects->setEmptyText(QStringLiteral("Choose a server and a database above."));
    side.filterText = new ElidedLabel;
    side.filterMark = smallButton("filter-off", QStringLiteral("Click to remove Schema filter"));
    side.filterMark->hide();
    named("cmbServer", side.server, QStringLiteral("server"));
    named("pvlDb", side.database, QStringLiteral("database"));
    named("cmbOwners", side.owners, QStringLiteral("owner"));
    named("pvlSqlObj", side.objects, QStringLiteral("objects"));
    named("srtFiltering", side.filterMark, QStringLiteral("filter"));

    auto* schema =
        smallButton("filter", QStringLiteral("Filter %1 by schema").arg(sideName(Index)));
    auto* owner = smallButton("owner", QStringLiteral("Filter %1 by owner").arg(sideName(Index)));
    auto* find = smallButton("find", QStringLiteral("Find an object in %1").arg(sideName(Index)));
    auto* refresh = smallButton("refresh", QStringLiteral("Refresh %1").arg(sideName(Index)));
    auto* viewData = smallButton(
        "view-data", QStringLiteral("View data in the table selected in %1").arg(sideName(Index)));
    auto* analyze = smallButton(
        "analyze", QStringLiteral("Analyze data in the table selected in %1").arg(sideName(Index)));
    auto* info = smallButton(
        "db-info",
        QStringLiteral("Show what the database in %1 holds (%2)")
            .arg(sideName(Index), isSource ? QStringLiteral("F10") : QStringLiteral("F11")));
    named("cmdAnalyzeData", analyze, QStringLiteral("analyze data"));
    named("cmdDbInfo", info, QStringLiteral("database information"));
    connect(analyze, &QToolButton::clicked, this,
            [=, this] { controller_.cmdAnalyzeData_Click(Index); });
    connect(info, &QToolButton::clicked, this, [=, this] { controller_.cmdDbInfo_Click(Index); });
    named("cmdFilterBySchema", schema, QStringLiteral("filter by schema"));
    named("cmdFilterByOwner", owner, QStringLiteral("filter by owner"));
    named("cmdFind", find, QStringLiteral("find object"));
    named("cmdRefresh", refresh, QStringLiteral("refresh"));
    named("cmdViewData", viewData, QStringLiteral("view data"));
    connect(schema, &QToolButton::clicked, this,
            [=, this] { controller_.cmdFilter_Click(Index, FilterType::Schema); });
    connect(owner, &QToolButton::clicked, this,
            [=, this] { controller_.cmdFilter_Click(Index, FilterType::Owner); });
    connect(find, &QToolButton::clicked, this,
            [=, this] { runCommand(isSource ? cmd::FindInSource : cmd::FindInTarget); });
    connect(refresh, &QToolButton::clicked, this,
            [=, this] { runCommand(isSource ? cmd::RefreshSource : cmd::RefreshTarget); });
    connect(viewData, &QToolButton::clicked, this,
            [=, this] { controller_.cmdViewData_Click(Index); });

    auto* top = new QHBoxLayout;
    top->setSpacing(2);
    top->addWidget(labelFor(isSource ? QStringLiteral("So&urce") : QStringLiteral("Tar&get"),
                            side.objects, true));
    top->addWidget(side.filterText, 1);
    for (QToolButton* button :
         {side.filterMark, schema, owner, viewData, analyze, info, find, refresh})
        top->addWidget(button);
    layout->addLayout(top);

    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(6);
    grid->addWidget(
        labelFor(isSource ? QStringLiteral("Serve&r:") : QStringLiteral("Ser&ver:"), side.server),
        0, 0);
    grid->addWidget(side.server, 0, 1);
    grid->addWidget(labelFor(isSource ? QStringLiteral("Data&base:") : QStringLiteral("D&atabase:"),
                             side.database),
                    0, 2);
    grid->addWidget(side.database, 0, 3);
    side.ownersLabel =
        labelFor(isSource ? QStringLiteral("O&wner:") : QStringLiteral("Ow&ner:"), side.owners);
    grid->addWidget(side.ownersLabel, 1, 0);
    grid->addWidget(side.owners, 1, 1);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    for (ChoiceCombo* combo : {side.server, side.database, side.owners}) {
        combo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        combo->setMinimumContentsLength(3);
        combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    }
    layout->addLayout(grid);
    layout->addWidget(side.objects, 1);
    return box;
}

QWidget* MainWindow::makeTextPanel(int Index) {
    Side& side = sides_[Index];
    auto* box = new QWidget;
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(8, 4, 8, 6);
    layout->setSpacing(4);
    side.text = new TextPaneWidget;
    side.text->setObjectName(QStringLiteral("txtTXProc_%1").arg(Index));
    side.text->setAccessibleName(sideName(Index) + QStringLiteral(" text"));
    side.text->setEmptyText(QStringLiteral("The text of the selected object stands here."));
    auto* title = labelFor(
        Index == SourcePanel ? QStringLiteral("Source te&xt") : QStringLiteral("Target t&ext"),
        side.text, true);
    side.objectName = new ElidedLabel;
    side.objectName->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* copy = smallButton("copy", QStringLiteral("Copy to clipboard"));
    auto* save = smallButton("save", QStringLiteral("Copy to file"));
    connect(copy, &QToolButton::clicked, this, [=, this] { controller_.cmdCopyClip_Click(Index); });
    connect(save, &QToolButton::clicked, this,
            [=, this] { controller_.cmdCopyToFile_Click(Index); });
    copy->setObjectName(QStringLiteral("cmdCopyClip_%1").arg(Index));
    save->setObjectName(QStringLiteral("cmdCopyToFile_%1").arg(Index));
    auto* top = new QHBoxLayout;
    top->addWidget(title);
    top->addSpacing(8);
    top->addWidget(side.objectName, 1);
    top->addWidget(copy);
    top->addWidget(save);
    side.findBar = new FindBar(side.text);
    side.findBar->setObjectName(QStringLiteral("findBar_%1").arg(Index));
    layout->addLayout(top);
    layout->addWidget(side.text, 1);
    layout->addWidget(side.findBar);
    return box;
}

void MainWindow::makeMenus() {
    std::map<CommandMenu, QMenu*> menus;
    std::map<int, QMenu*> submenus;
    for (const CommandEntry& entry : commandTable()) {
        if (entry.menu == CommandMenu::PanePopUp) continue;
        if (entry.menu == CommandMenu::Debug && !globals().gblnDebugMode) continue;
        QMenu*& menu = menus[entry.menu];
        if (!menu) menu = menuBar()->addMenu(QString::fromLatin1(menuCaption(entry.menu)));
        QMenu* parent = entry.parent ? submenus[entry.parent] : menu;
        if (entry.separatorBefore) parent->addSeparator();
        const QString caption = QString::fromLatin1(entry.caption);
        if (entry.isSubmenu) {
            QMenu* submenu = submenus[entry.id] = parent->addMenu(caption);
            submenu->menuAction()->setEnabled(entry.isBuilt);
            actions_[entry.id] = submenu->menuAction();
            continue;
        }
        QAction* action = actions_[entry.id] = parent->addAction(caption);
        action->setEnabled(entry.isBuilt);
        if (*entry.key) action->setShortcut(QKeySequence(QString::fromLatin1(entry.key)));
        if (!entry.isBuilt) action->setStatusTip(QStringLiteral("Not in this version yet."));
        const int id = entry.id;
        connect(action, &QAction::triggered, this, [this, id] { runCommand(id); });
    }
}

void MainWindow::makeToolBar() {
    QToolBar* bar = addToolBar(QStringLiteral("Commands"));
    bar->setObjectName(QStringLiteral("commandBar"));
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->setMovable(false);
    bar->setIconSize(QSize(20, 20));
    // Without its entry in the context menu: nobody could bring it back.
    bar->toggleViewAction()->setVisible(false);
    const auto add = [&](int id, const char* iconName, const QString& text) {
        QAction* action = actions_.at(id);
        action->setIcon(icon(iconName));
        action->setIconText(text);
        bar->addAction(action);
        return bar->widgetForAction(action);
    };
    const auto addOwn = [&](const char* name, const char* iconName, const QString& toolTip,
                            auto slot) {
        QAction* action = bar->addAction(icon(iconName), toolTip);
        action->setObjectName(QLatin1String(name));
        connect(action, &QAction::triggered, this, slot);
        if (auto* button = qobject_cast<QToolButton*>(bar->widgetForAction(action)))
            button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    };
    add(cmd::Connect, "disconnected", QStringLiteral("Connect"))
        ->setObjectName(QStringLiteral("cmdConnect"));
    add(cmd::AddServer, "add-server", QStringLiteral("Add server"));
    bar->addSeparator();
    auto* objects = labelFor(QStringLiteral("&Objects:"), type_);
    objects->setContentsMargins(6, 0, 4, 0);
    bar->addWidget(objects);
    bar->addWidget(type_);
    bar->addSeparator();
    add(cmd::CompareSelected, "compare", QStringLiteral("Compare"))
        ->setObjectName(QStringLiteral("cmdCompare"));
    add(cmd::CompareAll, "compare-all", QStringLiteral("Compare all"))
        ->setObjectName(QStringLiteral("cmdCompareAll"));
    add(cmd::DataPair, "compare-data", QStringLiteral("Compare data"))
        ->setObjectName(QStringLiteral("cmdCompData"));
    bar->addSeparator();
    addOwn("previousDifference", "previous", QStringLiteral("Previous difference (Shift+F8)"),
           [this] { goToDifference(false); });
    addOwn("nextDifference", "next", QStringLiteral("Next difference (F8)"),
           [this] { goToDifference(true); });
    addOwn("findInText", "find", QStringLiteral("Find in the text (Ctrl+F)"),
           [this] { openFindBar(); });
    bar->addSeparator();
    add(cmd::Options, "options", QStringLiteral("Options"));
    add(cmd::HelpIndex, "help", QStringLiteral("Help"))->setObjectName(QStringLiteral("cmdHelp"));
}

void MainWindow::makeStatusBar() {
    status_ = new ElidedLabel;
    status_->setObjectName(QStringLiteral("status"));
    status_->setContentsMargins(6, 0, 0, 0);
    status_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    statusBar()->addWidget(status_, 1);
    for (Side& side : sides_) {
        side.count = new QLabel;
        side.count->setContentsMargins(8, 0, 8, 0);
        statusBar()->addPermanentWidget(side.count);
    }
    QToolButton* shade = smallButton("palette", QStringLiteral("Colours of the window"));
    shade->setObjectName(QStringLiteral("cmdPalette"));
    shade->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(shade);
    const auto add = [&](const QString& text, Appearance appearance) {
        connect(menu->addAction(text), &QAction::triggered, this, [appearance] {
            applyAppearance(appearance);
            storeAppearance(appearance);
        });
    };
    add(QStringLiteral("As the &desktop"), Appearance::System);
    add(QStringLiteral("&Light"), Appearance::Light);
    add(QStringLiteral("Da&rk"), Appearance::Dark);
    shade->setMenu(menu);
    statusBar()->addPermanentWidget(shade);
}

void MainWindow::makeShortcuts() {
    const auto shortcut = [this](const QKeySequence& keys, auto slot) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, slot);
    };
    shortcut(Qt::Key_F6, [this] { focusTypeBox(); });
    shortcut(Qt::Key_F10, [this] { controller_.cmdDbInfo_Click(SourcePanel); });
    shortcut(Qt::Key_F11, [this] { controller_.cmdDbInfo_Click(TargetPanel); });
    shortcut(Qt::Key_F8, [this] { goToDifference(true); });
    shortcut(Qt::SHIFT | Qt::Key_F8, [this] { goToDifference(false); });
    for (const auto keys : {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal})
        shortcut(keys, [this] { setTextZoom(textZoom_ + 1); });
    shortcut(Qt::CTRL | Qt::Key_Minus, [this] { setTextZoom(textZoom_ - 1); });
    shortcut(Qt::CTRL | Qt::Key_0, [this] { setTextZoom(0); });
    shortcut(QKeySequence::Find, [this] { openFindBar(); });
    shortcut(Qt::Key_F3, [this] { sides_[activePane()].findBar->findNext(true); });
    shortcut(Qt::SHIFT | Qt::Key_F3, [this] { sides_[activePane()].findBar->findNext(false); });
    shortcut(Qt::Key_F1, [this] { showHelpPage(QStringLiteral("frmmain"), this); });
}

void MainWindow::connectSide(int Index) {
    Side& side = sides_[Index];
    connect(side.server, &QComboBox::activated, this,
            [=, this] { controller_.cmbServer_Click(Index); });
    connect(side.database, &QComboBox::activated, this,
            [=, this] { controller_.pvlDb_Click(Index); });
    connect(side.owners, &QComboBox::activated, this,
            [=, this] { controller_.cmbOwners_Click(Index); });
    connect(side.objects, &ObjectListView::objectSelected, this,
            [=, this] { controller_.pvlSqlObj_Click(Index); });
    connect(side.objects, &ObjectListView::rowsChanged, this, [this] { showCounts(); });
    connect(side.filterMark, &QToolButton::clicked, this,
            [=, this] { controller_.srtFiltering_Click(Index); });
    side.text->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(side.text, &QWidget::customContextMenuRequested, this,
            [=, this](const QPoint& at) { showPaneMenu(Index, at); });
    connect(side.text, &TextPaneWidget::textReplaced, this, [=, this] {
        alignmentIsOld_ = true;
        verdict_ = {};
        showObjectName(Index);
        tellOfDifferences({});
    });
    connect(side.text, &TextPaneWidget::zoomAsked, this,
            [this](int steps) { setTextZoom(textZoom_ + steps); });
    connect(side.text, &TextPaneWidget::marked, this, [this] { alignmentIsOld_ = true; });
    connect(side.text->verticalScrollBar(), &QScrollBar::valueChanged, this,
            [=, this] { scrollTogether(Index); });
    connect(side.text->horizontalScrollBar(), &QScrollBar::valueChanged, this,
            [=, this] { scrollTogether(Index); });
}

void MainWindow::setTabOrders() {
    QWidget* last = type_;
    for (const Side& side : sides_) {
        for (QWidget* next : std::initializer_list<QWidget*>{side.server, side.database,
                                                             side.owners, side.objects}) {
            setTabOrder(last, next);
            last = next;
        }
    }
    for (const Side& side : sides_) {
        setTabOrder(last, side.text);
        last = side.text;
    }
}

}  // namespace zov::qt
