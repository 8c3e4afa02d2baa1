// Reading a stream of rows ahead of its consumer, in a thread of its own: while
// one window of rows is worked on, the next ones are fetched and converted.
#pragma once

#include "data/base/provider.h"

#include <functional>
#include <memory>
#include <vector>

namespace zov {

/// Appends about as many rows as make a window of good size: `wanted`, or fewer where they are
/// large, or where `enough` says so (it is asked now and then). At least `atLeast`, but at the end
/// of the rows; 0 then.
qsizetype fetchWindow(ResultStream& stream, RowStore& rows, qsizetype wanted, qsizetype atLeast,
                      const std::function<bool()>& enough = {});

/// Called again and again while somebody waits for rows; false: they are wanted no more.
using KeepWaiting = std::function<bool()>;

class ReadAhead {
 public:
    /// Nobody else may use the stream until end(). `session` is the stream's, to break off with.
    ReadAhead(std::shared_ptr<ResultStream> stream, std::shared_ptr<ProviderConnection> session,
              std::vector<ColumnInfo> columns);
    ~ReadAhead() { end(); }
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    /// Puts the next window in place of `rows`, whose memory is used again. False at the end of the
    /// rows; an error in the stream comes out behind the rows before it, and when `keepWaiting`
    /// gives false, ado_error::Cancelled.
    bool next(RowStore& rows, const KeepWaiting& keepWaiting = {});
    /// Reads no more windows than are under way; next() gives those that were read.
    void stop();
    /// Stops; waits for the window that is being read, and breaks it off when that takes long.
    /// False: the server didn't even answer to that. Stream and session are left behind then, and
    /// belong to the thread that still waits.
    bool end();

 private:
    struct Reader;
    std::shared_ptr<Reader> reader_;
    bool running_ = true;
};

}  // namespace zov
