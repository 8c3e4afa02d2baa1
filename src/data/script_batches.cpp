#include "data/script_batches.h"

#include "data/script_lines.h"
#include "data/script_tokens.h"

#include <QSet>

namespace zov {

std::vector<UseStatement> useStatements(const QString& script) {
    std::vector<UseStatement> uses;
    const std::vector<ScriptToken> tokens = tokensOf(script);
    for (size_t i = 0; i + 1 < tokens.size(); ++i) {
        const ScriptToken& name = tokens[i + 1];
        const bool named = name.quoted || name.text[0].isLetterOrNumber() || name.text[0] == u'_';
        if (tokens[i].is(QLatin1StringView("use")) && tokens[i].depth == 0 && named)
            uses.push_back({name.text, tokens[i].position, tokens[i].line});
    }
    return uses;
}

QStringList createdDatabases(const QString& script) {
    // CREATE DATABASE ENCRYPTION KEY and its like make no database.
    static const QSet<QString> others = {QStringLiteral("ENCRYPTION"), QStringLiteral("AUDIT"),
                                         QStringLiteral("SCOPED")};
    QStringList names;
    const std::vector<ScriptToken> tokens = tokensOf(script);
    for (size_t i = 0; i + 2 < tokens.size(); ++i) {
        const ScriptToken& name = tokens[i + 2];
        if (!tokens[i].is(QLatin1StringView("create")) ||
            !tokens[i + 1].is(QLatin1StringView("database")))
            continue;
        if (!name.quoted && others.contains(name.text.toUpper()) && i + 3 < tokens.size() &&
            (tokens[i + 3].is(QLatin1StringView("key")) ||
             tokens[i + 3].is(QLatin1StringView("specification")) ||
             tokens[i + 3].is(QLatin1StringView("credential"))))
            continue;
        if (!names.contains(name.text, Qt::CaseInsensitive)) names.push_back(name.text);
    }
    return names;
}

std::vector<ScriptBatch> splitBatches(const QString& script) {
    std::vector<ScriptBatch> batches;
    ScriptLineState state;
    qsizetype batchStart = 0;
    int batchLine = 1;
    int line = 1;
    const auto finish = [&](qsizetype end, int repeat, int goLine) {
        const QString text = script.mid(batchStart, end - batchStart);
        if (!text.trimmed().isEmpty()) batches.push_back({text, batchLine, repeat, goLine});
    };
    for (qsizetype at = 0; at < script.size(); ++line) {
        const auto [text, length] = scriptLineAt(script, at);
        const std::optional<int> count = state.isOpen() ? std::nullopt : goCount(text);
        if (count) {
            finish(at, *count, line);
            batchStart = at + length;
            batchLine = line + 1;
        } else {
            ScriptLineScanner scanner(text, state);
            while (!scanner.atEnd()) scanner.step();
        }
        at += length;
    }
    finish(script.size(), 1, 0);
    return batches;
}

}  // namespace zov
