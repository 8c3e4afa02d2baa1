#include "tools/sql_words.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <unordered_map>

namespace zov {
namespace {

const std::unordered_map<std::string_view, Key>& keys() {
    static const std::unordered_map<std::string_view, Key> table = [] {
        std::unordered_map<std::string_view, Key> all = {
            {"ALL", Key::All},
            {"ALTER", Key::Alter},
            {"AS", Key::As},
            {"ASC", Key::Asc},
            {"BACKUP", Key::Backup},
            {"BEGIN", Key::Begin},
            {"BREAK", Key::Break},
            {"BULK", Key::Bulk},
            {"BY", Key::By},
            {"CASE", Key::Case},
            {"CHECK", Key::Check},
            {"CHECKPOINT", Key::Checkpoint},
            {"CLOSE", Key::Close},
            {"COLLATE", Key::Collate},
            {"COMMIT", Key::Commit},
            {"CONSTRAINT", Key::Constraint},
            {"CONTINUE", Key::Continue},
            {"CREATE", Key::Create},
            {"CROSS", Key::Cross},
            {"CURRENT", Key::Current},
            {"CURSOR", Key::Cursor},
            {"DBCC", Key::Dbcc},
            {"DEALLOCATE", Key::Deallocate},
            {"DECLARE", Key::Declare},
            {"DEFAULT", Key::Default},
            {"DELETE", Key::Delete},
            {"DENY", Key::Deny},
            {"DESC", Key::Desc},
            {"DISTINCT", Key::Distinct},
            {"DROP", Key::Drop},
            {"ELSE", Key::Else},
            {"END", Key::End},
            {"EXCEPT", Key::Except},
            {"EXEC", Key::Exec},
            {"EXECUTE", Key::Exec},
            {"FETCH", Key::Fetch},
            {"FOR", Key::For},
            {"FOREIGN", Key::Foreign},
            {"FROM", Key::From},
            {"FULL", Key::Full},
            {"FUNCTION", Key::Function},
            {"GOTO", Key::Goto},
            {"GRANT", Key::Grant},
            {"GROUP", Key::Group},
            {"HAVING", Key::Having},
            {"IDENTITY_INSERT", Key::IdentityInsert},
            {"IF", Key::If},
            {"INDEX", Key::Index},
            {"INNER", Key::Inner},
            {"INSERT", Key::Insert},
            {"INTERSECT", Key::Intersect},
            {"INTO", Key::Into},
            {"IS", Key::Is},
            {"JOIN", Key::Join},
            {"KILL", Key::Kill},
            {"LEFT", Key::Left},
            {"MERGE", Key::Merge},
            {"NOT", Key::Not},
            {"NULL", Key::Null},
            {"OF", Key::Of},
            {"ON", Key::On},
            {"OPEN", Key::Open},
            {"OPTION", Key::Option},
            {"ORDER", Key::Order},
            {"OUTER", Key::Outer},
            {"OVER", Key::Over},
            {"PERCENT", Key::Percent},
            {"PIVOT", Key::Pivot},
            {"PRIMARY", Key::Primary},
            {"PRINT", Key::Print},
            {"PROC", Key::Proc},
            {"PROCEDURE", Key::Proc},
            {"RAISERROR", Key::Raiserror},
            {"READTEXT", Key::Readtext},
            {"RECONFIGURE", Key::Reconfigure},
            {"REFERENCES", Key::References},
            {"RESTORE", Key::Restore},
            {"RETURN", Key::Return},
            {"REVERT", Key::Revert},
            {"REVOKE", Key::Revoke},
            {"RIGHT", Key::Right},
            {"ROLLBACK", Key::Rollback},
            {"SAVE", Key::Save},
            {"SELECT", Key::Select},
            {"SET", Key::Set},
            {"STATISTICS", Key::Statistics},
            {"TABLE", Key::Table},
            {"TABLESAMPLE", Key::TableSample},
            {"THEN", Key::Then},
            {"TO", Key::To},
            {"TOP", Key::Top},
            {"TRIGGER", Key::Trigger},
            {"TRUNCATE", Key::Truncate},
            {"UNION", Key::Union},
            {"UNIQUE", Key::Unique},
            {"UNPIVOT", Key::Unpivot},
            {"UPDATE", Key::Update},
            {"UPDATETEXT", Key::Updatetext},
            {"USE", Key::Use},
            {"VALUES", Key::Values},
            {"VIEW", Key::View},
            {"WAITFOR", Key::Waitfor},
            {"WHEN", Key::When},
            {"WHERE", Key::Where},
            {"WHILE", Key::While},
            {"WITH", Key::With},
            {"WITHIN", Key::Within},
            {"WRITETEXT", Key::Writetext},
        };
        constexpr std::string_view reserved =
            "ADD AND ANY AUTHORIZATION BETWEEN BROWSE CASCADE CLUSTERED COLUMN COMPUTE "
            "CURRENT_DATE CURRENT_TIME "
            "CURRENT_TIMESTAMP CURRENT_USER DATABASE DISK DISTRIBUTED DOUBLE DUMP ERRLVL ESCAPE "
            "EXISTS EXIT "
            "EXTERNAL FILE FILLFACTOR HOLDLOCK IDENTITYCOL IN KEY LIKE LINENO LOAD NATIONAL "
            "NOCHECK NONCLUSTERED "
            "OFF OFFSETS OR PLAN PRECISION PUBLIC READ REPLICATION RESTRICT ROWCOUNT ROWGUIDCOL "
            "RULE SCHEMA "
            "SECURITYAUDIT SESSION_USER SETUSER SHUTDOWN SOME SYSTEM_USER TEXTSIZE TRAN "
            "TRANSACTION TSEQUAL USER "
            "VARYING ";
        for (size_t at = 0, blank; (blank = reserved.find(' ', at)) != reserved.npos;
             at = blank + 1)
            all.emplace(reserved.substr(at, blank - at), Key::Reserved);
        return all;
    }();
    return table;
}

Key keyOf(QStringView word) {
    std::array<char, 24> upper;
    if (size_t(word.size()) > upper.size()) return Key::None;
    for (qsizetype i = 0; i < word.size(); ++i) {
        const char16_t c = word[i].unicode();
        if (c > 127) return Key::None;
        upper[size_t(i)] = char(c >= u'a' && c <= u'z' ? c - 32 : c);
    }
    const auto found = keys().find(std::string_view(upper.data(), size_t(word.size())));
    return found == keys().end() ? Key::None : found->second;
}

bool beginsName(QChar c) {
    return c.isLetter() || c == u'_' || c == u'#' || c == u'$' || c.isSurrogate();
}
bool continuesName(QChar c) {
    return beginsName(c) || c == u'@' || c.isDigit() || c.isMark() || c.isNumber();
}

class Cutter {
 public:
    Cutter(QStringView text, bool quotedNames) : text_(text), quotedNames_(quotedNames) {}

    SqlText run() {
        result_.words.reserve(size_t(text_.size() / 5 + 8));
        while (skipBlanks()) {
            SqlWord word;
            word.line = line_;
            const qsizetype start = at_;
            read(word);
            word.text = text_.mid(start, at_ - start);
            if (word.kind == WordKind::Name) word.key = keyOf(word.text);
            if (word.isSign(u'(')) open_.push_back(result_.words.size());
            if (word.isSign(u')') && !open_.empty()) {
                result_.words[open_.back()].close = int(result_.words.size());
                open_.pop_back();
            }
            result_.words.push_back(word);
        }
        for (const size_t at : open_) result_.words[at].close = int(result_.words.size());
        return std::move(result_);
    }

 private:
    QChar peek(qsizetype ahead = 0) const {
        return at_ + ahead < text_.size() ? text_[at_ + ahead] : QChar();
    }
    void advance() {
        if (text_[at_] == u'\n') ++line_;
        ++at_;
    }

    /// To the next word; false at the text's end.
    bool skipBlanks() {
        while (at_ < text_.size()) {
            const QChar c = text_[at_];
            if (c.isSpace() || c.unicode() < u' ' || c == QChar(0xFEFF)) {
                advance();
            } else if (c == u'-' && peek(1) == u'-') {
                while (at_ < text_.size() && text_[at_] != u'\n') ++at_;
            } else if (c == u'/' && peek(1) == u'*') {
                skipComment();
            } else {
                return true;
            }
        }
        return false;
    }

    void skipComment() {
        const int start = line_;
        int depth = 0;
        do {
            if (at_ >= text_.size()) {
                result_.openComment = start;
                return;
            }
            const bool opens = peek() == u'/' && peek(1) == u'*';
            if (opens || (peek() == u'*' && peek(1) == u'/')) {
                depth += opens ? 1 : -1;
                at_ += 2;
            } else {
                advance();
            }
        } while (depth > 0);
    }

    void read(SqlWord& word) {
        const QChar c = peek();
        if (c == u'\'') return readQuotation(word, WordKind::String, u'\'');
        if ((c == u'N' || c == u'n') && peek(1) == u'\'') {
            ++at_;
            return readQuotation(word, WordKind::String, u'\'');
        }
        if (c == u'[') return readQuotation(word, WordKind::Quoted, u']');
        if (c == u'"')
            return readQuotation(word, quotedNames_ ? WordKind::Quoted : WordKind::String, u'"');
        const QChar next = peek(1);
        if (c.isDigit() || ((c == u'.' || c == u'$') && next.isDigit())) return readNumber(word);
        if (beginsName(c) || c == u'@') {
            word.kind = c == u'@' ? WordKind::Variable : WordKind::Name;
            while (at_ < text_.size() && (continuesName(text_[at_]) || text_[at_] == u'@')) ++at_;
            return;
        }
        readSign(word, c, next);
    }

    void readSign(SqlWord& word, QChar c, QChar next) {
        word.kind = WordKind::Sign;
        word.sign = c.unicode();
        const bool compares = (next == u'=' && (c == u'<' || c == u'>' || c == u'!')) ||
                              (c == u'<' && next == u'>') ||
                              (c == u'!' && (next == u'<' || next == u'>'));
        if (compares)
            word.sign = CompareSign;
        else if (next == u'=' && QStringView(u"+-*/%&|^").contains(c))
            word.sign = AssignSign;
        else if (c == u':' && next == u':')
            word.sign = DoubleColonSign;
        at_ += word.sign == c.unicode() ? 1 : 2;
    }

    void readQuotation(SqlWord& word, WordKind kind, QChar close) {
        const int start = line_;
        word.kind = kind;
        for (++at_; at_ < text_.size(); advance()) {
            if (text_[at_] != close) continue;
            if (peek(1) != close) {
                ++at_;
                return;
            }
            ++at_;
        }
        result_.openQuotation = start;
    }

    // 12, 1.5, 1e-3, $5, 0xFF
    void readNumber(SqlWord& word) {
        word.kind = WordKind::Number;
        const bool isBinary = peek() == u'0' && (peek(1) == u'x' || peek(1) == u'X');
        const auto belongs = [&](QChar c) {
            if (c.isDigit()) return true;
            if (isBinary) return QStringView(u"xXabcdefABCDEF").contains(c);
            return c == u'.' || c == u'e' || c == u'E' ||
                   ((c == u'+' || c == u'-') && text_[at_ - 1].toLower() == u'e');
        };
        ++at_;
        while (at_ < text_.size() && belongs(text_[at_])) ++at_;
    }

    QStringView text_;
    bool quotedNames_;
    qsizetype at_ = 0;
    int line_ = 1;
    std::vector<size_t> open_;  ///< the "(" that wait for theirs
    SqlText result_;
};

}  // namespace

QString SqlWord::content() const {
    if (kind != WordKind::Quoted && kind != WordKind::String) return text.toString();
    const qsizetype open = text.front() == u'N' || text.front() == u'n' ? 1 : 0;
    const QChar close = text[open] == u'[' ? u']' : text[open];
    QStringView inner = text.mid(open + 1);
    if (inner.endsWith(close)) inner.chop(1);
    QString bare = inner.toString();
    return bare.replace(QString(2, close), QString(close));
}

QSet<QString> wordSet(const char* words) {
    const QStringList list = QString::fromLatin1(words).split(u' ', Qt::SkipEmptyParts);
    return QSet<QString>(list.begin(), list.end());
}

SqlText cutSqlText(QStringView text, bool quotedNames) {
    return Cutter(text, quotedNames).run();
}

}  // namespace zov
