// The one exception of the data layer.
#pragma once

#include "util/numbered_error.h"

#include <QString>

#include <utility>

namespace zov {

/// Error numbers as ADO and its provider for SQL Server give them.
namespace ado_error {
inline constexpr qint32 Unspecified = qint32(0x80004005);  ///< also: server unreachable
inline constexpr qint32 PermissionDenied = qint32(0x80040E09);
inline constexpr qint32 SyntaxError = qint32(0x80040E14);
inline constexpr qint32 DeletedRow = qint32(0x80040E23);
inline constexpr qint32 Timeout = qint32(0x80040E31);
inline constexpr qint32 NoSuchTable = qint32(0x80040E37);
inline constexpr qint32 LoginFailed = qint32(0x80040E4D);
inline constexpr qint32 Cancelled = qint32(0x80040E4E);
inline constexpr qint32 IntegrityViolation = qint32(0x80040E2F);
}  // namespace ado_error

/// A connection or a statement failed. `description` is the server's own text, whole;
/// `number` is one of ado_error.
struct DbError : NumberedError {
    DbError(qint32 number, const QString& description, QString sqlState = {}, qint32 native = 0)
        : NumberedError(number, description), sqlState(std::move(sqlState)), native(native) {}

    /// Rows that were fetched before it can be used. Want of memory may have met one half-way.
    bool leavesRowsWhole() const { return native != 701; }

    bool onlyThisRequestFailed() const override {
        // A page or a file that can't be read may hide anything else.
        const bool damage = native == 823 || native == 824 || native == 825 || native == 605;
        return !connectionLost && native != 0 && !damage && number != ado_error::Timeout &&
               number != ado_error::Cancelled && number != ado_error::LoginFailed;
    }

    QString sqlState;  ///< five characters, empty when the provider has none
    qint32 native;     ///< SQL Server's message number, 0 when unknown
    int line = 0;      ///< line in the batch from 1, 0 when unknown
    QString nearText;  ///< first words of the statement at fault, empty when unknown
    bool connectionLost = false;
};

}  // namespace zov
