// Snapshots: the structure of a database in a file, which can stand wherever a server does as
// "snapshot:FILE".
#pragma once

#include "data/catalog_reading.h"

namespace zov {

/// What came of making one; `trouble` is empty on success.
struct SnapshotMade {
    QString trouble;
    QString note;  ///< of a login that doesn't see all
};
/// Reads the database and writes the file, which is replaced whole or not at all. `server` has its
/// version.
SnapshotMade SaveSnapshot(const ServerInfo& server, const QString& database, const QString& file,
                          const ReadingProgress& progress);

bool isSnapshot(const ServerInfo& server);
/// What a snapshot says to who wants rows of it; empty for a server that is none.
QString NoRowsSentence(const ServerInfo& server);
/// Whose state a snapshot holds, and of when, in a sentence for reports; empty for a server that is
/// none, or a file that can't be read.
QString SnapshotSentence(const ServerInfo& server);

}  // namespace zov
