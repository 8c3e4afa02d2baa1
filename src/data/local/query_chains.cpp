// Chains of operators. "a + b - c" is one node, whose value is worked out from left to right; its
// text goes without parentheses as long as SQLite groups the operands as T-SQL does, since SQLite
// nests no more than some thirty pairs of them. AND and OR are grouped in a balanced way.
#include "data/local/query_translator.h"
#include "data/local/query_values.h"

namespace zov::local {
namespace {

/// How tightly SQLite's operators bind; those that T-SQL ranks alike differ there.
int bindingOf(QChar op) {
    switch (op.unicode()) {
        case '*':
        case '/':
        case '%':
            return 3;
        case '+':
        case '-':
            return 2;
        default:  // & |
            return 1;
    }
}
constexpr int JoiningTexts = 4;  // ||

/// "left op right", open on its left side for the next operand.
Sql infix(const Sql& a, const QString& left, QLatin1String op, const QString& right, int binding,
          ValueType type) {
    const bool grouped = a.binding != 0 && a.binding < binding;
    Sql sql =
        plain((grouped ? u'(' + left + u')' : left) + u' ' + op + u' ' + right, std::move(type));
    sql.binding = binding;
    return sql;
}

Sql closed(Sql sql) {
    if (sql.binding != 0) sql.text = u'(' + sql.text + u')';
    sql.binding = 0;
    return sql;
}

/// A binary is a whole number beside other numbers.
void takeAsNumber(Sql& side) {
    if (side.type.isBinary()) side.type = knownType(SqlType::Int);
}

/// A whole number that is written out has the digits that it shows, and no more.
ValueType shownType(const Sql& side) {
    ValueType type = side.type;
    if (side.literal && type.type() == SqlType::Int)
        type.info.precision = int(side.literal->token->source.size());
    return type;
}

QString asReal(const QString& text, const ValueType& type) {
    return type.known && type.type() == SqlType::Real ? QStringLiteral("zov_real(") + text + u')'
                                                      : text;
}

}  // namespace

Sql plain(QString text, ValueType type) {
    Sql sql;
    sql.text = std::move(text);
    sql.type = std::move(type);
    sql.type.info.name.clear();
    return sql;
}

Sql Translator::arithmetic(const Expr& expr, Scope& scope) {
    Sql sum = translate(*expr.args[0], scope);
    // What the operands need counts once, what the chain adds counts for each step.
    int nesting = 0, height = 0;
    for (size_t i = 1; i < expr.args.size(); ++i) {
        const QChar op = expr.operators[qsizetype(i) - 1];
        const int before = sum.binding;
        const bool divides = op == u'/' || op == u'%';
        sum = operation(op, std::move(sum), translate(*expr.args[i], scope));
        if (sum.binding == 0)
            nesting += divides ? 8 : 4;
        else if (before != 0 && before < sum.binding)
            nesting += 2;
        height += sum.binding != 0 ? 1 : divides ? 4 : 3;
        if (i + 1 == expr.args.size()) break;
        std::swap(writing_.nesting, nesting);
        std::swap(writing_.height, height);
        writing_.nesting += nesting;
        writing_.height += height;
        const bool cutHere = writing_.strict && mustCut(true);
        if (cutHere) cut(sum, true);
        nesting = cutHere ? 0 : writing_.nesting - nesting;
        height = cutHere ? 0 : writing_.height - height;
        writing_.nesting -= nesting;
        writing_.height -= height;
    }
    writing_.nesting += nesting;
    writing_.height += height;
    return closed(std::move(sum));
}

QString Translator::numberOf(const Sql& sql) {
    // 0x80 beside a number is a number.
    if (sql.literal && sql.literal->token->kind == TokenKind::Binary) {
        if (sql.literal->literalIndex >= 0) rendered_.insert(sql.literal->literalIndex);
        return renderValue(
            convertStored(literalValue(*sql.literal->token), makeType(SqlType::BigInt), true, {}));
    }
    return use(sql);
}

Sql Translator::plus(Sql a, Sql b) {
    const bool aText = a.type.isText(), bText = b.type.isText();
    if ((aText && (bText || !b.type.known)) || (bText && !a.type.known)) {
        ValueType type = commonType(a.type, b.type);
        const auto sizeOf = [](const Sql& sql) { return sql.type.known ? sql.type.info.size : 0; };
        const bool unicode = a.type.isUnicode() || b.type.isUnicode();
        const bool fixed = (a.type.type() == SqlType::Char || a.type.type() == SqlType::NChar) &&
                           a.type.type() == b.type.type();
        type.info.type = unicode ? (fixed ? SqlType::NChar : SqlType::NVarChar)
                                 : (fixed ? SqlType::Char : SqlType::VarChar);
        type.info.nullable = true;
        type.info.size = sizeOf(a) < 0 || sizeOf(b) < 0
                             ? -1
                             : std::min(unicode ? 4000 : 8000, sizeOf(a) + sizeOf(b));
        Sql both = infix(a, use(a), QLatin1String("||"), use(b), JoiningTexts, type);
        both.collating = joined(a.collating, b.collating, QStringLiteral("add"));
        return both;
    }
    if (a.type.isBinary() && b.type.isBinary()) {
        ValueType type = knownType(SqlType::VarBinary,
                                   a.type.info.size < 0 || b.type.info.size < 0
                                       ? -1
                                       : std::min(8000, a.type.info.size + b.type.info.size));
        return plain(QStringLiteral("CAST((") + use(a) + QStringLiteral(" || ") + use(b) +
                         QStringLiteral(") AS BLOB)"),
                     type);
    }
    return plain(QStringLiteral("zov_plus(") + use(a) + QStringLiteral(", ") + use(b) + u')',
                 unknownType());
}

/// Days are added to a date; the difference of two is a date counted from 1900.
Sql Translator::dateOperation(QChar op, const Sql& a, const Sql& b) {
    if (op != u'+' && op != u'-')
        failWith(8117, QStringLiteral("Operand data type %1 is invalid for %2 operator.")
                           .arg(sqlTypeName(a.type.isDate() ? a.type.type() : b.type.type()),
                                op == u'*'   ? QStringLiteral("multiply")
                                : op == u'/' ? QStringLiteral("divide")
                                             : QStringLiteral("modulo")));
    ValueType type = a.type.isDate() && b.type.isDate() ? commonType(a.type, b.type)
                     : a.type.isDate()                  ? a.type
                                                        : b.type;
    const auto operand = [&](const Sql& side) {
        return side.type.isText() ? converted(side, type.info) : use(side);
    };
    return plain(QStringLiteral("zov_dateplus(") + operand(a) + QStringLiteral(", ") + operand(b) +
                     QStringLiteral(", ") + QLatin1String(op == u'-' ? "-1" : "1") +
                     QStringLiteral(", ") + QString::number(packType(type.info)) + u')',
                 type);
}

Sql Translator::operation(QChar op, Sql a, Sql b) {
    if (op == u'+') {
        const bool texts = (a.type.isText() && (b.type.isText() || !b.type.known)) ||
                           (b.type.isText() && !a.type.known);
        const bool binaries = a.type.isBinary() && b.type.isBinary();
        const bool unknown =
            !a.type.known && !b.type.known && !a.type.untypedNull && !b.type.untypedNull;
        if (texts || binaries || unknown) return plus(std::move(a), std::move(b));
    }
    if (a.type.isDate() || b.type.isDate()) return dateOperation(op, a, b);
    // A text beside a number is read as the number's type.
    const auto asNumber = [&](Sql& side, const Sql& other) {
        if (!side.type.isText()) return;
        ColumnInfo target = other.type.isNumber() ? other.type.info : makeType(SqlType::Int);
        if (target.type == SqlType::Bit || target.type == SqlType::TinyInt ||
            target.type == SqlType::SmallInt)
            target = makeType(SqlType::Int);
        ValueType type;
        type.info = target;
        type.known = true;
        side = plain(converted(side, target), type);
    };
    asNumber(a, b);
    asNumber(b, a);
    const QString left = numberOf(a), right = numberOf(b);
    takeAsNumber(a);
    takeAsNumber(b);
    if (a.type.untypedNull) a.type = b.type;
    if (b.type.untypedNull) b.type = a.type;
    const bool exact = a.type.isExact() || b.type.isExact();
    ValueType type =
        arithmeticType(op, exact ? shownType(a) : a.type, exact ? shownType(b) : b.type);
    // An overflow gives null where the session wants it so, whatever the operands are.
    type.info.nullable = true;
    if (op == u'^') return plain(QStringLiteral("zov_xor(%1, %2)").arg(left, right), type);
    if (op == u'/' || op == u'%')
        return plain(asReal(quotient(op, a, b, left, right, type), type), type);
    const char sign[] = {op.toLatin1(), 0};
    Sql result = infix(a, left, QLatin1String(sign), right, bindingOf(op), type);
    if (op == u'&' || op == u'|') return result;
    // Decimals count exactly: what a double adds behind the last digit goes.
    if (type.isExact() && type.info.scale > 0 && type.info.scale < 12)
        return plain(
            QStringLiteral("round(") + result.text + QStringLiteral(", %1)").arg(type.info.scale),
            type);
    // Each step of real arithmetic is kept in four bytes, and rounds so.
    if (type.known && type.type() == SqlType::Real) return plain(asReal(result.text, type), type);
    return result;
}

QString Translator::quotient(QChar op, const Sql& a, const Sql& b, const QString& left,
                             const QString& right, const ValueType& type) {
    const bool whole = a.type.isInteger() && b.type.isInteger();
    // A number that is written out and isn't zero needs no look at it.
    const bool safe = b.literal && literalValue(*b.literal->token).toInteger() != 0;
    const QString operands = u'(' + left + QStringLiteral(", ") + right + u')';
    const QString first = a.binding != 0 ? u'(' + left + u')' : left;
    QString text;
    if (op == u'%')
        text = whole && safe ? u'(' + first + QStringLiteral(" % ") + right + u')'
                             : QStringLiteral("zov_mod") + operands;
    else if (whole)
        text = safe ? u'(' + first + QStringLiteral(" / ") + right + u')'
                    : QStringLiteral("zov_div") + operands;
    else if (a.type.known || b.type.known)
        text = safe
                   ? QStringLiteral("(CAST(") + left + QStringLiteral(" AS REAL) / ") + right + u')'
                   : QStringLiteral("zov_divr") + operands;
    else
        text = QStringLiteral("zov_div") + operands;
    // A quotient's digits beyond its scale are cut, not rounded.
    if (type.isExact() && type.info.scale < 12)
        text = QStringLiteral("zov_cut(") + text + QStringLiteral(", %1)").arg(type.info.scale);
    return text;
}

// --- AND and OR ---------------------------------------------------------------------------------

/// In groups of groups, so that ten thousand of them make no deep tree.
QString Translator::joinConditions(std::vector<QString> conditions, const char* word) {
    constexpr size_t GroupSize = 50;
    while (conditions.size() > 1) {
        std::vector<QString> groups;
        for (size_t begin = 0; begin < conditions.size(); begin += GroupSize) {
            const size_t end = std::min(begin + GroupSize, conditions.size());
            QString group = conditions[begin];
            for (size_t i = begin + 1; i < end; ++i) group += QLatin1String(word) + conditions[i];
            groups.push_back(end - begin > 1 ? u'(' + group + u')' : group);
        }
        conditions = std::move(groups);
    }
    return conditions.front();
}

QString Translator::connected(const Expr& expr, Scope& scope) {
    std::vector<QString> conditions;
    conditions.reserve(expr.args.size());
    for (const ExprPtr& one : expr.args) conditions.push_back(predicate(*one, scope));
    writing_.height += int(std::min<size_t>(conditions.size(), 150));
    return joinConditions(std::move(conditions), expr.kind == Expr::Kind::And ? " AND " : " OR ");
}

}  // namespace zov::local
