// A provider session that serves prepared rows of texts and tells what was asked
// of it: for tests of cursors, where the shape of the traffic matters.
#pragma once

#include "data/base/provider.h"

#include <QStringList>

namespace zov::testing {

struct FakeTable {
    std::vector<ColumnInfo> columns;
    /// One line a row, cells separated by "|"; "NULL" is a null; numbers for integer columns.
    QStringList rows;
};

/// What happened, in order: "execute TEXT", "fetched N", "closed".
using Journal = QStringList;

class FakeSession : public ProviderConnection {
 public:
    FakeSession(FakeTable table, Journal* journal) : table_(std::move(table)), journal_(journal) {}

    std::unique_ptr<ResultStream> execute(const CommandSpec& command) override;
    void cancel() override {}
    std::vector<ServerMessage> takeMessages() override { return {}; }
    void close() override {}

    /// The stream throws this after so many rows; below 0 never.
    qsizetype failAfterRows = -1;
    /// What it throws is that memory is out, with the row's first cell in place.
    bool outOfMemory = false;

 private:
    FakeTable table_;
    Journal* journal_;
};

}  // namespace zov::testing
