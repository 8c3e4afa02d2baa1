#include "shell/qt/print_preview.h"

#include "core/globals.h"
#include "shell/qt/help_window.h"
#include "shell/qt/window_fit.h"
#include "shell/shell.h"

#include <optional>

#include <QFileInfo>
#include <QLabel>
#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QPrinterInfo>
#include <QShortcut>
#include <QToolBar>
#include <QVBoxLayout>

namespace zov::qt {
namespace {

QIcon icon(const char* name) {
    return QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
}

void tell(const QString& text) {
    shell().messageBox(text, QStringLiteral("Cannot Print"), BoxIcon::Exclamation);
}

QString fileNameOf(const QString& documentName) {
    QString name = documentName;
    for (QChar& c : name)
        if (QStringLiteral("\\/:*?\"<>|").contains(c)) c = u'_';
    return name;
}

/// What the last page setup chose; nothing before the first.
std::optional<QPageLayout>& chosenLayout() {
    static std::optional<QPageLayout> layout;
    return layout;
}

}  // namespace

void askPageSetup(QWidget* parent) {
    QPrinter printer(QPrinter::HighResolution);
    if (chosenLayout()) printer.setPageLayout(*chosenLayout());
    QPageSetupDialog dialog(&printer, parent);
    if (dialog.exec() == QDialog::Accepted) chosenLayout() = printer.pageLayout();
}

std::unique_ptr<QPrinter> defaultPrinter(const QString& documentName) {
    const QPrinterInfo standard = QPrinterInfo::defaultPrinter();
    if (standard.isNull()) {
        tell(
            QStringLiteral("There is no default printer.\r\n\r\nPlease set one up in the settings "
                           "of your desktop, or save the pages as a PDF file instead."));
        return nullptr;
    }
    auto printer = std::make_unique<QPrinter>(standard, QPrinter::HighResolution);
    printer->setDocName(documentName);
    return printer;
}

bool tookPages(const QPrinter& printer) {
    if (printer.printerState() != QPrinter::Error) return true;
    tell(QStringLiteral("The printer '%1' doesn't take the pages.\r\n\r\nPlease look after it "
                        "in the settings of your desktop, or save the pages as a PDF file.")
             .arg(printer.printerName()));
    return false;
}

PrintPreview::PrintPreview(const QString& documentName, const QString& title,
                           std::function<void(QPrinter&)> paint, QWidget* parent)
    : QDialog(parent), documentName_(documentName), paint_(std::move(paint)) {
    setObjectName(QStringLiteral("printPreview"));
    setWindowTitle(QStringLiteral("Print ") + title);
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    printer_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
    printer_->setDocName(documentName_);
    if (chosenLayout()) printer_->setPageLayout(*chosenLayout());
    view_ = new QPrintPreviewWidget(printer_.get());
    view_->fitToWidth();
    connect(view_, &QPrintPreviewWidget::paintRequested, this,
            [this](QPrinter* printer) { paint_(*printer); });

    auto* bar = new QToolBar;
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    const auto add = [&](const char* iconName, const QString& text, const QString& name,
                         const QKeySequence& keys, auto slot) {
        QAction* action = bar->addAction(icon(iconName), text);
        action->setObjectName(name);
        action->setShortcut(keys);
        connect(action, &QAction::triggered, this, slot);
    };
    add("print", QStringLiteral("Print..."), QStringLiteral("print"), QKeySequence::Print,
        [this] { print(); });
    add("pdf", QStringLiteral("Save as PDF..."), QStringLiteral("savePdf"), QKeySequence::Save,
        [this] { savePdf(); });
    bar->addSeparator();
    add("zoom-in", QStringLiteral("Larger"), QStringLiteral("zoomIn"), QKeySequence::ZoomIn,
        [this] { view_->zoomIn(); });
    add("zoom-out", QStringLiteral("Smaller"), QStringLiteral("zoomOut"), QKeySequence::ZoomOut,
        [this] { view_->zoomOut(); });
    bar->addSeparator();
    add("close", QStringLiteral("Close"), QStringLiteral("close"), {}, [this] { reject(); });
    auto* pages = new QLabel;
    connect(view_, &QPrintPreviewWidget::previewChanged, this, [this, pages] {
        const int count = view_->pageCount();
        pages->setText(count == 1 ? QStringLiteral("  1 page")
                                  : QStringLiteral("  %1 pages").arg(count));
    });
    bar->addWidget(pages);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(bar);
    layout->addWidget(view_, 1);
    connect(new QShortcut(QKeySequence::HelpContents, this), &QShortcut::activated, this,
            [this] { showHelpPage(QStringLiteral("printing"), this); });
    resize(900, 760);
    fitDialog(*this);
}

PrintPreview::~PrintPreview() {
    // The view paints on the printer: it goes first.
    delete view_;
}

int PrintPreview::pageCount() const {
    return view_->pageCount();
}

void PrintPreview::print() {
    const std::unique_ptr<QPrinter> printer = defaultPrinter(documentName_);
    if (!printer) return;
    QPrintDialog dialog(printer.get(), this);
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
    if (dialog.exec() != QDialog::Accepted) return;
    paint_(*printer);
    if (!tookPages(*printer)) return;
    printed_ = true;
    accept();
}

void PrintPreview::savePdf() {
    const QString path = shell().askSavePath(
        QStringLiteral("Save as PDF"), QStringLiteral("PDF files (*.pdf)"),
        globals().gstrUserDataFolder + fileNameOf(documentName_) + QStringLiteral(".pdf"));
    if (!path.isEmpty() && writePdf(path)) accept();
}

bool PrintPreview::writePdf(const QString& path) {
    QPrinter file(QPrinter::HighResolution);
    file.setOutputFormat(QPrinter::PdfFormat);
    file.setPageLayout(printer_->pageLayout());
    file.setDocName(documentName_);
    file.setCreator(QStringLiteral("Zovrand"));
    file.setOutputFileName(path);
    QFile probe(path);
    if (!probe.open(QIODevice::WriteOnly)) {
        tell(QStringLiteral("The file '%1' can't be written (%2).\r\n\r\nPlease choose another "
                            "folder or name.")
                 .arg(path, probe.errorString()));
        return false;
    }
    probe.close();
    paint_(file);
    printed_ = true;
    return true;
}

}  // namespace zov::qt
