#include "data/local/tsql_lexer.h"

#include "data/base/db_error.h"

namespace zov::local {
namespace {

bool startsName(QChar c) {
    return c.isLetter() || c == u'_' || c == u'@' || c == u'#' || c == u'$';
}
bool continuesName(QChar c) {
    return c.isLetterOrNumber() || c == u'_' || c == u'@' || c == u'#' || c == u'$' ||
           c.category() == QChar::Mark_NonSpacing || c.isSurrogate();
}

[[noreturn]] void failAt(int line, qint32 native, const QString& text) {
    DbError error(ado_error::SyntaxError, text, QStringLiteral("42000"), native);
    error.line = line;
    throw error;
}

class Lexer {
 public:
    Lexer(QStringView text, bool quotedIdentifiers) : text_(text), quoted_(quotedIdentifiers) {}

    std::vector<Token> run() {
        std::vector<Token> tokens;
        tokens.reserve(size_t(text_.size() / 5 + 8));
        for (;;) {
            skipBlanksAndComments();
            Token token;
            token.position = at_;
            token.line = line_;
            if (at_ >= text_.size()) {
                tokens.push_back(token);
                return tokens;
            }
            read(token);
            token.source = text_.mid(token.position, at_ - token.position);
            tokens.push_back(std::move(token));
            noticeSetting(tokens);
        }
    }

 private:
    QChar peek(qsizetype ahead = 0) const {
        return at_ + ahead < text_.size() ? text_[at_ + ahead] : QChar();
    }
    void advance() {
        if (text_[at_] == u'\n') ++line_;
        ++at_;
    }

    // SET [ANSI_NULLS,] QUOTED_IDENTIFIER {ON | OFF} counts for what is read behind it, whether or
    // not it is ever run.
    void noticeSetting(const std::vector<Token>& tokens) {
        const bool on = tokens.back().is("ON");
        if (!on && !tokens.back().is("OFF")) return;
        bool named = false;
        for (size_t at = tokens.size() - 1; at >= 2; at -= 2) {
            const Token& name = tokens[at - 1];
            named = named || name.is("QUOTED_IDENTIFIER") || name.is("ANSI_DEFAULTS");
            if (tokens[at - 2].is("SET")) {
                if (named) quoted_ = on;
                return;
            }
            if (!tokens[at - 2].is(",")) return;
        }
    }

    void skipBlanksAndComments() {
        while (at_ < text_.size()) {
            const QChar c = text_[at_];
            if (c.isSpace() || c.isNull() || c == QChar(0xFEFF)) {
                advance();
            } else if (c == u'-' && peek(1) == u'-') {
                while (at_ < text_.size() && text_[at_] != u'\n') ++at_;
            } else if (c == u'/' && peek(1) == u'*') {
                skipBlockComment();
            } else {
                return;
            }
        }
    }

    void skipBlockComment() {
        const int startLine = line_;
        int depth = 0;
        do {
            if (at_ >= text_.size())
                failAt(startLine, 113, QStringLiteral("Missing end comment mark '*/'."));
            if (peek() == u'/' && peek(1) == u'*') {
                ++depth;
                at_ += 2;
            } else if (peek() == u'*' && peek(1) == u'/') {
                --depth;
                at_ += 2;
            } else {
                advance();
            }
        } while (depth > 0);
    }

    void read(Token& token) {
        const QChar c = peek();
        if (c == u'\'') return readQuoted(token, TokenKind::String, u'\'');
        if ((c == u'N' || c == u'n') && peek(1) == u'\'') {
            ++at_;
            return readQuoted(token, TokenKind::String, u'\'');
        }
        if (c == u'[') return readQuoted(token, TokenKind::Quoted, u']');
        if (c == u'"')
            return readQuoted(token, quoted_ ? TokenKind::Quoted : TokenKind::String, u'"');
        if (c == u'0' && (peek(1) == u'x' || peek(1) == u'X')) return readBinary(token);
        if (c.isDigit() || (c == u'.' && peek(1).isDigit())) return readNumber(token);
        if (c == u'$' && (peek(1).isDigit() || peek(1) == u'.' || peek(1) == u'-')) {
            ++at_;
            if (peek() == u'-') ++at_;
            return readNumber(token);
        }
        if (startsName(c) || c.isSurrogate()) {
            token.kind = TokenKind::Word;
            while (at_ < text_.size() && continuesName(text_[at_])) ++at_;
            return;
        }
        token.kind = TokenKind::Operator;
        static const char* const doubles[] = {"<=", ">=", "<>", "!=", "!<", "!>", "::", "+=",
                                              "-=", "*=", "/=", "%=", "&=", "|=", "^="};
        for (const char* pair : doubles) {
            if (c == QLatin1Char(pair[0]) && peek(1) == QLatin1Char(pair[1])) {
                at_ += 2;
                return;
            }
        }
        ++at_;
    }

    void readQuoted(Token& token, TokenKind kind, char16_t close) {
        const int startLine = line_;
        const qsizetype start = at_;
        token.kind = kind;
        ++at_;
        for (;;) {
            if (at_ >= text_.size())
                failAt(startLine, 105,
                       QStringLiteral("Unclosed quotation mark after the character string '%1'.")
                           .arg(text_.mid(start + 1, 128)));
            if (text_[at_] == close) {
                if (peek(1) != close) break;
                ++at_;
            }
            if (kind == TokenKind::String && continuesLine()) {
                skipContinuation();
                continue;
            }
            token.value += text_[at_];
            advance();
        }
        ++at_;
    }

    // A backslash at a line's end continues a constant on the next line; neither is a part of it.
    bool continuesLine() const {
        return peek() == u'\\' && (peek(1) == u'\n' || (peek(1) == u'\r' && peek(2) == u'\n'));
    }
    void skipContinuation() {
        at_ += peek(1) == u'\r' ? 2 : 1;
        advance();
    }

    void readBinary(Token& token) {
        token.kind = TokenKind::Binary;
        at_ += 2;
        for (;;) {
            if (isHexDigit(peek())) {
                ++at_;
            } else if (continuesLine()) {
                skipContinuation();
            } else {
                return;
            }
        }
    }
    static bool isHexDigit(QChar c) {
        return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
    }

    void readNumber(Token& token) {
        token.kind = TokenKind::Number;
        while (peek().isDigit()) ++at_;
        if (peek() == u'.') {
            ++at_;
            while (peek().isDigit()) ++at_;
        }
        if ((peek() == u'e' || peek() == u'E')) {
            const bool sign = peek(1) == u'+' || peek(1) == u'-';
            if (peek(sign ? 2 : 1).isDigit()) {
                at_ += sign ? 2 : 1;
                while (peek().isDigit()) ++at_;
            }
        }
    }

    QStringView text_;
    bool quoted_;
    qsizetype at_ = 0;
    int line_ = 1;
};

}  // namespace

bool Token::is(const char* text) const {
    return (kind == TokenKind::Word || kind == TokenKind::Operator) &&
           source.compare(QLatin1String(text), Qt::CaseInsensitive) == 0;
}

std::vector<Token> tokenize(QStringView text, bool quotedIdentifiers) {
    return Lexer(text, quotedIdentifiers).run();
}

}  // namespace zov::local
