#include "data/local/query_parser.h"

#include "data/local/query_values.h"

#include <algorithm>

namespace zov::local {
namespace {

const Token endToken;
constexpr int MaxTables = 256;     // of one FROM
constexpr size_t MaxItems = 4096;  // of a select list

[[noreturn]] void tooMany(qint32 native, const QString& text, const Token& token) {
    DbError error(ado_error::SyntaxError, text, QStringLiteral("42000"), native);
    error.line = token.line;
    throw error;
}

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
            tooMany(1056,
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

std::vector<std::unique_ptr<TableSource>> QueryParser::parseFrom() {
    std::vector<std::unique_ptr<TableSource>> sources;
    do sources.push_back(parseJoined());
    while (accept(","));
    return sources;
}

std::unique_ptr<TableSource> QueryParser::parseJoined(std::unique_ptr<TableSource> first) {
    auto left = first ? std::move(first) : parseTableFactor();
    int tables = 1;
    const auto countTable = [&] {
        if (++tables > MaxTables)
            tooMany(
                106,
                QStringLiteral("Too many table names in the query. The maximum allowable is %1.")
                    .arg(MaxTables),
                peek());
    };
    for (;;) {
        TableSource::Join join = TableSource::Join::Inner;
        const qsizetype start = at_;
        if (accept("cross")) {
            if (is("apply")) failHere();
            join = TableSource::Join::Cross;
        } else if (accept("inner")) {
        } else if (is("left") && !is("(", 1)) {
            ++at_;
            accept("outer");
            join = TableSource::Join::Left;
        } else if (is("right") && !is("(", 1)) {
            ++at_;
            accept("outer");
            join = TableSource::Join::Right;
        } else if (accept("full")) {
            accept("outer");
            join = TableSource::Join::Full;
        } else if (!is("join")) {
            return left;
        }
        if (is("loop") || is("hash") || is("merge") || is("remote")) ++at_;
        if (!accept("join")) {
            at_ = start;
            failHere();
        }
        countTable();
        auto joined = std::make_unique<TableSource>();
        joined->kind = TableSource::Kind::Join;
        joined->join = join;
        joined->token = &peek();
        joined->left = std::move(left);
        // "a JOIN b JOIN c ON .. ON ..": what follows belongs to the right side until its ON is
        // there.
        joined->right = parseTableFactor();
        while (
            join != TableSource::Join::Cross && !is("on") &&
            (is("join") || is("inner") || is("left") || is("right") || is("full") || is("cross"))) {
            countTable();
            auto inner = std::make_unique<TableSource>();
            inner->kind = TableSource::Kind::Join;
            inner->token = &peek();
            if (accept("cross"))
                inner->join = TableSource::Join::Cross;
            else if (accept("left"))
                inner->join = TableSource::Join::Left;
            else if (accept("right"))
                inner->join = TableSource::Join::Right;
            else if (accept("full"))
                inner->join = TableSource::Join::Full;
            else
                accept("inner");
            accept("outer");
            expect("join");
            inner->left = std::move(joined->right);
            inner->right = parseTableFactor();
            if (inner->join != TableSource::Join::Cross) {
                expect("on");
                inner->on = parseCondition();
            }
            joined->right = std::move(inner);
        }
        if (join != TableSource::Join::Cross) {
            expect("on");
            joined->on = parseCondition();
        }
        left = std::move(joined);
    }
}

/// A query stands there, and not a column of its name.
bool QueryParser::selectAt(qsizetype ahead) const {
    return is("select", ahead) || (is("with", ahead) && peek(ahead + 1).isName() &&
                                   (is("as", ahead + 2) || is("(", ahead + 2)));
}

/// The same behind all "(" from here on. A run of them is walked over once, however many ask.
bool QueryParser::selectAhead() {
    if (at_ < openFrom_ || at_ >= openTo_) {
        openFrom_ = openTo_ = at_;
        while (is("(", openTo_ - at_)) ++openTo_;
    }
    return selectAt(openTo_ - at_);
}

/// "(SELECT ...)" without an alias, which stands behind the last ")" around it.
static bool isBareQuery(const TableSource& source) {
    return source.kind == TableSource::Kind::Derived && source.alias.isEmpty();
}

std::unique_ptr<TableSource> QueryParser::parseParenthesisedSource() {
    return nested([this] {
        expect("(");
        std::unique_ptr<TableSource> inner;
        if (is("select")) {
            inner = std::make_unique<TableSource>();
            inner->token = &peek();
            inner->kind = TableSource::Kind::Derived;
            inner->select = parseSelect();
        } else if (is("(") && !is("values", 1)) {
            // "((select ..) union ..)" is a query, "((a join b on ..) join c on ..)" is not.
            inner = parseParenthesisedSource();
            if (isBareQuery(*inner)) {
                if (moreOfQuery())
                    parseMoreOfQuery(*inner->select);
                else if (!is(")"))
                    parseSourceAlias(*inner);
            }
        }
        if (!inner || !isBareQuery(*inner)) inner = parseJoined(std::move(inner));
        expect(")");
        return inner;
    });
}

std::unique_ptr<TableSource> QueryParser::parseTableFactor() {
    auto source = std::make_unique<TableSource>();
    source->token = &peek();
    if (is("(")) {
        if (is("values", 1)) {
            ++at_;
            source->kind = TableSource::Kind::Values;
            ++at_;
            source->rows = parseValueRows(false);
            expect(")");
        } else {
            source = parseParenthesisedSource();
            if (!isBareQuery(*source)) return source;
        }
        parseSourceAlias(*source);
        if (source->alias.isEmpty()) failHere();
        return source;
    }
    if (is("::")) ++at_;  // how old texts call the server's own table functions
    if (!parsePath(source->path)) {
        if (peek().kind == TokenKind::Word && peek().source.startsWith(u'@'))
            failWith(1087,
                     QStringLiteral("Must declare the table variable \"%1\".").arg(peek().source));
        failHere();
    }
    if (is("(")) {
        // Either hints of old, "T (NOLOCK)", or a function's call.
        const Token& word = peek(1);
        static const char* const hints[] = {
            "nolock",  "readuncommitted", "holdlock", "updlock", "tablock",      "tablockx",
            "paglock", "rowlock",         "readpast", "index",   "serializable", "xlock"};
        for (const char* hint : hints) {
            if (word.is(hint)) {
                skipHints();
                parseSourceAlias(*source);
                return source;
            }
        }
        if (source->path.last().compare(u"fn_listextendedproperty", Qt::CaseInsensitive) == 0) {
            source->kind = TableSource::Kind::Function;
            source->rows = parseValueRows(true);
            parseSourceAlias(*source);
            if (source->alias.isEmpty()) source->alias = source->path.last();
            return source;
        }
        failWith(0,
                 QStringLiteral(
                     "The function '%1' can't be read: the embedded server keeps functions as text "
                     "and does not run them.")
                     .arg(source->path.join(u'.')));
    }
    parseSourceAlias(*source);
    skipHints();
    return source;
}

void QueryParser::skipHints() {
    const bool with = is("with") && is("(", 1);
    if (!with && !is("(")) return;
    if (with) ++at_;
    int depth = 0;
    do {
        if (atEnd()) failHere();
        if (is("(")) ++depth;
        if (is(")")) --depth;
        ++at_;
    } while (depth > 0);
}

void QueryParser::parseSourceAlias(TableSource& source) {
    if (accept("as")) {
        if (!peek().isName()) failHere();
        source.alias = peek().name();
        ++at_;
    } else {
        const Token& token = peek();
        if (token.kind == TokenKind::Quoted ||
            (token.kind == TokenKind::Word && !isReservedWord(token.source) &&
             !token.source.startsWith(u'@') && !token.is("go") &&
             !(token.is("offset") || token.is("throw")))) {
            source.alias = token.name();
            ++at_;
        }
    }
    if (source.kind != TableSource::Kind::Named && !source.alias.isEmpty() && is("(")) {
        ++at_;
        do source.columnAliases.append(expectName());
        while (accept(","));
        expect(")");
    }
    if (source.kind == TableSource::Kind::Named && is("(") && !source.alias.isEmpty()) skipHints();
}

std::vector<std::vector<ExprPtr>> QueryParser::parseValueRows(bool allowDefault) {
    std::vector<std::vector<ExprPtr>> rows;
    do {
        expect("(");
        std::vector<ExprPtr> row;
        do {
            if (allowDefault && is("default")) {
                row.push_back(make(Expr::Kind::Default));
                ++at_;
            } else {
                row.push_back(parseExpression());
            }
        } while (accept(","));
        expect(")");
        rows.push_back(std::move(row));
    } while (accept(","));
    return rows;
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
