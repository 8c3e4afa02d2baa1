#include "shell/qt/data/compare_options_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QScopedValueRollback>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace zov::qt {
namespace {

const char* const Frames[] = {"Source Table", "Target Table"};

QLabel* paragraph(const QString& text) {
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QLabel* boldParagraph(const QString& text) {
    QLabel* label = paragraph(text);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

// A box of names that follows neither the wheel nor the length of its names.
QComboBox* nameBox(const QString& accessibleName) {
    auto* box = new QComboBox;
    box->setAccessibleName(accessibleName);
    box->setFocusPolicy(Qt::StrongFocus);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(14);
    return box;
}

void fillBox(QComboBox* box, const QStringList& items, int selected) {
    if (box->count() != items.size()) {
        box->clear();
        box->addItems(items);
    }
    box->setCurrentIndex(selected);
}

}  // namespace

CompareOptionsDialog::CompareOptionsDialog(frmCompareDataOptions& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    pages_ = new QTabWidget;
    name(QStringLiteral("tbcContainer"), pages_);
    const auto addPage = [&](QWidget* page, const char* caption, const char* toolTip) {
        pages_->setTabToolTip(pages_->addTab(page, QString::fromLatin1(caption)),
                              QString::fromLatin1(toolTip));
    };
    addPage(methodPage(), "Comparison Method",
            "Specify the comparison method to be used by the program");
    addPage(sortingPage(), "Sorting Data", "Specify sort order to be used during comparison");
    addPage(offsetPage(), "Comparison Offset", "Specify the offset for comparison process");
    addPage(columnsPage(), "Ignore Columns", "Specify the columns to be ignored during comparison");

    doNotShow_ = new QCheckBox(QStringLiteral("Do not show this dialog again"));
    auto* ok = new QPushButton(QStringLiteral("&OK"));
    ok->setToolTip(QStringLiteral("Continue comparison process"));
    ok->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("&Cancel"));
    cancel->setToolTip(QStringLiteral("Abort comparison (Esc)"));
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(doNotShow_);
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(pages_, 1);
    layout->addLayout(buttons);
    resize(720, 560);
    name(QStringLiteral("chkDoNotShowDialog"), doNotShow_);
    name(QStringLiteral("cmdOK"), ok);
    name(QStringLiteral("cmdCancel"), cancel);
    connect(doNotShow_, &QCheckBox::clicked, this,
            [this](bool on) { screen_.chkDoNotShowDialog_Click(on); });
    connect(ok, &QPushButton::clicked, this, [this] { screen_.cmdOK_Click(); });
    connect(cancel, &QPushButton::clicked, this, [this] { screen_.cmdCancel_Click(); });
    methods_[0]->setFocus();
}

QWidget* CompareOptionsDialog::methodPage() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    methods_[0] = new QRadioButton(QStringLiteral("Recod by record comparison"));
    methods_[1] = new QRadioButton(QStringLiteral("Primary Key/Index comparison"));
    const char* const texts[] = {
        "The program compares data record by record, in the original sequence of data as it is "
        "stored in the table or in the sequence specified by the user (see other options: 'Sorting "
        "Data' and 'Comparison Offset').",
        "The program tries to match Source table data with Target table data by Primary Key, or "
        "other field specified by the user (note: that field should store unique data for each "
        "record)."};
    layout->addWidget(boldParagraph(
        QStringLiteral("You can specify the comparison method to be used by the program.")));
    for (const int method : {0, 1}) {
        name(QStringLiteral("optGen_%1").arg(method), methods_[method]);
        layout->addSpacing(4);
        layout->addWidget(methods_[method]);
        auto* text = paragraph(QString::fromLatin1(texts[method]));
        text->setIndent(22);
        layout->addWidget(text);
        connect(methods_[method], &QRadioButton::clicked, this,
                [this, method] { screen_.optGen_Click(method); });
    }
    auto* frames = new QHBoxLayout;
    for (const int side : {0, 1}) {
        keyFrames_[side] = new QGroupBox(QString::fromLatin1(Frames[side]));
        name(QStringLiteral("fraGen_%1").arg(side), keyFrames_[side]);
        addKeyBoxes(keyFrames_[side], side);
        frames->addWidget(keyFrames_[side]);
    }
    layout->addSpacing(4);
    layout->addLayout(frames);
    layout->addStretch(1);
    return page;
}

void CompareOptionsDialog::addKeyBoxes(QGroupBox* box, int side) {
    auto* grid = new QGridLayout(box);
    for (int position = 0; position < 3; ++position) {
        const int index = position * 2 + side;
        const QString caption = frmCompareDataOptions::lblPK(position);
        keyLabels_[index] = new QLabel(caption);
        keys_[index] = nameBox(QString::fromLatin1(Frames[side]) + u' ' + caption);
        name(QStringLiteral("cmbPK_%1").arg(index), keys_[index]);
        grid->addWidget(keyLabels_[index], position, 0);
        grid->addWidget(keys_[index], position, 1);
        connect(keys_[index], &QComboBox::activated, this,
                [this, index](int item) { screen_.cmbPK_Click(index, item); });
    }
    // The letters differ, so that each button has one.
    validate_[side] = new QPushButton(side == 0 ? QStringLiteral("&Validate Fields Selection")
                                                : QStringLiteral("Validate &Fields Selection"));
    validate_[side]->setAutoDefault(false);
    name(QStringLiteral("cmdValidate_%1").arg(side), validate_[side]);
    connect(validate_[side], &QPushButton::clicked, this,
            [this, side] { screen_.cmdValidate_Click(side); });
    grid->addWidget(validate_[side], 3, 0, 1, 2);
    grid->setColumnStretch(1, 1);
}

QWidget* CompareOptionsDialog::sortingPage() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(boldParagraph(
        QStringLiteral("This option applies only to 'record by record' comparison.")));
    layout->addWidget(paragraph(QStringLiteral(
        "Sometimes data in two compared tables is sorted differently, which is causing ZOV to mark "
        "all records as different.")));
    layout->addWidget(paragraph(QStringLiteral(
        "To ensure that compared data is sorted identically you can specify sort order to be used "
        "during comparison.")));
    auto* frames = new QHBoxLayout;
    for (const int side : {0, 1}) {
        auto* frame = new QGroupBox(QString::fromLatin1(Frames[side]));
        addSortBoxes(frame, side);
        frames->addWidget(frame);
    }
    layout->addSpacing(8);
    layout->addLayout(frames);
    layout->addStretch(1);
    return page;
}

void CompareOptionsDialog::addSortBoxes(QGroupBox* box, int side) {
    auto* grid = new QGridLayout(box);
    for (int position = 0; position < 3; ++position) {
        const int index = side * 3 + position;
        const QString caption = frmCompareDataOptions::lblSortKey(position);
        sortKeys_[index] = nameBox(QString::fromLatin1(Frames[side]) + u' ' + caption);
        name(QStringLiteral("cmbGen_%1").arg(index), sortKeys_[index]);
        grid->addWidget(new QLabel(caption), position, 0);
        grid->addWidget(sortKeys_[index], position, 1);
        connect(sortKeys_[index], &QComboBox::activated, this,
                [this, index](int item) { screen_.cmbGen_Click(index, item); });
    }
    grid->setColumnStretch(1, 1);
}

QWidget* CompareOptionsDialog::offsetPage() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(boldParagraph(
        QStringLiteral("This option applies only to 'record by record' comparison.")));
    layout->addWidget(paragraph(QStringLiteral(
        "With that method, one extra record inserted at the beginning of the table can 'spoil' the "
        "comparison process - extra record would 'push down' all following records, which in turn "
        "would cause that the different pairs of records would be compared than before insertion "
        "of extra record.")));
    layout->addWidget(paragraph(QStringLiteral(
        "To accomodate for this situation you can specify the offset for comparison process.")));
    auto* frames = new QHBoxLayout;
    for (const int side : {0, 1}) {
        auto* frame = new QGroupBox(QString::fromLatin1(Frames[side]));
        auto* row = new QHBoxLayout(frame);
        offsets_[side] = new QLineEdit;
        offsets_[side]->setAccessibleName(QString::fromLatin1(Frames[side]) +
                                          QStringLiteral(", start comparison from record"));
        offsets_[side]->setMaximumWidth(120);
        offsets_[side]->setPlaceholderText(QStringLiteral("1"));
        offsets_[side]->setValidator(new QRegularExpressionValidator(
            QRegularExpression(QStringLiteral("[0-9]{0,10}")), offsets_[side]));
        row->addWidget(new QLabel(QStringLiteral("Start comparison from record")));
        row->addWidget(offsets_[side]);
        row->addStretch(1);
        name(QStringLiteral("txtOffset_%1").arg(side), offsets_[side]);
        frames->addWidget(frame);
        connect(offsets_[side], &QLineEdit::textEdited, this,
                [this, side](const QString& text) { screen_.txtOffset_Change(side, text); });
    }
    layout->addSpacing(8);
    layout->addLayout(frames);
    layout->addStretch(1);
    return page;
}

QWidget* CompareOptionsDialog::columnsPage() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(boldParagraph(QStringLiteral(
        "Deselect columns which you want to be ignored by the comparison process.")));
    layout->addWidget(
        paragraph(QStringLiteral("Selected columns are processed during comparison.")));
    auto* frames = new QHBoxLayout;
    for (const int side : {0, 1}) {
        auto* frame = new QGroupBox(QString::fromLatin1(Frames[side]));
        auto* box = new QVBoxLayout(frame);
        QTreeWidget* list = columns_[side] = new QTreeWidget;
        list->setColumnCount(2);
        list->setHeaderLabels({QStringLiteral("Column"), QStringLiteral("Type")});
        list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
        list->header()->setStretchLastSection(false);
        list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
        list->setRootIsDecorated(false);
        list->setAccessibleName(QString::fromLatin1(Frames[side]) + QStringLiteral(" columns"));
        auto* all = new QPushButton(side == 0 ? QStringLiteral("&Select All")
                                              : QStringLiteral("S&elect All"));
        auto* none = new QPushButton(side == 0 ? QStringLiteral("&Deselect All")
                                               : QStringLiteral("Deselect &All"));
        auto* row = new QHBoxLayout;
        for (QPushButton* button : {all, none}) {
            button->setAutoDefault(false);
            row->addWidget(button);
        }
        row->addStretch(1);
        box->addWidget(list, 1);
        box->addLayout(row);
        frames->addWidget(frame);
        name(QStringLiteral("pvlSqlObj_%1").arg(side), list);
        name(QStringLiteral("cmdSelectAll_%1").arg(side), all);
        name(QStringLiteral("cmdDeselectAll_%1").arg(side), none);
        connect(list, &QTreeWidget::itemChanged, this, [=, this](QTreeWidgetItem* item) {
            if (!filling_)
                screen_.pvlSqlObj_Click(side, list->indexOfTopLevelItem(item),
                                        item->checkState(0) == Qt::Checked);
        });
        connect(all, &QPushButton::clicked, this, [=, this] { screen_.cmdSelectAll_Click(side); });
        connect(none, &QPushButton::clicked, this,
                [=, this] { screen_.cmdDeselectAll_Click(side); });
    }
    layout->addLayout(frames, 1);
    return page;
}

void CompareOptionsDialog::refreshFields() {
    const QScopedValueRollback<bool> filling(filling_, true);
    methods_[screen_.optGen]->setChecked(true);
    for (const int side : {0, 1}) {
        const bool byKey = screen_.keyControlsEnabled();
        keyFrames_[side]->setEnabled(byKey);
        validate_[side]->setEnabled(byKey);
        if (offsets_[side]->text() != screen_.txtOffset[side])
            offsets_[side]->setText(screen_.txtOffset[side]);
        QTreeWidget* list = columns_[side];
        const auto& rows = screen_.pvlSqlObj[side];
        while (list->topLevelItemCount() > int(rows.size())) delete list->takeTopLevelItem(0);
        while (list->topLevelItemCount() < int(rows.size())) new QTreeWidgetItem(list);
        for (int i = 0; i < int(rows.size()); ++i) {
            QTreeWidgetItem* item = list->topLevelItem(i);
            item->setText(0, rows[size_t(i)].column);
            item->setText(1, rows[size_t(i)].type);
            item->setCheckState(0, rows[size_t(i)].checked ? Qt::Checked : Qt::Unchecked);
        }
    }
    for (int index = 0; index < 6; ++index) {
        fillBox(keys_[index], screen_.cmbPKItems(frmCompareDataOptions::sideOfPK(index)),
                screen_.cmbPK[size_t(index)]);
        fillBox(sortKeys_[index], screen_.cmbGenItems(frmCompareDataOptions::sideOfGen(index)),
                screen_.cmbGen[size_t(index)]);
    }
    doNotShow_->setChecked(screen_.chkDoNotShowDialog);
}

}  // namespace zov::qt
