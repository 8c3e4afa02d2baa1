#include "shell/qt/screens/db_info_dialog.h"

#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace zov::qt {

DbInfoDialog::DbInfoDialog(frmGetDbInfo& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    const auto label = [this](const char* control, const QString& text = {}) {
        auto* made = new QLabel(text);
        made->setTextFormat(Qt::PlainText);
        // A long name is cut, it doesn't widen the window.
        made->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        name(QString::fromLatin1(control), made);
        return made;
    };
    auto* cancel = new QPushButton(QStringLiteral("&Cancel"));
    cancel->setToolTip(QStringLiteral("Stop analyzing (Esc)"));
    cancel->setDefault(true);
    name(QStringLiteral("cmdCancel"), cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label("lblInfo", screen.lblInfo));
    layout->addWidget(stage_ = label("lblComparing"));
    layout->addWidget(name_ = label("lblCurName"));
    layout->addStretch(1);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(new QLabel(QStringLiteral("Time elapsed:")));
    bottom->addWidget(time_ = label("lblTime"), 1);
    bottom->addWidget(cancel);
    layout->addLayout(bottom);
    setMinimumSize(420, 150);
    connect(cancel, &QPushButton::clicked, this, [this] { screen_.cmdCancel_Click(); });
}

void DbInfoDialog::refreshFields() {
    stage_->setText(screen_.lblComparing);
    name_->setText(screen_.lblCurName);
    time_->setText(screen_.lblTime);
}

bool DbInfoDialog::leave() {
    screen_.cmdCancel_Click();
    return screen_.isClosed();
}

void DbInfoDialog::showEvent(QShowEvent* event) {
    ScreenDialog::showEvent(event);
    QTimer::singleShot(0, this, [this] { screen_.Form_Activate(); });
}

}  // namespace zov::qt
