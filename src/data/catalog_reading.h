// Reads the catalogues of databases into images: step by step, all of them at the same time, while
// the caller's user sees how far it is and may give up.
#pragma once

#include "core/server_info.h"
#include "data/base/provider.h"
#include "data/image/catalog_image.h"

#include <functional>
#include <memory>
#include <vector>

namespace zov {

/// One database whose catalogue is wanted, and what came of it.
struct CatalogueWanted {
    ServerInfo server;
    QString database;
    std::shared_ptr<image::CatalogImage> image = {};
    QString reason = {};  ///< why there is no image, without a full stop
};

/// How far it is, for the user: "Reading columns...". Called in the caller's thread.
using ReadingProgress = std::function<void(const QString& doing)>;

/// False, and the stop flag is set, when the user gave up; nothing is of use then. What fails is
/// kept in `reason` and reported nowhere else.
bool readCatalogues(std::vector<CatalogueWanted>& wanted, const ReadingProgress& progress);

}  // namespace zov
