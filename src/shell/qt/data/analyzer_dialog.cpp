#include "shell/qt/data/analyzer_dialog.h"

#include "shell/qt/mark_colors.h"
#include "shell/qt/pane_printer.h"
#include "shell/qt/print_preview.h"
#include "shell/shell.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QStandardItemModel>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>

namespace zov::qt {
namespace {

constexpr qint64 PaintMilliseconds = 30;
constexpr int FirstValueColumn = 3;
constexpr qsizetype ShownCharacters = 400;
enum Roles { SortRole = Qt::UserRole, ShareRole, TextRole };

bool isCountColumn(int column) {
    return column > FirstValueColumn && column % 2 == 0;
}

QLabel* plainLabel(const QString& text = {}) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QString oneLine(QString text) {
    return text.replace(u'\r', u' ')
        .replace(u'\n', u' ')
        .replace(u'\t', u' ')
        .left(ShownCharacters);
}

/// A count with a bar for its share of all rows along the cell's lower edge.
class ShareDelegate : public QStyledItemDelegate {
 public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, option, index);
        const QVariant share = index.data(ShareRole);
        if (!share.isValid()) return;
        constexpr int Height = 3;
        const QRect cell = option.rect.adjusted(2, 0, -2, -1);
        const int width = std::max(1, int(cell.width() * share.toDouble()));
        QColor color =
            option.palette.color(option.state & QStyle::State_Selected ? QPalette::HighlightedText
                                                                       : QPalette::Highlight);
        painter->fillRect(QRect(cell.left(), cell.bottom() - Height + 1, width, Height), color);
    }
};

}  // namespace

AnalyzerDialog::AnalyzerDialog(frmDataAnalyze& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(makeHead());
    layout->addWidget(makeTable(), 1);
    layout->addWidget(makeProgress());
    layout->addWidget(makeButtons());
    resize(940, 620);
    const auto key = [this](const QKeySequence& keys, auto slot) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, slot);
    };
    key(Qt::Key_F5, [this] { start_->click(); });
    key(Qt::Key_F6, [this] { stop_->click(); });
    auto* copy = new QShortcut(QKeySequence::Copy, table_);
    copy->setContext(Qt::WidgetShortcut);
    connect(copy, &QShortcut::activated, this,
            [this] { shell().setClipboardText(selectionAsText()); });
    sincePaint_.start();
    start_->setFocus();
}

QWidget* AnalyzerDialog::makeHead() {
    auto* head = new QWidget;
    auto* grid = new QGridLayout(head);
    grid->setContentsMargins(0, 0, 0, 0);
    auto* table = plainLabel(screen_.lblTableName);
    auto* count = plainLabel(screen_.lblGen_3);
    records_ = new QLineEdit(screen_.fedRecsToAnalyze);
    records_->setMaximumWidth(160);
    columns_ = plainLabel();
    ignored_ = plainLabel();
    ignore_ = new QPushButton(QStringLiteral("I&gnore..."));
    ignore_->setToolTip(QStringLiteral("Specify the columns to be ignored"));
    auto* toAnalyze = new QLabel(QStringLiteral("Records to be anal&yzed:"));
    toAnalyze->setBuddy(records_);
    grid->addWidget(table, 0, 0, 1, 5);
    grid->addWidget(new QLabel(QStringLiteral("Records:")), 1, 0);
    grid->addWidget(count, 1, 1);
    grid->addWidget(toAnalyze, 1, 2);
    grid->addWidget(records_, 1, 3);
    grid->addWidget(new QLabel(QStringLiteral("Columns:")), 2, 0);
    grid->addWidget(columns_, 2, 1);
    grid->addWidget(new QLabel(QStringLiteral("Ignore Columns:")), 2, 2);
    auto* ignoredRow = new QHBoxLayout;
    ignoredRow->addWidget(ignored_);
    ignoredRow->addWidget(ignore_);
    ignoredRow->addStretch(1);
    grid->addLayout(ignoredRow, 2, 3);
    auto* group = new QGroupBox(QStringLiteral("Find data used in columns"));
    auto* choices = new QVBoxLayout(group);
    const char* const captions[] = {"&Most Frequently", "&Least Frequently"};
    for (const int i : {0, 1}) {
        frequency_[i] = new QRadioButton(QString::fromLatin1(captions[i]));
        name(QStringLiteral("rdbFrequency_%1").arg(i), frequency_[i]);
        choices->addWidget(frequency_[i]);
        connect(frequency_[i], &QRadioButton::clicked, this,
                [this, i] { screen_.rdbFrequency = i; });
    }
    anySize_ = new QCheckBox(QStringLiteral("&Analyze columns of any size"));
    anySize_->setToolTip(QStringLiteral(
        "Ranks columns of more than 32,767 distinct values too, and orders every column exactly"));
    choices->addWidget(anySize_);
    grid->addWidget(group, 0, 5, 3, 1);
    grid->setColumnStretch(4, 1);
    auto* help = plainLabel(frmDataAnalyze::helpLine(0) + u'\n' + frmDataAnalyze::helpLine(1) +
                            u' ' + frmDataAnalyze::helpLine(2));
    help->setWordWrap(true);
    grid->addWidget(help, 3, 0, 1, 6);
    name(QStringLiteral("lblTableName"), table);
    name(QStringLiteral("lblGen_3"), count);
    name(QStringLiteral("fedRecsToAnalyze"), records_);
    name(QStringLiteral("btnIgnoreColumns"), ignore_);
    name(QStringLiteral("chkAnySize"), anySize_);
    connect(records_, &QLineEdit::textEdited, this,
            [this](const QString& text) { screen_.fedRecsToAnalyze = text; });
    connect(ignore_, &QPushButton::clicked, this, [this] { screen_.btnIgnoreColumns_Click(); });
    connect(anySize_, &QCheckBox::clicked, this, [this](bool on) { screen_.chkAnySize = on; });
    return head;
}

QWidget* AnalyzerDialog::makeTable() {
    model_ = new QStandardItemModel(this);
    QStringList captions;
    for (const GridReportColumn& column : screen_.rpcReport.columns) captions += column.caption;
    model_->setHorizontalHeaderLabels(captions);
    model_->setSortRole(SortRole);
    table_ = new QTableView;
    table_->setModel(model_);
    table_->setItemDelegate(new ShareDelegate(table_));
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setSortingEnabled(true);
    table_->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    table_->verticalHeader()->hide();
    table_->setWordWrap(false);
    table_->setAccessibleName(QStringLiteral("Values of the columns"));
    for (int column = 0; column < model_->columnCount(); ++column)
        table_->setColumnWidth(column, isCountColumn(column)
                                           ? 70
                                           : int(screen_.rpcReport.columns[size_t(column)].width));
    name(QStringLiteral("rpcReport"), table_);
    return table_;
}

QWidget* AnalyzerDialog::makeProgress() {
    progress_ = new QWidget;
    auto* grid = new QGridLayout(progress_);
    grid->setContentsMargins(0, 0, 0, 0);
    columnsBar_ = new QProgressBar;
    rowsBar_ = new QProgressBar;
    currentColumn_ = plainLabel();
    currentColumn_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    currentRecord_ = plainLabel();
    time_ = plainLabel();
    grid->addWidget(new QLabel(QStringLiteral("Current column:")), 0, 0);
    grid->addWidget(currentColumn_, 0, 1);
    grid->addWidget(columnsBar_, 0, 2);
    grid->addWidget(new QLabel(QStringLiteral("Current record:")), 1, 0);
    grid->addWidget(currentRecord_, 1, 1);
    grid->addWidget(rowsBar_, 1, 2);
    grid->addWidget(new QLabel(QStringLiteral("Time elapsed:")), 0, 3);
    grid->addWidget(time_, 0, 4);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(2, 2);
    grid->setColumnMinimumWidth(4, 70);
    name(QStringLiteral("prbColumns"), columnsBar_);
    name(QStringLiteral("prbRows"), rowsBar_);
    name(QStringLiteral("lblCurCol"), currentColumn_);
    name(QStringLiteral("lblCurRec"), currentRecord_);
    name(QStringLiteral("lblTime"), time_);
    return progress_;
}

QWidget* AnalyzerDialog::makeButtons() {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addStretch(1);
    const auto add = [&](const char* control, const char* caption, auto slot) {
        auto* button = new QPushButton(QString::fromLatin1(caption));
        button->setAutoDefault(false);
        name(QString::fromLatin1(control), button);
        connect(button, &QPushButton::clicked, this, slot);
        layout->addWidget(button);
        return button;
    };
    start_ = add("cmdStart", "&Start (F5)", [this] { screen_.cmdStart_Click(); });
    stop_ = add("cmdStop", "S&top (F6)", [this] { screen_.cmdStop_Click(); });
    add("cmdExport", "&Export", [this] { screen_.cmdExport_Click(); });
    add("cmdPrint", "&Print", [this] { print(); });
    add("cmdPrintPreview", "Print Pre&view", [this] { print(); });
    add("cmdPageSetup", "Page Set&up", [this] { askPageSetup(this); });
    add("cmdExit", "E&xit", [this] { screen_.cmdExit_Click(); });
    return row;
}

void AnalyzerDialog::print() {
    if (screen_.cmdPrint_Click())
        printText(AnalysisText(screen_.lblTableName, screen_.rpcReport), screen_.caption(), false,
                  this);
}

QString AnalyzerDialog::selectionAsText() const {
    QModelIndexList cells = table_->selectionModel()->selectedIndexes();
    std::sort(cells.begin(), cells.end());
    QString text;
    int row = -1;
    for (const QModelIndex& cell : cells) {
        if (row >= 0) text += cell.row() == row ? u'\t' : u'\n';
        row = cell.row();
        text += cell.data(TextRole).toString();
    }
    return text;
}

void AnalyzerDialog::fillTable() {
    const std::vector<std::vector<GridReportItem>>& records = screen_.rpcReport.records;
    if (records.size() < shownRecords_) {
        model_->setRowCount(0);
        shownRecords_ = 0;
    }
    // Rows that come while the report is sorted would come to stand anywhere.
    if (shownRecords_ == 0) table_->sortByColumn(-1, Qt::AscendingOrder);
    for (; shownRecords_ < records.size(); ++shownRecords_) {
        QList<QStandardItem*> row;
        const std::vector<GridReportItem>& record = records[shownRecords_];
        for (int column = 0; column < int(record.size()); ++column) {
            const GridReportItem& cell = record[size_t(column)];
            auto* item = new QStandardItem(oneLine(cell.text()));
            item->setData(cell.text(), TextRole);
            const bool isNumber = column == 2 || isCountColumn(column);
            item->setData(isNumber ? QVariant(cell.longValue) : QVariant(cell.text()), SortRole);
            if (isNumber) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            if (isCountColumn(column) && cell.longValue > 0 && screen_.analyzedRecords > 0)
                item->setData(double(cell.longValue) / screen_.analyzedRecords, ShareRole);
            if (cell.backColor != 0xFFFFFF)
                item->setBackground(shownMarkColor(cell.backColor, palette()));
            if (cell.text().size() > 16) item->setToolTip(oneLine(cell.text()));
            row += item;
        }
        model_->appendRow(row);
    }
}

void AnalyzerDialog::refreshFields() {
    const bool changed = stop_->isEnabled() != screen_.cmdStopEnabled;
    if (!changed && screen_.cmdStopEnabled && sincePaint_.elapsed() < PaintMilliseconds) return;
    sincePaint_.restart();
    columns_->setText(screen_.lblColumns);
    ignored_->setText(screen_.lblIgnoredColumns);
    if (records_->text() != screen_.fedRecsToAnalyze) records_->setText(screen_.fedRecsToAnalyze);
    frequency_[screen_.rdbFrequency]->setChecked(true);
    anySize_->setChecked(screen_.chkAnySize);
    start_->setEnabled(screen_.cmdStartEnabled);
    stop_->setEnabled(screen_.cmdStopEnabled);
    for (QWidget* input : {static_cast<QWidget*>(records_), static_cast<QWidget*>(ignore_)})
        input->setEnabled(screen_.cmdStartEnabled);
    columnsBar_->setValue(screen_.prbColumns);
    rowsBar_->setValue(screen_.prbRows);
    currentColumn_->setText(screen_.lblCurCol);
    currentRecord_->setText(screen_.lblCurRec);
    time_->setText(screen_.lblTime);
    fillTable();
}

void AnalyzerDialog::changeEvent(QEvent* event) {
    ScreenDialog::changeEvent(event);
    if (event->type() != QEvent::PaletteChange || !model_) return;
    model_->setRowCount(0);
    shownRecords_ = 0;
    fillTable();
}

void AnalyzerDialog::reject() {
    if (screen_.cmdStopEnabled)
        screen_.cmdStop_Click();
    else
        ScreenDialog::reject();
}

bool AnalyzerDialog::leave() {
    screen_.cmdExit_Click();
    return screen_.isClosed();
}

void AnalyzerDialog::showEvent(QShowEvent* event) {
    ScreenDialog::showEvent(event);
    screen_.Form_Activate();
}

}  // namespace zov::qt
