#include "data/read_ahead.h"

#include "util/vector_registers.h"

#include <chrono>

namespace zov {
namespace {

constexpr qsizetype WindowRows = 4096;
constexpr qsizetype WindowStep = 128;
constexpr qsizetype WindowBytes = 4 << 20;
// Enough to have work at hand while the consumer waits for another stream, and little memory.
constexpr size_t WindowsAhead = 48;
constexpr qsizetype BytesAhead = 48 << 20;
constexpr size_t WindowsSpare = 4;
constexpr auto PatienceAtStop = std::chrono::milliseconds(300);

}  // namespace

qsizetype fetchWindow(ResultStream& stream, RowStore& rows, qsizetype wanted, qsizetype atLeast) {
    releaseWideRegisters();
    // In small steps, so that rows of megabytes don't fill the memory for the sake of a round number.
    qsizetype fetched = 0;
    while (fetched < wanted) {
        const qsizetype got = stream.fetch(rows, std::min(WindowStep, wanted - fetched));
        fetched += got;
        if (got == 0) break;
        if (fetched >= atLeast && rows.reservedBytes() > WindowBytes) break;
    }
    return fetched;
}

ReadAhead::ReadAhead(ResultStream& stream, ProviderConnection& session,
                     const std::vector<ColumnInfo>& columns)
    : stream_(stream), session_(session), columns_(columns), thread_([this] { run(); }) {}

ReadAhead::~ReadAhead() { join(true); }

void ReadAhead::stop() { join(false); }

void ReadAhead::join(bool breakOff) {
    if (!thread_.joinable()) return;
    {
        std::unique_lock lock(guard_);
        stopWanted_ = true;
        changed_.notify_all();
        if (breakOff &&
            !changed_.wait_for(lock, PatienceAtStop, [this] { return finished_; }))
            session_.cancel();
    }
    thread_.join();
}

void ReadAhead::run() {
    std::exception_ptr failure;
    for (;;) {
        RowStore window;
        {
            std::unique_lock lock(guard_);
            changed_.wait(lock, [this] {
                return stopWanted_ || ready_.empty() ||
                       (ready_.size() < WindowsAhead && readyBytes_ < BytesAhead);
            });
            if (stopWanted_) break;
            if (!spare_.empty()) {
                window = std::move(spare_.back());
                spare_.pop_back();
            }
        }
        if (window.columnCount() == 0) window = RowStore(columns_);
        window.clear();
        qsizetype rows = 0;
        try {
            rows = fetchWindow(stream_, window, WindowRows, 1);
        } catch (...) {
            failure = std::current_exception();
        }
        // Rows that came before an error are not lost.
        if (failure) rows = window.rowCount();
        const std::lock_guard lock(guard_);
        if (rows > 0) {
            readyBytes_ += window.reservedBytes();
            ready_.push_back(std::move(window));
        }
        changed_.notify_all();
        if (rows == 0 || failure) break;
    }
    const std::lock_guard lock(guard_);
    failure_ = failure;
    finished_ = true;
    changed_.notify_all();
}

bool ReadAhead::next(RowStore& rows) {
    releaseWideRegisters();
    std::unique_lock lock(guard_);
    changed_.wait(lock, [this] { return !ready_.empty() || finished_; });
    if (ready_.empty()) {
        if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
        return false;
    }
    readyBytes_ -= ready_.front().reservedBytes();
    std::swap(rows, ready_.front());
    if (ready_.front().columnCount() > 0 && spare_.size() < WindowsSpare)
        spare_.push_back(std::move(ready_.front()));
    ready_.pop_front();
    changed_.notify_all();
    return true;
}

}  // namespace zov
