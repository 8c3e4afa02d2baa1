#include "shell/qt/screens/compare_and_print_dialog.h"

#include "shell/qt/window_fit.h"

#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace zov::qt {

CompareAndPrintDialog::CompareAndPrintDialog(frmCompareAndPrint& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    name_ = new ElidedLabel;
    time_ = new QLabel;
    clock_ = new QTimer(this);
    clock_->setInterval(500);
    auto* cancel = new QPushButton(QStringLiteral("C&ancel"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Comparing and printing the tables:")));
    layout->addWidget(name_);
    layout->addStretch(1);
    layout->addWidget(time_);
    layout->addWidget(cancel, 0, Qt::AlignRight);
    setMinimumSize(380, 170);
    name(QStringLiteral("lblCurProcName"), name_);
    name(QStringLiteral("lblTime"), time_);
    name(QStringLiteral("cmdCancel"), cancel);
    connect(clock_, &QTimer::timeout, this, [this] { screen_.tmrStatus_Timer(); });
    connect(cancel, &QPushButton::clicked, this, [this] { screen_.cmdCancel_Click(); });
}

void CompareAndPrintDialog::refreshFields() {
    name_->setText(screen_.lblCurProcName);
    time_->setText(screen_.lblTime);
    if (screen_.tmrStatusEnabled == clock_->isActive()) return;
    if (screen_.tmrStatusEnabled)
        clock_->start();
    else
        clock_->stop();
}

bool CompareAndPrintDialog::leave() {
    screen_.cmdCancel_Click();
    return screen_.isClosed();
}

void CompareAndPrintDialog::showEvent(QShowEvent* event) {
    ScreenDialog::showEvent(event);
    QTimer::singleShot(0, this, [this] { screen_.Form_Activate(); });
}

}  // namespace zov::qt
