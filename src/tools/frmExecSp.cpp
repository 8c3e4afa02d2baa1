#include "tools/frmExecSp.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "data/mdlData.h"
#include "shell/shell.h"
#include "util/text.h"

namespace zov {
namespace {

constexpr const char* Module = "frmExecSp";
constexpr int adParamOutput = 2;

CommandParameter input(const char* name, const QString& value, int size) {
    return {QString::fromLatin1(name), adVarWChar, adParamInput, size, value.left(size)};
}

Command procedure(const std::shared_ptr<Connection>& connection, const char* name,
                  const QString& empid) {
    constexpr int LongestId = 6;
    if (!connection || !connection->isOpen())
        throw DbError(ado_error::Unspecified,
                      QStringLiteral("There is no connection to the sample database."));
    Command command;
    command.ActiveConnection = connection;
    command.CommandText = QString::fromLatin1(name);
    command.CommandType = adCmdStoredProc;
    command.CommandTimeout = globals().glngTimeout;
    command.Parameters.push_back(input("empid", Trim(empid), LongestId));
    return command;
}

}  // namespace

ServerInfo frmExecSp::sampleServer() {
    ServerInfo server;
    server.Name = QStringLiteral("\\SQLEXPRESS");
    server.SQLAuth = true;
    server.LoginName = QStringLiteral("sa");
    server.Password = QStringLiteral("qexavbn");
    return server;
}

void frmExecSp::ShowUp(const ServerInfo& Server) {
    ADO_Connection_Open(connection_, Server, QStringLiteral("Northwind"));
    reopen();
    shell().showModal(*this);
    connection_.reset();
}

void frmExecSp::cmd_get_Click() {
    guardedRun(Module, "cmd_get_Click", [&] {
        const WaitPointer wait;
        Command command = procedure(connection_, "empdetails", txt_empid);
        Recordset rs;
        rs.Open(command);
        if (!rs.isOpen() || rs.isEof()) return;
        txt_firstname = rs.field(QStringLiteral("firstname")).text();
        txt_title = rs.field(QStringLiteral("title")).text();
        txt_address = rs.field(QStringLiteral("address")).text();
        refresh();
    });
}

void frmExecSp::cmd_update_Click() {
    guardedRun(Module, "cmd_update_Click", [&] {
        const WaitPointer wait;
        Command command = procedure(connection_, "update_empdetails", txt_empid);
        command.Parameters.push_back(input("firstname", txt_firstname, 30));
        command.Parameters.push_back(input("title", txt_title, 30));
        command.Parameters.push_back(input("address", txt_address, 100));
        command.Parameters.push_back(
            {QStringLiteral("result"), adInteger, adParamOutput, 0, QVariant(0)});
        const CommandResult result = ExecuteCommand(command);
        // The number of rows that were updated.
        if (result.outputs.back().toInt() > 0)
            shell().messageBox(QStringLiteral("Updated Successfully"), {}, BoxIcon::Information);
    });
}

}  // namespace zov
