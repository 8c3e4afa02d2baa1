// The window before a print: the pages as they will be, to the printer or into a
// PDF file.
#pragma once

#include <QDialog>

#include <functional>
#include <memory>

class QPrintPreviewWidget;
class QPrinter;

namespace zov::qt {

class PrintPreview : public QDialog {
    Q_OBJECT
 public:
    /// `paint` paints all pages on the printer it is given.
    PrintPreview(const QString& documentName, const QString& title,
                 std::function<void(QPrinter&)> paint, QWidget* parent);
    ~PrintPreview() override;

    /// The pages went to a printer or a file.
    bool isPrinted() const { return printed_; }
    int pageCount() const;

    void print();
    /// Asks for a file and writes the pages into it.
    void savePdf();
    /// Writes the pages into the file; says why when it can't.
    bool writePdf(const QString& path);

 private:
    QString documentName_;
    std::function<void(QPrinter&)> paint_;
    std::unique_ptr<QPrinter> printer_;
    QPrintPreviewWidget* view_;
    bool printed_ = false;
};

/// Asks for paper, orientation and margins of the pages that are printed from now on.
void askPageSetup(QWidget* parent);

/// The default printer, ready to be painted on. Null, after a message that says what to do, when
/// there is none.
std::unique_ptr<QPrinter> defaultPrinter(const QString& documentName);
/// Whether the printer took what was painted; tells that it didn't.
bool tookPages(const QPrinter& printer);

}  // namespace zov::qt
