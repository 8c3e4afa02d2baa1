// Which connections are answered from an image of their database instead of by their server.
#pragma once

#include "data/base/provider.h"
#include "data/image/catalog_image.h"

#include <QString>

#include <memory>

namespace zov {

/// From now on `image` answers for this connection string; null: its server does again.
void useImage(const QString& connectionString, std::shared_ptr<image::CatalogImage> image);
bool isImageInUse(const QString& connectionString);

/// A session over the image that answers for this connection string; null when there is none. From
/// any thread.
std::unique_ptr<ProviderConnection> imageSessionFor(const QString& connectionString);

}  // namespace zov
