// Schemas, users, roles and who owns what.
#include "data/local/ddl.h"
#include "data/local/query_engine.h"
#include "data/local/server_store.h"

#include <algorithm>

namespace zov::local {
namespace {

int nextUserId(const Catalog& catalog, bool role) {
    // Users and roles share their numbers from 5 on; fixed roles lie at 16384.
    CatalogQuery query(catalog.handle(), "SELECT max(uid) FROM \"zov$users\" WHERE uid<16384");
    Q_UNUSED(role);
    return query.step() ? std::max(5, query.number(0) + 1) : 5;
}

void requireFreePrincipal(const Catalog& catalog, const QString& name, int line) {
    if (catalog.principalId(name))
        fail(15023,
             QStringLiteral("User, group, or role '%1' already exists in the current database.")
                 .arg(name),
             line);
}

void dropMemberships(Catalog& catalog, int uid) {
    CatalogQuery(catalog.handle(),
                 "DELETE FROM \"zov$role_members\" WHERE role_uid=?1 OR member_uid=?1")
        .add(uid)
        .run();
}

void changeMember(Catalog& catalog, const QString& role, const QString& member, bool add) {
    const int roleId = catalog.requirePrincipal(role);
    const int memberId = catalog.requirePrincipal(member);
    CatalogQuery(
        catalog.handle(),
        add ? "INSERT OR IGNORE INTO \"zov$role_members\"(role_uid, member_uid) VALUES(?,?)"
            : "DELETE FROM \"zov$role_members\" WHERE role_uid=? AND member_uid=?")
        .add(roleId)
        .add(memberId)
        .run();
}

}  // namespace

namespace {

void addSchema(Catalog& catalog, const QString& name, int owner) {
    CatalogQuery last(catalog.handle(),
                      "SELECT max(4, max(schema_id)) FROM \"zov$schemas\" WHERE schema_id<16384");
    const int id = last.step() ? last.number(0) + 1 : 5;
    CatalogQuery(catalog.handle(),
                 "INSERT INTO \"zov$schemas\"(schema_id, name, principal_id) VALUES(?,?,?)")
        .add(id)
        .add(name)
        .add(owner)
        .run();
}

/// What a principal of version 8 owns goes by its name; nothing may be left when it is dropped.
void dropOwner(Catalog& catalog, int uid, const QString& kind, int line) {
    CatalogQuery owns(
        catalog.handle(),
        "SELECT 1 FROM \"zov$objects\" WHERE schema_id IN (SELECT schema_id FROM "
        "\"zov$schemas\" WHERE principal_id=?1) UNION ALL SELECT 1 FROM \"zov$types\" WHERE "
        "schema_id IN (SELECT schema_id FROM \"zov$schemas\" WHERE principal_id=?1)");
    owns.add(uid);
    if (owns.step())
        fail(15183,
             QStringLiteral("The %1 owns objects in the database and cannot be dropped.")
                 .arg(kind.toLower()),
             line);
    CatalogQuery(catalog.handle(), "DELETE FROM \"zov$schemas\" WHERE principal_id=?")
        .add(uid)
        .run();
}

}  // namespace

void createSchema(SessionState& session, const Definition& statement) {
    TokenCursor cursor(statement.tokens);
    cursor.expect("CREATE");
    cursor.expect("SCHEMA");
    const int line = cursor.peek().line;
    QString name;
    if (!cursor.is("AUTHORIZATION")) name = cursor.name();
    Catalog catalog = Catalog::forWriting(session);
    int owner = 1;
    if (cursor.accept("AUTHORIZATION")) {
        const QString principal = cursor.name();
        owner = catalog.requirePrincipal(principal);
        if (name.isEmpty()) name = principal;
    }
    const bool known = catalog.schemaId(name).has_value();
    // Version 8 has owners: its CREATE SCHEMA makes nothing but what the statement holds.
    if (known && !catalog.isVersion8())
        fail(2714,
             QStringLiteral("There is already an object named '%1' in the database.").arg(name),
             line);
    if (!known) addSchema(catalog, name, owner);
    // What follows in the statement is made in the new schema.
    std::span<const Token> rest = cursor.rest();
    const QString outer = session.defaultSchema;
    session.defaultSchema = name;
    try {
        while (!rest.empty()) {
            size_t end = 1;
            int depth = 0;
            for (; end < rest.size(); ++end) {
                if (rest[end].is("(")) ++depth;
                if (rest[end].is(")")) --depth;
                if (depth == 0 && rest[end].kind == TokenKind::Word && !rest[end - 1].is(",") &&
                    !rest[end - 1].is("WITH") &&
                    (rest[end].is("CREATE") || rest[end].is("GRANT") || rest[end].is("DENY") ||
                     rest[end].is("REVOKE")))
                    break;
            }
            Definition part;
            part.tokens = rest.first(end);
            part.opensBatch = true;
            part.batchText = sourceText(part.tokens);
            // The part is a text of its own, so that its positions fit.
            const std::vector<Token> tokens = tokenize(part.batchText, session.quotedIdentifier);
            const std::span<const Token> own(tokens);
            part.tokens = own.first(own.size() - 1);
            runDefinition(session, part);
            rest = rest.subspan(end);
        }
    } catch (...) {
        session.defaultSchema = outer;
        throw;
    }
    session.defaultSchema = outer;
}

void alterSchema(SessionState& session, TokenCursor& cursor) {
    const int line = cursor.peek().line;
    const QString schemaName = cursor.name();
    cursor.expect("TRANSFER");
    bool type = false;
    if (cursor.peek(1).is("::")) {
        type = cursor.next().is("TYPE");
        cursor.next();
    }
    const ObjectName name = cursor.objectName();
    cursor.expectEnd();
    Catalog catalog = Catalog::forWriting(session);
    const std::optional<int> schema = catalog.schemaId(schemaName);
    if (!schema)
        fail(15151,
             QStringLiteral(
                 "Cannot alter the schema '%1', because it does not exist or you do not have "
                 "permission.")
                 .arg(schemaName),
             line);
    if (type) {
        CatalogQuery(
            catalog.handle(),
            "UPDATE \"zov$types\" SET schema_id=?1 WHERE isuser=1 AND name=?2 AND schema_id="
            "(SELECT schema_id FROM \"zov$schemas\" WHERE name=?3)")
            .add(*schema)
            .add(name.name)
            .add(name.schema.isEmpty() ? QStringLiteral("dbo") : name.schema)
            .run();
        return;
    }
    const std::optional<ObjectFacts> object = catalog.find(name);
    if (!object)
        fail(15151,
             QStringLiteral(
                 "Cannot find the object '%1', because it does not exist or you do not have "
                 "permission.")
                 .arg(name.name),
             name.line);
    if (object->schemaId == *schema) return;
    catalog.requireFreeName(object->name, *schema);
    CatalogQuery(catalog.handle(),
                 "UPDATE \"zov$objects\" SET schema_id=?1 WHERE id=?2 OR parent_obj=?2")
        .add(*schema)
        .add(object->id)
        .run();
    catalog.touchObject(object->id);
    // Permissions on the object do not survive the move.
    CatalogQuery(catalog.handle(), "DELETE FROM \"zov$permissions\" WHERE class=1 AND major_id=?")
        .add(object->id)
        .run();
    if (object->isTable())
        execSql(catalog.handle(),
                QStringLiteral("ALTER TABLE %1 RENAME TO %2")
                    .arg(catalog.storedTable(object->schema, object->name),
                         catalog.storedTable(catalog.schemaName(*schema), object->name)));
}

void dropSchema(SessionState& session, TokenCursor& cursor) {
    const bool ifExists = cursor.accept({"IF", "EXISTS"});
    const int line = cursor.peek().line;
    const QString name = cursor.name();
    cursor.expectEnd();
    Catalog catalog = Catalog::forWriting(session);
    const std::optional<int> id = catalog.schemaId(name);
    if (!id || *id <= 4 || *id >= 16384) {
        if (ifExists && !id) return;
        fail(15151,
             QStringLiteral(
                 "Cannot drop the schema '%1', because it does not exist or you do not have "
                 "permission.")
                 .arg(name),
             line);
    }
    CatalogQuery used(catalog.handle(),
                      "SELECT name FROM \"zov$objects\" WHERE schema_id=?1 UNION ALL"
                      " SELECT name FROM \"zov$types\" WHERE schema_id=?1");
    used.add(*id);
    if (used.step())
        fail(
            3729,
            QStringLiteral("Cannot drop schema '%1' because it is being referenced by object '%2'.")
                .arg(name, used.text(0)),
            line);
    for (const char* sql : {"DELETE FROM \"zov$schemas\" WHERE schema_id=?",
                            "DELETE FROM \"zov$permissions\" WHERE class=3 AND major_id=?",
                            "DELETE FROM \"zov$properties\" WHERE class=3 AND major_id=?"})
        CatalogQuery(catalog.handle(), sql).add(*id).run();
}

void createPrincipal(SessionState& session, TokenCursor& cursor, const QString& kind) {
    const int line = cursor.peek().line;
    const QString name = cursor.name();
    if (kind == QLatin1String("LOGIN")) return createLogin(session, cursor, name);
    Catalog catalog = Catalog::forWriting(session);
    requireFreePrincipal(catalog, name, line);
    QString defaultSchema;
    int owner = 1;
    const bool role = kind != QLatin1String("USER");
    if (kind == QLatin1String("ROLE")) {
        if (cursor.accept("AUTHORIZATION")) owner = catalog.requirePrincipal(cursor.name());
    } else {
        if (cursor.accept("FOR") || cursor.accept("FROM")) {
            if (cursor.accept("LOGIN")) {
                cursor.name();
            } else if (cursor.accept({"EXTERNAL", "PROVIDER"})) {
            } else {
                cursor.failHere();
            }
        } else {
            cursor.accept({"WITHOUT", "LOGIN"});
        }
        defaultSchema = QStringLiteral("dbo");
        if (cursor.accept("WITH")) {
            do {
                const QString option = cursor.name().toUpper();
                cursor.expect("=");
                const QString value = cursor.nameOrText();
                if (option == QLatin1String("DEFAULT_SCHEMA"))
                    defaultSchema = value;
                else if (option != QLatin1String("PASSWORD") && option != QLatin1String("SID") &&
                         option != QLatin1String("DEFAULT_LANGUAGE"))
                    cursor.failHere();
            } while (cursor.accept(","));
        }
    }
    cursor.expectEnd();
    Q_UNUSED(owner);
    const int uid = nextUserId(catalog, role);
    CatalogQuery(catalog.handle(),
                 "INSERT INTO \"zov$users\"(uid, name, type, default_schema) VALUES(?,?,?,?)")
        .add(uid)
        .add(name)
        .add(role ? QStringLiteral("R") : QStringLiteral("S"))
        .add(defaultSchema)
        .run();
    if (!role) grantConnect(catalog, uid);
    if (catalog.isVersion8()) addSchema(catalog, name, uid);
}

void alterPrincipal(SessionState& session, TokenCursor& cursor, const QString& kind) {
    const int line = cursor.peek().line;
    const QString name = cursor.name();
    if (kind == QLatin1String("LOGIN")) return alterLogin(session, cursor, name);
    Catalog catalog = Catalog::forWriting(session);
    const int uid = catalog.requirePrincipal(name);
    if (kind == QLatin1String("ROLE") && (cursor.is("ADD") || cursor.is("DROP"))) {
        const bool add = cursor.next().is("ADD");
        cursor.expect("MEMBER");
        changeMember(catalog, name, cursor.name(), add);
        cursor.expectEnd();
        return;
    }
    cursor.expect("WITH");
    do {
        const QString option = cursor.name().toUpper();
        cursor.expect("=");
        const QString value = cursor.nameOrText();
        if (option == QLatin1String("NAME")) {
            requireFreePrincipal(catalog, value, line);
            CatalogQuery(catalog.handle(), "UPDATE \"zov$users\" SET name=? WHERE uid=?")
                .add(value)
                .add(uid)
                .run();
        } else if (option == QLatin1String("DEFAULT_SCHEMA")) {
            CatalogQuery(catalog.handle(), "UPDATE \"zov$users\" SET default_schema=? WHERE uid=?")
                .add(value)
                .add(uid)
                .run();
        } else if (option != QLatin1String("LOGIN") && option != QLatin1String("PASSWORD") &&
                   option != QLatin1String("DEFAULT_LANGUAGE")) {
            cursor.failHere();
        }
    } while (cursor.accept(","));
    cursor.expectEnd();
}

void dropPrincipal(SessionState& session, TokenCursor& cursor, const QString& kind) {
    const bool ifExists = cursor.accept({"IF", "EXISTS"});
    const int line = cursor.peek().line;
    const QString name = cursor.name();
    cursor.expectEnd();
    if (kind == QLatin1String("LOGIN")) return dropLogin(session, name);
    Catalog catalog = Catalog::forWriting(session);
    CatalogQuery query(catalog.handle(),
                       "SELECT uid, type FROM \"zov$users\" WHERE name=? AND isfixed=0 AND uid>4");
    query.add(name);
    const bool wantsRole = kind != QLatin1String("USER");
    if (!query.step() || (query.text(1) == QLatin1String("R")) != wantsRole) {
        if (ifExists && !catalog.principalId(name)) return;
        fail(15151,
             QStringLiteral("Cannot drop the %1 '%2', because it does not exist or you do not have "
                            "permission.")
                 .arg(kind.toLower(), name),
             line);
    }
    const int uid = query.number(0);
    if (catalog.isVersion8()) dropOwner(catalog, uid, kind, line);
    CatalogQuery owns(catalog.handle(), "SELECT 1 FROM \"zov$schemas\" WHERE principal_id=?");
    owns.add(uid);
    if (owns.step())
        fail(15138,
             QStringLiteral(
                 "The database principal owns a schema in the database, and cannot be dropped."),
             line);
    if (wantsRole) {
        CatalogQuery members(catalog.handle(),
                             "SELECT 1 FROM \"zov$role_members\" WHERE role_uid=?");
        members.add(uid);
        if (members.step())
            fail(15144,
                 QStringLiteral("The role has members. It must be empty before it can be dropped."),
                 line);
    }
    dropMemberships(catalog, uid);
    CatalogQuery(catalog.handle(), "DELETE FROM \"zov$permissions\" WHERE grantee=?")
        .add(uid)
        .run();
    CatalogQuery(catalog.handle(), "DELETE FROM \"zov$users\" WHERE uid=?").add(uid).run();
}

void alterAuthorization(SessionState& session, TokenCursor& cursor) {
    cursor.expect("ON");
    QString scope;
    if (cursor.peek(1).is("::")) {
        scope = cursor.next().source.toString().toUpper();
        cursor.next();
    }
    const ObjectName name = cursor.objectName();
    cursor.expect("TO");
    if (cursor.accept({"SCHEMA", "OWNER"})) {
        cursor.expectEnd();
        return;
    }
    const QString ownerName = cursor.name();
    cursor.expectEnd();
    if (scope == QLatin1String("DATABASE")) return;  // owners of databases are logins
    Catalog catalog = Catalog::forWriting(session);
    const int owner = catalog.requirePrincipal(ownerName);
    if (scope == QLatin1String("SCHEMA")) {
        const std::optional<int> schema = catalog.schemaId(name.name);
        if (!schema)
            fail(15151,
                 QStringLiteral(
                     "Cannot find the schema '%1', because it does not exist or you do not have "
                     "permission.")
                     .arg(name.name),
                 name.line);
        CatalogQuery(catalog.handle(),
                     "UPDATE \"zov$schemas\" SET principal_id=? WHERE schema_id=?")
            .add(owner)
            .add(*schema)
            .run();
        return;
    }
    requireSecurable(catalog, name, scope);
    if (owner != 1)
        fail(40000,
             QStringLiteral(
                 "The embedded server keeps the owner of a schema only; '%1' can't be given to "
                 "'%2' by itself.")
                 .arg(name.display(), ownerName),
             name.line);
}

}  // namespace zov::local
