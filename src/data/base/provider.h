// What a database provider must offer: open, execute, fetch a block, cancel, close.
// Two stand behind it: data/odbc (real servers) and data/local (the embedded one).
// All failures are DbError.
#pragma once

#include "data/base/db_error.h"
#include "data/base/row_store.h"

#include <QString>
#include <QVariant>

#include <memory>
#include <vector>

namespace zov {

/// The parts of a connection string that a provider looks at.
struct ConnectionSpec {
    QString dataSource;
    QString database;  ///< empty: the login's default database
    bool integratedSecurity = false;
    QString user;
    QString password;
    int connectTimeout = 15;  ///< seconds, 0 without limit

    /// Reads "Data Source=...;Initial Catalog=...;User ID=...;Password=...;Integrated
    /// Security=SSPI"; keys in any case, unknown keys ignored, the last of a repeated key counts. A
    /// value runs to the next ";" unless it is quoted with ' or " (doubled inside).
    static ConnectionSpec parse(const QString& connectionString);
};

/// A parameter of a command; directions as ADO's: 1 input, 3 input and output, 4 return value.
struct CommandParameter {
    QString name;
    int type = 0;  ///< ADO: 3 integer, 5 double, 7 date, 11 boolean, 202 text
    int direction = 1;
    int size = 0;
    QVariant value;
};

struct CommandSpec {
    QString text;
    bool storedProcedure = false;  ///< `text` is a procedure's name
    int timeout = 30;              ///< seconds, 0 without limit
    /// The "Return" parameter is not among them; see ResultStream::returnValue.
    std::vector<CommandParameter> parameters;
};

/// PRINT and RAISERROR below severity 11, and "n rows affected" texts, in order of arrival.
struct ServerMessage {
    int severity = 0;
    qint32 number = 0;
    int line = 0;
    QString text;
};

/// The results of one executed command, read forward once. Closing (or destroying) an unfinished
/// stream cancels what is left of it on the server.
class ResultStream {
 public:
    virtual ~ResultStream() = default;

    /// Columns of the current result in the select list's order; empty when it has no rows to give.
    virtual const std::vector<ColumnInfo>& columns() const = 0;
    /// Appends at most `maxRows` rows to `rows`, which was made from `columns()`. 0 at the end.
    virtual qsizetype fetch(RowStore& rows, qsizetype maxRows) = 0;
    /// Rows touched by the current result's statement, -1 when it has none to report.
    virtual qint64 affectedRows() const { return -1; }
    /// On to the next result of the batch; false when there is none.
    virtual bool nextResult() = 0;
    /// The procedure's return value and output parameters in the order given; complete once
    /// nextResult() gave false.
    virtual qint32 returnValue() const { return 0; }
    virtual QVariant outputValue(int parameterIndex) const {
        Q_UNUSED(parameterIndex);
        return {};
    }
    virtual void close() = 0;
};

class ProviderConnection {
 public:
    virtual ~ProviderConnection() = default;

    /// Runs a command. Only one stream of a connection is open at a time: the caller has finished
    /// or closed the one before.
    virtual std::unique_ptr<ResultStream> execute(const CommandSpec& command) = 0;
    /// Stops the running command. May be called from another thread; the call that is stopped
    /// throws ado_error::Cancelled.
    virtual void cancel() = 0;
    virtual std::vector<ServerMessage> takeMessages() = 0;
    virtual void close() = 0;

    // Loading scripts. A provider that can undo a whole load says so by returning true; with one
    // that can't (a SQL Server runs CREATE DATABASE outside of transactions) each batch stands by
    // itself.
    virtual bool beginLoad() { return false; }
    virtual void commitLoad() {}
    virtual void rollbackLoad() {}
};

class Provider {
 public:
    virtual ~Provider() = default;
    /// Connects and logs in. `createDatabase`: a database that doesn't exist is made first.
    virtual std::unique_ptr<ProviderConnection> open(const ConnectionSpec& spec,
                                                     bool createDatabase) = 0;
};

}  // namespace zov
