// What the definition statements share: reading tokens one by one, names of up to four parts, the
// server's error texts.
#pragma once

#include "data/local/local_session.h"

#include <QString>

#include <initializer_list>
#include <span>

namespace zov::local {

/// Throws DbError with a SQL Server message number and its text; `line` within the batch, 0
/// unknown.
[[noreturn]] void fail(qint32 native, const QString& text, int line = 0,
                       qint32 number = ado_error::SyntaxError);
/// "Incorrect syntax near ..." at a token (102, or 156 at a keyword).
[[noreturn]] void failSyntax(const Token& token);

/// [server.][database.][schema.]name; parts that are left out are empty.
struct ObjectName {
    QString server;
    QString database;
    QString schema;
    QString name;
    int line = 0;

    /// As in the server's messages: the parts that were given, joined by dots.
    QString display() const;
    /// From a text such as "dbo.[my table]", as the system procedures take it.
    static ObjectName parse(const QString& text);
};

/// Steps through the tokens of one statement.
class TokenCursor {
 public:
    explicit TokenCursor(std::span<const Token> tokens) : tokens_(tokens) {}

    bool atEnd() const { return at_ >= tokens_.size() || tokens_[at_].kind == TokenKind::End; }
    /// The End token behind the last one.
    const Token& peek(size_t ahead = 0) const;
    const Token& next();
    bool is(const char* text) const { return peek().is(text); }
    bool accept(const char* text);
    /// All of the words one after the other, or none.
    bool accept(std::initializer_list<const char*> words);
    void expect(const char* text);
    /// One Word or Quoted token as a bare name.
    QString name();
    /// A name, a text in quotes or a number's digits.
    QString nameOrText();
    ObjectName objectName();
    /// "(" to its matching ")": what stands between them.
    std::span<const Token> parenthesised();
    /// Everything up to a "," or ")" at this depth, or one of `stops`, or the end.
    std::span<const Token> until(std::initializer_list<const char*> stops);
    /// A signed whole number's text.
    QString wholeNumber();
    std::span<const Token> rest() const { return tokens_.subspan(std::min(at_, tokens_.size())); }
    void skip(size_t count) { at_ += count; }
    size_t position() const { return at_; }
    /// Throws unless everything was read.
    void expectEnd() const;
    [[noreturn]] void failHere() const;

 private:
    std::span<const Token> tokens_;
    size_t at_ = 0;
};

/// The source text from the first to the last of `tokens`, comments between them included.
QString sourceText(std::span<const Token> tokens);

}  // namespace zov::local
