#include "data/local/query_translator.h"

#include "data/local/query_parser.h"
#include "data/local/query_values.h"
#include "data/local/server_store.h"

namespace zov::local {
namespace {

constexpr int MaxViewDepth = 32;
constexpr size_t MostTerms = 400;  // of a compound; SQLite takes 500

[[noreturn]] void noSuchObject(const QStringList& path, const Token* token) {
    DbError error(ado_error::NoSuchTable,
                  QStringLiteral("Invalid object name '%1'.").arg(path.join(u'.')),
                  QStringLiteral("42S02"), 208);
    if (token) error.line = token->line;
    throw error;
}

bool hasOuterJoin(const TableSource& source) {
    if (source.kind != TableSource::Kind::Join) return false;
    return (source.join != TableSource::Join::Inner && source.join != TableSource::Join::Cross) ||
           hasOuterJoin(*source.left) || hasOuterJoin(*source.right);
}

}  // namespace

Translator::Translator(SessionState& session, const Variables* variables)
    : session_(session), variables_(variables), root_(std::make_unique<Scope>()) {
    majorVersion_ = session.productVersion.section(u'.', 0, 0).toInt();
    if (majorVersion_ <= 0) majorVersion_ = 16;
    context_.database = session.current;
}

Translator::~Translator() = default;

Database& Translator::database() {
    return main_ ? *main_ : *session_.current;
}

std::set<int> Translator::boundLiterals() const {
    std::set<int> result;
    for (const int index : bound_)
        if (!rendered_.count(index)) result.insert(index);
    return result;
}

TranslatedSelect Translator::select(const Select& select) {
    TranslatedSelect result = selectIn(select, root_.get());
    if (const QString with = withClause(); !with.isEmpty()) result.sql = with + u' ' + result.sql;
    return result;
}

Sql Translator::expression(const Expr& expr) {
    return translate(expr, *root_);
}
QString Translator::condition(const Expr& expr) {
    return predicate(expr, *root_);
}

void Translator::addCommonTables(const std::vector<CommonTable>& with) {
    if (with.empty()) return;
    commonTables(with, *root_);
}

// --- collations ---------------------------------------------------------------------------------

const Collation* Translator::names() {
    return QueryCache::of(*context_.database).collation();
}

QString Translator::suffix(const Collation* stored, const Collation* wanted) {
    return stored == wanted ? QString() : QStringLiteral(" COLLATE ") + wanted->sqlName();
}

QString Translator::sortable(const Sql& sql, const char* statement, int column) {
    const QString text = use(sql);
    if (!sql.type.isText() && sql.type.known) return text;
    requireResolved(sql.collating, statement, column);
    return text + suffix(sql.stored, sql.collating.collation ? sql.collating.collation : names());
}

const Collation* Translator::namedInQuery(const QString& name) {
    if (name.compare(u"database_default", Qt::CaseInsensitive) == 0 ||
        name.compare(u"catalog_default", Qt::CaseInsensitive) == 0)
        return names();
    const Collation* collation = Collation::named(name);
    tellUnknown(session_, *collation);
    return collation;
}

Translator::SourceColumn Translator::passedOn(const OutputColumn& column, size_t index) {
    SourceColumn passed;
    passed.name = column.name;
    passed.type = column.type;
    passed.collating = column.collating;
    passed.stored = column.stored;
    passed.sql = QStringLiteral("c%1").arg(index + 1);
    return passed;
}

Translator::SourceColumn Translator::storedColumn(const QueryColumn& column) {
    SourceColumn entry;
    entry.name = column.name;
    entry.type.info = column.info;
    entry.type.known = true;
    if (column.collation) entry.collating = Collating::implicit(column.collation);
    entry.stored = column.stored;
    entry.sql = column.sqlName;
    return entry;
}

// --- where names come from ----------------------------------------------------------------------

QString Translator::prefixFor(Database* database) {
    if (!main_) main_ = database;
    if (main_ == database) return {};
    // Statements over several databases read the files themselves.
    if (database->isCopy || main_->isCopy)
        failWith(3906, QStringLiteral("The indexes of database '%1' were made under other sorting "
                                      "rules and its file can't be written to; a query over two "
                                      "databases can't use it. Copy the file to a folder that can "
                                      "be written to.")
                           .arg(database->isCopy ? database->name : main_->name));
    const QString key = database->name.toLower();
    const auto known = attachedNames_.constFind(key);
    if (known != attachedNames_.constEnd()) return known.value();
    for (const DatabaseFacts& facts : session_.store->databases()) {
        if (facts.name.compare(database->name, Qt::CaseInsensitive) != 0) continue;
        const QString alias = QStringLiteral("zdb%1").arg(attachments_.size() + 1);
        attachments_.emplace_back(alias, facts.file);
        attachedNames_.insert(key, alias + u'.');
        return alias + u'.';
    }
    return {};
}

const Translator::CommonSource* Translator::findCommon(const QString& name, Scope* scope) {
    const QString key = names()->key(name);
    for (; scope; scope = scope->outer) {
        const auto it = scope->common.constFind(key);
        if (it != scope->common.constEnd()) return &it.value();
    }
    return nullptr;
}

std::shared_ptr<const QueryTable> Translator::requireTable(const QStringList& path,
                                                           const Token* token, Database** where) {
    if (path.size() > 3)
        failWith(7202, QStringLiteral("Could not find server '%1' in sys.servers. Verify that the "
                                      "correct server name was specified.")
                           .arg(path.first()));
    Database* database = context_.database;
    if (path.size() == 3 && !path[0].isEmpty() &&
        path[0].compare(database->name, Qt::CaseInsensitive) != 0) {
        if (!session_.store || !session_.store->hasDatabase(path[0])) noSuchObject(path, token);
        database = &session_.store->database(path[0]);
    }
    if (where) *where = database;
    QueryCache& cache = QueryCache::of(*database);
    if (!usesTables_) cache.refresh();
    usesTables_ = true;
    QString schema = path.size() > 1 ? path[path.size() - 2] : QString();
    std::shared_ptr<const QueryTable> table;
    if (schema.isEmpty() && !session_.defaultSchema.isEmpty())
        table = cache.table(session_.defaultSchema, path.last());
    if (!table) table = cache.table(schema, path.last());
    if (table && table->xtype == u"SN") {
        const QStringList base = splitName(table->text);
        if (base.isEmpty() || ++viewDepth_ > MaxViewDepth) noSuchObject(path, token);
        std::shared_ptr<const QueryTable> target = requireTable(base, token, where);
        --viewDepth_;
        return target;
    }
    if (!table || (table->xtype != u"U" && table->xtype != u"V")) noSuchObject(path, token);
    return table;
}

void Translator::addSources(const TableSource& source, Scope& scope) {
    switch (source.kind) {
        case TableSource::Kind::Join:
            addSources(*source.left, scope);
            addSources(*source.right, scope);
            return;
        case TableSource::Kind::Named:
            addNamed(source, scope);
            break;
        case TableSource::Kind::Function:
            addPropertyList(source, scope);
            break;
        case TableSource::Kind::Derived: {
            TranslatedSelect inner =
                selectIn(*source.select, scope.outer ? scope.outer : root_.get());
            Source added;
            added.sqlAlias = QStringLiteral("t%1").arg(++nextAlias_);
            added.alias = source.alias;
            added.body = u'(' + inner.sql + u')';
            if (!source.columnAliases.isEmpty() &&
                source.columnAliases.size() != qsizetype(inner.columns.size()))
                failWith(8158, QStringLiteral(
                                   "'%1' has more columns than were specified in the column list.")
                                   .arg(source.alias));
            for (size_t i = 0; i < inner.columns.size(); ++i) {
                SourceColumn column = passedOn(inner.columns[i], i);
                if (!source.columnAliases.isEmpty())
                    column.name = source.columnAliases[qsizetype(i)];
                added.columns.push_back(std::move(column));
            }
            scope.sources.push_back(std::move(added));
            break;
        }
        case TableSource::Kind::Values: {
            Source added;
            added.sqlAlias = QStringLiteral("t%1").arg(++nextAlias_);
            added.alias = source.alias;
            QString body;
            size_t terms = 0;
            std::vector<ValueType> types;
            std::vector<Collating> collatings;
            for (const auto& row : source.rows) {
                QString values;
                for (size_t i = 0; i < row.size(); ++i) {
                    const Sql value = translate(*row[i], *root_);
                    if (types.size() <= i) {
                        types.push_back(value.type);
                        collatings.push_back(value.collating);
                    } else {
                        types[i] = commonType(types[i], value.type);
                        collatings[i] =
                            joined(collatings[i], value.collating, QStringLiteral("UNION ALL"));
                    }
                    values += (i ? QStringLiteral(", ") : QString()) + use(value) +
                              QStringLiteral(" AS c%1").arg(i + 1);
                }
                if (++terms > MostTerms) {
                    body = QStringLiteral("SELECT * FROM ") + addPiece(body, " AS (");
                    terms = 2;
                }
                body += (body.isEmpty() ? QString() : QStringLiteral(" UNION ALL ")) +
                        QStringLiteral("SELECT ") + values;
            }
            added.body = u'(' + body + u')';
            for (size_t i = 0; i < types.size(); ++i) {
                SourceColumn column;
                column.name = qsizetype(i) < source.columnAliases.size()
                                  ? source.columnAliases[qsizetype(i)]
                                  : QString();
                column.type = types[i];
                column.collating = collatings[i];
                column.sql = QStringLiteral("c%1").arg(i + 1);
                added.columns.push_back(std::move(column));
            }
            scope.sources.push_back(std::move(added));
            break;
        }
    }
    // Two sources of one name can't be told apart.
    const Source& last = scope.sources.back();
    for (size_t i = 0; i + 1 < scope.sources.size(); ++i) {
        const Source& other = scope.sources[i];
        if (sameName(other.alias, last.alias) && other.ownName == last.ownName &&
            (!last.ownName || sameName(other.schema, last.schema)))
            failWith(
                1012,
                QStringLiteral(
                    "The objects \"%1\" and \"%1\" in the FROM clause have the same exposed names. "
                    "Use correlation names to distinguish them.")
                    .arg(last.alias));
    }
}

// fn_listextendedproperty: DEFAULT and NULL among its seven arguments ask for all.
void Translator::addPropertyList(const TableSource& source, Scope& scope) {
    constexpr size_t Arguments = 7;
    const std::vector<ExprPtr>& given = source.rows[0];
    if (given.size() != Arguments)
        failWith(313, QStringLiteral("An insufficient number of arguments were supplied for the "
                                     "procedure or function %1.")
                          .arg(source.path.last()));
    QString arguments;
    for (const ExprPtr& one : given)
        arguments += (arguments.isEmpty() ? QString() : QStringLiteral(", ")) +
                     (one->kind == Expr::Kind::Default ? QStringLiteral("NULL")
                                                       : use(translate(*one, *root_)));
    prefixFor(context_.database);
    Source added;
    added.sqlAlias = QStringLiteral("t%1").arg(++nextAlias_);
    added.alias = source.alias;
    added.anyCase = true;
    static const char* const names[] = {"objtype", "objname", "name", "value"};
    QString list;
    for (const char* name : names) {
        SourceColumn column;
        column.name = QLatin1String(name);
        column.type = column.name == u"value" ? knownType(SqlType::Variant)
                                              : knownType(SqlType::NVarChar, 128);
        column.sql = quotedName(column.name);
        list += (list.isEmpty() ? QString() : QStringLiteral(", ")) +
                QStringLiteral("json_extract(j.value, '$.%1') AS %2").arg(column.name, column.sql);
        added.columns.push_back(std::move(column));
    }
    added.body =
        QStringLiteral("(SELECT %1 FROM json_each(zov_properties(%2)) j)").arg(list, arguments);
    scope.sources.push_back(std::move(added));
}

void Translator::addNamed(const TableSource& source, Scope& scope) {
    Source added;
    added.sqlAlias = QStringLiteral("t%1").arg(++nextAlias_);
    added.ownName = source.alias.isEmpty();
    added.alias = added.ownName ? source.path.last() : source.alias;
    added.schema = source.path.size() > 1 ? source.path[source.path.size() - 2] : QString();

    if (source.path.size() == 1) {
        if (const CommonSource* common = findCommon(source.path[0], &scope)) {
            added.body = common->sqlName;
            for (size_t i = 0; i < common->columns.size(); ++i) {
                added.columns.push_back(passedOn(common->columns[i], i));
            }
            scope.sources.push_back(std::move(added));
            return;
        }
    }
    if (const CatalogView* view =
            source.path.size() <= 3
                ? findCatalogView(added.schema, source.path.last(), majorVersion_)
                : nullptr) {
        Database* database = context_.database;
        if (source.path.size() == 3 && !source.path[0].isEmpty() &&
            source.path[0].compare(database->name, Qt::CaseInsensitive) != 0) {
            if (!session_.store || !session_.store->hasDatabase(source.path[0]))
                noSuchObject(source.path, source.token);
            // What is the same for the whole server needs no second database.
            if (!view->from.contains(QLatin1String("json_each(zov_")))
                database = &session_.store->database(source.path[0]);
        }
        added.view = view;
        added.prefix = prefixFor(database);
        added.anyCase = true;
        QueryCache& cache = QueryCache::of(*database);
        for (const CatalogColumn& column : view->columns) {
            SourceColumn entry;
            entry.name = column.info.name;
            entry.type.info = column.info;
            entry.type.known = true;
            if (column.collated) {
                entry.collating = Collating::implicit(cache.collation());
                entry.stored = cache.storedNames();
            } else {
                entry.collating.collation = Collation::standard();
            }
            entry.sql = quotedName(column.info.name);
            added.columns.push_back(std::move(entry));
        }
        scope.sources.push_back(std::move(added));
        return;
    }
    Database* database = nullptr;
    std::shared_ptr<const QueryTable> table = requireTable(source.path, source.token, &database);
    const QString prefix = prefixFor(database);
    if (added.ownName && added.schema.isEmpty()) added.schema = QStringLiteral("dbo");
    if (table->xtype == u"V") {
        addView(*table, database, added);
    } else {
        added.body = prefix + table->sqlName;
        for (const QueryColumn& column : table->columns)
            added.columns.push_back(storedColumn(column));
    }
    scope.sources.push_back(std::move(added));
}

void Translator::addView(const QueryTable& view, Database* database, Source& source) {
    if (++viewDepth_ > MaxViewDepth)
        failWith(217, QStringLiteral("Maximum stored procedure, function, trigger, or view nesting "
                                     "level exceeded (limit 32)."));
    const auto unreadable = [&](const QString& why) {
        failWith(4413,
                 QStringLiteral("Could not use view or function '%1' because of binding errors.")
                         .arg(view.name) +
                     u' ' + why);
    };
    if (view.text.isEmpty()) unreadable(QStringLiteral("Its text is encrypted."));
    ViewSource& kept = views_.emplace_back();
    kept.text = view.text;
    kept.tokens = tokenize(kept.text);
    const std::span<const Token> tokens(kept.tokens.data(), kept.tokens.size() - 1);
    QStringList columnNames;
    // CREATE VIEW name [(columns)] [WITH attributes] AS select [WITH CHECK OPTION]
    size_t at = 0;
    while (at < tokens.size() && !tokens[at].is("view")) ++at;
    ++at;
    while (at < tokens.size() && !tokens[at].is("as") && !tokens[at].is("(")) ++at;
    if (at < tokens.size() && tokens[at].is("(")) {
        for (++at; at < tokens.size() && !tokens[at].is(")"); ++at)
            if (tokens[at].isName()) columnNames.append(tokens[at].name());
    }
    while (at < tokens.size() && !tokens[at].is("as")) ++at;
    if (at >= tokens.size()) unreadable(QStringLiteral("Its text can't be read."));
    const Context saved = context_;
    context_.database = database;
    TranslatedSelect inner;
    try {
        QueryParser parser(
            tokens, false,
            [this](std::span<const Token> list, qsizetype begin, qsizetype& end) {
                return parseDataType(session_, list, begin, end);
            },
            qsizetype(at + 1));
        kept.select = parser.parseSelect();
        Scope wall;  // names around the view are not seen within
        inner = selectIn(*kept.select, &wall);
    } catch (DbError& error) {
        context_ = saved;
        if (error.native == 208 || error.native == 207 || error.native == 4104) {
            // The server names what is missing, and then the view that wanted it.
            error.description +=
                QStringLiteral(" Could not use view or function '%1' because of binding errors.")
                    .arg(view.name);
        }
        throw;
    }
    context_ = saved;
    --viewDepth_;
    source.body = u'(' + inner.sql + u')';
    for (size_t i = 0; i < inner.columns.size(); ++i) {
        SourceColumn column = passedOn(inner.columns[i], i);
        if (qsizetype(i) < columnNames.size()) column.name = columnNames[qsizetype(i)];
        source.columns.push_back(std::move(column));
    }
}

void Translator::addTable(const std::shared_ptr<const QueryTable>& table, const QString& alias,
                          bool bareColumns) {
    Source added;
    added.alias = alias.isEmpty() ? table->name : alias;
    added.ownName = alias.isEmpty();
    added.schema = table->schema;
    added.sqlAlias = QStringLiteral("t%1").arg(++nextAlias_);
    added.bare = bareColumns;
    added.body = table->sqlName;
    for (const QueryColumn& column : table->columns) added.columns.push_back(storedColumn(column));
    root_->sources.push_back(std::move(added));
}

QString Translator::sourceText(Source& source) {
    if (!source.view) return source.body + QStringLiteral(" AS ") + source.sqlAlias;
    QString list;
    for (size_t i = 0; i < source.columns.size(); ++i) {
        if (!source.columns[i].used) continue;
        if (!list.isEmpty()) list += QStringLiteral(", ");
        list += source.view->columns[i].expression + QStringLiteral(" AS ") + source.columns[i].sql;
    }
    if (list.isEmpty()) list = QStringLiteral("1");
    QString text = QStringLiteral("(SELECT ") + list + u' ' + source.view->from + u')';
    if (!source.prefix.isEmpty())
        text.replace(QLatin1String("\"zov$"), source.prefix + QStringLiteral("\"zov$"));
    return text + QStringLiteral(" AS ") + source.sqlAlias;
}

QString Translator::fromText(const TableSource& source, Scope& scope, size_t& index,
                             std::vector<QString>& conditions, bool innerOnly) {
    if (source.kind != TableSource::Kind::Join) return sourceText(scope.sources[index++]);
    const QString left = fromText(*source.left, scope, index, conditions, innerOnly);
    QString right = fromText(*source.right, scope, index, conditions, innerOnly);
    if (innerOnly) {
        if (source.on) conditions.push_back(predicate(*source.on, scope));
        return left + QStringLiteral(", ") + right;
    }
    if (source.right->kind == TableSource::Kind::Join) right = u'(' + right + u')';
    const char* word = " JOIN ";
    switch (source.join) {
        case TableSource::Join::Left:
            word = " LEFT JOIN ";
            break;
        case TableSource::Join::Right:
            word = " RIGHT JOIN ";
            break;
        case TableSource::Join::Full:
            word = " FULL JOIN ";
            break;
        case TableSource::Join::Inner:
        case TableSource::Join::Cross:
            break;
    }
    QString text = left + QLatin1String(word) + right;
    if (source.on) text += QStringLiteral(" ON ") + predicate(*source.on, scope);
    return text;
}

QString Translator::fromClause(const std::vector<std::unique_ptr<TableSource>>& from, Scope& scope,
                               std::vector<QString>& conditions) {
    if (from.empty()) return {};
    // ON conditions may use columns of catalogue views, which are written with the columns that
    // have been used by then: one pass notes them, the second writes.
    const auto write = [&](std::vector<QString>& into) {
        QString text;
        size_t index = 0;
        for (const auto& source : from) {
            const bool inner = !hasOuterJoin(*source);
            QString part = fromText(*source, scope, index, into, inner);
            if (!inner && from.size() > 1) part = u'(' + part + u')';
            text += (text.isEmpty() ? QString() : QStringLiteral(", ")) + part;
        }
        return text;
    };
    const bool noting = std::any_of(scope.sources.begin(), scope.sources.end(),
                                    [](const Source& source) { return source.view != nullptr; });
    std::vector<QString> noted;
    if (noting) write(noted);
    return QStringLiteral(" FROM ") + write(conditions);
}

// --- SELECT -------------------------------------------------------------------------------------

void Translator::commonTables(const std::vector<CommonTable>& with, Scope& scope) {
    for (const CommonTable& table : with) {
        CommonSource common;
        common.sqlName = QStringLiteral("w%1").arg(++nextAlias_);
        const auto takeColumns = [&](const TranslatedSelect& select) {
            common.columns = select.columns;
            for (qsizetype i = 0; i < table.columns.size() && i < qsizetype(common.columns.size());
                 ++i)
                common.columns[size_t(i)].name = table.columns[i];
        };
        // A table that reads itself takes its columns from its first part.
        if (!table.select->body->spec) {
            const QueryExpr* first = table.select->body.get();
            while (!first->spec) first = first->parts[0].get();
            takeColumns(queryExpr(*first, &scope, nullptr, false));
            scope.common.insert(names()->key(table.name), common);
        }
        const TranslatedSelect inner = selectIn(*table.select, &scope);
        takeColumns(inner);
        scope.common.insert(names()->key(table.name), common);
        QString names;
        for (size_t i = 0; i < inner.columns.size(); ++i)
            names += (i ? QStringLiteral(", ") : QString()) + QStringLiteral("c%1").arg(i + 1);
        const QString text =
            common.sqlName + u'(' + names + QStringLiteral(") AS (") + inner.sql + u')';
        rootWith_ +=
            (rootWith_.isEmpty() ? QStringLiteral("WITH RECURSIVE ") : QStringLiteral(", ")) + text;
    }
}

TranslatedSelect Translator::selectText(const Select& select, Scope* outer, bool existsOnly) {
    if (select.with.empty()) return queryExpr(*select.body, outer, &select, existsOnly);
    Scope scope;
    scope.outer = outer;
    const QString saved = std::exchange(rootWith_, QString());
    const QString savedPieces = std::exchange(pieces_, QString());
    commonTables(select.with, scope);
    TranslatedSelect result = queryExpr(*select.body, &scope, &select, existsOnly);
    // Pieces from here may read the common tables, and find them in the same WITH only.
    result.sql = withClause() + u' ' + result.sql;
    rootWith_ = saved;
    pieces_ = savedPieces;
    return result;
}

/// The columns of UNION and its like. SQLite compares them by what the first part says, which is
/// said anew when the parts together say something else.
void Translator::collateCompound(TranslatedSelect& left, const TranslatedSelect& right,
                                 TranslatedSelect& result, const QString& operation) {
    const bool all = operation == u"UNION ALL";
    QString list;
    bool changed = false;
    for (size_t i = 0; i < left.columns.size(); ++i) {
        OutputColumn column = left.columns[i];
        const OutputColumn& other = right.columns[i];
        column.type = commonType(column.type, other.type);
        column.collating = joined(column.collating, other.collating, operation);
        column.sql.clear();
        QString text = QStringLiteral("c%1").arg(i + 1);
        if (all) {
            requireResolved(column.collating, "SELECT", int(i + 1));
        } else if (left.columns[i].type.isText()) {
            const Collation* wanted =
                comparing(left.columns[i].collating, other.collating, operation, names());
            changed = changed || column.stored != wanted;
            text += suffix(column.stored, wanted);
            column.stored = wanted;
        }
        if (column.stored != other.stored) column.stored = nullptr;
        list +=
            (i ? QStringLiteral(", ") : QString()) + text + QStringLiteral(" AS c%1").arg(i + 1);
        result.columns.push_back(std::move(column));
    }
    if (changed)
        left.sql = QStringLiteral("SELECT ") + list + QStringLiteral(" FROM (") + left.sql + u')';
}

TranslatedSelect Translator::queryPart(const QueryExpr& part, Scope* outer) {
    if (part.spec) return spec(*part.spec, outer, nullptr, false, true);
    return atLevel(++level_, [&] {
        TranslatedSelect inner = queryExpr(part, outer, nullptr, false);
        --level_;
        writing_.nesting += 6;
        return mustCut(false) ? cutSelect(std::move(inner)) : std::move(inner);
    });
}

TranslatedSelect Translator::queryExpr(const QueryExpr& expr, Scope* outer, const Select* orders,
                                       bool existsOnly) {
    if (expr.spec) return spec(*expr.spec, outer, orders, existsOnly, false);
    TranslatedSelect result = queryPart(*expr.parts[0], outer);
    size_t terms = 1;
    for (size_t i = 1; i < expr.parts.size(); ++i) {
        TranslatedSelect right = queryPart(*expr.parts[i], outer);
        if (result.columns.size() != right.columns.size())
            failWith(205, QStringLiteral("All queries combined using a UNION, INTERSECT or EXCEPT "
                                         "operator must have an equal "
                                         "number of expressions in their target lists."));
        if (++terms > MostTerms) {
            result = cutSelect(std::move(result));
            terms = 2;
        }
        const QString& operation = expr.operations[i - 1];
        TranslatedSelect joined;
        collateCompound(result, right, joined, operation);
        joined.sql = std::move(result.sql);
        if (!expr.parts[i]->spec) right.sql = QStringLiteral("SELECT * FROM (") + right.sql + u')';
        joined.sql += u' ';
        joined.sql += operation;
        joined.sql += u' ';
        joined.sql += right.sql;
        result = std::move(joined);
    }
    if (orders && (!orders->orderBy.empty() || orders->offset)) {
        Scope none;
        none.outer = outer;
        result.sql += orderClause(orders->orderBy, none, result.columns, true);
        result.sql += limitClause(nullptr, orders, none);
    }
    return result;
}

QString Translator::limitClause(const Expr* top, const Select* select, Scope& scope) {
    const auto number = [&](const Expr& expr) { return bound(translate(expr, scope)); };
    if (top) {
        const QString count = number(*top);
        return QStringLiteral(" LIMIT ") + count;
    }
    if (!select || !select->offset) return {};
    return QStringLiteral(" LIMIT ") +
           (select->fetch ? number(*select->fetch) : QStringLiteral("-1")) +
           QStringLiteral(" OFFSET ") + number(*select->offset);
}

QString Translator::orderKey(const Sql& sql) {
    if (sql.type.isWide()) return QStringLiteral("zov_dkey(") + use(sql) + u')';
    if (sql.type.isGuid()) return QStringLiteral("zov_gkey(") + use(sql) + u')';
    return sortable(sql, "ORDER BY", 1);
}

QString Translator::orderClause(const std::vector<OrderItem>& items, Scope& scope,
                                const std::vector<OutputColumn>& columns, bool compound) {
    QString text;
    for (const OrderItem& item : items) {
        qsizetype ordinal = -1;
        const Expr& expr = *item.expr;
        if (expr.kind == Expr::Kind::Literal && expr.token->kind == TokenKind::Number) {
            bool good = false;
            ordinal = expr.token->source.toLongLong(&good) - 1;
            if (!good || ordinal < 0 || ordinal >= qsizetype(columns.size()))
                failWith(108, QStringLiteral("The ORDER BY position number %1 is out of range of "
                                             "the number of items in the "
                                             "select list.")
                                  .arg(expr.token->source));
            rendered_.insert(expr.literalIndex);
        } else if (expr.kind == Expr::Kind::Column && expr.path.isEmpty()) {
            // Names of the select list go first, those given there before those that came with a
            // column.
            for (const bool aliased : {true, false}) {
                for (size_t i = 0; i < columns.size() && ordinal < 0; ++i)
                    if (columns[i].aliased == aliased && sameName(columns[i].name, expr.name))
                        ordinal = qsizetype(i);
                if (ordinal >= 0) break;
            }
        }
        QString key;
        if (ordinal >= 0) {
            const OutputColumn& column = columns[size_t(ordinal)];
            if ((column.type.isWide() || column.type.isGuid()) && !compound) {
                key = QLatin1String(column.type.isGuid() ? "zov_gkey(" : "zov_dkey(") + column.sql +
                      u')';
            } else {
                key = QString::number(ordinal + 1);
                if (column.type.isText() || !column.type.known)
                    key +=
                        suffix(column.stored,
                               column.collating.collation ? column.collating.collation : names());
            }
        } else if (compound) {
            failWith(104, QStringLiteral("ORDER BY items must appear in the select list if the "
                                         "statement contains a UNION, "
                                         "INTERSECT or EXCEPT operator."));
        } else {
            key = orderKey(translate(expr, scope));
        }
        text += (text.isEmpty() ? QStringLiteral(" ORDER BY ") : QStringLiteral(", ")) + key;
        if (item.descending) text += QStringLiteral(" DESC");
    }
    return text;
}

TranslatedSelect Translator::spec(const QuerySpec& spec, Scope* outer, const Select* orders,
                                  bool existsOnly, bool inCompound) {
    Scope scope;
    scope.outer = outer;
    for (const auto& source : spec.from) addSources(*source, scope);

    TranslatedSelect result;
    const auto addColumn = [&](const QString& name, const Sql& value, bool aliased) {
        OutputColumn column;
        column.name = name;
        column.aliased = aliased;
        column.type = value.type;
        column.collating = value.collating;
        column.stored = value.stored;
        column.sql = use(value);
        requireResolved(value.collating, "SELECT", int(result.columns.size() + 1));
        result.columns.push_back(std::move(column));
    };
    const auto addStar = [&](const Expr& star) {
        bool any = false;
        for (Source& source : scope.sources) {
            if (!star.path.isEmpty()) {
                const bool named = sameName(source.alias, star.path.last()) &&
                                   (star.path.size() == 1 ||
                                    sameName(source.schema, star.path[star.path.size() - 2]));
                if (!named) continue;
            }
            any = true;
            for (SourceColumn& column : source.columns) {
                column.used = true;
                Sql value;
                value.text = source.sqlAlias + u'.' + column.sql;
                value.type = column.type;
                value.collating = column.collating;
                value.stored = column.stored;
                addColumn(column.name, value, false);
            }
        }
        if (!any) {
            if (star.path.isEmpty())
                failWith(263, QStringLiteral("Must specify table to select from."));
            failWith(107, QStringLiteral("The column prefix '%1' does not match with a table name "
                                         "or alias name used in the query.")
                              .arg(star.path.join(u'.')));
        }
    };
    if (!existsOnly || !spec.groupBy.empty() || spec.having) {
        for (const SelectItem& item : spec.items) {
            if (item.expr->kind == Expr::Kind::Star) {
                if (existsOnly) continue;
                addStar(*item.expr);
                continue;
            }
            Sql value = translate(*item.expr, scope);
            QString name = item.alias.value_or(QString());
            if (!item.alias && item.expr->kind == Expr::Kind::Column) name = item.expr->name;
            if (!item.variable.isEmpty()) result.assignments.push_back(item.variable);
            addColumn(name, value, item.alias.has_value());
        }
        if (!result.assignments.empty() && result.assignments.size() != result.columns.size())
            failWith(141, QStringLiteral("A SELECT statement that assigns a value to a variable "
                                         "must not be combined with "
                                         "data-retrieval operations."));
    }

    std::vector<QString> conditions;
    QString where = spec.where ? predicate(*spec.where, scope) : QString();
    QString group;
    for (const ExprPtr& expr : spec.groupBy) {
        group += (group.isEmpty() ? QStringLiteral(" GROUP BY ") : QStringLiteral(", ")) +
                 sortable(translate(*expr, scope), "GROUP BY", 1);
    }
    const QString having =
        spec.having ? QStringLiteral(" HAVING ") + predicate(*spec.having, scope) : QString();
    QString order = orders ? orderClause(orders->orderBy, scope, result.columns, false) : QString();
    const QString limit = limitClause(spec.top.get(), orders, scope);
    // The sources are written last: by now it is known which columns of the catalogue are used.
    const QString from = fromClause(spec.from, scope, conditions);

    QString list;
    for (size_t i = 0; i < result.columns.size(); ++i) {
        OutputColumn& column = result.columns[i];
        if (i) list += QStringLiteral(", ");
        list += column.sql;
        if ((inCompound || spec.distinct) && column.type.isText()) {
            const Collation* wanted =
                column.collating.collation ? column.collating.collation : names();
            list += suffix(column.stored, wanted);
            column.stored = wanted;
        }
        list += QStringLiteral(" AS c%1").arg(i + 1);
    }
    if (list.isEmpty()) list = QStringLiteral("1");
    result.sql = (spec.distinct ? QStringLiteral("SELECT DISTINCT ") : QStringLiteral("SELECT ")) +
                 list + from;
    for (const QString& condition : conditions)
        where = where.isEmpty() ? condition : where + QStringLiteral(" AND ") + condition;
    if (!where.isEmpty()) result.sql += QStringLiteral(" WHERE ") + where;
    result.sql += group + having + order + limit;
    if (inCompound && !limit.isEmpty())
        result.sql = QStringLiteral("SELECT * FROM (") + result.sql + u')';
    return result;
}

QString Translator::updateSources(const QStringList& target, const Token* token,
                                  const std::vector<std::unique_ptr<TableSource>>& from,
                                  const Expr* where, std::shared_ptr<const QueryTable>& table,
                                  QString& targetAlias,
                                  const std::function<void()>& translateValues) {
    Scope& scope = *root_;
    // UPDATE a SET ... FROM t AS a: the target may be one of the sources' aliases.
    const std::function<const TableSource*(const TableSource&)> find =
        [&](const TableSource& source) -> const TableSource* {
        if (source.kind == TableSource::Kind::Join) {
            const TableSource* left = find(*source.left);
            return left ? left : find(*source.right);
        }
        if (source.kind != TableSource::Kind::Named) return nullptr;
        const bool byAlias = target.size() == 1 && sameName(source.alias, target[0]);
        const bool byName = sameName(source.path.last(), target.last()) &&
                            (source.alias.isEmpty() || target.size() > 1 || byAlias);
        return byAlias || byName ? &source : nullptr;
    };
    const TableSource* named = nullptr;
    for (const auto& source : from)
        if (!named) named = find(*source);
    Database* database = nullptr;
    if (named) {
        table = requireTable(named->path, named->token, &database);
    } else {
        table = requireTable(target, token, &database);
    }
    if (table->xtype != u"U")
        failWith(4406, QStringLiteral("Update or insert of view or function '%1' failed: the "
                                      "embedded server changes tables only.")
                           .arg(table->name));
    prefixFor(database);
    QString text;
    std::vector<QString> conditions;
    if (!named) {
        addTable(table, QString(), false);
        targetAlias = scope.sources.back().sqlAlias;
    }
    for (const auto& source : from) addSources(*source, scope);
    if (named) {
        const QString wanted = named->alias.isEmpty() ? named->path.last() : named->alias;
        for (const Source& source : scope.sources)
            if (sameName(source.alias, wanted)) targetAlias = source.sqlAlias;
    }
    translateValues();
    const QString filter = where ? predicate(*where, scope) : QString();
    if (!named) {
        // The sources of FROM begin behind the target's own place in the scope.
        Source own = scope.sources.front();
        scope.sources.pop_front();
        scope.sources.push_back(own);
        text = fromClause(from, scope, conditions);
        text = (text.isEmpty() ? QStringLiteral(" FROM ") : text + QStringLiteral(", ")) +
               table->sqlName + QStringLiteral(" AS ") + targetAlias;
    } else {
        text = fromClause(from, scope, conditions);
    }
    QString all = filter;
    for (const QString& condition : conditions)
        all = all.isEmpty() ? condition : all + QStringLiteral(" AND ") + condition;
    if (!all.isEmpty()) text += QStringLiteral(" WHERE ") + all;
    return text;
}

}  // namespace zov::local
