#include "shell/qt/pane_printer.h"

#include "core/product.h"
#include "shell/qt/mark_colors.h"
#include "shell/qt/print_preview.h"
#include "shell/qt/text_pane_widget.h"
#include "shell/shell.h"
#include "util/text.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <QPrinter>

#include <algorithm>
#include <cmath>

namespace zov::qt {
namespace {

constexpr quint32 White = 0xFFFFFF;
constexpr int TabWidth = 4;

struct PrintedLine {
    QString text;
    quint32 color;
};

QString tabsExpanded(const QString& line) {
    QString text;
    for (const QChar c : line) {
        if (c == u'\t')
            text += QString(TabWidth - text.size() % TabWidth, u' ');
        else
            text += c;
    }
    return text;
}

// Lines that are wider than the page go on below themselves.
std::vector<PrintedLine> wrapped(const std::vector<PrintedLine>& lines, int columns) {
    std::vector<PrintedLine> rows;
    for (const PrintedLine& line : lines) {
        const QString text = tabsExpanded(line.text);
        rows.push_back({text.left(columns), line.color});
        for (qsizetype at = columns; at < text.size(); at += columns)
            rows.push_back({text.mid(at, columns), line.color});
    }
    return rows;
}

// Lines on pages, each with the header on top and "Page: n of m" below.
void paintPages(QPrinter& printer, const std::vector<PrintedLine>& lines, const QString& header) {
    QPainter painter;
    if (!painter.begin(&printer)) return;
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(9);
    painter.setFont(font);
    const QFontMetricsF metrics(font, &printer);
    const double lineHeight = metrics.lineSpacing();
    const QRectF page(QPointF(0, 0), printer.pageRect(QPrinter::DevicePixel).size());
    const int columns = std::max(10, int(page.width() / metrics.horizontalAdvance(u'0')));
    const std::vector<PrintedLine> rows = wrapped(lines, columns);
    const int perPage = std::max(1, int(page.height() / lineHeight) - 4);
    const int pages = std::max(1, int(std::ceil(double(rows.size()) / perPage)));
    const QPalette onPaper(Qt::black, Qt::white);
    painter.setPen(Qt::black);
    for (int number = 0; number < pages; ++number) {
        if (number > 0) printer.newPage();
        painter.drawText(QRectF(0, 0, page.width(), lineHeight), Qt::AlignLeft,
                         metrics.elidedText(header, Qt::ElideMiddle, page.width()));
        painter.drawLine(QPointF(0, lineHeight * 1.4), QPointF(page.width(), lineHeight * 1.4));
        for (int i = 0; i < perPage && size_t(number * perPage + i) < rows.size(); ++i) {
            const PrintedLine& row = rows[size_t(number * perPage + i)];
            const QRectF box(0, (i + 2) * lineHeight, page.width(), lineHeight);
            if (row.color != White) painter.fillRect(box, shownMarkColor(row.color, onPaper));
            painter.drawText(box, Qt::AlignLeft | Qt::TextSingleLine, row.text);
        }
        painter.drawText(QRectF(0, page.height() - lineHeight, page.width(), lineHeight),
                         Qt::AlignRight,
                         QStringLiteral("Page: %1 of %2").arg(number + 1).arg(pages));
    }
}

bool printWithPreview(const std::vector<PrintedLine>& lines, const QString& documentName,
                      const QString& header, QWidget* parent) {
    PrintPreview preview(
        documentName, header, [&](QPrinter& printer) { paintPages(printer, lines, header); },
        parent);
    preview.exec();
    return preview.isPrinted();
}

bool printAtOnce(const std::vector<PrintedLine>& lines, const QString& documentName,
                 const QString& header) {
    const std::unique_ptr<QPrinter> printer = defaultPrinter(documentName);
    if (!printer) return false;
    paintPages(*printer, lines, header);
    return tookPages(*printer);
}

}  // namespace

bool printPaneText(const TextPaneWidget& pane, const QString& title, const QString& header,
                   bool silent, QWidget* parent) {
    std::vector<PrintedLine> lines;
    const QStringList texts = pane.plainText().split(u'\n');
    for (int i = 0; i < int(texts.size()); ++i) lines.push_back({texts[i], pane.lineColor(i)});
    const QString documentName = product::Name + u' ' + title + header;
    return silent ? printAtOnce(lines, documentName, title + header)
                  : printWithPreview(lines, documentName, title + header, parent);
}

bool printText(const QString& text, const QString& documentName, bool silent, QWidget* parent) {
    std::vector<PrintedLine> lines;
    for (const QString& line : withLf(text).split(u'\n')) lines.push_back({line, White});
    return silent ? printAtOnce(lines, documentName, documentName)
                  : printWithPreview(lines, documentName, documentName, parent);
}

}  // namespace zov::qt
