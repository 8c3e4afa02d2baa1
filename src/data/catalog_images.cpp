#include "data/catalog_images.h"

#include "core/globals.h"
#include "data/image/image_session.h"
#include "data/image/snapshot_provider.h"
#include "data/mdlData.h"

#include <algorithm>
#include <map>
#include <mutex>

namespace zov {
namespace {

/// The images in use, by the connection strings of those who ask.
struct ImagesInUse {
    std::mutex guard;
    std::map<QString, std::shared_ptr<image::CatalogImage>> byConnection;
};
ImagesInUse& imagesInUse() {
    static ImagesInUse images;
    return images;
}

bool isInUse(const QString& connectionString) {
    ImagesInUse& images = imagesInUse();
    const std::lock_guard lock(images.guard);
    return images.byConnection.contains(connectionString);
}

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
        if (!place.database.isEmpty() && !taken && !isInUse(connection)) wanted.push_back(one);
    }
    if (wanted.empty() || !readCatalogues(wanted, progress)) return;
    ImagesInUse& images = imagesInUse();
    const std::lock_guard lock(images.guard);
    for (CatalogueWanted& one : wanted) {
        if (!one.image) {
            notes_ += QStringLiteral("%1.%2 is asked object by object: %3.")
                          .arg(one.server.Name, one.database, one.reason);
            continue;
        }
        const QString connection = connectionOf(one);
        images.byConnection[connection] = std::move(one.image);
        connectionStrings_ += connection;
    }
}

CatalogImages::~CatalogImages() {
    ImagesInUse& images = imagesInUse();
    const std::lock_guard lock(images.guard);
    for (const QString& connection : connectionStrings_) images.byConnection.erase(connection);
}

std::unique_ptr<ProviderConnection> imageSessionFor(const QString& connectionString) {
    std::shared_ptr<image::CatalogImage> found;
    {
        ImagesInUse& images = imagesInUse();
        const std::lock_guard lock(images.guard);
        const auto at = images.byConnection.find(connectionString);
        if (at == images.byConnection.end()) return nullptr;
        found = at->second;
    }
    return image::sessionOver(std::move(found),
                              [connectionString] { return openDirectly(connectionString); });
}

}  // namespace zov
