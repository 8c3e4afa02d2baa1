#include "data/script_lines.h"

#include <QRegularExpression>

namespace zov {

ScriptLine scriptLineAt(const QString& script, qsizetype at) {
    const qsizetype lineFeed = script.indexOf(u'\n', at);
    const qsizetype length = (lineFeed < 0 ? script.size() : lineFeed + 1) - at;
    QStringView text = QStringView(script).mid(at, length);
    while (text.endsWith(u'\n') || text.endsWith(u'\r')) text.chop(1);
    return {text, length};
}

std::optional<int> goCount(QStringView line) {
    static const QRegularExpression separator(
        QStringLiteral("^\\s*GO(?:\\s+(\\d+))?\\s*;?\\s*(?:--.*|/\\*.*\\*/\\s*)?$"),
        QRegularExpression::CaseInsensitiveOption);
    if (line.size() < 2 || !line.trimmed().startsWith(u"GO", Qt::CaseInsensitive)) return {};
    const QRegularExpressionMatch match = separator.match(line.toString());
    if (!match.hasMatch()) return {};
    return match.hasCaptured(1) ? match.captured(1).toInt() : 1;  // no 32-bit number gives 0
}

}  // namespace zov
