// Making a database of a server from files that hold one, by the server's own
// procedures. The embedded server takes a copy of a database file of ours.
#pragma once

#include "core/server_info.h"

#include <QString>

namespace zov {

/// The server opens files of this machine: the embedded one, or one that is named so that it can
/// only be here.
bool opensFilesOfThisMachine(const QString& ServerName);

/// Attaches on a connection of its own to master. An empty `LogFile` lets the server build a new
/// log. False when it failed, which was reported.
bool AttachDatabase(const ServerInfo& Server, const QString& Name, const QString& DatabaseFile,
                    const QString& LogFile);

}  // namespace zov
