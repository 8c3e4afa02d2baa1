// What an endpoint is started with, what goes wrong in it on purpose, and what it counts.
#pragma once

#include "data/base/provider.h"

#include <QStringList>

namespace zov {

/// What goes wrong on purpose. Rows are counted within each result.
struct TdsFaults {
    bool refuseLogin = false;
    int loginDelayMilliseconds = 0;
    QStringList missingDatabases;  ///< a login or USE that names one fails (4060, 911)
    /// Only statements that hold this text are met by the faults below; empty: all.
    QString onlyStatementsWith;
    /// This one of them (from 1, counted since the faults were set, all sessions together; what a
    /// driver sets for itself doesn't count) fails with the error below; 0: none.
    int failStatement = 0;
    bool dropInstead = false;    ///< the connection is cut in place of that error
    int delayMilliseconds = 0;   ///< before a statement runs; an attention ends the wait
    qint64 stallAfterRows = -1;  ///< nothing comes behind so many rows for `stallMilliseconds`
    int stallMilliseconds = 0;
    bool deafWhileStalled = false;  ///< an attention ends neither that nor the delay
    qint64 dropAfterRows = -1;      ///< the connection is cut behind so many rows
    qint64 errorAfterRows = -1;     ///< an error follows so many rows, and the result ends
    qint32 errorNumber = 1205;
    QString errorText =
        QStringLiteral("Transaction was deadlocked and has been chosen as the victim.");
};

struct TdsEndpointOptions {
    Provider* provider = nullptr;  ///< must outlive the endpoint
    QString dataSource;            ///< what the provider is opened with
    QString user = QStringLiteral("sa");
    QString password;
    QString serverName = QStringLiteral("ZOVTEST");
    QString defaultDatabase = QStringLiteral("master");
    quint16 port = 0;  ///< 0: the system chooses
    TdsFaults faults;
};

struct TdsCounters {
    int logins = 0;  ///< that were let in
    int refusedLogins = 0;
    int batches = 0;
    int rpcs = 0;
    int attentions = 0;
    int openSessions = 0;
    int failedStatements = 0;  ///< by TdsFaults::failStatement
};

}  // namespace zov
