#include "shell/qt/pane_printer.h"

#include "core/product.h"
#include "shell/qt/mark_colors.h"
#include "shell/qt/text_pane_widget.h"
#include "util/text.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrinter>

#include <cmath>

namespace zov::qt {
namespace {

struct PrintedLine {
    QString text;
    quint32 color;
};

// Lines on pages, each with the header on top and "Page: n of m" below.
void paintPages(QPrinter& printer, const std::vector<PrintedLine>& lines, const QString& header) {
    QPainter painter(&printer);
    QFont font(QStringLiteral("monospace"), 9);
    painter.setFont(font);
    const QFontMetricsF metrics(font, &printer);
    const double lineHeight = metrics.lineSpacing();
    const QRectF page(QPointF(0, 0), printer.pageRect(QPrinter::DevicePixel).size());
    const int perPage = std::max(1, int(page.height() / lineHeight) - 4);
    const int pages = std::max(1, int(std::ceil(double(lines.size()) / perPage)));
    const QPalette onPaper(Qt::black, Qt::white);
    for (int number = 0; number < pages; ++number) {
        if (number > 0) printer.newPage();
        painter.drawText(QRectF(0, 0, page.width(), lineHeight), Qt::AlignLeft, header);
        painter.drawLine(QPointF(0, lineHeight * 1.4), QPointF(page.width(), lineHeight * 1.4));
        for (int i = 0; i < perPage && size_t(number * perPage + i) < lines.size(); ++i) {
            const PrintedLine& line = lines[size_t(number * perPage + i)];
            const QRectF box(0, (i + 2) * lineHeight, page.width(), lineHeight);
            if (line.color != 0xFFFFFF) painter.fillRect(box, shownMarkColor(line.color, onPaper));
            painter.drawText(box, Qt::AlignLeft | Qt::TextExpandTabs, line.text);
        }
        painter.drawText(QRectF(0, page.height() - lineHeight, page.width(), lineHeight),
                         Qt::AlignRight,
                         QStringLiteral("Page: %1 of %2").arg(number + 1).arg(pages));
    }
}

bool printWithPreview(const std::vector<PrintedLine>& lines, const QString& documentName,
                      const QString& header, QWidget* parent) {
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(documentName);
    QPrintPreviewDialog preview(&printer, parent);
    preview.setWindowTitle(QStringLiteral("Print ") + header);
    preview.resize(900, 700);
    QObject::connect(&preview, &QPrintPreviewDialog::paintRequested, &preview,
                     [&](QPrinter* target) { paintPages(*target, lines, header); });
    return preview.exec() == QDialog::Accepted;
}

}  // namespace

bool printPaneText(const TextPaneWidget& pane, const QString& title, const QString& header,
                   QWidget* parent) {
    std::vector<PrintedLine> lines;
    const QStringList texts = pane.plainText().split(u'\n');
    for (int i = 0; i < int(texts.size()); ++i) lines.push_back({texts[i], pane.lineColor(i)});
    return printWithPreview(lines, product::Name + u' ' + title + header, title + header, parent);
}

bool printText(const QString& text, const QString& documentName, QWidget* parent) {
    std::vector<PrintedLine> lines;
    for (const QString& line : withLf(text).split(u'\n')) lines.push_back({line, 0xFFFFFF});
    return printWithPreview(lines, documentName, documentName, parent);
}

}  // namespace zov::qt
