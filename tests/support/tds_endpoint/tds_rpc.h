// Remote procedure calls: reading them from a message, their values as T-SQL literals and as
// command parameters, and output values on the way back.
#pragma once

#include "data/base/provider.h"
#include "support/tds_endpoint/tds_bytes.h"

#include <span>

namespace zov::tds {

/// The procedures that have numbers of their own.
enum class KnownProcedure : quint16 {
    None = 0,
    Cursor = 1,
    CursorOpen = 2,
    CursorPrepare = 3,
    CursorExecute = 4,
    CursorPrepExec = 5,
    CursorUnprepare = 6,
    CursorFetch = 7,
    CursorOption = 8,
    CursorClose = 9,
    ExecuteSql = 10,
    Prepare = 11,
    Execute = 12,
    PrepExec = 13,
    PrepExecRpc = 14,
    Unprepare = 15,
};

struct RpcParameter {
    QString name;  ///< with its @, often empty
    bool isOutput = false;
    quint8 wireType = 0;
    int adoType = 202;
    /// Invalid for a null. Decimals, dates and unique identifiers are QStrings in T-SQL's notation.
    QVariant value;

    QString text() const { return value.toString(); }
    qint32 number() const { return qint32(value.toLongLong()); }
    /// The value as a literal that can stand in a statement.
    QString literal() const;
    CommandParameter command() const;
};

struct RpcCall {
    QString procedure;
    KnownProcedure known = KnownProcedure::None;
    std::vector<RpcParameter> parameters;
};

/// The calls of an RPC message, behind its headers. Malformed for what can't be read.
std::vector<RpcCall> readRpcCalls(ByteReader& message);

/// "@P1 int, @P2 nvarchar(40)" -> {"@P1", "@P2"}.
QStringList declaredNames(const QString& declarations);
/// Puts literals for the variables of `statement`: texts, comments and quoted names stay.
QString withLiterals(const QString& statement, const QStringList& names,
                     std::span<const RpcParameter> values);

/// The RETURNVALUE token of an output parameter, in the type that the client used.
void putReturnValue(ByteBuffer& out, int ordinal, const RpcParameter& parameter,
                    const QVariant& value);

}  // namespace zov::tds
