// Filling the two panels: the server's version, its databases, the owners and
// the objects of the chosen database. Enter at InitializeDisplay for both
// panels, at LoadServer for one, at DatabaseChanged for a new database.
#pragma once

#include "catalog/mdlObjects.h"

namespace zov {

/// The controls of one panel.
struct Panel {
    ChoiceList& cmbServer;
    ChoiceList& pvlDb;
    ObjectList& pvlSqlObj;
    TextPane& txtTXProc;
    ChoiceList& cmbOwners;
};

/// Both panels and what they share.
struct Panels {
    Panel& source;
    Panel& target;
    ChoiceList& cmbType;
    ObjectTexts& texts;

    Panel& operator[](int Index) { return Index == 0 ? source : target; }
};

/// Pictures of `cmdConnect`.
inline constexpr int PictureConnected = 3;
inline constexpr int PictureConnecting = 4;
inline constexpr int PictureDisconnected = 5;

/// What panel loading asks of the window around the panels.
class PanelWindow {
 public:
    virtual ~PanelWindow() = default;
    virtual void setConnectPicture(int picture) = 0;
    /// Opens the Add Server screen; true when a server was added and the server boxes were
    /// refilled.
    virtual bool addServer() = 0;
    /// Whether the data access components can be used; says what is missing otherwise.
    virtual bool dataAccessUsable() = 0;
};

/// The version as the server reports it; empty when it can't be asked. Silent: `Failure` tells why.
QString GetServerVersion(const ServerInfo& Server, AdoFailure* Failure = nullptr);
/// Fills an empty `Version`: from the settings store, else from the server (and stores it).
void CheckSQLServerVersion(ServerInfo& Server, AdoFailure* Failure = nullptr);
/// Whether the list of tables can be read. Silent.
bool CanConnectToDb(const ServerInfo& Server, const QString& DbName, int Index);

/// True when there is a server to connect to; otherwise says so and offers the Add Server screen.
bool ServerInfoSet(Panels& panels, PanelWindow& window);
/// Clears both panels with their filters and loads them from the current servers.
void InitializeDisplay(bool pblnLoadMRUDb, Panels& panels, PanelWindow& window);
void ClearPanel(Panel& panel);

/// Loads one panel from its server; true when it is loaded. `Server` gets its version.
bool LoadServer(ServerInfo& Server, Panel& panel, ChoiceList& cmbType, bool pblnLoadMRUDb,
                int Index, ObjectTexts& texts);

/// A database was chosen in the panel: its filter goes, objects and owners are loaded, and the
/// choice is stored with the server.
void DatabaseChanged(ServerInfo& Server, const QString& DbName, Panel& panel, ChoiceList& cmbType,
                     int Index, ObjectTexts& texts);

/// An owner was chosen: the list is loaded anew, and what belongs to others is taken out.
void cmbOwners_Click(const ServerInfo& Server, Panel& panel, ChoiceList& cmbType, int Index,
                     ObjectTexts& texts);

}  // namespace zov
