// zovrand-cli query
#include "apps/cli/cli_support.h"
#include "core/globals.h"
#include "shell/console/console_shell.h"
#include "shell/console/interrupt.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace zov::cli {
namespace {

/// Cancels the running statement once Ctrl-C was pressed.
class CancelOnInterrupt {
 public:
    explicit CancelOnInterrupt(const std::shared_ptr<ProviderConnection>& session)
        : session_(session), watcher_([this] { watch(); }) {}
    ~CancelOnInterrupt() {
        done_ = true;
        watcher_.join();
    }

 private:
    void watch() {
        while (!done_) {
            if (interruptRequested()) {
                session_->cancel();
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
    }

    std::shared_ptr<ProviderConnection> session_;
    std::atomic<bool> done_{false};
    std::thread watcher_;
};

/// A value on one line: tabs, line breaks and backslashes as \t, \n, \r, \\.
void appendEscaped(QString& line, const QString& value) {
    for (const QChar c : value) {
        switch (c.unicode()) {
            case u'\t':
                line += QStringLiteral("\\t");
                break;
            case u'\n':
                line += QStringLiteral("\\n");
                break;
            case u'\r':
                line += QStringLiteral("\\r");
                break;
            case u'\\':
                line += QStringLiteral("\\\\");
                break;
            default:
                line += c;
        }
    }
}

void writeRows(Recordset& rows) {
    QString line;
    for (int i = 0; i < rows.fieldCount(); ++i) {
        if (i > 0) line += u'\t';
        appendEscaped(line, rows.field(i).Name());
    }
    writeOut(line + u'\n');
    for (; !rows.isEof(); rows.MoveNext()) {
        if (interruptRequested()) throw Failure(QStringLiteral("Stopped."));
        line.clear();
        for (int i = 0; i < rows.fieldCount(); ++i) {
            if (i > 0) line += u'\t';
            const Field field = rows.field(i);
            if (field.isNull()) {
                line += QStringLiteral("Null");
            } else {
                appendEscaped(line, field.text());
            }
        }
        writeOut(line + u'\n');
    }
}

}  // namespace

int runQuery(const Options& options, ConsoleShell& console) {
    const ServerInfo server = chooseServer(options, options.server);
    const QString database = chooseDatabase(options.server, server, "-d");
    bool connected = false;
    try {
        const auto connection = std::make_shared<Connection>();
        connection->ConnectionString = BuildConnectionString(server, database);
        connection->CursorLocation = globals().glngCursorLocation;
        connection->Open();
        connected = true;
        const auto session = connection->sessionForNewCommand();
        const CancelOnInterrupt canceller(session);
        zov::Command command;
        command.ActiveConnection = connection;
        command.CommandText = options.sql;
        command.CommandTimeout = globals().glngTimeout;
        Recordset rows;
        rows.CursorLocation = globals().glngCursorLocation;
        rows.CacheSize = globals().glngCacheSize;
        rows.Open(command);
        if (rows.isOpen()) {
            writeRows(rows);
            rows.Close();
        }
        flushOut();
        for (const ServerMessage& message : session->takeMessages()) {
            console.showNote(message.text);
        }
    } catch (const DbError& error) {
        if (interruptRequested()) throw Failure(QStringLiteral("Stopped."));
        throw Failure(explainDbError(error, server, database, connected));
    }
    return Identical;
}

}  // namespace zov::cli
