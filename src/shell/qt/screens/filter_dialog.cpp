#include "shell/qt/screens/filter_dialog.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QVBoxLayout>

namespace zov::qt {

FilterDialog::FilterDialog(frmFilterBySchema& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    info_ = new QLabel;
    info_->setWordWrap(true);
    list_ = new QListWidget;
    list_->setAccessibleName(QStringLiteral("Names to show"));
    auto* save = new QPushButton(QStringLiteral("&Save"));
    auto* cancel = new QPushButton(QStringLiteral("&Cancel"));
    save->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(save);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(info_);
    layout->addWidget(list_, 1);
    layout->addLayout(buttons);
    resize(360, 420);
    name(QStringLiteral("rpcReport"), list_);
    name(QStringLiteral("cmdSave"), save);
    name(QStringLiteral("cmdCancel"), cancel);
    connect(list_, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
        if (filling_) return;
        const int row = list_->row(item);
        screen_.rpcReport_ItemCheck(row);
        refreshFields();
    });
    connect(save, &QPushButton::clicked, this, [this] { screen_.cmdSave(); });
    connect(cancel, &QPushButton::clicked, this, [this] { screen_.cmdCancel(); });
}

void FilterDialog::refreshFields() {
    const QScopedValueRollback<bool> filling(filling_, true);
    setWindowTitle(screen_.caption());
    info_->setText(screen_.lblInfo);
    const auto& records = screen_.rpcReport.records;
    while (list_->count() > int(records.size())) delete list_->takeItem(list_->count() - 1);
    while (list_->count() < int(records.size())) list_->addItem(QString());
    for (int row = 0; row < list_->count(); ++row) {
        const GridReportItem& item = records[size_t(row)][SchemaNameColumn];
        list_->item(row)->setText(item.text());
        list_->item(row)->setCheckState(item.checked ? Qt::Checked : Qt::Unchecked);
    }
}

bool FilterDialog::leave() {
    return screen_.Form_QueryUnload();
}

}  // namespace zov::qt
