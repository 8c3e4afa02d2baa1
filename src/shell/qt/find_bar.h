// The bar below a text pane that searches in it: marks every place while it is
// typed in and says which of how many is shown; Enter and F3 go to the next, Shift+Enter
// and Shift+F3 to the previous, Esc closes.
#pragma once

#include "shell/qt/text_find.h"

#include <QWidget>

class QLabel;

namespace zov::qt {

class TextPaneWidget;

class FindBar : public QWidget {
    Q_OBJECT
 public:
    explicit FindBar(TextPaneWidget* pane, QWidget* parent = nullptr);

    /// Shows the bar with the pane's selection, when it is a piece of one line, as the text to
    /// find.
    void open();
    /// Selects the next or previous place, around the text's end; opens the bar when it is closed.
    void findNext(bool forward);

 private:
    void close();
    void searchAnew();

    void tell();

    TextPaneWidget* pane_;
    TextFind find_;
    FindField* text_;
    QLabel* found_;
};

}  // namespace zov::qt
