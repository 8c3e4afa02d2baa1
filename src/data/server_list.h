// The user's stored list of servers: key `Server`n of the settings store, n from
// 1 without gaps, and its copy in memory, gtServers. Source and Target choose
// from this one list. Several processes may change it at once.
#pragma once

#include "core/server_info.h"
#include "shell/controls.h"

namespace zov {

/// Fills gtServers from the settings store.
void LoadServersFromRegistry();

/// Fills the record of the stored server that is named exactly `Server.Name`, from the settings
/// store (not from gtServers). A box when there is none; the other fields are empty then. True when
/// found.
bool GetServerInfoByName(ServerInfo& Server);

qint32 GetServerCount();

/// Both panels get the first stored server, or an empty record when there is none.
void SetInitialServers();

/// Fills a server box in list order and selects entry `Index` (from 0); its text stays when the
/// list still has it. Without servers it shows one empty entry.
void FillServerCombo(ChoiceList& Combo, int Index);

/// Whether a server of this name, in any case, is stored. Looks at gtServers; when that is empty,
/// what is left of the list's key is cleaned up.
bool IsServerInList(const QString& Name);

enum class ServerSaved {
    Yes,
    AlreadyThere,  ///< under this name, in any case: another process may have added it meanwhile
    ListIsFull,
    NotStored,  ///< takeSettingsFailure() says why
};
/// Adds the server at the stored list's end. gtServers is left as it was.
ServerSaved SaveServerToRegistry(const ServerInfo& Server);

/// What to tell of a server that the list doesn't take: already there, or the list is full.
QString serverNotSavedText(ServerSaved saved);

/// Takes the server of exactly this name out of the store and numbers the others anew. False when
/// there is none, or when the store can't be written (takeSettingsFailure() says why).
bool RemoveServer(const QString& Name);

/// The version that is stored for this server, empty when none is. This and what follows go by the
/// record's name, wherever it stands in the list by now; a record that isn't stored stays so.
QString StoredServerVersion(const ServerInfo& Server);
void StoreServerVersion(const ServerInfo& Server, const QString& version);
/// In gtServers, too.
void StoreServerDatabase(const ServerInfo& Server, const QString& database);

/// Whether the server can be reached with the record's login, through its database (`MRUDb`, master
/// when empty). Silent. `ErrDescription`: why not, when given.
bool TestServerConnection(const ServerInfo& Server, QString* ErrDescription = nullptr);

}  // namespace zov
