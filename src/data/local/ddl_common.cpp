#include "data/local/ddl_common.h"

#include "data/local/query_cache.h"

#include <QSet>

namespace zov::local {

void fail(qint32 native, const QString& text, int line, qint32 number) {
    DbError error(number, text, QStringLiteral("42000"), native);
    error.line = line;
    throw error;
}

void failSyntax(const Token& token) {
    static const QSet<QString> keywords = {
        QStringLiteral("add"),       QStringLiteral("all"),        QStringLiteral("alter"),
        QStringLiteral("and"),       QStringLiteral("as"),         QStringLiteral("begin"),
        QStringLiteral("by"),        QStringLiteral("case"),       QStringLiteral("check"),
        QStringLiteral("column"),    QStringLiteral("constraint"), QStringLiteral("create"),
        QStringLiteral("default"),   QStringLiteral("delete"),     QStringLiteral("drop"),
        QStringLiteral("else"),      QStringLiteral("end"),        QStringLiteral("exec"),
        QStringLiteral("execute"),   QStringLiteral("exists"),     QStringLiteral("for"),
        QStringLiteral("foreign"),   QStringLiteral("from"),       QStringLiteral("grant"),
        QStringLiteral("group"),     QStringLiteral("if"),         QStringLiteral("in"),
        QStringLiteral("index"),     QStringLiteral("insert"),     QStringLiteral("into"),
        QStringLiteral("is"),        QStringLiteral("key"),        QStringLiteral("not"),
        QStringLiteral("null"),      QStringLiteral("on"),         QStringLiteral("or"),
        QStringLiteral("order"),     QStringLiteral("primary"),    QStringLiteral("print"),
        QStringLiteral("procedure"), QStringLiteral("references"), QStringLiteral("return"),
        QStringLiteral("select"),    QStringLiteral("set"),        QStringLiteral("table"),
        QStringLiteral("to"),        QStringLiteral("trigger"),    QStringLiteral("unique"),
        QStringLiteral("update"),    QStringLiteral("use"),        QStringLiteral("values"),
        QStringLiteral("view"),      QStringLiteral("where"),      QStringLiteral("while"),
        QStringLiteral("with")};
    if (token.kind == TokenKind::End)
        fail(102, QStringLiteral("Incorrect syntax: the statement ends too early."), token.line);
    const bool keyword =
        token.kind == TokenKind::Word && keywords.contains(token.source.toString().toLower());
    const QString text = token.kind == TokenKind::Quoted || token.kind == TokenKind::String
                             ? token.value
                             : token.source.toString();
    fail(keyword ? 156 : 102,
         QStringLiteral("Incorrect syntax near %1'%2'.")
             .arg(keyword ? QStringLiteral("the keyword ") : QString(), text.left(128)),
         token.line);
}

QString ObjectName::display() const {
    QString text;
    for (const QString& part : {server, database, schema})
        if (!part.isEmpty()) text += part + u'.';
    return text + name;
}

ObjectName ObjectName::parse(const QString& text) {
    const QStringList parts = splitName(text);
    if (parts.isEmpty() || parts.size() > 4)
        fail(15253, QStringLiteral("Syntax error parsing SQL identifier '%1'.").arg(text));
    ObjectName result;
    const qsizetype count = parts.size();
    result.name = parts.last();
    if (count > 1) result.schema = parts[count - 2];
    if (count > 2) result.database = parts[count - 3];
    if (count > 3) result.server = parts[count - 4];
    return result;
}

const Token& TokenCursor::peek(size_t ahead) const {
    if (at_ + ahead < tokens_.size()) return tokens_[at_ + ahead];
    static thread_local Token end;
    end = Token();
    if (!tokens_.empty()) end.line = tokens_.back().line;
    return end;
}

const Token& TokenCursor::next() {
    if (atEnd()) failHere();
    return tokens_[at_++];
}

bool TokenCursor::accept(const char* text) {
    if (atEnd() || !tokens_[at_].is(text)) return false;
    ++at_;
    return true;
}

bool TokenCursor::accept(std::initializer_list<const char*> words) {
    size_t ahead = 0;
    for (const char* word : words)
        if (!peek(ahead++).is(word)) return false;
    at_ += words.size();
    return true;
}

void TokenCursor::expect(const char* text) {
    if (!accept(text)) failHere();
}

void TokenCursor::failHere() const {
    failSyntax(peek());
}

void TokenCursor::expectEnd() const {
    if (!atEnd()) failHere();
}

QString TokenCursor::name() {
    if (!peek().isName()) failHere();
    return tokens_[at_++].name();
}

QString TokenCursor::nameOrText() {
    const Token& token = next();
    if (token.kind == TokenKind::String || token.kind == TokenKind::Quoted) return token.value;
    if (token.kind == TokenKind::Word || token.kind == TokenKind::Number)
        return token.source.toString();
    failSyntax(token);
}

ObjectName TokenCursor::objectName() {
    ObjectName result;
    result.line = peek().line;
    std::vector<QString> parts{name()};
    // "db..name" leaves the schema out.
    while (is(".") && parts.size() < 4) {
        ++at_;
        parts.push_back(is(".") ? QString() : name());
    }
    result.name = parts.back();
    const size_t count = parts.size();
    if (count > 1) result.schema = parts[count - 2];
    if (count > 2) result.database = parts[count - 3];
    if (count > 3) result.server = parts[count - 4];
    return result;
}

std::span<const Token> TokenCursor::parenthesised() {
    expect("(");
    const size_t begin = at_;
    int depth = 1;
    while (!atEnd()) {
        if (tokens_[at_].is("(")) ++depth;
        if (tokens_[at_].is(")") && --depth == 0) {
            ++at_;
            return tokens_.subspan(begin, at_ - 1 - begin);
        }
        ++at_;
    }
    failHere();
}

std::span<const Token> TokenCursor::until(std::initializer_list<const char*> stops) {
    const size_t begin = at_;
    int depth = 0;
    int cases = 0;
    while (!atEnd()) {
        const Token& token = tokens_[at_];
        if (depth == 0 && cases == 0) {
            if (token.is(",") || token.is(")")) break;
            bool stop = false;
            for (const char* word : stops) stop = stop || token.is(word);
            if (stop && at_ > begin) break;
        }
        if (token.is("(")) ++depth;
        if (token.is(")")) --depth;
        if (token.is("CASE")) ++cases;
        if (token.is("END") && cases > 0) --cases;
        ++at_;
    }
    if (at_ == begin) failHere();
    return tokens_.subspan(begin, at_ - begin);
}

QString TokenCursor::wholeNumber() {
    QString sign;
    if (accept("-"))
        sign = QStringLiteral("-");
    else
        accept("+");
    const Token& token = next();
    if (token.kind != TokenKind::Number) failSyntax(token);
    return sign + token.source.toString();
}

QString sourceText(std::span<const Token> tokens) {
    while (!tokens.empty() && tokens.back().kind == TokenKind::End)
        tokens = tokens.first(tokens.size() - 1);
    if (tokens.empty()) return {};
    const QStringView first = tokens.front().source;
    const QStringView last = tokens.back().source;
    return QString(first.data(), last.data() + last.size() - first.data());
}

}  // namespace zov::local
