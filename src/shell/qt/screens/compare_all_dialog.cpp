#include "shell/qt/screens/compare_all_dialog.h"

#include "shell/qt/window_fit.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace zov::qt {

CompareAllDialog::CompareAllDialog(frmCompareAllTables& form, QWidget* parent)
    : ScreenDialog(form, parent), form_(form) {
    static const char* const captions[] = {"&Tables",      "&Procedures", "&Functions",
                                           "&Views",       "T&riggers",   "R&elationships",
                                           "&Constraints", "Per&missions"};
    stack_ = new QStackedWidget;
    auto* choose = new QWidget;
    auto* chooseLayout = new QVBoxLayout(choose);
    chooseLayout->setContentsMargins(0, 0, 0, 0);
    chooseLayout->addWidget(
        new QLabel(QStringLiteral("Select the types of objects to be compared:")));
    auto* status = new QWidget;
    auto* statusLayout = new QVBoxLayout(status);
    statusLayout->setContentsMargins(0, 0, 0, 0);
    for (size_t i = 0; i < boxes_.size(); ++i) {
        boxes_[i] = new QCheckBox(QString::fromLatin1(captions[i]));
        name(QStringLiteral("chkObjType_%1").arg(i), boxes_[i]);
        chooseLayout->addWidget(boxes_[i]);
        connect(boxes_[i], &QCheckBox::toggled, this,
                [this, i](bool on) { form_.chkObjType[i] = on; });
        comparing_[i] = new QLabel;
        statusLayout->addWidget(comparing_[i]);
    }
    chooseLayout->addStretch(1);
    current_ = new ElidedLabel;
    name(QStringLiteral("lblCurProcName"), current_);
    time_ = new QLabel;
    name(QStringLiteral("lblTime"), time_);
    statusLayout->addStretch(1);
    statusLayout->addWidget(current_);
    statusLayout->addWidget(time_);
    stack_->addWidget(choose);
    stack_->addWidget(status);
    compare_ = new QPushButton(QStringLiteral("&Compare"));
    name(QStringLiteral("cmdCompare"), compare_);
    compare_->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("C&ancel"));
    name(QStringLiteral("cmdCancel"), cancel);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(compare_);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(stack_, 1);
    layout->addLayout(buttons);
    setMinimumSize(380, 340);
    dots_ = new QTimer(this);
    dots_->setInterval(400);
    connect(dots_, &QTimer::timeout, this, [this] { form_.tmrStatus_Timer(); });
    connect(compare_, &QPushButton::clicked, this, [this] { form_.cmdCompare_Click(); });
    connect(cancel, &QPushButton::clicked, this, [this] { form_.cmdCancel_Click(); });
}

bool CompareAllDialog::leave() {
    form_.cmdCancel_Click();
    return form_.isClosed();
}

void CompareAllDialog::showEvent(QShowEvent* event) {
    ScreenDialog::showEvent(event);
    QTimer::singleShot(0, this, [this] { form_.Form_Activate(); });
}

void CompareAllDialog::refreshFields() {
    const frmCompareAllTables& form = form_;
    setWindowTitle(form.Caption);
    stack_->setCurrentIndex(form.fraContainerVisible ? 1 : 0);
    for (size_t i = 0; i < boxes_.size(); ++i) {
        boxes_[i]->setVisible(int(i) < form.visibleBoxes);
        if (boxes_[i]->isChecked() != form.chkObjType[i]) boxes_[i]->setChecked(form.chkObjType[i]);
        if (comparing_[i]->text() != form.lblComparing[i])
            comparing_[i]->setText(form.lblComparing[i]);
        comparing_[i]->setVisible(!form.lblComparing[i].isEmpty());
    }
    current_->setVisible(form.lblCurProcNameVisible);
    current_->setText(form.lblCurProcName);
    time_->setText(form.lblTime);
    compare_->setEnabled(form.cmdCompareEnabled);
    if (form.tmrStatusEnabled != dots_->isActive()) {
        if (form.tmrStatusEnabled)
            dots_->start();
        else
            dots_->stop();
    }
}

}  // namespace zov::qt
