// A session whose questions about the catalogue are answered by an image, and all others by the
// server, which is connected to when the first of these comes.
#pragma once

#include "data/image/catalog_image.h"

#include <functional>

namespace zov::image {

using OpenServer = std::function<std::unique_ptr<ProviderConnection>()>;

std::unique_ptr<ProviderConnection> sessionOver(std::shared_ptr<CatalogImage> image,
                                                OpenServer openServer);

}  // namespace zov::image
