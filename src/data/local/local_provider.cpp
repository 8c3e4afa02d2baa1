#include "data/local/local_provider.h"

#include "data/base/load_reporting.h"
#include "data/local/query_engine.h"
#include "data/local/server_store.h"
#include "data/local/statement_runner.h"

namespace zov::local {
namespace {

/// The time-out counts for each wait on the server, not for the time that a reader takes between.
void startClock(ExecutionControl& control, int seconds) {
    control.limited = seconds > 0;
    control.deadline =
        std::chrono::steady_clock::now() + std::chrono::seconds(std::max(0, seconds));
}

class LocalStream : public ResultStream {
 public:
    LocalStream(std::unique_ptr<ResultStream> inner, std::shared_ptr<ExecutionControl> control,
                int timeout)
        : inner_(std::move(inner)), control_(std::move(control)), timeout_(timeout) {}
    ~LocalStream() override { close(); }

    const std::vector<ColumnInfo>& columns() const override { return inner_->columns(); }
    qsizetype fetch(RowStore& rows, qsizetype maxRows) override {
        startClock(*control_, timeout_);
        return inner_->fetch(rows, maxRows);
    }
    qint64 affectedRows() const override { return inner_->affectedRows(); }
    bool nextResult() override {
        startClock(*control_, timeout_);
        return inner_->nextResult();
    }
    qint32 returnValue() const override { return inner_->returnValue(); }
    QVariant outputValue(int parameterIndex) const override {
        return inner_->outputValue(parameterIndex);
    }
    void close() override { inner_->close(); }

 private:
    std::unique_ptr<ResultStream> inner_;
    std::shared_ptr<ExecutionControl> control_;
    int timeout_;
};

class LocalConnection : public ProviderConnection, public LoadReporting {
 public:
    LocalConnection(const ConnectionSpec& spec, bool createDatabase)
        : LocalConnection(ServerStore::open(spec.dataSource, createDatabase)) {
        const QString database = spec.database.isEmpty() ? QStringLiteral("master") : spec.database;
        if (createDatabase) {
            session_.current = &store_->openOrCreate(database);
            return;
        }
        try {
            session_.current = &store_->database(database);
        } catch (const DbError& error) {
            if (error.native != 911) throw;
            throw DbError(
                ado_error::Unspecified,
                QStringLiteral(
                    "Cannot open database \"%1\" requested by the login. The login failed.")
                    .arg(database),
                QStringLiteral("08004"), 4060);
        }
    }

    LocalConnection(std::unique_ptr<ServerStore> store, const QString& database)
        : LocalConnection(std::move(store)) {
        session_.current = &store_->database(database);
    }

    ~LocalConnection() override { close(); }

    std::unique_ptr<ResultStream> execute(const CommandSpec& command) override {
        session_.control->cancelled = false;
        startClock(*session_.control, command.timeout);
        return std::make_unique<LocalStream>(runBatch(session_, command.text, command),
                                             session_.control, command.timeout);
    }

    void cancel() override { session_.control->cancelled = true; }

    std::vector<ServerMessage> takeMessages() override {
        return std::exchange(session_.messages, {});
    }

    void close() override {
        session_.current = nullptr;
        session_.store = nullptr;
        try {
            if (store_) store_->settle();
        } catch (...) {
            // Nobody has been told of the database, and nobody will miss it.
        }
        store_.reset();
    }

    void onStatementFailed(std::function<bool(const DbError&)> failed) override {
        session_.statementFailed = std::move(failed);
    }
    void scriptsBegin() override {
        session_.databaseChosen = false;
        store_->offerToMake(*session_.current);
    }
    QStringList changedDatabases() override { return store_->changedDatabases(); }

    bool beginLoad() override {
        store_->beginLoad();
        return true;
    }
    void commitLoad() override { store_->commitLoad(); }
    void rollbackLoad() override { store_->rollbackLoad(); }

 private:
    explicit LocalConnection(std::unique_ptr<ServerStore> store) : store_(std::move(store)) {
        session_.store = store_.get();
        session_.productVersion = store_->productVersion();
        session_.control = std::make_shared<ExecutionControl>();
    }

    std::unique_ptr<ServerStore> store_;
    SessionState session_;
};

class LocalProvider : public Provider {
 public:
    std::unique_ptr<ProviderConnection> open(const ConnectionSpec& spec,
                                             bool createDatabase) override {
        return std::make_unique<LocalConnection>(spec, createDatabase);
    }
};

}  // namespace

Provider& localProvider() {
    static LocalProvider provider;
    return provider;
}

std::unique_ptr<ProviderConnection> sessionOn(std::unique_ptr<ServerStore> store,
                                              const QString& database) {
    return std::make_unique<LocalConnection>(std::move(store), database);
}

bool isLocalDataSource(const QString& dataSource) {
    return ServerStore::isLocalDataSource(dataSource);
}

}  // namespace zov::local
