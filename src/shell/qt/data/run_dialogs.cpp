#include "shell/qt/data/run_dialogs.h"

#include "shell/qt/window_fit.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace zov::qt {
namespace {

// A run tells each of its rows; what didn't change isn't painted.
void setText(QLabel* label, const QString& text) {
    if (label->text() != text) label->setText(text);
}

QLabel* plainLabel(const QString& text = {}) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    return label;
}

}  // namespace

ValidationDialog::ValidationDialog(frmCompareDataValidation& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    auto* facts = new QFormLayout;
    const auto fact = [&](const char* caption, const char* control, const QString& text) {
        auto* label = new ElidedLabel(text);
        name(QString::fromLatin1(control), label);
        facts->addRow(QString::fromLatin1(caption), label);
    };
    fact("Server:", "lblServer1", screen.lblServer1);
    fact("Database:", "lblDb1", screen.lblDb1);
    fact("Table:", "lblTable1", screen.lblTable1);
    fact("Number of records:", "lblRecsCount1", screen.lblRecsCount1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(facts);
    layout->addSpacing(8);
    for (const int i : {0, 1}) {
        layout->addWidget(info_[i] = plainLabel());
        name(QStringLiteral("lblInfo_%1").arg(i), info_[i]);
    }
    bar_ = new QProgressBar;
    current_ = plainLabel();
    time_ = plainLabel();
    ok_ = new QPushButton(QStringLiteral("&OK"));
    auto* cancel = new QPushButton(QStringLiteral("&Cancel"));
    cancel->setToolTip(QStringLiteral("Cancel validations and close dialog (Esc)"));
    cancel->setDefault(true);
    auto* counts = new QHBoxLayout;
    counts->addWidget(new QLabel(QStringLiteral("Record:")));
    counts->addWidget(current_);
    counts->addStretch(1);
    counts->addWidget(new QLabel(QStringLiteral("Time elapsed:")));
    counts->addWidget(time_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(ok_);
    buttons->addWidget(cancel);
    layout->addWidget(bar_);
    layout->addLayout(counts);
    layout->addStretch(1);
    layout->addLayout(buttons);
    setMinimumWidth(460);
    name(QStringLiteral("prbProgressBar"), bar_);
    name(QStringLiteral("lblCurRec"), current_);
    name(QStringLiteral("lblTime"), time_);
    name(QStringLiteral("cmdOK"), ok_);
    name(QStringLiteral("cmdCancel"), cancel);
    connect(cancel, &QPushButton::clicked, this, [this] { screen_.cmdCancel_Click(); });
}

bool ValidationDialog::leave() {
    screen_.cmdCancel_Click();
    return screen_.isClosed();
}

void ValidationDialog::showEvent(QShowEvent* event) {
    ScreenDialog::showEvent(event);
    QTimer::singleShot(0, this, [this] { screen_.Form_Activate(); });
}

void ValidationDialog::refreshFields() {
    for (const int i : {0, 1}) setText(info_[i], screen_.lblInfo[i]);
    bar_->setValue(screen_.prbProgressBar);
    setText(current_, screen_.lblCurRec);
    setText(time_, screen_.lblTime);
    ok_->setEnabled(screen_.cmdOKEnabled);
}

CompareStatusDialog::CompareStatusDialog(frmCompareStatus& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    auto* facts = new QGridLayout;
    facts->setHorizontalSpacing(14);
    const char* const captions[] = {"Server:", "Database:", "Table:", "Number of records:"};
    for (int row = 0; row < 4; ++row)
        facts->addWidget(new QLabel(QString::fromLatin1(captions[row])), row + 1, 0);
    const QString texts[2][4] = {
        {screen.lblServer1, screen.lblDb1, screen.lblTable1, screen.lblRecsCount1},
        {screen.lblServer2, screen.lblDb2, screen.lblTable2, screen.lblRecsCount2}};
    const char* const names[] = {"lblServer", "lblDb", "lblTable", "lblRecsCount"};
    for (const int side : {0, 1}) {
        auto* heading = new QLabel(side == 0 ? QStringLiteral("Source") : QStringLiteral("Target"));
        QFont bold = heading->font();
        bold.setBold(true);
        heading->setFont(bold);
        facts->addWidget(heading, 0, side + 1);
        for (int row = 0; row < 4; ++row) {
            auto* label = new ElidedLabel(texts[side][row]);
            name(QString::fromLatin1(names[row]) + QString::number(side + 1), label);
            facts->addWidget(label, row + 1, side + 1);
            if (row == 3) counts_[side] = label;
        }
        facts->setColumnStretch(side + 1, 1);
    }
    status_ = plainLabel();
    bar_ = new QProgressBar;
    current_ = plainLabel();
    time_ = plainLabel();
    timeCaption_ = new QLabel(QStringLiteral("Time elapsed:"));
    auto* stop = new QPushButton(QStringLiteral("&Stop"));
    stop->setToolTip(QStringLiteral("Stop comparing (Esc)"));
    stop->setDefault(true);
    auto* line = new QHBoxLayout;
    line->addWidget(new QLabel(QStringLiteral("Current record:")));
    line->addWidget(current_);
    line->addStretch(1);
    line->addWidget(timeCaption_);
    line->addWidget(time_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(stop);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(facts);
    layout->addSpacing(8);
    layout->addLayout(line);
    layout->addWidget(status_);
    layout->addWidget(bar_);
    layout->addStretch(1);
    layout->addLayout(buttons);
    setMinimumSize(520, 240);
    name(QStringLiteral("lblCurRec"), current_);
    name(QStringLiteral("lblStatus"), status_);
    name(QStringLiteral("lblTime"), time_);
    name(QStringLiteral("ProgressBar"), bar_);
    name(QStringLiteral("cmdStop"), stop);
    connect(stop, &QPushButton::clicked, this, [this] { screen_.cmdStop_Click(); });
}

bool CompareStatusDialog::leave() {
    screen_.cmdStop_Click();
    return screen_.isClosed();
}

void CompareStatusDialog::showEvent(QShowEvent* event) {
    ScreenDialog::showEvent(event);
    QTimer::singleShot(0, this, [this] { screen_.Form_Activate(); });
}

void CompareStatusDialog::refreshFields() {
    setText(counts_[0], screen_.lblRecsCount1);
    setText(counts_[1], screen_.lblRecsCount2);
    setText(current_, screen_.lblCurRec);
    setText(status_, screen_.lblStatus);
    setText(time_, screen_.lblTime);
    status_->setVisible(screen_.lblStatusVisible);
    time_->setVisible(screen_.lblTimeVisible);
    timeCaption_->setVisible(screen_.lblTimeVisible);
    bar_->setVisible(screen_.ProgressBarVisible);
    bar_->setValue(std::clamp(screen_.ProgressBar, 0, 100));
}

ExportDialog::ExportDialog(frmExport& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    const char* const captions[] = {"Hyper Text Markup Language (HTML) file",
                                    "Excel - Comma Separated Values (CSV) file"};
    stack_ = new QStackedWidget;
    auto* choose = new QWidget;
    auto* chooseLayout = new QVBoxLayout(choose);
    chooseLayout->setContentsMargins(0, 0, 0, 0);
    chooseLayout->addWidget(plainLabel(screen.lblInfo));
    for (const int kind : {0, 1}) {
        kinds_[kind] = new QRadioButton(QString::fromLatin1(captions[kind]));
        name(QStringLiteral("optGen_%1").arg(kind), kinds_[kind]);
        chooseLayout->addWidget(kinds_[kind]);
        connect(kinds_[kind], &QRadioButton::clicked, this, [this, kind] {
            screen_.optGen = kind;
            refreshFields();
        });
    }
    csvSafe_ = new QCheckBox(QStringLiteral("&Safe for spreadsheets: no cell is run as a formula"));
    csvSafe_->setToolTip(
        QStringLiteral("Texts that begin with = + - @ get an apostrophe in front, and all cells "
                       "stand in quotation marks"));
    name(QStringLiteral("chkCsvSafe"), csvSafe_);
    connect(csvSafe_, &QCheckBox::toggled, this, [this](bool on) { screen_.chkCsvSafe = on; });
    chooseLayout->addWidget(csvSafe_);
    chooseLayout->addStretch(1);
    auto* run = new QWidget;
    auto* runLayout = new QVBoxLayout(run);
    runLayout->setContentsMargins(0, 0, 0, 0);
    runLayout->addWidget(plainLabel(QStringLiteral("Progress...")));
    runLayout->addWidget(bar_ = new QProgressBar);
    runLayout->addWidget(progress_ = plainLabel());
    runLayout->addStretch(1);
    stack_->addWidget(choose);
    stack_->addWidget(run);
    ok_ = new QPushButton(QStringLiteral("&OK"));
    ok_->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("&Cancel"));
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(ok_);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(stack_, 1);
    layout->addLayout(buttons);
    setMinimumWidth(420);
    name(QStringLiteral("ProgressBar"), bar_);
    name(QStringLiteral("lblProgress"), progress_);
    name(QStringLiteral("cmdOK"), ok_);
    name(QStringLiteral("cmdCancel"), cancel);
    connect(ok_, &QPushButton::clicked, this, [this] { screen_.cmdOK_Click(); });
    connect(cancel, &QPushButton::clicked, this, [this] { screen_.cmdCancel_Click(); });
    kinds_[0]->setFocus();
}

bool ExportDialog::leave() {
    screen_.cmdCancel_Click();
    return screen_.isClosed();
}

void ExportDialog::showEvent(QShowEvent* event) {
    ScreenDialog::showEvent(event);
    QTimer::singleShot(0, this, [this] { screen_.Form_Activate(); });
}

void ExportDialog::refreshFields() {
    kinds_[screen_.optGen]->setChecked(true);
    csvSafe_->setEnabled(screen_.optGen == 1);
    csvSafe_->setChecked(screen_.chkCsvSafe);
    stack_->setCurrentIndex(screen_.optionsVisible ? 0 : 1);
    ok_->setEnabled(screen_.cmdOKEnabled);
    if (screen_.optionsVisible) return;
    // Once a percent is as often as anybody can see it.
    if (bar_->value() == screen_.ProgressBar && !progress_->text().isEmpty()) return;
    bar_->setValue(screen_.ProgressBar);
    setText(progress_, screen_.lblProgress());
}

}  // namespace zov::qt
