#include "shell/qt/screens/server_dialogs.h"

#include "shell/qt/help_window.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace zov::qt {

AddServerDialog::AddServerDialog(frmAddServer& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    server_ = new QLineEdit;
    server_->setPlaceholderText(QStringLiteral("host, host,port, host\\instance or local:name"));
    database_ = new QLineEdit;
    windows_ = new QRadioButton(frmAddServer::optGenCaption(frmAddServer::WindowsAuthentication));
    sqlServer_ =
        new QRadioButton(frmAddServer::optGenCaption(frmAddServer::SqlServerAuthentication));
    login_ = new QLineEdit;
    password_ = new QLineEdit;
    password_->setEchoMode(QLineEdit::Password);
    auto* frame = new QGroupBox;
    loginFrame_ = frame;
    auto* loginForm = new QFormLayout(frame);
    loginForm->addRow(QStringLiteral("&Login name:"), login_);
    loginForm->addRow(QStringLiteral("&Password:"), password_);

    auto* ok = new QPushButton(QStringLiteral("&OK"));
    auto* cancel = new QPushButton(QStringLiteral("&Cancel"));
    auto* help = new QPushButton(QStringLiteral("&Help"));
    ok->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    for (QPushButton* button : {ok, cancel, help}) buttons->addWidget(button);

    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("&Server name:"), server_);
    form->addRow(QStringLiteral("&Database:"), database_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(windows_);
    layout->addWidget(sqlServer_);
    layout->addWidget(frame);
    layout->addLayout(buttons);
    setMinimumWidth(420);

    name(QStringLiteral("txtServer"), server_);
    name(QStringLiteral("txtDatabase"), database_);
    name(QStringLiteral("optGen_0"), windows_);
    name(QStringLiteral("optGen_1"), sqlServer_);
    name(QStringLiteral("fraLogin"), frame);
    name(QStringLiteral("txtLogin"), login_);
    name(QStringLiteral("txtPassword"), password_);
    name(QStringLiteral("cmdOK"), ok);
    name(QStringLiteral("cmdCancel"), cancel);
    name(QStringLiteral("cmdHelp"), help);

    connect(windows_, &QRadioButton::clicked, this, [this] {
        takeFields();
        screen_.optGen_Click(frmAddServer::WindowsAuthentication);
    });
    connect(sqlServer_, &QRadioButton::clicked, this, [this] {
        takeFields();
        screen_.optGen_Click(frmAddServer::SqlServerAuthentication);
    });
    connect(ok, &QPushButton::clicked, this, [this] {
        takeFields();
        screen_.cmdOK();
    });
    connect(cancel, &QPushButton::clicked, this, [this] { screen_.cmdCancel(); });
    connect(help, &QPushButton::clicked, this, [this] { showHelpPage(helpPage(), this); });
}

void AddServerDialog::takeFields() {
    screen_.txtServer = server_->text();
    screen_.txtDatabase = database_->text();
    screen_.txtLogin = login_->text();
    screen_.txtPassword = password_->text();
}

void AddServerDialog::refreshFields() {
    server_->setText(screen_.txtServer);
    database_->setText(screen_.txtDatabase);
    const bool windows = screen_.optGen == frmAddServer::WindowsAuthentication;
    windows_->setChecked(windows);
    sqlServer_->setChecked(!windows);
    loginFrame_->setEnabled(screen_.fraLoginEnabled);
    login_->setText(screen_.txtLogin);
    password_->setText(screen_.txtPassword);
}

bool AddServerDialog::leave() {
    screen_.cmdCancel();
    return true;
}

DeleteServerDialog::DeleteServerDialog(frmDeleteServer& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    servers_ = new QListWidget;
    servers_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    servers_->setAccessibleName(QStringLiteral("Stored servers"));
    auto* remove = new QPushButton(QStringLiteral("&Remove"));
    auto* exit = new QPushButton(QStringLiteral("E&xit"));
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(remove);
    buttons->addWidget(exit);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Select the server to be removed from the list:")));
    layout->addWidget(servers_);
    layout->addLayout(buttons);
    name(QStringLiteral("lstServers"), servers_);
    name(QStringLiteral("cmdRemove"), remove);
    name(QStringLiteral("cmdExit"), exit);
    remove->setDefault(true);
    connect(servers_, &QListWidget::itemSelectionChanged, this, [this] {
        screen_.selectedRows.clear();
        for (const QModelIndex& index : servers_->selectionModel()->selectedRows())
            screen_.selectedRows.insert(index.row());
    });
    connect(remove, &QPushButton::clicked, this, [this] { screen_.cmdRemove(); });
    connect(exit, &QPushButton::clicked, this, [this] { screen_.cmdExit(); });
}

void DeleteServerDialog::refreshFields() {
    servers_->clear();
    servers_->addItems(screen_.lstServers);
}

bool DeleteServerDialog::leave() {
    screen_.cmdExit();
    return true;
}

}  // namespace zov::qt
