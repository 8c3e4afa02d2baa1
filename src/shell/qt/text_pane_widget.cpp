#include "shell/qt/text_pane_widget.h"

#include "shell/qt/mark_colors.h"
#include "shell/qt/sql_highlighter.h"

#include "util/text.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <QWheelEvent>

#include <algorithm>

namespace zov::qt {
namespace {

constexpr quint32 White = 0xFFFFFF;

class LineNumberArea : public QWidget {
 public:
    explicit LineNumberArea(TextPaneWidget* pane) : QWidget(pane), pane_(pane) {}
    QSize sizeHint() const override { return {pane_->lineNumberWidth(), 0}; }

 protected:
    void paintEvent(QPaintEvent* event) override { pane_->paintLineNumbers(event); }

 private:
    TextPaneWidget* pane_;
};

}  // namespace

TextPaneWidget::TextPaneWidget(QWidget* parent)
    : QPlainTextEdit(parent),
      highlighter_(new SqlHighlighter(document())),
      lineNumbers_(new LineNumberArea(this)) {
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setLineWrapMode(NoWrap);
    connect(this, &QPlainTextEdit::blockCountChanged, this, [this] { fitToFont(); });
    connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& rect, int dy) {
        if (dy)
            lineNumbers_->scroll(0, dy);
        else
            lineNumbers_->update(0, rect.y(), lineNumbers_->width(), rect.height());
    });
    setZoom(0);
    applyPalette();
}

void TextPaneWidget::setZoom(int points) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(std::max(4.0, font.pointSizeF() + points));
    setFont(font);
    fitToFont();
}

void TextPaneWidget::fitToFont() {
    setTabStopDistance(4 * fontMetrics().horizontalAdvance(u' '));
    setViewportMargins(lineNumberWidth(), 0, 0, 0);
    const QRect area = contentsRect();
    lineNumbers_->setGeometry(area.left(), area.top(), lineNumberWidth(), area.height());
    lineNumbers_->update();
}

void TextPaneWidget::wheelEvent(QWheelEvent* event) {
    if (!event->modifiers().testFlag(Qt::ControlModifier)) return QPlainTextEdit::wheelEvent(event);
    constexpr int Step = QWheelEvent::DefaultDeltasPerStep;
    wheelTurned_ += event->angleDelta().y();
    const int steps = wheelTurned_ / Step;
    wheelTurned_ -= steps * Step;
    if (steps != 0) emit zoomAsked(steps);
    event->accept();
}

void TextPaneWidget::setText(const QString& text) {
    text_ = text;
    // Not the document's own plain text, which turns hard blanks into plain ones.
    plain_ = withLf(text);
    lineColors_.clear();
    differenceStart_ = differenceEnd_ = 0;
    setExtraSelections({});
    setPlainText(plain_);
    // What an empty pane says stands where no line of the new text may come.
    viewport()->update();
    emit textReplaced();
}

int TextPaneWidget::lineStart(int line) const {
    if (line < 0 || line >= lineCount()) return -1;
    return document()->findBlockByNumber(line).position();
}

void TextPaneWidget::setCaret(int offset) {
    QTextCursor cursor = textCursor();
    cursor.setPosition(std::clamp(offset, 0, document()->characterCount() - 1));
    setTextCursor(cursor);
}

QString TextPaneWidget::selectedText() const {
    // Qt writes paragraph separators between lines of a selection; the texts have CR LF.
    return textCursor().selectedText().replace(QChar::ParagraphSeparator, QStringLiteral("\r\n"));
}

void TextPaneWidget::select(int start, int end) {
    selectionStart_ = start;
    selectionEnd_ = end;
}

void TextPaneWidget::setSelectionBackColor(quint32 color) {
    emit marked();
    // Lines are painted whole, in one pass, when the pane is drawn.
    const int first = document()->findBlock(selectionStart_).blockNumber();
    const int last = document()->findBlock(std::max(selectionStart_, selectionEnd_)).blockNumber();
    for (int line = first; line <= last; ++line) lineColors_[line] = color;
    viewport()->update();
}

quint32 TextPaneWidget::lineColor(int line) const {
    const auto found = lineColors_.find(line);
    return found == lineColors_.end() ? White : found->second;
}

std::vector<quint32> TextPaneWidget::lineColors() const {
    std::vector<quint32> colors(size_t(lineCount()), White);
    for (const auto& [line, color] : lineColors_)
        if (line < int(colors.size())) colors[size_t(line)] = color;
    return colors;
}

void TextPaneWidget::showDifference(int first, int end) {
    differenceStart_ = first;
    differenceEnd_ = end;
    setCaret(document()->findBlockByNumber(std::clamp(first, 0, blockCount() - 1)).position());
    // A third from the top: what follows a difference says more than what stands before it.
    const int visible =
        std::max(1, viewport()->height() / std::max(1, fontMetrics().lineSpacing()));
    verticalScrollBar()->setValue(std::max(0, first - visible / 3));
    lineNumbers_->update();
}

void TextPaneWidget::setEmptyText(const QString& text) {
    emptyText_ = text;
    viewport()->update();
}

int TextPaneWidget::lineNumberWidth() const {
    const int digits = int(QString::number(std::max(1, blockCount())).size());
    return 12 + fontMetrics().horizontalAdvance(u'9') * std::max(3, digits);
}

void TextPaneWidget::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    fitToFont();
}

void TextPaneWidget::paintEvent(QPaintEvent* event) {
    if (!lineColors_.empty()) {
        QPainter painter(viewport());
        for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
            const QRectF box = blockBoundingGeometry(block).translated(contentOffset());
            if (box.top() > event->rect().bottom()) break;
            const quint32 color = lineColor(block.blockNumber());
            if (color != White)
                painter.fillRect(QRectF(0, box.top(), viewport()->width(), box.height()),
                                 shownMarkColor(color, palette()));
        }
    }
    QPlainTextEdit::paintEvent(event);
    if (!text_.isEmpty() || emptyText_.isEmpty()) return;
    QPainter painter(viewport());
    painter.setFont(QApplication::font());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(16, 16, -16, -16),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, emptyText_);
}

void TextPaneWidget::paintLineNumbers(QPaintEvent* event) {
    QPainter painter(lineNumbers_);
    painter.fillRect(event->rect(), palette().color(QPalette::AlternateBase));
    if (text_.isEmpty()) return;
    painter.setPen(palette().color(QPalette::Disabled, QPalette::Text));
    painter.setFont(font());
    for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
        const QRectF box = blockBoundingGeometry(block).translated(contentOffset());
        if (box.top() > event->rect().bottom()) break;
        const int line = block.blockNumber();
        if (line >= differenceStart_ && line < differenceEnd_)
            painter.fillRect(QRectF(lineNumbers_->width() - 3, box.top(), 3, box.height()),
                             palette().color(QPalette::Highlight));
        painter.drawText(QRectF(0, box.top(), lineNumbers_->width() - 6, box.height()),
                         Qt::AlignRight | Qt::AlignTop, QString::number(line + 1));
    }
}

void TextPaneWidget::changeEvent(QEvent* event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) applyPalette();
}

void TextPaneWidget::applyPalette() {
    highlighter_->setDark(isDarkPalette(palette()));
    lineNumbers_->update();
}

}  // namespace zov::qt
