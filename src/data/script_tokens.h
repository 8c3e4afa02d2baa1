// The words of a T-SQL text, without its comments and strings.
#pragma once

#include <QString>

#include <vector>

namespace zov {

/// A word, a quoted name or a mark of a script, outside of comments and strings.
struct ScriptToken {
    QString text;
    bool quoted = false;
    qsizetype position = 0;
    int line = 1;
    int depth = 0;      ///< of parentheses around it
    qsizetype end = 0;  ///< behind its last character

    bool is(QLatin1StringView word) const {
        return !quoted && text.compare(word, Qt::CaseInsensitive) == 0;
    }
};

std::vector<ScriptToken> tokensOf(const QString& script);

}  // namespace zov
