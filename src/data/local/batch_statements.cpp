// The statements that are no definitions: queries, USE, transactions, PRINT, DECLARE, SET,
// RAISERROR, THROW, DBCC.
#include "data/local/batch_stream.h"
#include "data/local/definitions.h"
#include "data/local/query_parser.h"
#include "data/local/query_result.h"

#include <QSet>

#include <algorithm>

namespace zov::local {
namespace {

bool same(const QString& a, const char* b) {
    return a.compare(QLatin1String(b), Qt::CaseInsensitive) == 0;
}

/// The first rows of another stream, for SET ROWCOUNT.
class LimitedRows : public ResultStream {
 public:
    LimitedRows(std::unique_ptr<ResultStream> rows, qint64 limit)
        : rows_(std::move(rows)), left_(limit) {}
    const std::vector<ColumnInfo>& columns() const override { return rows_->columns(); }
    qsizetype fetch(RowStore& rows, qsizetype maxRows) override {
        if (left_ <= 0) return 0;
        const qsizetype count = rows_->fetch(rows, qsizetype(std::min<qint64>(maxRows, left_)));
        left_ -= count;
        return count;
    }
    bool nextResult() override { return false; }
    void close() override { rows_->close(); }

 private:
    std::unique_ptr<ResultStream> rows_;
    qint64 left_;
};

// The printf-like text of RAISERROR.
QString formatMessage(const QString& format, const std::vector<StoredValue>& arguments) {
    QString text;
    size_t next = 0;
    for (qsizetype i = 0; i < format.size(); ++i) {
        if (format[i] != u'%') {
            text += format[i];
            continue;
        }
        if (i + 1 < format.size() && format[i + 1] == u'%') {
            text += u'%';
            ++i;
            continue;
        }
        qsizetype at = i + 1;
        bool left = false, zero = false, plus = false;
        for (; at < format.size() && QStringLiteral("-+0# ").contains(format[at]); ++at) {
            left = left || format[at] == u'-';
            zero = zero || format[at] == u'0';
            plus = plus || format[at] == u'+';
        }
        const auto size = [&] {
            int value = 0;
            if (at < format.size() && format[at] == u'*') {
                value = next < arguments.size() ? int(arguments[next++].toInteger()) : 0;
                ++at;
            }
            while (at < format.size() && format[at].isDigit())
                value = std::min(value * 10 + format[at++].digitValue(), 2048);
            return value;
        };
        const int width = size();
        int precision = -1;
        if (at < format.size() && format[at] == u'.') {
            ++at;
            precision = size();
        }
        if (QStringView(format).mid(at).startsWith(u"I64")) at += 3;
        while (at < format.size() && (format[at] == u'l' || format[at] == u'h')) ++at;
        if (at >= format.size() || !QStringLiteral("dsiouxX").contains(format[at])) {
            text += format[i];  // no placeholder after all
            continue;
        }
        QString part = QStringLiteral("(null)");
        if (next < arguments.size()) {
            const StoredValue& value = arguments[next++];
            if (!value.isNull()) {
                switch (format[at].unicode()) {
                    case u's':
                        part = value.text();
                        break;
                    case u'o':
                        part = QString::number(quint64(value.toInteger()), 8);
                        break;
                    case u'x':
                        part = QString::number(quint32(value.toInteger()), 16);
                        break;
                    case u'X':
                        part = QString::number(quint32(value.toInteger()), 16).toUpper();
                        break;
                    case u'u':
                        part = QString::number(quint32(value.toInteger()));
                        break;
                    default:
                        part = (plus && value.toInteger() >= 0 ? QStringLiteral("+") : QString()) +
                               QString::number(value.toInteger());
                }
            }
            if (format[at] == u's' && precision >= 0) part.truncate(precision);
        }
        const bool zeros = zero && !left && format[at] != u's';
        text += left ? part.leftJustified(width) : part.rightJustified(width, zeros ? u'0' : u' ');
        i = at;
    }
    return text;
}

// The place of SELECT ... INTO table, 0 without.
size_t intoOf(std::span<const Token> tokens) {
    int depth = 0;
    for (size_t i = 0; i < tokens.size(); ++i) {
        if (tokens[i].is("(")) ++depth;
        if (tokens[i].is(")")) --depth;
        if (depth > 0) continue;
        if (tokens[i].is("FROM") || tokens[i].is("UNION")) return 0;
        if (tokens[i].is("INTO")) return i;
    }
    return 0;
}

/// A column of SELECT ... INTO that keeps counting in the new table.
struct KeptIdentity {
    size_t place = 0;  // in the select list
    QString seed, increment;
};

/// The place of the identity column in the list of a SELECT from one table alone: a join, a UNION,
/// a grouping or a second mention end the counting.
std::optional<KeptIdentity> identityOf(SessionState& session, std::span<const Token> select) {
    QueryParser parser(select, true, typeReader(session));
    const SelectPtr tree = parser.parseSelect();
    const QuerySpec* spec = tree->body->spec.get();
    if (!spec || spec->from.size() != 1 || spec->from[0]->kind != TableSource::Kind::Named ||
        !spec->groupBy.empty() || spec->distinct || !tree->with.empty())
        return std::nullopt;
    const QStringList& path = spec->from[0]->path;
    ObjectName name;
    name.name = path.last();
    if (path.size() > 1) name.schema = path[path.size() - 2];
    if (path.size() > 2) name.database = path[path.size() - 3];
    if (!name.database.isEmpty() && !session.store->hasDatabase(name.database)) return std::nullopt;
    const Catalog catalog(session, name.database.isEmpty()
                                       ? *session.current
                                       : session.store->database(name.database));
    const std::optional<ObjectFacts> table = catalog.find(name);
    if (!table || !table->isTable()) return std::nullopt;
    const std::vector<ColumnFacts> columns = catalog.columns(table->id);
    std::optional<KeptIdentity> kept;
    size_t place = 0;
    bool twice = false;
    const auto mention = [&](const ColumnFacts& column) {
        if (!column.seed.isNull()) {
            twice = twice || kept;
            kept = {place, column.seed, column.increment};
        }
        ++place;
    };
    for (const SelectItem& item : spec->items) {
        const Expr& expr = *item.expr;
        if (expr.kind == Expr::Kind::Star) {
            for (const ColumnFacts& column : columns) mention(column);
            continue;
        }
        const auto found =
            std::find_if(columns.begin(), columns.end(), [&](const ColumnFacts& column) {
                return expr.kind == Expr::Kind::Column &&
                       column.name.compare(expr.name, Qt::CaseInsensitive) == 0;
            });
        if (found == columns.end())
            ++place;
        else
            mention(*found);
    }
    return twice ? std::nullopt : kept;
}

}  // namespace

void BatchStream::define(std::span<const Token> tokens, bool first) {
    Definition definition;
    definition.tokens = tokens;
    // Only modules keep the text of their batch.
    definition.batchText = frame().text;
    definition.opensBatch = first;
    runDefinition(session_, definition);
}

void BatchStream::query(std::span<const Token> tokens) {
    size_t verb = 0;
    if (tokens.front().is("WITH")) {
        int depth = 0;
        for (verb = 0; verb < tokens.size(); ++verb) {
            if (tokens[verb].is("(")) ++depth;
            if (tokens[verb].is(")")) --depth;
            if (depth == 0 && (tokens[verb].is("SELECT") || tokens[verb].is("INSERT") ||
                               tokens[verb].is("UPDATE") || tokens[verb].is("DELETE")))
                break;
        }
        if (verb < tokens.size()) {
            if (tokens[verb].is("INSERT")) return changed(runInsert(session_, tokens, variables()));
            if (tokens[verb].is("UPDATE")) return changed(runUpdate(session_, tokens, variables()));
            if (tokens[verb].is("DELETE")) return changed(runDelete(session_, tokens, variables()));
        }
    }
    if (const size_t into = intoOf(tokens); into > 0) return selectInto(tokens, into);
    std::unique_ptr<ResultStream> rows = runSelect(session_, tokens, variables());
    if (!rows || rows->columns().empty()) return;
    rowsLine_ = tokens.front().line;
    rowsWords_ = sourceText(tokens).left(200).simplified().left(60);
    Result result;
    if (session_.rowCountLimit > 0)
        rows = std::make_unique<LimitedRows>(std::move(rows), session_.rowCountLimit);
    result.rows = std::move(rows);
    results_.push_back(std::move(result));
}

void BatchStream::selectInto(std::span<const Token> tokens, size_t into) {
    TokenCursor cursor(tokens.subspan(into + 1));
    const ObjectName name = cursor.objectName();
    if (name.name.startsWith(u'#'))
        fail(40000,
             QStringLiteral("The embedded server keeps no temporary tables ('%1').").arg(name.name),
             name.line);
    const std::span<const Token> before = tokens.first(into);
    const std::span<const Token> after = cursor.rest();
    const QString select = sourceText(before) + u' ' + sourceText(after);
    const std::vector<Token> selectTokens = tokenize(select, session_.quotedIdentifier);
    std::vector<QString> collations;
    const std::vector<ColumnInfo> columns = describeSelect(
        session_, std::span<const Token>(selectTokens).first(selectTokens.size() - 1), nullptr,
        &collations);
    const std::optional<KeptIdentity> identity =
        identityOf(session_, std::span<const Token>(selectTokens).first(selectTokens.size() - 1));
    QString names;
    QString target = bracketed(name.name);
    if (!name.schema.isEmpty()) target.prepend(bracketed(name.schema) + u'.');
    if (!name.database.isEmpty())
        target.prepend(bracketed(name.database) +
                       (name.schema.isEmpty() ? QStringLiteral("..") : QStringLiteral(".")));
    {
        Catalog catalog = Catalog::forWriting(session_, name);
        ObjectFacts table;
        table.name = name.name;
        table.schemaId = catalog.requireSchema(name.schema);
        table.schema = catalog.schemaName(table.schemaId);
        table.xtype = QStringLiteral("U");
        table.id = catalog.addObject(table.name, table.schemaId, table.xtype);
        CatalogQuery(catalog.handle(),
                     "INSERT INTO \"zov$indexes\"(id, indid, name) VALUES(?, 0, NULL)")
            .add(table.id)
            .run();
        std::vector<ColumnSpec> specs;
        for (const ColumnInfo& info : columns) {
            ColumnSpec spec;
            spec.facts.name = info.name;
            if (info.name.isEmpty())
                fail(1038,
                     QStringLiteral("An object or column name is missing or empty. For SELECT INTO "
                                    "statements, verify each column has a name."),
                     name.line);
            spec.facts.type = typeFacts(info);
            spec.facts.collation = collations[specs.size()];
            spec.nullable = info.nullable;
            spec.line = name.line;
            if (identity && identity->place == specs.size()) {
                spec.facts.seed = identity->seed;
                spec.facts.increment = identity->increment;
                spec.nullable = false;
            }
            names += (names.isEmpty() ? QString() : QStringLiteral(", ")) + bracketed(info.name);
            specs.push_back(std::move(spec));
        }
        writeColumns(catalog, table, specs, {});
        makeStorage(catalog, table);
    }
    const QString insert = QStringLiteral("INSERT INTO %1(%2) %3").arg(target, names, select);
    const std::vector<Token> insertTokens = tokenize(insert, session_.quotedIdentifier);
    changed(runInsert(session_, std::span<const Token>(insertTokens).first(insertTokens.size() - 1),
                      variables(), true));
}

void BatchStream::use(std::span<const Token> tokens) {
    TokenCursor cursor(tokens.subspan(1));
    const QString name = cursor.name();
    cursor.expectEnd();
    session_.current = &session_.store->database(name);
    session_.databaseChosen = true;
}

void BatchStream::transaction(std::span<const Token> tokens) {
    TokenCursor cursor(tokens);
    const Token& verb = cursor.next();
    if (verb.is("BEGIN")) cursor.accept("DISTRIBUTED");
    if (!cursor.accept("TRAN") && !cursor.accept("TRANSACTION") && !cursor.accept("WORK") &&
        verb.is("BEGIN"))
        cursor.failHere();
    if (cursor.peek().isName() && !cursor.is("WITH")) cursor.name();
    if (cursor.accept("WITH")) {
        if (cursor.accept("MARK")) {
            if (!cursor.atEnd()) cursor.next();
        } else {
            cursor.parenthesised();
        }
    }
    cursor.expectEnd();
    if (verb.is("BEGIN"))
        session_.store->beginTransaction();
    else if (verb.is("COMMIT"))
        session_.store->commitTransaction();
    else
        session_.store->rollbackTransaction();
}

void BatchStream::print(std::span<const Token> expression) {
    if (expression.empty()) failSyntax(Token());
    session_.messages.push_back(
        {0, 0, expression.front().line, evaluate(session_, expression, variables()).text()});
}

void BatchStream::declare(std::span<const Token> tokens) {
    TokenCursor cursor(tokens.subspan(1));
    do {
        const Token& name = cursor.next();
        if (!name.source.startsWith(u'@'))
            fail(40000, QStringLiteral("The embedded server doesn't run cursors."), name.line);
        cursor.accept("AS");
        if (cursor.is("TABLE"))
            fail(40000,
                 QStringLiteral("The embedded server keeps no table variables ('%1').")
                     .arg(name.source),
                 name.line);
        if (cursor.is("CURSOR"))
            fail(40000, QStringLiteral("The embedded server doesn't run cursors."), name.line);
        qsizetype end = 0;
        const std::span<const Token> rest = cursor.rest();
        if (rest.empty()) cursor.failHere();
        const ColumnInfo type = parseDataType(session_, rest, 0, end);
        cursor.skip(size_t(end));
        if (!variables().declare(name.source.toString(), type))
            fail(134,
                 QStringLiteral(
                     "The variable name '%1' has already been declared. Variable names must be "
                     "unique within a query batch or stored procedure.")
                     .arg(name.source),
                 name.line);
        if (cursor.accept("="))
            variables().assign(session_, name.source.toString(),
                               evaluate(session_, cursor.until({}), variables()));
    } while (cursor.accept(","));
    cursor.expectEnd();
}

void BatchStream::set(std::span<const Token> tokens) {
    TokenCursor cursor(tokens.subspan(1));
    if (cursor.peek().source.startsWith(u'@')) return setVariable(cursor);
    if (cursor.accept("IDENTITY_INSERT")) return setIdentityInsert(cursor);
    if (cursor.accept({"TRANSACTION", "ISOLATION", "LEVEL"})) {
        if (!cursor.accept({"READ", "UNCOMMITTED"}) && !cursor.accept({"READ", "COMMITTED"}) &&
            !cursor.accept({"REPEATABLE", "READ"}) && !cursor.accept("SNAPSHOT") &&
            !cursor.accept("SERIALIZABLE"))
            cursor.failHere();
        cursor.expectEnd();
        return;
    }
    if (cursor.accept("STATISTICS")) {
        do cursor.name();
        while (cursor.accept(","));
        if (!cursor.accept("ON")) cursor.expect("OFF");
        cursor.expectEnd();
        return;
    }
    static const QSet<QString> switches = [] {
        QSet<QString> set;
        for (const char* name : {"ANSI_DEFAULTS",
                                 "ANSI_NULLS",
                                 "ANSI_NULL_DFLT_ON",
                                 "ANSI_NULL_DFLT_OFF",
                                 "ANSI_PADDING",
                                 "ANSI_WARNINGS",
                                 "ARITHABORT",
                                 "ARITHIGNORE",
                                 "CONCAT_NULL_YIELDS_NULL",
                                 "CURSOR_CLOSE_ON_COMMIT",
                                 "FMTONLY",
                                 "FORCEPLAN",
                                 "IMPLICIT_TRANSACTIONS",
                                 "NOCOUNT",
                                 "NOEXEC",
                                 "NUMERIC_ROUNDABORT",
                                 "PARSEONLY",
                                 "QUOTED_IDENTIFIER",
                                 "REMOTE_PROC_TRANSACTIONS",
                                 "SHOWPLAN_ALL",
                                 "SHOWPLAN_TEXT",
                                 "SHOWPLAN_XML",
                                 "XACT_ABORT",
                                 "NO_BROWSETABLE",
                                 "DISABLE_DEF_CNST_CHK"})
            set.insert(QLatin1String(name));
        return set;
    }();
    static const QSet<QString> valued = [] {
        QSet<QString> set;
        for (const char* name :
             {"DATEFIRST", "DATEFORMAT", "DEADLOCK_PRIORITY", "LANGUAGE", "LOCK_TIMEOUT",
              "ROWCOUNT", "TEXTSIZE", "QUERY_GOVERNOR_COST_LIMIT", "CONTEXT_INFO"})
            set.insert(QLatin1String(name));
        return set;
    }();
    const Token& option = cursor.peek();
    QStringList names;
    do names.push_back(cursor.name().toUpper());
    while (cursor.accept(","));
    if (names.size() == 1 && valued.contains(names.front()))
        return setValue(names.front(), cursor, option);
    for (const QString& name : names)
        if (!switches.contains(name))
            fail(195, QStringLiteral("'%1' is not a recognized SET option.").arg(name),
                 option.line);
    const bool on = cursor.accept("ON");
    if (!on) cursor.expect("OFF");
    cursor.expectEnd();
    for (const QString& name : names) {
        if (name == QLatin1String("NOCOUNT")) session_.noCount = on;
        if (name == QLatin1String("NOEXEC")) {
            session_.noExec = on;
            session_.toldNoExec = false;
        }
        if (name == QLatin1String("QUOTED_IDENTIFIER") || name == QLatin1String("ANSI_DEFAULTS"))
            session_.quotedIdentifier = on;
        if (name == QLatin1String("ANSI_NULLS") || name == QLatin1String("ANSI_DEFAULTS"))
            session_.ansiNulls = on;
        if (on &&
            (name == QLatin1String("PARSEONLY") || name == QLatin1String("IMPLICIT_TRANSACTIONS")))
            fail(40000, QStringLiteral("The embedded server doesn't know SET %1 ON.").arg(name),
                 option.line);
    }
}

void BatchStream::setValue(const QString& name, TokenCursor& cursor, const Token& option) {
    QString value;
    if (cursor.peek().source.startsWith(u'@')) {
        const std::span<const Token> rest = cursor.rest();
        value = evaluate(session_, rest, variables()).text();
    } else if (cursor.is("-") || cursor.peek().kind == TokenKind::Number) {
        value = cursor.wholeNumber();
        cursor.expectEnd();
    } else {
        value = cursor.peek().kind == TokenKind::Binary ? cursor.next().source.toString()
                                                        : cursor.nameOrText();
        cursor.expectEnd();
    }
    if (name == QLatin1String("ROWCOUNT")) session_.rowCountLimit = value.toLongLong();
    if (name == QLatin1String("DATEFORMAT")) {
        const QString format = value.toLower();
        static const QStringList formats = {QStringLiteral("mdy"), QStringLiteral("dmy"),
                                            QStringLiteral("ymd"), QStringLiteral("ydm"),
                                            QStringLiteral("myd"), QStringLiteral("dym")};
        if (!formats.contains(format))
            fail(2741, QStringLiteral("SET DATEFORMAT date order '%1' is invalid.").arg(value),
                 option.line);
        session_.dateFormat = format;
    }
    if (name == QLatin1String("LANGUAGE"))
        session_.dateFormat = same(value, "us_english") || same(value, "english")
                                  ? QStringLiteral("mdy")
                                  : QStringLiteral("dmy");
}

void BatchStream::setVariable(TokenCursor& cursor) {
    const Token& name = cursor.next();
    const Token& op = cursor.next();
    const std::span<const Token> expression = cursor.rest();
    if (expression.empty()) cursor.failHere();
    if (op.is("=")) {
        variables().assign(session_, name.source.toString(),
                           evaluate(session_, expression, variables()));
        return;
    }
    if (op.source.size() != 2 || op.source[1] != u'=') failSyntax(op);
    const QString text = name.source.toString() + u' ' + op.source[0] + QStringLiteral(" (") +
                         sourceText(expression) + u')';
    const std::vector<Token> tokens = tokenize(text, session_.quotedIdentifier);
    variables().assign(
        session_, name.source.toString(),
        evaluate(session_, std::span<const Token>(tokens).first(tokens.size() - 1), variables()));
}

void BatchStream::setIdentityInsert(TokenCursor& cursor) {
    const ObjectName name = cursor.objectName();
    const bool on = cursor.accept("ON");
    if (!on) cursor.expect("OFF");
    cursor.expectEnd();
    Database& database =
        name.database.isEmpty() ? *session_.current : session_.store->database(name.database);
    const Catalog catalog(session_, database);
    const ObjectFacts table = catalog.requireTable(name, "index");
    bool identity = false;
    for (const ColumnFacts& column : catalog.columns(table.id))
        identity = identity || !column.seed.isNull();
    if (!identity)
        fail(8106,
             QStringLiteral(
                 "Table '%1' does not have the identity property. Cannot perform SET operation.")
                 .arg(name.display()),
             name.line);
    if (on && session_.identityInsert && session_.identityInsertTable != table.id) {
        const auto other = catalog.find(session_.identityInsertTable);
        fail(8107,
             QStringLiteral("IDENTITY_INSERT is already ON for table '%1'. Cannot perform SET "
                            "operation for "
                            "table '%2'.")
                 .arg(other ? database.name + u'.' + other->display() : QString(), name.display()),
             name.line);
    }
    if (!on && session_.identityInsertTable != table.id) return;
    session_.identityInsert = on;
    session_.identityInsertTable = on ? table.id : 0;
}

std::vector<StoredValue> BatchStream::values(TokenCursor& cursor) {
    std::vector<StoredValue> result;
    while (cursor.accept(",")) result.push_back(evaluate(session_, cursor.until({}), variables()));
    return result;
}

void BatchStream::raise(qint32 number, int severity, int state, const QString& text, int line) {
    raisedSeverity_ = severity;
    raisedState_ = state;
    fail(number, text, line);
}

void BatchStream::raiseError(std::span<const Token> tokens) {
    const int line = tokens.front().line;
    TokenCursor outer(tokens.subspan(1));
    if (!outer.is("(")) {
        // RAISERROR 50001 'text', the form of old scripts
        const StoredValue number = evaluate(session_, outer.rest().first(1), variables());
        outer.next();
        if (outer.atEnd()) outer.failHere();
        raise(qint32(number.toInteger()), 16, 1,
              evaluate(session_, outer.rest(), variables()).text(), line);
    }
    TokenCursor cursor(outer.parenthesised());
    const StoredValue message = evaluate(session_, cursor.until({}), variables());
    cursor.expect(",");
    const int severity = int(evaluate(session_, cursor.until({}), variables()).toInteger());
    cursor.expect(",");
    const int state = int(evaluate(session_, cursor.until({}), variables()).toInteger());
    const std::vector<StoredValue> arguments = values(cursor);
    cursor.expectEnd();
    if (outer.accept("WITH")) do {
            if (!outer.accept("NOWAIT") && !outer.accept("LOG") && !outer.accept("SETERROR"))
                outer.failHere();
        } while (outer.accept(","));
    outer.expectEnd();
    const bool byNumber = message.kind == StoredValue::Kind::Integer;
    const qint32 number = byNumber ? qint32(message.integer) : 50000;
    const QString text = byNumber ? QStringLiteral(
                                        "Error %1, severity %2, state %3 was raised, but no "
                                        "message with that error number "
                                        "was found in sys.messages.")
                                        .arg(number)
                                        .arg(severity)
                                        .arg(state)
                                  : formatMessage(message.text(), arguments);
    if (severity > 10) raise(number, severity, state, text, line);
    session_.messages.push_back({severity, number, line, text});
}

void BatchStream::throwError(std::span<const Token> tokens) {
    const int line = tokens.front().line;
    TokenCursor cursor(tokens.subspan(1));
    if (cursor.atEnd()) {
        if (!session_.caught)
            fail(10704,
                 QStringLiteral(
                     "To rethrow an error, a THROW statement must be used inside a CATCH block. "
                     "Insert the THROW statement inside a CATCH block, or add error parameters "
                     "to "
                     "the THROW statement."),
                 line);
        const SessionState::CaughtError error = *session_.caught;
        raise(error.number, error.severity, error.state, error.text, error.line);
    }
    const qint64 number = evaluate(session_, cursor.until({}), variables()).toInteger();
    cursor.expect(",");
    const QString text = evaluate(session_, cursor.until({}), variables()).text();
    cursor.expect(",");
    const int state = int(evaluate(session_, cursor.until({}), variables()).toInteger());
    cursor.expectEnd();
    raise(qint32(number), 16, state, text, line);
}

void BatchStream::dbcc(std::span<const Token> tokens) {
    TokenCursor cursor(tokens.subspan(1));
    const Token& command = cursor.peek();
    const QString name = cursor.name().toUpper();
    static const QSet<QString> checks = [] {
        QSet<QString> set;
        for (const char* word :
             {"CHECKALLOC", "CHECKCATALOG", "CHECKCONSTRAINTS", "CHECKDB", "CHECKTABLE",
              "CLEANTABLE", "DBREINDEX", "DROPCLEANBUFFERS", "FREEPROCCACHE", "FREESYSTEMCACHE",
              "INDEXDEFRAG", "SHRINKDATABASE", "SHRINKFILE", "TRACEON", "TRACEOFF", "UPDATEUSAGE"})
            set.insert(QLatin1String(word));
        return set;
    }();
    if (checks.contains(name)) return;  // they look after pages and caches that aren't here
    if (name != QLatin1String("CHECKIDENT"))
        fail(2526,
             QStringLiteral("Incorrect DBCC statement: the embedded server doesn't know DBCC %1.")
                 .arg(name),
             command.line);
    TokenCursor inner(cursor.parenthesised());
    const ObjectName table = ObjectName::parse(inner.nameOrText());
    bool reseed = false;
    QString seed;
    if (inner.accept(",")) {
        if (inner.accept("RESEED")) {
            reseed = true;
            if (inner.accept(",")) seed = inner.wholeNumber();
        } else {
            inner.expect("NORESEED");
        }
    }
    inner.expectEnd();
    if (!reseed || seed.isNull()) return;
    Catalog catalog = Catalog::forWriting(session_, table);
    const ObjectFacts found = catalog.requireTable(table, "index");
    CatalogQuery(
        catalog.handle(),
        "UPDATE \"zov$columns\" SET identity_last=? WHERE id=? AND identity_seed IS NOT NULL")
        .add(seed)
        .add(found.id)
        .run();
}

}  // namespace zov::local
