// Splits T-SQL into tokens, for the script loader and the translator of queries.
#pragma once

#include <QString>
#include <QStringView>

#include <vector>

namespace zov::local {

enum class TokenKind {
    Word,      ///< keyword or regular identifier, @variable, #temp, $action
    Quoted,    ///< [name] or "name" (with QUOTED_IDENTIFIER on); value is the bare name
    String,    ///< 'text' or N'text'; value is the text with doubled quotes undone
    Number,    ///< 12, 1.5, 1e3, $12.50
    Binary,    ///< 0x...
    Operator,  ///< one of + - * / % & | ^ ~ = < > <= >= <> != !< !> ( ) , . ; : ::  += -= ...
    End,
};

struct Token {
    TokenKind kind = TokenKind::End;
    QStringView source;      ///< as written, within the text that was given
    QString value;           ///< Quoted and String: the content; empty otherwise
    qsizetype position = 0;  ///< of its first character, from 0
    int line = 1;            ///< from 1

    /// A word or operator equal to `text`, ignoring case. Never true for quoted names.
    bool is(const char* text) const;
    bool isName() const { return kind == TokenKind::Word || kind == TokenKind::Quoted; }
    /// The bare name of a Word or Quoted token.
    QString name() const { return kind == TokenKind::Quoted ? value : source.toString(); }
    qsizetype end() const { return position + source.size(); }
};

/// `quotedIdentifiers`: whether "x" is a name at the beginning of the text; SET QUOTED_IDENTIFIER
/// in it counts from there on. Comments (-- to the line's end, /* nested */) and blanks separate
/// tokens and are dropped. The last token is End. `text` must outlive the tokens. An unterminated
/// string, name or comment throws DbError with the server's wording and the line where it starts.
std::vector<Token> tokenize(QStringView text, bool quotedIdentifiers = true);

}  // namespace zov::local
