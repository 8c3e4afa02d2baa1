#include "shell/qt/screens/saved_dialogs.h"

#include "shell/qt/help_window.h"

#include <QAction>
#include <QCheckBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace zov::qt {
namespace {

constexpr int NameColumn = 0, IdColumn = 1;

QLabel* label(const QString& text) {
    auto* made = new QLabel(text);
    made->setTextFormat(Qt::PlainText);
    made->setWordWrap(true);
    return made;
}

/// Sorts numbers as numbers and names as people do.
class ProcessItem : public QTreeWidgetItem {
 public:
    ProcessItem(const QString& name, qint32 id) {
        setText(NameColumn, name);
        setToolTip(NameColumn, name);
        setData(IdColumn, Qt::DisplayRole, id);
        setTextAlignment(IdColumn, Qt::AlignRight | Qt::AlignVCenter);
    }
    bool operator<(const QTreeWidgetItem& other) const override {
        const int column = treeWidget()->sortColumn();
        if (column == IdColumn)
            return data(IdColumn, Qt::DisplayRole).toInt() <
                   other.data(IdColumn, Qt::DisplayRole).toInt();
        return QString::localeAwareCompare(text(NameColumn), other.text(NameColumn)) < 0;
    }
};

}  // namespace

SaveComparisonDialog::SaveComparisonDialog(frmSaveComparison& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    name_ = new QLineEdit;
    names_ = new QListWidget;
    names_->setAccessibleName(screen.lblList);
    print_ = new QCheckBox(QStringLiteral("Automatically &print the final report"));
    autoClose_ = new QCheckBox(
        QStringLiteral("Automatically c&lose the program after replaying the comparison"));
    auto* ok = new QPushButton(QStringLiteral("&OK"));
    auto* cancel = new QPushButton(QStringLiteral("&Cancel"));
    auto* help = new QPushButton(QStringLiteral("&Help"));
    ok->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    for (QPushButton* button : {ok, cancel, help}) buttons->addWidget(button);
    auto* nameLabel = label(screen.lblName);
    nameLabel->setBuddy(name_);
    auto* note = new QLabel(QStringLiteral("Note:"));
    QFont bold = note->font();
    bold.setBold(true);
    note->setFont(bold);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label(screen.lblInfo));
    layout->addWidget(nameLabel);
    layout->addWidget(name_);
    layout->addWidget(label(screen.lblList));
    layout->addWidget(names_, 1);
    layout->addWidget(print_);
    layout->addWidget(autoClose_);
    layout->addWidget(note);
    for (const QString& paragraph : screen.lblNote.split(QStringLiteral("\r\n")))
        layout->addWidget(label(paragraph));
    layout->addLayout(buttons);
    resize(560, 560);

    name(QStringLiteral("txtProcessName"), name_);
    name(QStringLiteral("lstServers"), names_);
    name(QStringLiteral("optPrint"), print_);
    name(QStringLiteral("chkAutoClose"), autoClose_);
    name(QStringLiteral("cmdOK"), ok);
    name(QStringLiteral("cmdCancel"), cancel);
    name(QStringLiteral("cmdHelp"), help);
    // A name that is to be used again is taken over, not typed.
    connect(names_, &QListWidget::itemClicked, this,
            [this](const QListWidgetItem* item) { name_->setText(item->text()); });
    connect(ok, &QPushButton::clicked, this, [this] {
        screen_.txtProcessName = name_->text();
        screen_.optPrint = print_->isChecked();
        screen_.chkAutoClose = autoClose_->isChecked();
        screen_.cmdOK();
    });
    connect(cancel, &QPushButton::clicked, this, [this] { screen_.cmdCancel(); });
    connect(help, &QPushButton::clicked, this, [this] { showHelpPage(helpPage(), this); });
}

void SaveComparisonDialog::showEvent(QShowEvent* event) {
    ScreenDialog::showEvent(event);
    QTimer::singleShot(0, this, [this] { screen_.Form_Activate(); });
}

void SaveComparisonDialog::refreshFields() {
    name_->setText(screen_.txtProcessName);
    names_->clear();
    names_->addItems(screen_.lstServers);
    print_->setChecked(screen_.optPrint);
    autoClose_->setChecked(screen_.chkAutoClose);
}

SaveCompRunDialog::SaveCompRunDialog(frmSaveCompRun& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    search_ = new QLineEdit;
    search_->setPlaceholderText(QStringLiteral("Type to search for a name"));
    search_->setClearButtonEnabled(true);
    list_ = new QTreeWidget;
    list_->setHeaderLabels({QStringLiteral("Name"), QStringLiteral("Id")});
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setAllColumnsShowFocus(true);
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setAccessibleName(QStringLiteral("Saved comparison processes"));
    list_->header()->setStretchLastSection(false);
    list_->header()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    // Until a heading is clicked, the order is that of the file.
    list_->sortByColumn(-1, Qt::AscendingOrder);
    list_->setSortingEnabled(true);
    auto* run = new QPushButton(QStringLiteral("&Run"));
    auto* remove = new QPushButton(QStringLiteral("&Delete"));
    auto* cancel = new QPushButton(QStringLiteral("&Cancel"));
    auto* help = new QPushButton(QStringLiteral("&Help"));
    run->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    for (QPushButton* button : {run, remove, cancel, help}) buttons->addWidget(button);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label(screen.lblInfo));
    layout->addWidget(search_);
    layout->addWidget(list_, 1);
    layout->addWidget(label(screen.lblProperties));
    layout->addLayout(buttons);
    resize(520, 460);

    name(QStringLiteral("lstComps"), list_);
    name(QStringLiteral("search"), search_);
    name(QStringLiteral("cmdOK"), run);
    name(QStringLiteral("cmdDelete"), remove);
    name(QStringLiteral("cmdCancel"), cancel);
    name(QStringLiteral("cmdHelp"), help);
    list_->setFocus();
    list_->viewport()->installEventFilter(this);
    list_->installEventFilter(this);
    search_->installEventFilter(this);
    connect(list_, &QTreeWidget::itemSelectionChanged, this, [this] { takeSelection(); });
    connect(list_, &QTreeWidget::itemDoubleClicked, this, [this] { screen_.cmdOK(); });
    connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) { filter(text); });
    connect(run, &QPushButton::clicked, this, [this] { screen_.cmdOK(); });
    connect(remove, &QPushButton::clicked, this, [this] { screen_.cmdDelete(); });
    connect(cancel, &QPushButton::clicked, this, [this] { screen_.cmdCancel(); });
    connect(help, &QPushButton::clicked, this, [this] { showHelpPage(helpPage(), this); });
    for (const int key : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(QKeySequence(Qt::ALT | Qt::Key(key)), this), &QShortcut::activated,
                this, [this] { screen_.showProperties(); });
}

void SaveCompRunDialog::refreshFields() {
    {
        const QSignalBlocker quiet(list_);
        list_->clear();
        QList<QTreeWidgetItem*> items;
        for (const auto& [name, id] : screen_.lstComps) items += new ProcessItem(name, id);
        // A list that sorts as it is filled puts each item before those that it has.
        list_->setSortingEnabled(false);
        list_->addTopLevelItems(items);
        list_->setSortingEnabled(true);
    }
    filter(search_->text());
}

// Shows the names that hold the text and selects the first of them, so that Enter runs it.
void SaveCompRunDialog::filter(const QString& text) {
    {
        const QSignalBlocker quiet(list_);
        list_->clearSelection();
        QTreeWidgetItem* first = nullptr;
        for (int row = 0; row < list_->topLevelItemCount(); ++row) {
            QTreeWidgetItem* item = list_->topLevelItem(row);
            const bool holds = item->text(NameColumn).contains(text, Qt::CaseInsensitive);
            item->setHidden(!holds);
            if (holds && !first) first = item;
        }
        if (first && !text.isEmpty()) list_->setCurrentItem(first);
    }
    takeSelection();
}

void SaveCompRunDialog::takeSelection() {
    screen_.selected.clear();
    for (int row = 0; row < list_->topLevelItemCount(); ++row) {
        const QTreeWidgetItem* item = list_->topLevelItem(row);
        if (item->isSelected() && !item->isHidden()) screen_.selected += item->text(NameColumn);
    }
}

bool SaveCompRunDialog::eventFilter(QObject* watched, QEvent* event) {
    if (watched == list_->viewport() && event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent*>(event)->button() == Qt::RightButton) {
        screen_.showProperties();
        return true;
    }
    if (event->type() != QEvent::KeyPress) return ScreenDialog::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    if (watched == list_) {
        if (key->key() == Qt::Key_Delete) {
            screen_.cmdDelete();
            return true;
        }
        // What is typed over the list is searched for.
        const QString typed = key->text();
        const bool withKeys = key->modifiers() & (Qt::ControlModifier | Qt::AltModifier);
        if (!withKeys && !typed.isEmpty() && typed.front().isPrint() && typed != u" ") {
            search_->setFocus();
            search_->insert(typed);
            return true;
        }
    } else if (watched == search_ && (key->key() == Qt::Key_Down || key->key() == Qt::Key_Up)) {
        list_->setFocus();
        return true;
    }
    return ScreenDialog::eventFilter(watched, event);
}

}  // namespace zov::qt
