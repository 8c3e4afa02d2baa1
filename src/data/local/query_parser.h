// Reads T-SQL queries and expressions: recursive descent over the tokens, with
// T-SQL's precedence. Knows no catalogue. Each entry reads from `begin` on and
// leaves position() behind what it has read.
#pragma once

#include "data/local/nesting.h"
#include "data/local/query_ast.h"

#include <functional>
#include <span>

namespace zov::local {

/// A word that can't be a bare alias or a bare name: it ends an expression or starts a statement.
bool isReservedWord(QStringView word);

class QueryParser {
 public:
    using TypeReader = std::function<ColumnInfo(std::span<const Token>, qsizetype, qsizetype&)>;

    /// `ownTokens`: literals get their place in the statement, so that they may become parameters.
    QueryParser(std::span<const Token> tokens, bool ownTokens, TypeReader typeReader,
                qsizetype begin = 0)
        : tokens_(tokens), own_(ownTokens), typeReader_(std::move(typeReader)), at_(begin) {}

    SelectPtr parseSelect();
    ExprPtr parseExpression();
    /// An expression or a condition, whichever stands there.
    ExprPtr parseCondition();
    std::unique_ptr<InsertStatement> parseInsert();
    std::unique_ptr<UpdateStatement> parseUpdate();
    std::unique_ptr<DeleteStatement> parseDelete();
    bool parsePath(QStringList& path);

    qsizetype position() const { return at_; }
    bool atEnd() const { return at_ >= qsizetype(tokens_.size()); }
    /// Throws "Incorrect syntax near" unless everything has been read.
    void expectEnd();
    [[noreturn]] void failHere() const;

 private:
    /// Reads what is nested one level deeper: every way into the grammar's recursion passes here.
    template <typename Read>
    auto nested(Read read) {
        struct Depth {
            int& depth;
            ~Depth() { --depth; }
        } depth{depth_};
        if (++depth_ > MaxNesting) failTooDeep(peek().line);
        return atLevel(depth_, read);
    }

    const Token& peek(qsizetype ahead = 0) const;
    bool is(const char* word, qsizetype ahead = 0) const { return peek(ahead).is(word); }
    bool accept(const char* word);
    void expect(const char* word);
    QString expectName();
    QString aliasHere();
    ExprPtr make(Expr::Kind kind);

    std::vector<CommonTable> parseWith();
    void parseOrderAndOptions(Select& select);
    std::unique_ptr<QueryExpr> parseQueryExpr(std::unique_ptr<QueryExpr> first = nullptr);
    std::unique_ptr<QueryExpr> parseQueryTerm(std::unique_ptr<QueryExpr> first);
    std::unique_ptr<QueryExpr> parseQueryFactor();
    std::unique_ptr<QuerySpec> parseSpec();
    SelectItem parseItem();
    std::vector<OrderItem> parseOrderItems();
    std::vector<std::unique_ptr<TableSource>> parseFrom();
    std::unique_ptr<TableSource> parseJoined(std::unique_ptr<TableSource> first = nullptr);
    std::unique_ptr<TableSource> parseTableFactor();
    std::unique_ptr<TableSource> parseParenthesisedSource();
    bool moreOfQuery() const;
    void parseMoreOfQuery(Select& select);
    void parseSourceAlias(TableSource& source);
    void skipHints();
    void skipOption();
    ExprPtr parseTop();
    std::vector<std::vector<ExprPtr>> parseValueRows(bool allowDefault);
    bool selectAhead();
    bool selectAt(qsizetype ahead) const;

    ExprPtr parseOr();
    ExprPtr parseAnd();
    ExprPtr parseNot();
    void extend(ExprPtr& chain, Expr::Kind kind, ExprPtr (QueryParser::*parseOperand)());
    ExprPtr parseParenthesised();
    ExprPtr parsePredicate();
    ExprPtr parseAdditive();
    ExprPtr parseMultiplicative();
    ExprPtr parseUnary();
    ExprPtr parsePostfix();
    ExprPtr parsePrimary();
    ExprPtr parseCase();
    ExprPtr parseFunction(const Token& name);
    void parseArguments(Expr& call);
    ExprPtr parseNameOrCall();
    std::unique_ptr<WindowSpec> parseWindow();

    std::span<const Token> tokens_;
    bool own_;
    TypeReader typeReader_;
    qsizetype at_;
    int depth_ = 0;
    qsizetype openFrom_ = 0, openTo_ = 0;  // a run of "(" that was walked over already
};

/// "Incorrect syntax near 'x'." for the token, with its line.
[[noreturn]] void failNear(const Token& token);
/// Something stands there once too often.
[[noreturn]] void failTooMany(qint32 native, const QString& text, const Token& token);

}  // namespace zov::local
