// Reading a stream of rows ahead of its consumer, in a thread of its own: while
// one window of rows is worked on, the next ones are fetched and converted.
#pragma once

#include "data/base/provider.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace zov {

/// Appends about as many rows as make a window of good size: `wanted`, or fewer where they are
/// large. At least `atLeast`, but at the end of the rows; 0 then.
qsizetype fetchWindow(ResultStream& stream, RowStore& rows, qsizetype wanted, qsizetype atLeast);

class ReadAhead {
 public:
    /// Nobody else may use the stream until this is gone. `session` is the stream's, to break off
    /// with.
    ReadAhead(ResultStream& stream, ProviderConnection& session,
              const std::vector<ColumnInfo>& columns);
    /// Stops; waits for the window that is being read, and breaks it off when that takes long.
    ~ReadAhead();
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    /// Puts the next window in place of `rows`, whose memory is used again. False at the end of the
    /// rows; an error in the stream comes out behind the rows before it.
    bool next(RowStore& rows);
    /// Reads no more windows than are under way; next() gives those that were read.
    void stop();

 private:
    void run();
    void join(bool breakOff);

    ResultStream& stream_;
    ProviderConnection& session_;
    const std::vector<ColumnInfo>& columns_;
    std::mutex guard_;
    std::condition_variable changed_;
    std::deque<RowStore> ready_;
    qsizetype readyBytes_ = 0;
    std::vector<RowStore> spare_;
    std::exception_ptr failure_;
    bool stopWanted_ = false;
    bool finished_ = false;
    std::thread thread_;
};

}  // namespace zov
