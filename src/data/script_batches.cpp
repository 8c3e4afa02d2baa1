#include "data/script_batches.h"

#include <QRegularExpression>

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
            // A doubled quote closes and opens again, which comes to the same.
            if (c == state.openQuote) state.openQuote = QChar();
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

std::vector<ScriptBatch> splitBatches(const QString& script) {
    static const QRegularExpression separator(
        QStringLiteral("^\\s*GO(?:\\s+(\\d+))?\\s*;?\\s*(?:--.*|/\\*.*\\*/\\s*)?$"),
        QRegularExpression::CaseInsensitiveOption);
    std::vector<ScriptBatch> batches;
    ScanState state;
    qsizetype batchStart = 0;
    int batchLine = 1;
    int line = 1;
    const auto finish = [&](qsizetype end, int repeat) {
        const QString text = script.mid(batchStart, end - batchStart);
        if (!text.trimmed().isEmpty()) batches.push_back({text, batchLine, repeat});
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
            finish(at, match.hasCaptured(1) ? match.captured(1).toInt() : 1);
            batchStart = next;
            batchLine = line + 1;
        } else {
            scanLine(text, state);
        }
        at = next;
    }
    finish(script.size(), 1);
    return batches;
}

}  // namespace zov
