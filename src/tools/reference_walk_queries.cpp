// Queries: their clauses, and what their FROM names.
#include "tools/reference_walk.h"

#include <algorithm>

namespace zov {
namespace {

/// Functions of the server that give rows and need no schema.
constexpr std::initializer_list<const char*> RowsetFunctions = {"OPENJSON",
                                                                "OPENXML",
                                                                "OPENROWSET",
                                                                "OPENQUERY",
                                                                "OPENDATASOURCE",
                                                                "STRING_SPLIT",
                                                                "GENERATE_SERIES",
                                                                "CONTAINSTABLE",
                                                                "FREETEXTTABLE",
                                                                "CHANGETABLE",
                                                                "PREDICT",
                                                                "SEMANTICKEYPHRASETABLE",
                                                                "SEMANTICSIMILARITYTABLE",
                                                                "SEMANTICSIMILARITYDETAILSTABLE",
                                                                "REGEXP_MATCHES",
                                                                "REGEXP_SPLIT_TO_TABLE",
                                                                "AI_GENERATE_CHUNKS",
                                                                "VECTOR_SEARCH"};
/// What a parenthesis behind a table may hold besides a function's arguments.
constexpr std::initializer_list<const char*> Hints = {
    "INDEX",           "NOLOCK",         "HOLDLOCK",     "UPDLOCK",   "ROWLOCK",
    "TABLOCK",         "TABLOCKX",       "PAGLOCK",      "READPAST",  "READCOMMITTED",
    "READUNCOMMITTED", "REPEATABLEREAD", "SERIALIZABLE", "XLOCK",     "NOWAIT",
    "NOEXPAND",        "FASTFIRSTROW",   "SNAPSHOT",     "FORCESEEK", "FORCESCAN"};

}  // namespace

// SELECT or a parenthesis, and all that UNION and its like join to it.
void ReferenceWalk::query(size_t end, Scope* parent) {
    bool inUnion = false;
    while (more(end)) {
        if (word().isSign(u'('))
            parenthesis(parent);
        else if (key() == Key::Select)
            select(end, parent, inUnion);
        else
            return;
        if (key() != Key::Union && key() != Key::Except && key() != Key::Intersect) break;
        ++at_;
        skip(Key::All);
        inUnion = true;
    }
    Scope none(nullptr);
    none.isOpaque = true;
    while (selectClause(end, none, true)) {
    }
}

void ReferenceWalk::select(size_t end, Scope* parent, bool inUnion) {
    ++at_;
    Scope scope(parent);
    if (!skip(Key::All)) skip(Key::Distinct);
    skipTop(parent);
    Mode list;
    list.outputs = true;
    expression(end, &scope, list);
    while (selectClause(end, scope, inUnion)) {
    }
    resolve(scope);
}

// One clause behind the select list; false when none follows.
bool ReferenceWalk::selectClause(size_t end, Scope& scope, bool inUnion) {
    if (!more(end)) return false;
    switch (key()) {
        case Key::Into: {
            ++at_;
            Name made;
            if (name(made)) made_.insert(names_.fold(made.last()));
            if (skip(Key::On)) ++at_;
            return true;
        }
        case Key::From:
            ++at_;
            sources(end, scope);
            return true;
        case Key::Where:
        case Key::Having:
            ++at_;
            expression(end, &scope, {});
            return true;
        case Key::Group:
            ++at_;
            skip(Key::By);
            skip(Key::All);
            expression(end, &scope, {});
            return true;
        case Key::With:
            if (isAnyWord(1, {"ROLLUP", "CUBE"})) {
                at_ += 2;
                return true;
            }
            if (key(1) == Key::Check && key(2) == Key::Option) {
                at_ += 3;
                return true;
            }
            return false;
        case Key::Order:
            orderBy(end, inUnion ? nullptr : &scope);
            return true;
        case Key::For:
            forClause(end);
            return true;
        case Key::Option:
            ++at_;
            skipParenthesis();
            return true;
        default:
            if (!word().isWord("WINDOW") || !word(1).isName() || key(2) != Key::As) return false;
            do {  // WINDOW w AS (...), x AS (...)
                at_ += 3;
                if (word().isSign(u'(')) parenthesis(&scope, Mode{.inWindow = true});
            } while (word().isSign(u',') && word(1).isName());
            return true;
    }
}

void ReferenceWalk::orderBy(size_t end, Scope* scope) {
    ++at_;
    skip(Key::By);
    Mode mode;
    mode.inOrder = true;
    expression(end, scope, mode);
    // OFFSET 10 ROWS FETCH NEXT 5 ROWS ONLY, where a cursor's would be FETCH NEXT FROM.
    if (key() == Key::Fetch && isAnyWord(1, {"NEXT", "FIRST"}) && key(2) != Key::From &&
        !word(2).isName()) {
        at_ += 2;
        expression(end, nullptr, {});
    }
}

// FOR XML PATH('x'), TYPE; FOR JSON AUTO; of a cursor FOR UPDATE OF a, b and FOR READ ONLY.
void ReferenceWalk::forClause(size_t end) {
    ++at_;
    if (skip(Key::Update)) {
        if (!skip(Key::Of)) return;
    } else {
        ++at_;
    }
    while (more(end)) {
        if (word().isSign(u'('))
            skipParenthesis();
        else if (word().isSign(u',') || word().isSign(u'.') ||
                 (word().isName() && !word(1).isSign(u':')))
            ++at_;
        else
            return;
    }
}

void ReferenceWalk::sources(size_t end, Scope& scope) {
    bool applies = false;
    source(end, scope, false);
    while (more(end)) {
        if (skipSign(u',') || joinWords(applies)) {
            source(end, scope, applies);
            applies = false;
        } else if (skip(Key::On)) {
            Mode mode;
            mode.stopsAtComma = true;
            expression(end, &scope, mode);
        } else if (skip(Key::Pivot) || skip(Key::Unpivot)) {
            skipParenthesis();
            scope.isOpaque = true;
            Source pivoted;
            if (alias(pivoted)) scope.sources.push_back(pivoted);
        } else if (!skipSign(u'}')) {
            return;
        }
    }
}

// [LEFT] [OUTER] [HASH] JOIN, CROSS APPLY and so on. False, and nothing skipped, at anything else.
bool ReferenceWalk::joinWords(bool& applies) {
    const size_t start = at_;
    if (key() == Key::Inner || key() == Key::Cross || key() == Key::Left || key() == Key::Right ||
        key() == Key::Full)
        ++at_;
    skip(Key::Outer);
    if (isAnyWord(0, {"LOOP", "HASH", "REMOTE"}) || key() == Key::Merge) ++at_;
    applies = word().isWord("APPLY");
    if (at_ != start && applies) {
        ++at_;
        return true;
    }
    applies = false;
    if (skip(Key::Join)) return true;
    at_ = start;
    return false;
}

// Whether the parenthesis at hand holds rows that are made there, not tables that are joined.
bool ReferenceWalk::isDerivedTable() const {
    switch (key(1)) {
        case Key::Select:
        case Key::Values:
        case Key::With:
        case Key::Insert:
        case Key::Update:
        case Key::Delete:
        case Key::Merge:
            return true;
        default:
            break;
    }
    if (!word(1).isSign(u'(')) return false;
    size_t inner = at_ + 1;
    const size_t deepest = std::min(inner + DeepestNesting, words_.size());
    while (inner < deepest && words_[inner].isSign(u'(')) ++inner;
    if (inner >= words_.size() || words_[inner].key != Key::Select) return false;
    const size_t behind = size_t(word(1).close) + 1;
    if (behind >= words_.size()) return true;
    const Key next = words_[behind].key;
    return next == Key::Union || next == Key::Except || next == Key::Intersect ||
           next == Key::Order || behind == size_t(word().close);
}

void ReferenceWalk::source(size_t end, Scope& scope, bool applies) {
    Source source;
    if (!more(end)) return;
    if (word().isSign(u'{')) at_ += 2;  // {oj a LEFT OUTER JOIN b ON ...}
    if (word().isSign(u'(')) {
        if (!isDerivedTable()) {
            const size_t close = size_t(word().close);
            ++at_;
            if (++depth_ < DeepestNesting)
                sources(close, scope);
            else
                isTooDeep_ = true;
            --depth_;
            at_ = std::min(close + 1, words_.size());
            return;
        }
        parenthesis(applies ? &scope : scope.parent);
    } else if (word().kind == WordKind::Variable) {  // @t, @x.nodes('...')
        source.exposed = names_.fold(word().text.toString());
        ++at_;
        if (skipSign(u'.')) {
            ++at_;
            parenthesis(&scope);
        }
    } else if (skipSign(DoubleColonSign)) {  // ::fn_helpcollations()
        Name ignored;
        name(ignored);
        skipParenthesis();
    } else if (word().isName()) {
        namedSource(scope, source);
    } else {
        return;
    }
    sourceTail(scope, source);
}

void ReferenceWalk::namedSource(Scope& scope, Source& source) {
    const bool isRowset = isAnyWord(0, RowsetFunctions);
    Name named;
    name(named);
    if (!word().isSign(u'(')) {
        source = table(named);
        return;
    }
    if (isRowset && named.parts.size() == 1) return rowsetArguments(named, scope);
    if (named.parts.size() > 1 && named.last().compare(u"nodes", Qt::CaseInsensitive) == 0)
        return parenthesis(&scope);
    if (isAnyWord(1, Hints)) {
        source = table(named);
        return skipParenthesis();
    }
    if (named.parts.size() == 1 && named.last().startsWith(u"fn_", Qt::CaseInsensitive) &&
        !names_.object(schema_, named.last()))
        return parenthesis(&scope);
    source = table(named, MissingKind::Function);
    parenthesis(&scope);
}

void ReferenceWalk::rowsetArguments(const Name& function, Scope& scope) {
    const QString called = function.last().toUpper();
    // The columns that a full-text search names are those of its own table.
    const bool namesTable = called == u"CONTAINSTABLE" || called == u"FREETEXTTABLE";
    if (namesTable) {
        const size_t open = at_;
        ++at_;
        Name searched;
        if (name(searched)) table(searched);
        at_ = open;
    }
    if (called == u"OPENJSON" || called == u"OPENXML" || called == u"STRING_SPLIT" ||
        called == u"GENERATE_SERIES" || called.startsWith(u"REGEXP"))
        parenthesis(&scope);
    else
        skipParenthesis();
    while (word().isSign(u'.')) at_ += 2;  // OPENDATASOURCE(...).db.dbo.t
}

// What may stand behind a source: versions, samples, an alias, its columns, hints.
void ReferenceWalk::sourceTail(Scope& scope, Source& source) {
    bool hasAlias = false;
    for (;;) {
        if (key() == Key::For && word(1).isWord("SYSTEM_TIME")) {
            systemTime();
        } else if (skip(Key::TableSample)) {
            skipWord("SYSTEM");
            skipParenthesis();
            skip(Key::Percent);
            if (skipWord("REPEATABLE")) skipParenthesis();
        } else if (key() == Key::With && word(1).isSign(u'(')) {
            hints();
        } else if (!hasAlias && alias(source)) {
            hasAlias = true;
            if (!word().isSign(u'(')) continue;
            // Columns get other names there, unless it holds hints.
            if (!isAnyWord(1, Hints)) source.object = nullptr;
            skipParenthesis();
        } else {
            break;
        }
    }
    scope.sources.push_back(source);
}

void ReferenceWalk::systemTime() {
    at_ += 2;
    if (skip(Key::All)) return;
    if (skip(Key::As)) {  // AS OF x
        at_ += 2;
    } else if (skipWord("CONTAINED")) {
        ++at_;
        skipParenthesis();
    } else {  // FROM x TO y, BETWEEN x AND y
        at_ += 4;
    }
}

bool ReferenceWalk::alias(Source& source) {
    const bool named = skip(Key::As);
    const bool isClause = isAnyWord(0, {"OUTPUT", "USING", "APPLY"}) ||
                          (word().isWord("WINDOW") && word(1).isName() && key(2) == Key::As) ||
                          word(1).isSign(u':');
    if (!named && (!word().isName() || isClause)) return false;
    source.exposed = names_.fold(word().content());
    ++at_;
    return true;
}

}  // namespace zov
