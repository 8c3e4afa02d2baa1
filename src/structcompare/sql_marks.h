// Where quoted names, literals and comments stand in a T-SQL text: as much of the
// language as is needed to tell a name from what looks like something else.
#pragma once

#include <QString>

namespace zov {

enum class SqlMark {
    None,     ///< words, numbers and signs
    Blank,    ///< white space
    Literal,  ///< '...'
    Name,     ///< [...] or "..."
    Comment,  ///< -- to the line's end, or /* ... */, which nest
};

/// A piece of a text; pieces follow each other without a gap.
struct SqlPiece {
    SqlMark mark = SqlMark::None;
    qsizetype begin = 0, end = 0;
    QStringView of(const QString& text) const { return QStringView(text).mid(begin, end - begin); }
};

/// The piece that begins at a position of the text; what isn't closed goes to the text's end. Words
/// and numbers are one piece each, any other sign is one of its own.
SqlPiece sqlPieceAt(const QString& text, qsizetype begin);

/// Where the next literal, quoted name or comment begins, from a position on that is in none; the
/// text's end when there is none.
qsizetype nextQuotedOrComment(const QString& text, qsizetype from);

}  // namespace zov
