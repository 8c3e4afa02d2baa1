// GRANT, DENY and REVOKE: what is permitted on what, in a database and on the server.
#include "data/local/ddl.h"
#include "data/local/query_engine.h"
#include "data/local/server_store.h"

#include <algorithm>

namespace zov::local {
namespace {

constexpr int ServerClass = 100;

bool same(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

struct PermissionName {
    const char* name;
    const char* type;
};

constexpr PermissionName PermissionNames[] = {
    {"SELECT", "SL  "},
    {"INSERT", "IN  "},
    {"UPDATE", "UP  "},
    {"DELETE", "DL  "},
    {"REFERENCES", "RF  "},
    {"EXECUTE", "EX  "},
    {"RECEIVE", "RC  "},
    {"SEND", "SN  "},
    {"ALTER", "AL  "},
    {"CONTROL", "CL  "},
    {"TAKE OWNERSHIP", "TO  "},
    {"VIEW DEFINITION", "VW  "},
    {"VIEW CHANGE TRACKING", "VWCT"},
    {"CONNECT", "CO  "},
    {"CONNECT REPLICATION", "CORP"},
    {"AUTHENTICATE", "AUTH"},
    {"BACKUP DATABASE", "BADB"},
    {"BACKUP LOG", "BALO"},
    {"CHECKPOINT", "CP  "},
    {"SHOWPLAN", "SPLN"},
    {"SUBSCRIBE QUERY NOTIFICATIONS", "SUQN"},
    {"VIEW DATABASE STATE", "VWDS"},
    {"VIEW DATABASE PERFORMANCE STATE", "VDP "},
    {"VIEW DATABASE SECURITY STATE", "VDSS"},
    {"IMPERSONATE", "IM  "},
    {"UNMASK", "UMSK"},
    {"KILL DATABASE CONNECTION", "KIDC"},
    {"EXECUTE ANY EXTERNAL SCRIPT", "EAES"},
    {"CREATE AGGREGATE", "CRAG"},
    {"CREATE ASSEMBLY", "CRAS"},
    {"CREATE ASYMMETRIC KEY", "CRAK"},
    {"CREATE CERTIFICATE", "CRCF"},
    {"CREATE CONTRACT", "CRSC"},
    {"CREATE DATABASE", "CRDB"},
    {"CREATE DATABASE DDL EVENT NOTIFICATION", "CRED"},
    {"CREATE DEFAULT", "CRDF"},
    {"CREATE FULLTEXT CATALOG", "CRFT"},
    {"CREATE FUNCTION", "CRFN"},
    {"CREATE MESSAGE TYPE", "CRMT"},
    {"CREATE PROCEDURE", "CRPR"},
    {"CREATE QUEUE", "CRQU"},
    {"CREATE REMOTE SERVICE BINDING", "CRSB"},
    {"CREATE ROLE", "CRRL"},
    {"CREATE ROUTE", "CRRT"},
    {"CREATE RULE", "CRRU"},
    {"CREATE SCHEMA", "CRSM"},
    {"CREATE SEQUENCE", "CRSO"},
    {"CREATE SERVICE", "CRSV"},
    {"CREATE SYMMETRIC KEY", "CRSK"},
    {"CREATE SYNONYM", "CRSN"},
    {"CREATE TABLE", "CRTB"},
    {"CREATE TYPE", "CRTY"},
    {"CREATE VIEW", "CRVW"},
    {"CREATE XML SCHEMA COLLECTION", "CRXS"},
    {"ALTER ANY APPLICATION ROLE", "ALAR"},
    {"ALTER ANY ASSEMBLY", "ALAS"},
    {"ALTER ANY ASYMMETRIC KEY", "ALAK"},
    {"ALTER ANY CERTIFICATE", "ALCF"},
    {"ALTER ANY COLUMN ENCRYPTION KEY", "ALCK"},
    {"ALTER ANY COLUMN MASTER KEY", "ALCM"},
    {"ALTER ANY CONTRACT", "ALSC"},
    {"ALTER ANY DATABASE AUDIT", "ALDA"},
    {"ALTER ANY DATABASE DDL TRIGGER", "ALTG"},
    {"ALTER ANY DATABASE EVENT NOTIFICATION", "ALED"},
    {"ALTER ANY DATABASE EVENT SESSION", "AADS"},
    {"ALTER ANY DATABASE SCOPED CONFIGURATION", "ALDC"},
    {"ALTER ANY DATASPACE", "ALDS"},
    {"ALTER ANY EXTERNAL DATA SOURCE", "AEDS"},
    {"ALTER ANY EXTERNAL FILE FORMAT", "AEFF"},
    {"ALTER ANY FULLTEXT CATALOG", "ALFT"},
    {"ALTER ANY MASK", "AAMK"},
    {"ALTER ANY MESSAGE TYPE", "ALMT"},
    {"ALTER ANY REMOTE SERVICE BINDING", "ALSB"},
    {"ALTER ANY ROLE", "ALRL"},
    {"ALTER ANY ROUTE", "ALRT"},
    {"ALTER ANY SCHEMA", "ALSM"},
    {"ALTER ANY SECURITY POLICY", "ALSP"},
    {"ALTER ANY SERVICE", "ALSV"},
    {"ALTER ANY SYMMETRIC KEY", "ALSK"},
    {"ALTER ANY USER", "ALUS"},
    {"VIEW ANY COLUMN ENCRYPTION KEY DEFINITION", "VWCK"},
    {"VIEW ANY COLUMN MASTER KEY DEFINITION", "VWCM"},
};

/// Those of the server alone; all of them need the session to be in master.
constexpr PermissionName ServerPermissions[] = {
    {"ADMINISTER BULK OPERATIONS", "ADBO"},
    {"ALTER ANY AVAILABILITY GROUP", "ALAG"},
    {"ALTER ANY CONNECTION", "ALCO"},
    {"ALTER ANY CREDENTIAL", "ALCD"},
    {"ALTER ANY DATABASE", "ALDB"},
    {"ALTER ANY ENDPOINT", "ALHE"},
    {"ALTER ANY EVENT NOTIFICATION", "ALES"},
    {"ALTER ANY EVENT SESSION", "AAES"},
    {"ALTER ANY LINKED SERVER", "ALLS"},
    {"ALTER ANY LOGIN", "ALLG"},
    {"ALTER ANY SERVER AUDIT", "ALAA"},
    {"ALTER ANY SERVER ROLE", "ALSR"},
    {"ALTER RESOURCES", "ALRS"},
    {"ALTER SERVER STATE", "ALSS"},
    {"ALTER SETTINGS", "ALST"},
    {"ALTER TRACE", "ALTR"},
    {"AUTHENTICATE SERVER", "AUTH"},
    {"CONNECT ANY DATABASE", "CADB"},
    {"CONNECT SQL", "COSQ"},
    {"CONTROL SERVER", "CL  "},
    {"CREATE ANY DATABASE", "CRDB"},
    {"CREATE AVAILABILITY GROUP", "CRAC"},
    {"CREATE DDL EVENT NOTIFICATION", "CRDE"},
    {"CREATE ENDPOINT", "CRHE"},
    {"CREATE SERVER ROLE", "CRSR"},
    {"CREATE TRACE EVENT NOTIFICATION", "CRTE"},
    {"EXTERNAL ACCESS ASSEMBLY", "XA  "},
    {"IMPERSONATE ANY LOGIN", "IAL "},
    {"SELECT ALL USER SECURABLES", "SUS "},
    {"SHUTDOWN", "SHDN"},
    {"UNSAFE ASSEMBLY", "XU  "},
    {"VIEW ANY DATABASE", "VWDB"},
    {"VIEW ANY DEFINITION", "VWAD"},
    {"VIEW SERVER STATE", "VWSS"},
};

template <size_t Count>
const PermissionName* find(const PermissionName (&names)[Count], QString name) {
    if (name == QLatin1String("EXEC")) name = QStringLiteral("EXECUTE");
    if (name == QLatin1String("CREATE PROC")) name = QStringLiteral("CREATE PROCEDURE");
    for (const PermissionName& permission : names)
        if (name == QLatin1String(permission.name)) return &permission;
    return nullptr;
}

struct Wanted {
    QString name;
    std::vector<QString> columns;
    int line = 0;
};

struct Securable {
    int permissionClass = 0;  // 0 database, 1 object, 3 schema, 4 principal, 6 type, 100 server
    int id = 0;
    std::optional<ObjectFacts> object;
};

Securable readSecurable(Catalog& catalog, const ObjectName& name, const QString& scope) {
    Securable target;
    if (scope == QLatin1String("SCHEMA")) {
        const std::optional<int> id = catalog.schemaId(name.name);
        if (!id)
            fail(15151,
                 QStringLiteral(
                     "Cannot find the schema '%1', because it does not exist or you do not have "
                     "permission.")
                     .arg(name.name),
                 name.line);
        target.permissionClass = 3;
        target.id = *id;
        return target;
    }
    if (scope == QLatin1String("TYPE")) {
        CatalogQuery query(catalog.handle(),
                           "SELECT t.xusertype FROM \"zov$types\" t JOIN \"zov$schemas\" s ON"
                           " s.schema_id=t.schema_id WHERE t.isuser=1 AND t.name=?1 AND (?2 IS "
                           "NULL OR s.name=?2)");
        query.add(name.name).add(name.schema.isEmpty() ? QString() : name.schema);
        if (!query.step())
            fail(15151,
                 QStringLiteral(
                     "Cannot find the type '%1', because it does not exist or you do not have "
                     "permission.")
                     .arg(name.display()),
                 name.line);
        target.permissionClass = 6;
        target.id = query.number(0);
        return target;
    }
    if (scope == QLatin1String("USER") || scope == QLatin1String("ROLE")) {
        target.permissionClass = 4;
        target.id = catalog.requirePrincipal(name.name);
        return target;
    }
    if (scope == QLatin1String("DATABASE")) {
        if (!same(name.name, catalog.database().name))
            fail(15151,
                 QStringLiteral(
                     "Cannot find the database '%1', because it does not exist or you do not have "
                     "permission.")
                     .arg(name.name),
                 name.line);
        return target;
    }
    if (!scope.isEmpty() && scope != QLatin1String("OBJECT"))
        fail(40000, QStringLiteral("The embedded server keeps no permissions on %1.").arg(scope),
             name.line);
    target.object = catalog.find(name);
    if (!target.object)
        fail(15151,
             QStringLiteral(
                 "Cannot find the object '%1', because it does not exist or you do not have "
                 "permission.")
                 .arg(name.name),
             name.line);
    target.permissionClass = 1;
    target.id = target.object->id;
    return target;
}

std::vector<Wanted> permissionsOfAll(const Securable& target) {
    std::vector<const char*> names;
    if (target.permissionClass == 0)
        names = {"BACKUP DATABASE",  "BACKUP LOG",  "CREATE DEFAULT", "CREATE FUNCTION",
                 "CREATE PROCEDURE", "CREATE RULE", "CREATE TABLE",   "CREATE VIEW"};
    else if (target.object && target.object->xtype == QLatin1String("P"))
        names = {"EXECUTE"};
    else if (target.object && target.object->xtype == QLatin1String("FN"))
        names = {"EXECUTE", "REFERENCES"};
    else
        names = {"DELETE", "INSERT", "REFERENCES", "SELECT", "UPDATE"};
    std::vector<Wanted> all;
    for (const char* name : names) all.push_back({QLatin1String(name), {}, 0});
    return all;
}

// Which column numbers a permission is about; 0 stands for the whole object.
std::vector<int> minorIds(const Catalog& catalog, const Securable& target,
                          const std::vector<QString>& columns, int line) {
    if (columns.empty()) return {0};
    std::vector<int> ids;
    const std::vector<ColumnFacts> known =
        target.object ? catalog.columns(target.id) : std::vector<ColumnFacts>();
    for (const QString& name : columns) {
        const auto found = std::find_if(known.begin(), known.end(), [&](const ColumnFacts& column) {
            return catalog.sameName(column.name, name);
        });
        if (found == known.end())
            fail(1763,
                 QStringLiteral(
                     "Column '%1' does not exist in the object that the permission is about.")
                     .arg(name),
                 line);
        ids.push_back(found->colid);
    }
    return ids;
}

void writePermission(Catalog& catalog, const Securable& target, int minor, int grantee,
                     const PermissionName& permission, PermissionVerb verb, bool withGrantOption,
                     bool grantOptionOnly) {
    const QString name = QLatin1String(permission.name);
    if (grantOptionOnly) {
        CatalogQuery(catalog.handle(),
                     "UPDATE \"zov$permissions\" SET state='G' WHERE class=? AND major_id=? AND "
                     "minor_id=? AND"
                     " grantee=? AND permission_name=? AND state='W'")
            .add(target.permissionClass)
            .add(target.id)
            .add(minor)
            .add(grantee)
            .add(name)
            .run();
        return;
    }
    CatalogQuery(catalog.handle(),
                 "DELETE FROM \"zov$permissions\" WHERE class=? AND major_id=? AND (minor_id=? OR "
                 "(?3=0 AND ?=1))"
                 " AND grantee=? AND permission_name=?")
        .add(target.permissionClass)
        .add(target.id)
        .add(minor)
        .add(target.permissionClass)
        .add(grantee)
        .add(name)
        .run();
    if (verb == PermissionVerb::Revoke) return;
    CatalogQuery(
        catalog.handle(),
        "INSERT INTO \"zov$permissions\"(class, major_id, minor_id, grantee, grantor, type,"
        " permission_name, state) VALUES(?,?,?,?,1,?,?,?)")
        .add(target.permissionClass)
        .add(target.id)
        .add(minor)
        .add(grantee)
        .add(QString(QLatin1String(permission.type)))
        .add(name)
        .add(verb == PermissionVerb::Deny ? QStringLiteral("D")
             : withGrantOption            ? QStringLiteral("W")
                                          : QStringLiteral("G"))
        .run();
}

}  // namespace

void grantConnect(Catalog& catalog, int user) {
    writePermission(catalog, {}, 0, user, *find(PermissionNames, QStringLiteral("CONNECT")),
                    PermissionVerb::Grant, false, false);
}

void requireSecurable(Catalog& catalog, const ObjectName& name, const QString& scope) {
    readSecurable(catalog, name, scope);
}

void changePermissions(SessionState& session, TokenCursor& cursor, PermissionVerb verb) {
    const bool grantOptionOnly =
        verb == PermissionVerb::Revoke && cursor.accept({"GRANT", "OPTION", "FOR"});
    bool all = false;
    std::vector<Wanted> wanted;
    if (cursor.is("ALL")) {
        cursor.next();
        cursor.accept("PRIVILEGES");
        all = true;
    } else {
        do {
            Wanted one;
            one.line = cursor.peek().line;
            while (cursor.peek().kind == TokenKind::Word && !cursor.is("ON") && !cursor.is("TO") &&
                   !cursor.is("FROM")) {
                if (!one.name.isEmpty()) one.name += u' ';
                one.name += cursor.next().source.toString().toUpper();
            }
            if (one.name.isEmpty()) cursor.failHere();
            if (cursor.is("(")) {
                std::vector<bool> unused;
                readKeyColumns(cursor, one.columns, unused);
            }
            wanted.push_back(std::move(one));
        } while (cursor.accept(","));
    }
    // Without an ON the permission's name tells whether it is the server's or the database's.
    const bool ofServer =
        !all && !cursor.is("ON") &&
        std::all_of(wanted.begin(), wanted.end(), [](const Wanted& one) {
            return find(ServerPermissions, one.name) && !find(PermissionNames, one.name);
        });
    if (ofServer && !same(session.current->name, QStringLiteral("master")))
        fail(4621,
             QStringLiteral("Permissions at the server scope can only be granted when the current "
                            "database is master."),
             cursor.peek().line);
    Catalog catalog = Catalog::forWriting(session);
    Securable target;
    if (ofServer) target.permissionClass = ServerClass;
    if (cursor.accept("ON")) {
        QString scope;
        ObjectName name;
        // "ON SCHEMA::sales": a word, "::", a name.
        if (cursor.peek(1).is("::")) {
            scope = cursor.next().source.toString().toUpper();
            cursor.next();
            name = cursor.objectName();
        } else {
            name = cursor.objectName();
        }
        target = readSecurable(catalog, name, scope);
        if (cursor.is("(")) {  // GRANT SELECT ON t(a, b)
            std::vector<QString> columns;
            std::vector<bool> unused;
            readKeyColumns(cursor, columns, unused);
            for (Wanted& one : wanted) one.columns = columns;
        }
    }
    if (all) wanted = permissionsOfAll(target);
    if (!cursor.accept("TO") && !cursor.accept("FROM")) cursor.failHere();
    std::vector<int> grantees;
    do {
        const QString name = cursor.name();
        grantees.push_back(ofServer ? requireLogin(catalog, name) : catalog.requirePrincipal(name));
    } while (cursor.accept(","));
    const bool withGrantOption = cursor.accept({"WITH", "GRANT", "OPTION"});
    cursor.accept("CASCADE");
    if (cursor.accept("AS")) {
        const QString grantor = cursor.name();
        if (ofServer)
            requireLogin(catalog, grantor);
        else
            catalog.requirePrincipal(grantor);
    }
    cursor.expectEnd();
    for (const Wanted& one : wanted) {
        const PermissionName* permission =
            ofServer ? find(ServerPermissions, one.name) : find(PermissionNames, one.name);
        if (!permission)
            fail(102,
                 QStringLiteral("Incorrect syntax near '%1': there is no such permission.")
                     .arg(one.name),
                 one.line);
        for (const int minor : minorIds(catalog, target, one.columns, one.line))
            for (const int grantee : grantees)
                writePermission(catalog, target, minor, grantee, *permission, verb, withGrantOption,
                                grantOptionOnly);
    }
}

}  // namespace zov::local
