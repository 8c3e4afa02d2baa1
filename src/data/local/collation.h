// Collations: which texts are equal and in what order they come. A name of SQL Server's is read
// into rules (collation_names), and the rules are carried out by ICU; plain ASCII text takes a
// shorter way to the same answer. Collations are made once a process and never go; any thread may
// use them.
//
// Where SQL Server has two answers one was chosen: punctuation sorts as in ICU's root order for
// varchar and nvarchar alike, and "-" and "'" are letters like others, neither skipped as in the
// Windows order of words nor placed by the code page as in the SQL_ order of varchar.
#pragma once

#include <QString>
#include <QStringView>

#include <memory>
#include <vector>

namespace zov::local {

/// The collation of the server: of databases and columns that name no other.
inline constexpr const char* DefaultCollation = "SQL_Latin1_General_CP1_CI_AS";

/// What a collation's name says.
struct CollationRules {
    QString name;             ///< in the server's spelling; as it was given when it isn't known
    bool known = false;       ///< false: the rest is what is used for it
    const char* locale = "";  ///< ICU's, "" for the root
    int lcid = 1033;
    int codePage = 1252;
    int version = 0;      ///< as COLLATIONPROPERTY counts: 0, 1 (_90), 2 (_100), 3 (_140)
    bool binary = false;  ///< _BIN and _BIN2: by code point
    bool binary2 = false;
    bool caseSensitive = false;
    bool accentSensitive = true;
    bool kanaSensitive = false;
    bool widthSensitive = false;
    bool utf8 = false;
    bool supplementary = false;
};

/// Reads a name in any case of letters. An unknown one gets the rules that its suffixes tell
/// (_CS, _AI, _BIN ...) in the root's order; nothing in it at all is the default collation's.
CollationRules readCollationName(const QString& name);
/// The known collation whose rules an unknown one was given.
QString substituteName(const CollationRules& rules);
/// The names that are known, for fn_helpcollations: designators with the usual suffixes.
std::vector<CollationRules> listCollations();
/// COLLATIONPROPERTY's ComparisonStyle.
int comparisonStyle(const CollationRules& rules);

class Collation {
 public:
    /// Never null; empty is the default collation. The same pointer for the same rules' name.
    static const Collation* named(const QString& name);
    static const Collation* standard();

    const CollationRules& rules() const { return rules_; }
    const QString& name() const { return rules_.name; }
    bool isStandard() const { return this == standard(); }
    /// Names that differ in case only are two names.
    bool tellsCase() const { return rules_.binary || rules_.caseSensitive; }
    /// "NOCASE" for the default collation, else the quoted name: what stands behind COLLATE in
    /// SQLite. Files hold NOCASE for what has the default collation, so that other programs can
    /// read them.
    const QString& sqlName() const { return sqlName_; }

    /// UTF-8 texts; blanks at the end don't count. Below 0, 0, above 0.
    int compare(const char* a, int lengthA, const char* b, int lengthB) const;
    int compare(const QString& a, const QString& b) const;
    bool equal(const QString& a, const QString& b) const { return compare(a, b) == 0; }
    /// One letter against another, as LIKE does; blanks count.
    int compareLetters(QStringView a, QStringView b) const;
    /// Two names with one key are the same name. (Not the other way round beyond ASCII.)
    QString key(const QString& name) const;
    /// Where `what` is first found in `text` from `from` on; `length` gets how many units of the
    /// text it covers. -1 when nowhere. An empty text is never found.
    qsizetype find(const QString& text, const QString& what, qsizetype from,
                   qsizetype& length) const;

    /// What the order of indexes depends on beside the rules; kept in each file.
    static QString sortingVersion();

    ~Collation();
    Collation(const Collation&) = delete;
    Collation& operator=(const Collation&) = delete;

 private:
    struct Icu;
    explicit Collation(CollationRules rules);
    int compareByIcu(const char* a, int lengthA, const char* b, int lengthB) const;

    CollationRules rules_;
    QString sqlName_;
    std::unique_ptr<Icu> icu_;
    bool asciiAlone_ = false;           ///< ASCII text needs no ICU
    unsigned char primary_[256] = {};   ///< rank of a letter; 0: ask ICU
    unsigned char tertiary_[256] = {};  ///< rank among the forms of a letter
};

}  // namespace zov::local
