#include "shell/qt/data/compare_data_dialog.h"

#include "shell/qt/data/grid_pane.h"
#include "shell/qt/mark_colors.h"
#include "shell/qt/window_fit.h"

#include <QAction>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace zov::qt {
namespace {

constexpr int TextSwatch = 4;  ///< the legend's last line is about the text's colour
constexpr quint32 SwatchColors[] = {difference_color::SourceHalf, difference_color::TargetHalf,
                                    difference_color::SourceOnly, difference_color::TargetOnly,
                                    difference_color::DifferingText};

QLabel* plainLabel() {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    return label;
}

}  // namespace

CompareDataDialog::CompareDataDialog(frmCompareData& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    grid_ = new GridPane(screen.VSFlexGrid1, true, this);
    auto* sort = new QAction(QStringLiteral("Sort columns alphabetically"), this);
    sort->setObjectName(QStringLiteral("mnuPopUpSortColumns"));
    grid_->addMenuAction(sort);
    connect(sort, &QAction::triggered, this, [this] { screen_.mnuPopUpSortColumns_Click(); });

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(labels());
    layout->addWidget(grid_, 1);
    layout->addLayout(legend());
    layout->addLayout(buttons());
    resize(1000, 680);
    paintLegend();
    grid_->view()->setFocus();
}

QLayout* CompareDataDialog::labels() {
    auto* layout = new QGridLayout;
    for (const int side : {0, 1}) {
        tables_[side] = new ElidedLabel;
        QFont bold = tables_[side]->font();
        bold.setBold(true);
        tables_[side]->setFont(bold);
        name(QStringLiteral("lblTableName_%1").arg(side), tables_[side]);
        layout->addWidget(tables_[side], side, 0, Qt::AlignTop);
    }
    ignored_ = plainLabel();
    method_ = plainLabel();
    name(QStringLiteral("lblGen_0"), ignored_);
    name(QStringLiteral("lblGen_11"), method_);
    layout->addWidget(ignored_, 2, 0, Qt::AlignTop);
    layout->addWidget(method_, 0, 1, 3, 1, Qt::AlignTop | Qt::AlignRight);
    layout->setColumnStretch(0, 1);
    return layout;
}

QLayout* CompareDataDialog::legend() {
    auto* layout = new QGridLayout;
    layout->setHorizontalSpacing(8);
    layout->setVerticalSpacing(2);
    for (int i = 0; i < 5; ++i) {
        swatches_[i] = new QLabel(i == TextSwatch ? QStringLiteral("abc") : QString());
        swatches_[i]->setFixedWidth(36);
        swatches_[i]->setAlignment(Qt::AlignCenter);
        swatches_[i]->setAutoFillBackground(true);
        QLabel* text = plainLabel();
        text->setText(frmCompareData::lblColorDesc[i]);
        name(QStringLiteral("lblColor_%1").arg(i), swatches_[i]);
        name(QStringLiteral("lblColorDesc_%1").arg(i), text);
        layout->addWidget(swatches_[i], i, 0);
        layout->addWidget(text, i, 1);
    }
    QFont bold = swatches_[TextSwatch]->font();
    bold.setBold(true);
    swatches_[TextSwatch]->setFont(bold);
    for (int i = 0; i < 6; ++i) {
        stats_[i] = plainLabel();
        name(QStringLiteral("lblStats_%1").arg(i), stats_[i]);
        layout->addWidget(stats_[i], i % 3, 3 + i / 3, i < 3 ? Qt::AlignLeft : Qt::AlignRight);
    }
    maxRows_ = plainLabel();
    name(QStringLiteral("lblMaxRows"), maxRows_);
    layout->addWidget(maxRows_, 3, 3, 1, 2);
    layout->setColumnStretch(2, 1);
    return layout;
}

QLayout* CompareDataDialog::buttons() {
    auto* layout = new QHBoxLayout;
    const auto step = [&](const char* icon, const QString& toolTip, QAction* action) {
        auto* button = new QToolButton;
        button->setIcon(QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(icon))));
        button->setToolTip(toolTip);
        button->setAccessibleName(toolTip);
        connect(button, &QToolButton::clicked, action, &QAction::trigger);
        layout->addWidget(button);
        return button;
    };
    name(QStringLiteral("previousDifference"),
         step("previous", QStringLiteral("Previous difference (Shift+F8)"),
              grid_->previousDifferenceAction()));
    name(QStringLiteral("nextDifference"),
         step("next", QStringLiteral("Next difference (F8)"), grid_->nextDifferenceAction()));
    layout->addStretch(1);
    const auto push = [&](const char* control, const QString& caption, const QString& toolTip,
                          auto slot) {
        auto* button = new QPushButton(caption);
        button->setToolTip(toolTip);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, slot);
        layout->addWidget(button);
        name(QString::fromLatin1(control), button);
        return button;
    };
    save_ = push("cmdSave", QStringLiteral("&Save"),
                 QStringLiteral("Save comparison's process parameters so it can be re-run later "
                                "(Alt + S)"),
                 [this] { screen_.cmdSave_Click(); });
    push("cmdExport", QStringLiteral("&Export"),
         QStringLiteral("Export data differences (Alt + E)"),
         [this] { screen_.cmdExport_Click(); });
    push("cmdExit", QStringLiteral("E&xit"), QStringLiteral("Close this form (Alt + X)"),
         [this] { screen_.cmdExit_Click(); });
    return layout;
}

void CompareDataDialog::paintLegend() {
    for (int i = 0; i < 5; ++i) {
        QPalette colors = palette();
        if (i == TextSwatch) {
            colors.setColor(QPalette::Window, shownMarkColor(SwatchColors[0], palette()));
            colors.setColor(QPalette::WindowText, shownTextColor(SwatchColors[i], palette()));
        } else {
            colors.setColor(QPalette::Window, shownMarkColor(SwatchColors[i], palette()));
        }
        swatches_[i]->setPalette(colors);
    }
}

void CompareDataDialog::changeEvent(QEvent* event) {
    ScreenDialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && swatches_[TextSwatch]) paintLegend();
}

void CompareDataDialog::reject() {
    if (!grid_->closeFind()) ScreenDialog::reject();
}

bool CompareDataDialog::leave() {
    screen_.cmdExit_Click();
    return screen_.isClosed();
}

void CompareDataDialog::showEvent(QShowEvent* event) {
    ScreenDialog::showEvent(event);
    QTimer::singleShot(0, this, [this] { screen_.Form_Activate(); });
}

void CompareDataDialog::refreshFields() {
    setWindowTitle(screen_.Caption);
    for (const int side : {0, 1}) tables_[side]->setText(screen_.lblTableName[side]);
    method_->setText(screen_.lblGen11);
    ignored_->setText(screen_.lblGen0);
    ignored_->setVisible(!screen_.lblGen0.isEmpty());
    for (int i = 0; i < 6; ++i) stats_[i]->setText(screen_.lblStats[i]);
    maxRows_->setText(screen_.lblMaxRows);
    maxRows_->setVisible(screen_.lblMaxRowsVisible);
    save_->setEnabled(screen_.cmdSaveEnabled);
    grid_->readAnew();
}

}  // namespace zov::qt
