// What the desktop's command line asks for: servers and databases to open both
// panels with, a palette, and the switch of the saved processes, which is left to
// the start-up.
#pragma once

#include <QStringList>

namespace zov {
class frmMain;
struct Panels;
}  // namespace zov

namespace zov::qt {

struct StartOptions {
    struct Side {
        QString server;
        QString database;
    };
    Side sides[2];    ///< Source, Target
    QString palette;  ///< "system", "light", "dark"; empty: as stored
    /// The saved process is run without a window, and the program ends behind it.
    bool unattended = false;
    /// Everything that isn't an option above, joined by blanks.
    QString rest;
    /// What is wrong with the command line, or what was asked to be printed; the program then ends
    /// with `exitStatus`.
    QString message;
    int exitStatus = 0;

    bool opensPanels() const { return !sides[0].server.isEmpty() || !sides[1].server.isEmpty(); }
};

/// `arguments` without the program's name.
StartOptions parseStartOptions(const QStringList& arguments);

/// An embedded server that is named, is there and isn't stored yet is added to the list; nothing is
/// asked. All others are left to openStartPanels.
void storeEmbeddedServers(const StartOptions& options);

/// Selects servers and databases as a user would. A server that isn't stored is asked for with the
/// Add Server screen; a database that isn't there is told.
void openStartPanels(const StartOptions& options, frmMain& controller, Panels& panels);

}  // namespace zov::qt
