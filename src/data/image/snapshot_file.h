// An image in a file, with where it was read and when. A file that isn't whole to the last bit is
// refused.
#pragma once

#include "data/image/catalog_image.h"

namespace zov::image {

struct SnapshotFacts {
    QString server;  ///< as its user calls it
    QString database;
    QString version;       ///< of the server
    QString time;          ///< "yyyy-MM-dd HH:mm:ss", where it was made
    QString program;       ///< that made it
    bool seesAll = false;  ///< the login saw every object
};

struct Snapshot {
    SnapshotFacts facts;
    std::shared_ptr<CatalogImage> image;
};

/// Replaces the file whole or not at all; a sentence on what failed, empty on success.
QString writeSnapshot(const QString& file, const SnapshotFacts& facts, CatalogImage& image);
/// Throws DbError for a file that isn't there, is none of ours, is newer, or isn't whole.
std::shared_ptr<Snapshot> readSnapshot(const QString& file);

}  // namespace zov::image
