#include "shell/qt/screens/view_dialogs.h"

#include "shell/qt/mark_colors.h"
#include "shell/qt/side_by_side_view.h"
#include "shell/qt/window_fit.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace zov::qt {

ColorSchemaDialog::ColorSchemaDialog(frmColorSchema& screen, QWidget* parent)
    : ScreenDialog(screen, parent) {
    auto* info = new QLabel(screen.lblInfo);
    info->setWordWrap(true);
    auto* grid = new QGridLayout;
    int row = 0;
    for (const frmColorSchema::Swatch& swatch : frmColorSchema::swatches()) {
        auto* color = new QLabel;
        color->setAutoFillBackground(true);
        QPalette palette = color->palette();
        palette.setColor(QPalette::Window, shownMarkColor(swatch.color, this->palette()));
        color->setPalette(palette);
        color->setFrameShape(QFrame::Box);
        color->setMinimumSize(56, 22);
        name(QStringLiteral("lblCol_%1").arg(row), color);
        grid->addWidget(color, row, 0);
        grid->addWidget(new QLabel(swatch.caption), row++, 1);
    }
    grid->setColumnStretch(1, 1);
    auto* close = new QPushButton(QStringLiteral("&Close"));
    close->setDefault(true);
    name(QStringLiteral("cmdClose"), close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(info);
    layout->addLayout(grid);
    layout->addWidget(close, 0, Qt::AlignRight);
    connect(close, &QPushButton::clicked, this, [&screen] { screen.cmdClose(); });
}

CompareTextDialog::CompareTextDialog(frmCompareText& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    view_ = new SideBySideView;
    view_->setTexts(screen.sourceLines, screen.targetLines, screen.rows);
    auto* names = new QHBoxLayout;
    for (const QString& text : {screen.lblSource, screen.lblTarget}) {
        auto* label = new ElidedLabel(text);
        QFont bold = label->font();
        bold.setBold(true);
        label->setFont(bold);
        names->addWidget(label, 1);
    }
    count_ = new QLabel(QStringLiteral("Differences: %1").arg(view_->differenceCount()));
    count_->setObjectName(QStringLiteral("differenceCount"));
    auto* previous =
        new QPushButton(QIcon(QStringLiteral(":/icons/previous.svg")), QStringLiteral("&Previous"));
    auto* next =
        new QPushButton(QIcon(QStringLiteral(":/icons/next.svg")), QStringLiteral("&Next"));
    auto* close = new QPushButton(QStringLiteral("&Close"));
    previous->setToolTip(QStringLiteral("Previous difference (Shift+F8)"));
    next->setToolTip(QStringLiteral("Next difference (F8)"));
    close->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(count_, 1);
    for (QPushButton* button : {previous, next, close}) buttons->addWidget(button);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(names);
    layout->addWidget(view_, 1);
    layout->addLayout(buttons);
    resize(1000, 640);
    name(QStringLiteral("cmdClose"), close);
    name(QStringLiteral("cmdNext"), next);
    name(QStringLiteral("cmdPrevious"), previous);
    connect(next, &QPushButton::clicked, this, [this] { goToDifference(true); });
    connect(previous, &QPushButton::clicked, this, [this] { goToDifference(false); });
    connect(close, &QPushButton::clicked, this, [this] { screen_.cmdClose(); });
    connect(new QShortcut(Qt::Key_F8, this), &QShortcut::activated, this,
            [this] { goToDifference(true); });
    connect(new QShortcut(Qt::SHIFT | Qt::Key_F8, this), &QShortcut::activated, this,
            [this] { goToDifference(false); });
}

void CompareTextDialog::goToDifference(bool forward) {
    const bool moved = view_->goToDifference(forward);
    const int count = view_->differenceCount();
    if (count == 0) return;
    QString text = QStringLiteral("Difference %1 of %2").arg(view_->currentDifference()).arg(count);
    if (!moved) text += QStringLiteral("; none further in this direction");
    count_->setText(text);
}

TipDialog::TipDialog(frmTip& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    tip_ = new QLabel;
    tip_->setWordWrap(true);
    tip_->setMinimumSize(380, 110);
    tip_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    tip_->setFrameShape(QFrame::StyledPanel);
    tip_->setMargin(12);
    atStart_ = new QCheckBox(QStringLiteral("&Show tips at startup"));
    auto* next = new QPushButton(QStringLiteral("&Next Tip"));
    auto* close = new QPushButton(QStringLiteral("&Close"));
    close->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(atStart_, 1);
    buttons->addWidget(next);
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tip_, 1);
    layout->addLayout(buttons);
    name(QStringLiteral("chkShowAtStartup"), atStart_);
    name(QStringLiteral("cmdNextTip"), next);
    name(QStringLiteral("cmdClose"), close);
    connect(atStart_, &QCheckBox::clicked, this,
            [this](bool on) { screen_.chkShowAtStartup_Click(on); });
    connect(next, &QPushButton::clicked, this, [this] { screen_.cmdNextTip(); });
    connect(close, &QPushButton::clicked, this, [this] { screen_.cmdClose(); });
}

void TipDialog::refreshFields() {
    tip_->setText(screen_.lblTip);
    atStart_->setChecked(screen_.chkShowAtStartup);
}

}  // namespace zov::qt
