// Expressions: which of their words are columns and functions.
#include "tools/reference_walk.h"

#include <algorithm>

namespace zov {
namespace {

constexpr std::initializer_list<const char*> DatePartFunctions = {
    "DATEADD", "DATEDIFF", "DATEDIFF_BIG", "DATEPART", "DATENAME", "DATETRUNC", "DATE_BUCKET"};
constexpr std::initializer_list<const char*> WindowWords = {
    "PARTITION", "ROWS", "RANGE", "GROUPS", "UNBOUNDED", "PRECEDING", "FOLLOWING", "ROW"};

template <typename Names>
bool isOneOf(const QString& name, const Names& names) {
    return std::any_of(names.begin(), names.end(), [&](const char* one) {
        return name.compare(QLatin1StringView(one), Qt::CaseInsensitive) == 0;
    });
}

}  // namespace

struct ReferenceWalk::ExpressionState {
    bool behindOperand = false;  ///< a name here is an alias, or a word of the grammar
    bool beginsItem = true;      ///< of a list
    int cases = 0;               ///< CASEs that wait for their END
    bool ends = false;
};

void ReferenceWalk::expression(size_t end, Scope* scope, Mode mode) {
    ExpressionState state;
    while (more(end) && !state.ends) {
        switch (word().kind) {
            case WordKind::Sign:
                if (!sign(scope, mode, state)) return;
                continue;
            case WordKind::Variable:
                ++at_;
                if (word().isSign(u'.') && word(1).kind == WordKind::Name && word(2).isSign(u'('))
                    at_ += 2;
                break;
            case WordKind::String:
                // 'alias' behind an expression, or in front of its "=".
                if (mode.outputs && scope && (state.behindOperand || word(1).isSign(u'=')))
                    scope->outputs.insert(names_.fold(word().content()));
                [[fallthrough]];
            case WordKind::Number:
                ++at_;
                break;
            case WordKind::Name:
                if (key() != Key::None) {
                    if (stops(mode, state) || !keyword(end, scope, mode, state)) return;
                    continue;
                }
                [[fallthrough]];
            case WordKind::Quoted:
                if (!nameInExpression(scope, mode, state)) return;
                continue;
        }
        state.behindOperand = true;
        state.beginsItem = false;
    }
}

bool ReferenceWalk::sign(Scope* scope, const Mode& mode, ExpressionState& state) {
    const char16_t sign = word().sign;
    if (sign == u';' && !mode.inside) return false;
    if (sign == u',' && mode.stopsAtComma && state.cases == 0) return false;
    if (sign == u'(') {
        Mode inner;
        inner.inWindow = mode.inWindow;
        parenthesis(scope, inner);
        state.behindOperand = true;
        state.beginsItem = false;
        return true;
    }
    ++at_;
    if (sign == u'.' && word().kind == WordKind::Name) {  // (SELECT ...).value('.', 'int'), @x.Lat
        ++at_;
        parenthesis(scope);
        state.behindOperand = true;
        return true;
    }
    if (sign == u'{' && word().kind == WordKind::Name) ++at_;  // {fn ...}, {d '...'}
    if (sign == u'%' && word().isSign(u'%')) {                 // %%physloc%%
        while (word().isSign(u'%') || word().isWord("physloc") || word().isWord("lockres")) ++at_;
        state.behindOperand = true;
        return true;
    }
    state.behindOperand = sign == u'}' || sign == u')';
    state.beginsItem = sign == u',';
    return true;
}

// Whether a reserved word belongs to what stands around the expression.
bool ReferenceWalk::stops(const Mode& mode, const ExpressionState& state) const {
    if (mode.inside) return mode.stopsAtAs && key() == Key::As && state.cases == 0;
    switch (key()) {
        case Key::Else:
        case Key::End:
        case Key::When:
        case Key::Then:
            return state.cases == 0;
        case Key::Left:
        case Key::Right:
        case Key::Update:
            return !word(1).isSign(u'(');  // else the function
        case Key::From:                    // IS [NOT] DISTINCT FROM
            return !(at_ >= 2 && words_[at_ - 1].key == Key::Distinct &&
                     (words_[at_ - 2].key == Key::Is || words_[at_ - 2].key == Key::Not));
        case Key::Check:
        case Key::All:
        case Key::As:
        case Key::Asc:
        case Key::By:
        case Key::Case:
        case Key::Collate:
        case Key::Current:
        case Key::Cursor:
        case Key::Default:
        case Key::Desc:
        case Key::Distinct:
        case Key::Is:
        case Key::Not:
        case Key::Null:
        case Key::Of:
        case Key::Over:
        case Key::Percent:
        case Key::Reserved:
        case Key::Within:
        case Key::Top:
        case Key::To:
        case Key::Function:
        case Key::Index:
        case Key::Primary:
        case Key::Table:
        case Key::View:
        case Key::Proc:
        case Key::Trigger:
        case Key::Unique:
            return false;
        default:
            return true;
    }
}

// A reserved word within an expression; false when it can't be one and the expression ends here.
bool ReferenceWalk::keyword(size_t end, Scope* scope, const Mode& mode, ExpressionState& state) {
    const Key at = key();
    state.beginsItem = false;
    state.behindOperand = false;
    switch (at) {
        case Key::Select:  // only in parentheses: a query, or the next one behind UNION
            query(end, scope);
            state.behindOperand = true;
            return true;
        case Key::Case:
            ++state.cases;
            break;
        case Key::End:
            if (state.cases > 0) --state.cases;
            state.behindOperand = true;
            break;
        case Key::Null:
        case Key::Default:
        case Key::Asc:
        case Key::Desc:
            state.behindOperand = true;
            break;
        case Key::Reserved: {
            // CURRENT_TIMESTAMP, USER and their like are values.
            const QStringView text = word().text;
            state.behindOperand = text.contains(u'_') ||
                                  text.compare(u"USER", Qt::CaseInsensitive) == 0 ||
                                  text.endsWith(u"COL", Qt::CaseInsensitive);
            break;
        }
        case Key::As: {
            ++at_;
            if (word().isSign(u'(')) return parenthesis(scope, Mode{.inWindow = true}), true;
            const bool isAlias = word().isName() || word().kind == WordKind::String;
            if (mode.outputs && isAlias && scope)
                scope->outputs.insert(names_.fold(word().content()));
            state.behindOperand = true;
            break;
        }
        case Key::Collate:
            ++at_;
            state.behindOperand = true;
            break;
        case Key::Over:
            ++at_;
            state.behindOperand = true;
            if (!word().isSign(u'(')) break;
            parenthesis(scope, Mode{.inWindow = true});
            return true;
        case Key::Within:  // WITHIN GROUP (ORDER BY ...)
            ++at_;
            break;
        case Key::Current:  // CURRENT OF cursor; CURRENT ROW
            ++at_;
            if (skip(Key::Of)) skipWord("GLOBAL");
            state.behindOperand = true;
            break;
        default:
            break;
    }
    ++at_;
    return true;
}

// False when the name ends the expression.
bool ReferenceWalk::nameInExpression(Scope* scope, const Mode& mode, ExpressionState& state) {
    if (state.behindOperand) {
        if (mode.stopsAtOutput && word().isWord("OUTPUT")) return false;
        if (!mode.inside && word().isWord("WINDOW") && word(1).isName() && key(2) == Key::As)
            return false;
        if (!mode.inside && word(1).isSign(u':')) return false;  // a label
        if (mode.outputs && scope) scope->outputs.insert(names_.fold(word().content()));
        ++at_;
        return true;
    }
    const bool begins = state.beginsItem;
    state.beginsItem = false;
    if (mode.inWindow && isAnyWord(0, WindowWords)) {
        ++at_;
        return true;
    }
    if (word().isWord("GROUPING") && word(1).isWord("SETS")) {
        at_ += 2;
        return true;
    }
    state.behindOperand = true;
    if (word().isWord("NEXT") && key(1) == Key::None && word(1).isWord("VALUE") &&
        key(2) == Key::For) {
        at_ += 3;
        Name sequence;
        if (name(sequence)) table(sequence, MissingKind::Sequence);
        return true;
    }
    ColumnUse use;
    name(use.name);
    if (word().isSign(u'(')) {
        call(use.name, scope);
        return true;
    }
    if (skipSign(DoubleColonSign)) {  // type::Method(...)
        Name method;
        name(method);
        if (word().isSign(u'(')) arguments(size_t(word().close), {}, scope);
        return true;
    }
    if (use.name.star || !scope || use.name.last().startsWith(u'$') ||
        use.name.parts[0].startsWith(u'$'))
        return true;
    const bool isBare = use.name.parts.size() == 1;
    // T.IDENTITYCOL stands for whichever column that is.
    for (const char* pseudo : {"IDENTITYCOL", "ROWGUIDCOL"})
        if (!isBare && use.name.last().compare(QLatin1StringView(pseudo), Qt::CaseInsensitive) == 0)
            return true;
    const bool assigned = word().isSign(u'=') || word().isSign(AssignSign);
    if (mode.outputs && begins && isBare && word().isSign(u'=')) {  // alias = value
        scope->outputs.insert(names_.fold(use.name.last()));
        return true;
    }
    use.ofTarget = mode.assigns && begins && isBare && assigned;
    use.inOrder = mode.inOrder;
    scope->uses.push_back(std::move(use));
    return true;
}

// A parenthesis: a query, a statement whose OUTPUT is read, or a part of the expression.
void ReferenceWalk::parenthesis(Scope* scope, Mode mode) {
    if (!word().isSign(u'(')) return;
    const size_t close = size_t(word().close);
    ++at_;
    if (++depth_ > DeepestNesting) {
        isTooDeep_ = true;
    } else if (key() == Key::Insert || key() == Key::Delete || key() == Key::Merge ||
               (key() == Key::Update && !word(1).isSign(u'('))) {
        statement(close);
    } else {
        if (key() == Key::With && atCommonTables()) commonTables(close);
        mode.inside = true;
        expression(close, scope, mode);
    }
    --depth_;
    at_ = std::min(close + 1, words_.size());
}

// A call, or a method of a column's value.
void ReferenceWalk::call(const Name& name, Scope* scope) {
    const size_t close = size_t(word().close);
    const size_t count = size_t(name.parts.size());
    if (count > 1) checkFunction(name);
    arguments(close, count == 1 ? name.last() : QString(), scope);
    // What it gives may be asked on: f(x).value('...')
    while (word().isSign(u'.') && word(1).kind == WordKind::Name) {
        at_ += 2;
        if (word().isSign(u'(')) parenthesis(scope);
    }
}

void ReferenceWalk::arguments(size_t close, const QString& function, Scope* scope) {
    static const std::vector<const char*> unread = {"MATCH", "SHORTEST_PATH", "IDENTITY"};
    static const std::vector<const char*> ownGrammar = {
        "JSON_OBJECT", "JSON_ARRAY", "JSON_OBJECTAGG", "JSON_ARRAYAGG", "AI_GENERATE_EMBEDDINGS"};
    static const std::vector<const char*> castings = {"CAST", "TRY_CAST", "PARSE", "TRY_PARSE"};
    static const std::vector<const char*> conversions = {"CONVERT", "TRY_CONVERT"};
    if (isOneOf(function, unread)) return skipParenthesis();
    if (isOneOf(function, ownGrammar)) return parenthesis(nullptr);
    if (isOneOf(function, castings)) {
        ++at_;
        if (++depth_ > DeepestNesting)
            isTooDeep_ = true;
        else
            expression(close, scope, Mode{.inside = true, .stopsAtAs = true});
        --depth_;
        if (more(close) && skip(Key::As)) typeReference();
        at_ = std::min(close + 1, words_.size());
        return;
    }
    // The first argument is no expression.
    const bool hasWord = isOneOf(function, DatePartFunctions) && word(2).isSign(u',');
    const bool trims =
        isOneOf(function, std::vector<const char*>{"TRIM"}) && key(1) == Key::None &&
        (word(1).isWord("LEADING") || word(1).isWord("TRAILING") || word(1).isWord("BOTH"));
    const bool converts = isOneOf(function, conversions);
    if (!hasWord && !trims && !converts) return parenthesis(scope);
    if (++depth_ > DeepestNesting) {
        isTooDeep_ = true;
    } else {
        at_ += converts ? 1 : 2;
        if (converts) typeReference();
        expression(close, scope, Mode{.inside = true});
    }
    --depth_;
    at_ = std::min(close + 1, words_.size());
}

}  // namespace zov
