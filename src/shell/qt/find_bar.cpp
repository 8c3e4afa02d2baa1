#include "shell/qt/find_bar.h"

#include "shell/qt/text_pane_widget.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QToolButton>

namespace zov::qt {

FindBar::FindBar(TextPaneWidget* pane, QWidget* parent)
    : QWidget(parent), pane_(pane), find_(pane) {
    text_ = new FindField;
    text_->setPlaceholderText(QStringLiteral("Find in the text"));
    found_ = new QLabel;
    found_->setObjectName(QStringLiteral("findCount"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 2, 0, 0);
    layout->addWidget(text_, 1);
    layout->addWidget(found_);
    const auto button = [&](const char* icon, const QString& toolTip, auto slot) {
        auto* made = new QToolButton;
        made->setIcon(QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(icon))));
        made->setToolTip(toolTip);
        made->setAccessibleName(toolTip);
        made->setAutoRaise(true);
        connect(made, &QToolButton::clicked, this, slot);
        layout->addWidget(made);
    };
    button("previous", QStringLiteral("Previous place (Shift+F3)"), [this] { findNext(false); });
    button("next", QStringLiteral("Next place (F3)"), [this] { findNext(true); });
    button("close", QStringLiteral("Close (Esc)"), [this] { close(); });
    connect(text_, &QLineEdit::textChanged, this, [this] { searchAnew(); });
    connect(text_, &FindField::searched, this, [this](bool forward) { findNext(forward); });
    connect(pane_, &TextPaneWidget::textReplaced, this, [this] {
        if (isVisible()) searchAnew();
    });
    auto* escape =
        new QShortcut(Qt::Key_Escape, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
    connect(escape, &QShortcut::activated, this, [this] { close(); });
    auto* escapeInPane =
        new QShortcut(Qt::Key_Escape, pane_, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
    connect(escapeInPane, &QShortcut::activated, this, [this] { close(); });
    hide();
}

void FindBar::open() {
    const QString selected = pane_->textCursor().selectedText();
    show();
    if (!selected.isEmpty() && !selected.contains(QChar::ParagraphSeparator))
        text_->setText(selected);
    text_->setFocus(Qt::ShortcutFocusReason);
    text_->selectAll();
    searchAnew();
}

void FindBar::close() {
    if (!isVisible()) return;
    const bool hadFocus = isAncestorOf(focusWidget()) || text_->hasFocus();
    hide();
    find_.search({});
    if (hadFocus) pane_->setFocus();
}

void FindBar::searchAnew() {
    find_.search(text_->text());
    // The place at hand stays while it still fits: typing goes on where it was found.
    find_.goFromHere();
    tell();
}

void FindBar::findNext(bool forward) {
    if (!isVisible()) {
        if (text_->text().isEmpty()) return open();
        show();
        find_.search(text_->text());
    }
    find_.goOn(forward);
    tell();
}

void FindBar::tell() {
    found_->setText(find_.note());
}

}  // namespace zov::qt
