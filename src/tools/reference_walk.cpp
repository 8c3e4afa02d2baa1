// Words, and looking names up.
#include "tools/reference_walk.h"

#include <algorithm>

namespace zov {

ReferenceWalk::ReferenceWalk(const ModuleText& module, const DatabaseNames& names,
                             const SqlText& text)
    : names_(names), words_(text.words), schema_(module.object.schema) {}

std::vector<MissingReference> ReferenceWalk::run() {
    // What a module makes is there wherever it is named, also in front: so the second walk counts.
    header(words_.size());
    statements(words_.size());
    if (!made_.isEmpty() || !altered_.isEmpty()) {
        missing_.clear();
        at_ = 0;
        header(words_.size());
        statements(words_.size());
    }
    std::stable_sort(missing_.begin(), missing_.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<MissingReference> missing;
    for (auto& [at, reference] : missing_) {
        const bool again = !missing.empty() && missing.back().line == reference.line &&
                           missing.back().name == reference.name &&
                           missing.back().kind == reference.kind;
        if (!again) missing.push_back(std::move(reference));
    }
    return missing;
}

const SqlWord& ReferenceWalk::word(size_t ahead) const {
    static const SqlWord none;
    return at_ + ahead < words_.size() ? words_[at_ + ahead] : none;
}

bool ReferenceWalk::skip(Key wanted) {
    if (key() != wanted) return false;
    ++at_;
    return true;
}

bool ReferenceWalk::skipSign(char16_t wanted) {
    if (!word().isSign(wanted)) return false;
    ++at_;
    return true;
}

bool ReferenceWalk::skipWord(const char* text) {
    if (!word().isWord(text)) return false;
    ++at_;
    return true;
}

void ReferenceWalk::skipParenthesis() {
    if (word().isSign(u'(')) at_ = std::min(size_t(word().close) + 1, words_.size());
}

bool ReferenceWalk::isAnyWord(size_t ahead, std::initializer_list<const char*> texts) const {
    return std::any_of(texts.begin(), texts.end(),
                       [&](const char* text) { return word(ahead).isWord(text); });
}

bool ReferenceWalk::name(Name& name) {
    if (!word().isName()) return false;
    name = {};
    name.at = at_;
    const auto take = [&] {
        name.parts += word().content();
        name.written += word().text;
        ++at_;
    };
    take();
    while (word().isSign(u'.')) {
        const SqlWord& next = word(1);
        if (next.isSign(u'*')) {
            name.star = true;
            at_ += 2;
            break;
        }
        if (!next.isSign(u'.') && next.kind != WordKind::Name && next.kind != WordKind::Quoted)
            break;
        name.written += u'.';
        ++at_;
        if (next.isSign(u'.'))
            name.parts += QString();
        else
            take();
    }
    return true;
}

const NamedObject* ReferenceWalk::lookUp(const Name& name, bool& isMissing) const {
    isMissing = false;
    const qsizetype count = name.parts.size();
    const QString& last = name.parts.back();
    const bool isElsewhere =
        count > 3 || last.startsWith(u'#') || (count == 3 && !names_.isThisDatabase(name.parts[0]));
    if (isElsewhere) return nullptr;
    const QString schema = count > 1 ? name.parts[count - 2] : QString();
    const QStringList schemas =
        schema.isEmpty() ? QStringList{schema_, QStringLiteral("dbo")} : QStringList{schema};
    for (const QString& candidate : schemas)
        if (const NamedObject* object = names_.object(candidate, last))
            return isMade(last) || altered_.contains(object) ? nullptr : object;
    isMissing = !isMade(last) && !isSystemName(schema, last);
    return nullptr;
}

ReferenceWalk::Source ReferenceWalk::table(const Name& name, MissingKind kind) {
    Source source;
    source.exposed = names_.fold(name.last());
    if (name.parts.isEmpty() || name.last().isEmpty()) return source;
    const bool isBare = name.parts.size() == 1;
    if (isBare && commonTables_.contains(source.exposed)) return source;
    const auto isCalled = [&](const char* pseudo) {
        return name.last().compare(QLatin1StringView(pseudo), Qt::CaseInsensitive) == 0;
    };
    if (isBare && isTrigger_ && (isCalled("inserted") || isCalled("deleted"))) {
        source.object = triggerTable_;
        return source;
    }
    bool isMissing = false;
    source.object = lookUp(name, isMissing);
    if (isMissing) report(name, kind);
    return source;
}

void ReferenceWalk::checkProcedure(const Name& name) {
    // Those of the system are found from every database, whatever schema is named.
    for (const char* prefix : {"sp_", "xp_"})
        if (name.last().startsWith(QLatin1StringView(prefix), Qt::CaseInsensitive)) return;
    bool isMissing = false;
    lookUp(name, isMissing);
    if (isMissing) report(name, MissingKind::Procedure);
}

void ReferenceWalk::checkFunction(const Name& name) {
    const qsizetype count = name.parts.size();
    if (count < 2 || count > 3) return;
    // A method of a column's value looks like a function of a schema.
    const QString schema = name.parts[count - 2];
    if (count == 3 && !names_.isThisDatabase(name.parts[0])) return;
    if (!schema.isEmpty() && !names_.hasSchema(schema)) return;
    for (const char* method : {"value", "query", "nodes", "exist", "modify", "write"})
        if (name.last().compare(QLatin1StringView(method), Qt::CaseInsensitive) == 0) return;
    bool isMissing = false;
    lookUp(name, isMissing);
    if (isMissing) report(name, MissingKind::Function);
}

void ReferenceWalk::report(const Name& name, MissingKind kind, const QString& owner) {
    missing_.emplace_back(name.at,
                          MissingReference{words_[name.at].line, name.written, kind, owner});
}

void ReferenceWalk::resolve(Scope& scope) {
    for (ColumnUse& use : scope.uses) {
        const bool isFound =
            use.name.parts.size() == 1 ? resolveBare(scope, use) : resolveQualified(scope, use);
        if (isFound) continue;
        if (scope.parent && !use.ofTarget) {
            use.inOrder = false;
            scope.parent->uses.push_back(std::move(use));
        } else if (use.name.parts.size() == 1 && use.sawSources) {
            report(use.name, MissingKind::Column, use.owner);
        }
    }
    scope.uses.clear();
}

// True when the column is there, or may be. False: a query around may have it.
bool ReferenceWalk::resolveBare(const Scope& scope, ColumnUse& use) {
    const QString column = names_.fold(use.name.parts[0]);
    if (use.inOrder && scope.outputs.contains(column)) return true;
    if (scope.isOpaque) return true;
    int looked = 0;
    QString owner;
    for (size_t i = 0; i < scope.sources.size(); ++i) {
        const Source& source = scope.sources[i];
        if (source.byNameOnly || (use.ofTarget && int(i) != scope.target)) continue;
        if (source.has(column)) return true;
        ++looked;
        owner = source.object->schema + u'.' + source.object->name;
    }
    if (use.ofTarget && looked == 0) return true;
    if (looked == 1 && !use.sawSources)
        use.owner = owner;
    else if (looked > 0)
        use.owner.clear();
    use.sawSources = use.sawSources || looked > 0;
    return false;
}

// "alias.column", "table.column" or the table's full name. True when it is settled here.
bool ReferenceWalk::resolveQualified(const Scope& scope, const ColumnUse& use) {
    const QStringList& parts = use.name.parts;
    const QString column = names_.fold(parts.back());
    const NamedObject* meant = nullptr;
    if (parts.size() > 2) {
        // alias.column.property of a value: not looked into.
        const QString first = names_.fold(parts[0]);
        for (const Source& source : scope.sources)
            if (source.exposed == first) return true;
        if (parts.size() == 4 && !names_.isThisDatabase(parts[0])) return true;
        meant = names_.object(parts[parts.size() - 3], parts[parts.size() - 2]);
        if (!meant) return true;
    }
    const QString exposed = names_.fold(parts[parts.size() - 2]);
    const NamedObject* lacking = nullptr;
    for (const Source& source : scope.sources) {
        if (meant ? source.object != meant : source.exposed != exposed) continue;
        if (source.has(column)) return true;
        lacking = source.object;
    }
    if (!lacking) return scope.isOpaque;
    report(use.name, MissingKind::Column, lacking->schema + u'.' + lacking->name);
    return true;
}

}  // namespace zov
