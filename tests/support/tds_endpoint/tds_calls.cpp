// Remote procedure calls of a session: the driver's own (sp_executesql, sp_prepare ...) become
// statements, any other name is a stored procedure of the provider.
#include "support/tds_endpoint/tds_rows.h"
#include "support/tds_endpoint/tds_session.h"

namespace zov::tds {
namespace {

/// The values behind the first `skip` parameters, in the order of the declared names.
std::vector<RpcParameter> valuesFor(const RpcCall& call, size_t skip, const QStringList& names) {
    std::vector<RpcParameter> values;
    for (qsizetype i = 0; i < names.size(); ++i) {
        const RpcParameter* value = nullptr;
        for (size_t p = skip; p < call.parameters.size(); ++p)
            if (!call.parameters[p].name.compare(names[i], Qt::CaseInsensitive))
                value = &call.parameters[p];
        const size_t place = skip + size_t(i);
        if (!value && place < call.parameters.size() && call.parameters[place].name.isEmpty())
            value = &call.parameters[place];
        values.push_back(value ? *value : RpcParameter());
    }
    return values;
}

bool hasOutput(const RpcCall& call, size_t from) {
    for (size_t i = from; i < call.parameters.size(); ++i)
        if (call.parameters[i].isOutput) return true;
    return false;
}

}  // namespace

void Session::answerRpc(const Message& message) {
    ByteReader at = behindHeaders(message.payload);
    const std::vector<RpcCall> calls = readRpcCalls(at);
    if (calls.empty()) throw Malformed("a call without a procedure");
    for (size_t i = 0; i < calls.size() && !cancelled_; ++i) {
        shared_.count(&TdsCounters::rpcs);
        answerCall(calls[i], i + 1 == calls.size());
    }
}

void Session::answerCall(const RpcCall& call, bool last) {
    const quint16 more = last ? DoneFinal : DoneMore;
    const auto parameter = [&](size_t index) -> RpcParameter {
        return index < call.parameters.size() ? call.parameters[index] : RpcParameter();
    };
    const auto runText = [&](const Prepared& prepared, size_t skip) {
        if (hasOutput(call, skip)) {
            failCall(214, QStringLiteral("The endpoint takes no output parameters of statements."),
                     more);
            return;
        }
        CommandSpec command;
        command.timeout = 0;
        command.text =
            withLiterals(prepared.statement, prepared.names, valuesFor(call, skip, prepared.names));
        finishCall(runCommand(command, DoneInProcedure, true), call, more);
    };
    switch (call.known) {
        case KnownProcedure::ExecuteSql:
            runText({parameter(0).text(), declaredNames(parameter(1).text())}, 2);
            return;
        case KnownProcedure::Prepare:
        case KnownProcedure::PrepExec: {
            const Prepared prepared{parameter(2).text(), declaredNames(parameter(1).text())};
            prepared_[++lastHandle_] = prepared;
            if (call.known == KnownProcedure::PrepExec) {
                runText(prepared, 3);
                return;
            }
            shared_.note(prepared.statement);
            putColumnsOnly(withLiterals(prepared.statement, prepared.names,
                                        std::vector<RpcParameter>(size_t(prepared.names.size()))),
                           DoneInProcedure);
            finishCall({}, call, more);
            return;
        }
        case KnownProcedure::Execute: {
            const auto found = prepared_.find(parameter(0).number());
            if (found == prepared_.end())
                failCall(8179,
                         QStringLiteral("Could not find prepared statement with handle %1.")
                             .arg(parameter(0).number()),
                         more);
            else
                runText(found->second, 1);
            return;
        }
        case KnownProcedure::Unprepare:
            prepared_.erase(parameter(0).number());
            finishCall({}, call, more);
            return;
        case KnownProcedure::None: {
            CommandSpec command;
            command.timeout = 0;
            command.text = call.procedure;
            command.storedProcedure = true;
            for (const RpcParameter& value : call.parameters)
                command.parameters.push_back(value.command());
            finishCall(runCommand(command, DoneInProcedure, true), call, more);
            return;
        }
        default:
            failCall(16'916,
                     QStringLiteral("The endpoint has no server cursors (%1).").arg(call.procedure),
                     more);
    }
}

void Session::putColumnsOnly(const QString& statement, DoneToken done) {
    // A server knows the columns without running a SELECT; this one learns them by beginning to.
    if (!statement.trimmed().startsWith(QLatin1String("SELECT"), Qt::CaseInsensitive)) return;
    CommandSpec command;
    command.timeout = 0;
    command.text = statement;
    try {
        const std::unique_ptr<ResultStream> stream = connection_->execute(command);
        if (!stream->columns().empty()) {
            RowEncoder(stream->columns()).putColumns(channel_.out);
            putDone(channel_.out, done, DoneMore | DoneCount, 0, SelectCommand);
        }
        stream->close();
    } catch (const std::exception&) {
        // The error comes when the statement is really run.
    }
}

void Session::finishCall(const Outcome& outcome, const RpcCall& call, quint16 more) {
    if (cancelled_) return;
    putReturnStatus(channel_.out, outcome.failed && !outcome.returnValue ? 1 : outcome.returnValue);
    const bool handle =
        call.known == KnownProcedure::Prepare || call.known == KnownProcedure::PrepExec;
    for (size_t i = 0; i < call.parameters.size() && !outcome.failed; ++i) {
        if (!call.parameters[i].isOutput) continue;
        QVariant value = i < outcome.outputs.size() ? outcome.outputs[i] : QVariant();
        if (handle && i == 0) value = lastHandle_;
        putReturnValue(channel_.out, int(i), call.parameters[i], value);
    }
    putDone(channel_.out, DoneProcedure, more | (outcome.failed ? DoneError : DoneFinal));
}

void Session::failCall(qint32 number, const QString& text, quint16 more) {
    putNotice(number, 16, text);
    putDone(channel_.out, DoneProcedure, more | DoneError);
}

}  // namespace zov::tds
