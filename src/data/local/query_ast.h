// What the parser makes of a T-SQL statement. Nodes point at the tokens that they
// came from; the tokens outlive them.
#pragma once

#include "data/local/tsql_lexer.h"

#include "data/base/sql_type.h"

#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace zov::local {

struct Select;
struct Expr;
using ExprPtr = std::unique_ptr<Expr>;
using SelectPtr = std::unique_ptr<Select>;

struct OrderItem {
    ExprPtr expr;
    bool descending = false;
};

struct WindowSpec {
    std::vector<ExprPtr> partition;
    std::vector<OrderItem> order;
    QString frame;  ///< ROWS/RANGE part, which SQLite reads as it is
};

struct Expr {
    enum class Kind {
        Literal,
        Null,
        Default,
        Column,
        Star,
        Variable,
        Unary,       ///< op - + ~
        Arithmetic,  ///< args[0] operators[0] args[1] operators[1] args[2] ..., from left to right
        Compare,     ///< op = <> < <= > >=
        And,         ///< of all args
        Or,
        Not,
        Between,
        In,
        Like,
        IsNull,
        Exists,
        Subquery,
        Quantified,  ///< args[0] op ALL|ANY (select)
        Case,        ///< args: [operand,] when, then, ..., [else]
        Cast,        ///< args[0] as castType, args[1] a style
        Function,
        Collate,
    };

    Kind kind = Kind::Null;
    const Token* token = nullptr;
    int literalIndex = -1;  ///< of a Literal: its place in the statement's tokens, -1 within a view
    QString name;           ///< operator, function, variable, column
    QString operators;      ///< of an Arithmetic, one of + - * / % & | ^ behind each operand
    QStringList path;       ///< of a Column: the parts in front of its name
    std::vector<ExprPtr> args;
    SelectPtr select;
    bool negated = false;     ///< NOT IN, NOT LIKE, IS NOT NULL, NOT BETWEEN
    bool distinct = false;    ///< COUNT(DISTINCT x)
    bool hasOperand = false;  ///< CASE x WHEN
    bool hasElse = false;
    bool tolerant = false;  ///< TRY_CAST, TRY_CONVERT; of a Quantified: ALL
    ColumnInfo castType;
    std::unique_ptr<WindowSpec> window;
};

struct SelectItem {
    ExprPtr expr;
    std::optional<QString> alias;
    QString variable;  ///< SELECT @v = expr
};

struct TableSource {
    enum class Kind { Named, Derived, Values, Join, Function };
    enum class Join { Inner, Left, Right, Full, Cross };

    Kind kind = Kind::Named;
    const Token* token = nullptr;
    QStringList path;  ///< Named: [server.][db.][schema.]name, empty parts kept
    QString alias;
    QStringList columnAliases;
    SelectPtr select;
    std::vector<std::vector<ExprPtr>> rows;  ///< Values; of a Function one row, its arguments
    Join join = Join::Inner;
    std::unique_ptr<TableSource> left, right;
    ExprPtr on;
};

struct QuerySpec {
    bool distinct = false;
    ExprPtr top;
    std::vector<SelectItem> items;
    QStringList into;
    std::vector<std::unique_ptr<TableSource>> from;
    ExprPtr where;
    std::vector<ExprPtr> groupBy;
    ExprPtr having;
};

/// A query specification or query expressions joined, from left to right.
struct QueryExpr {
    std::unique_ptr<QuerySpec> spec;
    std::vector<std::unique_ptr<QueryExpr>> parts;  ///< when there is no spec
    /// "UNION", "UNION ALL", "EXCEPT" or "INTERSECT" behind each part.
    std::vector<QString> operations;
};

struct CommonTable {
    QString name;
    QStringList columns;
    SelectPtr select;
};

struct Select {
    std::vector<CommonTable> with;
    std::unique_ptr<QueryExpr> body;
    std::vector<OrderItem> orderBy;
    ExprPtr offset, fetch;
};

struct InsertStatement {
    std::vector<CommonTable> with;
    QStringList table;
    const Token* tableToken = nullptr;
    QStringList columns;
    bool hasColumns = false;
    bool defaultValues = false;
    std::vector<std::vector<ExprPtr>> rows;
    SelectPtr select;
    qsizetype withEnd = 0;  ///< index of the token behind WITH ...
    qsizetype selectBegin = 0, selectEnd = 0;
};

struct Assignment {
    QString column;
    QString variable;
    QString op;  ///< "" for =, else the arithmetic operator of +=, -= ...
    ExprPtr value;
};

struct UpdateStatement {
    std::vector<CommonTable> with;
    ExprPtr top;
    QStringList table;
    const Token* tableToken = nullptr;
    std::vector<Assignment> assignments;
    std::vector<std::unique_ptr<TableSource>> from;
    ExprPtr where;
};

struct DeleteStatement {
    std::vector<CommonTable> with;
    ExprPtr top;
    QStringList table;
    const Token* tableToken = nullptr;
    std::vector<std::unique_ptr<TableSource>> from;
    ExprPtr where;
};

}  // namespace zov::local
