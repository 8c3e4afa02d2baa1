#include "shell/qt/text_pane_widget.h"

#include "shell/qt/mark_colors.h"
#include "shell/qt/sql_highlighter.h"

#include <QFontDatabase>
#include <QPainter>
#include <QTextBlock>

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
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setTabStopDistance(4 * fontMetrics().horizontalAdvance(u' '));
    const auto fitMargin = [this] { setViewportMargins(lineNumberWidth(), 0, 0, 0); };
    connect(this, &QPlainTextEdit::blockCountChanged, this, fitMargin);
    connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& rect, int dy) {
        if (dy)
            lineNumbers_->scroll(0, dy);
        else
            lineNumbers_->update(0, rect.y(), lineNumbers_->width(), rect.height());
    });
    fitMargin();
    applyPalette();
}

void TextPaneWidget::setText(const QString& text) {
    text_ = text;
    lineColors_.clear();
    setPlainText(text);
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

bool TextPaneWidget::isDifferent(int line) const {
    return lineColor(line) != White;
}

bool TextPaneWidget::goToDifference(bool forward) {
    const int step = forward ? 1 : -1;
    int line = textCursor().blockNumber();
    // Out of the run that the caret stands in, on to the next one, and to that run's first line.
    while (line >= 0 && line < blockCount() && isDifferent(line)) line += step;
    while (line >= 0 && line < blockCount() && !isDifferent(line)) line += step;
    if (line < 0 || line >= blockCount()) return false;
    while (line > 0 && isDifferent(line - 1)) --line;
    setCaret(document()->findBlockByNumber(line).position());
    centerCursor();
    return true;
}

int TextPaneWidget::lineNumberWidth() const {
    const int digits = int(QString::number(std::max(1, blockCount())).size());
    return 12 + fontMetrics().horizontalAdvance(u'9') * std::max(3, digits);
}

void TextPaneWidget::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    const QRect area = contentsRect();
    lineNumbers_->setGeometry(area.left(), area.top(), lineNumberWidth(), area.height());
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
        painter.drawText(QRectF(0, box.top(), lineNumbers_->width() - 6, box.height()),
                         Qt::AlignRight | Qt::AlignTop, QString::number(block.blockNumber() + 1));
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
