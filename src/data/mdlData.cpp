#include "data/mdlData.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "core/run_account.h"
#include "data/sql_names.h"
#include "shell/shell.h"

#include <QMetaType>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <cstdlib>
#include <mutex>

namespace zov {
namespace {

constexpr const char* Module = "mdlData";
const QString CancelledText = QStringLiteral("Operation was canceled.");

// A value that holds what would end it is quoted, as OLE DB reads it; all others stand bare.
QString connectionValue(const QString& value) {
    const bool bare = !value.contains(u';') && !value.startsWith(u'"') &&
                      !value.startsWith(u'\'') && value.trimmed() == value;
    if (bare) return value;
    QString doubled = value;
    doubled.replace(u'"', QLatin1StringView("\"\""));
    return u'"' + doubled + u'"';
}

QString connectionString(const ServerInfo& server, const QString& database, bool nameDatabase) {
    QString text = QStringLiteral("Provider=SQLOLEDB.1;Persist Security Info=False;Data Source=") +
                   connectionValue(server.Name) + u';';
    if (nameDatabase) text += QStringLiteral("Initial Catalog=") + connectionValue(database) + u';';
    if (server.SQLAuth)
        text += QStringLiteral("User ID=") + connectionValue(server.LoginName) +
                QStringLiteral(";Password=") + connectionValue(server.Password);
    else
        text += QStringLiteral("Integrated Security=SSPI");
    return text;
}

std::shared_ptr<Connection> newConnection(const QString& connectionString) {
    auto connection = std::make_shared<Connection>();
    connection->ConnectionString = connectionString;
    connection->CursorLocation = globals().glngCursorLocation;
    return connection;
}

std::shared_ptr<Connection> openConnection(const QString& connectionString) {
    const std::shared_ptr<Connection> connection = newConnection(connectionString);
    connection->Open();
    return connection;
}

Command commandOn(const std::shared_ptr<Connection>& connection, int type, const QString& text) {
    Command command;
    command.ActiveConnection = connection;
    command.CommandText = text;
    command.CommandType = type;
    command.CommandTimeout = globals().glngTimeout;
    return command;
}

// Input parameters first, then those that come back; gives the generated names of the latter.
std::vector<QString> addParameters(Command& command, const std::vector<QVariant>& inputs,
                                   const OutParams* outputs) {
    for (const QVariant& value : inputs) AddAdoParameter(command, value, adParamInput);
    std::vector<QString> names;
    if (outputs)
        for (const Parameter& parameter : *outputs)
            names.push_back(AddAdoParameter(command, parameter.Value, adParamInputOutput));
    return names;
}

void takeOutputs(const Command& command, const CommandResult& result,
                 const std::vector<QString>& names, OutParams* outputs) {
    for (size_t i = 0; i < names.size(); ++i) {
        if (names[i].isEmpty()) continue;
        for (size_t p = 0; p < command.Parameters.size() && p < result.outputs.size(); ++p)
            if (command.Parameters[p].name == names[i])
                (*outputs)[i] = {names[i], result.outputs[p]};
    }
}

QString placeOf(const ServerInfo& server, const QString& database) {
    return database.isEmpty() ? server.Name : server.Name + u'.' + database;
}

/// Runs `work`; its failure goes into the account of the run, and on.
template <typename Work>
auto accounted(const QString& place, const QString& doing, Work work) {
    try {
        return work();
    } catch (...) {
        addCaughtErrorToAccount(place, doing);
        throw;
    }
}

// A SELECT that isn't SELECT ... INTO has columns, even when it has no rows.
bool mustGiveColumns(const QString& text) {
    static const QRegularExpression select(QStringLiteral("^\\s*SELECT\\b"),
                                           QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression quoted(
        QStringLiteral("'(?:[^']|'')*'|\\[(?:[^\\]]|\\]\\])*\\]|\"(?:[^\"]|\"\")*\""));
    static const QRegularExpression into(QStringLiteral("\\bINTO\\b"),
                                         QRegularExpression::CaseInsensitiveOption);
    if (!select.match(text).hasMatch()) return false;
    QString bare = text;
    return !bare.remove(quoted).contains(into);
}

std::unique_ptr<Recordset> openRecordset(Command& command, qint32 cursorLocation,
                                         qint32 cacheSize) {
    auto rs = std::make_unique<Recordset>();
    rs->CursorLocation = cursorLocation;
    if (rs->CursorLocation == adUseServer) rs->CacheSize = cacheSize;
    rs->Open(command);
    if (!rs->isOpen() && command.CommandType == adCmdText && mustGiveColumns(command.CommandText))
        throw DbError(
            ado_error::Unspecified,
            QStringLiteral("The server answered a query without any column. Run it again; "
                           "when that doesn't help, look at the server's error log."));
    // A procedure's return value and output parameters come behind its rows.
    const bool isProcedure = command.CommandType == adCmdStoredProc;
    if (rs->isOpen() && (isProcedure || rs->CursorLocation == adUseClient)) rs->disconnect();
    return rs;
}

/// A query on its way to a server and back. It owns all that it touches, since it may be left
/// behind while it still waits.
class Query {
 public:
    /// On `connection`, which is opened for it unless it is open already.
    Query(std::shared_ptr<Connection> connection, Command command)
        : command_(std::move(command)),
          connection_(std::move(connection)),
          cursorLocation_(globals().glngCursorLocation),
          cacheSize_(globals().glngCacheSize) {}

    void run() {
        if (!connection_->isOpen()) connection_->Open();
        {
            const std::lock_guard lock(guard_);
            running_ = connection_->sessionForNewCommand();
        }
        if (!command_.CommandText.isEmpty()) {
            command_.ActiveConnection = connection_;
            rows = openRecordset(command_, cursorLocation_, cacheSize_);
        }
        const std::lock_guard lock(guard_);
        running_.reset();
    }

    /// From another thread, while run() runs.
    void cancel() {
        const std::lock_guard lock(guard_);
        if (running_) running_->cancel();
    }

    const Command& command() const { return command_; }
    std::unique_ptr<Recordset> rows;

 private:
    Command command_;
    std::shared_ptr<Connection> connection_;
    qint32 cursorLocation_;
    qint32 cacheSize_;
    std::mutex guard_;
    std::shared_ptr<ProviderConnection> running_;
};

/// The user gave the query up; a thread may still wait for its answer.
struct LeftBehind : DbError {
    LeftBehind() : DbError(ado_error::Cancelled, CancelledText) {}
};

/// Runs the query while its user's window lives.
void runQuery(const std::shared_ptr<Query>& query, const QString& server) {
    if (!shell().runBlocking([query] { query->run(); }, [query] { query->cancel(); }, server))
        throw LeftBehind();
}

/// The exception being handled.
AdoFailure caughtFailure() {
    const CaughtError error = caughtError();
    AdoFailure failure{error.number, error.description};
    try {
        throw;
    } catch (const DbError& caught) {
        // 08004 is a server that answers, and refuses.
        failure.Unreachable = error.number == ado_error::Timeout ||
                              caught.sqlState.startsWith(u"HYT") ||
                              (caught.sqlState.startsWith(u"08") && caught.sqlState != u"08004");
    } catch (...) {
    }
    return failure;
}

}  // namespace

QString BuildConnectionString(const ServerInfo& Server, const QString& Database) {
    return connectionString(Server, Database, !Database.isEmpty());
}

void ReportAdoFailure(const AdoFailure& Failure) {
    ShowErrorReport(Failure.ErrNumber, Failure.ErrDescription, ProgramVersionText(),
                    ProgramBuildNumber, QLatin1String(Module), QStringLiteral("GetAdoRS"),
                    QStringLiteral("Server connection failed; cursor location = %1")
                        .arg(globals().glngCursorLocation));
    shell().pumpEvents();
}

qint32 GetAdoRS(const ServerInfo& Server, int CommandType, const QString& CommandText,
                std::unique_ptr<Recordset>& Rs, const QString& Database, AdoFailure* Failure,
                const std::vector<QVariant>& InParams, OutParams* Outputs) {
    const WaitPointer wait;
    Rs.reset();
    try {
        Command command = commandOn(nullptr, CommandType, CommandText);
        const std::vector<QString> names = addParameters(command, InParams, Outputs);
        const auto query = std::make_shared<Query>(
            newConnection(BuildConnectionString(Server, Database)), std::move(command));
        runQuery(query, Server.Name);
        if (CommandText.isEmpty()) return 0;
        Rs = std::move(query->rows);
        takeOutputs(query->command(), Rs->result(), names, Outputs);
        return Rs->result().returnValue;
    } catch (...) {
        const AdoFailure failure = caughtFailure();
        const bool cancelled = failure.ErrNumber == ado_error::Cancelled;
        const bool told = !cancelled && !globals().gblnSuppressConnErrors;
        addCaughtErrorToAccount(placeOf(Server, Database), CommandText, told);
        if (Failure) *Failure = failure;
        // Who gave up waiting knows it; the operation around the query ends at its next named
        // point.
        if (cancelled) globals().gblnStop = true;
        if (told) ReportAdoFailure(failure);
        return -1;
    }
}

qint32 GetAdoRS_OnConnection(const std::shared_ptr<Connection>& Connection, int CommandType,
                             const QString& CommandText, std::unique_ptr<Recordset>& Rs) {
    Rs.reset();
    try {
        // Whoever gave up a query gave up those that would follow on its connection.
        if (Connection->isLent()) throw DbError(ado_error::Cancelled, {});
        if (!Connection->isOpen()) Connection->sessionForNewCommand();  // throws
        const auto lent = Connection->lend();
        const auto query =
            std::make_shared<Query>(lent, commandOn(nullptr, CommandType, CommandText));
        try {
            runQuery(query, ConnectionSpec::parse(Connection->ConnectionString).dataSource);
        } catch (const LeftBehind&) {
            throw;
        } catch (...) {
            Connection->takeBack(*lent);
            throw;
        }
        Connection->takeBack(*lent);
        Rs = std::move(query->rows);
        return Rs->result().returnValue;
    } catch (...) {
        const CaughtError error = caughtError();
        const bool cancelled = error.number == ado_error::Cancelled;
        const bool told = !cancelled && !globals().gblnSuppressConnErrors;
        addCaughtErrorToAccount(Connection->place(), CommandText, told);
        if (cancelled) globals().gblnStop = true;
        if (told) {
            shell().messageBox(
                QStringLiteral("Server connection failed.\r\n\r\nRun time error: %1\r\n")
                        .arg(error.number) +
                    error.description + QStringLiteral("\r\n\r\nCommand failed: \r\n\r\n") +
                    CommandText,
                {}, BoxIcon::Exclamation);
        }
        return -1;
    }
}

bool ADO_Connection_Open(std::shared_ptr<Connection>& Connection, const ServerInfo& Server,
                         const QString& Database) {
    const QString place = placeOf(Server, Database);
    const QString doing = QStringLiteral("connecting");
    return guarded(Module, "ADO_Connection_Open", false, [&] {
        auto fresh = newConnection(connectionString(Server, Database, true));
        const bool opened = accounted(place, doing, [&] {
            return shell().runBlocking([fresh] { fresh->Open(); }, [] {}, Server.Name);
        });
        if (!opened) {
            addToAccount({place, doing, CancelledText, ado_error::Cancelled});
            globals().gblnStop = true;
            return false;
        }
        Connection = fresh;
        return true;
    });
}

qint32 ExecAdoCmd(const ServerInfo& Server, int CommandType, const QString& CommandText,
                  const QString& Database, const std::vector<QVariant>& InParams,
                  OutParams* Outputs) {
    const auto execute = [&] {
        Command command = commandOn(openConnection(connectionString(Server, Database, true)),
                                    CommandType, CommandText);
        const std::vector<QString> names = addParameters(command, InParams, Outputs);
        const CommandResult result = ExecuteCommand(command);
        takeOutputs(command, result, names, Outputs);
        return result.returnValue;
    };
    return guarded(Module, "ExecAdoCmd", qint32(-1),
                   [&] { return accounted(placeOf(Server, Database), CommandText, execute); });
}

QString AddAdoParameter(Command& Command, const QVariant& Value, int Direction) {
    if (!Value.isValid()) return {};
    CommandParameter parameter;
    parameter.direction = Direction;
    parameter.value = Value;
    const char* prefix = nullptr;
    switch (Value.typeId()) {
        case QMetaType::QString:
            prefix = "str";
            parameter.type = adVarWChar;
            parameter.size = std::max(255, int(Value.toString().size()));
            break;
        case QMetaType::Int:
            prefix = "lng";
            parameter.type = adInteger;
            break;
        case QMetaType::Double:
            prefix = "dbl";
            parameter.type = adDouble;
            // The marker for "no value" of the callers; it goes out as 1.
            if (Value.toDouble() == -1) parameter.value = 1.0;
            break;
        case QMetaType::Bool:
            prefix = "bln";
            parameter.type = adBoolean;
            break;
        case QMetaType::QDate:
        case QMetaType::QDateTime:
        case QMetaType::Nullptr:
            prefix = "dtm";
            parameter.type = adDate;
            break;
        default:
            shell().messageBox(QStringLiteral("Data Type ") + QLatin1String(Value.typeName()) +
                                   QStringLiteral(" not currently handled"),
                               {}, BoxIcon::Critical);
            std::exit(EXIT_FAILURE);
    }
    parameter.name = QLatin1String(prefix) +
                     QString::number(QRandomGenerator::global()->generateDouble(), 'f', 7);
    Command.Parameters.push_back(parameter);
    return parameter.name;
}

bool NullExistsInColumn(const ServerInfo& Server, const QString& Database, const QString& Table,
                        const QString& Column, bool* Failed) {
    if (Failed) *Failed = true;
    return guarded(Module, "NullExistsInColumn", false, [&] {
        const QString text = QStringLiteral("IF EXISTS (SELECT TOP (1) ") + quoteName(Column) +
                             QStringLiteral(" FROM [") + Table + QStringLiteral("] WHERE ") +
                             quoteName(Column) +
                             QStringLiteral("  IS NULL) SELECT 1 ELSE SELECT 0");
        std::unique_ptr<Recordset> rs;
        if (GetAdoRS(Server, adCmdText, text, rs, Database) == -1 || !rs || rs->isEof())
            return false;
        const bool exists = rs->field(0).toInt64() == 1;
        rs->Close();
        if (Failed) *Failed = false;
        return exists;
    });
}

namespace {

QString commentsQuery(const QString& objectName, qint32 objectId) {
    QString text = QStringLiteral(
                       "SELECT text FROM syscomments sc INNER JOIN sysobjects so ON sc.id = so.id "
                       "WHERE so.name = '") +
                   objectName + QStringLiteral("' ");
    if (objectId >= 1) text += QStringLiteral("AND so.id = %1 ").arg(objectId);
    return text + QStringLiteral("ORDER BY sc.colid");
}

QString joinedText(std::unique_ptr<Recordset>& rs, bool* whole) {
    QString text;
    int rows = 0, nulls = 0;
    if (rs) {
        for (; !rs->isEof(); rs->MoveNext(), ++rows) {
            const Field field = rs->field(QStringLiteral("text"));
            nulls += field.isNull();
            text += field.text();
        }
        rs->Close();
    }
    if (whole) *whole = rows > 0 && nulls == 0;
    return text;
}

}  // namespace

QString GetObjectTextFromComments(const ServerInfo& Server, const QString& Database,
                                  const QString& ObjectName, qint32 ObjectId, bool* Whole) {
    std::unique_ptr<Recordset> rs;
    GetAdoRS(Server, adCmdText, commentsQuery(ObjectName, ObjectId), rs, Database);
    return joinedText(rs, Whole);
}

QString GetObjectTextFromComments_OnConnection(const std::shared_ptr<Connection>& Connection,
                                               const QString& ObjectName, qint32 ObjectId,
                                               bool* Whole) {
    std::unique_ptr<Recordset> rs;
    GetAdoRS_OnConnection(Connection, adCmdText, commentsQuery(ObjectName, ObjectId), rs);
    return joinedText(rs, Whole);
}

}  // namespace zov
