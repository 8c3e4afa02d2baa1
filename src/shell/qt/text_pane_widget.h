// `txtTXProc`: a read-only pane of T-SQL with line numbers, highlighting and
// coloured lines. Offsets are those of the document, where a line break is one
// character.
#pragma once

#include "shell/controls.h"

#include <QPlainTextEdit>

#include <unordered_map>

namespace zov::qt {

class SqlHighlighter;

class TextPaneWidget : public QPlainTextEdit, public TextPane {
    Q_OBJECT
 public:
    explicit TextPaneWidget(QWidget* parent = nullptr);

    QString text() const override { return text_; }
    QString plainText() const override { return toPlainText(); }
    void setText(const QString& text) override;
    int lineCount() const override { return text_.isEmpty() ? 0 : blockCount(); }
    int lineStart(int line) const override;
    void setCaret(int offset) override;
    QString selectedText() const override;
    void select(int start, int end) override;
    void setSelectionBackColor(quint32 color) override;
    void setFocus() override { QPlainTextEdit::setFocus(); }

    /// Moves the caret to the next (or previous) run of lines that are marked as different, from
    /// the caret on; false when there is none.
    bool goToDifference(bool forward);
    bool hasMarks() const { return !lineColors_.empty(); }
    /// The colour of a line as stored, 0xBBGGRR; white when it has none.
    quint32 lineColor(int line) const;

    void paintLineNumbers(QPaintEvent* event);
    int lineNumberWidth() const;

 protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

 private:
    bool isDifferent(int line) const;
    void applyPalette();

    QString text_;
    SqlHighlighter* highlighter_;
    QWidget* lineNumbers_;
    int selectionStart_ = 0;
    int selectionEnd_ = 0;
    std::unordered_map<int, quint32> lineColors_;
};

}  // namespace zov::qt
