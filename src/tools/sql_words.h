// A T-SQL text cut into words, for the search for references. Takes whatever a catalogue holds: a
// text that ends inside a quotation is cut as well, and says where that begins.
#pragma once

#include <QSet>
#include <QString>
#include <QStringView>

#include <vector>

namespace zov {

/// What an unquoted word is to the search: a reserved word that it knows, any other reserved word,
/// or none. Reserved words that are always called as functions (CONVERT, COALESCE) are none.
enum class Key : quint8 {
    None,
    Reserved,
    All,
    Alter,
    As,
    Asc,
    Backup,
    Begin,
    Break,
    Bulk,
    By,
    Case,
    Check,
    Checkpoint,
    Close,
    Collate,
    Commit,
    Constraint,
    Continue,
    Create,
    Cross,
    Current,
    Cursor,
    Dbcc,
    Deallocate,
    Declare,
    Default,
    Delete,
    Deny,
    Desc,
    Distinct,
    Drop,
    Else,
    End,
    Except,
    Exec,
    Fetch,
    For,
    Foreign,
    From,
    Full,
    Function,
    Goto,
    Grant,
    Group,
    Having,
    If,
    IdentityInsert,
    Index,
    Inner,
    Insert,
    Intersect,
    Into,
    Is,
    Join,
    Kill,
    Left,
    Merge,
    Not,
    Null,
    Of,
    On,
    Open,
    Option,
    Order,
    Outer,
    Over,
    Percent,
    Pivot,
    Primary,
    Print,
    Proc,
    Raiserror,
    Readtext,
    Reconfigure,
    References,
    Restore,
    Return,
    Revert,
    Revoke,
    Right,
    Rollback,
    Save,
    Select,
    Set,
    Statistics,
    Table,
    TableSample,
    Then,
    To,
    Top,
    Trigger,
    Truncate,
    Union,
    Unique,
    Unpivot,
    Update,
    Updatetext,
    Use,
    Values,
    View,
    Waitfor,
    When,
    Where,
    While,
    With,
    Within,
    Writetext,
};

enum class WordKind : quint8 {
    Name,      ///< a word; `key` tells reserved ones
    Quoted,    ///< [name] or "name"
    Variable,  ///< @x, @@x
    String,
    Number,
    Sign,
};

/// Signs of two characters.
inline constexpr char16_t AssignSign = u'A';       ///< += and its like
inline constexpr char16_t CompareSign = u'C';      ///< <> and its like
inline constexpr char16_t DoubleColonSign = u'D';  ///< ::

struct SqlWord {
    QStringView text;  ///< as written
    int line = 1;      ///< from 1
    int close = 0;     ///< of "(": the index of its ")", or the number of words without one
    WordKind kind = WordKind::Sign;
    Key key = Key::None;
    char16_t sign = 0;  ///< of a Sign of one character; those of two have a letter

    bool isSign(char16_t c) const { return kind == WordKind::Sign && sign == c; }
    /// An unquoted word that is no reserved one, equal in any case.
    bool isWord(const char* word) const {
        return kind == WordKind::Name &&
               text.compare(QLatin1StringView(word), Qt::CaseInsensitive) == 0;
    }
    bool isName() const {
        return kind == WordKind::Quoted || (kind == WordKind::Name && key == Key::None);
    }
    /// As written, but what stands in quotation marks or brackets without them.
    QString content() const;
};

struct SqlText {
    std::vector<SqlWord> words;
    int openQuotation = 0;  ///< the line of a quotation that doesn't end; 0: all end
    int openComment = 0;    ///< the same of a comment
};

/// Comments and blanks are left out. `quotedNames`: whether "x" is a name, as the module's setting
/// QUOTED_IDENTIFIER says; a text otherwise. `text` must outlive the words.
SqlText cutSqlText(QStringView text, bool quotedNames = true);

/// The words of a list with blanks between them.
QSet<QString> wordSet(const char* words);

}  // namespace zov
