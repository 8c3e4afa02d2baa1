// What stands in FROM: tables, joins, derived tables, rows of VALUES.
#include "data/local/query_parser.h"

#include "data/local/query_values.h"

namespace zov::local {
namespace {

constexpr int MaxTables = 256;  // of one FROM

}  // namespace

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
            failTooMany(
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

}  // namespace zov::local
