// The text routines as their definitions read, step by step and without any
// thought of speed: what the fast ones in src/ must agree with to the letter.
#pragma once

#include "structcompare/comp_line.h"

#include <QStringList>

namespace zov::literal {

inline void sortArray(std::vector<CompLine>& lines, bool ascending, bool ignoreCase) {
    const auto key = [&](size_t i) {
        return ignoreCase ? lines[i].strText.toLower() : lines[i].strText;
    };
    for (size_t i = 0; i < lines.size(); ++i)
        for (size_t j = 0; j < lines.size(); ++j)
            if (ascending ? key(i) < key(j) : key(i) > key(j)) std::swap(lines[i], lines[j]);
}

inline QString replaceNonPrintable(const QString& text, const QString& replacement) {
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool control = QStringView(u"\r\n\0\t\v", 5).contains(text[i]);
        const bool blank = control || text[i] == u' ';
        if (control)
            result = result + replacement;
        else
            result = result + text[i];
        if (i >= 1 && blank && result.size() >= 2 && result.mid(result.size() - 2, 1) == u" ")
            result = result.left(result.size() - 1);
    }
    return result;
}

inline QString delimitedWord(const QString& text, int wordNumber, const QString& delimiter) {
    qsizetype begin = 1;
    for (int number = 2; number <= wordNumber; ++number)
        begin = text.indexOf(delimiter, begin - 1) + 1 + delimiter.size();
    const qsizetype end = text.indexOf(delimiter, begin - 1) + 1;
    return end == 0 ? text.mid(begin - 1) : text.mid(begin - 1, end - begin);
}

inline QString trimBlanks(QString text) {
    while (text.startsWith(u' ')) text = text.mid(1);
    while (text.endsWith(u' ')) text.chop(1);
    return text;
}

inline bool ignoreWhiteSpace(QString a, QString b, bool caseSensitive) {
    a = trimBlanks(a);
    b = trimBlanks(b);
    if (!caseSensitive) {
        a = a.toUpper();
        b = b.toUpper();
    }
    if (a == b) return true;
    if (a.isEmpty() || b.isEmpty()) return false;
    a = replaceNonPrintable(a, QStringLiteral(" "));
    b = replaceNonPrintable(b, QStringLiteral(" "));
    if (a == b) return true;
    const qsizetype words = a.count(u' ') + 1;
    if (words != b.count(u' ') + 1) return false;
    for (int word = 1; word <= words; ++word)
        if (delimitedWord(a, word, QStringLiteral(" ")) !=
            delimitedWord(b, word, QStringLiteral(" ")))
            return false;
    return true;
}

/// Position from 1, 0 when there is none.
inline qsizetype position(const QString& text, const QString& what, qsizetype from = 1) {
    return text.indexOf(what, from - 1) + 1;
}

inline qsizetype occurrences(QString text, const QString& what) {
    const qsizetype before = text.size();
    text.remove(what);
    return (before - text.size()) / what.size();
}

inline QString stripComments(const QString& whole) {
    const QString open = QStringLiteral("/*");
    const QString dashes = QStringLiteral("--");
    const qsizetype blocks = occurrences(whole, open);
    const qsizetype lines = occurrences(whole, dashes);
    if (blocks == 0 && lines == 0) return whole;

    QString text;
    for (const QChar c : whole) text += c == u'\n' ? QStringLiteral("\r\n") : QString(c);

    const auto behindLineFeed = [&text](qsizetype p) {
        return p > 1 && text.mid(p - 2, 1) == u"\n" ? 2 : 1;
    };
    for (qsizetype round = 1; round <= blocks; ++round) {
        const qsizetype p = position(text, open);
        if (p == 0) break;
        const qsizetype q = position(text, QStringLiteral("*/"), p);
        const qsizetype d = behindLineFeed(p);
        text = text.left(p - d) + text.right(text.size() - q - 1);
    }
    for (qsizetype round = 1; round <= lines; ++round) {
        const qsizetype p = position(text, dashes);
        if (p == 0) break;
        qsizetype q = position(text, QStringLiteral("\r\n"), p);
        if (q == 0) q = position(text, QStringLiteral("\n"), p);
        if (q == 0) q = text.size();
        const qsizetype d = behindLineFeed(p);
        text = text.left(p - d) + text.right(text.size() - q);
    }
    return text;
}

}  // namespace zov::literal
