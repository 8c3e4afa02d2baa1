// The user's stored list of servers: key `Server`n of the settings store, n from
// 1 without gaps, and its copy in memory, gtServers. Source and Target choose
// from this one list.
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

/// Adds the server at the list's end. gtServers is left as it was.
void SaveServerToRegistry(const ServerInfo& Server);

/// Takes the server of exactly this name out of the store and numbers the others anew.
void RemoveServer(const QString& Name);

/// Whether the server can be reached with the record's login, through its database (`MRUDb`, master
/// when empty). Silent. `ErrDescription`: why not, when given.
bool TestServerConnection(const ServerInfo& Server, QString* ErrDescription = nullptr);

}  // namespace zov
