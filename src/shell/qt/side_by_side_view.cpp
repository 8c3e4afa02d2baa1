#include "shell/qt/side_by_side_view.h"

#include "shell/qt/mark_colors.h"
#include "structcompare/modMarkDifferences.h"

#include <QFontDatabase>
#include <QPainter>
#include <QScrollBar>

namespace zov::qt {
namespace {

constexpr int NumberWidth = 6;  // characters
constexpr int FrameWidth = 2;   // pixels

QString tabsExpanded(const QString& line) {
    if (!line.contains(u'\t')) return line;
    QString text;
    for (const QChar c : line) {
        if (c != u'\t')
            text += c;
        else
            do text += u' ';
            while (text.size() % 4 != 0);
    }
    return text;
}

}  // namespace

SideBySideView::SideBySideView(QWidget* parent) : QAbstractScrollArea(parent) {
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(QStringLiteral("Both texts side by side"));
}

int SideBySideView::rowHeight() const {
    return fontMetrics().lineSpacing() + 2;
}

double SideBySideView::columnWidth() const {
    return std::max(1.0, QFontMetricsF(font()).horizontalAdvance(u'0'));
}

void SideBySideView::setTexts(const QStringList& source, const QStringList& target,
                              const std::vector<AlignedRow>& rows) {
    source_.clear();
    target_.clear();
    for (const QString& line : source) source_ += tabsExpanded(line);
    for (const QString& line : target) target_ += tabsExpanded(line);
    rows_ = rows;
    widest_ = 0;
    for (const QStringList* lines : {&source_, &target_})
        for (const QString& line : *lines) widest_ = std::max(widest_, int(line.size()));
    current_ = -1;
    fitScrollBars();
    viewport()->update();
}

void SideBySideView::fitScrollBars() {
    const int visible = std::max(1, viewport()->height() / rowHeight());
    verticalScrollBar()->setRange(0, std::max(0, int(rows_.size()) - visible));
    verticalScrollBar()->setPageStep(visible);
    const int columns = int(viewport()->width() / 2 / columnWidth()) - NumberWidth;
    horizontalScrollBar()->setRange(0, std::max(0, widest_ - columns + 1));
    horizontalScrollBar()->setPageStep(std::max(1, columns));
}

void SideBySideView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    fitScrollBars();
}

bool SideBySideView::startsRun(int row) const {
    return !rows_[size_t(row)].equal && (row == 0 || rows_[size_t(row) - 1].equal);
}

int SideBySideView::differenceCount() const {
    int count = 0;
    for (int row = 0; row < int(rows_.size()); ++row) count += startsRun(row);
    return count;
}

int SideBySideView::currentDifference() const {
    int count = 0;
    for (int row = 0; row <= current_; ++row) count += startsRun(row);
    return count;
}

bool SideBySideView::goToDifference(bool forward) {
    const int count = int(rows_.size());
    for (int i = forward ? current_ + 1 : current_ - 1; i >= 0 && i < count;
         i += forward ? 1 : -1) {
        if (!startsRun(i)) continue;
        current_ = i;
        verticalScrollBar()->setValue(std::max(0, i - 3));
        viewport()->update();
        return true;
    }
    return false;
}

void SideBySideView::paintFrame(QPainter& painter) const {
    if (current_ < 0) return;
    int end = current_;
    while (end < int(rows_.size()) && !rows_[size_t(end)].equal) ++end;
    const int first = verticalScrollBar()->value();
    const QRect run(0, (current_ - first) * rowHeight(), viewport()->width(),
                    (end - current_) * rowHeight());
    painter.setPen(QPen(palette().color(QPalette::Highlight), FrameWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(run.adjusted(1, 0, -1, 0));
}

void SideBySideView::paintSide(QPainter& painter, int row, int side, const QRect& box) const {
    const AlignedRow& aligned = rows_[size_t(row)];
    const int line = side == 0 ? aligned.source : aligned.target;
    const int other = side == 0 ? aligned.target : aligned.source;
    // A letter is rarely as wide as whole pixels.
    const double advance = columnWidth();
    if (line < 0) {
        painter.fillRect(box, palette().color(QPalette::AlternateBase));
        return;
    }
    const qint32 mark = aligned.equal ? MarkNotChanged
                        : other >= 0  ? MarkChanged
                        : side == 0   ? MarkDeleted
                                      : MarkInserted;
    painter.fillRect(box, shownMarkColor(colorOfMark(mark), palette()));
    painter.setPen(palette().color(QPalette::Disabled, QPalette::Text));
    painter.drawText(QRectF(box.left(), box.top(), (NumberWidth - 1) * advance, box.height()),
                     Qt::AlignRight | Qt::AlignVCenter, QString::number(line + 1));
    const QString& text = (side == 0 ? source_ : target_)[line];
    const double left = box.left() + (NumberWidth - horizontalScrollBar()->value()) * advance;
    painter.save();
    painter.setClipRect(box.adjusted(int(NumberWidth * advance), 0, 0, 0));
    if (mark == MarkChanged) {
        const ChangedWords words = changedWords(source_[aligned.source], target_[aligned.target]);
        const QColor shade =
            isDarkPalette(palette()) ? QColor(255, 255, 255, 60) : QColor(0, 90, 0, 60);
        for (const TextRange& range : side == 0 ? words.source : words.target)
            painter.fillRect(QRectF(left + double(range.start) * advance, box.top(),
                                    double(range.length) * advance, box.height()),
                             shade);
    }
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(QRectF(left, box.top(), double(text.size() + 1) * advance, box.height()),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
    painter.restore();
}

void SideBySideView::paintEvent(QPaintEvent*) {
    QPainter painter(viewport());
    painter.fillRect(viewport()->rect(), palette().color(QPalette::Base));
    const int half = viewport()->width() / 2;
    const int height = rowHeight();
    const int first = verticalScrollBar()->value();
    for (int i = 0; first + i < int(rows_.size()) && i * height < viewport()->height(); ++i) {
        paintSide(painter, first + i, 0, QRect(0, i * height, half - 1, height));
        paintSide(painter, first + i, 1,
                  QRect(half + 1, i * height, viewport()->width() - half - 1, height));
    }
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(half, 0, half, viewport()->height());
    paintFrame(painter);
}

}  // namespace zov::qt
