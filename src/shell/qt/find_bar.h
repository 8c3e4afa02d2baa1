// The bar below a text pane that searches in it: marks every place while it is
// typed in, Enter and F3 go to the next, Shift+F3 to the previous, Esc closes.
#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;

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

    TextPaneWidget* pane_;
    QLineEdit* text_;
    QLabel* found_;
    int count_ = 0;
};

}  // namespace zov::qt
