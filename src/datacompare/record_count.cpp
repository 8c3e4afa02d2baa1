// Counting a table's rows.
#include "catalog/modSchema.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "datacompare/modCompareData.h"
#include "shell/shell.h"

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

}  // namespace

qint32 GetNumberOfRecordsInTable(const ServerInfo& Server, QString& Table, const QString& Db) {
    if (Table.isEmpty()) return 0;
    std::unique_ptr<Recordset> rs;
    AdoFailure failure;
    const auto count = [&] {
        const ScopedValue<bool> quiet(globals().gblnSuppressConnErrors, true);
        failure = {};
        const QString name = AddSquareBrackets(Table);
        return GetAdoRS(Server, adCmdText,
                        QStringLiteral("SELECT COUNT(*) AS RecsCount FROM ") + name, rs, Db,
                        &failure) != -1;
    };
    bool counted = count();
    if (!counted) {
        ServerInfo server = Server;
        if (RetryWithSchema(server, Db, Table, ObjectType::Table, failure.ErrNumber)) counted = count();
        rememberSchemaFindings(server);
    }
    if (counted && rs && rs->isOpen() && !rs->isEof()) {
        const qint64 rows = rs->field(QStringLiteral("RecsCount")).toInt64();
        rs->Close();
        return qint32(rows);
    }
    // Who gave up waiting needs no explanation.
    if (failure.ErrNumber == ado_error::Cancelled) return NotRead;
    if (failure.ErrNumber != 0 && failure.ErrNumber != ado_error::NoSuchTable &&
        !globals().gblnSuppressConnErrors)
        ShowErrorReport(failure.ErrNumber, failure.ErrDescription, ProgramVersionText(),
                        ProgramBuildNumber, QStringLiteral("mdlMisc"),
                        QStringLiteral("GetNumberOfRecordsInTable"), {});
    shell().messageBox(QStringLiteral("Error while attempting to count records in table: ") + Table, {},
                       BoxIcon::Exclamation);
    return NotRead;
}

}  // namespace zov
