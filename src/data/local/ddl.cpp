#include "data/local/ddl.h"

#include "data/local/query_engine.h"
#include "data/local/server_store.h"

#include <QSet>

namespace zov::local {
namespace {

bool isModuleKind(const Token& token) {
    return token.is("VIEW") || token.is("PROCEDURE") || token.is("PROC") || token.is("FUNCTION") ||
           token.is("TRIGGER");
}

QString kindOf(const Token& token) {
    const QString word = token.source.toString().toUpper();
    return word == QLatin1String("PROC") ? QStringLiteral("PROCEDURE") : word;
}

[[noreturn]] void failUnsupported(const char* verb, const Token& token) {
    static const QSet<QString> known = {
        QStringLiteral("AGGREGATE"),   QStringLiteral("ASSEMBLY"),    QStringLiteral("ASYMMETRIC"),
        QStringLiteral("CERTIFICATE"), QStringLiteral("COLUMNSTORE"), QStringLiteral("CONTRACT"),
        QStringLiteral("CREDENTIAL"),  QStringLiteral("ENDPOINT"),    QStringLiteral("EVENT"),
        QStringLiteral("EXTERNAL"),    QStringLiteral("FULLTEXT"),    QStringLiteral("MASTER"),
        QStringLiteral("MESSAGE"),     QStringLiteral("PARTITION"),   QStringLiteral("PRIMARY"),
        QStringLiteral("QUEUE"),       QStringLiteral("ROUTE"),       QStringLiteral("SECURITY"),
        QStringLiteral("SERVER"),      QStringLiteral("SERVICE"),     QStringLiteral("SPATIAL"),
        QStringLiteral("SYMMETRIC"),   QStringLiteral("XML")};
    if (known.contains(kindOf(token)))
        fail(40000,
             QStringLiteral("The embedded server doesn't know %1 %2.")
                 .arg(QLatin1String(verb), kindOf(token)),
             token.line);
    failSyntax(token);
}

void create(SessionState& session, const Definition& statement, TokenCursor& cursor) {
    const bool orAlter = cursor.accept({"OR", "ALTER"});
    const Token& kind = cursor.peek();
    if (isModuleKind(kind)) return defineModule(session, statement);
    if (orAlter) cursor.failHere();
    if (cursor.accept("TABLE")) return createTable(session, cursor);
    IndexWords words;
    TokenCursor index = cursor;
    words.unique = index.accept("UNIQUE");
    words.clustered = index.accept("CLUSTERED");
    if (!words.clustered) index.accept("NONCLUSTERED");
    if (index.accept("INDEX")) return createIndex(session, cursor = index, words);
    if (cursor.is("DEFAULT") || cursor.is("RULE")) return createDefaultOrRule(session, statement);
    if (cursor.is("SCHEMA")) return createSchema(session, statement);
    if (cursor.accept("TYPE")) return createType(session, cursor);
    if (cursor.accept("SYNONYM")) return createSynonym(session, cursor);
    if (cursor.accept("SEQUENCE")) return createSequence(session, cursor, false);
    if (cursor.accept("STATISTICS")) return createStatistics(session, cursor);
    if (cursor.accept("DATABASE")) return createDatabase(session, cursor);
    if (cursor.is("USER") || cursor.is("ROLE") || cursor.is("LOGIN")) {
        const QString word = kindOf(cursor.next());
        return createPrincipal(session, cursor, word);
    }
    if (cursor.accept({"APPLICATION", "ROLE"}))
        return createPrincipal(session, cursor, QStringLiteral("APPLICATION ROLE"));
    failUnsupported("CREATE", kind);
}

void alter(SessionState& session, const Definition& statement, TokenCursor& cursor) {
    const Token& kind = cursor.peek();
    if (isModuleKind(kind)) return defineModule(session, statement);
    if (cursor.accept("TABLE")) return alterTable(session, cursor);
    if (cursor.accept("INDEX")) return alterIndex(session, cursor);
    if (cursor.accept("SCHEMA")) return alterSchema(session, cursor);
    if (cursor.accept("SEQUENCE")) return createSequence(session, cursor, true);
    if (cursor.accept("DATABASE")) return alterDatabase(session, cursor);
    if (cursor.accept("AUTHORIZATION")) return alterAuthorization(session, cursor);
    if (cursor.is("USER") || cursor.is("ROLE") || cursor.is("LOGIN")) {
        const QString word = kindOf(cursor.next());
        return alterPrincipal(session, cursor, word);
    }
    failUnsupported("ALTER", kind);
}

void drop(SessionState& session, TokenCursor& cursor) {
    const Token& kind = cursor.peek();
    if (cursor.accept("TABLE")) return dropTables(session, cursor);
    if (cursor.accept("INDEX")) return dropIndexes(session, cursor);
    if (cursor.accept("STATISTICS")) return dropStatistics(session, cursor);
    if (cursor.accept("TYPE")) return dropTypes(session, cursor);
    if (cursor.accept("SCHEMA")) return dropSchema(session, cursor);
    if (cursor.accept("DATABASE")) return dropDatabases(session, cursor);
    if (isModuleKind(kind) || cursor.is("DEFAULT") || cursor.is("RULE") || cursor.is("SYNONYM") ||
        cursor.is("SEQUENCE")) {
        const QString word = kindOf(cursor.next());
        return dropModules(session, cursor, word);
    }
    if (cursor.is("USER") || cursor.is("ROLE") || cursor.is("LOGIN")) {
        const QString word = kindOf(cursor.next());
        return dropPrincipal(session, cursor, word);
    }
    if (cursor.accept({"APPLICATION", "ROLE"}))
        return dropPrincipal(session, cursor, QStringLiteral("ROLE"));
    if (cursor.is("AGGREGATE") || cursor.is("ASSEMBLY") || cursor.is("SECURITY")) {
        // None of these can be made here, so there is none to drop.
        const QString word = cursor.accept({"SECURITY", "POLICY"})
                                 ? QStringLiteral("SECURITY POLICY")
                                 : kindOf(cursor.next());
        if (cursor.accept({"IF", "EXISTS"})) return;
        const ObjectName name = cursor.objectName();
        fail(
            3701,
            QStringLiteral(
                "Cannot drop the %1 '%2', because it does not exist or you do not have permission.")
                .arg(word.toLower(), name.display()),
            name.line);
    }
    failUnsupported("DROP", kind);
}

}  // namespace

void runDefinition(SessionState& session, const Definition& statement) {
    TokenCursor cursor(statement.tokens);
    if (cursor.accept("CREATE")) return create(session, statement, cursor);
    if (cursor.accept("ALTER")) return alter(session, statement, cursor);
    if (cursor.accept("DROP")) return drop(session, cursor);
    if (cursor.accept({"TRUNCATE", "TABLE"})) return truncateTable(session, cursor);
    if (cursor.accept("GRANT")) return changePermissions(session, cursor, PermissionVerb::Grant);
    if (cursor.accept("DENY")) return changePermissions(session, cursor, PermissionVerb::Deny);
    if (cursor.accept("REVOKE")) return changePermissions(session, cursor, PermissionVerb::Revoke);
    if (cursor.accept({"UPDATE", "STATISTICS"})) return updateStatistics(session, cursor);
    if (cursor.accept({"ENABLE", "TRIGGER"})) return setTriggersEnabled(session, cursor, true);
    if (cursor.accept({"DISABLE", "TRIGGER"})) return setTriggersEnabled(session, cursor, false);
    cursor.failHere();
}

}  // namespace zov::local
