// Which ODBC driver to use, and the connection string in its own dialect.
#pragma once

#include "data/base/provider.h"

#include <QString>
#include <QStringList>

namespace zov::odbc {

enum class DriverFamily { FreeTds, Microsoft };

struct Driver {
    QString name;  ///< as registered with the driver manager, or the path of its library
    DriverFamily family = DriverFamily::FreeTds;
};

/// The names under which drivers are registered on this machine.
QStringList installedDrivers();

/// ZOVRAND_ODBC_DRIVER (a name or a path) when set; else the first installed of Microsoft's 18 and
/// 17 and FreeTDS, and at last FreeTDS's library where its package puts it without registering it.
/// Throws a DbError that names the package when there is none.
Driver chooseDriver();

/// A server as people type it, taken apart.
struct ServerAddress {
    QString host;      ///< never empty; without the brackets of an IPv6 address
    QString instance;  ///< empty: the default one, or the one at `port`
    int port = 0;      ///< 0: not given

    /// Reads "host", "host,port", "host\instance", "tcp:host,port", "[::1],port"; ".", "(local)"
    /// and nothing at all are this machine. Throws DbError for anything that can't be a server
    /// reached by TCP.
    static ServerAddress parse(const QString& dataSource);

    /// The port that is connected to; 0 when only the server's browser knows.
    int tcpPort() const;
    /// "host, port 1433" or "host, instance X", for messages.
    QString shown() const;
};

/// How the connection is encrypted, from the user's environment.
struct Encryption {
    /// ZOVRAND_CA_FILE: with it only servers whose certificate it vouches for are talked to.
    QString caFile;
    bool verified() const { return !caFile.isEmpty(); }
    static Encryption fromEnvironment();
};

/// The whole string for SQLDriverConnect. Throws DbError for a value that the driver has no
/// notation for.
QString odbcConnectionString(const Driver& driver, const ServerAddress& server,
                             const ConnectionSpec& spec, const Encryption& encryption);

}  // namespace zov::odbc
