#include "shell/qt/main_window.h"

#include "core/globals.h"
#include "core/product.h"
#include "scripting/modNew.h"
#include "shell/qt/choice_combo.h"
#include "shell/qt/help_window.h"
#include "shell/qt/object_list_view.h"
#include "shell/qt/pane_printer.h"
#include "shell/qt/text_pane_widget.h"

#include <QAction>
#include <QCloseEvent>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QScrollBar>
#include <QSettings>
#include <QShortcut>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
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

QToolButton* smallButton(const char* iconName, const QString& toolTip, QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setIcon(icon(iconName));
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

/// Sizes and the splitter are the window's own affair, beside the program's settings.
QSettings layoutSettings() {
    return QSettings(globals().gstrUserDataFolder + QStringLiteral("zov_window.ini"),
                     QSettings::IniFormat);
}

}  // namespace

MainWindow::MainWindow(MainScreens& screens, QWidget* parent)
    : QMainWindow(parent), controller_(*this, screens) {
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(product::Name);
    setWindowIcon(icon("zovrand"));

    auto* tops = new QSplitter(Qt::Horizontal);
    auto* texts = new QSplitter(Qt::Horizontal);
    type_ = new ChoiceCombo;
    type_->setObjectName(QStringLiteral("cmbType"));
    type_->setAccessibleName(QStringLiteral("Objects type"));
    for (const int Index : {SourcePanel, TargetPanel}) tops->addWidget(makeTopPanel(Index));
    for (const int Index : {SourcePanel, TargetPanel}) texts->addWidget(makeTextPanel(Index));
    tops->setChildrenCollapsible(false);
    texts->setChildrenCollapsible(false);
    splitter_ = new QSplitter(Qt::Vertical);
    splitter_->addWidget(tops);
    splitter_->addWidget(texts);
    splitter_->setStretchFactor(0, 2);
    splitter_->setStretchFactor(1, 3);
    splitter_->setChildrenCollapsible(false);
    setCentralWidget(splitter_);
    // Both rows of panels share one vertical border.
    connect(tops, &QSplitter::splitterMoved, this, [=] { texts->setSizes(tops->sizes()); });
    connect(texts, &QSplitter::splitterMoved, this, [=] { tops->setSizes(texts->sizes()); });

    for (const int Index : {SourcePanel, TargetPanel}) {
        Side& side = sides_[Index];
        panel_[Index] = std::make_unique<Panel>(
            Panel{*side.server, *side.database, *side.objects, *side.text, *side.owners});
    }
    panels_ = std::make_unique<Panels>(Panels{*panel_[0], *panel_[1], *type_, objectTexts()});

    status_ = new QLabel;
    statusBar()->addWidget(status_, 1);
    makeMenus();
    makeToolBar();
    for (const int Index : {SourcePanel, TargetPanel}) connectSide(Index);
    connect(type_, &QComboBox::activated, this, [this] { controller_.cmbType_Click(); });

    const auto shortcut = [this](const QKeySequence& keys, auto slot) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, slot);
    };
    shortcut(Qt::Key_F6, [this] { focusTypeBox(); });
    shortcut(Qt::Key_F8, [this] { goToDifference(true); });
    shortcut(Qt::SHIFT | Qt::Key_F8, [this] { goToDifference(false); });
    shortcut(QKeySequence::Find, [this] { openFindBar(); });
    shortcut(Qt::Key_F1, [] { showHelpPage(QStringLiteral("frmmain"), nullptr); });
    restoreLayout();
}

MainWindow::~MainWindow() = default;

QWidget* MainWindow::makeTopPanel(int Index) {
    Side& side = sides_[Index];
    auto* box = new QWidget;
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(6, 6, 6, 3);
    const auto named = [&](const char* name, QWidget* widget, const QString& accessible) {
        widget->setObjectName(QStringLiteral("%1_%2").arg(QLatin1String(name)).arg(Index));
        widget->setAccessibleName(sideName(Index) + u' ' + accessible);
    };

    side.header = new QLabel(QStringLiteral("<b>%1</b>").arg(sideName(Index)));
    side.filterMark = smallButton("filter", QStringLiteral("Click to remove Schema filter"), box);
    side.filterMark->hide();
    auto* top = new QHBoxLayout;
    top->addWidget(side.header, 1);
    top->addWidget(side.filterMark);
    layout->addLayout(top);

    side.server = new ChoiceCombo;
    side.database = new ChoiceCombo;
    side.owners = new ChoiceCombo;
    named("cmbServer", side.server, QStringLiteral("server"));
    named("pvlDb", side.database, QStringLiteral("database"));
    named("cmbOwners", side.owners, QStringLiteral("owner"));
    named("srtFiltering", side.filterMark, QStringLiteral("filter"));
    for (ChoiceCombo* combo : {side.server, side.database, side.owners})
        combo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    auto* form = new QFormLayout;
    const bool isSource = Index == SourcePanel;
    form->addRow(isSource ? QStringLiteral("Serve&r:") : QStringLiteral("Ser&ver:"), side.server);
    form->addRow(isSource ? QStringLiteral("Data&base:") : QStringLiteral("Databa&se:"),
                 side.database);
    side.ownersRow = new QWidget;
    auto* owners = new QHBoxLayout(side.ownersRow);
    owners->setContentsMargins(0, 0, 0, 0);
    owners->addWidget(new QLabel(QStringLiteral("Owner:")));
    owners->addWidget(side.owners, 1);
    layout->addLayout(form);
    layout->addWidget(side.ownersRow);

    side.objects = new ObjectListView;
    named("pvlSqlObj", side.objects, QStringLiteral("objects"));
    auto* buttons = new QHBoxLayout;
    auto* schema =
        smallButton("filter", QStringLiteral("Filter %1 by schema").arg(sideName(Index)), box);
    auto* owner =
        smallButton("owner", QStringLiteral("Filter %1 by owner").arg(sideName(Index)), box);
    auto* find =
        smallButton("find", QStringLiteral("Find an object in %1").arg(sideName(Index)), box);
    auto* refresh = smallButton("refresh", QStringLiteral("Refresh %1").arg(sideName(Index)), box);
    named("cmdFilterBySchema", schema, QStringLiteral("filter by schema"));
    named("cmdFilterByOwner", owner, QStringLiteral("filter by owner"));
    named("cmdFind", find, QStringLiteral("find object"));
    connect(schema, &QToolButton::clicked, this,
            [=, this] { controller_.cmdFilter_Click(Index, FilterType::Schema); });
    connect(owner, &QToolButton::clicked, this,
            [=, this] { controller_.cmdFilter_Click(Index, FilterType::Owner); });
    connect(find, &QToolButton::clicked, this, [=, this] {
        controller_.ExecuteAction(isSource ? cmd::FindInSource : cmd::FindInTarget);
    });
    connect(refresh, &QToolButton::clicked, this, [=, this] {
        controller_.ExecuteAction(isSource ? cmd::RefreshSource : cmd::RefreshTarget);
    });
    for (QToolButton* button : {schema, owner, find, refresh}) buttons->addWidget(button);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    layout->addWidget(side.objects, 1);
    return box;
}

QWidget* MainWindow::makeTextPanel(int Index) {
    Side& side = sides_[Index];
    auto* box = new QWidget;
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(6, 3, 6, 6);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(new QLabel(sideName(Index) + QStringLiteral(" text")));
    buttons->addStretch(1);
    auto* copy = smallButton("copy", QStringLiteral("Copy to clipboard"), box);
    auto* save = smallButton("save", QStringLiteral("Copy to file"), box);
    connect(copy, &QToolButton::clicked, this, [=, this] { controller_.cmdCopyClip_Click(Index); });
    connect(save, &QToolButton::clicked, this,
            [=, this] { controller_.cmdCopyToFile_Click(Index); });
    copy->setObjectName(QStringLiteral("cmdCopyClip_%1").arg(Index));
    save->setObjectName(QStringLiteral("cmdCopyToFile_%1").arg(Index));
    buttons->addWidget(copy);
    buttons->addWidget(save);
    layout->addLayout(buttons);
    side.text = new TextPaneWidget;
    side.text->setObjectName(QStringLiteral("txtTXProc_%1").arg(Index));
    side.text->setAccessibleName(sideName(Index) + QStringLiteral(" text"));
    layout->addWidget(side.text, 1);
    layout->addWidget(makeFindBar(Index));
    return box;
}

QWidget* MainWindow::makeFindBar(int Index) {
    Side& side = sides_[Index];
    side.findBar = new QWidget;
    auto* layout = new QHBoxLayout(side.findBar);
    layout->setContentsMargins(0, 0, 0, 0);
    side.findText = new QLineEdit;
    side.findText->setObjectName(QStringLiteral("findText_%1").arg(Index));
    side.findText->setPlaceholderText(QStringLiteral("Find in the text"));
    auto* previous = smallButton("previous", QStringLiteral("Find previous"), side.findBar);
    auto* next = smallButton("next", QStringLiteral("Find next"), side.findBar);
    layout->addWidget(side.findText, 1);
    layout->addWidget(previous);
    layout->addWidget(next);
    connect(side.findText, &QLineEdit::returnPressed, this, [=, this] { findInPane(Index, true); });
    connect(next, &QToolButton::clicked, this, [=, this] { findInPane(Index, true); });
    connect(previous, &QToolButton::clicked, this, [=, this] { findInPane(Index, false); });
    auto* escape =
        new QShortcut(Qt::Key_Escape, side.findText, nullptr, nullptr, Qt::WidgetShortcut);
    connect(escape, &QShortcut::activated, this, [=, this] {
        sides_[Index].findBar->hide();
        sides_[Index].text->QPlainTextEdit::setFocus();
    });
    side.findBar->hide();
    return side.findBar;
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
        connect(action, &QAction::triggered, this, [this, id] { controller_.ExecuteAction(id); });
    }
}

void MainWindow::makeToolBar() {
    QToolBar* bar = addToolBar(QStringLiteral("Commands"));
    bar->setObjectName(QStringLiteral("commandBar"));
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const auto add = [&](int id, const char* iconName, const QString& text) {
        QAction* action = actions_.at(id);
        action->setIcon(icon(iconName));
        action->setIconText(text);
        bar->addAction(action);
    };
    add(cmd::Connect, "disconnected", QStringLiteral("Connect"));
    bar->addSeparator();
    bar->addWidget(new QLabel(QStringLiteral(" Objects: ")));
    bar->addWidget(type_);
    bar->addSeparator();
    add(cmd::CompareSelected, "compare", QStringLiteral("Compare"));
    add(cmd::CompareAll, "compare-all", QStringLiteral("Compare all"));
    const auto addDifference = [&](const char* iconName, const QString& toolTip, bool forward) {
        QAction* action = bar->addAction(icon(iconName), toolTip);
        action->setToolTip(toolTip);
        connect(action, &QAction::triggered, this, [=, this] { goToDifference(forward); });
        if (auto* button = qobject_cast<QToolButton*>(bar->widgetForAction(action)))
            button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    };
    addDifference("previous", QStringLiteral("Previous difference (Shift+F8)"), false);
    addDifference("next", QStringLiteral("Next difference (F8)"), true);
    bar->addSeparator();
    add(cmd::Options, "options", QStringLiteral("Options"));
    add(cmd::HelpIndex, "help", QStringLiteral("Help"));
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
    connect(side.filterMark, &QToolButton::clicked, this,
            [=, this] { controller_.srtFiltering_Click(Index); });
    side.text->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(side.text, &QWidget::customContextMenuRequested, this,
            [=, this](const QPoint& at) { showPaneMenu(Index, at); });
    connect(side.text->verticalScrollBar(), &QScrollBar::valueChanged, this,
            [=, this] { scrollTogether(Index); });
    connect(side.text->horizontalScrollBar(), &QScrollBar::valueChanged, this,
            [=, this] { scrollTogether(Index); });
}

void MainWindow::showPaneMenu(int Index, const QPoint& at) {
    if (controller_.Busy()) return;
    QMenu menu(this);
    for (const CommandEntry& entry : commandTable()) {
        if (entry.menu != CommandMenu::PanePopUp) continue;
        const ObjectType type = controller_.selectedType();
        if (entry.id == cmd::IgnoreColumns && type != ObjectType::Table) continue;
        if (entry.id == cmd::References && type != ObjectType::Procedure &&
            type != ObjectType::Function && type != ObjectType::View)
            continue;
        if (entry.separatorBefore) menu.addSeparator();
        QAction* action = menu.addAction(QString::fromLatin1(entry.caption));
        action->setEnabled(controller_.isOffered(entry.id));
        const int id = entry.id;
        connect(action, &QAction::triggered, this,
                [=, this] { controller_.ExecuteAction(id, Index); });
    }
    menu.exec(sides_[Index].text->viewport()->mapToGlobal(at));
}

void MainWindow::goToDifference(bool forward) {
    const int Index = sides_[TargetPanel].text->hasFocus() ? TargetPanel : SourcePanel;
    for (const int tried : {Index, 1 - Index}) {
        if (sides_[tried].text->goToDifference(forward)) {
            setStatusText({});
            return;
        }
    }
    setStatusText(sides_[SourcePanel].text->hasMarks()
                      ? QStringLiteral("There is no further difference in this direction.")
                      : QStringLiteral("Compare two objects first (F7)."));
}

void MainWindow::openFindBar() {
    const int Index = sides_[TargetPanel].text->hasFocus() ? TargetPanel : SourcePanel;
    sides_[Index].findBar->show();
    sides_[Index].findText->setFocus();
    sides_[Index].findText->selectAll();
}

void MainWindow::findInPane(int Index, bool forward) {
    TextPaneWidget* pane = sides_[Index].text;
    const QString wanted = sides_[Index].findText->text();
    const QTextDocument::FindFlags flags =
        forward ? QTextDocument::FindFlags() : QTextDocument::FindBackward;
    if (wanted.isEmpty() || pane->find(wanted, flags)) return;
    pane->moveCursor(forward ? QTextCursor::Start : QTextCursor::End);
    setStatusText(pane->find(wanted, flags)
                      ? QString()
                      : QStringLiteral("\"%1\" isn't in the text.").arg(wanted));
}

void MainWindow::scrollTogether(int from) {
    if (scrolling_ || !sides_[SourcePanel].text->hasMarks()) return;
    scrolling_ = true;
    TextPaneWidget* other = sides_[1 - from].text;
    other->verticalScrollBar()->setValue(sides_[from].text->verticalScrollBar()->value());
    other->horizontalScrollBar()->setValue(sides_[from].text->horizontalScrollBar()->value());
    scrolling_ = false;
}

void MainWindow::setConnectPicture(int picture) {
    QAction* action = actions_.at(cmd::Connect);
    action->setIcon(icon(picture == PictureConnected    ? "connected"
                         : picture == PictureConnecting ? "connecting"
                                                        : "disconnected"));
    action->setToolTip(picture == PictureConnected
                           ? QStringLiteral("Connected - click to connect anew")
                           : QStringLiteral("Connect to the servers"));
}

void MainWindow::setCompareToolTip(const QString& text) {
    actions_.at(cmd::CompareSelected)->setToolTip(text);
}

void MainWindow::setListToolTips(const QString& text) {
    for (Side& side : sides_) side.objects->setToolTip(text);
}

void MainWindow::setFilterText(int Index, const QString& text) {
    sides_[Index].header->setText(
        QStringLiteral("<b>%1</b> %2").arg(sideName(Index), text.toHtmlEscaped()));
}

void MainWindow::setFilterMark(int Index, bool visible, const QString& toolTip) {
    sides_[Index].filterMark->setToolTip(toolTip);
    sides_[Index].filterMark->setVisible(visible);
}

void MainWindow::setOwnerControlsVisible(bool visible) {
    for (Side& side : sides_) side.ownersRow->setVisible(visible);
}

void MainWindow::setStatusText(const QString& text) {
    status_->setText(text);
}

void MainWindow::focusTypeBox() {
    type_->setFocus();
}

bool MainWindow::printPane(int Index, const QString& title, const QString& header) {
    return printPaneText(*sides_[Index].text, title, header, this);
}

void MainWindow::showHelp(int topic) {
    showHelpPage(topic == 230 ? QStringLiteral("support") : QStringLiteral("index"), this);
}

void MainWindow::showAbout() {
    QMessageBox::about(
        this, QStringLiteral("About %1").arg(product::Name),
        QStringLiteral("<h3>%1 %2</h3><p>Build %3</p><p>Tells two SQL Server databases apart: "
                       "their objects and their rows.</p><p>%4</p>")
            .arg(product::Name, ProgramVersionText())
            .arg(ProgramBuildNumber)
            .arg(product::Company));
}

QAction* MainWindow::action(int commandId) const {
    const auto found = actions_.find(commandId);
    return found == actions_.end() ? nullptr : found->second;
}

void MainWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (shownOnce_) return;
    shownOnce_ = true;
    // The first activation comes when the window stands.
    QTimer::singleShot(0, this, [this] { controller_.Form_Activate(); });
}

void MainWindow::closeEvent(QCloseEvent* event) {
    // A load that is under way is asked to stop; its loop ends at its next named point.
    globals().gblnStop = true;
    saveLayout();
    QMainWindow::closeEvent(event);
}

void MainWindow::restoreLayout() {
    resize(1180, 820);
    QSettings settings = layoutSettings();
    restoreGeometry(settings.value(QStringLiteral("Window/Geometry")).toByteArray());
    restoreState(settings.value(QStringLiteral("Window/State")).toByteArray());
    splitter_->restoreState(settings.value(QStringLiteral("Window/Splitter")).toByteArray());
}

void MainWindow::saveLayout() {
    QSettings settings = layoutSettings();
    settings.setValue(QStringLiteral("Window/Geometry"), saveGeometry());
    settings.setValue(QStringLiteral("Window/State"), saveState());
    settings.setValue(QStringLiteral("Window/Splitter"), splitter_->saveState());
}

}  // namespace zov::qt
