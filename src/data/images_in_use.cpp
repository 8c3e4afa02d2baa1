#include "data/images_in_use.h"

#include "data/image/image_session.h"
#include "data/providers.h"

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

}  // namespace

bool isImageInUse(const QString& connectionString) {
    ImagesInUse& images = imagesInUse();
    const std::lock_guard lock(images.guard);
    return images.byConnection.contains(connectionString);
}

void useImage(const QString& connectionString, std::shared_ptr<image::CatalogImage> image) {
    ImagesInUse& images = imagesInUse();
    const std::lock_guard lock(images.guard);
    if (image)
        images.byConnection[connectionString] = std::move(image);
    else
        images.byConnection.erase(connectionString);
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
