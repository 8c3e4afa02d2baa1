#include "data/script_tokens.h"

#include <QRegularExpression>

namespace zov {
namespace {

/// Behind the block comment that was opened in front of `at`; comments nest.
qsizetype endOfComment(const QString& script, qsizetype at) {
    for (int open = 1; open > 0 && at < script.size(); ++at) {
        const QStringView two = QStringView(script).mid(at, 2);
        if (two == u"/*" || two == u"*/") {
            open += two == u"/*" ? 1 : -1;
            ++at;
        }
    }
    return at;
}

}  // namespace

std::vector<ScriptToken> tokensOf(const QString& script) {
    static const QRegularExpression token(
        QStringLiteral("--[^\\n]*|'[^']*+(?:''[^']*+)*+'|\\[([^\\]]*+(?:\\]\\][^\\]]*+)*+)\\]|\"((?"
                       ":[^\"]|\"\")*)\"|("
                       "[\\w@#$]+)|/\\*|[^\\s]"));
    std::vector<ScriptToken> tokens;
    int depth = 0, line = 1;
    qsizetype counted = 0;
    for (qsizetype at = 0; at < script.size();) {
        const QRegularExpressionMatch match = token.match(script, at);
        if (!match.hasMatch()) break;
        at = match.capturedEnd();
        const QStringView text = match.capturedView();
        if (text == u"/*") {
            at = endOfComment(script, at);
            continue;
        }
        if (text.startsWith(u"--") || text.startsWith(u'\'')) continue;
        if (text == u")") --depth;
        line += int(QStringView(script).mid(counted, match.capturedStart() - counted).count(u'\n'));
        counted = match.capturedStart();
        ScriptToken one{text.toString(),    false, match.capturedStart(), line, depth,
                        match.capturedEnd()};
        for (const int group : {1, 2}) {
            if (!match.hasCaptured(group)) continue;
            const QChar close = group == 1 ? u']' : u'"';
            one.quoted = true;
            one.text = match.captured(group).replace(QString(2, close), QString(close));
        }
        if (text == u"(") ++depth;
        tokens.push_back(std::move(one));
    }
    return tokens;
}

}  // namespace zov
