// What T-SQL may nest and SQLite's parser can't: the stack of that holds a hundred entries, which
// are some thirty parentheses or twenty CASEs, a tree may have a thousand levels, and a compound
// 500 parts. Where a text gets near that, its inner part is cut off: it becomes a common table
// "zp1" of its own in the statement's WITH, and the text goes on with "zp1.v", taken out of FROM,
// or with
// "(SELECT v FROM zp1)" where the value may not be wanted at all (in CASE, AND, COALESCE). A piece
// mentions columns of the queries around the place that it was cut from; SQLite looks for them from
// where the piece is read, not from where it is written, and each alias stands for one source only.
#include "data/local/query_translator.h"
#include "data/local/query_values.h"

#include <QSet>

namespace zov::local {
namespace {

constexpr int MostNesting = 55;    // of a text, in entries of the parser's stack
constexpr int MostHeight = 300;    // and in levels of its tree
constexpr size_t MostSources = 8;  // pieces that one text takes out of FROM
constexpr qint64 MostSteps = 4'000'000;
constexpr qint64 MostLetters = 32 * 1024 * 1024;

bool isOneOf(const QString& name, std::initializer_list<const char*> names) {
    for (const char* one : names)
        if (name == QLatin1String(one)) return true;
    return false;
}

/// It counts rows of the query that it stands in, which a piece of its own has none of.
bool isAggregate(const Expr& expr) {
    if (expr.kind != Expr::Kind::Function) return false;
    return expr.window || isOneOf(expr.name, {"count", "count_big", "sum", "avg", "min", "max",
                                              "stdev", "stdevp", "var", "varp", "string_agg"});
}

bool hasAggregate(const Expr& expr) {
    if (isAggregate(expr)) return true;
    for (const ExprPtr& part : expr.args)
        if (hasAggregate(*part)) return true;
    return false;
}

/// Its parts are all evaluated whenever it is.
bool evaluatesAll(const Expr& expr) {
    switch (expr.kind) {
        case Expr::Kind::Arithmetic:
        case Expr::Kind::Unary:
        case Expr::Kind::Collate:
        case Expr::Kind::Cast:
            return true;
        case Expr::Kind::Function:
            return !isAggregate(expr) &&
                   !isOneOf(expr.name, {"iif", "coalesce", "isnull", "nullif", "choose"});
        default:
            return false;
    }
}

bool isLeaf(const Expr& expr) {
    return expr.kind == Expr::Kind::Literal || expr.kind == Expr::Kind::Null ||
           expr.kind == Expr::Kind::Column || expr.kind == Expr::Kind::Variable;
}

}  // namespace

void Translator::countStep() {
    // Some texts mention an operand twice: nested, that would be without end.
    if (++steps_ > MostSteps) failTooDeep(0);
}

bool Translator::mustCut(bool intoStrict) const {
    if (!cutting_ || writing_.aggregated) return false;
    return (!intoStrict && !writing_.from.empty()) || writing_.nesting > MostNesting ||
           writing_.height > MostHeight || writing_.from.size() > MostSources;
}

/// What was written for a node is part of what is being written around it.
void Translator::leaveNode(Writing outer) {
    std::swap(outer, writing_);
    writing_.nesting = std::max(writing_.nesting, outer.nesting);
    writing_.height = std::max(writing_.height, outer.height);
    writing_.aggregated = writing_.aggregated || outer.aggregated;
    writing_.from.insert(writing_.from.end(), outer.from.begin(), outer.from.end());
}

QString Translator::addPiece(const QString& body, const char* hint) {
    const QString name = QStringLiteral("zp%1").arg(++nextPiece_);
    // SQLite copies a piece to each FROM that it stands in, which "zp1.v" is none of.
    qint64 size = body.size();
    for (qsizetype at = body.indexOf(QLatin1String("zp")); at >= 0;
         at = body.indexOf(QLatin1String("zp"), at + 1)) {
        qsizetype end = at + 2;
        while (end < body.size() && body[end].isDigit()) ++end;
        if (end < body.size() && body[end] == u'.') continue;
        size += pieceSizes_.value(body.sliced(at, end - at));
        if (size > MostLetters) failTooDeep(0);
    }
    pieceSizes_.insert(name, size);
    pieces_ += (pieces_.isEmpty() ? QString() : QStringLiteral(", ")) + name + QLatin1String(hint) +
               body + u')';
    return name;
}

void Translator::cut(Sql& value, bool intoStrict) {
    QString body = QStringLiteral("SELECT ") + value.text + QStringLiteral(" AS v");
    for (size_t i = 0; i < writing_.from.size(); ++i)
        body += (i ? QStringLiteral(", ") : QStringLiteral(" FROM ")) + writing_.from[i];
    // Joined into one again, the pieces would be what they were cut out of.
    const QString name = addPiece(body, " AS MATERIALIZED (");
    writing_.from.clear();
    if (intoStrict) writing_.from.push_back(name);
    writing_.nesting = intoStrict ? 0 : 6;
    writing_.height = intoStrict ? 1 : 3;
    value.text =
        intoStrict ? name + QStringLiteral(".v") : QStringLiteral("(SELECT v FROM ") + name + u')';
    value.stored = nullptr;
    value.binding = 0;
}

TranslatedSelect Translator::cutSelect(TranslatedSelect select) {
    select.sql = QStringLiteral("SELECT * FROM ") + addPiece(select.sql, " AS (");
    writing_.nesting = 6;
    writing_.height = 3;
    return select;
}

Sql Translator::translate(const Expr& expr, Scope& scope) {
    countStep();
    const bool strict = evaluatesAll(expr) && (writing_.strict || !hasAggregate(expr));
    Writing outer = std::exchange(writing_, Writing());
    writing_.strict = strict;
    Sql value = atLevel(++level_, [&] { return translated(expr, scope); });
    --level_;
    if (!isLeaf(expr)) {
        writing_.nesting += expr.kind == Expr::Kind::Arithmetic ? 3 : 10;
        writing_.height += expr.kind == Expr::Kind::Arithmetic ? 1 : 4;
        if (isAggregate(expr)) writing_.aggregated = true;
        if (mustCut(outer.strict) && !value.text.isEmpty()) cut(value, outer.strict);
    }
    leaveNode(std::move(outer));
    return value;
}

QString Translator::predicate(const Expr& expr, Scope& scope) {
    countStep();
    Writing outer = std::exchange(writing_, Writing());
    QString text = atLevel(++level_, [&] { return tested(expr, scope); });
    --level_;
    writing_.nesting += 8;
    writing_.height += 3;
    if (mustCut(false)) {
        Sql value = plain(text, knownType(SqlType::Bit));
        cut(value, false);
        text = value.text;
    }
    leaveNode(std::move(outer));
    return text;
}

TranslatedSelect Translator::selectIn(const Select& select, Scope* outerScope, bool existsOnly) {
    countStep();
    Writing outer = std::exchange(writing_, Writing());
    TranslatedSelect result =
        atLevel(++level_, [&] { return selectText(select, outerScope, existsOnly); });
    --level_;
    writing_.nesting += 12;
    writing_.height += 4;
    writing_.aggregated = false;  // of its own rows
    if (level_ > 0 && mustCut(false)) result = cutSelect(std::move(result));
    leaveNode(std::move(outer));
    return result;
}

QString Translator::withClause() const {
    if (pieces_.isEmpty()) return rootWith_;
    return (rootWith_.isEmpty() ? QStringLiteral("WITH ") : rootWith_ + QStringLiteral(", ")) +
           pieces_;
}

}  // namespace zov::local
