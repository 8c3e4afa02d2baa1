#include "data/image/held_statements.h"

#include "data/base/db_error.h"
#include "data/image/image_statements.h"
#include "data/local/catalog_views.h"
#include "data/local/tsql_lexer.h"

#include <QSet>

#include <span>

namespace zov::image {
namespace {

using local::Token;
using local::TokenKind;

/// The columns of each view that are copied, or follow from what is.
struct HeldView {
    const char* schema;  ///< empty for what stands under dbo and sys as well
    const char* name;
    const char* columns;
};
const HeldView views[] = {
    {"", "sysobjects", "name id xtype uid parent_obj crdate refdate"},
    {"", "syscolumns",
     "name id xtype xusertype length colid cdefault domain colorder autoval status prec scale "
     "collation iscomputed isnullable"},
    {"", "systypes", "name xtype xusertype length uid prec scale allownulls"},
    {"", "sysindexes", "id indid name"},
    {"", "sysindexkeys", "id indid colid keyno"},
    {"", "sysreferences", "constid fkeyid rkeyid fkey1 rkey1"},
    {"", "sysforeignkeys", "constid fkeyid rkeyid fkey rkey keyno"},
    {"", "syscomments", "id colid text ctext encrypted"},
    {"", "sysusers", "uid name"},
    {"sys", "objects",
     "name object_id schema_id parent_object_id type type_desc create_date modify_date "
     "is_ms_shipped"},
    {"sys", "schemas", "name schema_id principal_id"},
    {"INFORMATION_SCHEMA", "TABLES", "TABLE_NAME TABLE_SCHEMA"},
    {"INFORMATION_SCHEMA", "VIEWS", "TABLE_NAME TABLE_SCHEMA"},
    {"INFORMATION_SCHEMA", "ROUTINES", "ROUTINE_NAME ROUTINE_SCHEMA"},
    {"INFORMATION_SCHEMA", "SCHEMATA", "SCHEMA_NAME"},
};
const HeldView serverViews[] = {
    {"", "sysdatabases", "name"},
    {"sys", "databases", "name collation_name"},
};

QSet<QString> wordsOf(const char* list) {
    const QStringList words = QString::fromLatin1(list).toUpper().split(u' ');
    return {words.begin(), words.end()};
}

const QSet<QString>& keywords() {
    static const QSet<QString> words = wordsOf(
        "SELECT DISTINCT FROM INNER LEFT OUTER JOIN ON WHERE AND OR NOT IN IS NULL LIKE BETWEEN "
        "CASE WHEN THEN ELSE END ORDER BY ASC DESC AS");
    return words;
}
const QSet<QString>& functions() {
    static const QSet<QString> words = wordsOf(
        "OBJECTPROPERTY INDEXPROPERTY IDENT_SEED IDENT_INCR SCHEMA_NAME OBJECT_SCHEMA_NAME");
    return words;
}

const QSet<QString>& serverFunctions() {
    static const QSet<QString> words =
        wordsOf("SERVERPROPERTY DATABASEPROPERTYEX CONVERT DB_NAME HAS_PERMS_BY_NAME");
    return words;
}
/// Types that a value is converted to.
const QSet<QString>& typeNames() {
    static const QSet<QString> words = wordsOf("NVARCHAR INT");
    return words;
}

const HeldView* findView(std::span<const HeldView> among, const QString& schema,
                         const QString& name) {
    for (const HeldView& view : among) {
        if (name.compare(QLatin1StringView(view.name), Qt::CaseInsensitive) != 0) continue;
        const QLatin1StringView home(view.schema);
        const bool anyHome =
            home.isEmpty() && (schema.isEmpty() || schema == u"DBO" || schema == u"SYS");
        if (anyHome || (!home.isEmpty() && schema.compare(home, Qt::CaseInsensitive) == 0))
            return &view;
    }
    return nullptr;
}

/// Reads one statement's tokens.
class StatementReader {
 public:
    StatementReader(const std::vector<Token>& tokens, HeldStatements::Behind behind)
        : tokens_(tokens), alone_(behind == HeldStatements::Behind::Nobody) {}

    bool isHeld() {
        if (tokens_.empty() || !tokens_.front().is("SELECT")) return false;
        if (!readSources() || (columns_.isEmpty() && !alone_)) return false;
        return std::ranges::all_of(
            tokens_, [&](const Token& token) { return isKnown(size_t(&token - tokens_.data())); });
    }

 private:
    bool at(size_t index, const char* text) const {
        return index < tokens_.size() && tokens_[index].is(text);
    }
    bool isPlainName(size_t index) const {
        return index < tokens_.size() && tokens_[index].isName() &&
               (tokens_[index].kind == TokenKind::Quoted ||
                !keywords().contains(tokens_[index].name().toUpper()));
    }

    /// What stands behind FROM and JOIN: the views, and what they are called.
    bool readSources() {
        for (size_t i = 0; i < tokens_.size(); ++i) {
            if (!at(i, "FROM") && !at(i, "JOIN")) continue;
            size_t name = i + 1;
            if (at(name, "(")) continue;  // what is in there has a FROM of its own
            QString schema;
            if (at(name + 1, ".")) {
                schema = tokens_[name].name().toUpper();
                names_.insert(schema);
                name += 2;
            }
            if (!isPlainName(name) || at(name + 1, ".")) return false;
            const HeldView* view = findView(views, schema, tokens_[name].name());
            if (!view && alone_) view = findView(serverViews, schema, tokens_[name].name());
            if (!view) return false;
            columns_.unite(wordsOf(view->columns));
            names_.insert(tokens_[name].name().toUpper());
            size_t alias = name + 1;
            if (at(alias, "AS")) ++alias;
            if (isPlainName(alias)) names_.insert(tokens_[alias].name().toUpper());
        }
        return true;
    }

    bool isKnownFunction(const QString& name, bool hasArguments) const {
        return (functions().contains(name) && hasArguments) ||
               (alone_ && (serverFunctions().contains(name) || typeNames().contains(name)));
    }

    bool isKnown(size_t index) const {
        const Token& token = tokens_[index];
        // All columns of a view, or several statements.
        if (token.is("*") || token.is(";")) return false;
        if (!token.isName()) return true;
        const QString name = token.name().toUpper();
        if (token.kind == TokenKind::Word && keywords().contains(name)) return true;
        if (at(index + 1, "("))
            return token.kind == TokenKind::Word && isKnownFunction(name, !at(index + 2, ")"));
        // A name for a column of the result: "value AS name", "name = value".
        const bool namesResult =
            index > 0 && (at(index - 1, "AS") || (at(index - 1, ",") && at(index + 1, "=")));
        return namesResult || columns_.contains(name) || names_.contains(name);
    }

    const std::vector<Token>& tokens_;
    const bool alone_;
    QSet<QString> columns_;
    QSet<QString> names_;
};

/// The statement with nothing in its literals, so that a question about each object is one.
QString skeletonOf(const QString& statement) {
    QString skeleton;
    skeleton.reserve(statement.size());
    bool quoted = false, named = false;
    for (const QChar c : statement) {
        if (!named && c == u'\'') quoted = !quoted;
        if (quoted && c != u'\'') continue;
        if (!quoted && c == u'[') named = true;
        if (!quoted && c == u']') named = false;
        if (!named && !quoted && c >= u'0' && c <= u'9' && !skeleton.isEmpty() &&
            (skeleton.back() == u' ' || skeleton.back() == u'0')) {
            if (skeleton.back() != u'0') skeleton += u'0';
            continue;
        }
        skeleton += c;
    }
    return skeleton;
}

/// Empty for a statement that can't be read: the server finds words for it.
std::vector<Token> tokensOf(const QString& statement) {
    try {
        std::vector<Token> tokens = local::tokenize(statement);
        tokens.pop_back();
        return tokens;
    } catch (const DbError&) {
        return {};
    }
}

}  // namespace

bool HeldStatements::contain(const QString& statement) {
    const QString skeleton = skeletonOf(statement);
    const std::lock_guard lock(guard_);
    const auto known = known_.constFind(skeleton);
    if (known != known_.constEnd()) return *known;
    const std::vector<Token> tokens = tokensOf(statement);
    return *known_.insert(skeleton, StatementReader(tokens, behind_).isHeld());
}

bool HeldStatements::readCatalogue(const QString& statement) {
    const std::vector<Token> tokens = tokensOf(statement);
    bool reads = false;
    for (size_t i = 0; i + 1 < tokens.size(); ++i) {
        if (!tokens[i].is("FROM") && !tokens[i].is("JOIN")) continue;
        const bool hasSchema = i + 3 < tokens.size() && tokens[i + 2].is(".");
        const QString schema = hasSchema ? tokens[i + 1].name() : QString();
        const Token& name = tokens[hasSchema ? i + 3 : i + 1];
        if (name.is("(")) continue;
        if (!local::findCatalogView(schema, name.name(), FirstVersion)) return false;
        reads = true;
    }
    return reads;
}

}  // namespace zov::image
