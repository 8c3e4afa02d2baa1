#include "apps/cli/cli_support.h"

#include "catalog/panel_loading.h"
#include "core/globals.h"
#include "data/sql_names.h"
#include "shell/console/console_shell.h"
#include "shell/console/hidden_typing.h"
#include "shell/console/interrupt.h"
#include "shell/console/terminal.h"
#include "shell/console/visible_text.h"
#include "util/text.h"

#include <QRegularExpression>
#include <QScopeGuard>

#include <cstdio>

namespace zov::cli {
namespace {

/// An input that ends at once holds no password, not an empty one.
QString passwordLine() {
    QByteArray line;
    switch (readInputLine(line)) {
        case LineRead::Line:
            break;
        case LineRead::EndOfInput:
            throw Failure(
                QStringLiteral("No password was given: the input ended.\n"
                               "An empty password is an empty line."));
        case LineRead::Interrupted:
            throw Failure(QStringLiteral("Stopped."));
        case LineRead::Failed:
            throw Failure(
                QStringLiteral("The password can't be read from standard input.\n"
                               "Give it as one line, or in ZOVRAND_PASSWORD."));
    }
    if (line.endsWith('\r')) line.chop(1);
    return QString::fromLocal8Bit(line);
}

QString askForPassword(const QString& login) {
    std::fputs(qPrintable(QStringLiteral("Password of %1: ").arg(visibleText(login))), stderr);
    std::fflush(stderr);
    // The cursor stands behind the prompt, however this ends.
    const auto lineEnd = qScopeGuard([] { std::fputc('\n', stderr); });
    const HiddenTyping hidden;
    return passwordLine();
}

bool isLocal(const QString& server) {
    return server.startsWith(QStringLiteral("local:"), Qt::CaseInsensitive) ||
           server.startsWith(QStringLiteral("snapshot:"), Qt::CaseInsensitive);
}

const ServerInfo* storedServer(const QString& name) {
    const ServerInfo* sameButForCase = nullptr;
    for (const ServerInfo& server : globals().gtServers) {
        if (server.Name == name) return &server;
        if (server.Name.compare(name, Qt::CaseInsensitive) == 0) sameButForCase = &server;
    }
    return sameButForCase;
}

struct NamedType {
    const char* singular;
    const char* plural;
    ObjectType type;
};
constexpr NamedType NamedTypes[] = {
    {"table", "tables", ObjectType::Table},
    {"procedure", "procedures", ObjectType::Procedure},
    {"function", "functions", ObjectType::Function},
    {"view", "views", ObjectType::View},
    {"trigger", "triggers", ObjectType::Trigger},
    {"relationship", "relationships", ObjectType::Relationship},
    {"constraint", "constraints", ObjectType::Constraint},
    {"permission", "permissions", ObjectType::Permission},
};

}  // namespace

QString passwordFor(const Options& options, const QString& login, const char* variable) {
    if (options.passwordFromStdin) {
        // Standard input has one first line, whoever asks for it.
        static const QString line =
            standardInputIsTerminal() ? askForPassword(login) : passwordLine();
        return line;
    }
    for (const char* name : {variable, "ZOVRAND_PASSWORD"}) {
        if (qEnvironmentVariableIsSet(name)) return qEnvironmentVariable(name);
    }
    return standardInputIsTerminal() ? askForPassword(login) : QString();
}

bool isKnownServer(const QString& name) {
    return isLocal(name) || storedServer(name) != nullptr;
}

ServerInfo chooseServer(const Options& options, const ServerArguments& arguments,
                        const char* passwordVariable) {
    const ServerInfo* stored = storedServer(arguments.server);
    ServerInfo server;
    if (stored && arguments.login.isEmpty()) {
        server = *stored;
    } else {
        server.Name = arguments.server;
        if (arguments.login.isEmpty() && !isLocal(server.Name)) {
            throw Failure(
                QStringLiteral("There is no stored server \"%1\".\n"
                               "Store it with: zovrand-cli server add %1 --sql-login USER; "
                               "or name its login with --login USER.")
                    .arg(server.Name));
        }
        if (!arguments.login.isEmpty()) {
            server.SQLAuth = true;
            server.LoginName = arguments.login;
            server.Password = passwordFor(options, arguments.login, passwordVariable);
        }
    }
    return server;
}

QString chooseDatabase(const ServerArguments& arguments, const ServerInfo& server,
                       const char* option) {
    const QString database = arguments.database.isEmpty() ? server.MRUDb : arguments.database;
    if (database.isEmpty()) {
        throw Failure(QStringLiteral("No database is given.\nName one with %1 DB.")
                          .arg(QString::fromLatin1(option)));
    }
    return database;
}

QString explainDbError(const DbError& error, const ServerInfo& server, const QString& database,
                       bool connected) {
    constexpr qint32 NoSuchDatabase = 911;
    constexpr qint32 CannotOpenDatabase = 4060;
    QString text = error.description.trimmed();
    if (text.isEmpty()) text = QStringLiteral("Error %1.").arg(error.number);
    if (error.native == NoSuchDatabase || error.native == CannotOpenDatabase) {
        text += QStringLiteral(
                    "\nThe databases of %1 are shown by: zovrand-cli query -S %1 -d master "
                    "\"SELECT name FROM sysdatabases\".")
                    .arg(server.Name);
    } else if (error.number == ado_error::LoginFailed) {
        text += server.SQLAuth
                    ? QStringLiteral(
                          "\nCheck the login %1 and its password (ZOVRAND_PASSWORD, "
                          "--password-stdin or the stored one).")
                          .arg(server.LoginName)
                    : QStringLiteral(
                          "\nThe server wants a login: name one with --login USER, or store "
                          "the server with one (zovrand-cli server add --sql-login USER).");
    } else if (error.connectionLost && connected) {
        text += QStringLiteral(
                    "\nThe connection to %1 broke off; run the command again when the server "
                    "can be reached.")
                    .arg(server.Name);
    } else if (error.number == ado_error::Timeout) {
        text += QStringLiteral("\nGive it more time with --set Timeout=SECONDS (0: no limit).");
    } else if (error.number == ado_error::NoSuchTable) {
        text += QStringLiteral(
                    "\nThe tables of %2 are shown by: zovrand-cli list -S %1 -d %2 -t tables.")
                    .arg(server.Name, database);
    }
    return text;
}

void reachServer(ServerInfo& server, const QString& database, int panel) {
    try {
        Connection connection;
        connection.ConnectionString = BuildConnectionString(server, database);
        connection.Open();
        connection.Close();
    } catch (const DbError& error) {
        throw Failure(explainDbError(error, server, database, false));
    }
    CheckSQLServerVersion(server);
    // Another version's questions would leave things out without a word.
    if (server.Version.isEmpty())
        throw Failure(
            QStringLiteral("The version of server %1 can't be read.\nRun the command again "
                           "when the server answers.")
                .arg(server.Name));
    server.NumVersion = GetMajorVersion(server.Version);
    globals().gtCurrentServers[panel] = server;
}

ObjectType objectTypeFromName(const QString& name) {
    QStringList known;
    for (const NamedType& named : NamedTypes) {
        if (name.compare(QLatin1StringView(named.singular), Qt::CaseInsensitive) == 0 ||
            name.compare(QLatin1StringView(named.plural), Qt::CaseInsensitive) == 0) {
            return named.type;
        }
        known += QString::fromLatin1(named.plural);
    }
    throw Failure(QStringLiteral("There is no kind of object \"%1\".\nThe kinds are: %2.")
                      .arg(name, known.join(QStringLiteral(", "))));
}

QStringList splitNames(const QString& list) {
    QStringList names;
    qsizetype at = 0;
    while (at <= list.size()) {
        QString name;
        while (at < list.size() && list[at] == u' ') ++at;
        const bool bracketed = at < list.size() && list[at] == u'[';
        qsizetype close = at;
        if (bracketed) {
            for (close = at + 1; close < list.size(); ++close) {
                if (list[close] != u']') {
                    name += list[close];
                } else if (close + 1 < list.size() && list[close + 1] == u']') {
                    name += list[close++];
                } else {
                    break;
                }
            }
        }
        const qsizetype comma = list.indexOf(u',', close);
        const qsizetype end = comma < 0 ? list.size() : comma;
        // "[a].[b]" is a schema and a name: left as it is.
        const bool wholeInBrackets = bracketed && close < list.size() &&
                                     Trim(list.mid(close + 1, end - close - 1)).isEmpty();
        if (!wholeInBrackets) name = Trim(list.mid(at, end - at));
        if (!name.isEmpty()) names += name;
        at = end + 1;
    }
    return names;
}

namespace {

/// "[a]", "[a].[b]", "a.[b]" to its parts; none when there is no bracket to go by.
QStringList bracketedParts(const QString& name) {
    static const QRegularExpression form(
        QStringLiteral("^(?:(?:\\[((?:[^\\]]|\\]\\])+)\\]|([^\\[\\].]+))\\.)?"
                       "(?:\\[((?:[^\\]]|\\]\\])+)\\]|([^\\[\\].]+))$"));
    if (!name.contains(u'[')) return {};
    const QRegularExpressionMatch match = form.match(name);
    if (!match.hasMatch()) return {};
    const auto part = [&](int bracketed, int bare) {
        QString text = match.captured(bracketed);
        text.replace(QStringLiteral("]]"), QStringLiteral("]"));
        return text.isEmpty() ? match.captured(bare) : text;
    };
    QStringList parts{part(1, 2), part(3, 4)};
    if (parts.front().isEmpty()) parts.removeFirst();
    return parts;
}

}  // namespace

bool meansObject(const QString& name, const ObjectListRow& row, Qt::CaseSensitivity cs) {
    const auto equal = [cs](const QString& a, const QString& b) { return a.compare(b, cs) == 0; };
    if (equal(name, row.bareName()) || equal(name, row.name)) return true;
    if (!row.schema.isEmpty() && equal(name, row.schema + u'.' + row.bareName())) return true;
    const QStringList parts = bracketedParts(name);
    if (parts.size() == 1) return equal(parts[0], row.bareName());
    return parts.size() == 2 && equal(parts[0], row.schema) && equal(parts[1], row.bareName());
}

std::vector<int> rowsMeant(const std::vector<ObjectListRow>& rows, const QString& name) {
    for (const Qt::CaseSensitivity cs : {Qt::CaseSensitive, Qt::CaseInsensitive}) {
        std::vector<int> meant;
        for (int row = 0; row < int(rows.size()); ++row)
            if (meansObject(name, rows[size_t(row)], cs)) meant.push_back(row);
        if (!meant.empty()) return meant;
    }
    return {};
}

QString fullNames(const std::vector<ObjectListRow>& rows) {
    QStringList names;
    for (const ObjectListRow& row : rows) {
        const bool plain = !row.bareName().contains(u'.') && !row.bareName().contains(u'[') &&
                           !row.schema.contains(u'.');
        names += row.schema.isEmpty() ? row.name
                 : plain              ? row.schema + u'.' + row.bareName()
                                      : quotedName(row.schema, row.bareName());
    }
    return names.join(QStringLiteral(", "));
}

bool tellTrouble(ConsoleShell& console, const RunAccount& account) {
    for (const AccountEntry& entry : account.entries())
        if (!entry.told) console.showError(entry.sentence());
    return !account.isWhole();
}

void writeOut(const QString& text) {
    // Half a result must not pass for one.
    if (interruptRequested()) throw Failure(QStringLiteral("Stopped."));
    static const bool isShown = standardOutputIsTerminal();
    const QByteArray bytes = (isShown ? visibleText(text, LineBreaks::Keep) : text).toUtf8();
    if (std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout) != size_t(bytes.size())) {
        throw Failure(QStringLiteral("Standard output cannot be written."));
    }
}

void flushOut() {
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
        throw Failure(QStringLiteral("Standard output cannot be written: is the disk full?"));
    }
}

}  // namespace zov::cli
