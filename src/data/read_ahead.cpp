#include "data/read_ahead.h"

#include "data/base/db_error.h"
#include "util/vector_registers.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>

namespace zov {
namespace {

using namespace std::chrono_literals;

constexpr qsizetype WindowRows = 4096;
constexpr qsizetype WindowStep = 128;
constexpr qsizetype WindowBytes = 4 << 20;
// Enough to have work at hand while the consumer waits for another stream, and little memory.
constexpr size_t WindowsAhead = 48;
constexpr qsizetype BytesAhead = 48 << 20;
constexpr size_t WindowsSpare = 4;
// A consumer that waits gets what there is.
constexpr auto LongestWindow = 100ms;
constexpr auto BetweenQuestions = 20ms;
constexpr auto PatienceAtStop = 300ms;
constexpr auto PatienceAfterCancel = 200ms;

}  // namespace

qsizetype fetchWindow(ResultStream& stream, RowStore& rows, qsizetype wanted, qsizetype atLeast,
                      const std::function<bool()>& enough) {
    releaseWideRegisters();
    // In small steps, so that rows of megabytes don't fill the memory for the sake of a round
    // number.
    qsizetype fetched = 0;
    while (fetched < wanted) {
        const qsizetype got = stream.fetch(rows, std::min(WindowStep, wanted - fetched));
        fetched += got;
        if (got == 0) break;
        if (fetched >= atLeast && (rows.reservedBytes() > WindowBytes || (enough && enough())))
            break;
    }
    return fetched;
}

/// What the thread and the consumer share. It owns all that the thread touches, since the thread
/// may be left behind.
struct ReadAhead::Reader {
    std::vector<ColumnInfo> columns;
    std::shared_ptr<ProviderConnection> session;
    std::shared_ptr<ResultStream> stream;  // goes before its session
    std::mutex guard;
    std::condition_variable changed;
    std::deque<RowStore> ready;
    qsizetype readyBytes = 0;
    std::vector<RowStore> spare;
    std::exception_ptr failure;
    bool consumerWaits = false;
    bool stopWanted = false;
    bool finished = false;
    std::thread thread;

    void run();
    bool mayGiveWhatThereIs(std::chrono::steady_clock::time_point start) {
        if (std::chrono::steady_clock::now() - start < LongestWindow) return false;
        const std::lock_guard lock(guard);
        return consumerWaits || stopWanted;
    }
};

ReadAhead::ReadAhead(std::shared_ptr<ResultStream> stream,
                     std::shared_ptr<ProviderConnection> session, std::vector<ColumnInfo> columns)
    : reader_(std::make_shared<Reader>()) {
    reader_->columns = std::move(columns);
    reader_->session = std::move(session);
    reader_->stream = std::move(stream);
    reader_->thread = std::thread([reader = reader_] { reader->run(); });
}

void ReadAhead::stop() {
    if (!running_) return;
    {
        const std::lock_guard lock(reader_->guard);
        reader_->stopWanted = true;
        reader_->changed.notify_all();
    }
    reader_->thread.join();
    running_ = false;
}

bool ReadAhead::end() {
    if (!running_) return true;
    running_ = false;
    bool finished = false;
    {
        std::unique_lock lock(reader_->guard);
        reader_->stopWanted = true;
        reader_->changed.notify_all();
        const auto waitFor = [&](std::chrono::milliseconds time) {
            return reader_->changed.wait_for(lock, time, [&] { return reader_->finished; });
        };
        finished = waitFor(PatienceAtStop);
        if (!finished) {
            lock.unlock();
            reader_->session->cancel();
            lock.lock();
            finished = waitFor(PatienceAfterCancel);
        }
    }
    if (finished)
        reader_->thread.join();
    else
        reader_->thread.detach();
    return finished;
}

void ReadAhead::Reader::run() {
    std::exception_ptr failed;
    for (;;) {
        RowStore window;
        {
            std::unique_lock lock(guard);
            changed.wait(lock, [this] {
                return stopWanted || ready.empty() ||
                       (ready.size() < WindowsAhead && readyBytes < BytesAhead);
            });
            if (stopWanted) break;
            if (!spare.empty()) {
                window = std::move(spare.back());
                spare.pop_back();
            }
        }
        if (window.columnCount() == 0) window = RowStore(columns);
        window.clear();
        qsizetype rows = 0;
        const auto start = std::chrono::steady_clock::now();
        try {
            rows = fetchWindow(*stream, window, WindowRows, 1,
                               [&] { return mayGiveWhatThereIs(start); });
        } catch (const DbError& error) {
            // Rows that came before an error of the server are not lost.
            failed = std::current_exception();
            rows = error.leavesRowsWhole() ? window.rowCount() : 0;
        } catch (...) {
            // What else fails, memory above all, leaves rows of which a part is missing.
            failed = std::current_exception();
            rows = 0;
        }
        const std::lock_guard lock(guard);
        if (rows > 0) {
            readyBytes += window.reservedBytes();
            ready.push_back(std::move(window));
        }
        changed.notify_all();
        if (rows == 0 || failed) break;
    }
    const std::lock_guard lock(guard);
    failure = failed;
    finished = true;
    changed.notify_all();
}

bool ReadAhead::next(RowStore& rows, const KeepWaiting& keepWaiting) {
    releaseWideRegisters();
    Reader& reader = *reader_;
    std::unique_lock lock(reader.guard);
    const auto hasCome = [&] { return !reader.ready.empty() || reader.finished; };
    reader.consumerWaits = true;
    while (!reader.changed.wait_for(lock, BetweenQuestions, hasCome)) {
        if (!keepWaiting) continue;
        lock.unlock();
        if (!keepWaiting()) {
            reader.session->cancel();
            throw DbError(ado_error::Cancelled, QStringLiteral("Operation was canceled."));
        }
        lock.lock();
    }
    reader.consumerWaits = false;
    if (reader.ready.empty()) {
        if (reader.failure) std::rethrow_exception(std::exchange(reader.failure, nullptr));
        return false;
    }
    reader.readyBytes -= reader.ready.front().reservedBytes();
    std::swap(rows, reader.ready.front());
    if (reader.ready.front().columnCount() > 0 && reader.spare.size() < WindowsSpare)
        reader.spare.push_back(std::move(reader.ready.front()));
    reader.ready.pop_front();
    reader.changed.notify_all();
    return true;
}

}  // namespace zov
