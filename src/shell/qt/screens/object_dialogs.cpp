#include "shell/qt/screens/object_dialogs.h"

#include "shell/qt/help_window.h"
#include "shell/qt/window_fit.h"

#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QTableWidget>
#include <QVBoxLayout>

namespace zov::qt {
namespace {

QHBoxLayout* buttonRow(std::initializer_list<QPushButton*> buttons) {
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    for (QPushButton* button : buttons) row->addWidget(button);
    return row;
}

// Shows rows of a name and a tick, keeping the scroll position.
template <typename Rows, typename Name, typename Ticked>
void fillCheckList(QListWidget* list, const Rows& rows, Name nameOf, Ticked isTicked) {
    while (list->count() > int(rows.size())) delete list->takeItem(list->count() - 1);
    while (list->count() < int(rows.size())) list->addItem(QString());
    for (int i = 0; i < list->count(); ++i) {
        list->item(i)->setText(nameOf(rows[size_t(i)]));
        list->item(i)->setCheckState(isTicked(rows[size_t(i)]) ? Qt::Checked : Qt::Unchecked);
    }
}

QLabel* link(const QString& text, const QString& toolTip) {
    auto* label = new QLabel(QStringLiteral("<a href=\"#\">%1</a>").arg(text.toHtmlEscaped()));
    label->setTextFormat(Qt::RichText);
    label->setToolTip(toolTip);
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    return label;
}

}  // namespace

SearchDialog::SearchDialog(frmSearchForObject_Gen& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    info_ = new QLabel;
    info_->setWordWrap(true);
    text_ = new QLineEdit;
    found_ = new QListWidget;
    auto* search = new QPushButton(QStringLiteral("&Search"));
    auto* ok = new QPushButton(QStringLiteral("&OK"));
    auto* cancel = new QPushButton(QStringLiteral("&Cancel"));
    // Enter searches while the text has the focus and takes the choice from the list.
    search->setDefault(true);
    auto* row = new QHBoxLayout;
    row->addWidget(text_, 1);
    row->addWidget(search);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(info_);
    layout->addLayout(row);
    layout->addWidget(found_, 1);
    layout->addLayout(buttonRow({ok, cancel}));
    resize(440, 460);
    name(QStringLiteral("txtFind"), text_);
    name(QStringLiteral("lstFound"), found_);
    name(QStringLiteral("cmdFind"), search);
    name(QStringLiteral("cmdOK"), ok);
    name(QStringLiteral("cmdCancel"), cancel);
    connect(search, &QPushButton::clicked, this, [this] {
        screen_.txtFind = text_->text();
        screen_.cmdFind_Click();
        if (found_->count()) found_->setFocus();
    });
    connect(found_, &QListWidget::currentRowChanged, this,
            [this](int at) { screen_.selectedRow = at; });
    connect(found_, &QListWidget::itemActivated, this, [this] { screen_.cmdOK_Click(); });
    connect(ok, &QPushButton::clicked, this, [this] { screen_.cmdOK_Click(); });
    connect(cancel, &QPushButton::clicked, this, [this] { screen_.cmdCancel_Click(); });
}

void SearchDialog::refreshFields() {
    setWindowTitle(screen_.caption());
    info_->setText(screen_.lblInfo);
    text_->setText(screen_.txtFind);
    const int selected = screen_.selectedRow;
    found_->clear();
    found_->addItems(screen_.lstFound);
    found_->setCurrentRow(selected);
    screen_.selectedRow = selected;
}

ListObjectsDialog::ListObjectsDialog(frmListObjects& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    auto* grid = new QGridLayout;
    auto* type = new QLabel(screen.lblObjectType);
    QFont bold = type->font();
    bold.setBold(true);
    type->setFont(bold);
    grid->addWidget(type, 0, 0, 1, 2);
    for (const int Index : {0, 1}) {
        const QString side = Index == 0 ? QStringLiteral("Source") : QStringLiteral("Target");
        const QString server = Index == 0 ? screen.lblServer1 : screen.lblServer2;
        const QString db = Index == 0 ? screen.lblDb1 : screen.lblDb2;
        auto* place = new ElidedLabel(QStringLiteral("%1: %2.%3").arg(side, server, db));
        name(QStringLiteral("lblPlace_%1").arg(Index), place);
        grid->addWidget(place, 1, Index);
        grid->setColumnStretch(Index, 1);
        QListWidget* list = lists_[Index] = new QListWidget;
        list->setAccessibleName(side + QStringLiteral(" objects"));
        grid->addWidget(list, 2, Index);
        name(QStringLiteral("pvlSqlObj_%1").arg(Index), list);
        connect(list, &QListWidget::itemChanged, this, [=, this](QListWidgetItem* item) {
            if (!filling_)
                screen_.pvlSqlObj[Index][size_t(list->row(item))].ticked =
                    item->checkState() == Qt::Checked;
        });
    }
    auto* all = new QPushButton(QStringLiteral("&Select All"));
    auto* none = new QPushButton(QStringLiteral("&Deselect All"));
    name(QStringLiteral("cmdSelectAll"), all);
    name(QStringLiteral("cmdDeselectAll"), none);
    connect(all, &QPushButton::clicked, this, [this] { screen_.cmdSelectAll(); });
    connect(none, &QPushButton::clicked, this, [this] { screen_.cmdDeselectAll(); });
    auto* ok = new QPushButton(QStringLiteral("&OK"));
    auto* cancel = new QPushButton(QStringLiteral("&Cancel"));
    ok->setDefault(true);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid, 1);
    layout->addLayout(buttonRow({all, none, ok, cancel}));
    resize(680, 520);
    name(QStringLiteral("cmdOK"), ok);
    name(QStringLiteral("cmdCancel"), cancel);
    connect(ok, &QPushButton::clicked, this, [this] { screen_.cmdOK(); });
    connect(cancel, &QPushButton::clicked, this, [this] { screen_.cmdCancel(); });
}

void ListObjectsDialog::refreshFields() {
    const QScopedValueRollback<bool> filling(filling_, true);
    for (const int Index : {0, 1})
        fillCheckList(
            lists_[Index], screen_.pvlSqlObj[Index], [](const auto& row) { return row.name; },
            [](const auto& row) { return row.ticked; });
}

IgnoreColumnsDialog::IgnoreColumnsDialog(frmIgnoreColumnsAdd& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    auto* info = new QLabel(screen.lblInfo);
    info->setWordWrap(true);
    columns_ = new QListWidget;
    QLabel* all = link(QStringLiteral("Select all columns"),
                       QStringLiteral("Click here to select all columns"));
    QLabel* none = link(QStringLiteral("Deselect all columns"),
                        QStringLiteral("Click here to deselect all columns"));
    auto* ok = new QPushButton(QStringLiteral("&OK"));
    auto* cancel = new QPushButton(QStringLiteral("&Cancel"));
    auto* help = new QPushButton(QStringLiteral("&Help"));
    ok->setDefault(true);
    auto* links = new QHBoxLayout;
    links->addWidget(all);
    links->addWidget(none);
    links->addStretch(1);
    auto* layout = new QVBoxLayout(this);
    auto* table = new ElidedLabel(screen.lblTableName);
    layout->addWidget(table);
    layout->addWidget(info);
    layout->addWidget(columns_, 1);
    layout->addLayout(links);
    layout->addWidget(new QLabel(screen.lblSelected));
    layout->addLayout(buttonRow({ok, cancel, help}));
    resize(460, 480);
    name(QStringLiteral("lblTableName"), table);
    name(QStringLiteral("pvlSqlObj"), columns_);
    name(QStringLiteral("cmdOK"), ok);
    name(QStringLiteral("cmdCancel"), cancel);
    name(QStringLiteral("cmdHelp"), help);
    name(QStringLiteral("lblTableName"), table);
    connect(columns_, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
        if (!filling_)
            screen_.pvlSqlObj[size_t(columns_->row(item))].checked =
                item->checkState() == Qt::Checked;
    });
    connect(all, &QLabel::linkActivated, this, [this] { screen_.selectAll(true); });
    connect(none, &QLabel::linkActivated, this, [this] { screen_.selectAll(false); });
    connect(ok, &QPushButton::clicked, this, [this] { screen_.cmdOK(); });
    connect(cancel, &QPushButton::clicked, this, [this] { screen_.cmdCancel(); });
    connect(help, &QPushButton::clicked, this, [this] { showHelpPage(helpPage(), this); });
}

void IgnoreColumnsDialog::refreshFields() {
    const QScopedValueRollback<bool> filling(filling_, true);
    fillCheckList(
        columns_, screen_.pvlSqlObj, [](const auto& row) { return row.column; },
        [](const auto& row) { return row.checked; });
}

IgnoredColumnsListDialog::IgnoredColumnsListDialog(frmIgnoreColumnsView& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    auto* info = new QLabel(screen.lblInfo);
    info->setWordWrap(true);
    grid_ = new QTableWidget(0, 4);
    grid_->setHorizontalHeaderLabels({QStringLiteral("Server"), QStringLiteral("Database"),
                                      QStringLiteral("Table"), QStringLiteral("Column")});
    grid_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    grid_->verticalHeader()->hide();
    grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid_->setSelectionBehavior(QAbstractItemView::SelectRows);
    count_ = new QLabel;
    auto* exit = new QPushButton(QStringLiteral("E&xit"));
    exit->setToolTip(QStringLiteral("Close report (Esc)"));
    auto* copy = new QPushButton(QStringLiteral("Copy To &Clipboard"));
    auto* file = new QPushButton(QStringLiteral("Copy To &File"));
    auto* editor = new QPushButton(QStringLiteral("Send To &Notepad"));
    exit->setDefault(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(info);
    layout->addWidget(grid_, 1);
    layout->addWidget(count_);
    layout->addLayout(buttonRow({copy, file, editor, exit}));
    resize(680, 460);
    name(QStringLiteral("vsfGrid"), grid_);
    name(QStringLiteral("cmdExit"), exit);
    name(QStringLiteral("cmdCopyClip"), copy);
    name(QStringLiteral("cmdCopyToFile"), file);
    name(QStringLiteral("cmdSendToNotepad"), editor);
    connect(exit, &QPushButton::clicked, this, [this] { screen_.cmdExit(); });
    connect(copy, &QPushButton::clicked, this, [this] { screen_.cmdCopyClip(); });
    connect(file, &QPushButton::clicked, this, [this] { screen_.cmdCopyToFile(); });
    connect(editor, &QPushButton::clicked, this, [this] { screen_.cmdSendToNotepad(); });
}

void IgnoredColumnsListDialog::refreshFields() {
    grid_->setRowCount(int(screen_.vsfGrid.size()));
    for (int row = 0; row < grid_->rowCount(); ++row) {
        const IgnoredColumnRow& mark = screen_.vsfGrid[size_t(row)];
        int column = 0;
        for (const QString& text : {mark.Server, mark.Db, mark.Table, mark.Column})
            grid_->setItem(row, column++, new QTableWidgetItem(text));
    }
    count_->setText(screen_.lblCount);
}

}  // namespace zov::qt
