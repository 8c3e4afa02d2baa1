#include "data/odbc/odbc_provider.h"

#include "data/odbc/odbc_results.h"

namespace zov::odbc {
namespace {

class OdbcConnection : public ProviderConnection {
 public:
    OdbcConnection(std::shared_ptr<Session> session, const ServerAddress& server,
                   const ConnectionSpec& spec)
        : session_(std::move(session)), server_(server), spec_(spec) {}

    std::unique_ptr<ResultStream> execute(const CommandSpec& command) override {
        std::shared_ptr<Session> session = current();
        if (!session)
            throw DbError(ado_error::Unspecified, QStringLiteral("The connection is closed."));
        if (session->isBusy())
            throw DbError(ado_error::Unspecified,
                          QStringLiteral("The connection is busy with the results of another "
                                         "command."));
        if (session->isProven) return std::make_unique<OdbcStream>(session, command);
        // Whether the server is still there, a plain read finds out by itself; what may change
        // something isn't sent twice.
        session->isProven = true;
        if (!command.storedProcedure && leavesSessionAsItWas(command.text)) {
            try {
                return std::make_unique<OdbcStream>(session, command);
            } catch (const DbError& error) {
                // A server that was silent for that long is not asked once more.
                if (!error.connectionLost || error.number == ado_error::Timeout ||
                    error.number == ado_error::Cancelled)
                    throw;
            }
            session = replace(*session);
        } else if (!session->makeFresh()) {
            session = replace(*session);
        }
        return std::make_unique<OdbcStream>(session, command);
    }

    void cancel() override {
        if (const std::shared_ptr<Session> session = current()) session->cancel();
    }

    std::vector<ServerMessage> takeMessages() override {
        const std::shared_ptr<Session> session = current();
        return session ? std::exchange(session->messages, {}) : std::vector<ServerMessage>();
    }

    void close() override {
        std::shared_ptr<Session> ended;  // ends, or goes to the pool, outside the lock
        const std::lock_guard lock(guard_);
        ended.swap(session_);
    }

 private:
    // cancel() comes from other threads.
    std::shared_ptr<Session> current() const {
        const std::lock_guard lock(guard_);
        return session_;
    }

    std::shared_ptr<Session> replace(const Session& dead) {
        std::shared_ptr<Session> fresh = replaceSession(dead, server_, spec_);
        const std::lock_guard lock(guard_);
        session_ = fresh;
        return fresh;
    }

    mutable std::mutex guard_;
    std::shared_ptr<Session> session_;
    const ServerAddress server_;
    const ConnectionSpec spec_;
};

class OdbcProvider : public Provider {
 public:
    std::unique_ptr<ProviderConnection> open(const ConnectionSpec& spec,
                                             bool createDatabase) override {
        if (!createDatabase || spec.database.isEmpty()) return connect(spec);
        try {
            return connect(spec);
        } catch (const DbError& error) {
            if (!isUnknownDatabase(error)) throw;
        }
        ConnectionSpec anyDatabase = spec;
        anyDatabase.database = QStringLiteral("master");
        CommandSpec create;
        create.text = QStringLiteral("CREATE DATABASE [%1]")
                          .arg(QString(spec.database).replace(u']', QStringLiteral("]]")));
        create.timeout = 0;
        const std::unique_ptr<ProviderConnection> maker = connect(anyDatabase);
        const std::unique_ptr<ResultStream> stream = maker->execute(create);
        while (stream->nextResult()) {
        }
        stream->close();
        return connect(spec);
    }

 private:
    static std::unique_ptr<ProviderConnection> connect(const ConnectionSpec& spec) {
        const ServerAddress server = ServerAddress::parse(spec.dataSource);
        const QString text =
            odbcConnectionString(chooseDriver(), server, spec, Encryption::fromEnvironment());
        return std::make_unique<OdbcConnection>(borrowSession(text, server, spec), server, spec);
    }
};

}  // namespace

Provider& odbcProvider() {
    static OdbcProvider provider;
    return provider;
}

}  // namespace zov::odbc
