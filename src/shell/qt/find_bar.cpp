#include "shell/qt/find_bar.h"

#include "shell/qt/text_pane_widget.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QToolButton>

namespace zov::qt {

FindBar::FindBar(TextPaneWidget* pane, QWidget* parent) : QWidget(parent), pane_(pane) {
    text_ = new QLineEdit;
    text_->setObjectName(QStringLiteral("findText"));
    text_->setAccessibleName(QStringLiteral("Text to find"));
    text_->setPlaceholderText(QStringLiteral("Find in the text"));
    text_->setClearButtonEnabled(true);
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
    connect(text_, &QLineEdit::returnPressed, this, [this] { findNext(true); });
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
    pane_->highlightAll({});
    if (hadFocus) pane_->setFocus();
}

void FindBar::searchAnew() {
    const QString wanted = text_->text();
    count_ = pane_->highlightAll(wanted);
    found_->setText(wanted.isEmpty() ? QString()
                    : count_ == 0    ? QStringLiteral("not found")
                                     : QStringLiteral("%1 found").arg(count_));
    if (count_ == 0) return;
    // The place at hand stays while it still fits: typing goes on where it was found.
    QTextCursor at = pane_->textCursor();
    at.setPosition(at.selectionStart());
    pane_->setTextCursor(at);
    findNext(true);
}

void FindBar::findNext(bool forward) {
    if (!isVisible()) {
        if (text_->text().isEmpty()) return open();
        show();
        count_ = pane_->highlightAll(text_->text());
    }
    const QString wanted = text_->text();
    const QTextDocument::FindFlags flags =
        forward ? QTextDocument::FindFlags() : QTextDocument::FindBackward;
    if (wanted.isEmpty() || pane_->find(wanted, flags)) return;
    pane_->moveCursor(forward ? QTextCursor::Start : QTextCursor::End);
    pane_->find(wanted, flags);
}

}  // namespace zov::qt
