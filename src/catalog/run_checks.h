// What a run finds out about each side before it compares anything: without the server's version
// the wrong questions would be asked, and a login that may not see everything is never told what is
// kept from it.
#pragma once

#include "core/server_info.h"

#include <QString>

namespace zov {

/// Asks the server for its version anew and puts it into `server`. False, after a box, when it
/// can't be told: no run may start then.
bool knowVersion(ServerInfo& server);

/// Whether the login sees every object of the database; servers below version 9 show all to all.
/// When it doesn't, or can't be asked, `sentence` says so for reports.
bool seesWholeCatalogue(const ServerInfo& server, const QString& database, QString& sentence);

}  // namespace zov
