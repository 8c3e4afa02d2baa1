#include "shell/qt/screens/report_dialog.h"

#include <QCheckBox>
#include <QFontDatabase>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>
#include <QVBoxLayout>

namespace zov::qt {

ReportDialog::ReportDialog(frmReport& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    text_ = new QPlainTextEdit;
    text_->setReadOnly(true);
    text_->setTabChangesFocus(true);
    text_->setLineWrapMode(QPlainTextEdit::NoWrap);
    text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text_->setAccessibleName(QStringLiteral("Report"));
    finder_ = std::make_unique<TextFind>(text_);
    findText_ = new FindField;
    findNote_ = new QLabel;
    findText_->setPlaceholderText(QStringLiteral("Find in the report (Ctrl+F)"));
    alternative_ = new QCheckBox;
    auto* copy = new QPushButton(QStringLiteral("Copy To &Clipboard"));
    auto* file = new QPushButton(QStringLiteral("Copy To &File"));
    save_ = new QPushButton(QStringLiteral("&Save"));
    save_->setToolTip(
        QStringLiteral("Save comparison's process parameters so it can be re-run later (Alt + S)"));
    auto* print = new QPushButton(QStringLiteral("&Print"));
    auto* exit = new QPushButton(QStringLiteral("E&xit"));
    exit->setDefault(true);
    auto* findRow = new QHBoxLayout;
    findRow->addWidget(findText_, 1);
    findRow->addWidget(findNote_);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(alternative_);
    buttons->addStretch(1);
    for (QPushButton* button : {copy, file, save_, print, exit}) buttons->addWidget(button);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text_, 1);
    layout->addLayout(findRow);
    layout->addLayout(buttons);
    setMinimumSize(640, 360);
    resize(860, 640);
    setSizeGripEnabled(true);

    name(QStringLiteral("txtReport"), text_);
    name(QStringLiteral("findText"), findText_);
    name(QStringLiteral("findNote"), findNote_);
    name(QStringLiteral("chkAlternative"), alternative_);
    name(QStringLiteral("cmdCopyClip"), copy);
    name(QStringLiteral("cmdCopyToFile"), file);
    name(QStringLiteral("cmdSave"), save_);
    name(QStringLiteral("cmdPrint"), print);
    name(QStringLiteral("cmdExit"), exit);
    connect(alternative_, &QCheckBox::toggled, this,
            [this](bool on) { screen_.chkAlternative_Click(on); });
    connect(copy, &QPushButton::clicked, this, [this] { screen_.cmdCopyClip(); });
    connect(file, &QPushButton::clicked, this, [this] { screen_.cmdCopyToFile(); });
    connect(save_, &QPushButton::clicked, this, [this] { screen_.cmdSave(); });
    connect(print, &QPushButton::clicked, this, [this] { screen_.cmdPrint(); });
    connect(exit, &QPushButton::clicked, this, [this] { screen_.cmdExit(); });
    exit->setAutoDefault(false);
    connect(findText_, &QLineEdit::textChanged, this, [this](const QString& wanted) {
        finder_->search(wanted);
        finder_->goFromHere();
        findNote_->setText(finder_->note());
    });
    connect(findText_, &FindField::searched, this, [this](bool forward) { find(forward); });
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, [this] {
        findText_->setFocus();
        findText_->selectAll();
    });
    connect(new QShortcut(QKeySequence::FindNext, this), &QShortcut::activated, this,
            [this] { find(true); });
    connect(new QShortcut(QKeySequence::FindPrevious, this), &QShortcut::activated, this,
            [this] { find(false); });
}

void ReportDialog::showEvent(QShowEvent* event) {
    ScreenDialog::showEvent(event);
    QTimer::singleShot(0, this, [this] { screen_.Form_Activate(); });
}

void ReportDialog::refreshFields() {
    setWindowTitle(screen_.caption());
    text_->setPlainText(screen_.txtReport);
    alternative_->setText(screen_.alternative.caption);
    alternative_->setVisible(!screen_.alternative.caption.isEmpty());
    alternative_->setChecked(screen_.chkAlternative);
    save_->setVisible(screen_.cmdSaveVisible);
    save_->setEnabled(screen_.cmdSaveEnabled);
    if (!alternative_->hasFocus()) text_->setFocus();
}

void ReportDialog::find(bool forward) {
    if (findText_->text().isEmpty()) return findText_->setFocus();
    finder_->goOn(forward);
    findNote_->setText(finder_->note());
}

}  // namespace zov::qt
