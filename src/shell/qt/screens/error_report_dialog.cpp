#include "shell/qt/screens/error_report_dialog.h"

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace zov::qt {

ErrorReportDialog::ErrorReportDialog(frmErrorReport& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    title_ = new QLabel;
    QFont bold = title_->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.2);
    title_->setFont(bold);
    intro_ = new QLabel;
    intro_->setWordWrap(true);
    contents_ = new QPlainTextEdit;
    contents_->setReadOnly(true);
    contents_->setTabChangesFocus(true);
    comments_ = new QPlainTextEdit;
    comments_->setTabChangesFocus(true);
    comments_->setPlaceholderText(QStringLiteral("(Highly recommended.)"));
    email_ = new QLineEdit;
    auto* send = new QPushButton(QStringLiteral("&Send Error Report"));
    auto* cancel = new QPushButton(QStringLiteral("&Do Not Send"));
    // Enter must not send anything by chance.
    cancel->setDefault(true);

    const auto labelled = [](const QString& text, QWidget* buddy) {
        auto* label = new QLabel(text);
        label->setBuddy(buddy);
        return label;
    };
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title_);
    layout->addWidget(intro_);
    layout->addWidget(labelled(QStringLiteral("Error Report Contents:"), contents_));
    layout->addWidget(contents_, 1);
    layout->addWidget(labelled(
        QStringLiteral("How you got this error, and how we can reproduce it:"), comments_));
    layout->addWidget(comments_, 1);
    layout->addWidget(labelled(
        QStringLiteral("Your email address, so we can contact you about this problem:"), email_));
    layout->addWidget(email_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(send);
    buttons->addWidget(cancel);
    layout->addLayout(buttons);
    resize(560, 560);

    name(QStringLiteral("txtErrDesc"), contents_);
    name(QStringLiteral("txtComments"), comments_);
    name(QStringLiteral("txtEmail"), email_);
    name(QStringLiteral("cmdSend"), send);
    name(QStringLiteral("cmdCancel"), cancel);
    connect(send, &QPushButton::clicked, this, [this] {
        screen_.txtComments = comments_->toPlainText();
        screen_.txtEmail = email_->text();
        screen_.cmdSend();
    });
    connect(cancel, &QPushButton::clicked, this, [this] { screen_.cmdCancel(); });
}

void ErrorReportDialog::refreshFields() {
    title_->setText(screen_.lblTitle);
    intro_->setText(screen_.lblIntro);
    contents_->setPlainText(screen_.txtErrDesc);
}

bool ErrorReportDialog::leave() {
    screen_.cmdCancel();
    return true;
}

}  // namespace zov::qt
