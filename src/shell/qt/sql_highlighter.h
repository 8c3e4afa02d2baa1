// Colours T-SQL in a text pane: keywords, strings, comments, numbers, quoted
// names. It knows the shape of tokens only, no grammar.
#pragma once

#include <QSyntaxHighlighter>
#include <QTextCharFormat>

namespace zov::qt {

class SqlHighlighter : public QSyntaxHighlighter {
    Q_OBJECT
 public:
    explicit SqlHighlighter(QTextDocument* document);
    /// Picks the shades for a light or a dark pane and colours anew.
    void setDark(bool dark);

 protected:
    void highlightBlock(const QString& text) override;

 private:
    QTextCharFormat keyword_;
    QTextCharFormat string_;
    QTextCharFormat comment_;
    QTextCharFormat number_;
    QTextCharFormat name_;
};

}  // namespace zov::qt
