#include "structcompare/line_differences.h"

#include "core/globals.h"
#include "structcompare/modCompareObjects.h"
#include "structcompare/simple_case.h"
#include "util/text.h"

namespace zov {
namespace {

/// One text on its way, with its list.
struct Side {
    QString text;
    QString list;
    bool listed = false;
    qsizetype position = 0;  ///< of the last break's carriage return, from 1; 0 at the start
    qsizetype before = 0;    ///< `position` before the line taken last

    Side(const QString& whole, const QString& heading) : text(whole), list(heading) {
        if (!text.endsWith(CRLF)) text += CRLF;
    }
    /// False when no break follows. The search skips one character: at the start of the text that
    /// hides a break in its very first place, later it is the line feed of the break before.
    bool takeLine(QString& line) {
        before = position;
        const qsizetype found = text.indexOf(CRLF, position + 1) + 1;
        if (found == 0) return false;
        line = text.mid(position, found - position - 1);
        position = found;
        return true;
    }
    void add(const QString& line) {
        list += line + CRLF;
        listed = true;
    }
};

}  // namespace

bool AreLinesEqualIgnoringComma(const QString& a, const QString& b) {
    const auto withoutComma = [](const QString& line) {
        return Trim(line.endsWith(u',') ? QStringView(line).chopped(1) : QStringView(line));
    };
    return a == b || withoutComma(a) == withoutComma(b);
}

void ListLineDifferences(const QString& sourceText, const QString& targetText, QString& result) {
    result.clear();
    if (sourceText == targetText) return;
    Side source(sourceText, QStringLiteral("Differences in Source:") + CRLF);
    Side target(targetText, QStringLiteral("Differences in Target:") + CRLF);

    const QString blank = QStringLiteral(" ");
    for (;;) {
        QString sourceLine, targetLine;
        // The rest of the other text begins behind the line feed of its last break. Where no line
        // was taken yet there is none, and the text's first character is passed over in its place.
        if (!source.takeLine(sourceLine)) {
            target.add(target.text.mid(target.position + 1));
            break;
        }
        if (!target.takeLine(targetLine)) {
            source.add(source.text.mid(source.before + 1));
            break;
        }
        if (!globals().gblnCaseSensitive) {
            sourceLine = simpleUpper(sourceLine);
            targetLine = simpleUpper(targetLine);
        }
        if (sourceLine != targetLine && globals().gblnIgnoreWhitespace) {
            sourceLine = ReplaceNonPrintableChars(sourceLine, blank);
            targetLine = ReplaceNonPrintableChars(targetLine, blank);
        }
        if (sourceLine != targetLine && !AreLinesEqualIgnoringComma(sourceLine, targetLine)) {
            source.add(sourceLine);
            target.add(targetLine);
        }
    }

    if (source.listed && target.listed)
        result = source.list + CRLF + target.list;
    else
        result = source.listed ? source.list : target.list;
}

}  // namespace zov
