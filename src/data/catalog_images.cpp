#include "data/catalog_images.h"

#include "core/globals.h"
#include "data/image/snapshot_provider.h"
#include "data/images_in_use.h"
#include "data/mdlData.h"

#include <algorithm>

namespace zov {
namespace {

QString connectionOf(const CatalogueWanted& wanted) {
    return BuildConnectionString(wanted.server, wanted.database);
}

}  // namespace

CatalogImages::CatalogImages(const std::vector<Place>& places, const ReadingProgress& progress) {
    if (!globals().gblnUseCatalogImage) return;
    std::vector<CatalogueWanted> wanted;
    for (const Place& place : places) {
        if (image::isSnapshotSource(place.server.Name)) continue;  // it is in memory already
        const CatalogueWanted one{place.server, place.database};
        const QString connection = connectionOf(one);
        const bool taken = std::ranges::any_of(wanted, [&](const CatalogueWanted& other) {
            return connectionOf(other) == connection;
        });
        if (!place.database.isEmpty() && !taken && !isImageInUse(connection)) wanted.push_back(one);
    }
    if (wanted.empty() || !readCatalogues(wanted, progress)) return;
    for (CatalogueWanted& one : wanted) {
        if (!one.image) {
            notes_ += QStringLiteral("%1.%2 is asked object by object: %3.")
                          .arg(one.server.Name, one.database, one.reason);
            continue;
        }
        const QString connection = connectionOf(one);
        useImage(connection, std::move(one.image));
        connectionStrings_ += connection;
    }
}

CatalogImages::~CatalogImages() {
    for (const QString& connection : connectionStrings_) useImage(connection, nullptr);
}

}  // namespace zov
