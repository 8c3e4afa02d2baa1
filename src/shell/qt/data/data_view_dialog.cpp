#include "shell/qt/data/data_view_dialog.h"

#include "shell/qt/data/grid_pane.h"
#include "shell/qt/window_fit.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

namespace zov::qt {
namespace {

// Loading tells every forty rows; a screen shows this often.
constexpr qint64 PaintMilliseconds = 30;

}  // namespace

DataViewDialog::DataViewDialog(frmDataView& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    auto* table = new ElidedLabel(screen.lblTableName);
    auto* stats = new QLabel(screen.lblStats);
    stats->setTextFormat(Qt::PlainText);
    grid_ = new GridPane(screen.VSFlexGrid1, false, this);
    loading_ = new QWidget;
    bar_ = new QProgressBar;
    bar_->setMinimumWidth(160);
    current_ = new QLabel;
    time_ = new QLabel;
    auto* loading = new QHBoxLayout(loading_);
    loading->setContentsMargins(0, 0, 0, 0);
    loading->addWidget(new QLabel(QStringLiteral("Current record:")));
    loading->addWidget(current_);
    loading->addSpacing(8);
    loading->addWidget(new QLabel(QStringLiteral("Time elapsed:")));
    loading->addWidget(time_);
    loading->addSpacing(8);
    loading->addWidget(bar_, 1);
    stop_ = new QPushButton(QStringLiteral("&Stop"));
    stop_->setToolTip(QStringLiteral("Stop loading data (Esc)"));
    export_ = new QPushButton(QStringLiteral("&Export"));
    export_->setToolTip(QStringLiteral("Export data to HTML or CSV file"));
    auto* exit = new QPushButton(QStringLiteral("E&xit"));
    exit->setToolTip(QStringLiteral("Close this window"));
    for (QPushButton* button : {stop_, export_, exit}) button->setAutoDefault(false);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(stats);
    buttons->addStretch(1);
    buttons->addWidget(stop_);
    buttons->addWidget(export_);
    buttons->addWidget(exit);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(table);
    layout->addWidget(grid_, 1);
    layout->addWidget(loading_);
    layout->addLayout(buttons);
    resize(900, 600);
    name(QStringLiteral("lblTableName"), table);
    name(QStringLiteral("lblStats"), stats);
    name(QStringLiteral("ProgressBar"), bar_);
    name(QStringLiteral("lblCurRec"), current_);
    name(QStringLiteral("lblTime"), time_);
    name(QStringLiteral("cmdStop"), stop_);
    name(QStringLiteral("cmdExport"), export_);
    name(QStringLiteral("cmdExit"), exit);
    connect(stop_, &QPushButton::clicked, this, [this] { screen_.cmdStop_Click(); });
    connect(export_, &QPushButton::clicked, this, [this] { screen_.cmdExport_Click(); });
    connect(exit, &QPushButton::clicked, this, [this] { screen_.cmdExit_Click(); });
    grid_->view()->setFocus();
    sincePaint_.start();
}

void DataViewDialog::reject() {
    if (grid_->closeFind()) return;
    if (screen_.cmdStopEnabled)
        screen_.cmdStop_Click();
    else
        ScreenDialog::reject();
}

bool DataViewDialog::leave() {
    screen_.cmdExit_Click();
    return screen_.isClosed();
}

void DataViewDialog::showEvent(QShowEvent* event) {
    ScreenDialog::showEvent(event);
    QTimer::singleShot(0, this, [this] { screen_.Form_Activate(); });
}

void DataViewDialog::refreshFields() {
    const bool loading = screen_.loadControlsVisible;
    const bool changed =
        loading != loading_->isVisibleTo(this) || export_->isEnabled() != screen_.cmdExportEnabled;
    if (!changed && sincePaint_.elapsed() < PaintMilliseconds) return;
    sincePaint_.restart();
    grid_->isLoading = loading;
    loading_->setVisible(loading);
    stop_->setEnabled(screen_.cmdStopEnabled);
    export_->setEnabled(screen_.cmdExportEnabled);
    current_->setText(screen_.lblCurRec);
    time_->setText(screen_.lblTime);
    bar_->setValue(screen_.ProgressBar);
    grid_->readAnew();
    if (loading) grid_->scrollToRow(screen_.topRow);
}

}  // namespace zov::qt
