// Prints a text with a header line and page numbers: to the default printer, to a
// PDF, with a preview.
#pragma once

#include <QString>

class QWidget;

namespace zov::qt {

class TextPaneWidget;

/// The pane's text with its coloured lines. False when the user gave up or there is no printer that
/// could take it (which is told). `silent`: at once on the default printer, without a preview.
bool printPaneText(const TextPaneWidget& pane, const QString& title, const QString& header,
                   bool silent, QWidget* parent);

/// A plain text under a document name, with the same pages and preview; `silent` as above.
bool printText(const QString& text, const QString& documentName, bool silent, QWidget* parent);

}  // namespace zov::qt
