// The walk through one module's text behind FindMissingReferences. Statements are taken one after
// the other, without a stack; what stands in parentheses is gone into. Columns are looked up at the
// end of the query that they stand in, since FROM comes behind them.
#pragma once

#include "tools/database_names.h"
#include "tools/missing_reference.h"
#include "tools/sql_words.h"

#include <initializer_list>

namespace zov {

/// Parentheses within parentheses: no server takes a statement that goes deeper.
inline constexpr int DeepestNesting = 500;

class ReferenceWalk {
 public:
    ReferenceWalk(const ModuleText& module, const DatabaseNames& names, const SqlText& text);
    /// In the order of the text.
    std::vector<MissingReference> run();
    /// Whether parentheses went deeper than any server takes them, and weren't gone into.
    bool isTooDeep() const { return isTooDeep_; }

 private:
    /// A name of up to four parts; "db..t" has an empty one.
    struct Name {
        QStringList parts;
        QString written;
        size_t at = 0;      ///< its first word
        bool star = false;  ///< ends in ".*"
        QString last() const { return parts.isEmpty() ? QString() : parts.back(); }
    };
    /// What a FROM makes visible. Without an object its columns aren't known.
    struct Source {
        QString exposed;  ///< folded: its alias, or its name
        const NamedObject* object = nullptr;
        bool byNameOnly =
            false;  ///< inserted and deleted of an OUTPUT: never meant by a bare column
        bool has(const QString& column) const {
            return !object || object->columns.isEmpty() || object->columns.contains(column);
        }
        bool isKnown() const { return object && !object->columns.isEmpty(); }
    };
    struct ColumnUse {
        Name name;
        bool inOrder = false;   ///< the query's own output names count as well
        bool ofTarget = false;  ///< it is written to: the statement's target must have it
        bool sawSources = false;
        QString owner;  ///< of the sources looked through: the only one
    };
    struct Scope {
        explicit Scope(Scope* parent) : parent(parent) {}
        Scope* parent;
        std::vector<Source> sources;
        std::vector<ColumnUse> uses;
        QSet<QString> outputs;
        int target = -1;        ///< among the sources
        bool isOpaque = false;  ///< columns may come from where they can't be known
    };
    /// How an expression is read.
    struct Mode {
        bool inside = false;    ///< in parentheses: nothing but its end stops it
        bool outputs = false;   ///< a select list: names behind an expression are aliases
        bool assigns = false;   ///< SET: what stands left of "=" is a column of the target
        bool inOrder = false;   ///< ORDER BY
        bool inWindow = false;  ///< OVER (...)
        bool stopsAtComma = false;
        bool stopsAtAs = false;  ///< CAST(... AS
        bool stopsAtOutput = false;
    };

    // Words.
    bool more(size_t end) const { return at_ < end; }
    const SqlWord& word(size_t ahead = 0) const;
    Key key(size_t ahead = 0) const { return word(ahead).key; }
    bool skip(Key key);
    bool skipSign(char16_t sign);
    bool skipWord(const char* text);
    void skipParenthesis();
    /// The name at hand; none: nothing is skipped.
    bool name(Name& name);
    bool isAnyWord(size_t ahead, std::initializer_list<const char*> texts) const;

    // Statements.
    void statements(size_t end);
    void statement(size_t end);
    void header(size_t end);
    void parameters(size_t end);
    void returnType(size_t end);
    void declare(size_t end);
    void create(size_t end, bool alters);
    void alterTable(size_t end);
    void execute(size_t end);
    void grant(size_t end);
    void set(size_t end);
    void commonTables(size_t end);
    bool atCommonTables() const;
    void columnDefinitions();
    void typeReference();

    // Statements that change rows.
    void insert(size_t end);
    void update(size_t end);
    void deleteRows(size_t end);
    void changeRows(size_t end, bool deletes);
    void merge(size_t end);
    void mergeActions(size_t end, Scope& scope);
    void outputClauses(size_t end, Scope& scope);
    void targetColumns(Scope& scope);
    void rowsSource(size_t end);
    Name rowsTarget();
    void settleTarget(const Name& name, Scope& scope);
    void addInsertedDeleted(Scope& scope);
    void skipTop(Scope* scope);
    void hints();

    // Queries.
    void query(size_t end, Scope* parent);
    void select(size_t end, Scope* parent, bool inUnion);
    bool selectClause(size_t end, Scope& scope, bool inUnion);
    void orderBy(size_t end, Scope* scope);
    void forClause(size_t end);
    void sources(size_t end, Scope& scope);
    bool joinWords(bool& applies);
    void source(size_t end, Scope& scope, bool applies);
    void parenthesisedSource(Scope& scope, bool applies, Source& source);
    void namedSource(Scope& scope, Source& source);
    void rowsetArguments(const Name& name, Scope& scope);
    void sourceTail(Scope& scope, Source& source);
    void systemTime();
    bool alias(Source& source);
    bool isDerivedTable() const;

    // Expressions.
    void expression(size_t end, Scope* scope, Mode mode);
    struct ExpressionState;
    bool keyword(size_t end, Scope* scope, const Mode& mode, ExpressionState& state);
    bool sign(Scope* scope, const Mode& mode, ExpressionState& state);
    bool nameInExpression(Scope* scope, const Mode& mode, ExpressionState& state);
    bool stops(const Mode& mode, const ExpressionState& state) const;
    void parenthesis(Scope* scope) { parenthesis(scope, Mode()); }
    void parenthesis(Scope* scope, Mode mode);
    void call(const Name& name, Scope* scope);
    void arguments(size_t close, const QString& function, Scope* scope);

    // Looking names up.
    Source table(const Name& name, MissingKind kind = MissingKind::TableOrView);
    /// The object, where it is known what it looks like to the module.
    const NamedObject* lookUp(const Name& name, bool& isMissing) const;
    bool isMade(const QString& name) const { return made_.contains(names_.fold(name)); }
    void checkProcedure(const Name& name);
    void checkFunction(const Name& name);
    void resolve(Scope& scope);
    bool resolveBare(const Scope& scope, ColumnUse& use);
    bool resolveQualified(const Scope& scope, const ColumnUse& use);
    void report(const Name& name, MissingKind kind, const QString& owner = {});

    const DatabaseNames& names_;
    const std::vector<SqlWord>& words_;
    QString schema_;  ///< of the module: where bare names are looked up first
    size_t at_ = 0;
    int depth_ = 0;
    bool isTooDeep_ = false;
    QSet<QString> commonTables_;        ///< folded; of the statement
    QSet<QString> made_;                ///< folded; what the module makes itself
    QSet<const NamedObject*> altered_;  ///< tables to which it gives other columns
    bool isTrigger_ = false;
    const NamedObject* triggerTable_ = nullptr;
    std::vector<std::pair<size_t, MissingReference>> missing_;
};

/// Names that every database has: catalogue views, functions and procedures of the system.
bool isSystemName(const QString& schema, const QString& name);
bool isSystemType(const QString& name);

}  // namespace zov
