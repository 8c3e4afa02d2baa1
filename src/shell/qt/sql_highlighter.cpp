#include "shell/qt/sql_highlighter.h"

#include <QSet>

namespace zov::qt {
namespace {

// Where a line leaves off, as the next one's starting state.
enum State { Code = 0, InString = 1, InComment = 2 };

const QSet<QString>& keywords() {
    static const QSet<QString> words = [] {
        const QString list = QStringLiteral(
            "add all alter and any as asc authorization begin between break by cascade case catch "
            "check "
            "close clustered coalesce collate column commit constraint continue create cross "
            "current cursor "
            "database deallocate declare default delete deny desc distinct drop else encryption "
            "end escape "
            "except exec execute exists fetch for foreign from full function go grant group having "
            "identity "
            "if in index inner insert instead intersect into is join key left like merge nocheck "
            "nocount "
            "nonclustered not null nullif of off on open option or order outer output over percent "
            "persisted "
            "pivot primary print proc procedure raiserror read references replication return "
            "returns revoke "
            "right rollback rule save schema schemabinding select set some table then throw to top "
            "tran "
            "transaction trigger truncate try union unique update use user values view waitfor "
            "when where "
            "while with bigint binary bit char date datetime datetime2 datetimeoffset decimal "
            "float image int "
            "money nchar ntext numeric nvarchar real smalldatetime smallint smallmoney sql_variant "
            "sysname "
            "text time timestamp tinyint uniqueidentifier varbinary varchar xml");
        const QStringList split = list.split(u' ');
        return QSet<QString>(split.begin(), split.end());
    }();
    return words;
}

bool isWordCharacter(QChar c) {
    return c.isLetterOrNumber() || c == u'_' || c == u'@' || c == u'#' || c == u'$';
}

}  // namespace

SqlHighlighter::SqlHighlighter(QTextDocument* document) : QSyntaxHighlighter(document) {
    setDark(false);
}

void SqlHighlighter::setDark(bool dark) {
    keyword_.setForeground(QColor(dark ? 0x8CC4FF : 0x0029A0));
    keyword_.setFontWeight(QFont::DemiBold);
    string_.setForeground(QColor(dark ? 0xE8B088 : 0x8F1010));
    comment_.setForeground(QColor(dark ? 0x9CCB9C : 0x11501A));
    comment_.setFontItalic(true);
    number_.setForeground(QColor(dark ? 0xB5CEA8 : 0x5E2A80));
    name_.setForeground(QColor(dark ? 0xD0D0F0 : 0x3B3B6D));
    rehighlight();
}

void SqlHighlighter::highlightBlock(const QString& text) {
    setCurrentBlockState(Code);
    qsizetype at = 0;
    const auto paint = [&](qsizetype end, const QTextCharFormat& format) {
        setFormat(int(at), int(end - at), format);
        at = end;
    };
    // From `from` on to behind `close`, or over the line's end into the next one.
    const auto paintTo = [&](const QString& close, qsizetype from, State open,
                             const QTextCharFormat& format) {
        const qsizetype end = text.indexOf(close, from);
        if (end < 0) setCurrentBlockState(open);
        paint(end < 0 ? text.size() : end + close.size(), format);
    };
    if (previousBlockState() == InComment) paintTo(QStringLiteral("*/"), 0, InComment, comment_);
    if (previousBlockState() == InString) paintTo(QStringLiteral("'"), 0, InString, string_);
    while (at < text.size()) {
        const QChar c = text[at];
        const QChar next = at + 1 < text.size() ? text[at + 1] : QChar();
        if (c == u'-' && next == u'-') {
            paint(text.size(), comment_);
        } else if (c == u'/' && next == u'*') {
            paintTo(QStringLiteral("*/"), at + 2, InComment, comment_);
        } else if (c == u'\'') {
            paintTo(QStringLiteral("'"), at + 1, InString, string_);
        } else if (c == u'[') {
            const qsizetype end = text.indexOf(u']', at);
            paint(end < 0 ? text.size() : end + 1, name_);
        } else if (c.isDigit()) {
            qsizetype end = at;
            while (end < text.size() && (text[end].isLetterOrNumber() || text[end] == u'.')) ++end;
            paint(end, number_);
        } else if (isWordCharacter(c)) {
            qsizetype end = at;
            while (end < text.size() && isWordCharacter(text[end])) ++end;
            if (keywords().contains(text.mid(at, end - at).toLower()))
                paint(end, keyword_);
            else
                at = end;
        } else {
            ++at;
        }
    }
}

}  // namespace zov::qt
