// Databases made from scripts for a test, reached on either road: the embedded
// server directly, or through ODBC and the wire endpoint in front of it. The
// files live as long as the object.
#pragma once

#include "core/server_info.h"
#include "support/tds_endpoint/tds_endpoint.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace zov::test {

enum class Road { Embedded, Odbc };
inline std::string roadName(const ::testing::TestParamInfo<Road>& info) {
    return info.param == Road::Embedded ? "Embedded" : "Odbc";
}

class ServedDatabases {
 public:
    /// `version`: of the server; empty for a current one, "8.00.2039" for an old one.
    explicit ServedDatabases(Road road = Road::Embedded, const QString& version = {});

    /// Runs a script (batches parted by GO) in a database, which is made when it is missing; what
    /// can't be loaded fails the test.
    void load(const QString& database, const QString& script);

    /// How to reach the server, its version filled in.
    const ServerInfo& server();
    /// The statements that came over the wire since the last call; ODBC only.
    QStringList takeStatements();
    TdsEndpoint& endpoint() { return *endpoint_; }

 private:
    QTemporaryDir folder_;
    QString localSource_;
    std::unique_ptr<TdsEndpoint> endpoint_;
    Road road_;
    ServerInfo server_;
};

}  // namespace zov::test
