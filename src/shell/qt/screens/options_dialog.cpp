#include "shell/qt/screens/options_dialog.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace zov::qt {
namespace {

constexpr int PageRole = Qt::UserRole;

}  // namespace

OptionsDialog::OptionsDialog(frmOptions& screen, QWidget* parent)
    : ScreenDialog(screen, parent), screen_(screen) {
    tree_ = new QTreeWidget;
    tree_->setHeaderHidden(true);
    tree_->setAccessibleName(QStringLiteral("Pages"));
    stack_ = new QStackedWidget;
    QHash<QString, QTreeWidgetItem*> roots;
    for (const OptionsPage& page : frmOptions::pages()) {
        auto* item = page.parent.isEmpty()
                         ? new QTreeWidgetItem(tree_, {page.node})
                         : new QTreeWidgetItem(roots.value(page.parent), {page.node});
        if (page.parent.isEmpty()) roots.insert(page.node, item);
        item->setData(0, PageRole, page.controls.empty() ? -1 : stack_->addWidget(makePage(page)));
    }
    tree_->expandAll();
    connect(tree_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        // A node without a page of its own shows its first leaf's.
        if (item && item->data(0, PageRole).toInt() < 0 && item->childCount())
            item = item->child(0);
        if (item) stack_->setCurrentIndex(item->data(0, PageRole).toInt());
    });
    tree_->setCurrentItem(tree_->topLevelItem(0));

    auto* save = new QPushButton(QStringLiteral("&Save"));
    auto* cancel = new QPushButton(QStringLiteral("&Cancel"));
    save->setDefault(true);
    auto* top = new QHBoxLayout;
    top->addWidget(tree_, 2);
    top->addWidget(stack_, 5);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(save);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addLayout(buttons);
    resize(800, 520);
    name(QStringLiteral("TreeViewIcons"), tree_);
    name(QStringLiteral("cmdSave"), save);
    name(QStringLiteral("cmdCancel"), cancel);
    connect(save, &QPushButton::clicked, this, [this] {
        takeFields();
        screen_.cmdSave();
    });
    connect(cancel, &QPushButton::clicked, this, [this] {
        takeFields();
        screen_.cmdCancel();
    });
}

QWidget* OptionsDialog::makePage(const OptionsPage& page) {
    auto* box = new QWidget;
    auto* layout = new QVBoxLayout(box);
    auto* caption = new QLabel(page.node);
    QFont large = caption->font();
    large.setBold(true);
    large.setPointSizeF(large.pointSizeF() * 1.25);
    caption->setFont(large);
    layout->addWidget(caption);
    const auto number = [&](int least) {
        auto* spin = new QSpinBox;
        spin->setRange(least, 1'000'000'000);
        spin->setMaximumWidth(160);
        layout->addWidget(spin);
        return spin;
    };
    for (const OptionsControl& control : page.controls) {
        if (!control.lblHeader.isEmpty()) {
            auto* header = new QLabel(control.lblHeader);
            header->setWordWrap(true);
            layout->addSpacing(6);
            layout->addWidget(header);
        }
        if (frmOptions::checkBox(control.name)) {
            auto* check = new QCheckBox(frmOptions::captionOf(control.name));
            checks_.insert(control.name, check);
            name(control.name, check);
            layout->addWidget(check);
        } else if (control.name == u"txtTimeout") {
            name(control.name, timeout_ = number(0));
            timeout_->setSuffix(QStringLiteral(" s"));
        } else if (control.name == u"txtMaxRows") {
            name(control.name, maxRows_ = number(0));
        } else if (control.name == u"txtCacheSize") {
            name(control.name, cacheSize_ = number(0));
        } else {
            clientSide_ = new QRadioButton(frmOptions::captionOf(QStringLiteral("optCurLoc_0")));
            serverSide_ = new QRadioButton(frmOptions::captionOf(QStringLiteral("optCurLoc_1")));
            name(QStringLiteral("optCurLoc_0"), clientSide_);
            name(QStringLiteral("optCurLoc_1"), serverSide_);
            layout->addWidget(clientSide_);
            layout->addWidget(serverSide_);
        }
    }
    if (!page.lblInfo.isEmpty()) {
        auto* info = new QLabel(page.lblInfo);
        info->setWordWrap(true);
        info->setTextFormat(Qt::PlainText);
        layout->addSpacing(12);
        layout->addWidget(info);
    }
    layout->addStretch(1);
    return box;
}

namespace {

/// A stored number beyond what the box can show isn't changed by having been shown.
void takeNumber(const QSpinBox& box, qint32& value) {
    if (box.value() != qBound(box.minimum(), value, box.maximum())) value = box.value();
}

}  // namespace

void OptionsDialog::takeFields() {
    for (auto it = checks_.constBegin(); it != checks_.constEnd(); ++it)
        screen_.values.*frmOptions::checkBox(it.key()) = it.value()->isChecked();
    takeNumber(*timeout_, screen_.values.txtTimeout);
    takeNumber(*maxRows_, screen_.values.txtMaxRows);
    takeNumber(*cacheSize_, screen_.values.txtCacheSize);
    screen_.values.serverSide = serverSide_->isChecked();
}

void OptionsDialog::refreshFields() {
    for (auto it = checks_.constBegin(); it != checks_.constEnd(); ++it)
        it.value()->setChecked(screen_.values.*frmOptions::checkBox(it.key()));
    timeout_->setValue(screen_.values.txtTimeout);
    maxRows_->setValue(screen_.values.txtMaxRows);
    cacheSize_->setValue(screen_.values.txtCacheSize);
    (screen_.values.serverSide ? serverSide_ : clientSide_)->setChecked(true);
}

bool OptionsDialog::leave() {
    takeFields();
    return screen_.Form_QueryUnload();
}

}  // namespace zov::qt
