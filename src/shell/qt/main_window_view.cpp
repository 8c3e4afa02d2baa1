// The main window after it is built: what the controller shows in it, differences,
// finding, scrolling together, and what is kept between runs.
#include "core/mdlMain.h"
#include "core/product.h"
#include "shell/qt/about_dialog.h"
#include "shell/qt/appearance.h"
#include "shell/qt/choice_combo.h"
#include "shell/qt/find_bar.h"
#include "shell/qt/help_window.h"
#include "shell/qt/main_window.h"
#include "shell/qt/object_list_view.h"
#include "shell/qt/pane_printer.h"
#include "shell/qt/text_pane_widget.h"
#include "shell/qt/window_fit.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QScopedValueRollback>
#include <QScreen>
#include <QScrollBar>
#include <QSettings>
#include <QSplitter>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>

namespace zov::qt {
namespace {

namespace cmd = command;

constexpr int SupportTopic = 230;
constexpr int TwipsPerPixel = 15;
constexpr int SmallestZoom = 4, LargestZoom = 30;  // points from the usual size

const QString ZoomKey = QStringLiteral("Window/TextZoom");

std::vector<PaneAlignment::Line> alignmentLines(const TextPaneWidget& pane) {
    std::vector<PaneAlignment::Line> lines;
    const QStringList texts = pane.plainText().split(u'\n');
    const std::vector<quint32> colors = pane.lineColors();
    for (size_t i = 0; i < colors.size(); ++i)
        lines.push_back({colors[i], texts.value(qsizetype(i)).trimmed().isEmpty()});
    return lines;
}

QIcon icon(const char* name) {
    return QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
}

}  // namespace

std::vector<int> MainWindow::selectedRows(int Index) const {
    return sides_[Index].objects->selectedRows();
}

void MainWindow::runCommand(int id, int Index) {
    if (id == cmd::DataPair && QApplication::keyboardModifiers().testFlag(Qt::ShiftModifier))
        controller_.askForDataOptionsOnce();
    controller_.ExecuteAction(id, Index);
    if (id == cmd::CompareSelected) verdict_ = controller_.verdict();
    // Pieces of the texts have no verdict that is the whole texts': only what is marked is told.
    if (id == cmd::HighlightedSections && !alignment().stops().empty())
        verdict_ = {true, false, {}};
    if (id != cmd::CompareSelected && id != cmd::HighlightedSections) return;
    tellOfDifferences(VerdictStatus(verdict_, alignment().stops().size(),
                                    alignment().hasEmptyDifferences(), oneTextIsEmpty()));
}

bool MainWindow::oneTextIsEmpty() const {
    return sides_[SourcePanel].text->lineCount() == 0 || sides_[TargetPanel].text->lineCount() == 0;
}

void MainWindow::tellOfDifferences(const QString& text) {
    // Another word that stands there meanwhile stays.
    if (!text.isEmpty() || statusText() == toldOfDifferences_) setStatusText(text);
    toldOfDifferences_ = text;
}

void MainWindow::setConnectPicture(int picture) {
    QAction* action = actions_.at(cmd::Connect);
    action->setIcon(icon(picture == PictureConnected    ? "connected"
                         : picture == PictureConnecting ? "connecting"
                                                        : "disconnected"));
    action->setToolTip(picture == PictureConnected
                           ? QStringLiteral("Connected - click to connect anew")
                           : QStringLiteral("Connect to the servers"));
    if (picture == PictureConnecting)
        setStatusText(QStringLiteral("Connecting..."));
    else
        setStatusText(action->toolTip() + QStringLiteral("   "));
    showCounts();
}

void MainWindow::setCompareToolTip(const QString& text) {
    actions_.at(cmd::CompareSelected)->setToolTip(text);
}

void MainWindow::setListToolTips(const QString& text) {
    for (Side& side : sides_) side.objects->setToolTip(text);
}

void MainWindow::setFilterText(int Index, const QString& text) {
    sides_[Index].filterText->setText(text);
}

void MainWindow::setFilterMark(int Index, bool visible, const QString& toolTip) {
    sides_[Index].filterMark->setToolTip(toolTip);
    sides_[Index].filterMark->setVisible(visible);
}

void MainWindow::setOwnerControlsVisible(bool visible) {
    for (Side& side : sides_) {
        side.owners->setVisible(visible);
        side.ownersLabel->setVisible(visible);
    }
}

void MainWindow::setStatusText(const QString& text) {
    statusText_ = text;
    status_->setText(StatusMessage(text));
}

void MainWindow::focusTypeBox() {
    type_->setFocus(Qt::ShortcutFocusReason);
}

bool MainWindow::printPane(int Index, const QString& title, const QString& header, bool silent) {
    return printPaneText(*sides_[Index].text, title, header, silent, this);
}

void MainWindow::showHelp(int topic) {
    showHelpPage(topic == SupportTopic ? QStringLiteral("support") : QStringLiteral("index"), this);
}

void MainWindow::showAbout() {
    AboutDialog(this).exec();
}

QAction* MainWindow::action(int commandId) const {
    const auto found = actions_.find(commandId);
    return found == actions_.end() ? nullptr : found->second;
}

void MainWindow::showPaneMenu(int Index, const QPoint& at) {
    if (controller_.Busy()) return;
    QMenu menu(this);
    for (const CommandEntry& entry : commandTable()) {
        if (entry.menu != CommandMenu::PanePopUp || !controller_.isInPaneMenu(entry.id)) continue;
        if (entry.separatorBefore) menu.addSeparator();
        QAction* action = menu.addAction(QString::fromLatin1(entry.caption));
        action->setEnabled(controller_.isOffered(entry.id));
        action->setData(entry.id);
    }
    // The menu is gone before its command runs: a long one must not keep it open.
    const QAction* chosen = menu.exec(sides_[Index].text->viewport()->mapToGlobal(at));
    if (chosen) runCommand(chosen->data().toInt(), Index);
}

void MainWindow::showCounts() {
    const ObjectType type = controller_.selectedType();
    for (const int Index : {SourcePanel, TargetPanel}) {
        const Side& side = sides_[Index];
        const int count = side.objects->rowCount();
        const QString objects = GetObjectTypeName(type, count != 1).toLower();
        if (side.database->text().isEmpty()) {
            side.count->clear();
            const bool isConnected = side.database->count() > 0 || side.server->text().isEmpty();
            side.objects->setEmptyText(
                isConnected ? QStringLiteral("Choose a server and a database above.")
                            : QStringLiteral("Press Connect to read the databases of the server."));
            continue;
        }
        side.count->setText(
            QStringLiteral("%1: %2 %3")
                .arg(Index == SourcePanel ? QStringLiteral("Source") : QStringLiteral("Target"),
                     QLocale(QLocale::English, QLocale::UnitedStates).toString(count), objects));
        // Why there are none isn't known here: a filter, a load that was given up, an error.
        side.objects->setEmptyText(QStringLiteral("No %1 are listed. %2 reads the list anew.")
                                       .arg(objects, Index == SourcePanel
                                                         ? QStringLiteral("F5")
                                                         : QStringLiteral("Shift+F5")));
    }
}

void MainWindow::showObjectName(int Index) {
    const ObjectListView* list = sides_[Index].objects;
    const int row = list->selectedIndex();
    const QString name = row < 0 ? QString() : list->row(row).name;
    sides_[Index].objectName->setText(name);
}

int MainWindow::activePane() const {
    const QWidget* focus = focusWidget();
    const Side& target = sides_[TargetPanel];
    const bool inTarget =
        focus && (focus == target.text || target.findBar->isAncestorOf(focus) ||
                  focus == target.objects || focus == target.server || focus == target.database);
    return inTarget ? TargetPanel : SourcePanel;
}

void MainWindow::openFindBar() {
    sides_[activePane()].findBar->open();
}

const PaneAlignment& MainWindow::alignment() {
    if (!alignmentIsOld_) return alignment_;
    alignmentIsOld_ = false;
    atStop_ = -1;
    const TextPaneWidget* source = sides_[SourcePanel].text;
    const TextPaneWidget* target = sides_[TargetPanel].text;
    alignment_ = source->hasMarks() && target->hasMarks()
                     ? PaneAlignment(alignmentLines(*source), alignmentLines(*target))
                     : PaneAlignment();
    return alignment_;
}

void MainWindow::goToDifference(bool forward) {
    const std::vector<PaneAlignment::Stop>& stops = alignment().stops();
    // Colours of an earlier comparison may stand on texts that count as identical now.
    if (stops.empty() || (verdict_.isGiven && verdict_.identical)) {
        tellOfDifferences(
            NoDifferenceStatus(verdict_, alignment().hasEmptyDifferences(), oneTextIsEmpty()));
        return;
    }
    const int count = int(stops.size());
    const int next = atStop_ < 0 ? (forward ? 0 : count - 1) : atStop_ + (forward ? 1 : -1);
    if (next < 0 || next >= count) {
        tellOfDifferences(QStringLiteral("There is no further difference in this direction."));
        return;
    }
    atStop_ = next;
    const PaneAlignment::Stop& stop = stops[size_t(next)];
    {
        const QScopedValueRollback<bool> bothAreMoved(scrolling_, true);
        sides_[SourcePanel].text->showDifference(stop.sourceLine, stop.sourceEnd);
        sides_[TargetPanel].text->showDifference(stop.targetLine, stop.targetEnd);
    }
    tellOfDifferences(QStringLiteral("Difference %1 of %2").arg(next + 1).arg(count));
}

void MainWindow::scrollTogether(int from) {
    if (scrolling_ || (alignment().isEmpty() && !(verdict_.isGiven && verdict_.identical))) return;
    const QScopedValueRollback<bool> once(scrolling_, true);
    TextPaneWidget* pane = sides_[from].text;
    TextPaneWidget* other = sides_[1 - from].text;
    // Lines aren't wrapped: the scroll bar's value is the first line that is seen.
    other->verticalScrollBar()->setValue(
        alignment_.partnerOf(from, pane->verticalScrollBar()->value()));
    other->horizontalScrollBar()->setValue(pane->horizontalScrollBar()->value());
}

void MainWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (shownOnce_) return;
    shownOnce_ = true;
    // A load may wait long for a server, and the first activation may ask something: both come when
    // the window stands.
    QTimer::singleShot(0, this, [this] {
        controller_.Form_Load();
        if (start_.opensPanels()) openStartPanels(start_, controller_, *panels_);
        controller_.Form_Activate();
        started_ = true;
    });
}

void MainWindow::closeEvent(QCloseEvent* event) {
    // A load that is under way is asked to stop; its loop ends at its next named point.
    globals().gblnStop = true;
    saveLayout();
    closeHelp();
    QMainWindow::closeEvent(event);
}

void MainWindow::setTextZoom(int steps) {
    const int before = std::exchange(textZoom_, std::clamp(steps, -SmallestZoom, LargestZoom));
    if (textZoom_ == before) return;
    for (Side& side : sides_) side.text->setZoom(textZoom_);
    QSettings(windowSettingsFile(), QSettings::IniFormat).setValue(ZoomKey, textZoom_);
}

void MainWindow::restoreLayout() {
    const QRect screen = this->screen()->availableGeometry();
    const bool isSmall = IsDisplay640x480(this->screen()->size().width() * TwipsPerPixel,
                                          this->screen()->size().height() * TwipsPerPixel);
    if (isSmall) layOutForSmallDisplay();
    resize(QSize(1240, 860).boundedTo(screen.size()));
    QSettings settings(windowSettingsFile(), QSettings::IniFormat);
    const auto stored = [&](const char* key) {
        return settings.value(QStringLiteral("Window/") + QLatin1String(key)).toByteArray();
    };
    restoreGeometry(stored("Geometry"));
    restoreState(stored("State"));
    splitter_->restoreState(stored("Splitter"));
    tops_->restoreState(stored("Panels"));
    texts_->restoreState(stored("Panels"));
    for (QSplitter* splitter : {splitter_, tops_, texts_}) splitter->setChildrenCollapsible(false);
    // The sizes may have been kept from a larger display.
    if (isSmall) resize(screen.size());
    fitToScreen(*this);
    setTextZoom(settings.value(ZoomKey).toInt());
}

// A display of 640 by 480: the commands as pictures alone, and the window fills it.
void MainWindow::layOutForSmallDisplay() {
    for (QToolBar* bar : findChildren<QToolBar*>()) bar->setToolButtonStyle(Qt::ToolButtonIconOnly);
}

void MainWindow::saveLayout() {
    QSettings settings(windowSettingsFile(), QSettings::IniFormat);
    settings.setValue(QStringLiteral("Window/Geometry"), saveGeometry());
    settings.setValue(QStringLiteral("Window/State"), saveState());
    settings.setValue(QStringLiteral("Window/Splitter"), splitter_->saveState());
    settings.setValue(QStringLiteral("Window/Panels"), tops_->saveState());
}

}  // namespace zov::qt
