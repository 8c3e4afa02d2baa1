#include "data/script_batches.h"

#include "data/script_tokens.h"

#include <QRegularExpression>
#include <QSet>

namespace zov {
namespace {

// Where a line leaves the scanner: inside a block comment, or inside a quote that spans lines.
struct ScanState {
    int commentDepth = 0;
    QChar openQuote;  // the character that ends it; null outside of quotes

    bool isOpen() const { return commentDepth > 0 || !openQuote.isNull(); }
};

void scanLine(QStringView line, ScanState& state) {
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar c = line[i];
        const QChar next = i + 1 < line.size() ? line[i + 1] : QChar();
        if (!state.openQuote.isNull()) {
            // A doubled quote closes and opens again, which comes to the same; "]]" would only
            // close.
            if (c == u']' && next == u']' && state.openQuote == u']')
                ++i;
            else if (c == state.openQuote)
                state.openQuote = QChar();
        } else if (c == u'/' && next == u'*') {
            ++state.commentDepth;
            ++i;
        } else if (state.commentDepth > 0) {
            if (c == u'*' && next == u'/') {
                --state.commentDepth;
                ++i;
            }
        } else if (c == u'-' && next == u'-') {
            return;
        } else if (c == u'\'' || c == u'"') {
            state.openQuote = c;
        } else if (c == u'[') {
            state.openQuote = u']';
        }
    }
}

}  // namespace

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
    static const QRegularExpression separator(
        QStringLiteral("^\\s*GO(?:\\s+(\\d+))?\\s*;?\\s*(?:--.*|/\\*.*\\*/\\s*)?$"),
        QRegularExpression::CaseInsensitiveOption);
    std::vector<ScriptBatch> batches;
    ScanState state;
    qsizetype batchStart = 0;
    int batchLine = 1;
    int line = 1;
    const auto finish = [&](qsizetype end, int repeat, int goLine) {
        const QString text = script.mid(batchStart, end - batchStart);
        if (!text.trimmed().isEmpty()) batches.push_back({text, batchLine, repeat, goLine});
    };
    for (qsizetype at = 0; at < script.size(); ++line) {
        qsizetype next = script.indexOf(u'\n', at);
        next = next < 0 ? script.size() : next + 1;
        QStringView text = QStringView(script).mid(at, next - at);
        while (text.endsWith(u'\n') || text.endsWith(u'\r')) text.chop(1);
        const bool candidate = !state.isOpen() && text.size() >= 2 &&
                               text.trimmed().startsWith(u"GO", Qt::CaseInsensitive);
        const QRegularExpressionMatch match =
            candidate ? separator.match(text.toString()) : QRegularExpressionMatch();
        if (match.hasMatch()) {
            // What is no 32-bit number gives 0.
            finish(at, match.hasCaptured(1) ? match.captured(1).toInt() : 1, line);
            batchStart = next;
            batchLine = line + 1;
        } else {
            scanLine(text, state);
        }
        at = next;
    }
    finish(script.size(), 1, 0);
    return batches;
}

}  // namespace zov
