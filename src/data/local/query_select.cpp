// SELECT and expressions from tokens to values: parse, translate, prepare or find
// a statement of the same shape, bind, run.
#include "data/local/query_parser.h"
#include "data/local/query_result.h"
#include "data/local/query_translator.h"
#include "data/local/query_values.h"
#include "data/local/server_store.h"

namespace zov::local {

QueryParser::TypeReader typeReader(SessionState& session) {
    return [&session](std::span<const Token> tokens, qsizetype begin, qsizetype& end) {
        return parseDataType(session, tokens, begin, end);
    };
}

namespace {

/// What statements share that differ in their literals alone. Empty when the statement can't be
/// kept (it depends on variables).
QString shapeOf(const SessionState& session, std::span<const Token> tokens) {
    QString shape;
    shape.reserve(tokens.empty() ? 16 : (tokens.back().end() - tokens.front().position) + 16);
    shape += session.dateFormat;
    shape += session.quotedIdentifier ? u'q' : u's';
    shape += session.defaultSchema;
    for (const Token& token : tokens) {
        shape += u'\x1f';
        switch (token.kind) {
            case TokenKind::String:
                shape += token.source.startsWith(u'N') || token.source.startsWith(u'n') ? u'\x01'
                                                                                        : u'\x02';
                break;
            case TokenKind::Number:
                shape += literalValue(token).type.type == SqlType::Int ? u'\x03' : u'\x04';
                break;
            case TokenKind::Binary:
                shape += u'\x05';
                break;
            default:
                if (token.kind == TokenKind::Word && token.source.startsWith(u'@')) return {};
                // NEXT VALUE FOR writes, which is begun when it is translated.
                if (token.is("value") && &token != tokens.data() && (&token)[-1].is("next"))
                    return {};
                shape += token.source;
        }
    }
    return shape;
}

bool literalsMatch(const PreparedSelect& select, std::span<const Token> tokens) {
    for (const auto& [index, text] : select.fixedLiterals)
        if (tokens[size_t(index)].source != text) return false;
    return true;
}

std::shared_ptr<PreparedSelect> translateAndPrepare(SessionState& session,
                                                    std::span<const Token> tokens,
                                                    const Variables* variables,
                                                    std::vector<QString>* describe) {
    QueryParser parser(tokens, true, typeReader(session));
    const SelectPtr tree = parser.parseSelect();
    parser.expectEnd();
    Translator translator(session, variables);
    TranslatedSelect translated = translator.select(*tree);
    auto select = std::make_shared<PreparedSelect>();
    for (const OutputColumn& column : translated.columns) {
        ColumnInfo info = column.type.info;
        // An untyped NULL is an int to the server.
        if (column.type.untypedNull) info = makeType(SqlType::Int);
        info.name = column.name;
        select->columns.push_back(std::move(info));
        if (describe)
            describe->push_back(
                (column.collating.collation ? column.collating.collation : translator.names())
                    ->name());
    }
    if (describe) return select;
    select->database = &translator.database();
    sqlite3* handle = select->database->handle;
    attachDatabases(translator, *select);
    select->assignments = {translated.assignments.begin(), translated.assignments.end()};
    select->parameters = translator.parameters();
    select->usesTables = translator.usesTables();
    const std::set<int> bound = translator.boundLiterals();
    for (size_t i = 0; i < tokens.size(); ++i) {
        const TokenKind kind = tokens[i].kind;
        const bool literal =
            kind == TokenKind::String || kind == TokenKind::Number || kind == TokenKind::Binary;
        if (literal && !bound.count(int(i)))
            select->fixedLiterals.emplace_back(int(i), tokens[i].source.toString());
    }
    if (qEnvironmentVariableIsSet("ZOV_SHOW_SQL")) qInfo("%s", qPrintable(translated.sql));
    select->statement = prepareStatement(handle, translated.sql.toUtf8(), true);
    return select;
}

}  // namespace

void attachDatabases(const Translator& translator, PreparedSelect& select) {
    sqlite3* handle = select.database->handle;
    if (translator.attachments().empty()) return;
    const ServerStore::Hold hold(*select.database->store);
    for (const auto& [alias, file] : translator.attachments()) {
        const QByteArray attach = "ATTACH " + quotedText(file).toUtf8() + " AS " + alias.toUtf8();
        const int code = sqlite3_exec(handle, attach.constData(), nullptr, nullptr, nullptr);
        if (code != SQLITE_OK) throwQueryError(handle, code, nullptr);
        select.attached.append(alias);
    }
}

std::shared_ptr<PreparedSelect> prepareSelect(SessionState& session, std::span<const Token> tokens,
                                              Variables& variables) {
    const QString shape = shapeOf(session, tokens);
    QueryCache& own = QueryCache::of(*session.current);
    if (!shape.isEmpty()) {
        const auto known = own.selects.constFind(shape);
        if (known != own.selects.constEnd()) {
            bool refreshed = false;
            for (const auto& entry : known.value()) {
                if (entry->busy || !literalsMatch(*entry, tokens)) continue;
                if (entry->usesTables && !refreshed) {
                    const std::shared_ptr<PreparedSelect> held = entry;
                    own.refresh();  // may drop the list that is being walked
                    if (!own.selects.contains(shape)) break;
                    held->busy = true;
                    return held;
                }
                entry->busy = true;
                return entry;
            }
        }
    }
    std::shared_ptr<PreparedSelect> select =
        translateAndPrepare(session, tokens, &variables, nullptr);
    // What reads another database would outlive what is known of it.
    if (!shape.isEmpty() && select->attached.isEmpty() && select->database == session.current) {
        if (own.selectCount > 400) {
            own.selects.clear();
            own.selectCount = 0;
        }
        own.selects[shape].push_back(select);
        ++own.selectCount;
    }
    select->busy = true;
    return select;
}

std::unique_ptr<ResultStream> runSelect(SessionState& session, std::span<const Token> statement,
                                        Variables& variables) {
    std::shared_ptr<PreparedSelect> select = prepareSelect(session, statement, variables);
    struct Release {
        std::shared_ptr<PreparedSelect>& select;
        ~Release() {
            if (!select) return;
            sqlite3_reset(select->statement);
            select->busy = false;
        }
    } release{select};
    bindParameters(session, *select, statement, variables);
    if (select->assignments.empty()) {
        auto stream = streamOf(session, select);
        select.reset();
        return stream;
    }
    RunningGuard guard(select->database->handle, session.control);
    qint64 rows = 0;
    for (;;) {
        const int code = sqlite3_step(select->statement);
        if (code == SQLITE_DONE) break;
        if (code != SQLITE_ROW)
            throwQueryError(select->database->handle, code, session.control.get());
        // Each row assigns: the last one stays.
        for (size_t i = 0; i < select->assignments.size(); ++i)
            variables.assign(session, select->assignments[i],
                             columnValue(select->statement, int(i), select->columns[i]));
        ++rows;
    }
    session.rowCount = rows;
    return streamWithoutRows(rows);
}

std::vector<ColumnInfo> describeSelect(SessionState& session, std::span<const Token> statement,
                                       const Variables* variables,
                                       std::vector<QString>* collations) {
    std::vector<QString> unused;
    return translateAndPrepare(session, statement, variables, collations ? collations : &unused)
        ->columns;
}

namespace {

struct Prepared {
    sqlite3_stmt* statement = nullptr;
    ~Prepared() { sqlite3_finalize(statement); }
};

StoredValue evaluateTree(SessionState& session, const Expr& tree, std::span<const Token> tokens,
                         Variables& variables, bool asCondition) {
    Translator translator(session, &variables);
    QString text;
    ColumnInfo type;
    if (asCondition) {
        text = translator.condition(tree);
        type = makeType(SqlType::Bit);
    } else {
        const Sql value = translator.expression(tree);
        text = translator.use(value);
        type = value.type.info;
    }
    PreparedSelect select;
    select.database = &translator.database();
    sqlite3* handle = select.database->handle;
    attachDatabases(translator, select);
    select.parameters = translator.parameters();
    select.statement = prepareStatement(
        handle, (translator.withClause() + QStringLiteral(" SELECT ") + text).toUtf8(), false);
    bindParameters(session, select, tokens, variables);
    RunningGuard guard(handle, session.control);
    const int code = sqlite3_step(select.statement);
    if (code != SQLITE_ROW) throwQueryError(handle, code, session.control.get());
    return columnValue(select.statement, 0, type);
}

}  // namespace

StoredValue evaluateExpr(SessionState& session, const Expr& tree, std::span<const Token> tokens,
                         Variables& variables) {
    return evaluateTree(session, tree, tokens, variables, false);
}

StoredValue evaluate(SessionState& session, std::span<const Token> expression,
                     Variables& variables) {
    // Most are a literal or a variable alone.
    if (expression.size() == 1) {
        const Token& token = expression[0];
        if (token.kind == TokenKind::String || token.kind == TokenKind::Number ||
            token.kind == TokenKind::Binary)
            return literalValue(token);
        if (const StoredValue* value =
                token.kind == TokenKind::Word ? variables.find(token.source.toString()) : nullptr)
            return *value;
    }
    QueryParser parser(expression, true, typeReader(session));
    const ExprPtr tree = parser.parseExpression();
    parser.expectEnd();
    return evaluateTree(session, *tree, expression, variables, false);
}

bool evaluateCondition(SessionState& session, std::span<const Token> condition,
                       Variables& variables) {
    QueryParser parser(condition, true, typeReader(session));
    const ExprPtr tree = parser.parseCondition();
    parser.expectEnd();
    const StoredValue value = evaluateTree(session, *tree, condition, variables, true);
    return !value.isNull() && value.toInteger() != 0;
}

QString translateForSqlite(SessionState& session, std::span<const Token> expression, int tableId,
                           ColumnInfo* type, QString* collation) {
    QueryParser parser(expression, false, typeReader(session));
    const ExprPtr tree = parser.parseExpression();
    parser.expectEnd();
    Translator translator(session, nullptr);
    translator.keepWhole();
    if (tableId) {
        if (auto table = QueryCache::of(*session.current).tableById(tableId))
            translator.addTable(table, QString(), true);
    }
    const Sql value = translator.expression(*tree);
    if (type) {
        *type = value.type.info;
        type->name.clear();
    }
    if (collation && value.collating.collation) *collation = value.collating.collation->name();
    return translator.use(value);
}

namespace {

template <typename Read>
qsizetype endOf(std::span<const Token> tokens, qsizetype begin, Read read) {
    // Types are read by their shape alone: what they are doesn't matter here.
    const auto ignoreType = [](std::span<const Token> list, qsizetype at, qsizetype& end) {
        end = at + 1;
        while (end + 1 < qsizetype(list.size()) && list[size_t(end)].is(".")) end += 2;
        if (end < qsizetype(list.size()) && list[size_t(end)].is("(")) {
            while (end < qsizetype(list.size()) && !list[size_t(end)].is(")")) ++end;
            ++end;
        }
        return ColumnInfo();
    };
    QueryParser parser(tokens, false, ignoreType, begin);
    read(parser);
    return parser.position();
}

}  // namespace

qsizetype expressionEnd(std::span<const Token> tokens, qsizetype begin) {
    return endOf(tokens, begin, [](QueryParser& parser) { parser.parseCondition(); });
}

qsizetype selectEnd(std::span<const Token> tokens, qsizetype begin) {
    return endOf(tokens, begin, [](QueryParser& parser) { parser.parseSelect(); });
}

qsizetype dmlEnd(std::span<const Token> tokens, qsizetype begin) {
    // WITH ... in front says nothing of what follows it.
    qsizetype at = begin;
    int depth = 0;
    while (at < qsizetype(tokens.size())) {
        const Token& token = tokens[size_t(at)];
        if (token.is("(")) ++depth;
        if (token.is(")")) --depth;
        if (depth == 0 &&
            (token.is("insert") || token.is("update") || token.is("delete") || token.is("select")))
            break;
        ++at;
    }
    const Token& verb = at < qsizetype(tokens.size()) ? tokens[size_t(at)] : tokens.back();
    return endOf(tokens, begin, [&](QueryParser& parser) {
        if (verb.is("insert"))
            parser.parseInsert();
        else if (verb.is("update"))
            parser.parseUpdate();
        else if (verb.is("delete"))
            parser.parseDelete();
        else
            parser.parseSelect();
    });
}

ColumnInfo parseDataType(SessionState& session, std::span<const Token> tokens, qsizetype begin,
                         qsizetype& end) {
    end = begin;
    if (begin >= qsizetype(tokens.size()) || !tokens[size_t(begin)].isName())
        failNear(begin < qsizetype(tokens.size()) ? tokens[size_t(begin)] : Token());
    QStringList path{tokens[size_t(end++)].name()};
    while (end + 1 < qsizetype(tokens.size()) && tokens[size_t(end)].is(".") &&
           tokens[size_t(end + 1)].isName()) {
        path.append(tokens[size_t(end + 1)].name());
        end += 2;
    }
    ColumnInfo info;
    const bool system =
        path.size() == 1 || path[path.size() - 2].compare(u"sys", Qt::CaseInsensitive) == 0;
    bool known = system && typeByName(path.last(), info);
    if (!known && session.current) {
        QueryCache& cache = QueryCache::of(*session.current);
        LookUp find(cache,
                    "SELECT xtype, length, prec, scale, allownulls FROM \"zov$types\" WHERE name = "
                    "?1 AND isuser");
        find.bind(path.last());
        if (find.next()) {
            info =
                typeFromCatalogue(int(find.integer(0)), int(find.integer(1)), int(find.integer(2)),
                                  int(find.integer(3)), find.integer(4) != 0);
            known = true;
        }
    }
    if (!known) {
        DbError error(ado_error::SyntaxError,
                      QStringLiteral("Type %1 is not a defined system type.").arg(path.join(u'.')),
                      QStringLiteral("42000"), 243);
        error.line = tokens[size_t(begin)].line;
        throw error;
    }
    // "double precision", "character varying", "char varying"
    if (end < qsizetype(tokens.size()) && tokens[size_t(end)].is("precision") &&
        path[0].compare(u"double", Qt::CaseInsensitive) == 0)
        ++end;
    if (end < qsizetype(tokens.size()) && tokens[size_t(end)].is("varying")) {
        info.type = info.type == SqlType::NChar    ? SqlType::NVarChar
                    : info.type == SqlType::Binary ? SqlType::VarBinary
                                                   : SqlType::VarChar;
        ++end;
    }
    const bool sized = info.type == SqlType::Char || info.type == SqlType::VarChar ||
                       info.type == SqlType::NChar || info.type == SqlType::NVarChar ||
                       info.type == SqlType::Binary || info.type == SqlType::VarBinary;
    if (end < qsizetype(tokens.size()) && tokens[size_t(end)].is("(")) {
        std::vector<QString> sizes;
        for (++end; end < qsizetype(tokens.size()) && !tokens[size_t(end)].is(")"); ++end)
            if (!tokens[size_t(end)].is(","))
                sizes.push_back(tokens[size_t(end)].source.toString());
        if (end >= qsizetype(tokens.size())) failNear(tokens.back());
        ++end;
        if (!sizes.empty()) {
            const bool max = sizes[0].compare(u"max", Qt::CaseInsensitive) == 0;
            const int first = max ? -1 : sizes[0].toInt();
            if (sized) {
                info.size = first;
            } else if (info.type == SqlType::Decimal || info.type == SqlType::Numeric) {
                info.precision = first;
                info.scale = sizes.size() > 1 ? sizes[1].toInt() : 0;
                if (first < 1 || first > 38 || info.scale > first)
                    failWith(2750,
                             QStringLiteral("Column or parameter #1: Specified column precision %1 "
                                            "is greater than the maximum precision of 38.")
                                 .arg(first));
            } else if (info.type == SqlType::Time || info.type == SqlType::DateTime2 ||
                       info.type == SqlType::DateTimeOffset) {
                info.scale = std::clamp(first, 0, 7);
            } else if (info.type == SqlType::Float && first <= 24) {
                info.type = SqlType::Real;
            }
        }
    } else if (sized && info.size == 1 && path[0].compare(u"sysname", Qt::CaseInsensitive) != 0) {
        // CAST and CONVERT without a size: thirty. Declarations read their own default.
        info.size = 30;
    }
    return info;
}

}  // namespace zov::local
