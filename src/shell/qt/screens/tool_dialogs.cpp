#include "shell/qt/screens/tool_dialogs.h"

#include "shell/qt/help_window.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace zov::qt {

AttachDialog::AttachDialog(frmAttachDb& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    auto* form = new QFormLayout;
    const char* const captions[] = {"Database &Name:", "Database &File:", "&Log File:"};
    for (int i = 0; i < 3; ++i) {
        paths_[i] = new QLineEdit;
        auto* row = new QWidget;
        auto* layout = new QHBoxLayout(row);
        layout->setContentsMargins({});
        layout->addWidget(paths_[i]);
        auto* caption = new QLabel(QLatin1StringView(captions[i]));
        caption->setBuddy(paths_[i]);
        name(QStringLiteral("txtPath_%1").arg(i), paths_[i]);
        if (i > 0) {
            auto* select = new QPushButton(QStringLiteral("..."));
            select->setAccessibleName(i == 1 ? QStringLiteral("Select Database File")
                                             : QStringLiteral("Select Log File"));
            layout->addWidget(select);
            name(QStringLiteral("cmdFileSelect_%1").arg(i - 1), select);
            connect(select, &QPushButton::clicked, this, [this, i] {
                takeFields();
                screen_.cmdFileSelect_Click(frmAttachDb::File(i - 1));
            });
        }
        form->addRow(caption, row);
        logRow_ = row;
    }
    singleFile_ = new QCheckBox(QStringLiteral("Attach &single file"));
    auto* info = new QLabel(frmAttachDb::lblInfo());
    info->setWordWrap(true);
    auto* heading = new QLabel(frmAttachDb::lblHeading());
    heading->setWordWrap(true);
    auto* attach = new QPushButton(QStringLiteral("&Attach"));
    auto* cancel = new QPushButton(QStringLiteral("&Cancel"));
    auto* help = new QPushButton(QStringLiteral("&Help"));
    attach->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    for (QPushButton* button : {attach, cancel, help}) buttons->addWidget(button);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addLayout(form);
    layout->addWidget(singleFile_);
    layout->addWidget(info);
    layout->addStretch(1);
    layout->addLayout(buttons);
    setMinimumWidth(480);

    name(QStringLiteral("chkAttachSingleFile"), singleFile_);
    name(QStringLiteral("lblInfo"), info);
    name(QStringLiteral("cmdOK"), attach);
    name(QStringLiteral("cmdCancel"), cancel);
    name(QStringLiteral("cmdHelp"), help);
    connect(singleFile_, &QCheckBox::clicked, this, [this](bool on) {
        takeFields();
        screen_.chkAttachSingleFile_Click(on);
    });
    connect(attach, &QPushButton::clicked, this, [this] {
        takeFields();
        screen_.cmdOK();
    });
    connect(cancel, &QPushButton::clicked, this, [this] { screen_.cmdCancel(); });
    connect(help, &QPushButton::clicked, this, [this] { showHelpPage(helpPage(), this); });
}

void AttachDialog::takeFields() {
    for (int i = 0; i < 3; ++i) screen_.txtPath[i] = paths_[i]->text();
}

void AttachDialog::refreshFields() {
    for (int i = 0; i < 3; ++i) paths_[i]->setText(screen_.txtPath[i]);
    singleFile_->setChecked(screen_.chkAttachSingleFile);
    logRow_->setEnabled(screen_.logFileEnabled());
}

ExecSpDialog::ExecSpDialog(frmExecSp& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    auto* form = new QFormLayout;
    const std::pair<const char*, const char*> rows[] = {{"txt_empid", "&Employee Id:"},
                                                        {"txt_firstname", "&First Name:"},
                                                        {"txt_title", "&Title:"},
                                                        {"txt_address", "&Address:"}};
    for (size_t i = 0; i < std::size(rows); ++i) {
        fields_[i] = new QLineEdit;
        form->addRow(QLatin1StringView(rows[i].second), fields_[i]);
        name(QLatin1StringView(rows[i].first), fields_[i]);
    }
    auto* get = new QPushButton(QStringLiteral("&Get"));
    auto* update = new QPushButton(QStringLiteral("&Update"));
    get->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(get);
    buttons->addWidget(update);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);
    setMinimumWidth(420);
    name(QStringLiteral("cmd_get"), get);
    name(QStringLiteral("cmd_update"), update);
    connect(get, &QPushButton::clicked, this, [this] {
        takeFields();
        screen_.cmd_get_Click();
    });
    connect(update, &QPushButton::clicked, this, [this] {
        takeFields();
        screen_.cmd_update_Click();
    });
}

void ExecSpDialog::takeFields() {
    screen_.txt_empid = fields_[0]->text();
    screen_.txt_firstname = fields_[1]->text();
    screen_.txt_title = fields_[2]->text();
    screen_.txt_address = fields_[3]->text();
}

void ExecSpDialog::refreshFields() {
    const QString texts[] = {screen_.txt_empid, screen_.txt_firstname, screen_.txt_title,
                             screen_.txt_address};
    for (size_t i = 0; i < std::size(texts); ++i) fields_[i]->setText(texts[i]);
}

}  // namespace zov::qt
