// "snapshot:FILE" as a server of one database, the one that was read into the file.
#pragma once

#include "data/image/snapshot_file.h"

namespace zov::image {

Provider& snapshotProvider();
bool isSnapshotSource(const QString& dataSource);
/// What is said to who wants rows.
QString noRowsText(const QString& dataSource);
/// The snapshot that a data source names; read once as long as the file stays as it is. Throws
/// DbError.
std::shared_ptr<Snapshot> snapshotOf(const QString& dataSource);

}  // namespace zov::image
