// T-SQL to SQLite: resolves names against the catalogue, infers types, and writes
// the statement. One Translator serves one statement. Literals that are only
// compared with something become parameters, so that statements of one shape
// share one prepared statement.
#pragma once

#include "data/local/catalog_views.h"
#include "data/local/nesting.h"
#include "data/local/query_ast.h"
#include "data/local/query_cache.h"
#include "data/local/query_collating.h"

#include <deque>
#include <functional>
#include <set>

namespace zov::local {

/// A translated expression.
struct Sql {
    QString text;  ///< empty for a literal or a variable until it is used
    ValueType type;
    Collating collating;                ///< of a text
    const Collation* stored = nullptr;  ///< by which SQLite compares it when nothing is said
    const Expr* literal = nullptr;      ///< a bare literal
    QString variable;                   ///< a bare @variable
    const Expr* source = nullptr;
    /// Of an operator's text without parentheses around it: how tightly it binds, 0 for all others.
    int binding = 0;
};

/// A value's text as it stands, of that type.
Sql plain(QString text, ValueType type);

struct OutputColumn {
    QString name;
    ValueType type;
    Collating collating;
    const Collation* stored = nullptr;
    bool aliased = false;  ///< named in the select list
    QString sql;
};

/// A SELECT in SQLite's dialect. Its columns are named c1, c2 ...
struct TranslatedSelect {
    QString sql;
    std::vector<OutputColumn> columns;
    std::vector<QString> assignments;
};

class Translator {
 public:
    Translator(SessionState& session, const Variables* variables);
    ~Translator();

    TranslatedSelect select(const Select& select);
    Sql expression(const Expr& expr);
    QString condition(const Expr& expr);

    /// Brings a table into the scope of expression() and condition() (UPDATE, DELETE, computed
    /// columns). `bareColumns`: columns are written without the table's alias.
    void addTable(const std::shared_ptr<const QueryTable>& table, const QString& alias,
                  bool bareColumns);
    /// FROM of an UPDATE or DELETE: the sources, and which of them is the target. Returns the text
    /// of FROM and WHERE; `targetAlias` gets the SQLite alias of the target. `translateValues` is
    /// called when the sources are known and before their text is written.
    QString updateSources(const QStringList& target, const Token* token,
                          const std::vector<std::unique_ptr<TableSource>>& from, const Expr* where,
                          std::shared_ptr<const QueryTable>& table, QString& targetAlias,
                          const std::function<void()>& translateValues);
    void addCommonTables(const std::vector<CommonTable>& with);
    /// WITH of all that the statement's text refers to, to be asked for when that is written.
    QString withClause() const;
    /// For statements that can't hold a sub-query, such as a table's own: nothing is cut off.
    void keepWhole() { cutting_ = false; }
    /// The expression as a value of `type`, converted when it isn't one.
    QString converted(Sql value, const ColumnInfo& type, int style = 0, bool tolerant = false);
    /// The text of an expression; a literal is written out.
    QString use(const Sql& sql);

    /// The user's table or view of that name; throws 208.
    std::shared_ptr<const QueryTable> requireTable(const QStringList& path, const Token* token,
                                                   Database** database = nullptr);

    const std::vector<ParameterSource>& parameters() const { return parameters_; }
    /// The tokens that became parameters and whose own text matters no more.
    std::set<int> boundLiterals() const;
    Database& database();
    const std::vector<std::pair<QString, QString>>& attachments() const { return attachments_; }
    bool usesTables() const { return usesTables_; }
    int majorVersion() const { return majorVersion_; }
    SessionState& session() { return session_; }

    // For the functions' rules.
    QString bound(const Sql& sql, const ColumnInfo* target = nullptr);
    QString asText(const Sql& sql);
    QString global(const QString& name);
    QString dateFormatNumber() const;
    QString orderKey(const Sql& sql);
    /// The collation of the database that bare names belong to.
    const Collation* names();
    /// A value's text with what makes SQLite group and sort it by its collation.
    QString sortable(const Sql& sql, const char* statement, int column);

 private:
    struct SourceColumn {
        QString name;
        ValueType type;
        Collating collating;
        const Collation* stored = nullptr;
        bool used = false;
        QString sql;  ///< the column behind the source's alias
    };
    struct Source {
        QString alias;         ///< what references call it
        QString schema;        ///< when it has no alias of its own
        bool ownName = false;  ///< no alias was given: schema.name finds it as well
        QString sqlAlias;
        std::deque<SourceColumn> columns;
        const CatalogView* view = nullptr;
        QString prefix;  ///< of an attached database
        QString body;    ///< what stands in FROM, for all but catalogue views
        bool bare = false;
        bool anyCase = false;  ///< a catalogue view: its columns are found in any case
    };
    struct CommonSource {
        QString sqlName;
        std::vector<OutputColumn> columns;
    };
    struct Scope {
        Scope* outer = nullptr;
        std::deque<Source> sources;
        QHash<QString, CommonSource> common;
    };
    struct Context {  // the database that bare names belong to
        Database* database = nullptr;
    };

    TranslatedSelect selectIn(const Select& select, Scope* outer, bool existsOnly = false);
    TranslatedSelect selectText(const Select& select, Scope* outer, bool existsOnly);
    TranslatedSelect queryExpr(const QueryExpr& expr, Scope* outer, const Select* orders,
                               bool existsOnly);
    TranslatedSelect queryPart(const QueryExpr& part, Scope* outer);
    TranslatedSelect spec(const QuerySpec& spec, Scope* outer, const Select* orders,
                          bool existsOnly, bool inCompound);
    QString limitClause(const Expr* top, const Select* select, Scope& scope);
    QString orderClause(const std::vector<OrderItem>& items, Scope& scope,
                        const std::vector<OutputColumn>& columns, bool compound);
    void commonTables(const std::vector<CommonTable>& with, Scope& scope);

    void addSources(const TableSource& source, Scope& scope);
    void addNamed(const TableSource& source, Scope& scope);
    void addPropertyList(const TableSource& source, Scope& scope);
    void addView(const QueryTable& view, Database* database, Source& source);
    QString fromText(const TableSource& source, Scope& scope, size_t& index,
                     std::vector<QString>& conditions, bool innerOnly);
    QString fromClause(const std::vector<std::unique_ptr<TableSource>>& from, Scope& scope,
                       std::vector<QString>& conditions);
    QString sourceText(Source& source);
    QString prefixFor(Database* database);
    const CommonSource* findCommon(const QString& name, Scope* scope);

    /// How deep the text is that was written since a node of the tree was entered.
    struct Writing {
        bool strict = false;  ///< each part of the node is evaluated whatever the others are
        bool aggregated = false;
        int nesting = 0;            ///< entries of the parser's stack
        int height = 0;             ///< levels of the parsed tree
        std::vector<QString> from;  ///< pieces whose value the text takes out of FROM
    };

    // What SQLite can't nest is cut off and named (query_pieces.cpp).
    Sql translate(const Expr& expr, Scope& scope);
    QString predicate(const Expr& expr, Scope& scope);
    bool mustCut(bool intoStrict) const;
    QString addPiece(const QString& body, const char* hint);
    void cut(Sql& value, bool intoStrict);
    void leaveNode(Writing outer);
    void countStep();
    TranslatedSelect cutSelect(TranslatedSelect select);

    Sql translated(const Expr& expr, Scope& scope);
    Sql column(const Expr& expr, Scope& scope);
    // Chains of operators (query_chains.cpp).
    Sql arithmetic(const Expr& expr, Scope& scope);
    Sql operation(QChar op, Sql a, Sql b);
    Sql dateOperation(QChar op, const Sql& a, const Sql& b);
    QString quotient(QChar op, const Sql& a, const Sql& b, const QString& left,
                     const QString& right, const ValueType& type);
    Sql plus(Sql a, Sql b);
    QString connected(const Expr& expr, Scope& scope);
    static QString joinConditions(std::vector<QString> conditions, const char* word);
    Sql caseExpr(const Expr& expr, Scope& scope);
    Sql cast(const Expr& expr, Scope& scope);
    Sql function(const Expr& expr, Scope& scope);
    Sql nextValue(const Expr& expr);
    Sql aggregate(const Expr& expr, Scope& scope, bool& found);
    Sql windowed(Sql call, const Expr& expr, Scope& scope);
    Sql literal(const Expr& expr);
    Sql variable(const Expr& expr);
    Sql scalarSubquery(const Expr& expr, Scope& scope);
    QString tested(const Expr& expr, Scope& scope);
    QString compare(const QString& op, const Sql& a, const Sql& b);
    void coerce(const Sql& a, const Sql& b, QString& left, QString& right,
                const QString& operation = QStringLiteral("equal to"));
    void collate(const Sql& a, const Sql& b, QString& left, const QString& operation);
    static SourceColumn passedOn(const OutputColumn& column, size_t index);
    SourceColumn storedColumn(const QueryColumn& column);
    bool sameName(const QString& a, const QString& b) { return names()->equal(a, b); }
    QString suffix(const Collation* stored, const Collation* wanted);
    const Collation* namedInQuery(const QString& name);
    void collateCompound(TranslatedSelect& left, const TranslatedSelect& right,
                         TranslatedSelect& result, const QString& operation);
    QString between(const Sql& value, const Sql& low, const Sql& high);
    QString caseOperand(const Sql& operand, const std::vector<Sql>& values,
                        std::vector<QString>& tests);
    QString inList(const Expr& expr, Scope& scope);
    QString numberOf(const Sql& sql);

    friend struct FunctionRules;

    SessionState& session_;
    const Variables* variables_;
    int majorVersion_;
    Context context_;
    Database* main_ = nullptr;
    std::vector<std::pair<QString, QString>> attachments_;  // alias, file
    QHash<QString, QString> attachedNames_;
    std::vector<ParameterSource> parameters_;
    std::set<int> bound_, rendered_;
    int nextAlias_ = 0;
    int viewDepth_ = 0;
    bool usesTables_ = false;
    std::unique_ptr<Scope> root_;
    QString rootWith_;
    QString pieces_;  // cut off and in no WITH yet
    QHash<QString, qint64> pieceSizes_;
    int nextPiece_ = 0;
    Writing writing_;
    int level_ = 0;
    qint64 steps_ = 0;
    bool cutting_ = true;
    // Views' texts, tokens and trees live as long as the statement is in work.
    struct ViewSource {
        QString text;
        std::vector<Token> tokens;
        SelectPtr select;
    };
    std::deque<ViewSource> views_;
};

/// A value as a literal of SQLite.
QString renderValue(const StoredValue& value);
/// Single quotes around, doubled inside.
QString quotedText(const QString& text);

}  // namespace zov::local
