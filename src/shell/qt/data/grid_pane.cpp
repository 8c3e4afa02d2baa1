#include "shell/qt/data/grid_pane.h"

#include "shell/qt/mark_colors.h"
#include "shell/shell.h"

#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QShortcut>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QToolButton>

#include <set>

namespace zov::qt {
namespace {

// The grid's widths are told in twips; a pixel has fifteen at the usual resolution.
constexpr int NumberColumnPixels = 540 / 15;
constexpr int DataColumnPixels = 1440 / 15;

QIcon iconNamed(const char* name) {
    return QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
}

/// Marks selected cells by a tint below their text and a frame: the colours of the cells say what
/// differs.
class CellDelegate : public QStyledItemDelegate {
 public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        if (!(option.state & QStyle::State_Selected)) return;
        painter->save();
        // The cell that the keys move from has the thicker frame.
        const bool isCurrent = option.state & QStyle::State_HasFocus;
        painter->setPen(QPen(option.palette.color(QPalette::Highlight), isCurrent ? 2 : 1));
        painter->drawRect(isCurrent ? option.rect.adjusted(1, 1, -1, -1)
                                    : option.rect.adjusted(0, 0, -1, -1));
        painter->restore();
    }

 protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (!(option->state & QStyle::State_Selected)) return;
        option->state &= ~(QStyle::State_Selected | QStyle::State_HasFocus);
        const QColor ground = option->backgroundBrush.style() == Qt::NoBrush
                                  ? option->palette.color(QPalette::Base)
                                  : option->backgroundBrush.color();
        const QColor seen = selectedGround(ground, option->palette);
        option->backgroundBrush = seen;
        option->palette.setColor(QPalette::Text,
                                 readableOn(seen, option->palette.color(QPalette::Text)));
    }
};

}  // namespace

GridPane::GridPane(const GridCells& grid, bool withDifferences, QWidget* parent)
    : QWidget(parent), grid_(grid) {
    model_ = new GridModel(grid, this);
    view_ = new QTableView;
    view_->setObjectName(QStringLiteral("VSFlexGrid1"));
    view_->setAccessibleName(QStringLiteral("Data"));
    view_->setModel(model_);
    view_->setItemDelegate(new CellDelegate(view_));
    view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    view_->setTabKeyNavigation(false);
    view_->setWordWrap(false);
    view_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    view_->verticalHeader()->hide();
    view_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    view_->verticalHeader()->setDefaultSectionSize(view_->fontMetrics().height() + 6);
    view_->horizontalHeader()->setHighlightSections(false);
    view_->setContextMenuPolicy(Qt::ActionsContextMenu);

    findBar_ = new QWidget;
    findText_ = new FindField;
    findText_->setPlaceholderText(QStringLiteral("Find in the data"));
    findNote_ = new QLabel;
    findNote_->setObjectName(QStringLiteral("findNote"));
    auto* bar = new QHBoxLayout(findBar_);
    bar->setContentsMargins(0, 2, 0, 0);
    bar->addWidget(findText_, 1);
    bar->addWidget(findNote_);
    const auto button = [&](const char* icon, const QString& toolTip, auto slot) {
        auto* made = new QToolButton;
        made->setIcon(iconNamed(icon));
        made->setToolTip(toolTip);
        made->setAccessibleName(toolTip);
        made->setAutoRaise(true);
        connect(made, &QToolButton::clicked, this, slot);
        bar->addWidget(made);
    };
    button("previous", QStringLiteral("Previous place (Shift+F3)"), [this] { findNext(false); });
    button("next", QStringLiteral("Next place (F3)"), [this] { findNext(true); });
    button("close", QStringLiteral("Close (Esc)"), [this] { closeFind(); });
    connect(findText_, &QLineEdit::textChanged, this, [this] { tell({}); });
    connect(findText_, &FindField::searched, this, [this](bool forward) { findNext(forward); });
    findBar_->hide();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(view_, 1);
    layout->addWidget(findBar_);
    setFocusProxy(view_);

    connect(makeAction("copy", QStringLiteral("Copy"), QKeySequence::Copy), &QAction::triggered,
            this, [this] { copySelection(); });
    connect(makeAction("find", QStringLiteral("Find ..."), QKeySequence::Find), &QAction::triggered,
            this, [this] { openFind(); });
    connect(makeAction("next", QStringLiteral("Find Next"), QKeySequence(Qt::Key_F3)),
            &QAction::triggered, this, [this] { findNext(true); });
    connect(makeAction("previous", QStringLiteral("Find Previous"),
                       QKeySequence(Qt::SHIFT | Qt::Key_F3)),
            &QAction::triggered, this, [this] { findNext(false); });
    if (withDifferences) {
        nextDifference_ =
            makeAction("next", QStringLiteral("Next Difference"), QKeySequence(Qt::Key_F8));
        previousDifference_ = makeAction("previous", QStringLiteral("Previous Difference"),
                                         QKeySequence(Qt::SHIFT | Qt::Key_F8));
        connect(nextDifference_, &QAction::triggered, this, [this] { goToDifference(true); });
        connect(previousDifference_, &QAction::triggered, this, [this] { goToDifference(false); });
    }
    model_->setPalette(palette());
    readAnew();
}

QAction* GridPane::makeAction(const char* icon, const QString& text, const QKeySequence& keys) {
    auto* action = new QAction(iconNamed(icon), text, this);
    action->setShortcut(keys);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    addAction(action);
    view_->addAction(action);
    return action;
}

void GridPane::addMenuAction(QAction* action) {
    auto* line = new QAction(this);
    line->setSeparator(true);
    view_->addAction(line);
    view_->addAction(action);
}

void GridPane::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) model_->setPalette(palette());
}

void GridPane::setColumnWidths() {
    for (int column = 1; column < model_->columnCount(); ++column)
        view_->setColumnWidth(column, DataColumnPixels);
}

void GridPane::readAnew() {
    const GridPosition current = currentCell();
    model_->readAnew();
    if (model_->columnCount() != shownColumns_) {
        shownColumns_ = model_->columnCount();
        setColumnWidths();
    }
    if (model_->columnCount() > 0 && model_->rowCount() != shownRows_) {
        // As wide as the largest number needs it.
        const QString largest(QString::number(model_->rowCount()).size() + 2, u'8');
        view_->setColumnWidth(
            0, std::max(NumberColumnPixels, view_->fontMetrics().horizontalAdvance(largest)));
    }
    shownRows_ = model_->rowCount();
    if (!isLoading && shownRows_ > 0 && !view_->currentIndex().isValid())
        goTo(current.row > 0 ? current : GridPosition{1, shownColumns_ > 1 ? 1 : 0});
}

void GridPane::scrollToRow(int row) {
    view_->scrollTo(model_->index(row - 1, std::max(view_->columnAt(0), 0)),
                    QAbstractItemView::PositionAtTop);
}

GridPosition GridPane::currentCell() const {
    const QModelIndex index = view_->currentIndex();
    return index.isValid() ? GridPosition{index.row() + 1, index.column()} : GridPosition{};
}

void GridPane::goTo(GridPosition cell) {
    const QModelIndex index = model_->index(cell.row - 1, cell.column);
    if (!index.isValid()) return;
    view_->setCurrentIndex(index);
    view_->scrollTo(index);
}

void GridPane::copySelection() {
    // The selection is a list of rectangles, which may overlap or be parted.
    std::set<int> rows, columns;
    for (const QItemSelectionRange& range : view_->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) rows.insert(rows.end(), row + 1);
        for (int column = range.left(); column <= range.right(); ++column) columns.insert(column);
    }
    if (rows.empty()) return;
    const WaitPointer wait;
    QString text = cellsAsText(grid_, {rows.begin(), rows.end()}, {columns.begin(), columns.end()});
    // One cell alone is pasted into a line.
    if (rows.size() == 1 && columns.size() == 1) text = grid_.text(*rows.begin(), *columns.begin());
    shell().setClipboardText(text);
}

void GridPane::openFind() {
    findBar_->show();
    findText_->setFocus(Qt::ShortcutFocusReason);
    findText_->selectAll();
}

bool GridPane::closeFind() {
    if (!findBar_->isVisible()) return false;
    findBar_->hide();
    view_->setFocus();
    return true;
}

void GridPane::tell(const QString& note) {
    findNote_->setText(note);
}

void GridPane::findNext(bool forward) {
    if (!findBar_->isVisible() || findText_->text().isEmpty()) return openFind();
    const WaitPointer wait;
    tell(QStringLiteral("searching"));
    QElapsedTimer sincePaint;
    sincePaint.start();
    const GridPosition from = currentCell();
    const GridPosition found =
        findText(grid_, findText_->text(), from, forward, Qt::CaseInsensitive, [&] {
            if (sincePaint.elapsed() > 100) {
                QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
                sincePaint.restart();
            }
            return true;
        });
    if (found.row < 1) return tell(QStringLiteral("not found"));
    const bool around =
        forward ? std::pair(found.row, found.column) <= std::pair(from.row, from.column)
                : std::pair(found.row, found.column) >= std::pair(from.row, from.column);
    tell(!around || from.row < 1 ? QString()
         : found == from         ? QStringLiteral("the only place")
         : forward               ? QStringLiteral("from the top")
                                 : QStringLiteral("from the end"));
    goTo(found);
}

void GridPane::goToDifference(bool forward) {
    const GridPosition next = nextDifference(grid_, currentCell().row, forward);
    if (next.row > 0)
        goTo(next);
    else
        QApplication::beep();
}

}  // namespace zov::qt
