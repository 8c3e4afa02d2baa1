#include "structcompare/sql_marks.h"

namespace zov {
namespace {

/// Behind the closing sign; a doubled one is part of what is quoted.
qsizetype endOfQuoted(const QString& text, qsizetype begin, QChar close) {
    for (qsizetype at = begin + 1; at < text.size(); ++at) {
        if (text[at] != close) continue;
        if (at + 1 < text.size() && text[at + 1] == close)
            ++at;
        else
            return at + 1;
    }
    return text.size();
}

qsizetype endOfBlockComment(const QString& text, qsizetype begin) {
    int depth = 0;
    for (qsizetype at = begin; at + 1 < text.size(); ++at) {
        const QStringView two = QStringView(text).mid(at, 2);
        if (two == u"/*") {
            ++depth;
            ++at;
        } else if (two == u"*/") {
            ++at;
            if (--depth == 0) return at + 1;
        }
    }
    return text.size();
}

bool isWordSign(QChar c) {
    return c.isLetterOrNumber() || c == u'_' || c == u'@' || c == u'#' || c == u'$' ||
           c.isSurrogate();
}

}  // namespace

SqlPiece sqlPieceAt(const QString& text, qsizetype begin) {
    const QChar c = text[begin];
    const QStringView two = QStringView(text).mid(begin, 2);
    if (c == u'\'') return {SqlMark::Literal, begin, endOfQuoted(text, begin, u'\'')};
    if (c == u'"') return {SqlMark::Name, begin, endOfQuoted(text, begin, u'"')};
    if (c == u'[') return {SqlMark::Name, begin, endOfQuoted(text, begin, u']')};
    if (two == u"/*") return {SqlMark::Comment, begin, endOfBlockComment(text, begin)};
    if (two == u"--") {
        const qsizetype lineEnd = text.indexOf(u'\n', begin);
        return {SqlMark::Comment, begin, lineEnd < 0 ? text.size() : lineEnd};
    }
    const auto run = [&](SqlMark mark, auto belongs) {
        qsizetype end = begin + 1;
        while (end < text.size() && belongs(text[end])) ++end;
        return SqlPiece{mark, begin, end};
    };
    if (c.isSpace()) return run(SqlMark::Blank, [](QChar next) { return next.isSpace(); });
    if (isWordSign(c)) return run(SqlMark::None, isWordSign);
    return {SqlMark::None, begin, begin + 1};
}

qsizetype nextQuotedOrComment(const QString& text, qsizetype from) {
    const QStringView signs(text);
    for (qsizetype at = from; at < signs.size(); ++at) {
        switch (signs[at].unicode()) {
            case u'\'':
            case u'"':
            case u'[':
                return at;
            case u'-':
            case u'/':
                if (at + 1 < signs.size() &&
                    signs[at + 1] == (signs[at] == u'-' ? QChar(u'-') : QChar(u'*')))
                    return at;
                break;
            default:
                break;
        }
    }
    return text.size();
}

}  // namespace zov
