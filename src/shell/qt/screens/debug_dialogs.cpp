#include "shell/qt/screens/debug_dialogs.h"

#include <QCheckBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace zov::qt {

SpareDialog::SpareDialog(frmSpare& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    source_ = new QPlainTextEdit;
    result_ = new QPlainTextEdit;
    result_->setReadOnly(true);
    for (QPlainTextEdit* text : {source_, result_}) {
        text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        text->setLineWrapMode(QPlainTextEdit::NoWrap);
        text->setTabChangesFocus(true);
    }
    auto* strip = new QPushButton(QStringLiteral("&Strip Comments"));
    auto* exit = new QPushButton(QStringLiteral("E&xit"));
    strip->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(strip);
    buttons->addWidget(exit);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(source_, 1);
    layout->addWidget(result_, 1);
    layout->addLayout(buttons);
    resize(640, 560);
    name(QStringLiteral("txtSource"), source_);
    name(QStringLiteral("txtResult"), result_);
    name(QStringLiteral("cmdStrip"), strip);
    name(QStringLiteral("cmdExit"), exit);
    connect(strip, &QPushButton::clicked, this, [this] {
        screen_.txtSource = source_->toPlainText();
        screen_.cmdStrip_Click();
    });
    connect(exit, &QPushButton::clicked, this, [this] { screen_.cmdExit(); });
}

void SpareDialog::refreshFields() {
    if (source_->toPlainText() != screen_.txtSource) source_->setPlainText(screen_.txtSource);
    result_->setPlainText(screen_.txtResult);
}

OptionsDebugDialog::OptionsDebugDialog(frmOptionsDebug& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    offline_ = new QCheckBox(QStringLiteral("&Filter offline databases"));
    width_ = new QSpinBox;
    height_ = new QSpinBox;
    width_->setRange(frmOptionsDebug::LeastPageWidth, 1'000'000);
    height_->setRange(frmOptionsDebug::LeastPageHeight, 1'000'000);
    auto* save = new QPushButton(QStringLiteral("&Save"));
    auto* cancel = new QPushButton(QStringLiteral("&Cancel"));
    save->setDefault(true);
    auto* form = new QFormLayout;
    form->addRow(offline_);
    form->addRow(QStringLiteral("Page &width (twips):"), width_);
    form->addRow(QStringLiteral("Page &height (twips):"), height_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(save);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);
    name(QStringLiteral("chkFilterOfflineDbs"), offline_);
    name(QStringLiteral("txtPageWidth"), width_);
    name(QStringLiteral("txtPageHeight"), height_);
    name(QStringLiteral("cmdSave"), save);
    name(QStringLiteral("cmdCancel"), cancel);
    connect(save, &QPushButton::clicked, this, [this] {
        screen_.chkFilterOfflineDbs = offline_->isChecked();
        screen_.txtPageWidth = width_->value();
        screen_.txtPageHeight = height_->value();
        screen_.cmdSave();
    });
    connect(cancel, &QPushButton::clicked, this, [this] { screen_.cmdCancel(); });
}

void OptionsDebugDialog::refreshFields() {
    offline_->setChecked(screen_.chkFilterOfflineDbs);
    width_->setValue(screen_.txtPageWidth);
    height_->setValue(screen_.txtPageHeight);
}

}  // namespace zov::qt
