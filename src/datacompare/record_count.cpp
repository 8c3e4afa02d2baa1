// Counting a table's rows.
#include "catalog/modSchema.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "core/run_account.h"
#include "data/sql_names.h"
#include "datacompare/table_reading.h"
#include "shell/shell.h"
#include "util/text.h"

#include <QRegularExpression>

#include <limits>
#include <optional>

namespace zov {
namespace {

constexpr qint32 NotRead = -1;

/// The panels' copies of a server remember for later counts what was found out about its schemas.
void rememberSchemaFindings(const ServerInfo& server) {
    for (ServerInfo& current : globals().gtCurrentServers) {
        if (current.Name != server.Name) continue;
        current.SchemaCheckPerformed = server.SchemaCheckPerformed;
        current.AddSchema = server.AddSchema;
    }
}

/// "[name]" or "[schema].[name]", every "]" within doubled: made for a statement. Any other text is
/// a name, whatever stands in it.
bool isQuoted(const QString& text) {
    static const QRegularExpression quoted(
        QStringLiteral("\\A\\[(?:[^\\]]|\\]\\])+\\](?:\\.\\[(?:[^\\]]|\\]\\])+\\])?\\z"));
    return quoted.match(text).hasMatch();
}

}  // namespace

qint32 GetNumberOfRecordsInTable(const ServerInfo& Server, QString& Table, const QString& Db) {
    if (Table.isEmpty()) return 0;
    std::unique_ptr<Recordset> rs;
    AdoFailure failure;
    RunAccount asked;
    const auto count = [&](const QString& name) {
        asked = {};
        const KeepAccount keep(asked);
        const ScopedValue<bool> quiet(globals().gblnSuppressConnErrors, true);
        failure = {};
        return GetAdoRS(Server, adCmdText,
                        QStringLiteral("SELECT COUNT(*) AS RecsCount FROM ") + name, rs, Db,
                        &failure) != -1;
    };
    bool counted = count(isQuoted(Table) ? Table : quoteName(Table));
    if (!counted) {
        ServerInfo server = Server;
        if (RetryWithSchema(server, Db, Table, ObjectType::Table, failure.ErrNumber))
            counted = count(Table);
        rememberSchemaFindings(server);
    }
    for (const AccountEntry& entry : asked.entries()) addToAccount(entry);
    if (counted && rs && rs->isOpen() && !rs->isEof()) {
        const Field field = rs->field(QStringLiteral("RecsCount"));
        const std::optional<qint64> rows =
            field.isNull() ? std::nullopt : std::optional(field.toInt64());
        rs->Close();
        // Rows are numbered with 32 bits all through a comparison.
        if (rows && *rows > std::numeric_limits<qint32>::max()) {
            shell().messageBox(
                QStringLiteral("Table ") + Table + QStringLiteral(" holds ") + formatCount(*rows) +
                    QStringLiteral(" records; at most 2,147,483,647 can be counted."),
                {}, BoxIcon::Exclamation);
            return NotRead;
        }
        if (rows) return qint32(*rows);
    }
    // Who gave up waiting needs no explanation.
    if (failure.ErrNumber == ado_error::Cancelled) return NotRead;
    if (failure.ErrNumber != 0 && failure.ErrNumber != ado_error::NoSuchTable &&
        !globals().gblnSuppressConnErrors)
        ShowErrorReport(failure.ErrNumber, failure.ErrDescription, ProgramVersionText(),
                        ProgramBuildNumber, QStringLiteral("mdlMisc"),
                        QStringLiteral("GetNumberOfRecordsInTable"), {});
    shell().messageBox(QStringLiteral("Error while attempting to count records in table: ") + Table,
                       {}, BoxIcon::Exclamation);
    return NotRead;
}

}  // namespace zov
