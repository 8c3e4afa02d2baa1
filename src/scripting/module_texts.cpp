#include "scripting/module_texts.h"

#include "data/script_tokens.h"
#include "data/sql_names.h"

#include <QSet>

namespace zov {
namespace {

bool isPoint(const ScriptToken& token) {
    return !token.quoted && token.text == u".";
}

/// Where the object's kind stands in "CREATE [OR ALTER] PROCEDURE", 0 when it isn't such a header.
size_t kindToken(const std::vector<ScriptToken>& tokens) {
    static const char* const kinds[] = {"procedure", "proc",    "function", "view",
                                        "trigger",   "default", "rule"};
    if (tokens.empty() ||
        (!tokens[0].is(QLatin1StringView("create")) && !tokens[0].is(QLatin1StringView("alter"))))
        return 0;
    const bool orAlter = tokens.size() > 2 && tokens[1].is(QLatin1StringView("or")) &&
                         tokens[2].is(QLatin1StringView("alter"));
    const size_t at = orAlter ? 3 : 1;
    if (at >= tokens.size()) return 0;
    for (const char* kind : kinds)
        if (tokens[at].is(QLatin1StringView(kind))) return at;
    return 0;
}

}  // namespace

QString moduleStatement(const ModuleFacts& module) {
    const std::vector<ScriptToken> tokens = tokensOf(module.text);
    const size_t kind = kindToken(tokens);
    if (kind == 0 || kind + 1 >= tokens.size()) return {};
    const size_t first = kind + 1;
    size_t last = first;
    while (last + 2 < tokens.size() && isPoint(tokens[last + 1])) last += 2;
    const QString schema = last > first ? tokens[last - 2].text : QString();
    // Without a schema the name means the default one, which is dbo's for who runs a script.
    const QString meant = module.schema.isEmpty() ? QString() : QStringLiteral("dbo");
    const bool sameSchema =
        (schema.isEmpty() ? meant : schema).compare(module.schema, Qt::CaseInsensitive) == 0;
    QString text = module.text;
    if (tokens[last].text != module.name || !sameSchema)
        text.replace(tokens[first].position, tokens[last].end - tokens[first].position,
                     module.quoted());
    if (tokens[0].is(QLatin1StringView("alter")))
        text.replace(tokens[0].position, tokens[0].end - tokens[0].position,
                     QStringLiteral("CREATE"));
    return text;
}

void Mentions::add(const QString& schema, const QString& name, size_t number) {
    byName_[name.toLower()].push_back({schema, number});
}

std::vector<size_t> Mentions::in(const QString& text) const {
    std::vector<size_t> found;
    QSet<size_t> seen;
    const std::vector<ScriptToken> tokens = tokensOf(text);
    for (size_t i = 0; i < tokens.size(); ++i) {
        const auto named = byName_.constFind(tokens[i].text.toLower());
        if (named == byName_.constEnd()) continue;
        const bool qualified = i >= 2 && isPoint(tokens[i - 1]) && !isPoint(tokens[i - 2]);
        for (const Named& one : *named) {
            if (qualified && tokens[i - 2].text.compare(one.schema, Qt::CaseInsensitive) != 0)
                continue;
            if (seen.contains(one.number)) continue;
            seen.insert(one.number);
            found.push_back(one.number);
        }
    }
    return found;
}

}  // namespace zov
