// The parser's expressions and conditions, from OR down to names and literals.
#include "data/local/query_parser.h"

#include "data/local/query_values.h"

#include <algorithm>

namespace zov::local {

ExprPtr QueryParser::parseExpression() {
    return parseAdditive();
}
ExprPtr QueryParser::parseCondition() {
    return parseOr();
}

ExprPtr QueryParser::parseOr() {
    DepthGuard guard(*this);
    ExprPtr left = parseAnd();
    while (is("or")) {
        ExprPtr node = make(Expr::Kind::Or);
        ++at_;
        node->args.push_back(std::move(left));
        node->args.push_back(parseAnd());
        left = std::move(node);
    }
    return left;
}

ExprPtr QueryParser::parseAnd() {
    ExprPtr left = parseNot();
    while (is("and")) {
        ExprPtr node = make(Expr::Kind::And);
        ++at_;
        node->args.push_back(std::move(left));
        node->args.push_back(parseNot());
        left = std::move(node);
    }
    return left;
}

ExprPtr QueryParser::parseNot() {
    DepthGuard guard(*this);
    if (is("not")) {
        ExprPtr node = make(Expr::Kind::Not);
        ++at_;
        node->args.push_back(parseNot());
        return node;
    }
    return parsePredicate();
}

ExprPtr QueryParser::parsePredicate() {
    if (is("exists")) {
        ExprPtr node = make(Expr::Kind::Exists);
        ++at_;
        expect("(");
        node->select = parseSelect();
        expect(")");
        return node;
    }
    ExprPtr left = parseAdditive();
    for (;;) {
        static const char* const operators[] = {"=", "<>", "!=", "<=", ">=", "<", ">", "!<", "!>"};
        const char* found = nullptr;
        for (const char* op : operators)
            if (is(op)) found = op;
        if (found) {
            ExprPtr node = make(Expr::Kind::Compare);
            ++at_;
            const QLatin1String op(found);
            node->name = op == QLatin1String("!=")   ? QStringLiteral("<>")
                         : op == QLatin1String("!<") ? QStringLiteral(">=")
                         : op == QLatin1String("!>") ? QStringLiteral("<=")
                                                     : QString(op);
            node->args.push_back(std::move(left));
            if (is("all") || is("any") || is("some")) {
                node->kind = Expr::Kind::Quantified;
                node->tolerant = is("all");
                ++at_;
                expect("(");
                node->select = parseSelect();
                expect(")");
            } else {
                node->args.push_back(parseAdditive());
            }
            left = std::move(node);
            continue;
        }
        if (is("is")) {
            ExprPtr node = make(Expr::Kind::IsNull);
            ++at_;
            node->negated = accept("not");
            expect("null");
            node->args.push_back(std::move(left));
            left = std::move(node);
            continue;
        }
        const bool negated = is("not") && (is("in", 1) || is("like", 1) || is("between", 1));
        if (negated) ++at_;
        if (is("in")) {
            ExprPtr node = make(Expr::Kind::In);
            ++at_;
            node->negated = negated;
            node->args.push_back(std::move(left));
            expect("(");
            if (selectAhead()) {
                node->select = parseSelect();
            } else {
                do node->args.push_back(parseAdditive());
                while (accept(","));
            }
            expect(")");
            left = std::move(node);
        } else if (is("like")) {
            ExprPtr node = make(Expr::Kind::Like);
            ++at_;
            node->negated = negated;
            node->args.push_back(std::move(left));
            node->args.push_back(parseAdditive());
            if (accept("escape")) node->args.push_back(parseAdditive());
            left = std::move(node);
        } else if (is("between")) {
            ExprPtr node = make(Expr::Kind::Between);
            ++at_;
            node->negated = negated;
            node->args.push_back(std::move(left));
            node->args.push_back(parseAdditive());
            expect("and");
            node->args.push_back(parseAdditive());
            left = std::move(node);
        } else {
            return left;
        }
    }
}

ExprPtr QueryParser::parseAdditive() {
    DepthGuard guard(*this);
    ExprPtr left = parseMultiplicative();
    while (is("+") || is("-") || is("&") || is("|") || is("^")) {
        ExprPtr node = make(Expr::Kind::Arithmetic);
        node->name = peek().source.toString();
        ++at_;
        node->args.push_back(std::move(left));
        node->args.push_back(parseMultiplicative());
        left = std::move(node);
    }
    return left;
}

ExprPtr QueryParser::parseMultiplicative() {
    ExprPtr left = parseUnary();
    while (is("*") || is("/") || is("%")) {
        ExprPtr node = make(Expr::Kind::Arithmetic);
        node->name = peek().source.toString();
        ++at_;
        node->args.push_back(std::move(left));
        node->args.push_back(parseUnary());
        left = std::move(node);
    }
    return left;
}

ExprPtr QueryParser::parseUnary() {
    DepthGuard guard(*this);
    if (is("-") || is("+") || is("~")) {
        ExprPtr node = make(Expr::Kind::Unary);
        node->name = peek().source.toString();
        ++at_;
        node->args.push_back(parseUnary());
        return node;
    }
    return parsePostfix();
}

ExprPtr QueryParser::parsePostfix() {
    ExprPtr value = parsePrimary();
    while (is("collate")) {
        ExprPtr node = make(Expr::Kind::Collate);
        ++at_;
        node->name = peek().name();
        if (!peek().isName()) failHere();
        ++at_;
        node->args.push_back(std::move(value));
        value = std::move(node);
    }
    return value;
}

ExprPtr QueryParser::parsePrimary() {
    const Token& token = peek();
    switch (token.kind) {
        case TokenKind::Number:
        case TokenKind::String:
        case TokenKind::Binary: {
            ExprPtr node = make(Expr::Kind::Literal);
            node->literalIndex = own_ ? int(at_) : -1;
            ++at_;
            return node;
        }
        case TokenKind::Operator:
            if (token.is("(")) {
                if (selectAhead()) {
                    ExprPtr node = make(Expr::Kind::Subquery);
                    ++at_;
                    node->select = parseSelect();
                    expect(")");
                    return node;
                }
                ++at_;
                ExprPtr inner = parseOr();
                expect(")");
                return inner;
            }
            if (token.is("*")) {
                ExprPtr node = make(Expr::Kind::Star);
                ++at_;
                return node;
            }
            failHere();
        case TokenKind::Word:
            if (token.source.startsWith(u'@')) {
                ExprPtr node = make(Expr::Kind::Variable);
                node->name = token.source.toString();
                ++at_;
                return node;
            }
            if (token.is("null")) {
                ExprPtr node = make(Expr::Kind::Null);
                ++at_;
                return node;
            }
            if (token.is("case")) return parseCase();
            if (token.is("next") && is("value", 1) && is("for", 2)) {
                ExprPtr node = make(Expr::Kind::Function);
                node->name = QStringLiteral("next value for");
                at_ += 3;
                if (!parsePath(node->path)) failHere();
                return node;
            }
            if ((token.is("left") || token.is("right")) && is("(", 1)) {
                ++at_;
                return parseFunction(token);
            }
            if (token.is("current_timestamp") || token.is("current_user") ||
                token.is("session_user") || token.is("system_user") || token.is("user")) {
                if (!is(".", 1) && !is("(", 1)) {
                    ExprPtr node = make(Expr::Kind::Function);
                    node->name = token.source.toString().toLower();
                    ++at_;
                    return node;
                }
            }
            if (isReservedWord(token.source)) failHere();
            return parseNameOrCall();
        case TokenKind::Quoted:
            return parseNameOrCall();
        case TokenKind::End:
            failHere();
    }
    failHere();
}

ExprPtr QueryParser::parseNameOrCall() {
    const Token& first = peek();
    if (first.kind == TokenKind::Word && is("(", 1)) {
        ++at_;
        return parseFunction(first);
    }
    ExprPtr node = make(Expr::Kind::Column);
    QStringList path;
    path.append(first.name());
    ++at_;
    while (is(".")) {
        ++at_;
        if (is(".")) {
            path.append(QString());
        } else if (is("*")) {
            ++at_;
            node->kind = Expr::Kind::Star;
            node->path = path;
            return node;
        } else if (peek().isName()) {
            path.append(peek().name());
            ++at_;
        } else {
            failHere();
        }
    }
    if (is("(") && path.size() > 1)
        failWith(
            0, QStringLiteral(
                   "The function '%1' can't be called: the embedded server keeps functions as text "
                   "and does not run them.")
                   .arg(path.join(u'.')));
    node->name = path.takeLast();
    node->path = path;
    return node;
}

ExprPtr QueryParser::parseFunction(const Token& nameToken) {
    ExprPtr node = make(Expr::Kind::Function);
    node->token = &nameToken;
    node->name = nameToken.source.toString().toLower();
    expect("(");
    if (node->name == u"cast" || node->name == u"try_cast") {
        node->kind = Expr::Kind::Cast;
        node->tolerant = node->name.startsWith(u't');
        node->args.push_back(parseExpression());
        expect("as");
        node->castType = typeReader_(tokens_, at_, at_);
        expect(")");
        return node;
    }
    if (node->name == u"convert" || node->name == u"try_convert") {
        node->kind = Expr::Kind::Cast;
        node->tolerant = node->name.startsWith(u't');
        node->castType = typeReader_(tokens_, at_, at_);
        expect(",");
        node->args.push_back(parseExpression());
        if (accept(",")) node->args.push_back(parseExpression());
        expect(")");
        return node;
    }
    if (!accept(")")) {
        if (accept("distinct"))
            node->distinct = true;
        else if (is("all") && !is("(", 1))
            accept("all");
        // IIF's first argument is a condition.
        do
            node->args.push_back(node->name == u"iif" && node->args.empty() ? parseCondition()
                                                                            : parseExpression());
        while (accept(","));
        expect(")");
    }
    if (accept("over")) node->window = parseWindow();
    return node;
}

std::unique_ptr<WindowSpec> QueryParser::parseWindow() {
    auto window = std::make_unique<WindowSpec>();
    expect("(");
    if (is("partition") && is("by", 1)) {
        at_ += 2;
        do window->partition.push_back(parseExpression());
        while (accept(","));
    }
    if (is("order") && is("by", 1)) {
        at_ += 2;
        window->order = parseOrderItems();
    }
    if (is("rows") || is("range")) {
        while (!is(")")) {
            static const char* const allowed[] = {"rows",      "range",     "between",
                                                  "and",       "unbounded", "preceding",
                                                  "following", "current",   "row"};
            const bool word = std::any_of(std::begin(allowed), std::end(allowed),
                                          [&](const char* w) { return is(w); });
            if (!word && peek().kind != TokenKind::Number) failHere();
            window->frame += u' ';
            window->frame += peek().source;
            ++at_;
        }
    }
    expect(")");
    return window;
}

ExprPtr QueryParser::parseCase() {
    DepthGuard guard(*this);
    ExprPtr node = make(Expr::Kind::Case);
    expect("case");
    if (!is("when")) {
        node->hasOperand = true;
        node->args.push_back(parseExpression());
    }
    if (!is("when")) failHere();
    while (accept("when")) {
        node->args.push_back(node->hasOperand ? parseExpression() : parseCondition());
        expect("then");
        node->args.push_back(parseExpression());
    }
    if (accept("else")) {
        node->hasElse = true;
        node->args.push_back(parseExpression());
    }
    expect("end");
    return node;
}

}  // namespace zov::local
