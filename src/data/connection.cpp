#include "data/connection.h"

#include "data/images_in_use.h"
#include "data/providers.h"
#include "data/row_source.h"

#include <utility>

namespace zov {

void Connection::Open() {
    if (!createDatabase) session_ = imageSessionFor(ConnectionString);
    if (session_) return;
    const ConnectionSpec spec = ConnectionSpec::parse(ConnectionString);
    session_ = providerFor(spec.dataSource).open(spec, createDatabase);
}

void Connection::Close() {
    running_.reset();
    session_.reset();
}

QString Connection::place() const {
    const ConnectionSpec spec = ConnectionSpec::parse(ConnectionString);
    return spec.database.isEmpty() ? spec.dataSource : spec.dataSource + u'.' + spec.database;
}

std::shared_ptr<ProviderConnection> Connection::sessionForNewCommand() {
    if (!session_)
        throw DbError(3709,
                      QStringLiteral("The connection cannot be used to perform this operation. "
                                     "It is either closed or invalid in this context."));
    if (const std::shared_ptr<RowSource> running = running_.lock()) running->spool();
    running_.reset();
    return session_;
}

std::shared_ptr<Connection> Connection::lend() {
    auto borrower = std::make_shared<Connection>(std::exchange(session_, nullptr));
    borrower->ConnectionString = ConnectionString;
    borrower->CursorLocation = CursorLocation;
    borrower->running_ = std::exchange(running_, {});
    lent_ = true;
    return borrower;
}

void Connection::takeBack(Connection& lent) {
    session_ = std::exchange(lent.session_, nullptr);
    running_ = std::exchange(lent.running_, {});
    lent_ = false;
}

CommandResult ExecuteCommand(Command& command) {
    CommandSpec spec{command.CommandText, command.CommandType == adCmdStoredProc,
                     command.CommandTimeout, command.Parameters};
    const std::unique_ptr<ResultStream> stream =
        command.ActiveConnection->sessionForNewCommand()->execute(spec);
    do {
        RowStore dropped(stream->columns());
        while (!stream->columns().empty() && stream->fetch(dropped, 1024) > 0) dropped.clear();
    } while (stream->nextResult());
    CommandResult result;
    result.returnValue = stream->returnValue();
    for (size_t i = 0; i < spec.parameters.size(); ++i)
        result.outputs.push_back(stream->outputValue(int(i)));
    return result;
}

}  // namespace zov
