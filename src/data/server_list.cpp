#include "data/server_list.h"

#include "core/globals.h"
#include "core/mdlMain.h"
#include "core/registry.h"
#include "core/settings.h"
#include "data/mdlData.h"
#include "shell/shell.h"

namespace zov {
namespace {

constexpr auto User = RegRoot::CurrentUser;
const QString Count = QStringLiteral("Count");
const QString Name = QStringLiteral("Name");
const QString SQLAuth = QStringLiteral("SQLAuth");
const QString LoginName = QStringLiteral("LoginName");
const QString Pwd = QStringLiteral("Pwd");
const QString MRUDb = QStringLiteral("MRUDb");
const QString Version = QStringLiteral("Version");

qint32 storedCount() {
    return qBound(0, RegGetDWordValue(User, settings_key::Servers, Count, 0), MaxStoredServers);
}

ServerInfo readServer(qint32 n) {
    const QString key = settings_key::server(n);
    ServerInfo server;
    server.Name = RegGetStringValue(User, key, Name, {});
    server.SQLAuth = RegGetDWordValue(User, key, SQLAuth, 0) == 1;
    server.LoginName = RegGetStringValue(User, key, LoginName, {});
    server.Password = RegGetStringValue(User, key, Pwd, {});
    server.MRUDb = RegGetStringValue(User, key, MRUDb, {});
    server.RegIndex = n;
    server.Version = RegGetStringValue(User, key, Version, {});
    return server;
}

void writeServer(qint32 n, const ServerInfo& server) {
    const QString key = settings_key::server(n);
    RegCreateKeyPath(User, key);
    RegSetStringValue(User, key, Name, server.Name);
    RegSetDWordValue(User, key, SQLAuth, server.SQLAuth ? 1 : 0);
    RegSetStringValue(User, key, LoginName, server.LoginName);
    RegSetStringValue(User, key, Pwd, server.Password);
    RegSetStringValue(User, key, MRUDb, server.MRUDb);
    RegSetStringValue(User, key, Version, server.Version);
}

/// The number under which the server stands now: another instance may have removed one in front of
/// it since its record was read. 0 when it isn't there any more.
qint32 storedNumber(const ServerInfo& server) {
    if (server.RegIndex < 1) return 0;
    const auto hasName = [&](qint32 n) {
        return RegGetStringValue(User, settings_key::server(n), Name, {}) == server.Name;
    };
    const qint32 count = storedCount();
    if (server.RegIndex <= count && hasName(server.RegIndex)) return server.RegIndex;
    for (qint32 n = 1; n <= count; ++n) {
        if (hasName(n)) return n;
    }
    return 0;
}

void storeValue(const ServerInfo& server, const QString& name, const QString& value) {
    if (server.RegIndex < 1) return;
    changeSettings([&] {
        const qint32 n = storedNumber(server);
        if (n > 0) RegSetStringValue(User, settings_key::server(n), name, value);
    });
}

}  // namespace

void LoadServersFromRegistry() {
    const RegistryBatch oneLook;
    Globals& g = globals();
    g.gtServers.clear();
    g.gblnServersLoaded = false;
    const qint32 count = storedCount();
    if (count == 0) return;
    for (qint32 n = 1; n <= count; ++n) g.gtServers.push_back(readServer(n));
    g.gblnServersLoaded = true;
}

bool GetServerInfoByName(ServerInfo& Server) {
    const RegistryBatch oneLook;
    const QString name = Server.Name;
    Server = ServerInfo();
    Server.Name = name;
    const qint32 count = storedCount();
    for (qint32 n = 1; n <= count; ++n) {
        const ServerInfo stored = readServer(n);
        if (stored.Name != name) continue;
        Server = stored;
        return true;
    }
    shell().messageBox(QStringLiteral("Server '") + name + QStringLiteral("' not found."), {},
                       BoxIcon::Exclamation);
    return false;
}

qint32 GetServerCount() {
    return qint32(globals().gtServers.size());
}

void SetInitialServers() {
    Globals& g = globals();
    ServerInfo first;
    if (g.gblnServersLoaded && !g.gtServers.empty()) {
        first = g.gtServers.front();
        first.NumVersion = GetMajorVersion(first.Version);
        first.SchemaCheckPerformed = false;
        first.AddSchema = false;
    }
    g.gtCurrentServers[SourcePanel] = first;
    g.gtCurrentServers[TargetPanel] = first;
}

void FillServerCombo(ChoiceList& Combo, int Index) {
    const QString text = Combo.text();
    Combo.Tag = QStringLiteral("OFF");
    Combo.clear();
    if (GetServerCount() == 0) {
        Combo.addItem(QString());
        Combo.setText(QString());
    } else {
        for (const ServerInfo& server : globals().gtServers) Combo.addItem(server.Name);
        if (Index < Combo.count()) Combo.selectIndex(Index);
        for (int item = 0; item < Combo.count(); ++item) {
            if (Combo.itemText(item) == text) Combo.setText(text);
        }
    }
    Combo.Tag.clear();
}

bool IsServerInList(const QString& Name) {
    if (globals().gtServers.empty()) {
        // A list that couldn't be read isn't an empty one.
        if (settingsReadFailure().isEmpty()) RegDeleteKeyPath(User, settings_key::Servers);
        return false;
    }
    for (const ServerInfo& server : globals().gtServers) {
        if (server.Name.compare(Name, Qt::CaseInsensitive) == 0) return true;
    }
    return false;
}

ServerSaved SaveServerToRegistry(const ServerInfo& Server) {
    auto outcome = ServerSaved::NotStored;
    // The number is worked out, and the name looked for, under the lock: other processes add and
    // remove too, and gtServers knows nothing of them.
    const bool written = changeSettings([&] {
        const qint32 count = storedCount();
        for (qint32 n = 1; n <= count; ++n) {
            const QString stored = RegGetStringValue(User, settings_key::server(n), Name, {});
            if (stored.compare(Server.Name, Qt::CaseInsensitive) != 0) continue;
            outcome = ServerSaved::AlreadyThere;
            return;
        }
        if (count == MaxStoredServers) {
            outcome = ServerSaved::ListIsFull;
            return;
        }
        RegSetDWordValue(User, settings_key::Servers, Count, count + 1);
        writeServer(count + 1, Server);
        outcome = ServerSaved::Yes;
    });
    return written ? outcome : ServerSaved::NotStored;
}

QString serverNotSavedText(ServerSaved saved) {
    if (saved == ServerSaved::ListIsFull)
        return QStringLiteral(
                   "The list holds %1 servers, which is as many as it can. Remove one "
                   "first.")
            .arg(MaxStoredServers);
    return QStringLiteral("This server is already added to the list.");
}

bool RemoveServer(const QString& Name) {
    bool found = false;
    const bool written = changeSettings([&] {
        const qint32 count = storedCount();
        std::vector<ServerInfo> kept;
        for (qint32 n = 1; n <= count; ++n) {
            ServerInfo server = readServer(n);
            if (server.Name != Name) kept.push_back(std::move(server));
        }
        found = qint32(kept.size()) < count;
        if (!found) return;
        for (qint32 n = 1; n <= count; ++n) RegDeleteKeyPath(User, settings_key::server(n));
        qint32 n = 0;
        for (const ServerInfo& server : kept) writeServer(++n, server);
        RegSetDWordValue(User, settings_key::Servers, Count, n);
    });
    return written && found;
}

QString StoredServerVersion(const ServerInfo& Server) {
    const RegistryBatch oneLook;
    const qint32 n = storedNumber(Server);
    return n == 0 ? QString() : RegGetStringValue(User, settings_key::server(n), Version, {});
}

void StoreServerVersion(const ServerInfo& Server, const QString& version) {
    storeValue(Server, Version, version);
}

void StoreServerDatabase(const ServerInfo& Server, const QString& database) {
    for (ServerInfo& listed : globals().gtServers) {
        if (listed.Name == Server.Name) listed.MRUDb = database;
    }
    storeValue(Server, MRUDb, database);
}

bool TestServerConnection(const ServerInfo& Server, QString* ErrDescription) {
    const WaitPointer wait;
    globals().gblnSuppressConnErrors = true;
    globals().gblnStop = false;
    const QString database = Server.MRUDb.isEmpty() ? QStringLiteral("master") : Server.MRUDb;
    AdoFailure failure;
    const auto attempt = [&](const QString& text, const QString& in) {
        std::unique_ptr<Recordset> rs;
        const qint32 result = GetAdoRS(Server, adCmdText, text, rs, in, &failure);
        if (rs && rs->isOpen()) rs->Close();
        return result;
    };
    qint32 result;
    if (database.toLower() == u"master") {
        result = attempt(QStringLiteral("SELECT TOP 1 name FROM sysdatabases"), database);
    } else {
        result = attempt(QStringLiteral("SELECT TOP 1 name FROM sys.databases"), database);
        // An old server has no sys.databases: what counts is whether the login is taken. Who gave
        // up waiting, or waited for nobody, doesn't wait once more.
        if (result == -1 && !globals().gblnStop && !failure.Unreachable) result = attempt({}, {});
    }
    globals().gblnSuppressConnErrors = false;
    if (result == -1 && ErrDescription) {
        *ErrDescription = failure.ErrNumber == ado_error::Unspecified
                              ? QStringLiteral("SQL Server does not exist or access denied.")
                              : failure.ErrDescription;
    }
    return result != -1;
}

}  // namespace zov
