// One client of the endpoint, from its first packet to its last. The session's own thread answers;
// a second one reads, so that an attention is heard while a command runs.
#pragma once

#include "support/tds_endpoint/tds_login.h"
#include "support/tds_endpoint/tds_options.h"
#include "support/tds_endpoint/tds_rpc.h"
#include "support/tds_endpoint/tds_socket.h"
#include "support/tds_endpoint/tds_tokens.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>

namespace zov::tds {

/// What all sessions of an endpoint share.
struct Shared {
    explicit Shared(const TdsEndpointOptions& options) : options(options), faults(options.faults) {}

    const TdsEndpointOptions options;
    std::mutex mutex;
    TdsFaults faults;       // guarded by the mutex, as the next three are
    int statementsMet = 0;  // by TdsFaults::failStatement's counting
    TdsCounters counters;
    QStringList statements;

    TdsFaults currentFaults() {
        const std::lock_guard lock(mutex);
        return faults;
    }
    /// Counts a statement that the faults meet; whether it is the one to fail.
    bool isToFail(const TdsFaults& faults) {
        const std::lock_guard lock(mutex);
        if (++statementsMet != faults.failStatement) return false;
        ++counters.failedStatements;
        return true;
    }
    void count(int TdsCounters::*counter, int by = 1) {
        const std::lock_guard lock(mutex);
        counters.*counter += by;
    }
    void note(const QString& statement) {
        const std::lock_guard lock(mutex);
        statements.append(statement);
    }
};

class Session {
 public:
    Session(Shared& shared, int socket) : shared_(shared), channel_(socket) {}

    /// Serves the client until it leaves.
    void run();
    /// Cuts the connection; from any thread.
    void cut();
    bool finished() const { return finished_; }

 private:
    struct Prepared {
        QString statement;
        QStringList names;
    };
    struct Outcome {
        bool failed = false;
        std::vector<QVariant> outputs;
        qint32 returnValue = 0;
    };

    // The reading side.
    void readLoop();
    void cancelRunningCommand();
    bool nextMessage(Message& message);

    void serve();
    bool answerLogin(const Message& message);
    void refuseLogin(const ServerText& why);
    void answerBatch(const Message& message);
    void answerTransaction(const Message& message);
    void answerAttention();

    void answerRpc(const Message& message);
    void answerCall(const RpcCall& call, bool last);
    void finishCall(const Outcome& outcome, const RpcCall& call, quint16 more);
    void failCall(qint32 number, const QString& text, quint16 more);
    /// The columns of the statement's first result, without rows; nothing when it has none.
    void putColumnsOnly(const QString& statement, DoneToken done);

    /// Runs a command and writes its results with `done` tokens, the last of which stays with the
    /// caller when `openEnd` says so.
    Outcome runCommand(const CommandSpec& command, DoneToken done, bool openEnd);
    void putResults(ResultStream& stream, const TdsFaults& faults, DoneToken done, bool openEnd);
    void putRows(ResultStream& stream, const TdsFaults& faults, qint64& count);
    void putMessages();
    void putError(const DbError& error);
    void putNotice(qint32 number, quint8 severity, const QString& text);
    void changeDatabase(const QString& database);
    void waitBefore(const TdsFaults& faults);
    void startCommand();
    void endCommand();

    Shared& shared_;
    Channel channel_;
    std::unique_ptr<ProviderConnection> connection_;
    Login login_;
    QString database_;
    bool loggedIn_ = false;
    std::map<qint32, Prepared> prepared_;
    qint32 lastHandle_ = 0;
    quint64 transaction_ = 0;

    std::mutex mutex_;
    std::condition_variable arrived_;
    std::deque<Message> messages_;  // guarded, as the next two are
    bool ended_ = false;
    bool running_ = false;
    std::atomic<bool> cancelled_ = false;
    std::atomic<bool> finished_ = false;
};

}  // namespace zov::tds
