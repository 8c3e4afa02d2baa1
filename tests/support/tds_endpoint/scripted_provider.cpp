// Streams of scripted answers.
#include "support/tds_endpoint/scripted_provider.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace zov {
namespace {

class ScriptedConnection : public ProviderConnection {
 public:
    explicit ScriptedConnection(ScriptedProvider& provider) : provider_(provider) {}

    std::unique_ptr<ResultStream> execute(const CommandSpec& command) override;
    void cancel() override {
        cancelled = true;
        provider_.noteCancel();
    }
    std::vector<ServerMessage> takeMessages() override { return std::exchange(messages, {}); }
    void close() override {}

    void throwWhenCancelled() {
        if (cancelled.exchange(false))
            throw DbError(ado_error::Cancelled, QStringLiteral("Operation cancelled."));
    }

    std::atomic<bool> cancelled = false;
    std::vector<ServerMessage> messages;

 private:
    ScriptedProvider& provider_;
};

class ScriptedStream : public ResultStream {
 public:
    ScriptedStream(ScriptedConnection& connection, ScriptedAnswer answer)
        : connection_(connection), answer_(std::move(answer)) {
        enter();
    }

    const std::vector<ColumnInfo>& columns() const override {
        static const std::vector<ColumnInfo> none;
        return at_ < answer_.results.size() ? answer_.results[at_].columns : none;
    }
    qsizetype fetch(RowStore& rows, qsizetype maxRows) override {
        connection_.throwWhenCancelled();
        const ScriptedResult& result = answer_.results[at_];
        const qsizetype count = qsizetype(std::min<qint64>(maxRows, result.rowCount - row_));
        for (qsizetype i = 0; i < count; ++i) result.fill(rows, row_++);
        return count;
    }
    qint64 affectedRows() const override {
        return at_ < answer_.results.size() ? answer_.results[at_].affectedRows : -1;
    }
    bool nextResult() override {
        if (at_ < answer_.results.size()) ++at_;
        row_ = 0;
        enter();
        return at_ < answer_.results.size();
    }
    qint32 returnValue() const override { return answer_.returnValue; }
    QVariant outputValue(int index) const override {
        return size_t(index) < answer_.outputs.size() ? answer_.outputs[size_t(index)] : QVariant();
    }
    void close() override {}

 private:
    void enter() {
        if (at_ >= answer_.results.size()) {
            connection_.messages = answer_.lastMessages;
            return;
        }
        connection_.messages = answer_.results[at_].messages;
        if (answer_.results[at_].error) throw DbError(*answer_.results[at_].error);
    }

    ScriptedConnection& connection_;
    ScriptedAnswer answer_;
    size_t at_ = 0;
    qint64 row_ = 0;
};

std::unique_ptr<ResultStream> ScriptedConnection::execute(const CommandSpec& command) {
    ScriptedAnswer answer = provider_.answerFor(command);
    cancelled = false;
    while (answer.untilCancelled) {
        throwWhenCancelled();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return std::make_unique<ScriptedStream>(*this, std::move(answer));
}

}  // namespace

std::unique_ptr<ProviderConnection> ScriptedProvider::open(const ConnectionSpec& spec, bool) {
    const std::lock_guard lock(mutex_);
    lastDatabase_ = spec.database;
    return std::make_unique<ScriptedConnection>(*this);
}

void ScriptedProvider::answer(const QString& statement, ScriptedAnswer answer) {
    const std::lock_guard lock(mutex_);
    answers_[statement] = std::move(answer);
}

ScriptedAnswer ScriptedProvider::answerFor(const CommandSpec& command) {
    {
        const std::lock_guard lock(mutex_);
        commands_.push_back(command);
        const auto found = answers_.find(command.text);
        if (found != answers_.end()) return found->second;
    }
    if (otherwise)
        if (std::optional<ScriptedAnswer> other = otherwise(command)) return *std::move(other);
    throw DbError(
        ado_error::SyntaxError,
        QStringLiteral("Could not find stored procedure '%1'.").arg(command.text.left(60)),
        QStringLiteral("42000"), 2812);
}

std::vector<CommandSpec> ScriptedProvider::commands() const {
    const std::lock_guard lock(mutex_);
    return commands_;
}

QString ScriptedProvider::lastDatabase() const {
    const std::lock_guard lock(mutex_);
    return lastDatabase_;
}

int ScriptedProvider::cancels() const {
    const std::lock_guard lock(mutex_);
    return cancels_;
}

void ScriptedProvider::noteCancel() {
    const std::lock_guard lock(mutex_);
    ++cancels_;
}

}  // namespace zov
