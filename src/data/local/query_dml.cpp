// INSERT, UPDATE and DELETE: values are made by the translator or straight from
// literals, brought into the columns' stored form here, and written row by row.
#include "data/local/query_parser.h"
#include "data/local/query_result.h"
#include "data/local/query_translator.h"
#include "data/local/query_values.h"
#include "data/local/server_store.h"

#include <set>

namespace zov::local {
namespace {

constexpr qint32 DomainError = qint32(0x80040E2F);

[[noreturn]] void invalidColumn(const QString& name) {
    throw DbError(ado_error::SyntaxError, QStringLiteral("Invalid column name '%1'.").arg(name),
                  QStringLiteral("42S22"), 207);
}

/// A value in the form in which the column keeps it.
StoredValue storedFor(const SessionState& session, const StoredValue& value,
                      const QueryColumn& column) {
    StoredValue stored = convertStored(value, column.info, false, session.dateFormat);
    const int size = column.info.size;
    if (size > 0 && stored.bytes.size() > size) {
        const bool text = stored.kind == StoredValue::Kind::Text && isTextType(column.info.type);
        const bool binary = stored.kind == StoredValue::Kind::Blob;
        if (binary || (text && QString::fromUtf8(stored.bytes).size() > size))
            throw DbError(DomainError, QStringLiteral("String or binary data would be truncated."),
                          QStringLiteral("22001"), 8152);
    }
    return stored;
}

[[noreturn]] void nullNotAllowed(const Database& database, const QueryTable& table,
                                 const QueryColumn& column, const char* verb) {
    throw DbError(
        ado_error::IntegrityViolation,
        QStringLiteral("Cannot insert the value NULL into column '%1', table '%2.%3.%4'; column "
                       "does not allow nulls. %5 fails.")
            .arg(column.name, database.name, table.schema, table.name, QLatin1String(verb)),
        QStringLiteral("23000"), 515);
}

/// SQLite's "UNIQUE constraint failed: dbo.T.a, dbo.T.b" in the server's words, with the key's
/// values.
[[noreturn]] void constraintFailed(QueryCache& cache, const QueryTable& table, int code,
                                   const std::function<StoredValue(int)>& valueOf,
                                   const ExecutionControl* control) {
    const QString text = QString::fromUtf8(sqlite3_errmsg(cache.handle));
    if ((code & 0xFF) != SQLITE_CONSTRAINT ||
        !text.startsWith(QLatin1String("UNIQUE constraint failed")))
        throwQueryError(cache.handle, code, control);
    const QString prefix = storageName(table.schema + u'.' + table.name, *table.names) + u'.';
    // SQLite tells the columns by its own names for them.
    std::vector<int> failed;
    for (const QString& part : text.mid(text.indexOf(u':') + 2).split(QLatin1String(", "))) {
        const QString stored =
            part.startsWith(prefix, Qt::CaseInsensitive) ? part.mid(prefix.size()) : part;
        for (size_t i = 0; i < table.columns.size(); ++i)
            if (storageName(table.columns[i].name, *table.names)
                    .compare(stored, Qt::CaseInsensitive) == 0)
                failed.push_back(int(i));
    }
    std::set<int> failedIds;
    for (const int at : failed) failedIds.insert(table.columns[size_t(at)].colid);
    QString name, kind, values;
    {
        LookUp indexes(cache,
                       "SELECT i.name, coalesce((SELECT o.xtype FROM \"zov$objects\" o WHERE o.id "
                       "= i.constraint_id), ''), "
                       "(SELECT group_concat(k.colid) FROM \"zov$indexkeys\" k WHERE k.id = i.id "
                       "AND k.indid = i.indid AND NOT k.is_included) "
                       "FROM \"zov$indexes\" i WHERE i.id = ?1 AND i.is_unique ORDER BY i.indid");
        indexes.bind(qint64(table.id));
        while (indexes.next()) {
            std::set<int> ids;
            for (const QString& id : indexes.text(2).split(u',')) ids.insert(id.toInt());
            const bool same = ids == failedIds;
            if (name.isEmpty() || same) {
                name = indexes.text(0);
                kind = indexes.text(1).trimmed();
                if (same) break;
            }
        }
    }
    for (const int at : failed) {
        const StoredValue value = valueOf(at);
        values += (values.isEmpty() ? QString() : QStringLiteral(", ")) +
                  (value.isNull() ? QStringLiteral("<NULL>") : value.text().trimmed());
    }
    const QString object = table.schema + u'.' + table.name;
    if (kind == u"PK" || kind == u"UQ")
        throw DbError(
            ado_error::IntegrityViolation,
            QStringLiteral("Violation of %1 constraint '%2'. Cannot insert duplicate key in object "
                           "'%3'. The duplicate key value is (%4).")
                .arg(kind == u"PK" ? QStringLiteral("PRIMARY KEY") : QStringLiteral("UNIQUE KEY"),
                     name, object, values),
            QStringLiteral("23000"), 2627);
    throw DbError(ado_error::IntegrityViolation,
                  QStringLiteral("Cannot insert duplicate key row in object '%1' with unique index "
                                 "'%2'. The duplicate key value is (%3).")
                      .arg(object, name, values),
                  QStringLiteral("23000"), 2601);
}

/// Hands out IDENTITY values and row versions; what was handed out is written at the end.
class Counters {
 public:
    Counters(QueryCache& cache, const QueryTable& table) : cache_(cache), table_(table) {
        for (const QueryColumn& column : table.columns) {
            if (column.isIdentity) {
                LookUp last(
                    cache,
                    "SELECT identity_last FROM \"zov$columns\" WHERE id = ?1 AND colid = ?2");
                last.bind(qint64(table.id)).bind(qint64(column.colid));
                if (last.next() && !last.isNull(0)) last_ = last.integer(0);
                identity_ = &column;
            }
            if (column.info.type == SqlType::RowVersion) hasVersion_ = true;
        }
        if (hasVersion_) {
            LookUp counter(cache, "SELECT value FROM \"zov$facts\" WHERE name = 'dbts'");
            version_ = counter.next() ? counter.integer(0) : 2000;
        }
    }

    StoredValue nextIdentity() {
        last_ = last_ ? *last_ + identity_->increment : identity_->seed;
        touched_ = true;
        given_ = last_;
        return StoredValue::ofInteger(*last_, SqlType::BigInt);
    }
    void sawIdentity(qint64 value) {
        given_ = value;
        const bool further = !last_ || (identity_->increment > 0 ? value > *last_ : value < *last_);
        if (further) {
            last_ = value;
            touched_ = true;
        }
    }
    StoredValue nextVersion() {
        ++version_;
        versionTouched_ = true;
        StoredValue value;
        value.kind = StoredValue::Kind::Blob;
        for (int shift = 56; shift >= 0; shift -= 8)
            value.bytes += char(quint64(version_) >> shift);
        return value;
    }
    std::optional<qint64> given() const { return given_; }

    void store() {
        if (touched_) {
            LookUp update(
                cache_,
                "UPDATE \"zov$columns\" SET identity_last = ?3 WHERE id = ?1 AND colid = ?2");
            update.bind(qint64(table_.id))
                .bind(qint64(identity_->colid))
                .bind(QString::number(*last_));
            update.next();
        }
        if (versionTouched_) {
            LookUp update(cache_,
                          "INSERT OR REPLACE INTO \"zov$facts\"(name, value) VALUES('dbts', ?1)");
            update.bind(version_);
            update.next();
        }
    }

 private:
    QueryCache& cache_;
    const QueryTable& table_;
    const QueryColumn* identity_ = nullptr;
    std::optional<qint64> last_, given_;
    bool touched_ = false;
    bool hasVersion_ = false;
    bool versionTouched_ = false;
    qint64 version_ = 0;
};

/// The value of an expression of VALUES; literals need no database.
StoredValue valueOf(SessionState& session, const Expr& expr, std::span<const Token> tokens,
                    Variables& variables) {
    switch (expr.kind) {
        case Expr::Kind::Literal:
            return literalValue(*expr.token);
        case Expr::Kind::Null:
            return StoredValue::null();
        case Expr::Kind::Unary:
            if (expr.name == u"-" && expr.args[0]->kind == Expr::Kind::Literal &&
                expr.args[0]->token->kind == TokenKind::Number) {
                StoredValue value = literalValue(*expr.args[0]->token);
                value.integer = -value.integer;
                value.real = -value.real;
                if (value.kind == StoredValue::Kind::Text) value.bytes.prepend('-');
                return value;
            }
            break;
        case Expr::Kind::Variable:
            if (const StoredValue* value = variables.find(expr.name)) return *value;
            break;
        case Expr::Kind::Cast:
            if (!expr.tolerant && expr.args.size() == 1 &&
                expr.args[0]->kind == Expr::Kind::Literal)
                return convertStored(literalValue(*expr.args[0]->token), expr.castType, true,
                                     session.dateFormat);
            break;
        default:
            break;
    }
    return evaluateExpr(session, expr, tokens, variables);
}

struct Target {
    Database* database = nullptr;
    std::shared_ptr<const QueryTable> table;
};

Target targetOf(Translator& translator, const QStringList& path, const Token* token) {
    Target target;
    target.table = translator.requireTable(path, token, &target.database);
    if (target.table->xtype != u"U")
        failWith(4406, QStringLiteral("Update or insert of view or function '%1' failed: the "
                                      "embedded server changes tables only.")
                           .arg(target.table->name));
    return target;
}

class Inserter {
 public:
    Inserter(SessionState& session, Target target, const InsertStatement& insert, bool copying)
        : session_(session),
          table_(*target.table),
          database_(*target.database),
          cache_(QueryCache::of(database_)),
          counters_(cache_, table_),
          held_(target.table),
          copying_(copying) {
        const bool explicitIdentity =
            copying || (session.identityInsert && session.identityInsertTable == table_.id);
        places_.assign(table_.columns.size(), -1);
        if (insert.hasColumns) {
            for (const QString& name : insert.columns) {
                const int at = table_.columnIndex(name);
                if (at < 0) invalidColumn(name);
                const QueryColumn& column = table_.columns[size_t(at)];
                if (places_[size_t(at)] >= 0)
                    failWith(264, QStringLiteral("The column name '%1' is specified more than once "
                                                 "in the SET clause or column list of an INSERT.")
                                      .arg(name));
                if (!column.computed.isNull()) computedColumn(column);
                if (column.isIdentity && !explicitIdentity)
                    failWith(544,
                             QStringLiteral("Cannot insert explicit value for identity column in "
                                            "table '%1' when IDENTITY_INSERT is set to OFF.")
                                 .arg(table_.name));
                places_[size_t(at)] = width_++;
            }
        } else if (!insert.defaultValues) {
            for (size_t i = 0; i < table_.columns.size(); ++i) {
                const QueryColumn& column = table_.columns[i];
                if (!column.computed.isNull()) continue;
                if (column.isIdentity && !explicitIdentity) continue;
                if (column.isIdentity)
                    failWith(8101,
                             QStringLiteral("An explicit value for the identity column in table "
                                            "'%1' can only be specified when a column list is "
                                            "used and IDENTITY_INSERT is ON.")
                                 .arg(table_.name));
                places_[i] = width_++;
            }
        }
        for (size_t i = 0; i < table_.columns.size(); ++i)
            if (table_.columns[i].isIdentity && explicitIdentity && places_[i] < 0)
                failWith(545,
                         QStringLiteral("Explicit value must be specified for identity column in "
                                        "table '%1' either when IDENTITY_INSERT is set to ON "
                                        "or when a replication user is inserting into a NOT FOR "
                                        "REPLICATION identity column.")
                             .arg(table_.name));
        listed_ = insert.hasColumns;
        prepare();
    }

    int width() const { return width_; }

    void checkWidth(qsizetype given) const {
        if (given == width_) return;
        if (!listed_)
            failWith(
                213,
                QStringLiteral(
                    "Column name or number of supplied values does not match table definition."),
                ado_error::SyntaxError, QStringLiteral("21S01"));
        if (given > width_)
            failWith(110,
                     QStringLiteral("There are fewer columns in the INSERT statement than values "
                                    "specified in the VALUES clause. The number of values "
                                    "in the VALUES clause must match the number of columns "
                                    "specified in the INSERT statement."),
                     ado_error::SyntaxError, QStringLiteral("21S01"));
        failWith(109,
                 QStringLiteral("There are more columns in the INSERT statement than values "
                                "specified in the VALUES clause. The number of values in "
                                "the VALUES clause must match the number of columns specified in "
                                "the INSERT statement."),
                 ado_error::SyntaxError, QStringLiteral("21S01"));
    }

    /// `value(place, isDefault)` gives the value at a place of the statement's column list.
    template <typename Value>
    void row(Value value) {
        if ((count_ & 255) == 255) throwIfStopped(session_.control.get());
        sqlite3_stmt* statement = prepared_->statement;
        std::vector<StoredValue>& values = row_;
        values.assign(table_.columns.size(), StoredValue());
        int parameter = 0;
        for (size_t i = 0; i < table_.columns.size(); ++i) {
            const QueryColumn& column = table_.columns[i];
            if (!column.computed.isNull()) continue;
            StoredValue& stored = values[i];
            bool useDefault = places_[i] < 0;
            if (!useDefault) {
                StoredValue given = value(places_[i], useDefault);
                // A row version is the server's to give: DEFAULT and NULL ask for it.
                if (column.info.type == SqlType::RowVersion && !useDefault && !copying_) {
                    if (!given.isNull()) explicitVersion();
                    useDefault = true;
                }
                if (!useDefault) {
                    stored = storedFor(session_, given, column);
                    if (column.isIdentity && !stored.isNull())
                        counters_.sawIdentity(stored.toInteger());
                }
            }
            if (useDefault) {
                if (column.isIdentity)
                    stored = counters_.nextIdentity();
                else if (column.info.type == SqlType::RowVersion)
                    stored = counters_.nextVersion();
                else if (!column.defaultText.isNull())
                    stored = defaultOf(i);
            }
            if (stored.isNull() && !column.info.nullable)
                nullNotAllowed(database_, table_, column, "INSERT");
            bindStatic(statement, ++parameter, stored);
        }
        const int code = sqlite3_step(statement);
        sqlite3_reset(statement);
        if (code != SQLITE_DONE)
            constraintFailed(
                cache_, table_, code, [&](int column) { return row_[size_t(column)]; },
                session_.control.get());
        ++count_;
    }

    qint64 finish() {
        counters_.store();
        if (counters_.given()) session_.lastIdentity = counters_.given();
        session_.rowCount = count_;
        return count_;
    }

    [[noreturn]] static void explicitVersion() {
        failWith(273,
                 QStringLiteral(
                     "Cannot insert an explicit value into a timestamp column. Use INSERT with a "
                     "column list to exclude the timestamp column, or insert a DEFAULT into the "
                     "timestamp column."));
    }
    /// Refuses the rows of a SELECT where they would fill a row version.
    void checkSelected() const {
        for (size_t i = 0; i < table_.columns.size(); ++i)
            if (!copying_ && places_[i] >= 0 && table_.columns[i].info.type == SqlType::RowVersion)
                explicitVersion();
    }

    [[noreturn]] static void computedColumn(const QueryColumn& column) {
        failWith(271, QStringLiteral("The column \"%1\" cannot be modified because it is either a "
                                     "computed column or is the result of a UNION operator.")
                          .arg(column.name));
    }

 private:
    void prepare() {
        const QString& key = table_.sqlName;
        const auto known = cache_.inserts.constFind(key);
        if (known != cache_.inserts.constEnd() && known.value()->table == held_) {
            prepared_ = known.value();
            return;
        }
        QString columns, marks;
        for (const QueryColumn& column : table_.columns) {
            if (!column.computed.isNull()) continue;
            columns += (columns.isEmpty() ? QString() : QStringLiteral(", ")) + column.sqlName;
            marks += marks.isEmpty() ? QStringLiteral("?") : QStringLiteral(", ?");
        }
        prepared_ = std::make_shared<PreparedInsert>();
        prepared_->table = held_;
        prepared_->statement = prepareStatement(cache_.handle,
                                                ("INSERT INTO " + table_.sqlName + u'(' + columns +
                                                 QStringLiteral(") VALUES(") + marks + u')')
                                                    .toUtf8(),
                                                true);
        cache_.inserts.insert(key, prepared_);
    }

    /// The value lives until the statement has run: no copy is needed.
    static void bindStatic(sqlite3_stmt* statement, int index, const StoredValue& value) {
        if (value.kind == StoredValue::Kind::Text)
            sqlite3_bind_text(statement, index, value.bytes.constData(), int(value.bytes.size()),
                              SQLITE_STATIC);
        else if (value.kind == StoredValue::Kind::Blob)
            sqlite3_bind_blob(statement, index, value.bytes.isNull() ? "" : value.bytes.constData(),
                              int(value.bytes.size()), SQLITE_STATIC);
        else
            bindValue(statement, index, value);
    }

    StoredValue defaultOf(size_t index) {
        const auto known = prepared_->defaults.find(index);
        if (known != prepared_->defaults.end()) return known->second;
        const QueryColumn& column = table_.columns[index];
        const std::vector<Token> tokens = tokenize(column.defaultText);
        const std::span<const Token> all(tokens.data(), tokens.size() - 1);
        Variables none;
        try {
            QueryParser parser(all, true, typeReader(session_));
            const ExprPtr tree = parser.parseExpression();
            parser.expectEnd();
            const bool constant =
                tree->kind == Expr::Kind::Literal || tree->kind == Expr::Kind::Null ||
                (tree->kind == Expr::Kind::Unary && tree->args[0]->kind == Expr::Kind::Literal);
            const StoredValue value =
                storedFor(session_, valueOf(session_, *tree, all, none), column);
            if (constant) prepared_->defaults[index] = value;
            return value;
        } catch (DbError& error) {
            error.description = QStringLiteral("The default %1 of column '%2' can't be computed: ")
                                    .arg(column.defaultText, column.name) +
                                error.description;
            throw;
        }
    }

    SessionState& session_;
    const QueryTable& table_;
    Database& database_;
    QueryCache& cache_;
    Counters counters_;
    std::shared_ptr<const QueryTable> held_;
    std::shared_ptr<PreparedInsert> prepared_;
    std::vector<int> places_;  // per column of the table, its place in the statement's list
    std::vector<StoredValue> row_;
    int width_ = 0;
    bool listed_ = false;
    bool copying_ = false;
    qint64 count_ = 0;
};

void willWrite(SessionState& session, Database& database) {
    if (session.store) session.store->willWrite(database);
}

struct Statement {
    sqlite3_stmt* statement = nullptr;
    ~Statement() { sqlite3_finalize(statement); }
};

/// The rows of a SELECT, all of them: what is written may be what is read.
std::vector<std::vector<StoredValue>> readAll(SessionState& session, PreparedSelect& select) {
    std::vector<std::vector<StoredValue>> rows;
    RunningGuard guard(select.database->handle, session.control);
    for (;;) {
        const int code = sqlite3_step(select.statement);
        if (code == SQLITE_DONE) break;
        if (code != SQLITE_ROW)
            throwQueryError(select.database->handle, code, session.control.get());
        std::vector<StoredValue>& row = rows.emplace_back();
        row.reserve(select.columns.size());
        for (size_t i = 0; i < select.columns.size(); ++i)
            row.push_back(columnValue(select.statement, int(i), select.columns[i]));
    }
    sqlite3_reset(select.statement);
    return rows;
}

}  // namespace

qint64 runInsert(SessionState& session, std::span<const Token> statement, Variables& variables,
                 bool copying) {
    QueryParser parser(statement, true, typeReader(session));
    const std::unique_ptr<InsertStatement> insert = parser.parseInsert();
    parser.expectEnd();
    Target target;
    {
        Translator translator(session, &variables);
        target = targetOf(translator, insert->table, insert->tableToken);
    }
    willWrite(session, *target.database);
    Inserter inserter(session, target, *insert, copying);
    if (insert->defaultValues) {
        inserter.row([](int, bool& isDefault) {
            isDefault = true;
            return StoredValue();
        });
    } else if (insert->select) {
        // WITH stands in front of INSERT and belongs to the SELECT.
        std::vector<Token> tokens(statement.begin(), statement.begin() + insert->withEnd);
        tokens.insert(tokens.end(), statement.begin() + insert->selectBegin,
                      statement.begin() + insert->selectEnd);
        std::shared_ptr<PreparedSelect> select = prepareSelect(session, tokens, variables);
        struct Release {
            PreparedSelect& select;
            ~Release() {
                sqlite3_reset(select.statement);
                sqlite3_clear_bindings(select.statement);
                select.busy = false;
            }
        } release{*select};
        if (qsizetype(select->columns.size()) != inserter.width()) {
            if (!insert->hasColumns) inserter.checkWidth(qsizetype(select->columns.size()));
            failWith(int(select->columns.size()) > inserter.width() ? 121 : 120,
                     int(select->columns.size()) > inserter.width()
                         ? QStringLiteral("The select list for the INSERT statement contains more "
                                          "items than the insert list. The number of SELECT values "
                                          "must match the number of INSERT columns.")
                         : QStringLiteral("The select list for the INSERT statement contains fewer "
                                          "items than the insert list. The number of SELECT values "
                                          "must match the number of INSERT columns."));
        }
        inserter.checkSelected();
        bindParameters(session, *select, tokens, variables);
        for (const std::vector<StoredValue>& row : readAll(session, *select))
            inserter.row([&](int place, bool&) { return row[size_t(place)]; });
    } else {
        for (const auto& row : insert->rows) {
            inserter.checkWidth(qsizetype(row.size()));
            inserter.row([&](int place, bool& isDefault) {
                const Expr& expr = *row[size_t(place)];
                isDefault = expr.kind == Expr::Kind::Default;
                return isDefault ? StoredValue() : valueOf(session, expr, statement, variables);
            });
        }
    }
    return inserter.finish();
}

qint64 runUpdate(SessionState& session, std::span<const Token> statement, Variables& variables) {
    QueryParser parser(statement, true, typeReader(session));
    const std::unique_ptr<UpdateStatement> update = parser.parseUpdate();
    parser.expectEnd();
    Translator translator(session, &variables);
    translator.addCommonTables(update->with);
    std::shared_ptr<const QueryTable> table;
    QString targetAlias;
    std::vector<Sql> values;
    const QString from = translator.updateSources(
        update->table, update->tableToken, update->from, update->where.get(), table, targetAlias,
        [&] {
            for (Assignment& assignment : update->assignments) {
                if (assignment.value->kind == Expr::Kind::Default) {
                    values.emplace_back();
                    continue;
                }
                if (!assignment.op.isEmpty()) {
                    auto sum = std::make_unique<Expr>();
                    sum->kind = Expr::Kind::Arithmetic;
                    sum->operators = assignment.op;
                    auto self = std::make_unique<Expr>();
                    self->kind =
                        assignment.variable.isEmpty() ? Expr::Kind::Column : Expr::Kind::Variable;
                    self->name =
                        assignment.variable.isEmpty() ? assignment.column : assignment.variable;
                    sum->args.push_back(std::move(self));
                    sum->args.push_back(std::move(assignment.value));
                    assignment.value = std::move(sum);
                }
                values.push_back(translator.expression(*assignment.value));
            }
        });
    QString sql = QStringLiteral(" SELECT ") + targetAlias + u'.' + table->rowid;
    auto select = std::make_shared<PreparedSelect>();
    select->columns.push_back(makeType(SqlType::BigInt));
    std::vector<int> columns;  // per assignment, the table's column; -1 for a variable alone
    for (size_t i = 0; i < values.size(); ++i) {
        const Assignment& assignment = update->assignments[i];
        const bool isDefault = assignment.value->kind == Expr::Kind::Default;
        sql +=
            QStringLiteral(", ") + (isDefault ? QStringLiteral("NULL") : translator.use(values[i]));
        ColumnInfo type = values[i].type.info;
        select->columns.push_back(type);
        int at = -1;
        if (!assignment.column.isEmpty()) {
            at = table->columnIndex(assignment.column);
            if (at < 0) invalidColumn(assignment.column);
            const QueryColumn& column = table->columns[size_t(at)];
            if (!column.computed.isNull()) Inserter::computedColumn(column);
            if (column.isIdentity)
                failWith(8102,
                         QStringLiteral("Cannot update identity column '%1'.").arg(column.name));
            if (column.info.type == SqlType::RowVersion)
                failWith(272, QStringLiteral("Cannot update a timestamp column."));
        }
        columns.push_back(at);
    }
    sql += from;
    if (update->top)
        sql += QStringLiteral(" LIMIT ") + translator.bound(translator.expression(*update->top));
    else if (session.rowCountLimit > 0)
        sql += QStringLiteral(" LIMIT %1").arg(session.rowCountLimit);
    select->database = &translator.database();
    select->parameters = translator.parameters();
    Database& database = *select->database;
    willWrite(session, database);
    attachDatabases(translator, *select);
    select->statement =
        prepareStatement(database.handle, (translator.withClause() + sql).toUtf8(), false);
    bindParameters(session, *select, statement, variables);
    const std::vector<std::vector<StoredValue>> rows = readAll(session, *select);

    QueryCache& cache = QueryCache::of(database);
    Counters counters(cache, *table);
    QString set;
    std::vector<int> versions;
    for (const int column : columns)
        if (column >= 0)
            set += (set.isEmpty() ? QString() : QStringLiteral(", ")) +
                   table->columns[size_t(column)].sqlName + QStringLiteral(" = ?");
    for (size_t i = 0; i < table->columns.size(); ++i) {
        if (table->columns[i].info.type != SqlType::RowVersion) continue;
        set += (set.isEmpty() ? QString() : QStringLiteral(", ")) + table->columns[i].sqlName +
               QStringLiteral(" = ?");
        versions.push_back(int(i));
    }
    Statement write;
    if (!set.isEmpty())
        write.statement =
            prepareStatement(database.handle,
                             ("UPDATE " + table->sqlName + QStringLiteral(" SET ") + set +
                              QStringLiteral(" WHERE ") + table->rowid + QStringLiteral(" = ?"))
                                 .toUtf8(),
                             false);
    std::set<qint64> done;
    std::map<int, StoredValue> last;
    for (const std::vector<StoredValue>& row : rows) {
        // A row that joins several times is changed once, by the first.
        if (!done.insert(row[0].integer).second) continue;
        int parameter = 0;
        for (size_t i = 0; i < columns.size(); ++i) {
            const Assignment& assignment = update->assignments[i];
            StoredValue value = row[i + 1];
            if (columns[i] >= 0) {
                const QueryColumn& column = table->columns[size_t(columns[i])];
                if (assignment.value->kind == Expr::Kind::Default) {
                    value = StoredValue::null();
                    if (!column.defaultText.isNull()) {
                        const std::vector<Token> tokens = tokenize(column.defaultText);
                        Variables none;
                        value = evaluate(session,
                                         std::span<const Token>(tokens.data(), tokens.size() - 1),
                                         none);
                    }
                }
                value = storedFor(session, value, column);
                if (value.isNull() && !column.info.nullable)
                    nullNotAllowed(database, *table, column, "UPDATE");
                bindValue(write.statement, ++parameter, value);
                last[columns[i]] = value;
            }
            if (!assignment.variable.isEmpty())
                variables.assign(session, assignment.variable, value);
        }
        if (!write.statement) continue;
        for (size_t i = 0; i < versions.size(); ++i)
            bindValue(write.statement, ++parameter, counters.nextVersion());
        sqlite3_bind_int64(write.statement, ++parameter, row[0].integer);
        const int code = sqlite3_step(write.statement);
        sqlite3_reset(write.statement);
        if (code != SQLITE_DONE)
            constraintFailed(
                cache, *table, code,
                [&](int column) { return last.count(column) ? last[column] : StoredValue::null(); },
                session.control.get());
    }
    counters.store();
    session.rowCount = qint64(done.size());
    return session.rowCount;
}

qint64 runDelete(SessionState& session, std::span<const Token> statement, Variables& variables) {
    QueryParser parser(statement, true, typeReader(session));
    const std::unique_ptr<DeleteStatement> remove = parser.parseDelete();
    parser.expectEnd();
    Translator translator(session, &variables);
    translator.addCommonTables(remove->with);
    std::shared_ptr<const QueryTable> table;
    QString targetAlias;
    const QString from = translator.updateSources(remove->table, remove->tableToken, remove->from,
                                                  remove->where.get(), table, targetAlias, [] {});
    PreparedSelect select;
    select.columns.push_back(makeType(SqlType::BigInt));
    QString sql = QStringLiteral(" SELECT ") + targetAlias + u'.' + table->rowid + from;
    if (remove->top)
        sql += QStringLiteral(" LIMIT ") + translator.bound(translator.expression(*remove->top));
    else if (session.rowCountLimit > 0)
        sql += QStringLiteral(" LIMIT %1").arg(session.rowCountLimit);
    select.database = &translator.database();
    select.parameters = translator.parameters();
    Database& database = *select.database;
    willWrite(session, database);
    if (!remove->top && !remove->where && remove->from.empty() && session.rowCountLimit == 0) {
        Statement all;
        all.statement =
            prepareStatement(database.handle, ("DELETE FROM " + table->sqlName).toUtf8(), false);
        const int code = sqlite3_step(all.statement);
        if (code != SQLITE_DONE) throwQueryError(database.handle, code, session.control.get());
        return session.rowCount = sqlite3_changes64(database.handle);
    }
    attachDatabases(translator, select);
    select.statement =
        prepareStatement(database.handle, (translator.withClause() + sql).toUtf8(), false);
    bindParameters(session, select, statement, variables);
    const std::vector<std::vector<StoredValue>> rows = readAll(session, select);
    Statement write;
    write.statement =
        prepareStatement(database.handle,
                         ("DELETE FROM " + table->sqlName + QStringLiteral(" WHERE ") +
                          table->rowid + QStringLiteral(" = ?"))
                             .toUtf8(),
                         false);
    qint64 count = 0;
    for (const std::vector<StoredValue>& row : rows) {
        sqlite3_bind_int64(write.statement, 1, row[0].integer);
        const int code = sqlite3_step(write.statement);
        sqlite3_reset(write.statement);
        if (code != SQLITE_DONE) throwQueryError(database.handle, code, session.control.get());
        count += sqlite3_changes(database.handle);
    }
    return session.rowCount = count;
}

}  // namespace zov::local
