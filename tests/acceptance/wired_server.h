// The wire endpoint in front of an embedded server, so that a command reaches it through a real
// driver: with --login sa and the password that is set here.
#pragma once

#include "cli_runner.h"

#include "data/providers.h"
#include "support/tds_endpoint/tds_endpoint.h"

namespace zov::acceptance {

inline void serve(TdsEndpoint& endpoint, const QString& source, CliHome& home) {
    TdsEndpointOptions options;
    options.provider = &providerFor(source);
    options.dataSource = source;
    options.password = "secret";
    endpoint.start(options);
    home.setEnvironment("ZOVRAND_PASSWORD", "secret");
}

}  // namespace zov::acceptance
