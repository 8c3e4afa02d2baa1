// StripCommentsFromProc of modCompareObjects: block comments first, then line
// comments, each in as many rounds as the text had openers at the start.
//
// A round cuts the first comment out of the whole text. Here the text is kept
// as what lies in front of the cut, where no opener is left, and the untouched
// rest behind it. An opener can only begin in the rest, or be put together at
// the seam by the cut; so all rounds together read the text once.
#include "structcompare/modCompareObjects.h"
#include "structcompare/sql_marks.h"
#include "structcompare/text_cleaner_errors.h"
#include "util/numbered_error.h"

#include <utility>

namespace zov {
namespace {

// An unclosed block comment doubles the text in each of its rounds. A server's text must not be
// able to eat up the memory, so there is an end to it.
constexpr qsizetype longestText = 32 * 1024 * 1024;
constexpr qint32 OutOfStringSpace = 14;

qsizetype countOf(const QString& text, QStringView token) {
    qsizetype count = 0;
    for (qsizetype at = text.indexOf(token); at >= 0; at = text.indexOf(token, at + token.size()))
        ++count;
    return count;
}

// Signs that no text holds stand for those of comments within quoted names: a name is itself,
// whatever it looks like. Two objects would be the same by what stands in front of their comments.
constexpr std::pair<QChar, QChar> Veils[] = {
    {u'-', QChar(0xFDD0)}, {u'/', QChar(0xFDD1)}, {u'*', QChar(0xFDD2)}};

/// The text itself when it has no such names.
QString withVeiledNames(const QString& text) {
    QString veiled = text;
    for (qsizetype at = nextQuotedOrComment(text, 0); at < text.size();) {
        const SqlPiece piece = sqlPieceAt(text, at);
        at = nextQuotedOrComment(text, piece.end);
        if (piece.mark != SqlMark::Name) continue;
        for (qsizetype sign = piece.begin; sign < piece.end; ++sign)
            for (const auto& [shown, veil] : Veils)
                if (text[sign] == shown) veiled[sign] = veil;
    }
    return veiled;
}

void unveil(QString& text) {
    for (const auto& [shown, veil] : Veils) text.replace(veil, shown);
}

QString withDoubledLineEnds(const QString& text) {
    QString result;
    result.reserve(text.size() + text.size() / 16);
    for (const QChar c : text) {
        if (c == u'\n') result.append(u'\r');
        result.append(c);
    }
    return result;
}

/// A text that is being cut: `front` and what follows of `text` from `rest` on.
struct CutText {
    QString text;
    QString front;
    qsizetype rest = 0;

    explicit CutText(QString whole) : text(std::move(whole)) { front.reserve(text.size()); }

    /// Moves to the first opener: it then starts at the end of `front`, with as much of it as
    /// came from there, and `rest` is where the search for its end begins. False when none is left.
    bool findOpener(QStringView opener) {
        openedInFront_ = front.endsWith(opener[0]) && rest < text.size() && text[rest] == opener[1];
        if (openedInFront_) {
            front.chop(1);
            return true;
        }
        const qsizetype at = text.indexOf(opener, rest);
        if (at < 0) return false;
        front.append(QStringView(text).mid(rest, at - rest));
        rest = at;
        return true;
    }
    /// Ends `front` before the comment; a line feed right in front of the comment goes with it.
    void dropLineFeed() {
        if (front.endsWith(u'\n')) front.chop(1);
    }
    QString opened(QStringView opener) const {
        return front + opener.left(openedInFront_ ? 1 : 0).toString() + text.mid(rest);
    }
    QString whole() const { return front + text.mid(rest); }

 private:
    bool openedInFront_ = false;
};

void cutBlockComments(QString& whole, qsizetype rounds) {
    CutText cut(std::exchange(whole, {}));
    const QStringView opener = u"/*";
    for (; rounds > 0 && cut.findOpener(opener); --rounds) {
        const qsizetype close = cut.text.indexOf(u"*/", cut.rest);
        if (close >= 0) {
            cut.dropLineFeed();
            cut.rest = close + 2;
            continue;
        }
        // Not closed: the part in front of the comment is kept, and behind it comes the whole text
        // once more, less its first character.
        whole = cut.opened(opener);
        cut.dropLineFeed();
        if (cut.front.size() == 1) return;  // The same text again, whatever rounds are left.
        if (cut.front.size() + whole.size() > longestText)
            throw NumberedError(OutOfStringSpace, QStringLiteral("Out of string space"));
        cut = CutText(cut.front + whole.mid(1));
    }
    whole = cut.whole();
}

void cutLineComments(QString& whole, qsizetype rounds) {
    CutText cut(std::exchange(whole, {}));
    bool moreCrLf = true;
    for (; rounds > 0 && cut.findOpener(u"--"); --rounds) {
        cut.dropLineFeed();
        const qsizetype crLf = moreCrLf ? cut.text.indexOf(u"\r\n", cut.rest) : -1;
        moreCrLf = crLf >= 0;
        if (moreCrLf) {
            cut.rest = crLf + 1;  // The line feed stays.
            continue;
        }
        const qsizetype lineFeed = cut.text.indexOf(u'\n', cut.rest);
        cut.rest = lineFeed >= 0 ? lineFeed + 1 : cut.text.size();
    }
    whole = cut.whole();
}

}  // namespace

QString StripCommentsFromProc(const QString& text) {
    if (!text.contains(u"/*") && !text.contains(u"--")) return text;

    QString result = text;
    boxOnError("StripCommentsFromProc", [&] {
        const QString veiled = withVeiledNames(text);
        const qsizetype blocks = countOf(veiled, u"/*");
        const qsizetype lines = countOf(veiled, u"--");
        if (blocks == 0 && lines == 0) return;
        result = withDoubledLineEnds(veiled);
        cutBlockComments(result, blocks);
        if (lines > 0) cutLineComments(result, lines);
        if (!veiled.isSharedWith(text)) unveil(result);
    });
    return result;
}

}  // namespace zov
