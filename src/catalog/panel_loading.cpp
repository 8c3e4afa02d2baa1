#include "catalog/panel_loading.h"

#include "catalog/modOwner.h"
#include "catalog/modSchema.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "core/mdlMain.h"
#include "data/server_list.h"
#include "shell/shell.h"
#include "util/text.h"

#include <QScopeGuard>

namespace zov {
namespace {

constexpr const char* Module = "frmMain";

ObjectType selectedType(const ChoiceList& cmbType) {
    const int index = cmbType.selectedIndex();
    return ObjectType(index < 0 ? 0 : cmbType.itemData(index));
}

// Back to the first row without loading anything.
void resetSelection(ObjectList& list) {
    list.Tag = QStringLiteral("OFF");
    list.selectRow(0);
    list.Tag.clear();
}

int indexOfText(const ChoiceList& list, const QString& text) {
    for (int i = 0; i < list.count(); ++i)
        if (list.itemText(i) == text) return i;
    return -1;
}

// Where a load of a panel stands, for its error report.
struct LoadProgress {
    QString database;
    qint64 databaseCount = 0;
    qint64 databaseNumber = 0;
    int step = 0;
    int retries = 0;
    bool listLoaded = false;
};

// A row of sysdatabases may be deleted while it is read; the statement is tried once more.
template <typename Statement>
auto retriedOnce(LoadProgress& progress, Statement statement) {
    try {
        return statement();
    } catch (const DbError& error) {
        if (error.number != ado_error::DeletedRow || progress.databaseCount <= 0 ||
            progress.retries > 0 || progress.listLoaded)
            throw;
        ++progress.retries;
    }
    return statement();
}

void fillDatabases(Recordset& rs, const ServerInfo& server, ChoiceList& pvlDb, int index,
                   LoadProgress& progress) {
    pvlDb.Tag = QStringLiteral("OFF");
    pvlDb.setRedraw(false);
    const auto restore = qScopeGuard([&] {
        pvlDb.Tag.clear();
        pvlDb.setRedraw(true);
    });
    pvlDb.clear();
    progress.databaseCount = retriedOnce(progress, [&] { return rs.RecordCount(); });
    if (progress.databaseCount == 0) return;
    retriedOnce(progress, [&] {
        rs.MoveFirst();
        return 0;
    });
    while (!rs.isEof() && !globals().gblnStop) {
        ++progress.databaseNumber;
        const QString name = retriedOnce(progress, [&] { return rs.field(0).text(); });
        if (!globals().gblnFilterOfflineDbs || CanConnectToDb(server, name, index))
            pvlDb.addItem(name);
        retriedOnce(progress, [&] {
            rs.MoveNext();
            return 0;
        });
    }
    progress.listLoaded = true;
    if (pvlDb.count() > 0) pvlDb.selectIndex(0);
}

bool isSameLogin(const ServerInfo& a, const ServerInfo& b) {
    return a.Name == b.Name && a.SQLAuth == b.SQLAuth && a.LoginName == b.LoginName &&
           a.Password == b.Password;
}

}  // namespace

QString GetServerVersion(const ServerInfo& Server, AdoFailure* Failure) {
    return guarded(Module, "GetServerVersion", QString(), [&]() -> QString {
        const ScopedValue<bool> silent(globals().gblnSuppressConnErrors, true);
        std::unique_ptr<Recordset> rs;
        if (GetAdoRS(Server, adCmdText,
                     QStringLiteral("SELECT serverproperty('ProductVersion') AS ServerVer"), rs,
                     QStringLiteral("Master"), Failure) == -1 ||
            !rs || !rs->isOpen() || rs->isEof())
            return {};
        return rs->field(QStringLiteral("ServerVer")).text();
    });
}

void CheckSQLServerVersion(ServerInfo& Server, AdoFailure* Failure) {
    if (!Server.Version.isEmpty()) return;
    Server.Version = StoredServerVersion(Server);
    if (!Server.Version.isEmpty()) return;
    Server.Version = GetServerVersion(Server, Failure);
    if (!Server.Version.isEmpty()) StoreServerVersion(Server, Server.Version);
}

bool CanConnectToDb(const ServerInfo& Server, const QString& DbName, int Index) {
    QString text;
    return guarded(
        Module, "CanConnectToDb", false,
        [&] {
            const ScopedValue<bool> silent(globals().gblnSuppressConnErrors, true);
            text =
                BuildObjSQLString(ObjectType::Table, globals().gblnIgnoreSysObjects, {}, {}, Index);
            std::unique_ptr<Recordset> rs;
            return GetAdoRS(Server, adCmdText, text, rs, DbName) != -1;
        },
        [&] {
            return QStringLiteral("db name = '") + DbName + QStringLiteral("', sql = '") + text +
                   u'\'';
        });
}

void ClearPanel(Panel& panel) {
    for (ChoiceList* list : {&panel.pvlDb, &panel.cmbOwners}) {
        list->Tag = QStringLiteral("OFF");
        list->clear();
        list->Tag.clear();
    }
    panel.pvlSqlObj.setRows({});
    panel.txtTXProc.setText({});
}

bool ServerInfoSet(Panels& panels, PanelWindow& window) {
    if (!window.dataAccessUsable()) return false;
    if (!globals().gtCurrentServers[SourcePanel].Name.isEmpty()) return true;
    shell().messageBox(
        QStringLiteral(
            "There is no SQL server to connect to.\r\n\r\nPlease add server by filling in "
            "following form or by clicking menu item 'Tools' -> 'Add Server' and "
            "specifying info for the server."),
        QStringLiteral("No SQL Server"), BoxIcon::Information);
    if (window.addServer()) InitializeDisplay(false, panels, window);
    return false;
}

void InitializeDisplay(bool pblnLoadMRUDb, Panels& panels, PanelWindow& window) {
    ClearPanel(panels.source);
    ClearPanel(panels.target);
    // A filter belongs to the database that was shown; the load may choose another one.
    ResetFilter(SourcePanel);
    ResetFilter(TargetPanel);
    window.setConnectPicture(PictureDisconnected);
    if (!ServerInfoSet(panels, window)) return;
    window.setConnectPicture(PictureConnecting);
    bool connected = false;
    for (int index : {SourcePanel, TargetPanel}) {
        // A server that didn't tell its databases is not asked for them once more.
        if (index == TargetPanel && panels.source.pvlDb.count() == 0 &&
            isSameLogin(globals().gtCurrentServers[SourcePanel],
                        globals().gtCurrentServers[TargetPanel]))
            break;
        connected |= LoadServer(globals().gtCurrentServers[index], panels[index], panels.cmbType,
                                pblnLoadMRUDb, index, panels.texts);
        // Who gave up waiting for one server doesn't want to wait for the other.
        if (globals().gblnStop) break;
    }
    window.setConnectPicture(connected ? PictureConnected : PictureDisconnected);
}

bool LoadServer(ServerInfo& Server, Panel& panel, ChoiceList& cmbType, bool pblnLoadMRUDb,
                int Index, ObjectTexts& texts) {
    LoadProgress progress;
    globals().gblnStop = false;
    LogWrite(QStringLiteral("Begin LoadServer, p_Serv.strName = ") + Server.Name);
    const bool loaded = guarded(
        Module, "LoadServer", false,
        [&] {
            progress.step = 1;
            AdoFailure failure;
            CheckSQLServerVersion(Server, &failure);
            if (globals().gblnStop) return false;
            if (failure.Unreachable) {
                // Asking for the databases would only wait as long once more.
                ReportAdoFailure(failure);
                return false;
            }
            progress.step = 2;
            std::unique_ptr<Recordset> rs;
            if (GetAdoRS(Server, adCmdText,
                         QStringLiteral("SELECT name FROM sysdatabases ORDER BY name"), rs,
                         QStringLiteral("master")) == -1) {
                shell().pumpEvents();
                return false;
            }
            progress.step = 4;
            if (rs && rs->isOpen()) {
                fillDatabases(*rs, Server, panel.pvlDb, Index, progress);
                rs->Close();
            }
            progress.step = 5;
            shell().pumpEvents();
            progress.database = panel.pvlDb.text();
            progress.step = 6;
            if (pblnLoadMRUDb && !Server.MRUDb.isEmpty() && GetPreserveDbSel()) {
                const int found = indexOfText(panel.pvlDb, Server.MRUDb);
                if (found >= 0) {
                    panel.pvlDb.Tag = QStringLiteral("OFF");
                    panel.pvlDb.selectIndex(found);
                    panel.pvlDb.Tag.clear();
                    progress.database = Server.MRUDb;
                }
            }
            if (globals().gblnStop) return false;
            progress.step = 7;
            LoadOwners(Server, progress.database, panel.cmbOwners);
            if (globals().gblnStop) return false;
            progress.step = 8;
            const ObjectType type = selectedType(cmbType);
            progress.step = 9;
            resetSelection(panel.pvlSqlObj);
            progress.step = 10;
            LoadObjects(Server, panel.pvlSqlObj, panel.txtTXProc, type, progress.database, true, {},
                        Index, &texts);
            progress.step = 11;
            shell().pumpEvents();
            return !globals().gblnStop;
        },
        [&] {
            return QStringLiteral("Server name: ") + Server.Name + QStringLiteral(", ver. ") +
                   Server.Version + QStringLiteral(", db name: ") + progress.database +
                   QStringLiteral(", pblnLoadMRUDb: ") +
                   (pblnLoadMRUDb ? QStringLiteral("True") : QStringLiteral("False")) +
                   QStringLiteral(", db count = %1, db num = %2, line num = %3, err count = %4")
                       .arg(progress.databaseCount)
                       .arg(progress.databaseNumber)
                       .arg(progress.step)
                       .arg(progress.retries);
        });
    LogWrite(QStringLiteral("End LoadServer"));
    return loaded;
}

void DatabaseChanged(ServerInfo& Server, const QString& DbName, Panel& panel, ChoiceList& cmbType,
                     int Index, ObjectTexts& texts) {
    guardedRun(Module, "DatabaseChanged", [&] {
        const ObjectType type = selectedType(cmbType);
        ResetFilter(Index);
        resetSelection(panel.pvlSqlObj);
        LoadObjects(Server, panel.pvlSqlObj, panel.txtTXProc, type, DbName, true, {}, Index,
                    &texts);
        LoadOwners(Server, DbName, panel.cmbOwners);
        if (Server.RegIndex < 1) return;
        Server.MRUDb = DbName;
        StoreServerDatabase(Server, DbName);
    });
}

void cmbOwners_Click(const ServerInfo& Server, Panel& panel, ChoiceList& cmbType, int Index,
                     ObjectTexts& texts) {
    if (panel.cmbOwners.Tag == QLatin1StringView("OFF")) return;
    guardedRun(Module, "cmbOwners_Click", [&] {
        const ObjectType type = selectedType(cmbType);
        const QString database = panel.pvlDb.text();
        ObjectList& list = panel.pvlSqlObj;
        list.setRows({});
        panel.txtTXProc.setText({});
        LoadObjects(Server, list, panel.txtTXProc, type, database, false, {}, Index, &texts);

        list.Tag = QStringLiteral("OFF");
        list.setRedraw(false);
        const auto restore = qScopeGuard([&] {
            list.Tag.clear();
            list.setRedraw(true);
        });
        const QString owner = panel.cmbOwners.text();
        if (owner != QLatin1StringView("All Owners")) {
            for (int row = list.rowCount() - 1; row >= 0; --row)
                if (GetOwner(Server, database, objectOf(list.row(row), type)) != owner)
                    list.removeRow(row);
            if (list.rowCount() > 0) list.selectRow(0);
        }
        texts.showSelectedObject(Server, panel.txtTXProc, list, type, database, Index);
        shell().pumpEvents();
    });
}

}  // namespace zov
