#include "data/providers.h"

#include "data/image/snapshot_provider.h"
#include "data/local/local_provider.h"
#include "data/odbc/odbc_provider.h"

namespace zov {

Provider& providerFor(const QString& dataSource) {
    if (image::isSnapshotSource(dataSource)) return image::snapshotProvider();
    return local::isLocalDataSource(dataSource) ? local::localProvider() : odbc::odbcProvider();
}

std::unique_ptr<ProviderConnection> openDirectly(const QString& connectionString) {
    const ConnectionSpec spec = ConnectionSpec::parse(connectionString);
    return providerFor(spec.dataSource).open(spec, false);
}

}  // namespace zov
