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
    void setPageSize(qint32 width, qint32 height) override { pageSize_ = {width, height}; }
    /// In twips. Lines are not wrapped, however wide the page is.
    QSize pageSize() const { return pageSize_; }

    /// Points more or less than the usual size of the letters and of the line numbers.
    void setZoom(int points);

    /// Whether a comparison has painted lines of this text.
    bool hasMarks() const { return !lineColors_.empty(); }
    /// The colour of a line as stored, 0xBBGGRR; white when it has none.
    quint32 lineColor(int line) const;
    /// The colours of all lines.
    std::vector<quint32> lineColors() const;
    /// Shows these lines, from 0 to one behind the last, as the difference that the user is at: a
    /// bar beside their numbers. Scrolls to them; no lines at all only scrolls.
    void showDifference(int first, int end);
    /// What an empty pane says in its place.
    void setEmptyText(const QString& text);

    void paintLineNumbers(QPaintEvent* event);
    int lineNumberWidth() const;

 signals:
    /// Another text is shown; marks are gone.
    void textReplaced();
    /// A comparison begins to paint lines.
    void marked();
    /// Ctrl and the wheel: so many points larger.
    void zoomAsked(int points);

 protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

 private:
    void applyPalette();
    void fitToFont();

    QString text_;
    QString plain_;
    QString emptyText_;
    SqlHighlighter* highlighter_;
    QWidget* lineNumbers_;
    QSize pageSize_;
    int wheelTurned_ = 0;  ///< eighths of a degree that are no step yet
    int selectionStart_ = 0;
    int selectionEnd_ = 0;
    std::unordered_map<int, quint32> lineColors_;
    int differenceStart_ = 0;
    int differenceEnd_ = 0;
};

}  // namespace zov::qt
