#include "structcompare/modCompareObjects.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "shell/shell.h"
#include "structcompare/comp_line.h"
#include "structcompare/simple_case.h"
#include "structcompare/sql_marks.h"
#include "structcompare/text_cleaner_errors.h"
#include "util/text.h"

namespace zov {

bool CompareProcs_IgnoreWhiteSpace(const QString& a, const QString& b) {
    return guarded("modCompareObjects", "CompareProcs_IgnoreWhiteSpace", false, [&] {
        QString first = Trim(a);
        QString second = Trim(b);
        if (!globals().gblnCaseSensitive) {
            first = simpleUpper(first);
            second = simpleUpper(second);
        }
        if (first == second) return true;
        if (first.isEmpty() || second.isEmpty()) return false;
        // Walking the two word by word, as the blanks part them, adds nothing to this: the same
        // number of blanks and the same words between them make the same text.
        return ReplaceNonPrintableChars(first, QStringLiteral(" ")) ==
               ReplaceNonPrintableChars(second, QStringLiteral(" "));
    });
}

QString ReplaceNonPrintableChars(const QString& text, const QString& replacement) {
    QString result;
    boxOnError("ReplaceNonPrintableChars", [&] {
        result.reserve(text.size());
        bool first = true;
        for (const QChar c : text) {
            const qsizetype before = result.size();
            bool blank = c == u' ';
            if (c == u'\r' || c == u'\n' || c == u'\0' || c == u'\t' || c == u'\v') {
                result.append(replacement);
                blank = true;
            } else {
                result.append(c);
            }
            if (blank && !first && before > 0 && result.at(before - 1) == u' ') result.chop(1);
            first = false;
        }
    });
    return result;
}

QString GetDelimitedWord_Extended(const QString& text, qint32 wordNumber,
                                  const QString& delimiter) {
    QString word;
    boxOnError("GetDelimitedWord_Extended", [&] {
        qsizetype begin = 0;
        for (qint32 number = 2; number <= wordNumber; ++number) {
            const qsizetype found = text.indexOf(delimiter, begin);
            if (found < 0) return;
            begin = found + delimiter.size();
        }
        const qsizetype end = text.indexOf(delimiter, begin);
        word = end < 0 ? text.mid(begin) : text.mid(begin, end - begin);
    });
    return word;
}

namespace {

/// Where the header of a view ends, from 0; -1 when it isn't seen.
qsizetype headerEnd(const QString& upperCased) {
    qsizetype end = upperCased.indexOf(QStringLiteral("\nAS\n"));
    if (end < 0) end = upperCased.indexOf(QStringLiteral(" AS"));
    if (end < 0) end = upperCased.indexOf(QStringLiteral("\r\nAS\r\n"));
    return end;
}

/// What the beginning of a CREATE VIEW statement says: its view's bare name in capitals, and all
/// else as it is written. Blanks don't count in front of the name, line feeds nowhere, and letter
/// case as it does in the comparison.
struct ViewHead {
    bool isView = false;
    QString name;
    QString rest;
};

QString unquoted(const SqlPiece& piece, const QString& text) {
    QString name = piece.of(text).toString();
    if (piece.mark != SqlMark::Name) return name;
    const QString close = name.startsWith(u'[') ? QStringLiteral("]") : QStringLiteral("\"");
    if (name.size() > 1 && name.endsWith(close)) name.chop(1);
    return name.mid(1).replace(close + close, close);
}

ViewHead readViewHead(const QString& text) {
    ViewHead head;
    enum { BeforeCreate, BehindCreate, BehindView, InName, BehindName } at = BeforeCreate;
    bool partFollows = true;
    for (qsizetype position = 0; position < text.size();) {
        const SqlPiece piece = sqlPieceAt(text, position);
        position = piece.end;
        const QStringView word = piece.of(text);
        if (piece.mark == SqlMark::Blank) {
            if (at >= InName) head.rest += word.toString().remove(u'\n');
            continue;
        }
        const auto is = [&](QLatin1StringView keyword) {
            return piece.mark == SqlMark::None && word.compare(keyword, Qt::CaseInsensitive) == 0;
        };
        if (at == BeforeCreate && is(QLatin1StringView("CREATE"))) {
            at = BehindCreate;
        } else if (at == BehindCreate && is(QLatin1StringView("VIEW"))) {
            at = BehindView;
        } else if (piece.mark != SqlMark::Comment && (at == BehindView || at == InName) &&
                   (partFollows || word == u".")) {
            if (word != u".") head.name = simpleUpper(unquoted(piece, text));
            partFollows = word == u".";
            at = InName;
        } else {
            if (at == InName && piece.mark != SqlMark::Comment) at = BehindName;
            head.rest += word;
        }
    }
    head.isView = at >= InName;
    head.rest = Trim(head.rest);
    if (!globals().gblnCaseSensitive) head.rest = simpleUpper(head.rest);
    return head;
}

}  // namespace

void AdjustCreateViewStatements(const QString& source, QString& target) {
    guardedRun("modCompareObjects", "AdjustCreateViewStatements", [&] {
        constexpr int headLength = 500;
        constexpr int farthestApart = 20;
        if (source == target) return;
        const QString sourceHead = simpleUpper(LTrim(source.left(headLength)));
        const QString targetHead = simpleUpper(LTrim(target.left(headLength)));
        if (sourceHead == targetHead) return;

        const qsizetype sourceEnd = headerEnd(sourceHead);
        const qsizetype targetEnd = headerEnd(targetHead);
        if (sourceEnd < 0 || targetEnd < 0) return;
        if (qAbs(sourceEnd - targetEnd) > farthestApart) return;

        // Heads and replacement take the first character of the header's end with them. What is
        // seen as the end may stand far behind it, in a body of several lines: the heads may differ
        // in how they write the name, and in nothing else.
        const ViewHead sourceView = readViewHead(LTrim(source).left(sourceEnd + 1));
        const ViewHead targetView = readViewHead(LTrim(target).left(targetEnd + 1));
        if (!sourceView.isView || !targetView.isView || sourceView.name != targetView.name ||
            sourceView.rest != targetView.rest)
            return;
        target = LTrim(source).left(sourceEnd + 1) + LTrim(target).mid(targetEnd + 1);
    });
}

namespace {

/// The lines of one pane for the owner test; false, after a box, when the pane can't be read.
bool ownerTestLines(const TextPane& pane, const QString& side, std::vector<CompLine>& lines) {
    bool error = false;
    TXText_ConvTextToArray(pane, lines, error);
    if (error)
        shell().messageBox(
            QStringLiteral("CompareProcs_IgnoreOwnerInName (%1) - error occurred.").arg(side));
    return !error;
}

bool linesPass(const QString& source, const QString& target) {
    return source == target ||
           (globals().gblnIgnoreWhitespace && CompareProcs_IgnoreWhiteSpace(source, target));
}

/// One line pair. `headerSeen` is set by the first differing pair of which one side holds
/// CREATE PROCEDURE, and never cleared: all differing lines behind it may differ by owner too.
bool linesPassWithoutOwner(QString source, QString target, bool& headerSeen) {
    if (globals().gblnIgnoreComments && source != target) {
        source = StripCommentsFromProc(source);
        target = StripCommentsFromProc(target);
    }
    if (!globals().gblnCaseSensitive) {
        source = simpleUpper(source);
        target = simpleUpper(target);
    }
    if (linesPass(source, target)) return true;

    const QString header = QStringLiteral("CREATE PROCEDURE");
    if (simpleUpper(source).contains(header) || simpleUpper(target).contains(header))
        headerSeen = true;
    if (!headerSeen) return false;
    source.remove(QStringLiteral("dbo."), Qt::CaseInsensitive);
    target.remove(QStringLiteral("dbo."), Qt::CaseInsensitive);
    return linesPass(source, target);
}

}  // namespace

bool CompareProcs_IgnoreOwnerInName(const TextPane& source, const TextPane& target) {
    return guarded("modCompareObjects", "CompareProcs_IgnoreOwnerInName", false, [&] {
        std::vector<CompLine> sourceLines, targetLines;
        if (!ownerTestLines(source, QStringLiteral("Source"), sourceLines)) return false;
        if (!ownerTestLines(target, QStringLiteral("Target"), targetLines)) return false;
        if (sourceLines.size() != targetLines.size()) return false;

        bool headerSeen = false;
        for (size_t i = 0; i < sourceLines.size(); ++i)
            if (!linesPassWithoutOwner(sourceLines[i].strText, targetLines[i].strText, headerSeen))
                return false;
        return true;
    });
}

}  // namespace zov
