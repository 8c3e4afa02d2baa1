// `txtTXProc`: a read-only pane of T-SQL with line numbers, highlighting and
// coloured lines. Offsets are those of the document, where a line break is one
// character.
#pragma once

#include "shell/controls.h"

#include <QPlainTextEdit>

#include <unordered_map>
#include <vector>

namespace zov::qt {

class SqlHighlighter;

class TextPaneWidget : public QPlainTextEdit, public TextPane {
    Q_OBJECT
 public:
    explicit TextPaneWidget(QWidget* parent = nullptr);

    QString text() const override { return text_; }
    QString plainText() const override { return plain_; }
    void setText(const QString& text) override;
    int lineCount() const override { return text_.isEmpty() ? 0 : blockCount(); }
    int lineStart(int line) const override;
    void setCaret(int offset) override;
    QString selectedText() const override;
    void select(int start, int end) override;
    void setSelectionBackColor(quint32 color) override;
    void setFocus() override { QPlainTextEdit::setFocus(); }

    /// Whether a comparison has painted lines of this text.
    bool hasMarks() const { return !lineColors_.empty(); }
    /// The colour of a line as stored, 0xBBGGRR; white when it has none.
    quint32 lineColor(int line) const;
    /// The colours of all lines.
    std::vector<quint32> lineColors() const;
    /// Shows these lines, from 0 to one behind the last, as the difference that the user is at: a
    /// bar beside their numbers. Scrolls to them; no lines at all only scrolls.
    void showDifference(int first, int end);
    /// Marks every place that holds this text in any case; empty marks none. Gives their number.
    int highlightAll(const QString& wanted);
    /// What an empty pane says in its place.
    void setEmptyText(const QString& text);

    void paintLineNumbers(QPaintEvent* event);
    int lineNumberWidth() const;

 signals:
    /// Another text is shown; marks are gone.
    void textReplaced();
    /// A comparison begins to paint lines.
    void marked();

 protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

 private:
    void applyPalette();

    QString text_;
    QString plain_;
    QString emptyText_;
    SqlHighlighter* highlighter_;
    QWidget* lineNumbers_;
    int selectionStart_ = 0;
    int selectionEnd_ = 0;
    std::unordered_map<int, quint32> lineColors_;
    int differenceStart_ = 0;
    int differenceEnd_ = 0;
};

}  // namespace zov::qt
