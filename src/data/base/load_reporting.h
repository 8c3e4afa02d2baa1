// What a provider that runs a load statement by statement can tell of it beyond its rows. A
// connection that can has this beside ProviderConnection; the others run whole batches.
#pragma once

#include "data/base/db_error.h"

#include <QStringList>

#include <functional>

namespace zov {

class LoadReporting {
 public:
    virtual ~LoadReporting() = default;

    /// `failed` is told of each statement that fails, with its line within the batch and its first
    /// words, and says whether the batch goes on behind it; an IF or WHILE whose condition failed
    /// is passed by as a whole. Without it, and where it says no, the error ends the batch.
    virtual void onStatementFailed(std::function<bool(const DbError&)> failed) = 0;
    /// What ran before was the loader's own: the session's database is new to the scripts, which
    /// may drop it, and make it when it is new altogether.
    virtual void scriptsBegin() = 0;
    /// The databases that were written to since the load began, in no order.
    virtual QStringList changedDatabases() = 0;
};

}  // namespace zov
