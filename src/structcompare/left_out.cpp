#include "structcompare/left_out.h"

#include "core/globals.h"
#include "structcompare/modCompareObjects.h"
#include "util/text.h"

#include <algorithm>

namespace zov {
namespace {

QStringList sortedLines(const QString& text) {
    QStringList lines = withLf(text).split(u'\n');
    std::sort(lines.begin(), lines.end());
    return lines;
}

QString folded(const QString& text) {
    return ReplaceNonPrintableChars(Trim(text), QStringLiteral(" "));
}

}  // namespace

QStringList LeftOutOfAccount(ObjectType type, const QString& source, const QString& target) {
    const Globals& settings = globals();
    const QString whiteSpace = QStringLiteral("white space"),
                  letterCase = QStringLiteral("letter case");
    QStringList phrases;
    QString other = target;
    if (type == ObjectType::View) AdjustCreateViewStatements(source, other);
    if (other != target) phrases += QStringLiteral("how the view's first line writes its name");
    if (source == other) return phrases;
    if (settings.gblnIgnoreWhitespace) {
        const bool foldsCase = !settings.gblnCaseSensitive;
        if (folded(source) == folded(other)) return phrases << whiteSpace;
        if (foldsCase && source.toUpper() == other.toUpper()) return phrases << letterCase;
        if (foldsCase && folded(source).toUpper() == folded(other).toUpper())
            return phrases << whiteSpace << letterCase;
    }
    // The tests that go by lines look at the texts as the panes show them.
    if (settings.gblnIgnoreColSeq && sortedLines(source) == sortedLines(target))
        return {QStringLiteral("the order of the lines")};
    if (type == ObjectType::Procedure) {
        phrases = {QStringLiteral("the owner dbo")};
        if (settings.gblnIgnoreComments) phrases += QStringLiteral("comments");
        if (settings.gblnIgnoreWhitespace) phrases += whiteSpace;
        if (!settings.gblnCaseSensitive) phrases += letterCase;
        return phrases;
    }
    return phrases << (type == ObjectType::Table ? QStringLiteral("columns that are ignored")
                                                 : QStringLiteral("what the options ignore"));
}

QString joinedWithAnd(const QStringList& phrases) {
    if (phrases.size() < 2) return phrases.join(QString());
    return phrases.mid(0, phrases.size() - 1).join(QStringLiteral(", ")) + QStringLiteral(" and ") +
           phrases.last();
}

}  // namespace zov
