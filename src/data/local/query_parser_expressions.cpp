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

/// One operand more of "a + b + c" or "a AND b AND c": such a chain is one node, so that a long one
/// makes no deep tree. What stands in parentheses on its left is a part of it, too.
void QueryParser::extend(ExprPtr& chain, Expr::Kind kind, ExprPtr (QueryParser::*parseOperand)()) {
    const Token& op = peek();
    if (chain->kind != kind) {
        ExprPtr node = make(kind);
        node->args.push_back(std::move(chain));
        chain = std::move(node);
    }
    if (kind == Expr::Kind::Arithmetic) chain->operators += op.source[0];
    ++at_;
    chain->args.push_back((this->*parseOperand)());
    if (chain->args.size() > MaxChain) failTooDeep(op.line);
}

ExprPtr QueryParser::parseOr() {
    ExprPtr left = parseAnd();
    while (is("or")) extend(left, Expr::Kind::Or, &QueryParser::parseAnd);
    return left;
}

ExprPtr QueryParser::parseAnd() {
    ExprPtr left = parseNot();
    while (is("and")) extend(left, Expr::Kind::And, &QueryParser::parseNot);
    return left;
}

ExprPtr QueryParser::parseNot() {
    if (!is("not")) return parsePredicate();
    return nested([this] {
        ExprPtr node = make(Expr::Kind::Not);
        ++at_;
        node->args.push_back(parseNot());
        return node;
    });
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
        return node;
    }
    if (is("is")) {
        ExprPtr node = make(Expr::Kind::IsNull);
        ++at_;
        node->negated = accept("not");
        expect("null");
        node->args.push_back(std::move(left));
        return node;
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
        return node;
    }
    if (is("like")) {
        ExprPtr node = make(Expr::Kind::Like);
        ++at_;
        node->negated = negated;
        node->args.push_back(std::move(left));
        node->args.push_back(parseAdditive());
        if (accept("escape")) node->args.push_back(parseAdditive());
        return node;
    }
    if (is("between")) {
        ExprPtr node = make(Expr::Kind::Between);
        ++at_;
        node->negated = negated;
        node->args.push_back(std::move(left));
        node->args.push_back(parseAdditive());
        expect("and");
        node->args.push_back(parseAdditive());
        return node;
    }
    return left;
}

ExprPtr QueryParser::parseAdditive() {
    ExprPtr left = parseMultiplicative();
    while (is("+") || is("-") || is("&") || is("|") || is("^"))
        extend(left, Expr::Kind::Arithmetic, &QueryParser::parseMultiplicative);
    return left;
}

ExprPtr QueryParser::parseMultiplicative() {
    ExprPtr left = parseUnary();
    while (is("*") || is("/") || is("%"))
        extend(left, Expr::Kind::Arithmetic, &QueryParser::parseUnary);
    return left;
}

ExprPtr QueryParser::parseUnary() {
    if (!is("-") && !is("+") && !is("~")) return parsePostfix();
    return nested([this] {
        ExprPtr node = make(Expr::Kind::Unary);
        node->name = peek().source.toString();
        ++at_;
        node->args.push_back(parseUnary());
        return node;
    });
}

ExprPtr QueryParser::parsePostfix() {
    ExprPtr value = parsePrimary();
    while (is("collate")) {
        ++at_;
        if (!peek().isName()) failHere();
        // The last one said counts.
        if (value->kind != Expr::Kind::Collate) {
            ExprPtr node = make(Expr::Kind::Collate);
            node->args.push_back(std::move(value));
            value = std::move(node);
        }
        value->name = peek().name();
        ++at_;
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
            if (token.is("(")) return parseParenthesised();
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

ExprPtr QueryParser::parseParenthesised() {
    return nested([this] {
        if (selectAt(1)) {
            ExprPtr node = make(Expr::Kind::Subquery);
            ++at_;
            node->select = parseSelect();
            expect(")");
            return node;
        }
        ++at_;
        ExprPtr inner = parseOr();
        // "((SELECT ...) UNION (SELECT ...))"
        if (inner->kind == Expr::Kind::Subquery && moreOfQuery()) parseMoreOfQuery(*inner->select);
        expect(")");
        return inner;
    });
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
    return nested([&] {
        parseArguments(*node);
        return std::move(node);
    });
}

/// From "(" on.
void QueryParser::parseArguments(Expr& call) {
    expect("(");
    if (call.name == u"cast" || call.name == u"try_cast") {
        call.kind = Expr::Kind::Cast;
        call.tolerant = call.name.startsWith(u't');
        call.args.push_back(parseExpression());
        expect("as");
        call.castType = typeReader_(tokens_, at_, at_);
        expect(")");
        return;
    }
    if (call.name == u"convert" || call.name == u"try_convert") {
        call.kind = Expr::Kind::Cast;
        call.tolerant = call.name.startsWith(u't');
        call.castType = typeReader_(tokens_, at_, at_);
        expect(",");
        call.args.push_back(parseExpression());
        if (accept(",")) call.args.push_back(parseExpression());
        expect(")");
        return;
    }
    if (!accept(")")) {
        if (accept("distinct"))
            call.distinct = true;
        else if (is("all") && !is("(", 1))
            accept("all");
        // IIF's first argument is a condition.
        do
            call.args.push_back(call.name == u"iif" && call.args.empty() ? parseCondition()
                                                                         : parseExpression());
        while (accept(","));
        expect(")");
    }
    if (accept("over")) call.window = parseWindow();
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
    return nested([this] {
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
    });
}

}  // namespace zov::local
