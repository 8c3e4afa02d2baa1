// Splits a text into tokens with a small state machine over four sets of
// characters. It knows nothing of SQL: who calls sets the characters.
#pragma once

#include <QString>

namespace zov {

class CTokenizer {
 public:
    /// 0 none, 1 upper case, 2 lower case; quoted tokens keep theirs.
    qint32 ConvertCase() const { return convertCase_; }
    void setConvertCase(qint32 value) { convertCase_ = value; }
    /// Characters that end a line: a run of them ends a token, quoted or not, and comes back whole
    /// as its separator.
    const QString& EOLChars() const { return eolChars_; }
    void setEOLChars(const QString& value) { eolChars_ = value; }
    /// Characters that open and close a quoted token.
    const QString& QuoteChars() const { return quoteChars_; }
    void setQuoteChars(const QString& value) { quoteChars_ = value; }
    /// Characters that end a token and are given back.
    const QString& SeparatorChars() const { return separatorChars_; }
    void setSeparatorChars(const QString& value) { separatorChars_ = value; }
    const QString& Text() const { return text_; }
    /// Starts over with this text.
    void setText(const QString& value);
    /// Characters that end a token and are dropped.
    const QString& WhiteSpaceChars() const { return whiteSpaceChars_; }
    void setWhiteSpaceChars(const QString& value) { whiteSpaceChars_ = value; }

    /// The next token with what ended it; false at the end. A last character that would be a token
    /// of its own is never given: the test for the end includes the last position.
    bool GetNextToken(QString& Token, QString& Separator, bool& Quoted);

 private:
    enum class State { Start = 0, InToken = 1, InQuotes = 2, Ended = 3 };
    enum class Class { WhiteSpace = 0, Separator = 1, Quote = 2, Token = 3, Eol = 4 };

    Class CharType(QChar c) const;
    void AppendToken();
    // Each handles one character; false ends the token.
    bool HandleEOF(QString& separator);
    bool HandleQuote(QString& separator);
    bool HandleSeparator(QString& separator);
    bool HandleToken();
    bool HandleWhiteSpace();

    qint32 convertCase_ = 0;
    QString eolChars_ = QStringLiteral("\r\n");
    QString quoteChars_;
    QString separatorChars_;
    QString whiteSpaceChars_ = QStringLiteral(" \t");
    QString text_;
    State state_ = State::Start;
    QChar current_;
    QString token_;
    qsizetype length_ = 0;
    qsizetype position_ = 1;  ///< of the next character, from 1
    QChar openQuote_;
};

}  // namespace zov
