// Logins. Nobody is asked for a password here; a login is kept by its name, so that scripts find
// those that they made and permissions of the server have somebody to be given to. All lie in
// master.
#include "data/local/ddl.h"
#include "data/local/server_store.h"

namespace zov::local {
namespace {

Catalog master(SessionState& session) {
    ObjectName name;
    name.database = QStringLiteral("master");
    return Catalog::forWriting(session, name);
}

std::optional<int> loginId(const Catalog& catalog, const QString& name) {
    // These are on every server.
    if (name.compare(QLatin1String("sa"), Qt::CaseInsensitive) == 0) return 1;
    if (name.compare(QLatin1String("public"), Qt::CaseInsensitive) == 0) return 2;
    CatalogQuery query(catalog.handle(), "SELECT principal_id FROM \"zov$logins\" WHERE name=?");
    query.add(name);
    if (query.step()) return query.number(0);
    return std::nullopt;
}

void setLogin(Catalog& catalog, int id, const char* sql, const QString& value) {
    CatalogQuery(catalog.handle(), sql).add(value).add(id).run();
}

/// "DEFAULT_DATABASE = x, PASSWORD = 'y' HASHED MUST_CHANGE ..."; the rest is nothing that is kept.
void readOptions(TokenCursor& cursor, QString& name, QString& database) {
    do {
        const QString option = cursor.name().toUpper();
        cursor.expect("=");
        const Token& value = cursor.next();
        const QString text = value.kind == TokenKind::String ? value.value : value.name();
        if (option == QLatin1String("NAME")) name = text;
        if (option == QLatin1String("DEFAULT_DATABASE")) database = text;
        while (cursor.accept("HASHED") || cursor.accept("MUST_CHANGE") || cursor.accept("UNLOCK")) {
        }
        if (cursor.accept("OLD_PASSWORD")) {
            cursor.expect("=");
            cursor.next();
        }
    } while (cursor.accept(","));
}

}  // namespace

int requireLogin(const Catalog& catalog, const QString& name) {
    const std::optional<int> id = loginId(catalog, name);
    if (!id)
        fail(15151, QStringLiteral(
                        "Cannot find the login '%1', because it does not exist or you do not have "
                        "permission.")
                        .arg(name));
    return *id;
}

void createLogin(SessionState& session, TokenCursor& cursor, const QString& name) {
    QString unused, database = QStringLiteral("master");
    bool windows = false;
    if (cursor.accept("FROM")) {
        windows = cursor.accept("WINDOWS");
        if (!windows) {
            if (!cursor.accept("CERTIFICATE") && !cursor.accept({"ASYMMETRIC", "KEY"}))
                cursor.failHere();
            cursor.name();
        }
        if (cursor.accept("WITH")) readOptions(cursor, unused, database);
    } else {
        cursor.expect("WITH");
        readOptions(cursor, unused, database);
    }
    cursor.expectEnd();
    Catalog catalog = master(session);
    if (loginId(catalog, name)) {
        // Many databases' scripts make the logins that their users need.
        session.messages.push_back(
            {0, 15025, 0, QStringLiteral("The server principal '%1' already exists.").arg(name)});
        return;
    }
    CatalogQuery(
        catalog.handle(),
        "INSERT INTO \"zov$logins\"(principal_id, name, type, default_database, created) "
        "SELECT max(256, coalesce(max(principal_id), 256)) + 1, ?, ?, ?, ? FROM \"zov$logins\"")
        .add(name)
        .add(windows ? QStringLiteral("U") : QStringLiteral("S"))
        .add(database)
        .add(catalog.now())
        .run();
}

void alterLogin(SessionState& session, TokenCursor& cursor, const QString& name) {
    Catalog catalog = master(session);
    const int id = requireLogin(catalog, name);
    if (cursor.is("ENABLE") || cursor.is("DISABLE")) {
        setLogin(catalog, id, "UPDATE \"zov$logins\" SET is_disabled=? WHERE principal_id=?",
                 QString::number(cursor.next().is("DISABLE")));
    } else if (cursor.accept("WITH")) {
        QString fresh, database;
        readOptions(cursor, fresh, database);
        if (!fresh.isEmpty())
            setLogin(catalog, id, "UPDATE \"zov$logins\" SET name=? WHERE principal_id=?", fresh);
        if (!database.isEmpty())
            setLogin(catalog, id,
                     "UPDATE \"zov$logins\" SET default_database=? WHERE principal_id=?", database);
    } else if (cursor.accept({"ADD", "CREDENTIAL"}) || cursor.accept({"DROP", "CREDENTIAL"})) {
        cursor.name();
    } else {
        cursor.failHere();
    }
    cursor.expectEnd();
}

void dropLogin(SessionState& session, const QString& name) {
    Catalog catalog = master(session);
    const int id = requireLogin(catalog, name);
    CatalogQuery(catalog.handle(), "DELETE FROM \"zov$permissions\" WHERE class=100 AND grantee=?")
        .add(id)
        .run();
    CatalogQuery(catalog.handle(), "DELETE FROM \"zov$logins\" WHERE principal_id=?").add(id).run();
}

}  // namespace zov::local
