// What a client says before it is let in: PRELOGIN and LOGIN7.
#pragma once

#include "support/tds_endpoint/tds_bytes.h"

namespace zov::tds {

/// The answer to a PRELOGIN message: this server's version, and that it doesn't encrypt.
QByteArray preLoginAnswer();

struct Login {
    quint32 protocol = 0;    ///< 0x74000004 for TDS 7.4
    quint32 packetSize = 0;  ///< 0: the client has no wish
    bool integrated = false;
    QString host, user, password, application, server, language, database;
};

/// Reads a LOGIN7 message; Malformed when it isn't one.
Login readLogin(const QByteArray& payload);

/// The LOGINACK token.
void putLoginAck(ByteBuffer& out, quint32 protocol);

}  // namespace zov::tds
