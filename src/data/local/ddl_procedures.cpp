// The system procedures that scripts call: each known one by name. Those that only steer what this
// server doesn't have (log files, statistics, logins) are listed as such.
#include "data/local/ddl.h"
#include "data/local/definitions.h"
#include "data/local/query_engine.h"
#include "data/local/server_store.h"

#include <QSet>

#include <algorithm>
#include <functional>

namespace zov::local {
namespace {

bool same(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

/// The arguments of one call, by position or by name.
class Arguments {
 public:
    Arguments(const QString& procedure, const std::vector<Argument>& given)
        : procedure_(procedure), given_(given) {}

    const Argument* find(size_t position, const char* name) const {
        for (const Argument& argument : given_)
            if (same(argument.name, QLatin1String(name))) return &argument;
        if (position < given_.size() && given_[position].name.isEmpty()) return &given_[position];
        return nullptr;
    }
    bool has(size_t position, const char* name) const {
        const Argument* argument = find(position, name);
        return argument && !argument->isNull;
    }
    /// Empty when it is left out or null.
    QString optional(size_t position, const char* name) const {
        const Argument* argument = find(position, name);
        return argument && !argument->isNull ? argument->text : QString();
    }
    QString required(size_t position, const char* name) const {
        const Argument* argument = find(position, name);
        if (!argument || argument->isNull)
            fail(201,
                 QStringLiteral(
                     "Procedure or function '%1' expects parameter '%2', which was not supplied.")
                     .arg(procedure_, QLatin1String(name)));
        return argument->text;
    }

 private:
    QString procedure_;
    const std::vector<Argument>& given_;
};

// A statement of ours written out and run: the procedures that are older forms of statements.
void runText(SessionState& session, const QString& text) {
    const std::vector<Token> tokens = tokenize(text);
    const std::span<const Token> all(tokens);
    Definition statement;
    statement.tokens = all.first(all.size() - 1);
    statement.batchText = text;
    statement.opensBatch = true;
    runDefinition(session, statement);
}

void addType(SessionState& session, const Arguments& arguments) {
    const QString name = arguments.required(0, "@typename");
    QString base = arguments.required(1, "@phystype").trimmed();
    const QString nulls = arguments.optional(2, "@nulltype").toUpper().simplified();
    const QString owner = arguments.optional(3, "@owner");
    QString sql =
        QStringLiteral("CREATE TYPE %1%2 FROM %3")
            .arg(owner.isEmpty() ? QString() : bracketed(owner) + u'.', bracketed(name), base);
    if (nulls == QLatin1String("NOT NULL") || nulls == QLatin1String("NONULL"))
        sql += QStringLiteral(" NOT NULL");
    else if (nulls.isEmpty() || nulls == QLatin1String("NULL"))
        sql += QStringLiteral(" NULL");
    else
        fail(15103, QStringLiteral(
                        "sp_addtype: '%1' is no valid value for '@nulltype' (NULL or NOT NULL).")
                        .arg(nulls));
    runText(session, sql);
}

bool futureOnly(const Arguments& arguments, size_t position) {
    return same(arguments.optional(position, "@futureonly"), QStringLiteral("futureonly"));
}

// "table.column" or a type's name.
struct BindTarget {
    std::optional<ObjectFacts> table;
    int colid = 0;
    int type = 0;
};

BindTarget bindTarget(const Catalog& catalog, const QString& text) {
    const ObjectName name = ObjectName::parse(text);
    BindTarget target;
    if (!name.schema.isEmpty()) {
        ObjectName table;
        table.name = name.schema;
        table.schema = name.database;
        target.table = catalog.find(table);
        if (target.table)
            for (const ColumnFacts& column : catalog.columns(target.table->id))
                if (catalog.sameName(column.name, name.name)) target.colid = column.colid;
        if (target.colid) return target;
    }
    CatalogQuery type(catalog.handle(),
                      "SELECT xusertype FROM \"zov$types\" WHERE isuser=1 AND name=?");
    type.add(name.name);
    if (type.step()) target.type = type.number(0);
    if (!target.type)
        fail(15148,
             QStringLiteral(
                 "The data type or table column '%1' does not exist or you do not have permission.")
                 .arg(text));
    return target;
}

/// sp_bindefault and its three relations: what is bound is a default or a rule.
struct Binding {
    bool rule = false;
    QString object;  ///< null unbinds
    QString target;
    bool futureOnly = false;  ///< a type's columns that are there stay as they are

    const char* word() const { return rule ? "rule" : "default"; }
};

int boundObject(const Catalog& catalog, const Binding& binding) {
    if (binding.object.isNull()) return 0;
    const std::optional<ObjectFacts> found = catalog.find(ObjectName::parse(binding.object));
    if (!found || found->xtype != (binding.rule ? QLatin1String("R") : QLatin1String("D")) ||
        found->parent != 0)
        fail(15016, QStringLiteral("The %1 '%2' does not exist.")
                        .arg(QLatin1String(binding.word()), binding.object));
    return found->id;
}

void bindColumn(Catalog& catalog, const BindTarget& target, const Binding& binding, int id) {
    for (const ColumnFacts& column : catalog.columns(target.table->id)) {
        if (column.colid != target.colid || binding.rule || column.cdefault == 0) continue;
        const std::optional<ObjectFacts> known = catalog.find(column.cdefault);
        if (!known || known->parent == 0) continue;
        if (id)
            fail(15103,
                 QStringLiteral("Cannot bind a default to a column created with or altered to "
                                "have a default value."));
        fail(15049, QStringLiteral("Cannot unbind from '%1'. Use ALTER TABLE DROP CONSTRAINT.")
                        .arg(binding.target));
    }
    CatalogQuery(catalog.handle(),
                 binding.rule ? "UPDATE \"zov$columns\" SET crule=? WHERE id=? AND colid=?"
                              : "UPDATE \"zov$columns\" SET cdefault=? WHERE id=? AND colid=?")
        .add(id)
        .add(target.table->id)
        .add(target.colid)
        .run();
}

// A type's columns follow their type as long as nothing was bound to them by themselves.
void bindType(Catalog& catalog, int type, const Binding& binding, int id) {
    const int before = catalog.detail(6, type, 0, binding.word()).toInt();
    catalog.setDetail(6, type, 0, binding.word(), id ? QString::number(id) : QString());
    if (binding.futureOnly) return;
    CatalogQuery(
        catalog.handle(),
        binding.rule
            ? "UPDATE \"zov$columns\" SET crule=?1 WHERE xusertype=?2 AND crule IN (0, ?3)"
            : "UPDATE \"zov$columns\" SET cdefault=?1 WHERE xusertype=?2 AND cdefault IN (0,"
              " ?3) AND identity_seed IS NULL AND computed IS NULL")
        .add(id)
        .add(type)
        .add(before)
        .run();
}

void bind(SessionState& session, const Binding& binding) {
    Catalog catalog = Catalog::forWriting(session);
    const BindTarget target = bindTarget(catalog, binding.target);
    const int id = boundObject(catalog, binding);
    if (target.colid)
        bindColumn(catalog, target, binding, id);
    else
        bindType(catalog, target.type, binding, id);
    const QString word = binding.rule ? QStringLiteral("Rule") : QStringLiteral("Default");
    const QString place = !target.colid ? QStringLiteral("data type")
                          : id          ? QStringLiteral("column")
                                        : QStringLiteral("table column");
    session.messages.push_back({0, id ? 15511 : 15519, 0,
                                id ? QStringLiteral("%1 bound to %2.").arg(word, place)
                                   : QStringLiteral("%1 unbound from %2.").arg(word, place)});
}

[[noreturn]] void failRename(const QString& name, const QString& type) {
    fail(15248,
         QStringLiteral(
             "Either the parameter @objname is ambiguous or the claimed @objtype (%1) is wrong "
             "('%2').")
             .arg(type, name));
}

void renameColumn(Catalog& catalog, const ObjectName& name, const QString& fresh) {
    ObjectName tableName;
    tableName.name = name.schema;
    tableName.schema = name.database;
    const std::optional<ObjectFacts> table = catalog.find(tableName);
    if (!table || !table->isTable()) failRename(name.display(), QStringLiteral("COLUMN"));
    for (const ColumnFacts& column : catalog.columns(table->id)) {
        if (!catalog.sameName(column.name, name.name)) continue;
        for (const ColumnFacts& other : catalog.columns(table->id))
            if (other.colid != column.colid && catalog.sameName(other.name, fresh))
                fail(15335,
                     QStringLiteral(
                         "Error: The new name '%1' is already in use as a COLUMN name and would "
                         "cause a duplicate that is not permitted.")
                         .arg(fresh));
        CatalogQuery(catalog.handle(), "UPDATE \"zov$columns\" SET name=? WHERE id=? AND colid=?")
            .add(fresh)
            .add(table->id)
            .add(column.colid)
            .run();
        ColumnSource source;
        source.oldName = column.name;
        catalog.touchObject(table->id);
        rebuildStorage(catalog, *table, catalog.storedTable(table->schema, table->name),
                       {{catalog.names().key(fresh), source}});
        return;
    }
    failRename(name.display(), QStringLiteral("COLUMN"));
}

void renameIndex(Catalog& catalog, const ObjectName& name, const QString& fresh) {
    ObjectName tableName;
    tableName.name = name.schema;
    tableName.schema = name.database;
    const std::optional<ObjectFacts> table = catalog.find(tableName);
    if (!table) failRename(name.display(), QStringLiteral("INDEX"));
    for (const IndexFacts& index : catalog.indexes(table->id)) {
        if (!catalog.sameName(index.name, name.name)) continue;
        CatalogQuery(catalog.handle(), "UPDATE \"zov$indexes\" SET name=? WHERE id=? AND indid=?")
            .add(fresh)
            .add(table->id)
            .add(index.indid)
            .run();
        if (index.constraintId) {
            CatalogQuery(catalog.handle(),
                         "UPDATE \"zov$objects\" SET name=?, is_system_named=0 WHERE id=?")
                .add(fresh)
                .add(index.constraintId)
                .run();
        }
        return;
    }
    failRename(name.display(), QStringLiteral("INDEX"));
}

void renameObject(Catalog& catalog, const ObjectName& name, const QString& fresh) {
    const std::optional<ObjectFacts> object = catalog.find(name);
    if (!object) {
        // Without a type a column or an index may be meant.
        ObjectName owner;
        owner.name = name.schema;
        owner.schema = name.database;
        if (!name.schema.isEmpty())
            if (const auto table = catalog.find(owner)) {
                for (const ColumnFacts& column : catalog.columns(table->id))
                    if (catalog.sameName(column.name, name.name))
                        return renameColumn(catalog, name, fresh);
                for (const IndexFacts& index : catalog.indexes(table->id))
                    if (catalog.sameName(index.name, name.name))
                        return renameIndex(catalog, name, fresh);
            }
        fail(15225,
             QStringLiteral(
                 "No item by the name of '%1' could be found in the current database '%2', given "
                 "that @itemtype was input as '(null)'.")
                 .arg(name.display(), catalog.database().name));
    }
    CatalogQuery taken(catalog.handle(),
                       "SELECT 1 FROM \"zov$objects\" WHERE schema_id=? AND name=? AND id<>?");
    taken.add(object->schemaId).add(fresh).add(object->id);
    if (taken.step())
        fail(15335,
             QStringLiteral(
                 "Error: The new name '%1' is already in use as a OBJECT name and would cause a "
                 "duplicate that is not permitted.")
                 .arg(fresh));
    taken.again();
    CatalogQuery(catalog.handle(),
                 "UPDATE \"zov$objects\" SET name=?, is_system_named=0 WHERE id=?")
        .add(fresh)
        .add(object->id)
        .run();
    CatalogQuery(catalog.handle(), "UPDATE \"zov$indexes\" SET name=? WHERE constraint_id=?")
        .add(fresh)
        .add(object->id)
        .run();
    catalog.touchObject(object->id);
    if (object->isTable())
        execSql(catalog.handle(), QStringLiteral("ALTER TABLE %1 RENAME TO %2")
                                      .arg(catalog.storedTable(object->schema, object->name),
                                           catalog.storedTable(object->schema, fresh)));
}

void rename(SessionState& session, const Arguments& arguments) {
    const ObjectName name = ObjectName::parse(arguments.required(0, "@objname"));
    // The new name is taken to the letter, brackets included.
    const QString fresh = arguments.required(1, "@newname");
    const QString type = arguments.optional(2, "@objtype").toUpper();
    if (fresh.isEmpty() || fresh.size() > 128)
        fail(15249, QStringLiteral("Error: Explicit @newname '%1' is no valid name.").arg(fresh));
    Catalog catalog = Catalog::forWriting(session);
    if (type == QLatin1String("COLUMN")) {
        renameColumn(catalog, name, fresh);
    } else if (type == QLatin1String("INDEX")) {
        renameIndex(catalog, name, fresh);
    } else if (type == QLatin1String("USERDATATYPE")) {
        CatalogQuery(catalog.handle(), "UPDATE \"zov$types\" SET name=? WHERE isuser=1 AND name=?")
            .add(fresh)
            .add(name.name)
            .run();
        if (sqlite3_changes(catalog.handle()) == 0) failRename(name.display(), type);
    } else if (type.isEmpty() || type == QLatin1String("OBJECT")) {
        renameObject(catalog, name, fresh);
    } else {
        fail(15249, QStringLiteral("Error: Explicit @objtype '%1' is unrecognized.").arg(type));
    }
    session.messages.push_back(
        {0, 15477, 0,
         QStringLiteral("Caution: Changing any part of an object name could break scripts and "
                        "stored procedures.")});
}

int parameterNumber(const Catalog& catalog, const ObjectFacts& module, const QString& name) {
    const QString text = catalog.text(module.id);
    const std::vector<Token> tokens = tokenize(text);
    int number = 0;
    for (size_t i = 0; i < tokens.size(); ++i) {
        if (!tokens[i].source.startsWith(u'@')) continue;
        ++number;
        if (tokens[i].source.compare(name, Qt::CaseInsensitive) == 0) return number;
    }
    return 0;
}

// Where an extended property hangs.
struct PropertyPlace {
    int permissionClass = 0;
    int major = 0;
    int minor = 0;
};

PropertyPlace propertyPlace(const Catalog& catalog, const Arguments& arguments) {
    const QString type0 = arguments.optional(2, "@level0type").toUpper();
    const QString name0 = arguments.optional(3, "@level0name");
    const QString type1 = arguments.optional(4, "@level1type").toUpper();
    const QString name1 = arguments.optional(5, "@level1name");
    const QString type2 = arguments.optional(6, "@level2type").toUpper();
    const QString name2 = arguments.optional(7, "@level2name");
    const auto invalid = [&](const QString& name) {
        fail(15135,
             QStringLiteral(
                 "Object is invalid. Extended properties are not permitted on '%1', or the object "
                 "does not exist.")
                 .arg(name));
    };
    PropertyPlace place;
    if (type0.isEmpty()) return place;
    std::optional<int> schema;
    if (type0 == QLatin1String("SCHEMA") || type0 == QLatin1String("USER"))
        schema = catalog.schemaId(name0);
    if (type1.isEmpty()) {
        place.permissionClass = type0 == QLatin1String("SCHEMA") ? 3 : 4;
        if (place.permissionClass == 4) schema = catalog.principalId(name0);
        if (!schema) invalid(name0);
        place.major = *schema;
        return place;
    }
    if (!schema) invalid(name0);
    if (type1 == QLatin1String("TYPE")) {
        CatalogQuery query(
            catalog.handle(),
            "SELECT xusertype FROM \"zov$types\" WHERE isuser=1 AND schema_id=? AND name=?");
        query.add(*schema).add(name1);
        if (!query.step()) invalid(name0 + u'.' + name1);
        place.permissionClass = 6;
        place.major = query.number(0);
        return place;
    }
    ObjectName name;
    name.schema = name0;
    name.name = name1;
    const std::optional<ObjectFacts> object = catalog.find(name);
    if (!object) invalid(name0 + u'.' + name1);
    place.permissionClass = 1;
    place.major = object->id;
    if (type2.isEmpty()) return place;
    const QString path = name0 + u'.' + name1 + u'.' + name2;
    if (type2 == QLatin1String("COLUMN")) {
        for (const ColumnFacts& column : catalog.columns(object->id))
            if (catalog.sameName(column.name, name2)) place.minor = column.colid;
        if (!place.minor) invalid(path);
    } else if (type2 == QLatin1String("INDEX")) {
        place.permissionClass = 7;
        for (const IndexFacts& index : catalog.indexes(object->id))
            if (catalog.sameName(index.name, name2)) place.minor = index.indid;
        if (!place.minor) invalid(path);
    } else if (type2 == QLatin1String("CONSTRAINT") || type2 == QLatin1String("TRIGGER")) {
        place.major = 0;
        for (const ObjectFacts& child : catalog.children(object->id))
            if (catalog.sameName(child.name, name2)) place.major = child.id;
        if (!place.major) invalid(path);
    } else if (type2 == QLatin1String("PARAMETER")) {
        place.permissionClass = 2;
        place.minor = parameterNumber(catalog, *object, name2);
        if (!place.minor) invalid(path);
    } else {
        invalid(path);
    }
    return place;
}

void changeProperty(SessionState& session, const Arguments& arguments, const QString& procedure) {
    const bool drop = procedure == QLatin1String("sp_dropextendedproperty");
    const QString name = arguments.required(0, "@name");
    Catalog catalog = Catalog::forWriting(session);
    // Dropping has no value argument: the levels stand one place further to the front.
    std::vector<Argument> shifted;
    PropertyPlace place;
    if (drop) {
        static const char* const names[] = {"@level0type", "@level0name", "@level1type",
                                            "@level1name", "@level2type", "@level2name"};
        for (size_t i = 0; i < 6; ++i) {
            const Argument* argument = arguments.find(i + 1, names[i]);
            if (argument)
                shifted.push_back({QLatin1String(names[i]), argument->text, argument->isNull});
        }
        place = propertyPlace(catalog, Arguments(procedure, shifted));
    } else {
        place = propertyPlace(catalog, arguments);
    }
    CatalogQuery found(
        catalog.handle(),
        "SELECT 1 FROM \"zov$properties\" WHERE class=? AND major_id=? AND minor_id=? AND name=?");
    found.add(place.permissionClass).add(place.major).add(place.minor).add(name);
    const bool exists = found.step();
    found.again();
    if (procedure == QLatin1String("sp_addextendedproperty") && exists)
        fail(15233, QStringLiteral(
                        "Property cannot be added. Property '%1' already exists for this object.")
                        .arg(name));
    if (procedure != QLatin1String("sp_addextendedproperty") && !exists)
        fail(15217,
             QStringLiteral(
                 "Property cannot be updated or deleted. Property '%1' does not exist for this "
                 "object.")
                 .arg(name));
    if (drop) {
        CatalogQuery(
            catalog.handle(),
            "DELETE FROM \"zov$properties\" WHERE class=? AND major_id=? AND minor_id=? AND name=?")
            .add(place.permissionClass)
            .add(place.major)
            .add(place.minor)
            .add(name)
            .run();
        return;
    }
    const QString value = arguments.has(1, "@value") ? arguments.optional(1, "@value") : QString();
    CatalogQuery(catalog.handle(),
                 "INSERT OR REPLACE INTO \"zov$properties\"(class, major_id, minor_id, name, value)"
                 " VALUES(?,?,?,?,?)")
        .add(place.permissionClass)
        .add(place.major)
        .add(place.minor)
        .add(name)
        .add(value)
        .run();
}

void helpText(SessionState& session, const Arguments& arguments, std::vector<QString>& lines) {
    const QString written = arguments.required(0, "@objname");
    Catalog catalog(session, *session.current);
    const ObjectName name = ObjectName::parse(written);
    const std::optional<ObjectFacts> object = catalog.find(name);
    if (!object)
        fail(
            15009,
            QStringLiteral(
                "The object '%1' does not exist in database '%2' or is invalid for this operation.")
                .arg(written, session.current->name));
    const QString text = catalog.text(object->id);
    if (text.isEmpty()) {
        CatalogQuery encrypted(catalog.handle(),
                               "SELECT 1 FROM \"zov$comments\" WHERE id=? AND encrypted=1");
        encrypted.add(object->id);
        if (encrypted.step()) {
            session.messages.push_back(
                {0, 15471, 0,
                 QStringLiteral("The text for object '%1' is encrypted.").arg(written)});
            return;
        }
        fail(15197, QStringLiteral("There is no text for object '%1'.").arg(written));
    }
    qsizetype at = 0;
    while (at < text.size()) {
        qsizetype end = text.indexOf(u'\n', at);
        end = end < 0 ? text.size() : end + 1;
        lines.push_back(text.mid(at, std::min<qsizetype>(end - at, 255)));
        at += lines.back().size();
    }
}

void changeOwner(SessionState& session, const Arguments& arguments) {
    const QString object = arguments.required(0, "@objname");
    const QString owner = arguments.required(1, "@newowner");
    const ObjectName name = ObjectName::parse(object);
    runText(session, QStringLiteral("ALTER SCHEMA %1 TRANSFER %2%3")
                         .arg(bracketed(owner),
                              name.schema.isEmpty() ? QString() : bracketed(name.schema) + u'.',
                              bracketed(name.name)));
}

void addLogin(SessionState& session, const Arguments& arguments) {
    const QString database = arguments.optional(2, "@defdb");
    runText(session, QStringLiteral("CREATE LOGIN %1 WITH PASSWORD = '', DEFAULT_DATABASE = %2")
                         .arg(bracketed(arguments.required(0, "@loginame")),
                              bracketed(database.isEmpty() ? QStringLiteral("master") : database)));
}

void addUser(SessionState& session, const QString& login, const QString& user,
             const QString& group) {
    runText(session, QStringLiteral("CREATE USER %1 FOR LOGIN %2")
                         .arg(bracketed(user.isEmpty() ? login : user), bracketed(login)));
    if (!group.isEmpty())
        runText(session, QStringLiteral("ALTER ROLE %1 ADD MEMBER %2")
                             .arg(bracketed(group), bracketed(user.isEmpty() ? login : user)));
}

// What these set has no meaning for a database that is one file and asks nobody for a password.
const QSet<QString>& withoutEffect() {
    static const QSet<QString> names = [] {
        QSet<QString> set;
        for (const char* name : {"sp_dboption",
                                 "sp_tableoption",
                                 "sp_configure",
                                 "sp_changedbowner",
                                 "sp_denylogin",
                                 "sp_password",
                                 "sp_defaultdb",
                                 "sp_defaultlanguage",
                                 "sp_addsrvrolemember",
                                 "sp_dropsrvrolemember",
                                 "sp_autostats",
                                 "sp_updatestats",
                                 "sp_createstats",
                                 "sp_recompile",
                                 "sp_refreshview",
                                 "sp_refreshsqlmodule",
                                 "sp_settriggerorder",
                                 "sp_procoption",
                                 "sp_indexoption",
                                 "sp_fulltext_database",
                                 "sp_addmessage",
                                 "sp_dropmessage",
                                 "sp_serveroption",
                                 "sp_change_users_login",
                                 "sp_db_vardecimal_storage_format"})
            set.insert(QLatin1String(name));
        return set;
    }();
    return names;
}

}  // namespace

bool runSystemProcedure(SessionState& session, const QString& name,
                        const std::vector<Argument>& given, std::vector<QString>& lines) {
    const QString procedure = name.toLower();
    const Arguments arguments(procedure, given);
    using Handler = std::function<void()>;
    const QHash<QString, Handler> handlers = {
        {QStringLiteral("sp_addtype"), [&] { addType(session, arguments); }},
        {QStringLiteral("sp_droptype"),
         [&] {
             runText(session,
                     QStringLiteral("DROP TYPE ") + bracketed(arguments.required(0, "@typename")));
         }},
        {QStringLiteral("sp_bindefault"),
         [&] {
             bind(session, {false, arguments.required(0, "@defname"),
                            arguments.required(1, "@objname"), futureOnly(arguments, 2)});
         }},
        {QStringLiteral("sp_bindrule"),
         [&] {
             bind(session, {true, arguments.required(0, "@rulename"),
                            arguments.required(1, "@objname"), futureOnly(arguments, 2)});
         }},
        {QStringLiteral("sp_unbindefault"),
         [&] {
             bind(session,
                  {false, QString(), arguments.required(0, "@objname"), futureOnly(arguments, 1)});
         }},
        {QStringLiteral("sp_unbindrule"),
         [&] {
             bind(session,
                  {true, QString(), arguments.required(0, "@objname"), futureOnly(arguments, 1)});
         }},
        {QStringLiteral("sp_attach_db"),
         [&] {
             session.store->attachDatabase(arguments.required(0, "@dbname"),
                                           arguments.required(1, "@filename1"));
         }},
        {QStringLiteral("sp_attach_single_file_db"),
         [&] {
             session.store->attachDatabase(arguments.required(0, "@dbname"),
                                           arguments.required(1, "@physname"));
         }},
        {QStringLiteral("sp_rename"), [&] { rename(session, arguments); }},
        {QStringLiteral("sp_addrole"),
         [&] {
             const QString owner = arguments.optional(1, "@ownername");
             runText(session,
                     QStringLiteral("CREATE ROLE ") +
                         bracketed(arguments.required(0, "@rolename")) +
                         (owner.isEmpty() ? QString()
                                          : QStringLiteral(" AUTHORIZATION ") + bracketed(owner)));
         }},
        {QStringLiteral("sp_addgroup"),
         [&] {
             runText(session,
                     QStringLiteral("CREATE ROLE ") + bracketed(arguments.required(0, "@grpname")));
         }},
        {QStringLiteral("sp_droprole"),
         [&] {
             runText(session,
                     QStringLiteral("DROP ROLE ") + bracketed(arguments.required(0, "@rolename")));
         }},
        {QStringLiteral("sp_addrolemember"),
         [&] {
             runText(session, QStringLiteral("ALTER ROLE %1 ADD MEMBER %2")
                                  .arg(bracketed(arguments.required(0, "@rolename")),
                                       bracketed(arguments.required(1, "@membername"))));
         }},
        {QStringLiteral("sp_droprolemember"),
         [&] {
             runText(session, QStringLiteral("ALTER ROLE %1 DROP MEMBER %2")
                                  .arg(bracketed(arguments.required(0, "@rolename")),
                                       bracketed(arguments.required(1, "@membername"))));
         }},
        {QStringLiteral("sp_adduser"),
         [&] {
             addUser(session, arguments.required(0, "@loginame"),
                     arguments.optional(1, "@name_in_db"), arguments.optional(2, "@grpname"));
         }},
        {QStringLiteral("sp_grantdbaccess"),
         [&] {
             addUser(session, arguments.required(0, "@loginame"),
                     arguments.optional(1, "@name_in_db"), {});
         }},
        {QStringLiteral("sp_dropuser"),
         [&] {
             runText(session, QStringLiteral("DROP USER ") +
                                  bracketed(arguments.required(0, "@name_in_db")));
         }},
        {QStringLiteral("sp_revokedbaccess"),
         [&] {
             runText(session, QStringLiteral("DROP USER ") +
                                  bracketed(arguments.required(0, "@name_in_db")));
         }},
        {QStringLiteral("sp_addlogin"), [&] { addLogin(session, arguments); }},
        {QStringLiteral("sp_grantlogin"),
         [&] {
             runText(session, QStringLiteral("CREATE LOGIN %1 FROM WINDOWS")
                                  .arg(bracketed(arguments.required(0, "@loginame"))));
         }},
        {QStringLiteral("sp_droplogin"),
         [&] {
             runText(session,
                     QStringLiteral("DROP LOGIN ") + bracketed(arguments.required(0, "@loginame")));
         }},
        {QStringLiteral("sp_revokelogin"),
         [&] {
             runText(session,
                     QStringLiteral("DROP LOGIN ") + bracketed(arguments.required(0, "@loginame")));
         }},
        {QStringLiteral("sp_changeobjectowner"), [&] { changeOwner(session, arguments); }},
        {QStringLiteral("sp_addextendedproperty"),
         [&] { changeProperty(session, arguments, procedure); }},
        {QStringLiteral("sp_updateextendedproperty"),
         [&] { changeProperty(session, arguments, procedure); }},
        {QStringLiteral("sp_dropextendedproperty"),
         [&] { changeProperty(session, arguments, procedure); }},
        {QStringLiteral("sp_helptext"), [&] { helpText(session, arguments, lines); }},
        {QStringLiteral("sp_dbcmptlevel"),
         [&] {
             if (!arguments.has(1, "@new_cmptlevel")) return;
             runText(session, QStringLiteral("ALTER DATABASE %1 SET COMPATIBILITY_LEVEL = %2")
                                  .arg(bracketed(arguments.required(0, "@dbname")),
                                       arguments.required(1, "@new_cmptlevel")));
         }},
        {QStringLiteral("sp_ms_marksystemobject"),
         [&] {
             Catalog catalog = Catalog::forWriting(session);
             const auto object = catalog.find(ObjectName::parse(arguments.required(0, "@objname")));
             if (!object)
                 fail(15001,
                      QStringLiteral(
                          "Object '%1' does not exist or is not a valid object for this operation.")
                          .arg(arguments.required(0, "@objname")));
             CatalogQuery(catalog.handle(), "UPDATE \"zov$objects\" SET is_ms_shipped=1 WHERE id=?")
                 .add(object->id)
                 .run();
         }},
    };
    const auto found = handlers.constFind(procedure);
    if (found == handlers.constEnd()) return withoutEffect().contains(procedure);
    (*found)();
    return true;
}

}  // namespace zov::local
