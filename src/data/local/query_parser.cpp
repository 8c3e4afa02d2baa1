#include "data/local/query_parser.h"

#include "data/local/query_values.h"

#include <algorithm>

namespace zov::local {
namespace {

const Token endToken;
constexpr size_t MaxItems = 4096;  // of a select list

}  // namespace

bool isReservedWord(QStringView word) {
    // Sorted; the words of the language that can't stand as a bare name.
    static const QLatin1String words[] = {QLatin1String("add"),
                                          QLatin1String("all"),
                                          QLatin1String("alter"),
                                          QLatin1String("and"),
                                          QLatin1String("any"),
                                          QLatin1String("as"),
                                          QLatin1String("asc"),
                                          QLatin1String("backup"),
                                          QLatin1String("begin"),
                                          QLatin1String("between"),
                                          QLatin1String("break"),
                                          QLatin1String("bulk"),
                                          QLatin1String("by"),
                                          QLatin1String("case"),
                                          QLatin1String("check"),
                                          QLatin1String("checkpoint"),
                                          QLatin1String("close"),
                                          QLatin1String("clustered"),
                                          QLatin1String("collate"),
                                          QLatin1String("column"),
                                          QLatin1String("commit"),
                                          QLatin1String("compute"),
                                          QLatin1String("constraint"),
                                          QLatin1String("continue"),
                                          QLatin1String("create"),
                                          QLatin1String("cross"),
                                          QLatin1String("cursor"),
                                          QLatin1String("database"),
                                          QLatin1String("dbcc"),
                                          QLatin1String("deallocate"),
                                          QLatin1String("declare"),
                                          QLatin1String("default"),
                                          QLatin1String("delete"),
                                          QLatin1String("deny"),
                                          QLatin1String("desc"),
                                          QLatin1String("distinct"),
                                          QLatin1String("drop"),
                                          QLatin1String("else"),
                                          QLatin1String("end"),
                                          QLatin1String("escape"),
                                          QLatin1String("except"),
                                          QLatin1String("exec"),
                                          QLatin1String("execute"),
                                          QLatin1String("exists"),
                                          QLatin1String("fetch"),
                                          QLatin1String("for"),
                                          QLatin1String("foreign"),
                                          QLatin1String("from"),
                                          QLatin1String("full"),
                                          QLatin1String("function"),
                                          QLatin1String("go"),
                                          QLatin1String("goto"),
                                          QLatin1String("grant"),
                                          QLatin1String("group"),
                                          QLatin1String("having"),
                                          QLatin1String("holdlock"),
                                          QLatin1String("identity_insert"),
                                          QLatin1String("if"),
                                          QLatin1String("in"),
                                          QLatin1String("index"),
                                          QLatin1String("inner"),
                                          QLatin1String("insert"),
                                          QLatin1String("intersect"),
                                          QLatin1String("into"),
                                          QLatin1String("is"),
                                          QLatin1String("join"),
                                          QLatin1String("key"),
                                          QLatin1String("kill"),
                                          QLatin1String("left"),
                                          QLatin1String("like"),
                                          QLatin1String("merge"),
                                          QLatin1String("nocheck"),
                                          QLatin1String("nonclustered"),
                                          QLatin1String("not"),
                                          QLatin1String("null"),
                                          QLatin1String("of"),
                                          QLatin1String("off"),
                                          QLatin1String("on"),
                                          QLatin1String("open"),
                                          QLatin1String("option"),
                                          QLatin1String("or"),
                                          QLatin1String("order"),
                                          QLatin1String("outer"),
                                          QLatin1String("over"),
                                          QLatin1String("percent"),
                                          QLatin1String("primary"),
                                          QLatin1String("print"),
                                          QLatin1String("proc"),
                                          QLatin1String("procedure"),
                                          QLatin1String("raiserror"),
                                          QLatin1String("references"),
                                          QLatin1String("restore"),
                                          QLatin1String("return"),
                                          QLatin1String("revoke"),
                                          QLatin1String("right"),
                                          QLatin1String("rollback"),
                                          QLatin1String("rowguidcol"),
                                          QLatin1String("rule"),
                                          QLatin1String("save"),
                                          QLatin1String("schema"),
                                          QLatin1String("select"),
                                          QLatin1String("set"),
                                          QLatin1String("shutdown"),
                                          QLatin1String("some"),
                                          QLatin1String("statistics"),
                                          QLatin1String("table"),
                                          QLatin1String("then"),
                                          QLatin1String("to"),
                                          QLatin1String("top"),
                                          QLatin1String("tran"),
                                          QLatin1String("transaction"),
                                          QLatin1String("trigger"),
                                          QLatin1String("truncate"),
                                          QLatin1String("union"),
                                          QLatin1String("unique"),
                                          QLatin1String("update"),
                                          QLatin1String("use"),
                                          QLatin1String("values"),
                                          QLatin1String("view"),
                                          QLatin1String("waitfor"),
                                          QLatin1String("when"),
                                          QLatin1String("where"),
                                          QLatin1String("while"),
                                          QLatin1String("with")};
    const auto less = [](QLatin1String a, QStringView b) {
        return b.compare(a, Qt::CaseInsensitive) > 0;
    };
    const auto it = std::lower_bound(std::begin(words), std::end(words), word, less);
    return it != std::end(words) && word.compare(*it, Qt::CaseInsensitive) == 0;
}

void failTooMany(qint32 native, const QString& text, const Token& token) {
    DbError error(ado_error::SyntaxError, text, QStringLiteral("42000"), native);
    error.line = token.line;
    throw error;
}

void failNear(const Token& token) {
    QString text;
    if (token.kind == TokenKind::End)
        text = QStringLiteral("Incorrect syntax near the end of the statement.");
    else if (token.kind == TokenKind::Word && isReservedWord(token.source))
        text = QStringLiteral("Incorrect syntax near the keyword '%1'.").arg(token.source);
    else
        text = QStringLiteral("Incorrect syntax near '%1'.")
                   .arg(token.kind == TokenKind::Quoted || token.kind == TokenKind::String
                            ? token.value
                            : token.source.toString());
    DbError error(ado_error::SyntaxError, text, QStringLiteral("42000"),
                  token.kind == TokenKind::Word && isReservedWord(token.source) ? 156 : 102);
    error.line = token.line;
    throw error;
}

const Token& QueryParser::peek(qsizetype ahead) const {
    const qsizetype at = at_ + ahead;
    return at < qsizetype(tokens_.size()) ? tokens_[size_t(at)] : endToken;
}

bool QueryParser::accept(const char* word) {
    if (!is(word)) return false;
    ++at_;
    return true;
}

void QueryParser::expect(const char* word) {
    if (!accept(word)) failHere();
}

void QueryParser::failHere() const {
    const Token& token = peek();
    if (token.kind != TokenKind::End) failNear(token);
    // At the end it is the last word that is to blame.
    qsizetype last = std::min(at_, qsizetype(tokens_.size())) - 1;
    while (last >= 0 && tokens_[size_t(last)].kind == TokenKind::End) --last;
    failNear(last >= 0 ? tokens_[size_t(last)] : token);
}

void QueryParser::expectEnd() {
    if (!atEnd() && peek().kind != TokenKind::End) failHere();
}

QString QueryParser::expectName() {
    const Token& token = peek();
    if (!token.isName() || (token.kind == TokenKind::Word && isReservedWord(token.source)))
        failHere();
    ++at_;
    return token.name();
}

ExprPtr QueryParser::make(Expr::Kind kind) {
    auto expr = std::make_unique<Expr>();
    expr->kind = kind;
    expr->token = &peek();
    return expr;
}

bool QueryParser::parsePath(QStringList& path) {
    const Token& first = peek();
    if (!first.isName() || (first.kind == TokenKind::Word &&
                            (isReservedWord(first.source) || first.source.startsWith(u'@'))))
        return false;
    path.append(first.name());
    ++at_;
    while (is(".")) {
        ++at_;
        if (is(".")) {  // "db..table": the default schema
            path.append(QString());
            continue;
        }
        if (!peek().isName()) failHere();
        path.append(peek().name());
        ++at_;
    }
    if (path.size() > 4) failHere();
    return true;
}

// --- SELECT -------------------------------------------------------------------------------------

std::vector<CommonTable> QueryParser::parseWith() {
    std::vector<CommonTable> tables;
    if (!accept("with")) return tables;
    do {
        CommonTable table;
        table.name = expectName();
        if (accept("(")) {
            do table.columns.append(expectName());
            while (accept(","));
            expect(")");
        }
        expect("as");
        expect("(");
        table.select = parseSelect();
        expect(")");
        tables.push_back(std::move(table));
    } while (accept(","));
    return tables;
}

SelectPtr QueryParser::parseSelect() {
    return nested([this] {
        auto select = std::make_unique<Select>();
        select->with = parseWith();
        select->body = parseQueryExpr();
        parseOrderAndOptions(*select);
        return select;
    });
}

void QueryParser::parseOrderAndOptions(Select& select) {
    if (is("order") && is("by", 1)) {
        at_ += 2;
        select.orderBy = parseOrderItems();
        if (accept("offset")) {
            select.offset = parseExpression();
            if (!accept("rows")) expect("row");
            if (accept("fetch")) {
                if (!accept("next")) expect("first");
                select.fetch = parseExpression();
                if (!accept("rows")) expect("row");
                expect("only");
            }
        }
    }
    if (is("for") && is("browse", 1)) at_ += 2;
    if (is("for") && (is("xml", 1) || is("json", 1)))
        failWith(0, QStringLiteral("FOR %1 is not supported by the embedded server.")
                        .arg(peek(1).source.toString().toUpper()));
    skipOption();
}

bool QueryParser::moreOfQuery() const {
    return is("union") || is("except") || is("intersect") || is("order");
}

/// Goes on behind "(SELECT ...)", which turns out to be the first part of a query.
void QueryParser::parseMoreOfQuery(Select& select) {
    if (!select.with.empty() || !select.orderBy.empty()) failHere();
    select.body = parseQueryExpr(std::move(select.body));
    parseOrderAndOptions(select);
}

void QueryParser::skipOption() {
    if (!(is("option") && is("(", 1))) return;
    ++at_;
    int depth = 0;
    do {
        if (atEnd()) failHere();
        if (is("(")) ++depth;
        if (is(")")) --depth;
        ++at_;
    } while (depth > 0);
}

namespace {

/// One part more: what is joined from left to right is one node, however many parts it has.
void extendQuery(std::unique_ptr<QueryExpr>& query, const QString& operation,
                 std::unique_ptr<QueryExpr> part, int line) {
    if (query->spec) {
        auto joined = std::make_unique<QueryExpr>();
        joined->parts.push_back(std::move(query));
        query = std::move(joined);
    }
    query->operations.push_back(operation);
    query->parts.push_back(std::move(part));
    if (query->parts.size() > MaxChain) failTooDeep(line);
}

}  // namespace

std::unique_ptr<QueryExpr> QueryParser::parseQueryExpr(std::unique_ptr<QueryExpr> first) {
    auto query = parseQueryTerm(std::move(first));
    while (is("union") || is("except")) {
        const int line = peek().line;
        QString operation = is("union") ? QStringLiteral("UNION") : QStringLiteral("EXCEPT");
        ++at_;
        if (operation == u"UNION" && accept("all")) operation = QStringLiteral("UNION ALL");
        extendQuery(query, operation, parseQueryTerm(nullptr), line);
    }
    return query;
}

std::unique_ptr<QueryExpr> QueryParser::parseQueryTerm(std::unique_ptr<QueryExpr> first) {
    auto query = first ? std::move(first) : parseQueryFactor();
    while (is("intersect")) {
        const int line = peek().line;
        ++at_;
        extendQuery(query, QStringLiteral("INTERSECT"), parseQueryFactor(), line);
    }
    return query;
}

std::unique_ptr<QueryExpr> QueryParser::parseQueryFactor() {
    if (is("(")) {
        return nested([this] {
            ++at_;
            auto inner = parseQueryExpr();
            expect(")");
            return inner;
        });
    }
    auto expr = std::make_unique<QueryExpr>();
    expr->spec = parseSpec();
    return expr;
}

ExprPtr QueryParser::parseTop() {
    if (!accept("top")) return nullptr;
    ExprPtr top;
    if (accept("(")) {
        top = parseExpression();
        expect(")");
    } else {
        top = parsePrimary();
    }
    if (is("percent") || (is("with") && is("ties", 1)))
        failWith(0,
                 QStringLiteral("TOP with %1 is not supported by the embedded server.")
                     .arg(is("percent") ? QStringLiteral("PERCENT") : QStringLiteral("WITH TIES")));
    return top;
}

std::unique_ptr<QuerySpec> QueryParser::parseSpec() {
    expect("select");
    auto spec = std::make_unique<QuerySpec>();
    if (accept("distinct"))
        spec->distinct = true;
    else
        accept("all");
    spec->top = parseTop();
    do {
        spec->items.push_back(parseItem());
        if (spec->items.size() > MaxItems)
            failTooMany(
                1056,
                QStringLiteral("The number of elements in the select list exceeds the maximum "
                               "allowed number of %1 elements.")
                    .arg(MaxItems),
                peek());
    } while (accept(","));
    if (accept("into")) {
        if (!parsePath(spec->into)) failHere();
    }
    if (accept("from")) spec->from = parseFrom();
    if (accept("where")) spec->where = parseCondition();
    if (is("group") && is("by", 1)) {
        at_ += 2;
        accept("all");
        do spec->groupBy.push_back(parseExpression());
        while (accept(","));
    }
    if (accept("having")) spec->having = parseCondition();
    return spec;
}

SelectItem QueryParser::parseItem() {
    SelectItem item;
    const Token& first = peek();
    if (is("*")) {
        item.expr = make(Expr::Kind::Star);
        ++at_;
        return item;
    }
    if (first.kind == TokenKind::Word && first.source.startsWith(u'@') &&
        !first.source.startsWith(QLatin1String("@@")) && is("=", 1)) {
        item.variable = first.source.toString();
        at_ += 2;
        item.expr = parseExpression();
        return item;
    }
    // alias = expression
    const bool nameHere =
        (first.isName() && !(first.kind == TokenKind::Word && isReservedWord(first.source))) ||
        first.kind == TokenKind::String;
    if (nameHere && is("=", 1)) {
        item.alias = first.kind == TokenKind::String ? first.value : first.name();
        at_ += 2;
        item.expr = parseExpression();
        return item;
    }
    item.expr = parseExpression();
    if (item.expr->kind == Expr::Kind::Star) return item;
    if (accept("as")) {
        const Token& token = peek();
        if (token.kind == TokenKind::String) {
            item.alias = token.value;
        } else if (token.isName()) {
            item.alias = token.name();
        } else {
            failHere();
        }
        ++at_;
    } else {
        const Token& token = peek();
        if (token.kind == TokenKind::String || token.kind == TokenKind::Quoted) {
            item.alias = token.value;
            ++at_;
        } else if (token.kind == TokenKind::Word && !isReservedWord(token.source) &&
                   !token.source.startsWith(u'@')) {
            item.alias = token.name();
            ++at_;
        }
    }
    return item;
}

std::vector<OrderItem> QueryParser::parseOrderItems() {
    std::vector<OrderItem> items;
    do {
        OrderItem item;
        item.expr = parseExpression();
        if (accept("desc"))
            item.descending = true;
        else
            accept("asc");
        items.push_back(std::move(item));
    } while (accept(","));
    return items;
}

// --- INSERT, UPDATE, DELETE ---------------------------------------------------------------------

std::unique_ptr<InsertStatement> QueryParser::parseInsert() {
    auto insert = std::make_unique<InsertStatement>();
    insert->with = parseWith();
    insert->withEnd = at_;
    expect("insert");
    parseTop();
    accept("into");
    insert->tableToken = &peek();
    if (!parsePath(insert->table)) failHere();
    if (is("with") && is("(", 1)) skipHints();
    if (is("(") && !selectAhead()) {
        ++at_;
        insert->hasColumns = true;
        do {
            QStringList path;
            if (!parsePath(path)) failHere();
            insert->columns.append(path.last());
        } while (accept(","));
        expect(")");
    }
    if (accept("default")) {
        expect("values");
        insert->defaultValues = true;
    } else if (accept("values")) {
        insert->rows = parseValueRows(true);
    } else if (is("exec") || is("execute")) {
        failWith(0, QStringLiteral("INSERT ... EXEC is not supported by the embedded server."));
    } else {
        insert->selectBegin = at_;
        insert->select = parseSelect();
        insert->selectEnd = at_;
    }
    return insert;
}

std::unique_ptr<UpdateStatement> QueryParser::parseUpdate() {
    auto update = std::make_unique<UpdateStatement>();
    update->with = parseWith();
    expect("update");
    update->top = parseTop();
    update->tableToken = &peek();
    if (!parsePath(update->table)) failHere();
    skipHints();
    expect("set");
    do {
        Assignment assignment;
        const Token& token = peek();
        if (token.kind == TokenKind::Word && token.source.startsWith(u'@')) {
            assignment.variable = token.source.toString();
            ++at_;
            if (is("=") && peek(1).isName() && is("=", 2)) {
                ++at_;
                assignment.column = expectName();
            }
        } else {
            QStringList path;
            if (!parsePath(path)) failHere();
            assignment.column = path.last();
        }
        if (!accept("=")) {
            static const char* const compound[] = {"+=", "-=", "*=", "/=", "%=", "&=", "|=", "^="};
            bool found = false;
            for (const char* op : compound) {
                if (accept(op)) {
                    assignment.op = QString(QLatin1Char(op[0]));
                    found = true;
                    break;
                }
            }
            if (!found) failHere();
        }
        if (is("default")) {
            assignment.value = make(Expr::Kind::Default);
            ++at_;
        } else {
            assignment.value = parseExpression();
        }
        update->assignments.push_back(std::move(assignment));
    } while (accept(","));
    if (accept("from")) update->from = parseFrom();
    if (accept("where")) update->where = parseCondition();
    skipOption();
    return update;
}

std::unique_ptr<DeleteStatement> QueryParser::parseDelete() {
    auto statement = std::make_unique<DeleteStatement>();
    statement->with = parseWith();
    expect("delete");
    statement->top = parseTop();
    accept("from");
    statement->tableToken = &peek();
    if (!parsePath(statement->table)) failHere();
    skipHints();
    if (accept("from")) statement->from = parseFrom();
    if (accept("where")) statement->where = parseCondition();
    skipOption();
    return statement;
}

}  // namespace zov::local
