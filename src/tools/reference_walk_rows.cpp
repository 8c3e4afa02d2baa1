// INSERT, UPDATE, DELETE and MERGE.
#include "tools/reference_walk.h"

namespace zov {

void ReferenceWalk::skipTop(Scope* scope) {
    if (!skip(Key::Top)) return;
    if (word().isSign(u'('))
        parenthesis(scope);
    else
        ++at_;
    skip(Key::Percent);
    if (key() == Key::With && word(1).isWord("TIES")) at_ += 2;
}

// WITH (TABLOCK)
void ReferenceWalk::hints() {
    if (key() == Key::With && word(1).isSign(u'(')) {
        ++at_;
        skipParenthesis();
    }
}

// What is written to; no name for variables and other servers.
ReferenceWalk::Name ReferenceWalk::rowsTarget() {
    if (word().kind == WordKind::Variable) {
        ++at_;
        return {};
    }
    const bool isRemote = isAnyWord(0, {"OPENQUERY", "OPENROWSET", "OPENDATASOURCE"});
    Name target;
    if (!name(target) || !isRemote || !word().isSign(u'(')) return target;
    skipParenthesis();
    while (word().isSign(u'.')) at_ += 2;
    return {};
}

// Whom the rows go to. An alias of the statement's FROM comes before a table of that name.
void ReferenceWalk::settleTarget(const Name& name, Scope& scope) {
    if (name.parts.isEmpty()) {
        scope.isOpaque = true;
        return;
    }
    const QString exposed = names_.fold(name.last());
    if (name.parts.size() == 1)
        for (size_t i = 0; i < scope.sources.size(); ++i)
            if (scope.sources[i].exposed == exposed) {
                scope.target = int(i);
                return;
            }
    scope.sources.push_back(table(name));
    scope.target = int(scope.sources.size()) - 1;
}

void ReferenceWalk::addInsertedDeleted(Scope& scope) {
    if (scope.target < 0) return;
    Source source = scope.sources[size_t(scope.target)];
    source.byNameOnly = true;
    for (const char* pseudo : {"inserted", "deleted"}) {
        source.exposed = names_.fold(QString::fromLatin1(pseudo));
        scope.sources.push_back(source);
    }
}

// OUTPUT inserted.a, $action INTO t (a, b)
void ReferenceWalk::outputClauses(size_t end, Scope& scope) {
    while (skipWord("OUTPUT")) {
        Mode mode;
        mode.outputs = true;
        expression(end, &scope, mode);
        if (!skip(Key::Into)) continue;
        Name into;
        if (word().kind == WordKind::Variable)
            ++at_;
        else if (name(into))
            table(into);
        if (word().isSign(u'(') && key(1) != Key::Select) skipParenthesis();
    }
}

// (a, b, c) of an INSERT
void ReferenceWalk::targetColumns(Scope& scope) {
    const size_t close = size_t(word().close);
    for (++at_; more(close);) {
        ColumnUse use;
        if (name(use.name)) {
            use.ofTarget = true;
            if (use.name.parts.size() == 1 && !use.name.last().startsWith(u'$'))
                scope.uses.push_back(use);
        } else {
            ++at_;
        }
    }
    at_ = std::min(close + 1, words_.size());
}

// VALUES, a query or a call.
void ReferenceWalk::rowsSource(size_t end) {
    skip(Key::Default);
    if (skip(Key::Values)) return expression(end, nullptr, {});
    if (key() == Key::Select || word().isSign(u'(')) return query(end, nullptr);
    if (key() == Key::Exec) execute(end);
}

void ReferenceWalk::insert(size_t end) {
    ++at_;
    Scope scope(nullptr);
    skipTop(nullptr);
    skip(Key::Into);
    settleTarget(rowsTarget(), scope);
    hints();
    const bool hasColumns = word().isSign(u'(') && key(1) != Key::Select && key(1) != Key::With &&
                            key(1) != Key::Values && !word(1).isSign(u'(');
    if (hasColumns) targetColumns(scope);
    hints();
    addInsertedDeleted(scope);
    outputClauses(end, scope);
    resolve(scope);
    rowsSource(end);
}

void ReferenceWalk::update(size_t end) {
    ++at_;
    Name target;
    if (skip(Key::Statistics)) {
        if (name(target)) table(target);
        return;
    }
    changeRows(end, false);
}

void ReferenceWalk::deleteRows(size_t end) {
    ++at_;
    changeRows(end, true);
}

// Behind UPDATE or DELETE: whose rows, what they become, and from what.
void ReferenceWalk::changeRows(size_t end, bool deletes) {
    Scope scope(nullptr);
    skipTop(nullptr);
    if (deletes) skip(Key::From);
    const Name target = rowsTarget();
    skipParenthesis();
    hints();
    if (!deletes) {
        if (!skip(Key::Set)) return;
        Mode mode;
        mode.assigns = mode.stopsAtOutput = true;
        expression(end, &scope, mode);
    }
    outputClauses(end, scope);
    if (skip(Key::From)) sources(end, scope);
    settleTarget(target, scope);
    addInsertedDeleted(scope);
    while (selectClause(end, scope, false)) {
    }
    resolve(scope);
}

void ReferenceWalk::merge(size_t end) {
    ++at_;
    Scope scope(nullptr);
    skipTop(nullptr);
    skip(Key::Into);
    source(end, scope, false);
    if (!scope.sources.empty()) scope.target = 0;
    if (skipWord("USING")) sources(end, scope);
    addInsertedDeleted(scope);
    mergeActions(end, scope);
    outputClauses(end, scope);
    while (selectClause(end, scope, false)) {
    }
    resolve(scope);
}

// WHEN [NOT] MATCHED [BY SOURCE] [AND ...] THEN UPDATE SET ... | DELETE | INSERT ...
void ReferenceWalk::mergeActions(size_t end, Scope& scope) {
    while (more(end) && skip(Key::When)) {
        skip(Key::Not);
        skipWord("MATCHED");
        if (skip(Key::By)) ++at_;
        expression(end, &scope, {});
        skip(Key::Then);
        Mode mode;
        mode.stopsAtOutput = true;
        if (skip(Key::Update)) {
            skip(Key::Set);
            mode.assigns = true;
            expression(end, &scope, mode);
        } else if (skip(Key::Insert)) {
            if (word().isSign(u'(')) targetColumns(scope);
            skip(Key::Default);
            if (skip(Key::Values)) expression(end, &scope, mode);
        } else {
            skip(Key::Delete);
        }
    }
}

}  // namespace zov
