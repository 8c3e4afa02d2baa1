// Views, procedures, functions, triggers, defaults, rules, synonyms and sequences. A module keeps
// the text of its whole batch; nothing of it is run.
#include "data/local/ddl.h"
#include "data/local/definitions.h"
#include "data/local/query_engine.h"
#include "data/local/server_store.h"

#include <algorithm>

namespace zov::local {
namespace {

bool same(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// The batch with its verb as the server stores it: ALTER becomes CREATE; of CREATE OR ALTER the two
// words go and the blanks around them stay.
QString storedText(const Definition& statement, ModuleVerb verb) {
    QString text = statement.batchText;
    const Token& first = statement.tokens[0];
    if (verb == ModuleVerb::Alter) {
        text.replace(first.position, first.source.size(), QStringLiteral("CREATE"));
    } else if (verb == ModuleVerb::CreateOrAlter) {
        for (const size_t word : {2, 1}) {
            const Token& token = statement.tokens[word];
            text.remove(token.position, token.source.size());
        }
    }
    return text;
}

struct ModuleOptions {
    bool encrypted = false;
    QStringList words;
};

// WITH ENCRYPTION, SCHEMABINDING, RECOMPILE, EXECUTE AS ..., up to AS, FOR, AFTER, BEGIN or RETURN.
ModuleOptions readOptions(TokenCursor& cursor) {
    ModuleOptions options;
    if (!cursor.accept("WITH")) return options;
    do {
        if (cursor.accept("EXECUTE") || cursor.accept("EXEC")) {
            cursor.expect("AS");
            cursor.nameOrText();
        } else if (cursor.accept({"RETURNS", "NULL", "ON", "NULL", "INPUT"}) ||
                   cursor.accept({"CALLED", "ON", "NULL", "INPUT"})) {
            continue;
        } else {
            const QString word = cursor.name().toUpper();
            options.encrypted = options.encrypted || word == QLatin1String("ENCRYPTION");
            options.words.push_back(word);
            if (word == QLatin1String("INLINE") && cursor.accept("=")) cursor.next();
        }
    } while (cursor.accept(","));
    return options;
}

QString settingsOf(const SessionState& session, const QStringList& words) {
    QStringList info = words;
    info.removeAll(QStringLiteral("ENCRYPTION"));
    if (session.quotedIdentifier) info.push_back(QStringLiteral("QUOTED_IDENTIFIER"));
    if (session.ansiNulls) info.push_back(QStringLiteral("ANSI_NULLS"));
    return info.join(u' ');
}

[[noreturn]] void failMissing(const ObjectName& name) {
    fail(208, QStringLiteral("Invalid object name '%1'.").arg(name.display()), name.line,
         ado_error::NoSuchTable);
}

// Makes the object, or takes the one that ALTER names. The result's id is 0 for a new one.
ObjectFacts placeModule(Catalog& catalog, const ObjectName& name, const QStringList& kinds,
                        ModuleVerb verb) {
    if (!name.database.isEmpty() && !same(name.database, catalog.database().name))
        fail(166,
             QStringLiteral(
                 "'CREATE/ALTER' does not allow specifying the database name as a prefix to the "
                 "object name."),
             name.line);
    const std::optional<ObjectFacts> found = catalog.find(name);
    if (verb == ModuleVerb::Alter && (!found || !kinds.contains(found->xtype))) failMissing(name);
    if (verb != ModuleVerb::Create && found) {
        if (!kinds.contains(found->xtype))
            fail(2010,
                 QStringLiteral(
                     "Cannot perform alter on '%1' because it is an incompatible object type.")
                     .arg(name.display()),
                 name.line);
        return *found;
    }
    ObjectFacts fresh;
    fresh.name = name.name;
    fresh.schemaId = catalog.requireSchema(name.schema);
    fresh.schema = catalog.schemaName(fresh.schemaId);
    catalog.requireFreeName(fresh.name, fresh.schemaId);
    return fresh;
}

void storeModule(Catalog& catalog, ObjectFacts& module, const QString& xtype, int parent,
                 const QString& info, const QString& text, bool encrypted) {
    if (module.id == 0) {
        module.id = catalog.addObject(module.name, module.schemaId, xtype, parent, info);
    } else {
        CatalogQuery(catalog.handle(),
                     "UPDATE \"zov$objects\" SET xtype=?, info=?, parent_obj=? WHERE id=?")
            .add(xtype)
            .add(info)
            .add(parent)
            .add(module.id)
            .run();
        catalog.touchObject(module.id);
    }
    module.xtype = xtype;
    catalog.setText(module.id, text, encrypted);
}

void writeResultColumns(Catalog& catalog, int id, const std::vector<ColumnInfo>& columns,
                        const std::vector<QString>& collations, const std::vector<QString>& names) {
    catalog.removeColumns(id);
    int colid = 0;
    for (const ColumnInfo& info : columns) {
        ColumnFacts column;
        column.colid = column.colorder = ++colid;
        column.name = size_t(colid) <= names.size() ? names[size_t(colid) - 1] : info.name;
        if (column.name.isEmpty())
            fail(4511, QStringLiteral(
                           "Create View or Function failed because no column name was specified "
                           "for column %1.")
                           .arg(colid));
        column.type = typeFacts(info);
        column.nullable = info.nullable;
        if (column.type.isText()) column.collation = collations[size_t(colid) - 1];
        catalog.addColumn(id, column);
    }
}

// The tokens of the SELECT behind AS, without WITH CHECK OPTION and a last ";".
std::span<const Token> selectOf(std::span<const Token> tokens) {
    while (!tokens.empty() && (tokens.back().kind == TokenKind::End || tokens.back().is(";")))
        tokens = tokens.first(tokens.size() - 1);
    const size_t count = tokens.size();
    if (count > 3 && tokens[count - 3].is("WITH") && tokens[count - 2].is("CHECK") &&
        tokens[count - 1].is("OPTION"))
        tokens = tokens.first(count - 3);
    return tokens;
}

// Whether the object that an error 208 names is really not there, rather than of a kind that the
// query side doesn't read (a function's rows, a synonym, another database).
bool isMissing(const Catalog& catalog, const QString& message) {
    ObjectName name;
    try {
        name = ObjectName::parse(message.section(u'\'', 1, -2));
    } catch (const DbError&) {
        return false;
    }
    const bool system = same(name.schema, QStringLiteral("sys")) ||
                        same(name.schema, QStringLiteral("INFORMATION_SCHEMA"));
    return !system && name.database.isEmpty() && !name.name.isEmpty() && !catalog.find(name);
}

// The columns are described where that is possible; a view over something that the query side can't
// read is a view all the same.
std::vector<ColumnInfo> describe(Catalog& catalog, std::span<const Token> select,
                                 const Variables* parameters, std::vector<QString>& collations) {
    try {
        return describeSelect(catalog.session(), select, parameters, &collations);
    } catch (const DbError& error) {
        if (error.native == 207 || (error.native == 208 && isMissing(catalog, error.description)))
            throw;
    }
    return {};
}

// The SELECT of RETURN (SELECT ...), with or without parentheses.
std::span<const Token> returnedSelect(std::span<const Token> tokens) {
    tokens = selectOf(tokens.subspan(1));
    while (tokens.size() > 2 && tokens.front().is("(") && tokens.back().is(")"))
        tokens = tokens.subspan(1, tokens.size() - 2);
    return tokens;
}

void defineView(Catalog& catalog, const Definition& statement, TokenCursor& cursor,
                ModuleVerb verb) {
    const ObjectName name = cursor.objectName();
    std::vector<QString> names;
    if (cursor.is("(")) {
        std::vector<bool> unused;
        readKeyColumns(cursor, names, unused);
    }
    const ModuleOptions options = readOptions(cursor);
    cursor.expect("AS");
    if (cursor.atEnd()) cursor.failHere();
    const std::span<const Token> select = selectOf(cursor.rest());
    if (!cursor.is("SELECT") && !cursor.is("WITH") && !cursor.is("(")) cursor.failHere();
    ObjectFacts view = placeModule(catalog, name, {QStringLiteral("V")}, verb);
    storeModule(catalog, view, QStringLiteral("V"), 0, settingsOf(catalog.session(), options.words),
                storedText(statement, verb), options.encrypted);
    std::vector<QString> collations;
    const std::vector<ColumnInfo> columns = describe(catalog, select, nullptr, collations);
    writeResultColumns(catalog, view.id, columns, collations, names);
}

// Parameters are not kept; their types have to be known, as the server demands. `into` gets those
// that the module's text may mention as values.
void readParameters(const Catalog& catalog, TokenCursor& cursor, bool function,
                    Variables* into = nullptr) {
    const bool braces = function || cursor.is("(");
    if (braces) cursor.expect("(");
    if (braces && cursor.accept(")")) return;
    while (cursor.peek().source.startsWith(u'@')) {
        const QString name = cursor.next().source.toString();
        cursor.accept("AS");
        if (!cursor.accept("CURSOR")) {
            const TypeFacts type = readType(catalog, cursor);
            if (into) into->declare(name, columnInfo(type, true));
        }
        cursor.accept("VARYING");
        cursor.accept({"NOT", "NULL"});
        cursor.accept("NULL");
        if (cursor.accept("=")) {
            if (!cursor.accept("-")) cursor.accept("+");
            cursor.next();
        }
        while (cursor.accept("OUTPUT") || cursor.accept("OUT") || cursor.accept("READONLY")) {
        }
        if (!cursor.accept(",")) break;
    }
    if (braces) cursor.expect(")");
}

void defineProcedure(Catalog& catalog, const Definition& statement, TokenCursor& cursor,
                     ModuleVerb verb) {
    const ObjectName name = cursor.objectName();
    int number = 1;
    if (cursor.accept(";")) number = cursor.wholeNumber().toInt();
    readParameters(catalog, cursor, false);
    const ModuleOptions options = readOptions(cursor);
    cursor.accept({"FOR", "REPLICATION"});
    cursor.expect("AS");
    if (number > 1) {
        // A numbered procedure is a further text of the first one's object.
        const std::optional<ObjectFacts> first = catalog.find(name);
        if (!first || first->xtype != QLatin1String("P"))
            fail(2730,
                 QStringLiteral(
                     "Cannot create procedure '%1' with a group number of %2 because a procedure "
                     "with the same name and a group number of 1 does not currently exist in the "
                     "database. Must execute CREATE PROCEDURE '%1';1 first.")
                     .arg(name.display())
                     .arg(number),
                 name.line);
        catalog.appendText(first->id, storedText(statement, verb), options.encrypted);
        return;
    }
    ObjectFacts procedure = placeModule(catalog, name, {QStringLiteral("P")}, verb);
    storeModule(catalog, procedure, QStringLiteral("P"), 0,
                settingsOf(catalog.session(), options.words), storedText(statement, verb),
                options.encrypted);
}

void defineFunction(Catalog& catalog, const Definition& statement, TokenCursor& cursor,
                    ModuleVerb verb) {
    const ObjectName name = cursor.objectName();
    Variables parameters;
    readParameters(catalog, cursor, true, &parameters);
    cursor.expect("RETURNS");
    QString xtype = QStringLiteral("FN");
    TableParts result;
    if (cursor.peek().source.startsWith(u'@')) {
        cursor.next();
        cursor.expect("TABLE");
        xtype = QStringLiteral("TF");
        cursor.expect("(");
        do readTableElement(catalog, cursor, result);
        while (cursor.accept(","));
        cursor.expect(")");
    } else if (cursor.accept("TABLE")) {
        xtype = QStringLiteral("IF");
    } else {
        readType(catalog, cursor);
    }
    const ModuleOptions options = readOptions(cursor);
    cursor.accept("AS");
    if (cursor.atEnd()) cursor.failHere();
    if (cursor.is("EXTERNAL"))
        fail(40000, QStringLiteral("The embedded server keeps no functions of assemblies."),
             name.line);
    if (xtype == QLatin1String("IF") ? !cursor.is("RETURN") : !cursor.is("BEGIN"))
        cursor.failHere();
    const std::span<const Token> returned = returnedSelect(cursor.rest());
    const QStringList kinds = {QStringLiteral("FN"), QStringLiteral("IF"), QStringLiteral("TF")};
    ObjectFacts function = placeModule(catalog, name, kinds, verb);
    storeModule(catalog, function, xtype, 0, settingsOf(catalog.session(), options.words),
                storedText(statement, verb), options.encrypted);
    if (xtype == QLatin1String("TF")) {
        catalog.removeColumns(function.id);
        std::vector<ConstraintSpec> none;
        writeColumns(catalog, function, result.columns, none);
    } else if (xtype == QLatin1String("IF")) {
        std::vector<QString> collations;
        const std::vector<ColumnInfo> columns =
            describe(catalog, returned, &parameters, collations);
        writeResultColumns(catalog, function.id, columns, collations, {});
    }
}

void defineTrigger(Catalog& catalog, const Definition& statement, TokenCursor& cursor,
                   ModuleVerb verb) {
    const ObjectName name = cursor.objectName();
    cursor.expect("ON");
    if (cursor.is("DATABASE") || cursor.accept({"ALL", "SERVER"}))
        fail(40000,
             QStringLiteral("The embedded server keeps triggers of tables and views only ('%1').")
                 .arg(name.display()),
             name.line);
    ObjectName ownerName = cursor.objectName();
    const ModuleOptions options = readOptions(cursor);
    QStringList words;
    if (cursor.accept({"INSTEAD", "OF"})) {
        words.push_back(QStringLiteral("INSTEAD"));
    } else if (cursor.accept("FOR") || cursor.accept("AFTER")) {
        words.push_back(QStringLiteral("AFTER"));
    } else {
        cursor.failHere();
    }
    do {
        const QString event = cursor.name().toUpper();
        if (event != QLatin1String("INSERT") && event != QLatin1String("UPDATE") &&
            event != QLatin1String("DELETE"))
            fail(1084, QStringLiteral("'%1' is an invalid event type.").arg(event),
                 cursor.peek().line);
        words.push_back(event);
    } while (cursor.accept(","));
    cursor.accept({"WITH", "APPEND"});
    const bool notForReplication = cursor.accept({"NOT", "FOR", "REPLICATION"});
    cursor.expect("AS");
    if (ownerName.schema.isEmpty()) ownerName.schema = name.schema;
    const std::optional<ObjectFacts> owner = catalog.find(ownerName);
    if (!owner || (!owner->isTable() && owner->xtype != QLatin1String("V")))
        fail(8197,
             QStringLiteral("The object '%1' does not exist or is invalid for this operation.")
                 .arg(ownerName.display()),
             ownerName.line);
    // A trigger lives in its table's schema.
    ObjectName placed = name;
    if (placed.schema.isEmpty()) placed.schema = owner->schema;
    if (!same(placed.schema, owner->schema))
        fail(2103,
             QStringLiteral(
                 "Cannot create trigger '%1' because its schema is different from the schema of "
                 "the target table or view.")
                 .arg(name.display()),
             name.line);
    ObjectFacts trigger = placeModule(catalog, placed, {QStringLiteral("TR")}, verb);
    storeModule(catalog, trigger, QStringLiteral("TR"), owner->id,
                settingsOf(catalog.session(), words + options.words), storedText(statement, verb),
                options.encrypted);
    catalog.setDetail(1, trigger.id, 0, "not_for_replication",
                      notForReplication ? QStringLiteral("1") : QString());
}

}  // namespace

void defineModule(SessionState& session, const Definition& statement) {
    TokenCursor cursor(statement.tokens);
    ModuleVerb verb = ModuleVerb::Create;
    if (cursor.accept("ALTER")) {
        verb = ModuleVerb::Alter;
    } else {
        cursor.expect("CREATE");
        if (cursor.accept({"OR", "ALTER"})) verb = ModuleVerb::CreateOrAlter;
    }
    const QString kind = cursor.peek().source.toString().toUpper();
    if (!statement.opensBatch)
        fail(111,
             QStringLiteral("'CREATE/ALTER %1' must be the first statement in a query batch.")
                 .arg(kind == QLatin1String("PROC") ? QStringLiteral("PROCEDURE") : kind),
             cursor.peek().line);
    cursor.next();
    Catalog catalog = Catalog::forWriting(session);
    if (kind == QLatin1String("VIEW"))
        defineView(catalog, statement, cursor, verb);
    else if (kind == QLatin1String("FUNCTION"))
        defineFunction(catalog, statement, cursor, verb);
    else if (kind == QLatin1String("TRIGGER"))
        defineTrigger(catalog, statement, cursor, verb);
    else
        defineProcedure(catalog, statement, cursor, verb);
}

void dropModules(SessionState& session, TokenCursor& cursor, const QString& kind) {
    static const QHash<QString, QStringList> kinds = {
        {QStringLiteral("VIEW"), {QStringLiteral("V")}},
        {QStringLiteral("PROCEDURE"), {QStringLiteral("P")}},
        {QStringLiteral("FUNCTION"),
         {QStringLiteral("FN"), QStringLiteral("IF"), QStringLiteral("TF")}},
        {QStringLiteral("TRIGGER"), {QStringLiteral("TR")}},
        {QStringLiteral("DEFAULT"), {QStringLiteral("D")}},
        {QStringLiteral("RULE"), {QStringLiteral("R")}},
        {QStringLiteral("SYNONYM"), {QStringLiteral("SN")}},
        {QStringLiteral("SEQUENCE"), {QStringLiteral("SO")}}};
    const bool ifExists = cursor.accept({"IF", "EXISTS"});
    do {
        const ObjectName name = cursor.objectName();
        Catalog catalog = Catalog::forWriting(session, name);
        const std::optional<ObjectFacts> found = catalog.find(name);
        const bool fits = found && kinds.value(kind).contains(found->xtype) &&
                          (kind != QLatin1String("DEFAULT") || found->parent == 0);
        if (!fits) {
            if (ifExists && !found) continue;
            if (found)
                fail(3705,
                     QStringLiteral("Cannot use DROP %1 with '%2' because '%2' is not a %3.")
                         .arg(kind, name.display(), kind.toLower()),
                     name.line);
            fail(3701,
                 QStringLiteral(
                     "Cannot drop the %1 '%2', because it does not exist or you do not have "
                     "permission.")
                     .arg(kind.toLower(), name.display()),
                 name.line);
        }
        if (found->xtype == QLatin1String("D") || found->xtype == QLatin1String("R")) {
            CatalogQuery bound(
                catalog.handle(),
                "SELECT 1 FROM \"zov$columns\" WHERE cdefault=?1 OR crule=?1 UNION ALL "
                "SELECT 1 FROM \"zov$details\" WHERE class=6 AND name IN ('default', "
                "'rule') AND value=CAST(?1 AS TEXT)");
            bound.add(found->id);
            if (bound.step())
                fail(3716,
                     QStringLiteral(
                         "The %1 '%2' cannot be dropped because it is bound to one or more "
                         "columns.")
                         .arg(kind.toLower(), name.display()),
                     name.line);
        }
        removeTable(catalog, *found);
    } while (cursor.accept(","));
    if (kind == QLatin1String("TRIGGER") && cursor.accept("ON")) cursor.objectName();
    cursor.expectEnd();
}

void createDefaultOrRule(SessionState& session, const Definition& statement) {
    TokenCursor cursor(statement.tokens);
    cursor.expect("CREATE");
    const bool rule = cursor.next().is("RULE");
    const ObjectName name = cursor.objectName();
    cursor.expect("AS");
    if (cursor.atEnd()) cursor.failHere();
    Catalog catalog = Catalog::forWriting(session, name);
    const int schema = catalog.requireSchema(name.schema);
    const int id =
        catalog.addObject(name.name, schema, rule ? QStringLiteral("R") : QStringLiteral("D"));
    catalog.setText(id, statement.batchText);
}

void createSynonym(SessionState& session, TokenCursor& cursor) {
    const ObjectName name = cursor.objectName();
    cursor.expect("FOR");
    const ObjectName base = cursor.objectName();
    cursor.expectEnd();
    Catalog catalog = Catalog::forWriting(session, name);
    QString path;
    for (const QString& part : {base.server, base.database, base.schema})
        if (!part.isEmpty()) path += bracketed(part) + u'.';
    catalog.addObject(name.name, catalog.requireSchema(name.schema), QStringLiteral("SN"), 0,
                      path + bracketed(base.name));
}

void createSequence(SessionState& session, TokenCursor& cursor, bool alter) {
    const ObjectName name = cursor.objectName();
    Catalog catalog = Catalog::forWriting(session, name);
    QHash<QString, QString> facts = {{QStringLiteral("type"), QStringLiteral("127")},
                                     {QStringLiteral("increment"), QStringLiteral("1")},
                                     {QStringLiteral("cycle"), QStringLiteral("0")},
                                     {QStringLiteral("cache"), QStringLiteral("1")},
                                     {QStringLiteral("size"), QString()},
                                     {QStringLiteral("prec"), QStringLiteral("19")}};
    std::optional<ObjectFacts> found;
    if (alter) {
        found = catalog.find(name);
        if (!found || found->xtype != QLatin1String("SO")) failMissing(name);
        for (const QString& part : found->info.split(u' '))
            facts[part.section(u'=', 0, 0)] = part.section(u'=', 1);
    }
    TypeFacts type;
    type.xtype = facts[QStringLiteral("type")].toInt();
    if (cursor.accept("AS")) {
        type = readType(catalog, cursor);
        if (!type.isInteger() && !((type.xtype == 106 || type.xtype == 108) && type.scale == 0))
            fail(11702,
                 QStringLiteral(
                     "The sequence object '%1' must be of data type int, bigint, smallint, "
                     "tinyint, or decimal or numeric with a scale of 0.")
                     .arg(name.display()),
                 name.line);
        facts[QStringLiteral("type")] = QString::number(type.xtype);
        facts[QStringLiteral("prec")] = QString::number(type.prec.value_or(19));
    }
    bool restart = false;
    while (!cursor.atEnd()) {
        if (cursor.accept({"START", "WITH"})) {
            facts[QStringLiteral("start")] = cursor.wholeNumber();
        } else if (cursor.accept("RESTART")) {
            restart = true;
            if (cursor.accept("WITH")) facts[QStringLiteral("start")] = cursor.wholeNumber();
        } else if (cursor.accept({"INCREMENT", "BY"})) {
            facts[QStringLiteral("increment")] = cursor.wholeNumber();
        } else if (cursor.accept("MINVALUE")) {
            facts[QStringLiteral("min")] = cursor.wholeNumber();
        } else if (cursor.accept("MAXVALUE")) {
            facts[QStringLiteral("max")] = cursor.wholeNumber();
        } else if (cursor.accept("CYCLE")) {
            facts[QStringLiteral("cycle")] = QStringLiteral("1");
        } else if (cursor.accept("CACHE")) {
            facts[QStringLiteral("cache")] = QStringLiteral("1");
            if (cursor.peek().kind == TokenKind::Number)
                facts[QStringLiteral("size")] = cursor.wholeNumber();
        } else if (cursor.accept("NO")) {
            if (cursor.accept("CYCLE"))
                facts[QStringLiteral("cycle")] = QStringLiteral("0");
            else if (cursor.accept("CACHE"))
                facts[QStringLiteral("cache")] = QStringLiteral("0");
            else if (cursor.accept("MINVALUE"))
                facts.remove(QStringLiteral("min"));
            else if (cursor.accept("MAXVALUE"))
                facts.remove(QStringLiteral("max"));
            else
                cursor.failHere();
        } else {
            cursor.failHere();
        }
    }
    const auto limit = [&](bool low) -> QString {
        switch (type.xtype) {
            case 48:
                return low ? QStringLiteral("0") : QStringLiteral("255");
            case 52:
                return low ? QStringLiteral("-32768") : QStringLiteral("32767");
            case 56:
                return low ? QStringLiteral("-2147483648") : QStringLiteral("2147483647");
            case 127:
                return low ? QStringLiteral("-9223372036854775808")
                           : QStringLiteral("9223372036854775807");
            default: {
                const QString nines(facts[QStringLiteral("prec")].toInt(), u'9');
                return low ? u'-' + nines : nines;
            }
        }
    };
    if (!facts.contains(QStringLiteral("min"))) facts[QStringLiteral("min")] = limit(true);
    if (!facts.contains(QStringLiteral("max"))) facts[QStringLiteral("max")] = limit(false);
    const bool down = facts[QStringLiteral("increment")].startsWith(u'-');
    if (facts[QStringLiteral("increment")].toLongLong() == 0)
        fail(11700,
             QStringLiteral("The increment for sequence object '%1' cannot be zero.")
                 .arg(name.display()),
             name.line);
    if (!facts.contains(QStringLiteral("start")))
        facts[QStringLiteral("start")] =
            facts[down ? QStringLiteral("max") : QStringLiteral("min")];
    if (!alter || restart) {
        facts[QStringLiteral("current")] = facts[QStringLiteral("start")];
        facts.remove(QStringLiteral("used"));
    }
    QString info;
    for (const char* key : {"type", "prec", "start", "increment", "min", "max", "cycle", "cache",
                            "size", "current", "used"}) {
        const QString name = QLatin1String(key);
        if (facts.value(name).isEmpty()) continue;
        info += (info.isEmpty() ? QString() : QStringLiteral(" ")) + name + u'=' + facts[name];
    }
    if (found) {
        CatalogQuery(catalog.handle(), "UPDATE \"zov$objects\" SET info=? WHERE id=?")
            .add(info)
            .add(found->id)
            .run();
        catalog.touchObject(found->id);
    } else {
        catalog.addObject(name.name, catalog.requireSchema(name.schema), QStringLiteral("SO"), 0,
                          info);
    }
}

}  // namespace zov::local
