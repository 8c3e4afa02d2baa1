#include "shell/qt/window_fit.h"

#include <QDialog>
#include <QGridLayout>
#include <QHelpEvent>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyleOption>
#include <QStylePainter>
#include <QToolTip>
#include <QVBoxLayout>

namespace zov::qt {
namespace {

// What a desktop draws around a window.
constexpr int FrameWidth = 16, FrameHeight = 48;

QSize roomFor(const QWidget& window) {
    return window.screen()->availableSize() - QSize(FrameWidth, FrameHeight);
}

bool isWithin(const QSize& size, const QSize& room) {
    return size.width() <= room.width() && size.height() <= room.height();
}

// Everything but the last row goes into a frame that scrolls.
void letContentsScroll(QVBoxLayout& layout) {
    auto* contents = new QWidget;
    auto* moved = new QVBoxLayout(contents);
    moved->setContentsMargins(0, 0, 0, 0);
    while (layout.count() > 1) {
        const int stretch = layout.stretch(0);
        QLayoutItem* item = layout.takeAt(0);
        if (QWidget* widget = item->widget()) {
            moved->addWidget(widget, stretch, item->alignment());
            delete item;
        } else if (QLayout* inner = item->layout()) {
            inner->setParent(nullptr);
            moved->addLayout(inner, stretch);
        } else {
            moved->addItem(item);
        }
    }
    auto* scroll = new QScrollArea;
    scroll->setObjectName(QStringLiteral("contentsScroll"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(contents);
    layout.insertWidget(0, scroll, 1);
}

}  // namespace

void fitToScreen(QWidget& window) {
    const QSize room = roomFor(window);
    window.setMinimumSize(window.minimumSize().boundedTo(room));
    if (!isWithin(window.size(), room)) window.resize(window.size().boundedTo(room));
    const QRect screen = window.screen()->availableGeometry();
    if (screen.contains(window.frameGeometry())) return;
    window.move(qBound(screen.left(), window.x(), screen.right() + 1 - window.width()),
                qBound(screen.top(), window.y(), screen.bottom() + 1 - window.height()));
}

void fitDialog(QDialog& dialog) {
    const QSize room = roomFor(dialog);
    dialog.setMinimumSize(dialog.minimumSize().boundedTo(room));
    auto* layout = qobject_cast<QVBoxLayout*>(dialog.layout());
    if (layout && layout->count() > 1 && !isWithin(layout->totalMinimumSize(), room))
        letContentsScroll(*layout);
    // A row that is still too wide is rather cut than that the window leaves the screen.
    if (dialog.layout() && !isWithin(dialog.layout()->totalMinimumSize(), room)) {
        dialog.layout()->setSizeConstraint(QLayout::SetNoConstraint);
        dialog.setMinimumSize(1, 1);
    }
    QSize wanted = dialog.size();
    if (!dialog.testAttribute(Qt::WA_Resized)) wanted = dialog.sizeHint();
    if (!isWithin(wanted, room)) dialog.resize(wanted.boundedTo(room));
}

void fitBox(QMessageBox& box) {
    auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    auto* grid = qobject_cast<QGridLayout*>(box.layout());
    if (!label || !grid) return;
    // Beside the picture, above the buttons.
    const QSize room = roomFor(box) - QSize(140, 120);
    const int width = std::min(room.width(), 620);
    const QFontMetrics metrics = label->fontMetrics();
    const QSize needed =
        metrics.boundingRect(QRect(0, 0, width, QWIDGETSIZE_MAX), Qt::TextWordWrap, box.text())
            .size();
    if (needed.width() <= width && needed.height() <= room.height()) return;
    auto* text = new QPlainTextEdit(box.text());
    text->setObjectName(QStringLiteral("longText"));
    text->setReadOnly(true);
    text->setTabChangesFocus(true);
    text->setFrameShape(QFrame::NoFrame);
    text->viewport()->setAutoFillBackground(false);
    text->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    const int lines = int(box.text().size()) * metrics.averageCharWidth() / width + 2 +
                      int(box.text().count(u'\n'));
    const int height = std::max(needed.height(), lines * metrics.lineSpacing()) + 12;
    text->setFixedSize(width + text->verticalScrollBar()->sizeHint().width(),
                       std::min(height, room.height()));
    delete grid->replaceWidget(label, text);
    label->hide();
}

void showNamesPlainly(QWidget& parent) {
    for (QLabel* label : parent.findChildren<QLabel*>())
        if (label->textFormat() == Qt::AutoText) label->setTextFormat(Qt::PlainText);
}

QString plainToolTip(const QString& text) {
    if (!Qt::mightBeRichText(text)) return text;
    return QStringLiteral("<span style=\"white-space: pre-wrap\">") + text.toHtmlEscaped() +
           QStringLiteral("</span>");
}

ElidedLabel::ElidedLabel(const QString& text, QWidget* parent) : QLabel(text, parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
}

QSize ElidedLabel::sizeHint() const {
    constexpr int Characters = 70;  // longer names don't widen a screen
    QSize size = QLabel::sizeHint();
    size.setWidth(std::min(size.width(), Characters * fontMetrics().averageCharWidth()));
    return size;
}

QSize ElidedLabel::minimumSizeHint() const {
    constexpr int Characters = 6;
    QSize size = QLabel::minimumSizeHint();
    size.setWidth(std::min(size.width(), Characters * fontMetrics().averageCharWidth()));
    return size;
}

QString ElidedLabel::shownText() const {
    return fontMetrics().elidedText(text(), Qt::ElideMiddle, contentsRect().width());
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    style()->drawItemText(&painter, contentsRect(),
                          int(QStyle::visualAlignment(layoutDirection(), alignment())), palette(),
                          isEnabled(), shownText(), foregroundRole());
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || shownText() == text()) return QLabel::event(event);
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), plainToolTip(text()), this);
    return true;
}

void paintElided(QComboBox& box, const QStyleOptionComboBox& option) {
    QStyleOptionComboBox shown(option);
    QStylePainter painter(&box);
    painter.setPen(box.palette().color(QPalette::Text));
    painter.drawComplexControl(QStyle::CC_ComboBox, shown);
    const QRect field = box.style()->subControlRect(QStyle::CC_ComboBox, &shown,
                                                    QStyle::SC_ComboBoxEditField, &box);
    shown.currentText =
        box.fontMetrics().elidedText(shown.currentText, Qt::ElideMiddle, field.width() - 2);
    painter.drawControl(QStyle::CE_ComboBoxLabel, shown);
}

}  // namespace zov::qt
