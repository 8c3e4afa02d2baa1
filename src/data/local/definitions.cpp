#include "data/local/definitions.h"

#include "data/local/nesting.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

namespace zov::local {
namespace {

// Levels of binding, loosest first.
enum class Level { Or, And, Not, Comparison, Arithmetic, Unary, Primary };

struct Printed {
    QString text;
    Level level = Level::Primary;
};

struct Unknown {};  // an expression that the printer leaves as it was written

/// Each operator of a chain puts one pair of parentheses around the rest when it is printed, and
/// the printed text is read again: a longer chain stays as it was written.
constexpr int LongestChain = 500;

const QSet<QString>& datePartFunctions() {
    static const QSet<QString> names = {QStringLiteral("dateadd"),      QStringLiteral("datediff"),
                                        QStringLiteral("datename"),     QStringLiteral("datepart"),
                                        QStringLiteral("datediff_big"), QStringLiteral("datetrunc"),
                                        QStringLiteral("date_bucket")};
    return names;
}

QString datePart(const QString& written) {
    static const QHash<QString, QString> full = {
        {QStringLiteral("yy"), QStringLiteral("year")},
        {QStringLiteral("yyyy"), QStringLiteral("year")},
        {QStringLiteral("qq"), QStringLiteral("quarter")},
        {QStringLiteral("q"), QStringLiteral("quarter")},
        {QStringLiteral("mm"), QStringLiteral("month")},
        {QStringLiteral("m"), QStringLiteral("month")},
        {QStringLiteral("dy"), QStringLiteral("dayofyear")},
        {QStringLiteral("y"), QStringLiteral("dayofyear")},
        {QStringLiteral("dd"), QStringLiteral("day")},
        {QStringLiteral("d"), QStringLiteral("day")},
        {QStringLiteral("wk"), QStringLiteral("week")},
        {QStringLiteral("ww"), QStringLiteral("week")},
        {QStringLiteral("dw"), QStringLiteral("weekday")},
        {QStringLiteral("w"), QStringLiteral("weekday")},
        {QStringLiteral("hh"), QStringLiteral("hour")},
        {QStringLiteral("mi"), QStringLiteral("minute")},
        {QStringLiteral("n"), QStringLiteral("minute")},
        {QStringLiteral("ss"), QStringLiteral("second")},
        {QStringLiteral("s"), QStringLiteral("second")},
        {QStringLiteral("ms"), QStringLiteral("millisecond")},
        {QStringLiteral("mcs"), QStringLiteral("microsecond")},
        {QStringLiteral("ns"), QStringLiteral("nanosecond")}};
    const QString lower = written.toLower();
    return full.value(lower, lower);
}

QString typeName(const QString& written) {
    static const QHash<QString, QString> synonyms = {
        {QStringLiteral("integer"), QStringLiteral("int")},
        {QStringLiteral("dec"), QStringLiteral("decimal")},
        {QStringLiteral("character"), QStringLiteral("char")},
        {QStringLiteral("rowversion"), QStringLiteral("timestamp")}};
    const QString lower = written.toLower();
    return synonyms.value(lower, lower);
}

QString number(const QString& written) {
    if (written.startsWith(u'$')) return u'(' + written + u')';
    if (written.contains(u'e', Qt::CaseInsensitive)) {
        QString text = QString::number(written.toDouble(), 'e', 16);
        const qsizetype exponent = text.indexOf(u'e') + 2;
        while (text.size() - exponent < 3) text.insert(exponent, u'0');
        return u'(' + text + u')';
    }
    QString digits = written;
    while (digits.size() > 1 && digits[0] == u'0' && digits[1].isDigit()) digits.remove(0, 1);
    if (digits.startsWith(u'.')) digits.prepend(u'0');
    bool fits = false;
    digits.toInt(&fits);
    // A whole number beyond int is a numeric, and shows its point.
    if (!fits && !digits.contains(u'.')) digits += u'.';
    return u'(' + digits + u')';
}

class Printer {
 public:
    Printer(std::span<const Token> tokens, bool keepLists)
        : tokens_(tokens), keepLists_(keepLists) {}

    QString run() {
        const Printed all = condition();
        if (!atEnd()) throw Unknown{};
        return all.text;
    }

 private:
    bool atEnd() const { return at_ >= tokens_.size() || tokens_[at_].kind == TokenKind::End; }
    const Token& peek(size_t ahead = 0) const {
        static const Token end;
        return at_ + ahead < tokens_.size() ? tokens_[at_ + ahead] : end;
    }
    bool accept(const char* text) {
        if (!peek().is(text)) return false;
        ++at_;
        return true;
    }
    void expect(const char* text) {
        if (!accept(text)) throw Unknown{};
    }

    // All that nests comes through here or through one of the signs in front of a value.
    template <typename Read>
    Printed nested(Read read) {
        if (++depth_ > MaxNesting) failTooDeep(peek().line);
        Printed inner = atLevel(depth_, read);
        --depth_;
        return inner;
    }

    Printed condition() {
        return nested([this] { return disjunction(); });
    }

    Printed disjunction() {
        Printed left = conjunction();
        while (accept("OR")) {
            left.text += QStringLiteral(" OR ") + conjunction().text;
            left.level = Level::Or;
        }
        return left;
    }

    Printed conjunction() {
        Printed left = negation();
        if (!peek().is("AND")) return left;
        QString text = inside(left, Level::And);
        while (accept("AND")) text += QStringLiteral(" AND ") + inside(negation(), Level::And);
        return {text, Level::And};
    }

    static QString inside(const Printed& part, Level level) {
        return part.level < level ? u'(' + part.text + u')' : part.text;
    }

    Printed negation() {
        if (!accept("NOT")) return predicate();
        const Printed inner = nested([this] { return negation(); });
        return {QStringLiteral("NOT ") + inside(inner, Level::Not), Level::Not};
    }

    // Within a comparison arithmetic stands in parentheses.
    static QString operand(const Printed& part) {
        return part.level < Level::Unary ? u'(' + part.text + u')' : part.text;
    }

    Printed predicate() {
        const Printed left = sum();
        const Token& token = peek();
        static const QHash<QString, QString> comparisons = {
            {QStringLiteral("="), QStringLiteral("=")},
            {QStringLiteral("<"), QStringLiteral("<")},
            {QStringLiteral(">"), QStringLiteral(">")},
            {QStringLiteral("<="), QStringLiteral("<=")},
            {QStringLiteral(">="), QStringLiteral(">=")},
            {QStringLiteral("<>"), QStringLiteral("<>")},
            {QStringLiteral("!="), QStringLiteral("<>")},
            {QStringLiteral("!<"), QStringLiteral(">=")},
            {QStringLiteral("!>"), QStringLiteral("<=")}};
        if (token.kind == TokenKind::Operator) {
            const auto found = comparisons.constFind(token.source.toString());
            if (found == comparisons.constEnd()) return left;
            ++at_;
            return {operand(left) + *found + operand(sum()), Level::Comparison};
        }
        if (token.is("IS")) {
            ++at_;
            const bool negated = accept("NOT");
            expect("NULL");
            return {operand(left) +
                        (negated ? QStringLiteral(" IS NOT NULL") : QStringLiteral(" IS NULL")),
                    Level::Comparison};
        }
        const bool negated = token.is("NOT");
        const Token& word = peek(negated ? 1 : 0);
        if (!word.is("LIKE") && !word.is("IN") && !word.is("BETWEEN")) return left;
        if (negated) ++at_;
        ++at_;
        if (word.is("LIKE")) return like(operand(left), negated);
        if (word.is("BETWEEN")) return between(operand(left), negated);
        return inList(operand(left), negated);
    }

    Printed like(const QString& left, bool negated) {
        QString text = left + QStringLiteral(" like ") + operand(sum());
        if (accept("ESCAPE")) text += QStringLiteral(" escape ") + operand(sum());
        if (negated) return {QStringLiteral("NOT ") + text, Level::Not};
        return {text, Level::Comparison};
    }

    Printed between(const QString& left, bool negated) {
        const QString low = operand(sum());
        expect("AND");
        const QString high = operand(sum());
        if (negated)
            return {left + u'<' + low + QStringLiteral(" OR ") + left + u'>' + high, Level::Or};
        return {left + QStringLiteral(">=") + low + QStringLiteral(" AND ") + left +
                    QStringLiteral("<=") + high,
                Level::And};
    }

    Printed inList(const QString& left, bool negated) {
        expect("(");
        std::vector<QString> values;
        do {
            values.push_back(operand(sum()));
        } while (accept(","));
        expect(")");
        QString text;
        if (keepLists_) {
            for (const QString& value : values)
                text += (text.isEmpty() ? QString() : QStringLiteral(", ")) + value;
            return {left + (negated ? QStringLiteral(" NOT IN (") : QStringLiteral(" IN (")) +
                        text + u')',
                    Level::Comparison};
        }
        // The server unrolls the list from its end.
        for (auto value = values.rbegin(); value != values.rend(); ++value)
            text += (text.isEmpty() ? QString() : QStringLiteral(" OR ")) + left + u'=' + *value;
        const Level level = values.size() > 1 ? Level::Or : Level::Comparison;
        if (!negated) return {text, level};
        return {QStringLiteral("NOT ") + inside({text, level}, Level::Not), Level::Not};
    }

    bool additive() const {
        for (const char* op : {"+", "-", "&", "|", "^"})
            if (peek().is(op)) return true;
        return false;
    }
    bool multiplicative() const { return peek().is("*") || peek().is("/") || peek().is("%"); }

    Printed binary(const Printed& left, QChar op, const Printed& right) {
        return {operand(left) + op + operand(right), Level::Arithmetic};
    }

    Printed sum() {
        Printed left = product();
        for (int operators = 0; additive();) {
            if (++operators > LongestChain) throw Unknown{};
            const QChar op = peek().source[0];
            ++at_;
            left = binary(left, op, product());
        }
        return left;
    }

    Printed product() {
        Printed left = unary();
        for (int operators = 0; multiplicative();) {
            if (++operators > LongestChain) throw Unknown{};
            const QChar op = peek().source[0];
            ++at_;
            left = binary(left, op, unary());
        }
        return left;
    }

    Printed unary() {
        const auto operandOfSign = [this] { return nested([this] { return unary(); }); };
        if (accept("+")) return operandOfSign();
        if (accept("-")) {
            if (peek().kind == TokenKind::Number) {
                const QString plain = number(tokens_[at_++].source.toString());
                return {QStringLiteral("(-") + plain.mid(1), Level::Primary};
            }
            return {u'-' + operand(operandOfSign()), Level::Unary};
        }
        if (accept("~")) return {u'~' + operand(operandOfSign()), Level::Unary};
        Printed part = primary();
        if (accept("COLLATE")) {
            if (!peek().isName()) throw Unknown{};
            part = {operand(part) + QStringLiteral(" collate ") + tokens_[at_++].name(),
                    Level::Unary};
        }
        if (peek().is("AT") && peek(1).is("TIME") && peek(2).is("ZONE")) {
            at_ += 3;
            part = {operand(part) + QStringLiteral(" AT TIME ZONE ") + operand(primary()),
                    Level::Unary};
        }
        return part;
    }

    Printed primary() {
        const Token& token = peek();
        switch (token.kind) {
            case TokenKind::Number:
                ++at_;
                return {number(token.source.toString()), Level::Primary};
            case TokenKind::Binary:
                ++at_;
                return {token.source.toString(), Level::Primary};
            case TokenKind::String: {
                ++at_;
                const bool national =
                    token.source.startsWith(u'N') || token.source.startsWith(u'n');
                return {(national ? QStringLiteral("N'") : QStringLiteral("'")) +
                            QString(token.value).replace(u'\'', QLatin1String("''")) + u'\'',
                        Level::Primary};
            }
            case TokenKind::Operator: {
                expect("(");
                const Printed inner = condition();
                expect(")");
                return inner;  // the levels put back what is needed
            }
            case TokenKind::Word:
            case TokenKind::Quoted:
                return name();
            default:
                throw Unknown{};
        }
    }

    Printed name() {
        const Token& token = peek();
        if (token.kind == TokenKind::Word) {
            if (token.is("CASE")) return caseExpression();
            if (token.is("NULL")) {
                ++at_;
                return {QStringLiteral("NULL"), Level::Primary};
            }
            if (token.is("NEXT") && peek(1).is("VALUE") && peek(2).is("FOR")) {
                at_ += 3;
                return {QStringLiteral("NEXT VALUE FOR ") + multipart(), Level::Primary};
            }
            if (token.source.startsWith(u"@@")) {
                ++at_;
                return {token.source.toString().toLower(), Level::Primary};
            }
            if (token.source.startsWith(u'@')) throw Unknown{};
            if (!peek(1).is("(") && !peek(1).is(".")) {
                static const QHash<QString, QString> niladic = {
                    {QStringLiteral("current_timestamp"), QStringLiteral("getdate()")},
                    {QStringLiteral("user"), QStringLiteral("user_name()")},
                    {QStringLiteral("current_user"), QStringLiteral("user_name()")},
                    {QStringLiteral("session_user"), QStringLiteral("user_name()")},
                    {QStringLiteral("system_user"), QStringLiteral("suser_sname()")}};
                const auto found = niladic.constFind(token.source.toString().toLower());
                if (found != niladic.constEnd()) {
                    ++at_;
                    return {*found, Level::Primary};
                }
                static const QSet<QString> keywords = {
                    QStringLiteral("select"), QStringLiteral("exists"), QStringLiteral("from"),
                    QStringLiteral("where"),  QStringLiteral("and"),    QStringLiteral("or"),
                    QStringLiteral("not"),    QStringLiteral("as"),     QStringLiteral("end"),
                    QStringLiteral("when"),   QStringLiteral("then"),   QStringLiteral("else")};
                if (keywords.contains(token.source.toString().toLower())) throw Unknown{};
            } else if (peek(1).is("(")) {
                return function();
            }
        }
        const QString path = multipart();
        if (!accept("(")) return {path, Level::Primary};
        return {path + u'(' + arguments() + u')', Level::Primary};
    }

    QString multipart() {
        QString path;
        for (;;) {
            if (!peek().isName()) throw Unknown{};
            path += bracketed(tokens_[at_++].name());
            if (!accept(".")) return path;
            path += u'.';
        }
    }

    // Up to the closing parenthesis, which is taken.
    QString arguments() {
        QString list;
        if (accept(")")) return list;
        do {
            if (!list.isEmpty()) list += u',';
            if (accept("DEFAULT"))
                list += QStringLiteral("default");
            else if (accept("*"))
                list += u'*';
            else
                list += condition().text;
        } while (accept(","));
        expect(")");
        return list;
    }

    QString type() {
        if (!peek().isName()) throw Unknown{};
        QString text = bracketed(typeName(tokens_[at_++].name()));
        while (accept(".")) {
            if (!peek().isName()) throw Unknown{};
            text += u'.' + bracketed(tokens_[at_++].name());
        }
        if (!accept("(")) return text;
        text += u'(';
        do {
            if (!text.endsWith(u'(')) text += u',';
            text += tokens_[at_++].source.toString().toLower();
        } while (accept(","));
        expect(")");
        return text + u')';
    }

    Printed function() {
        const QString name = tokens_[at_++].source.toString().toLower();
        expect("(");
        if (name == QLatin1String("cast") || name == QLatin1String("try_cast")) {
            const QString value = condition().text;
            expect("AS");
            const QString target = type();
            expect(")");
            return {(name == QLatin1String("cast") ? QStringLiteral("CONVERT(")
                                                   : QStringLiteral("TRY_CAST(")) +
                        (name == QLatin1String("cast") ? target + u',' + value
                                                       : value + QStringLiteral(" AS ") + target) +
                        u')',
                    Level::Primary};
        }
        if (name == QLatin1String("convert") || name == QLatin1String("try_convert")) {
            QString text = name.toUpper() + u'(' + type();
            expect(",");
            text += u',' + condition().text;
            if (accept(",")) text += u',' + condition().text;
            expect(")");
            return {text + u')', Level::Primary};
        }
        if (name == QLatin1String("iif")) {
            const QString test = condition().text;
            expect(",");
            const QString yes = condition().text;
            expect(",");
            const QString no = condition().text;
            expect(")");
            return {QStringLiteral("case when %1 then %2 else %3 end").arg(test, yes, no),
                    Level::Primary};
        }
        if (datePartFunctions().contains(name)) {
            if (peek().kind != TokenKind::Word) throw Unknown{};
            const QString part = datePart(tokens_[at_++].source.toString());
            expect(",");
            return {name + u'(' + part + u',' + arguments() + u')', Level::Primary};
        }
        return {name + u'(' + arguments() + u')', Level::Primary};
    }

    Printed caseExpression() {
        expect("CASE");
        QString text = QStringLiteral("case");
        if (!peek().is("WHEN")) text += u' ' + condition().text;
        while (accept("WHEN")) {
            text += QStringLiteral(" when ") + condition().text;
            expect("THEN");
            text += QStringLiteral(" then ") + condition().text;
        }
        if (accept("ELSE")) text += QStringLiteral(" else ") + condition().text;
        expect("END");
        return {text + QStringLiteral(" end"), Level::Primary};
    }

    std::span<const Token> tokens_;
    bool keepLists_;
    size_t at_ = 0;
    int depth_ = 0;
};

// The expression without the pairs of parentheses that enclose all of it.
std::span<const Token> unwrapped(std::span<const Token> tokens) {
    while (!tokens.empty() && tokens.back().kind == TokenKind::End)
        tokens = tokens.first(tokens.size() - 1);
    size_t open = 0, close = 0;
    while (open < tokens.size() && tokens[open].is("(")) ++open;
    while (close < tokens.size() && tokens[tokens.size() - 1 - close].is(")")) ++close;
    if (open + close >= tokens.size()) return tokens;
    // As many pairs enclose all as are never closed on the way to the last run of ")".
    size_t pairs = open, depth = open;
    for (size_t i = open; i < tokens.size() - close && pairs > 0; ++i) {
        if (tokens[i].is("(")) ++depth;
        if (tokens[i].is(")")) pairs = std::min(pairs, --depth);
    }
    if (depth != close) return tokens;
    return tokens.subspan(pairs, tokens.size() - 2 * pairs);
}

QString writtenText(std::span<const Token> tokens) {
    if (tokens.empty()) return {};
    const char16_t* begin = tokens.front().source.utf16();
    const QStringView last = tokens.back().source;
    return QStringView(begin, last.utf16() + last.size()).toString();
}

}  // namespace

QString bracketed(const QString& name) {
    return u'[' + QString(name).replace(u']', QLatin1String("]]")) + u']';
}

QString defaultExpression(const QString& stored) {
    if (stored.startsWith(u'(')) return stored;
    const std::vector<Token> tokens = tokenize(stored);
    if (!tokens.front().is("CREATE")) return stored;
    for (size_t i = 0; i + 1 < tokens.size(); ++i)
        if (tokens[i].is("AS"))
            return writtenText(
                std::span<const Token>(tokens).subspan(i + 1, tokens.size() - i - 2));
    return stored;
}

QString storedExpression(std::span<const Token> expression, DefinitionForm form) {
    const std::span<const Token> inner = unwrapped(expression);
    if (expression.size() - inner.size() > 2 * size_t(MaxNesting))
        failTooDeep(expression.front().line);
    if (form != DefinitionForm::AsWritten) {
        try {
            return u'(' + Printer(inner, form == DefinitionForm::Filter).run() + u')';
        } catch (const Unknown&) {
        }
    }
    return u'(' + writtenText(inner) + u')';
}

}  // namespace zov::local
